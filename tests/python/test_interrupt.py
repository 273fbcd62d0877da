"""Ctrl-C while the library works."""

import os
import signal
import subprocess
import sys
import threading

import numpy as np
import pytest

import ztb

SIZE = 120


@pytest.fixture(scope="module")
def big(tmp_path_factory):
    """A file of one parameter, a record for each cell of a cube, whose values count from 1."""
    path = tmp_path_factory.mktemp("files") / "big.rxf"
    with ztb.Database() as db:
        i = db.add_set("i")
        i.extend([f"l{n}" for n in range(SIZE)])
        cube = np.arange(1.0, SIZE**3 + 1).reshape(SIZE, SIZE, SIZE)
        db.add_parameter("p", [i, i, i]).from_numpy(cube)
        db.write(path)
    return path


def interrupt_when(begun):
    """Sends Ctrl-C to this process once the event has come."""

    def send():
        begun.wait()
        os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=send)
    thread.start()
    return thread


@pytest.mark.parametrize("store", ["map", "vector", "trie"])
def test_reading_a_symbol_ends_and_can_be_repeated(big, store):
    with ztb.open(big, store=store) as db:
        p = db["p"]
        begun = threading.Event()
        sender = interrupt_when(begun)
        with pytest.raises(KeyboardInterrupt):
            begun.set()
            len(p)
            threading.Event().wait(60)
        sender.join()
        assert len(p) == SIZE**3
        assert p.to_numpy().sum() == SIZE**3 * (SIZE**3 + 1) / 2
        p["l0", "l0", "l0"] = 5
        assert p["l0", "l0", "l0"] == 5.0


def test_closing_after_an_interrupted_read_is_safe(big):
    for _ in range(3):
        db = ztb.open(big)
        begun = threading.Event()
        sender = interrupt_when(begun)
        with pytest.raises(KeyboardInterrupt):
            begun.set()
            db["p"]["l0", "l0", "l0"]
            threading.Event().wait(60)
        sender.join()
        db.close()
        with pytest.raises(ztb.Error, match="The database is closed"):
            len(db)


def test_a_database_may_go_while_its_records_are_read(big):
    for _ in range(3):
        begun = threading.Event()
        sender = interrupt_when(begun)
        with pytest.raises(KeyboardInterrupt):
            begun.set()
            len(ztb.open(big)["p"])
            threading.Event().wait(60)
        sender.join()


class Slow:
    """A number that is known when an event has come."""

    def __init__(self, asked, known):
        self.asked, self.known = asked, known

    def __float__(self):
        self.asked.set()
        assert self.known.wait(60)
        return 3.0


ENDLESS_QUERY = """
import os, signal, threading, ztb
db = ztb.Database()
db.add_parameter("p", ["*"])["a"] = 4
begun = threading.Event()
class One:
    def __index__(self):
        begun.set()
        return 1
def run():
    begun.wait()
    for _ in range(1_000_000):  # other threads run while the query does
        pass
    os.kill(os.getpid(), signal.SIGINT)
threading.Thread(target=run).start()
query = "with recursive c(x) as (select ? union all select x from c) select max(x) from c"
try:
    ztb.sql(db, query, One())
except KeyboardInterrupt:
    print(ztb.sql(db, "select value from p")["value"].tolist())
"""


def test_a_query_that_gives_no_row_ends():
    run = subprocess.run(
        [sys.executable, "-c", ENDLESS_QUERY], capture_output=True, text=True, timeout=60
    )
    assert (run.stdout, run.stderr) == ("[4.0]\n", "")


def test_waiting_for_another_thread_ends(db):
    p = db.add_parameter("p", ["*"])
    asked, known = threading.Event(), threading.Event()
    other = threading.Thread(target=lambda: p._native.put(("a",), (Slow(asked, known),)))
    other.start()
    asked.wait()
    begun = threading.Event()
    sender = interrupt_when(begun)
    with pytest.raises(KeyboardInterrupt):
        begun.set()
        p["b"] = 4
    sender.join()
    known.set()
    other.join()
    assert dict(p) == {("a",): 3.0}


def test_an_operation_inside_of_another_is_an_error(db):
    p = db.add_parameter("p", ["*"])

    class Nested:
        def __float__(self):
            with pytest.raises(ztb.Error, match="in the middle of another operation"):
                len(p)
            return 2.0

    p._native.put(("a",), (Nested(),))
    assert dict(p) == {("a",): 2.0}


INTERRUPTED = """
import os, signal, sys, threading, ztb
begun = threading.Event()
def send():
    begun.wait()
    os.kill(os.getpid(), signal.SIGINT)
threading.Thread(target=send).start()
p = ztb.open(sys.argv[1])["p"]
begun.set()
print(len(p) and threading.Event().wait(60))
"""


def test_a_program_ends_by_ctrl_c(big):
    run = subprocess.run(
        [sys.executable, "-c", INTERRUPTED, str(big)], capture_output=True, text=True
    )
    assert run.returncode == -signal.SIGINT and run.stdout == ""
    assert run.stderr.splitlines()[-1].startswith("KeyboardInterrupt")
