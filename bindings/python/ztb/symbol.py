"""Symbols: mappings from labels to what records hold. Sets are here, what holds numbers is in
:mod:`ztb.numeric`.
"""

from __future__ import annotations

import sys
from collections.abc import ItemsView, ValuesView
from collections.abc import Mapping as MappingClass
from typing import TYPE_CHECKING, Any, Dict, Hashable, Iterable, Iterator, List, MutableMapping
from typing import NamedTuple, Optional, Sequence, Tuple, TypeVar, Union, overload

import numpy as np
import numpy.typing as npt

from . import _native, arguments, arrays, arrow_data, display, plots, texts, xarrays
from .arrow_data import ArrowData
from .errors import Error
from .home import Home
from .labels import Key, Label, labels_of_key
from .selection import Numbers, Selection, choice_of, is_partial

if TYPE_CHECKING:
    import pandas as pd

Value = TypeVar("Value")

#: Labels of records, with a slice or several labels at one position or more.
PartialKey = Any

#: Stands for no record, which a value never is.
_NONE = object()

_SET, _PARAMETER, _VARIABLE, _EQUATION, _ALIAS = range(5)
#: The kinds of symbols by their type numbers, as they are written.
KINDS = ("set", "parameter", "variable", "equation", "alias")


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


class Alias(display.Shows):
    """A second name for a set. It has no records of its own."""

    def __init__(self, database: Home, native: _native.Symbol) -> None:
        self._database = database
        self._native = native

    @property
    def name(self) -> str:
        """The alias's own name."""
        return self._native.name

    @property
    def set(self) -> Optional["Set"]:
        """The set that it stands for; ``None`` for the universe."""
        return set_of(self._database, self._database._native.find_symbol(self.name, False))

    def __arrow_c_stream__(self, requested_schema: Any = None) -> Any:
        """The records of its set as an Arrow stream: see :meth:`arrow`, which has choices."""
        return self.arrow().__arrow_c_stream__(requested_schema)

    def arrow(self, *, na: str = "nan", batch: int = 65536) -> ArrowData:
        """The records of its set as Arrow data, as :meth:`Symbol.arrow` gives them."""
        return ArrowData(self._native, na, batch)

    def _title(self) -> str:
        target = self.set
        name = "*" if target is None else target.name
        return f"ztb.Alias {display.cell(self.name)} of {display.cell(name)}"


class _Items(ItemsView[Any, Value]):
    """Reads all records in one go."""

    def __init__(self, symbol: "Symbol[Value]") -> None:
        super().__init__(symbol)
        self._symbol = symbol

    def __iter__(self) -> Iterator[Tuple[Any, Value]]:
        keys, content = self._symbol._table()
        return iter(zip(self._symbol._keys_of(keys), self._symbol._values_of(content)))


class _Values(ValuesView[Value]):
    """Reads all records in one go."""

    def __init__(self, symbol: "Symbol[Value]") -> None:
        super().__init__(symbol)
        self._symbol = symbol

    def __iter__(self) -> Iterator[Value]:
        return iter(self._symbol._values_of(self._symbol._table()[1]))


class Symbol(display.Shows, MutableMapping[Any, Value]):
    """A symbol of a database: a mapping from tuples of labels to values.

    Records come in the order of their label numbers. Labels are compared with the case of ASCII
    letters folded; :mod:`ztb.labels` tells what a label is made from. A key with slices, or with
    several labels at a position, gives a :class:`Selection`. Two symbols are equal if they are the
    same symbol of the same database; compare ``dict(a) == dict(b)`` for their records. Iterating
    reads all keys first, so the records may be changed meanwhile.
    """

    def __init__(self, database: Home, native: _native.Symbol) -> None:
        self._database = database
        self._native = native

    # ---- what it is ----

    @property
    def database(self) -> Home:
        """The database that it belongs to."""
        return self._database

    @property
    def name(self) -> str:
        """Its name, as it was spelled first."""
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
        number = arguments.whole(value, "user information")
        if not -(2**31) <= number < 2**31:
            raise ValueError(f"user information is a number of 32 bits, which {number} is not")
        self._native.user_info = number

    @property
    def domains(self) -> Tuple[Domain, ...]:
        """The domain of each position."""
        return tuple(
            Domain(name, set_of(self._database, native)) for native, name in self._native.domains()
        )

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Symbol) and bool(self._native == other._native)

    def __hash__(self) -> int:
        return hash(self._native)

    # ---- how it shows itself ----

    def _title(self) -> str:
        domains = ", ".join(display.cell(name) for _, name in self._native.domains())
        return f"ztb.{type(self).__name__} {display.cell(self.name)}({domains})"

    def _listing(self) -> display.Listing:
        rows = self._shown(*self._table(display.MOST_ROWS))
        return display.Listing(self.text, self._columns(), rows, len(self), "record")

    def _shown(self, keys: Numbers, content: npt.NDArray[Any]) -> List[display.Row]:
        cells = content if content.ndim == 2 else content[:, np.newaxis]
        return [
            [*map(display.cell, labels), *map(display.cell, row)]
            for labels, row in zip(self._label_tuples(keys), cells)
        ]

    def _columns(self) -> List[str]:
        return [*self._native.columns(), *self._content_columns()]

    def _content_columns(self) -> List[str]:
        raise NotImplementedError

    # ---- mapping ----

    def __len__(self) -> int:
        return self._native.record_count()

    def __iter__(self) -> Iterator[Any]:
        return iter(self._keys_of(self._native.rows()[0]))

    def __contains__(self, key: object) -> bool:
        return self._native.contains(labels_of_key(key))

    # A partial key is any other: the first that fits decides.
    @overload
    def __getitem__(self, key: Key) -> Value: ...  # type: ignore[misc]
    @overload
    def __getitem__(self, key: PartialKey) -> Selection[Value]: ...
    def __getitem__(self, key: Any) -> Any:
        try:
            return self._value(labels_of_key(key))
        except (TypeError, ValueError):
            if not is_partial(key):
                raise
        return Selection(self, self._database, choice_of(self._native, self._database, key))

    def __setitem__(self, key: Key, value: Any) -> None:
        _require_whole(key)
        self._set_value(labels_of_key(key), value)

    def __delitem__(self, key: Key) -> None:
        _require_whole(key)
        self._native.remove(labels_of_key(key))

    def items(self) -> ItemsView[Any, Value]:
        """All keys with their values, read in one go."""
        return _Items(self)

    def values(self) -> ValuesView[Value]:
        """All values, read in one go."""
        return _Values(self)

    def clear(self) -> None:
        """Removes all records."""
        self._native.clear()

    def update(self, other: Any = (), /, **named: Any) -> None:
        """Writes the records of a mapping, or of pairs of key and value, all or none.

        Everything is looked at before the first is written. Should a store refuse a record all the
        same, as the vector does one between others, those before it are taken back.
        """
        pairs = self._checked_pairs([*_pairs_of(other), *named.items()])
        before: List[Tuple[Tuple[Any, ...], Any]] = []
        try:
            for labels, value in pairs:
                before.append((labels, self.get(labels, _NONE)))
                self._set_value(labels, value)
        except BaseException:
            for labels, value in reversed(before):
                if value is not _NONE:
                    self._set_value(labels, value)
                elif labels in self:
                    self._native.remove(labels)
            raise

    def _checked_pairs(
        self, pairs: List[Tuple[Any, Any]]
    ) -> List[Tuple[Tuple[Any, ...], Any]]:
        for key, _ in pairs:
            _require_whole(key)
        self._numbers_of([labels_of_key(key) for key, _ in pairs])
        return [(labels_of_key(key), self._checked(value)) for key, value in pairs]

    def _numbers_of(self, keys: List[Tuple[Any, ...]]) -> Numbers:
        """The label numbers of keys; throws for one that can be none, and adds no label."""
        for key in keys:
            if len(key) != self.dimension:
                raise ValueError(
                    f"{display.counted(len(key), 'label')} given, symbol {self.name} has "
                    f"{display.counted(self.dimension, 'position')}"
                )
        labels = [label for key in keys for label in key]
        numbers = self._database._native.new_labels().numbers(labels)
        rows: Numbers = numbers.reshape(len(keys), self.dimension)
        return rows

    def _checked(self, value: Any) -> Any:
        """A value as ``_set_value`` takes it; throws for one that it would refuse."""
        raise NotImplementedError

    def _value(self, labels: Tuple[Any, ...]) -> Value:
        raise NotImplementedError

    def _set_value(self, labels: Tuple[Any, ...], value: Any) -> None:
        raise NotImplementedError

    # ---- bulk ----

    def axes(self, domains: Optional["DomainsLike"] = None) -> Tuple[List[str], ...]:
        """The labels along each axis of ``to_numpy`` with the same domains."""
        labels = self._database._label_array()
        return tuple(labels[numbers].tolist() for numbers in self._axis_numbers(domains))

    def copy_from(self, source: Union["Symbol[Any]", Alias]) -> None:
        """Replaces the records by those of a symbol of this or another database.

        Both have the same dimension and type; anything can be copied into a set. Labels and texts
        cross by their strings. An alias gives the records of the set that it stands for. A symbol
        is not copied onto itself, nor an alias onto its set: that is an error and changes nothing.
        """
        if not isinstance(source, (Symbol, Alias)):
            raise TypeError(f"{arguments.shown(source)} is no symbol to copy records from")
        self._native.copy_from(source._native)

    def __arrow_c_stream__(self, requested_schema: Any = None) -> Any:
        """The records as an Arrow stream: see :meth:`arrow`, which has choices."""
        return self.arrow().__arrow_c_stream__(requested_schema)

    def arrow(self, *, na: str = "nan", batch: int = 65536) -> ArrowData:
        """The records as Arrow data, for what reads objects with ``__arrow_c_stream__``.

        Columns are those of the symbol as a table: labels as dictionaries of texts, then ``value``,
        the five fields, or ``text``. Special values are the doubles of :mod:`ztb.special`; with
        ``na="null"``, :data:`ztb.NA` is null. They come in batches of ``batch`` records.
        """
        return ArrowData(self._native, na, batch)

    def from_arrow(
        self, data: Any, *, keys: Optional[Sequence[str]] = None, null: str = "na"
    ) -> None:
        """Replaces the records by those of Arrow data: any object with ``__arrow_c_stream__``.

        ``keys`` names the columns of labels, one for each position. Without it they are those that
        are called as in :meth:`arrow`, or, where not all are there, the first ones. The others are
        the content: one of any name for a parameter, some of the fields for a variable or
        equation, or one for its level; none or one of texts for a set. Labels are texts, whole
        numbers or dates. ``null`` tells what becomes of nulls among values, as ``nan`` for
        ``from_pandas``. On failure nothing has changed.
        """
        arrow_data.fill(self._native, data, keys, null)

    def to_xarray(self, *, most: int = 2**27) -> Any:
        """The cells as a ``DataArray`` of xarray.

        Dimensions are the columns of the symbol as a table, over the labels of the domain set, or,
        where there is none or a record is outside, over those of records. A cell without a record
        is a NaN of its own, :data:`ztb.NA` apart; for a set it is false. The fields of a variable
        or equation are a last dimension, ``field``. A symbol of more than ``most`` cells is
        refused with its size.
        """
        return xarrays.array_of(self, arguments.whole(most, "number of cells"))

    def from_xarray(self, data: Any, *, nan: str = "na") -> None:
        """Replaces the records by the cells of a ``DataArray`` of xarray.

        Dimensions are taken by their names, those of :meth:`to_xarray`, or, where one has another
        name, in their order. A cell that :meth:`to_xarray` left without a record is none; ``nan``
        tells what becomes of other NaNs, as for ``from_pandas``. For a set, true makes an element.
        """
        xarrays.fill(self, data, nan)

    def plot(
        self,
        x: Union[str, int, None] = None,
        by: Union[str, int, None] = None,
        kind: Optional[str] = None,
        *,
        field: str = "level",
        ax: Any = None,
    ) -> Any:
        """Draws the values with matplotlib, and gives the ``Axes`` that they are on.

        ``x`` is the position that goes across and ``by`` one of which each label is a series: the
        name of a column or a number from 0. ``kind`` is ``"line"``, ``"bar"``, ``"area"``,
        ``"scatter"``, or ``"hist"``, the distribution of the values, which is drawn without ``x``.
        Labels that are all numbers stand where their numbers do, others in the order of the
        database. EPS is 0; what is undefined, missing or infinite is a gap. ``ax`` is drawn on where
        it is given.
        """
        if self._native.type == _SET:
            raise TypeError(f"{self.name} is a set, which has no values to draw")
        return plots.plot(self, x, by, kind, field, ax)

    def violations(self) -> List[Violation]:
        """The records with a label outside the set that is its domain."""
        keys, outside = self._native.violations()
        return [
            Violation(key, tuple(np.flatnonzero(flags).tolist()))
            for key, flags in zip(self._label_tuples(keys), outside)
        ]

    # ---- records as arrays ----

    def _table(self, most: Optional[int] = None) -> Tuple[Numbers, npt.NDArray[Any]]:
        """Rows of label numbers and of what the records hold, of ``most`` records at most."""
        return self._native.rows(most)

    def _keys_of(self, keys: Numbers) -> List[Any]:
        return self._label_tuples(keys)

    def _values_of(self, content: npt.NDArray[Any]) -> List[Value]:
        raise NotImplementedError

    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> Any:
        raise NotImplementedError

    def _label_tuples(self, keys: Numbers) -> List[Tuple[str, ...]]:
        labels = self._database._label_array()
        if self.dimension == 0:
            return [()] * len(keys)
        return list(zip(*(labels[column].tolist() for column in keys.T)))

    # ---- domains of arrays ----

    def _domain_sets(self, domains: Optional["DomainsLike"]) -> List["Set"]:
        given = self._own_domains() if domains is None else several(domains)
        if len(given) != self.dimension:
            raise ValueError(
                f"{display.counted(len(given), 'domain')} given, symbol {self.name} has "
                f"{display.counted(self.dimension, 'position')}"
            )
        return [self._domain_set(domain, place) for place, domain in enumerate(given)]

    def _own_domains(self) -> List["DomainLike"]:
        return [domain.set for domain in self.domains]

    def _domain_set(self, domain: "DomainLike", position: int) -> "Set":
        if isinstance(domain, str) and domain != "*":
            native = self._database._native.find_symbol(domain, False)
            domain = Set(self._database, native) if native.type == _SET else domain
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

    def _axis_numbers(self, domains: Optional["DomainsLike"]) -> List[npt.NDArray[np.int32]]:
        return [set_._native.rows()[0][:, 0] for set_ in self._domain_sets(domains)]

    def _requested(
        self, array: npt.NDArray[Any], domains: Optional["DomainsLike"], most: int
    ) -> List[_native.Symbol]:
        """The sets of an array that is to come in and has ``most`` cells at most; checked first,
        since a refusal by the library comes when the records are gone already."""
        self._require_positions("from_numpy")
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
        self, domains: Optional["DomainsLike"], field: int, drop: bool
    ) -> npt.NDArray[Any]:
        arguments.flag(drop, "drop")
        self._require_positions("to_numpy")
        sets = self._domain_sets(domains)
        cube, dropped = self._native.to_dense([set_._native for set_ in sets], field)
        self._require_none_dropped(dropped, drop)
        return cube

    def _sparse(
        self,
        keys: Numbers,
        values: npt.NDArray[Any],
        domains: Optional["DomainsLike"],
        rows: int,
        drop: bool,
    ) -> Any:
        from . import sparse

        arguments.flag(drop, "drop")
        count = arguments.whole(rows, "number of positions")
        if count > 0:
            self._require_positions("to_coo")
        matrix, dropped = sparse.to_coo(
            keys, values, self._axis_numbers(domains), count, self.name
        )
        self._require_none_dropped(dropped, drop)
        return matrix

    def _require_positions(self, operation: str) -> None:
        if self.dimension == 0:
            raise ValueError(
                f"symbol {self.name} has no position, so {operation} has no axis for it; "
                f"{self.name}[()] is its only record"
            )

    def _require_none_dropped(self, dropped: int, drop: bool) -> None:
        if dropped and not drop:
            raise ValueError(
                f"{display.counted(dropped, 'record')} of symbol {self.name} "
                f"{'has' if dropped == 1 else 'have'} labels outside the domains; "
                "drop=True leaves them out"
            )


class Set(Symbol[str]):
    """A set: its records are elements, whose values are explanatory texts.

    A set of one position iterates as labels, which are its keys then; any other as tuples.
    ``s[key] = text`` adds an element or edits its text; :attr:`texts` edits alone.
    """

    def _value(self, labels: Tuple[Any, ...]) -> str:
        return self._native.element_text(labels)

    def _set_value(self, labels: Tuple[Any, ...], value: Any) -> None:
        text = arguments.text(value, f"text for an element of set {self.name}")
        self._native.put_text(labels, text)
        texts.warn_of_kept(self.name, [text], [self._native.element_text(labels)])

    def _checked(self, value: Any) -> str:
        text = arguments.text(value, f"text for an element of set {self.name}")
        _native.require_text(text)
        return text

    @property
    def texts(self) -> "Texts":
        """The texts of the elements, as a mapping that adds and removes no element."""
        return Texts(self)

    def add(self, *labels: Label) -> None:
        """Adds an element, unless it is there already."""
        if labels not in self:
            self._native.put(labels, ())

    def extend(self, labels: Iterable[Key]) -> None:
        """Adds elements, those that are not there already; all of them, or none if one is refused.

        Levels of an index are taken by their names, as by :meth:`from_pandas`.
        """
        keys = [labels_of_key(key) for key in self._keys_in_order(labels)]
        first: Dict[Tuple[int, ...], Tuple[Any, ...]] = {}
        for row, key in zip(self._numbers_of(keys).tolist(), keys):
            first.setdefault(tuple(row), key)
        absent = [key for key in first.values() if key not in self]
        for place, key in enumerate(absent):
            try:
                self._native.put(key, ())
            except Error:
                # The vector store takes single records behind all others only.
                self._put_together(absent[place:])
                return

    def _keys_in_order(self, labels: Iterable[Key]) -> Iterable[Any]:
        if getattr(labels, "nlevels", 1) == 1:
            return arguments.several(labels, "label")
        from . import positions

        ordered: Iterable[Any] = positions.ordered(self._native, labels)
        return ordered

    def _put_together(self, keys: List[Tuple[Any, ...]]) -> None:
        """Adds elements that are not there, with all others, in the order of their numbers."""
        there, kept = self._table()
        new_labels = self._database._native.new_labels()
        numbers = new_labels.numbers([label for key in keys for label in key])
        rows = np.concatenate((there, numbers.reshape(len(keys), self.dimension)))
        self._native.put_elements(rows, [*kept.tolist(), *[""] * len(keys)], new_labels)

    def _keys_of(self, keys: Numbers) -> List[Any]:
        if self.dimension != 1:
            return self._label_tuples(keys)
        labels: List[str] = self._database._label_array()[keys[:, 0]].tolist()
        return labels

    def _table(self, most: Optional[int] = None) -> Tuple[Numbers, npt.NDArray[Any]]:
        content = np.array(self._native.texts(most), dtype=object)
        return self._native.rows(most)[0], content

    def _values_of(self, content: npt.NDArray[Any]) -> List[str]:
        all_texts: List[str] = content.tolist()
        return all_texts

    def _content_columns(self) -> List[str]:
        return ["text"]

    def to_numpy(
        self, domains: Optional["DomainsLike"] = None, *, drop: bool = False
    ) -> npt.NDArray[np.bool_]:
        """Whether each combination of labels is an element, as :meth:`Parameter.to_numpy`."""
        return np.not_equal(self._dense(domains, 0, drop), 0)

    def to_coo(
        self, domains: Optional["DomainsLike"] = None, *, rows: int = 1, drop: bool = False
    ) -> Any:
        """The elements as a sparse matrix of truth, as :meth:`Parameter.to_coo`: each is an entry
        that is true."""
        keys = self._native.rows()[0]
        return self._sparse(keys, np.ones(len(keys), dtype=np.bool_), domains, rows, drop)

    def from_numpy(
        self,
        array: npt.ArrayLike,
        domains: Optional["DomainsLike"] = None,
        *,
        nan: str = "error",
    ) -> None:
        """Replaces the elements by one, without text, for each cell that is true, or a number but
        zero.

        A missing cell (NaN, ``None``, ``pandas.NA``, one of a masked array) is a ``ValueError``;
        ``nan="skip"`` makes no element of it.
        """
        marks = arrays.truths(array, self.name, nan)
        self._native.elements_from_dense(self._requested(marks, domains, sys.maxsize), marks)

    def to_pandas(self) -> "pd.Series[str]":
        """The texts as a series over the labels."""
        return self._frame_of(*self._table())

    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> "pd.Series[str]":
        from . import frames

        return frames.series_of(self._native, self._database, keys, content)

    def from_pandas(
        self,
        data: Union["pd.Series[str]", "pd.Index", "pd.DataFrame"],
        *,
        keys: Optional[Sequence[Hashable]] = None,
    ) -> None:
        """Replaces the elements by those of a series of texts over labels, of an index, without
        texts, or of a frame with label columns and perhaps one of texts.

        What :meth:`Parameter.from_pandas` tells of levels, columns and ``keys`` holds here, too. A
        missing text is none.
        """
        from . import frames

        frames.set_from_pandas(self._native, self._database, data, keys)


class Texts(MutableMapping[Any, str]):
    """The texts of a set's elements, by its keys: for editing them, and nothing else.

    Writing one of no element is a :class:`ztb.NotFoundError`; deleting one leaves the element
    without a text.
    """

    def __init__(self, elements: Set) -> None:
        self._elements = elements

    def __len__(self) -> int:
        return len(self._elements)

    def __iter__(self) -> Iterator[Any]:
        return iter(self._elements)

    def __getitem__(self, key: Key) -> str:
        return self._elements._value(labels_of_key(key))

    def __setitem__(self, key: Key, text: str) -> None:
        self[key]
        self._elements[key] = text

    def __delitem__(self, key: Key) -> None:
        self[key] = ""

    def update(self, other: Any = (), /, **named: Any) -> None:
        """Edits the texts of a mapping, or of pairs of key and text, all or none."""
        pairs = [*_pairs_of(other), *named.items()]
        for key, _ in pairs:
            self[key]
        self._elements.update(pairs)

    def __repr__(self) -> str:
        return f"<texts of {self._elements!r}>"


#: The domain of a position: a set or alias, a name, or None or "*" for the universe.
DomainLike = Union[str, Set, Alias, None]
#: Domains of all positions; that of a single position may stand alone.
DomainsLike = Union[str, Set, Alias, Sequence[DomainLike]]


def several(domains: DomainsLike) -> List[DomainLike]:
    """Domains as a list, also where one stands alone."""
    if isinstance(domains, (str, bytes, Symbol, Alias)):
        return [domains]
    try:
        return list(domains)
    except TypeError:
        raise TypeError(
            f"{domains!r} ({type(domains).__name__}) is no domain, expected a set, an alias, a "
            "name, or a sequence of these"
        ) from None


def set_of(database: Home, native: Optional[_native.Symbol]) -> Optional[Set]:
    """The set of a native symbol; ``None`` for the universe."""
    return None if native is None or native.name == "*" else Set(database, native)


def _pairs_of(other: Any) -> List[Tuple[Any, Any]]:
    """Keys and values of what ``update`` takes."""
    if isinstance(other, MappingClass):
        return list(other.items())
    if hasattr(other, "keys"):
        return [(key, other[key]) for key in other.keys()]
    if isinstance(other, str):
        raise TypeError(f"{other!r} holds no pairs of key and value, nor is it a mapping")
    pairs = []
    for pair in arguments.several(other, "pair of key and value"):
        try:
            key, value = pair
        except (TypeError, ValueError):
            raise TypeError(f"{pair!r} is no pair of key and value") from None
        pairs.append((key, value))
    return pairs


def _require_whole(key: object) -> None:
    if is_partial(key):
        raise TypeError(
            "records are written and deleted by whole keys, one label for each position; "
            "from_pandas and from_numpy write many"
        )
