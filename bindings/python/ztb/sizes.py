"""Sizes of memory, as numbers of bytes or as texts."""

from __future__ import annotations

import re
from typing import SupportsIndex, Union

from . import arguments

Size = Union[SupportsIndex, str]

_UNITS = {"": 0, "K": 1, "M": 2, "G": 3, "T": 4}
_SIZE = re.compile("([0-9]+)([KMGT]?)", re.IGNORECASE)
_LARGEST = 2**64 - 1


def bytes_of(size: Size, name: str) -> int:
    """The bytes of a size; ``name`` is that of the argument, for the errors."""
    count: int
    if isinstance(size, str):
        match = _SIZE.fullmatch(size)
        count = int(match[1]) * 1024 ** _UNITS[match[2].upper()] if match else 0
    elif isinstance(size, bool):
        raise TypeError(f"{name} is a bool, expected a number of bytes or a text")
    else:
        count = arguments.whole(size, f"number of bytes, nor a text, for {name}")
    if not 0 < count <= _LARGEST:
        raise ValueError(
            f"{name} {size!r} is no size, expected bytes from 1 on, or a text of a whole number "
            "with or without K, M, G or T, as '2G'"
        )
    return count
