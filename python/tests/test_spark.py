"""The data source of Spark as its workers use it, each object passed on as they do it, but without Spark."""

import gzip
import operator
import pickle
import random
from datetime import datetime, timedelta, timezone

import pyarrow as pa
import pytest
from pyspark.sql import datasource as ds
from pyspark.sql.types import StructType

import zelk
from zelk.spark import LogSource

DATABASE = """VERSION ""

NS_ :

BS_:

BU_: A

BO_ 160 Motion: 8 A
 SG_ Speed : 0|16@1+ (0.5,0) [0|0] "km/h" A
 SG_ Time : 16|8@1- (1,0) [0|0] "" A
 SG_ Mode M : 24|8@1+ (1,0) [0|0] "" A
 SG_ Extra m1 : 32|32@1+ (1,0) [0|0] "" A

BO_ 161 Door: 8 A
 SG_ Counter : 0|64@1+ (1,0) [0|0] "" A

VAL_ 160 Mode 0 "off" 1 "on" ;
"""
EPOCH = datetime(1970, 1, 1, tzinfo=timezone.utc)


def frames(count, seed=1):
    """Lines of a log, some of which are no frames."""
    rng = random.Random(seed)
    lines = []
    for i in range(count):
        data = "%04X%02X%02X%08X" % (rng.getrandbits(16), i % 256, rng.randrange(3), rng.getrandbits(32))
        line = f"({i // 10}.{i % 10}{rng.randrange(10**8):08d}) can{i % 2} 0A{i % 3 // 2}#{data}"
        lines.append(rng.choice(["", "none\n", "\r\n"]) if i % 50 == 7 else line + rng.choice(["\n", "\r\n"]))
    return "".join(lines).encode()


@pytest.fixture
def here(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "car.dbc").write_text(DATABASE)
    (tmp_path / "logs").mkdir()
    return tmp_path


def read(*filters, path="logs", schema=None, **options):
    """Rows, and the filters that are left to Spark."""
    source = LogSource({"path": path, "database": "car.dbc", "message": "Motion", **options})
    found = source.schema()
    reader = pickle.loads(pickle.dumps(source)).reader(schema or found)
    left = list(reader.pushFilters(list(filters)))
    batches = []
    for task in reader.partitions() or [None]:
        batches += list(pickle.loads(pickle.dumps(reader)).read(pickle.loads(pickle.dumps(task))))
    for batch in batches:
        assert batch.schema.names == (schema or found).names
    return pa.Table.from_batches(batches).to_pylist() if batches else [], left


def tasks(**options):
    source = LogSource({"path": "logs", "database": "car.dbc", "message": "Motion", **options})
    return source.reader(source.schema()).partitions()


def decoded(paths, **options):
    return pa.table(zelk.read_log(paths, "car.dbc", "Motion", **options)["Motion"]).to_pylist()


def test_reads_blocks_as_one_process_reads_the_log(here):
    (here / "logs" / "a.log").write_bytes(frames(3000))
    size = (here / "logs" / "a.log").stat().st_size
    (here / "logs" / "b.log.gz").write_bytes(gzip.compress(frames(300, 2)))
    expected = [tuple(row.values()) for row in decoded(["logs/a.log", "logs/b.log.gz"])]
    for block in (1000, 7777, size // 2, size):
        assert len(tasks(blockSize=str(block))) == -(-size // block) + 1
        assert [tuple(row.values()) for row in read(blockSize=str(block), nanoseconds="true")[0]] == expected
    # What a row depends on would be in another block.
    for whole in ({"j1939_tp": "true"}, {"start": "+1"}, {"times": "differences"}, {"relative": "true"}):
        assert len(tasks(blockSize="1000", **whole)) == 2


@pytest.mark.parametrize("values, beside, types", [
    ("physical", False, "double double double double"),
    ("raw", False, "int tinyint smallint bigint"),
    ("texts", True, "double double string smallint double"),
])
def test_has_the_types_of_the_values(here, values, beside, types):
    (here / "logs" / "a.log").write_bytes(frames(300))
    schema = LogSource({"path": "logs", "database": "car.dbc", "message": "Motion", "values": values,
                        "rawBeside": str(beside), "nanoseconds": "true"}).schema()
    found = [field.dataType.simpleString() for field in schema.fields]
    assert found[:2] == ["bigint", "string"]
    assert schema["Speed"].metadata == ({} if values == "raw" else {"unit": "km/h"})
    assert "Time_2" in schema.names
    expected = decoded("logs/a.log", values=values, raw_beside=beside)
    rows, _ = read(values=values, raw_beside=str(beside), nanoseconds="true")
    assert [list(row.values()) for row in rows] == [list(row.values()) for row in expected]
    assert " ".join(found[2:]) == types


def test_keeps_unsigned_integers_of_64_bits(here):
    (here / "logs" / "a.log").write_text("0A1#FFFFFFFFFFFFFFFF\n")
    rows, _ = read(message="Door", values="raw", schema=None)
    assert [int(row["Counter"]) for row in rows] == [2**64 - 1] and rows[0]["time"] is None


# A time that Spark compares has no nanoseconds: it is rounded down, also in front of 1970.
def test_cuts_by_time_as_spark_does(here):
    times = [-2500, -2000, -1001, -1000, -1, 0, 999, 1000, 1999, 2000, 10**15]
    lines = [f"({'-' if t < 0 else ''}{abs(t) // 10**9}.{abs(t) % 10**9:09d}) can0 0A0#00\n" for t in times]
    (here / "logs" / "a.log").write_text("".join(lines) + "can0 0A0#00\n")
    compare = {ds.GreaterThan: operator.gt, ds.GreaterThanOrEqual: operator.ge, ds.LessThan: operator.lt,
               ds.LessThanOrEqual: operator.le, ds.EqualTo: operator.eq}
    for unit in ("false", "true"):
        rows = [row["time"] for row in read(nanoseconds=unit, times="points")[0]]
        assert len(rows) == len(times) + 1 and rows[-1] is None
        points = [-2000, -1000, 0, 1, 1000, 2**63, -(2**70)] if unit == "true" else [
            EPOCH + timedelta(microseconds=us) for us in (-3, -2, -1, 0, 1, 2)]
        for point in points:
            for kind, holds in compare.items():
                kept, left = read(kind(("time",), point), nanoseconds=unit, times="points")
                assert not left
                assert [row["time"] for row in kept] == [t for t in rows[:-1] if holds(t, point)], (kind, point)


def test_leaves_other_filters_to_spark(here):
    (here / "logs" / "a.log").write_bytes(frames(100))
    others = [ds.GreaterThan(("Speed",), 3.0), ds.Not(ds.EqualTo(("time",), EPOCH)), ds.IsNotNull(("time",)),
              ds.In(("time",), (EPOCH,)), ds.EqualTo(("channel",), "can0"), ds.EqualTo(("a", "b"), 1)]
    rows, left = read(*others)
    assert left == others and rows == read()[0]


def test_takes_columns_from_folders_and_passes_over_logs_by_them(here):
    for folder, count in {"car=1/day=2": 20, "car=a%20b": 30, "car=__HIVE_DEFAULT_PARTITION__": 40, "_old": 50}.items():
        (here / "logs" / folder).mkdir(parents=True)
        (here / "logs" / folder / "a.log").write_bytes(frames(count))
    rows, _ = read(fileColumn="file")
    assert {(row["car"], row["day"]) for row in rows} == {("1", "2"), ("a b", None), (None, None)}
    file = str(here / "logs" / "car=1" / "day=2" / "a.log")
    for wanted in (ds.EqualTo(("car",), "1"), ds.In(("car",), ("1", "x")), ds.EqualTo(("file",), file)):
        kept, left = read(wanted, fileColumn="file")
        assert not left and kept == [row for row in rows if row["file"] == file]
    assert read(ds.EqualTo(("car",), "none"))[0] == []
    assert read(path=f"file://{here}/logs") == read() == read(path="logs", paths='["logs/car=1/**/*.log"]')
    assert [task.value.log.path for task in tasks(path="logs/*/*/*.log")] == [file]


def test_gives_signals_of_several_messages_as_rows(here):
    (here / "logs" / "a.log").write_text("(1.5) can0 0A0#0400050000000000\n(2.5) 0A1#01\nnone\n(3.5) can1 0A1#0200000000000000\n")
    rows, _ = read(message="*", nanoseconds="true", columnNameOfCorruptRecord="bad")
    values = [(row["time"], row["channel"], row["message"], row["signal"], row["value"]) for row in rows]
    assert values == [
        (1500000000, "can0", "Motion", "Speed", 2.0),
        (1500000000, "can0", "Motion", "Time", 5.0),
        (1500000000, "can0", "Motion", "Mode", 0.0),
        (3500000000, "can1", "Door", "Counter", 2.0),
        (None, None, None, None, None),
    ]
    for wanted, expected in {
        ds.EqualTo(("message",), "Door"): rows[3:4],
        ds.In(("signal",), ("Time", "Counter")): [rows[1], rows[3]],
        ds.EqualTo(("message",), "None"): [],
    }.items():
        assert read(wanted, message="*", nanoseconds="true", columnNameOfCorruptRecord="bad") == (expected, [])


def test_treats_malformed_logs_by_the_mode(here):
    good = b"".join(b"(%d.0) can0 0A0#00\n" % i for i in range(20000))
    (here / "logs" / "a.log").write_bytes(b"(1.0) can0 0A0#00\nnone\n")
    (here / "logs" / "cut.log.gz").write_bytes(gzip.compress(good)[:-3000])
    (here / "logs" / "text.md").write_bytes(b"# No log\n")
    rows, _ = read()
    assert 1 < len(rows) < 20001
    with_texts, _ = read(columnNameOfCorruptRecord="bad")
    assert len(with_texts) == len(rows) + 4
    texts = [row["bad"] for row in with_texts if row["bad"]]
    assert any("a.log, line 2: none" in text for text in texts)
    assert any("cut.log.gz" in text and "ends" in text for text in texts)
    assert len(read(columnNameOfCorruptRecord="bad", mode="dropMalformed")[0]) == len(rows)
    for log, what in {"a.log": "line 2", "cut.log.gz": "ends", "text.md": "line 1"}.items():
        with pytest.raises(zelk.LogError, match=what):
            read(path=f"logs/{log}", mode="FAILFAST")


def test_is_an_error_where_a_log_is_gone(here):
    (here / "logs" / "a.log").write_bytes(frames(10))
    source = LogSource({"path": "logs", "database": "car.dbc", "message": "Motion"})
    reader = source.reader(source.schema())
    (here / "logs" / "a.log").unlink()
    with pytest.raises(OSError, match="a.log"):
        list(reader.read(reader.partitions()[0]))


def test_chooses_the_database_by_channel(here):
    (here / "logs" / "a.log").write_text("(1.0) can0 0A0#0400\n(1.0) can1 0A0#0400\n(1.0) can2 0A0#0400\n")
    (here / "other.dbc").write_text(DATABASE.replace("0.5,0", "2,0"))
    rows, _ = read(database='{"can0": "car.dbc", "can1": "car.dbc"}', message="Motion")
    assert [(row["channel"], row["Speed"]) for row in rows] == [("can0", 2.0), ("can1", 2.0)]
    rows, _ = read(database='{"can0": "car.dbc", "can2": ["other.dbc"]}', message="other::Motion")
    assert [(row["channel"], row["Speed"]) for row in rows] == [("can2", 8.0)]


@pytest.mark.parametrize("options, what", [
    ({"databse": "x"}, 'no option "databse"; did you mean "database"'),
    ({"database": "none.dbc"}, "none.dbc"),
    ({"database": "logs/a.log"}, "a.log"),
    ({"database": "[1]"}, "not the path of a database"),
    ({"database": ""}, "No such file|no database"),
    ({"message": "Motions"}, 'no database has a message "Motions"; did you mean "Motion"'),
    ({"message": "x"}, "there are Motion, Door"),
    ({"signals": "Motion.None"}, "None"),
    ({"database": '["car.dbc", "other.dbc"]'}, "different signals: car::Motion, other::Motion"),
    ({"message": "*", "values": "raw"}, "need one message"),
    ({"mode": "LENIENT"}, "PERMISSIVE, DROPMALFORMED, FAILFAST"),
    ({"blockSize": "-1"}, "128m"),
    ({"threads": "x"}, "threads"),
    ({"j1939Tp": "1"}, "true"),
    ({"path": "none*.log"}, "none"),
    ({"path": "s3://bucket/a.log"}, "every machine"),
    ({"path": "logs/empty"}, "there is no log"),
])
def test_says_what_is_wrong_with_options(here, options, what):
    (here / "logs" / "a.log").write_bytes(frames(10))
    (here / "logs" / "empty").mkdir()
    (here / "other.dbc").write_text(DATABASE.replace("km/h", "m/s"))
    with pytest.raises((ValueError, OSError, KeyError), match=what):
        read(**options)


def test_takes_a_schema_with_some_columns(here):
    (here / "logs" / "a.log").write_bytes(frames(100))
    rows, _ = read(schema=StructType().add("speed", "double").add("time", "timestamp"))
    assert rows == [{"speed": row["Speed"], "time": row["time"]} for row in read()[0]]
    for name, type_, what in [("Sped", "double", "no column"), ("Speed", "float", "double, not float")]:
        with pytest.raises(ValueError, match=what):
            read(schema=StructType().add(name, type_))
