#!/usr/bin/env python3
"""Scenarios a second of `ztb sweep`, with one and with two worker processes.

    sweep.py ZTB_PROGRAM PROJECT_FOLDER

The diet of 1939 under 1000 price scenarios, all foods reported, and netlib's israel under 1000
factors of its right-hand sides, the objective reported. The netlib problem is used where it lies
beside the project.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

SCENARIOS = 1000


def scaled_sides(mps):
    """The problem with all right-hand sides times a column side_var that is fixed at 1."""
    sections, name = {}, None
    for line in mps.splitlines():
        if line and not line.startswith((" ", "*")):
            name = line.split()[0]
            sections[name] = [line]
        elif name:
            sections[name].append(line)
    objective = next(line.split()[1] for line in sections["ROWS"][1:] if line.split()[0] == "N")
    for line in sections.pop("RHS")[1:]:
        words = line.split()[1:]
        for row, value in zip(words[::2], words[1::2]):
            if row != objective:
                sections["COLUMNS"].append(f"    side_var  {row:<8}  {-float(value):.12g}")
    sections.setdefault("BOUNDS", ["BOUNDS"]).append(" FX BND       side_var  1")
    order = ["NAME", "ROWS", "COLUMNS", "RANGES", "BOUNDS", "ENDATA"]
    return "\n".join(line for part in order for line in sections.get(part, [])) + "\n"


def run(ztb, *arguments):
    return subprocess.run([ztb, *arguments], check=True, capture_output=True, text=True).stdout


def measure(ztb, title, *arguments):
    for jobs in ("1", "2"):
        out = run(ztb, "sweep", *arguments, "--jobs", jobs, "--out", f"out{jobs}.rxf")
        rate = re.search(r"\((\d+) a second\)", out)[1]
        print(f"{title:<16}  --jobs {jobs}  {rate:>6} a second")


def main():
    ztb, project = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    diet = project / "examples" / "diet"
    israel = project.parent / "shared" / "data" / "netlib" / "israel.mps"
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        subprocess.run([sys.executable, diet / "make_scenarios.py", str(SCENARIOS)], check=True)
        run(ztb, "import", "prices.rxf", "--from", "scenarios.csv", "--set", "scenario",
            "--from", diet / "foods.csv", "--set", "food",
            "--from", "prices.csv", "--parameter", "price(scenario, food) = index")
        measure(ztb, "diet of 1939", diet / "diet.lp", "--scenarios", "prices.rxf",
                "--over", "scenario", "--report", "buy")
        if not israel.exists():
            return
        pathlib.Path("israel.mps").write_text(scaled_sides(israel.read_text()))
        with open("sides.csv", "w", encoding="utf-8") as file:
            file.write("scenario,factor\n")
            for number in range(SCENARIOS):
                file.write(f"s{number},{0.9 + 0.2 * (number * 617 % SCENARIOS) / SCENARIOS}\n")
        run(ztb, "import", "sides.rxf", "--from", "sides.csv", "--set", "scenario",
            "--parameter", "side(scenario) = factor")
        measure(ztb, "israel", "israel.mps", "--scenarios", "sides.rxf", "--over", "scenario")


if __name__ == "__main__":
    main()
