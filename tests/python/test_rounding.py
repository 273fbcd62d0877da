"""Whole numbers that no double holds: 2**53 + 1 is the first, the nearest doubles are the even numbers."""

import decimal
import warnings

import numpy as np
import pandas as pd
import pytest
import xarray

import ztb

FIRST = 9007199254740993  # 2**53 + 1
NEAREST = 9007199254740992.0


@pytest.fixture
def stock():
    with ztb.Database() as database:
        database.add_set("i", ["*"])
        for label in ("a", "b"):
            database["i"].add(label)
        yield database.add_parameter("stock", "i")


def frame(values):
    return pd.DataFrame({"i": ["a", "b"], "value": values})


@pytest.mark.parametrize(
    "values",
    [
        np.array([1, FIRST], dtype=np.int64),
        np.array([1, FIRST], dtype=np.uint64),
        pd.array([1, FIRST], dtype="Int64"),
        pd.array([pd.NA, FIRST], dtype="Int64"),
        np.array([1, FIRST], dtype=object),
    ],
    ids=["int64", "uint64", "Int64", "with a missing one", "objects"],
)
def test_a_frame_tells_the_row(stock, values):
    with pytest.warns(UserWarning) as told:
        stock.from_pandas(frame(values))
    assert [str(warning.message) for warning in told] == [
        f"row 1: {FIRST} for symbol stock is no double, the nearest one is taken"
    ]
    assert told[0].filename == __file__
    assert stock["b"] == NEAREST


def test_an_array_tells_the_cell(stock):
    with pytest.warns(UserWarning) as told:
        stock.from_numpy(np.array([1, -FIRST]))
    assert [str(warning.message) for warning in told] == [
        f"cell 1: {-FIRST} for symbol stock is no double, the nearest one is taken"
    ]
    assert stock["b"] == -NEAREST


def test_an_array_of_xarray_tells_the_cell(stock):
    with pytest.warns(UserWarning) as told:
        stock.from_xarray(
            xarray.DataArray(np.array([1, FIRST]), dims=["i"], coords={"i": ["a", "b"]})
        )
    assert [str(warning.message) for warning in told] == [
        f"cell 1: {FIRST} for symbol stock is no double, the nearest one is taken"
    ]


def test_a_single_value(stock):
    for value in (FIRST, np.int64(FIRST), np.uint64(FIRST)):
        with pytest.warns(UserWarning) as told:
            stock["a"] = value
        assert [str(warning.message) for warning in told] == [
            f"{FIRST} for symbol stock is no double, the nearest one is taken"
        ]
        assert stock["a"] == NEAREST


def test_ends_of_the_types(stock):
    # 2**63 - 1 and 2**64 - 1 are no doubles, -2**63 is one.
    for values, told_of in (
        (np.array([0, 2**63 - 1], dtype=np.int64), 2**63 - 1),
        (np.array([0, 2**64 - 1], dtype=np.uint64), 2**64 - 1),
    ):
        with pytest.warns(UserWarning, match=f"cell 1: {told_of} for symbol stock"):
            stock.from_numpy(values)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        stock.from_numpy(np.array([0, -(2**63)], dtype=np.int64))
    assert stock["b"] == -(2.0**63)


@pytest.mark.parametrize(
    "values",
    [
        np.array([2**53, -(2**53)]),
        np.array([2**60, 3 * 2**54]),
        np.array([FIRST + 1, -FIRST - 1]),
        pd.array([2**53, pd.NA], dtype="Int64"),
        np.array([2**70, decimal.Decimal("0.1")], dtype=object),
        np.array([1e300, np.inf]),
    ],
)
def test_what_a_double_holds_is_not_told(stock, values):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        stock.from_pandas(frame(values))


def test_a_masked_cell_is_not_looked_at(stock):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        stock.from_numpy(np.ma.masked_array([1, FIRST], mask=[False, True]), nan="skip")
    assert dict(stock.items()) == {("a",): 1.0}
