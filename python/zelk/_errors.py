"""The exceptions of the package."""

from __future__ import annotations

from typing import Any


class Error(Exception):
    """Base of the package's exceptions.

    Attributes
    ----------
    message : str
        What is wrong.
    path : str or None
        The file it is about.
    line, column : int or None
        The place in the file, both counted from 1.
    findings : tuple of Finding
        All that is wrong with the file, as far as it was looked for.
    """

    def __init__(
        self,
        message: str,
        path: str | None = None,
        line: int | None = None,
        column: int | None = None,
        findings: tuple[Any, ...] = (),
    ) -> None:
        super().__init__(message)
        self.message = message
        self.path = path
        self.line = line
        self.column = column
        self.findings = findings

    def __str__(self) -> str:
        place = ":".join(str(part) for part in (self.path, self.line, self.column) if part is not None)
        return f"{place}: {self.message}" if place else self.message

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self.message, self.path, self.line, self.column, self.findings)


class ReadError(Error, ValueError):
    """A file is none that can be read: it breaks the rules of its format."""


class LogError(ReadError):
    """A log cannot be read, or not to its end.

    Attributes
    ----------
    tables : Tables or None
        What was read, by `read_log`.
    statistics : Statistics or None
        What became of the lines and frames up to there.
    """

    def __init__(self, message: str, path: str | None = None, *others: Any, statistics: Any = None) -> None:
        super().__init__(message, path, *others)
        self.statistics = statistics
        self.tables: Any = None

    def __str__(self) -> str:
        return self.message  # names the log


class LogWarning(UserWarning):
    """A log could not be read, or not to its end, and what was read is kept."""


class WriteError(Error, OSError):
    """A file could not be written, and is as it was, unless the message says otherwise."""


class LockedError(WriteError):
    """Somebody else edits the file."""


class UnknownNameError(Error, KeyError):
    """There is no object with this name or identifier."""


class DecodeError(Error, ValueError):
    """The bytes are no frame of the message."""


class EncodeError(Error, ValueError):
    """The values make no frame of the message."""


class EditError(Error, ValueError):
    """The database cannot hold the change."""


class ReadOnlyError(Error, AttributeError):
    """Databases are changed by their method `edit` alone."""


class DeletedError(Error, ReferenceError):
    """The object was deleted from its database."""


class ArgumentError(Error, ValueError, TypeError):
    """An argument has a type, or a shape, that means nothing here."""


for _error in (Error, *Error.__subclasses__(), LockedError):
    _error.__module__ = "zelk"
