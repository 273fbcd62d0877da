"""Values of variables and equations: their defaults, and some of them written."""

import math

import pytest

import ztb


def test_values_have_defaults():
    assert ztb.Values() == (0, 0, -math.inf, math.inf, 1)
    assert ztb.Values(level=3, upper=7) == (3, 0, -math.inf, 7, 1)


# Binary, positive, negative and free variables, with their bounds.
@pytest.mark.parametrize(
    "subtype, lower, upper",
    [(1, 0, 1), (3, 0, math.inf), (4, -math.inf, 0), (5, -math.inf, math.inf)],
)
def test_defaults_of_a_variable_are_those_of_a_new_record(db, subtype, lower, upper):
    x = db.add_variable("x", "*", subtype=subtype)
    assert x.defaults == (0, 0, lower, upper, 1)
    x["a"] = 0
    assert x["a"] == x.defaults
    x["b"] = x.defaults._replace(level=4)
    assert x["b"] == (4, 0, lower, upper, 1)


def test_defaults_of_an_equation(db):
    assert db.add_equation("e", subtype=1).defaults == (0, 0, 0, math.inf, 1)


def test_a_mapping_writes_the_fields_that_it_names(db):
    x = db.add_variable("x", "*", subtype=3)
    x["a"] = {"upper": 5}
    assert x["a"] == (0, 0, 0, 5, 1)
    x["a"] = {"level": 2, "scale": 3}
    assert x["a"] == (2, 0, 0, 5, 3)
    with pytest.raises(ValueError, match="no field 'cost', expected one of level, marginal"):
        x["new"] = {"level": 1, "cost": 2}
    assert len(x) == 1 and db.labels == ["a"]


def test_texts_are_edited_apart_from_elements(diet):
    food = diet["food"]
    food["Milk"] = "1 qt."
    assert dict(food.texts) == {"Milk": "1 qt.", "Tofu": ""} and len(food.texts) == 2
    food.texts["milk"] = "2 qt."
    food.texts.update({"Tofu": "firm"})
    assert dict(food) == {"Milk": "2 qt.", "Tofu": "firm"}
    with pytest.raises(ztb.NotFoundError, match="Cannot find element Lard"):
        food.texts["Lard"] = "x"
    del food.texts["Tofu"]
    assert dict(food) == {"Milk": "2 qt.", "Tofu": ""}
    pairs = diet.add_set("pairs", ["food", "nutrient"])
    pairs.add("Milk", "iron")
    pairs.texts["Milk", "iron"] = "some"
    assert dict(pairs.texts) == {("Milk", "iron"): "some"}
