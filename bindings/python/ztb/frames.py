"""Symbols as pandas objects; imported only when one is asked for.

Labels are looked at once for each distinct label of a position, records never one by one in Python.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterable, List, Tuple, Union

import numpy as np
import numpy.typing as npt
import pandas as pd

from . import _native
from .symbol import FIELDS, field_number

if TYPE_CHECKING:
    from .symbol import Parameter, Set, Symbol, _FiveValues


def index_names(symbol: "Symbol[Any]") -> List[str]:
    """A name for each position: that of its domain, ``key1``, ``key2`` over the universe."""
    names: List[str] = []
    for position, domain in enumerate(symbol.domains, start=1):
        name = f"key{position}" if domain.name == "*" else domain.name
        names.append(name if name not in names else f"{name}_{position}")
    return names


def _index(symbol: "Symbol[Any]", keys: npt.NDArray[np.int32]) -> pd.Index:
    if symbol.dimension == 0:
        return pd.RangeIndex(len(keys))
    labels = symbol.database._label_array()
    names = index_names(symbol)
    levels = []
    codes = []
    for column in keys.T:
        used = np.zeros(len(labels), dtype=bool)
        used[column] = True
        levels.append(labels[used])
        codes.append((np.cumsum(used) - 1)[column])
    if symbol.dimension == 1:
        return pd.Index(levels[0][codes[0]], dtype=object, name=names[0])
    return pd.MultiIndex(levels=levels, codes=codes, names=names, verify_integrity=False)


def set_to_series(symbol: "Set") -> "pd.Series[str]":
    index = _index(symbol, symbol._native.rows()[0])
    return pd.Series(symbol._native.texts(), index=index, name=symbol.name, dtype=object)


def parameter_to_series(symbol: "Parameter") -> "pd.Series[float]":
    keys, values = symbol._native.rows()
    return pd.Series(values[:, 0], index=_index(symbol, keys), name=symbol.name)


def values_to_frame(symbol: "_FiveValues") -> pd.DataFrame:
    keys, values = symbol._native.rows()
    return pd.DataFrame(values, index=_index(symbol, keys), columns=list(FIELDS))


def _text_of(label: object) -> str:
    if isinstance(label, str):
        return label
    if isinstance(label, (int, np.integer)) and not isinstance(label, bool):
        return str(label)
    raise TypeError(f"the label {label!r} is neither a str nor an int")


def _numbers(
    symbol: "Symbol[Any]",
    labels: Iterable[object],
    codes: npt.NDArray[Any],
    new_labels: _native.NewLabels,
) -> npt.NDArray[np.int32]:
    """The label numbers of a position, given as places in a list of labels.

    New labels are numbered in the order in which records first name them, which an index, having
    its labels sorted, does not keep.
    """
    all_labels = np.asarray(labels, dtype=object)
    if len(codes) and codes.min() < 0:
        row = int(np.flatnonzero(codes < 0)[0])
        raise ValueError(f"row {row}: a label of symbol {symbol.name} is missing")
    rows = len(codes)
    first = np.full(len(all_labels), rows)
    first[codes[::-1]] = np.arange(rows - 1, -1, -1)
    order = np.argsort(first, kind="stable")[: np.count_nonzero(first < rows)]
    numbers = np.zeros(len(all_labels), dtype=np.int32)
    texts = [_text_of(label) for label in all_labels[order]]
    numbers[order] = new_labels.numbers(texts)
    return numbers[codes]


def _keys(
    symbol: "Symbol[Any]", index: pd.Index, new_labels: _native.NewLabels
) -> npt.NDArray[np.int32]:
    """The label numbers of an index, a row for each entry."""
    if symbol.dimension == 0:
        return np.empty((len(index), 0), dtype=np.int32)
    if index.nlevels != symbol.dimension:
        raise ValueError(
            f"the index has {index.nlevels} levels, symbol {symbol.name} has "
            f"{symbol.dimension} positions"
        )
    if isinstance(index, pd.MultiIndex):
        columns: List[Tuple[Any, Any]] = list(zip(index.levels, index.codes))
    else:
        codes, labels = pd.factorize(index)
        columns = [(labels, codes)]
    keys = np.empty((len(index), symbol.dimension), dtype=np.int32)
    for position, (labels, codes) in enumerate(columns):
        keys[:, position] = _numbers(symbol, labels, np.asarray(codes), new_labels)
    return keys


def set_from_pandas(symbol: "Set", data: Union["pd.Series[str]", pd.Index]) -> None:
    new_labels = symbol.database._native.new_labels()
    index = data if isinstance(data, pd.Index) else data.index
    texts = None if isinstance(data, pd.Index) else data.fillna("").tolist()
    symbol._native.put_elements(_keys(symbol, index, new_labels), texts, new_labels)


def parameter_from_pandas(
    symbol: "Parameter", data: Union["pd.Series[float]", pd.DataFrame]
) -> None:
    values = data.to_numpy(dtype=np.float64)
    if values.ndim == 2 and values.shape[1] != 1:
        raise ValueError(f"a frame of one column is expected, not of {values.shape[1]}")
    new_labels = symbol.database._native.new_labels()
    keys = _keys(symbol, data.index, new_labels)
    symbol._native.put_rows(keys, values.reshape(-1, 1), [0], new_labels)


def values_from_pandas(
    symbol: "_FiveValues", data: Union["pd.Series[float]", pd.DataFrame]
) -> None:
    columns = ["level"] if isinstance(data, pd.Series) else list(data.columns)
    fields = [field_number(column) for column in columns]
    if len(set(fields)) != len(fields):
        raise ValueError("a field has two columns")
    values = data.to_numpy(dtype=np.float64).reshape(len(data), len(fields))
    new_labels = symbol.database._native.new_labels()
    symbol._native.put_rows(_keys(symbol, data.index, new_labels), values, fields, new_labels)
