"""Loading, and single frames to values and back, beside plain Python.

    build/python/environment/bin/python python/bench/bench_codec.py

prints the best of five runs of each, in nanoseconds for each call.
"""

import pathlib
import tempfile
import timeit

import zelk

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples" / "powertrain.dbc"
STATES = {0: "Stopped", 1: "Cranking", 2: "Idle", 3: "Running", 4: "Stopping", 5: "Start-stop halt"}


def decode_by_hand(data):
    """The eight signals of EngineStatus, as a program that knows the message would take them."""
    bits = int.from_bytes(data, "little")
    torque = bits >> 16 & 0xFFF
    limited = bits >> 28 & 1
    state = bits >> 29 & 7
    return {
        "EngineSpeed": (bits & 0xFFFF) * 0.25,
        "EngineTorque": (torque - (torque >> 11 << 12)) * 0.5,
        "EngineTorqueLimited": ("Off", "On")[limited],
        "EngineRunState": STATES.get(state, state),
        "CoolantTemperature": (bits >> 32 & 0xFF) - 40,
        "AcceleratorPedalPosition": (bits >> 40 & 0xFF) * 0.4,
        "EngineStatusCounter": bits >> 48 & 0xF,
        "EngineStatusChecksum": bits >> 56,
    }


def best(call, number):
    call()
    return min(timeit.repeat(call, number=number, repeat=5)) / number * 1e9


def large_database(folder):
    """A file of 2,000 messages with 8 signals each."""
    lines = ['VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n\n']
    for i in range(2000):
        lines.append(f"BO_ {i} Message{i}: 8 A\n")
        lines += [f' SG_ Signal{j} : {j * 8}|8@1+ (0.5,1) [0|100] "V" A\n' for j in range(8)]
    path = pathlib.Path(folder) / "large.dbc"
    path.write_text("".join(lines))
    return path


def main():
    db = zelk.load(EXAMPLE)
    message = db.messages["EngineStatus"]
    data = bytes.fromhex("8813640042ff0007")
    values = db.decode_message(message.frame_id, data)
    assert values == decode_by_hand(data) and db.encode_message("EngineStatus", values, strict=False) == data
    with tempfile.TemporaryDirectory() as folder:
        large = large_database(folder)
        rows = {
            "load 2,000 messages": best(lambda: zelk.load(large), 5),
            "decode 8 signals by identifier": best(lambda: db.decode_message(0x0C8, data), 100_000),
            "decode 8 signals by name": best(lambda: db.decode_message("EngineStatus", data), 100_000),
            "decode 8 signals of a message": best(lambda: message.decode(data), 100_000),
            "  by hand": best(lambda: decode_by_hand(data), 100_000),
            "encode 8 signals": best(lambda: db.encode_message(0x0C8, values, strict=False), 100_000),
            "  strict": best(lambda: db.encode_message(0x0C8, values | {"AcceleratorPedalPosition": 10}), 100_000),
        }
    for name, nanoseconds in rows.items():
        print(f"{name:<32} {nanoseconds:14,.0f} ns")


if __name__ == "__main__":
    main()
