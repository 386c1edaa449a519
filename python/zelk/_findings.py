"""What checks say about files."""

from __future__ import annotations

from typing import Any, NamedTuple


class Finding(NamedTuple):
    """Something that a check says about a file.

    Attributes
    ----------
    severity : str
        ``"note"``, ``"warning"`` or ``"error"``.
    rule : str
        Name of the rule, fault or mend: ``"unknown-message"``.
    message : str
        What is wrong.
    path : str
        The file.
    line, column : int
        The place in the file, counted from 1.
    """

    severity: str
    rule: str
    message: str
    path: str
    line: int
    column: int

    def __str__(self) -> str:
        return f"{self.path}:{self.line}:{self.column}: {self.severity}: {self.message} [{self.rule}]"


class Change(NamedTuple):
    """What an object has another value of.

    Attributes
    ----------
    name : str
        Of the property or attribute; ``"value 3"`` for the description of a raw value.
    before, after : int, float, str, bool, tuple or None
        Its values; None where there is none.
    """

    name: str
    before: Any
    after: Any


class Difference(NamedTuple):
    """An object that is not the same in two databases.

    Attributes
    ----------
    presence : str
        ``"removed"``, ``"added"`` or ``"changed"``.
    kind : str
        ``"message"``, ``"signal"``, ... or ``"network"`` for the database itself.
    name : str or None
        The object's name; None for the network.
    message : str or None
        Name of the message that has it.
    changes : tuple of Change
        Of a changed object.
    """

    presence: str
    kind: str
    name: str | None
    message: str | None
    changes: tuple[Change, ...]

    def __str__(self) -> str:
        owner = f"{self.message}." if self.message else ""
        changes = "; ".join(f"{c.name}: {c.before!r} -> {c.after!r}" for c in self.changes)
        return f"{self.presence} {self.kind} {owner}{self.name or ''}".rstrip() + (f": {changes}" if changes else "")
