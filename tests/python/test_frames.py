"""Symbols as pandas objects, and back."""

import sys

import numpy as np
import pandas as pd
import pytest

import ztb


def test_a_parameter_is_a_series_over_a_multiindex(diet):
    series = diet["holds"].to_pandas()
    assert isinstance(series.index, pd.MultiIndex)
    assert series.index.names == ["food", "nutrient"] and series.name == "holds"
    assert series.to_dict() == dict(diet["holds"])
    assert list(series.index.levels[1]) == ["iron", "zinc", "kcal"]


def test_one_position_is_a_plain_index(diet):
    food = diet["food"]
    food["Milk"] = "1 qt."
    series = food.to_pandas()
    assert not isinstance(series.index, pd.MultiIndex)
    assert series.index.name == "food"
    assert series.to_dict() == {"Milk": "1 qt.", "Tofu": ""}


def test_index_names_differ(diet):
    p = diet.add_parameter("p", ["food", "food", "*", "nowhere"])
    assert p.to_pandas().index.names == ["food", "food_2", "dim_3", "nowhere"]


def test_a_variable_is_a_frame_with_its_fields(diet):
    x = diet.add_variable("x", ["food"], subtype=3)
    x["Tofu"] = (1, 2)
    frame = x.to_pandas()
    assert list(frame.columns) == list(ztb.FIELDS)
    assert frame.loc["Tofu"].tolist() == [1, 2, 0, np.inf, 1]
    frame["level"] += 1
    x.from_pandas(frame)
    assert dict(x) == {("Tofu",): (2, 2, 0, np.inf, 1)}


def test_fields_without_a_column_take_their_defaults(db):
    x = db.add_variable("x", ["*", "*"], subtype=3)
    index = pd.MultiIndex.from_tuples([("b", "c"), ("a", "c")])
    x.from_pandas(pd.DataFrame({"upper": [4.0, 5.0], "level": [1.0, 2.0]}, index=index))
    assert dict(x) == {("b", "c"): (1, 0, 0, 4, 1), ("a", "c"): (2, 0, 0, 5, 1)}
    x.from_pandas(pd.Series([9.0], index=index[:1]))
    assert dict(x) == {("b", "c"): (9, 0, 0, np.inf, 1)}
    with pytest.raises(ValueError, match="no field 'cost'"):
        x.from_pandas(pd.DataFrame({"cost": [4.0, 5.0]}, index=index))
    assert len(x) == 1


def test_a_series_in_any_order_makes_the_same_records(diet):
    holds = diet["holds"]
    series = holds.to_pandas()
    for order in [[2, 0, 1], [1, 2, 0], [0, 1, 2]]:
        holds.clear()
        holds.from_pandas(series.iloc[order])
        assert holds.to_pandas().equals(series)
    holds.from_pandas(series.iloc[:1])
    assert len(holds) == 1


def test_new_labels_are_added_and_unused_ones_are_not(db):
    p = db.add_parameter("p", ["*", "*"])
    series = pd.Series(
        [1.0, 2.0, 3.0],
        index=pd.MultiIndex.from_tuples([("a", "x"), ("b", "unused"), ("c", 1999)]),
    )
    p.from_pandas(series[[True, False, True]])
    assert dict(p) == {("a", "x"): 1.0, ("c", "1999"): 3.0}
    assert sorted(db.labels) == ["1999", "a", "c", "x"]


def test_new_labels_are_numbered_as_records_name_them(db):
    p = db.add_parameter("p", ["*", "*"])
    index = pd.MultiIndex.from_tuples([("z", "y"), ("b", "x"), ("z", "a")])
    p.from_pandas(pd.Series([1.0, 2.0, 3.0], index=index))
    assert db.labels == ["z", "b", "y", "x", "a"]
    assert list(p.items()) == [(("z", "y"), 1.0), (("z", "a"), 3.0), (("b", "x"), 2.0)]


def test_a_frame_of_one_column_is_a_parameter(db):
    p = db.add_parameter("p", ["*"])
    p.from_pandas(pd.DataFrame({"v": [1, 2]}, index=["a", "b"]))
    assert dict(p) == {("a",): 1.0, ("b",): 2.0}
    with pytest.raises(ValueError, match="a frame of one column is expected, not of 2"):
        p.from_pandas(pd.DataFrame({"v": [1], "w": [2]}, index=["a"]))


def test_sets_take_texts_or_an_index_alone(db):
    s = db.add_set("s", ["*", "*"])
    index = pd.MultiIndex.from_tuples([("b", "x"), ("a", "y")])
    s.from_pandas(pd.Series(["first", None], index=index))
    assert dict(s) == {("b", "x"): "first", ("a", "y"): ""}
    s.from_pandas(index[:1])
    assert dict(s) == {("b", "x"): ""}


def test_scalars_are_series_of_one(db):
    pi = db.add_parameter("pi")
    assert len(pi.to_pandas()) == 0
    pi.value = 3.25
    assert pi.to_pandas().tolist() == [3.25]
    pi.from_pandas(pd.Series([4.0]))
    assert pi.value == 4.0
    with pytest.raises(ValueError):
        pi.from_pandas(pd.Series([4.0, 5.0]))
    assert pi.value == 4.0


def test_empty_symbols_are_empty(diet):
    holds = diet["holds"]
    holds.clear()
    series = holds.to_pandas()
    assert len(series) == 0 and series.index.nlevels == 2
    holds["Milk", "iron"] = 1
    holds.from_pandas(series)
    assert len(holds) == 0


@pytest.mark.parametrize(
    "index, text",
    [
        (pd.MultiIndex.from_tuples([("a", "b"), ("A", "b")]), "row 1: another row has the same"),
        (pd.MultiIndex.from_tuples([("a", "b"), ("a", None)]), "row 1: a label of symbol holds is"),
        (pd.Index(["a", "b"]), "the index has 1 level, symbol holds has 2 positions"),
    ],
)
def test_a_refused_series_leaves_the_records(diet, index, text):
    holds = diet["holds"]
    before = dict(holds)
    with pytest.raises(ValueError, match=text):
        holds.from_pandas(pd.Series([1.0, 2.0], index=index))
    assert dict(holds) == before


def test_labels_that_are_no_text_are_refused(db):
    p = db.add_parameter("p", ["*"])
    with pytest.raises(TypeError, match=r"1\.5 \(float\) is no label, expected a str, an int, or a date"):
        p.from_pandas(pd.Series([1.0], index=[1.5]))
    with pytest.raises(ztb.Error, match="63"):
        p.from_pandas(pd.Series([1.0], index=["x" * 64]))
    with pytest.raises(ValueError, match="blanks alone"):
        p.from_pandas(pd.Series([1.0], index=["  "]))


@pytest.mark.parametrize("dimension", [1, 2, 3, 7, 20])
def test_random_records_come_back(db, dimension):
    random = np.random.default_rng(dimension)
    rows = {
        tuple(f"l{label}" for label in row): float(value)
        for value, row in enumerate(random.integers(0, 6, (300, dimension)))
    }
    p = db.add_parameter("p", ["*"] * dimension)
    index = pd.MultiIndex.from_tuples(list(rows), names=[f"k{d}" for d in range(dimension)])
    p.from_pandas(pd.Series(list(rows.values()), index=index))
    assert dict(p.items()) == rows
    again = p.to_pandas()
    p.from_pandas(again.sample(frac=1, random_state=1))
    assert p.to_pandas().equals(again)


def test_a_million_records_take_no_python_step_each(db):
    shape = (100, 100, 100)
    index = pd.MultiIndex.from_product([[f"{name}{i}" for i in range(100)] for name in "abc"])
    series = pd.Series(np.arange(np.prod(shape), dtype=float), index=index)
    p = db.add_parameter("p", ["*"] * 3)
    steps = 0

    def count(frame, event, argument):
        nonlocal steps
        steps += 1

    sys.setprofile(count)
    try:
        p.from_pandas(series)
        back = p.to_pandas()
    finally:
        sys.setprofile(None)
    assert (back.to_numpy() == series.to_numpy()).all()
    assert steps < 100_000
