"""The five special values, as numpy sees them, and the codes that keep them apart.

A record can hold a value that is undefined, not available, an infinity, or epsilon: a zero that
counts as present. In Python these are ordinary doubles:

=========  ===========================  ==========================================
constant   code                         value
=========  ===========================  ==========================================
UNDEF      ``CODE_UNDEFINED`` (0)       a NaN with bits of its own
NA         ``CODE_NOT_AVAILABLE`` (1)   the NaN that ``math.nan`` and ``numpy.nan`` are
INF        ``CODE_PLUS_INFINITY`` (2)   infinity
NEG_INF    ``CODE_MINUS_INFINITY`` (3)  minus infinity
EPS        ``CODE_EPSILON`` (4)         the smallest positive double
=========  ===========================  ==========================================

``numpy.isnan`` holds for the first two; :func:`special_codes` tells them apart by their bits.
"""

from __future__ import annotations

import math
import struct
from typing import Tuple

import numpy as np
import numpy.typing as npt

from . import arguments


def _double(bits: int) -> float:
    return float(struct.unpack("<d", struct.pack("<Q", bits))[0])


UNDEF: float = _double(0x7FF8000075646566)
NA: float = _double(0x7FF8000000000000)
INF: float = math.inf
NEG_INF: float = -math.inf
EPS: float = _double(0x0000000000000001)

#: The five values at the places of their codes.
SPECIAL_VALUES: Tuple[float, float, float, float, float] = (UNDEF, NA, INF, NEG_INF, EPS)

CODE_ORDINARY = -1
CODE_UNDEFINED = 0
CODE_NOT_AVAILABLE = 1
CODE_PLUS_INFINITY = 2
CODE_MINUS_INFINITY = 3
CODE_EPSILON = 4

_BITS = np.array(SPECIAL_VALUES, dtype=np.float64).view(np.uint64)


def special_codes(values: npt.ArrayLike) -> npt.NDArray[np.int8]:
    """The code of each value, ``CODE_ORDINARY`` for a number; an array of the same shape."""
    if np.asarray(values).dtype.kind not in "biufO":
        raise TypeError(f"values of type {np.asarray(values).dtype}, numbers expected")
    bits = np.array(values, dtype=np.float64, ndmin=1).view(np.uint64)
    codes = np.full(bits.shape, CODE_ORDINARY, dtype=np.int8)
    for code, special in enumerate(_BITS):
        codes[bits == special] = code
    return codes.reshape(np.shape(values))


def special_code(value: float) -> int:
    """The code of one value, ``CODE_ORDINARY`` for a number."""
    if value is None or isinstance(value, (str, bytes)):
        raise TypeError(f"{arguments.shown(value)} is no number")
    return int(special_codes(value)[()])
