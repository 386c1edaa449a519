"""The database and the frames that the benchmarks work on."""

from __future__ import annotations

import pathlib
import random
from dataclasses import dataclass

MESSAGES = 50
SIGNALS = 8


@dataclass
class Signal:
    """Little endian, unsigned, of 8 bits: what hand-written code is quickest with."""

    name: str
    start: int
    length: int
    factor: float
    offset: float


def signals_of(message: int) -> list[Signal]:
    return [Signal(f"Signal{i}", 8 * i, 8, 0.5 + i, -10.0 * message) for i in range(SIGNALS)]


def write_database(path: pathlib.Path, messages: int = MESSAGES) -> pathlib.Path:
    lines = ['VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n']
    for message in range(messages):
        lines.append(f"\nBO_ {0x100 + message} Message{message}: 8 A")
        lines += [
            f' SG_ {s.name} : {s.start}|{s.length}@1+ ({s.factor},{s.offset}) [0|0] "km/h" A' for s in signals_of(message)
        ]
    path.write_text("\n".join(lines) + "\n")
    return path


def write_log(path: pathlib.Path, frames: int) -> pathlib.Path:
    rng = random.Random(1)
    with path.open("w") as log:
        for i in range(frames):
            log.write(f"({1700000000 + i * 0.0005:.6f}) can0 {0x100 + i % MESSAGES:03X}#{rng.randbytes(8).hex().upper()}\n")
    return path
