"""Cells of pandas objects: missing ones by choice, wrong ones refused."""

from decimal import Decimal
from fractions import Fraction

import numpy as np
import pandas as pd
import pytest

import ztb


@pytest.fixture
def p(db):
    p = db.add_parameter("p", "*")
    p["old"] = 1
    return p


def series(values, dtype=None):
    return pd.Series(values, index=[f"l{n}" for n in range(len(values))], dtype=dtype)


MISSING = [
    series([1.0, np.nan, 3.0]),
    series([1, None, 3], dtype="Int64"),
    series([1, None, 3], dtype="Float64"),
    series([1, None, 3], dtype=object),
    series([1, pd.NA, 3], dtype=object),
    series([1, None, 3]).astype("category"),
]


@pytest.mark.parametrize("data", MISSING, ids=lambda data: str(data.dtype))
def test_missing_cells_go_by_choice(p, data):
    with pytest.raises(ValueError) as failure:
        p.from_pandas(data, nan="error")
    assert str(failure.value) == (
        "row 1: a value of symbol p is missing; nan='skip' makes no record of it, nan='na' "
        "stores it as not available"
    )
    assert dict(p) == {("old",): 1.0} and p.database.labels == ["old"]
    p.from_pandas(data, nan="skip")
    assert dict(p) == {("l0",): 1.0, ("l2",): 3.0}
    for stored in [lambda: p.from_pandas(data, nan="na"), lambda: p.from_pandas(data)]:
        stored()
        assert len(p) == 3 and p["l0"] == 1 and p["l2"] == 3
        assert ztb.special_code(p["l1"]) == ztb.CODE_NOT_AVAILABLE


def test_the_undefined_value_is_kept_or_skipped(p):
    p.from_pandas(series([1.0, ztb.UNDEF]))
    assert ztb.special_code(p["l1"]) == ztb.CODE_UNDEFINED
    p.from_pandas(p.to_pandas(), nan="skip")
    assert dict(p) == {("l0",): 1.0}


def test_a_skipped_row_brings_no_label(p):
    p.from_pandas(series([np.nan, 2.0]), nan="skip")
    assert p.database.labels == ["old", "l1"]


def test_no_other_choice_is_known(p):
    with pytest.raises(ValueError, match="nan='drop' is no choice, expected one of skip, na, error"):
        p.from_pandas(series([1.0]), nan="drop")


def test_missing_fields_of_a_variable_take_their_defaults_when_skipped(db):
    x = db.add_variable("x", "*", subtype=3)
    frame = pd.DataFrame(
        {"level": [1.0, np.nan, np.nan], "upper": [np.nan, 5.0, np.nan]}, index=["a", "b", "c"]
    )
    x.from_pandas(frame, nan="skip")
    assert dict(x) == {("a",): (1, 0, 0, np.inf, 1), ("b",): (0, 0, 0, 5, 1)}
    with pytest.raises(ValueError, match="row 0: a value of symbol x is missing"):
        x.from_pandas(frame, nan="error")
    x.from_pandas(frame)
    assert len(x) == 3 and ztb.special_code(x["a"].upper) == ztb.CODE_NOT_AVAILABLE


@pytest.mark.parametrize(
    "data, text",
    [
        (series([1, "2"]), r"row 1: the value '2' \(str\) of symbol p is no number"),
        (series([None, b"2"]), r"row 1: the value b'2' \(bytes\) of symbol p is no number"),
        (series([1, [2]]), r"row 1: the value \[2\] \(list\) of symbol p is no number"),
        (series(["1"], "string"), "values of type string for symbol p, numbers expected"),
        (series(pd.to_datetime(["2031-04-07"])), r"values of type datetime64\[ns\] for symbol p"),
        (series([1j]), "values of type complex128 for symbol p, numbers expected"),
    ],
    ids=str,
)
def test_what_is_no_number_is_refused(p, data, text):
    with pytest.raises(TypeError, match=text):
        p.from_pandas(pd.Series(data.array, index=["a", "b"][: len(data)]))
    assert dict(p) == {("old",): 1.0} and p.database.labels == ["old"]


@pytest.mark.parametrize(
    "data",
    [
        series([2, 3]),
        series([2, 3], dtype="uint8"),
        series([2.0, 3], dtype="float32"),
        series([Decimal(2), Decimal(3)]),
        series([2, 3.0], dtype=object),
        series([2, Decimal(3)]),
        series([np.float32(2), Fraction(3)], dtype=object),
        series([2.0, 3.0], dtype="Sparse[float]"),
    ],
    ids=lambda data: f"{data.dtype}-{type(data.iloc[1]).__name__}",
)
def test_numbers_of_every_type_come_in(p, data):
    p.from_pandas(data)
    assert dict(p) == {("l0",): 2.0, ("l1",): 3.0}
    p.from_pandas(series([True, False]))
    assert dict(p) == {("l0",): 1.0, ("l1",): 0.0}


def test_a_number_beyond_all_doubles_is_refused(p):
    for value in [10**400, Fraction(10**400)]:
        with pytest.raises(OverflowError, match="a value of symbol p is larger than any double"):
            p.from_pandas(series([1, value], dtype=object))
    with pytest.raises(OverflowError, match="a value of symbol p is larger than any double"):
        p["old"] = 10**400
    assert dict(p) == {("old",): 1.0}


@pytest.mark.parametrize("value", ["3", b"3", None, [1], 1j, pd.NA])
def test_a_single_value_is_a_number(p, value):
    text = rf"the value .* \({type(value).__name__}\) of symbol p is no number"
    with pytest.raises(TypeError, match=text):
        p["old"] = value
    x = p.database.add_variable("x", "*")
    for several in [(1, value), {"level": value}]:
        with pytest.raises(TypeError, match="of symbol x is no number"):
            x["new"] = several
    assert p["old"] == 1 and len(x) == 0 and p.database.labels == ["old"]


def test_a_text_is_a_str(db):
    s = db.add_set("s")
    with pytest.raises(TypeError, match=r"3 \(int\) is no text for an element of set s, expected a"):
        s["a"] = 3
    with pytest.raises(TypeError, match=r"row 1: 3 \(int\) is no text for an element of set s"):
        s.from_pandas(pd.Series(["x", 3], index=["a", "b"]))
    with pytest.raises(TypeError, match="'Milk' is one label, expected several, as in"):
        s.extend("Milk")
    assert len(s) == 0 and db.labels == []
