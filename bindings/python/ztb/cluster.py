"""Sweeps on a cluster of Dask: its workers solve chunks, this process hands them out and collects.

``python3 -m ztb.cluster`` is what ``ztb sweep --dask`` runs: it reads one object of JSON with
``address`` of the scheduler, ``options`` of the sweep, the ``folder`` of parts, whether it is
``shared`` by the workers, ``chunks`` as ranges, and ``program``, the path of the command; and writes
objects on lines, as ``progress`` is told them, or with ``note`` or ``error``.
"""

from __future__ import annotations

import importlib
import json
import os
import statistics
import subprocess
import sys
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
# Seconds between two times that progress is told where nothing is done, and those without a worker
# after which that is said.
_BEAT = 1.0
_ALONE = 10.0
# Chunks that workers have refused for good after which the sweep ends at once.
_MOST_REFUSED = 100
_LOOKED_AT = 100

_lock = threading.Lock()
# The sweep of this worker by its key, with the folder of its basis and of parts on their way.
_live: Dict[str, Tuple[Chunks, Any]] = {}


def solve_chunk(
    options: Options, key: str, chunk: int, folder: Optional[str], basis: bytes, program: str = ""
) -> Tuple[bytes, int]:
    """The task of a worker, which keeps the live model of one sweep for the chunks that follow. Gives
    the part, or nothing where it stands in ``folder``, and how many of its solves failed. With
    ``program``, the path of the command, the chunk is solved in a process of its own, which finds
    scenarios that end it."""
    with _lock:  # one solver at a time in a worker
        chunks, own = _live_sweep(options, key)
        if folder is not None:
            return b"", _solve_into(chunks, options, folder, chunk, program)
        if not os.path.exists(chunks.basis(own.name)):
            FilePath(chunks.basis(own.name)).write_bytes(basis)
        failed = _solve_into(chunks, options, own.name, chunk, program)
        part = FilePath(chunks.part(own.name, chunk))
        content = part.read_bytes()
        part.unlink()
        return content, failed


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


def _solve_into(chunks: Chunks, options: Options, folder: str, chunk: int, program: str) -> int:
    if not program:
        return chunks.solve(folder, chunk)
    command = [program, "sweep", dict(options)["model"], "--progress", "none"]
    command += ["--part", f"{chunk + 1}/{len(chunks)}", "--parts", folder]
    for name, value in options:
        if name != "model":
            command += [f"--{name}", value]
    run = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if not os.path.exists(chunks.part(folder, chunk)):
        raise Error(run.stderr.decode("utf-8", "replace").strip() or "the command left no part", "sweep")
    chunks.find(folder)
    return chunks.state(chunk)[1]


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
        self._lost = 0
        self._told = 0.0
        # Why chunks are given up.
        self._refused: Dict[int, Exception] = {}
        #: The dict that progress is told.
        self.state: Dict[str, Any] = {}

    def solve(self, pending: Sequence[int]) -> None:
        """Has these chunks solved, and leaves their parts in the folder. A chunk that all workers
        refuse is told by an error when the others are done."""
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
                    self._tell(_BEAT)
                    continue
                if self._receive(next(self._completed)):
                    following = next(waiting, None)
                    if following is not None:
                        self._hand_out(following)
        finally:
            self._client.cancel([future for future, _, _ in self._out.values()], force=True)
            self._out.clear()
        self._tell()
        if self._refused:
            self._raise_refusal()

    def _raise_refusal(self) -> None:
        chunk, error = min(self._refused.items())
        numbers = self.chunks.range(chunk)
        first = self.chunks.scenario(numbers.start)
        last = self.chunks.scenario(numbers.stop - 1)
        others = len(self._refused) - 1
        more = f" (and {others} other chunks)" if others else ""
        raise Error(f"scenarios {first} to {last}{more}: {error}", "sweep") from error

    def _hand_out(self, chunk: int, careful: bool = False, again: str = "") -> None:
        future = self._submit(chunk, careful, again)
        self._out[future.key] = (future, chunk, self._world.now())
        self._completed.add(future)

    def _receive(self, future: Any) -> bool:
        """Whether a chunk is through with this."""
        _, chunk, begun = self._out.pop(future.key)
        if chunk not in self._left:
            return False
        if future.status != "finished":
            return self._again(chunk, future)
        part, failed = future.result()
        self._take(chunk, part)
        self._left.discard(chunk)
        self._took.append(self._world.now() - begun)
        self._done += len(self.chunks.range(chunk))
        self._failures += failed
        self._tell()
        return True

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

    def _again(self, chunk: int, future: Any) -> bool:
        """A worker died under the chunk, again and again, or refused it; whether it is given up."""
        from distributed.scheduler import KilledWorker

        error = future.exception()
        self._lost += 1
        self._tries[chunk] = self._tries.get(chunk, 0) + 1
        if self._tries[chunk] <= TRIES:
            # The last try finds a scenario that keeps the others of its chunk from being solved.
            careful = isinstance(error, KilledWorker) or self._tries[chunk] == TRIES
            self._hand_out(chunk, careful=careful)
            return False
        self._left.discard(chunk)
        self._refused[chunk] = error
        if not self._took or len(self._refused) >= _MOST_REFUSED:
            self._raise_refusal()
        return True

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

    def _tell(self, after: float = 0.0) -> None:
        """Tells progress, unless that was done within so many seconds."""
        now = self._world.now()
        if self._progress is None or (after and now - self._told < after):
            return
        self._told = now
        rate = self._done / max(now - self._start, 1e-9)
        self.state = {
            "done": self._done,
            "count": self._count,
            "rate": rate,
            "seconds_left": (self._count - self._done) / rate if self._done else None,
            "failures": self._failures,
            "lost": self._lost,
            "workers": len(self._client.scheduler_info()["workers"]),
        }
        self._progress(self.state)


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


class _Answers:
    """Lines of JSON for the command, which started this process."""

    def __init__(self) -> None:
        self._began = time.monotonic()
        self._alone = False

    def tell(self, **what: Any) -> None:
        print(json.dumps(what), flush=True)

    def progress(self, state: Dict[str, Any]) -> None:
        self.tell(**state)
        if not state["workers"] and not self._alone and time.monotonic() - self._began > _ALONE:
            self._alone = True
            self.tell(note="the scheduler has no worker, one is waited for")


def _end_with(parent: int) -> None:
    """Ends this process with the one that started it, in whatever way that ends."""
    while os.getppid() == parent:
        time.sleep(0.5)
    os._exit(1)


def main() -> int:
    """Solves what standard input asks for; see the head of this file."""
    threading.Thread(target=_end_with, args=(os.getppid(),), daemon=True).start()
    answers = _Answers()
    request = json.load(sys.stdin)
    try:
        import distributed
    except ImportError as error:
        answers.tell(error=f"{error}; --dask needs Dask (Debian package python3-distributed)")
        return 1
    try:
        client: Any = distributed.Client(request["address"], timeout=10)
    except (OSError, ValueError) as error:
        text = str(error).split("\n", 1)[0] or type(error).__name__
        answers.tell(error=f"--dask {request['address']}: there is no scheduler: {text}")
        return 1
    try:
        options = [(name, value) for name, value in request["options"]]
        with client, Chunks(options) as chunks:
            run = Run(
                client, chunks, options, request["folder"], request["program"], request["shared"],
                answers.progress,
            )  # fmt: skip
            run.solve([chunk for first, end in request["chunks"] for chunk in range(first, end)])
    except KeyboardInterrupt:
        return 130
    except Error as error:
        answers.tell(error=error.text)
        return 1
    return 0


if __name__ == "__main__":
    # Tasks are found by the workers under the name of the package.
    sys.exit(importlib.import_module("ztb.cluster").main())
