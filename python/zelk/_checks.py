"""Checks of files, and comparisons."""

from __future__ import annotations

from collections.abc import Iterable

from . import _zelk
from ._findings import Difference, Finding
from ._loading import Path, load


def lint(path: Path, *, disable: Iterable[str] = (), limit: int = 0) -> tuple[Finding, ...]:
    """What is wrong, or likely to be, in a DBC file.

    Parameters
    ----------
    path : str or os.PathLike
        The file.
    disable : iterable of str
        Names of rules that are switched off.
    limit : int
        Findings at most, the first ones; 0 for all.

    Returns
    -------
    tuple of Finding
        In the order of the file. Of a file that cannot be read the faults for which it is refused.
    """
    return _zelk.lint(path, disable, limit)


def repair(src: Path, dst: Path, *, keep: Iterable[str] = (), no_node: Iterable[str] = ()) -> tuple[Finding, ...]:
    """Mend a DBC file that breaks the rules, so that it can be read.

    Parameters
    ----------
    src : str or os.PathLike
        The file; it stays as it is.
    dst : str or os.PathLike
        Another file, which is written, or replaced in one step.
    keep : iterable of str
        Names of mends that are switched off.
    no_node : iterable of str
        Names of nodes that stand for no node.

    Returns
    -------
    tuple of Finding
        What was mended.

    Raises
    ------
    ReadError
        The file cannot be mended; nothing is written.
    WriteError
        The result cannot be written.
    """
    return _zelk.repair(src, dst, keep, no_node)


def diff(before: _zelk.Database | Path, after: _zelk.Database | Path) -> tuple[Difference, ...]:
    """What differs between two databases, object by object.

    Parameters
    ----------
    before, after : Database, or path of a file
        Messages are matched by identifier, then by name; all else by name.

    Returns
    -------
    tuple of Difference
        Order and encoding are no difference.
    """
    pair = [d if isinstance(d, _zelk.Database) else load(d) for d in (before, after)]
    return _zelk.diff(pair[0], pair[1])
