"""Whole numbers that no double holds: the nearest one goes into the symbol, and a warning tells."""

from __future__ import annotations

import numbers
import warnings
from typing import Any, Callable

import numpy as np
import numpy.typing as npt

from .texts import level_of_caller

#: From here on not every whole number is a double.
_FIRST_INEXACT = 2.0**53


def may_be_rounded(doubles: npt.NDArray[np.float64]) -> npt.NDArray[np.bool_]:
    """Which of these may come from a whole number that no double holds."""
    return np.greater_equal(np.abs(doubles), _FIRST_INEXACT)


def warn_of_value(value: object, double: float, symbol: str, place: str = "") -> None:
    """Warns of a single value that became another one."""
    if abs(double) < _FIRST_INEXACT or not isinstance(value, numbers.Integral):
        return
    if int(value) != int(double):
        _warn(f"{place}{int(value)} for symbol {symbol}")


def warn_of_cells(
    cells: npt.NDArray[Any], symbol: str, place: Callable[[npt.NDArray[np.bool_]], str]
) -> None:
    """Warns of the first of these integers that no double holds, where there is one. ``place`` names
    the first marked cell."""
    if cells.dtype.kind not in "iu" or cells.dtype.itemsize < 8 or cells.size == 0:
        return
    if int(cells.max()) < _FIRST_INEXACT and int(cells.min()) > -_FIRST_INEXACT:
        return
    sizes = cells.astype(np.uint64)
    sizes = np.where(np.less(cells, 0), ~sizes + np.uint64(1), sizes)
    # A double holds 53 bits; what lies below the last bit that is set takes none of them.
    lowest = np.maximum(sizes & (~sizes + np.uint64(1)), np.uint64(1))
    rounded = sizes // lowest >= np.uint64(2**53)
    if rounded.any():
        _warn(f"{place(rounded)}: {int(cells[rounded].flat[0])} for symbol {symbol}")


def _warn(what: str) -> None:
    warnings.warn(
        f"{what} is no double, the nearest one is taken", UserWarning, stacklevel=level_of_caller()
    )
