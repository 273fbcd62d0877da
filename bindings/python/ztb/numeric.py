"""Symbols that hold numbers: parameters, variables and equations."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Hashable, Iterator, List, Mapping, Optional, Sequence
from typing import Tuple, Union

import numpy as np
import numpy.typing as npt

from .selection import Numbers
from .symbol import DomainsLike, Symbol
from .values import FIELDS, Values, defaults, field_number, number

if TYPE_CHECKING:
    import pandas as pd

#: As many cells of numbers as the library can count.
_MOST_CELLS = 2**31 - 1


class Parameter(Symbol[float]):
    """A parameter: each record has one value."""

    def __iter__(self) -> Iterator[Tuple[str, ...]]:
        return super().__iter__()

    def _value(self, labels: Tuple[Any, ...]) -> float:
        return self._native.values(labels)[0]

    def _set_value(self, labels: Tuple[Any, ...], value: Any) -> None:
        self._native.put(labels, (number(value, self.name),))

    @property
    def value(self) -> float:
        """The value of a parameter of dimension 0."""
        return self._value(())

    @value.setter
    def value(self, value: float) -> None:
        self[()] = value

    def _values_of(self, content: npt.NDArray[Any]) -> List[float]:
        values: List[float] = content[:, 0].tolist()
        return values

    def _content_columns(self) -> List[str]:
        return ["value"]

    def to_numpy(
        self, domains: Optional[DomainsLike] = None, *, drop: bool = False
    ) -> npt.NDArray[np.float64]:
        """The values as a dense array, 0 where there is no record.

        Each axis runs over the elements of the set that is the domain of its position, in the
        order of :meth:`axes`; ``domains`` gives other sets, or names of sets. A record with a label
        outside them is an error, unless ``drop`` leaves it out. An array has 2**31 - 1 cells at
        most.
        """
        return self._dense(domains, 0, drop)

    def to_coo(
        self, domains: Optional[DomainsLike] = None, *, rows: int = 1, drop: bool = False
    ) -> Any:
        """The records as a sparse matrix, a ``scipy.sparse.coo_array``; needs scipy.

        The first ``rows`` positions are its rows, the others its columns, over the axes of
        :meth:`to_numpy` with the last position fastest; so two positions give a matrix, and one
        position a column. Each record is an entry, those whose value is 0 too.
        """
        return self._sparse(0, domains, rows, drop)

    def from_numpy(
        self,
        array: npt.ArrayLike,
        domains: Optional[DomainsLike] = None,
        *,
        keep_zeros: bool = False,
    ) -> None:
        """Replaces the records by one for each cell of a dense array that is not zero.

        The axes are those of :meth:`to_numpy`. With ``keep_zeros`` every cell becomes a record.
        """
        cells = np.asarray(array, dtype=np.float64)
        self._native.from_dense(self._requested(cells, domains, _MOST_CELLS), cells, keep_zeros)

    def to_pandas(self) -> "pd.Series[float]":
        """The values as a series over the labels: a MultiIndex for two positions or more."""
        return self._frame_of(*self._table())

    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> "pd.Series[float]":
        from . import frames

        return frames.series_of(self._native, self._database, keys, content[:, 0])

    def from_pandas(
        self,
        data: Union["pd.Series[float]", "pd.DataFrame"],
        *,
        keys: Optional[Sequence[Hashable]] = None,
        nan: str = "na",
    ) -> None:
        """Replaces the records by those of a series, or of a frame of one column, over labels; or
        of a frame with a column of labels for each position and one of values.

        Levels and label columns are matched by their names with those of :meth:`to_pandas`, in any
        order; levels without names, or with none of these names, stand in the order of the
        positions. ``keys`` names the levels or columns of the positions instead. A level that
        has the name of another position is an error.

        ``nan`` tells what becomes of missing values: ``"na"`` stores them as :data:`ztb.NA`, a NaN
        with the bits of :data:`ztb.UNDEF` as that; ``"skip"`` makes no record of them; ``"error"``
        is a ``ValueError``. A missing label always is. What is refused changes nothing.
        """
        from . import frames

        frames.parameter_from_pandas(self._native, self._database, data, keys, nan)


class _FiveValues(Symbol[Values]):
    """A symbol whose records have five values."""

    def __iter__(self) -> Iterator[Tuple[str, ...]]:
        return super().__iter__()

    def _value(self, labels: Tuple[Any, ...]) -> Values:
        return Values(*self._native.values(labels))

    def _set_value(
        self, labels: Tuple[Any, ...], value: Union[float, Sequence[float], Mapping[str, float]]
    ) -> None:
        """Writes the values that are given: the first ones, those of a mapping from fields, or the
        level alone for a number. Others stay, or are what a new record has."""
        if isinstance(value, Mapping):
            fields = {field_number(field): number(given, self.name) for field, given in value.items()}
            values = list(self._native.values(labels) if labels in self else self.defaults)
            for field, given in fields.items():
                values[field] = given
        elif isinstance(value, (tuple, list)):
            values = [number(given, self.name) for given in value]
        else:
            values = [number(value, self.name)]
        self._native.put(labels, tuple(values))

    @property
    def defaults(self) -> Values:
        """The values that a new record has, by the subtype."""
        return defaults(self._native.type, self.user_info)

    def _values_of(self, content: npt.NDArray[Any]) -> List[Values]:
        return [Values(*row) for row in content.tolist()]

    def _content_columns(self) -> List[str]:
        return list(FIELDS)

    def to_numpy(
        self,
        domains: Optional[DomainsLike] = None,
        *,
        field: str = "level",
        drop: bool = False,
    ) -> npt.NDArray[np.float64]:
        """One field as a dense array, as :meth:`Parameter.to_numpy`."""
        return self._dense(domains, field_number(field), drop)

    def to_coo(
        self,
        domains: Optional[DomainsLike] = None,
        *,
        field: str = "level",
        rows: int = 1,
        drop: bool = False,
    ) -> Any:
        """One field as a sparse matrix, as :meth:`Parameter.to_coo`."""
        return self._sparse(field_number(field), domains, rows, drop)

    def to_pandas(self) -> "pd.DataFrame":
        """The values as a frame with a column for each field, over the labels."""
        return self._frame_of(*self._table())

    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> "pd.DataFrame":
        from . import frames

        return frames.fields_of(self._native, self._database, keys, content)

    def from_pandas(
        self,
        data: Union["pd.Series[float]", "pd.DataFrame"],
        *,
        keys: Optional[Sequence[Hashable]] = None,
        nan: str = "na",
    ) -> None:
        """Replaces the records by those of a frame whose columns are fields; a series has levels.

        Fields without a column take the defaults of the symbol's kind. Labels, ``keys`` and
        ``nan`` are as for :meth:`Parameter.from_pandas`; ``nan="skip"`` makes no record of a row
        without any value, and a single missing one takes its default.
        """
        from . import frames

        kind = self.defaults if nan == "skip" else None
        frames.values_from_pandas(self._native, self._database, data, keys, nan, kind)


class Variable(_FiveValues):
    """A variable."""


class Equation(_FiveValues):
    """An equation."""
