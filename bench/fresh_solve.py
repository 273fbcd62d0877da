"""Fresh solves beside each solver's own program: processor time of the whole run, reading included.

    fresh_solve.py ZTB WORKING_FOLDER [MPS files and folders ...]

Each problem is run by `ztb solve` and by clp, cbc and glpsol in turn, the least of three runs counts
(of 25 short ones, one of what takes long), and the objectives are compared. Problems are the netlib
files beside the project, where they are, some made here (see MADE), and those named.
"""

import math
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import threading

RUNS = 3
SHORT = 0.1  # seconds of a run that is repeated more often: others on the machine tell more of it
SHORT_RUNS = 25
LONG = 3  # seconds of a run that is not repeated
SECONDS = 120
PROGRAMS = {
    "clp": lambda file: ["clp", file],
    "cbc": lambda file: ["cbc", file, "-ratioGap", "1e-9", "-solve", "-quit"],
    "glpk": lambda file: ["glpsol", "--freemps", file, "-o", "/dev/stdout"],
}
OBJECTIVE = {
    "clp": re.compile(r"Optimal objective (\S+)"),
    "cbc": re.compile(r"^(?:Optimal objective|Objective value:) +(\S+)", re.MULTILINE),
    "glpk": re.compile(r"^Objective: .* = (\S+)", re.MULTILINE),
    "ztb": re.compile(r"^objective +(\S+)", re.MULTILINE),
}


class Problem:
    """Columns as (cost, upper bound or None, {row: value}), the first of them integer."""

    def __init__(self, rows, columns, integers=0):
        self.rows, self.columns, self.integers = rows, columns, integers

    def write(self, file):
        lines = ["NAME          MADE", "ROWS", " N  cost"]
        lines += [f" {kind}  r{i}" for i, (kind, _) in enumerate(self.rows)]
        lines.append("COLUMNS")
        for j, (cost, _, entries) in enumerate(self.columns):
            if j == 0 and self.integers:
                lines.append("    M1        'MARKER'                 'INTORG'")
            if j == self.integers and self.integers:
                lines.append("    M2        'MARKER'                 'INTEND'")
            lines.append(f"    {f'x{j}':<10}{'cost':<10}{cost:>12}")
            lines += [f"    {f'x{j}':<10}{f'r{i}':<10}{v:>12}" for i, v in entries.items()]
        if self.integers >= len(self.columns):
            lines.append("    M2        'MARKER'                 'INTEND'")
        lines.append("RHS")
        lines += [f"    {'rhs':<10}{f'r{i}':<10}{v:>12}" for i, (_, v) in enumerate(self.rows) if v]
        lines.append("BOUNDS")
        for j, (_, upper, _) in enumerate(self.columns):
            if upper is not None:
                lines.append(f" UP {'b':<10}{f'x{j}':<10}{upper:>12}")
        lines.append("ENDATA")
        file.write_text("\n".join(lines) + "\n")


def facility(places, clients, seed):
    """Which places to open, with capacities; each client is served in shares."""
    r = random.Random(seed)
    need = [r.randint(5, 35) for _ in range(clients)]
    rows = [("E", 1)] * clients + [("L", 0)] * (places + places * clients)
    opened = [(r.randint(100, 200), 1, {clients + p: -r.randint(60, 160)}) for p in range(places)]
    served = []
    for p in range(places):
        for c in range(clients):
            link = clients + places + p * clients + c
            opened[p][2][link] = -1
            cost = round(r.uniform(1, 10) * need[c], 3)
            served.append((cost, None, {c: 1, clients + p: need[c], link: 1}))
    return Problem(rows, opened + served, places)


def knapsacks(rows, things, seed):
    """Several knapsacks at once."""
    r = random.Random(seed)
    columns = []
    for _ in range(things):
        size = [r.randint(5, 1000) for _ in range(rows)]
        columns.append((-(sum(size) // rows + r.randint(1, 100)), 1, dict(enumerate(size))))
    room = [("L", sum(c[2][i] for c in columns) // 2) for i in range(rows)]
    return Problem(room, columns, things)


def cover(rows, sets, seed):
    """The cheapest sets that cover all rows."""
    r = random.Random(seed)
    columns = [
        (r.randint(1, 100), 1, {i: 1 for i in r.sample(range(rows), max(2, rows // 40))})
        for _ in range(sets)
    ]
    for i in range(rows):
        columns[i % sets][2][i] = 1
    return Problem([("G", 1)] * rows, columns, sets)


def transport(sources, targets, seed):
    """From sources to targets."""
    r = random.Random(seed)
    need = [r.randint(5, 50) for _ in range(targets)]
    rows = [("L", sum(need) * 2 // sources + r.randint(0, 20)) for _ in range(sources)]
    rows += [("G", n) for n in need]
    columns = [
        (r.randint(1, 500), None, {s: 1, sources + t: 1})
        for s in range(sources)
        for t in range(targets)
    ]
    return Problem(rows, columns)


def production(products, periods, seed):
    """Products over periods with stocks and twelve machines."""
    r = random.Random(seed)
    use = [[round(r.random(), 3) for _ in range(12)] for _ in range(products)]
    rows = [("E", r.randint(10, 100)) for _ in range(products * periods)]
    rows += [
        ("L", round(60 * sum(u[k] for u in use), 2)) for _ in range(periods) for k in range(12)
    ]
    columns = []
    for p in range(products):
        for t in range(periods):
            here = p * periods + t
            machines = {products * periods + t * 12 + k: use[p][k] for k in range(12)}
            columns.append((round(r.uniform(5, 15), 3), None, {here: 1} | machines))
            kept = {here + 1: 1} if t + 1 < periods else {}
            columns.append((round(r.uniform(0.1, 1), 3), None, {here: -1} | kept))
            columns.append((100, None, {here: 1}))
    return Problem(rows, columns)


def lots(products, periods, seed):
    """How much of each product to make when, from stock or with a set-up, on one machine."""
    r = random.Random(seed)
    rows = [("E", r.randint(0, 40)) for _ in range(products * periods)]
    rows += [("L", 0)] * (products * periods) + [("L", 30 * products + 60)] * periods
    setups, flows = [], []
    for p in range(products):
        for t in range(periods):
            here, link = p * periods + t, (products + p) * periods + t
            machine = 2 * products * periods + t
            setups.append((r.randint(40, 120), 1, {link: -120, machine: 10}))
            flows.append((r.randint(1, 5), None, {here: 1, link: 1, machine: 1}))
            kept = {here + 1: 1} if t + 1 < periods else {}
            flows.append((r.randint(1, 3), None, {here: -1} | kept))
    return Problem(rows, setups + flows, len(setups))


def network(nodes, arcs, seed):
    """Which arcs to open for flows between pairs of nodes, each arc at a price of its own."""
    r = random.Random(seed)
    pairs = {(i, (i + 1) % nodes) for i in range(nodes)}
    while len(pairs) < arcs:
        pairs.add(tuple(r.sample(range(nodes), 2)))
    net = [0] * nodes
    for _ in range(nodes // 2):
        source, sink = r.sample(range(nodes), 2)
        amount = r.randint(1, 12)
        net[source] += amount
        net[sink] -= amount
    rows = [("E", n) for n in net] + [("L", 0)] * arcs
    ordered = list(enumerate(sorted(pairs)))
    opened = [(r.randint(10, 60), 1, {nodes + k: -40}) for k, _ in ordered]
    flows = [(r.randint(1, 6), None, {i: 1, j: -1, nodes + k: 1}) for k, (i, j) in ordered]
    return Problem(rows, opened + flows, arcs)


def assignment(agents, jobs, seed):
    """Jobs to agents that have room for some of them."""
    r = random.Random(seed)
    use = [[r.randint(5, 25) for _ in range(jobs)] for _ in range(agents)]
    rows = [("E", 1)] * jobs + [("L", sum(u) * 4 // (5 * agents)) for u in use]
    columns = [
        (r.randint(10, 50), 1, {j: 1, jobs + a: use[a][j]})
        for a in range(agents)
        for j in range(jobs)
    ]
    return Problem(rows, columns, len(columns))


def plants(units, hours, seed):
    """Which power plants run when: least and most load, starts, two hours at least, reserve."""
    r = random.Random(seed)
    kinds = [(r.randint(20, 60), r.randint(80, 200)) for _ in range(units)]
    full = sum(most for _, most in kinds)
    load = [round(full * (0.45 + 0.2 * math.sin(t * math.pi / 12))) for t in range(hours)]
    rows = [("E", need) for need in load] + [("G", math.ceil(1.1 * need)) for need in load]
    on, starts, made = [], [], []
    for least, most in kinds:
        prices = r.randint(100, 500), r.randint(200, 900), r.randint(10, 40)
        first = len(rows)
        rows += [("L", 0)] * (4 * hours)  # of each hour: most, least, start, what a start holds on
        for t in range(hours):
            at = first + 4 * t
            later = {at + 6: -1} if t + 1 < hours else {}
            held = {at - 1: -1} if t else {}
            running = {hours + t: most, at: -most, at + 1: least, at + 2: 1}
            on.append((prices[0], 1, running | later | held))
            begun = {at + 3: 1} if t + 1 < hours else {}
            starts.append((prices[1], 1, {at + 2: -1} | begun))
            made.append((prices[2], None, {t: 1, at: 1, at + 1: -1}))
    return Problem(rows, on + starts + made, 2 * len(on))


def relaxed(problem):
    """The same without integers."""
    return Problem(problem.rows, problem.columns)


MADE = {
    "facility": lambda: facility(10, 30, 1),
    "knapsacks": lambda: knapsacks(5, 28, 3),
    "puzzle": lambda: knapsacks(1, 12, 5),
    "cover": lambda: cover(150, 400, 2),
    "transport": lambda: transport(60, 200, 6),
    "production": lambda: production(40, 40, 7),
    "lots": lambda: lots(3, 7, 4),
    "network": lambda: network(18, 60, 5),
    "assignment": lambda: assignment(5, 24, 6),
    "plants": lambda: plants(6, 24, 7),
    "covered": lambda: relaxed(cover(400, 5000, 8)),
}


def run(command):
    """What a command prints, and its processor time; None when it takes too long."""
    with subprocess.Popen(
        command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True
    ) as process:
        timer = threading.Timer(SECONDS, process.kill)
        timer.start()
        text = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        timer.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode == -signal.SIGKILL:
        return None
    return text, usage.ru_utime + usage.ru_stime


def best_of(*commands):
    """What each command prints, and its least time, the commands run in turn; None when one takes
    too long."""
    rounds = []
    while len(rounds) < (SHORT_RUNS if rounds and rounds[0][0][1] < SHORT else RUNS):
        rounds.append([run(command) for command in commands])
        if None in rounds[-1]:
            return None
        if max(used for _, used in rounds[-1]) > LONG:
            break
    return [(runs[0][0], min(used for _, used in runs)) for runs in zip(*rounds)]


def number(pattern, text):
    found = pattern.search(text)
    return float(found.group(1)) if found else math.nan


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    files = []
    for made, problem in MADE.items():
        files.append(folder / f"{made}.mps")
        problem().write(files[-1])
    for given in map(pathlib.Path, sys.argv[3:]):
        files += sorted(given.glob("*.mps")) if given.is_dir() else [given]
    for solver, command in PROGRAMS.items():
        print(f"\n{'fresh solve by ' + solver:<26}{'own program':>12}{'ztb solve':>12}{'ratio':>8}")
        ratios = []
        for file in files:
            if solver == "clp" and "'MARKER'" in file.read_text():
                continue
            both = best_of(command(str(file)), [program, "solve", str(file), "--solver", solver])
            if both is None:
                print(f"{file.stem:<26}longer than {SECONDS} s")
                continue
            own, ours = both
            expected = number(OBJECTIVE[solver], own[0])
            told = number(OBJECTIVE["ztb"], ours[0])
            ratio = ours[1] / own[1]
            ratios.append(ratio)
            same = abs(told - expected) <= 1e-6 * max(1, abs(expected))
            note = "" if same else f"  {told} instead of {expected}"
            print(
                f"{file.stem:<26}{own[1]:>10.4f} s{ours[1]:>10.4f} s{ratio:>8.2f}{note}", flush=True
            )
        mean = math.exp(sum(map(math.log, ratios)) / len(ratios))
        print(f"{'geometric mean':<26}{'':>24}{mean:>8.2f}")


main()
