"""Sweeps by two workers of Dask beside two processes of the command, on scenarios of the diet.

    PYTHONPATH=build/release/python python3 bench/sweep_engines.py build/release/bin/ztb [COUNT ...]

Prints, for each number of scenarios, the seconds of ``ztb sweep --jobs 2``, those of ``--dask`` on
workers that run already, the first by the second, and what a chunk costs more; then the seconds in
which a complete result is taken up again. Each is the best of three.
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


def scenarios(folder, count):
    labels = [f"s{number}" for number in range(count)]
    index = pd.MultiIndex.from_product([labels, ["calories_1000kcal"]])
    with ztb.Database() as db:
        db.add_set("s").extend(labels)
        calories = pd.Series(3 + 0.5 * np.sin(np.arange(count)), index=index)
        db.add_parameter("allowance", ["s", "*"]).from_pandas(calories)
        db.write(folder / "sc.rxf")


def seconds(program, folder, *words):
    """The best of some runs, and the bytes of the result."""
    best = float("inf")
    command = [program, "sweep", "diet.lp", "--scenarios", "sc.rxf", "--over", "s", "--out", "o.rxf"]
    for _ in range(RUNS):
        begun = time.perf_counter()
        subprocess.run([*command, *words], cwd=folder, check=True, stdout=subprocess.DEVNULL)
        best = min(best, time.perf_counter() - begun)
    return best, (folder / "o.rxf").read_bytes()


def main():
    program = str(Path(sys.argv[1]).resolve())
    counts = [int(float(word)) for word in sys.argv[2:]] or [10_000, 100_000]
    folder = Path(tempfile.mkdtemp(prefix="ztb-bench-"))
    shutil.copy(PROJECT / "examples" / "diet" / "diet.lp", folder)
    try:
        with DaskProcesses(folder, 2) as cluster:
            print("scenarios  --jobs 2  --dask  ratio  a chunk more  resumed")
            for count in counts:
                scenarios(folder, count)
                jobs, expected = seconds(program, folder, "--jobs", "2")
                resumed, _ = seconds(program, folder, "--jobs", "2", "--resume")
                dask, found = seconds(program, folder, "--dask", cluster.address)
                assert found == expected
                chunks = max(CHUNKS, -(-count // 1000))
                more = (dask - jobs) / chunks * 1000
                print(
                    f"{count:9} {jobs:7.2f} s {dask:6.2f} s {jobs / dask:5.2f} {more:10.1f} ms"
                    f" {resumed:6.2f} s"
                )
    finally:
        shutil.rmtree(folder)


main()
