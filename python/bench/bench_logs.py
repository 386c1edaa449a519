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


def arrays_by_hand(data: np.ndarray) -> dict[str, np.ndarray]:
    bits = data.reshape(-1).view("<u8")
    return {s.name: (bits >> np.uint64(s.start) & np.uint64((1 << s.length) - 1)) * s.factor + s.offset for s in SIGNALS}


SIGNALS = network.signals_of(0)


def arrays(db: zelk.Database, count: int) -> None:
    data = np.random.default_rng(1).integers(0, 256, (count, 8), np.uint8)
    ids = np.full(count, ID, np.uint32)
    wanted = arrays_by_hand(data)
    got = zelk.decode_frames(db, ids, 8, data)["Message0"].to_numpy()
    assert all(np.array_equal(got[name], values) for name, values in wanted.items())
    by_hand, tables, numpy_arrays = best(
        7,
        lambda: arrays_by_hand(data),
        lambda: zelk.decode_frames(db, ids, 8, data),
        lambda: zelk.decode_frames(db, ids, 8, data)["Message0"].to_numpy(),
    )
    show("one message by hand with NumPy", by_hand, count)
    show("decode_frames", tables, count)
    show("decode_frames, and to NumPy", numpy_arrays, count)


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
