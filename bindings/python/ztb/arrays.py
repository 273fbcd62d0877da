"""Dense arrays as they come in: their cells as numbers, with NaN for missing ones."""

from __future__ import annotations

import sys
from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

from .arguments import number
from .missing import require_choice
from .rounding import warn_of_cells


def truths(array: object, symbol: str, nan: str) -> npt.NDArray[np.bool_]:
    """The cells of an array as truth, a number being true but for zero. Missing ones are an error,
    or not true for ``nan="skip"``."""
    require_choice(nan, ("skip", "error"))
    cells, masked = _cells(array, symbol)
    if cells.dtype == np.bool_ and masked is None:
        return cells
    doubles = _doubles(cells, masked, symbol)
    absent = np.isnan(doubles)
    if nan == "error" and absent.any():
        raise ValueError(
            f"{first_cell(absent)}: whether it is an element of set {symbol} is missing; "
            "nan='skip' makes no element of it"
        )
    return np.not_equal(doubles, 0) & ~absent


def floats(array: object, symbol: str) -> npt.NDArray[np.float64]:
    """The cells of an array as doubles, NaN for missing ones: those of a masked array, ``None`` and
    ``pandas.NA``."""
    return _doubles(*_cells(array, symbol), symbol)


def first_cell(marks: npt.NDArray[np.bool_]) -> str:
    """The place of the first cell that is marked, as errors name it."""
    place = np.argwhere(marks)[0].tolist()
    return f"cell {place[0]}" if len(place) == 1 else f"cell ({', '.join(map(str, place))})"


def _cells(
    array: object, symbol: str
) -> Tuple[npt.NDArray[Any], Optional[npt.NDArray[np.bool_]]]:
    """The cells of an array, and which of them are masked if any are."""
    if hasattr(array, "iloc"):
        raise TypeError(
            f"a {type(array).__name__} for symbol {symbol} has labels of its own, which an array "
            "has not: from_pandas goes by them, and its to_numpy() leaves them out"
        )
    try:
        cells = np.asarray(array)
    except ValueError:
        raise ValueError(f"lists of different lengths are no array for symbol {symbol}") from None
    if not isinstance(array, np.ma.MaskedArray):
        return cells, None
    mask = np.asarray(array.mask, dtype=np.bool_)
    return cells, np.broadcast_to(mask, cells.shape) if mask.any() else None


def _doubles(
    cells: npt.NDArray[Any], masked: Optional[npt.NDArray[np.bool_]], symbol: str
) -> npt.NDArray[np.float64]:
    if cells.dtype.kind == "O":
        missing = (None, getattr(sys.modules.get("pandas"), "NA", None))
        flat = [
            np.nan if any(cell is none for none in missing) else number(cell, symbol)
            for cell in cells.ravel()
        ]
        doubles = np.array(flat, dtype=np.float64).reshape(cells.shape)
    elif cells.dtype.kind in "biuf":
        doubles = np.asarray(cells, dtype=np.float64)
        there = cells if masked is None else np.where(masked, 0, cells)
        warn_of_cells(there, symbol, first_cell)
    else:
        raise TypeError(f"cells of type {cells.dtype} for symbol {symbol}, numbers expected")
    return doubles if masked is None else np.where(masked, np.nan, doubles)
