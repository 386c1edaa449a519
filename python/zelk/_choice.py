"""Values that a database describes by a text."""

from __future__ import annotations

from typing import Any


class Choice(str):
    """The text of a value description: a ``str`` that also knows the raw value.

    Attributes
    ----------
    value : int
        The raw value that the text describes.
    """

    __slots__ = ("_value",)
    _value: int

    def __new__(cls, text: str, value: int) -> Choice:
        choice = super().__new__(cls, text)
        choice._value = value
        return choice

    @property
    def value(self) -> int:
        return self._value

    def __int__(self) -> int:
        return self._value

    def __reduce__(self) -> tuple[Any, ...]:
        return Choice, (str(self), self._value)
