"""Data that drive a model: what is the same from step to step is looked at once."""

from __future__ import annotations

import re
from typing import TYPE_CHECKING, Any, Callable, Hashable, Iterable, List, Mapping, Optional
from typing import Sequence, Tuple

import numpy as np
import numpy.typing as npt

from . import _native, arrays
from .errors import Error
from .numeric import Parameter
from .symbol import Symbol

if TYPE_CHECKING:
    import pandas as pd

Keys = npt.NDArray[np.int32]
Numbers = npt.NDArray[np.float64]

#: What stands in front of the equals sign of a statement.
_STATED = re.compile(r"\s*(\w+)\s*[(\[]([^)\]]*)[)\]]\s*=")

#: A number of this size and beyond is none for a model, but infinity.
_TOO_LARGE = 1e300

_DOUBLE = np.dtype(np.float64)
_OBJECT = np.dtype(object)


def stated_positions(statements: Iterable[str], name: str) -> Optional[Tuple[str, ...]]:
    """The names that the positions of a symbol have in the statement of what it drives."""
    for statement in statements:
        stated = _STATED.match(statement)
        if stated is None or _native.folded(stated[1]) != _native.folded(name):
            continue
        names = tuple(position.strip() for position in stated[2].split(","))
        if all(map(str.isidentifier, names)) and len(set(map(_native.folded, names))) == len(names):
            return names
    return None


#: What stands behind it: families that stand alone, without brackets.
_FAMILY = re.compile(r"\b(of|in)(\s+)(\w+)(?=\s*$|\s+in\s)", re.IGNORECASE)


def with_positions(statement: str, positions: Mapping[str, Sequence[str]]) -> str:
    """The statement with the positions of families whose names are known behind each family that
    stands alone, so that they are matched by name."""
    stated = _STATED.match(statement)
    if stated is None:
        return statement
    names = [_native.folded(name.strip()) for name in stated[2].split(",")]

    def told(family: "re.Match[str]") -> str:
        own = positions.get(_native.folded(family[3]), ())
        folded = [_native.folded(name) for name in own]
        if not own or not set(folded) <= set(names) or not all(map(str.isidentifier, own)):
            return family[0]
        return f"{family[0]}({', '.join(own)})"

    return statement[: stated.end()] + _FAMILY.sub(told, statement[stated.end() :])


class _Labels:
    """The labels of a series or frame that was taken, so that the next one is told to have them."""

    def __init__(self, data: Any, columns: List[Hashable], column: Hashable) -> None:
        import pandas as pd

        self.kind = type(data)
        #: The index where it holds the labels, the columns of a frame: the first and those that
        #: were found to be the same, by their identity.
        self.indexes = _Same(data.index)
        self.heads = None if not hasattr(data, "columns") else _Same(data.columns)
        #: The columns that hold labels, what they held, and its bytes; none where the index does.
        held = [(name, _array(data[name]).copy()) for name in columns]
        self.columns = [
            (_Place(data, name), labels, labels.dtype, labels.tobytes()) for name, labels in held
        ]
        #: The place of the column of numbers.
        self.place = None if self.heads is None else _Place(data, column)
        #: Label numbers in ascending order, and the row of each; None until they are asked for.
        self.keys: Optional[Keys] = None
        self.order: Optional[npt.NDArray[np.intp]] = None

    def values(self, data: Any) -> Any:
        """The numbers of data of this kind, as an array of whatever type; None for data that have
        other labels, or the same in other rows."""
        if self.place is None or self.heads is None:
            return _array(data) if self.indexes.holds(data.index) else None
        if not self.heads.holds(data.columns):
            return None
        if not self.columns and not self.indexes.holds(data.index):
            return None
        for place, labels, dtype, held in self.columns:
            new = place.array(data)
            # Of objects these are addresses, and those of the labels stay theirs.
            if (new.dtype is not dtype or new.tobytes() != held) and not (
                new.dtype == dtype and np.array_equal(new, labels)
            ):
                return None
        return self.place.array(data)


    def look_at_places(self, data: Any) -> None:
        """Has the places of columns be those of data that have these labels, and are as they were
        made: pandas may have put the columns of the first ones together meanwhile."""
        self.columns = [
            (_Place(data, place.name), labels, dtype, held)
            for place, labels, dtype, held in self.columns
        ]
        if self.place is not None:
            self.place = _Place(data, self.place.name)

    def learnt(self) -> Optional[Tuple[Any, ...]]:
        """What the extension module is to know of them, to do the work of :meth:`values` where data
        are kept in the same way; None for labels that are no objects."""
        columns = []
        for place, labels, dtype, held in self.columns:
            if dtype is not _OBJECT or place.at is None:
                return None
            columns.append((place.at, labels, held))
        index = None if self.columns else self.indexes.learnt
        if self.place is None or self.heads is None:
            return self.kind, index, None, columns, None
        if self.place.at is None:
            return None
        return self.kind, index, self.heads.learnt, columns, self.place.at


class _Place:
    """Where a frame has a column."""

    __slots__ = ("_block", "_column", "_dtype", "_row", "name")

    def __init__(self, frame: "pd.DataFrame", name: Hashable) -> None:
        self.name = name
        self._column = frame.columns.get_loc(name)
        self._dtype = _array(frame[name]).dtype
        #: In which array of the frame it lies, and in which of its rows; -1 where that is unknown.
        self._block = self._row = -1
        for number, block in enumerate(getattr(getattr(frame, "_mgr", None), "blocks", ())):
            row = np.flatnonzero(block.mgr_locs.as_array == self._column)
            if len(row) == 1:
                self._block, self._row = number, int(row[0])

    @property
    def at(self) -> Optional[Tuple[int, int, int]]:
        """The number of the array, the row in it, and the number of the column."""
        return None if self._block < 0 else (self._block, self._row, self._column)

    def array(self, frame: "pd.DataFrame") -> Any:
        """What the column holds in a frame with the same columns. Its array is taken from where it
        lies, since pandas takes ten times as long to hand it out of a new frame."""
        try:
            block = frame._mgr.blocks[self._block]
            if block._mgr_locs.as_array.item(self._row) == self._column:
                array = block.values[self._row]
                if type(array) is np.ndarray and array.dtype is self._dtype:
                    return array
        except (AttributeError, IndexError, TypeError, ValueError):
            pass  # frames of other versions keep their columns otherwise
        return _array(frame.iloc[:, self._column])


class _Same:
    """An index, and others that were found to be the same; an index never changes."""

    __slots__ = ("_bytes", "_first", "_kind", "_known", "_name")

    #: How many are kept.
    _MOST = 64

    def __init__(self, first: "pd.Index") -> None:
        import pandas as pd

        self._first = first
        self._known = {id(first): first}
        #: Of an index of objects their addresses, which are those of no others while it is held.
        self._bytes: Optional[bytes] = None
        self._kind = type(first)
        self._name = first.name
        if self._kind is pd.Index and first.dtype.kind == "O":
            self._bytes = first.values.tobytes()

    @property
    def learnt(self) -> Tuple["pd.Index", Optional[bytes]]:
        """The first, and its objects as bytes where it has some."""
        return self._first, self._bytes

    def holds(self, index: "pd.Index") -> bool:
        if id(index) in self._known:
            return True
        if not self._looks_same(index) and not _same_index(self._first, index):
            return False
        if len(self._known) == self._MOST:
            self._known.clear()
        self._known[id(index)] = index
        return True

    def _looks_same(self, index: "pd.Index") -> bool:
        """Whether it has the very same objects and name, which is told quickly."""
        if self._bytes is None or type(index) is not self._kind:
            return False
        values = index.values
        return (
            type(values) is np.ndarray
            and values.dtype is _OBJECT
            and values.tobytes() == self._bytes
            and bool(index.name == self._name)
        )


def _array(column: Any) -> Any:
    """What a column holds; the short way to it where it lies in an ordinary array."""
    values = column.values
    if type(values) is np.ndarray and values.dtype.kind in "Of":
        return values
    return column.to_numpy()


def _same_index(one: "pd.Index", other: "pd.Index") -> bool:
    return bool(one.dtype == other.dtype and one.names == other.names and one.equals(other))


class Driven(_native.Drive):
    """The columns that a symbol drives, and the parameter that holds its data."""

    def __init__(
        self,
        model: _native.Model,
        name: str,
        columns: _native.Symbol,
        data: Parameter,
        positions: Optional[Sequence[str]] = None,
    ) -> None:
        #: The label numbers of the columns, in their order.
        self.keys: Keys = columns.rows()[0]
        super().__init__(model, columns, data._native, self.keys)
        self._name = name
        self.columns = columns
        self.data = data
        #: The names of its positions, where a statement gave them.
        self.positions = positions
        self._native = data._native
        self._count = len(self.keys)
        self._labels: Optional[_Labels] = None

    def set(self, data: Any) -> int:
        """Takes data of any kind; the number of records that meet nothing."""
        kind = type(data)
        if kind is np.ndarray:
            if data.dtype is _DOUBLE and data.size == self._count:
                return self.fix(self.keys, data)
        elif self._labels is not None and kind is self._labels.kind:
            known = self._known(self._labels, data)
            if known is not None:
                return self.fix(*known)
        fill(self.data, data, lambda: self.keys, self._name)
        self._remember(data)
        keys, table = self._native.rows()
        return self.fix(keys, table[:, 0])

    def _known(self, labels: _Labels, data: Any) -> Optional[Tuple[Keys, Numbers]]:
        """Label numbers and values of data with labels that are known; None for others."""
        values = labels.values(data)
        if values is None or values.dtype != _DOUBLE:
            return None
        if labels.keys is None:
            from . import frames

            labels.look_at_places(data)
            numbers = frames.label_numbers(self._native, self.data._database, data)
            order = np.lexsort(numbers.T[::-1]) if numbers.shape[1] else np.arange(len(numbers))
            labels.keys = np.ascontiguousarray(numbers[order])
            if not np.array_equal(order, np.arange(len(order))):
                labels.order = order
            learnt = labels.learnt()
            if learnt is not None:
                self.learn(*learnt, labels.keys, labels.order)
        return labels.keys, values if labels.order is None else values[labels.order]

    def _remember(self, data: Any) -> None:
        """Keeps the labels of data, which were found to be sound."""
        if not hasattr(data, "iloc"):
            return
        from . import frames

        columns, column = frames.label_columns(self._native, data)
        unique = getattr(data, "columns", data.index[:0]).is_unique
        self._labels = _Labels(data, columns, column) if unique else None


def require_numbers(parameter: Parameter) -> None:
    """Refuses records that no bound or level of a model can be, before any is written into it."""
    levels = parameter._native.rows()[1][:, 0]
    wrong = np.flatnonzero(~(levels < _TOO_LARGE) & (levels != np.inf))
    if len(wrong):
        labels = ", ".join(list(parameter)[wrong[0]])
        place = f"({labels})" if parameter.dimension else ""
        raise Error(f"Bad value {levels[wrong[0]]:g} in {parameter.name}{place}", "ztbUpdateModelSymbol")


def fill(
    parameter: Parameter, data: Any, keys: Callable[[], Keys], name: Optional[str] = None
) -> None:
    """Replaces the records of a parameter by data of any kind; arrays have a number for each of
    ``keys``."""
    if isinstance(data, Parameter):
        data = data.to_pandas() if data.dimension else data.value
    if hasattr(data, "iloc"):
        parameter.from_pandas(data)
        return
    if data is None:
        raise TypeError(f"{name or parameter.name}: None (NoneType) holds no numbers")
    if isinstance(data, Symbol):
        raise TypeError(f"{name or parameter.name}: {data.name} is no parameter, and has no numbers")
    if isinstance(data, Mapping):
        rows, table = parameter._native.rows()
        parameter.clear()
        try:
            for key, value in data.items():
                parameter[key] = value
        except BaseException:
            parameter.clear()
            labels = parameter._database._native.new_labels()
            parameter._native.put_rows(rows, np.ascontiguousarray(table[:, :1]), [0], labels)
            raise
        return
    numbers = arrays.floats(data, name or parameter.name)
    rows = keys()
    if numbers.ndim == 0:
        numbers = np.full(len(rows), float(numbers))
    if numbers.size != len(rows):
        raise ValueError(
            f"{name or parameter.name}: {numbers.size} numbers, expected {len(rows)}, one for each "
            "element"
        )
    parameter._native.put_rows(
        rows, numbers.reshape(-1, 1), [0], parameter._database._native.new_labels()
    )
