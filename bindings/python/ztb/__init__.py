"""Sparse, indexed data for optimization models: databases, and the RXF files that hold them.

    >>> import ztb
    >>> with ztb.Database() as db:
    ...     food = db.add_set("food")
    ...     price = db.add_parameter("price", [food])
    ...     food.extend(["Milk", "Tofu"])
    ...     price["Milk"] = 11
    ...     price.to_numpy()
    array([11.,  0.])
"""

from .database import Database, memory_needed, open
from .errors import Error, NotFoundError
from .special import (
    CODE_EPSILON,
    CODE_MINUS_INFINITY,
    CODE_NOT_AVAILABLE,
    CODE_ORDINARY,
    CODE_PLUS_INFINITY,
    CODE_UNDEFINED,
    EPS,
    INF,
    NA,
    NEG_INF,
    SPECIAL_VALUES,
    UNDEF,
    special_code,
    special_codes,
)
from .symbol import (
    FIELDS,
    Alias,
    Domain,
    Equation,
    Parameter,
    Set,
    Symbol,
    Values,
    Variable,
    Violation,
)

__all__ = [
    "Alias",
    "CODE_EPSILON",
    "CODE_MINUS_INFINITY",
    "CODE_NOT_AVAILABLE",
    "CODE_ORDINARY",
    "CODE_PLUS_INFINITY",
    "CODE_UNDEFINED",
    "Database",
    "Domain",
    "EPS",
    "Equation",
    "Error",
    "FIELDS",
    "INF",
    "NA",
    "NEG_INF",
    "NotFoundError",
    "Parameter",
    "SPECIAL_VALUES",
    "Set",
    "Symbol",
    "UNDEF",
    "Values",
    "Variable",
    "Violation",
    "memory_needed",
    "open",
    "special_code",
    "special_codes",
]
