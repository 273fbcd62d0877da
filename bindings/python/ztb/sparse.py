"""Records as sparse matrices of scipy; imported only when one is asked for."""

from __future__ import annotations

import math
import sys
from typing import Any, List, Sequence, Tuple

import numpy as np
import numpy.typing as npt

from .display import counted


def to_coo(
    keys: npt.NDArray[np.int32],
    values: npt.NDArray[Any],
    axes: Sequence[npt.NDArray[np.int32]],
    rows: int,
    symbol: str,
) -> Tuple[Any, int]:
    """A ``coo_array`` of the values, and how many records lie outside the axes.

    ``keys`` has a row of label numbers for each value, ``axes`` the label numbers along each
    position. The first ``rows`` positions are the matrix's rows, the last of them fastest, the
    others its columns.
    """
    try:
        from scipy import sparse
    except ImportError as error:
        raise ImportError(
            "to_coo needs scipy, which is not there (Debian: python3-scipy)"
        ) from error
    if not 0 <= rows <= len(axes):
        raise ValueError(
            f"{counted(rows, 'position')} cannot be rows, symbol {symbol} has "
            f"{counted(len(axes), 'position')}"
        )
    sizes = [len(axis) for axis in axes]
    shape = (math.prod(sizes[:rows]), math.prod(sizes[rows:]))
    if max(shape) > sys.maxsize:
        raise ValueError(f"a matrix of {shape[0]} rows and {shape[1]} columns cannot be counted")
    places = [_places(axis, keys[:, position]) for position, axis in enumerate(axes)]
    inside = np.ones(len(keys), dtype=np.bool_)
    for place in places:
        inside &= place >= 0
    coordinates = [_flat(part, size, inside) for part, size in (
        (places[:rows], sizes[:rows]), (places[rows:], sizes[rows:]))]
    matrix = sparse.coo_array((values[inside], tuple(coordinates)), shape=shape)
    return matrix, int(len(keys) - np.count_nonzero(inside))


def _places(axis: npt.NDArray[np.int32], labels: npt.NDArray[np.int32]) -> npt.NDArray[np.int64]:
    """The place of each label along an axis, -1 for one that is not there."""
    largest = max(axis.max(initial=0), labels.max(initial=0))
    places = np.full(int(largest) + 1, -1, dtype=np.int64)
    places[axis] = np.arange(len(axis))
    return places[labels]


def _flat(
    places: List[npt.NDArray[np.int64]], sizes: List[int], inside: npt.NDArray[np.bool_]
) -> npt.NDArray[np.int64]:
    result = np.zeros(np.count_nonzero(inside), dtype=np.int64)
    for place, size in zip(places, sizes):
        result = result * size + place[inside]
    return result
