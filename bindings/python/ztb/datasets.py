"""RXF files and databases as sets of data: put together, renamed, selected, summed up."""

from __future__ import annotations

import os
import tempfile
from types import TracebackType
from typing import Iterable, List, Mapping, Optional, Sequence, Type, Union

from . import arguments, formats
from .database import Database, Path

Source = Union[Path, Database]

_STATISTICS = ("sum", "mean", "min", "max", "count")


class _Sources:
    """The paths of sources, with a file in a folder of its own for each database, and a result."""

    def __init__(self, sources: Iterable[Source], out: Optional[Path]) -> None:
        self._sources = list(arguments.several(sources, "file"))
        self._out = out
        self._folder: Optional["tempfile.TemporaryDirectory[str]"] = None

    def __enter__(self) -> _Sources:
        for source in self._sources:
            if not isinstance(source, Database):
                arguments.path(source)
        if self._out is not None:
            arguments.path(self._out)
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        if self._folder is not None:
            self._folder.cleanup()

    def _file(self, name: str) -> str:
        if self._folder is None:
            self._folder = tempfile.TemporaryDirectory(prefix="ztb")
        return os.path.join(self._folder.name, name)

    def make(self, making: str, options: formats.Options) -> Optional[Database]:
        files: formats.Options = []
        for number, source in enumerate(self._sources, 1):
            if isinstance(source, Database):
                path = self._file(f"database{number}.rxf")
                source.write(path)
                files += [("file", path), ("shown-file", f"database {number}")]
            else:
                files.append(("file", os.fspath(source)))
        if self._out is not None:
            formats.make(making, files + options, self._out)
            return None
        path = self._file("result.rxf")
        formats.make(making, files + [("shown-name", "the result")] + options, path)
        database = Database(path)
        database.close_file()
        return database


def merge(
    sources: Iterable[Source],
    out: Optional[Path] = None,
    *,
    case: Optional[str] = None,
    prefer: Optional[str] = None,
) -> Optional[Database]:
    """The symbols of several RXF files or databases in one file, or a new database without ``out``.

    A record may stand in several of them with the same values. What they have differently is an
    :class:`ztb.Error` that tells all of it, unless ``prefer`` says ``"first"`` or ``"last"`` of
    values. With ``case`` a first position of that name is for the file: its labels are the names of
    the files without their endings (``database1`` and so on of databases). ``out`` may be one of the
    files. Files are read block by block, in constant memory.
    """
    options: formats.Options = []
    if case is not None:
        options.append(("case", arguments.text(case, "case")))
    if prefer is not None:
        options.append(("prefer", arguments.text(prefer, "prefer")))
    with _Sources(sources, out) as run:
        return run.make("Merge", options)


def concat(sources: Iterable[Source], out: Optional[Path] = None) -> Optional[Database]:
    """The records of RXF files or databases that are parts of one whole, one behind the other.

    All have the same symbols; sets are united, scalars are the same in all, and any other record
    stands in one of them only. What is otherwise is an :class:`ztb.Error` that tells all of it.
    """
    with _Sources(sources, out) as run:
        return run.make("Concat", [])


def rename(
    source: Source,
    out: Optional[Path] = None,
    *,
    symbols: Optional[Mapping[str, str]] = None,
    labels: Optional[Mapping[str, str]] = None,
) -> Optional[Database]:
    """A file with other names of symbols and labels, all changed at once: ``{"old": "new"}``."""
    options: formats.Options = []
    for option, names in (("rename", symbols), ("label", labels)):
        for old, new in (names or {}).items():
            options.append((option, f"{_quoted(old)} = {_quoted(new)}"))
    with _Sources([source], out) as run:
        return run.make("Rename", options)


def where(
    source: Source,
    condition: str,
    out: Optional[Path] = None,
    *,
    symbols: Optional[Union[str, Sequence[str]]] = None,
) -> Optional[Database]:
    """The records that fulfil a condition, such as ``'value > 3 and food = "Milk*"'``.

    It holds for the symbols that have all fields and positions that it names, or for ``symbols``;
    the others stay whole.
    """
    options: formats.Options = [("where", arguments.text(condition, "condition"))]
    for name in [symbols] if isinstance(symbols, str) else symbols or []:
        options.append(("symbol", arguments.text(name, "name of a symbol")))
    with _Sources([source], out) as run:
        return run.make("Where", options)


def aggregate(
    source: Source,
    symbol: str,
    out: Optional[Path] = None,
    *,
    by: Union[str, int, Sequence[Union[str, int]]] = (),
    how: str = "sum",
    field: Optional[str] = None,
    skip_na: bool = False,
    name: Optional[str] = None,
) -> Optional[Database]:
    """The sum of a symbol's values, or what else ``how`` says, over all positions but those of ``by``.

    ``how`` is ``"sum"``, ``"mean"``, ``"min"``, ``"max"`` or ``"count"``; positions are names, or
    numbers from 1. The result has the parameter ``price_sum``, or ``name``, and the sets that it is
    over. undef among values makes undef, na makes na, and eps counts as 0.
    """
    if how not in _STATISTICS:
        raise ValueError(f"how={how!r}: expected one of {', '.join(_STATISTICS)}")
    chosen = [by] if isinstance(by, (str, int)) else arguments.several(by, "position")
    positions: List[str] = [
        position if isinstance(position, str) else str(arguments.whole(position, "position"))
        for position in chosen
    ]
    options: formats.Options = [("symbol", arguments.text(symbol, "name of a symbol")), (how, "")]
    options.append(("by", ",".join(positions)))
    if field is not None:
        options.append(("field", arguments.text(field, "field")))
    if name is not None:
        options.append(("name", arguments.text(name, "name")))
    if arguments.flag(skip_na, "skip_na"):
        options.append(("skip-na", ""))
    with _Sources([source], out) as run:
        return run.make("Aggregate", options)


def _quoted(name: str) -> str:
    return '"' + arguments.text(name, "name").replace('"', '""') + '"'
