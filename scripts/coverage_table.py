"""Prints lines and branches run, a row for each room, from gcovr's JSON; with --gaps also what no
test runs."""

import json
import re
import sys

ROOMS = ("core", "store", "exchange", "transfer", "bridge", "recording", "peers", "providers/rxf")
# Not counted, each with its reason.
EXCLUSIONS = {
    "peers/platform_windows.cpp": "the loader of another operating system, not compiled here",
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


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["files"]
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
            if holds_condition(lines, line["line_number"]):
                branches = [b for b in line["branches"] if not b.get("throw")]
            total[0] += 1
            total[1] += line["count"] > 0
            total[2] += len(branches)
            total[3] += sum(b["count"] > 0 for b in branches)
            if line["count"] == 0:
                gaps.append(f"{name}:{line['line_number']}: line")
            elif any(b["count"] == 0 for b in branches):
                gaps.append(f"{name}:{line['line_number']}: branch")
    print("| Room | Lines | run | Branches | run |\n|---|---|---|---|---|")
    all_of_them = [sum(column) for column in zip(*totals.values())]
    for room, (count, run, branches, taken) in [*totals.items(), ("all", all_of_them)]:
        share = [f"{100 * a / b:.1f} %" if b else "" for a, b in ((run, count), (taken, branches))]
        print(f"| {room} | {count} | {share[0]} | {branches} | {share[1]} |")
    if "--gaps" in sys.argv[2:]:
        print("\n".join(gaps))


main()
