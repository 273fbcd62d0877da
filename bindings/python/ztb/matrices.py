"""A model's arrays as the extension module takes them: entries of a matrix, bounds, kinds, sides of
rows, and names."""

from __future__ import annotations

from typing import Any, Dict, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import arrays, families
from .families import Over

#: Names of columns or rows for arrays: of a family, of each, or families and what they run over.
Names = Union[None, str, Sequence[str], Mapping[str, Over]]

_KINDS = {
    "continuous": 0, "integer": 1, "binary": 2, "semi-continuous": 3, "semi-integer": 4,
}
_BINARY = _KINDS["binary"]
_EQUAL, _GREATER, _LESS, _FREE = range(4)


def entries(
    matrix: Any, columns: int
) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.int32], npt.NDArray[np.float64], Tuple[int, int]]:
    """Rows, columns and values of the entries of a matrix, and its shape."""
    if isinstance(matrix, tuple):
        if len(matrix) != 3:
            raise ValueError("CSR arrays are a tuple (data, indices, indptr)")
        data = arrays.floats(matrix[0], "A")
        indices = _places(matrix[1], "indices")
        indptr = _places(matrix[2], "indptr").astype(np.int64)
        if len(indptr) < 1 or indptr[0] != 0 or indptr[-1] != len(data) or len(data) != len(indices):
            raise ValueError("indptr goes from 0 to the number of data, which is that of indices")
        if (np.diff(indptr) < 0).any():
            raise ValueError("indptr does not ascend")
        rows = np.repeat(np.arange(len(indptr) - 1, dtype=np.int32), np.diff(indptr))
        return rows, indices, data, (len(indptr) - 1, columns)
    if hasattr(matrix, "tocoo"):
        entries = matrix.tocoo()
        return (
            entries.row.astype(np.int32),
            entries.col.astype(np.int32),
            arrays.floats(entries.data, "A"),
            entries.shape,
        )
    if matrix is None:
        raise TypeError("A is None, expected a matrix; without rows it is one of shape (0, columns)")
    dense = np.atleast_2d(arrays.floats(getattr(matrix, "to_numpy", lambda: matrix)(), "A"))
    if dense.ndim != 2:
        raise ValueError(f"A has {dense.ndim} axes, expected two")
    at, column = np.nonzero(dense)
    return (
        at.astype(np.int32),
        column.astype(np.int32),
        dense[at, column],
        (dense.shape[0], dense.shape[1]),
    )


def expect_finite(
    values: npt.NDArray[np.float64], place: str, *numbers: npt.NDArray[np.integer[Any]]
) -> None:
    """Refuses numbers that are none, by the first one's place with its numbers put in."""
    wrong = np.flatnonzero(~np.isfinite(values))
    if len(wrong):
        where = place.format(*(number[wrong[0]] for number in numbers))
        raise ValueError(f"{where} is {values[wrong[0]]}, a finite number is expected")


def _places(values: Any, what: str) -> npt.NDArray[np.int32]:
    """Numbers of columns or entries."""
    places = np.asarray(values)
    if places.size and places.dtype.kind not in "iu":
        raise TypeError(f"{what} are of type {places.dtype}, whole numbers expected")
    most = np.iinfo(np.int32).max
    wrong = np.flatnonzero((places < 0) | (places > most))
    if len(wrong):
        raise ValueError(f"{what}: {places[wrong[0]]} is not within 0 and {most}")
    return places.astype(np.int32)


def spread(values: Any, count: int, what: str) -> npt.NDArray[np.float64]:
    """A number for each, out of as many or of one for all."""
    array = arrays.floats(getattr(values, "to_numpy", lambda: values)(), what)
    if array.ndim == 0:
        return np.full(count, float(array))
    if array.shape != (count,):
        raise ValueError(f"{what}: an array of {count} numbers is expected, not of {array.shape}")
    return np.ascontiguousarray(array)


def bounds_of(bounds: Any, count: int) -> Tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]:
    """Lower and upper bounds; ``None`` is no bound."""
    if not isinstance(bounds, tuple) or len(bounds) != 2:
        raise TypeError("bounds is a tuple of the lower bounds and the upper ones")
    low, high = bounds
    return (
        spread(-np.inf if low is None else low, count, "lower bounds"),
        spread(np.inf if high is None else high, count, "upper bounds"),
    )


def kinds(kind: Union[str, npt.ArrayLike], count: int) -> npt.NDArray[np.int32]:
    """Kinds by number, out of a word or number for each or for all."""
    given = np.asarray(kind)
    if given.dtype.kind not in "USOiu":
        raise TypeError(f"kinds are words or numbers from 0 to 4, not of type {given.dtype}")
    if given.ndim > 1 or (given.ndim == 1 and len(given) != count):
        raise ValueError(f"kind: an array of {count} is expected, not of {given.shape}")
    known: Dict[Any, int] = dict(_KINDS)
    known.update((number, number) for number in _KINDS.values())
    found, places = np.unique(given, return_inverse=True)
    wrong = [one for one in found.tolist() if one not in known]
    if wrong:
        raise ValueError(f"no kind {wrong[0]!r}, expected one of {', '.join(_KINDS)}")
    numbers = np.array([known[one] for one in found.tolist()], dtype=np.int32)[places]
    return np.full(count, numbers[0], dtype=np.int32) if given.ndim == 0 else numbers


def within_kinds(
    number: npt.NDArray[np.int32], low: npt.NDArray[np.float64], high: npt.NDArray[np.float64]
) -> Tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]:
    """Bounds, those of binary columns within 0 and 1."""
    binary = number == _BINARY
    return np.where(binary, np.maximum(low, 0), low), np.where(binary, np.minimum(high, 1), high)


def sides(
    lower: npt.NDArray[np.float64], upper: npt.NDArray[np.float64], name: str
) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.float64], npt.NDArray[np.float64]]:
    """Types, right-hand sides and ranges of rows between two sides. Where they cross, the model has
    no solution, as with bounds that do."""
    wrong = np.isnan(lower) | np.isnan(upper) | (lower == np.inf) | (upper == -np.inf)
    if wrong.any():
        row = int(np.flatnonzero(wrong)[0])
        raise ValueError(
            f"{name}: row {row} is from {lower[row]} to {upper[row]}, which is no range of numbers"
        )
    has_lower, has_upper = np.isfinite(lower), np.isfinite(upper)
    both = has_lower & has_upper & (lower != upper)
    ranges = np.zeros(len(lower))
    ranges[both] = upper[both] - lower[both]
    # From the larger number the range may not lead to the smaller one, as from 1e20 to 1.
    rising = both & (np.where(both, upper, 0.0) - ranges != np.where(both, lower, 0.0))
    rising &= np.abs(lower) < np.abs(upper)
    falling = has_upper & ~rising
    types = np.where(falling, _LESS, np.where(has_lower, _GREATER, _FREE))
    types = np.where(has_lower & (lower == upper), _EQUAL, types)
    rhs = np.where(falling, upper, np.where(has_lower, lower, 0.0))
    return types.astype(np.int32), rhs, ranges


def ordered_set(
    number: int, given: Any, count: int
) -> Tuple[int, npt.NDArray[np.int32], npt.NDArray[np.float64]]:
    """Kind, columns and weights of a special ordered set that is (kind, columns) or (kind, columns,
    weights)."""
    if not isinstance(given, (tuple, list)) or len(given) not in (2, 3):
        raise TypeError(f"sets[{number}] is (kind, columns) or (kind, columns, weights)")
    what = f"sets[{number}]"
    kind = set_kind(given[0], what)
    columns = _places(given[1], what)
    weights = np.arange(1.0, len(columns) + 1) if len(given) == 2 else np.atleast_1d(
        arrays.floats(given[2], what)
    )
    if weights.shape != columns.shape:
        raise ValueError(f"{what}: {weights.size} weights for {len(columns)} columns")
    return kind, columns, weights


def set_kind(kind: Any, what: str) -> int:
    """The kind of special ordered sets."""
    if isinstance(kind, bool) or kind not in (1, 2):
        raise ValueError(f"{what}: the kind of a set is 1 or 2, not {kind!r}")
    return int(kind)


def named(names: Names, count: int, default: str, what: str) -> List[Tuple[Any, Any, slice]]:
    """Families or names with their positions and the numbers that they name."""
    if names is None or isinstance(names, str):
        labels = [str(number) for number in range(count)]
        position = (labels, np.arange(count, dtype=np.int32))
        return [(names or default, [position], slice(0, count))] if count else []
    if not isinstance(names, Mapping):
        missing = [number for number, name in enumerate(names) if name is None or name != name]
        if missing:
            raise ValueError(f"{what}: name {missing[0]} is missing")
        listed = [str(name) for name in names]
        if len(listed) != count:
            raise ValueError(f"{what}: {len(listed)} names for {count}")
        return [(listed, [], slice(0, count))] if count else []
    result: List[Tuple[Any, Any, slice]] = []
    begin = 0
    for family, over in names.items():
        frame = families.frame_over(over)
        result.append(
            (family, families.native_positions(frame), slice(begin, begin + len(frame)))
        )
        begin += len(frame)
    if begin != count:
        raise ValueError(f"{what}: the families have {begin} elements, expected {count}")
    return result
