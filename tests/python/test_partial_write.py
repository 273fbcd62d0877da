"""Files of some symbols, or of symbols under other names."""

import pytest

import ztb


@pytest.fixture
def full(diet):
    """The diet with an alias, a variable over it, and symbols that nothing else needs."""
    diet["food"]["Milk"] = "1 qt."
    dish = diet.add_alias("dish", diet["food"])
    buy = diet.add_variable("buy", [dish], "Amounts", subtype=3)
    buy["Milk"] = (1, ztb.NA, ztb.UNDEF, ztb.EPS, 2)
    diet.add_parameter("other", ["*", "nowhere"])["alone", "x"] = 1
    diet.add_equation("limit", subtype=2)[()] = 4
    return diet


def all_of(path):
    with ztb.open(path) as db:
        return {
            symbol.name: (
                type(symbol).__name__,
                getattr(symbol, "text", None),
                [domain.name for domain in getattr(symbol, "domains", ())],
                list(symbol.items()) if isinstance(symbol, ztb.Symbol) else symbol.set.name,
            )
            for symbol in db.symbols()
        }


def test_a_symbol_brings_what_it_cannot_be_without(full, tmp_path):
    path, whole = tmp_path / "a.rxf", tmp_path / "whole.rxf"
    full.write(whole)
    everything = all_of(whole)
    full.write(path, only=["buy"])
    assert list(all_of(path)) == ["food", "dish", "buy"]
    full.write(path, only="holds")
    assert all_of(path) == {name: everything[name] for name in ["food", "nutrient", "holds"]}
    full.write(path, only=full["other"])
    assert all_of(path) == {"other": everything["other"]}
    assert list(full) == ["food", "nutrient", "holds", "dish", "buy", "other", "limit"]


def test_values_types_and_texts_come_along(full, tmp_path):
    full.write(tmp_path / "a.rxf", only=["dish", "buy", "limit"])
    with ztb.open(tmp_path / "a.rxf") as copy:
        assert ztb.special_codes(copy["buy"]["Milk"]).tolist() == [-1, 1, 0, 4, -1]
        assert copy["buy"].user_info == 3 and copy["buy"].text == "Amounts"
        assert copy["buy"].domains == (("dish", copy["food"]),)
        assert copy["limit"].user_info == 2 and copy["limit"][()].level == 4
        assert copy["food"]["Milk"] == "1 qt."


def test_only_labels_of_records_are_written_and_keep_their_order(full, tmp_path):
    full.write(tmp_path / "a.rxf", only="nutrient")
    with ztb.open(tmp_path / "a.rxf") as copy:
        assert copy.labels == ["iron", "zinc", "kcal"]
    full.write(tmp_path / "a.rxf", rename={"holds": "has"})
    with ztb.open(tmp_path / "a.rxf") as copy:
        assert copy.labels == full.labels


def test_symbols_get_other_names_in_the_file(full, tmp_path):
    path = tmp_path / "a.rxf"
    full.write(path, rename={"FOOD": "eaten", "dish": "plate", "holds": "food"})
    assert list(full) == ["food", "nutrient", "holds", "dish", "buy", "other", "limit"]
    with ztb.open(path) as copy:
        assert list(copy) == ["eaten", "nutrient", "food", "plate", "buy", "other", "limit"]
        assert copy["food"].domains == (("eaten", copy["eaten"]), ("nutrient", copy["nutrient"]))
        assert dict(copy["food"]) == dict(full["holds"])
        assert copy["buy"].domains == (("plate", copy["eaten"]),)
        assert copy["other"].domains == (("*", None), ("nowhere", None))


def test_an_alias_of_the_universe_is_written(diet, tmp_path):
    path = tmp_path / "a.rxf"
    universe = diet._native.add_alias("u", diet._native.symbol_at(-1), "")
    assert universe.name == "u"
    diet.write(path, only="u", rename={"u": "all"})
    with ztb.open(path) as copy:
        assert [(symbol.name, symbol.set) for symbol in copy.symbols()] == [("all", None)]


@pytest.mark.parametrize("store", ["map", "vector", "trie"])
def test_a_part_may_be_written_over_its_own_source(full, tmp_path, store):
    path = tmp_path / "a.rxf"
    full.write(path)
    with ztb.open(path, store=store) as copy:
        copy.write(path, only="holds", check_domains=True)
        # What is left out is still there, read or not.
        assert dict(copy["other"]) == {("alone", "x"): 1.0} and copy["food"]["Milk"] == "1 qt."
    assert list(all_of(path)) == ["food", "nutrient", "holds"]


def test_what_cannot_be_written_leaves_the_file(full, tmp_path):
    path = tmp_path / "a.rxf"
    path.write_bytes(b"old")
    full["holds"]["Lard", "iron"] = 1
    for options, kind, text in [
        ({"only": ["holds", "no"]}, KeyError, "Cannot find symbol no"),
        ({"rename": {"no": "yes"}}, KeyError, "Cannot find symbol no"),
        ({"only": "food", "rename": {"limit": "l"}}, ValueError, "limit, which is not written"),
        ({"rename": {"limit": "Holds"}}, ValueError, "limit would both be written as Holds"),
        ({"rename": {"limit": "1bad"}}, ztb.Error, "name"),
        ({"rename": {"limit": 3}}, TypeError, "rename maps names to names, not 'limit' to 3"),
        ({"only": [3]}, TypeError, r"3 \(int\) is no symbol, nor the name of one"),
        ({"only": "holds", "check_domains": True}, ztb.Error, "Record outside its domain: holds"),
    ]:
        with pytest.raises(kind, match=text):
            full.write(path, **options)
        assert path.read_bytes() == b"old"
        assert [path.name for path in tmp_path.iterdir()] == ["a.rxf"]


def test_a_symbol_of_another_database_is_refused(diet, tmp_path):
    with ztb.Database() as other:
        holds = other.add_parameter("holds", ["*"])
        for only in (holds, [diet["food"], holds]):
            with pytest.raises(ValueError, match="^parameter holds belongs to another database$"):
                diet.write(tmp_path / "o.rxf", only=only)
    assert not list(tmp_path.iterdir())
