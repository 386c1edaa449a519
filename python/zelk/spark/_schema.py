"""The columns that Spark gets, and decoded rows as such."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from dataclasses import dataclass, replace
from typing import Union

import pyarrow as pa
import pyarrow.compute as pc
from pyspark.sql import types as st

from ._options import Options

# For each origin of columns but "rows": what all rows of a log have in them.
Constants = Mapping[str, Mapping[str, Union[str, None]]]

_MICROSECONDS = pa.timestamp("us", tz="UTC")
# Spark has neither dictionaries nor integers without a sign.
_WIDENED = {
    pa.uint8(): pa.int16(),
    pa.uint16(): pa.int32(),
    pa.uint32(): pa.int64(),
    pa.uint64(): pa.decimal128(20, 0),
}
_SPARK: dict[pa.DataType, st.DataType] = {
    pa.int8(): st.ByteType(),
    pa.int16(): st.ShortType(),
    pa.int32(): st.IntegerType(),
    pa.int64(): st.LongType(),
    pa.decimal128(20, 0): st.DecimalType(20, 0),
    pa.float32(): st.FloatType(),
    pa.float64(): st.DoubleType(),
    pa.string(): st.StringType(),
    _MICROSECONDS: st.TimestampType(),
}
_LONG_FORM = pa.schema(
    [
        ("time", pa.int64()),
        ("channel", pa.string()),
        ("message", pa.string()),
        ("signal", pa.string()),
        ("value", pa.float64()),
    ]
)


@dataclass(frozen=True)
class Column:
    name: str  # in Spark
    origin: str  # "rows", or what the log gives to all of its rows: "file", "key", "corrupt"
    source: str  # the name that it has there
    type: pa.DataType
    unit: str = ""


def columns_of(options: Options, table: pa.Schema | None, keys: Iterable[str]) -> list[Column]:
    """All columns: decoded ones, then those of the options, and of folders named ``KEY=VALUE``.

    Spark knows names without regard to case: a signal ``Time`` beside ``time`` becomes ``Time_2``.
    """
    rows = [("rows", f.name, _type_of(f, options), _unit_of(f)) for f in table or _LONG_FORM]
    added = [("key", key) for key in keys]
    if options.file_column:
        added.insert(0, ("file", options.file_column))
    if options.column_name_of_corrupt_record:
        added.append(("corrupt", options.column_name_of_corrupt_record))
    columns: list[Column] = []
    used: set[str] = set()
    for origin, name, type_, unit in rows + [(*each, pa.string(), "") for each in added]:
        columns.append(Column(_unused(name, used), origin, name, type_, unit))
    return columns


def _type_of(of_rows: pa.Field, options: Options) -> pa.DataType:
    if of_rows.name == "time" and not options.nanoseconds:
        return _MICROSECONDS
    if pa.types.is_dictionary(of_rows.type):
        return pa.string()
    return _WIDENED.get(of_rows.type, of_rows.type)


def _unit_of(of_rows: pa.Field) -> str:
    metadata: dict[bytes, bytes] = of_rows.metadata or {}
    return metadata.get(b"unit", b"").decode()


def _unused(name: str, used: set[str]) -> str:
    result, number = name, 2
    while result.lower() in used:
        result, number = f"{name}_{number}", number + 1
    used.add(result.lower())
    return result


def schema_of(columns: Iterable[Column]) -> st.StructType:
    """For Spark; the metadata of a signal has its unit."""
    return st.StructType(
        [
            st.StructField(c.name, _SPARK[c.type], True, {"unit": c.unit} if c.unit else None)
            for c in columns
        ]
    )


def chosen(columns: list[Column], schema: st.StructType) -> list[Column]:
    """The columns of a schema, which may be one that the user gave, with some of them."""
    by_name = {column.name.lower(): column for column in columns}
    result = []
    for wanted in schema.fields:
        column = by_name.get(wanted.name.lower())
        if column is None:
            raise ValueError(
                f'there is no column "{wanted.name}"; the columns are '
                + ", ".join(each.name for each in columns)
            )
        if _SPARK[column.type] != wanted.dataType:
            raise ValueError(
                f'column "{wanted.name}" has the type {_SPARK[column.type].simpleString()}, '
                f"not {wanted.dataType.simpleString()}"
            )
        result.append(replace(column, name=wanted.name))
    return result


def with_columns(
    batch: pa.RecordBatch, columns: Iterable[Column], constants: Constants
) -> pa.RecordBatch:
    """Decoded rows as Spark takes them."""
    arrays = []
    for column in columns:
        if column.origin == "rows":
            arrays.append(_cast(batch.column(column.source), column.type))
        else:
            value = constants.get(column.origin, {}).get(column.source)
            arrays.append(pa.repeat(pa.scalar(value, pa.string()), batch.num_rows))
    return pa.RecordBatch.from_arrays(arrays, names=[column.name for column in columns])


def corrupt_rows(
    texts: list[str], columns: Iterable[Column], constants: Constants
) -> pa.RecordBatch:
    """A row for each text, in which nothing else is known than where it stands."""
    arrays = []
    for column in columns:
        value = constants.get(column.origin, {}).get(column.source)
        if column.origin == "corrupt":
            arrays.append(pa.array(texts, pa.string()))
        else:
            arrays.append(pa.repeat(pa.scalar(value, column.type), len(texts)))
    return pa.RecordBatch.from_arrays(arrays, names=[column.name for column in columns])


def _cast(values: pa.Array, type_: pa.DataType) -> pa.Array:
    if type_ != _MICROSECONDS:
        return values if values.type == type_ else values.cast(type_)
    first = pc.min(values).as_py()
    if first is not None and first < 0:  # rounded down too, as filters expect it
        times = values.cast(pa.timestamp("ns"))
        return pc.floor_temporal(times, unit="microsecond").cast(type_)
    return pc.divide(values, 1000).cast(type_)


def long_form(
    message: str, batch: pa.RecordBatch, signals: frozenset[str] | None
) -> Iterable[pa.RecordBatch]:
    """The rows of a table, with a row for each value of a signal.

    Parameters
    ----------
    signals : frozenset of str or None
        Those that are wanted; None: all.
    """
    for name in batch.schema.names[2:]:
        if signals is None or name in signals:
            some = batch.select(["time", "channel", name])
            some = some.filter(pc.is_valid(some.column(name)))
            texts = [pa.repeat(pa.scalar(text, pa.string()), some.num_rows) for text in (message, name)]
            arrays = [some.column(0), some.column(1), *texts, some.column(2).cast(pa.float64())]
            yield pa.RecordBatch.from_arrays(arrays, names=_LONG_FORM.names)
