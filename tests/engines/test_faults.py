"""A hundred thousand scenarios of the diet, by workers that die, a client that is lost and a disk that
fills up: nothing is lost, nothing stands there twice, and what fails is named."""

import contextlib
import shutil
import signal
import subprocess
import threading
import time

import numpy as np
import pandas as pd
import pytest
from conftest import PROJECT, Sweep
from dask_processes import DaskProcesses
from test_slurm import hard_model, make

import ztb

COUNT = 100_000
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
        calories[BAD] = ztb.NA
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


@contextlib.contextmanager
def meanwhile(seconds, act):
    """Does something again and again, so many seconds apart."""
    ended = threading.Event()

    def repeat():
        while not ended.wait(seconds):
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
            with meanwhile(1, cluster.kill_worker) if kills else contextlib.nullcontext():
                _, errors = process.communicate(timeout=240)
        finally:
            process.kill()
        expect_failure_named(process, errors)
    expect_same(diet, "dask.rxf")


def test_a_client_that_is_killed_is_followed_by_another(diet, tmp_path):
    with DaskProcesses(tmp_path, 2) as cluster:
        first = diet.start("--out", "again.rxf", "--dask", cluster.address)
        parts = diet.folder / "again.rxf.parts"
        end = time.monotonic() + 120
        while len(list(parts.glob("*.rxf"))) < 20:
            assert time.monotonic() < end and first.poll() is None
            time.sleep(0.05)
        first.kill()
        first.communicate()
        kept = len(list(parts.glob("*.rxf")))
        second = diet.start("--out", "again.rxf", "--dask", cluster.address, "--resume")
        output, errors = second.communicate(timeout=240)
        expect_failure_named(second, errors)
        assert output.startswith(f"100000 scenarios, {kept * 500} of them kept: ") or kept < 200
    expect_same(diet, "again.rxf")


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
    assert f"ztb: scenario s3: failed: its worker process was ended by signal {signal.SIGKILL.value}" in errors
    with ztb.Database(tmp_path / "o.rxf") as db:
        assert len(db["sweep_objective"]) == 5 and len(db["sweep_status"]) == 6


def test_a_scenario_that_ends_workers_of_dask_is_named_and_the_rest_solved(endless, tmp_path):
    with DaskProcesses(tmp_path, 2, failures=1, seconds=5) as cluster:
        with meanwhile(0.2, cluster.replace_dead_workers):
            _, errors = endless("--out", "o.rxf", "--dask", cluster.address, "--chunk", 2, expected=1)
    assert (
        f"ztb: scenario s3: failed: its worker process was ended by signal {signal.SIGKILL.value}"
        in errors
    )
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
