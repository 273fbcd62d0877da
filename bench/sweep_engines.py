"""Sweeps by two workers of Dask beside two processes of the command.

    PYTHONPATH=build/release/python python3 bench/sweep_engines.py build/release/bin/ztb [COUNT ...]
    PYTHONPATH=build/release/python python3 bench/sweep_engines.py build/release/bin/ztb --slow [COUNT ...]

Scenarios of the diet, about a tenth of a millisecond each, or with --slow of a linear model that
takes some 50 ms for each. Prints, for each number of scenarios, the seconds of ``ztb sweep --jobs 2``
and what a scenario takes of one of its processes; those of ``--dask`` on workers that run already; the
first by the second, and what a chunk costs more; then the seconds in which a complete result is taken
up again. Runs alternate, and each figure is the best of three.
"""

import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np
import pandas as pd

PROJECT = Path(__file__).parents[1]
sys.path.insert(0, str(PROJECT / "tests" / "engines"))

from dask_processes import DaskProcesses

import ztb

RUNS = 3
CHUNKS = 64
# Of the slow model, all of whose coefficients are there.
ROWS, COLUMNS = 400, 800


def diet(folder, count):
    shutil.copy(PROJECT / "examples" / "diet" / "diet.lp", folder / "m.lp")
    labels = [f"s{number}" for number in range(count)]
    index = pd.MultiIndex.from_product([labels, ["calories_1000kcal"]])
    with ztb.Database() as db:
        db.add_set("s").extend(labels)
        calories = pd.Series(3 + 0.5 * np.sin(np.arange(count)), index=index)
        db.add_parameter("allowance", ["s", "*"]).from_pandas(calories)
        db.write(folder / "sc.rxf")


def slow(folder, count):
    """What is wanted of each row is drawn anew for each scenario, so that little of the last basis
    holds."""
    random = np.random.default_rng(5)
    weights = random.uniform(0.1, 1, (ROWS, COLUMNS)).round(3)
    costs = random.uniform(1, 2, COLUMNS).round(3)
    text = "Minimize\n z: " + " ".join(f"+ {c} x({i})\n" for i, c in enumerate(costs)) + "Subject To\n"
    for row in range(ROWS):
        terms = " ".join(f"+ {w} x({i})\n" for i, w in enumerate(weights[row]))
        text += f" need({row}): {terms} - wanted_var({row}) >= 0\n"
    text += "Bounds\n" + "".join(f" wanted_var({row}) = 1\n" for row in range(ROWS)) + "End\n"
    (folder / "m.lp").write_text(text)
    labels = [f"s{number}" for number in range(count)]
    index = pd.MultiIndex.from_product([labels, [str(row) for row in range(ROWS)]])
    with ztb.Database() as db:
        db.add_set("s").extend(labels)
        wanted = pd.Series(random.uniform(1, 30, count * ROWS).round(2), index=index)
        db.add_parameter("wanted", ["s", "*"]).from_pandas(wanted)
        db.write(folder / "sc.rxf")


def seconds(program, folder, *words):
    command = [program, "sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--out", "o.rxf"]
    begun = time.perf_counter()
    subprocess.run([*command, *words], cwd=folder, check=True, stdout=subprocess.DEVNULL)
    return time.perf_counter() - begun


def main():
    program, *words = sys.argv[1:]
    program = str(Path(program).resolve())
    is_slow = words[:1] == ["--slow"]
    counts = [int(float(word)) for word in words[is_slow:]]
    counts = counts or ([1000] if is_slow else [10_000, 100_000])
    folder = Path(tempfile.mkdtemp(prefix="ztb-bench-"))
    try:
        with DaskProcesses(folder, 2) as cluster:
            print("scenarios  --jobs 2   each     --dask  ratio  a chunk more  resumed", flush=True)
            for count in counts:
                (slow if is_slow else diet)(folder, count)
                best = {}
                for _ in range(RUNS):
                    results = []
                    for name, *more in (
                        ("jobs", "--jobs", "2"),
                        ("resumed", "--jobs", "2", "--resume"),
                        ("dask", "--dask", cluster.address),
                    ):
                        taken = seconds(program, folder, *more)
                        best[name] = min(best.get(name, taken), taken)
                        results.append((folder / "o.rxf").read_bytes())
                    assert results[0] == results[1] == results[2]
                jobs, dask = best["jobs"], best["dask"]
                chunks = -(-count // min(1000, max(1, count // CHUNKS)))
                print(
                    f"{count:9} {jobs:7.2f} s {jobs * 2000 / count:6.2f} ms {dask:6.2f} s"
                    f" {jobs / dask:5.2f} {(dask - jobs) / chunks * 1000:10.1f} ms"
                    f" {best['resumed']:6.2f} s",
                    flush=True,
                )
    finally:
        shutil.rmtree(folder)


main()
