"""Some of a symbol's records, named by a partial key: ``p["Milk", :]``, ``p[["Milk", "Tofu"], :]``,
``p["Lard":"Tofu", "iron"]``, ``p[p.to_pandas() > 2]``.
"""

from __future__ import annotations

from collections.abc import Iterable
from typing import Any, Callable, Iterator, List, Mapping, Optional, Protocol, Tuple, TypeVar

import numpy as np
import numpy.typing as npt

from . import _native, arguments, display
from .home import Home
from .labels import labels_of_key

Value = TypeVar("Value")
Numbers = npt.NDArray[np.int32]
#: Marks the rows of label numbers that belong to a selection.
Choice = Callable[[Numbers], npt.NDArray[np.bool_]]


class Source(Protocol[Value]):
    """What a selection needs of its symbol."""

    @property
    def name(self) -> str: ...
    @property
    def dimension(self) -> int: ...
    def __getitem__(self, key: Any) -> Any: ...
    def _table(self, most: Optional[int] = None) -> Tuple[Numbers, npt.NDArray[Any]]: ...
    def _keys_of(self, keys: Numbers) -> List[Any]: ...
    def _values_of(self, content: npt.NDArray[Any]) -> List[Value]: ...
    def _frame_of(self, keys: Numbers, content: npt.NDArray[Any]) -> Any: ...
    def _shown(self, keys: Numbers, content: npt.NDArray[Any]) -> List[display.Row]: ...
    def _columns(self) -> List[str]: ...


class Selection(display.Shows, Mapping[Any, Value]):
    """The records of a symbol that a partial key names, as a mapping that cannot be written.

    It is looked up anew with every use, in one pass over the records of the symbol; its keys are
    whole keys of the symbol. :meth:`to_pandas` gives it as the symbol's own ``to_pandas`` would.
    """

    def __init__(self, source: Source[Value], home: Home, choice: Choice) -> None:
        self._source = source
        self._home = home
        self._choice = choice

    def _table(self) -> Tuple[Numbers, npt.NDArray[Any]]:
        keys, content = self._source._table()
        marks = self._choice(keys)
        return keys[marks], content[marks]

    def __len__(self) -> int:
        return len(self._table()[0])

    def __iter__(self) -> Iterator[Any]:
        return iter(self._source._keys_of(self._table()[0]))

    def __contains__(self, key: object) -> bool:
        numbers = [self._home._native.find_label(label) for label in labels_of_key(key)]
        if len(numbers) != self._source.dimension:
            return False
        return bool(self._choice(np.array([numbers], dtype=np.int32))[0]) and self._has(key)

    def _has(self, key: Any) -> bool:
        try:
            self._source[key]
        except KeyError:
            return False
        return True

    def __getitem__(self, key: Any) -> Value:
        if key not in self:
            raise KeyError(f"{key!r} is no key of this part of symbol {self._source.name}")
        value: Value = self._source[key]
        return value

    def to_pandas(self) -> Any:
        """The records as the symbol's own ``to_pandas`` gives them."""
        return self._source._frame_of(*self._table())

    def _title(self) -> str:
        return f"ztb.Selection of {display.cell(self._source.name)}"

    def _listing(self) -> display.Listing:
        keys, content = self._table()
        most = display.MOST_ROWS
        rows = self._source._shown(keys[:most], content[:most])
        return display.Listing("", self._source._columns(), rows, len(keys), "record")


def is_partial(key: object) -> bool:
    """Whether a key has a slice, or several labels, where a label could be."""
    return any(isinstance(part, slice) or _is_several(part) for part in labels_of_key(key))


def _is_several(part: object) -> bool:
    return isinstance(part, Iterable) and not isinstance(part, (str, bytes))


def choice_of(native: _native.Symbol, home: Home, key: object) -> Choice:
    """What a partial key chooses. Labels that the database does not have are an error."""
    if arguments.is_frame(key):
        raise TypeError("a frame chooses no records, expected a series of truth")
    if _is_marks(key):
        from . import frames

        return frames.choice_of_marks(native, home, key)
    _require_labels(native.name, key)
    parts = labels_of_key(key)
    if len(parts) != native.dimension:
        raise ValueError(
            f"{display.counted(len(parts), 'label')} given, symbol {native.name} has "
            f"{display.counted(native.dimension, 'position')}"
        )
    tests = [_test_of(home, part) for part in parts]

    def choice(keys: Numbers) -> npt.NDArray[np.bool_]:
        marks = np.ones(len(keys), dtype=np.bool_)
        for position, test in enumerate(tests):
            if test is not None:
                marks &= test(keys[:, position])
        return marks

    return choice


def _is_marks(key: object) -> bool:
    """Whether it is a series of truth, as pandas also makes of objects where some are missing."""
    kind = str(getattr(key, "dtype", ""))
    if kind != "object" or not (hasattr(key, "iloc") and hasattr(key, "index")):
        return kind in ("bool", "boolean") and hasattr(key, "index")
    from pandas.api.types import infer_dtype

    return bool(infer_dtype(key, skipna=True) == "boolean")


def _require_labels(symbol: str, key: object) -> None:
    """Refuses marks without labels, and values in place of marks."""
    kind = str(getattr(key, "dtype", ""))
    if kind == "bool":
        raise TypeError(
            f"an array of truth has no labels to choose records of {symbol} by, expected a series "
            "of truth, which has"
        )
    if kind.lower().startswith("float") and hasattr(key, "index"):
        raise TypeError(
            f"a series of {kind} chooses no records of {symbol}, expected one of truth, as "
            "series > 0 makes it"
        )


def _test_of(home: Home, part: Any) -> Optional[Choice]:
    """The test of a position; ``None`` where every label will do."""
    if isinstance(part, slice):
        if part.step is not None:
            raise ValueError(f"a range of labels has no step, not {part.step!r}")
        if part.start is None and part.stop is None:
            return None
        first = 0 if part.start is None else home._number(part.start)
        last = np.iinfo(np.int32).max if part.stop is None else home._number(part.stop)
        return lambda column: (column >= first) & (column <= last)
    if _is_several(part):
        numbers = np.array([home._number(label) for label in part], dtype=np.int32)
        return lambda column: np.isin(column, numbers)
    number = home._number(part)
    return lambda column: np.equal(column, number)
