"""Which level or column of a pandas object holds the labels of which position."""

import pandas as pd
import pytest

import ztb

RECORDS = {("Milk", "iron"): 1.0, ("Milk", "kcal"): 3.0, ("Tofu", "zinc"): 5.0}


@pytest.fixture
def holds(diet):
    return diet["holds"]


def long(**columns):
    """A frame with the records of `holds`, one a row, and other columns."""
    keys = list(RECORDS)
    return pd.DataFrame(
        {"nutrient": [key[1] for key in keys], "food": [key[0] for key in keys], **columns}
    )


def test_levels_in_another_order_go_to_their_positions(holds):
    series = holds.to_pandas()
    holds.clear()
    holds.from_pandas(series.swaplevel())
    assert dict(holds) == RECORDS
    holds.from_pandas(series.swaplevel().rename_axis(["NUTRIENT", "Food"]) * 2)
    assert dict(holds) == {key: value * 2 for key, value in RECORDS.items()}


def test_levels_of_the_same_domain_are_told_apart_by_their_number(db):
    arc = db.add_parameter("arc", ["node", "node"])
    arc["a", "b"] = 1
    series = arc.to_pandas()
    assert series.index.names == ["node", "node_2"]
    arc.from_pandas(series.swaplevel())
    assert dict(arc) == {("a", "b"): 1.0}
    arc.from_pandas(series.rename_axis(["node", "node"]))
    assert dict(arc) == {("a", "b"): 1.0}
    with pytest.raises(ValueError, match="level 0 of the index is named node_2, which is position"):
        arc.from_pandas(series.rename_axis(["node_2", "other"]))


def test_levels_without_a_positions_name_stand_in_order(holds):
    series = holds.to_pandas()
    for names in [[None, None], ["from", "to"], ["food", None], ["x", "nutrient"]]:
        holds.clear()
        holds.from_pandas(series.rename_axis(names))
        assert dict(holds) == RECORDS


@pytest.mark.parametrize("names", [["nutrient", "x"], [None, "food"], ["nutrient", "nutrient"]])
def test_levels_with_the_name_of_another_position_are_refused(holds, names):
    level = names.index("food") if "food" in names else 0
    position = ["food", "nutrient"].index(names[level])
    with pytest.raises(ValueError) as failure:
        holds.from_pandas((holds.to_pandas() * 2).rename_axis(names))
    assert str(failure.value) == (
        f"level {level} of the index is named {names[level]}, which is position {position} of "
        "holds(food, nutrient), and other levels have other names; name all levels as the "
        "positions, or none, or give keys="
    )
    assert dict(holds) == RECORDS


def test_sets_and_variables_match_levels_too(diet):
    pairs = diet.add_set("pairs", ["food", "nutrient"])
    index = pd.MultiIndex.from_tuples([("iron", "Milk")], names=["nutrient", "food"])
    pairs.from_pandas(index)
    assert list(pairs) == [("Milk", "iron")]
    x = diet.add_variable("x", ["food", "nutrient"])
    x.from_pandas(pd.DataFrame({"upper": [4.0]}, index=index))
    assert list(x) == [("Milk", "iron")]


def test_a_long_frame_has_a_column_for_each_position(holds):
    frame = long(value=list(RECORDS.values()))
    holds.clear()
    holds.from_pandas(frame)
    assert dict(holds) == RECORDS
    # The index of such a frame means nothing, and names may be spelled in any case.
    holds.from_pandas(frame.rename(columns=str.upper).set_index(pd.Index([7, 7, 7], name="id")))
    assert dict(holds) == RECORDS
    holds.from_pandas(frame.astype({"food": "category"}))
    assert dict(holds) == RECORDS


def test_what_to_pandas_gives_comes_back_from_columns(diet):
    holds = diet["holds"]
    holds.from_pandas(holds.to_pandas().reset_index())
    assert dict(holds) == RECORDS
    x = diet.add_variable("x", "food", subtype=3)
    x["Tofu"] = (1, 2)
    before = dict(x)
    x.from_pandas(x.to_pandas().reset_index())
    assert dict(x) == before
    food = diet["food"]
    food["Milk"] = "1 qt."
    food.from_pandas(food.to_pandas().reset_index(name="text"))
    assert dict(food) == {"Milk": "1 qt.", "Tofu": ""}
    food.from_pandas(pd.DataFrame({"food": ["Rice"]}))
    assert dict(food) == {"Rice": ""}
    q = diet.add_parameter("q", ["*", "*"])
    q["a", "b"] = 1
    q.from_pandas(q.to_pandas().reset_index())
    assert dict(q) == {("a", "b"): 1.0}


def test_a_long_frame_of_a_variable_has_a_column_for_each_field(diet):
    x = diet.add_variable("x", "food", subtype=3)
    x.from_pandas(pd.DataFrame({"upper": [4, 5], "food": ["Milk", "Tofu"]}))
    assert x["Tofu"] == (0, 0, 0, 5, 1) and len(x) == 2


def test_keys_names_levels_or_columns(holds):
    frame = long(value=list(RECORDS.values())).rename(columns={"food": "x", "nutrient": "y"})
    holds.clear()
    holds.from_pandas(frame, keys=["x", "y"])
    assert dict(holds) == RECORDS
    holds.from_pandas(frame.set_index(["y", "x"])["value"], keys=["x", "y"])
    assert dict(holds) == RECORDS
    # Against the names of the domains, where that is said.
    turned = frame.rename(columns={"x": "nutrient", "y": "food"})
    holds.from_pandas(turned, keys=["nutrient", "food"])
    assert dict(holds) == RECORDS
    pairs = holds.database.add_set("pairs", ["food", "nutrient"])
    pairs.from_pandas(frame.set_index(["y", "x"]).index, keys=["x", "y"])
    assert list(pairs) == list(RECORDS)


def test_what_is_wrong_with_labels_is_told(holds):
    frame = long(value=[1.0, 2.0, 3.0])
    for data, keys, text in [
        (frame, ["food"], "1 key given, symbol holds has 2 positions"),
        (frame, ["food", "no"], r"keys names 'food', but the columns are \['nutrient', 'food'"),
        (frame.set_index(["food", "nutrient"]), ["food", "food"], "keys names the levels"),
        (frame.drop(columns="food"), None, "label columns are not all there: food"),
        (frame.assign(other=1), None, r"one column is expected, not of 2 \(value, other\)"),
        (frame.drop(columns="value"), None, "no column but those of its labels"),
        ([1, 2], None, None),
    ]:
        with pytest.raises((ValueError, TypeError), match=text):
            holds.from_pandas(data, keys=keys)
        assert dict(holds) == RECORDS
    with pytest.raises(TypeError, match="list is no data for symbol holds, expected a pandas"):
        holds.from_pandas([1, 2])


def test_two_columns_of_one_name_are_told(holds):
    frame = long(value=[1.0, 2.0, 3.0]).assign(FOOD="Milk")
    with pytest.raises(ValueError, match="more than one column is called food in either case"):
        holds.from_pandas(frame)
    assert dict(holds) == RECORDS


# What was meant for elements would be their texts, and the elements 0 and 1.
def test_a_set_takes_no_index_that_only_counts_rows(db):
    few = db.add_set("few")
    few.extend(["a"])
    values = pd.Series(["q", "r"])
    text = "the elements of set few are what the index holds, and this one only counts the rows; "
    with pytest.raises(ValueError, match=text + r"extend\(series\) takes values as elements"):
        few.from_pandas(values)
    with pytest.raises(ValueError, match=text + r"extend\(column\) takes values as elements"):
        few.from_pandas(values.to_frame("text"))
    assert list(few) == ["a"]
    few.from_pandas(values.to_frame("few"))
    assert dict(few) == {"q": "", "r": ""}
    few.from_pandas(pd.RangeIndex(2))
    assert list(few) == ["0", "1"]
    few.clear()
    few.extend(values)
    assert list(few) == ["q", "r"]
