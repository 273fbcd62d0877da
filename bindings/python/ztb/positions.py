"""Which level of an index, or which column of a frame, holds the labels of which position.

Nothing is ever taken for another position than the one whose name it has.
"""

from __future__ import annotations

from typing import Any, Dict, Hashable, List, NamedTuple, Optional, Sequence, Tuple

import numpy as np
import numpy.typing as npt
import pandas as pd

from . import _native
from .arguments import several
from .display import counted


class Labelled(NamedTuple):
    """Rows of data: of each position its labels, and each row's place among them; and the rest."""

    rows: int
    positions: List[Tuple[Any, npt.NDArray[Any]]]
    columns: pd.DataFrame

    def where(self, kept: npt.NDArray[np.bool_]) -> "Labelled":
        """The rows that are marked, but for the columns, which stay."""
        positions = [(labels, codes[kept]) for labels, codes in self.positions]
        return Labelled(int(np.count_nonzero(kept)), positions, self.columns)


def labelled(
    symbol: _native.Symbol, data: Any, keys: Optional[Sequence[Hashable]], least_columns: int
) -> Labelled:
    """The labels of a series, frame or index, in the order of the symbol's positions.

    ``keys`` names the level or column of each position. A frame that has label columns keeps
    ``least_columns`` others at least.
    """
    if isinstance(data, pd.DataFrame):
        columns = data
    elif isinstance(data, pd.Series):
        columns = data.to_frame()
    elif isinstance(data, pd.Index):
        data = columns = pd.DataFrame(index=data)
    else:
        raise TypeError(
            f"{type(data).__name__} is no data for symbol {symbol.name}, expected a pandas "
            "Series, DataFrame or Index"
        )
    if keys is not None:
        return _by_keys(symbol, data, columns, keys)
    if symbol.dimension == 0:
        return Labelled(len(columns), [], columns)
    own = _own_columns(symbol, columns) if isinstance(data, pd.DataFrame) else None
    if own is not None and len(columns.columns) - len(own) >= least_columns:
        return _of_columns(columns, own)
    index = columns.index
    if index.nlevels != symbol.dimension:
        raise ValueError(_misfit(symbol, index, columns if columns is data else None))
    return Labelled(len(columns), _of_levels(index, _order(symbol, index)), columns)


def ordered(symbol: _native.Symbol, index: pd.Index) -> pd.Index:
    """An index with its levels in the order of the symbol's positions."""
    if index.nlevels != symbol.dimension:
        raise ValueError(_misfit(symbol, index, None))
    return index.reorder_levels(_order(symbol, index))


def require_labels(symbol: _native.Symbol, data: Any) -> None:
    """Refuses elements whose index is the one that pandas makes where none is given: what was meant
    for elements would be their texts, and the elements 0, 1, 2 and so on."""
    index = getattr(data, "index", None)
    if not isinstance(index, pd.RangeIndex) or index.name is not None or symbol.dimension != 1:
        return
    if isinstance(data, pd.DataFrame) and _own_columns(symbol, data) is not None:
        return
    raise ValueError(
        f"the elements of set {symbol.name} are what the index holds, and this one only counts the "
        f"rows; extend({'column' if isinstance(data, pd.DataFrame) else 'series'}) takes values as "
        "elements, pandas.Index(values) too"
    )


def _of_levels(index: pd.Index, order: Sequence[int]) -> List[Tuple[Any, npt.NDArray[Any]]]:
    if isinstance(index, pd.MultiIndex):
        return [(index.levels[level], np.asarray(index.codes[level])) for level in order]
    codes, labels = pd.factorize(index)
    return [(labels, codes)]


def _of_columns(columns: pd.DataFrame, places: Sequence[int]) -> Labelled:
    positions = []
    for place in places:
        codes, labels = pd.factorize(columns.iloc[:, place])
        positions.append((labels, codes))
    others = [place for place in range(len(columns.columns)) if place not in places]
    return Labelled(len(columns), positions, columns.iloc[:, others])


def _folded(name: Hashable) -> Optional[str]:
    """A name as the database compares names; ``None`` for what is none."""
    return _native.folded(name) if isinstance(name, str) else None


def _own_columns(symbol: _native.Symbol, columns: pd.DataFrame) -> Optional[List[int]]:
    """The places of the columns that have the names of the positions; ``None`` unless all do."""
    places: Dict[Optional[str], List[int]] = {}
    for place, name in enumerate(columns.columns):
        places.setdefault(_folded(name), []).append(place)
    found = [places.get(_folded(name), []) for name in symbol.columns()]
    return [place[0] for place in found] if all(len(place) == 1 for place in found) else None


def _order(symbol: _native.Symbol, index: pd.Index) -> List[int]:
    """The level of each position."""
    count = symbol.dimension
    by_place = list(range(count))
    if count == 1:
        return by_place
    position_of = {_folded(name): place for place, name in enumerate(symbol.columns())}
    names = [_folded(name) for name in index.names]
    wanted = [None if name is None else position_of.get(name) for name in names]
    if sorted(place for place in wanted if place is not None) == by_place:
        return sorted(by_place, key=lambda level: wanted[level])  # type: ignore[arg-type,return-value]
    domains = [_folded(name) for _, name in symbol.domains()]
    for level, (name, place) in enumerate(zip(names, wanted)):
        if place not in (None, level) and domains[level] != name:
            raise ValueError(
                f"level {level} of the index is named {index.names[level]}, which is position "
                f"{place} of {_signature(symbol)}, and other levels have other names; name all "
                "levels as the positions, or none, or give keys="
            )
    return by_place


def _by_keys(
    symbol: _native.Symbol, data: Any, columns: pd.DataFrame, keys: Sequence[Hashable]
) -> Labelled:
    names: List[Hashable] = [keys] if isinstance(keys, str) else list(several(keys, "name"))
    if len(names) != symbol.dimension:
        raise ValueError(
            f"{counted(len(names), 'key')} given, symbol {symbol.name} has "
            f"{counted(symbol.dimension, 'position')}"
        )
    there = list(columns.columns) if isinstance(data, pd.DataFrame) else []
    levels = list(columns.index.names)
    if names and all(there.count(name) == 1 for name in names):
        return _of_columns(columns, [there.index(name) for name in names])
    for name in names:
        if levels.count(name) != 1:
            raise ValueError(
                f"keys names {name!r}, but the columns are {there} and the levels {levels}"
            )
    if len(names) != len(levels) or len(set(names)) != len(names):
        raise ValueError(f"keys names the levels {names}, but the index has {levels}")
    order = [levels.index(name) for name in names]
    return Labelled(len(columns), _of_levels(columns.index, order), columns)


def _signature(symbol: _native.Symbol) -> str:
    return f"{symbol.name}({', '.join(symbol.columns())})"


def _misfit(symbol: _native.Symbol, index: pd.Index, frame: Optional[pd.DataFrame]) -> str:
    text = (
        f"the index has {counted(index.nlevels, 'level')}, symbol {symbol.name} has "
        f"{counted(symbol.dimension, 'position')}"
    )
    if frame is None:
        return text
    there = [_folded(name) for name in frame.columns]
    double = [name for name in symbol.columns() if there.count(_folded(name)) > 1]
    if double:
        return f"{text}, and more than one column is called {double[0]} in either case of letters"
    lacking = [name for name in symbol.columns() if there.count(_folded(name)) != 1]
    if not lacking:
        return f"{text}, and no column but those of its labels"
    return f"{text}, and label columns are not all there: {', '.join(lacking)}"
