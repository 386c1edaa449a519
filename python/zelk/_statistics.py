"""What became of the lines and frames of logs."""

from __future__ import annotations

from dataclasses import dataclass, field


@dataclass(frozen=True)
class MalformedLine:
    """A line, or packet, that is no frame.

    Attributes
    ----------
    path : str
        The log.
    number : int
        In the log, counted from 1.
    text : str
        Its beginning.
    """

    path: str
    number: int
    text: str

    def __str__(self) -> str:
        return f"{self.path}, line {self.number}: not a frame: {self.text!r}"


@dataclass(frozen=True)
class Statistics:
    """What became of the lines and frames of logs; numbers of them.

    Attributes
    ----------
    lines : int
        Lines or packets, blank ones and comments included; of frames that came as arrays or objects:
        as many as these.
    frames : int
        Frames of all kinds.
    malformed : int
        Lines that are no frames.
    malformed_lines : tuple of MalformedLine
        The first ten of each log.
    decoded : int
        Frames whose message a database has, selected or not.
    unknown : int
        Frames of identifiers that no database has.
    unknown_ids : dict of int to int
        The number of frames with each of these; bit 31 stands for an extended identifier.
    outside : int
        Frames outside of `start` and `stop`.
    too_short : int
        Those of `decoded` with fewer bytes than their message has.
    packets : int
        Packets of the J1939 transport protocol.
    remote, errors : int
        Remote and error frames.
    transport : dict of str to int
        What became of the messages of the J1939 transport protocol.
    problems : tuple of str
        Logs that could not be read to their end, with ``on_error="keep"``.
    """

    lines: int = 0
    frames: int = 0
    malformed: int = 0
    decoded: int = 0
    unknown: int = 0
    outside: int = 0
    too_short: int = 0
    packets: int = 0
    remote: int = 0
    errors: int = 0
    unknown_ids: dict[int, int] = field(default_factory=dict)
    transport: dict[str, int] = field(default_factory=dict)
    malformed_lines: tuple[MalformedLine, ...] = ()
    problems: tuple[str, ...] = ()
