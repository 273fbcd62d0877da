"""Arguments of a wrong type are a TypeError in the package's own words, and change nothing."""

import numpy as np
import pandas as pd
import pytest

import ztb


def told(call):
    with pytest.raises(TypeError) as failure:
        call()
    return str(failure.value)


ONE_TEXT = "'abc' is one label, expected several, as in ['abc']"
NO_LABELS = "holds no labels, expected a list or the like"


@pytest.mark.parametrize("labels, text", [
    ("abc", ONE_TEXT),
    (b"abc", f"b'abc' (bytes) {NO_LABELS}"),
    (5, f"5 (int) {NO_LABELS}"),
    (None, f"None (NoneType) {NO_LABELS}"),
    (pd.DataFrame({"a": [1]}), f"a DataFrame {NO_LABELS}"),
], ids=["str", "bytes", "int", "None", "frame"])
def test_labels_are_several(diet, labels, text):
    assert told(lambda: diet.add_labels(labels)) == text
    assert told(lambda: diet["food"].extend(labels)) == text
    assert diet.labels == ["Milk", "Tofu", "iron", "zinc", "kcal"]
    assert list(diet["food"]) == ["Milk", "Tofu"]


def test_labels_of_any_collection_come_in(db):
    db.add_labels(label for label in ("b", "a"))
    db.add_labels(pd.Series(["c", "a"]))
    db.add_labels(np.array([7]))
    assert db.labels == ["b", "a", "c", "7"]


WRONG = [
    (lambda db: db.add_set(5), "5 (int) is no name of a symbol, expected a str"),
    (lambda db: db.add_parameter(None), "None (NoneType) is no name of a symbol, expected a str"),
    (lambda db: db.add_set("q", text=5), "5 (int) is no text of symbol q, expected a str"),
    (lambda db: db.add_alias(5, db["food"]), "5 (int) is no name of an alias, expected a str"),
    (lambda db: db.add_variable("x", subtype="free"), "'free' (str) is no subtype, expected an int"),
    (lambda db: db.add_equation("e", subtype=1.0), "1.0 (float) is no subtype, expected an int"),
    (lambda db: db["holds"].copy_from("food"), "'food' (str) is no symbol to copy records from"),
    (lambda db: db["holds"].to_coo(rows="1"), "'1' (str) is no number of positions, expected an int"),
    (lambda db: setattr(db["holds"], "user_info", "a"),
     "'a' (str) is no user information, expected an int"),
    (lambda db: db["holds"].from_pandas(pd.Series([1.0]), keys=5),
     "5 (int) holds no names, expected a list or the like"),
    (lambda db: db["food"][pd.DataFrame({"Milk": [True]})],
     "a frame chooses no records, expected a series of truth"),
    (lambda db: db.write("q.rxf", only=5), "5 (int) holds no symbols, expected a list or the like"),
    (lambda db: db.write("q.rxf", rename="p"), "'p' (str) is no mapping from names to names"),
    (lambda db: db.write("q.rxf", check_domains="yes"),
     "'yes' (str) is no value for check_domains, expected True or False"),
    (lambda db: db.close_file(load_remaining=1),
     "1 (int) is no value for load_remaining, expected True or False"),
    (lambda db: db["food"].to_numpy(drop="a"), "'a' (str) is no value for drop, expected True or False"),
    (lambda db: db["holds"].from_numpy(np.ones((2, 3)), keep_zeros="yes"),
     "'yes' (str) is no value for keep_zeros, expected True or False"),
    (lambda db: db["holds"].from_numpy(np.ones((2, 3)), nan=3),
     "3 (int) is no choice for nan, expected one of skip, na, error"),
    (lambda db: db["holds"].from_pandas(db["holds"].to_pandas(), nan=None),
     "None (NoneType) is no choice for nan, expected one of skip, na, error"),
    (lambda db: ztb.Database(store=3), "3 (int) is no store, expected one of map, vector, trie"),
    (lambda db: ztb.Database().add_variable("x", ["*"]).to_coo(field=3),
     "3 (int) is no field, expected one of level, marginal, lower, upper, scale"),
    (lambda db: ztb.open(3), "3 (int) is no path of a file, expected a str or a path object"),
    (lambda db: db.write(3), "3 (int) is no path of a file, expected a str or a path object"),
    (lambda db: db.write(None),
     "None (NoneType) is no path of a file, expected a str or a path object"),
    (lambda db: ztb.memory_needed(3), "3 (int) is no path of a file, expected a str or a path object"),
    (lambda db: db["holds"][np.array([True, False])],
     "an array of truth has no labels to choose records of holds by, expected a series of truth, "
     "which has"),
    (lambda db: db["holds"][db["holds"].to_pandas()],
     "a series of float64 chooses no records of holds, expected one of truth, as series > 0 makes it"),
    (lambda db: ["Milk"] in db["food"], "['Milk'] (list) is no label, expected a str, an int, or a date"),
    (lambda db: None in db["food"], "None (NoneType) is no label, expected a str, an int, or a date"),
    (lambda db: ztb.open(None),
     "None (NoneType) is no path of a file; Database() makes an empty database"),
    (lambda db: ztb.Database("q.rxf", max_memory=1.5),
     "1.5 (float) is no number of bytes, nor a text, for max_memory, expected an int"),
    (lambda db: ztb.special_codes("1"), "values of type <U1, numbers expected"),
    (lambda db: ztb.special_code(None), "None (NoneType) is no number"),
]


@pytest.mark.parametrize("call, text", WRONG, ids=[text for _, text in WRONG])
def test_wrong_types_are_told(diet, tmp_path, monkeypatch, call, text):
    monkeypatch.chdir(tmp_path)
    assert told(lambda: call(diet)) == text
    assert list(diet) == ["food", "nutrient", "holds"] and len(diet["holds"]) == 3
    assert not list(tmp_path.iterdir())


@pytest.mark.parametrize("value, shown", [
    ("1", "'1' (str)"),
    (None, "None (NoneType)"),
    (1j, "1j (complex)"),
    (np.complex128(1), "(1+0j) (complex128)"),
    (np.timedelta64(3), "numpy.timedelta64(3) (timedelta64)"),
    (pd.NA, "<NA> (NAType)"),
])
def test_a_value_that_is_no_number_is_told(diet, value, shown):
    text = told(lambda: diet["holds"].__setitem__(("Milk", "zinc"), value))
    assert text == f"the value {shown} of symbol holds is no number"
    assert ("Milk", "zinc") not in diet["holds"]


def test_numbers_out_of_range_are_told(diet):
    holds = diet["holds"]
    with pytest.raises(OverflowError, match="^a value of symbol holds is larger than any double$"):
        holds["Milk", "zinc"] = 10**400
    with pytest.raises(ValueError, match="^user information is a number of 32 bits, which 2147483648"):
        holds.user_info = 2**31
    assert ("Milk", "zinc") not in holds and holds.user_info == 0
