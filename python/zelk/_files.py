"""Tables into files, by pyarrow: none of them is there before all of them are whole."""

from __future__ import annotations

import os
import urllib.parse
from collections import OrderedDict
from collections.abc import Callable
from typing import Any

from ._table import Table
from ._zelk import take_places

MOST_OPEN = 200  # files; systems let a process have about 1,000


def file_name(text: str) -> str:
    """A name that is one on every system, and that engines read back: ``%`` and digits for others."""
    name = urllib.parse.quote(text, safe=" !#$&'()+,;@[]^`{}~")
    return "%2E" + name[1:] if name.startswith(".") else name


class FileSet:
    """Files with the rows of messages, written beside their places and renamed by `commit`.

    Used as a context manager, it removes what was not committed. When too many files are open, one is
    closed, and its message goes on in a further one.

    Parameters
    ----------
    path_of : callable
        Gives the path of a message's file, by its name and the number of the file, counted from 0.
    open_writer : callable
        Opens what writes tables of a schema to a path: with ``write_table`` and ``close``.

    Attributes
    ----------
    rows : dict of str to int
        The number of rows of each message.
    """

    def __init__(self, path_of: Callable[[str, int], str], open_writer: Callable[[str, Any], Any]) -> None:
        self._path_of = path_of
        self._open_writer = open_writer
        self._open: OrderedDict[str, Any] = OrderedDict()
        self._files: dict[str, list[tuple[str, str]]] = {}  # as written, and their places
        self._new_folders: list[str] = []
        self.rows: dict[str, int] = {}

    def write(self, table: Table) -> None:
        """Append rows of a message."""
        import pyarrow

        rows = pyarrow.table(table)
        if table.name not in self._open:
            self._add_file(table.name, rows.schema)
        self._open.move_to_end(table.name)
        self._open[table.name].write_table(rows)
        self.rows[table.name] = self.rows.get(table.name, 0) + len(table)

    def _add_file(self, message: str, schema: Any) -> None:
        if len(self._open) >= MOST_OPEN:
            self._open.popitem(last=False)[1].close()
        files = self._files.setdefault(message, [])
        place = self._path_of(message, len(files))
        folder, name = os.path.split(place)
        self._make_folder(folder)
        files.append((os.path.join(folder, f".{name}.{os.getpid()}"), place))
        self._open[message] = self._open_writer(files[-1][0], schema)

    def _make_folder(self, folder: str) -> None:
        if folder and not os.path.isdir(folder):
            self._make_folder(os.path.dirname(folder))
            os.makedirs(folder, exist_ok=True)
            self._new_folders.append(folder)

    def commit(self) -> dict[str, list[str]]:
        """Put all files on the disk, and in their places; those that are there keep their permissions.

        Returns
        -------
        dict of str to list of str
            The paths of each message's files.

        Raises
        ------
        WriteError
            A file cannot take its place. When it must not be written, none of them does.
        """
        self._close()
        moves = [file for files in self._files.values() for file in files]
        take_places(moves, self._new_folders)
        done = {message: [place for _, place in files] for message, files in self._files.items()}
        self._files = {}
        return done

    def _close(self) -> None:
        while self._open:
            self._open.popitem()[1].close()

    def __enter__(self) -> FileSet:
        return self

    def __exit__(self, *_: object) -> None:
        try:
            self._close()
        finally:
            for written, _place in (file for files in self._files.values() for file in files):
                if os.path.exists(written):
                    os.remove(written)


def flat_files(folder: str, form: str) -> FileSet:
    """Files ``FOLDER/MESSAGE.csv``, or ``.arrows``, the stream form of Arrow."""

    def path_of(message: str, number: int) -> str:
        more = f"-{number + 1}" if number else ""
        return os.path.join(folder, file_name(message.replace("::", ".")) + f"{more}.{form}")

    return FileSet(path_of, _open_csv if form == "csv" else _open_arrow)


def _open_csv(path: str, schema: Any) -> Any:
    import pyarrow.csv

    return pyarrow.csv.CSVWriter(path, schema)


def _open_arrow(path: str, schema: Any) -> Any:
    import pyarrow.ipc

    # The form for files has one dictionary for each column, and that of the channels grows.
    return pyarrow.ipc.new_stream(path, schema)
