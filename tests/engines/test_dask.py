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


@pytest.fixture
def one(inputs, tmp_path):
    """The bytes that one process gives."""
    ztb.sweep(**inputs, out=tmp_path / "one.rxf")
    return (tmp_path / "one.rxf").read_bytes()


@pytest.mark.parametrize("processes", [True, False])
def test_workers_of_several_threads_solve_one_chunk_at_a_time(inputs, one, tmp_path, processes):
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=4, processes=processes, dashboard_address=":0"
    ) as cluster, distributed.Client(cluster) as client:
        ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client)
    assert (tmp_path / "o.rxf").read_bytes() == one


def test_a_sweep_beside_another_of_the_same_inputs_has_parts_of_its_own(
    client, inputs, one, tmp_path
):
    # While the first holds its tasks a second one is done, whose parts are to come as bytes.
    nested = []

    def in_between(state):
        if state["done"] and not nested:
            nested.append("begun")
            ztb.sweep(**inputs, out=tmp_path / "second.rxf", client=client)
            nested.append("done")

    ztb.sweep(
        **inputs, out=tmp_path / "first.rxf", client=client, parts=tmp_path / "p", progress=in_between
    )
    assert nested == ["begun", "done"]
    assert (tmp_path / "second.rxf").read_bytes() == one
    assert (tmp_path / "first.rxf").read_bytes() == one


def test_a_second_sweep_into_one_result_is_refused(client, inputs, tmp_path):
    out = tmp_path / "o.rxf"
    told = []

    def in_between(state):
        if not told:
            with pytest.raises(ztb.Error) as refused:
                ztb.sweep(**inputs, out=out, client=client)
            told.append(str(refused.value))

    ztb.sweep(**inputs, out=out, client=client, progress=in_between)
    assert told == [f"{out}: another sweep is writing this result (process {os.getpid()})"]
    assert not list(tmp_path.glob(".*.lock"))


def test_an_input_that_changes_on_the_way_ends_the_sweep_without_result(client, inputs, tmp_path):
    def in_between(state):
        if state["done"] == state["count"]:
            inputs["model"].write_text(MODEL.replace("a(i1) <= 4", "a(i1) <= 2"))

    with pytest.raises(ztb.Error, match="o.rxf: another model file stood in its place while the sweep"):
        ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, progress=in_between)
    assert not (tmp_path / "o.rxf").exists()
    assert not (tmp_path / "o.rxf.parts").exists()


def test_what_a_sweep_of_other_inputs_left_is_not_gone_on_with(client, inputs, one, tmp_path):
    parts = tmp_path / "o.rxf.parts"
    ztb.sweep(**inputs, out=tmp_path / "other.rxf", client=client, parts=parts)
    inputs["report"] = []
    with pytest.raises(ztb.Error, match="is from a sweep with another --report; without --resume"):
        ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, resume=True)
    assert len(list(parts.glob("*.rxf"))) == 14
    # A result of before stays until it is replaced, and is in no way of parts that are there.
    inputs["report"] = ["a"]
    (tmp_path / "o.rxf").write_bytes(b"of before")
    ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, resume=True)
    assert (tmp_path / "o.rxf").read_bytes() == one
    inputs["report"] = []
    with pytest.raises(ztb.Error, match="o.rxf: is from a sweep with another --report"):
        ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, resume=True)
    assert (tmp_path / "o.rxf").read_bytes() == one


def test_a_damaged_part_is_a_damaged_file(client, inputs, tmp_path):
    parts = tmp_path / "p"
    ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, parts=parts)
    part = next(parts.glob("*-3-6.rxf"))
    part.write_bytes(part.read_bytes()[:-9])
    with pytest.raises(ztb.DamagedFileError, match="-3-6.rxf: .*remove this file"):
        ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, parts=parts, resume=True)


def test_a_folder_that_was_begun_here_is_collected_by_the_command(client, inputs, one, tmp_path):
    ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client, parts=tmp_path / "p")
    collect = Sweep(tmp_path, ["--collect", "--parts", "p"])
    collect("--out", "c.rxf")
    assert (tmp_path / "c.rxf").read_bytes() == one


def test_what_the_command_tells_of_a_sweep_stands_in_its_notes(client, inputs, tmp_path):
    with ztb.Database(inputs["scenarios"]) as db:
        for number in range(30):
            db["wanted"][f"s{number}",] = 1000.0
        db.write(inputs["scenarios"])
    told = ztb.sweep(**inputs, out=tmp_path / "one.rxf").notes
    assert told[0] == "scenario s0: infeasible"
    assert told[-1] == "30 scenarios without a solution, of which 20 are shown" and len(told) == 21
    assert ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client).notes == told


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


def leftovers(folder):
    """What workers keep of sweeps below a folder, by the process that has it."""
    return [path for path in folder.rglob("ztb-chunks-*") if path.is_dir()]


def test_what_a_killed_worker_leaves_is_removed_by_the_next_one(inputs, tmp_path):
    with DaskProcesses(tmp_path, 1) as cluster:
        with distributed.Client(cluster.address, timeout=60) as client:
            ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client)
            left = leftovers(tmp_path)
            assert len(left) == 1
            cluster.kill_worker()
            ztb.sweep(**inputs, out=tmp_path / "o.rxf", client=client)
            assert len(leftovers(tmp_path)) == 1 and leftovers(tmp_path) != left


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
    from ztb import chunks, tasks

    options = [("model", str(inputs["model"])), ("scenarios", str(inputs["scenarios"])), ("over", "s")]
    with chunks.Chunks(options) as own:
        assert len(own) == COUNT
    with pytest.raises(ztb.Error, match="the worker sees other files under the names of the sweep"):
        tasks.solve_chunk(options, "0123456789abcdef", 0, str(tmp_path), b"")


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
