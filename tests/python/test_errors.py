"""Failures carry the library's text."""

import pickle

import pytest

import ztb


def test_missing_things_are_key_errors_with_the_librarys_text(diet):
    with pytest.raises(ztb.NotFoundError) as failure:
        diet["nosuch"]
    assert str(failure.value) == "Cannot find symbol nosuch"
    assert failure.value.operation == "ztbFindSymbol"
    with pytest.raises(KeyError, match=r"Cannot find element Lard \(on position 1\)"):
        diet["holds"]["Lard", "iron"]
    with pytest.raises(KeyError):
        del diet["holds"]["Milk", "zinc"]


def test_refusals_carry_the_librarys_text(db):
    with pytest.raises(ztb.Error, match="name"):
        db.add_set("1bad")
    db.add_set("s")
    with pytest.raises(ztb.Error) as failure:
        db.add_set("S")
    assert "S" in str(failure.value) and not isinstance(failure.value, KeyError)
    with pytest.raises(ztb.Error, match="quote"):
        db["s"].add("it's \"both\"")
    with pytest.raises(ztb.Error, match="63"):
        db["s"].add("x" * 64)
    with pytest.raises(ztb.Error, match="control character"):
        db["s"].add("a\nb")


def test_texts_are_fit_for_a_terminal_and_the_exact_one_is_at_hand(db):
    name = "\x1b[2J\udc9b\u202ex"
    with pytest.raises(ztb.NotFoundError) as failure:
        db[name]
    assert str(failure.value) == "Cannot find symbol \\x1b[2J\\x9b<U+202E>x"
    assert failure.value.text == f"Cannot find symbol {name}"
    assert pickle.loads(pickle.dumps(failure.value)).text == failure.value.text


def test_error_is_none_of_the_builtin_kinds_and_can_be_pickled():
    error = ztb.Error("text", "ztbFindSymbol")
    copy = pickle.loads(pickle.dumps(error))
    assert str(copy) == "text"
    assert issubclass(ztb.NotFoundError, KeyError) and not issubclass(ztb.Error, KeyError)


def test_wrong_number_of_labels_is_a_value_error(diet):
    for key in ["Milk", ("Milk",), ("Milk", "iron", "x")]:
        with pytest.raises(ValueError, match="holds has 2 positions"):
            diet["holds"][key]
        with pytest.raises(ValueError, match="holds has 2 positions"):
            diet["holds"][key] = 1


def test_labels_hold_no_null_character(diet):
    with pytest.raises(ValueError, match="null character"):
        diet["food"].add("a\0b")


def test_text_that_is_too_long_leaves_no_record(db):
    s = db.add_set("s")
    with pytest.raises(ValueError, match="a text of 256 bytes, at most 255"):
        s["a"] = "x" * 256
    assert len(s) == 0
    s["a"] = "x" * 255
    assert s["a"] == "x" * 255


def test_a_value_that_is_no_number_leaves_no_record(db):
    p = db.add_parameter("p", ["*"])
    x = db.add_variable("x", ["*"])
    with pytest.raises(TypeError, match=r"the value 'many' \(str\) of symbol p is no number"):
        p["a"] = "many"
    with pytest.raises(ValueError, match="too many values"):
        x["a"] = (1, 2, 3, 4, 5, 6)
    assert len(p) == 0 and len(x) == 0


def test_a_closed_database_refuses_everything(diet):
    holds = diet["holds"]
    alias = diet.add_alias("dish", diet["food"])
    diet.close()
    diet.close()
    assert diet.closed
    for use in [
        lambda: diet["holds"],
        lambda: len(diet),
        lambda: diet.labels,
        lambda: diet.add_set("s"),
        lambda: diet.write("x.rxf"),
        lambda: holds["Milk", "iron"],
        lambda: list(holds),
        lambda: len(holds),
        lambda: holds.to_numpy(),
        lambda: holds.clear(),
        lambda: holds.name,
        lambda: alias.name,
        lambda: holds.violations(),
    ]:
        with pytest.raises(ztb.Error, match="The database is closed"):
            use()
    with ztb.Database() as other, pytest.raises(ztb.Error, match="The database is closed"):
        other.add_parameter("p", ["*", "*"]).copy_from(holds)


def test_a_symbol_outlives_the_name_of_its_database():
    holds = ztb.Database().add_parameter("p", ["*"])
    holds["a"] = 1
    assert dict(holds) == {("a",): 1.0}


def test_sets_of_another_database_are_refused(diet):
    with ztb.Database() as other:
        with pytest.raises(ValueError, match="set food belongs to another database"):
            other.add_parameter("p", [diet["food"]])
        with pytest.raises(ValueError, match="set food belongs to another database"):
            other.add_alias("a", diet["food"])


def test_an_alias_stands_for_a_set_and_nothing_else(diet, tmp_path):
    dish = diet.add_alias("dish", diet["food"])
    diet.add_alias("meal", dish)
    with pytest.raises(ValueError, match="holds.* is no set, which alone an alias can stand for"):
        diet.add_alias("bad", diet["holds"])
    with ztb.Database() as other, pytest.raises(ValueError, match="alias dish belongs to another"):
        other.add_alias("bad", dish)
    assert "bad" not in diet
    diet.write(tmp_path / "a.rxf")
    with ztb.open(tmp_path / "a.rxf") as copy:
        assert copy["meal"] == copy["food"] and len(copy["meal"]) == 2


def test_unknown_words_are_value_errors(db):
    with pytest.raises(ValueError, match="no store 'tree', expected one of map, vector, trie"):
        ztb.Database(store="tree")
    with pytest.raises(ValueError, match="no subtype 10, expected 0 to 9"):
        db.add_variable("x", subtype=10)
    with pytest.raises(ValueError, match="no subtype -1, expected 0 to 6"):
        db.add_equation("e", subtype=-1)
    with pytest.raises(ValueError, match="no field 'cost'"):
        db.add_variable("x").to_numpy(field="cost")
    with pytest.raises(KeyError, match="universe"):
        db["*"]
