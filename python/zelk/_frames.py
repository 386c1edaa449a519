"""Frames that come as arrays, or as objects, to tables."""

from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any

import numpy as np
import numpy.typing as npt

from ._decoding import ColumnKeywords, Databases, Names, checked_threads, make_decoding
from ._errors import ArgumentError
from ._statistics import Statistics
from ._tables import Tables, gathered
from ._zelk import TableRows, decode_arrays, times_from_seconds
from ._zelk import decode_messages as decode_objects

if TYPE_CHECKING:
    from typing_extensions import Unpack

    Array = npt.NDArray[Any]

_EXTENDED = np.uint32(1 << 31)
_MOST_STANDARD = 0x7FF
_MOST_EXTENDED = 0x1FFFFFFF
_MOST_BYTES = 0xFFFF
_MOST_CHANNELS = 1 << 16
_BLOCK_ROWS = 4096  # that are appended to a table at once, while they are in the processor's caches


def decode_frames(
    db: Databases,
    ids: npt.ArrayLike,
    lengths: npt.ArrayLike | None,
    data: Any,
    times: npt.ArrayLike | None = None,
    channels: Any = None,
    *,
    extended: npt.ArrayLike | None = None,
    offsets: npt.ArrayLike | None = None,
    messages: Names = None,
    signals: Names = None,
    j1939_tp: bool = False,
    threads: int = 0,
    **keywords: Unpack[ColumnKeywords],
) -> Tables:
    """Decode frames in arrays, as packages that read measurement files give them.

    Parameters
    ----------
    db : Database, path, several of them, or dict
        As of `read_log`.
    ids : array_like of int, shape (n,)
        Identifiers. Bit 31 marks an extended one, as do numbers above 0x7FF.
    lengths : array_like of int, shape (n,), or int, optional
        Bytes of each frame; by default the width of `data`.
    data : array_like of uint8
        Shape (n, width): a row for each frame, of which `lengths` bytes count; shape (bytes,): all
        frames in one buffer, packed or at `offsets`; or a list of n bytes objects. Other integers are
        converted when all are from 0 to 255, and other strides by a copy.
    times : array_like, shape (n,), optional
        Integers in ns, floating-point numbers in s (NaN: no time), or datetime64. Seconds that stand
        for a whole number of microseconds mean these exactly.
    channels : array_like of str or int, shape (n,), or one for all frames, optional
        Names or numbers.
    extended : array_like of bool, shape (n,), or bool, optional
        Which identifiers are extended.
    offsets : array_like of int, shape (n,), optional
        Where the data of each frame begins in a buffer.
    messages, signals, j1939_tp, threads, **keywords
        As of `read_log`: values, raw_beside, match_pgn, batch_rows. Without `batch_rows` a table is
        one batch, or few where its frames come at an uneven rate. With `j1939_tp` one thread works.

    Returns
    -------
    Tables
        As of `read_log`; the same for any number of threads.

    Raises
    ------
    ArgumentError
        Arrays of other shapes or types, or values out of range: a ValueError that tells which.

    Examples
    --------
    >>> data = np.zeros((1000, 8), np.uint8)
    >>> zelk.decode_frames("examples/powertrain.dbc", np.full(1000, 0xC8), 8, data)
    """
    whole = "batch_rows" not in keywords
    keywords.setdefault("batch_rows", _BLOCK_ROWS)
    decoding = make_decoding(db, messages, signals, **keywords)
    frame_ids = _ids(ids, extended)
    count = len(frame_ids)
    buffer, starts, sizes = _data(data, lengths, offsets, count)
    width = buffer.shape[1] if buffer.ndim == 2 else 0
    indices, names = _channels(channels, count)
    parts, counts = decode_arrays(
        decoding,
        frame_ids,
        sizes,
        starts,
        width,
        buffer.reshape(-1),
        _times(times, count),
        indices,
        names,
        j1939_tp,
        checked_threads(threads),
        whole,
    )
    return _tables(parts, messages, counts)


def decode_messages(
    iterable: Iterable[Any],
    db: Databases,
    messages: Names = None,
    signals: Names = None,
    *,
    j1939_tp: bool = False,
    **keywords: Unpack[ColumnKeywords],
) -> Tables:
    """Decode frames that are objects, as packages that drive CAN hardware or read logs give them.

    Parameters
    ----------
    iterable : iterable of objects
        With the attributes ``arbitration_id``, ``data`` (bytes), and as far as they have them
        ``timestamp`` (s), ``is_extended_id`` (else identifiers above 0x7FF are extended), ``channel``,
        ``is_fd``, ``is_remote_frame`` and ``is_error_frame``. They are taken as they come, and decoded
        in blocks.
    db, messages, signals, j1939_tp, **keywords
        As of `read_log`: values, raw_beside, match_pgn, batch_rows.

    Returns
    -------
    Tables
        As of `read_log`.

    Raises
    ------
    ArgumentError
        An object is no such frame; the error has its position, counted from 0.
    """
    if isinstance(iterable, (str, bytes)) or not isinstance(iterable, Iterable):
        raise ArgumentError(f"the messages must be an iterable of objects, not {iterable!r}")
    decoding = make_decoding(db, messages, signals, **keywords)
    parts, counts = decode_objects(decoding, j1939_tp, iterable)
    return _tables(parts, messages, counts)


def _tables(parts: list[TableRows], messages: Names, counts: dict[str, Any]) -> Tables:
    filled = {index: [rows] for index, rows in enumerate(parts) if len(rows) > 0}
    return gathered(parts, filled, messages, Statistics(**counts))


def _numbers(values: npt.ArrayLike, what: str, count: int | None) -> Array:
    """Integers in one dimension."""
    if isinstance(values, np.ma.MaskedArray) and np.ma.is_masked(values):
        raise ArgumentError(f"{what} has masked values")
    try:
        array = np.asarray(values)
    except (ValueError, OverflowError) as error:
        raise ArgumentError(f"{what} is no array of integers: {error}") from None
    if array.size == 0 and array.dtype.kind == "f":
        array = array.astype(np.int64)  # of an empty list
    if array.dtype.kind not in "iu":
        raise ArgumentError(f"{what} must be integers, and is of {array.dtype}")
    if count is not None and array.ndim == 0:
        array = np.full(count, array)
    if array.ndim != 1 or (count is not None and len(array) != count):
        wanted = "one dimension" if count is None else f"shape ({count},), as ids has"
        raise ArgumentError(f"{what} must have {wanted}, and has {array.shape}")
    return array


def _in_range(array: Array, what: str, most: int) -> Array:
    if array.size and (array.min() < 0 or array.max() > most):
        bad = int(np.flatnonzero((array < 0) | (array > most))[0])
        raise ArgumentError(f"{what}[{bad}] is {array[bad]}, and must be from 0 to {most:#x}")
    return array


def _ids(ids: npt.ArrayLike, extended: npt.ArrayLike | None) -> Array:
    array = _numbers(ids, "ids", None)
    if extended is None and array.size and array.max() <= _MOST_STANDARD and (array.dtype.kind == "u" or array.min() >= 0):
        return np.ascontiguousarray(array, np.uint32)
    array = _in_range(array, "ids", int(_EXTENDED) | _MOST_EXTENDED)
    result = array.astype(np.uint32)
    bare = result & ~_EXTENDED
    _in_range(bare, "ids, without bit 31,", _MOST_EXTENDED)
    if extended is None:
        return np.where(bare > _MOST_STANDARD, bare | _EXTENDED, result)
    marks = np.asarray(extended)
    if marks.dtype != np.bool_ or marks.shape not in ((), result.shape):
        raise ArgumentError(
            f"extended must be bools of shape {result.shape}, as ids has, and is of {marks.dtype} and {marks.shape}"
        )
    wrong = ~marks & (result > _MOST_STANDARD)
    if wrong.any():
        bad = int(np.flatnonzero(np.broadcast_to(wrong, result.shape))[0])
        raise ArgumentError(f"ids[{bad}] is {int(result[bad]):#x}, which needs 29 bits, and extended says it has 11")
    return np.where(marks, result | _EXTENDED, result)


def _data(data: Any, lengths: Any, offsets: Any, count: int) -> tuple[Array, Array, Array]:
    """A buffer, where each frame begins in it, and the length of each.

    A buffer that has a row for each frame needs no beginnings, and may have one length for all.
    """
    if isinstance(data, (bytes, bytearray, memoryview)):
        data = np.frombuffer(data, np.uint8)
    elif not isinstance(data, np.ndarray) and _is_of_bytes(data):
        return _joined(data, lengths, count)
    try:
        array = np.asarray(data)
    except ValueError as error:
        raise ArgumentError(f"data is no array of bytes: {error}") from None
    if array.dtype != np.uint8:
        if array.dtype.kind not in "iu" and array.size:
            raise ArgumentError(f"data must be bytes, uint8, and is of {array.dtype}")
        flat = _in_range(array.reshape(-1), "data.flat", 0xFF)
        array = flat.astype(np.uint8).reshape(array.shape)
    if array.ndim == 2:
        return _rows(array, lengths, offsets, count)
    if array.ndim != 1 or lengths is None:
        raise ArgumentError(
            f"data must have shape ({count}, width), or be one buffer with lengths, and has {array.shape}"
        )
    sizes = _sizes(lengths, count)
    starts = _packed(sizes) if offsets is None else _numbers(offsets, "offsets", count).astype(np.int64)
    if offsets is None and int(sizes.sum(dtype=np.int64)) != len(array):
        raise ArgumentError(f"data has {len(array)} bytes, and lengths {int(sizes.sum(dtype=np.int64))} in all")
    return np.ascontiguousarray(array), starts, sizes


def _is_of_bytes(data: Any) -> bool:
    return isinstance(data, (list, tuple)) and len(data) > 0 and isinstance(data[0], (bytes, bytearray, memoryview))


def _joined(data: Any, lengths: Any, count: int) -> tuple[Array, Array, Array]:
    try:
        buffer = b"".join(data)
        sizes = np.fromiter((len(each) for each in data), np.int64, len(data))
    except TypeError as error:
        raise ArgumentError(f"data must have bytes alone: {error}") from None
    if len(sizes) != count:
        raise ArgumentError(f"data has {len(sizes)} frames, and ids {count}")
    starts = _packed(_in_range(sizes, "the length of data", _MOST_BYTES))
    if lengths is not None:
        wanted = _sizes(lengths, count)
        _fits(wanted, sizes)
        sizes = wanted
    return np.frombuffer(buffer, np.uint8), starts, sizes.astype(np.uint16)


def _rows(array: Array, lengths: Any, offsets: Any, count: int) -> tuple[Array, Array, Array]:
    if offsets is not None:
        raise ArgumentError("offsets are for data in one buffer, and data has a row for each frame")
    if len(array) != count:
        raise ArgumentError(f"data must have shape ({count}, width), as ids has {count}, and has {array.shape}")
    width = array.shape[1]
    if width > _MOST_BYTES:
        raise ArgumentError(f"data has {width} bytes a frame, and frames have at most {_MOST_BYTES}")
    sizes = np.full(1, width, np.uint16) if lengths is None else _sizes(lengths, 1 if np.ndim(lengths) == 0 else count)
    _fits(sizes, np.broadcast_to(np.uint16(width), sizes.shape))
    return np.ascontiguousarray(array), np.empty(0, np.int64), sizes


def _sizes(lengths: Any, count: int) -> Array:
    return _in_range(_numbers(lengths, "lengths", count), "lengths", _MOST_BYTES).astype(np.uint16)


def _fits(sizes: Array, room: Array) -> None:
    if (sizes > room).any():
        bad = int(np.flatnonzero(sizes > room)[0])
        raise ArgumentError(f"lengths[{bad}] is {int(sizes[bad])}, and data has {int(room[bad])} bytes there")


def _packed(sizes: Array) -> Array:
    ends = np.cumsum(sizes, dtype=np.int64)
    return ends - sizes


def _times(times: npt.ArrayLike | None, count: int) -> Array:
    if times is None:
        return np.empty(0, np.int64)
    array = np.ma.filled(times, np.nan) if isinstance(times, np.ma.MaskedArray) and times.dtype.kind == "f" else np.asarray(times)
    if array.shape != (count,):
        raise ArgumentError(f"times must have shape ({count},), as ids has, and has {array.shape}")
    if array.dtype.kind == "M":
        return array.astype("datetime64[ns]").astype(np.int64)
    if array.dtype.kind == "f":
        return times_from_seconds(np.ascontiguousarray(array, np.float64))
    if array.dtype.kind not in "iu" and count:
        raise ArgumentError(f"times must be ns as integers, seconds as floating-point numbers, or datetime64, and is of {array.dtype}")
    return np.ascontiguousarray(_in_range_of_int64(array))


def _in_range_of_int64(array: Array) -> Array:
    if array.dtype == np.uint64 and array.size and array.max() > 2**63 - 1:
        raise ArgumentError("times has integers beyond 64 bits with sign")
    return array.astype(np.int64)


def _channels(channels: Any, count: int) -> tuple[Array, list[str]]:
    if channels is None or isinstance(channels, (str, int, np.integer)):
        return np.zeros(0, np.uint16), ["" if channels is None else str(channels)]
    array = np.asarray(channels)
    if array.shape != (count,):
        raise ArgumentError(f"channels must have shape ({count},), as ids has, and has {array.shape}")
    if array.dtype.kind not in "iuUO" and count:
        raise ArgumentError(f"channels must be names or numbers, and is of {array.dtype}")
    if array.dtype.kind == "O":
        array = np.array(["" if channel is None else str(channel) for channel in array], dtype=np.str_)
    names, indices = np.unique(array, return_inverse=True)
    if len(names) > _MOST_CHANNELS:
        raise ArgumentError(f"channels has {len(names)} names, and there may be {_MOST_CHANNELS}")
    return indices.astype(np.uint16), [str(name) for name in names]
