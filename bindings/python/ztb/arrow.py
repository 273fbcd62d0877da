"""Symbols as Arrow data, by the protocol of ``__arrow_c_stream__``; no package is needed for it."""

from __future__ import annotations

from typing import Any, Optional, Sequence

from . import _native, arguments
from .arrow_data import NULLS, capsule_of, key_list, source_of
from .database import Database
from .missing import require_choice
from .symbol import KINDS, Alias, Symbol


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
    require_choice(null, parameter="null")
    number = -1 if kind is None else KINDS.index(arguments.choice(kind, "kind", KINDS[:4]))
    home = Database() if database is None else database
    native = _native.make_from_arrow(
        home._native, name, number, capsule_of(data), key_list(keys), NULLS[null], source_of(data)
    )
    made = home._wrap(native)
    assert not isinstance(made, Alias)
    return made
