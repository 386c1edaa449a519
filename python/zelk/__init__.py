"""CAN network databases, and logs of frames as columns."""

from ._errors import (
    ArgumentError,
    DecodeError,
    DeletedError,
    EditError,
    EncodeError,
    Error,
    LockedError,
    ReadError,
    ReadOnlyError,
    UnknownNameError,
    WriteError,
)
from ._attributes import Attributes
from ._checks import diff, lint, repair
from ._choice import Choice
from ._findings import Change, Difference, Finding
from ._loading import load
from ._zelk import VERSION as __version__
from ._zelk import Database, Edit, EnvironmentVariable, Message, Node, Signal

__all__ = [
    "ArgumentError",
    "Attributes",
    "Change",
    "Choice",
    "Database",
    "DecodeError",
    "DeletedError",
    "Difference",
    "Edit",
    "EditError",
    "EncodeError",
    "EnvironmentVariable",
    "Error",
    "Finding",
    "LockedError",
    "Message",
    "Node",
    "ReadError",
    "ReadOnlyError",
    "Signal",
    "UnknownNameError",
    "WriteError",
    "__version__",
    "diff",
    "lint",
    "load",
    "repair",
]
