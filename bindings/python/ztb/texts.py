"""Texts of elements that the database keeps in another spelling than the one that was given."""

from __future__ import annotations

import sys
import warnings
from typing import Iterable, List

from . import _native


def level_of_caller() -> int:
    """The level of a warning, given by who calls this, at the line that called the package."""
    level = 1
    frame = sys._getframe(1)
    while frame.f_back is not None and str(frame.f_globals.get("__name__")).startswith("ztb."):
        frame = frame.f_back
        level += 1
    return level


def warn_of_kept(symbol: str, given: Iterable[str], kept: Iterable[str]) -> None:
    """Warns of each text that is kept in the spelling that the database had first.

    Two texts that differ in the case of ASCII letters alone are one to it.
    """
    there = list(kept)
    known = set(there)
    lost: List[str] = [text for text in dict.fromkeys(given) if text not in known]
    if not lost:
        return
    spellings = {_native.folded(text): text for text in there}
    for text in lost:
        spelling = spellings.get(_native.folded(text))
        if spelling is not None:
            warnings.warn(
                f"text {text!r} of set {symbol} is kept as {spelling!r}: texts are one whatever the "
                "case of letters, and the first spelling stays",
                UserWarning,
                stacklevel=level_of_caller(),
            )
