"""The data source: what Spark asks for, in its words."""

from __future__ import annotations

import difflib
import logging
from collections.abc import Iterable, Iterator
from dataclasses import replace

import pyarrow as pa
from pyspark.sql.datasource import DataSource, DataSourceReader, Filter, InputPartition
from pyspark.sql.types import StructType

from .._errors import UnknownNameError
from ._decoding import Content, Reading, contents_of, is_divisible, tables_of
from ._files import Log, Part, found, parts_of
from ._filters import TimeWindow, texts_of
from ._options import Options, parsed
from ._schema import (
    Column,
    Constants,
    chosen,
    columns_of,
    corrupt_rows,
    long_form,
    schema_of,
    with_columns,
)

_SHOWN_NAMES = 10
_log = logging.getLogger("zelk.spark")


class LogSource(DataSource):
    """Logs, decoded with databases: the format ``"zelk"``."""

    @classmethod
    def name(cls) -> str:
        return "zelk"

    def schema(self) -> StructType:
        return schema_of(self._plan().columns)

    def reader(self, schema: StructType) -> LogReader:
        return LogReader(self._plan(), schema)

    def _plan(self) -> _Plan:
        """Made once, where Spark loads the data frame, and sent on from there."""
        if not hasattr(self, "_made_plan"):
            self._made_plan = _Plan(parsed(self.options))
        return self._made_plan


class _Plan:
    """What is to be read."""

    options: Options
    contents: tuple[Content, ...]
    logs: list[Log]
    tables: dict[str, pa.Schema]
    columns: list[Column]

    def __init__(self, options: Options) -> None:
        self.options = options
        self.contents = contents_of(options)
        table = None
        if options.is_long:
            self.tables = tables_of(options, self.contents, options.message)
        else:
            self.tables = self._tables_of(str(options.message))
            table = next(iter(self.tables.values()))
        self.logs = found(options.paths)
        keys = dict.fromkeys(key for log in self.logs for key in log.keys)
        self.columns = columns_of(options, table, keys)

    def _tables_of(self, message: str) -> dict[str, pa.Schema]:
        """The table of a message, or those that it has with databases of several channels."""
        try:
            tables = tables_of(self.options, self.contents, message.rpartition("::")[2])
        except UnknownNameError:
            if message in tables_of(replace(self.options, signals=()), self.contents, None):
                raise  # a signal is unknown
            tables = {}
        if message in tables:
            return {message: tables[message]}
        if not tables or "::" in message:
            raise ValueError(f'no database has a message "{message}"; {self._hint(message)}')
        schemas = list(tables.values())
        if any(not schema.equals(schemas[0], check_metadata=True) for schema in schemas):
            raise ValueError(
                f'several databases have a message "{message}", with different signals: '
                + ", ".join(tables)
            )
        return tables

    def _hint(self, message: str) -> str:
        names = list(tables_of(replace(self.options, signals=()), self.contents, None))
        if close := difflib.get_close_matches(message, names, 1):
            return f'did you mean "{close[0]}"?'
        rest = len(names) - _SHOWN_NAMES
        return f"there are {', '.join(names[:_SHOWN_NAMES])}" + (f" and {rest} more" if rest > 0 else "")


class _Task(InputPartition):
    def __init__(self, part: Part) -> None:
        super().__init__(part)


class LogReader(DataSourceReader):
    """One read of logs; Spark sends it to all machines."""

    def __init__(self, plan: _Plan, schema: StructType) -> None:
        options = plan.options
        self._options = options
        self._contents = plan.contents
        self._logs = plan.logs
        self._tables = frozenset(plan.tables)
        self._columns = chosen(plan.columns, schema)
        self._window = TimeWindow(1 if options.nanoseconds else 1000)
        self._signals: frozenset[str] | None = None
        self._drops_nulls = False

    def pushFilters(self, filters: list[Filter]) -> Iterable[Filter]:
        return [each for each in filters if not self._take(each)]

    def _take(self, wanted: Filter) -> bool:
        """Whether rows that a filter drops are not even made."""
        path = getattr(wanted, "attribute", ())
        column = next((c for c in self._columns if (c.name,) == path), None)
        if column is None:
            return False
        if (column.origin, column.source) == ("rows", "time"):
            return self._window.take(wanted) and self._drop_nulls()
        texts = texts_of(wanted)
        if texts is None or column.origin == "corrupt":
            return False
        if column.origin == "rows":
            return self._options.is_long and self._take_names(column.source, texts)
        self._logs = [log for log in self._logs if self._value(log, column) in texts]
        return True

    def _take_names(self, column: str, texts: frozenset[str]) -> bool:
        if column == "message":
            self._tables &= texts
        elif column == "signal":
            self._signals = texts if self._signals is None else self._signals & texts
        else:
            return False
        return self._drop_nulls()

    def _drop_nulls(self) -> bool:
        self._drops_nulls = True
        return True

    @staticmethod
    def _value(log: Log, column: Column) -> str | None:
        return log.path if column.origin == "file" else log.keys.get(column.source)

    def partitions(self) -> list[InputPartition]:
        options = self._options
        logs = self._logs if self._tables else []
        parts = parts_of(logs, options.block_size, lambda path: is_divisible(path, options))
        return [_Task(part) for part in parts]

    def read(self, partition: InputPartition | None) -> Iterator[pa.RecordBatch]:
        if partition is None:  # there is no task
            return
        reading = Reading(partition.value)
        log = reading.part.log
        constants: Constants = {"file": {str(self._options.file_column): log.path}, "key": log.keys}
        for table, batch in reading.batches(self._options, self._contents, self._tables):
            for rows in self._shaped(table, self._window.rows_in(batch)):
                if rows.num_rows:
                    yield with_columns(rows, self._columns, constants)
        texts = self._reported(reading)
        if texts and self._keeps_corrupt:
            yield corrupt_rows(texts, self._columns, constants)

    def _shaped(self, table: str, batch: pa.RecordBatch) -> Iterable[pa.RecordBatch]:
        return long_form(table, batch, self._signals) if self._options.is_long else [batch]

    def _reported(self, reading: Reading) -> list[str]:
        """What was malformed."""
        for problem in reading.problems:
            _log.warning("%s", problem)
        if reading.malformed:
            _log.warning("%s: %d malformed lines", reading.part.log.path, reading.malformed)
        return [*reading.malformed_lines, *reading.problems]

    @property
    def _keeps_corrupt(self) -> bool:
        """Whether malformed lines make rows: those of which only the log is known."""
        has_column = any(column.origin == "corrupt" for column in self._columns)
        return has_column and self._options.mode == "PERMISSIVE" and not self._drops_nulls
