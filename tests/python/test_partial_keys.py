"""Keys with slices, lists and marks give a part of the records."""

import pandas as pd
import pytest

import ztb


@pytest.fixture
def holds(diet):
    return diet["holds"]


def test_a_slice_stands_for_every_label(holds):
    milk = holds["Milk", :]
    assert dict(milk) == {("Milk", "iron"): 1.0, ("Milk", "kcal"): 3.0}
    assert list(milk) == [("Milk", "iron"), ("Milk", "kcal")] and len(milk) == 2
    assert dict(holds[:, "ZINC"]) == {("Tofu", "zinc"): 5.0}
    assert dict(holds[:, :]) == dict(holds)


def test_a_list_or_a_set_stands_for_its_labels(holds):
    assert dict(holds[["Milk"], ["iron", "zinc"]]) == {("Milk", "iron"): 1.0}
    few = holds.database.add_set("few", "nutrient")
    few.extend(["zinc", "kcal"])
    assert dict(holds[:, few]) == {("Milk", "kcal"): 3.0, ("Tofu", "zinc"): 5.0}
    assert dict(holds[[], :]) == {}


def test_a_range_has_both_its_ends_in_the_order_of_the_labels(holds):
    # Labels came as Milk, Tofu, iron, zinc, kcal.
    assert dict(holds[:, "zinc":"kcal"]) == {("Milk", "kcal"): 3.0, ("Tofu", "zinc"): 5.0}
    assert dict(holds[:, :"iron"]) == {("Milk", "iron"): 1.0}
    assert dict(holds["Tofu":, :]) == {("Tofu", "zinc"): 5.0}
    assert dict(holds[:, "kcal":"iron"]) == {}
    with pytest.raises(ValueError, match="a range of labels has no step, not 2"):
        holds[::2, :]


def test_a_part_of_a_set_has_labels_and_texts(diet):
    food = diet["food"]
    food["Milk"] = "1 qt."
    assert dict(food[["Milk"]]) == {"Milk": "1 qt."}
    assert food["Tofu":].to_pandas().to_dict() == {"Tofu": ""}


def test_a_part_of_a_variable_has_values(diet):
    x = diet.add_variable("x", "food")
    x["Milk"], x["Tofu"] = 1, 2
    assert x[["Tofu"]]["Tofu"].level == 2
    assert x[["Tofu"]].to_pandas()["level"].to_dict() == {"Tofu": 2.0}


def test_a_part_follows_its_symbol(holds):
    milk = holds["Milk", :]
    holds["Milk", "zinc"] = 7
    assert milk["Milk", "zinc"] == 7 and len(milk) == 3
    del holds["Milk", "iron"]
    assert list(milk.values()) == [7.0, 3.0]


def test_a_part_knows_its_own_keys_only(holds):
    milk = holds["Milk", :]
    assert ("Milk", "iron") in milk and ("milk", "IRON") in milk
    assert ("Tofu", "zinc") not in milk and ("Milk", "zinc") not in milk and "Milk" not in milk
    with pytest.raises(KeyError, match="is no key of this part of symbol holds"):
        milk["Tofu", "zinc"]
    assert milk.get(("Tofu", "zinc"), 9) == 9


def test_a_part_becomes_a_frame_of_its_own(holds):
    expected = holds.to_pandas().loc[["Milk"]]
    assert holds["Milk", :].to_pandas().to_dict() == expected.to_dict()
    holds.from_pandas(holds["Milk", :].to_pandas() * 2)
    assert dict(holds) == {("Milk", "iron"): 2.0, ("Milk", "kcal"): 6.0}


def test_marks_choose_records_by_their_labels(holds):
    series = holds.to_pandas()
    assert dict(holds[series > 2]) == {("Milk", "kcal"): 3.0, ("Tofu", "zinc"): 5.0}
    # Marks in another order of rows and of levels, with some that no record has.
    marks = (series > 2).iloc[::-1].swaplevel()
    marks.loc[("fat", "Lard")] = True
    assert dict(holds[marks]) == {("Milk", "kcal"): 3.0, ("Tofu", "zinc"): 5.0}
    missing = (series > 2).astype("boolean")
    missing.iloc[1] = pd.NA
    assert dict(holds[missing]) == {("Tofu", "zinc"): 5.0}
    # As pandas makes them where a row was added or shifted in.
    assert dict(holds[missing.astype(object)]) == {("Tofu", "zinc"): 5.0}
    food = holds.database["food"]
    assert list(food[food.to_pandas() == ""]) == ["Milk", "Tofu"]
    assert "Lard" not in holds.database.labels


def test_what_is_wrong_with_a_partial_key_is_told(holds):
    with pytest.raises(ztb.NotFoundError, match="Cannot find label Mlik"):
        holds["Mlik", :]
    with pytest.raises(ValueError, match="1 label given, symbol holds has 2 positions"):
        holds[:]
    with pytest.raises(TypeError, match=r"1.5 \(float\) is no label"):
        holds[[1.5], :]
    before = dict(holds)
    with pytest.raises(TypeError, match="written and deleted by whole keys"):
        holds["Milk", :] = 0
    with pytest.raises(TypeError, match="written and deleted by whole keys"):
        del holds["Milk", :]
    assert dict(holds) == before


def test_a_part_shows_itself(holds):
    assert repr(holds["Milk", :]) == (
        "<ztb.Selection of holds, 2 records>\n  Milk  iron  1\n  Milk  kcal  3"
    )
