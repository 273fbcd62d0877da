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

from . import _native
from .arrow import from_arrow
from .database import Database, from_xarray, memory_needed, open, read
from .datasets import aggregate, concat, merge, rename, where
from .errors import DamagedFileError, Error, MissingFileError, NotFoundError
from .families import Expression, Family
from .labels import Key, Label, label_text
from .model import Conflict, Model, Progress, Ranging, Solution, Tie
from .numeric import Equation, Parameter, Variable
from .queries import sql
from .selection import Selection
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
from .progress import SweepView
from .sweeps import SweepResult, sweep
from .symbol import Alias, Domain, Set, Symbol, Texts, Violation
from .values import FIELDS, Values
from .viewer import View

#: The version of the package and of the library that it was built for.
__version__: str = _native.version

__all__ = [
    "Alias",
    "CODE_EPSILON",
    "CODE_MINUS_INFINITY",
    "CODE_NOT_AVAILABLE",
    "CODE_ORDINARY",
    "CODE_PLUS_INFINITY",
    "CODE_UNDEFINED",
    "Conflict",
    "DamagedFileError",
    "Database",
    "Domain",
    "EPS",
    "Equation",
    "Error",
    "Expression",
    "FIELDS",
    "Family",
    "INF",
    "Key",
    "Label",
    "MissingFileError",
    "Model",
    "NA",
    "NEG_INF",
    "NotFoundError",
    "Parameter",
    "Progress",
    "Ranging",
    "SPECIAL_VALUES",
    "Selection",
    "Set",
    "Solution",
    "SweepResult",
    "SweepView",
    "Symbol",
    "Texts",
    "Tie",
    "UNDEF",
    "Values",
    "Variable",
    "View",
    "Violation",
    "__version__",
    "aggregate",
    "concat",
    "from_arrow",
    "from_xarray",
    "label_text",
    "memory_needed",
    "merge",
    "open",
    "read",
    "rename",
    "special_code",
    "special_codes",
    "sql",
    "sweep",
    "where",
]
