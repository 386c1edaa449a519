"""Frames to values and back, compared with a reading bit by bit."""

import math
import random
import struct

import numpy as np
import pytest
import reference

import zelk


def load(tmp_path, messages):
    file = tmp_path / "random.dbc"
    file.write_text(reference.dbc_of(messages))
    return zelk.load(file)


def same(got, wanted):
    """Equal to the last bit, and of the same type."""
    if isinstance(wanted, float):
        return isinstance(got, float) and struct.pack("d", got) == struct.pack("d", wanted)
    return got == wanted and isinstance(got, type(wanted))


@pytest.mark.parametrize("seed", range(12))
def test_decodes_as_bit_by_bit(tmp_path, seed):
    rng = random.Random(seed)
    messages = [reference.random_message(rng, number) for number in range(40)]
    db = load(tmp_path, messages)
    for message in messages:
        for fill in (b"\0", b"\xff", None, None, None):
            data = fill * message.length if fill else rng.randbytes(message.length)
            wanted = message.decode(data)
            got = db.decode_message(message.id, data)
            assert got.keys() == wanted.keys()
            for name, value in wanted.items():
                nan = isinstance(value, float) and math.isnan(value) and math.isnan(got[name])
                assert nan or same(got[name], value), (message, name, data.hex())
            raw = db.messages[message.name].decode(data, decode_choices=False, scaling=False)
            for signal in message.signals:
                if signal.name in raw and not signal.ieee:
                    assert raw[signal.name] == signal.raw(data)


@pytest.mark.parametrize("seed", range(12))
def test_encodes_what_it_decodes(tmp_path, seed):
    rng = random.Random(seed)
    messages = [reference.random_message(rng, number, disjoint=True) for number in range(40)]
    db = load(tmp_path, messages)
    for message in messages:
        data = rng.randbytes(message.length)
        raw = db.decode_message(message.id, data, decode_choices=False, scaling=False)
        frame = db.encode_message(message.id, raw, scaling=False)
        for signal in message.signals:
            if signal.name in raw:
                is_nan = isinstance(raw[signal.name], float) and math.isnan(raw[signal.name])
                assert is_nan or signal.raw(frame) == signal.raw(data), (signal, data.hex())
        short = {s.name for s in message.signals if s.length > 48 or s.ieee}
        values = {k: v for k, v in db.decode_message(message.id, data).items() if k not in short}
        again = db.decode_message(message.id, db.encode_message(message.id, values, strict=False))
        assert values.items() <= again.items()


DBC = """VERSION ""

NS_ :

BS_:

BU_: A

BO_ 1 Plain: 8 A
 SG_ Speed : 0|16@1+ (0.5,0) [0|250] "km/h" A
 SG_ Gear : 16|3@1- (1,0) [0|0] "" A
 SG_ Large : 24|40@1+ (1,0) [0|0] "" A

BO_ 2 Selected: 2 A
 SG_ Which M : 0|8@1+ (1,0) [0|0] "" A
 SG_ First m0 : 8|4@1+ (1,0) [0|0] "" A
 SG_ Second m1 : 8|8@1+ (1,0) [0|0] "" A

BO_ 3 Number: 4 A
 SG_ Single : 0|32@1- (1,0) [0|0] "" A

BO_ 4 Shared: 1 A
 SG_ Low : 0|5@1+ (1,0) [0|0] "" A
 SG_ High : 4|4@1+ (1,0) [0|0] "" A

VAL_ 1 Gear -1 "Reverse" 0 "Neutral" 1 "Drive" ;
SIG_VALTYPE_ 3 Single : 1;
"""
PLAIN = {"Speed": 100, "Gear": "Drive", "Large": 1}


@pytest.fixture
def db(tmp_path):
    file = tmp_path / "small.dbc"
    file.write_text(DBC)
    return zelk.load(file)


def test_choices_know_their_value(db):
    value = db.decode_message("Plain", bytes([0, 0, 7, 0, 0, 0, 0, 0]))["Gear"]
    assert (value, value.value, int(value)) == ("Reverse", -1, -1)
    assert db.encode_message(1, PLAIN | {"Gear": value})[2] == 7


@pytest.mark.parametrize(
    ("message", "values", "word"),
    [
        (1, PLAIN | {"Speed": 251}, "out of range, 0 to 250 km/h"),
        (1, PLAIN | {"Speed": math.nan}, "not a number"),
        (1, PLAIN | {"Gear": 4}, "does not fit into 3 bits"),
        (1, PLAIN | {"Gear": "Drives"}, "did you mean 'Drive'"),
        (1, PLAIN | {"Large": 1 << 40}, "does not fit"),
        (1, PLAIN | {"Large": 10**400}, "too large"),
        (1, {"Speed": 1}, "no value for 'Gear', 'Large'"),
        (2, {"Which": 1, "Second": 1, "First": 1}, "'First' would not be in the frame"),
        (3, {"Single": 1e39}, "beyond what 32 bits can hold"),
        (4, {"Low": 31, "High": 0}, "shares bits"),
    ],
)
def test_refuses_values_that_the_frame_cannot_hold(db, message, values, word):
    with pytest.raises(zelk.EncodeError, match=word):
        db.encode_message(message, values)


def test_takes_the_nearest_where_that_is_wanted(db):
    frame = db.encode_message(1, {"Speed": 1e9, "Gear": -100, "Unknown": 1}, strict=False)
    assert frame == bytes([0xFF, 0xFF, 4, 0, 0, 0, 0, 0])
    assert db.encode_message(2, {"Which": 0, "First": 0}, padding=True) == bytes([0, 0xF0])


@pytest.mark.parametrize(
    ("call", "error", "word"),
    [
        (lambda db: db.decode_message(1, b"1234567"), zelk.DecodeError, "7 bytes of data"),
        (lambda db: db.decode_message(9, b""), KeyError, "identifier 0x9"),
        (lambda db: db.decode_message("Pain", b""), KeyError, "did you mean 'Plain'"),
        (lambda db: db.decode_message(-1, b""), KeyError, "identifier -1"),
        (lambda db: db.decode_message(None, b""), ValueError, "not by None"),
        (lambda db: db.decode_message(1, "12345678"), ValueError, "must be bytes"),
        (lambda db: db.decode_message(1, np.zeros(8)), ValueError, "row of bytes"),
        (lambda db: db.decode_message(1, np.zeros(16, np.uint8)[::2]), ValueError, "must be bytes"),
        (lambda db: db.decode_message(1, np.zeros((2, 8), np.uint8)), ValueError, "row of bytes"),
        (lambda db: db.encode_message(1, [1]), ValueError, "dictionary"),
        (lambda db: db.encode_message(1, PLAIN | {"Speed": None}), ValueError, "neither a number"),
        (lambda db: db.encode_message(1, PLAIN | {"Sped": 1}), KeyError, "no signal 'Sped'"),
        (lambda db: db.encode_message(1, {1: 1}), KeyError, "no signal 1"),
        (lambda db: db.encode_message(1, PLAIN | {"Speed": "\ud800"}), ValueError, "surrogates"),
    ],
)
def test_tells_what_is_wrong_with_arguments(db, call, error, word):
    with pytest.raises(error, match=word):
        call(db)


def test_short_frames_have_the_signals_that_they_hold(db):
    assert db.decode_message(1, memoryview(b"\1\0"), allow_truncated=True) == {"Speed": 0.5}
    assert db.decode_message(1, bytearray(), allow_truncated=True) == {}
