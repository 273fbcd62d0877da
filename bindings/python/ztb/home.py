"""What symbols know of the database that they belong to: its handle and its labels."""

from __future__ import annotations

from types import TracebackType
from typing import Any, Iterable, List, Optional, Type, TypeVar

import numpy as np
import numpy.typing as npt

from . import _native, arguments
from .errors import NotFoundError
from .labels import Label, label_text

_Self = TypeVar("_Self", bound="Home")


class Home:
    """The part of a :class:`ztb.Database` that knows of no symbols: lifetime and labels."""

    def __init__(self, native: _native.Database) -> None:
        self._native = native
        #: What records are read from and that has to live as long: a model.
        self._source: Any = None
        self._labels: npt.NDArray[np.object_] = np.array([None], dtype=object)

    def __getitem__(self, name: str) -> Any:
        raise NotImplementedError

    # ---- lifetime ----

    def close(self) -> None:
        """Frees the database; what was not written is lost. May be called again."""
        self._native.close()

    @property
    def closed(self) -> bool:
        """Whether it was closed: then every use of it and its symbols raises :class:`ztb.Error`."""
        return self._native.closed

    def __enter__(self: _Self) -> _Self:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self.close()

    # ---- labels ----

    @property
    def labels(self) -> List[str]:
        """All labels in the order in which they came."""
        labels: List[str] = self._label_array()[1:].tolist()
        return labels

    def add_labels(self, labels: Iterable[Label]) -> None:
        """Adds labels to the universe, those that it does not have yet; none if one is refused.

        This is the only way in for the empty label, which a record does not bring along. A single
        ``str`` is one label, not several: that is a ``TypeError``.
        """
        self._native.add_labels(arguments.several(labels, "label"))

    def _number(self, label: object) -> int:
        """The number of a label that the database has."""
        number = self._native.find_label(label)
        if number < 0:
            text = f"Cannot find label {label_text(label)}"
            raise NotFoundError(_native.display_text(text), "ztbFindUel", text)
        return number

    def _label_array(self) -> npt.NDArray[np.object_]:
        """Labels by their numbers; the entry 0 is none. Numbers never change."""
        # Another thread may be here, too: each goes on from what it found.
        labels = self._labels
        known = len(labels) - 1
        if self._native.label_count() > known:
            new = np.array(self._native.labels(known + 1), dtype=object)
            labels = self._labels = np.concatenate((labels, new))
        return labels
