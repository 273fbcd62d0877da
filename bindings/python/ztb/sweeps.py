"""Sweeps: a model solved for each scenario of a set, in several processes."""

from __future__ import annotations

import json
import os
import shutil
import subprocess
import tempfile
from pathlib import Path as FilePath
from typing import (
    TYPE_CHECKING,
    Any,
    Callable,
    Iterator,
    List,
    Mapping,
    Optional,
    Sequence,
    Tuple,
    Union,
)

from . import arguments, fills, progress as progresses, viewer
from .chunks import DAMAGED
from .database import Database
from .driven import stated_positions, with_positions
from .errors import DamagedFileError, Error, MissingFileError
from .model import Model, Path

if TYPE_CHECKING:
    import pandas as pd

#: Scenarios: an RXF file, a database, or data by the names of what they drive.
Scenarios = Union[Path, Database, Mapping[str, Any]]


class SweepResult:
    """The results of a sweep: nothing is read before it is asked for.

    It reads as a frame: ``result.frame`` has a row for each scenario, with its objective and
    statuses; ``result["buy"]`` is a frame of the levels and marginals of a symbol reported, over
    scenarios and the positions of the symbol.
    """

    def __init__(
        self,
        path: Path,
        over: str,
        folder: Any = None,
        notes: Sequence[str] = (),
        scenarios: Optional[Path] = None,
    ) -> None:
        #: What was told of the sweep: records that meet nothing, scenarios without a solution.
        self.notes = list(notes)
        self._path = path
        self._over = over
        self._folder = folder
        self._scenarios_file = scenarios
        self._database: Optional[Database] = None

    @property
    def path(self) -> Path:
        """The RXF file that holds them; one of its own goes with this object."""
        return self._path

    def view(self, *, open_browser: Optional[bool] = None) -> viewer.View:
        """Shows the results in the browser as ``ztb view`` does, in a notebook as a frame, with the
        scenario file as long as it is there. ``open_browser`` overrules whether the browser is opened."""
        files = [self._path]
        if self._scenarios_file is not None and os.path.exists(self._scenarios_file):
            files.append(self._scenarios_file)
        view = viewer.show(files, open_browser)
        view.kept = self._folder
        return view

    @property
    def database(self) -> Database:
        """The file as a database, opened when it is first asked for."""
        if self._database is None:
            self._database = Database(self._path)
        return self._database

    @property
    def frame(self) -> "pd.DataFrame":
        """Objective and statuses of each scenario, as words; NaN where there is no solution."""
        import pandas as pd

        from . import _native

        def words(name: str, text: Any) -> Any:
            return self._series(name).map(lambda code: text(int(code)))

        statuses = words("sweep_status", _native.status_text)
        return pd.DataFrame(
            {
                "objective": self._series("sweep_objective").reindex(statuses.index),
                "status": statuses,
                "solve_status": words("sweep_solve_status", _native.solve_status_text),
            }
        )

    @property
    def objective(self) -> "pd.Series[float]":
        """The objective of each scenario that has a solution."""
        return self._series("sweep_objective")

    def __getitem__(self, name: str) -> "pd.DataFrame":
        """Levels and marginals of a symbol that was reported."""
        import pandas as pd

        try:
            return pd.DataFrame(
                {field: self._series(f"{name}_{field}") for field in ("level", "marginal")}
            )
        except KeyError:
            raise KeyError(f"{name} was not reported; name it: report=[{name!r}]") from None

    def __len__(self) -> int:
        return len(self._scenarios())

    def __iter__(self) -> Iterator[str]:
        """The labels of the scenarios."""
        return iter(self._scenarios())

    def __repr__(self) -> str:
        return f"<ztb.SweepResult over {self._over} in {os.fspath(self._path)}>"

    def _scenarios(self) -> List[str]:
        # Over an alias the file has the set that it stands for.
        return [label for (label,) in self.database["sweep_status"]]

    def _series(self, name: str) -> Any:
        symbol: Any = self.database[name]
        return symbol.to_pandas()


def sweep(
    model: Union[Path, Model],
    scenarios: Scenarios,
    over: str,
    *,
    report: Sequence[str] = (),
    jobs: int = 1,
    resume: bool = False,
    solver: Optional[str] = None,
    drive: Sequence[str] = (),
    out: Optional[Path] = None,
    data: Union[None, Path, Database, Mapping[str, Any]] = None,
    model_data: Optional[Path] = None,
    chunk: Optional[int] = None,
    time_limit: Optional[float] = None,
    client: Any = None,
    parts: Optional[Path] = None,
    progress: progresses.Progress = None,
) -> SweepResult:
    """Solves a model for each element of the set ``over``, by ``jobs`` processes.

    ``model`` is a file, or a model that was opened from one; what it says of :meth:`Model.drive`
    holds here too. A model that was built is written to a file first, which goes before it is
    driven, tied or solved. ``scenarios`` is an RXF file or a database with the set ``over`` and parameters
    that have it as their first domain, or a mapping from the names of parameters to series whose
    first level is the scenario, or frames with a column of scenarios, columns of labels and one of
    numbers. ``report`` names variables and equations to keep. The results stand
    in the file ``out``, or in one that goes with the result; with ``resume`` those that an
    interrupted sweep left in ``out`` are kept. A scenario without a solution is no error: its
    status tells. ``data`` and ``model_data`` are those of :meth:`Model.open`. Ctrl-C ends the sweep,
    and what was solved can be resumed. ``chunk`` is the number of scenarios of a chunk, ``time_limit``
    the seconds that a solve may take.

    With ``client``, a client of Dask, its workers solve the chunks in the place of processes of this
    machine; each needs the package, and the files of the sweep under the same names. Their results
    come back over the network, or stand in the folder ``parts`` that all of them see. A process of
    a worker solves one chunk at a time, however many threads it has.

    ``progress=True`` shows how the sweep gets on, in a notebook or at a terminal. Something else is
    called now and then with a dict of ``done`` and ``count`` of scenarios, ``rate`` a second,
    ``seconds_left``, ``failures``, solves that failed, ``lost``, processes and workers that died or gave a
    chunk back, and ``workers`` at work.

    This is ``ztb sweep``, whose page in the reference tells the rest; its program is found beside
    the package or on ``PATH``.
    """
    arguments.text(over, "name of a set to sweep over")
    arguments.whole(jobs, "number of jobs")
    tell = progresses.teller(progress)
    if solver is not None:
        arguments.text(solver, "name of a solver")
    reports = [report] if isinstance(report, str) else list(arguments.several(report, "report"))
    statements = [drive] if isinstance(drive, str) else list(arguments.several(drive, "statement"))
    for word in (*reports, *statements):
        arguments.text(word, "report or statement")
    if isinstance(model, Model):
        model._require_open()
    folder = tempfile.TemporaryDirectory(prefix="ztb-sweep-")
    file: Path
    if isinstance(model, Model) and model._file is None:
        if data is not None or model_data is not None:
            raise ValueError("the model was built with its data; name it by its file instead")
        file = _written(model, folder.name)
        statements = [with_positions(statement, model._positions) for statement in statements]
    elif isinstance(model, Model):
        assert model._file is not None
        if data is not None or model_data is not None:
            raise ValueError("the model was opened with its data; name it by its file instead")
        file, model_data, data = model._file
        statements = [*model._statements, *statements]
    else:
        arguments.path(model)
        file = model
    _require_file(file)
    target = os.fspath(out) if out is not None else str(FilePath(folder.name) / "sweep.rxf")
    if isinstance(scenarios, Mapping) and not isinstance(scenarios, Database):
        scenarios = _database_of(scenarios, over, statements)
    if isinstance(scenarios, Database):
        source = str(FilePath(folder.name) / "scenarios.rxf")
        scenarios.write(source)
    else:
        arguments.path(scenarios)
        source = os.fspath(scenarios)
        # What is missing or damaged is told here, by its kind of error.
        Database(source).close()
    if isinstance(data, Mapping) and not isinstance(data, Database):
        data = fills.database_of(data)
    if isinstance(data, Database):
        filled = str(FilePath(folder.name) / "data.rxf")
        data.write(filled)
        data = filled
    if data is not None and not os.fspath(data).lower().endswith(".rxf"):
        if model_data is not None:
            raise ValueError(f"{os.fspath(data)} is no .rxf file, and model_data is given")
        data, model_data = None, data
    options = [("model", os.fspath(file)), ("scenarios", source), ("over", over)]
    for name, value in (
        ("data", data), ("model-data", model_data), ("solver", solver), ("chunk", chunk),
        ("time-limit", time_limit),
    ):  # fmt: skip
        if value is not None:
            options.append((name, str(value) if isinstance(value, (int, float)) else os.fspath(value)))
    options += [("report", name) for name in dict.fromkeys(reports)]
    options += [("drive", statement) for statement in statements]
    if client is not None:
        from . import cluster

        folder_of_parts = None if parts is None else os.path.abspath(parts)
        try:
            notes = cluster.sweep(
                client, _absolute(options), os.path.abspath(target), _program(),
                parts=folder_of_parts, resume=resume, progress=tell,
            )  # fmt: skip
        finally:
            _end(tell)
        return SweepResult(target, over, folder, notes, source)
    command = [_program(), "sweep", options[0][1], "--out", target, "--jobs", str(jobs)]
    for name, value in options[1:]:
        command += [f"--{name}", value]
    if parts is not None:
        command += ["--parts", os.fspath(parts)]
    if resume:
        command.append("--resume")
    if tell is not None:
        command += ["--progress", "json"]
    try:
        return SweepResult(target, over, folder, _run(command, tell), source)
    finally:
        _end(tell)


def _end(tell: Optional[Callable[[progresses.State], None]]) -> None:
    if isinstance(tell, progresses.SweepView):
        tell.close()


def _absolute(options: List[Tuple[str, str]]) -> List[Tuple[str, str]]:
    """Options with the names of files from the root on, as other processes take them."""
    files = ("model", "scenarios", "data", "model-data")
    return [
        (name, os.path.abspath(value) if name in files else value) for name, value in options
    ]


def _written(model: Model, folder: str) -> str:
    """The file of a model that was built, for the processes that read it."""
    if model._tie is not None or model._statements:
        raise ValueError(
            "a sweep writes a model that was built to a file, which goes before it is driven, tied "
            "or solved; say in drive=[...] of the sweep what its scenarios drive"
        )
    try:
        file = os.path.join(folder, "model.lp")
        model.write(file)
    except Error:  # a name that LP cannot hold
        file = os.path.join(folder, "model.mps")
        model.write(file)
    return file


def _require_file(path: Path) -> None:
    if not os.path.exists(path):
        error = MissingFileError(f"No such file: {os.fspath(path)}", "sweep")
        error.filename = os.fspath(path)
        raise error


def _database_of(
    scenarios: Mapping[str, "pd.Series[Any]"], over: str, statements: Sequence[str]
) -> Database:
    import pandas as pd

    series_of = {}
    labels = pd.Index([])
    for name, content in scenarios.items():
        series_of[name] = _scenarios_first(_series_of(name, content, over), over)
        labels = labels.append(pd.Index(series_of[name].index.get_level_values(0)))
    if not len(labels):
        raise ValueError(f"the scenarios hold no record, so that there is no element of {over}")
    database = Database()
    database.add_set(over).extend(labels.unique())
    for name, series in series_of.items():
        others = series.index.nlevels - 1
        stated = stated_positions(statements, name)
        if stated is not None and len(stated) == others > 1:
            series = series.set_axis(_in_order(series.index, [over, *stated]))
        # The levels stand in the order of the positions now, whatever they are called.
        parameter = database.add_parameter(name, [over] + ["*"] * others)
        parameter.from_pandas(series.rename_axis([None] * series.index.nlevels))
    return database


def _series_of(name: str, content: Any, over: str) -> "pd.Series[Any]":
    import pandas as pd

    if isinstance(content, pd.Series):
        _expect_numbers(name, content, content, over)
        return content
    if isinstance(content, pd.DataFrame):
        if over not in content.columns or len(content.columns) < 2:
            raise ValueError(
                f"{name}: a frame of scenarios has a column {over}, columns of labels, and last one "
                f"of numbers; this one has {', '.join(map(str, content.columns))}"
            )
        *labels, numbers = content.columns
        series = content.set_index(labels)[numbers]
        _expect_numbers(name, series, content[numbers], over, f"column {numbers}, ")
        return series
    if isinstance(content, Mapping):
        series = pd.Series(content)
        _expect_numbers(name, series, series, over)
        return series
    raise TypeError(
        f"{name}: {type(content).__name__} is no data of scenarios, expected a series or a mapping "
        "whose first label is the scenario, or a frame"
    )


def _expect_numbers(
    name: str,
    series: "pd.Series[Any]",
    rows: "pd.Series[Any]",
    over: str,
    column: str = "",
) -> None:
    """Refuses a missing number, with which no scenario can be solved, by its scenario, its record,
    and its row where it came from."""
    missing = series.isna().to_numpy()
    if not missing.any():
        return
    at = int(missing.argmax())
    scenario, *record = _labels(_scenarios_first(series, over).index[at])
    row = ", ".join(_labels(rows.index[at]))
    raise ValueError(
        f"{name}: scenario {scenario}, record {name}({', '.join(record)}) holds NaN ({column}row "
        f"{row}), a number is expected; what a scenario has no row for stays as the model has it"
    )


def _labels(row: Any) -> List[str]:
    return [str(label) for label in (row if isinstance(row, tuple) else (row,))]


def _in_order(index: "pd.Index", names: Sequence[str]) -> "pd.Index":
    """An index with the levels of scenarios in front and the others in the order of the names that a
    statement gives its positions, or as they are where they have none of these."""
    from . import positions

    with Database() as scratch:
        named = scratch.add_parameter("named", list(names))
        return positions.ordered(named._native, index.set_names(names[0], level=0))


def _scenarios_first(series: "pd.Series[Any]", over: str) -> "pd.Series[Any]":
    """A series with the level of the scenarios, which has their name or is the first, in front."""
    names = list(series.index.names)
    if names.count(over) != 1 or names[0] == over:
        return series
    at = names.index(over)
    return series.reorder_levels([at, *[k for k in range(len(names)) if k != at]])


def _program() -> str:
    package = FilePath(__file__).resolve().parent
    for folder in (package, *package.parents[:5]):
        for program in (folder / "ztb", folder / "bin" / "ztb"):
            if program.is_file() and os.access(program, os.X_OK):
                return str(program)
    found = shutil.which("ztb")
    if found is None:
        raise Error("the program ztb is neither beside the package nor on PATH", "sweep")
    return found


def _run(command: List[str], tell: Optional[Callable[[progresses.State], None]]) -> List[str]:
    """Runs the program; what it told. A run that leaves scenarios without a solution has results all
    the same, of which it prints a summary."""
    lines = []
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.PIPE
        )
        assert process.stderr is not None
        try:
            for told in process.stderr:
                line = told.decode("utf-8", "surrogateescape").rstrip("\n")
                if tell is not None and line.startswith("{"):
                    tell(json.loads(line))
                else:
                    lines.append(line[5:] if line.startswith("ztb: ") else line)
            process.wait()
        except BaseException:
            process.terminate()  # it publishes what is solved
            process.communicate()
            raise
        finally:
            process.stderr.close()
        has_summary = output.seek(0, os.SEEK_END) > 0
    if process.returncode == 0 or (process.returncode == 1 and has_summary):
        return lines
    kind = DamagedFileError if any(DAMAGED.search(line) for line in lines) else Error
    raise kind("\n".join(lines) or f"ztb ended with {process.returncode}", "sweep")
