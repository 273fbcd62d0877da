"""What writes several records or texts writes all of them, or none and no label."""

import warnings

import pandas as pd
import pytest

import ztb


@pytest.fixture(params=["map", "vector", "trie"])
def stored(request):
    with ztb.Database(store=request.param) as database:
        yield database


@pytest.mark.parametrize("labels", [
    ["one", "two", "a\nb", "three"],
    ["one", 1.5],
    ["one", " "],
    ["one", ("two", "three")],
])
def test_a_refused_list_of_labels_leaves_nothing(stored, labels):
    few = stored.add_set("few")
    few.extend(["zero"])
    with pytest.raises((TypeError, ValueError, ztb.Error)):
        few.extend(labels)
    assert list(few) == ["zero"] and stored.labels == ["zero"]


# The vector takes single records behind all others only; the text of the one there stays.
def test_elements_come_in_any_order(stored):
    stored.add_labels(["a", "b", "c", "d"])
    few = stored.add_set("few")
    few["c"] = "third"
    few.extend(["d", "a", "D", "c", "e", "b"])
    assert list(few) == ["a", "b", "c", "d", "e"]
    assert few["c"] == "third" and few["a"] == ""


def test_levels_of_an_index_are_taken_by_name(db):
    db.add_set("plant")
    db.add_set("city")
    route = db.add_set("route", ["plant", "city"])
    index = pd.MultiIndex.from_tuples([("Oslo", "Bern")], names=["city", "plant"])
    route.extend(index)
    assert list(route) == [("Bern", "Oslo")]
    with pytest.raises(ValueError, match="level 0 of the index is named city, which is position 1"):
        route.extend(index.set_names(["city", "x"]))
    with pytest.raises(ValueError, match="the index has 2 levels, symbol plant has 1 position"):
        db["plant"].extend(index)
    assert list(route) == [("Bern", "Oslo")] and db.labels == ["Bern", "Oslo"]


@pytest.mark.parametrize("pairs, failure, text", [
    ({"a": 2, "b": "x"}, TypeError, "the value 'x' \\(str\\) of symbol p is no number"),
    ([("a", 2), ("b\n", 3)], ztb.Error, "control character"),
    ([("a", 2), (("b", "c"), 3)], ValueError, "2 labels given, symbol p has 1 position"),
    ([("a", 2), 3], TypeError, "3 is no pair of key and value"),
    (3, TypeError, "3 \\(int\\) holds no pair of key and values"),
    ("ab", TypeError, "'ab' holds no pairs of key and value, nor is it a mapping"),
    ([("a", 2), (slice(None), 3)], TypeError, "records are written and deleted by whole keys"),
])
def test_a_refused_update_changes_nothing(stored, pairs, failure, text):
    p = stored.add_parameter("p", ["*"])
    p["a"] = 1
    with pytest.raises(failure, match=text):
        p.update(pairs)
    assert dict(p) == {("a",): 1.0} and stored.labels == ["a"]


def test_an_update_writes_all(stored):
    p = stored.add_parameter("p", ["*"])
    p["a"] = 1
    p.update({"a": 2, "b": 3})
    p.update([(("c",), 4)], d=5)
    p.update(p)
    assert dict(p) == {("a",): 2.0, ("b",): 3.0, ("c",): 4.0, ("d",): 5.0}


# The vector refuses the second of these; the first is taken back.
def test_an_update_that_a_store_refuses_is_taken_back():
    with ztb.Database(store="vector") as db:
        db.add_labels(["a", "b", "c"])
        p = db.add_parameter("p", ["*"])
        p["b"] = 1
        with pytest.raises(ztb.Error, match="ascending order"):
            p.update({"b": 5, "c": 2, "a": 3})
        assert dict(p) == {("b",): 1.0}


def test_fields_and_texts_are_looked_at_first(db):
    x = db.add_variable("x", ["*"])
    x["a"] = 1
    for wrong in ({"cost": 1}, {"upper": "1"}, (1, 2, 3, 4, 5, 6)):
        with pytest.raises((TypeError, ValueError)):
            x.update({"a": 7, "b": wrong})
        assert list(x) == [("a",)] and x["a"].level == 1
    few = db.add_set("few")
    few["a"] = "one"
    with pytest.raises(ValueError, match="a text of 256 bytes, at most 255 are allowed"):
        few.update({"a": "two", "b": "x" * 256})
    with pytest.raises(ztb.NotFoundError):
        few.texts.update({"a": "two", "b": "three"})
    assert dict(few) == {"a": "one"} and db.labels == ["a"]
    few.texts.update({"a": "two"})
    assert few["a"] == "two"


def test_a_text_that_is_kept_in_another_spelling_is_told(db):
    few = db.add_set("few")
    few["a"] = "neu"
    few["b"] = ""
    told = "text 'NEU' of set few is kept as 'neu': texts are one whatever the case of letters, " \
           "and the first spelling stays"
    with pytest.warns(UserWarning) as warned:
        few.texts["b"] = "NEU"
        few.update(c="NEU")
        few.from_pandas(pd.Series(["NEU", "alt"], index=["a", "b"]))
    assert [str(warning.message) for warning in warned] == [told] * 3
    assert {warning.filename for warning in warned} == {__file__}
    assert few["a"] == "neu"
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        few.texts["b"] = "neu"
        few["c"] = "new"
        few.from_pandas(few.to_pandas())
