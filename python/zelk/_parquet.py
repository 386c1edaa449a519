"""Logs to datasets of Parquet files.

The layout, which engines call "hive", is

    FOLDER/MESSAGE/log=NAME/part-0.parquet

Files whose names begin with a dot are no part of a dataset: a log's files are written as such, and
renamed when all of them are whole.
"""

from __future__ import annotations

import os
from collections.abc import Callable
from typing import TYPE_CHECKING, Any, NamedTuple

from ._decoding import Databases, Names, Path, Time
from ._errors import ArgumentError
from ._files import FileSet, file_name
from ._log import LogKeywords, Paths, log_paths, read_batches
from ._statistics import Statistics

if TYPE_CHECKING:
    from typing_extensions import Unpack


class Part(NamedTuple):
    """What became of one log.

    Attributes
    ----------
    name : str
        The value of the column ``log``.
    rows : dict of str to int
        The number of rows of each message.
    statistics : Statistics
        As of `read_log`.
    """

    name: str
    rows: dict[str, int]
    statistics: Statistics


def to_parquet(
    logs: Paths,
    db: Databases,
    folder: Path,
    messages: Names = None,
    signals: Names = None,
    start: Time = None,
    stop: Time = None,
    *,
    name: Callable[[str], str] | None = None,
    compression: str = "zstd",
    **keywords: Unpack[LogKeywords],
) -> dict[str, Part]:
    """Decode logs into datasets of Parquet files: one for each message, a part for each log.

    The files are ``folder/MESSAGE/log=NAME/part-0.parquet``; ``pyarrow.dataset``, Spark, DuckDB and
    polars read ``folder/MESSAGE`` as one table that also has the column ``log``. Logs are read one
    behind the other in bounded memory. What a log had in `folder` before is replaced when all of it is
    written, for the messages that are decoded; parts of other logs stay. Needs pyarrow.

    Parameters
    ----------
    logs, db, messages, signals, start, stop, **keywords
        As of `read_log`. With ``on_error="keep"``, what could be read of a broken log is written.
    folder : str or os.PathLike
        Is made when it is not there.
    name : callable, optional
        Gives the name of a log, by its path, for ``log=NAME``. By default its file name. Two logs of one
        name would replace each other, and are refused within one call.
    compression : str
        Of the Parquet files, as of pyarrow.

    Returns
    -------
    dict of str to Part
        What became of each log, by its path.

    Raises
    ------
    LogError
        A log cannot be read to its end. The logs in front of it are written, what it had before stays.

    Examples
    --------
    >>> zelk.to_parquet(["examples/drive.log"], "examples/powertrain.dbc", "lake")
    """
    paths = log_paths(logs)
    names = _names(paths, name or os.path.basename)
    result = {}
    for path, log in zip(paths, names):
        places = _Places(os.fspath(folder), log)
        with read_batches(path, db, messages, signals, start, stop, **keywords) as batches:
            with FileSet(places.of_file, _opener(compression)) as files:
                for table in batches:
                    files.write(table)
                done = files.commit()
            for message in (table.name for table in batches.tables):
                places.clear(message, done.get(message, []))
            result[path] = Part(log, files.rows, batches.statistics)
    return result


def _opener(compression: str) -> Callable[[str, Any], Any]:
    import pyarrow.parquet

    def open_writer(path: str, schema: Any) -> Any:
        return pyarrow.parquet.ParquetWriter(path, schema, compression=compression)

    return open_writer


def _names(paths: list[str], name: Callable[[str], str]) -> list[str]:
    names = [name(path) for path in paths]
    known: dict[str, str] = {}
    for path, each in zip(paths, names):
        if not isinstance(each, str) or not each:
            raise ArgumentError(f"the log {path!r} has no name, but {each!r}")
        if each in known:
            raise ArgumentError(
                f"the logs {known[each]!r} and {path!r} are both named {each!r}: give a function as name that tells them apart"
            )
        known[each] = path
    return names


class _Places:
    """Where the files of one log are."""

    def __init__(self, folder: str, log: str) -> None:
        self._folder = folder
        self._part = "log=" + file_name(log)

    def of_message(self, message: str) -> str:
        return os.path.join(self._folder, file_name(message.replace("::", ".")), self._part)

    def of_file(self, message: str, number: int) -> str:
        return os.path.join(self.of_message(message), f"part-{number}.parquet")

    def clear(self, message: str, keep: list[str]) -> None:
        """Removes files of a former run, and folders that are empty then."""
        place = self.of_message(message)
        if not os.path.isdir(place):
            return
        for name in os.listdir(place):
            path = os.path.join(place, name)
            if name.startswith("part-") and name.endswith(".parquet") and path not in keep:
                os.remove(path)
        for folder in (place, os.path.dirname(place)):
            if not os.listdir(folder):
                os.rmdir(folder)
