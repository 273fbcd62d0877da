"""Symbols as charts of matplotlib, which is imported only when one is asked for."""

from __future__ import annotations

import importlib
from typing import Any, Dict, List, Optional, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _native, arguments
from .values import FIELDS

# Symbols are the package's own, which import this module.
Symbol = Any
Position = Union[str, int]

_KINDS = ("line", "bar", "area", "scatter", "hist")
_UNDEF = 1e300
_EPS = 5e-324


def _pyplot() -> Any:
    try:
        return importlib.import_module("matplotlib.pyplot")
    except ImportError:
        raise ImportError(
            "matplotlib is needed for this: install the Debian package python3-matplotlib, or "
            "matplotlib by pip"
        ) from None


def _position(symbol: Symbol, given: Position, name: str) -> int:
    """The position that is meant: its number, from 0, or the name of its column."""
    columns: List[str] = symbol._native.columns()
    if isinstance(given, str):
        folded = [_native.folded(column) for column in columns]
        if _native.folded(given) in folded:
            return folded.index(_native.folded(given))
    elif isinstance(given, int) and not isinstance(given, bool) and 0 <= given < len(columns):
        return given
    raise ValueError(
        f"{name}={arguments.shown(given)} is no position of symbol {symbol.name}, expected one of "
        f"{', '.join(columns)} or its number, from 0"
    )


def _drawn(values: npt.NDArray[Any]) -> npt.NDArray[np.float64]:
    """Values as they are drawn: eps is 0, and what is no number is a gap."""
    drawn = np.array(values, dtype=np.float64)
    drawn[drawn == _EPS] = 0.0
    drawn[~np.isfinite(drawn) | (drawn == _UNDEF)] = np.nan
    return drawn


def _numbers(labels: List[str]) -> Optional[npt.NDArray[np.float64]]:
    """What the labels are as numbers, or ``None`` where one is none."""
    try:
        numbers = np.array([float(label) for label in labels])
    except ValueError:
        return None
    return numbers if len(numbers) and bool(np.isfinite(numbers).all()) else None


def _grid(
    symbol: Symbol, keys: npt.NDArray[Any], values: npt.NDArray[np.float64], x: int, by: int
) -> Tuple[npt.NDArray[Any], npt.NDArray[Any], npt.NDArray[np.float64]]:
    """Label numbers across, those of series (one 0 without any), and a row of values for each."""
    across, column = np.unique(keys[:, x], return_inverse=True)
    series = keys[:, by] if by >= 0 else np.zeros(len(keys), dtype=keys.dtype)
    names, row = np.unique(series, return_inverse=True)
    places = row * len(across) + column
    if len(np.unique(places)) < len(places):
        raise ValueError(
            f"symbol {symbol.name} has several records at one place; choose with by=, or sum them "
            "up first"
        )
    grid = np.full((len(names), len(across)), np.nan)
    grid[row, column] = values
    return across, names, grid


def _draw(
    axes: Any, kind: str, at: npt.NDArray[np.float64], series: Dict[str, Any]
) -> List[Any]:
    """What stands for each series in a legend."""
    if kind == "area":
        piles = [np.nan_to_num(y) for y in series.values()]
        return list(axes.stackplot(at, *piles, labels=list(series)))
    width = 0.8 / max(1, len(series))
    drawn: List[Any] = []
    for index, (name, y) in enumerate(series.items()):
        if kind == "bar":
            shifted = at + (index - (len(series) - 1) / 2) * width
            drawn.append(axes.bar(shifted, y, width, label=name))
        elif kind == "scatter":
            drawn.append(axes.scatter(at, y, label=name))
        else:
            drawn += axes.plot(at, y, label=name)
    return drawn


def _add_legend(axes: Any, drawn: List[Any], titles: List[str]) -> None:
    """With each title as it is: matplotlib leaves out those that begin with an underscore."""
    texts = axes.legend(drawn, ["-"] * len(drawn)).get_texts()
    for text, title in zip(texts, titles):
        text.set_text(title)
        text.set_parse_math(False)


def plot(
    symbol: Symbol,
    x: Optional[Position],
    by: Optional[Position],
    kind: Optional[str],
    field: str,
    axes: Any,
) -> Any:
    kind = kind or ("hist" if x is None else "line")
    if kind not in _KINDS:
        raise ValueError(f"kind={arguments.shown(kind)}: one of {', '.join(_KINDS)} is expected")
    if kind == "hist" and x is not None:
        raise ValueError("a histogram is of values alone, without x=")
    if kind != "hist" and x is None:
        raise ValueError(f"{kind}: x= is missing, a position")
    if x is None and by is not None:
        raise ValueError("by= is given without x=")
    columns = symbol._content_columns()
    if len(columns) > 1 and field not in FIELDS:
        raise ValueError(f"field={arguments.shown(field)}: one of {', '.join(FIELDS)} is expected")
    place = columns.index(field) if len(columns) > 1 else 0
    over = -1 if x is None else _position(symbol, x, "x")
    parts = -1 if by is None else _position(symbol, by, "by")
    if parts >= 0 and parts == over:
        raise ValueError("x= and by= are one position")
    pyplot = _pyplot()
    keys, content = symbol._native.rows()
    values = _drawn(content.reshape(len(keys), len(columns))[:, place])
    if axes is None:
        axes = pyplot.figure().add_subplot()
    # Names, labels and texts are no formulas, whatever dollars are in them.
    title = f"{symbol.name}: {symbol.text}" if symbol.text else symbol.name
    axes.set_title(title, parse_math=False)
    if len(keys) == 0:
        return axes
    if x is None:
        axes.hist(values[~np.isnan(values)])
        return axes
    across, names, grid = _grid(symbol, keys, values, over, parts)
    labels = symbol._database._label_array()
    words = [str(label) for label in labels[across]]
    numbers = None if kind == "bar" else _numbers(words)
    if numbers is None:
        at = np.arange(len(words), dtype=np.float64)
        axes.set_xticks(at)
        axes.set_xticklabels(words, rotation=90 if len(words) > 8 else 0, parse_math=False)
    else:
        order = np.argsort(numbers, kind="stable")
        at, grid = numbers[order], grid[:, order]
    if kind == "area" and bool((grid < 0).any()):
        raise ValueError("an area chart piles values up; none may be below zero")
    titles = [str(labels[name]) if parts >= 0 else symbol.name for name in names]
    drawn = _draw(axes, kind, at, dict(zip(titles, grid)))
    axes.set_xlabel(symbol._native.columns()[over], parse_math=False)
    if parts >= 0:
        _add_legend(axes, drawn, titles)
    return axes
