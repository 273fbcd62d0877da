"""A database as a mapping from names to symbols, and what it is made from."""

import collections.abc
import weakref

import pytest

import ztb


def test_a_database_is_a_mapping(diet):
    assert isinstance(diet, collections.abc.Mapping)
    assert list(diet.keys()) == list(diet) == ["food", "nutrient", "holds"]
    assert list(diet.values()) == [diet["food"], diet["nutrient"], diet["holds"]]
    assert dict(diet.items())["holds"] == diet["holds"] and dict(diet) == dict(diet.items())
    assert diet.get("HOLDS") == diet["holds"] and diet.get("no") is None
    assert diet.get("no", 3) == 3 and "no" not in diet
    dish = diet.add_alias("dish", diet["food"])
    assert dict(diet)["dish"] == diet["food"] and dish.name in diet and len(diet) == 4


def test_a_database_equals_itself_alone(db):
    with ztb.Database() as other:
        assert db == db and db != other and len({db, other, db}) == 2


def test_the_name_of_a_symbol_is_a_str(diet):
    with pytest.raises(TypeError, match=r"3 \(int\) is no name of a symbol, which is a str"):
        diet[3]
    assert 3 not in diet and diet.get("3") is None


@pytest.mark.parametrize("domain", ["food", "FOOD", "dish", "*", "nowhere"])
@pytest.mark.parametrize("kind", ["set", "parameter", "variable", "equation"])
def test_a_domain_that_stands_alone_is_one(diet, kind, domain):
    diet.add_alias("dish", diet["food"])
    add = getattr(diet, f"add_{kind}")
    one, listed = add("one", domain), add("listed", [domain])
    assert one.domains == listed.domains and one.dimension == 1


@pytest.mark.parametrize("kind", ["set", "parameter", "variable", "equation"])
def test_a_set_or_alias_alone_is_a_domain(diet, kind):
    dish = diet.add_alias("dish", diet["food"])
    add = getattr(diet, f"add_{kind}")
    assert add("one", diet["food"]).domains == (("food", diet["food"]),)
    assert add("two", dish).domains == (("dish", diet["food"]),)


def test_a_domain_of_arrays_may_stand_alone(diet):
    p = diet.add_parameter("p", "*")
    p["Milk"] = 2
    assert p.to_numpy("food").tolist() == p.to_numpy(diet["food"]).tolist() == [2.0, 0.0]
    assert p.axes("food") == (["Milk", "Tofu"],)


@pytest.mark.parametrize("domains", [3, [3], [["food"]], 1.5, b"food"])
def test_what_is_no_domain_is_refused(diet, domains):
    wrong = domains[0] if isinstance(domains, list) else domains
    with pytest.raises(TypeError) as failure:
        diet.add_parameter("p", domains)
    assert str(failure.value).startswith(
        f"{wrong!r} ({type(wrong).__name__}) is no domain, expected a set, an alias"
    )
    assert "p" not in diet


def test_what_no_alias_can_stand_for_is_refused(diet):
    with pytest.raises(TypeError, match=r"5 \(int\) is no set, which alone an alias can"):
        diet.add_alias("dish", 5)
    with pytest.raises(ValueError, match="^holds is no set, which alone an alias can stand for$"):
        diet.add_alias("dish", "holds")
    with pytest.raises(ztb.NotFoundError, match="Cannot find symbol drinks"):
        diet.add_alias("dish", "drinks")
    assert "dish" not in diet


def test_an_alias_goes_by_the_name_of_its_set(diet):
    assert diet.add_alias("dish", "food").set == diet["food"]
    # By the name of another alias it stands for the set.
    assert diet.add_alias("meal", "dish").set == diet["food"]


def test_symbols_that_were_asked_for_do_not_keep_the_database():
    database = ztb.Database()
    database.add_parameter("p")[()] = 3
    assert database["p"] == database["P"]
    assert database["p"].name == database["P"].name == "p"
    watch = weakref.ref(database)
    del database
    assert watch() is None


def test_a_symbol_that_was_asked_for_is_gone_with_the_database():
    database = ztb.Database()
    database.add_parameter("p")
    assert database["p"].dimension == 0
    database.close()
    with pytest.raises(ztb.Error, match="The database is closed"):
        database["p"]
