"""The objects under the package, used in ways in which the package never uses them."""

import copy
import itertools
import pickle

import numpy as np
import pytest

import ztb
from ztb import _native

CLASSES = [_native.Database, _native.Symbol, _native.NewLabels]


@pytest.mark.parametrize("made", CLASSES)
def test_objects_made_by_hand_are_refused(made):
    base = made.__mro__[1]
    for make in [
        made,
        lambda: made(None),
        lambda: made.__new__(made),
        lambda: object.__new__(made),
        lambda: base.__new__(made),
        lambda: type("Derived", (made,), {})(),
    ]:
        with pytest.raises(TypeError):
            make()


def test_objects_are_not_copied_or_initialised_again(diet):
    for made in [diet._native, diet["holds"]._native, diet._native.new_labels()]:
        for use in [
            lambda: copy.copy(made),
            lambda: copy.deepcopy(made),
            lambda: pickle.loads(pickle.dumps(made)),
            lambda: made.__init__(),
            lambda: made.__init__(None),
        ]:
            with pytest.raises(TypeError):
                use()
    assert diet["holds"]["Milk", "iron"] == 1.0


def test_things_of_a_closed_database_are_errors(diet):
    natives = [symbol._native for symbol in diet.symbols()]
    labels = diet._native.new_labels()
    universe = diet._native.symbol_at(-1)
    diet.close()
    for use in [
        lambda: labels.numbers(["a"]),
        lambda: diet._native.new_labels(),
        lambda: diet._native.open("x.rxf", 0),
        lambda: diet._native.close_file(True),
        lambda: universe.rows(),
        *(native.rows for native in natives),
        *(native.domains for native in natives),
    ]:
        with pytest.raises(ztb.Error, match="The database is closed"):
            use()
    with ztb.Database() as other:
        copied = other.add_parameter("p", ["*", "*"])._native
        for source in natives:
            with pytest.raises(ztb.Error, match="The database is closed"):
                copied.copy_from(source)


def test_symbols_of_another_database_are_refused(diet):
    with ztb.Database() as other:
        food = other.add_set("food")
        food.extend(["Milk", "Tofu"])
        foreign = [food._native] * 2
        holds = diet["holds"]._native
        keys = np.array([[1, 3]], dtype=np.int32)
        for use in [
            lambda: holds.to_dense(foreign, 0),
            lambda: holds.from_dense(foreign, np.ones((2, 2)), True),
            lambda: diet._native.add_symbol("new", 1, [(food._native, "food")], "", 0),
            lambda: holds.put_rows(keys, np.ones((1, 1)), [0], other._native.new_labels()),
        ]:
            with pytest.raises(ValueError, match="another database"):
                use()
    assert len(diet["holds"]) == 3


def test_labels_that_were_numbered_before_others_came_are_refused(diet):
    labels = diet._native.new_labels()
    keys = labels.numbers(["late", "later"]).reshape(1, 2)
    diet.add_labels(["soon"])
    with pytest.raises(ztb.Error, match="Labels were added to the database meanwhile"):
        diet["holds"]._native.put_rows(keys, np.ones((1, 1)), [0], labels)
    assert len(diet["holds"]) == 3 and "late" not in diet.labels


def test_no_argument_crashes(diet, tmp_path):
    diet.add_alias("dish", diet["food"])
    diet.add_variable("x", ["food"]).update({"Milk": 1})
    diet.add_parameter("pi").value = 3
    database = diet._native
    odd = [None, -1, 0, 1, 2**31 - 1, 2**40, 1.5, "", "a", " ", (), ("a",), ("a",) * 25, [0], [99]]
    odd += [np.zeros((1, 1)), np.zeros((2, 2), dtype=np.int32), np.ones(0), database]
    odd += [[symbol._native for symbol in diet.symbols()], database.new_labels()]
    outcomes = set()
    natives = [database.symbol_at(position) for position in range(-1, len(diet))]
    members = [
        (native, name)
        for native in [*natives, database, database.new_labels()]
        for name in dir(type(native))
        if not name.startswith("_") and name not in ("close", "open", "write", "close_file")
    ]
    for native, name in members:
        for count in range(3):
            for arguments in itertools.product(odd, repeat=count):
                try:
                    member = getattr(native, name)
                    if callable(member):
                        member(*arguments)
                    outcomes.add("done")
                except Exception as error:
                    outcomes.add(type(error).__name__)
    assert {"done", "TypeError", "Error"} <= outcomes
    diet.write(tmp_path / "after.rxf")


@pytest.mark.parametrize("type_", [-1, 4, 5, 99])
@pytest.mark.parametrize("dimension", [0, 1, 21])
def test_symbols_of_no_type_are_refused(db, type_, dimension):
    with pytest.raises(ValueError, match=f"no symbol type {type_}"):
        db._native.add_symbol("odd", type_, [(None, "*")] * dimension, "", 0)
    assert len(db) == 0
