"""Logs to tables."""

from __future__ import annotations

import errno
import operator
import os
import stat
import time
import warnings
from collections.abc import Callable, Iterable, Iterator
from typing import TYPE_CHECKING, Union

from ._decoding import ColumnKeywords, Databases, Names, Path, Time, checked_threads, make_decoding, time_text
from ._errors import ArgumentError, LogError, LogWarning
from ._progress import ProgressBar
from ._statistics import MalformedLine, Statistics
from ._table import Table
from ._tables import Tables, gathered
from ._zelk import LogRun, TableRows, note_fork

if TYPE_CHECKING:
    from typing_extensions import Unpack

Paths = Union[Path, Iterable[Path]]
Progress = Union[bool, Callable[[str, int, Union[int, None]], object]]


class LogKeywords(ColumnKeywords, total=False):
    """How logs are read; see `read_log`."""

    times: str
    relative: bool
    j1939_tp: bool
    strict: bool
    on_error: str
    threads: int
    progress: Progress
    part: tuple[int, int] | None


_DEFAULTS: LogKeywords = {
    "values": "physical",
    "raw_beside": False,
    "match_pgn": False,
    "batch_rows": 65536,
    "times": "detect",
    "relative": False,
    "j1939_tp": False,
    "strict": False,
    "on_error": "raise",
    "threads": 0,
    "progress": False,
    "part": None,
}
_PATIENCE = 0.05  # seconds between two looks at signals and reports of progress

if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=note_fork)


class Batches(Iterator[Table]):
    """Tables of some rows each, as a log is read: what `read_batches` returns.

    Attributes
    ----------
    statistics : Statistics
        What became of the lines and frames; complete behind the last table.
    """

    def __init__(self, run: LogRun, paths: list[str], tables: list[TableRows], keeps: bool, progress: Progress) -> None:
        self._run = run
        self._paths = paths
        self._keeps = keeps
        self._report = _reporter(progress)
        self._next_report = time.monotonic()
        self._empty = tables
        self.statistics = Statistics()

    @property
    def tables(self) -> list[Table]:
        """All tables that there may be, without rows: their names, columns and units."""
        return [Table(rows) for rows in self._empty]

    def __iter__(self) -> Batches:
        return self

    def __next__(self) -> Table:
        return Table(self._take()[1])

    def _take(self) -> tuple[int, TableRows]:
        try:
            while (batch := self._run.take(_PATIENCE)) is None:
                self._tell()
                if self._run.has_ended():
                    self._end()
            self._tell()
            return batch
        except BaseException:
            self.close()
            raise

    def _tell(self) -> None:
        if self._report is None or time.monotonic() < self._next_report:
            return
        self._next_report = time.monotonic() + _PATIENCE
        index, read, size = self._run.progress()
        self._report(self._paths[index], read, size)

    def _end(self) -> None:
        """Raises what stands behind the last batch."""
        counts, malformed, faults = self._run.report()
        lines = tuple(MalformedLine(self._paths[path], number, text) for path, number, text in malformed)
        problems = tuple(text for _, text in faults if text is not None)
        self.statistics = Statistics(**counts, malformed_lines=lines, problems=problems)
        if len(problems) < len(faults):
            raise MemoryError
        if faults and not self._keeps:
            path, text = faults[0]
            raise LogError(text or "", self._paths[path], statistics=self.statistics)
        raise StopIteration

    def close(self) -> None:
        """End the reading where it is."""
        self._run.close()
        if isinstance(self._report, ProgressBar):
            self._report.clear()

    def __enter__(self) -> Batches:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


def read_batches(
    paths: Paths,
    db: Databases,
    messages: Names = None,
    signals: Names = None,
    start: Time = None,
    stop: Time = None,
    **keywords: Unpack[LogKeywords],
) -> Batches:
    """Read logs as a stream of tables, in bounded memory.

    Parameters
    ----------
    paths, db, messages, signals, start, stop, **keywords
        As of `read_log`.
    part : tuple of int, optional
        First byte, and that behind the last one: of one log the lines that begin there. All parts
        together have each line once. For logs of candump that are not compressed.

    Returns
    -------
    Batches
        An iterator. Each table has one batch of up to `batch_rows` rows of one message; the batches
        of a message come in their order. It may be closed early, and closes itself as a context
        manager.

    Raises
    ------
    LogError
        Behind the last rows that could be read.

    Examples
    --------
    >>> for table in zelk.read_batches("examples/drive.log", "examples/powertrain.dbc", "EngineStatus"):
    ...     print(table.name, len(table))
    """
    options: LogKeywords = {**_DEFAULTS, **keywords}
    unknown = sorted(set(options) - set(_DEFAULTS))
    if unknown:
        raise TypeError(f"{unknown[0]!r} is no keyword of read_batches: {', '.join(_DEFAULTS)}")
    _check(options)
    column_keywords: ColumnKeywords = {
        "values": options["values"],
        "raw_beside": options["raw_beside"],
        "match_pgn": options["match_pgn"],
        "batch_rows": options["batch_rows"],
    }
    decoding = make_decoding(db, messages, signals, **column_keywords)
    logs = log_paths(paths)
    keeps = options["on_error"] == "keep"
    run = LogRun(
        decoding,
        logs,
        time_text(start, "start"),
        time_text(stop, "stop"),
        options["times"],
        options["relative"],
        options["j1939_tp"],
        options["strict"],
        keeps,
        checked_threads(options["threads"]),
        _part(options["part"], len(logs)),
    )
    return Batches(run, logs, decoding.tables(), keeps, options["progress"])


def _check(options: LogKeywords) -> None:
    if options["on_error"] not in ("raise", "keep"):
        raise ArgumentError(f"on_error must be 'raise' or 'keep', not {options['on_error']!r}")


def _part(part: tuple[int, int] | None, logs: int) -> tuple[int, int] | None:
    if part is None:
        return None
    begin, end = (operator.index(place) for place in part)
    if logs != 1 or not 0 <= begin <= end < 2**63:
        raise ArgumentError(f"part must be the first byte, and that behind the last one, of one log, not {part!r}")
    return begin, end


def log_paths(paths: Paths) -> list[str]:
    """The paths of logs, each of which must be there, once."""
    if isinstance(paths, (str, os.PathLike)):
        paths = [paths]
    if isinstance(paths, bytes) or not isinstance(paths, Iterable):
        raise ArgumentError(f"paths must be the path of a log, or several, not {paths!r}")
    result = [os.fspath(path) for path in paths]
    if not result:
        raise ArgumentError("paths is empty: no log is named")
    known: dict[tuple[int, int] | str, str] = {}
    for path in result:
        _enter(path, known)
    return result


def _enter(path: str, known: dict[tuple[int, int] | str, str]) -> None:
    state = os.stat(path)
    if stat.S_ISDIR(state.st_mode):
        raise IsADirectoryError(errno.EISDIR, "a folder is no log; name the logs in it", path)
    key = (state.st_dev, state.st_ino) if state.st_ino else os.path.realpath(path)
    if key in known:
        raise ArgumentError(f"the log {path!r} is named twice, as {known[key]!r} before: its rows would be there twice")
    known[key] = path


def read_log(
    paths: Paths,
    db: Databases,
    messages: Names = None,
    signals: Names = None,
    start: Time = None,
    stop: Time = None,
    *,
    values: str = "physical",
    raw_beside: bool = False,
    match_pgn: bool = False,
    batch_rows: int = 65536,
    times: str = "detect",
    relative: bool = False,
    j1939_tp: bool = False,
    strict: bool = False,
    on_error: str = "raise",
    threads: int = 0,
    progress: Progress = False,
) -> Tables:
    """Read logs, and decode their frames into tables: one for each message.

    Parameters
    ----------
    paths : str, os.PathLike, or iterable of them
        Logs of any form that the library knows, compressed with gzip or zstd or not; what they are is
        told from their content. The rows of several logs stand behind each other.
    db : Database, path, several of them, or dict
        What `zelk.load` returns. Of several, the first one that has a frame's identifier counts. A dict
        has them by the names of the channels whose frames they describe, None for all.
    messages : str, Message, or iterable of them, optional
        Messages to decode; ``*`` and ``?`` in names stand for any characters. By default all.
    signals : str, Signal, or iterable of them, optional
        Signals to decode, likewise, also as ``"Message.Signal"``. By default all.
    start, stop : float, str, datetime.datetime or numpy.datetime64, optional
        The first time that is wanted, and that behind the last one: seconds as the log counts, mostly
        since 1970; ``"+12.5"`` for seconds since the first frame; or a date. Dates without a zone are
        taken for UTC, as everywhere in the package.
    values : {"physical", "raw", "texts"}
        What columns hold: physical values as float64; raw integers in the narrowest type; or value
        descriptions, where a signal has them.
    raw_beside : bool
        With ``"texts"``: behind each such column one with the raw values, ``SIGNAL.raw``.
    match_pgn : bool
        Extended identifiers also match messages by their J1939 parameter group when the database
        does not say that these are of J1939.
    batch_rows : int
        Most rows of one Arrow batch.
    times : {"detect", "points", "differences"}
        What the times of a text log are.
    relative : bool
        Times count from the first frame of each log.
    j1939_tp : bool
        Put messages of the J1939 transport protocol together.
    strict : bool
        A line that is no frame is an error; else it is counted in the statistics.
    on_error : {"raise", "keep"}
        What to do when a log cannot be read, or breaks off: raise an error that has what was read, or
        keep that, warn of the problem, and go on with the next log.
    threads : int
        To read with; 0: as many as there are cores.
    progress : bool or callable
        True shows a bar on standard error. A callable gets the log's path, the number of bytes read
        and the size of the log in bytes, None when that is not known.

    Returns
    -------
    Tables
        A mapping from the message's name, ``database::message`` where several databases share one, to
        its `Table`. ``.statistics`` tells what became of all lines and frames.

    Raises
    ------
    LogError
        A log cannot be read to its end; ``.tables`` has what was read.
    OSError
        A log cannot be opened.
    UnknownNameError
        No message or signal has a wanted name.

    Examples
    --------
    >>> tables = zelk.read_log("examples/drive.log", zelk.load("examples/powertrain.dbc"))
    >>> tables["EngineStatus"]["EngineSpeed"].max()
    """
    batches = read_batches(
        paths,
        db,
        messages,
        signals,
        start,
        stop,
        values=values,
        raw_beside=raw_beside,
        match_pgn=match_pgn,
        batch_rows=batch_rows,
        times=times,
        relative=relative,
        j1939_tp=j1939_tp,
        strict=strict,
        on_error=on_error,
        threads=threads,
        progress=progress,
    )
    parts: dict[int, list[TableRows]] = {}
    fault: LogError | None = None
    try:
        while True:
            index, rows = batches._take()
            parts.setdefault(index, []).append(rows)
    except StopIteration:
        pass
    except LogError as error:
        fault = error
    tables = gathered(batches._empty, parts, messages, batches.statistics)
    if fault is not None:
        fault.tables = tables
        raise fault
    for problem in batches.statistics.problems:
        warnings.warn(problem, LogWarning, stacklevel=2)
    return tables


def _reporter(progress: Progress) -> Callable[[str, int, int | None], object] | None:
    if callable(progress):
        return progress
    if not isinstance(progress, bool):
        raise ArgumentError(f"progress must be True, False or a callable, not {progress!r}")
    return ProgressBar() if progress else None
