"""The five special values as numpy's nan and inf, told apart by their codes."""

import math

import numpy as np
import pandas as pd
import ztb

EXPECTED = [0, 1, 2, 3, 4]


def test_values_behave_as_numpy_expects():
    assert math.isnan(ztb.UNDEF) and math.isnan(ztb.NA)
    assert ztb.INF == np.inf and ztb.NEG_INF == -np.inf
    assert 0 < ztb.EPS < 1e-320
    assert ztb.special_code(np.nan) == ztb.CODE_NOT_AVAILABLE
    assert ztb.special_code(math.nan) == ztb.CODE_NOT_AVAILABLE
    assert [ztb.special_code(value) for value in ztb.SPECIAL_VALUES] == EXPECTED


def test_ordinary_numbers_have_no_code():
    values = [0.0, -0.0, 1.0, 1e300, -np.nan, 1e-320, 1.7976931348623157e308]
    assert ztb.special_codes(values).tolist() == [-1] * len(values)
    assert ztb.special_codes(np.ones((2, 3))).shape == (2, 3)
    assert ztb.special_codes(np.array([])).shape == (0,)


def test_every_way_in_and_out_keeps_the_code(db):
    s = db.add_set("s")
    s.extend(["a", "b", "c", "d", "e"])
    p = db.add_parameter("p", ["s"])
    values = np.array(ztb.SPECIAL_VALUES)
    p.from_numpy(values)
    assert ztb.special_codes(p.to_numpy()).tolist() == EXPECTED
    assert [ztb.special_code(value) for value in p.values()] == EXPECTED
    assert [ztb.special_code(p[key]) for key in p] == EXPECTED
    series = p.to_pandas()
    assert ztb.special_codes(series).tolist() == EXPECTED
    p.clear()
    p.from_pandas(series)
    assert ztb.special_codes(p.to_numpy()).tolist() == EXPECTED
    p.clear()
    for label, value in zip("abcde", ztb.SPECIAL_VALUES):
        p[label] = value
    assert ztb.special_codes(p.to_numpy()).tolist() == EXPECTED


def test_fields_of_a_variable_keep_their_codes(db):
    x = db.add_variable("x", ["*"])
    x["a"] = ztb.SPECIAL_VALUES
    assert ztb.special_codes(x["a"]).tolist() == EXPECTED
    frame = x.to_pandas()
    x.from_pandas(frame)
    assert ztb.special_codes(x.to_pandas().to_numpy()).tolist() == [EXPECTED]


def test_epsilon_is_a_record_where_zero_is_none(db):
    s = db.add_set("s")
    s.extend(["a", "b", "c"])
    p = db.add_parameter("p", ["s"])
    p.from_numpy([0.0, ztb.EPS, -0.0])
    assert list(p) == [("b",)]


def test_the_file_has_the_librarys_own_codes(db, tmp_path):
    p = db.add_parameter("p", ["*"])
    for label, value in zip("abcde", ztb.SPECIAL_VALUES):
        p[label] = value
    db.write(tmp_path / "a.rxf")
    with ztb.open(tmp_path / "a.rxf") as copy:
        # The library's own spelling, instead of the package's.
        copy._native.set_special_values(copy._native.internal_special_values())
        values = copy["p"].to_pandas()
    assert values["a"] == 1e300
    bits = values.to_numpy().view(np.uint64).tolist()
    assert bits == [
        0x7E37E43C8800759C,
        0x7FF8000000000000,
        0x7FF0000000000000,
        0xFFF0000000000000,
        0x0000000000000001,
    ]


def test_missing_values_of_pandas_are_not_available(db):
    p = db.add_parameter("p", ["*"])
    p.from_pandas(pd.Series([1.0, None], index=["a", "b"]))
    assert ztb.special_code(p["b"]) == ztb.CODE_NOT_AVAILABLE


def test_the_plain_number_1e300_stays_itself_in_python(db):
    # Inside the library it is the code of the undefined value.
    p = db.add_parameter("p", ["*"])
    p["a"] = 1e300
    assert ztb.special_code(p["a"]) == ztb.CODE_UNDEFINED

