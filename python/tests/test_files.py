"""Logs to files: datasets of Parquet, and the command line."""

import gzip
import os
import pathlib
import signal
import subprocess
import sys

import duckdb
import pyarrow.csv
import pyarrow.dataset
import pyarrow.ipc
import pytest

import zelk
import zelk._files
from zelk.__main__ import main

ROOT = pathlib.Path(__file__).parents[2]
LOG = ROOT / "examples" / "drive.log"
DBC = ROOT / "examples" / "powertrain.dbc"


def rows_of(lake, message="EngineStatus"):
    table = pyarrow.dataset.dataset(lake / message, partitioning="hive").to_table()
    return {log.as_py(): 0 for log in table["log"].unique()} | {
        each["values"]: each["counts"] for each in table["log"].value_counts().to_pylist()
    }


def files_of(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


@pytest.fixture
def logs(tmp_path):
    lines = LOG.read_bytes().splitlines(keepends=True)
    (tmp_path / "a.log").write_bytes(b"".join(lines[:100]))
    (tmp_path / "b=%.log.gz").write_bytes(gzip.compress(b"".join(lines[100:])))
    return [tmp_path / "a.log", tmp_path / "b=%.log.gz"]


def test_parts_of_a_lake(tmp_path, logs, monkeypatch):
    lake = tmp_path / "lake"
    parts = zelk.to_parquet(logs, DBC, lake, batch_rows=10)
    whole = zelk.read_log(LOG, DBC)
    wanted = {"a.log": parts[str(logs[0])].rows["EngineStatus"], "b=%.log.gz": parts[str(logs[1])].rows["EngineStatus"]}
    assert rows_of(lake) == wanted and sum(wanted.values()) == 63
    for name, table in whole.items():
        glob = str(lake / name / "*" / "*.parquet")
        got = duckdb.sql(f"select time from read_parquet('{glob}', hive_partitioning=true) order by time").fetchall()
        assert [time for time, in got] == sorted(table["time"].tolist())
    before = files_of(lake)

    # Once more, with fewer frames: the log's own part is replaced, also by nothing.
    monkeypatch.setattr(zelk._files, "MOST_OPEN", 2)
    zelk.to_parquet(logs[0], DBC, lake, stop="+0.1")
    assert rows_of(lake) == {"a.log": 1, "b=%.log.gz": wanted["b=%.log.gz"]}
    zelk.to_parquet(logs[0], DBC, lake, messages="WheelSpeeds")
    assert rows_of(lake)["a.log"] == 1  # not of the messages that were wanted
    zelk.to_parquet(logs[0], DBC, lake, stop=0)
    assert rows_of(lake) == {"b=%.log.gz": wanted["b=%.log.gz"]}
    zelk.to_parquet(logs[0], DBC, lake, batch_rows=1)  # with two files open at most: several for a message
    assert rows_of(lake) == wanted
    zelk.to_parquet(logs[0], DBC, lake)
    assert files_of(lake) == before


def test_broken_logs_change_nothing(tmp_path, logs):
    lake = tmp_path / "lake"
    zelk.to_parquet(logs, DBC, lake)
    before = {name: (lake / name).read_bytes() for name in files_of(lake)}
    logs[1].write_bytes(gzip.compress(LOG.read_bytes() * 100)[:-100])
    with pytest.raises(zelk.LogError):
        zelk.to_parquet(logs[1], DBC, lake, batch_rows=10)
    assert {name: (lake / name).read_bytes() for name in files_of(lake)} == before
    zelk.to_parquet(logs[1], DBC, lake, on_error="keep")
    assert rows_of(lake)["b=%.log.gz"] > 1000
    other = tmp_path / "other"
    other.mkdir()
    (other / "a.log").write_bytes(logs[0].read_bytes())
    with pytest.raises(ValueError, match="both named 'a.log'"):
        zelk.to_parquet([logs[0], other / "a.log"], DBC, lake)
    zelk.to_parquet([logs[0], other / "a.log"], DBC, lake, name=lambda path: path[-11:])
    with pytest.raises(OSError):
        zelk.to_parquet(logs[0], DBC, logs[1])  # no folder


def test_the_command_line(tmp_path, capsys):
    out = tmp_path / "out"
    for form, read in {
        "csv": pyarrow.csv.read_csv,
        "arrows": lambda path: pyarrow.ipc.open_stream(path).read_all(),
    }.items():
        assert main(["decode", str(LOG), "-d", f"can0={DBC}", "-o", str(out), "-f", form, "-m", "Engine*"]) == 0
        assert len(read(out / f"EngineStatus.{form}")) == 63
        assert "269 frames" in capsys.readouterr().err
    assert main(["info", str(DBC)]) == 0 and "0xc8 EngineStatus: 8 bytes" in capsys.readouterr().out
    assert main(["diff", str(DBC), str(DBC)]) == 0
    broken = tmp_path / "broken.dbc"
    broken.write_text('VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n\nBO_ 1 Speed 8 A\n')
    assert main(["repair", str(broken), str(tmp_path / "mended.dbc")]) == 0 and main(["lint", str(broken)]) == 1
    assert "broken.dbc:9:12: error" in capsys.readouterr().out
    into = ["-d", str(DBC), "-o", str(out)]
    for wrong in (["info", "absent"], ["decode", str(DBC), *into], ["decode", str(LOG), *into, "-m", "Absent"]):
        assert main(wrong) == 1
        assert capsys.readouterr().err.startswith("zelk: ")
    with pytest.raises(SystemExit) as caught:
        main(["decode"])
    assert caught.value.code == 2


@pytest.mark.skipif(os.name != "posix", reason="sends a signal")
def test_an_interruption(tmp_path):
    fifo = tmp_path / "fifo"
    os.mkfifo(fifo)
    arguments = ["decode", str(fifo), "-d", str(DBC), "-o", str(tmp_path / "out"), "-f", "csv"]
    with subprocess.Popen([sys.executable, "-m", "zelk", *arguments], stderr=subprocess.PIPE) as process:
        with open(fifo, "wb") as pipe:
            pipe.write(LOG.read_bytes())
            pipe.flush()
            process.send_signal(signal.SIGINT)
            assert process.wait(timeout=60) == 130
        assert process.stderr.read() == b"interrupted\n"
    assert not (tmp_path / "out").exists() or files_of(tmp_path / "out") == []
