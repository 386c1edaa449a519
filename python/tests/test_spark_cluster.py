"""The data source on a cluster of several processes, one of which is killed."""

import gzip
import os
import pathlib
import re
import shutil
import signal
import sys
import threading
import time

import pyarrow as pa
import pytest
from pyspark import TaskContext, cloudpickle
from pyspark.sql import SparkSession

import zelk
import zelk.spark

ROOT = pathlib.Path(__file__).parents[2]
EXAMPLES = ROOT / "examples"
PATIENCE = 100  # seconds
QUICK_START = "-XX:TieredStopAtLevel=1 -XX:+UseSerialGC"

cloudpickle.register_pickle_by_value(sys.modules[__name__])  # which executors have not


@pytest.fixture(scope="module")
def spark(tmp_path_factory):
    os.environ["PYSPARK_PYTHON"] = sys.executable
    folder = tmp_path_factory.mktemp("spark")
    before = pathlib.Path.cwd()
    os.chdir(folder)  # relative paths count from here
    session = (
        SparkSession.builder.master("local-cluster[2,1,1024]")
        .config("spark.driver.host", "127.0.0.1")
        .config("spark.driver.bindAddress", "127.0.0.1")
        .config("spark.local.dir", str(folder))
        .config("spark.driver.extraJavaOptions", QUICK_START)
        .config("spark.executor.extraJavaOptions", QUICK_START)
        .config("spark.ui.enabled", "false")
        .config("spark.ui.showConsoleProgress", "false")
        .config("spark.sql.shuffle.partitions", "2")
        .config("spark.sql.session.timeZone", "Asia/Tokyo")
        .getOrCreate()
    )
    zelk.spark.register(session)
    gateway = session.sparkContext._gateway
    work = pathlib.Path(os.environ.get("SPARK_HOME", pathlib.Path(sys.modules["pyspark"].__file__).parent)) / "work"
    application = session.sparkContext.applicationId
    yield session
    session.stop()
    gateway.shutdown()
    gateway.proc.stdin.close()
    gateway.proc.wait(PATIENCE)
    shutil.rmtree(work / application, ignore_errors=True)
    os.chdir(before)


@pytest.fixture(scope="module")
def logs(tmp_path_factory):
    """The same drive in each car, an hour later each time."""
    folder = tmp_path_factory.mktemp("lake")
    drive = (EXAMPLES / "drive.log").read_text()
    for car in range(3):
        (folder / f"car={car}").mkdir()
        text = "".join(drive.replace("(17000000", f"(1700{car}{hour:03d}") for hour in range(60))
        (folder / f"car={car}" / "a.log").write_text(text)
        with gzip.open(folder / f"car={car}" / "b.log.gz", "wt") as file:
            file.write(drive)
    return folder


def decoded(logs):
    """What one process makes of them, in order."""
    batches = []
    for path in sorted(logs.glob("*/*")):
        table = pa.table(zelk.read_log(path, EXAMPLES / "powertrain.dbc", "EngineStatus")["EngineStatus"])
        batches += [(*row.values(), path.parent.name[4:]) for row in table.to_pylist()]
    return sorted(batches)


def read(spark, logs, **options):
    options = {"database": str(EXAMPLES / "powertrain.dbc"), "message": "EngineStatus", "nanoseconds": True, **options}
    return spark.read.format("zelk").options(**options).load(str(logs))


def process_of_executor():
    """The parent of the daemon that has forked this worker."""
    stat = pathlib.Path(f"/proc/{os.getppid()}/stat").read_text()
    return int(stat.rpartition(")")[2].split()[1])


def held(folder):
    """Lets the first tasks pass, and holds the others until somebody has killed an executor."""

    def hold(batches):
        number = TaskContext.get().partitionId()
        deadline = time.monotonic() + PATIENCE
        for batch in batches:
            if number >= 2 and not (folder / "go").exists():
                (folder / str(process_of_executor())).touch()
                while not (folder / "go").exists() and time.monotonic() < deadline:
                    time.sleep(0.05)
            yield batch

    return hold


def test_loses_nothing_with_an_executor(spark, logs, tmp_path):
    """What the killed one had read before is lost with it, and read again."""
    frame = read(spark, logs, blockSize="100k")
    result = []
    rows = frame.mapInArrow(held(tmp_path), frame.schema).repartition(2)
    query = threading.Thread(target=lambda: result.append(rows.toArrow()))
    query.start()
    deadline = time.monotonic() + PATIENCE
    while not any(tmp_path.iterdir()) and query.is_alive() and time.monotonic() < deadline:
        time.sleep(0.05)
    os.kill(int(next(tmp_path.iterdir()).name), signal.SIGKILL)
    (tmp_path / "go").touch()
    query.join(PATIENCE)
    assert sorted(tuple(row.values()) for row in result[0].to_pylist()) == decoded(logs)


def test_reads_no_more_than_a_filter_asks_for(spark, logs, capsys):
    frame = read(spark, logs, nanoseconds=False)
    some = frame.filter("time >= timestamp'1970-01-01 09:00:00' + interval 1700000002 seconds and car in ('1', '2')")
    some.explain()
    plan = capsys.readouterr().out
    assert "BatchScan zelk" in plan and ">=" not in plan and "IN" not in plan
    begin = 1700000002 * 10**9
    assert some.count() == sum(row[0] >= begin and row[-1] != "0" for row in decoded(logs))


def test_runs_what_the_document_shows(spark, logs):
    os.symlink(EXAMPLES, "examples")
    shutil.copytree(logs, "lake/logs")
    os.rename("lake/logs/car=1", "lake/logs/car=17")
    blocks = re.findall("^```python\n(.*?)^```", (ROOT / "docs" / "lake.md").read_text(), re.MULTILINE | re.DOTALL)
    assert len(blocks) == 2
    names = {}
    for block in blocks:
        exec(block, names)


def test_says_what_is_wrong(spark, logs):
    with pytest.raises(Exception, match='no database has a message "EngineStates"; did you mean "EngineStatus"'):
        read(spark, logs, message="EngineStates")
    (logs / "bad.log").write_text("none\n")
    with pytest.raises(Exception, match="bad.log, line 1"):
        read(spark, logs / "bad.log", mode="FAILFAST").count()
