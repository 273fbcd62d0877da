"""Live steps from Python beside the same loop in C++, on transport problems of several sizes.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/live_steps.py build/release/bin

A step gives every demand another value, solves on the live solver, and reads the levels. The two
take turns; the best of each counts.
"""

import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np
import pandas as pd

import ztb

ROUNDS = 5


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
        self.model.solve("clp")
        self.base = self.tie["demand_var"]._native.rows()[1][:, 0].copy()
        self.index = self.tie.index("demand")
        self.way = way

    def run(self, steps):
        total = 0.0
        begin = time.perf_counter()
        for step in range(steps):
            data = (1 + 0.01 * (step % 20)) * self.base
            self.tie["demand"] = data if self.way == "arrays" else pd.Series(data, self.index)
            solution = self.tie.solve("clp")
            solution.levels("x")
            total += solution.objective
        return (time.perf_counter() - begin) / steps, total


def main():
    program = Path(sys.argv[1]) / "ztb_live_steps"
    print("sources x targets   C++ us a step   arrays   series")
    for sources, targets, steps in ((5, 20, 400), (20, 100, 100), (40, 250, 40)):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "transport.lp"
            file.write_text(transport(sources, targets))
            loops = {way: Loop(file, way) for way in ("arrays", "series")}
            best = dict.fromkeys(("cpp", "arrays", "series"), np.inf)
            for _ in range(ROUNDS):
                said = subprocess.check_output([program, file, str(steps)], text=True).split()
                best["cpp"] = min(best["cpp"], float(said[0]))
                for way, loop in loops.items():
                    seconds, total = loop.run(steps)
                    best[way] = min(best[way], seconds)
                    assert abs(total - float(said[1])) < 1e-6 * abs(total), "other objectives"
            ratios = [best[way] / best["cpp"] for way in ("arrays", "series")]
            print(
                f"{sources:7} x {targets:<9} {1e6 * best['cpp']:12.0f} "
                f"{ratios[0]:10.2f} {ratios[1]:8.2f}"
            )


if __name__ == "__main__":
    main()
