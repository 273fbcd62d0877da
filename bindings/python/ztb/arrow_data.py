"""What the Arrow streams of symbols consist of, below the symbols themselves."""

from __future__ import annotations

from typing import Any, List, Optional, Sequence

from . import _native, arguments
from .missing import NAN_CHOICES, require_choice

#: The choices for nulls by the numbers that the library knows them by.
NULLS = {"error": 0, "na": 1, "skip": 2}
assert set(NULLS) == set(NAN_CHOICES)


class ArrowData:
    """The records of a symbol, to be read by whatever speaks Arrow, as often as wanted.

    A reader that has begun fails when records of the database are changed; what it has read stays
    as it was, also when the database is closed. Values of a parameter on the vector store are not
    copied for it.
    """

    def __init__(self, symbol: _native.Symbol, na: str, batch: int) -> None:
        self._symbol = symbol
        self._na_as_null = arguments.choice(na, "spelling of NA", ("nan", "null")) == "null"
        self._batch = arguments.whole(batch, "number of records")

    def __arrow_c_stream__(self, requested_schema: Any = None) -> Any:
        """A capsule with an Arrow stream. What schema is requested is not looked at."""
        return _native.arrow_stream(self._symbol, self._na_as_null, self._batch)


def capsule_of(data: Any) -> Any:
    if not hasattr(data, "__arrow_c_stream__"):
        raise TypeError(f"{arguments.shown(data)} has no __arrow_c_stream__")
    capsule = data.__arrow_c_stream__()
    # Only its name tells what a capsule holds, and only its text shows the name.
    if not repr(capsule).startswith('<capsule object "arrow_array_stream"'):
        raise TypeError(
            f"__arrow_c_stream__ of {arguments.shown(data)} gave {arguments.shown(capsule)}, "
            "expected a capsule with an Arrow stream"
        )
    return capsule


def source_of(data: Any) -> Optional[_native.Symbol]:
    """The symbol that the data are of; None for data of another program."""
    own = data._symbol if isinstance(data, ArrowData) else getattr(data, "_native", None)
    return own if isinstance(own, _native.Symbol) else None


def key_list(keys: Optional[Sequence[str]]) -> Optional[List[str]]:
    return None if keys is None else list(arguments.several(keys, "column"))


def fill(symbol: _native.Symbol, data: Any, keys: Optional[Sequence[str]], null: str) -> None:
    """Replaces the records of a symbol."""
    require_choice(null, parameter="null")
    capsule = capsule_of(data)
    _native.fill_from_arrow(symbol, capsule, key_list(keys), NULLS[null], source_of(data))
