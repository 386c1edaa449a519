"""Attributes of objects."""

from __future__ import annotations

from collections.abc import Iterator, MutableMapping
from typing import Protocol

Value = int | float | str


class _Holder(Protocol):
    def get_attributes(self) -> dict[str, Value]: ...
    def set_attribute(self, name: str, value: Value) -> None: ...
    def reset_attribute(self, name: str) -> None: ...


class Attributes(MutableMapping[str, Value]):
    """The attributes of one object by name: its own values, or else the defaults.

    Values are assigned within an edit alone (`Database.edit`); to delete one brings the default
    back.
    """

    __slots__ = ("_holder",)

    def __init__(self, holder: _Holder) -> None:
        self._holder = holder

    def __getitem__(self, name: str) -> Value:
        return self._holder.get_attributes()[name]

    def __setitem__(self, name: str, value: Value) -> None:
        self._holder.set_attribute(name, value)

    def __delitem__(self, name: str) -> None:
        self._holder.reset_attribute(name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._holder.get_attributes())

    def __len__(self) -> int:
        return len(self._holder.get_attributes())

    def __repr__(self) -> str:
        return repr(self._holder.get_attributes())
