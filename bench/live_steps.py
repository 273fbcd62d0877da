"""Live steps from Python beside the same loop in C++, on transport problems of several sizes.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/live_steps.py build/release/bin

A step gives every demand another value, solves on the live solver, and reads the levels. The data
are there when the steps begin, a new array, series or frame for each, whose labels are its index or
a column; the C++ loop reads the levels record by record, or as an array as Python does. Each run of
a loop has a process of its own, since where its memory lies moves the time of a step by a twentieth.
All take turns; the least processor time of each counts.
"""

import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np
import pandas as pd

import ztb

ROUNDS = 9


def transport(sources, targets):
    """Ships from sources to targets at random costs, as an LP file."""
    random = np.random.default_rng(1)
    cost = random.integers(10, 100, (sources, targets))
    demand = random.integers(10, 50, targets)
    supply = np.full(sources, int(1.5 * demand.sum() / sources))
    lines = ["Minimize", " cost:"]
    lines += [
        f" + {cost[s, t]} x(s{s},t{t})" for s in range(sources) for t in range(targets)
    ]
    lines.append("Subject To")
    for s in range(sources):
        terms = "\n".join(f" + x(s{s},t{t})" for t in range(targets))
        lines.append(f" supply(s{s}):{terms} <= {supply[s]}")
    for t in range(targets):
        terms = "\n".join(f" + x(s{s},t{t})" for s in range(sources))
        lines.append(f" demand(t{t}):{terms} >= {demand[t]}")
    return "\n".join(lines) + "\nEnd\n"


class Loop:
    """The steps from Python, with data of one kind."""

    def __init__(self, file, way):
        self.model = ztb.Model.open(file)
        self.model.drive("demand(target) = rhs of demand")
        self.tie = self.model.tie()
        self.base = self.tie["demand_var"]._native.rows()[1][:, 0].copy()
        self.index = self.tie.index("demand")
        self.way = way
        # Pandas is loaded, and the labels of the first two data are looked up.
        for _ in range(2):
            self.tie["demand"] = self.data(1)
            self.tie.solve("clp")

    def data(self, factor):
        values = factor * self.base
        if self.way == "arrays":
            return values
        if self.way == "series":
            return pd.Series(values, self.index)
        if self.way == "indexed":
            return pd.DataFrame({"value": values}, self.index)
        return pd.DataFrame({self.index.name: np.array(self.index), "value": values})

    def run(self, steps):
        tie, total = self.tie, 0.0
        data = [self.data(1 + 0.01 * (step % 20)) for step in range(steps)]
        begin = time.process_time()
        for step_data in data:
            tie["demand"] = step_data
            solution = tie.solve("clp")
            solution.levels("x")
            total += solution.objective
        return (time.process_time() - begin) / steps, total


def run_loop(file, steps, way):
    """Prints the seconds of a step and the sum of the objectives, as the C++ program does."""
    seconds, total = Loop(file, way).run(int(steps))
    print(f"{seconds:.9g} {total:.12g}")


WAYS = ("arrays", "series", "indexed", "frames")


def main():
    program = Path(sys.argv[1]) / "ztb_live_steps"
    print("                    C++ us a step, by    Python beside the first / the second")
    print("sources x targets   records   arrays ", *(f"{way:>12}" for way in WAYS))
    for sources, targets, steps in ((5, 20, 2000), (20, 100, 300), (40, 250, 60)):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "transport.lp"
            file.write_text(transport(sources, targets))
            commands = {
                way: [program, file, str(steps), way] for way in ("records", "cells")
            } | {way: [sys.executable, __file__, file, str(steps), way] for way in WAYS}
            best = dict.fromkeys(commands, np.inf)
            totals = set()
            for _ in range(ROUNDS):
                for way, command in commands.items():
                    seconds, total = map(float, subprocess.check_output(command).split())
                    best[way] = min(best[way], seconds)
                    totals.add(total)
            assert np.ptp(list(totals)) < 1e-6 * max(totals), "other objectives"
            ratios = "".join(
                f"{best[way] / best['records']:8.3f}/{best[way] / best['cells']:5.3f}"
                for way in WAYS
            )
            print(
                f"{sources:7} x {targets:<9}{1e6 * best['records']:8.0f} {1e6 * best['cells']:8.0f}"
                f" {ratios}"
            )


if __name__ == "__main__":
    if len(sys.argv) == 4:
        run_loop(*sys.argv[1:])
    else:
        main()
