"""Tables and databases in the files of other programs, by the functions of ``ztb/formats.h``."""

from __future__ import annotations

import ctypes
import os
import threading
import warnings
from collections.abc import Mapping as MappingClass
from fractions import Fraction
from typing import Any, Dict, Iterable, List, Mapping, Optional, Tuple, Union

from . import _native, arguments
from .errors import DamagedFileError, Error, MissingFileError
from .texts import level_of_caller

Path = Union[str, "os.PathLike[str]"]
Texts = Union[str, Iterable[str]]
#: What the numbers of a column are multiplied by. By ``Fraction(1, 100)`` they are divided by 100,
#: which rounds once.
Factor = Union[int, float, Fraction]
Options = List[Tuple[str, str]]

_NO_FILE = 5
_DAMAGED_FILE = 6

_lock = threading.Lock()
_loaded: Dict[str, Any] = {}


def _library() -> Any:
    """The library, which stands beside the one of the database and is opened when it is needed."""
    with _lock:
        if "library" not in _loaded:
            path = os.path.join(_native.library_folder(), "libztbformats.so")
            try:
                library = ctypes.CDLL(path)
            except OSError as error:
                raise Error(f"the library for tables cannot be opened: {error}") from None
            for name in ("Message", "Problems", "Warnings"):
                function = getattr(library, "ztbFormats" + name)
                function.restype = ctypes.c_char_p
                function.argtypes = [ctypes.c_void_p]
            library.ztbFormatsCreate.argtypes = [ctypes.POINTER(ctypes.c_void_p)]
            library.ztbFormatsFree.argtypes = [ctypes.POINTER(ctypes.c_void_p)]
            library.ztbFormatsOption.argtypes = [ctypes.c_void_p] + [ctypes.c_char_p] * 2
            for name in ("ImportInto", "ExportDatabase"):
                getattr(library, "ztbFormats" + name).argtypes = [ctypes.c_void_p] * 2
            for name in ("Merge", "Concat", "Rename", "Where", "Aggregate"):
                making = getattr(library, "ztbFormats" + name)
                making.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
            library.ztbFormatsErrorKind.argtypes = [ctypes.c_void_p]
            library.ztbFormatsIsUsage.argtypes = [ctypes.c_void_p]
            _loaded["library"] = library
        return _loaded["library"]


class _Job:
    def __init__(self, options: Options) -> None:
        self._library = _library()
        self._job = ctypes.c_void_p()
        if not self._library.ztbFormatsCreate(ctypes.byref(self._job)):
            raise MemoryError
        for name, value in options:
            text = os.fsencode(value)
            self._require("Option", self._library.ztbFormatsOption(self._job, name.encode(), text))

    def __enter__(self) -> _Job:
        return self

    def __exit__(self, *error: Any) -> None:
        self._library.ztbFormatsFree(ctypes.byref(self._job))

    def import_into(self, handle: int) -> None:
        self._run("ImportInto", ctypes.c_void_p(handle))

    def export_database(self, handle: int) -> None:
        self._run("ExportDatabase", ctypes.c_void_p(handle))

    def make(self, making: str, path: Path) -> None:
        self._run(making, os.fsencode(path))

    def _run(self, name: str, argument: Any) -> None:
        function = getattr(self._library, "ztbFormats" + name)
        self._require(name, function(self._job, argument))

    def _text(self, name: str) -> str:
        return os.fsdecode(getattr(self._library, "ztbFormats" + name)(self._job))

    def _require(self, name: str, result: int) -> None:
        for line in self._text("Warnings").splitlines():
            warnings.warn(line.replace("ztb: ", "", 1), stacklevel=level_of_caller())
        if result:
            return
        text = _native.display_text(self._text("Message"))
        problems = self._text("Problems")
        kind = self._library.ztbFormatsErrorKind(self._job)
        if self._library.ztbFormatsIsUsage(self._job):
            raise ValueError(text)
        if kind == _NO_FILE:
            raise MissingFileError(problems + text, "ztbFormats" + name)
        if kind == _DAMAGED_FILE:
            raise DamagedFileError(problems + text, "ztbFormats" + name)
        raise Error(problems + text, "ztbFormats" + name)


def _several(value: Optional[Texts], what: str) -> List[str]:
    if value is None:
        return []
    if isinstance(value, str):
        return [value]
    texts = arguments.several(value, what[:-1])
    return [arguments.text(text, f"text for {what}") for text in texts]


def _names(value: Optional[Mapping[str, Any]], what: str) -> Mapping[str, Any]:
    if value is None:
        return {}
    if not isinstance(value, MappingClass):
        raise TypeError(f"{arguments.shown(value)} is no {what}, expected a mapping from columns")
    for name in value:
        arguments.text(name, f"column of {what}")
    return value


def _word(options: Options, name: str, value: Optional[str]) -> None:
    if value is not None:
        options.append((name, arguments.text(value, name)))


def _factor(column: str, by: Factor) -> str:
    if isinstance(by, Fraction):
        return f"{by.numerator}/{by.denominator}"
    return repr(arguments.real(by, f"factor of column {column}"))


def import_options(
    source: Path,
    sets: Optional[Texts],
    distinct_sets: Optional[Texts],
    parameters: Optional[Texts],
    variables: Optional[Texts],
    format: Optional[str],  # noqa: A002
    wide: Optional[str],
    rename: Optional[Dict[str, str]],
    units: Optional[Dict[str, Factor]],
    dates: Optional[str],
    separator: str,
    decimal: str,
    skip_empty: bool,
    check_domains: bool,
) -> Options:
    options: Options = [("from", os.fsdecode(arguments.path(source)))]
    _word(options, "format", format)
    _word(options, "wide", wide)
    for old, new in _names(rename, "rename").items():
        options.append(("rename", f"{old}={arguments.text(new, 'name of a column')}"))
    for name, by in _names(units, "units").items():
        options.append(("units", f"{name}={_factor(name, by)}"))
    _word(options, "dates", dates)
    options += [("set", spec) for spec in _several(sets, "sets")]
    options += [("distinct-set", spec) for spec in _several(distinct_sets, "distinct_sets")]
    options += [("parameter", spec) for spec in _several(parameters, "parameters")]
    options += [("variable", spec) for spec in _several(variables, "variables")]
    _word(options, "separator", separator)
    _word(options, "decimal", decimal)
    if arguments.flag(skip_empty, "skip_empty"):
        options.append(("skip-empty", ""))
    if arguments.flag(check_domains, "check_domains"):
        options.append(("check-domains", ""))
    return options


def export_options(
    target: Path,
    symbols: Optional[List[str]],
    format: Optional[str],  # noqa: A002
    wide: Optional[str],
    separator: str,
    decimal: str,
) -> Options:
    options: Options = [("to", os.fsdecode(arguments.path(target)))]
    _word(options, "separator", separator)
    _word(options, "decimal", decimal)
    _word(options, "format", format)
    _word(options, "wide", wide)
    if symbols is None:
        options.append(("all", ""))
    return options + [("symbol", name) for name in symbols or []]


def import_into(native: _native.Database, options: Options) -> None:
    """Adds what the options ask for to a database."""
    with _Job(options) as job:
        native.with_handle(job.import_into)


def export(native: _native.Database, options: Options) -> None:
    """Writes a database as the options ask."""
    with _Job(options) as job:
        native.with_handle(job.export_database)


def make(making: str, options: Options, path: Path) -> None:
    """Makes an RXF file of others: Merge, Concat, Rename, Where or Aggregate."""
    with _Job(options) as job:
        job.make(making, path)
