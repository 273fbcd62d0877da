"""The command of Windows on a console, which Wine makes of a pseudo-terminal, and beside programs
that stop reading it. One of the checks below is run by its name; the first argument is ztb.exe."""

import os
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
from pathlib import Path

WINE = "/usr/lib/wine/wine64"
#: After so many seconds something has gone wrong.
LONGEST = 120


class Console:
    """A run of the command with a console of its own."""

    def __init__(self, program, *words):
        self._pid, self._terminal = pty.fork()
        if self._pid == 0:
            os.execv(WINE, [WINE, program, *words])
        self._written = b""
        self._ended = False
        self._begin = time.monotonic()

    @property
    def text(self):
        """What is on it. Wine moves behind spaces, and hides the cursor meanwhile."""
        seen = re.sub(rb"\x1b\[\d*C", b" ", self._written)
        return re.sub(rb"\x1b\[(\?25[lh]|K)|\r", b"", seen).decode()

    def until(self, is_there):
        """Reads until that is so, or the command has ended."""
        while not self._ended and not is_there():
            assert time.monotonic() - self._begin < LONGEST, self.text
            if select.select([self._terminal], [], [], 0.1)[0]:
                try:
                    self._written += os.read(self._terminal, 65536)
                except OSError:
                    self._ended = True

    def press_control_c(self):
        os.write(self._terminal, b"\x03")

    def wait(self):
        """Its exit code."""
        self.until(lambda: False)
        return os.waitstatus_to_exitcode(os.waitpid(self._pid, 0)[1])


def name(path):
    """A file of this system, as Windows' programs have it."""
    return "Z:" + str(path).replace("/", "\\")


def run(program, *words):
    return subprocess.run([WINE, program, *words], check=True, capture_output=True)


def knapsacks():
    """Things of much the same worth a size in five knapsacks: a point is found at once, and the
    proof that one is best takes longer than anybody waits. With none of the first size allowed
    nothing can be taken. The text, and the room of the first knapsack."""
    state = 12345

    def following():
        nonlocal state
        state = (state * 1664525 + 1013904223) % 2**32
        return 5 + (state >> 8) % 995

    sizes = [[following() for _ in range(5)] + [following() % 100] for _ in range(70)]
    worth = [f"+ {sum(size[:5]) // 5 + size[5]} x{n}" for n, size in enumerate(sizes)]
    lines = ["Maximize", " worth: " + "\n ".join(worth), "Subject To"]
    rooms = [sum(size[row] for size in sizes) // 2 for row in range(5)]
    for row, room in enumerate(rooms):
        terms = "\n ".join(f"+ {size[row]} x{n}" for n, size in enumerate(sizes))
        lines.append(f" r{row}: {terms} <= {room}")
    lines += ["Binaries", *(f" x{n}" for n in range(len(sizes))), "End", ""]
    return "\n".join(lines), rooms[0]


def text_and_head(program, folder):
    """Chars of several bytes stay whole, and the head of a table stands out."""
    (folder / "p.csv").write_text("town,value\nKöln,1\n東京,2\n", encoding="utf-8")
    table = name(folder / "p.csv")
    run(program, "import", name(folder / "p.rxf"), "--from", table, "--parameter", "p(town)")
    console = Console(program, "show", name(folder / "p.rxf"), "p")
    assert console.wait() == 0
    for line in ("\x1b[1mtown  value\x1b[0m", "Köln      1", "2 records"):
        assert line in console.text, console.text
    assert "東京" in console.text.replace(" ", ""), console.text


def interrupt_of_a_solve(program, folder):
    """Ctrl-C ends a solve, which tells the best point and its bound."""
    (folder / "k.lp").write_text(knapsacks()[0])
    console = Console(program, "solve", name(folder / "k.lp"), "--solver", "cbc")
    console.until(lambda: "solving with cbc: best" in console.text)
    console.press_control_c()
    assert console.wait() == 0, console.text
    told = r"objective +\d+\nstatus +feasible, terminated\nbound +\d+"
    assert re.search(told, console.text), console.text


def interrupt_of_a_sweep(program, folder):
    """Ctrl-C ends a sweep, which keeps what is solved."""
    text, room = knapsacks()
    (folder / "k.lp").write_text(text)
    (folder / "rooms.csv").write_text(f"s,room\neasy,0\nhard,{room}\n")
    scenarios = name(folder / "s.rxf")
    table = name(folder / "rooms.csv")
    run(program, "import", scenarios, "--from", table, "--set", "s", "--parameter", "room(s)")
    console = Console(
        program, "sweep", name(folder / "k.lp"), "--scenarios", scenarios, "--over", "s",
        "--drive", "room = rhs of r0", "--chunk", "1", "--jobs", "2", "--solver", "cbc",
        "--out", name(folder / "out.rxf"),
    )  # fmt: skip
    parts = folder / "out.rxf.parts"
    console.until(lambda: any(parts.glob("*-0-1.rxf")))
    console.press_control_c()
    assert console.wait() == 1, console.text
    assert "ztb: was asked to end; 1 of 2 scenarios are not solved yet" in console.text
    assert len(list(parts.glob("*-0-1.rxf"))) == 1
    assert not (folder / "out.rxf").exists()


def a_reader_that_is_gone(program, folder):
    """A program that has read enough is nothing to complain of."""
    rows = "".join(f"{n},{n}\n" for n in range(200000))
    (folder / "p.csv").write_text("n,value\n" + rows)
    table = name(folder / "p.csv")
    run(program, "import", name(folder / "p.rxf"), "--from", table, "--parameter", "p(n)")
    file = name(folder / "p.rxf")
    for words in (["show", file, "p"], ["export", file, "p", "--to", "-"]):
        with subprocess.Popen(
            [WINE, program, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE
        ) as running:
            assert running.stdout.read(10)
            running.stdout.close()
            assert running.stderr.read() == b""
            assert running.wait(LONGEST) == 1


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as scratch:
        globals()[sys.argv[2]](sys.argv[1], Path(scratch))
