"""Arguments of a wrong type or of no sense, refused in the words of this package."""

from __future__ import annotations

import operator
import os
from collections.abc import Iterable as IterableClass
from typing import Any, Iterable, Sequence, Union

import numpy as np

from .rounding import warn_of_value

#: What float() takes, and what is no real number all the same.
_NO_NUMBERS = (str, bytes, bytearray, np.complexfloating, np.datetime64, np.timedelta64)


def shown(value: object) -> str:
    """A value with its type, as errors name it."""
    return f"{value!r} ({type(value).__name__})"


def text(value: object, what: str) -> str:
    """An argument that is a ``str``."""
    if isinstance(value, str):
        return value
    raise TypeError(f"{shown(value)} is no {what}, expected a str")


def whole(value: object, what: str) -> int:
    """An argument that is a whole number."""
    if not isinstance(value, bool):
        try:
            return operator.index(value)  # type: ignore[arg-type]
        except TypeError:
            pass
    raise TypeError(f"{shown(value)} is no {what}, expected an int")


def real(value: object, what: str) -> float:
    """An argument that is a number."""
    if not isinstance(value, _NO_NUMBERS):
        try:
            return float(value)  # type: ignore[arg-type]
        except TypeError:
            pass
    raise TypeError(f"{shown(value)} is no {what}, expected a number")


def flag(value: object, what: str) -> bool:
    """An argument that is true or false."""
    if isinstance(value, (bool, np.bool_)):
        return bool(value)
    raise TypeError(f"{shown(value)} is no value for {what}, expected True or False")


def path(value: object) -> Union[str, bytes]:
    """The name of a file."""
    if isinstance(value, (str, bytes, os.PathLike)):
        return os.fspath(value)
    raise TypeError(f"{shown(value)} is no path of a file, expected a str or a path object")


def choice(value: object, what: str, choices: Sequence[str]) -> str:
    """An argument that is one of some words."""
    expected = f"expected one of {', '.join(choices)}"
    if not isinstance(value, str):
        raise TypeError(f"{shown(value)} is no {what}, {expected}")
    if value not in choices:
        raise ValueError(f"no {what} {value!r}, {expected}")
    return value


def several(values: object, what: str) -> Iterable[Any]:
    """An argument that holds several values; a text or a frame is not several."""
    if isinstance(values, str):
        raise TypeError(f"{values!r} is one {what}, expected several, as in [{values!r}]")
    if isinstance(values, IterableClass) and not isinstance(values, (bytes, bytearray)):
        if not is_frame(values):
            return values
        raise TypeError(f"a {type(values).__name__} holds no {what}s, expected a list or the like")
    raise TypeError(f"{shown(values)} holds no {what}s, expected a list or the like")


def is_frame(value: object) -> bool:
    """Whether it is a frame of pandas, which is not imported for that."""
    return hasattr(value, "iloc") and hasattr(value, "columns")


def number(value: object, symbol: str) -> float:
    """A value that is to go into a symbol, as a double."""
    if not isinstance(value, _NO_NUMBERS):
        try:
            double = float(value)  # type: ignore[arg-type]
            warn_of_value(value, double, symbol)
            return double
        except TypeError:
            pass
        except OverflowError:
            raise OverflowError(f"a value of symbol {symbol} is larger than any double") from None
    raise TypeError(f"the value {shown(value)} of symbol {symbol} is no number")
