"""Tables of several messages."""

from __future__ import annotations

import html
from collections.abc import Iterator, Mapping

from ._decoding import Names, names_of
from ._errors import UnknownNameError
from ._statistics import Statistics
from ._table import Table
from ._zelk import TableRows

_SHOWN_TABLES = 50


class Tables(Mapping[str, Table]):
    """Tables by the names of their messages.

    Messages without a frame have no table, except for those that were asked for by their whole name:
    theirs is empty.

    Attributes
    ----------
    statistics : Statistics
        What became of the frames and lines.
    """

    def __init__(self, tables: dict[str, Table], statistics: Statistics) -> None:
        self._tables = tables
        self.statistics = statistics

    def __getitem__(self, name: str) -> Table:
        try:
            return self._tables[name]
        except KeyError:
            known = ", ".join(list(self._tables)[:_SHOWN_TABLES]) or "none"
            raise UnknownNameError(f"no frame of a message {name!r} was decoded; there are tables of: {known}") from None

    def __contains__(self, name: object) -> bool:
        return name in self._tables

    def __iter__(self) -> Iterator[str]:
        return iter(self._tables)

    def __len__(self) -> int:
        return len(self._tables)

    def __repr__(self) -> str:
        lines = [f"  {name}: {len(table)} rows, {len(table.columns)} columns" for name, table in self._tables.items()]
        more = [f"  ... {len(lines) - _SHOWN_TABLES} more"] if len(lines) > _SHOWN_TABLES else []
        return "\n".join([f"<zelk.Tables: {len(lines)} messages", *lines[:_SHOWN_TABLES], *more]) + ">"

    def _repr_html_(self) -> str:
        rows = "".join(
            f"<tr><td>{html.escape(name)}</td><td>{len(table)}</td><td>{html.escape(', '.join(table.headings()))}</td></tr>"
            for name, table in self._tables.items()
        )
        return f"<table><thead><tr><th>message</th><th>rows</th><th>columns</th></tr></thead><tbody>{rows}</tbody></table>"


def gathered(
    empty: list[TableRows], parts: dict[int, list[TableRows]], messages: Names, statistics: Statistics
) -> Tables:
    """Tables of all rows, in the order of databases and messages; also empty ones that are asked for by name."""
    asked = set(names_of(messages, "messages"))
    tables = {}
    for index, rows in enumerate(empty):
        if index in parts or rows.name in asked:
            tables[rows.name] = Table(TableRows.joined(parts.get(index, [rows])))
    return Tables(tables, statistics)
