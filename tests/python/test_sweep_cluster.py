"""Sweeps whose chunks the workers of a Dask cluster solve."""

import json
import os
import signal
import subprocess
import sys
from pathlib import Path

import dask
import distributed
import pandas as pd
import pytest

import ztb

# Items of one cost, of which any can meet what is wanted: which do depends on where a solver starts.
MODEL = """Minimize
 z: a(i1) + a(i2) + a(i3) + a(i4) + a(i5) + a(i6)
Subject To
 c: a(i1) + a(i2) + a(i3) + a(i4) + a(i5) + a(i6) - wanted_var >= 0
 d: a(i2) + a(i4) + a(i6) - 0.5 wanted_var <= 0
Bounds
 wanted_var = 3
 a(i1) <= 4
 a(i2) <= 3
 a(i3) <= 4
 a(i4) <= 3
 a(i5) <= 4
 a(i6) <= 3
End
"""
COUNT = 40


@pytest.fixture(scope="module")
def client():
    with dask.config.set({"distributed.scheduler.allowed-failures": 1}), distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50
    ) as cluster, distributed.Client(cluster) as client:
        yield client


@pytest.fixture
def inputs(tmp_path):
    model = tmp_path / "m.lp"
    model.write_text(MODEL)
    scenarios = tmp_path / "sc.rxf"
    with ztb.Database() as db:
        db.add_set("s").extend([f"s{n}" for n in range(COUNT)])
        wanted = pd.Series({f"s{n}": 1.0 + n * 5 % 9 for n in range(COUNT)})
        db.add_parameter("wanted", ["s"]).from_pandas(wanted)
        db.write(scenarios)
    return {"model": model, "scenarios": scenarios, "over": "s", "report": ["a"], "chunk": 3}


def test_workers_give_the_bytes_that_one_process_gives(client, inputs, tmp_path):
    ztb.sweep(**inputs, out=tmp_path / "one.rxf")
    told = []
    result = ztb.sweep(**inputs, out=tmp_path / "dask.rxf", client=client, progress=told.append)
    assert (tmp_path / "dask.rxf").read_bytes() == (tmp_path / "one.rxf").read_bytes()
    assert result.objective["s7"] == pytest.approx(1 + 35 % 9)
    assert told[-1]["done"] == told[-1]["count"] == COUNT
    assert told[-1]["workers"] == 2 and told[-1]["failures"] == 0
    json.dumps(told)
    assert not (tmp_path / "dask.rxf.parts").exists()
    # Parts on storage that all see stay there, and what is lost of them is solved again.
    parts = tmp_path / "parts"
    ztb.sweep(**inputs, out=tmp_path / "shared.rxf", client=client, parts=parts)
    files = sorted(parts.glob("*.rxf"))
    assert len(files) == 14
    (tmp_path / "shared.rxf").unlink()
    files[3].unlink()
    left = []
    ztb.sweep(
        **inputs, out=tmp_path / "shared.rxf", client=client, parts=parts, resume=True,
        progress=left.append,
    )  # fmt: skip
    assert left[-1]["count"] in (1, 3)
    assert (tmp_path / "shared.rxf").read_bytes() == (tmp_path / "one.rxf").read_bytes()


class Deadly(distributed.WorkerPlugin):
    """Has the solve of a chunk with a scenario end the worker process, also that of a worker that
    takes its place."""

    name = "deadly"

    def __init__(self, label):
        self.label = label

    def setup(self, worker):
        from ztb import chunks

        self.solve = plain = chunks.Chunks.solve
        label = self.label

        def solve(own, folder, chunk):
            if label in [own.scenario(number) for number in own.range(chunk)]:
                os.kill(os.getpid(), signal.SIGKILL)
            plain(own, folder, chunk)

        chunks.Chunks.solve = solve

    def teardown(self, worker):
        from ztb import chunks

        chunks.Chunks.solve = self.solve


def test_a_chunk_that_ends_its_workers_is_solved_in_a_process_of_its_own(client, inputs, tmp_path):
    ztb.sweep(**inputs, out=tmp_path / "one.rxf")
    told = []
    client.register_worker_plugin(Deadly("s7"))
    try:
        ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, progress=told.append)
    finally:
        client.unregister_worker_plugin("deadly")
    assert told[-1]["failures"] >= 1
    assert (tmp_path / "o.rxf").read_bytes() == (tmp_path / "one.rxf").read_bytes()


def test_workers_that_see_other_files_are_refused(client, inputs, tmp_path):
    from ztb import chunks, cluster

    options = [("model", str(inputs["model"])), ("scenarios", str(inputs["scenarios"])), ("over", "s")]
    with chunks.Chunks(options) as own:
        assert len(own) == COUNT
    with pytest.raises(ztb.Error, match="the worker sees other files under the names of the sweep"):
        cluster.solve_chunk(options, "0123456789abcdef", 0, str(tmp_path), b"")


def test_processes_of_a_scheduler_and_workers(inputs, tmp_path):
    environment = {**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)}
    file = tmp_path / "scheduler.json"
    started = []
    try:
        for arguments in (
            ["distributed.cli.dask_scheduler", "--port", "0", "--no-dashboard"],
            ["distributed.cli.dask_worker", "--nthreads", "1", "--no-nanny", "--no-dashboard"],
        ):
            started.append(
                subprocess.Popen(
                    [sys.executable, "-m", *arguments, "--scheduler-file", str(file)],
                    env=environment, cwd=tmp_path, stdout=subprocess.DEVNULL,
                    stderr=subprocess.DEVNULL,
                )  # fmt: skip
            )
        with distributed.Client(scheduler_file=str(file), timeout=60) as client:
            result = ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client)
        assert len(result) == COUNT
        assert result.objective["s1"] == pytest.approx(6)
    finally:
        for process in reversed(started):
            process.kill()
            process.wait()
    assert Path(result.path).exists()
