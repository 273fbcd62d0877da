"""Data sets and NetCDF files that no database was written to."""

import math

import netCDF4
import numpy as np
import pytest
import xarray

import ztb


@pytest.fixture
def weather():
    return xarray.Dataset(
        {
            "wind": (
                ("time", "lat"),
                [[1.5, math.nan], [-0.0, math.inf]],
                {"long_name": "Wind at 100 m"},
            ),
            "calm": (("time",), [True, False]),
            "height": ((), 100),
        },
        coords={
            "time": np.array(["2024-02-29T06:00", "2024-03-01T00:00"], "M8[ns]"),
            "lat": np.array([47.5, 48.0], "f4"),
            "zone": ("lat", [1, 2]),
        },
    )


def test_dimensions_are_sets_and_variables_parameters(weather):
    with ztb.from_xarray(weather) as database:
        assert [(s.name, type(s).__name__) for s in database.symbols()] == [
            ("time", "Set"),
            ("lat", "Set"),
            ("wind", "Parameter"),
            ("calm", "Set"),
            ("height", "Parameter"),
            ("zone", "Parameter"),
        ]
        assert list(database["time"]) == ["2024-02-29T06:00:00", "2024-03-01"]
        assert list(database["lat"]) == ["47.5", "48"]
        wind = database["wind"]
        assert [domain.name for domain in wind.domains] == ["time", "lat"]
        assert wind.text == "Wind at 100 m"
        values = list(wind.values())
        assert values[0] == 1.5 and values[3] == math.inf
        assert ztb.special_code(values[1]) == ztb.CODE_NOT_AVAILABLE
        assert math.copysign(1, values[2]) == -1
        assert list(database["calm"]) == ["2024-02-29T06:00:00"]
        assert database["height"].value == 100
        assert dict(database["zone"]) == {("47.5",): 1, ("48",): 2}


def test_nan_tells_what_becomes_of_missing_cells(weather):
    with ztb.from_xarray(weather, nan="skip") as database:
        assert len(database["wind"]) == 3
    with pytest.raises(ValueError, match=r"cell \(0, 1\): a value of symbol wind is missing"):
        ztb.from_xarray(weather, nan="error")
    with pytest.raises(ValueError, match="nan='x' is no choice, expected one of skip, na, error"):
        ztb.from_xarray(weather, nan="x")


def test_an_array_with_a_name_is_a_database_of_one_symbol():
    array = xarray.DataArray([[1, 2]], dims=("a", "b"), name="x")
    with ztb.from_xarray(array) as database:
        assert dict(database["x"]) == {("0", "0"): 1, ("0", "1"): 2}
    with pytest.raises(ValueError, match=r"the array has no name .* array.rename\('x'\)"):
        ztb.from_xarray(array.rename(None))
    with pytest.raises(TypeError, match=r"3 \(int\) is no Dataset or DataArray of xarray"):
        ztb.from_xarray(3)


def test_what_is_no_number_is_told_at_once(weather):
    weather["who"] = ("time", ["a", "b"])
    weather["when"] = ("lat", np.array(["2024-01-01", "2024-01-02"], "M8[ns]"))
    with pytest.raises(TypeError) as error:
        ztb.from_xarray(weather)
    assert str(error.value) == (
        "numbers or truth values are expected, not who (<U1), when (datetime64[ns]); "
        "dataset.drop_vars(['who', 'when']) leaves them out"
    )
    with ztb.from_xarray(weather.drop_vars(["who", "when"])) as database:
        assert len(database["wind"]) == 4


@pytest.mark.parametrize(
    ("labels", "told"),
    [
        (["a", "A"], "dimension i: row 1: another row has the same labels"),
        ([1.0, math.nan], r"dimension i: nan \(float64\) is no label"),
        (np.array([1, 2], "m8[h]"), r"dimension i: .*timedelta64.* is no label"),
    ],
)
def test_labels_that_are_none_or_the_same_name_their_dimension(labels, told):
    with pytest.raises((TypeError, ValueError), match=told):
        ztb.from_xarray(xarray.Dataset({"x": ("i", [1.0, 2.0])}, coords={"i": labels}))


def test_labels_of_several_levels_have_a_dimension_each():
    stacked = xarray.Dataset(
        {"x": (("i", "j"), [[1.0, 2.0]])}, coords={"i": ["a"], "j": ["c", "d"]}
    ).stack(both=("i", "j"))
    with pytest.raises(ValueError, match=r"several levels; dataset.unstack\('both'\) makes"):
        ztb.from_xarray(stacked)
    with ztb.from_xarray(stacked.unstack("both")) as database:
        assert dict(database["x"]) == {("a", "c"): 1, ("a", "d"): 2}


def test_a_text_that_is_too_long_is_cut_with_a_warning():
    data = xarray.Dataset({"x": ("i", [1.0], {"long_name": "é" * 200})})
    with pytest.warns(UserWarning, match="the text of x is cut after 255 bytes"):
        with ztb.from_xarray(data) as database:
            assert database["x"].text == "é" * 127


def test_variables_that_were_added_to_a_database_s_data_set_come_too(diet):
    dataset = diet.to_xarray()
    dataset["stock"] = ("food", np.arange(1.0, len(diet["food"]) + 1))
    with ztb.from_xarray(dataset) as database:
        assert dict(database["holds"]) == dict(diet["holds"])
        assert list(database["stock"].values()) == [*range(1, len(diet["food"]) + 1)]
        assert database["stock"].domains[0].name == "food"


def test_netcdf_files_of_others_are_read_as_they_mean_it(tmp_path):
    file = tmp_path / "other.nc"
    with netCDF4.Dataset(file, "w") as data:
        data.createDimension("day", 3)
        day = data.createVariable("day", "i4", ("day",))
        day.units = "days since 2024-02-28"
        day[:] = [0, 1, 2]
        packed = data.createVariable("heat", "i2", ("day",), fill_value=-1)
        packed.scale_factor = 0.5
        packed.set_auto_maskandscale(False)
        packed[:] = [3, -1, 8]
    with ztb.read(file, nan="skip") as database:
        assert dict(database["heat"]) == {("2024-02-28",): 1.5, ("2024-03-01",): 4}
    with pytest.raises(ValueError, match="a NetCDF file has no table"):
        ztb.read(file, nan="skip", parameter="heat(day)")
