"""Sweeps on a cluster of Dask: its workers solve chunks, this process hands them out and collects.

``python3 -m ztb.cluster`` is what ``ztb sweep --dask`` runs: it reads one object of JSON with
``address`` of the scheduler, ``options`` of the sweep, the ``folder`` of parts, whether it is
``shared`` by the workers, ``chunks`` as ranges, and ``program``, the path of the command; and writes
objects on lines, as ``progress`` is told them, or with ``note`` or ``error``.
"""

from __future__ import annotations

import hashlib
import json
import os
import statistics
import sys
import threading
import time
from pathlib import Path as FilePath
from typing import Any, Callable, Dict, Iterator, List, Optional, Sequence, Set, Tuple

from .chunks import Chunks, Options
from .errors import Error
from .tasks import given, solve_chunk

#: Chunks that the scheduler knows of at once.
WINDOW = 2000
#: Times that a chunk whose solve was refused by a worker is handed out.
TRIES = 3
#: The chunks of a worker are handed out once more at the end when it has finished none for so many
#: times as long as a chunk takes.
STRAGGLES = 3.0

# Seconds between two looks at what has come back, and those that a worker has in any case before
# its chunks are handed out twice; chunks that tell how long one takes.
_LOOK = 0.01
_LEAST = 2.0
# Seconds between two times that progress is told where nothing is done, and those without a worker
# after which that is said.
_BEAT = 1.0
_ALONE = 10.0
# Chunks that workers have refused for good after which the sweep ends at once.
_MOST_REFUSED = 20
_LOOKED_AT = 100
# Seconds without a word after which a worker is given nothing a second time, and those that a result
# may take from its worker to here; how often a chunk is handed out again.
_SILENT = 10.0
_ON_THE_WAY = 15.0
_MOST_AGAIN = 5
# Bytes of a basis that go with each chunk; a larger one the scheduler has once.
_SMALL = 16384


class World:
    """What a run sees of time and of tasks that are done."""

    def now(self) -> float:
        return time.monotonic()

    def rest(self, seconds: float) -> None:
        time.sleep(seconds)

    def completed(self) -> Any:
        """Tasks that are done, with their results, in the order in which these come: add, has_ready
        and next. A worker that stands still keeps back those that lie with it, and no others."""
        import distributed

        completed: Any = distributed.as_completed
        return completed(with_results=True, raise_errors=False)


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
        # The basis, the task that has it where it is large, and digits for it and the place of parts.
        self._basis = b""
        self._basis_task: Any = None
        self._place = ""
        self._tries: Dict[int, int] = {}
        # Tasks that are handed out, with their chunks, by their keys.
        self._out: Dict[str, Tuple[Any, int]] = {}
        self._left: Set[int] = set()
        self._completed: Any = None
        # How often chunks were handed out twice.
        self._doubled: Dict[int, int] = {}
        self._all_out = False
        # What workers were at when they were looked at, and since when.
        self._seen: Dict[str, Tuple[Set[str], float]] = {}
        # Tasks that are done and whose results are not here, and since when.
        self._lying: Dict[str, float] = {}
        self._looked = 0.0
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
        # Tasks of one key give one part: with the same basis, and in the same place.
        place = self._basis + os.fsencode(self._folder if self._shared else "")
        self._place = hashlib.sha256(place).hexdigest()[:8]
        if not self._shared and len(self._basis) > _SMALL:
            key = f"ztb-{self.chunks.key}-{self._place}-basis"
            self._basis_task = self._client.submit(given, self._basis, key=key, pure=True)
        self._start = self._world.now()
        self._count = sum(len(self.chunks.range(chunk)) for chunk in pending)
        waiting: Iterator[int] = iter(pending)
        self._left = set(pending)
        self._doubled = {}
        self._all_out = len(pending) <= self._window
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
                if self._receive(*next(self._completed)):
                    following = next(waiting, None)
                    self._all_out = following is None
                    if following is not None:
                        self._hand_out(following)
        finally:
            self._client.cancel([future for future, _ in self._out.values()])
            self._out.clear()
            self._basis_task = None
        self._tell()
        if self._refused:
            self._raise_refusal()

    @property
    def has_solved(self) -> bool:
        return bool(self._took)

    def _raise_refusal(self) -> None:
        chunk, error = min(self._refused.items())
        numbers = self.chunks.range(chunk)
        first = self.chunks.scenario(numbers.start)
        last = self.chunks.scenario(numbers.stop - 1)
        others = len(self._refused) - 1
        more = f" (and {others} other chunks)" if others else ""
        raise Error(f"scenarios {first} to {last}{more}: {error}", "sweep") from error

    def _hand_out(
        self, chunk: int, careful: bool = False, again: str = "", workers: Sequence[str] = ()
    ) -> None:
        future = self._submit(chunk, careful, again, workers)
        self._out[future.key] = (future, chunk)
        self._completed.add(future)

    def _receive(self, future: Any, result: Any) -> bool:
        """Whether a chunk is through with this."""
        _, chunk = self._out.pop(future.key)
        if chunk not in self._left:
            return False
        # A result that was dropped on its way is the reason in its place.
        if future.status != "finished" or isinstance(result, BaseException):
            return self._again(chunk, future)
        part, failed, seconds = result
        self._take(chunk, part)
        self._left.discard(chunk)
        self._took.append(seconds)
        if chunk in self._doubled:
            self._client.cancel([other for other, of in self._out.values() if of == chunk])
        self._done += len(self.chunks.range(chunk))
        self._failures += failed
        self._tell()
        return True

    def _submit(self, chunk: int, careful: bool, again: str, workers: Sequence[str]) -> Any:
        """A task of the key that stands for the chunk, so that a task that is there is found."""
        kind = again or ("careful" if careful else "chunk")
        tries = self._tries.get(chunk, 0)
        # What is handed out again waits for nothing that a worker has to give.
        basis = self._basis if again or tries or self._basis_task is None else self._basis_task
        return self._client.submit(
            solve_chunk,
            self._options,
            self.chunks.key,
            chunk,
            self._folder if self._shared else None,
            b"" if self._shared else basis,
            self._program if careful else "",
            key=f"ztb-{self.chunks.key}-{self._place}-{chunk}-{kind}{tries if tries else ''}",
            pure=True,
            workers=list(workers) or None,
            allow_other_workers=bool(workers),
        )

    def _take(self, chunk: int, part: bytes) -> None:
        if self._shared:
            return
        file = self.chunks.part(self._folder, chunk)
        made = os.path.join(self._folder, "." + os.path.basename(file) + f".{os.getpid()}")
        try:
            with open(made, "wb") as out:
                out.write(part)
                out.flush()
                os.fsync(out.fileno())
            os.replace(made, file)
        except OSError as error:
            FilePath(made).unlink(missing_ok=True)
            raise Error(f"{file}: cannot be written: {error.strerror}", "sweep") from error

    def _again(self, chunk: int, future: Any) -> bool:
        """A worker died under the chunk, again and again, or refused it; whether it is given up."""
        from distributed.scheduler import KilledWorker

        if future.status == "cancelled":
            error: Exception = Error("the scheduler has dropped it", "sweep")
        else:
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
        """When nothing is left to be handed out and some workers are idle, hands the chunks out twice
        of those that have finished none for far longer than one takes, and those whose results stay
        with their workers."""
        now = self._world.now()
        if not self._all_out or not self._took or now - self._looked < _BEAT:
            return
        self._looked = now
        processing = {worker: set(keys) for worker, keys in self._client.processing().items()}
        before, self._seen = self._seen, {}
        for worker, keys in processing.items():
            known = before.get(worker)
            self._seen[worker] = known if known is not None and known[0] == keys else (keys, now)
        done = {key for key, (future, _) in self._out.items() if future.status == "finished"}
        self._lying = {key: self._lying.get(key, now) for key in done}
        if all(processing.values()):
            return
        patience = max(_LEAST, STRAGGLES * statistics.median(self._took[-_LOOKED_AT:]))
        slow = {w for w, (keys, since) in self._seen.items() if keys and now - since > patience}
        stuck = {key for worker in slow for key in processing[worker]}
        stuck |= {
            key for key, since in self._lying.items() if now - since > max(patience, _ON_THE_WAY)
        }
        if not stuck:
            return
        away = slow | self._silent()
        quick = [worker for worker in processing if worker not in away]
        free = {chunk for key, (_, chunk) in self._out.items() if key not in stuck}
        for chunk in sorted({self._out[key][1] for key in stuck if key in self._out}):
            times = self._doubled.get(chunk, 0)
            if chunk in self._left and chunk not in free and times < _MOST_AGAIN:
                self._doubled[chunk] = times + 1
                self._hand_out(chunk, again=f"twice{times or ''}", workers=quick)

    def _silent(self) -> Set[str]:
        """Workers that the scheduler has not heard of for long; idle ones tell it every second or so."""
        workers = self._client.scheduler_info()["workers"]
        heard = {worker: float(told["last_seen"]) for worker, told in workers.items()}
        latest = max(heard.values(), default=0.0)
        return {worker for worker, seen in heard.items() if latest - seen > _SILENT}

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
    chunks = Chunks(options)
    run = Run(client, chunks, options, folder, program, parts is not None, progress)
    try:
        chunks.lock(out)
        result = _kept(chunks, folder, out, parts is None) if resume else None
        if not resume:
            chunks.remove(folder, parts is None)
        pending = [chunk for chunk in range(len(chunks)) if any(chunks.state(chunk))]
        if pending:
            chunks.save(folder)
        try:
            run.solve(pending)
        except Error:
            _require_same_inputs(chunks, folder, out, parts is None)
            if parts is None and not run.has_solved:
                chunks.remove(folder)
            raise
        _require_same_inputs(chunks, folder, out, parts is None)
        chunks.find(folder, result)
        if result is None or os.path.exists(folder):
            chunks.collect(out)
        notes = chunks.notes()
        if parts is None:
            chunks.remove(folder, True)
        return notes
    finally:
        chunks.close()


def _require_same_inputs(chunks: Chunks, folder: str, out: str, is_own: bool) -> None:
    difference = chunks.difference()
    if not difference:
        return
    if is_own:
        chunks.remove(folder)
    raise Error(
        f"{out}: {difference} stood in its place while the sweep ran; what this run solved is dropped",
        "sweep",
    )


def _kept(chunks: Chunks, folder: str, out: str, is_own: bool) -> Optional[str]:
    """Finds what an interrupted sweep has left in the folder; the result where it is of this one."""
    foreign = chunks.foreign_part(folder) if is_own else ""
    if foreign:
        raise Error(foreign, "sweep")
    if os.path.exists(out):
        try:
            chunks.find(folder, out)
            return out
        except Error:
            # What the interrupted sweep was to replace, when that has left parts.
            if not os.path.exists(folder):
                raise
    chunks.find(folder)
    return None


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
    sys.exit(main())
