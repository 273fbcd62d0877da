"""Symbols as pandas objects; imported only when one is asked for.

Labels are looked at once for each distinct label of a position, records never one by one in Python.
"""

from __future__ import annotations

from typing import Any, Callable, Hashable, List, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt
import pandas as pd

from . import _native
from .cells import floats_of, texts_of
from .home import Home
from .missing import missing_value, require_choice
from .positions import Labelled, labelled, require_labels
from .texts import warn_of_kept
from .values import FIELDS, Values, field_number

Numbers = npt.NDArray[np.int32]

_FIELD_COLUMNS = pd.Index(FIELDS)


# ---- out ----


def index_of(symbol: _native.Symbol, home: Home, keys: Numbers) -> pd.Index:
    """The labels of records as an index: a MultiIndex for two positions or more."""
    if symbol.dimension == 0:
        return pd.RangeIndex(len(keys))
    labels = home._label_array()
    names = symbol.columns()
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


def series_of(
    symbol: _native.Symbol, home: Home, keys: Numbers, content: npt.NDArray[Any]
) -> "pd.Series[Any]":
    """A series of texts or numbers over labels."""
    return pd.Series(content, index=index_of(symbol, home, keys), name=symbol.name)


def fields_of(
    symbol: _native.Symbol, home: Home, keys: Numbers, content: npt.NDArray[Any]
) -> pd.DataFrame:
    """A frame with a column for each field over labels."""
    return frame_of_fields(content, index_of(symbol, home, keys))


def frame_of_fields(content: npt.NDArray[Any], index: pd.Index) -> pd.DataFrame:
    """A frame with a row of fields for each label."""
    # An index that is there already: pandas takes five times as long for the whole frame to look
    # through a list of names. A view, because whoever has the frame may name its columns.
    return pd.DataFrame(content, index=index, columns=_FIELD_COLUMNS.view())


# ---- in ----


def _numbers(
    symbol: _native.Symbol,
    labels: Any,
    codes: npt.NDArray[Any],
    new_labels: _native.NewLabels,
) -> Numbers:
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
    numbers[order] = new_labels.numbers(all_labels[order])
    rows_numbers: Numbers = numbers[codes]
    return rows_numbers


def _keys(symbol: _native.Symbol, data: Labelled, new_labels: _native.NewLabels) -> Numbers:
    """The label numbers of all positions, a row for each row of the data."""
    keys = np.empty((data.rows, symbol.dimension), dtype=np.int32)
    for position, (labels, codes) in enumerate(data.positions):
        keys[:, position] = _numbers(symbol, labels, codes, new_labels)
    return keys


def label_numbers(symbol: _native.Symbol, home: Home, data: Any) -> Numbers:
    """The label numbers of a series or frame whose labels the database has, a row for each row."""
    return _keys(symbol, labelled(symbol, data, None, 1), home._native.new_labels())


def label_columns(symbol: _native.Symbol, data: Any) -> Tuple[List[Hashable], Hashable]:
    """The columns of a frame that hold labels, none where its index does, and the one of values."""
    if isinstance(data, pd.Series):
        return [], None
    value = labelled(symbol, data, None, 1).columns.columns[0]
    return [name for name in data.columns if name != value], value


def set_from_pandas(
    symbol: _native.Symbol,
    home: Home,
    data: Union["pd.Series[str]", pd.DataFrame, pd.Index],
    keys: Optional[Sequence[Hashable]],
) -> None:
    """Replaces the elements of a set."""
    if not isinstance(data, pd.Index) and keys is None:
        require_labels(symbol, data)
    rows = labelled(symbol, data, keys, least_columns=0)
    texts = None
    if rows.columns is not None and len(rows.columns.columns) > 0:
        texts = texts_of(rows.columns, symbol.name)
    new_labels = home._native.new_labels()
    symbol.put_elements(_keys(symbol, rows, new_labels), texts, new_labels)
    if texts is not None:
        warn_of_kept(symbol.name, texts, symbol.texts())


def numbers_from_pandas(
    symbol: _native.Symbol,
    home: Home,
    data: Union["pd.Series[float]", pd.DataFrame],
    keys: Optional[Sequence[Hashable]],
    nan: str,
    defaults: Optional[Callable[[], Values]],
) -> None:
    """Replaces the records of a parameter; or, with ``defaults``, of a variable or equation: those
    of a new record, for ``nan="skip"``."""
    require_choice(nan)
    rows = labelled(symbol, data, keys, least_columns=1)
    columns = list(rows.columns.columns)
    if defaults is None:
        if len(columns) != 1:
            raise ValueError(
                f"a frame of one column is expected, not of {len(columns)}"
                f" ({', '.join(map(str, columns))})"
            )
        _put(symbol, home, rows, [0], nan, None)
        return
    fields = [0] if isinstance(data, pd.Series) else [field_number(name) for name in columns]
    if len(set(fields)) != len(fields):
        raise ValueError("a field has two columns")
    _put(symbol, home, rows, fields, nan, defaults() if nan == "skip" else None)


def _put(
    symbol: _native.Symbol,
    home: Home,
    rows: Labelled,
    fields: Sequence[int],
    nan: str,
    defaults: Optional[Values],
) -> None:
    values = floats_of(rows.columns, symbol.name)
    if nan != "na":
        missing = np.isnan(values)
        if nan == "error" and missing.any():
            row = int(np.flatnonzero(missing.any(axis=1))[0])
            raise missing_value(f"row {row}", symbol.name)
        kept = ~missing.all(axis=1)
        if defaults is not None:
            values = np.where(missing, np.array(defaults)[fields], values)
        values = values[kept]
        rows = rows.where(kept)
    new_labels = home._native.new_labels()
    symbol.put_rows(_keys(symbol, rows, new_labels), values, fields, new_labels)


# ---- chosen by marks ----


def choice_of_marks(
    symbol: _native.Symbol, home: Home, marks: "pd.Series[bool]"
) -> Callable[[Numbers], npt.NDArray[np.bool_]]:
    """Chooses the records whose labels have a true mark."""
    chosen = marks.index[marks.fillna(False).to_numpy(dtype=np.bool_)]
    # New labels get numbers that no record has.
    wanted = _keys(symbol, labelled(symbol, chosen, None, 0), home._native.new_labels())

    def choice(keys: Numbers) -> npt.NDArray[np.bool_]:
        if symbol.dimension == 0:
            return np.full(len(keys), len(wanted) > 0)
        marked: npt.NDArray[np.bool_] = _rows_index(keys).isin(_rows_index(wanted))
        return marked

    return choice


def _rows_index(keys: Numbers) -> pd.Index:
    if keys.shape[1] == 1:
        return pd.Index(keys[:, 0])
    return pd.MultiIndex.from_arrays(list(keys.T))
