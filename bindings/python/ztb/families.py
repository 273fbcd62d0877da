"""Variables over sets, and expressions in them: what rows of a model are built from.

Nothing here takes a step of Python for a record: labels of a position are looked at once each,
rows and columns are matched by pandas.
"""

from __future__ import annotations

from numbers import Real
from typing import (
    TYPE_CHECKING, Any, Dict, List, Mapping, NamedTuple, Optional, Sequence, Set as SetOf, Tuple,
    Union,
)

import numpy as np
import numpy.typing as npt

from . import _native, arguments, arrays
from .labels import label_text
from .numeric import Parameter
from .symbol import Alias, Set

if TYPE_CHECKING:
    import pandas as pd

#: A number, or one for each element: a parameter, a series or frame over labels, or an array.
Data = Union[float, Parameter, "pd.Series[Any]", "pd.DataFrame", npt.ArrayLike]
#: What a family runs over: a set, an index with names, or (name, labels).
Over = Any

_COLUMN = "\0column"
_ROW = "\0row"
_VALUE = "\0value"


class Spelling:
    """How a model spells its labels: as they came first, since a database takes ``Oslo`` and
    ``oslo`` for one. Labels of one position that differ by case alone stay as they are."""

    def __init__(self) -> None:
        self._first: Dict[str, str] = {}  # by the folded label
        self._known: SetOf[str] = set()

    def of(self, labels: List[str], add: bool) -> List[str]:
        """Distinct labels as the model spells them; with ``add`` new ones are the model's."""
        given = set(labels)
        result = []
        for label in labels:
            spelled = label
            if label not in self._known:
                spelled = self._first.get(_native.folded(label), label)
                if add and spelled in given:
                    spelled = label
            if add:
                self._known.add(spelled)
                self._first.setdefault(_native.folded(spelled), spelled)
            result.append(spelled)
        return result


def _texts(values: Any, spelling: Spelling, add: bool = False) -> npt.NDArray[np.object_]:
    """Labels as texts, as the model spells them."""
    import pandas as pd

    codes, distinct = pd.factorize(np.asarray(values, dtype=object))
    if len(codes) and codes.min() < 0:
        raise ValueError(f"label {int(np.flatnonzero(codes < 0)[0])} is missing")
    texts = np.empty(len(distinct), dtype=object)
    labels = [label_text(label) for label in distinct]
    for label in labels if add else ():
        if not label.strip(" "):
            raise ValueError(f"a blank label is none: {label!r}")
    texts[:] = spelling.of(labels, add)
    result: npt.NDArray[np.object_] = texts[codes]
    return result


def _part_frame(part: Over, spelling: Spelling) -> "pd.DataFrame":
    import pandas as pd

    if isinstance(part, Alias):
        target = part.set
        if target is None:
            raise TypeError("all labels are no set to build over, give a set or an index")
        return pd.DataFrame({part.name: _texts(list(target), spelling, True)})
    if isinstance(part, Set):
        index = part.to_pandas().index
        names = part._native.columns()
        columns = [index] if part.dimension == 1 else [
            index.get_level_values(level) for level in range(part.dimension)
        ]
        return pd.DataFrame(
            {name: _texts(column, spelling, True) for name, column in zip(names, columns)}
        )
    if isinstance(part, pd.Index):
        if any(name is None for name in part.names):
            raise ValueError("an index without a name says nothing of its position; name it")
        return pd.DataFrame(
            {
                str(name): _texts(part.get_level_values(level), spelling, True)
                for level, name in enumerate(part.names)
            }
        )
    if isinstance(part, tuple) and len(part) == 2 and isinstance(part[0], str):
        return pd.DataFrame({part[0]: _texts(list(part[1]), spelling, True)})
    raise TypeError(
        f"{part!r} ({type(part).__name__}) is nothing to build over, expected a set, an index with "
        "a name, or (name, labels)"
    )


def frame_over(over: Over, spelling: Optional[Spelling] = None) -> "pd.DataFrame":
    """All combinations of the parts as a frame of labels, a column for each position."""
    import pandas as pd

    parts = [over]
    if over is None:
        parts = []
    elif isinstance(over, list) or (
        isinstance(over, tuple) and not (len(over) == 2 and isinstance(over[0], str))
    ):
        parts = list(over)
    spelling = Spelling() if spelling is None else spelling
    frame = pd.DataFrame(index=pd.RangeIndex(1))
    for part in parts:
        new = _part_frame(part, spelling)
        taken = set(frame.columns) & set(new.columns)
        if taken:
            raise ValueError(
                f"two positions are called {sorted(taken)[0]}; give one another name, as in "
                "(name, labels)"
            )
        frame = new if not len(frame.columns) else frame.merge(new, how="cross")
    if len(frame.columns) and frame.duplicated().any():
        row = int(np.flatnonzero(frame.duplicated())[0])
        raise ValueError(f"element {tuple(frame.iloc[row])} stands twice")
    return frame.reset_index(drop=True)


class Elements:
    """Elements of variables, or of rows, by the names of these, as far as they are in a model."""

    def __init__(self) -> None:
        self._frames: Dict[str, List["pd.DataFrame"]] = {}

    def add(self, name: str, frame: "pd.DataFrame") -> None:
        self._frames.setdefault(name, []).append(frame)

    def first_known(self, name: str, frame: "pd.DataFrame") -> Optional[int]:
        """The place of the first element that is there already."""
        places = []
        for known in self._frames.get(name, ()):
            if len(known.columns) != len(frame.columns):
                continue
            if not len(frame.columns):
                return 0
            both = frame.assign(**{_ROW: np.arange(len(frame))}).merge(
                known.set_axis(frame.columns, axis=1)
            )
            places += both[_ROW].tolist()
        return min(places, default=None)


def native_positions(frame: "pd.DataFrame") -> List[Tuple[List[Any], npt.NDArray[np.int32]]]:
    """The labels of each position and their places, as the extension module takes them."""
    import pandas as pd

    result = []
    for name in frame.columns:
        codes, distinct = pd.factorize(frame[name])
        result.append((list(distinct), codes.astype(np.int32)))
    return result


def _series_frame(
    data: "pd.Series[Any]", names: Sequence[str], what: str, spelling: Spelling
) -> "pd.DataFrame":
    """Data over labels as a frame of label columns and one of values, each element once; ``names``
    are for levels that have none."""
    import pandas as pd

    index = data.index
    levels = [None if name is None else str(name) for name in index.names]
    if all(name is None for name in levels):
        if len(levels) != len(names):
            raise ValueError(
                f"data over {len(levels)} levels without names do not fit positions {tuple(names)}"
            )
        levels = list(names)
    if any(name is None for name in levels) or len(set(levels)) != len(levels):
        raise ValueError(f"levels {tuple(index.names)} need a name each, all different")
    frame = pd.DataFrame(
        {
            str(name): _texts(index.get_level_values(k), spelling)
            for k, name in enumerate(levels)
        }
    )
    if frame.duplicated().any():
        row = int(np.flatnonzero(frame.duplicated())[0])
        raise ValueError(f"{what}: two records have the labels {tuple(frame.iloc[row])}")
    frame[_VALUE] = arrays.floats(data.to_numpy(), what)
    return frame


def _series_of(data: Any) -> Any:
    """A parameter or frame as a series, a scalar parameter as its number; anything else as it is."""
    if isinstance(data, Parameter):
        return data.to_pandas() if data.dimension else data.value
    if not hasattr(data, "iloc") or data.ndim != 2:
        return data
    columns = list(data.columns)
    if len(columns) > 1 and data.index.names == [None]:
        data = data.set_index(columns[:-1])
    if data.shape[1] != 1:
        raise ValueError(
            f"a frame of one column of numbers is expected, with its labels in the index or in the "
            f"columns before it, not of {data.shape[1]} ({', '.join(map(str, columns))})"
        )
    return data.iloc[:, 0]


def _numbers(data: Any, what: str) -> npt.NDArray[np.float64]:
    """A number or an array of numbers; anything else is told at once."""
    if data is None or isinstance(data, (str, bytes, complex, Mapping)):
        raise TypeError(
            f"{what}: {arguments.shown(data)} is no number, parameter, series or array"
        )
    return arrays.floats(data, what)


def aligned(
    data: Data, frame: "pd.DataFrame", what: str, spelling: Spelling
) -> npt.NDArray[np.float64]:
    """A number for each row of a frame of labels: 0 where a series has no record."""
    import pandas as pd

    data = _series_of(data)
    count = len(frame)
    if isinstance(data, pd.Series):
        table = _series_frame(data, list(frame.columns), what, spelling)
        keys = [name for name in table.columns if name != _VALUE]
        strange = [name for name in keys if name not in frame.columns]
        if strange:
            raise ValueError(
                f"{what}: {strange[0]} is no position of it, which are {tuple(frame.columns)}"
            )
        missing = np.flatnonzero(table[_VALUE].isna())
        if len(missing):
            labels = tuple(table[keys].iloc[missing[0]])
            raise ValueError(f"{what}: the number of {labels} is nan")
        values = frame.merge(table, how="left", on=keys)[_VALUE].to_numpy(dtype=np.float64)
        given = table[keys].merge(frame[keys], on=keys).shape[0]
        if not given and len(table) and count:
            raise ValueError(f"{what}: no record fits any element")
        return np.asarray(np.nan_to_num(values, nan=0.0, posinf=np.inf, neginf=-np.inf))
    array = _numbers(data, what)
    if array.ndim == 0:
        return np.full(count, float(array))
    if array.size != count:
        raise ValueError(f"{what}: {array.size} numbers for {count} elements")
    return np.ascontiguousarray(array.ravel())


class _Term(NamedTuple):
    family: "Family"
    names: Tuple[str, ...]
    data: Any  # a number, a series, or an array over the family
    sign: float


class Expression:
    """A sum of variables times data. ``x * price + 2 * y - z``; the variable stands before a
    series or an array, a parameter or number on either side.

    What positions a row does not have is summed over.
    """

    __array_ufunc__ = None

    def __init__(self, terms: Sequence[_Term]) -> None:
        self._terms = list(terms)

    def __add__(self, other: Any) -> "Expression":
        if not isinstance(other, Expression):
            return NotImplemented
        return Expression(self._terms + other._terms)

    def __sub__(self, other: Any) -> "Expression":
        if not isinstance(other, Expression):
            return NotImplemented
        return self + -other

    def __neg__(self) -> "Expression":
        return Expression([term._replace(sign=-term.sign) for term in self._terms])

    def __mul__(self, data: Data) -> "Expression":
        data = _series_of(data)
        if isinstance(data, Real):
            return Expression(
                [term._replace(sign=term.sign * float(data)) for term in self._terms]
            )
        if isinstance(data, Expression):
            raise TypeError("a product of variables is none of data and a variable")
        if not hasattr(data, "iloc"):
            data = _numbers(data, "what multiplies a variable")
        if len(self._terms) != 1 or self._terms[0].data is not None:
            raise TypeError("data multiply one variable at a time, as in x * a + y * b")
        return Expression([self._terms[0]._replace(data=data)])

    def __rmul__(self, data: Data) -> "Expression":
        if not isinstance(data, (Real, Parameter)):
            raise TypeError("the variable stands before a series or an array: x * data")
        return self * data

    def __radd__(self, other: Any) -> "Expression":
        if not isinstance(other, Real) or other != 0:
            return NotImplemented
        return self  # what sum() begins with

    def __truediv__(self, number: float) -> "Expression":
        return self * (1 / number) if isinstance(number, Real) else NotImplemented

    def _entries(
        self, rows: "pd.DataFrame", what: str
    ) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.int32], npt.NDArray[np.float64]]:
        """Row, column and value of each term in rows, a frame of labels and numbers."""
        parts = [_matched(term, rows, what) for term in self._terms]
        return (
            np.concatenate([part[0] for part in parts]),
            np.concatenate([part[1] for part in parts]),
            np.concatenate([part[2] for part in parts]),
        )


def _merged(left: "pd.DataFrame", right: "pd.DataFrame") -> "pd.DataFrame":
    shared = [name for name in left.columns if name in right.columns]
    return left.merge(right, on=shared) if shared else left.merge(right, how="cross")


def _matched(
    term: _Term, rows: "pd.DataFrame", what: str
) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.int32], npt.NDArray[np.float64]]:
    import pandas as pd

    family = term.family
    table = family._frame.copy(deep=False)
    table.columns = list(term.names)
    table[_COLUMN] = np.arange(family._first, family._first + len(table))
    if isinstance(term.data, pd.Series):
        data = _series_frame(term.data, term.names, what, family._spelling)
        strange = [
            name
            for name in data.columns
            if name != _VALUE and name not in term.names and name not in rows.columns
        ]
        if strange:
            raise ValueError(
                f"{what}: {strange[0]} of the data is a position neither of {family.name}, which "
                f"has {term.names}, nor of the row"
            )
        table, own = _merged(table, data), len(table)
        if own and len(data) and not len(table):
            raise ValueError(f"{what}: no record of the data fits any element of {family.name}")
    elif term.data is not None:
        table[_VALUE] = aligned(term.data, family._frame, what, family._spelling)
    table = _merged(table, rows)
    values = np.full(len(table), term.sign)
    if term.data is not None:
        values = values * table[_VALUE].to_numpy(dtype=np.float64)
    return (
        table[_ROW].to_numpy(dtype=np.int32),
        table[_COLUMN].to_numpy(dtype=np.int32),
        values,
    )


class Family(Expression):
    """Variables over sets, made by :meth:`ztb.Model.variable`; an expression by itself."""

    def __init__(
        self,
        name: str,
        first: int,
        frame: "pd.DataFrame",
        model: _native.Model,
        spelling: Spelling,
    ) -> None:
        self.name = name
        self._model = model
        self._spelling = spelling
        self._first = first
        self._frame = frame
        super().__init__([_Term(self, tuple(frame.columns), None, 1.0)])

    @property
    def positions(self) -> Tuple[str, ...]:
        """The names of its positions."""
        return tuple(self._frame.columns)

    def __len__(self) -> int:
        return len(self._frame)

    def named(self, *names: str) -> Expression:
        """The same variables with other names of positions: ``stock.named("before")`` is matched
        with data and rows by ``before``."""
        if len(names) != len(self.positions) or len(set(names)) != len(names):
            raise ValueError(
                f"{self.name} has positions {self.positions}, expected as many different names, "
                f"not {names}"
            )
        return Expression([self._terms[0]._replace(names=tuple(names))])

    def __repr__(self) -> str:
        positions = f"({', '.join(self.positions)})" if self.positions else ""
        return f"<ztb.Family {self.name}{positions} of {len(self)} columns>"


def add_columns(
    native: _native.Model,
    name: str,
    frame: "pd.DataFrame",
    numbers: Sequence[npt.NDArray[Any]],
    elements: Elements,
) -> int:
    """Adds columns, all or none; ``numbers`` are kinds, lower and upper bounds. Gives the first."""
    _, low, high = numbers
    wrong = np.flatnonzero(
        np.isnan(low) | np.isnan(high) | (low == np.inf) | (high == -np.inf)
    )
    _refuse(native.add_columns, name, frame, numbers, elements, wrong)
    first = native.add_columns(name, native_positions(frame), *numbers)
    elements.add(name, frame)
    return first


def _refuse(
    add: Any,
    name: str,
    frame: "pd.DataFrame",
    numbers: Sequence[npt.NDArray[Any]],
    elements: Elements,
    wrong: Any = (),
) -> None:
    """Has the library refuse the first element that it would not take, before it takes others."""
    known = elements.first_known(name, frame)
    places = [int(place) for place in wrong[:1]] + ([] if known is None else [known])
    if places:
        one = slice(min(places), min(places) + 1)
        add(name, native_positions(frame.iloc[one]), *(values[one] for values in numbers))


def add_rows(
    native: _native.Model,
    name: str,
    over: Over,
    expression: Expression,
    sides: Any,
    spelling: Spelling,
    elements: Elements,
) -> int:
    """Adds rows and their terms; ``sides`` gives types, right-hand sides and ranges for labels."""
    frame = frame_over(over, spelling)
    types, rhs, ranges = sides(frame)
    rows = frame.copy(deep=False)
    # Terms are matched before anything is added, so that what is refused leaves no rows.
    rows[_ROW] = np.arange(len(rows))
    at, columns, values = _entries(native, expression, rows, name)
    _refuse(native.add_rows, name, frame, (types, rhs, ranges), elements)
    first = native.add_rows(name, native_positions(frame), types, rhs, ranges)
    elements.add(name, frame)
    native.add_terms(at + np.int32(first), columns, values)
    return len(frame)


def add_sets(
    native: _native.Model,
    name: str,
    over: Over,
    expression: Expression,
    kind: int,
    spelling: Spelling,
) -> int:
    """Adds special ordered sets, all or none."""
    frame = frame_over(over, spelling)
    rows = frame.copy(deep=False)
    rows[_ROW] = np.arange(len(rows))
    at, columns, values = _entries(native, expression, rows, name)
    order = np.argsort(at, kind="stable")
    at, columns, values = at[order], columns[order], values[order]
    sizes = np.bincount(at, minlength=len(frame))
    if len(sizes) and not sizes.all():
        raise ValueError(f"{name}: the set of {tuple(frame.iloc[int(np.argmin(sizes))])} is empty")
    if all(term.data is None for term in expression._terms):
        values = np.arange(1.0, len(at) + 1)
    members: List[Tuple[npt.NDArray[Any], str]] = [(columns, "a column"), (values, "a weight")]
    for numbers, what in members:
        by = np.lexsort((numbers, at))
        twice = (at[by][1:] == at[by][:-1]) & (numbers[by][1:] == numbers[by][:-1])
        if twice.any():
            place = int(at[by][1:][int(np.argmax(twice))])
            raise ValueError(f"{name}: {what} stands twice in the set of {tuple(frame.iloc[place])}")
    native.add_sets(name, native_positions(frame), len(frame), kind, at, columns, values)
    return len(frame)


def objective_entries(
    native: _native.Model, expression: Expression
) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.int32], npt.NDArray[np.float64]]:
    """Row, column and value of the terms of the objective."""
    frame = frame_over(None)
    frame[_ROW] = 0
    return _entries(native, expression, frame, "the objective")


def _entries(
    native: _native.Model, expression: Any, rows: "pd.DataFrame", what: str
) -> Tuple[npt.NDArray[np.int32], npt.NDArray[np.int32], npt.NDArray[np.float64]]:
    if not isinstance(expression, Expression):
        raise TypeError(
            f"{what}: {expression!r} ({type(expression).__name__}) is no expression in variables"
        )
    for term in expression._terms:
        if term.family._model is not native:
            raise ValueError(f"{what}: {term.family.name} is a variable of another model")
    at, columns, values = expression._entries(rows, what)
    wrong = np.flatnonzero(~np.isfinite(values))
    if len(wrong):
        raise ValueError(f"{what}: a coefficient is {values[wrong[0]]}, a finite number is expected")
    return at, columns, values
