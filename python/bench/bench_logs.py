"""Frames in arrays and logs to tables, beside NumPy by hand and the C++ library alone.

    build/python/environment/bin/python python/bench/bench_logs.py [--frames N] [--cpp PROGRAM]

prints the least time, and the least time of the processor in all threads, of several runs in which what is
compared takes turns. PROGRAM is columns.cpp, which its head tells how to build; without it its line is left out.
"""

from __future__ import annotations

import argparse
import pathlib
import resource
import subprocess
import tempfile
import time
from collections.abc import Callable
from dataclasses import dataclass

import network
import numpy as np

import zelk

ID = 0x100


@dataclass
class Cost:
    """The least of several runs, in seconds."""

    wall: float = float("inf")
    processor: float = float("inf")


def best(turns: int, *works: Callable[[], object]) -> list[Cost]:
    costs = [Cost() for _ in works]
    for _ in range(turns):
        for cost, work in zip(costs, works):
            begin, busy = time.perf_counter(), processor_time()
            work()
            cost.processor = min(cost.processor, processor_time() - busy)
            cost.wall = min(cost.wall, time.perf_counter() - begin)
    return costs


def processor_time() -> float:
    """Of this process, and of the programs that it has run."""
    usages = (resource.getrusage(who) for who in (resource.RUSAGE_SELF, resource.RUSAGE_CHILDREN))
    return sum(usage.ru_utime + usage.ru_stime for usage in usages)


def show(what: str, cost: Cost, count: int) -> None:
    print(f"{what:36} {cost.wall / count * 1e9:8.1f} ns/frame {cost.processor / count * 1e9:8.1f} ns/frame of the processor")


def arrays_by_hand(data: np.ndarray, signals: list[network.Signal]) -> dict[str, np.ndarray]:
    """All signals of the frames of one message as float64, as decode_frames gives them.

    The data must have 8 bytes for each frame, in one piece: nothing here finds a short frame.
    """
    bits = data.reshape(-1).view("<u8")
    return {s.name: (bits >> np.uint64(s.start) & np.uint64((1 << s.length) - 1)) * s.factor + s.offset for s in signals}


def mixed_by_hand(ids: np.ndarray, data: np.ndarray, times: np.ndarray) -> dict[int, dict[str, np.ndarray]]:
    """The frames of all messages: sorted by their identifiers once, and then by hand for each message."""
    order = np.argsort(ids.astype(np.uint16), kind="stable")  # the quickest sort that NumPy has for these
    data, times = data[order], times[order]
    ends = np.cumsum(np.bincount(ids - ID, minlength=network.MESSAGES))
    return {
        i: {"time": times[end - size : end], **arrays_by_hand(data[end - size : end], network.signals_of(i))}
        for i, (end, size) in enumerate(zip(ends, np.diff(ends, prepend=0)))
    }


def all_to_numpy(tables: zelk.Tables) -> dict[str, dict[str, np.ndarray]]:
    return {name: table.to_numpy() for name, table in tables.items()}


def check_same(got: dict[str, np.ndarray], wanted: dict[str, np.ndarray]) -> None:
    assert all(np.array_equal(got[name], values) for name, values in wanted.items())


def arrays(db: zelk.Database, count: int) -> None:
    rng = np.random.default_rng(1)
    data = rng.integers(0, 256, (count, 8), np.uint8)
    times = np.arange(count) * 500_000
    one = np.full(count, ID, np.uint32)
    mixed = rng.integers(ID, ID + network.MESSAGES, count).astype(np.uint32)
    signals = network.signals_of(0)
    check_same(zelk.decode_frames(db, one, 8, data, times)["Message0"].to_numpy(), arrays_by_hand(data, signals))
    tables = zelk.decode_frames(db, mixed, 8, data, times)
    for i, wanted in mixed_by_hand(mixed, data, times).items():
        check_same(tables[f"Message{i}"].to_numpy(), wanted)
    del tables
    works = {
        "one message by hand with NumPy": lambda: arrays_by_hand(data, signals),
        "decode_frames": lambda: zelk.decode_frames(db, one, 8, data, times),
        "decode_frames, and to NumPy": lambda: all_to_numpy(zelk.decode_frames(db, one, 8, data, times)),
        "  by one thread": lambda: all_to_numpy(zelk.decode_frames(db, one, 8, data, times, threads=1)),
        "50 messages by hand with NumPy": lambda: mixed_by_hand(mixed, data, times),
        "decode_frames, and to NumPy (50)": lambda: all_to_numpy(zelk.decode_frames(db, mixed, 8, data, times)),
        "  by one thread (50)": lambda: all_to_numpy(zelk.decode_frames(db, mixed, 8, data, times, threads=1)),
    }
    for what, cost in zip(works, best(7, *works.values())):
        show(what, cost, count)


def logs(db: pathlib.Path, log: pathlib.Path, count: int, program: str | None) -> None:
    database = zelk.load(db)

    def library() -> None:
        subprocess.run([program or "", db, log], check=True, capture_output=True)

    def batches() -> None:
        assert sum(len(table) for table in zelk.read_batches(log, database)) == count

    def frames() -> None:
        tables = zelk.read_log(log, database)
        assert sum(len(table.to_pandas()) for table in tables.values()) == count

    works = {"read_batches": batches, "read_log": lambda: zelk.read_log(log, database), "read_log, and to pandas": frames}
    if program:
        works = {"C++, which drops the batches": library, **works}
    for what, cost in zip(works, best(7, *works.values())):
        show(what, cost, count)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--frames", type=int, default=2_000_000)
    parser.add_argument("--cpp", metavar="PROGRAM")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder)
        db = network.write_database(path / "bench.dbc")
        arrays(zelk.load(db), options.frames)
        logs(db, network.write_log(path / "bench.log", options.frames), options.frames, options.cpp)


if __name__ == "__main__":
    main()
