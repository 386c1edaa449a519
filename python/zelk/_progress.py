"""A bar that tells how far the reading of logs is."""

from __future__ import annotations

import os
import sys
import time
from typing import TextIO

_WIDTH = 24
_FIRST = 0.5  # seconds of work that need no bar


class ProgressBar:
    """Shows the progress on a terminal, for what takes longer than a moment."""

    def __init__(self, stream: TextIO | None = None) -> None:
        self._stream = sys.stderr if stream is None else stream
        self._begin = time.monotonic()
        self._is_shown = False

    def __call__(self, path: str, read: int, size: int | None) -> None:
        if time.monotonic() - self._begin < _FIRST or not self._stream.isatty():
            return
        name = os.path.basename(path)
        if size:
            done = min(read / size, 1.0)
            text = f"[{'#' * int(done * _WIDTH):{_WIDTH}}] {done:4.0%} {name}"
        else:
            text = f"{read / 1e6:.0f} MB {name}"
        printable = "".join(c if c.isprintable() else "?" for c in text)
        self._stream.write(f"\r\x1b[K{printable}")
        self._stream.flush()
        self._is_shown = True

    def clear(self) -> None:
        """Remove the bar."""
        if self._is_shown:
            self._stream.write("\r\x1b[K")
            self._stream.flush()
            self._is_shown = False
