"""CAN network databases, and logs of frames as columns."""

from ._errors import (
    ArgumentError,
    DecodeError,
    DeletedError,
    EditError,
    EncodeError,
    Error,
    LockedError,
    LogError,
    LogWarning,
    ReadError,
    ReadOnlyError,
    UnknownNameError,
    WriteError,
)
from ._attributes import Attributes
from ._checks import diff, lint, repair
from ._choice import Choice
from ._findings import Change, Difference, Finding
from ._frames import decode_frames, decode_messages
from ._loading import load
from ._log import Batches, read_batches, read_log
from ._parquet import Part, to_parquet
from ._statistics import MalformedLine, Statistics
from ._table import Table
from ._tables import Tables
from ._zelk import VERSION as __version__
from ._zelk import Database, Edit, EnvironmentVariable, Message, Node, Signal

__all__ = [
    "ArgumentError",
    "Attributes",
    "Batches",
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
    "LogError",
    "LogWarning",
    "MalformedLine",
    "Message",
    "Node",
    "Part",
    "ReadError",
    "ReadOnlyError",
    "Signal",
    "Statistics",
    "Table",
    "Tables",
    "UnknownNameError",
    "WriteError",
    "__version__",
    "decode_frames",
    "decode_messages",
    "diff",
    "lint",
    "load",
    "read_batches",
    "read_log",
    "repair",
    "to_parquet",
]
