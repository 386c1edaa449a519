"""Logs and frames to tables, compared with a reading bit by bit, and what careless hosts do."""

import contextlib
import datetime
import gzip
import math
import multiprocessing
import pathlib
import pickle
import random
import struct
import threading
import types

import duckdb
import hypothesis.strategies as st
import numpy as np
import pandas
import polars
import pyarrow
import pytest
import reference
from hypothesis import given, settings

import zelk

ROOT = pathlib.Path(__file__).parents[2]
LOG = ROOT / "examples" / "drive.log"
DBC = ROOT / "examples" / "powertrain.dbc"


def expected(signal, message, data, is_raw):
    """None when the signal is absent: a shorter frame, or another multiplexor."""
    if max(signal.bits()) // 8 >= len(data):
        return None
    if signal.mux.startswith("m"):
        selector = next((s for s in message.signals if s.mux == "M"), None)
        if selector is None or max(selector.bits()) // 8 >= len(data) or selector.raw(data) != int(signal.mux[1:]):
            return None
    raw = signal.raw(data)
    if signal.ieee:
        bits = (raw & ((1 << signal.length) - 1)).to_bytes(signal.length // 8, "little")
        number = struct.unpack("<f" if signal.ieee == 1 else "<d", bits)[0]
        return number if is_raw else number * signal.factor + signal.offset
    return raw if is_raw else float(raw) * signal.factor + signal.offset


def is_same(got, wanted):
    if wanted is None or got is None:
        return got is wanted
    both_nan = isinstance(wanted, float) and math.isnan(wanted) and math.isnan(got)
    return both_nan or got == wanted and math.copysign(1, got) == math.copysign(1, wanted)


def random_frames(rng, messages, count):
    """Messages with their data, some of it too short."""
    chosen = [rng.choice(messages) for _ in range(count)]
    cut = [rng.choice([m.length] * 4 + [rng.randint(0, m.length)]) for m in chosen]
    lengths = [next(n for n in (0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 20, 24, 32, 48, 64) if n >= length) for length in cut]
    return [(m, rng.randbytes(length)) for m, length in zip(chosen, lengths)]


def log_text(frames):
    lines = []
    for i, (message, data) in enumerate(frames):
        mark = "##0" if len(data) > 8 else "#"
        lines.append(f"({1700000000 + i / 1000:.6f}) can{i % 3} {message.id:03X}{mark}{data.hex().upper()}\n")
    return "".join(lines)


@pytest.mark.parametrize("seed", range(6))
@pytest.mark.parametrize("values", ["physical", "raw"])
def test_columns_are_what_the_bits_say(tmp_path, seed, values):
    rng = random.Random(seed)
    messages = [reference.random_message(rng, number) for number in range(12)]
    (tmp_path / "random.dbc").write_text(reference.dbc_of(messages))
    db = zelk.load(tmp_path / "random.dbc")
    frames = random_frames(rng, messages, 600)
    (tmp_path / "random.log").write_text(log_text(frames))
    keywords = {"values": values, "batch_rows": rng.choice([1, 7, 64, 1000])}
    objects = [
        types.SimpleNamespace(timestamp=1700000000 + i / 1000, arbitration_id=m.id, data=data, channel=f"can{i % 3}")
        for i, (m, data) in enumerate(frames)
    ]
    ids = np.array([m.id for m, _ in frames])
    times = np.arange(len(frames)) / 1000 + 1700000000
    channels = [f"can{i % 3}" for i in range(len(frames))]
    ways = {
        "log": zelk.read_log(tmp_path / "random.log", db, threads=rng.choice([1, 3]), **keywords),
        "objects": zelk.decode_messages(iter(objects), db, **keywords),
        "arrays": zelk.decode_frames(db, ids, None, [data for _, data in frames], times, channels, **keywords),
    }
    for message in messages:
        rows = [(i, data) for i, (m, data) in enumerate(frames) if m is message]
        for way, tables in ways.items():
            if not rows:
                assert message.name not in tables
                continue
            columns = pyarrow.table(tables[message.name]).to_pydict()
            assert columns["time"] == [1700000000000000000 + i * 1000000 for i, _ in rows], way
            assert columns["channel"] == [f"can{i % 3}" for i, _ in rows], way
            arrays = tables[message.name].to_numpy()
            for signal in message.signals:
                wanted = [expected(signal, message, data, values == "raw") for _, data in rows]
                got = columns[signal.name]
                assert len(got) == len(wanted) and all(map(is_same, got, wanted)), (way, signal)
                array = arrays[signal.name]
                with_nan = np.array([math.nan if value is None else value for value in wanted], float)
                with np.errstate(invalid="ignore"):  # NaN that signals
                    assert np.array_equal(np.ma.filled(array.astype(float), math.nan), with_nan, equal_nan=True)


def table(**keywords):
    return zelk.read_log(LOG, DBC, **keywords)["EngineStatus"]


def address(array):
    return array.__array_interface__["data"][0]


def test_every_engine_takes_the_memory_itself():
    status = table()
    speed = status["EngineSpeed"]
    arrow = pyarrow.table(status)
    assert arrow.column("EngineSpeed").chunk(0).buffers()[1].address == address(speed)
    assert pyarrow.table(status).column("EngineSpeed").chunk(0).buffers()[1].address == address(speed)  # again
    assert arrow.schema.field("EngineSpeed").metadata == {b"unit": b"rpm"}
    assert address(polars.DataFrame(status)["EngineSpeed"].to_numpy()) == address(speed)
    assert address(status.to_pandas()["EngineSpeed"].to_numpy()) == address(speed)
    assert not speed.flags.writeable
    maximum = speed.max()
    del status, arrow
    assert speed.max() == maximum  # the array keeps the memory

    status = table(batch_rows=10)
    assert duckdb.sql("select max(EngineSpeed), count(*) from status").fetchall() == [(maximum, 63)]
    assert pandas.DataFrame.from_arrow(status)["EngineSpeed"].max() == maximum
    assert polars.DataFrame(status[["EngineSpeed", "time"]]).columns == ["EngineSpeed", "time"]
    assert status.to_pandas()["EngineSpeed"].max() == maximum and len(pyarrow.table(status).to_batches()) == 7


def test_texts_and_absent_values(tmp_path):
    file = tmp_path / "a.dbc"
    file.write_text(
        'VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n\nBO_ 1 M: 2 A\n SG_ S : 0|8@1+ (1,0) [0|0] "" A\n'
        ' SG_ T : 8|8@1- (1,0) [0|0] "" A\n\nVAL_ 1 S 1 "one" 2 "<b>" ;\n'
    )
    data = [b"\1\5", b"\2", b"\3\xff", b""]
    texts = zelk.decode_frames(file, [1] * 4, None, data, values="texts", raw_beside=True, batch_rows=2)["M"]
    assert list(texts["S"]) == ["one", "<b>", None, None]
    assert texts.to_pandas()["S"].tolist()[:2] == ["one", "<b>"] and texts.to_pandas()["S"].isna().sum() == 2
    assert texts["S.raw"].tolist() == [1, 2, 3, None] and texts["time"].mask.all()
    assert texts.to_pandas()["S.raw"].tolist()[:3] == [1, 2, 3] and texts.to_pandas()["time"].isna().all()
    assert "<b>" not in texts._repr_html_() and "&lt;b&gt;" in texts._repr_html_()
    raw = zelk.decode_frames(file, [1] * 4, None, data, values="raw")["M"]
    assert raw["T"].dtype == np.int8 and raw["T"].tolist() == [5, None, -1, None]


def test_large_batches_are_the_small_ones():
    rng = np.random.default_rng(1)
    count = 60_000  # more than a page of the largest size
    data = rng.integers(0, 256, (count, 8), np.uint8)
    frames = ([0xC8] * count, rng.integers(0, 9, count), data, rng.random(count), rng.choice(["a", "b"], count))
    for values in ("physical", "raw", "texts"):
        large, small = (
            pyarrow.table(zelk.decode_frames(DBC, *frames, values=values, batch_rows=rows)["EngineStatus"]) for rows in (count, 999)
        )
        large.validate(full=True)
        assert large.equals(small.unify_dictionaries().combine_chunks()) or large.to_pydict() == small.to_pydict()
        assert large["EngineSpeed"].null_count > 0 and large["channel"].chunk(0).dictionary.to_pylist()


@pytest.mark.parametrize("shape", ["even", "late", "once"])
def test_any_number_of_threads_gives_the_same(shape):
    rng = np.random.default_rng(7)
    count = 100_001  # in 25 blocks
    at = np.arange(count)
    ids = {
        "even": rng.choice([0xC8, 0x123, 0x7FF], count),
        "late": np.where(at < 60_000, rng.choice([0xC8, 0x7FF], count, p=[0.001, 0.999]), 0xC8),  # more than expected
        "once": np.where(at == 70_000, 0xC8, 0x123),
    }[shape]
    lengths = np.where(at < 50_000, 8, rng.integers(0, 9, count))  # the first null stands behind many values
    frames = (ids, lengths, rng.integers(0, 256, (count, 8), np.uint8), at, rng.choice(["a", "b"], count))
    for values in ("physical", "texts"):
        wanted, *others = (
            zelk.decode_frames(DBC, *frames, values=values, **keywords)
            for keywords in ({"batch_rows": 999, "threads": 1}, {"threads": 1}, {"threads": 2}, {"threads": 7}, {})
        )
        rows = wanted["EngineStatus"].to_pandas()
        assert rows["time"].astype("int64").tolist() == at[ids == 0xC8].tolist()
        for tables in others:
            pyarrow.table(tables["EngineStatus"]).validate(full=True)
            assert tables["EngineStatus"].to_pandas().equals(rows)
            assert tables.statistics == wanted.statistics
        assert len({pyarrow.table(tables["EngineStatus"])["time"].num_chunks for tables in others}) == 1


START = datetime.datetime(2023, 11, 14, 22, 13, 25)  # 1700000005
ZONE = datetime.timezone(datetime.timedelta(hours=2))
STARTS = {
    "seconds": 1700000005,
    "float": 1700000005.0,
    "text": "1700000005",
    "date": "2023-11-14T22:13:25Z",
    "naive": START,
    "aware": START.replace(hour=0, day=15, tzinfo=ZONE),
    "numpy": np.datetime64(START),
    "pandas": pandas.Timestamp(START),
}


@pytest.mark.parametrize("start", STARTS.values(), ids=STARTS)
def test_times_of_every_kind(start):
    times = table(start=start, stop=1700000006)["time"]
    assert len(times) == 5 and times[0] == 1700000005001225000


def test_exact_times():
    first = table()["time"]
    point = pandas.Timestamp(first[3]) + pandas.Timedelta(1, "ns")
    assert table(start=point)["time"][0] == first[4]
    assert first[3] == 1700000000601220000 and table(start=1700000000.60122)["time"][0] == first[3]


ARRAYS = {
    "rows": (dict(data=np.zeros((2, 8), np.uint8)), "data must have shape (3, width)"),
    "half a thread": (dict(threads=1.5), "threads must be a number from 0"),
    "too long": (dict(lengths=9), "lengths[0] is 9, and data has 8 bytes there"),
    "negative": (dict(lengths=[1, -1, 1]), "lengths[1] is -1"),
    "lengths": (dict(lengths=[1, 2]), "lengths must have shape (3,)"),
    "floats as ids": (dict(ids=[1.5, 1, 1]), "ids must be integers"),
    "huge id": (dict(ids=[1, 1 << 40, 1]), "ids[1] is 1099511627776"),
    "id of 30 bits": (dict(ids=[1, 1 << 30, 1]), "must be from 0 to 0x1fffffff"),
    "no id": (dict(ids=[1, None, 1]), "ids must be integers"),
    "standard id of 29 bits": (dict(ids=[1, 0x800, 1], extended=False), "ids[1] is 0x800"),
    "floats as data": (dict(data=np.zeros((3, 8))), "data must be bytes"),
    "bytes of 9 bits": (dict(data=np.full((3, 8), 256)), "data.flat[0] is 256"),
    "ragged": (dict(data=[[1], [1, 2], [3]]), "data is no array of bytes"),
    "short buffer": (dict(data=bytes(23)), "data has 23 bytes, and lengths 24 in all"),
    "offset behind": (dict(data=bytes(24), offsets=[0, 8, 17]), "frame 2 has 8 bytes from 17 on"),
    "offset in front": (dict(data=bytes(24), offsets=[0, -1, 8]), "frame 1 has 8 bytes from -1 on"),
    "offset of 64 bits": (dict(data=bytes(24), offsets=[0, 2**63 - 1, 8]), "frame 1 has 8 bytes"),
    "few times": (dict(times=[1.0]), "times must have shape (3,)"),
    "texts as times": (dict(times=["a", "b", "c"]), "times must be ns as integers"),
    "endless times": (dict(times=[0.0, math.inf, 0.0]), "times[1] is inf"),
    "few channels": (dict(channels=["a"]), "channels must have shape (3,)"),
    "no frame": (dict(ids=[[1, 2, 3]]), "ids must have one dimension"),
    "no database": (dict(db=None), "db must be"),
    "an empty choice": (dict(messages=[]), "messages is empty"),
}


@pytest.mark.parametrize("changed, text", ARRAYS.values(), ids=ARRAYS)
def test_refuses_arrays(changed, text):
    arguments = dict(db=DBC, ids=[0xC8, 2, 3], lengths=8, data=np.zeros((3, 8), np.uint8))
    with pytest.raises(ValueError) as caught:
        zelk.decode_frames(**{**arguments, **changed})
    assert text in str(caught.value)


def test_takes_arrays_of_many_kinds():
    data = np.arange(48, dtype=np.uint8).reshape(3, 16)
    wanted = zelk.decode_frames(DBC, [0xC8] * 3, 8, data[:, :8].copy())["EngineStatus"]["EngineSpeed"].tolist()
    buffer = data[:, :8].tobytes()
    ids = np.full(3, 0xC8, np.int64)
    for way in (data[:, :8], data[:, :8].astype(np.int64).tolist(), np.asfortranarray(data[:, :8]), buffer, [buffer[:8], buffer[8:16], buffer[16:]]):
        got = zelk.decode_frames(DBC, ids, 8, way, [math.nan, 1.5, -0.25])["EngineStatus"]
        assert got["EngineSpeed"].tolist() == wanted
        assert got["time"].tolist() == [None, 1500000000, -250000000]
    overlapping = zelk.decode_frames(DBC, ids, 8, data.reshape(-1), offsets=[0, 16, 32], channels=[1, 2, 1])
    assert overlapping["EngineStatus"]["EngineSpeed"].tolist() == wanted
    assert list(overlapping["EngineStatus"]["channel"]) == ["1", "2", "1"]
    assert len(zelk.decode_frames(DBC, [], None, np.zeros((0, 8), np.uint8))) == 0
    long_id = zelk.decode_frames(DBC, [0x18FEF100, 0x18FEF100 | 1 << 31], 8, data[:2, :8]).statistics
    assert long_id.unknown_ids == {0x18FEF100 | 1 << 31: 2}


OBJECTS = {
    "a number": (1, "message 1: 1 has no attribute 'arbitration_id'"),
    "negative id": (dict(arbitration_id=-1), "message 1: the identifier"),
    "huge id": (dict(arbitration_id=1 << 70), "message 1: the identifier"),
    "standard id of 29 bits": (dict(arbitration_id=0x800, is_extended_id=False), "with 11 bits"),
    "a name as id": (dict(arbitration_id="x"), "message 1: the identifier"),
    "text as data": (dict(data="abc"), "message 1: the data must be bytes"),
    "numbers beyond bytes": (dict(data=[1, 300]), "message 1: the data must be bytes"),
    "much data": (dict(data=bytes(70000)), "message 1: a frame cannot have 70000 bytes"),
    "text as time": (dict(timestamp="x"), "message 1: the timestamp"),
    "endless time": (dict(timestamp=1e300), "message 1: the timestamp"),
}


def frame(**changed):
    return types.SimpleNamespace(**{"arbitration_id": 0xC8, "data": bytes(8), "timestamp": 1.0, **changed})


@pytest.mark.parametrize("bad, text", OBJECTS.values(), ids=OBJECTS)
def test_refuses_objects(bad, text):
    with pytest.raises(ValueError) as caught:
        zelk.decode_messages([frame(), bad if isinstance(bad, int) else frame(**bad)], DBC)
    assert text in str(caught.value)


def test_objects_that_fail():
    def broken():
        yield frame()
        raise RuntimeError("broken")

    with pytest.raises(RuntimeError, match="broken"):
        zelk.decode_messages(broken(), DBC)
    with pytest.raises(ValueError, match="iterable"):
        zelk.decode_messages("abc", DBC)
    others = [frame(is_remote_frame=True), frame(is_error_frame=True), frame(data=[0] * 8, timestamp=None)]
    tables = zelk.decode_messages(others, DBC)
    counts = tables.statistics
    assert (counts.remote, counts.errors, counts.decoded) == (1, 1, 1)
    assert tables["EngineStatus"]["time"].tolist() == [None]


def test_wrong_arguments(tmp_path):
    class Unreadable:
        pass

    for arguments, error in [
        (dict(paths=[]), ValueError),
        (dict(paths=tmp_path), IsADirectoryError),
        (dict(paths=tmp_path / "absent.log"), FileNotFoundError),
        (dict(paths=[LOG, str(LOG.parent / ".." / "examples" / LOG.name)]), ValueError),
        (dict(paths=3), ValueError),
        (dict(db=[]), ValueError),
        (dict(db=Unreadable()), ValueError),
        (dict(db={"": DBC}), ValueError),
        (dict(messages="Absent"), KeyError),
        (dict(signals=["EngineStatus.Absent"]), KeyError),
        (dict(start="yesterday"), ValueError),
        (dict(stop=math.nan), ValueError),
        (dict(start=np.datetime64("NaT")), ValueError),
        (dict(values="texts?"), ValueError),
        (dict(times="sometimes"), ValueError),
        (dict(on_error="ignore"), ValueError),
        (dict(threads=-1), ValueError),
        (dict(batch_rows=0), ValueError),
        (dict(progress=3), ValueError),
    ]:
        with pytest.raises(error):
            zelk.read_log(**{"paths": LOG, "db": DBC, **arguments})
    with pytest.raises(KeyError, match="EngineSpeed"):
        table()["EngineSped"]
    with pytest.raises(ValueError, match="rows"):
        table()[3]


def test_chooses_messages_channels_and_databases():
    by_name = zelk.read_log(LOG, DBC, messages=["Engine*", "DoorStatus"] if "DoorStatus" in zelk.load(DBC).messages else "Engine*")
    assert "EngineStatus" in by_name and "WheelSpeeds" not in by_name
    assert zelk.read_log(LOG, DBC, messages="EngineExhaust")["EngineExhaust"].shape[0] == 0  # asked for by name
    assert table(signals="EngineSpeed").columns == ["time", "channel", "EngineSpeed"]
    db = zelk.load(DBC)
    assert len(zelk.read_log(LOG, {"can0": db})["EngineStatus"]) == 63 and len(zelk.read_log(LOG, {7: db})) == 0
    assert zelk.read_log(LOG, {None: [db, DBC]})["powertrain::EngineStatus"].database == "powertrain"


def test_a_log_that_breaks_off(tmp_path):
    broken = tmp_path / "broken.log.gz"
    broken.write_bytes(gzip.compress(LOG.read_bytes() * 50)[:-2000])
    with pytest.raises(zelk.LogError, match="broken.log.gz") as caught:
        zelk.read_log([broken, LOG], DBC)
    kept = caught.value.tables["EngineStatus"]
    assert 0 < len(kept) < 63 * 50 and caught.value.statistics.frames > len(kept)
    with pytest.warns(zelk.LogWarning, match="broken.log.gz"):
        both = zelk.read_log([broken, LOG], DBC, on_error="keep")
    assert len(both["EngineStatus"]) == len(kept) + 63 and len(both.statistics.problems) == 1
    with pytest.raises(zelk.LogError, match="not a log"):
        zelk.read_log(DBC, DBC)


def test_malformed_lines(tmp_path):
    log = tmp_path / "some.log"
    log.write_bytes(LOG.read_bytes() + b"what is this\n\xff\0\n" + LOG.read_bytes())
    statistics = zelk.read_log(log, DBC).statistics
    assert (statistics.malformed, statistics.frames) == (2, 2 * 269)
    assert [line.number for line in statistics.malformed_lines] == [270, 271]
    with pytest.raises(zelk.LogError, match='line 270: not a frame: "what is this"'):
        zelk.read_log(log, DBC, strict=True)


def test_batches_and_parts():
    with zelk.read_batches(LOG, DBC, "EngineStatus", batch_rows=20) as batches:
        assert batches.tables[0].columns == table().columns
        assert [len(each) for each in batches] == [20, 20, 20, 3]
        assert batches.statistics.frames == 269 and list(batches) == []
    size = LOG.stat().st_size
    cuts = [0, 1, 777, 5000, size, size + 9]
    parts = [
        each["time"].tolist()
        for part in zip(cuts, cuts[1:])
        for each in zelk.read_batches(LOG, DBC, "EngineStatus", part=part)
    ]
    assert sum(parts, []) == table()["time"].tolist()
    with pytest.raises(ValueError, match="part"):
        zelk.read_batches(LOG, DBC, part=(5, 3))
    next(zelk.read_batches(LOG, DBC))  # and the rest is left


def test_progress_and_interruption(tmp_path):
    log = tmp_path / "long.log"
    log.write_bytes(LOG.read_bytes() * 4000)

    def interrupt(path, read, size):
        assert path == str(log) and 0 <= read <= size == log.stat().st_size
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        zelk.read_log(log, DBC, progress=interrupt)
    assert threading.active_count() == 1


def test_databases_that_change_while_a_log_is_read(tmp_path):
    file = tmp_path / "gone.dbc"
    file.write_bytes(DBC.read_bytes())
    batches = zelk.read_batches(LOG, file, batch_rows=5)
    first = next(batches)
    file.unlink()
    rows = len(first) + sum(len(each) for each in batches)
    assert rows == 265
    status = table()
    results = []
    readers = [threading.Thread(target=lambda: results.append(zelk.read_log(LOG, DBC))) for _ in range(4)]
    readers += [threading.Thread(target=lambda: results.append({"EngineStatus": pyarrow.table(status)})) for _ in range(4)]
    for reader in readers:
        reader.start()
    for reader in readers:
        reader.join()
    assert [len(each["EngineStatus"]) for each in results] == [63] * 8


def rows_of(path):
    return len(zelk.read_log(path, DBC)["EngineStatus"])


@pytest.mark.parametrize("method", ["fork", "spawn"])
@pytest.mark.filterwarnings("ignore:.*fork.*:DeprecationWarning")
def test_in_other_processes(method):
    batches = zelk.read_batches(LOG, DBC, batch_rows=1)  # its threads wait for a place for their rows
    next(batches)
    with multiprocessing.get_context(method).Pool(2) as pool:
        assert pool.map(rows_of, [LOG] * 4) == [63] * 4
    with pytest.raises(TypeError, match="pyarrow"):
        pickle.dumps(table())


def test_draws():
    pytest.importorskip("matplotlib").use("Agg")
    axes = table().plot("EngineSpeed", "EngineTorque", linewidth=2)
    assert [axis.get_ylabel() for axis in axes] == ["rpm", "Nm"] and len(axes[0].lines[0].get_xdata()) == 63
    with pytest.raises(ValueError, match="channel has texts"):
        table().plot("channel")


ODD = st.one_of(
    st.none(), st.booleans(), st.integers(), st.floats(), st.text(max_size=5), st.binary(max_size=70),
    st.lists(st.one_of(st.integers(-5, 300), st.floats(), st.none(), st.binary(max_size=9)), max_size=6),
    st.builds(np.zeros, st.tuples(st.integers(0, 5), st.integers(0, 70)), st.sampled_from([np.uint8, np.int64, np.float32, object, bool])),
    st.builds(lambda n, kind: np.arange(n).astype(kind), st.integers(0, 6), st.sampled_from(["u1", "i8", "f8", "M8[ns]", "U3", "O", ">i4"])),
)
EXPECTED = (ValueError, KeyError, TypeError, OSError)


@settings(max_examples=300, deadline=None)
@given(ODD, ODD, ODD, ODD, ODD, ODD)
def test_odd_arrays_and_objects(ids, lengths, data, times, channels, offsets):
    for arguments in ((ids, lengths, data), (np.arange(5) + 200, 8, data)):
        with contextlib.suppress(EXPECTED):
            zelk.decode_frames(DBC, *arguments, times, channels, offsets=offsets)
    with contextlib.suppress(EXPECTED):
        zelk.decode_messages([frame(arbitration_id=ids, data=data, timestamp=times, channel=channels)], DBC)


@settings(max_examples=100, deadline=None)
@given(st.sampled_from(["messages", "signals", "start", "stop", "values", "batch_rows", "times", "relative", "threads", "progress", "part", "db"]), ODD)
def test_odd_arguments(name, value):
    with contextlib.suppress(EXPECTED):
        zelk.read_batches(**{"paths": LOG, "db": DBC, name: value}).close()
