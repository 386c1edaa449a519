"""Filters that are evaluated where the logs are read."""

from __future__ import annotations

from dataclasses import dataclass
from datetime import datetime, timedelta, timezone
from typing import Any

import pyarrow as pa
import pyarrow.compute as pc
from pyspark.sql import datasource as ds

_EPOCH = datetime(1970, 1, 1, tzinfo=timezone.utc)
_LAST = 2**63 - 1


@dataclass
class TimeWindow:
    """Times from ``begin`` to in front of ``end``, in nanoseconds."""

    unit: int  # of the column's values: microseconds as Spark has them, or nanoseconds
    begin: int | None = None
    end: int | None = None

    @property
    def is_cut(self) -> bool:
        return self.begin is not None or self.end is not None

    def take(self, wanted: ds.Filter) -> bool:
        """Narrow the window by a filter on the column; False when Spark has to evaluate it."""
        value = self._value(getattr(wanted, "value", None))
        if value is None:
            return False
        begin, end = value * self.unit, (value + 1) * self.unit
        if isinstance(wanted, ds.GreaterThanOrEqual):
            self._narrow(begin, None)
        elif isinstance(wanted, ds.GreaterThan):
            self._narrow(end, None)
        elif isinstance(wanted, ds.LessThan):
            self._narrow(None, begin)
        elif isinstance(wanted, ds.LessThanOrEqual):
            self._narrow(None, end)
        elif isinstance(wanted, ds.EqualTo):
            self._narrow(begin, end)
        else:
            return False
        return True

    def rows_in(self, batch: pa.RecordBatch) -> pa.RecordBatch:
        """The rows of the window; those without a time are in none."""
        for bound, is_inside in ((self.begin, pc.greater_equal), (self.end, pc.less)):
            if bound is not None:
                batch = batch.filter(is_inside(batch.column("time"), bound))
        return batch

    def _narrow(self, begin: int | None, end: int | None) -> None:
        """Bounds are those of 64 bits: what is beyond them is as far as the last time there is."""
        if begin is not None:
            begin = min(max(begin, -_LAST), _LAST)
            self.begin = begin if self.begin is None else max(self.begin, begin)
        if end is not None:
            end = min(max(end, -_LAST), _LAST)
            self.end = end if self.end is None else min(self.end, end)

    def _value(self, value: Any) -> int | None:
        if isinstance(value, datetime):
            if value.tzinfo is None:
                return None
            return (value - _EPOCH) // timedelta(microseconds=1)
        return value if isinstance(value, int) and not isinstance(value, bool) else None


def texts_of(wanted: ds.Filter) -> frozenset[Any] | None:
    """The values that a filter lets a column of texts have; None when it is of another kind."""
    if isinstance(wanted, ds.EqualTo):
        return frozenset([wanted.value])
    if isinstance(wanted, ds.In):
        return frozenset(wanted.value) - {None}
    return None
