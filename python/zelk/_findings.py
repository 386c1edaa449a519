"""What checks say about files."""

from __future__ import annotations

from typing import NamedTuple


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
