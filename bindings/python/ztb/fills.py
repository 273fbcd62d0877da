"""Data by names as a database: what fills a model, or what its scenarios are."""

from __future__ import annotations

import numbers
from typing import Any, Mapping

from .database import Database


def database_of(data: Mapping[str, Any]) -> Database:
    """A database of sets, given as indexes or lists of labels, and parameters, given as series over
    labels, mappings from labels or tuples of such, and numbers."""
    import pandas as pd

    database = Database()
    for name, content in data.items():
        if isinstance(content, pd.Series):
            parameter = database.add_parameter(name, ["*"] * content.index.nlevels)
            # The levels stand in the order of the positions, whatever they are called.
            parameter.from_pandas(content.rename_axis([None] * content.index.nlevels))
        elif isinstance(content, Mapping):
            keys = [key if isinstance(key, tuple) else (key,) for key in content]
            parameter = database.add_parameter(name, ["*"] * (len(keys[0]) if keys else 1))
            for key, value in zip(keys, content.values()):
                parameter[key] = value
        elif isinstance(content, numbers.Real):
            database.add_parameter(name).value = float(content)
        elif isinstance(content, (pd.Index, list, tuple)):
            keys = list(content)
            wide = len(keys[0]) if keys and isinstance(keys[0], tuple) else 1
            database.add_set(name, ["*"] * wide).extend(keys)
        else:
            raise TypeError(
                f"{name}: {type(content).__name__} is no data, expected a series, a mapping or a "
                "number for a parameter, an index or a list of labels for a set"
            )
    return database
