"""The unit of work of a sweep, by the functions of ``ztb/sweep.h``: chunks and their part files."""

from __future__ import annotations

import ctypes
import os
import re
import threading
from typing import Any, Dict, List, Optional, Sequence, Tuple, Union

from . import _native
from .errors import DamagedFileError, Error

Path = Union[str, "os.PathLike[str]"]
Options = Sequence[Tuple[str, str]]

_lock = threading.Lock()
_loaded: Dict[str, Any] = {}

_WATCH = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int, ctypes.c_int, ctypes.c_char_p)
#: What a watch is told of a solve that failed.
_SOLVE_FAILED = 2

_STRINGS = ("Message", "Inputs", "Key", "Over", "Unmatched")


def _library() -> Any:
    """The library, which stands beside the one of the database and is opened when it is needed."""
    with _lock:
        if "library" not in _loaded:
            path = os.path.join(_native.library_folder(), "libztbsweep.so")
            try:
                library = ctypes.CDLL(path)
            except OSError as error:
                raise Error(f"the library for sweeps cannot be opened: {error}") from None
            pointer, text, number = ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int
            for name in _STRINGS:
                function = getattr(library, "ztbSweep" + name)
                function.restype, function.argtypes = text, [pointer]
            library.ztbSweepCreate.argtypes = [ctypes.POINTER(pointer)]
            library.ztbSweepFree.argtypes = [ctypes.POINTER(pointer)]
            library.ztbSweepOption.argtypes = [pointer, text, text]
            for name in ("Open", "ScenarioCount", "ChunkCount", "SameInputs", "Stop"):
                getattr(library, "ztbSweep" + name).argtypes = [pointer]
            for name in ("Prepare", "Publish", "Collect", "Save", "Lock"):
                getattr(library, "ztbSweep" + name).argtypes = [pointer, text]
            library.ztbSweepSetWatch.argtypes = [pointer, _WATCH, pointer]
            library.ztbSweepFind.argtypes = [pointer, text, text]
            library.ztbSweepSolve.argtypes = [pointer, text, number]
            library.ztbSweepRemove.argtypes = [pointer, text, number]
            library.ztbSweepForeignPart.restype = text
            library.ztbSweepForeignPart.argtypes = [pointer, text]
            for name in ("Scenario", "Reason"):
                function = getattr(library, "ztbSweep" + name)
                function.restype, function.argtypes = text, [pointer, number]
            places = [ctypes.POINTER(number)] * 2
            library.ztbSweepChunk.argtypes = [pointer, number, *places]
            library.ztbSweepChunkState.argtypes = [pointer, number, *places]
            library.ztbSweepOutcome.argtypes = [pointer, number, *places, ctypes.POINTER(ctypes.c_double)]
            _loaded["library"] = library
        return _loaded["library"]


class Chunks:
    """A sweep cut into chunks, each of which any process can solve: the same function of its inputs
    wherever it is solved. ``options`` are those of ``ztbSweepOption``. Used by one thread at a time.
    """

    def __init__(self, options: Options) -> None:
        self._library = _library()
        self._options = list(options)
        self._sweep = ctypes.c_void_p()
        if not self._library.ztbSweepCreate(ctypes.byref(self._sweep)):
            raise MemoryError
        try:
            for name, value in options:
                text = os.fsencode(value)
                self._require(self._library.ztbSweepOption(self._sweep, name.encode(), text))
            self._require(self._library.ztbSweepOpen(self._sweep))
        except Error:
            self.close()
            raise

    def close(self) -> None:
        """Ends the sweep, and with it the model."""
        self._library.ztbSweepFree(ctypes.byref(self._sweep))

    def __enter__(self) -> Chunks:
        return self

    def __exit__(self, *error: Any) -> None:
        self.close()

    def __len__(self) -> int:
        return int(self._library.ztbSweepChunkCount(self._sweep))

    @property
    def key(self) -> str:
        """The digits that stand for all that decides the results, in the names of parts."""
        return str(self._library.ztbSweepKey(self._sweep).decode())

    @property
    def scenario_count(self) -> int:
        return int(self._library.ztbSweepScenarioCount(self._sweep))

    def scenario(self, number: int) -> str:
        """The label of a scenario."""
        label = self._library.ztbSweepScenario(self._sweep, number)
        if label is None:
            raise IndexError(f"there is no scenario {number}")
        return str(label.decode("utf-8", "surrogateescape"))

    def range(self, chunk: int) -> range:
        """The numbers of a chunk's scenarios."""
        return range(*self._pair(self._library.ztbSweepChunk, chunk))

    def state(self, chunk: int) -> Tuple[int, int]:
        """Of what was found: scenarios of a chunk without an outcome, and those that failed."""
        return self._pair(self._library.ztbSweepChunkState, chunk)

    def part(self, folder: Path, chunk: int) -> str:
        """The file of a chunk's part."""
        numbers = self.range(chunk)
        return os.path.join(folder, f"{self.key}-{numbers.start}-{numbers.stop}.rxf")

    def basis(self, folder: Path) -> str:
        """The file of the basis that chunks start from."""
        return os.path.join(folder, f"{self.key}.basis")

    def lock(self, out: Path) -> None:
        """Keeps other sweeps from writing this result until this one is closed."""
        self._require(self._library.ztbSweepLock(self._sweep, os.fsencode(out)))

    def save(self, folder: Path) -> None:
        """Leaves the options in the folder, for ``ztb sweep --collect``."""
        self._require(self._library.ztbSweepSave(self._sweep, os.fsencode(folder)))

    def difference(self) -> str:
        """In what the files differ from those that were opened; empty if in nothing."""
        return "" if self._library.ztbSweepSameInputs(self._sweep) else self._message()

    def foreign_part(self, folder: Path) -> str:
        """In what a part of another sweep in the folder differs; empty where there is none."""
        text = self._library.ztbSweepForeignPart(self._sweep, os.fsencode(folder))
        self._require(text is not None)
        return str(text.decode("utf-8", "surrogateescape"))

    def prepare(self, folder: Path) -> None:
        """Solves the unchanged model, unless it was done, and leaves its basis in the folder."""
        self._require(self._library.ztbSweepPrepare(self._sweep, os.fsencode(folder)))

    def solve(self, folder: Path, chunk: int) -> int:
        """Solves a chunk and publishes its part; how many of its solves failed."""
        failed: List[int] = []

        def watch(_context: Any, event: int, scenario: int, _text: Any) -> None:
            if event == _SOLVE_FAILED:
                failed.append(scenario)

        told = _WATCH(watch)
        self._library.ztbSweepSetWatch(self._sweep, told, None)
        try:
            self._require(self._library.ztbSweepSolve(self._sweep, os.fsencode(folder), chunk))
        finally:
            self._library.ztbSweepSetWatch(self._sweep, ctypes.cast(0, _WATCH), None)
        self._require(self._library.ztbSweepPublish(self._sweep, os.fsencode(folder)))
        return len(failed)

    def find(self, folder: Path, result: Optional[Path] = None) -> None:
        """Looks for parts in the folder, and for results in a file of before."""
        file = b"" if result is None else os.fsencode(result)
        self._require(self._library.ztbSweepFind(self._sweep, os.fsencode(folder), file))

    def notes(self) -> List[str]:
        """What the command tells of what was found: parameters that meet no column, and the first of
        the scenarios that are missing or have no solution."""
        scenarios = dict(self._options)["scenarios"]
        unmatched = self._library.ztbSweepUnmatched(self._sweep).decode("utf-8", "surrogateescape")
        lines = [
            f"{scenarios}: {name} has records that meet no column {name}_var of the model"
            for name in unmatched.split()
        ]
        status, solve, objective = ctypes.c_int(), ctypes.c_int(), ctypes.c_double()
        places = (ctypes.byref(status), ctypes.byref(solve), ctypes.byref(objective))
        unsolved = 0
        for number in range(self.scenario_count):
            found = self._library.ztbSweepOutcome(self._sweep, number, *places)
            unsolved += found != 2
            if found == 2 or unsolved > _SHOWN:
                continue
            text = "missing" if found == 0 else _native.status_text(status.value)
            if found == 1 and solve.value == _FAILED:
                reason = self._library.ztbSweepReason(self._sweep, number)
                text = "failed: " + reason.decode("utf-8", "surrogateescape") if reason else "failed"
            elif found == 1 and solve.value != _NORMAL:
                text += f", {_native.solve_status_text(solve.value)}"
            lines.append(f"scenario {self.scenario(number)}: {text}")
        if unsolved > _SHOWN:
            lines.append(f"{unsolved} scenarios without a solution, of which {_SHOWN} are shown")
        return lines

    def collect(self, out: Path) -> None:
        """Puts what was found together in one file."""
        self._require(self._library.ztbSweepCollect(self._sweep, os.fsencode(out)))

    def remove(self, folder: Path, of_all: bool = False) -> None:
        """Removes the files of this sweep, or of all, from the folder."""
        self._require(self._library.ztbSweepRemove(self._sweep, os.fsencode(folder), int(of_all)))

    def _pair(self, function: Any, chunk: int) -> Tuple[int, int]:
        first, second = ctypes.c_int(), ctypes.c_int()
        if not function(self._sweep, chunk, ctypes.byref(first), ctypes.byref(second)):
            raise IndexError(f"there is no chunk {chunk}")
        return first.value, second.value

    def _require(self, result: int) -> None:
        if not result:
            text = self._message()
            raise (DamagedFileError if DAMAGED.search(text) else Error)(text, "sweep")

    def _message(self) -> str:
        return str(self._library.ztbSweepMessage(self._sweep).decode("utf-8", "surrogateescape"))


#: Solve statuses of a solve that ended as it should, and of one that failed.
_NORMAL, _FAILED = 1, 13
#: Scenarios without a solution that are told by name.
_SHOWN = 20
#: How the library and the command tell of a file that is no whole one.
DAMAGED = re.compile(r"(^|: )File is (damaged|cut short): ")
