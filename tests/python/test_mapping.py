"""Symbols as mappings from tuples of labels to values."""

import math

import pytest

import ztb


def test_parameter_maps_labels_to_numbers(diet):
    holds = diet["holds"]
    assert dict(holds) == {("Milk", "iron"): 1.0, ("Milk", "kcal"): 3.0, ("Tofu", "zinc"): 5.0}
    assert holds["milk", "IRON"] == 1.0
    assert ("Milk", "zinc") not in holds
    assert holds.get(("Milk", "zinc"), 7) == 7
    holds["Milk", "iron"] = 2
    assert holds["Milk", "iron"] == 2.0
    assert len(holds) == 3


def test_a_set_of_one_position_has_labels_for_keys(diet):
    food = diet["food"]
    assert "Milk" in food and ("Milk",) in food
    assert list(food) == ["Milk", "Tofu"] == list(food.keys())
    assert dict(food) == dict(food.items()) == {"Milk": "", "Tofu": ""}
    assert ("Milk", "") in food.items() and ("Milk", "x") not in food.items()


def test_a_parameter_of_one_position_takes_a_label_alone_and_gives_tuples(db):
    p = db.add_parameter("p", "*")
    p["a"] = 1
    assert "a" in p and ("a",) in p and p["a"] == p[("a",)] == 1
    assert dict(p) == {("a",): 1.0}


def test_views_read_what_iteration_reads(diet):
    holds = diet["holds"]
    assert list(holds.items()) == [(key, holds[key]) for key in holds]
    assert list(holds.values()) == [1.0, 3.0, 5.0]
    assert list(holds.keys()) == list(holds)


def test_records_may_be_removed_while_iterating(diet):
    holds = diet["holds"]
    for key in holds:
        del holds[key]
    assert len(holds) == 0
    assert list(holds.items()) == []


def test_mapping_methods_work(diet):
    holds = diet["holds"]
    assert holds.pop(("Milk", "iron")) == 1.0
    holds.update({("Tofu", "iron"): 4.0})
    assert holds.setdefault(("Tofu", "iron"), 9.0) == 4.0
    assert dict(holds) == {("Milk", "kcal"): 3.0, ("Tofu", "iron"): 4.0, ("Tofu", "zinc"): 5.0}
    holds.clear()
    assert dict(holds) == {}


def test_set_maps_labels_to_texts(diet):
    food = diet["food"]
    food["Milk"] = "1 qt."
    food.add("Lard")
    assert dict(food.items()) == {"Milk": "1 qt.", "Tofu": "", "Lard": ""}
    food["Milk"] = ""
    assert food["Milk"] == ""


def test_adding_an_element_again_keeps_its_text(db):
    s = db.add_set("s")
    s["a"] = "text"
    s.add("a")
    assert s["a"] == "text"


def test_variable_has_five_values(db):
    x = db.add_variable("x", ["*"], subtype=3)
    x["a"] = 2
    assert x["a"] == ztb.Values(level=2, marginal=0, lower=0, upper=math.inf, scale=1)
    x["a"] = (3, 4, 5, 6, 7)
    assert x["a"].marginal == 4 and tuple(x["a"]) == (3, 4, 5, 6, 7)
    x["a"] = [8, 9]
    assert dict(x.items()) == {("a",): (8, 9, 5, 6, 7)}


def test_equation_takes_the_defaults_of_its_subtype(db):
    e = db.add_equation("e", [], subtype=1)
    e[()] = 4
    assert e[()] == (4, 0, 0, math.inf, 1)
    assert list(e) == [()]


def test_scalar_has_a_value(db):
    pi = db.add_parameter("pi")
    with pytest.raises(KeyError):
        pi.value
    pi.value = 3.25
    assert pi.value == 3.25 and dict(pi) == {(): 3.25} and len(pi) == 1


def test_symbols_tell_what_they_are(diet):
    food, holds = diet["FOOD"], diet["holds"]
    assert (food.name, food.text, food.dimension, food.user_info) == ("food", "Things to eat", 1, 0)
    assert holds.domains == (("food", food), ("nutrient", diet["nutrient"]))
    assert food.domains == (("*", None),)
    food.user_info = 42
    assert diet["food"].user_info == 42


def test_symbols_are_equal_when_they_are_the_same(diet):
    assert diet["food"] == diet["food"] and diet["food"] != diet["nutrient"]
    assert len({diet["food"], diet["food"], diet["holds"]}) == 2


def test_database_maps_names_to_symbols(diet):
    assert list(diet) == ["food", "nutrient", "holds"] and len(diet) == 3
    assert "Food" in diet and "nosuch" not in diet and "*" not in diet and 3 not in diet
    assert diet.labels == ["Milk", "Tofu", "iron", "zinc", "kcal"]
    diet.add_labels(["Lard", "milk"])
    assert diet.labels == ["Milk", "Tofu", "iron", "zinc", "kcal", "Lard"]


def test_empty_database_is_true(db):
    assert db and len(db) == 0 and list(db) == []


def test_alias_stands_for_its_set(diet):
    dish = diet.add_alias("dish", diet["food"])
    assert dish.name == "dish" and dish.set == diet["food"]
    assert diet["dish"] == diet["food"]
    p = diet.add_parameter("p", [dish, "dish"])
    assert [domain.name for domain in p.domains] == ["dish", "dish"]
    assert p.domains[0].set == diet["food"]
    assert [symbol.name for symbol in diet.symbols()] == ["food", "nutrient", "holds", "dish", "p"]


def test_domain_that_is_no_set_stays_a_name(diet):
    p = diet.add_parameter("p", ["nowhere", "holds", None])
    assert p.domains == (("nowhere", None), ("holds", None), ("*", None))


def test_violations_name_record_and_positions(diet):
    holds = diet["holds"]
    assert holds.violations() == []
    holds["Lard", "iron"] = 1
    holds["Milk", "fat"] = 1
    holds["Ham", "fat"] = 1
    assert holds.violations() == [
        (("Milk", "fat"), (1,)),
        (("Lard", "iron"), (0,)),
        (("Ham", "fat"), (0, 1)),
    ]


def test_copies_cross_databases_by_their_labels(diet):
    with ztb.Database() as other:
        other.add_labels(["kcal", "Tofu"])
        copy = other.add_parameter("copy", ["*", "*"])
        copy["gone", "gone"] = 1
        copy.copy_from(diet["holds"])
        assert dict(copy) == dict(diet["holds"])
        s = other.add_set("s", ["*"])
        diet["food"]["Milk"] = "1 qt."
        s.copy_from(diet["food"])
        assert dict(s.items()) == {"Tofu": "", "Milk": "1 qt."}


def test_a_symbol_is_not_copied_onto_itself_nor_an_alias_onto_its_set(db):
    food = db.add_set("food", ["*"])
    food["Milk"] = "1 qt."
    db.add_alias("eaten", food)
    with pytest.raises(ztb.Error, match="Cannot copy symbol food onto itself: the copy would"):
        food.copy_from(db["food"])
    alias = next(symbol for symbol in db.symbols() if symbol.name == "eaten")
    with pytest.raises(ztb.Error, match="Cannot copy symbol eaten onto food: the copy would"):
        food.copy_from(alias)
    assert dict(food.items()) == {"Milk": "1 qt."}
    other = db.add_set("other", ["*"])
    other.copy_from(alias)
    assert dict(other.items()) == {"Milk": "1 qt."}


def test_labels_of_any_bytes_come_back(db):
    p = db.add_parameter("p", ["*"])
    for label in ["żółw", "a,b", "  lead", "\udce9t\udce9", "x" * 63]:
        p[label] = 1
        assert label in p
    assert [key[0] for key in p] == ["żółw", "a,b", "  lead", "\udce9t\udce9", "x" * 63]
