"""Databases that travel with the tasks, and the rows of one part of a log."""

from __future__ import annotations

import functools
import os
import tempfile
from collections.abc import Iterable, Iterator
from dataclasses import dataclass, field
from typing import Any

import pyarrow as pa

from .. import _zelk
from .._decoding import make_decoding
from .._loading import load
from .._log import read_batches
from ._files import Part
from ._options import Options


@dataclass(frozen=True)
class Content:
    """A database file: machines that decode need not have it."""

    channel: str
    name: str
    data: bytes


def contents_of(options: Options) -> tuple[Content, ...]:
    """The files of all databases, each of which can be read."""
    result = []
    for channel, path in options.database:
        load(path, repair=options.repair)  # where an error names the user's own path
        with open(path, "rb") as file:
            result.append(Content(channel, os.path.basename(path), file.read()))
    return tuple(result)


@functools.lru_cache(maxsize=4)  # a process works on one task after the other
def _databases(contents: tuple[Content, ...], repair: bool) -> dict[str | None, list[_zelk.Database]]:
    """One object for each file, also where it describes several channels."""
    loaded: dict[tuple[str, bytes], _zelk.Database] = {}
    result: dict[str | None, list[_zelk.Database]] = {}
    for content in contents:
        key = (content.name, content.data)
        loaded[key] = loaded.get(key) or _loaded(*key, repair)
        result.setdefault(content.channel or None, []).append(loaded[key])
    return result


def _loaded(name: str, data: bytes, repair: bool) -> _zelk.Database:
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, name)  # the name tells the format, and is that of the database
        with open(path, "wb") as file:
            file.write(data)
        return load(path, repair=repair)


def _keywords(options: Options) -> dict[str, Any]:
    return {
        "values": options.values,
        "raw_beside": options.raw_beside,
        "match_pgn": options.match_pgn,
        "batch_rows": options.batch_rows,
    }


def tables_of(
    options: Options, contents: tuple[Content, ...], pattern: str | None
) -> dict[str, pa.Schema]:
    """The columns of the tables of some messages, or all, by their names."""
    databases = _databases(contents, options.repair)
    decoding = make_decoding(databases, pattern, options.signals or None, **_keywords(options))
    return {table.name: pa.schema(table) for table in decoding.tables()}


def is_divisible(path: str, options: Options) -> bool:
    if options.needs_whole_logs:
        return False
    try:
        return _zelk.is_divisible(path, options.times)
    except ValueError:
        return False  # no log at all; the task that reads it tells so


@dataclass
class Reading:
    """The rows of one part, and, behind the last one, what was wrong with it."""

    part: Part
    malformed: int = 0
    malformed_lines: list[str] = field(default_factory=list)  # the first ones
    problems: tuple[str, ...] = ()

    def batches(
        self, options: Options, contents: tuple[Content, ...], tables: Iterable[str]
    ) -> Iterator[tuple[str, pa.RecordBatch]]:
        """Names of tables, and rows.

        Raises
        ------
        LogError
            Where malformed logs and lines are to be errors.
        OSError
            The log cannot be read; on another machine, or at another time, it might.
        """
        is_strict = options.mode == "FAILFAST"
        # Where several databases have a message, its tables are named DATABASE::MESSAGE.
        messages = None if any("::" in table for table in tables) else sorted(tables)
        with read_batches(
            self.part.log.path,
            _databases(contents, options.repair),
            messages,
            options.signals or None,
            options.start,
            options.stop,
            times=options.times,
            relative=options.relative,
            j1939_tp=options.j1939_tp,
            threads=options.threads,
            strict=is_strict,
            on_error="raise" if is_strict else "keep",
            part=self.part.block,
            **_keywords(options),
        ) as batches:
            for table in batches:
                if table.name in tables:
                    for batch in pa.table(table).to_batches():
                        yield table.name, batch
        self._note(batches.statistics)

    def _note(self, statistics: Any) -> None:
        block = self.part.block
        behind = f" behind byte {block[0]}" if block and block[0] else ""
        self.malformed = statistics.malformed
        self.malformed_lines = [
            f"{line.path}, line {line.number}{behind}: {line.text}" for line in statistics.malformed_lines
        ]
        self.problems = statistics.problems
        for problem in self.problems:
            if problem.startswith(("cannot open ", "cannot read ")):
                raise OSError(problem)
