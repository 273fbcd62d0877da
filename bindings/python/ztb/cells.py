"""Columns of pandas objects as the arrays that go into symbols."""

from __future__ import annotations

import decimal
import numbers
from typing import Any, List

import numpy as np
import numpy.typing as npt
import pandas as pd

from .rounding import may_be_rounded, warn_of_cells, warn_of_value

#: What pandas calls the content of a column of objects that are all numbers.
_NUMBERS = ("integer", "floating", "mixed-integer-float", "boolean", "decimal", "empty")
#: What a number among objects is: database drivers give decimals.
_NUMBER = (numbers.Real, decimal.Decimal, np.number, np.bool_)


def floats_of(columns: pd.DataFrame, symbol: str) -> npt.NDArray[np.float64]:
    """The cells as doubles, a row for each row; missing ones are the NaN that is ``ztb.NA``."""
    if all(dtype == np.float64 for dtype in columns.dtypes):
        return np.asarray(columns, dtype=np.float64)
    cells = [_floats(columns.iloc[:, place], symbol) for place in range(len(columns.columns))]
    return np.column_stack(cells)


def _floats(column: "pd.Series[Any]", symbol: str) -> npt.NDArray[np.float64]:
    if isinstance(column.dtype, pd.CategoricalDtype):
        column = column.astype(object)
    if column.dtype != object:
        types = pd.api.types
        if not types.is_numeric_dtype(column.dtype) or types.is_complex_dtype(column.dtype):
            raise TypeError(f"values of type {column.dtype} for symbol {symbol}, numbers expected")
        if types.is_integer_dtype(column.dtype):
            _tell_rounded(column, symbol)
        return _with_nan(column)
    if pd.api.types.infer_dtype(column, skipna=True) not in _NUMBERS:
        for row, value in enumerate(column):
            if not pd.isna(value) and not isinstance(value, _NUMBER):
                raise TypeError(
                    f"row {row}: the value {value!r} ({type(value).__name__}) of symbol {symbol} "
                    "is no number"
                )
    try:
        doubles = _with_nan(column.where(column.notna(), np.nan))
    except OverflowError:
        raise OverflowError(f"a value of symbol {symbol} is larger than any double") from None
    for row in np.flatnonzero(may_be_rounded(doubles)):
        warn_of_value(column.iloc[row], doubles[row], symbol, f"row {row}: ")
    return doubles


def _tell_rounded(column: "pd.Series[Any]", symbol: str) -> None:
    kind = np.uint64 if pd.api.types.is_unsigned_integer_dtype(column.dtype) else np.int64
    cells = column.to_numpy(dtype=kind, na_value=0) if column.hasnans else column.to_numpy(dtype=kind)
    warn_of_cells(cells, symbol, lambda marks: f"row {int(np.flatnonzero(marks)[0])}")


def _with_nan(column: "pd.Series[Any]") -> npt.NDArray[np.float64]:
    floats: npt.NDArray[np.float64] = column.to_numpy(dtype=np.float64, na_value=np.nan)
    return floats


def texts_of(columns: pd.DataFrame, symbol: str) -> List[str]:
    """The texts of a frame of one column; a missing one is empty."""
    if len(columns.columns) != 1:
        raise ValueError(
            f"one column of texts is expected, not {len(columns.columns)}"
            f" ({', '.join(map(str, columns.columns))})"
        )
    column = columns.iloc[:, 0].astype(object)
    texts: List[Any] = column.where(column.notna(), "").tolist()
    for row, text in enumerate(texts):
        if not isinstance(text, str):
            raise TypeError(
                f"row {row}: {text!r} ({type(text).__name__}) is no text for an element of set "
                f"{symbol}, expected a str"
            )
    return texts
