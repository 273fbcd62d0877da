"""On every store, records are assigned and deleted as on the tree map, or refused unchanged."""

import os
import random

import numpy as np
import pandas as pd
import pytest

import ztb

STORES = ["map", "vector", "trie"]

ASCENDING = "records reach this store in ascending order; "


def in_set(label, dimension):
    """The key of a set with the same label at each position."""
    return label if dimension == 1 else (label,) * dimension


@pytest.fixture(params=STORES)
def store(request):
    return request.param


@pytest.fixture
def db(store):
    with ztb.Database(store=store) as database:
        yield database


def reopened(db, path, store):
    """What a file of the database gives back."""
    db.write(path)
    return ztb.open(path, store=store)


def test_a_key_assigned_twice_is_one_record(db, store, tmp_path):
    p = db.add_parameter("p", ["*"])
    p["a"] = 1
    p["a"] = 2
    assert dict(p) == {("a",): 2.0} and len(p) == 1
    with reopened(db, tmp_path / "a.rxf", store) as copy:
        assert dict(copy["p"]) == {("a",): 2.0}


def test_every_key_can_be_assigned_again(db):
    p = db.add_parameter("p", ["*", "*"])
    keys = [(first, second) for first in "abc" for second in "abc"]
    db.add_labels(["a", "b", "c"])
    for turn in range(3):
        for value, key in enumerate(keys):
            p[key] = value + 10 * turn
            assert p[key] == value + 10 * turn and len(p) == (len(keys) if turn else value + 1)
    assert dict(p.items()) == {key: value + 20.0 for value, key in enumerate(keys)}


def test_a_deleted_key_leaves_its_neighbours_alone(db):
    p = db.add_parameter("p", ["*"])
    for value, label in enumerate("abcd"):
        p[label] = value
        p[label] = 10 + value
    del p["b"]
    assert dict(p) == {("a",): 10.0, ("c",): 12.0, ("d",): 13.0}
    del p["a"]
    del p["d"]
    assert dict(p) == {("c",): 12.0}
    with pytest.raises(KeyError):
        del p["a"]


@pytest.mark.parametrize("dimension", [1, 2, 3, 4])
def test_records_may_be_deleted_one_by_one_and_come_again(db, dimension):
    p = db.add_parameter("p", ["*"] * dimension)
    keys = [tuple(f"l{place}" for place in (n, n % 3, n // 2, n)[:dimension]) for n in range(6)]
    db.add_labels([f"l{n}" for n in range(6)])
    for turn in range(2):
        for value, key in enumerate(keys):
            p[key] = value
        left = dict(p.items())
        assert left == {key: float(value) for value, key in enumerate(keys)}
        for key in keys if turn else reversed(keys):
            assert p.pop(key) == left.pop(key)
            assert dict(p.items()) == left and list(p) == list(left)
        assert len(p) == 0 and list(p.items()) == []


def test_an_opened_file_takes_new_values_and_is_written_with_them(store, tmp_path):
    path = tmp_path / "diet.rxf"
    with ztb.Database() as db:
        food = db.add_set("food")
        food.extend(["Milk", "Tofu", "Rice"])
        price = db.add_parameter("p", ["food"])
        price["Milk"], price["Tofu"] = 11, 4
        db.write(path)
    with ztb.open(path, store=store) as db:
        price = db["p"]
        price["Milk"] = 12.5
        price["Milk"] = 13
        price["Rice"] = 2
        del price["Tofu"]
        db["food"]["Milk"] = "1 qt."
        assert price["Milk"] == 13.0
        db.write(path)
    with ztb.open(path, store=store) as db:
        assert dict(db["p"].items()) == {("Milk",): 13.0, ("Rice",): 2.0}
        assert dict(db["food"].items()) == {"Milk": "1 qt.", "Tofu": "", "Rice": ""}


def test_the_first_record_of_an_empty_symbol_has_its_values(db):
    p = db.add_parameter("p", ["*", "*", "*"])
    p["a", "b", "c"] = 3
    assert dict(p) == {("a", "b", "c"): 3.0}
    x = db.add_variable("x", ["*", "*"], subtype=3)
    x["a", "b"] = 2
    assert dict(x) == {("a", "b"): (2, 0, 0, np.inf, 1)}
    s = db.add_set("s", ["*", "*"])
    s["a", "b"] = "text"
    assert dict(s.items()) == {("a", "b"): "text"}


def test_a_variable_keeps_the_values_that_are_not_assigned(db):
    x = db.add_variable("x", ["*"], subtype=3)
    x["a"] = (1, 2, 3, 4, 5)
    x["a"] = 9
    assert x["a"] == (9, 2, 3, 4, 5)
    free = db.add_variable("free")
    free.update({(): (1, 2)})
    free[()] = 9
    assert free[()] == (9, 2, -np.inf, np.inf, 1)


def test_scalars_come_and_go(db):
    pi = db.add_parameter("pi")
    for value in [3.0, 4.0]:
        assert () not in pi and len(pi) == 0
        pi.value = value
        pi.value = value + 0.25
        assert pi.value == value + 0.25 and dict(pi) == {(): value + 0.25} and () in pi
        del pi[()]
        with pytest.raises(KeyError, match=r'Cannot find record \("\) in Symbol pi'):
            pi.value
    pi.value = 5
    pi.clear()
    assert len(pi) == 0 and dict(pi) == {}
    pi.from_pandas(pd.Series([6.0]))
    pi.from_pandas(pd.Series([], dtype=float))
    assert len(pi) == 0


def test_a_cleared_symbol_takes_its_last_key_again(db):
    for dimension in (1, 2, 3):
        p = db.add_parameter(f"p{dimension}", ["*"] * dimension)
        s = db.add_set(f"s{dimension}", ["*"] * dimension)
        for _ in range(3):
            for value, label in enumerate("abc"):
                p[(label,) * dimension] = value
                s[(label,) * dimension] = f"text {label}"
            p.clear()
            s.clear()
            assert dict(p) == {} and dict(s) == {}
            p[("c",) * dimension] = 7
            s.add(*("c",) * dimension)
            assert dict(p.items()) == {("c",) * dimension: 7.0}
            assert dict(s.items()) == {in_set("c", dimension): ""}
            p.clear()
            s.clear()


def test_frames_replace_the_same_records_again_and_again(db):
    for dimension in (1, 2, 3):
        p = db.add_parameter(f"p{dimension}", ["*"] * dimension)
        s = db.add_set(f"s{dimension}", ["*"] * dimension)
        for n, label in enumerate("abc"):
            p[(label,) * dimension] = n
        series = p.to_pandas()
        for _ in range(3):
            p.from_pandas(series)
            assert p.to_pandas().equals(series)
            p.from_pandas(series.iloc[-1:])
            assert p.to_pandas().equals(series.iloc[-1:])
            s.from_pandas(series.astype(str))
            s.from_pandas(series.astype(str).iloc[-1:])
            assert dict(s.items()) == {in_set("c", dimension): "2.0"}


@pytest.mark.parametrize("store", STORES)
def test_arrays_replace_the_same_records_again_and_again(db):
    for dimension in (1, 2, 3):
        sets = [db.add_set(f"d{dimension}{place}") for place in range(dimension)]
        for domain in sets:
            domain.extend(["a", "b"])
        p = db.add_parameter(f"p{dimension}", sets)
        s = db.add_set(f"s{dimension}", sets)
        cube = np.arange(1.0, 2**dimension + 1).reshape((2,) * dimension)
        for keep_zeros in (False, True, False):
            p.from_numpy(cube, keep_zeros=keep_zeros)
            assert (p.to_numpy() == cube).all() and len(p) == cube.size
            s.from_numpy(cube > 1)
            assert (s.to_numpy() == (cube > 1)).all() and len(s) == cube.size - 1


def test_an_array_of_truth_follows_the_labels_of_its_axis():
    for store in STORES:
        with ztb.Database(store=store) as db:
            db.add_labels(["c", "b", "a"])
            s = db.add_set("s")
            for label in ["c", "b", "a"]:
                s.add(label)
            t = db.add_set("t", ["s"])
            t.from_numpy([True, False, True])
            assert list(t) == ["c", "a"]


def test_a_key_before_others_is_added_or_refused_unchanged(db, store):
    p = db.add_parameter("p", ["*", "*"])
    db.add_labels(["a", "b", "c"])
    p["b", "b"] = 1
    p["c", "a"] = 2
    before, labels = dict(p.items()), db.labels
    for key in [("b", "c"), ("a", "a"), ("c", "A "), ("a", "new")]:
        if store != "vector" or key in p:
            p[key] = 5
            assert p.pop(key) == 5.0
            if ("c", "a") not in p:
                p["c", "a"] = 2
        else:
            with pytest.raises(ztb.Error) as failure:
                p[key] = 5
            labels_of_key = '","'.join(key)
            assert str(failure.value) == (
                f'{ASCENDING}("{labels_of_key}") stands before the last record ("c","a") of '
                "symbol p; the map store takes records in any order"
            )
            assert db.labels == labels
        assert dict(p.items()) == before
    p["c", "new"] = 3
    p["newer", "a"] = 4
    assert dict(p.items()) == {**before, ("c", "new"): 3.0, ("newer", "a"): 4.0}


def test_blank_and_empty_labels_are_no_labels(db):
    p = db.add_parameter("p", ["*", "*"])
    p["a", "b"] = 1
    labels = db.labels
    for blank in [" ", "   "]:
        for key in [("a", blank), (blank, "b"), ("new", blank)]:
            with pytest.raises(ValueError, match="a label of blanks alone is none"):
                p[key] = 2
            assert key not in p and p.get(key) is None
            with pytest.raises(KeyError, match="Cannot find record"):
                p[key]
            with pytest.raises(KeyError, match="Cannot find record"):
                del p[key]
        with pytest.raises(ValueError, match="a label of blanks alone is none"):
            db.add_labels(["new", blank])
    with pytest.raises(ztb.Error, match="Label is empty"):
        p["new", ""] = 2
    with pytest.raises(ztb.Error, match="Label is empty"):
        p.from_pandas(pd.Series([2.0], index=pd.MultiIndex.from_tuples([("new", "")])))
    assert ("a", "") not in p
    assert dict(p) == {("a", "b"): 1.0} and db.labels == labels


@pytest.mark.parametrize("store", ["map", "vector", "trie"])
def test_an_empty_label_comes_by_itself_or_from_a_file_and_is_used_like_any_other(store, tmp_path):
    with ztb.Database(store=store) as db:
        db.add_labels(["a", "", "A", ""])
        assert db.labels == ["a", ""]
        p = db.add_parameter("p", ["*", "*"])
        p["a", ""] = 1
        p.from_pandas(p.to_pandas() * 2)
        db.write(tmp_path / "a.rxf")
    with ztb.open(tmp_path / "a.rxf", store=store) as db:
        assert db.labels == ["a", ""]
        assert dict(db["p"]) == {("a", ""): 2.0}
        db["p"]["a", ""] = 3
        assert db["p"]["a", ""] == 3


def test_refused_records_leave_no_labels_behind(db):
    p = db.add_parameter("p", ["*", "*"])
    x = db.add_variable("x", ["*", "*"])
    s = db.add_set("s", ["*", "*"])
    p["a", "b"] = 1
    long = "x" * 64
    pairs = pd.MultiIndex.from_tuples
    for use in [
        lambda: p.update({("new", "it's \"both\""): 1}),
        lambda: p.update({("new", "tab\t"): 1}),
        lambda: p.update({("new", long): 1}),
        lambda: s.add("new", long),
        lambda: s.update({("new", "newer"): "x" * 256}),
        lambda: db.add_labels(["new", "newer", long]),
        lambda: p.from_pandas(pd.Series([1.0, 2.0], index=pairs([("new", "b"), ("newer", long)]))),
        lambda: p.from_pandas(pd.Series([1.0, 2.0], index=pairs([("new", "b"), ("NEW", "b ")]))),
        lambda: p.from_pandas(pd.Series([1.0, 2.0], index=pairs([("new", "b"), ("c", None)]))),
        lambda: s.from_pandas(pd.Series(["x" * 256], index=pairs([("new", "b")]))),
        lambda: s.from_pandas(pd.Series([3], index=pairs([("new", "b")]))),
        lambda: x.from_pandas(pd.Series([1.0, 2.0], index=pairs([("new", "b")] * 2))),
    ]:
        with pytest.raises((ztb.Error, ValueError, TypeError)):
            use()
        assert db.labels == ["a", "b"]
        assert dict(p) == {("a", "b"): 1.0} and len(s) == 0 and len(x) == 0


def test_a_variable_of_no_subtype_is_refused_unchanged(db):
    x = db.add_variable("x", ["*"], subtype=3)
    x["a"] = 1
    x.user_info = 12
    for use in [
        lambda: x.update({"new": 2}),
        lambda: x.from_pandas(pd.Series([1.0], index=["new"])),
    ]:
        with pytest.raises(ValueError, match="symbol x has the subtype 12, expected 0 to 9"):
            use()
        assert len(x) == 1 and db.labels == ["a"]
    with pytest.raises(ValueError, match="expected 0 to 6"):
        e = db.add_equation("e", ["*"])
        e.user_info = -1
        e["a"] = 1


def test_new_labels_count_as_the_library_compares_them(db):
    p = db.add_parameter("p", ["*", "*"])
    index = pd.MultiIndex.from_tuples([("b", "B  "), ("a", "b"), ("Ä", "ä"), ("x", "A")])
    p.from_pandas(pd.Series([1.0, 2.0, 3.0, 4.0], index=index))
    assert db.labels == ["b", "a", "Ä", "x", "ä"]
    assert dict(p.items()) == {("b", "b"): 1, ("a", "b"): 2, ("Ä", "ä"): 3, ("x", "a"): 4}


def test_nothing_is_printed(db, store, capfd):
    p = db.add_parameter("p", ["*"])
    for label in ["a", "b", "a", "b", "b"]:
        p[label] = 1
    p.from_pandas(p.to_pandas())
    for key in list(p):
        del p[key]
    p["a"] = 1
    s = db.add_set("s")
    s.extend(["a", "b", "b", "a"])
    p = db.add_parameter("q", [s])
    p.from_numpy([1.0, 2.0])
    p.copy_from(db["p"])
    assert capfd.readouterr() == ("", "")


def test_a_cube_of_more_cells_than_an_int_counts_is_refused(db):
    s = db.add_set("s")
    s.from_pandas(pd.Index([f"l{n}" for n in range(65536)]))
    p = db.add_parameter("p", [s, s])
    p["l1", "l1"] = 1
    with pytest.raises(ValueError, match="the array has more than 2147483647 cells"):
        p.to_numpy()
    with pytest.raises(ValueError, match="the array has 4294967296 cells, at most 2147483647"):
        p.from_numpy(np.broadcast_to(1.0, (65536, 65536)))
    assert dict(p) == {("l1", "l1"): 1.0}
    four = db.add_parameter("four", [s] * 4)
    with pytest.raises(ValueError, match="the array has more than 2147483647 cells"):
        four.to_numpy()


class Model:
    """A symbol beside a dict, both changed alike."""

    def __init__(self, db, store, kind, dimension, seed):
        self.random = random.Random(seed)
        self.labels = [f"l{n}" for n in range({1: 40, 2: 8, 3: 4}.get(dimension, 40))]
        # In an order of its own: labels are numbered as they come, and keys come in between.
        db.add_labels(self.random.sample(self.labels, len(self.labels)))
        self.number = {label: place for place, label in enumerate(db.labels)}
        self.symbol = getattr(db, f"add_{kind}")(f"{kind}{dimension}", ["*"] * dimension)
        self.sorted_only = store == "vector"
        self.kind, self.dimension, self.records = kind, dimension, {}

    def rank(self, key):
        return [self.number[label] for label in key]

    def sorted_records(self):
        return {key: self.records[key] for key in sorted(self.records, key=self.rank)}

    def value(self):
        if self.kind == "set":
            return self.random.choice(["", "one", "two", "three"])
        return self.random.choice([0.0, 1.5, -2.0, 3.25])

    def key(self):
        if self.records and self.random.random() < 0.3:
            return self.random.choice(list(self.records))
        return tuple(self.random.choices(self.labels, k=self.dimension))

    def assign(self, key, value):
        is_new = key not in self.records
        before_last = bool(self.records) and self.rank(key) < max(map(self.rank, self.records))
        if is_new and before_last and self.sorted_only:
            with pytest.raises(ztb.Error, match=ASCENDING):
                self.symbol[key] = value
            return
        self.symbol[key] = value
        self.records[key] = value

    def delete(self, key):
        if key in self.records:
            del self.symbol[key]
            del self.records[key]
        else:
            with pytest.raises(KeyError):
                del self.symbol[key]

    def step(self):
        action = self.random.random()
        key = self.key()
        if action < 0.45:
            self.assign(key, self.value())
        elif action < 0.65:
            self.delete(key)
        elif action < 0.9:
            assert self.symbol.get(key) == self.records.get(key)
            assert (key in self.symbol) == (key in self.records)
        elif action < 0.9995:
            assert len(self.symbol) == len(self.records)
        else:
            self.symbol.clear()
            self.records.clear()

    def check(self):
        assert list(self.symbol.items()) == self.items()

    def items(self):
        if self.kind == "set" and self.dimension == 1:
            return [(label, text) for (label,), text in self.sorted_records().items()]
        return list(self.sorted_records().items())


# 10^5 changes a store; a tenth of it where every step takes ten times as long.
SHARE = 0.1 if "ZTB_SHORT_SERIES" in os.environ else 1


@pytest.mark.parametrize(
    "kind, dimension, steps",
    [("parameter", 0, 10_000)]
    + [(kind, dimension, 15_000) for kind in ("parameter", "set") for dimension in (1, 2, 3)],
)
def test_random_changes_leave_what_a_dict_has(db, store, kind, dimension, steps, tmp_path):
    model = Model(db, store, kind, dimension, seed=dimension)
    for step in range(int(steps * SHARE)):
        model.step()
        if step % 100 == 0:
            model.check()
    model.check()
    with reopened(db, tmp_path / "all.rxf", store) as copy:
        assert list(copy[model.symbol.name].items()) == model.items()
