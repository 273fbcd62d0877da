"""Several threads: each with a database of its own, and all with one."""

import threading

import numpy as np
import pytest

import ztb

RECORDS = 50_000


def together(work, count):
    """Runs work(0) to work(count - 1) in threads and raises what one of them raised."""
    failures = []
    start = threading.Barrier(count)

    def run(number):
        try:
            start.wait()
            work(number)
        except BaseException as failure:
            failures.append(failure)

    threads = [threading.Thread(target=run, args=(number,)) for number in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if failures:
        raise failures[0]


@pytest.fixture(scope="module")
def numbers(tmp_path_factory):
    """A file of one parameter over one position, and the sum of its values."""
    path = tmp_path_factory.mktemp("files") / "numbers.rxf"
    with ztb.Database() as db:
        i = db.add_set("i")
        labels = [f"l{n}" for n in range(RECORDS)]
        db.add_labels(labels)
        keys = np.arange(1, RECORDS + 1, dtype=np.int32).reshape(-1, 1)
        i._native.put_elements(keys, None, db._native.new_labels())
        db.add_parameter("p", [i]).from_numpy(np.arange(1.0, RECORDS + 1))
        db.write(path)
    return path, RECORDS * (RECORDS + 1) / 2


def test_threads_with_their_own_databases(numbers, tmp_path):
    path, total = numbers

    def work(number):
        for _ in range(3):
            with ztb.open(path, store="map" if number % 2 else "vector") as db:
                assert sum(db["p"].values()) == total
                db["p"]["l1"] = 5
                db.write(tmp_path / f"{number}.rxf")
            with ztb.open(tmp_path / f"{number}.rxf") as db:
                assert db["p"].to_numpy().sum() == total + 3

    together(work, 4)


def test_threads_with_one_database_take_turns(numbers):
    path, total = numbers
    with ztb.open(path) as db:

        def work(number):
            own = db.add_parameter(f"own{number}", ["*"])
            for turn in range(20):
                own[f"t{turn}"] = turn
                assert db["p"].to_numpy().sum() == total
                own.from_pandas(own.to_pandas())
                assert dict(own) == {(f"t{step}",): float(step) for step in range(turn + 1)}
                own.copy_from(db["p"])
                assert len(own) == RECORDS
                own.clear()
                for step in range(turn + 1):
                    own[f"t{step}"] = step

        together(work, 4)
        assert sum(db["p"].values()) == total


def test_copies_between_two_databases_in_both_directions(numbers):
    path, total = numbers
    with ztb.open(path) as one, ztb.open(path) as other:

        def work(number):
            source, target = (one, other) if number % 2 else (other, one)
            copy = target.add_parameter(f"copy{number}", ["*"])
            for _ in range(5):
                copy.copy_from(source["p"])
            assert sum(copy.values()) == total

        together(work, 4)


def test_closing_while_another_thread_works(numbers):
    path, total = numbers
    for _ in range(5):
        db = ztb.open(path)

        def work(number):
            try:
                if number == 0:
                    db.close()
                else:
                    assert sum(db["p"].values()) == total
            except ztb.Error as error:
                assert str(error) == "The database is closed"

        together(work, 4)
        assert db.closed
