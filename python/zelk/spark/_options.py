"""The options of a read, which Spark gives as texts."""

from __future__ import annotations

import difflib
import json
import re
from collections.abc import Callable, Mapping
from dataclasses import dataclass
from typing import Any

_SIZE = re.compile(r"(\d+)\s*([kmgt]?)i?b?", re.IGNORECASE)
_MODES = ("PERMISSIVE", "DROPMALFORMED", "FAILFAST")


@dataclass(frozen=True)
class Options:
    """What a user has asked for; the names are those of the options."""

    paths: tuple[str, ...]
    database: tuple[tuple[str, str], ...]  # channel, empty for all, and path
    message: str | None = None
    signals: tuple[str, ...] = ()
    values: str = "physical"
    raw_beside: bool = False
    match_pgn: bool = False
    j1939_tp: bool = False
    times: str = "detect"
    start: str | None = None
    stop: str | None = None
    relative: bool = False
    repair: bool = False
    batch_rows: int = 65536
    threads: int = 1
    block_size: int = 128 << 20
    mode: str = "PERMISSIVE"
    column_name_of_corrupt_record: str | None = None
    file_column: str | None = None
    nanoseconds: bool = False

    @property
    def needs_whole_logs(self) -> bool:
        """Whether a row depends on more than its own line."""
        points = (self.start or "", self.stop or "")
        return self.j1939_tp or self.relative or any(point.startswith("+") for point in points)

    @property
    def is_long(self) -> bool:
        """Whether each signal has a row of its own, as messages with different ones need it."""
        return self.message is None or "*" in self.message or "?" in self.message


def parsed(given: Mapping[str, str]) -> Options:
    """Options from texts; the case of names and ``_`` in them do not matter, as in Spark."""
    known = {_plain(name): name for name in _PARSERS}
    values: dict[str, Any] = {}
    for name, text in given.items():
        if _plain(name) not in known:
            close = difflib.get_close_matches(_plain(name), known, 1)
            hint = f'; did you mean "{known[close[0]]}"?' if close else ""
            raise ValueError(f'there is no option "{name}"{hint}')
        field = known[_plain(name)]
        try:
            values[field] = _PARSERS[field](text)
        except ValueError as error:
            raise ValueError(f'option "{name}": {error}') from None
    values["paths"] = values.pop("path", ()) + values.get("paths", ())
    if not values["paths"]:
        raise ValueError('there is no log: load("logs/*.log.gz") tells where they are')
    if "database" not in values:
        raise ValueError('there is no database: option("database", "car.dbc") tells its file')
    options = Options(**values)
    if options.is_long and options.values != "physical":
        raise ValueError(
            f'values "{options.values}" need one message: rows of several have physical values')
    return options


def _plain(name: str) -> str:
    return name.replace("_", "").lower()


def _listed(text: str) -> tuple[str, ...]:
    """``["a", "b"]`` as JSON, or else ``a, b``."""
    items = json.loads(text) if text.lstrip().startswith("[") else text.split(",")
    return tuple(str(item).strip() for item in items if str(item).strip())


def _databases(text: str) -> tuple[tuple[str, str], ...]:
    """A path; or as JSON a list of them, or for each channel a path or a list of them."""
    if not text.lstrip().startswith(("[", "{")):
        return (("", text),)
    content = json.loads(text)
    channels = content if isinstance(content, dict) else {"": content}
    result: list[tuple[str, str]] = []
    for channel, paths in channels.items():
        for path in [paths] if isinstance(paths, str) else paths:
            if not isinstance(path, str):
                raise ValueError(f"{path!r} is not the path of a database")
            result.append((channel, path))
    return tuple(result)


def _flag(text: str) -> bool:
    if text.strip().lower() not in ("true", "false"):
        raise ValueError(f'must be "true" or "false", not "{text}"')
    return text.strip().lower() == "true"


def _count(text: str) -> int:
    if not text.strip().isdecimal() or int(text) == 0:
        raise ValueError(f'must be a number from 1 on, not "{text}"')
    return int(text)


def _size(text: str) -> int:
    found = _SIZE.fullmatch(text.strip())
    if not found or int(found[1]) == 0:
        raise ValueError(f'must be a size such as "128m", not "{text}"')
    return int(found[1]) << 10 * " kmgt".index(found[2].lower() or " ")


def _one_of(*words: str) -> Callable[[str], str]:
    def parse(text: str) -> str:
        for word in words:
            if word.lower() == text.strip().lower():
                return word
        raise ValueError(f'must be one of {", ".join(words)}, not "{text}"')

    return parse


_PARSERS: dict[str, Callable[[str], Any]] = {
    "path": lambda text: (text,),
    "paths": lambda text: tuple(json.loads(text)),
    "database": _databases,
    "message": str.strip,
    "signals": _listed,
    "values": _one_of("physical", "raw", "texts"),
    "raw_beside": _flag,
    "match_pgn": _flag,
    "j1939_tp": _flag,
    "times": _one_of("detect", "points", "differences"),
    "start": str.strip,
    "stop": str.strip,
    "relative": _flag,
    "repair": _flag,
    "batch_rows": _count,
    "threads": _count,
    "block_size": _size,
    "mode": _one_of(*_MODES),
    "column_name_of_corrupt_record": str.strip,
    "file_column": str.strip,
    "nanoseconds": _flag,
}
