"""Symbols that hold numbers: parameters, variables and equations."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Callable, Hashable, Iterator, List, Mapping, Optional
from typing import Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import arrays
from .arguments import flag, number
from .missing import missing_value, require_choice
from .selection import Numbers
from .symbol import DomainsLike, Symbol, Value
from .values import FIELDS, Values, defaults, field_number

if TYPE_CHECKING:
    import pandas as pd

#: As many cells of numbers as the library can count.
_MOST_CELLS = 2**31 - 1


class _Numeric(Symbol[Value]):
    """A symbol whose records hold numbers."""

    def from_pandas(
        self,
        data: Union["pd.Series[float]", "pd.DataFrame"],
        *,
        keys: Optional[Sequence[Hashable]] = None,
        nan: str = "na",
    ) -> None:
        """Replaces the records by those of a series or frame over labels, or of a frame with a column
        of labels for each position and others of values.

        A parameter takes one column of values. Those of a variable or equation are fields, and fields
        without a column take the defaults of the symbol's kind; a series has levels.

        Levels and label columns are matched by their names with those of ``to_pandas``, in any
        order; levels without names, or with none of these names, stand in the order of the
        positions. ``keys`` names the levels or columns of the positions instead. A level that
        has the name of another position is an error.

        ``nan`` tells what becomes of missing values: ``"na"`` stores them as :data:`ztb.NA`, a NaN
        with the bits of :data:`ztb.UNDEF` as that; ``"skip"`` makes no record of them, or of a row
        of fields without any value, where a single missing one takes its default; ``"error"`` is a
        ``ValueError``. A missing label always is. What is refused changes nothing.
        """
        from . import frames

        frames.numbers_from_pandas(
            self._native, self._database, data, keys, nan, self._defaults_of_fields()
        )

    def _defaults_of_fields(self) -> Optional[Callable[[], Values]]:
        """Gives the values that a new record has, where one has fields."""
        raise NotImplementedError

    def _field_sparse(
        self, field: int, domains: Optional[DomainsLike], rows: int, drop: bool
    ) -> Any:
        keys, table = self._native.rows()
        return self._sparse(keys, table[:, field], domains, rows, drop)


class Parameter(_Numeric[float]):
    """A parameter: each record has one value."""

    def __iter__(self) -> Iterator[Tuple[str, ...]]:
        return super().__iter__()

    def _value(self, labels: Tuple[Any, ...]) -> float:
        return self._native.values(labels)[0]

    def _set_value(self, labels: Tuple[Any, ...], value: Any) -> None:
        self._native.put(labels, (number(value, self.name),))

    def _checked(self, value: Any) -> float:
        return number(value, self.name)

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

    def _defaults_of_fields(self) -> None:
        return None

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
        return self._field_sparse(0, domains, rows, drop)

    def from_numpy(
        self,
        array: npt.ArrayLike,
        domains: Optional[DomainsLike] = None,
        *,
        keep_zeros: bool = False,
        nan: str = "na",
    ) -> None:
        """Replaces the records by one for each cell of a dense array that is not zero.

        The axes are those of :meth:`to_numpy`. With ``keep_zeros`` every cell becomes a record.
        ``nan`` tells what becomes of missing cells (NaN, ``None``, ``pandas.NA``, those of a masked
        array), as for :meth:`from_pandas`. A series or frame, whose labels an array has no place
        for, is a ``TypeError``.
        """
        require_choice(nan)
        cells = arrays.floats(array, self.name)
        every = flag(keep_zeros, "keep_zeros")
        sets = self._requested(cells, domains, _MOST_CELLS)
        absent = np.isnan(cells)
        if nan == "na" or not absent.any():
            self._native.from_dense(sets, cells, every)
        elif nan == "error":
            raise missing_value(arrays.first_cell(absent), self.name)
        elif every:
            self._put_cells(cells, ~absent, domains)
        else:
            self._native.from_dense(sets, np.where(absent, 0.0, cells), False)

    def _put_cells(
        self,
        cells: npt.NDArray[np.float64],
        chosen: npt.NDArray[np.bool_],
        domains: Optional[DomainsLike],
    ) -> None:
        """Replaces the records by one for each chosen cell."""
        keys = np.empty((np.count_nonzero(chosen), cells.ndim), dtype=np.int32)
        for position, (axis, places) in enumerate(
            zip(self._axis_numbers(domains), np.nonzero(chosen))
        ):
            keys[:, position] = axis[places]
        values = cells[chosen][:, np.newaxis]
        self._native.put_rows(keys, values, [0], self._database._native.new_labels())

    def to_pandas(self) -> "pd.Series[float]":
        """The values as a series over the labels: a MultiIndex for two positions or more."""
        return self._frame_of(*self._table())

    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> "pd.Series[float]":
        from . import frames

        return frames.series_of(self._native, self._database, keys, content[:, 0])


class _FiveValues(_Numeric[Values]):
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

    def _checked(self, value: Any) -> Any:
        if isinstance(value, Mapping):
            return {field: number(given, self.name) for field, given in value.items()
                    if field_number(field) >= 0}
        if isinstance(value, (tuple, list)):
            if len(value) > len(FIELDS):
                raise ValueError(f"too many values for a record of {self.name}")
            return tuple(number(given, self.name) for given in value)
        return number(value, self.name)

    @property
    def defaults(self) -> Values:
        """The values that a new record has, by the subtype."""
        return defaults(self._native.type, self.user_info)

    def _values_of(self, content: npt.NDArray[Any]) -> List[Values]:
        return [Values(*row) for row in content.tolist()]

    def _content_columns(self) -> List[str]:
        return list(FIELDS)

    def _defaults_of_fields(self) -> Callable[[], Values]:
        return lambda: self.defaults

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
        return self._field_sparse(field_number(field), domains, rows, drop)

    def to_pandas(self) -> "pd.DataFrame":
        """The values as a frame with a column for each field, over the labels."""
        return self._frame_of(*self._table())

    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> "pd.DataFrame":
        from . import frames

        return frames.fields_of(self._native, self._database, keys, content)


class Variable(_FiveValues):
    """A variable."""


class Equation(_FiveValues):
    """An equation."""
