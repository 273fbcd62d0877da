"""Symbols: mappings from tuples of labels to values, arrays and frames."""

from __future__ import annotations

import sys
from collections.abc import ItemsView, MutableMapping, ValuesView
from typing import TYPE_CHECKING, Any, Generic, Iterator, List, NamedTuple, Optional, Sequence
from typing import Tuple, TypeVar, Union

import numpy as np
import numpy.typing as npt

from . import _native

if TYPE_CHECKING:
    import pandas as pd

    from .database import Database

#: Labels of a record: a tuple with one for each position; for one position the label alone will do.
Key = Union[str, Tuple[str, ...]]

Value = TypeVar("Value")

#: The fields of a variable or equation, at the places of their values.
FIELDS = ("level", "marginal", "lower", "upper", "scale")


#: As many cells of numbers as the library can count.
_MOST_CELLS = 2**31 - 1


class Values(NamedTuple):
    """The values of a record of a variable or equation."""

    level: float
    marginal: float
    lower: float
    upper: float
    scale: float


class Domain(NamedTuple):
    """The domain of a position.

    ``set`` is the set that its labels belong to; ``None`` for the universe, whose name is ``"*"``,
    and for a domain of which only the name is known. For a domain given by an alias, ``name`` is
    the alias's.
    """

    name: str
    set: Optional["Set"]


class Violation(NamedTuple):
    """A record with a label outside its domain, and the positions, from 0, where that is so."""

    key: Tuple[str, ...]
    positions: Tuple[int, ...]


class Alias:
    """A second name for a set. It has no records of its own."""

    def __init__(self, database: "Database", native: _native.Symbol) -> None:
        self._database = database
        self._native = native

    @property
    def name(self) -> str:
        """The alias's own name."""
        return self._native.name

    @property
    def set(self) -> Optional["Set"]:
        """The set that it stands for; ``None`` for the universe."""
        return self._database._set_of_alias(self.name)

    def __repr__(self) -> str:
        return f"<ztb.Alias {self.name}>"


class _Items(ItemsView):
    """Reads all records in one go."""

    _mapping: "Symbol[Any]"

    def __iter__(self) -> Iterator[Tuple[Tuple[str, ...], Any]]:
        return iter(zip(self._mapping._keys(), self._mapping._all_values()))


class _Values(ValuesView):
    """Reads all records in one go."""

    _mapping: "Symbol[Any]"

    def __iter__(self) -> Iterator[Any]:
        return iter(self._mapping._all_values())


class Symbol(MutableMapping, Generic[Value]):
    """A symbol of a database: a mapping from tuples of labels to values.

    Records come in the order of their label numbers. Labels are compared with the case of ASCII
    letters folded. Two symbols are equal if they are the same symbol of the same database; compare
    ``dict(a) == dict(b)`` for their records. Iterating reads all keys first, so the records may be
    changed meanwhile.
    """

    def __init__(self, database: "Database", native: _native.Symbol) -> None:
        self._database = database
        self._native = native

    # ---- what it is ----

    @property
    def database(self) -> "Database":
        """The database that it belongs to."""
        return self._database

    @property
    def name(self) -> str:
        return self._native.name

    @property
    def text(self) -> str:
        """The explanatory text."""
        return self._native.text

    @property
    def dimension(self) -> int:
        """Number of index positions, 0 to 20."""
        return self._native.dimension

    @property
    def user_info(self) -> int:
        """Subtype of a variable or equation; a word of the caller's own otherwise."""
        return self._native.user_info

    @user_info.setter
    def user_info(self, value: int) -> None:
        self._native.user_info = value

    @property
    def domains(self) -> Tuple[Domain, ...]:
        """The domain of each position."""
        return tuple(
            Domain(name, self._database._set(native)) for native, name in self._native.domains()
        )

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Symbol) and bool(self._native == other._native)

    def __hash__(self) -> int:
        return hash(self._native)

    def __repr__(self) -> str:
        domains = ", ".join(domain.name for domain in self.domains)
        return f"<ztb.{type(self).__name__} {self.name}({domains})>"

    # ---- mapping ----

    def __len__(self) -> int:
        return self._native.record_count()

    def __iter__(self) -> Iterator[Tuple[str, ...]]:
        return iter(self._keys())

    def __contains__(self, key: object) -> bool:
        return self._native.contains(_labels(key))

    def __getitem__(self, key: Key) -> Value:
        raise NotImplementedError

    def __setitem__(self, key: Key, value: Any) -> None:
        raise NotImplementedError

    def __delitem__(self, key: Key) -> None:
        self._native.remove(_labels(key))

    def items(self) -> ItemsView:
        return _Items(self)

    def values(self) -> ValuesView:
        return _Values(self)

    def clear(self) -> None:
        """Removes all records."""
        self._native.clear()

    # ---- bulk ----

    def axes(self, domains: Optional[Sequence["DomainLike"]] = None) -> Tuple[List[str], ...]:
        """The labels along each axis of :meth:`to_numpy` with the same domains."""
        return tuple(_labels_of(set_) for set_ in self._domain_sets(domains))

    def copy_from(self, source: Union["Symbol[Any]", Alias]) -> None:
        """Replaces the records by those of a symbol of this or another database.

        Both have the same dimension and type; anything can be copied into a set. Labels and texts
        cross by their strings. An alias gives the records of the set that it stands for. A symbol
        is not copied onto itself, nor an alias onto its set: that is an error and changes nothing.
        """
        self._native.copy_from(source._native)

    def violations(self) -> List[Violation]:
        """The records with a label outside the set that is its domain."""
        keys, outside = self._native.violations()
        return [
            Violation(key, tuple(np.flatnonzero(flags).tolist()))
            for key, flags in zip(self._label_tuples(keys), outside)
        ]

    # ---- helpers ----

    def _label_tuples(self, keys: npt.NDArray[np.int32]) -> List[Tuple[str, ...]]:
        labels = self._database._label_array()
        if self.dimension == 0:
            return [()] * len(keys)
        return list(zip(*(labels[column].tolist() for column in keys.T)))

    def _keys(self) -> List[Tuple[str, ...]]:
        return self._label_tuples(self._native.rows()[0])

    def _all_values(self) -> List[Value]:
        raise NotImplementedError

    def _domain_sets(self, domains: Optional[Sequence["DomainLike"]]) -> List["Set"]:
        if domains is None:
            domains = [domain.set for domain in self.domains]
        elif len(domains) != self.dimension:
            raise ValueError(
                f"{len(domains)} domains given, symbol {self.name} has {self.dimension} positions"
            )
        return [self._domain_set(domain, place) for place, domain in enumerate(domains)]

    def _domain_set(self, domain: "DomainLike", position: int) -> "Set":
        if isinstance(domain, str) and domain != "*":
            domain = self._database[domain]
        elif isinstance(domain, Alias):
            domain = domain.set
        if domain is None or domain == "*":
            raise ValueError(
                f"position {position} of symbol {self.name} has no set for a domain; give one"
            )
        if not isinstance(domain, Set) or domain.dimension != 1:
            raise ValueError(f"position {position} of symbol {self.name}: no one-dimensional set")
        if domain._database is not self._database:
            raise ValueError(f"set {domain.name} belongs to another database")
        return domain

    def _requested(
        self, array: npt.NDArray[Any], domains: Optional[Sequence["DomainLike"]], most: int
    ) -> List[_native.Symbol]:
        """The sets of an array that is to come in and has ``most`` cells at most; checked first,
        since a refusal by the library comes when the records are gone already."""
        sets = self._domain_sets(domains)
        shape = tuple(len(set_) for set_ in sets)
        if array.shape != shape:
            raise ValueError(
                f"the array has the shape {array.shape}, the domains of symbol {self.name} "
                f"have {shape} elements"
            )
        if array.size > most:
            raise ValueError(f"the array has {array.size} cells, at most {most} can come in")
        return [set_._native for set_ in sets]

    def _dense(
        self, domains: Optional[Sequence["DomainLike"]], field: int, drop: bool
    ) -> npt.NDArray[Any]:
        sets = self._domain_sets(domains)
        cube, dropped = self._native.to_dense([set_._native for set_ in sets], field)
        if dropped and not drop:
            raise ValueError(
                f"{dropped} records of symbol {self.name} have labels outside the domains; "
                "drop=True leaves them out"
            )
        return cube


class Set(Symbol[str]):
    """A set: its records are elements, whose values are explanatory texts."""

    def __getitem__(self, key: Key) -> str:
        return self._native.element_text(_labels(key))

    def __setitem__(self, key: Key, value: str) -> None:
        self._native.put_text(_labels(key), value)

    def add(self, *labels: str) -> None:
        """Adds an element, unless it is there already."""
        if labels not in self:
            self._native.put(labels, ())

    def extend(self, labels: Sequence[Key]) -> None:
        """Adds elements, those that are not there already."""
        for key in labels:
            self.add(*_labels(key))

    def _all_values(self) -> List[str]:
        return self._native.texts()

    def to_numpy(
        self, domains: Optional[Sequence["DomainLike"]] = None, *, drop: bool = False
    ) -> npt.NDArray[np.bool_]:
        """Whether each combination of labels is an element, as :meth:`Parameter.to_numpy`."""
        return self._dense(domains, 0, drop) != 0

    def from_numpy(
        self, array: npt.ArrayLike, domains: Optional[Sequence["DomainLike"]] = None
    ) -> None:
        """Replaces the elements by one, without text, for each cell that is true."""
        cells = np.asarray(array, dtype=np.bool_)
        self._native.elements_from_dense(self._requested(cells, domains, sys.maxsize), cells)

    def to_pandas(self) -> "pd.Series[str]":
        """The texts as a series over the labels."""
        from . import frames

        return frames.set_to_series(self)

    def from_pandas(self, data: Union["pd.Series[str]", "pd.Index"]) -> None:
        """Replaces the elements by those of a series of texts, or of an index, without texts."""
        from . import frames

        frames.set_from_pandas(self, data)


class Parameter(Symbol[float]):
    """A parameter: each record has one value."""

    def __getitem__(self, key: Key) -> float:
        return self._native.values(_labels(key))[0]

    def __setitem__(self, key: Key, value: float) -> None:
        self._native.put(_labels(key), (float(value),))

    @property
    def value(self) -> float:
        """The value of a parameter of dimension 0."""
        return self[()]

    @value.setter
    def value(self, value: float) -> None:
        self[()] = value

    def _all_values(self) -> List[float]:
        return self._native.rows()[1][:, 0].tolist()

    def to_numpy(
        self, domains: Optional[Sequence["DomainLike"]] = None, *, drop: bool = False
    ) -> npt.NDArray[np.float64]:
        """The values as a dense array, 0 where there is no record.

        Each axis runs over the elements of the set that is the domain of its position, in the
        order of :meth:`axes`; ``domains`` gives other sets, or names of sets. A record with a label
        outside them is an error, unless ``drop`` leaves it out. An array has 2**31 - 1 cells at
        most.
        """
        return self._dense(domains, 0, drop)

    def from_numpy(
        self,
        array: npt.ArrayLike,
        domains: Optional[Sequence["DomainLike"]] = None,
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
        from . import frames

        return frames.parameter_to_series(self)

    def from_pandas(self, data: Union["pd.Series[float]", "pd.DataFrame"]) -> None:
        """Replaces the records by those of a series, or of a frame of one column, over labels."""
        from . import frames

        frames.parameter_from_pandas(self, data)


class _FiveValues(Symbol[Values]):
    """A symbol whose records have five values."""

    def __getitem__(self, key: Key) -> Values:
        return Values(*self._native.values(_labels(key)))

    def __setitem__(self, key: Key, value: Union[float, Sequence[float]]) -> None:
        """Writes the values that are given, first the level; a number is the level alone."""
        values = value if isinstance(value, (tuple, list)) else (value,)
        self._native.put(_labels(key), tuple(float(number) for number in values))

    def _all_values(self) -> List[Values]:
        return [Values(*row) for row in self._native.rows()[1].tolist()]

    def to_numpy(
        self,
        domains: Optional[Sequence["DomainLike"]] = None,
        *,
        field: str = "level",
        drop: bool = False,
    ) -> npt.NDArray[np.float64]:
        """One field as a dense array, as :meth:`Parameter.to_numpy`."""
        return self._dense(domains, field_number(field), drop)

    def to_pandas(self) -> "pd.DataFrame":
        """The values as a frame with a column for each field, over the labels."""
        from . import frames

        return frames.values_to_frame(self)

    def from_pandas(self, data: Union["pd.Series[float]", "pd.DataFrame"]) -> None:
        """Replaces the records by those of a frame whose columns are fields; a series has levels.

        Fields without a column take the defaults of the symbol's kind.
        """
        from . import frames

        frames.values_from_pandas(self, data)


class Variable(_FiveValues):
    """A variable."""


class Equation(_FiveValues):
    """An equation."""


DomainLike = Union[str, Set, Alias, None]

_CLASSES = {0: Set, 1: Parameter, 2: Variable, 3: Equation, 4: Alias}


def wrap(database: "Database", native: _native.Symbol) -> Union[Symbol[Any], Alias]:
    """The object for a symbol, by its type."""
    return _CLASSES[native.type](database, native)


def field_number(field: str) -> int:
    """The place of a field among the values of a record."""
    if field not in FIELDS:
        raise ValueError(f"no field {field!r}, expected one of {', '.join(FIELDS)}")
    return FIELDS.index(field)


def _labels(key: object) -> Tuple[str, ...]:
    return key if isinstance(key, tuple) else (key,)  # type: ignore[return-value]


def _labels_of(set_: Set) -> List[str]:
    labels = set_._database._label_array()
    return labels[set_._native.rows()[0][:, 0]].tolist()
