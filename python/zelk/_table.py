"""Tables of decoded frames."""

from __future__ import annotations

import html
from collections.abc import Iterable, Iterator
from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

from ._errors import ArgumentError, UnknownNameError
from ._zelk import TableRows

if TYPE_CHECKING:
    import pandas

_SHOWN_ROWS = 10


class Table:
    """The frames of one message, decoded into columns.

    The columns are ``time`` (nanoseconds, mostly since 1970-01-01 UTC), ``channel``, and the
    signals in the order of the message. A table never changes. It speaks the Arrow PyCapsule
    protocol: ``pyarrow.table(t)``, ``polars.DataFrame(t)``, ``duckdb.sql("select * from t")`` and
    ``pandas.DataFrame.from_arrow(t)`` take its memory without a copy.

    ``table["Speed"]`` is a column as an array, ``table[["time", "Speed"]]`` a table of some columns.
    """

    __slots__ = ("_rows", "__weakref__")

    def __init__(self, rows: TableRows) -> None:
        if not isinstance(rows, TableRows):
            raise ArgumentError("a table comes from zelk.read_log, decode_frames or decode_messages")
        self._rows = rows

    @property
    def name(self) -> str:
        """The message's name; ``database::message`` where several databases have it."""
        return self._rows.name

    @property
    def database(self) -> str:
        """The name of the message's database."""
        return self._rows.database

    @property
    def columns(self) -> list[str]:
        """The names of the columns."""
        return self._rows.columns

    @property
    def units(self) -> dict[str, str]:
        """The unit of each column that has one."""
        units = {name: unit for name, unit in zip(self.columns, self._rows.units) if unit}
        return {"time": "ns", **units} if "time" in self.columns else units

    @property
    def nbytes(self) -> int:
        """Size of the values, in bytes."""
        return self._rows.nbytes

    @property
    def shape(self) -> tuple[int, int]:
        """The numbers of rows and of columns."""
        return len(self), len(self.columns)

    def __len__(self) -> int:
        return len(self._rows)

    def __getitem__(self, key: str | Iterable[str]) -> Any:
        if isinstance(key, str):
            return self._array(self._index(key), fills=True)
        if isinstance(key, (int, slice)) or not isinstance(key, Iterable):
            raise ArgumentError(
                f"columns are chosen by their names, not by {key!r}; for rows: table.to_numpy()[name][{key!r}]"
            )
        return Table(self._rows.with_columns([self._index(name) for name in key]))

    def __contains__(self, key: object) -> bool:
        return key in self.columns

    def __iter__(self) -> Iterator[str]:
        return iter(self.columns)

    def _index(self, name: str) -> int:
        try:
            return self.columns.index(name)
        except ValueError:
            raise UnknownNameError(
                f"{self.name} has no column {name!r}; it has {', '.join(self.columns)}"
            ) from None

    def _array(self, index: int, fills: bool) -> npt.NDArray[Any]:
        if self._rows.is_text(index):
            codes, texts = self._rows.codes(index)
            # One place more, for None: it is the last one, which the code -1 stands for.
            choices = np.empty(len(texts) + 1, dtype=object)
            choices[:-1] = texts
            if len(codes) > 0 and codes.min() == codes.max():
                return np.broadcast_to(choices[codes[:1]], codes.shape)
            return choices[codes]
        values = self._rows.values(index, fills)
        if fills and values.dtype.kind == "f":
            return values
        nulls = self._rows.nulls(index)
        return values if nulls is None else np.ma.MaskedArray(values, nulls)

    def to_numpy(self, fill: bool = True) -> dict[str, npt.NDArray[Any]]:
        """The columns as arrays.

        Parameters
        ----------
        fill : bool
            Where a signal is absent, arrays of floating-point numbers have NaN. When false, they are
            masked arrays then, as those of integers always are: these have no NaN.

        Returns
        -------
        dict of str to numpy.ndarray
            Arrays of shape ``(len(table),)``: ``time`` as int64 in ns, physical values as float64 in
            the signal's unit, texts as str objects, None where there is none. Arrays of a table of one
            batch are its memory, without a copy, and read-only; those of longer tables, and of
            columns that are filled, are copies. A column of one text is this text without a copy for
            each row, and read-only.
        """
        return {name: self._array(i, fill) for i, name in enumerate(self.columns)}

    def to_pandas(self, *, times: str = "datetime") -> pandas.DataFrame:
        """The table as a data frame, without going through pyarrow.

        Parameters
        ----------
        times : {"datetime", "ns", "seconds"}
            What the column ``time`` holds: datetime64[ns] in UTC, as a log without a date counts from
            1970; integers; or seconds as floating-point numbers.

        Returns
        -------
        pandas.DataFrame
            NaN stands where a signal is absent, texts are categories, and columns of integers with
            absent values have pandas' own integers that know NA.
        """
        import pandas

        if times not in ("datetime", "ns", "seconds"):
            raise ArgumentError(f"times must be 'datetime', 'ns' or 'seconds', not {times!r}")
        data: dict[str, Any] = {}
        for i, name in enumerate(self.columns):
            if self._rows.is_text(i):
                codes, texts = self._rows.codes(i)
                data[name] = pandas.Categorical.from_codes(codes, categories=texts)
            elif name == "time" and times != "ns":
                data[name] = self._times(i, times)
            else:
                data[name] = self._pandas_values(i)
        return pandas.DataFrame(data, copy=False)

    def _times(self, index: int, times: str) -> npt.NDArray[Any]:
        values = self._rows.values(index, False)
        nulls = self._rows.nulls(index)
        result: npt.NDArray[Any] = values.view("datetime64[ns]") if times == "datetime" else values / 1e9
        if nulls is not None:
            result = np.where(nulls, np.datetime64("NaT", "ns") if times == "datetime" else np.nan, result)
        return result

    def _pandas_values(self, index: int) -> Any:
        import pandas

        values = self._rows.values(index, True)
        nulls = None if values.dtype.kind == "f" else self._rows.nulls(index)
        if nulls is None:
            return values
        return pandas.arrays.IntegerArray(np.array(values), nulls)

    def plot(self, *signals: str, ax: Any = None, **keywords: Any) -> Any:
        """Draw signals over time, with Matplotlib.

        Parameters
        ----------
        *signals : str
            Names of columns; none: all with numbers.
        ax : matplotlib.axes.Axes, optional
            Where to draw; by default below each other in a new figure, one axis for each unit.
        **keywords
            For ``Axes.plot``.

        Returns
        -------
        matplotlib.axes.Axes or list of them
        """
        from ._plotting import plot

        return plot(self, signals, ax, keywords)

    def __arrow_c_schema__(self) -> object:
        return self._rows.__arrow_c_schema__()

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        return self._rows.__arrow_c_stream__(requested_schema)

    def __reduce__(self) -> Any:
        raise TypeError(
            "a table cannot be pickled; for another process take pyarrow.table(t), which can, or t.to_numpy()"
        )

    def __repr__(self) -> str:
        return f"<zelk.Table {self.name}: {len(self)} rows of {', '.join(self.headings())}>"

    def headings(self) -> list[str]:
        """The columns with their units: ``"Speed [km/h]"``."""
        units = self.units
        return [f"{name} [{units[name]}]" if name in units else name for name in self.columns]

    def _repr_html_(self) -> str:
        shown = min(len(self), _SHOWN_ROWS)
        columns = [array[:shown] for array in self.to_numpy().values()]
        head = "".join(f"<th>{html.escape(text)}</th>" for text in self.headings())
        rows = "".join(
            "<tr>" + "".join(f"<td>{html.escape(_cell(array[row]))}</td>" for array in columns) + "</tr>"
            for row in range(shown)
        )
        more = f"<p>{len(self)} rows in all</p>" if len(self) > shown else ""
        title = html.escape(self.name)
        return f"<table><caption>{title}</caption><thead><tr>{head}</tr></thead><tbody>{rows}</tbody></table>{more}"


def _cell(value: Any) -> str:
    if value is None or value is np.ma.masked or (isinstance(value, float) and np.isnan(value)):
        return ""
    return str(value)
