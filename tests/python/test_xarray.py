"""Symbols as xarray objects, and whole databases as data sets and NetCDF files."""

import math
import os

import netCDF4
import numpy as np
import pytest
import xarray

import ztb


def test_a_parameter_is_an_array_over_its_sets(diet):
    del diet["holds"]["Milk", "iron"]
    array = diet["holds"].to_xarray()
    assert array.dims == ("food", "nutrient") and array.name == "holds"
    assert list(array["food"].values) == list(diet["food"])
    for key in diet["holds"]:
        assert array.sel(food=key[0], nutrient=key[1]) == diet["holds"][key]
    assert math.isnan(array.sel(food="Milk", nutrient="iron"))


def test_fields_and_sets_are_arrays(diet):
    x = diet.add_variable("x", ["food"], subtype=3)
    x["Milk"] = (1, 2)
    array = x.to_xarray()
    assert array.dims == ("food", "field")
    assert array.sel(food="Milk", field="marginal") == 2
    assert np.isnan(array.sel(food="Tofu")).all()
    some = diet.add_set("some", ["food"])
    some.add("Tofu")
    assert some.to_xarray().values.tolist() == [False, True]


def test_what_went_out_comes_back():
    with ztb.Database() as database:
        p = database.add_parameter("p", ["*", "*"])
        for place, value in enumerate((*ztb.SPECIAL_VALUES, 0.0, 2.5)):
            p[f"i{place}", place % 2] = value
        q = database.add_parameter("q", ["*", "*"])
        q.from_xarray(p.to_xarray())
        assert list(q) == list(p)
        assert ztb.special_codes(list(q.values())).tolist() == [0, 1, 2, 3, 4, -1, -1]
        scalar = database.add_parameter("pi")
        scalar.from_xarray(xarray.DataArray(3.25))
        assert scalar.value == 3.25
        s = database.add_set("s", ["*"])
        s.from_xarray(xarray.DataArray([True, False], dims="s", coords={"s": ["a", "b"]}))
        assert list(s) == ["a"]


def test_arrays_of_others_come_in_by_the_names_of_dimensions(diet):
    array = xarray.DataArray(
        [[1.0, math.nan], [3.0, 4.0]],
        dims=("nutrient", "food"),
        coords={"nutrient": ["iron", "new"], "food": ["Milk", "Tofu"]},
    )
    holds = diet["holds"]
    holds.from_xarray(array, nan="skip")
    assert dict(holds) == {("Milk", "iron"): 1, ("Milk", "new"): 3, ("Tofu", "new"): 4}
    holds.from_xarray(array)
    assert ztb.special_code(holds["Tofu", "iron"]) == ztb.CODE_NOT_AVAILABLE
    with pytest.raises(ValueError, match=r"cell \(1, 0\): a value of symbol holds is missing"):
        holds.from_xarray(array, nan="error")
    with pytest.raises(ValueError, match="the array has the dimensions a; symbol holds has food"):
        holds.from_xarray(xarray.DataArray([1.0], dims="a", coords={"a": ["x"]}))
    with pytest.raises(TypeError, match="is no DataArray of xarray"):
        holds.from_xarray([1.0])
    assert len(holds) == 4


def test_sparse_symbols_are_refused_with_their_size():
    with ztb.Database() as database:
        p = database.add_parameter("p", ["*"] * 4)
        for place in range(200):
            p[(f"i{place}",) * 4] = 1
        with pytest.raises(ValueError, match="symbol p has 200 records and would fill 1600000000 cells"):
            p.to_xarray()
        with pytest.raises(ValueError, match="200 x 200 x 200 x 200, 12800000000 bytes"):
            database.to_xarray()
        small = database.add_parameter("small", ["*"])
        small["a"] = 1
        with pytest.raises(ValueError, match="more than 0; most=1 takes them all the same"):
            small.to_xarray(most=0)


def test_a_value_that_stands_for_no_record_is_refused(tmp_path):
    absent = np.array([0x7FF8000061627374], dtype=np.uint64).view(np.float64)[0]
    with ztb.Database() as database:
        p = database.add_parameter("p", ["*"])
        p["a"] = absent
        x = database.add_variable("x", ["*"])
        x["a"] = (absent, 1, 2, 3, 4)
        for use in (p.to_xarray, x.to_xarray, lambda: database.export(tmp_path / "p.nc")):
            with pytest.raises(ValueError, match="has the NaN 0x7ff8000061627374 as a value, which"):
                use()
        assert not (tmp_path / "p.nc").exists()


def whole(diet):
    diet["food"]["Milk"] = "1 qt."
    diet.add_labels(["", "never used"])
    x = diet.add_variable("x", ["food"], "Amounts\twith a tab", subtype=3)
    x["Milk"] = (1, ztb.NA, ztb.UNDEF, ztb.EPS, 0.1 + 0.2)
    diet.add_equation("e", [], subtype=2)
    diet.add_parameter("pi")[()] = -0.0
    diet.add_parameter("empty", ["*", "role"])
    square = diet.add_parameter("square", ["food", "food"])
    square["Milk", "Tofu"] = 7
    loose = diet.add_parameter("loose", ["food"])
    loose["never used"] = 1
    diet.add_alias("dish", diet["food"])
    pairs = diet.add_set("pairs", ["food", "*"])
    pairs["Tofu", "never used"] = "a text"
    return diet


def same(left, right):
    assert [s.name for s in left.symbols()] == [s.name for s in right.symbols()]
    assert left.labels == right.labels
    for symbol, other in zip(left.symbols(), right.symbols()):
        assert type(symbol) is type(other)
        if isinstance(symbol, ztb.Alias):
            assert symbol.set.name == other.set.name
            continue
        assert [d.name for d in symbol.domains] == [d.name for d in other.domains]
        assert [d.set is None for d in symbol.domains] == [d.set is None for d in other.domains]
        assert (symbol.text, symbol.user_info) == (other.text, other.user_info)
        assert list(symbol) == list(other)
        values, others = list(symbol.values()), list(other.values())
        if isinstance(symbol, ztb.Set):
            assert values == others
        else:
            bits = np.array(values, dtype=np.float64).view(np.uint64)
            assert (bits == np.array(others, dtype=np.float64).view(np.uint64)).all()


def test_a_database_is_a_data_set_and_back(diet):
    dataset = whole(diet).to_xarray()
    assert dataset["holds"].dims == ("food", "nutrient")
    assert dataset["square"].dims == ("food", "square:2")
    with ztb.from_xarray(dataset, store="trie") as back:
        same(diet, back)
    with pytest.raises(ztb.DamagedFileError, match="no variable holds"):
        ztb.from_xarray(dataset.drop_vars("holds"))


def test_a_database_goes_to_netcdf_and_back(diet, tmp_path):
    path = tmp_path / "diet.nc"
    whole(diet).export(path)
    with netCDF4.Dataset(path) as file:
        assert file["holds"].dimensions == ("food", "nutrient")
        assert list(file["food"][:]) == list(diet["food"])
    with ztb.read(path) as back:
        same(diet, back)


def test_what_is_no_regular_file_is_not_replaced(diet, tmp_path):
    os.mkfifo(tmp_path / "pipe.nc")
    (tmp_path / "kept").write_text("kept")
    (tmp_path / "link.nc").symlink_to(tmp_path / "kept")
    (tmp_path / "folder.nc").mkdir()
    for name in ["pipe.nc", "link.nc", "folder.nc"]:
        with pytest.raises(ztb.Error, match=f"{name}: is no regular file, nothing is written"):
            diet.export(tmp_path / name)
    assert (tmp_path / "pipe.nc").is_fifo() and (tmp_path / "link.nc").is_symlink()
    assert (tmp_path / "kept").read_text() == "kept"
    assert sorted(path.name for path in tmp_path.iterdir()) == [
        "folder.nc", "kept", "link.nc", "pipe.nc"
    ]


def test_files_that_are_no_such_files_are_refused(diet, tmp_path):
    path = tmp_path / "a.nc"
    diet.export(path)
    content = path.read_bytes()
    path.write_bytes(content[: len(content) // 2])
    with pytest.raises(ztb.DamagedFileError, match="a.nc: "):
        ztb.read(path)
    path.write_bytes(b"nothing of the kind")
    with pytest.raises(ztb.DamagedFileError, match="a.nc: "):
        ztb.read(path)
    with pytest.raises(FileNotFoundError):
        ztb.read(tmp_path / "none.nc")
    with pytest.raises(ValueError, match="takes a whole database"):
        diet.export(path, ["food"])
    with pytest.raises(ValueError, match="has no table"):
        ztb.read(path, parameters="p(i) = v")


def test_a_missing_package_is_named(diet, monkeypatch):
    monkeypatch.setitem(__import__("sys").modules, "xarray", None)
    with pytest.raises(ImportError, match="install the Debian package python3-xarray"):
        diet["holds"].to_xarray()
