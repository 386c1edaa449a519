"""Databases made at random, and what their frames mean, bit by bit in plain Python."""

from __future__ import annotations

import random
import struct
from dataclasses import dataclass, field

WHOLE = [(1, 0), (2, 0), (-3, 7), (1, -40), (1000000, -5)]
BROKEN = [(0.5, 0), (0.1, -273.15), (-0.25, 1.5), (1e-7, 0), (3.7e5, -1e9)]


@dataclass
class Signal:
    name: str
    start: int
    length: int
    is_big_endian: bool = False
    is_signed: bool = False
    factor: float = 1
    offset: float = 0
    ieee: int = 0  # 1: 32 bits, 2: 64 bits
    mux: str = ""  # "M", "m3" or ""
    choices: dict[int, str] = field(default_factory=dict)

    def bits(self) -> list[int]:
        """Numbers (byte * 8 + bit) of its bits, the least significant one first."""
        if not self.is_big_endian:
            return list(range(self.start, self.start + self.length))
        numbers = [self.start]
        while len(numbers) < self.length:
            at = numbers[-1]
            numbers.append(at + 15 if at % 8 == 0 else at - 1)
        return numbers[::-1]

    def raw(self, data: bytes) -> int:
        value = sum((data[n // 8] >> n % 8 & 1) << i for i, n in enumerate(self.bits()))
        return value - (1 << self.length) if self.is_signed and value >> (self.length - 1) else value

    def value(self, data: bytes) -> int | float | str:
        raw = self.raw(data)
        if self.ieee:
            bits = raw & ((1 << self.length) - 1)
            number = struct.unpack("<f" if self.ieee == 1 else "<d", bits.to_bytes(self.length // 8, "little"))[0]
            return number * self.factor + self.offset
        if raw in self.choices:
            return self.choices[raw]
        if float(self.factor).is_integer() and float(self.offset).is_integer():
            return raw * int(self.factor) + int(self.offset)
        return raw * self.factor + self.offset

    def line(self) -> str:
        order, sign = ("0" if self.is_big_endian else "1"), ("-" if self.is_signed else "+")
        mux = f" {self.mux}" if self.mux else ""
        place = f"{self.start}|{self.length}@{order}{sign}"
        return f' SG_ {self.name}{mux} : {place} ({self.factor!r},{self.offset!r}) [0|0] "" A\n'


@dataclass
class Message:
    name: str
    id: int
    length: int
    signals: list[Signal]

    def decode(self, data: bytes) -> dict[str, int | float | str]:
        selector = next((s.raw(data) for s in self.signals if s.mux == "M"), None)
        return {s.name: s.value(data) for s in self.signals if s.mux in ("", "M") or int(s.mux[1:]) == selector}


def random_signal(rng: random.Random, name: str, size: int) -> Signal:
    """A signal anywhere in a frame of `size` bytes."""
    ieee = rng.choice([0, 0, 0, 0, 1, 2]) if size >= 8 else 0
    length = [rng.randint(1, min(64, size * 8)), 32, 64][ieee]
    start = rng.randint(0, size * 8 - length)
    factor, offset = rng.choice(WHOLE + BROKEN)
    signal = Signal(name, start, length, rng.random() < 0.5, rng.random() < 0.5, factor, offset, ieee)
    if signal.is_big_endian:  # the same bits, counted as they are transmitted
        signal.start = start // 8 * 8 + 7 - start % 8
    if not ieee and length <= 8 and rng.random() < 0.5:
        low = -(1 << length - 1) if signal.is_signed else 0
        signal.choices = {low + i: f"text {low + i}" for i in range(min(3, 1 << length))}
    return signal


def random_message(rng: random.Random, number: int, disjoint: bool = False) -> Message:
    size = rng.choice([1, 2, 5, 8, 8, 8, 12, 24, 64])
    message = Message(f"Message{number}", number, size, [])
    is_multiplexed = size > 2 and rng.random() < 0.3
    taken: set[int] = set()
    for i in range(rng.randint(1, 12)):
        signal = random_signal(rng, f"Signal{i}", size)
        if is_multiplexed and i == 0:
            signal = Signal("Selector", rng.randint(0, 5), 2, mux="M")
        elif is_multiplexed and rng.random() < 0.7:
            signal.mux = f"m{rng.randint(0, 3)}"
        if disjoint and taken & set(signal.bits()):
            continue
        taken |= set(signal.bits())
        message.signals.append(signal)
    return message


def dbc_of(messages: list[Message]) -> str:
    text = 'VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n\n'
    for m in messages:
        text += f"BO_ {m.id} {m.name}: {m.length} A\n" + "".join(s.line() for s in m.signals) + "\n"
    for m in messages:
        for s in m.signals:
            if s.choices:
                text += f"VAL_ {m.id} {s.name} " + " ".join(f'{k} "{v}"' for k, v in s.choices.items()) + " ;\n"
    for m in messages:
        for s in m.signals:
            if s.ieee:
                text += f"SIG_VALTYPE_ {m.id} {s.name} : {s.ieee};\n"
    return text
