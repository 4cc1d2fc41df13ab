"""A field as a property of a battery."""

from __future__ import annotations

from typing import Generic, Optional, TypeVar, overload

T = TypeVar("T")


class _Property(Generic[T]):
    """A field's value, or None where the battery has none to be trusted."""

    def __init__(self, field: int) -> None:
        self._field = field

    @overload
    def __get__(self, battery: None, owner: type) -> "_Property[T]": ...

    @overload
    def __get__(self, battery: object, owner: type) -> Optional[T]: ...

    def __get__(self, battery, owner):
        return self if battery is None else battery.value(self._field)

    def __set__(self, battery: object, value: object) -> None:
        raise AttributeError("what a battery answered cannot be set")


class Text(_Property[str]):
    """Of a text."""


class Number(_Property[int]):
    """Of a number."""


class Real(_Property[float]):
    """Of a real."""


class Flag(_Property[bool]):
    """Of a flag."""
