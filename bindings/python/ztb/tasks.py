"""What a worker of a cluster does: it solves a chunk on the live model that it keeps of a sweep."""

from __future__ import annotations

import ctypes
import os
import signal
import subprocess
import tempfile
import threading
import time
from pathlib import Path as FilePath
from typing import Any, Dict, Optional, Tuple

from .chunks import Chunks, Options
from .errors import Error

_lock = threading.Lock()


class _Live:
    """The live model of one sweep in a worker, with folders for a basis and for parts on their way."""

    def __init__(self, options: Options, key: str) -> None:
        self.chunks = Chunks(options)
        self._folders: Dict[bytes, Any] = {}
        if self.chunks.key != key:
            self.close()
            raise Error("the worker sees other files under the names of the sweep", "sweep")

    def folder(self, basis: bytes) -> str:
        """The folder with this basis."""
        if basis not in self._folders:
            made = tempfile.TemporaryDirectory(prefix="ztb-chunks-", dir=_scratch())
            FilePath(self.chunks.basis(made.name)).write_bytes(basis)
            self._folders[basis] = made
        return str(self._folders[basis].name)

    def close(self) -> None:
        self.chunks.close()
        for folder in self._folders.values():
            folder.cleanup()


# The sweep of this worker by its key.
_live: Dict[str, _Live] = {}


def _scratch() -> Optional[str]:
    """The folder of the worker that this runs in. What is left there when the worker is killed is
    removed by the workers that start after it."""
    import distributed

    try:
        return str(distributed.get_worker().local_directory)
    except ValueError:
        return None


def given(basis: bytes) -> bytes:
    """The task that has the basis for those of the chunks."""
    return basis


def solve_chunk(
    options: Options, key: str, chunk: int, folder: Optional[str], basis: bytes, program: str = ""
) -> Tuple[bytes, int, float]:
    """The task of a worker, which keeps the live model of one sweep for the chunks that follow. Gives
    the part, or nothing where it stands in ``folder``, how many of its solves failed, and the seconds
    that it took. With ``program``, the path of the command, the chunk is solved in a process of its own, which finds
    scenarios that end it."""
    with _lock:  # one solver at a time in a process, however many threads the worker has
        begun = time.monotonic()
        live = _live_sweep(options, key)
        chunks = live.chunks
        if folder is not None:
            failed = _solve_into(chunks, options, folder, chunk, program)
            return b"", failed, time.monotonic() - begun
        own = live.folder(basis)
        failed = _solve_into(chunks, options, own, chunk, program)
        part = FilePath(chunks.part(own, chunk))
        content = part.read_bytes()
        part.unlink()
        return content, failed, time.monotonic() - begun


def _live_sweep(options: Options, key: str) -> _Live:
    if key not in _live:
        for other in _live.values():
            other.close()
        _live.clear()
        _live[key] = _Live(options, key)
    return _live[key]


# The system's function prctl, which a process that was just forked has no time to look for.
_prctl: Any = getattr(ctypes.CDLL(None), "prctl", None)
_SET_DEATH_SIGNAL = 1


def _die_with_worker() -> None:
    if _prctl is not None:
        _prctl(_SET_DEATH_SIGNAL, int(signal.SIGKILL))


def _solve_into(chunks: Chunks, options: Options, folder: str, chunk: int, program: str) -> int:
    if not program:
        return chunks.solve(folder, chunk)
    command = [program, "sweep", dict(options)["model"], "--progress", "none"]
    command += ["--part", f"{chunk + 1}/{len(chunks)}", "--parts", folder]
    for name, value in options:
        if name != "model":
            command += [f"--{name}", value]
    run = subprocess.run(
        command, stdin=subprocess.DEVNULL, capture_output=True, check=False, preexec_fn=_die_with_worker
    )
    if not os.path.exists(chunks.part(folder, chunk)):
        told = run.stderr.decode("utf-8", "replace").strip()
        if run.returncode < 0:
            told = f"{told}\n" if told else ""
            told += f"the process of the chunk was ended by signal {-run.returncode}"
        raise Error(told or "the process of the chunk left no part", "sweep")
    chunks.find(folder)
    return chunks.state(chunk)[1]
