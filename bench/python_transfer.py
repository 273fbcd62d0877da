#!/usr/bin/python3
"""Records into a dense array and back from Python, beside numpy and pandas.

    scripts/bench --python [RECORDS ...]

The records are those of a parameter over plants, customers and weeks that fill two cells in five;
numpy starts from columns of places, which a program has only once its labels are looked up, pandas
from a frame with a column of labels for each position. Each figure is the least of some runs, in
nanoseconds a record; a ratio is the rival's time divided by ours: above 1 ours is faster.
"""

import ctypes
import gc
import sys
import time

import numpy as np
import pandas as pd

import ztb

PLANTS, WEEKS = 20, 52
STORES = ("map", "vector")


def made_up(count):
    """A cube with that many records, and the labels along its axes."""
    customers = max(8, count * 5 // 2 // (PLANTS * WEEKS) + 1)
    shape = (PLANTS, customers, WEEKS)
    random = np.random.default_rng(20310407)
    cube = np.zeros(shape)
    cells = random.choice(cube.size, count, replace=False)
    cube.reshape(-1)[cells] = random.integers(1, 100_000, count) / 100
    axes = ([f"plant{i}" for i in range(shape[0])], [f"customer{i:05}" for i in range(shape[1])],
            [f"week{i:02}" for i in range(shape[2])])
    return cube, axes


def least(operation, runs, prepare=None):
    """The least time of an operation in seconds; what it gives is dropped outside it."""
    best = float("inf")
    for _ in range(runs):
        if prepare is not None:
            prepare()
        gc.collect()
        start = time.process_time()
        result = operation()
        best = min(best, time.process_time() - start)
        del result
    return best


def peak_beside(operation):
    """The most memory, in bytes, that an operation held beside the array that it gives."""
    gc.collect()
    ctypes.CDLL(None).malloc_trim(0)
    with open("/proc/self/clear_refs", "w") as peak:
        peak.write("5")
    before = status("VmRSS")
    result = operation()
    return status("VmHWM") - before - result.nbytes


def status(field):
    with open("/proc/self/status") as lines:
        return next(int(line.split()[1]) << 10 for line in lines if line.startswith(field))


class Table:
    def __init__(self, count):
        self.count = count
        print(f"{'records':>10}  {'operation':<34}{'ns/record':>10}  rivals")

    def row(self, operation, seconds, rivals):
        ours = seconds * 1e9 / self.count
        text = "  ".join(f"{name} {time_ * 1e9 / self.count:.1f} ({time_ / seconds:.2f})"
                         for name, time_ in rivals)
        print(f"{self.count:>10}  {operation:<34}{ours:>10.1f}  {text}", flush=True)


def measure(count):
    runs = 7 if count <= 1_000_000 else 3
    cube, axes = made_up(count)
    places = np.nonzero(cube)
    values = cube[places]
    keys = ["plant", "customer", "week"]
    frame = pd.DataFrame(
        {name: pd.Categorical.from_codes(codes, labels)
         for name, codes, labels in zip(keys, places, axes)} | {"value": values})
    series = frame.set_index(keys)["value"]
    table = Table(count)

    def by_numpy():
        result = np.zeros(cube.shape)
        result[places] = values
        return result

    def back_by_numpy():
        found = np.nonzero(cube)
        return found, cube[found]

    to_cube = [
        ("numpy", least(by_numpy, runs)),
        ("pandas pivot", least(
            lambda: frame.pivot(index="plant", columns=["customer", "week"], values="value"), 1)),
        ("pandas unstack", least(lambda: series.unstack(["customer", "week"]), runs)),
    ]
    wide = series.unstack(["customer", "week"])
    from_cube = [
        ("numpy", least(back_by_numpy, runs)),
        ("pandas stack", least(lambda: wide.stack(["customer", "week"]), 1)),
    ]
    del wide
    for store in STORES:
        with ztb.Database(store=store) as db:
            sets = [db.add_set(name) for name in keys]
            for set_, labels in zip(sets, axes):
                set_.from_pandas(pd.Index(labels))
            p = db.add_parameter("supply", sets)
            p.from_pandas(series)
            assert (p.to_numpy() == cube).all()
            table.row(f"records to array, {store}", least(p.to_numpy, runs), to_cube)
            print(f"{'':>10}  memory beside the array of {cube.nbytes >> 10} kB: "
                  f"{peak_beside(p.to_numpy) >> 10} kB", flush=True)
            table.row(f"array to records, {store}",
                      least(lambda: p.from_numpy(cube), runs, p.clear), from_cube)
            table.row(f"records to frame, {store}", least(p.to_pandas, runs), [])
            table.row(f"frame to records, {store}",
                      least(lambda: p.from_pandas(series), runs, p.clear), [])


for argument in sys.argv[1:] or ["1e6"]:
    measure(int(float(argument)))
