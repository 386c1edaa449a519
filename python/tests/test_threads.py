"""Eight threads at once, each with databases of its own, or all with one that nobody edits."""

import concurrent.futures
import os
import pathlib
import subprocess
import sys
import threading
import types

import numpy as np
import pytest

import zelk

ROOT = pathlib.Path(__file__).parents[2]
LOG = ROOT / "examples" / "drive.log"
DBC = ROOT / "examples" / "powertrain.dbc"
THREADS = 8
FRAMES = [bytes([n, 17 * n % 256, n // 3, 5, n % 4, n % 7, n, n]) for n in range(40)]


@pytest.fixture(autouse=True)
def quick_turns():
    """The interpreter changes threads as often as it can."""
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e-6)
    yield
    sys.setswitchinterval(interval)


def in_threads(work):
    """The results of `work(number)` in threads that begin together."""
    together = threading.Barrier(THREADS)

    def begin(number):
        together.wait()
        return work(number)

    with concurrent.futures.ThreadPoolExecutor(THREADS) as pool:
        return list(pool.map(begin, range(THREADS)))


def rows(tables):
    return {name: [repr(column.tolist()) for column in table.to_numpy().values()] for name, table in tables.items()}


def decoded_arrays(db):
    data = np.frombuffer(b"".join(FRAMES), np.uint8).reshape(-1, 8)
    return rows(zelk.decode_frames(db, np.full(len(FRAMES), 0x0C8), None, data, np.arange(float(len(FRAMES)))))


def encoded(db):
    return [db.encode_message("EngineStatus", {"EngineSpeed": n, "EngineRunState": "Stopped"}, strict=False) for n in range(40)]


def looked_up(db):
    names = [(message.name, message.svg(), [signal.choices for signal in message.signals]) for message in db.messages]
    return names, dict(db.messages["EngineStatus"].attributes), [node.name for node in db.nodes]


def repaired(db, folder):
    broken, target = folder / "broken.dbc", folder / "mended.dbc"
    broken.write_text(DBC.read_text().replace("BO_ 200 EngineStatus:", "BO_ 200 EngineStatus"))
    mends = [(mend.line, mend.message) for mend in zelk.repair(broken, target)]
    with pytest.raises(zelk.ReadError) as error:
        zelk.load(broken)
    return mends, error.value.line, [finding.message for finding in zelk.lint(target)], len(zelk.diff(db, target))


def edited(db, folder):
    target = folder / "edited.dbc"
    with db.edit(path=target) as edit:
        edit.messages["EngineStatus"].comment = "edited"
        edit.add_message("Fresh", 1, 8).add_signal("Service", 8, 8)
    return target.read_bytes()


WORK = {
    "decode": lambda db, _: [db.decode_message("EngineStatus", data) for data in FRAMES],
    "encode": lambda db, _: encoded(db),
    "arrays": lambda db, _: decoded_arrays(db),
    "messages": lambda db, _: rows(zelk.decode_messages([types.SimpleNamespace(arbitration_id=0x0C8, data=data) for data in FRAMES], db)),
    "log": lambda db, _: rows(zelk.read_log(LOG, db)),
    "objects": lambda db, _: looked_up(db),
    "repair": repaired,
    "edit": edited,
}


@pytest.mark.parametrize("name", WORK)
def test_threads_see_what_one_sees(tmp_path, name):
    def work(db, folder):
        folder.mkdir()
        return WORK[name](db, folder)

    alone = work(zelk.load(DBC), tmp_path / "alone")
    assert alone
    for attempt in range(3):
        shared = zelk.load(DBC) if name != "edit" else None

        def run(number):
            folder = tmp_path / f"{attempt} {number}"
            return [work(db or zelk.load(DBC), folder.with_name(f"{folder.name} {i}")) for i, db in enumerate([None, shared])]

        for results in in_threads(run):
            assert results == [alone] * 2


def test_first_decodings_of_a_message_do_not_mix(tmp_path):
    # The text of a value is made when a frame first has it, which takes steps of the interpreter.
    file = tmp_path / "choices.dbc"
    signals = "".join(f' SG_ S{i} : {8 * i}|8@1+ (1,0) [0|0] "" N\n' for i in range(8))
    texts = "".join(f"VAL_ 1 S{i} " + " ".join(f'{n} "{n} of {i}"' for n in range(THREADS)) + " ;\n" for i in range(8))
    file.write_text(f"BS_:\nBU_: N\nBO_ 1 M: 8 N\n{signals}{texts}")
    wanted = [{f"S{i}": f"{n} of {i}" for i in range(8)} for n in range(THREADS)]
    for _ in range(20):
        db = zelk.load(file)
        assert in_threads(lambda number: db.decode_message("M", bytes([number]) * 8)) == wanted


READERS = {
    "load": "len(zelk.load(path).messages)",
    "lint": "len(zelk.lint(path))",
    "repair": "len(zelk.repair(path, 'mended.dbc'))",
    "read_log": f"len(zelk.read_log(path, {str(DBC)!r})['EngineStatus'])",
}


@pytest.mark.skipif(not hasattr(os, "mkfifo"), reason="needs named pipes")
@pytest.mark.parametrize("name", READERS)
def test_others_go_on_while_one_reads(tmp_path, name):
    # What is read comes from another thread: a reader that kept the interpreter locked would wait for ever.
    source = LOG if name == "read_log" else DBC
    script = f"""
import os, threading, zelk
path = 'pipe.log' if {name == "read_log"} else 'pipe.dbc'
os.mkfifo(path)
content = open({str(source)!r}, 'rb').read()
threading.Thread(target=lambda: open(path, 'wb').write(content), daemon=True).start()
print({READERS[name]})
"""
    path = str(source)
    alone = str(eval(READERS[name].replace("mended.dbc", str(tmp_path / "alone.dbc")), {"zelk": zelk, "path": path}))
    run = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, capture_output=True, text=True, timeout=120)
    assert (run.stdout.strip(), run.stderr) == (alone, "")
