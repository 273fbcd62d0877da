"""Sweeps whose chunks the workers of a Dask cluster solve."""

import json
import os
import signal
import sys

import dask
import distributed
import cluster_simulation
import pandas as pd
import pytest
from conftest import Sweep
from dask_processes import DaskProcesses

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
    assert told[-1]["workers"] == 2 and told[-1]["failures"] == told[-1]["lost"] == 0
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
            return plain(own, folder, chunk)

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
    assert told[-1]["lost"] >= 1
    assert (tmp_path / "o.rxf").read_bytes() == (tmp_path / "one.rxf").read_bytes()


def test_workers_that_see_other_files_are_refused(client, inputs, tmp_path):
    from ztb import chunks, cluster

    options = [("model", str(inputs["model"])), ("scenarios", str(inputs["scenarios"])), ("over", "s")]
    with chunks.Chunks(options) as own:
        assert len(own) == COUNT
    with pytest.raises(ztb.Error, match="the worker sees other files under the names of the sweep"):
        cluster.solve_chunk(options, "0123456789abcdef", 0, str(tmp_path), b"")


@pytest.fixture
def command(inputs, tmp_path):
    words = [inputs["model"], "--scenarios", inputs["scenarios"], "--over", "s", "--report", "a"]
    return Sweep(tmp_path, [*words, "--chunk", 3])


@pytest.fixture
def address(tmp_path):
    with DaskProcesses(tmp_path, 2) as cluster:
        yield cluster.address


def test_processes_of_a_scheduler_and_workers(inputs, address, tmp_path):
    with distributed.Client(address, timeout=60) as client:
        result = ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client)
    assert len(result) == COUNT
    assert result.objective["s1"] == pytest.approx(6)


def test_the_command_gives_the_bytes_of_one_process(command, address):
    command("--out", "one.rxf")
    output, errors = command("--out", "dask.rxf", "--dask", address, "--progress", "json")
    assert output.startswith("40 scenarios: 40 optimal in ")
    assert command.bytes("dask.rxf") == command.bytes("one.rxf")
    assert not (command.folder / "dask.rxf.parts").exists()
    told = [json.loads(line) for line in errors.splitlines()]
    assert told[-1]["done"] == told[-1]["count"] == COUNT
    assert set(told[-1]) == {
        "done", "count", "rate", "seconds_left", "failures", "lost", "workers",
    }  # fmt: skip
    # Parts in a folder that the workers see stay there, and the rest is solved.
    command("--out", "shared.rxf", "--dask", address, "--parts", "parts")
    parts = sorted((command.folder / "parts").glob("*.rxf"))
    assert len(parts) == 14
    parts[5].unlink()
    (command.folder / "shared.rxf").unlink()
    output, _ = command("--out", "shared.rxf", "--dask", address, "--parts", "parts", "--resume")
    assert output.startswith("40 scenarios, 37 of them kept: ")
    assert command.bytes("shared.rxf") == command.bytes("one.rxf")


def test_what_is_missing_for_dask_is_named(command, tmp_path):
    _, errors = command("--out", "o.rxf", "--dask", "tcp://127.0.0.1:1", expected=1)
    assert errors.startswith("ztb: --dask tcp://127.0.0.1:1: there is no scheduler: ")
    _, errors = command("--out", "o.rxf", "--dask", "nonsense://x", expected=1)
    assert errors.startswith("ztb: --dask nonsense://x: there is no scheduler: ")
    environment = {**os.environ, "ZTB_PYTHON": str(tmp_path / "python")}
    _, errors = command("--out", "o.rxf", "--dask", "tcp://h:1", expected=1, env=environment)
    assert errors == (
        f"ztb: {tmp_path}/python: there is no such program; --dask needs Python with the packages "
        "python3-ztb and python3-distributed (ZTB_PYTHON names another Python)\n"
    )
    # A Python that looks at nothing but its own library has no Dask.
    python = tmp_path / "bare"
    python.write_text(f'#!/bin/sh\nexec {sys.executable} -S "$@"\n')
    python.chmod(0o755)
    environment = {**os.environ, "ZTB_PYTHON": str(python)}
    _, errors = command("--out", "o.rxf", "--dask", "tcp://h:1", expected=1, env=environment)
    assert errors.startswith("ztb: ") and "No module named" in errors
    assert "needs " in errors and "(" in errors


@pytest.mark.parametrize("losses", [0.01, 0.1])
@pytest.mark.parametrize("workers", [10, 100, 1000])
def test_each_chunk_is_taken_once_on_a_cluster_that_is_played(workers, losses):
    efficiency, taken = cluster_simulation.simulate(workers, losses)
    assert sorted(taken) == list(range(workers * cluster_simulation.CHUNKS_A_WORKER))
    assert efficiency > 0.6
