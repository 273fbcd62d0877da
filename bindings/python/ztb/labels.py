"""What labels are made from, and what a key means.

A label is a ``str``. Three other kinds of values become one:

===============================  ===================================================
an integer (``int``, of numpy)   its decimal text: ``7`` is ``"7"``; no ``bool``
a date                           ISO: ``"2031-04-07"``
a date with a time of day        the ISO date at midnight without a time zone, else
                                 ISO date and time: ``"2031-04-07T06:30:00"``
===============================  ===================================================

Anything else is a ``TypeError``, floats and missing values among them.
"""

from __future__ import annotations

import datetime
import operator
from typing import Any, Tuple, Union

import numpy as np

#: What a label is made from.
Label = Union[str, int, datetime.date, np.integer[Any], np.datetime64]

#: Labels of a record: a tuple with one for each position; for one position the label alone will do.
Key = Union[Label, Tuple[Label, ...]]


def label_text(label: object) -> str:
    """The label that a value stands for."""
    if isinstance(label, str):
        return label
    if isinstance(label, (int, np.integer)) and not isinstance(label, bool):
        return str(operator.index(label))
    if isinstance(label, np.datetime64) and not np.isnat(label):
        return _text_of_datetime64(label)
    # A missing pandas timestamp is a datetime that is not equal to itself.
    if isinstance(label, datetime.datetime) and label == label:
        return _text_of_datetime(label)
    if isinstance(label, datetime.date) and not isinstance(label, datetime.datetime):
        return label.isoformat()
    raise TypeError(
        f"{label!r} ({type(label).__name__}) is no label, expected a str, an int, or a date"
    )


def labels_of_key(key: object) -> Tuple[Any, ...]:
    """A key as a tuple with a label for each position."""
    return key if isinstance(key, tuple) else (key,)


def _text_of_datetime(label: datetime.datetime) -> str:
    midnight = label.time() == datetime.time() and not getattr(label, "nanosecond", 0)
    if midnight and label.tzinfo is None:
        return label.date().isoformat()
    return label.isoformat()


def _text_of_datetime64(label: np.datetime64) -> str:
    if label == label.astype("datetime64[D]"):
        return str(label.astype("datetime64[D]"))
    whole = label.astype("datetime64[s]")
    if label == whole:
        return str(whole)
    # As many digits behind the second as other timestamps have.
    micro = label.astype("datetime64[us]")
    return str(micro if label == micro else label.astype("datetime64[ns]"))
