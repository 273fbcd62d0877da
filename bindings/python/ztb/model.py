"""Models: opened from files, made of arrays or built over symbols, tied to a database and solved.

    >>> import ztb
    >>> model = ztb.Model()
    >>> x = model.variable("x", ("food", ["Milk", "Tofu"]), upper=4)
    >>> model.rows("fat", None, x * [3, 1], lower=9)
    1
    >>> model.minimize(x * [2, 1])
    >>> solution = model.solve()
    >>> solution.status, solution.objective
    ('optimal', 6.0)
"""

from __future__ import annotations

import os
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Callable, Dict, List, Mapping, NamedTuple, Optional
from typing import Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _native, arguments, arrays, families, fills, matrices
from .database import Database
from .driven import Driven, fill, require_numbers, stated_positions, with_positions
from .errors import Error
from .families import Data, Expression, Family, Over
from .matrices import Names
from .numeric import Equation, Parameter, Variable
from .symbol import Symbol

if TYPE_CHECKING:
    import pandas as pd

Path = Union[str, "os.PathLike[str]"]

_ACTIONS = ("fix", "upper", "lower", "bounds", "level", "marginal")
_MISSING = ("zero", "base", "keep")
_SOLVERS = {1: "clp", 2: "cbc", 4: "ipopt", 5: "bonmin"}
_BEST = (1, 2)
#: The fields of a variable or equation.
_FIELDS = 5

_SUFFIX = _native.parameter_suffix
#: Seconds that no solve takes, the most that its limit may be.
_LONG = 1e10
#: Seconds between two calls of a progress callback, unless others are asked for.
_EVERY = 0.5


def _require_name(name: object, what: str) -> None:
    if not arguments.text(name, f"name of a {what}"):
        raise ValueError(f"a {what} needs a name")


class Model:
    """An optimization model: its variables, its rows, and the solvers' way to it.

    ``Model()`` is empty, to be built by :meth:`variable`, :meth:`rows` and :meth:`minimize`;
    :meth:`open` reads a file, :meth:`from_arrays` takes a matrix. Say what data drive by
    :meth:`drive`, then :meth:`tie` it to a database, or solve it, which ties it to one of its own.
    From then on it is built and driven no further: its data change.
    """

    def __init__(self) -> None:
        self._native = _native.new_model()
        self._tie: Optional[Tie] = None
        #: The file, its data file, and what it was filled with.
        self._file: Optional[Tuple[Path, Optional[Path], Optional[Database]]] = None
        self._left: List[str] = []
        self._has_objective = False
        self._statements: List[str] = []
        #: The names of the positions of variables and equations that were built, by folded names.
        self._positions: Dict[str, Tuple[str, ...]] = {}
        #: Variables and equations without members, which the library knows nothing of: their names
        #: and whether they are variables.
        self._empty: Dict[str, Tuple[str, bool]] = {}
        self._spelling = families.Spelling()
        #: What was built, which the library takes one by one and does not give back.
        self._columns = families.Elements()
        self._rows = families.Elements()

    @classmethod
    def open(
        cls,
        path: Path,
        data: Union[None, Path, Database, Mapping[str, Any]] = None,
        *,
        model_data: Optional[Path] = None,
    ) -> "Model":
        """Reads a model file: LP, MPS or MathProg, by its ending.

        ``data`` fills the sets and parameters that a MathProg model declares itself, by their
        names: an RXF file, a database, or a mapping from names to series over labels, numbers, and
        indexes or lists of labels for sets. ``model_data`` is a file in MathProg that takes the
        place of the model's own data section; any file but an ``.rxf`` may be given as ``data``, too.
        Parameters that the model does not declare stand in :attr:`notes`. Raises
        :class:`ztb.Error` with file and line for what is no such model.
        """
        arguments.path(path)
        records: Optional[Database] = None
        if isinstance(data, Database):
            records = data
        elif isinstance(data, Mapping):
            records = fills.database_of(data)
        elif data is not None and os.fspath(data).lower().endswith(".rxf"):
            records = Database(data)
        elif data is not None:
            if model_data is not None:
                raise ValueError(f"{os.fspath(data)} is no .rxf file, and model_data is given")
            model_data = data
        if records is not None and not os.fspath(path).lower().endswith(".mod"):
            raise ValueError(
                f"data fill the sets and parameters of a .mod model, and {os.fspath(path)} is none; "
                "say what they drive, and set them on the tie"
            )
        model = cls.__new__(cls)
        model._native, left = _native.open_model(
            path, model_data, None if records is None else records._native
        )
        model._left = [f"the model declares no parameter {name}" for name in left]
        model._tie = None
        model._has_objective = True
        model._file = (path, model_data, records)
        model._statements = []
        model._positions = {}
        model._empty = {}
        model._spelling = families.Spelling()
        model._columns = families.Elements()
        model._rows = families.Elements()
        return model

    @classmethod
    def from_arrays(
        cls,
        c: npt.ArrayLike,
        A: Any,
        lower: Optional[npt.ArrayLike] = -np.inf,
        upper: Optional[npt.ArrayLike] = np.inf,
        *,
        bounds: Tuple[Optional[npt.ArrayLike], Optional[npt.ArrayLike]] = (0.0, np.inf),
        kind: Union[str, npt.ArrayLike] = "continuous",
        columns: Names = None,
        rows: Names = None,
        maximize: bool = False,
        constant: float = 0.0,
        objective: str = "objective",
        sets: Sequence[Tuple[Any, ...]] = (),
    ) -> "Model":
        """The model min (or max) ``c x + constant`` with ``lower <= A x <= upper`` and ``bounds``
        on x.

        ``A`` is a scipy sparse matrix, a tuple ``(data, indices, indptr)`` of its CSR arrays, or a
        dense array. Numbers that hold for all may stand alone; ``None`` is no bound. ``kind`` is
        ``"continuous"``, ``"integer"``, ``"binary"``, ``"semi-continuous"`` (0 or within its
        bounds) or ``"semi-integer"``, or an array of these or of 0 to 4 for them; a binary column
        is from 0 to 1, whatever its bounds. ``sets`` are special ordered sets, ``(kind, columns)``
        or ``(kind, columns, weights)``: of its columns, by their numbers, in the order in which
        they stand or of ascending weights, at most one (kind 1) or two neighbours (kind 2) are not
        0. ``columns`` and ``rows``
        name them: a family (``"buy"``, with labels ``"0"``, ``"1"``, ...), a name for each, or a
        mapping from families to what they run over, in the order of the numbers:
        ``{"buy": ("food", ["Milk", "Tofu"]), "spare": None}``. Without names they are ``x`` and
        ``row``.
        """
        cost = np.atleast_1d(arrays.floats(getattr(c, "to_numpy", lambda: c)(), "c"))
        if cost.ndim != 1:
            raise ValueError(f"c has {cost.ndim} axes, expected one")
        at, column, value, shape = matrices.entries(A, len(cost))
        if shape[1] != len(cost):
            raise ValueError(f"A has {shape[1]} columns, c has {len(cost)} numbers")
        matrices.expect_finite(cost, "c[{}]", np.arange(len(cost)))
        matrices.expect_finite(value, "A[{}, {}]", at, column)
        if not isinstance(maximize, (bool, np.bool_)):
            raise TypeError(f"maximize is True or False, not {maximize!r}")
        model = cls()
        types, rhs, ranges = matrices.sides(
            matrices.spread(-np.inf if lower is None else lower, shape[0], "lower"),
            matrices.spread(np.inf if upper is None else upper, shape[0], "upper"),
            "rows",
        )
        kinds = matrices.kinds(kind, len(cost))
        low, high = matrices.within_kinds(kinds, *matrices.bounds_of(bounds, len(cost)))
        native = model._native
        native.set_objective(
            str(objective), bool(maximize), arguments.real(constant, "constant")
        )
        for name, positions, part in matrices.named(columns, len(cost), "x", "columns"):
            native.add_columns(name, positions, kinds[part], low[part], high[part])
        for name, positions, part in matrices.named(rows, shape[0], "row", "rows"):
            native.add_rows(name, positions, types[part], rhs[part], ranges[part])
        for names in (columns, rows):
            for name, over in names.items() if isinstance(names, Mapping) else ():
                frame = families.frame_over(over)
                model._know(name, tuple(frame.columns), len(frame), names is columns)
        numbers = np.flatnonzero(cost).astype(np.int32)
        native.add_terms(np.zeros(len(numbers), dtype=np.int32), numbers, cost[numbers])
        native.add_terms(at + np.int32(1), column, value)
        for number, given in enumerate(sets):
            of_kind, members, weights = matrices.ordered_set(number, given, len(cost))
            native.add_sets(
                [f"set{number}"], [], 1, of_kind, np.zeros(len(members), dtype=np.int32), members,
                weights,
            )
        return model

    # ---- building ----

    def variable(
        self,
        name: str,
        over: Over = None,
        *,
        lower: Data = 0.0,
        upper: Data = np.inf,
        kind: str = "continuous",
    ) -> Family:
        """Adds a variable over sets, one column for each combination of their elements.

        ``over`` is a set, an index with names, ``(name, labels)``, a list of such, or nothing for a
        single column. Bounds are numbers, or data over its positions, which are 0 where there is
        no record, or arrays in its order. ``kind`` is ``"continuous"``, ``"integer"``,
        ``"binary"``, ``"semi-continuous"`` or ``"semi-integer"``; a binary variable is from 0 to 1,
        a semi-continuous one 0 or within its bounds, and a semi-integer one an integer besides.
        """
        _require_name(name, "variable")
        frame = families.frame_over(over, self._spelling)
        kinds = matrices.kinds(kind, len(frame))
        low, high = matrices.within_kinds(
            kinds,
            families.aligned(lower, frame, f"lower bounds of {name}", self._spelling),
            families.aligned(upper, frame, f"upper bounds of {name}", self._spelling),
        )
        first = families.add_columns(self._native, name, frame, (kinds, low, high), self._columns)
        self._know(name, tuple(frame.columns), len(frame), True)
        return Family(name, first, frame, self._native, self._spelling)

    def rows(
        self,
        name: str,
        over: Over,
        expression: Expression,
        *,
        lower: Optional[Data] = None,
        upper: Optional[Data] = None,
        equal: Optional[Data] = None,
    ) -> int:
        """Adds a row for each element of ``over``: the expression, summed over all positions that
        a row does not have, is at least ``lower``, at most ``upper``, or ``equal``.

        Sides are numbers, data over the positions of the rows, which are 0 where there is no
        record, or arrays in their order. Gives the number of rows.
        """
        _require_name(name, "row")
        if equal is not None and (lower is not None or upper is not None):
            raise ValueError(f"{name}: equal stands alone, without lower and upper")
        if equal is None and lower is None and upper is None:
            raise ValueError(f"{name}: one of lower, upper and equal is expected")

        positions: List[str] = []

        def sides(frame: "pd.DataFrame") -> Any:
            positions.extend(frame.columns)
            low = equal if lower is None else lower
            high = equal if upper is None else upper
            return matrices.sides(
                families.aligned(-np.inf if low is None else low, frame, name, self._spelling),
                families.aligned(np.inf if high is None else high, frame, name, self._spelling),
                name,
            )

        count = families.add_rows(
            self._native, name, over, expression, sides, self._spelling, self._rows
        )
        self._know(name, tuple(positions), count, False)
        return count

    def sets(self, name: str, over: Over, expression: Expression, *, kind: int = 1) -> int:
        """Adds a special ordered set for each element of ``over``: of its members at most one (kind
        1), or two neighbours (kind 2), are not 0.

        Members are the columns of the variables in the expression that have the labels of the
        element: as they stand, or, of ``x * data``, by ascending numbers of the data. Gives the
        number of sets.
        """
        _require_name(name, "set")
        return families.add_sets(
            self._native, name, over, expression, matrices.set_kind(kind, name), self._spelling
        )

    def _know(self, name: str, positions: Tuple[str, ...], count: int, is_variable: bool) -> None:
        """Keeps what the library does not know of a variable or equation that was added."""
        self._positions[_native.folded(name)] = positions
        if count == 0:
            self._empty[_native.folded(name)] = name, is_variable

    def minimize(
        self, expression: Expression, *, name: str = "objective", constant: float = 0.0
    ) -> None:
        """Sets the objective, to be as small as possible; called once."""
        self._set_objective(expression, name, False, constant)

    def maximize(
        self, expression: Expression, *, name: str = "objective", constant: float = 0.0
    ) -> None:
        """Sets the objective, to be as large as possible; called once."""
        self._set_objective(expression, name, True, constant)

    def _set_objective(
        self, expression: Expression, name: str, maximize: bool, constant: float
    ) -> None:
        if self._has_objective:
            raise ValueError("the model has its objective already")
        # Refused ones leave the model as it was.
        entries = families.objective_entries(self._native, expression)
        self._native.set_objective(name, maximize, arguments.real(constant, "constant"))
        self._native.add_terms(*entries)
        self._has_objective = True

    def drive(self, statement: str) -> None:
        """Says which numbers of the model a symbol drives: ``"price(food) = cost of buy"``.

        Also ``rhs of`` an equation, ``upper of`` or ``lower of`` a variable, and ``coefficient of``
        a variable ``in`` an equation. What the model has not is told with what it has. Of a
        variable or equation that was built and stands alone, positions are matched by their names.
        """
        if not isinstance(statement, str):
            raise TypeError(
                f"{arguments.shown(statement)} is no statement of what a symbol drives, expected a "
                'str, as "price(food) = cost of buy"'
            )
        self._native.drive(with_positions(statement, self._positions))
        self._statements.append(statement)

    # ---- use ----

    def tie(self, db: Optional[Database] = None) -> "Tie":
        """Ties the model to a database without labels and symbols, or to a new one."""
        self._require_open()
        if self._tie is not None:
            raise ValueError("the model is tied to a database already")
        if db is not None and not isinstance(db, Database):
            raise TypeError(f"{arguments.shown(db)} is no database")
        self._tie = Tie(self, Database() if db is None else db)
        return self._tie

    def _require_open(self) -> None:
        if self._native.closed:
            raise Error("The model is closed", "Model")

    def solve(
        self,
        solver: Optional[str] = None,
        *,
        time_limit: Optional[float] = None,
        progress: Optional[Callable[[Progress], Any]] = None,
        every: float = _EVERY,
        options: Optional[Mapping[str, Any]] = None,
    ) -> "Solution":
        """Solves; see :meth:`Tie.solve`."""
        tie = self._tie if self._tie is not None else self.tie()
        return tie.solve(
            solver, time_limit=time_limit, progress=progress, every=every, options=options
        )

    def explain(self, *, time_limit: float = 1e8) -> "Conflict":
        """Why the last solve had no solution: rows and bounds that cannot hold together, and do
        without any one of them.

        Ctrl-C ends it. Raises :class:`ztb.Error` when there is a solution.
        """
        if self._tie is None:
            raise ValueError("the model was not solved yet")
        seconds = arguments.real(time_limit, "time_limit")
        if not seconds >= 0:
            raise ValueError(f"time_limit={time_limit} is no number of seconds")
        irreducible, by_integers, condition, members = self._native.explain(seconds)
        return Conflict([text for text, _, _ in members], irreducible, by_integers, condition)

    def ranging(self) -> "Ranging":
        """How far each cost and each right-hand side can move by itself while the basis that the
        last solve left stays optimal.

        Raises :class:`ztb.Error` when that solve found no optimum, for models with integers or
        products that move, when the model was updated since, and after solvers other than clp and
        glpk.
        """
        if self._tie is None:
            raise ValueError("the model was not solved yet")

        def by_symbol(ranges: Any) -> Dict[str, Dict[Tuple[str, ...], Tuple[float, float]]]:
            result: Dict[str, Dict[Tuple[str, ...], Tuple[float, float]]] = {}
            for symbol, labels, lower, upper in ranges:
                result.setdefault(symbol, {})[labels] = (lower, upper)
            return result

        costs, sides = self._native.ranging()
        return Ranging(by_symbol(costs), by_symbol(sides))

    def write(self, path: Path) -> None:
        """Writes the model as LP or MPS, by the ending: a file that reads back as the same model.

        Before it is tied or solved. Names that the format cannot hold are changed, which
        :attr:`notes` tells, and comments in the file have them, so that :meth:`open` gives them
        back. Numbers that it cannot hold raise :class:`ztb.Error`.
        """
        self._native.write(path)

    @property
    def solution(self) -> Optional["Solution"]:
        """What the last solve left; see :attr:`Tie.solution`."""
        return None if self._tie is None else self._tie.solution

    @property
    def start_taken(self) -> bool:
        """Whether the last solve began with the levels as a solution, for which
        ``options={"UseStart": 1}`` asked."""
        return self._native.start_taken()

    def close(self) -> None:
        """Frees the model, the solvers that it lives on, and the database that it is tied to.

        What is used of them afterwards raises :class:`ztb.Error`; may be called again. ``with
        ztb.Model.open(path) as model:`` does so at its end.
        """
        self._native.close()
        if self._tie is not None:
            self._tie._database.close()

    @property
    def closed(self) -> bool:
        """Whether the model was closed."""
        return self._native.closed

    def __enter__(self) -> "Model":
        return self

    def __exit__(self, *error: object) -> None:
        self.close()

    def __repr__(self) -> str:
        state = ", closed" if self.closed else ""
        if self._file is not None:
            return f"<ztb.Model of {os.fspath(self._file[0])!r}{state}>"
        return f"<ztb.Model{state or ('' if self._tie is None else ', in use')}>"

    def write_basis(self, path: Any) -> None:
        """Writes the basis that the last solve by clp or glpk left."""
        self._native.write_basis(path)

    def read_basis(self, path: Any) -> None:
        """Has the next solve by clp or glpk begin with a basis, where it is one of the same rows
        and columns; :attr:`basis_taken` tells afterwards."""
        if self._tie is None:
            self.tie()
        self._native.read_basis(path)

    @property
    def basis_taken(self) -> bool:
        """Whether the last solve began with the basis that was read."""
        return self._native.basis_taken()

    @property
    def notes(self) -> List[str]:
        """What is to be told of the model: of the reading, and of names that had to change."""
        return self._native.notes() + self._left


@dataclass(frozen=True)
class Ranging:
    """Ranges as (lower, upper) by the labels of an element, by the name of its symbol."""

    #: Of a variable's coefficient in the objective.
    costs: Dict[str, Dict[Tuple[str, ...], Tuple[float, float]]]
    #: Of an equation's right-hand side.
    sides: Dict[str, Dict[Tuple[str, ...], Tuple[float, float]]]


@dataclass(frozen=True)
class Conflict:
    """Rows and bounds that cannot hold together, as texts such as ``"demand(oslo) >= 30"``."""

    members: List[str]
    #: Whether each was shown to be needed; not so where the time was over before, or no solver
    #: searches without one that bounds a column of a set.
    irreducible: bool
    #: Whether they hold together but for columns that have to be integers, that are 0 or within
    #: their bounds, or that are in ordered sets.
    by_integers: bool
    #: Which of these the model has, such as ``"semi-continuous columns"``; empty otherwise.
    condition: str = ""

    def __str__(self) -> str:
        return "\n".join(self.members)


class Solution(_native.Left):
    """What a solve left. Symbols, frames and arrays of the point are those of the last solve."""

    __slots__ = ()

    tie: "Tie"

    @property
    def status(self) -> str:
        """What the point is, such as ``"optimal"`` or ``"infeasible"``."""
        return _native.status_text(self._status)

    @property
    def solve_status(self) -> str:
        """How the solve ended, such as ``"normal completion"``."""
        return _native.solve_status_text(self._solve_status)

    @property
    def optimal(self) -> bool:
        """Whether the point is a best one."""
        return self._status in _BEST

    @property
    def gap(self) -> float:
        """The distance of objective and bound, as a share of the objective; NaN without either."""
        return _gap(self.objective, self.bound)

    def __getitem__(self, name: str) -> "pd.DataFrame":
        """The variable or equation of this name as a frame: level, marginal, lower, upper, scale."""
        from . import frames

        fields = self.tie._fields(name)
        # A view of the index, because whoever has the frame may name its levels.
        return frames.frame_of_fields(fields.T, self.tie._result_index(name).view())

    def symbol(self, name: str) -> Union[Variable, Equation]:
        """The variable or equation of this name."""
        found = self.tie.database[name]
        if not isinstance(found, (Variable, Equation)):
            raise KeyError(f"{name} is no variable or equation of the model")
        return found

    def __copy__(self) -> "Solution":
        return self

    def __repr__(self) -> str:
        point = f"objective {self.objective:g}, " if self.has_point else ""
        return f"<ztb.Solution {self.status}, {point}by {self.solver}>"


class Progress(NamedTuple):
    """How far a solve is."""

    seconds: float
    #: Of the best point so far, and what no point is better than; infinite while not known.
    objective: float
    bound: float

    @property
    def gap(self) -> float:
        """The distance of the two as a share of the objective; NaN while either is not known."""
        return _gap(self.objective, self.bound)


def _gap(objective: float, bound: float) -> float:
    if not (np.isfinite(objective) and np.isfinite(bound)):
        return np.nan
    return abs(objective - bound) / max(1e-9, abs(objective))


def _named(index: "pd.Index", names: Optional[Sequence[str]]) -> "pd.Index":
    """An index with these names of its levels, where they are known."""
    if not names or len(names) != index.nlevels:
        return index
    return index.set_names(list(names))


class Tie(_native.Steps):
    """A model tied to a database: data go in by name, solutions come out as symbols.

    ``tie["price"] = data`` takes a series or frame over labels, an array in the order of
    ``tie.index("price")``, a parameter, or a number; ``tie["buy"]`` is the symbol.
    """

    def __init__(self, model: Model, database: Database) -> None:
        if database._source is not None:
            raise ValueError("the database is tied to another model already")
        if len(database) or database._native.label_count():
            raise ValueError(
                "the database holds labels or symbols already, and those of a model come first; "
                "tie the model to a new one and give it data by name: tie['price'] = db['price']"
            )
        self._model = model
        self._native = model._native
        self._tied = False
        self._driven: Dict[str, Driven] = {}  # by the names that were used, in any case
        self._updates: Dict[str, Parameter] = {}
        self._indexes: Dict[str, "pd.Index"] = {}
        self._database = database
        super().__init__(self._native, self._driven, Solution)

    @property
    def database(self) -> Database:
        """The database, with a symbol for each variable and equation of the model."""
        self._require_tied()
        return self._database

    def drive(self, statement: str) -> None:
        """Says what a symbol drives, as :meth:`Model.drive`; before the first data or solve."""
        self._model.drive(statement)

    def close(self) -> None:
        """Frees the model and the database, as :meth:`Model.close`."""
        self._model.close()

    @property
    def closed(self) -> bool:
        """Whether they were."""
        return self._model.closed

    def __enter__(self) -> "Tie":
        return self

    def __exit__(self, *error: object) -> None:
        self.close()

    def _require_tied(self) -> None:
        if not self._tied:
            self._native.tie(self._database._native)
            # Symbols read the solution out of the model, and hold the database alone.
            self._database._source = self._native
            self._tied = True
            for key, (name, is_variable) in self._model._empty.items():
                if name in self._database:
                    continue
                add = self._database.add_variable if is_variable else self._database.add_equation
                add(name, ["*"] * len(self._model._positions[key]))

    def __getitem__(self, name: str) -> Symbol[Any]:
        """The symbol of a name; of data that drive, the parameter that holds them."""
        self._require_tied()
        driven = self._driven.get(name) or self._driven.get(_native.folded(name))
        return self._database[name] if driven is None else driven.data

    def index(self, name: str) -> "pd.Index":
        """The labels of the numbers that a symbol drives, in the order in which arrays have them."""
        from . import frames

        driven = self._find(name)
        index = frames.index_of(driven.columns, self._database, driven.keys)
        return _named(index, driven.positions)

    def set(self, name: str, data: Any) -> int:
        """Sets the data that drive the model, as ``tie[name] = data`` does. What has no record stays
        at what the model has. Gives the number of records that meet nothing in the model."""
        driven = self._driven.get(name)
        if driven is None:
            driven = self._find(name)
        return driven.set(data)

    def update(
        self, name: str, data: Any, action: str = "fix", missing: str = "keep"
    ) -> int:
        """Writes data into a variable or equation: ``"fix"`` columns, or set their ``"lower"``,
        ``"upper"`` or both ``"bounds"``, ``"level"`` or ``"marginal"``. What has no record is
        left (``missing="keep"``), set to ``"zero"``, or to what the model has (``"base"``). Gives
        the number of records that meet nothing in the model.
        """
        arguments.choice(action, "action", _ACTIONS)
        arguments.text(missing, "choice for missing")
        if missing not in _MISSING:
            raise ValueError(f"no missing={missing!r}, expected one of {', '.join(_MISSING)}")
        symbol = self.database[name]
        if not isinstance(symbol, (Variable, Equation)):
            raise KeyError(f"{name} is no variable or equation of the model")
        if isinstance(symbol, Equation) and action not in ("level", "marginal"):
            raise ValueError(f"{name} is an equation: level or marginal is expected, not {action}")
        values = self._updates.get(symbol.name)
        if values is None:
            positions = self._model._positions.get(_native.folded(name))
            values = self._add_parameter(name, symbol.dimension, positions)
            self._updates[symbol.name] = values
        fill(values, data, lambda: symbol._native.rows()[0])
        require_numbers(values)
        return self._native.update(
            symbol._native, _ACTIONS.index(action), values._native, _MISSING.index(missing)
        )

    def solve(
        self,
        solver: Optional[str] = None,
        *,
        time_limit: Optional[float] = None,
        progress: Optional[Callable[[Progress], Any]] = None,
        every: float = _EVERY,
        options: Optional[Mapping[str, Any]] = None,
    ) -> Solution:
        """Solves, on a solver that lives on and starts from the solution before where it can.

        Without ``solver`` it is clp for linear models, cbc with integers, ipopt with products,
        bonmin with both.
        ``time_limit`` is in seconds; ``options`` are those of the solver environment, such as
        ``{"RelativeGap": 0.01}``, and stay. ``progress`` is called with a :class:`Progress` about
        every ``every`` seconds, and ends the solve when it gives ``False``. The interpreter's lock
        is free meanwhile, and Ctrl-C ends the solve: :attr:`solution` has its best point and bound
        then. No solution is no error: the status tells.
        """
        if (
            type(solver) is str
            and time_limit is None
            and progress is None
            and options is None
            and every is _EVERY
            and self._tied
        ):
            quickly: Solution = self._solve(solver)
            return quickly
        if progress is not None and not callable(progress):
            raise TypeError(f"progress={progress!r} cannot be called")
        if every is not _EVERY and not (
            0 <= arguments.real(every, "number of seconds for every") < _LONG
        ):
            raise ValueError(f"every={every} is no number of seconds")
        if solver is not None and not isinstance(solver, str):
            raise TypeError(f"{solver!r} is no name of a solver")
        if options is not None and not isinstance(options, Mapping):
            raise TypeError(f"{arguments.shown(options)} is no mapping from options to values")
        if time_limit is not None:
            time_limit = arguments.real(time_limit, "number of seconds for time_limit")
        self._require_tied()
        set_now = [(str(option), str(value)) for option, value in (options or {}).items()]
        limit = None if time_limit is None else repr(min(float(time_limit), _LONG))
        name = solver or self._standard_solver()
        told = None if progress is None else lambda *state: progress(Progress(*state))
        solution: Solution = self._solve(name, told, every, set_now, limit)
        return solution

    @property
    def solution(self) -> Optional[Solution]:
        """What the last solve left, with its best point and bound, also one that Ctrl-C or an
        exception of ``progress`` ended; ``None`` before the first."""
        solution: Optional[Solution] = self._solution
        return solution

    def __repr__(self) -> str:
        driven = ", ".join(dict.fromkeys(one.data.name for one in self._driven.values()))
        return f"<ztb.Tie of {self._model!r}{', driven by ' + driven if driven else ''}>"

    # ---- inside ----

    def _standard_solver(self) -> str:
        kind = self._native.updated_kind() if self._driven else self._native.kind()
        return _SOLVERS[kind]

    def _find(self, name: str) -> Driven:
        key = _native.folded(name)
        found = self._driven.get(key)
        if found is None:
            self._require_tied()
            try:
                columns = self._database[name + _SUFFIX]
            except KeyError:
                raise KeyError(self._nothing_driven(name)) from None
            positions = stated_positions(self._model._statements, name)
            data = self._add_parameter(name, columns.dimension, positions)
            found = Driven(self._native, name, columns._native, data, positions)
            self._driven[key] = found
        self._driven[name] = found
        return found

    def _nothing_driven(self, name: str) -> str:
        """What to tell of a name that drives nothing."""
        known = [
            symbol.name[: -len(_SUFFIX)]
            for symbol in self._database.values()
            if isinstance(symbol, Variable) and symbol.name.endswith(_SUFFIX)
        ]
        there = f"what drives it is {', '.join(known)}" if known else "nothing does"
        return (
            f"{name} drives nothing in the model, {there}; say what it drives before the first "
            f'data or solve: tie.drive("{name}(...) = cost of ...")'
        )

    def _add_parameter(
        self, name: str, dimension: int, positions: Optional[Sequence[str]]
    ) -> Parameter:
        """A parameter for data, whose levels and columns are taken by the names of its positions
        where these are known."""
        own = name
        number = 1
        while own in self._database:
            own = f"{name}_data" if number == 1 else f"{name}_data{number}"
            number += 1
        if positions is not None and len(positions) == dimension:
            try:
                return self._database.add_parameter(own, list(positions))
            except Error:
                pass  # a name that no domain can have
        return self._database.add_parameter(own, ["*"] * dimension)

    def _fields(self, name: str) -> npt.NDArray[np.float64]:
        """All fields of the records of a variable or equation, a row for each field."""
        if self._model._empty and self._has_no_members(name):
            return np.zeros((_FIELDS, 0))
        return self._native.fields(name)

    def _field_of_none(self, name: str, number: int) -> npt.NDArray[np.float64]:
        """A field of what the model has no variable or equation for: one without members has an
        empty one, and nothing else has any."""
        field: npt.NDArray[np.float64] = self._fields(name)[number]
        return field

    def _has_no_members(self, name: str) -> bool:
        return _native.folded(name) in self._model._empty and not len(self._database[name])

    def _result_index(self, name: str) -> "pd.Index":
        """The labels of the records of a variable or equation, which never change."""
        index = self._indexes.get(name)
        if index is None:
            from . import frames

            symbol = self._database[name]._native
            index = _named(
                frames.index_of(symbol, self._database, symbol.rows()[0]),
                self._model._positions.get(_native.folded(name)),
            )
            self._indexes[name] = index
        return index
