"""Files and databases put together, renamed, selected and summed up."""

import pytest

import ztb


def prices(values):
    database = ztb.Database()
    food = database.add_set("food")
    price = database.add_parameter("price", [food])
    for label, value in values.items():
        food[label] = ""
        price[label] = value
    return database


def test_databases_and_files_are_merged(tmp_path):
    a, b = prices({"Milk": 11, "Tofu": ztb.NA}), prices({"Ham": 3, "Milk": 11})
    a.write(tmp_path / "a.rxf")
    with ztb.merge([tmp_path / "a.rxf", b]) as both:
        assert list(both["price"]) == [("Milk",), ("Tofu",), ("Ham",)]
        assert ztb.special_code(both["price"]["Tofu"]) == ztb.CODE_NOT_AVAILABLE
    assert ztb.merge([a, b], tmp_path / "c.rxf", case="version") is None
    with ztb.open(tmp_path / "c.rxf") as cases:
        assert list(cases["version"]) == ["database1", "database2"]
        assert cases["price"]["database2", "Ham"] == 3
    b["price"]["Milk"] = 12
    with pytest.raises(ztb.Error, match=r'price\("Milk"\): 11 in .*, 12 in .*\n.*: not written: 1'):
        ztb.merge([a, b], tmp_path / "a.rxf")
    with ztb.merge([a, b], prefer="last") as both:
        assert both["price"]["Milk"] == 12
    with pytest.raises(ztb.MissingFileError):
        ztb.merge([tmp_path / "none.rxf"])
    with pytest.raises(ValueError, match="--prefer b: expected first or last"):
        ztb.merge([a, b], prefer="b")


def test_parts_are_put_behind_each_other():
    with ztb.concat([prices({"Milk": 11}), prices({"Ham": 3})]) as whole:
        assert dict(whole["price"]) == {("Milk",): 11, ("Ham",): 3}
    with pytest.raises(ztb.Error, match=r'price\("Milk"\): stands in .* and in '):
        ztb.concat([prices({"Milk": 11}), prices({"Milk": 11})])


def test_names_change():
    renamed = ztb.rename(
        prices({"Milk": 11}), symbols={"price": "cost"}, labels={"Milk": 'a = "b"'}
    )
    assert dict(renamed["cost"]) == {('a = "b"',): 11}
    with pytest.raises(ztb.Error, match="no symbol 'cost'"):
        ztb.rename(prices({}), symbols={"cost": "price"})


def test_records_are_selected():
    source = prices({"Milk": 11, "Malt": 5, "Tofu": 30})
    with ztb.where(source, 'food = "M*" and value > 6', symbols="price") as chosen:
        assert dict(chosen["price"]) == {("Milk",): 11}
        assert len(chosen["food"]) == 3
    with pytest.raises(ValueError, match="column 9: 'x' is not a number"):
        ztb.where(source, "value > x")


def test_values_are_summed_up(tmp_path):
    source = prices({"Milk": 11, "Malt": 5, "Tofu": ztb.NA})
    with ztb.aggregate(source, "price", how="mean", skip_na=True) as mean:
        assert mean["price_mean"].value == 8
    ztb.aggregate(source, "price", tmp_path / "b.rxf", by=["food"], how="max", name="top")
    with ztb.open(tmp_path / "b.rxf") as top:
        assert top["top"]["Malt"] == 5
    with pytest.raises(ValueError, match="how='median': expected one of sum, mean"):
        ztb.aggregate(source, "price", how="median")


def test_errors_name_databases_and_not_their_temporary_files():
    cheap, dear = prices({"Milk": 11}), prices({"Milk": 12})
    with pytest.raises(ztb.Error) as raised:
        ztb.merge([cheap, dear])
    assert 'price("Milk"): 11 in database 1, 12 in database 2\n' in str(raised.value)
    assert "the result: not written: 1 conflict between the files" in str(raised.value)
    with pytest.raises(ztb.Error, match="^database 1: Cannot find symbol cost"):
        ztb.aggregate(cheap, "cost")
