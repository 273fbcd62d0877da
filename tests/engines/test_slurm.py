"""Sweeps by array jobs of Slurm: a controller and a node of this machine, see slurm_cluster.py."""

import random
import re
import signal
import time

import pandas as pd
import pytest
from conftest import Sweep

import ztb

COUNT = 40

# Items of one cost: which of them meet what is wanted depends on where a solver starts.
MODEL = """Minimize
 z: a(i1) + a(i2) + a(i3) + a(i4)
Subject To
 c: a(i1) + a(i2) + a(i3) + a(i4) - wanted_var >= 0
Bounds
 wanted_var = 3
 a(i1) <= 4
 a(i2) <= 3
 a(i3) <= 4
 a(i4) <= 3
End
"""


def hard_model(rows, half):
    """Items to be chosen so that the weights of each of several kinds come to exactly what is wanted:
    nothing is chosen at once where nothing is wanted, half of all takes a search without end."""
    numbers = random.Random(3)
    text, bounds = "", ""
    for row in range(rows):
        weights = [numbers.randrange(100) for _ in range(60)]
        half.append(sum(weights) // 2)
        terms = "".join(f" + {weight} item({item})\n" for item, weight in enumerate(weights))
        text += f" exactly({row}):{terms} - wanted_var({row}) = 0\n"
        bounds += f" wanted_var({row}) = 0\n"
    items = "".join(f" item({item})\n" for item in range(60))
    return f"Minimize\n z: item(1)\nSubject To\n{text}Bounds\n{bounds}Binaries\n{items}End\n"


def make(folder, model, wanted):
    """The model, and a scenario file of one number or several for each scenario."""
    (folder / "m.lp").write_text(model)
    with ztb.Database() as db:
        db.add_set("s").extend(wanted)
        others = any(isinstance(value, list) for value in wanted.values())
        records = {
            (label, str(row)) if others else label: number
            for label, value in wanted.items()
            for row, number in enumerate(value if others else [value])
        }
        domain = ["s", "*"] if others else ["s"]
        db.add_parameter("wanted", domain).from_pandas(pd.Series(records))
        db.write(folder / "sc.rxf")


@pytest.fixture
def sweep(slurm, tmp_path):
    folder = tmp_path / "it's a \"place\""
    folder.mkdir()
    make(folder, MODEL, {f"s{n}": 1.0 + n * 5 % 9 for n in range(COUNT)})
    words = ["m.lp", "--scenarios", "sc.rxf", "--over", "s", "--report", "a", "--chunk", 3]
    return Sweep(folder, words, slurm.environment)


@pytest.fixture
def endless(slurm, tmp_path):
    """The third of six scenarios comes to no end; a chunk is two scenarios, a task all."""
    half = []
    model = hard_model(6, half)
    make(tmp_path, model, {f"s{n}": half if n == 3 else [0.0] * 6 for n in range(1, 7)})
    words = ["m.lp", "--scenarios", "sc.rxf", "--over", "s", "--solver", "glpk", "--chunk", 2]
    return Sweep(tmp_path, words, slurm.environment)


def wait_until(is_so, seconds=60):
    end = time.monotonic() + seconds
    while not is_so():
        assert time.monotonic() < end
        time.sleep(0.1)


def test_an_array_job_gives_the_bytes_of_one_process(sweep):
    sweep("--out", "one.rxf")
    output, errors = sweep("--out", "slurm.rxf", "--slurm", "--array", 4, "--time", 5)
    assert output.startswith("40 scenarios: 40 optimal in ") and errors == ""
    assert sweep.bytes("slurm.rxf") == sweep.bytes("one.rxf")
    assert not (sweep.folder / "slurm.rxf.parts").exists()


def test_what_is_missing_is_submitted_again(sweep, slurm):
    sweep("--out", "one.rxf")
    output, _ = sweep("--out", "o.rxf", "--slurm", "--array", 4, "--parts", "p", "--no-wait")
    job = re.match(r"job (\d+): 4 tasks with 40 scenarios\n", output)[1]
    wait_until(lambda: job not in slurm.run("squeue", "--noheader", "--format=%A").stdout.split())
    parts = sorted((sweep.folder / "p").glob("*.rxf"))
    # The last of the shares 3/4 and 4/4 are lost.
    lost = [part for part in parts if int(part.stem.split("-")[1]) >= 27]
    for part in lost:
        part.unlink()
    script, _ = sweep(
        "--out", "o.rxf", "--slurm", "--array", 4, "--parts", "p", "--resume", "--dry-run"
    )
    assert "#SBATCH --array=4\n" in script or "#SBATCH --array=3-4\n" in script
    output, _ = sweep("--out", "o.rxf", "--slurm", "--array", 4, "--parts", "p", "--resume")
    assert " of them kept: 40 optimal in " in output
    assert sweep.bytes("o.rxf") == sweep.bytes("one.rxf")


def test_what_slurm_refuses_is_told(sweep):
    _, errors = sweep("--out", "o.rxf", "--slurm", "--partition", "none", expected=1)
    assert re.fullmatch(r"ztb: sbatch: error: .*[Pp]artition.*\n", errors)
    _, errors = sweep("--out", "o.rxf", "--slurm", "--sbatch=--no-such-thing", expected=1)
    assert errors.startswith("ztb: ") and errors.count("\n") == 1


def test_a_time_limit_publishes_what_is_solved(endless, slurm):
    # The signal of the last line that asks for one holds: it comes at once, since Slurm sends it up
    # to a minute before its time.
    _, errors = endless(
        "--out", "o.rxf", "--slurm", "--array", 1, "--time", 1, "--parts", "p",
        "--sbatch=--signal=B:TERM@50", expected=1,
    )  # fmt: skip
    assert "ztb: task 1: ztb: was asked to end; " in errors
    assert " --resume submits them again; " in errors
    found = re.search(r"; (\d) of 6 scenarios are not solved yet", errors)
    assert 1 <= int(found[1]) <= 4
    # Those that are solved are there, and what is missing is told by name.
    _, errors = endless("--collect", "--parts", "p", "--out", "c.rxf", expected=1)
    assert "ztb: scenario s3: missing\n" in errors
    assert "ztb: scenario s1: missing\n" not in errors


def test_a_task_that_is_requeued_goes_on_from_its_parts(endless, slurm):
    process = endless.start("--out", "o.rxf", "--slurm", "--array", 1, "--parts", "p")
    try:
        basis = endless.folder / "p"
        wait_until(lambda: list(basis.glob("*.basis")))
        job = next(basis.glob("*.job")).read_text().strip()
        wait_until(lambda: "RUNNING" in slurm.run("squeue", "--noheader", "--format=%T").stdout)
        time.sleep(1)
        assert slurm.run("scontrol", "requeue", job + "_1").returncode == 0
        # What was solved before the endless scenario has been published when the task was ended.
        wait_until(lambda: list(basis.glob("*-0-*.rxf")))
        process.send_signal(signal.SIGTERM)
        _, errors = process.communicate(timeout=60)
        assert process.returncode == 1
        assert f"job {job} goes on, and --resume waits for it" in errors
        _, errors = endless("--out", "o.rxf", "--slurm", "--parts", "p", expected=1)
        assert f"job {job} of this sweep is in the queue still" in errors
    finally:
        process.kill()
        slurm.run("scancel", "--user=root")
        wait_until(lambda: not slurm.run("squeue", "--noheader").stdout.strip(), 120)
