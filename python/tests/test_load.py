"""Reading files, and what is wrong with them."""

import pathlib

import pytest

import zelk

ROOT = pathlib.Path(__file__).parents[2]
DATA = ROOT / "tests" / "data"


def test_reads_the_example():
    db = zelk.load(ROOT / "examples" / "powertrain.dbc")
    message = db.messages["EngineStatus"]
    assert message == db.message(message.frame_id)
    assert [signal.name for signal in message.signals]
    assert message in db.messages and "EngineStatus" in db.messages and "None" not in db.messages


def test_tells_where_a_file_is_wrong(tmp_path):
    file = tmp_path / "bad.dbc"
    file.write_text('VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n\nBO_ 1 Speed 8 A\n')
    with pytest.raises(zelk.ReadError) as caught:
        zelk.load(file)
    error = caught.value
    assert (error.path, error.line) == (str(file), 9)
    assert error.column and error.findings[0].severity == "error"
    assert zelk.load(file, repair=True).messages["Speed"].length == 8


def test_names_a_missing_file(tmp_path):
    with pytest.raises(FileNotFoundError, match="absent.dbc"):
        zelk.load(tmp_path / "absent.dbc")
