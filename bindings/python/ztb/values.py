"""The values of a record: one number, or the five fields of a variable or equation."""

from __future__ import annotations

import functools
from typing import NamedTuple

from . import _native, arguments
from .special import INF, NEG_INF, SPECIAL_VALUES

#: The fields of a variable or equation, at the places of their values.
FIELDS = ("level", "marginal", "lower", "upper", "scale")


class Values(NamedTuple):
    """The values of a record of a variable or equation.

    What is not given is what a free variable begins with; ``x.defaults`` has what new records of
    the variable or equation ``x`` begin with.
    """

    level: float = 0.0
    marginal: float = 0.0
    lower: float = NEG_INF
    upper: float = INF
    scale: float = 1.0


def field_number(field: object) -> int:
    """The place of a field among the values of a record."""
    return FIELDS.index(arguments.choice(field, "field", FIELDS))


@functools.lru_cache(maxsize=None)
def defaults(kind: int, subtype: int) -> Values:
    """The values of a new record of a variable or equation, by its type number and subtype."""
    # A record in a database of its own shows them.
    database = _native.create(None)
    try:
        database.set_special_values(SPECIAL_VALUES)
        symbol = database.add_symbol("x", kind, [], "", subtype)
        symbol.put((), ())
        return Values(*symbol.values(()))
    finally:
        database.close()
