"""Logs as a data source of Spark: many logs, decoded by many machines.

>>> import zelk.spark
>>> zelk.spark.register(spark)
>>> frame = (spark.read.format("zelk").option("database", "car.dbc")
...          .option("message", "EngineStatus").load("logs/*.log.gz"))

One task reads each log; an uncompressed log of candump is cut into blocks, with a task for each. All
machines must have this package and see the logs under the same paths; databases travel with the
tasks. Options have the names of the keywords of `zelk.read_log`, and more, which ``docs/lake.md``
lists.
"""

from __future__ import annotations

from typing import TYPE_CHECKING

try:
    from ._source import LogSource
except ImportError as error:  # pyspark without filters for Python data sources, or none at all
    raise ImportError(
        f"zelk.spark needs pyspark 4.1 or newer, and pyarrow (pip's extra 'spark'): {error}"
    ) from error

if TYPE_CHECKING:
    from pyspark.sql import SparkSession

__all__ = ["LogSource", "register"]


def register(spark: SparkSession) -> None:
    """Make the format ``"zelk"`` known to a session of Spark.

    It also switches on ``spark.sql.python.filterPushdown.enabled`` for the session: filters on time
    and message are evaluated where the logs are read.

    Parameters
    ----------
    spark : pyspark.sql.SparkSession
    """
    spark.conf.set("spark.sql.python.filterPushdown.enabled", "true")
    spark.dataSource.register(LogSource)
