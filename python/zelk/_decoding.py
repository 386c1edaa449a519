"""Arguments that all functions that decode have in common."""

from __future__ import annotations

import datetime
import math
import operator
import os
from collections.abc import Iterable, Mapping
from decimal import Decimal
from typing import Any, TypedDict, Union

import numpy as np

from ._errors import ArgumentError
from ._loading import load
from ._zelk import Database, Decoding, Message, Signal

Path = Union[str, os.PathLike[str]]
OneDatabase = Union[Database, Path]
Databases = Union[OneDatabase, Iterable[OneDatabase], Mapping[Any, Union[OneDatabase, Iterable[OneDatabase]]]]
Names = Union[None, str, Message, Signal, Iterable[Union[str, Message, Signal]]]
Time = Union[None, str, int, float, datetime.datetime, np.datetime64]


class ColumnKeywords(TypedDict, total=False):
    """What columns hold."""

    values: str
    raw_beside: bool
    match_pgn: bool
    batch_rows: int


def make_decoding(
    db: Databases,
    messages: Names,
    signals: Names,
    *,
    values: str = "physical",
    raw_beside: bool = False,
    match_pgn: bool = False,
    batch_rows: int = 65536,
) -> Decoding:
    if not 1 <= batch_rows <= 2**31 - 1:
        raise ArgumentError(f"batch_rows must be a number from 1 to 2147483647, not {batch_rows!r}")
    return Decoding(
        _sources(db), names_of(messages, "messages"), names_of(signals, "signals"), values, raw_beside, match_pgn, batch_rows
    )


def checked_threads(threads: int) -> int:
    count = operator.index(threads) if hasattr(threads, "__index__") else -1
    if not 0 <= count <= 256:
        raise ArgumentError(f"threads must be a number from 0, for as many as there are cores, to 256, not {threads!r}")
    return count


def _sources(db: Databases) -> list[tuple[Database, str]]:
    if isinstance(db, Mapping):
        sources = [(each, _channel(channel)) for channel, part in db.items() for each in _databases(part)]
    else:
        sources = [(each, "") for each in _databases(db)]
    if not sources:
        raise ArgumentError("no database is given")
    return sources


def _channel(channel: Any) -> str:
    if channel is None:
        return ""
    if isinstance(channel, bool) or not isinstance(channel, (str, int)):
        raise ArgumentError(f"a channel of db must be a name or a number, not {channel!r}")
    if channel == "":
        raise ArgumentError("a channel of db is empty; None stands for all channels")
    return str(channel)


def _databases(db: Any) -> list[Database]:
    if isinstance(db, Database):
        return [db]
    if isinstance(db, (str, os.PathLike)):
        return [load(db)]
    if isinstance(db, Iterable) and not isinstance(db, (bytes, Mapping)):
        return [database for each in db for database in _databases(each)]
    raise ArgumentError(f"db must be what zelk.load returns, or the path of a file, not {db!r}")


def names_of(names: Names, what: str) -> list[str]:
    if names is None:
        return []
    if isinstance(names, (str, Message, Signal)):
        names = [names]
    if not isinstance(names, Iterable):
        raise ArgumentError(f"{what} must be names, not {names!r}")
    result = [name.name if isinstance(name, (Message, Signal)) else name for name in names]
    for name in result:
        if not isinstance(name, str):
            raise ArgumentError(f"{what} must be names, not {name!r}")
    if not result:
        raise ArgumentError(f"{what} is empty: nothing would be decoded; None stands for all")
    return result


def time_text(time: Time, what: str) -> str | None:
    """A time as the library reads it: exact in nanoseconds."""
    if time is None or isinstance(time, str):
        return time
    if isinstance(time, np.datetime64) or isinstance(time, datetime.datetime):
        return _seconds_text(_nanoseconds(time, what))
    if isinstance(time, (bool, np.bool_)) or not isinstance(time, (int, float, np.integer, np.floating)):
        raise ArgumentError(f"{what} must be seconds, a datetime or a text, not {time!r}")
    if not math.isfinite(time):
        raise ArgumentError(f"{what} must be a time, not {time!r}")
    return format(Decimal(repr(float(time)) if isinstance(time, (float, np.floating)) else int(time)), "f")


def _nanoseconds(time: datetime.datetime | np.datetime64, what: str) -> int:
    nanosecond = getattr(time, "nanosecond", 0)  # that pandas' own times have beside the microseconds
    if isinstance(time, datetime.datetime) and time.tzinfo is not None:
        time = time.astimezone(datetime.timezone.utc).replace(tzinfo=None)
    if isinstance(time, datetime.datetime) and time == time:  # not pandas' NaT
        since_1970 = time.replace(fold=0) - type(time)(1970, 1, 1)
        return since_1970 // datetime.timedelta(microseconds=1) * 1000 + nanosecond
    point = np.array(time, "datetime64[ns]")
    if np.isnat(point):
        raise ArgumentError(f"{what} must be a time, not {time!r}")
    return int(point.astype(np.int64))


def _seconds_text(nanoseconds: int) -> str:
    return format(Decimal(nanoseconds).scaleb(-9), "f")
