"""A hundred thousand scenarios of the diet, by workers that die, a client that is lost and a disk that
fills up: nothing is lost, nothing stands there twice, and what fails is named."""

import contextlib
import re
import shutil
import signal
import subprocess
import threading
import time

import distributed
import numpy as np
import pandas as pd
import pytest
from conftest import PROJECT, Sweep
from dask_processes import DaskProcesses
from test_slurm import hard_model, make

import ztb

COUNT = 100_000
KILL = signal.SIGKILL.value
#: The scenario whose data no solver takes.
BAD = "s77777"


@pytest.fixture(scope="module")
def diet(tmp_path_factory):
    """The sweep, solved by one process as `one.rxf`."""
    folder = tmp_path_factory.mktemp("diet")
    shutil.copy(PROJECT / "examples" / "diet" / "diet.lp", folder)
    labels = [f"s{number}" for number in range(COUNT)]
    with ztb.Database() as db:
        db.add_set("s").extend(labels)
        calories = pd.Series(3 + 0.5 * np.sin(np.arange(COUNT)), index=labels)
        calories[BAD] = 1e305
        calories.index = pd.MultiIndex.from_product([labels, ["calories_1000kcal"]])
        db.add_parameter("allowance", ["s", "*"]).from_pandas(calories)
        db.write(folder / "sc.rxf")
    words = ["diet.lp", "--scenarios", "sc.rxf", "--over", "s", "--chunk", 500]
    sweep = Sweep(folder, words)
    _, errors = sweep("--out", "one.rxf", expected=1)
    assert errors.count("\n") == 1 and errors.startswith(f"ztb: scenario {BAD}: failed: Bad value ")
    return sweep


def expect_same(sweep, file):
    """Number for number what one process gave, in which all but one scenario have an objective."""
    assert sweep.bytes(file) == sweep.bytes("one.rxf")
    with ztb.Database(sweep.folder / file) as db:
        assert len(db["sweep_status"]) == COUNT
        assert len(db["sweep_objective"]) == COUNT - 1
        # Calories bind: no two scenarios cost the same but for rounding.
        assert len(set(db["sweep_objective"].values())) > COUNT * 0.99


def expect_failure_named(process, errors):
    assert process.returncode == 1, errors
    assert f"ztb: scenario {BAD}: failed: Bad value " in errors


def wait_for_parts(folder, count, process):
    end = time.monotonic() + 120
    while len(list(folder.glob("*.rxf"))) < count:
        assert time.monotonic() < end and process.poll() is None
        time.sleep(0.02)


@contextlib.contextmanager
def meanwhile(seconds, act, times=10**9):
    """Does something again and again, so many seconds apart and at most so often."""
    ended = threading.Event()

    def repeat():
        for _ in range(times):
            if ended.wait(seconds):
                break
            act()

    thread = threading.Thread(target=repeat)
    thread.start()
    try:
        yield
    finally:
        ended.set()
        thread.join()


@pytest.mark.parametrize("kills", [False, True])
def test_four_workers_of_dask_give_what_one_process_gives(diet, kills, tmp_path):
    with DaskProcesses(tmp_path, 4, failures=10) as cluster:
        process = diet.start("--out", "dask.rxf", "--dask", cluster.address)
        try:
            with meanwhile(1, cluster.kill_worker, 20) if kills else contextlib.nullcontext():
                _, errors = process.communicate(timeout=240)
        finally:
            process.kill()
        expect_failure_named(process, errors)
    expect_same(diet, "dask.rxf")


@pytest.mark.parametrize("ending", [signal.SIGKILL, signal.SIGTERM])
def test_a_client_that_is_ended_is_followed_by_another(diet, tmp_path, ending):
    with DaskProcesses(tmp_path, 2) as cluster:
        first = diet.start("--out", "again.rxf", "--dask", cluster.address)
        parts = diet.folder / "again.rxf.parts"
        wait_for_parts(parts, 20, first)
        first.send_signal(ending)
        _, errors = first.communicate(timeout=60)
        if ending == signal.SIGTERM:
            assert first.returncode == 1
            assert "ztb: was asked to end; " in errors and "stands in again.rxf.parts" in errors
        kept = len(list(parts.glob("*.rxf")))
        second = diet.start("--out", "again.rxf", "--dask", cluster.address, "--resume")
        output, errors = second.communicate(timeout=240)
        expect_failure_named(second, errors)
        assert output.startswith(f"100000 scenarios, {kept * 500} of them kept: ") or kept < 200
    expect_same(diet, "again.rxf")


def test_chunks_of_a_worker_that_stands_still_are_handed_out_twice(diet, tmp_path):
    with DaskProcesses(tmp_path, 2) as cluster:
        process = diet.start("--out", "stopped.rxf", "--dask", cluster.address)
        try:
            wait_for_parts(diet.folder / "stopped.rxf.parts", 5, process)
            # It holds a chunk or will be given one, and the scheduler waits minutes for its word.
            still = cluster.workers[0]
            still.send_signal(signal.SIGSTOP)
            _, errors = process.communicate(timeout=200)
        finally:
            process.kill()
        expect_failure_named(process, errors)
        with distributed.Client(cluster.address, timeout=60) as client:
            keys = client.run_on_scheduler(
                lambda dask_scheduler: {row[0] for row in dask_scheduler.transition_log}
            )
        assert any("-twice" in key for key in keys)
        assert still.poll() is None
    expect_same(diet, "stopped.rxf")


@pytest.fixture
def small_disk(tmp_path):
    disk = tmp_path / "disk"
    disk.mkdir()
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k", "none", str(disk)], check=True)
    yield disk
    subprocess.run(["umount", str(disk)], check=True)


def test_a_full_disk_loses_nothing(diet, small_disk):
    parts = small_disk / "parts"
    _, errors = diet("--out", "full.rxf", "--parts", parts, "--jobs", 2, expected=1)
    assert errors.startswith(f"ztb: 1 RXF Error(s). First Error: Disk full: {parts}/")
    assert not (diet.folder / "full.rxf").exists()
    kept = list(parts.glob("*.rxf"))
    assert kept
    # What was published is whole, and a run with more room goes on from it.
    shutil.copytree(parts, diet.folder / "moved")
    output, errors = diet(
        "--out", "full.rxf", "--parts", "moved", "--jobs", 2, "--resume", expected=1
    )
    assert " of them kept: " in output
    assert f"ztb: scenario {BAD}: failed: Bad value " in errors
    expect_same(diet, "full.rxf")


def test_a_full_disk_of_workers_of_dask_loses_nothing(diet, small_disk, tmp_path):
    parts = small_disk / "parts"
    with DaskProcesses(tmp_path, 2) as cluster:
        # Where the parts come back to is full.
        _, errors = diet("--out", small_disk / "o.rxf", "--dask", cluster.address, expected=1)
        assert re.fullmatch(rf"ztb: {small_disk}/o.rxf.parts/\S+: cannot be written: No space .*\n", errors)
        shutil.rmtree(small_disk / "o.rxf.parts")
        words = ["--out", "filled.rxf", "--dask", cluster.address]
        _, errors = diet(*words, "--parts", parts, expected=1)
        # The chunk that all workers gave back is told by its first and last scenario.
        found = re.match(r"ztb: scenarios s(\d+) to s(\d+)( \(and \d+ other chunks?\))?: ", errors)
        assert int(found[2]) == int(found[1]) + 499
        assert "Disk full: " in errors or "No space left on device" in errors
        assert not (diet.folder / "filled.rxf").exists()
        assert list(parts.glob("*.rxf"))
        shutil.copytree(parts, diet.folder / "carried")
        output, errors = diet(
            *words, "--parts", diet.folder / "carried", "--resume", expected=1
        )
    assert " of them kept: " in output
    assert f"ztb: scenario {BAD}: failed: Bad value " in errors
    expect_same(diet, "filled.rxf")


@pytest.fixture
def endless(tmp_path):
    half = []
    model = hard_model(6, half)
    make(tmp_path, model, {f"s{n}": half if n == 3 else [0.0] * 6 for n in range(1, 7)})
    return Sweep(tmp_path, ["m.lp", "--scenarios", "sc.rxf", "--over", "s", "--solver", "glpk"])


def test_a_scenario_that_ends_its_workers_is_named_and_the_rest_solved(endless, tmp_path):
    # Each process may use a few seconds of processor time and is ended by the system then.
    limited = tmp_path / "limited"
    limited.write_text(f"#!/bin/sh\nulimit -t 3\nexec {Sweep.PROGRAM} \"$@\"\n")
    limited.chmod(0o755)
    _, errors = endless("--out", "o.rxf", program=str(limited), expected=1)
    assert f"ztb: scenario s3: failed: its worker process was ended by signal {KILL}" in errors
    with ztb.Database(tmp_path / "o.rxf") as db:
        assert len(db["sweep_objective"]) == 5 and len(db["sweep_status"]) == 6
    # A task of a batch system is such a process, too.
    endless("--part", "1/1", "--parts", "p", program=str(limited), expected=1)
    _, errors = endless("--collect", "--parts", "p", "--out", "c.rxf", expected=1)
    assert errors == f"ztb: scenario s3: failed: its worker process was ended by signal {KILL}\n"
    assert endless.bytes("c.rxf") == endless.bytes("o.rxf")


@pytest.mark.parametrize("door", ["command", "python"])
def test_a_scenario_that_ends_workers_of_dask_is_named_and_the_rest_solved(
    endless, tmp_path, door
):
    with DaskProcesses(tmp_path, 2, failures=1, seconds=5) as cluster:
        with meanwhile(0.2, cluster.replace_dead_workers):
            if door == "command":
                words = ["--out", "o.rxf", "--dask", cluster.address, "--chunk", 2]
                _, errors = endless(*words, expected=1)
            else:
                with distributed.Client(cluster.address, timeout=60) as client:
                    errors = ztb.sweep(
                        tmp_path / "m.lp", tmp_path / "sc.rxf", "s", solver="glpk", chunk=2,
                        out=tmp_path / "o.rxf", client=client,
                    ).notes[-1]  # fmt: skip
    assert f"scenario s3: failed: its worker process was ended by signal {KILL}" in errors
    with ztb.Database(tmp_path / "o.rxf") as db:
        assert len(db["sweep_objective"]) == 5 and len(db["sweep_status"]) == 6


def test_a_scenario_that_runs_into_its_time_limit_is_named_and_the_rest_solved(endless, tmp_path):
    with DaskProcesses(tmp_path, 2) as cluster:
        _, errors = endless(
            "--out", "o.rxf", "--dask", cluster.address, "--time-limit", 1, "--chunk", 2, expected=1
        )
    assert errors.startswith("ztb: scenario s3: ") and errors.count("\n") == 1
    with ztb.Database(tmp_path / "o.rxf") as db:
        assert len(db["sweep_objective"]) == 5 and len(db["sweep_status"]) == 6
