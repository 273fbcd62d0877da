"""Attacks on the ztb command and the Python package from outside: damaged files, failing system
calls, kills, full disks, two writers at once, sweeps whose processes are stopped and killed.

    attack.py --build build/release [--part NAME]... [--scale SMALL_TO_FULL] [--seed N]

Prints what each part met as a row of a Markdown table, and what was broken on standard error. The
exit code is 0 when nothing was. Scale 1 is the part that runs with the tests, 100 all of it.
"""

import argparse
import errno
import json
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))


class Attack:
    """The programs, a folder, the random numbers, and what was found."""

    def __init__(self, build, scale, seed):
        self.build = os.path.abspath(build)
        self.scale = scale
        self.random = random.Random(seed)
        self.seed = seed
        self.folder = tempfile.mkdtemp(
            prefix="ztb-attack-", dir="/dev/shm" if os.path.isdir("/dev/shm") else None
        )
        self.ztb = os.path.join(self.build, "bin", "ztb")
        self.broken = []
        self.counts = {}
        self.environment = dict(os.environ)
        lib = os.path.join(self.build, "lib")
        self.environment["LD_LIBRARY_PATH"] = lib
        self.environment["PYTHONPATH"] = os.path.join(self.build, "python")
        self.environment["PYTHONDONTWRITEBYTECODE"] = "1"

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def count(self, what, number=1):
        self.counts[what] = self.counts.get(what, 0) + number

    def break_(self, text):
        self.broken.append(text)
        print(f"broken: {text}", file=sys.stderr)

    def times(self, full):
        """How often something is tried at this scale, of `full` times at scale 100."""
        return max(1, round(full * self.scale / 100))

    def run(self, *arguments, program=None, more=None, cwd=None, timeout=120):
        """Result of a run of the command; its status is minus the signal's number if one ended it."""
        environment = dict(self.environment)
        environment.update(more or {})
        try:
            return subprocess.run(
                [program or self.ztb, *arguments],
                env=environment,
                cwd=cwd or self.folder,
                stdin=subprocess.DEVNULL,
                capture_output=True,
                timeout=timeout,
                check=False,
            )
        except subprocess.TimeoutExpired:
            self.break_(f"{' '.join(arguments)} does not end")
            return subprocess.CompletedProcess(arguments, 124, b"", b"")

    def fine(self, *arguments, **options):
        done = self.run(*arguments, **options)
        if done.returncode != 0:
            raise RuntimeError(f"ztb {' '.join(arguments)}: {done.stderr.decode(errors='replace')}")
        return done

    def remove(self):
        subprocess.run(["umount", self.path("disk")], capture_output=True, check=False)
        shutil.rmtree(self.folder, ignore_errors=True)


def content(path):
    with open(path, "rb") as file:
        return file.read()


def make_table(attack, name, rows, seed):
    """Writes an RXF file with a parameter of two positions and a set with texts, by import."""
    numbers = random.Random(seed)
    with open(attack.path(name + ".csv"), "w", encoding="utf-8") as out:
        out.write("i,j,value,text\n")
        for row in range(rows):
            out.write(f"r{row // 100},c{row % 100},{numbers.random()!r},text {row % 97}\n")
    attack.fine(
        "import", name + ".rxf", "--from", name + ".csv",
        "--parameter", "p(i, j) = value", "--from", name + ".csv", "--set", "s(i, j) : text",
    )  # fmt: skip


def damaged_files(attack):
    """Damaged files through the command and Python: refused, or what the good file says."""
    count = attack.times(6000)
    folder = attack.path("damaged")
    os.mkdir(folder)
    attack.fine("emit", str(attack.seed), str(count), folder,
                program=os.path.join(attack.build, "bin", "ztb_attack"))  # fmt: skip
    door = subprocess.Popen(
        [sys.executable, os.path.join(HERE, "python_door.py")],
        env=attack.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
    )  # fmt: skip

    def through_python(path):
        door.stdin.write(path + "\n")
        door.stdin.flush()
        line = door.stdout.readline()
        return json.loads(line) if line else {"kind": "broken", "text": "the process ended"}

    symbols = {0: ("price", "food"), 1: ("wide",), 2: ("many",)}
    good = {
        base: {
            "python": through_python(os.path.join(folder, f"base{base}.rxf"))["digest"],
            **{
                symbol: attack.fine("show", f"base{base}.rxf", symbol, "--csv", cwd=folder).stdout
                for symbol in symbols[base]
            },
        }
        for base in symbols
    }
    for number in range(count):
        base = number % 3
        name = f"{number}.rxf"
        attack.count("cases")
        said = through_python(os.path.join(folder, name))
        if said["kind"] == "broken" or said.get("digest", good[base]["python"]) != good[base]["python"]:
            attack.break_(f"seed {attack.seed}, {name} through Python: {said.get('text', 'other content')}")
        attack.count(said["kind"])
        check = attack.run("check", name, cwd=folder)
        if check.returncode != 1 or not check.stderr + check.stdout:
            attack.break_(f"seed {attack.seed}, {name}: check ends with {check.returncode}")
        symbol = symbols[base][number // 3 % len(symbols[base])]
        out = os.path.join(folder, "out")
        shown = attack.run("export", name, symbol, "--csv", out, cwd=folder)
        if shown.returncode not in (0, 1) or (shown.returncode == 1 and not shown.stderr):
            attack.break_(f"seed {attack.seed}, {name}: export ends with {shown.returncode}")
        records = os.path.join(out, symbol + ".csv")
        if os.path.exists(records) and content(records) != good[base][symbol]:
            attack.break_(f"seed {attack.seed}, {name}: export gives other records")
        if os.path.exists(records) != (shown.returncode == 0):
            attack.break_(f"seed {attack.seed}, {name}: export ends with {shown.returncode}, and "
                          f"{'leaves a file' if shown.returncode else 'no file is there'}")
        shutil.rmtree(out, ignore_errors=True)
        os.remove(os.path.join(folder, name))
    door.stdin.close()
    if door.wait() != 0:
        attack.break_(f"the Python door ended with {door.returncode}")


def met(attack, call, at, how):
    """The environment in which a call fails, and whether it was met in the run before."""
    mark = attack.path("met")
    if os.path.exists(mark):
        os.remove(mark)
    return {
        "LD_PRELOAD": os.path.join(attack.build, "lib", "libztb_attack_calls.so"),
        "ATTACK_CALL": call,
        "ATTACK_AT": str(at),
        "ATTACK_HOW": how,
        "ATTACK_DONE": mark,
    }


def read_errors(attack):
    """Each read of a file fails once: the whole output with exit code 0, or an error."""
    make_table(attack, "reads", 70000, 1)
    whole = {command: attack.fine(*command).stdout for command in (
        ("show", "reads.rxf", "p", "--csv"), ("show", "reads.rxf", "s", "--csv"), ("check", "reads.rxf"),
        ("info", "reads.rxf"), ("diff", "reads.rxf", "reads.rxf"))}  # fmt: skip
    for command, output in whole.items():
        for how in (str(errno.EIO), "short"):
            # All reads in the large; a few, anywhere, in the small.
            at = 1 if attack.scale >= 50 else 1 + attack.random.randrange(9)
            while True:
                done = attack.run(*command, more=met(attack, "pread", at, how))
                if not os.path.exists(attack.path("met")):
                    break
                attack.count("cases")
                attack.count("refused" if done.returncode == 1 else "delivered")
                if done.returncode == 0 and done.stdout != output:
                    attack.break_(f"{' '.join(command)}, read {at} with {how}: other output")
                elif done.returncode not in (0, 1) or (done.returncode == 1 and not done.stderr):
                    attack.break_(f"{' '.join(command)}, read {at} with {how}: {done.returncode}")
                elif how == "short" and done.returncode != 0:
                    attack.break_(f"{' '.join(command)}: a short read at {at} is no error")
                at += 1 if attack.scale >= 50 else 9
    program = (
        "import ztb, sys\n"
        "with ztb.open('reads.rxf') as db:\n"
        "    try:\n"
        "        print(sum(1 for _ in db['p']), sum(1 for _ in db['s']))\n"
        "    except ztb.Error as error:\n"
        "        sys.exit(f'refused: {error}')\n"
    )
    for at in range(1, 1000):
        done = attack.run("-c", program, program=sys.executable,
                          more=met(attack, "pread", at, str(errno.EIO)))  # fmt: skip
        if not os.path.exists(attack.path("met")):
            break
        attack.count("cases")
        attack.count("refused" if done.returncode == 1 else "delivered")
        if done.returncode == 0 and done.stdout.split() != [b"70000", b"70000"]:
            attack.break_(f"Python, read {at}: {done.stdout}")
        if done.returncode not in (0, 1):
            attack.break_(f"Python, read {at}: {done.returncode}")


def write_errors(attack):
    """Each call of a write fails once, or ends the process: the old file or the new one, whole."""
    make_table(attack, "writes", 30000, 2)
    make_table(attack, "old", 300, 3)
    os.mkdir(attack.path("t"))
    target = attack.path("t", "target.rxf")
    old = content(attack.path("old.rxf"))
    writes = {
        "copy": (attack.ztb, ["copy", "writes.rxf", "p", "t/target.rxf"]),
        "import": (attack.ztb, ["import", "t/target.rxf", "--from", "writes.csv",
                                "--parameter", "p(i, j) = value"]),
        "Python": (sys.executable, ["-c", "import ztb\nztb.open('writes.rxf').write('t/target.rxf')"]),
    }  # fmt: skip
    full = attack.scale >= 50
    for name, (program, arguments) in writes.items():
        attack.fine(*arguments, program=program)
        new = content(target)
        for call in ("open", "pwrite", "fsync", "fchmod", "ftruncate", "rename"):
            ways = ["end", "after", str(errno.EIO)]
            if call == "pwrite":
                ways += [str(errno.ENOSPC), "short"]
            for how in ways if full else [attack.random.choice(ways)]:
                for at in range(1, 1000):
                    with open(target, "wb") as out:
                        out.write(old)
                    done = attack.run(*arguments, program=program, more=met(attack, call, at, how))
                    if not os.path.exists(attack.path("met")):
                        break
                    attack.count("cases")
                    now = content(target)
                    what = f"{name}, {call} {at} with {how}"
                    if now not in (old, new):
                        attack.break_(f"{what}: the target is neither old nor new")
                    attack.count("old file" if now == old else "new file")
                    if done.returncode == 0 and now != new:
                        attack.break_(f"{what}: success without the new file")
                    if done.returncode != 0 and how == "short":
                        attack.break_(f"{what}: a short write is no error")
                    if done.returncode > 1 or (done.returncode < 0 and how not in ("end", "after")):
                        attack.break_(f"{what}: ends with {done.returncode}")
        attack.fine(*arguments, program=program)
        if sorted(os.listdir(attack.path("t"))) != ["target.rxf"]:
            attack.break_(f"{name}: leaves {os.listdir(attack.path('t'))}")


def kills(attack):
    """Writers are killed at any moment: the target is the old file or the new one, whole."""
    make_table(attack, "big", 60000, 4)
    make_table(attack, "small", 200, 5)
    os.mkdir(attack.path("k"))
    target = attack.path("k", "target.rxf")
    arguments = [attack.ztb, "import", "k/target.rxf", "--from", "big.csv", "--parameter", "p(i, j) = value"]
    began = time.monotonic()
    attack.fine(*arguments[1:])
    lasts = time.monotonic() - began
    new, old = content(target), content(attack.path("small.rxf"))
    for _ in range(attack.times(300)):
        with open(target, "wb") as out:
            out.write(old)
        writer = subprocess.Popen(arguments, env=attack.environment, cwd=attack.folder,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)  # fmt: skip
        time.sleep(attack.random.random() * lasts * 1.2)
        writer.kill()
        writer.wait()
        attack.count("cases")
        now = content(target)
        attack.count("old file" if now == old else "new file")
        if now not in (old, new):
            attack.break_("a killed writer leaves a target that is neither old nor new")
        if attack.run("check", target).returncode != 0:
            attack.break_("a killed writer leaves a file that check refuses")
    attack.fine(*arguments[1:])
    if os.listdir(attack.path("k")) != ["target.rxf"]:
        attack.break_(f"the next write leaves {os.listdir(attack.path('k'))}")


def full_disk(attack):
    """A disk of little space: every write that does not fit fails, and the old file stays."""
    make_table(attack, "much", 60000, 6)
    make_table(attack, "few", 200, 7)
    disk = attack.path("disk")
    os.mkdir(disk)
    mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=2m", "tmpfs", disk],
                             capture_output=True, check=False)  # fmt: skip
    if mounted.returncode != 0:
        attack.break_(f"no small disk can be mounted here: {mounted.stderr.decode().strip()}")
        return
    try:
        target = os.path.join(disk, "target.rxf")
        old = content(attack.path("few.rxf"))
        for step in range(attack.times(200)):
            with open(target, "wb") as out:
                out.write(old)
            free = os.statvfs(disk)
            ballast = attack.random.randrange(free.f_bavail * free.f_frsize)
            with open(os.path.join(disk, "ballast"), "wb") as out:
                out.write(bytes(ballast))
            if step % 2 == 0:
                done = attack.run("copy", "much.rxf", "p", target)
            else:
                done = attack.run("-c", f"import ztb\nztb.open('much.rxf').write({target!r})",
                                  program=sys.executable)  # fmt: skip
            attack.count("cases")
            if done.returncode == 0:
                attack.count("new file")
                if attack.run("check", target).returncode != 0:
                    attack.break_("success on a full disk without a whole file")
            else:
                attack.count("old file")
                if content(target) != old:
                    attack.break_("a full disk costs the old file")
                if b"Disk full" not in done.stderr:
                    attack.break_(f"a full disk is not told: {done.stderr.decode()}")
            os.remove(os.path.join(disk, "ballast"))
    finally:
        subprocess.run(["umount", disk], check=False)


def two_writers(attack):
    """Two programs write one file again and again while others read it: always a whole file."""
    make_table(attack, "one", 20000, 8)
    make_table(attack, "two", 30000, 9)
    os.mkdir(attack.path("w"))
    attack.fine("copy", "one.rxf", "p", "w/t.rxf")
    one = content(attack.path("w", "t.rxf"))
    attack.fine("copy", "two.rxf", "p", "w/t.rxf")
    wholes = (one, content(attack.path("w", "t.rxf")))
    script = 'for i in $(seq {0}); do "{1}" copy {2}.rxf p w/t.rxf 2>>w.err || echo $? >>w.failed; done'
    rounds = attack.times(400)
    writers = [
        subprocess.Popen(["sh", "-c", script.format(rounds, attack.ztb, name)],
                         env=attack.environment, cwd=attack.folder, stdout=subprocess.DEVNULL)
        for name in ("one", "two")
    ]  # fmt: skip
    while any(writer.poll() is None for writer in writers):
        attack.count("cases")
        if content(attack.path("w", "t.rxf")) not in wholes:
            attack.break_("a reader sees a file that nobody wrote")
        done = attack.run("show", "w/t.rxf", "p", "--csv")
        lines = done.stdout.count(b"\n")
        if done.returncode == 0 and lines not in (20001, 30001):
            attack.break_(f"show of a file being replaced gives {lines} lines")
        if done.returncode != 0:
            attack.break_(f"show of a file being replaced: {done.stderr.decode()}")
    if os.path.exists(attack.path("w.failed")):
        refusals = content(attack.path("w.failed")).split()
        attack.count("refused writes", len(refusals))
        if any(code != b"1" for code in refusals):
            attack.break_(f"a writer beside another ends with {set(refusals)}")
    if os.listdir(attack.path("w")) != ["t.rxf"]:
        attack.break_(f"two writers leave {os.listdir(attack.path('w'))}")


SWEEP_MODEL = """\\ two sources, one target
Minimize
 total: [ 2 rate_var(a) * ship(a,x) + 2 rate_var(b) * ship(b,x) ] / 2
Subject To
 need(x): ship(a,x) + ship(b,x) - demand_var(x) >= 0
Bounds
 rate_var(a) = 3
 rate_var(b) = 5
 demand_var(x) = 10
 ship(a,x) <= 6
 ship(b,x) <= 20
End
"""


def sweeps(attack):
    """Processes of a sweep are killed and stopped, the sweep is resumed: all results, and right."""
    count = 6000
    with open(attack.path("m.lp"), "w", encoding="utf-8") as out:
        out.write(SWEEP_MODEL)
    with open(attack.path("rates.csv"), "w", encoding="utf-8") as out:
        out.write("s,source,rate\n")
        for number in range(count):
            out.write(f"n{number},a,{1 + number * 7 % 11}\nn{number},b,{1.5 + number * 5 % 13}\n")
    with open(attack.path("names.csv"), "w", encoding="utf-8") as out:
        out.write("s\n" + "".join(f"n{number}\n" for number in range(count)))
    attack.fine("import", "sc.rxf", "--from", "names.csv", "--set", "s", "--from", "rates.csv",
                "--parameter", "rate(s, source)")  # fmt: skip
    base = ["sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--report", "ship", "--jobs", "2"]
    attack.fine(*base, "--out", "good.rxf")
    for step in range(attack.times(60)):
        out = f"out{step}.rxf"
        sweep = [attack.ztb, *base, "--out", out, "--resume", "--stall", "20"]
        for _ in range(20):
            run = subprocess.Popen(sweep, env=attack.environment, cwd=attack.folder,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)  # fmt: skip
            time.sleep(attack.random.random() * 0.8)
            children = subprocess.run(["ps", "-o", "pid=", "--ppid", str(run.pid)],
                                      capture_output=True, check=False).stdout.split()  # fmt: skip
            what = attack.random.choice(("parent", "worker", "worker", "stop", "nothing"))
            attack.count(f"{what} hit" if what != "nothing" else "left alone")
            if what == "parent":
                run.kill()
            elif children and what != "nothing":
                try:
                    os.kill(int(attack.random.choice(children)),
                            signal.SIGSTOP if what == "stop" else signal.SIGKILL)  # fmt: skip
                except ProcessLookupError:
                    pass
            said = run.communicate(timeout=300)[1].decode(errors="replace")
            if run.returncode == 0:
                break
            if what != "parent" and run.returncode != 0:
                attack.break_(f"a sweep whose {what} was hit ends with {run.returncode}: {said}")
        attack.count("cases")
        attack.fine(*sweep[1:])
        same = attack.run("diff", "good.rxf", out, "--tolerance", "1e-9")
        if same.returncode != 0:
            attack.break_(f"a resumed sweep has other results: {same.stdout.decode()[:400]}")
        left = [name for name in os.listdir(attack.folder) if out in name and name != out]
        if left:
            attack.break_(f"a sweep leaves {left}")


PARTS = {
    "damaged": damaged_files,
    "read-errors": read_errors,
    "write-errors": write_errors,
    "kills": kills,
    "full-disk": full_disk,
    "two-writers": two_writers,
    "sweeps": sweeps,
}


def main():
    parser = argparse.ArgumentParser(description="Attacks the ztb command and the Python package.")
    parser.add_argument("--build", required=True, help="build folder")
    parser.add_argument("--part", action="append", choices=PARTS, help="only this; may be repeated")
    parser.add_argument("--scale", type=float, default=1, help="1: with the tests; 100: all of it")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    broken = 0
    for part in options.part or PARTS:
        attack = Attack(options.build, options.scale, options.seed)
        try:
            PARTS[part](attack)
        finally:
            attack.remove()
        counts = ", ".join(f"{number} {what}" for what, number in attack.counts.items() if what != "cases")
        print(f"| {PARTS[part].__doc__.split(':')[0]} | {attack.counts.get('cases', 0)} | {counts} "
              f"| {len(attack.broken)} |", flush=True)  # fmt: skip
        broken += len(attack.broken)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
