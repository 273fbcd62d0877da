"""Sweeps on a cluster of Dask: its workers solve chunks, this process hands them out and collects."""

from __future__ import annotations

import os
import statistics
import subprocess
import tempfile
import threading
import time
from pathlib import Path as FilePath
from typing import Any, Callable, Dict, Iterator, List, Optional, Sequence, Set, Tuple

from .chunks import Chunks
from .errors import Error

Options = Sequence[Tuple[str, str]]

#: Chunks that the scheduler knows of at once.
WINDOW = 2000
#: Times that a chunk whose solve was refused by a worker is handed out.
TRIES = 3
#: A chunk of the end is handed out once more when it takes so many times as long as others did.
STRAGGLES = 3.0

# Seconds between two looks at what has come back, and those that a chunk takes in any case before
# it is handed out twice; chunks that tell how long one takes.
_LOOK = 0.01
_LEAST = 2.0
_LOOKED_AT = 100

_lock = threading.Lock()
# The sweep of this worker by its key, with the folder of its basis and of parts on their way.
_live: Dict[str, Tuple[Chunks, Any]] = {}


def solve_chunk(
    options: Options, key: str, chunk: int, folder: Optional[str], basis: bytes, program: str = ""
) -> bytes:
    """The task of a worker, which keeps the live model of one sweep for the chunks that follow. Gives
    the part, or nothing where it stands in ``folder``. With ``program``, the path of the command, the
    chunk is solved in a process of its own, which finds scenarios that end it."""
    with _lock:  # one solver at a time in a worker
        chunks, own = _live_sweep(options, key)
        if folder is not None:
            _solve_into(chunks, options, folder, chunk, program)
            return b""
        if not os.path.exists(chunks.basis(own.name)):
            FilePath(chunks.basis(own.name)).write_bytes(basis)
        _solve_into(chunks, options, own.name, chunk, program)
        part = FilePath(chunks.part(own.name, chunk))
        content = part.read_bytes()
        part.unlink()
        return content


def _live_sweep(options: Options, key: str) -> Tuple[Chunks, Any]:
    if key not in _live:
        for other, folder in _live.values():
            other.close()
            folder.cleanup()
        _live.clear()
        chunks = Chunks(options)
        if chunks.key != key:
            chunks.close()
            raise Error("the worker sees other files under the names of the sweep", "sweep")
        _live[key] = chunks, tempfile.TemporaryDirectory(prefix="ztb-chunks-")
    return _live[key]


def _solve_into(
    chunks: Chunks, options: Options, folder: str, chunk: int, program: str
) -> None:
    if not program:
        chunks.solve(folder, chunk)
        return
    command = [program, "sweep", dict(options)["model"]]
    command += ["--part", f"{chunk + 1}/{len(chunks)}", "--parts", folder]
    for name, value in options:
        if name != "model":
            command += [f"--{name}", value]
    run = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if not os.path.exists(chunks.part(folder, chunk)):
        raise Error(run.stderr.decode("utf-8", "replace").strip() or "the command left no part", "sweep")


class World:
    """What a run sees of time and of tasks that are done."""

    def now(self) -> float:
        return time.monotonic()

    def rest(self, seconds: float) -> None:
        time.sleep(seconds)

    def completed(self) -> Any:
        """Tasks that are done, in the order in which they are: add, has_ready and next."""
        import distributed

        completed: Any = distributed.as_completed
        return completed()


class Run:
    """One sweep that a client has solved."""

    def __init__(
        self,
        client: Any,
        chunks: Any,
        options: Options,
        folder: str,
        program: str,
        shared: bool = False,
        progress: Optional[Callable[[Dict[str, Any]], None]] = None,
        window: int = WINDOW,
        world: Optional[World] = None,
    ) -> None:
        self._client = client
        self._options = [tuple(option) for option in options]
        self._folder = folder
        self._program = program
        self._shared = shared
        self._progress = progress
        self._window = window
        self._world = World() if world is None else world
        self.chunks = chunks
        self._basis = b""
        self._tries: Dict[int, int] = {}
        # Tasks that are handed out, with their chunks and since when, by their keys.
        self._out: Dict[str, Tuple[Any, int, float]] = {}
        self._left: Set[int] = set()
        self._completed: Any = None
        self._doubled: Set[int] = set()
        self._took: List[float] = []
        self._done = 0
        self._failures = 0

    def solve(self, pending: Sequence[int]) -> None:
        """Has these chunks solved, and leaves their parts in the folder."""
        if not pending:
            return
        self.chunks.prepare(self._folder)
        self._basis = FilePath(self.chunks.basis(self._folder)).read_bytes()
        self._start = self._world.now()
        self._count = sum(len(self.chunks.range(chunk)) for chunk in pending)
        waiting: Iterator[int] = iter(pending)
        self._left = set(pending)
        self._doubled = set()
        self._completed = self._world.completed()
        for _, chunk in zip(range(self._window), waiting):
            self._hand_out(chunk)
        try:
            while self._left:
                if not self._completed.has_ready():
                    self._world.rest(_LOOK)
                    self._double()
                    continue
                done = self._receive(next(self._completed))
                following = next(waiting, None) if done is not None else None
                if following is not None:
                    self._hand_out(following)
        finally:
            self._client.cancel([future for future, _, _ in self._out.values()], force=True)
            self._out.clear()

    def _hand_out(self, chunk: int, careful: bool = False, again: str = "") -> None:
        future = self._submit(chunk, careful, again)
        self._out[future.key] = (future, chunk, self._world.now())
        self._completed.add(future)

    def _receive(self, future: Any) -> Optional[int]:
        """The chunk that is done with this; nothing where none is."""
        _, chunk, begun = self._out.pop(future.key)
        if chunk not in self._left:
            return None
        if future.status != "finished":
            self._again(chunk, future)
            return None
        self._take(chunk, future.result())
        self._left.discard(chunk)
        self._took.append(self._world.now() - begun)
        self._tell(chunk)
        return chunk

    def _submit(self, chunk: int, careful: bool, again: str) -> Any:
        """A task of the key that stands for the chunk, so that a task that is there is found."""
        kind = again or ("careful" if careful else "chunk")
        tries = self._tries.get(chunk, 0)
        return self._client.submit(
            solve_chunk,
            self._options,
            self.chunks.key,
            chunk,
            self._folder if self._shared else None,
            self._basis,
            self._program if careful else "",
            key=f"ztb-{self.chunks.key}-{chunk}-{kind}{tries if tries else ''}",
            pure=True,
        )

    def _take(self, chunk: int, part: bytes) -> None:
        if self._shared:
            return
        file = self.chunks.part(self._folder, chunk)
        made = os.path.join(self._folder, "." + os.path.basename(file) + f".{os.getpid()}")
        with open(made, "wb") as out:
            out.write(part)
            out.flush()
            os.fsync(out.fileno())
        os.replace(made, file)

    def _again(self, chunk: int, future: Any) -> None:
        """A worker died under the chunk, again and again, or refused it."""
        from distributed.scheduler import KilledWorker

        error = future.exception()
        self._failures += 1
        self._tries[chunk] = self._tries.get(chunk, 0) + 1
        if self._tries[chunk] > TRIES:
            numbers = self.chunks.range(chunk)
            first = self.chunks.scenario(numbers.start)
            last = self.chunks.scenario(numbers.stop - 1)
            raise Error(f"scenarios {first} to {last}: {error}", "sweep") from error
        self._hand_out(chunk, careful=isinstance(error, KilledWorker))

    def _double(self) -> None:
        """Hands chunks of the end out twice that take far longer than the others did."""
        workers = len(self._client.scheduler_info()["workers"])
        if not self._took or len(self._out) >= 2 * max(1, workers):
            return
        usual = statistics.median(self._took[-_LOOKED_AT:])
        now = self._world.now()
        for _, chunk, begun in list(self._out.values()):
            if chunk in self._left and chunk not in self._doubled:
                if now - begun > max(_LEAST, STRAGGLES * usual):
                    self._doubled.add(chunk)
                    self._hand_out(chunk, again="twice")

    def _tell(self, chunk: int) -> None:
        self._done += len(self.chunks.range(chunk))
        if self._progress is None:
            return
        seconds = self._world.now() - self._start
        rate = self._done / max(seconds, 1e-9)
        self._progress(
            {
                "done": self._done,
                "count": self._count,
                "rate": rate,
                "seconds_left": (self._count - self._done) / rate,
                "failures": self._failures,
                "workers": len(self._client.scheduler_info()["workers"]),
            }
        )


def sweep(
    client: Any,
    options: Options,
    out: str,
    program: str,
    *,
    parts: Optional[str] = None,
    resume: bool = False,
    progress: Optional[Callable[[Dict[str, Any]], None]] = None,
) -> List[str]:
    """Solves a sweep with the workers of a client, and makes ``out``; what was told of it. ``parts``
    is a folder that all workers see; without it parts come back as bytes."""
    folder = parts if parts is not None else out + ".parts"
    os.makedirs(folder, exist_ok=True)
    chunks = Chunks(options)
    run = Run(client, chunks, options, folder, program, parts is not None, progress)
    try:
        result = None
        if resume and os.path.exists(out):
            result = out
        elif not resume:
            chunks.remove(folder, parts is None)
            os.makedirs(folder, exist_ok=True)
        chunks.find(folder, result)
        run.solve([chunk for chunk in range(len(chunks)) if any(chunks.state(chunk))])
        chunks.find(folder, result)
        chunks.collect(out)
        notes = chunks.unsolved()
        if parts is None:
            chunks.remove(folder, True)
        return notes
    finally:
        chunks.close()
