"""Databases: made anew or opened from RXF files."""

from __future__ import annotations

import os
from types import TracebackType
from typing import Any, Dict, Iterator, List, Optional, Sequence, Tuple, Type, Union, cast

import numpy as np
import numpy.typing as npt

from . import _native
from .sizes import Size, bytes_of
from .special import SPECIAL_VALUES
from .symbol import Alias, DomainLike, Equation, Parameter, Set, Symbol, Variable, wrap

Path = Union[str, "os.PathLike[str]"]

_STORES = ("map", "vector", "trie")

_FREE = 5
_UNIVERSE = -1
_VARIABLE_SUBTYPES = 10
_EQUATION_SUBTYPES = 7


class Database:
    """A database of sparse, indexed data.

    With a path it mirrors an RXF file: labels and symbols are read now, the records of each symbol
    when they are first touched. Used in a ``with`` statement, it is closed at the end; symbols of a
    closed database raise :class:`ztb.Error`.

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
        limit = 0 if max_memory is None else bytes_of(max_memory, "max_memory")
        self._native = _native.create(system_directory)
        self._labels: npt.NDArray[np.object_] = np.array([None], dtype=object)
        self._native.set_special_values(SPECIAL_VALUES)
        self._native.select_store(number)
        if path is not None:
            try:
                self._native.open(path, limit)
            except BaseException:
                self._native.close()
                raise

    # ---- lifetime and files ----

    def close(self) -> None:
        """Frees the database; what was not written is lost. May be called again."""
        self._native.close()

    @property
    def closed(self) -> bool:
        return self._native.closed

    def __enter__(self) -> "Database":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self.close()

    def write(self, path: Path, *, check_domains: bool = False) -> None:
        """Writes everything to an RXF file, which may be the one that was opened.

        With ``check_domains`` a label outside the set that is its domain is an error. On failure
        an old file stays as it was; only where its folder could not be brought to the disk, which
        comes last and is told, the new one stands.
        """
        self._native.write(path, check_domains)

    def close_file(self, *, load_remaining: bool = True) -> None:
        """Closes the file that the database mirrors. What is not read yet is read first, or lost."""
        self._native.close_file(load_remaining)

    # ---- labels ----

    @property
    def labels(self) -> List[str]:
        """All labels in the order in which they came."""
        return self._label_array()[1:].tolist()

    def add_labels(self, labels: Sequence[str]) -> None:
        """Adds labels to the universe, those that it does not have yet; none if one is refused.

        This is the only way in for the empty label, which a record does not bring along.
        """
        self._native.add_labels(labels)

    # ---- symbols ----

    def __getitem__(self, name: str) -> Symbol[Any]:
        """The symbol of a name, case folded; for an alias the set that it stands for."""
        if name == "*":
            raise KeyError("* is the universe, no symbol; see Database.labels")
        return cast("Symbol[Any]", wrap(self, self._native.find_symbol(name, False)))

    def __contains__(self, name: object) -> bool:
        try:
            return isinstance(name, str) and bool(self[name])
        except KeyError:
            return False

    def __iter__(self) -> Iterator[str]:
        return (symbol.name for symbol in self.symbols())

    def __len__(self) -> int:
        """The number of symbols, aliases included."""
        return self._native.symbol_count()

    def __bool__(self) -> bool:
        return True

    def symbols(self) -> List[Union[Symbol[Any], Alias]]:
        """All symbols, aliases included, in the order in which they were made."""
        return [
            wrap(self, self._native.symbol_at(position))
            for position in range(self._native.symbol_count())
        ]

    def add_set(
        self, name: str, domains: Sequence[DomainLike] = ("*",), text: str = ""
    ) -> Set:
        """Adds a set.

        A domain is a set or alias of this database or its name; ``"*"`` is the universe, and any
        other name is kept as a name.
        """
        return cast(Set, self._add(name, 0, domains, text, 0))

    def add_parameter(
        self, name: str, domains: Sequence[DomainLike] = (), text: str = ""
    ) -> Parameter:
        """Adds a parameter; without domains it has one value."""
        return cast(Parameter, self._add(name, 1, domains, text, 0))

    def add_variable(
        self,
        name: str,
        domains: Sequence[DomainLike] = (),
        text: str = "",
        *,
        subtype: int = _FREE,
    ) -> Variable:
        """Adds a variable; the subtype, 0 to 9, tells what values a new record has.

        That is 1 for a binary variable, 3 for a positive one, 5 for a free one.
        """
        _require_below(_VARIABLE_SUBTYPES, subtype)
        return cast(Variable, self._add(name, 2, domains, text, subtype))

    def add_equation(
        self, name: str, domains: Sequence[DomainLike] = (), text: str = "", *, subtype: int = 0
    ) -> Equation:
        """Adds an equation of a subtype from 0 to 6, which tells what values a new record has."""
        _require_below(_EQUATION_SUBTYPES, subtype)
        return cast(Equation, self._add(name, 3, domains, text, subtype))

    def add_alias(self, name: str, target: Union[Set, Alias]) -> Alias:
        """Adds a second name for a set; for what an alias stands for when one is given."""
        if isinstance(target, Alias):
            if target._database is not self:
                raise ValueError(f"alias {target.name} belongs to another database")
            if target.set is None:
                return self._add_alias(name, _UNIVERSE, 1)
            target = target.set
        if not isinstance(target, Set):
            raise ValueError(f"{target!r} is no set, which alone an alias can stand for")
        for position in range(self._native.symbol_count()):
            if self._native.symbol_at(position) == target._native:
                return self._add_alias(name, position, target.dimension)
        raise ValueError(f"set {target.name} belongs to another database")

    # ---- helpers of this package ----

    def _label_array(self) -> npt.NDArray[np.object_]:
        """Labels by their numbers; the entry 0 is none. Numbers never change."""
        # Another thread may be here, too: each goes on from what it found.
        labels = self._labels
        known = len(labels) - 1
        if self._native.label_count() > known:
            new = np.array(self._native.labels(known + 1), dtype=object)
            labels = self._labels = np.concatenate((labels, new))
        return labels

    def _set(self, native: Optional[_native.Symbol]) -> Optional[Set]:
        return None if native is None or native.name == "*" else Set(self, native)

    def _set_of_alias(self, name: str) -> Optional[Set]:
        return self._set(self._native.find_symbol(name, False))

    def _add(
        self, name: str, kind: int, domains: Sequence[DomainLike], text: str, user_info: int
    ) -> Symbol[Any]:
        arguments = [self._domain_argument(domain) for domain in domains]
        native = self._native.add_symbol(name, kind, arguments, text, user_info)
        return cast("Symbol[Any]", wrap(self, native))

    def _add_alias(self, name: str, position: int, dimension: int) -> Alias:
        return cast(Alias, wrap(self, self._native.add_alias(name, position, dimension, "")))

    def _domain_argument(self, domain: DomainLike) -> Tuple[Optional[_native.Symbol], str]:
        if isinstance(domain, (Symbol, Alias)):
            if domain._database is not self:
                raise ValueError(f"set {domain.name} belongs to another database")
            return domain._native, domain.name
        if domain is None or domain == "*":
            return None, "*"
        try:
            native = self._native.find_symbol(domain, True)
        except KeyError:
            return None, domain
        is_set = native.type in (0, 4) and native.dimension == 1
        return (native if is_set else None), domain


def _require_below(count: int, subtype: int) -> None:
    if not 0 <= subtype < count:
        raise ValueError(f"no subtype {subtype}, expected 0 to {count - 1}")


def _store_number(store: str) -> int:
    if store not in _STORES:
        raise ValueError(f"no store {store!r}, expected one of {', '.join(_STORES)}")
    return _STORES.index(store)


def open(  # noqa: A001
    path: Path, *, store: str = "map", max_memory: Optional[Size] = None
) -> Database:
    """Opens an RXF file; see :class:`Database`."""
    return Database(path, store=store, max_memory=max_memory)


def memory_needed(path: Path, *, store: str = "map") -> Dict[str, int]:
    """The bytes, about, that the records of each symbol of an RXF file take in a database.

    No record is read. Aliases have none of their own and are left out.
    """
    return dict(_native.memory_needed(path, _store_number(store)))
