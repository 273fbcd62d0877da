#!/usr/bin/env python3
"""How a sweep goes on clusters of up to a thousand workers that are lost: the rules of ztb.cluster
(windows, retries, stragglers) under a clock and a scheduler that are played, from a seed.

    cluster_simulation.py [WORKERS]...

Prints the efficiency for each number of workers at losses of 1 % and 10 %, on average over some
seeds: the time that solving takes without any loss, over the time that the workers were there.
"""

import asyncio
import heapq
import itertools
import os
import random
import statistics
import sys
from collections import Counter, deque

from distributed.scheduler import KilledWorker

from ztb import cluster

CHUNKS_A_WORKER = 40
SCENARIOS = 10  # of a chunk
SECONDS = 60.0  # of a chunk, half to one and a half times
SLOW = (0.01, 8.0)  # so many chunks take so many times as long where they are solved first
RESTART = 30.0
SEEDS = range(1, 11)
DEATHS = 3  # under a chunk, that the scheduler allows


class Chunks:
    key = "0123456789abcdef"

    def __init__(self, count):
        self.count = count

    def prepare(self, folder):
        pass

    def basis(self, folder):
        return os.devnull

    def range(self, chunk):
        return range(chunk * SCENARIOS, (chunk + 1) * SCENARIOS)

    def scenario(self, number):
        return f"s{number}"


class Future:
    def __init__(self, key, chunk, careful):
        self.key, self.chunk, self.careful = key, chunk, careful
        self.status, self.deaths, self.failure = "pending", 0, None
        self.took = 0.0

    def exception(self):
        return self.failure


class Cluster(cluster.World):
    """Client, scheduler, workers, and the clock of all."""

    def __init__(self, workers, losses, seed):
        self.random = random.Random(seed)
        self.losses = losses
        self.workers = workers
        self.idle = deque(f"worker {number}" for number in range(workers))
        self.at_work = {}  # the task of each worker that has one
        self.time = 0.0
        self.events = []  # time, number, what happens then
        self.queue = deque()
        self.ready = deque()
        self.begun = Counter()
        self.takes = {}
        self.numbers = itertools.count()

    # What a run asks a client.
    def submit(self, task, options, key_of_sweep, chunk, *more, key, **other):
        future = Future(key, chunk, careful=bool(more[-1]))
        self.queue.append(future)
        self.start()
        return future

    def cancel(self, futures):
        for future in futures:
            future.status = "cancelled"
            if future in self.queue:
                self.queue.remove(future)

    def processing(self):
        keys = {worker: (future.key,) for worker, future in self.at_work.items()}
        return {**{worker: () for worker in self.idle}, **keys}

    def scheduler_info(self):
        return {
            "workers": {f"worker {n}": {"last_seen": self.time} for n in range(self.workers)}
        }

    # What it sees of the world.
    def now(self):
        return self.time

    def rest(self, seconds):
        # No rule looks closer than at a second.
        until = self.time + 1.0
        if self.events and self.events[0][0] <= until:
            until, _, happens = heapq.heappop(self.events)
            happens()
        self.time = max(self.time, until)
        self.start()

    def completed(self):
        return self

    def add(self, future):
        pass

    def has_ready(self):
        return bool(self.ready)

    def __next__(self):
        future = self.ready.popleft()
        return future, (b"", 0, future.took)

    # The scheduler and its workers.
    def at(self, time, happens):
        heapq.heappush(self.events, (time, next(self.numbers), happens))

    def usual(self, chunk):
        return self.takes.setdefault(chunk, SECONDS * self.random.uniform(0.5, 1.5))

    def start(self):
        while self.idle and self.queue:
            future = self.queue.popleft()
            worker = self.idle.popleft()
            self.at_work[worker] = future
            takes = self.usual(future.chunk)
            if self.begun[future.chunk] == 0 and self.random.random() < SLOW[0]:
                takes *= SLOW[1]
            self.begun[future.chunk] += 1
            if self.random.random() < self.losses:
                lost = self.time + takes * self.random.random()
                self.at(lost, lambda worker=worker: self.lose(worker))
            else:
                future.took = takes
                self.at(self.time + takes, lambda worker=worker: self.finish(worker))

    def finish(self, worker):
        future = self.at_work.pop(worker)
        self.idle.append(worker)
        if future.status != "cancelled":
            future.status = "finished"
            self.ready.append(future)

    def lose(self, worker):
        future = self.at_work.pop(worker)
        self.at(self.time + RESTART, lambda: self.idle.append(worker))
        if future.status == "cancelled":
            return
        future.deaths += 1
        if future.deaths <= DEATHS:
            self.queue.appendleft(future)
        else:
            future.status, future.failure = "error", KilledWorker(future.key, "worker", DEATHS)
            self.ready.append(future)


class Drops(Cluster):
    """A cluster that drops the first result of every tenth chunk, and leaves the task done."""

    def __init__(self, *settings):
        super().__init__(*settings)
        self.dropped = set()

    def __next__(self):
        future, result = super().__next__()
        if future.chunk % 10 == 0 and future.chunk not in self.dropped:
            self.dropped.add(future.chunk)
            return future, asyncio.CancelledError(future.key)
        return future, result


class StandsStill(Cluster):
    """A cluster whose worker stops behind a chunk near the end, whose result it has not sent."""

    STOPPED_BEHIND = 395
    still = None

    def finish(self, worker):
        if self.still is None and self.at_work[worker].chunk == self.STOPPED_BEHIND:
            self.still = (worker, self.time)
            self.at_work.pop(worker).status = "finished"
        else:
            super().finish(worker)

    def processing(self):
        known = super().processing()
        return known if self.still is None else {**known, self.still[0]: ()}

    def scheduler_info(self):
        told = super().scheduler_info()
        if self.still is not None:
            told["workers"][self.still[0]]["last_seen"] = self.still[1]
        return told

    def rest(self, seconds):
        assert self.time < 1e5, "the sweep does not end"
        super().rest(seconds)


class Run(cluster.Run):
    """Keeps which chunks were taken."""

    def _take(self, chunk, part):
        self.taken.append(chunk)


def simulate(workers, losses, seed=1, kind=Cluster):
    """The efficiency, and the chunks in the order in which their results were taken."""
    played = kind(workers, losses, seed)
    count = workers * CHUNKS_A_WORKER
    run = Run(played, Chunks(count), [], "", "ztb", True, None, cluster.WINDOW, played)
    run.taken = []
    run.solve(range(count))
    ideal = sum(played.usual(chunk) for chunk in range(count))
    return ideal / (workers * played.time), run.taken


def main():
    print("workers  losses of 1 %  losses of 10 %")
    for workers in [int(word) for word in sys.argv[1:]] or [10, 100, 1000]:
        found = [
            statistics.mean(simulate(workers, losses, seed)[0] for seed in SEEDS)
            for losses in (0.01, 0.1)
        ]
        print(f"{workers:>7}  {found[0]:>13.2f}  {found[1]:>14.2f}")


if __name__ == "__main__":
    main()
