"""Measures the package, beside the same work done by hand.

    python python/bench/run.py [--frames N] [--cpp PROGRAM]

Each figure is the best of several turns, in which what is compared takes turns. PROGRAM is columns.cpp, built
with the C++ libraries; without it the line of the library is left out.
"""

from __future__ import annotations

import argparse
import pathlib
import subprocess
import tempfile
import time
from collections.abc import Callable

import network
import numpy as np

import zelk

ID = 0x100
DATA = bytes(range(10, 18))


def best(turns: int, *works: Callable[[], object]) -> list[float]:
    """The least time of each, in seconds."""
    times = [float("inf")] * len(works)
    for _ in range(turns):
        for i, work in enumerate(works):
            begin = time.perf_counter()
            work()
            times[i] = min(times[i], time.perf_counter() - begin)
    return times


def show(what: str, seconds: float, count: int, unit: str, against: float | None = None) -> None:
    ratio = "" if against is None else f"{against / seconds:8.2f} times as fast as the line above"
    print(f"{what:44} {seconds / count * 1e9:10.1f} ns/{unit}{ratio}")


def decode_by_hand(data: bytes) -> dict[str, float]:
    bits = int.from_bytes(data, "little")
    return {s.name: (bits >> s.start & (1 << s.length) - 1) * s.factor + s.offset for s in SIGNALS}


def encode_by_hand(values: dict[str, float]) -> bytes:
    bits = 0
    for s in SIGNALS:
        bits |= round((values[s.name] - s.offset) / s.factor) << s.start
    return bits.to_bytes(8, "little")


def arrays_by_hand(data: np.ndarray) -> dict[str, np.ndarray]:
    bits = data.reshape(-1).view("<u8")
    return {s.name: (bits >> np.uint64(s.start) & np.uint64((1 << s.length) - 1)) * s.factor + s.offset for s in SIGNALS}


SIGNALS = network.signals_of(0)


def one_by_one(db: zelk.Database) -> None:
    count = 100_000
    values = decode_by_hand(DATA)
    assert db.decode_message(ID, DATA) == values and db.encode_message(ID, values) == encode_by_hand(values) == DATA

    def times(work: Callable[[], object]) -> Callable[[], None]:
        def loop() -> None:
            for _ in range(count):
                work()

        return loop

    pairs = {
        "decode": (lambda: decode_by_hand(DATA), lambda: db.decode_message(ID, DATA)),
        "encode": (lambda: encode_by_hand(values), lambda: db.encode_message(ID, values)),
    }
    for what, (by_hand, by_zelk) in pairs.items():
        first, second = best(5, times(by_hand), times(by_zelk))
        show(f"{what} 8 signals by hand", first, count, "frame")
        show(f"{what} 8 signals", second, count, "frame", first)


def arrays(db: zelk.Database, count: int) -> None:
    data = np.random.default_rng(1).integers(0, 256, (count, 8), np.uint8)
    ids = np.full(count, ID, np.uint32)
    wanted = arrays_by_hand(data)
    got = zelk.decode_frames(db, ids, 8, data)["Message0"].to_numpy()
    assert all(np.array_equal(got[name], values) for name, values in wanted.items())
    by_hand, by_zelk, with_copy = best(
        5,
        lambda: arrays_by_hand(data),
        lambda: zelk.decode_frames(db, ids, 8, data),
        lambda: zelk.decode_frames(db, ids, 8, data)["Message0"].to_numpy(),
    )
    show("one message by hand with NumPy", by_hand, count, "frame")
    show("decode_frames", by_zelk, count, "frame", by_hand)
    show("by hand (again)", by_hand, count, "frame")
    show("decode_frames, and joined to NumPy", with_copy, count, "frame", by_hand)


def logs(db: pathlib.Path, log: pathlib.Path, count: int, program: str | None) -> None:
    database = zelk.load(db)
    cpp: list[float] = []

    def library() -> None:
        done = subprocess.run([program or "", db, log], check=True, capture_output=True, text=True).stdout.split()
        assert int(done[1]) == count
        cpp.append(float(done[0]))

    def frames() -> None:
        tables = zelk.read_log(log, database)
        assert sum(len(table.to_pandas()) for table in tables.values()) == count

    works = [lambda: zelk.read_log(log, database), frames] + ([library] if program else [])
    tables, pandas, *_ = best(5, *works)
    against = min(cpp) if cpp else None
    if against is not None:
        show("log to columns in C++", against, count, "frame")
    show("read_log", tables, count, "frame", against)
    if against is not None:
        show("log to columns in C++ (again)", against, count, "frame")
    show("read_log, and all to pandas", pandas, count, "frame", against)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--frames", type=int, default=2_000_000)
    parser.add_argument("--cpp", metavar="PROGRAM")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder)
        db = network.write_database(path / "bench.dbc")
        large = network.write_database(path / "large.dbc", 1000)
        load, = best(5, lambda: zelk.load(large))
        show("load", load, 1000, "message")
        one_by_one(zelk.load(db))
        arrays(zelk.load(db), options.frames)
        logs(db, network.write_log(path / "bench.log", options.frames), options.frames, options.cpp)


if __name__ == "__main__":
    main()
