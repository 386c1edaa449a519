"""Reading databases."""

from __future__ import annotations

import os

from ._zelk import Database

Path = str | os.PathLike[str]


def load(*paths: Path, repair: bool = False) -> Database:
    """Read database files.

    Parameters
    ----------
    *paths : str or os.PathLike
        Files, at least one. The extension tells the format: ``.kcd``, ``.json``, and DBC for all
        others. Several files become one database, in which lookups ask them in this order.
    repair : bool
        Mend DBC files that break the rules, as `zelk.repair` does; the files stay as they are.

    Returns
    -------
    Database

    Raises
    ------
    ReadError
        A file cannot be read; it tells the file, line and column, and all that is wrong with it.
    OSError
        A file cannot be opened.

    Examples
    --------
    >>> zelk.load("examples/powertrain.dbc").messages["EngineStatus"].length
    8
    """
    if not paths:
        raise ValueError("load needs the path of a file")
    return Database([os.fspath(path) for path in paths], repair)


def _load_all(paths: tuple[str, ...], repair: bool) -> Database:
    """What a pickled database is made of again: its files."""
    return Database(list(paths), repair)
