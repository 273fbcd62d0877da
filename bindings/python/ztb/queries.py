"""Queries in SQL over databases where they are."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Mapping, Union

from . import _native, arguments
from .database import Database

if TYPE_CHECKING:
    import pandas as pd


def sql(
    database: Union[Database, Mapping[str, Database]], query: str, *parameters: Any
) -> "pd.DataFrame":
    """The rows of a query, a ``select``, ``with`` or ``values`` of SQLite, as a frame.

    Each symbol is a table, of which nothing is copied: its keys, named by their domains, then
    ``text`` of a set, ``value`` of a parameter, or ``level``, ``marginal``, ``lower``, ``upper`` and
    ``scale``. Labels compare with the case of ASCII letters folded. What is not available or
    undefined is null, which a column of numbers has as NaN.

    Several databases are given by names, and a table is then ``name.symbol``; ``main`` and ``temp``
    are names of SQLite's own. Each ``?`` of the query takes one of the parameters: a number, a text,
    a date, ``bytes`` for a blob, or ``None`` for null. Blobs of the result are ``bytes``.

    A query that is wrong, or writes, raises :class:`ztb.Error`; one with a null character
    ``ValueError``.
    """
    import pandas as pd

    databases = {"db": database} if isinstance(database, Database) else database
    if not isinstance(databases, Mapping):
        raise TypeError(f"{arguments.shown(database)} is no database, nor a mapping to databases")
    for name, each in databases.items():
        if not isinstance(each, Database):
            raise TypeError(f"{arguments.shown(each)} is no database")
        arguments.text(name, "name of a database")
    arguments.text(query, "query")
    named = [(name, each._native) for name, each in databases.items()]
    names, columns = _native.sql(named, query, parameters)
    frame = pd.DataFrame(dict(enumerate(columns)))
    frame.columns = pd.Index(names, dtype=object)
    return frame
