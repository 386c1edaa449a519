"""Finding logs, and cutting them into the parts that tasks read."""

from __future__ import annotations

import glob
import os
import re
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass
from urllib.parse import unquote

_NO_VALUE = "__HIVE_DEFAULT_PARTITION__"
_SCHEME = re.compile(r"([a-zA-Z][a-zA-Z0-9+.-]+):")


@dataclass(frozen=True)
class Log:
    path: str
    size: int
    keys: dict[str, str | None]  # from folders that are named KEY=VALUE


@dataclass(frozen=True)
class Part:
    """What one task reads: a log, or the lines that begin in a block of its bytes."""

    log: Log
    block: tuple[int, int] | None = None


def found(paths: Iterable[str]) -> list[Log]:
    """The logs of files, folders and patterns, each of them once.

    In folders, names that begin with ``_`` or ``.`` are passed over, as Spark does it.
    """
    files = dict.fromkeys(file for path in paths for file in _files_of(path))
    if not files:
        raise FileNotFoundError(f"there is no log: {', '.join(paths)}")
    return [Log(file, os.path.getsize(file), _keys_of(file)) for file in files]


def _files_of(path: str) -> Iterator[str]:
    here = os.path.abspath(_local(path))
    matches = [here] if os.path.exists(here) else sorted(glob.glob(here, recursive=True))
    if not matches:
        raise FileNotFoundError(f"there is no log: {path}")
    for match in matches:
        yield from _walked(match) if os.path.isdir(match) else [match]


def _walked(folder: str) -> Iterator[str]:
    for at, folders, files in os.walk(folder):
        folders[:] = sorted(each for each in folders if not each.startswith(("_", ".")))
        yield from (os.path.join(at, f) for f in sorted(files) if not f.startswith(("_", ".")))


def _local(path: str) -> str:
    scheme = _SCHEME.match(path)
    if not scheme or len(scheme[1]) == 1:  # the drive of Windows
        return path
    if scheme[1].lower() != "file":
        raise ValueError(f"{path}: logs are read from file systems that every machine has mounted")
    return unquote(re.sub("^file:(//[^/]*)?", "", path))


def _keys_of(file: str) -> dict[str, str | None]:
    keys: dict[str, str | None] = {}
    for folder in os.path.dirname(file).split(os.sep):
        key, equals, value = folder.partition("=")
        if key and equals:
            keys[unquote(key)] = None if value == _NO_VALUE else unquote(value)
    return keys


def parts_of(logs: Iterable[Log], block_size: int, is_divisible: Callable[[str], bool]) -> list[Part]:
    """A part for each log, or for each block of those that are larger and can be cut."""
    parts: list[Part] = []
    for log in logs:
        if log.size <= block_size or not is_divisible(log.path):
            parts.append(Part(log))
            continue
        cuts = range(0, log.size, block_size)
        parts += [Part(log, (cut, min(cut + block_size, log.size))) for cut in cuts]
    return parts
