"""Symbols as Arrow data, by the protocol of ``__arrow_c_stream__``; no package is needed for it."""

from __future__ import annotations

from typing import Any, List, Optional, Sequence

from . import _native, arguments
from .database import Database
from .missing import NAN_CHOICES, require_choice
from .symbol import KINDS, Alias, Symbol

#: The choices for nulls by the numbers that the library knows them by.
_NULLS = {"error": 0, "na": 1, "skip": 2}
assert set(_NULLS) == set(NAN_CHOICES)


class ArrowData:
    """The records of a symbol, to be read by whatever speaks Arrow, as often as wanted.

    A reader that has begun fails when records of the database are changed.
    """

    def __init__(self, symbol: Symbol[Any], na: str, batch: int) -> None:
        self._symbol = symbol
        self._na_as_null = arguments.choice(na, "spelling of NA", ("nan", "null")) == "null"
        self._batch = arguments.whole(batch, "number of records")

    def __arrow_c_stream__(self, requested_schema: Any = None) -> Any:
        """A capsule with an Arrow stream. What schema is requested is not looked at."""
        return _native.arrow_stream(self._symbol._native, self._na_as_null, self._batch)


def _capsule(data: Any) -> Any:
    if not hasattr(data, "__arrow_c_stream__"):
        raise TypeError(f"{arguments.shown(data)} has no __arrow_c_stream__")
    return data.__arrow_c_stream__()


def _keys(keys: Optional[Sequence[str]]) -> Optional[List[str]]:
    return None if keys is None else list(arguments.several(keys, "column"))


def fill(symbol: Symbol[Any], data: Any, keys: Optional[Sequence[str]], null: str) -> None:
    """Replaces the records of a symbol."""
    require_choice(null)
    _native.fill_from_arrow(symbol._native, _capsule(data), _keys(keys), _NULLS[null])


def from_arrow(
    data: Any,
    name: str,
    *,
    kind: Optional[str] = None,
    keys: Optional[Sequence[str]] = None,
    null: str = "na",
    database: Optional[Database] = None,
) -> Symbol[Any]:
    """Makes a symbol from Arrow data: any object with ``__arrow_c_stream__``.

    ``kind`` is ``"set"``, ``"parameter"``, ``"variable"`` or ``"equation"``; without it, columns of
    fields (``level``, ``marginal`` and so on) make a variable, a last column that could be no label
    or is called ``value`` a parameter, anything else a set. ``keys`` names the columns of labels;
    without it these are all but the content: the columns of fields, the last one of a parameter,
    ``text`` of a set. ``null`` tells what becomes of nulls among values, as ``nan`` for
    :meth:`ztb.Parameter.from_pandas`. The symbol belongs to ``database``, or to a new one, which
    is its :attr:`ztb.Symbol.database`.
    """
    require_choice(null)
    number = -1 if kind is None else KINDS.index(arguments.choice(kind, "kind", KINDS[:4]))
    home = Database() if database is None else database
    native = _native.make_from_arrow(
        home._native, name, number, _capsule(data), _keys(keys), _NULLS[null]
    )
    made = home._wrap(native)
    assert not isinstance(made, Alias)
    return made
