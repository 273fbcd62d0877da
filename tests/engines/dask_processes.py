"""A scheduler of Dask and its workers, each in a process of its own, as they are started on a cluster."""

import json
import os
import resource
import subprocess
import sys
import time


class DaskProcesses:
    """Started at the beginning of a ``with``, and ended with it."""

    def __init__(self, folder, workers, failures=3, seconds=None):
        """With ``seconds`` the system ends each worker, and each process that it starts, after so
        much processor time."""
        self.seconds = seconds
        self.folder = folder
        self.file = os.path.join(folder, "scheduler.json")
        self.count = workers
        self.failures = failures
        self.started = []
        self.workers = []

    @property
    def address(self):
        with open(self.file, encoding="utf-8") as text:
            return json.load(text)["address"]

    def __enter__(self):
        self._start("dask_scheduler", "--port", "0", "--no-dashboard")
        end = time.monotonic() + 60
        while not self._is_told():
            assert time.monotonic() < end and self.started[0].poll() is None
            time.sleep(0.05)
        for _ in range(self.count):
            self.start_worker()
        return self

    def __exit__(self, *error):
        for process in reversed(self.started):
            process.kill()
            process.wait()

    def _is_told(self):
        """Whether the scheduler has written its file, all of it."""
        try:
            return bool(self.address)
        except (OSError, ValueError):
            return False

    def start_worker(self):
        limit = None if self.seconds is None else (self.seconds, self.seconds)
        self.workers.append(
            self._start("dask_worker", "--nthreads", "1", "--no-nanny", "--no-dashboard", limit=limit)
        )

    def replace_dead_workers(self):
        for process in list(self.workers):
            if process.poll() is not None:
                self.workers.remove(process)
                self.start_worker()

    def kill_worker(self):
        """Kills the worker that has lived longest, and starts another."""
        process = self.workers.pop(0)
        process.kill()
        process.wait()
        self.start_worker()

    def _start(self, name, *words, limit=None):
        environment = {
            **os.environ,
            "PYTHONPATH": os.pathsep.join(sys.path),
            # What killed workers leave lies with the test.
            "TMPDIR": str(self.folder),
            "DASK_DISTRIBUTED__SCHEDULER__ALLOWED_FAILURES": str(self.failures),
        }
        process = subprocess.Popen(
            [sys.executable, "-m", f"distributed.cli.{name}", *words, "--scheduler-file", self.file],
            env=environment, cwd=self.folder, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            preexec_fn=limit and (lambda: resource.setrlimit(resource.RLIMIT_CPU, limit)),
        )  # fmt: skip
        self.started.append(process)
        return process
