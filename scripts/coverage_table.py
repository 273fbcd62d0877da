"""Prints lines and branches run, a row for each room, from gcovr's JSON; with --gaps also what no
test runs. A line of a header counts once, however many functions it is compiled into: what one of them
runs of it is run. For that gcov's own JSON is read, which tells the functions."""

import collections
import json
import pathlib
import re
import subprocess
import sys

ROOMS = ("core", "store", "exchange", "transfer", "bridge", "recording", "peers", "providers/rxf")
# Not counted, each with its reason.
EXCLUSIONS = {
    "peers/platform_windows.cpp": "the loader of another operating system, not compiled here",
}

# Counted by lines alone: what stands here is compiled into each of many functions, in place, and gcov
# counts its branches in each.
BY_LINES = {
    "core/frame.h": "the guard around every exported operation",
    "store/map_family.h": "the choice among the forty maps, in every operation on one",
    "store/slice_mask.h": "the next key of a slice, in the walks of all forty maps",
}

CONDITION = re.compile(r"\b(if|while|for|switch|case|default)\b|&&|\|\||\?")
CONTINUED = ("&&", "||", "?", ":", "(")


def holds_condition(lines, number):
    """Whether line `number`, from 1, holds a condition or goes on with one. On any other line the
    branches are the compiler's: to what it cleans up when a call throws."""
    line = lines[number - 1].split("//")[0]
    before = lines[number - 2].split("//")[0].rstrip() if number > 1 else ""
    if re.search(r"\bcatch\b", line):
        return False
    return bool(CONDITION.search(line)) or before.endswith(CONTINUED)


def branches_of_headers(build):
    """By header and line: whether each branch of the line, thrown ones left out, is run in some
    function."""
    found = collections.defaultdict(list)
    root = pathlib.Path.cwd()
    objects = [path for path in build.rglob("*.gcda") if "tests" not in path.parts]
    for path in objects:
        told = subprocess.run(
            ["gcov", "--branch-probabilities", "--json-format", "--stdout", str(path.resolve())],
            capture_output=True, check=True, cwd=build).stdout
        for document in told.decode().splitlines():
            for file in json.loads(document)["files"]:
                name = pathlib.Path(file["file"])
                if name.suffix != ".h" or not name.is_relative_to(root):
                    continue
                for line in file["lines"]:
                    run = [b["count"] > 0 for b in line["branches"] if not b["throw"]]
                    if run:
                        found[str(name.relative_to(root)), line["line_number"]].append(run)
    merged = {}
    for place, lists in found.items():
        # The compiler leaves parts out where a template makes them plain: the whole ones count.
        most = max(len(run) for run in lists)
        merged[place] = [any(column) for column in zip(*(r for r in lists if len(r) == most))]
    return merged


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["files"]
    headers = branches_of_headers(pathlib.Path(sys.argv[1]).parent)
    totals = {room: [0, 0, 0, 0] for room in ROOMS}
    gaps = []
    for entry in files:
        name = entry["file"]
        room = next((room for room in ROOMS if name.startswith(room + "/")), None)
        if room is None or name in EXCLUSIONS:
            continue
        total = totals[room]
        with open(name, encoding="utf-8") as source:
            lines = source.read().split("\n")
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            branches = []
            if name not in BY_LINES and holds_condition(lines, line["line_number"]):
                branches = headers.get((name, line["line_number"]))
                if branches is None:
                    branches = [b["count"] > 0 for b in line["branches"] if not b.get("throw")]
            total[0] += 1
            total[1] += line["count"] > 0
            total[2] += len(branches)
            total[3] += sum(branches)
            if line["count"] == 0:
                gaps.append(f"{name}:{line['line_number']}: line")
            elif not all(branches):
                gaps.append(f"{name}:{line['line_number']}: branch")
    print("| Room | Lines | run | Branches | run |\n|---|---|---|---|---|")
    all_of_them = [sum(column) for column in zip(*totals.values())]
    for room, (count, run, branches, taken) in [*totals.items(), ("all", all_of_them)]:
        share = [f"{100 * a / b:.1f} %" if b else "" for a, b in ((run, count), (taken, branches))]
        print(f"| {room} | {count} | {share[0]} | {branches} | {share[1]} |")
    if "--gaps" in sys.argv[2:]:
        print("\n".join(gaps))


main()
