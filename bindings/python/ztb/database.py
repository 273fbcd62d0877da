"""Databases: made anew or opened from RXF files."""

from __future__ import annotations

import os
from typing import Any, Dict, Iterator, Iterable, List, Mapping, Optional, Tuple, Union, cast

from . import _native, arguments, display, formats, partial, viewer, xarrays
from .errors import MissingFileError
from .home import Home
from .numeric import Equation, Parameter, Variable
from .sizes import Size, bytes_of
from .special import SPECIAL_VALUES
from .symbol import KINDS, Alias, DomainLike, DomainsLike, Set, Symbol, several, set_of

Path = Union[str, "os.PathLike[str]"]

_STORES = ("map", "vector", "trie")

_FREE = 5
_VARIABLE_SUBTYPES = 10
_EQUATION_SUBTYPES = 7

_CLASSES: Dict[int, Any] = {0: Set, 1: Parameter, 2: Variable, 3: Equation, 4: Alias}


class Database(display.Shows, Home, Mapping[str, Symbol[Any]]):
    """A database of sparse, indexed data: a mapping from names to symbols.

    With a path it mirrors an RXF file: labels and symbols are read now, the records of each symbol
    when they are first touched. Used in a ``with`` statement, it is closed at the end; symbols of a
    closed database raise :class:`ztb.Error`.

    A path without a file is a :class:`ztb.MissingFileError`, which is a ``FileNotFoundError``; what
    is damaged, or no RXF file at all, a :class:`ztb.DamagedFileError`.

    ``store`` chooses what holds the records in memory: ``"map"``, ``"vector"`` or ``"trie"``.
    ``system_directory`` is a folder to look for the exchange-file library in; by default that is
    the folder of the library itself. Threads that share a database take turns with it.

    ``max_memory`` limits what the records of the file may take in memory: a number of bytes, or a
    text such as ``"2G"`` (K, M, G and T are powers of 1024). A symbol that would go beyond it, by
    the estimate of :func:`ztb.memory_needed` for the map and with those read before, raises
    :class:`ztb.Error` when it is touched, and nothing of it is read.
    """

    def __init__(
        self,
        path: Optional[Path] = None,
        *,
        store: str = "map",
        max_memory: Optional[Size] = None,
        system_directory: Optional[Path] = None,
    ) -> None:
        number = _store_number(store)
        if path is not None:
            arguments.path(path)
        limit = 0 if max_memory is None else bytes_of(max_memory, "max_memory")
        super().__init__(_native.create(system_directory))
        #: Symbols by each spelling that they were asked for by. Their objects would keep the
        #: database alive; these do not.
        self._found: Dict[str, Tuple[Any, _native.Symbol]] = {}
        self._system_directory = system_directory
        self._native.set_special_values(SPECIAL_VALUES)
        self._native.select_store(number)
        if path is not None:
            try:
                self._native.open(path, limit)
            except MissingFileError as error:
                self._native.close()
                error.filename = os.fspath(path)
                raise
            except BaseException:
                self._native.close()
                raise

    # ---- files ----

    def write(
        self,
        path: Path,
        *,
        only: Optional[Iterable[Union[str, Symbol[Any], Alias]]] = None,
        rename: Optional[Mapping[str, str]] = None,
        check_domains: bool = False,
    ) -> None:
        """Writes everything to an RXF file, which may be the one that was opened.

        With ``only``, a name or several, just these symbols are written, together with the sets
        and aliases that they cannot be without (those named as domains, the set behind an alias),
        and only labels that records of theirs hold. ``rename`` gives symbols other names in the
        file. The database keeps all symbols and names; the file is made from a copy of the records
        in memory.

        With ``check_domains`` a label outside the set that is its domain is an error. On failure
        an old file stays as it was; only where its folder could not be brought to the disk, which
        comes last and is told, the new one stands.
        """
        if rename is not None and not isinstance(rename, Mapping):
            raise TypeError(f"{arguments.shown(rename)} is no mapping from names to names")
        arguments.path(path)
        check = arguments.flag(check_domains, "check_domains")
        if only is None and not rename:
            self._native.write(path, check)
            return
        names = None if only is None else self._names(only)
        copy = _native.create(self._system_directory)
        try:
            copy.set_special_values(SPECIAL_VALUES)
            partial.fill(copy, self, names, dict(rename or {}))
            copy.write(path, check)
        finally:
            copy.close()

    def close_file(self, *, load_remaining: bool = True) -> None:
        """Closes the file that the database mirrors. What is not read yet is read first, or lost."""
        self._native.close_file(arguments.flag(load_remaining, "load_remaining"))

    # ---- files of other programs ----

    def import_table(
        self,
        source: Path,
        *,
        sets: Optional[formats.Texts] = None,
        distinct_sets: Optional[formats.Texts] = None,
        parameters: Optional[formats.Texts] = None,
        variables: Optional[formats.Texts] = None,
        format: Optional[str] = None,  # noqa: A002
        wide: Optional[str] = None,
        rename: Optional[Dict[str, str]] = None,
        units: Optional[Dict[str, formats.Factor]] = None,
        dates: Optional[str] = None,
        separator: str = ",",
        decimal: str = ".",
        skip_empty: bool = False,
        check_domains: bool = False,
    ) -> None:
        """Adds symbols that are made from a table, as the options of ``ztb import`` make them.

        ``source`` is a file of CSV, SQLite, Excel, JSON lines or Parquet; behind a ``#`` stands a table,
        sheet, range or query: ``"plan.xlsx#Prices!B3:F90"``. ``sets``, ``parameters`` and so on
        have a text, or several, of the form of the command's: ``"price(food) = cents"``. Sets of
        this database may be domains.

        With problems in the table nothing is added: a :class:`ztb.DamagedFileError` tells all of
        them, each with its place (a :class:`ztb.MissingFileError` where all are files that are not there). What the options mean the reference of the command tells.
        """
        options = formats.import_options(
            source,
            sets,
            distinct_sets,
            parameters,
            variables,
            format,
            wide,
            rename,
            units,
            dates,
            separator,
            decimal,
            skip_empty,
            check_domains,
        )
        formats.import_into(self._native, options)

    def export(
        self,
        target: Path,
        symbols: Optional[Iterable[Union[str, Symbol[Any], Alias]]] = None,
        *,
        format: Optional[str] = None,  # noqa: A002
        wide: Optional[str] = None,
        separator: str = ",",
        decimal: str = ".",
    ) -> None:
        """Writes symbols, all by default, to a file of another program, as ``ztb export`` does.

        The ending of ``target``, or ``format``, tells what is written: ``.db`` a SQLite database,
        ``.xlsx`` a workbook, ``.jsonl`` JSON lines, ``.csv``, ``.tsv`` and ``.parquet`` the table of
        one symbol, ``.nc`` a NetCDF file with arrays of all cells (it needs xarray and netCDF4); a
        folder gets CSV files, or with ``format="parquet"`` such ones. :func:`ztb.read` reads a whole database back, every value bit for
        bit. ``wide`` names the position of one symbol whose labels become columns.
        """
        names = None if symbols is None else self._names(symbols)
        for name in names or []:
            self._native.find_symbol(name, True)
        if _is_netcdf(target, format):
            if names is not None:
                raise ValueError("a NetCDF file takes a whole database")
            xarrays.write_netcdf(self, os.fspath(target), xarrays.MOST_CELLS)
            return
        options = formats.export_options(target, names, format, wide, separator, decimal)
        formats.export(self._native, options)

    def to_xarray(self, *, most: int = 2**27) -> Any:
        """The database as a ``Dataset`` of xarray, which :func:`ztb.from_xarray` takes back.

        Dimensions are the sets that are domains, so that symbols over the same set lie over the
        same axis; fields are one, ``field:``. Each symbol is a variable of its name; of a set there are
        ``NAME:elements`` and, where it has any, ``NAME:texts``. A symbol of more than ``most`` cells is
        refused with its size.
        """
        return xarrays.dataset_of(self, arguments.whole(most, "number of cells"))

    # ---- symbols ----

    def __getitem__(self, name: str) -> Symbol[Any]:
        """The symbol of a name, case folded; for an alias the set that it stands for."""
        try:
            kind, native = self._found[name]
        except (KeyError, TypeError):
            kind, native = self._find(name)
        symbol: Symbol[Any] = kind(self, native)
        return symbol

    def _find(self, name: str) -> Tuple[Any, _native.Symbol]:
        if not isinstance(name, str):
            raise TypeError(f"{arguments.shown(name)} is no name of a symbol, which is a str")
        if name == "*":
            raise KeyError("* is the universe, no symbol; see Database.labels")
        native = self._native.find_symbol(name, False)
        found = self._found[name] = (_CLASSES[native.type], native)
        return found

    def close(self) -> None:
        """Frees the database; what was not written is lost. May be called again."""
        self._found.clear()
        super().close()

    def __contains__(self, name: object) -> bool:
        try:
            return isinstance(name, str) and bool(self[name].name)
        except KeyError:
            return False

    def __iter__(self) -> Iterator[str]:
        return iter([symbol.name for symbol in self.symbols()])

    def __len__(self) -> int:
        """The number of symbols, aliases included."""
        return self._native.symbol_count()

    def __bool__(self) -> bool:
        return True

    def __eq__(self, other: object) -> bool:
        return self is other

    def __hash__(self) -> int:
        return id(self)

    def symbols(self) -> List[Union[Symbol[Any], Alias]]:
        """All symbols, aliases included, in the order in which they were made."""
        return [
            self._wrap(self._native.symbol_at(position))
            for position in range(self._native.symbol_count())
        ]

    def add_set(self, name: str, domains: DomainsLike = ("*",), text: str = "") -> Set:
        """Adds a set.

        A domain is a set or alias of this database or its name; ``"*"`` is the universe, and any
        other name is kept as a name. One that stands alone is that of a single position.
        """
        return cast(Set, self._add(name, 0, domains, text, 0))

    def add_parameter(self, name: str, domains: DomainsLike = (), text: str = "") -> Parameter:
        """Adds a parameter; without domains it has one value. Domains are as for a set."""
        return cast(Parameter, self._add(name, 1, domains, text, 0))

    def add_variable(
        self,
        name: str,
        domains: DomainsLike = (),
        text: str = "",
        *,
        subtype: int = _FREE,
    ) -> Variable:
        """Adds a variable; the subtype, 0 to 9, tells what values a new record has.

        That is 1 for a binary variable, 3 for a positive one, 5 for a free one. Domains are as for
        a set.
        """
        _require_below(_VARIABLE_SUBTYPES, subtype)
        return cast(Variable, self._add(name, 2, domains, text, subtype))

    def add_equation(
        self, name: str, domains: DomainsLike = (), text: str = "", *, subtype: int = 0
    ) -> Equation:
        """Adds an equation of a subtype from 0 to 6, which tells what values a new record has.

        Domains are as for a set.
        """
        _require_below(_EQUATION_SUBTYPES, subtype)
        return cast(Equation, self._add(name, 3, domains, text, subtype))

    def add_alias(self, name: str, target: Union[Set, Alias, str]) -> Alias:
        """Adds a second name for a set, which its name may stand for; for what an alias stands for
        when one is given."""
        if isinstance(target, str):
            target = cast(Any, self[target])
        if isinstance(target, Symbol) and not isinstance(target, Set):
            raise ValueError(f"{target.name} is no set, which alone an alias can stand for")
        if not isinstance(target, (Set, Alias)):
            raise TypeError(
                f"{target!r} ({type(target).__name__}) is no set, which alone an alias can stand for"
            )
        self._require_own(target)
        arguments.text(name, "name of an alias")
        native = target._native
        if isinstance(target, Alias):
            native = self._native.find_symbol(target.name, False)
        return cast(Alias, self._wrap(self._native.add_alias(name, native, "")))

    def view(self, *, open_browser: Optional[bool] = None) -> viewer.View:
        """Shows it in the browser as ``ztb view`` does, in a notebook as a frame: what it has now,
        from a temporary file. ``open_browser`` overrules whether the browser is opened."""
        return viewer.show_database(self, open_browser)

    # ---- how it shows itself ----

    def _title(self) -> str:
        labels = display.counted(self._native.label_count(), "label")
        return f"ztb.Database of {labels}"

    def _listing(self) -> display.Listing:
        rows = [_row(symbol) for symbol in self._first_symbols()]
        columns = ("kind", "symbol", "records", "text")
        return display.Listing("", columns, rows, len(self), "symbol")

    def _first_symbols(self) -> List[_native.Symbol]:
        count = min(self._native.symbol_count(), display.MOST_ROWS)
        return [self._native.symbol_at(position) for position in range(count)]

    # ---- helpers of this package ----

    def _wrap(self, native: _native.Symbol) -> Union[Symbol[Any], Alias]:
        """The object for a symbol, by its type."""
        wrapped: Union[Symbol[Any], Alias] = _CLASSES[native.type](self, native)
        return wrapped

    def _add(
        self, name: str, kind: int, domains: DomainsLike, text: str, user_info: int
    ) -> Symbol[Any]:
        arguments.text(name, "name of a symbol")
        arguments.text(text, f"text of symbol {name}")
        pairs = [self._domain_argument(domain) for domain in several(domains)]
        native = self._native.add_symbol(name, kind, pairs, text, user_info)
        return cast("Symbol[Any]", self._wrap(native))

    def _domain_argument(self, domain: DomainLike) -> Tuple[Optional[_native.Symbol], str]:
        if isinstance(domain, (Symbol, Alias)):
            self._require_own(domain)
            return domain._native, domain.name
        if domain is None or domain == "*":
            return None, "*"
        if not isinstance(domain, str):
            raise TypeError(
                f"{domain!r} ({type(domain).__name__}) is no domain, expected a set, an alias or a "
                "name"
            )
        try:
            native = self._native.find_symbol(domain, True)
        except KeyError:
            return None, domain
        is_set = native.type in (0, 4) and native.dimension == 1
        return (native if is_set else None), domain

    def _require_own(self, symbol: Union[Symbol[Any], Alias]) -> None:
        if symbol._database is not self:
            kind = type(symbol).__name__.lower()
            raise ValueError(f"{kind} {symbol.name} belongs to another database")

    def _names(self, only: Iterable[Union[str, Symbol[Any], Alias]]) -> List[str]:
        chosen = [only] if isinstance(only, (str, Symbol, Alias)) else only
        names = []
        for symbol in arguments.several(chosen, "symbol"):
            if not isinstance(symbol, (str, Symbol, Alias)):
                raise TypeError(f"{arguments.shown(symbol)} is no symbol, nor the name of one")
            if not isinstance(symbol, str):
                self._require_own(symbol)
            names.append(symbol if isinstance(symbol, str) else symbol.name)
        return names


def _row(symbol: _native.Symbol) -> display.Row:
    domains = ", ".join(name for _, name in symbol.domains()) if symbol.type != 4 else None
    name = symbol.name if domains is None else f"{symbol.name}({domains})"
    count = symbol.record_count_if_read() if symbol.type != 4 else None
    records = "" if count is None else str(count)
    return [KINDS[symbol.type], display.cell(name), records, display.cell(symbol.text)]


def _require_below(count: int, subtype: int) -> None:
    if not 0 <= arguments.whole(subtype, "subtype") < count:
        raise ValueError(f"no subtype {subtype}, expected 0 to {count - 1}")


def _is_netcdf(path: object, format: Optional[str]) -> bool:  # noqa: A002
    name = os.fsdecode(path) if isinstance(path, (str, bytes, os.PathLike)) else ""
    return format == "netcdf" or (format is None and name.lower().endswith(".nc"))


def from_xarray(dataset: Any, *, nan: str = "na", store: str = "map") -> Database:
    """The database that :meth:`Database.to_xarray` made a ``Dataset`` of, or one of any other.

    Of another ``Dataset``, or a ``DataArray`` with a name, each dimension is a set of its labels
    (dates in ISO form; 0, 1 and so on where it has none), each variable and further coordinate a
    parameter over those sets, or, of truth values with a dimension, a set. ``nan`` tells what
    becomes of NaNs: ``"na"``, ``"skip"`` or ``"error"``. A variable of texts or dates is a
    ``TypeError`` that names it.
    """
    database = Database(store=store)
    try:
        xarrays.fill_database(database, dataset, nan)
    except BaseException:
        database.close()
        raise
    return database


def _store_number(store: str) -> int:
    return _STORES.index(arguments.choice(store, "store", _STORES))


def open(  # noqa: A001
    path: Path, *, store: str = "map", max_memory: Optional[Size] = None
) -> Database:
    """Opens an RXF file; see :class:`Database`."""
    if path is None:
        raise TypeError("None (NoneType) is no path of a file; Database() makes an empty database")
    return Database(path, store=store, max_memory=max_memory)


def read(source: Path, *, store: str = "map", **options: Any) -> Database:
    """A database of what a file of another program holds.

    A SQLite file, workbook, file of JSON lines or folder of CSV files that a whole database was
    written to comes back as it was. From any other table, symbols are made as the options of
    :meth:`Database.import_table` tell. A NetCDF file (``.nc``, or ``format="netcdf"``) is taken as
    :func:`from_xarray` takes its data set, with the same ``nan``.
    """
    if _is_netcdf(source, options.get("format")):
        if set(options) - {"format", "nan"}:
            raise ValueError("a NetCDF file has no table; it is read as a whole database")
        dataset = xarrays.read_netcdf(os.fspath(source))
        return from_xarray(dataset, nan=options.get("nan", "na"), store=store)
    database = Database(store=store)
    try:
        database.import_table(source, **options)
    except BaseException:
        database.close()
        raise
    return database


def memory_needed(path: Path, *, store: str = "map") -> Dict[str, int]:
    """The bytes, about, that the records of each symbol of an RXF file take in a database.

    No record is read. Aliases have none of their own and are left out.
    """
    return dict(_native.memory_needed(arguments.path(path), _store_number(store)))
