"""What becomes of missing values that come in, in frames and arrays alike."""

from __future__ import annotations

from typing import Sequence

from . import arguments

#: The choices: no record of them, a record that is not available, or an error.
NAN_CHOICES = ("skip", "na", "error")


def require_choice(
    nan: object, choices: Sequence[str] = NAN_CHOICES, parameter: str = "nan"
) -> None:
    """Refuses what is no choice for a parameter."""
    if not isinstance(nan, str):
        raise TypeError(
            f"{arguments.shown(nan)} is no choice for {parameter}, "
            f"expected one of {', '.join(choices)}"
        )
    if nan not in choices:
        raise ValueError(f"{parameter}={nan!r} is no choice, expected one of {', '.join(choices)}")


def missing_value(place: str, symbol: str) -> ValueError:
    """The error for ``nan="error"``."""
    return ValueError(
        f"{place}: a value of symbol {symbol} is missing; nan='skip' makes no record of it, "
        "nan='na' stores it as not available"
    )
