"""Some symbols of a database, or symbols under other names, put into a database of their own."""

from __future__ import annotations

from typing import Dict, List, Optional, Sequence, Tuple

import numpy as np

from . import _native
from .home import Home

_ALIAS = 4


def fill(
    copy: _native.Database, source: Home, only: Optional[Sequence[str]], rename: Dict[str, str]
) -> None:
    """Makes an empty database a copy of some symbols, or of all, of another one.

    With ``only``, they bring along the sets and aliases that they cannot be without, and only the
    labels of their records. ``rename`` has other names for symbols.
    """
    symbols = _all(source) if only is None else _closed(source, only)
    names = _new_names(source, symbols, rename)
    labels = source._label_array()
    used = np.full(len(labels), only is None)
    if only is not None:
        for symbol in symbols:
            if symbol.type != _ALIAS:
                used[symbol.rows()[0].ravel()] = True
    used[0] = False
    copy.add_labels(labels[used].tolist())
    for symbol in symbols:
        _copy_symbol(copy, source, symbol, names)


def _all(source: Home) -> List[_native.Symbol]:
    native = source._native
    return [native.symbol_at(position) for position in range(native.symbol_count())]


def _closed(source: Home, only: Sequence[str]) -> List[_native.Symbol]:
    """The named symbols and those that they stand on, in the order of the database."""
    chosen = set()
    open_ = [source._native.find_symbol(name, True) for name in only]
    while open_:
        symbol = open_.pop()
        if symbol in chosen or symbol.name == "*":
            continue
        chosen.add(symbol)
        if symbol.type == _ALIAS:
            open_.append(source._native.find_symbol(symbol.name, False))
            continue
        for set_, name in symbol.domains():
            if set_ is not None and name != "*":
                open_.append(source._native.find_symbol(name, True))
    return [symbol for symbol in _all(source) if symbol in chosen]


def _new_names(
    source: Home, symbols: Sequence[_native.Symbol], rename: Dict[str, str]
) -> Dict[str, str]:
    """The name in the copy of each symbol that is copied, by its folded name."""
    names = {_native.folded(symbol.name): symbol.name for symbol in symbols}
    for old, new in rename.items():
        if not isinstance(old, str) or not isinstance(new, str):
            raise TypeError(f"rename maps names to names, not {old!r} to {new!r}")
        source._native.find_symbol(old, True)
        if _native.folded(old) not in names:
            raise ValueError(f"rename names symbol {old}, which is not written")
        names[_native.folded(old)] = new
    taken: Dict[str, str] = {}
    for old, new in names.items():
        other = taken.setdefault(_native.folded(new), old)
        if other != old:
            raise ValueError(f"symbols {other} and {old} would both be written as {new}")
    return names


def _copy_symbol(
    copy: _native.Database, source: Home, symbol: _native.Symbol, names: Dict[str, str]
) -> None:
    name = names[_native.folded(symbol.name)]
    if symbol.type == _ALIAS:
        target = source._native.find_symbol(symbol.name, False)
        copy.add_alias(name, _counterpart(copy, target, names), symbol.text)
        return
    domains: List[Tuple[Optional[_native.Symbol], str]] = []
    for set_, domain in symbol.domains():
        if set_ is None or domain == "*":
            domains.append((None, domain))
        else:
            new = names[_native.folded(domain)]
            domains.append((copy.find_symbol(new, True), new))
    made = copy.add_symbol(name, symbol.type, domains, symbol.text, symbol.user_info)
    made.copy_from(symbol)


def _counterpart(
    copy: _native.Database, symbol: _native.Symbol, names: Dict[str, str]
) -> _native.Symbol:
    if symbol.name == "*":
        return copy.symbol_at(-1)
    return copy.find_symbol(names[_native.folded(symbol.name)], False)
