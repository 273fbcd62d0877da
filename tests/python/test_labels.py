"""What labels are made from."""

import datetime as dt

import numpy as np
import pandas as pd
import pytest

import ztb

MIDNIGHT = dt.datetime(2031, 4, 7)


@pytest.mark.parametrize(
    "value, label",
    [
        ("a", "a"),
        (7, "7"),
        (-3, "-3"),
        (np.int64(12), "12"),
        (np.uint8(255), "255"),
        (dt.date(2031, 4, 7), "2031-04-07"),
        (MIDNIGHT, "2031-04-07"),
        (dt.datetime(2031, 4, 7, 6, 30), "2031-04-07T06:30:00"),
        (dt.datetime(2031, 4, 7, 6, 30, 0, 5), "2031-04-07T06:30:00.000005"),
        (MIDNIGHT.replace(tzinfo=dt.timezone.utc), "2031-04-07T00:00:00+00:00"),
        (pd.Timestamp(MIDNIGHT), "2031-04-07"),
        (pd.Timestamp("2031-04-07T00:00:00.000000001"), "2031-04-07T00:00:00.000000001"),
        (np.datetime64("2031-04-07"), "2031-04-07"),
        (np.datetime64("2031-04-07T00:00", "ns"), "2031-04-07"),
        (np.datetime64("2031-04-07T06:30", "ns"), "2031-04-07T06:30:00"),
        (np.datetime64("2031-04-07T06:30:00.000005", "ns"), "2031-04-07T06:30:00.000005"),
        (np.datetime64(1, "ns"), "1970-01-01T00:00:00.000000001"),
    ],
)
def test_labels_are_made_by_a_rule(db, value, label):
    assert ztb.label_text(value) == label
    p = db.add_parameter("p", "*")
    p[value] = 1
    assert db.labels == [label] and p[value] == p[label] == 1 and value in p
    p.from_pandas(pd.Series([2.0], index=pd.Index([value])))
    assert dict(p) == {(label,): 2.0}
    p.from_pandas(pd.Series([3.0], index=pd.Index([value], dtype=object)))
    assert dict(p) == {(label,): 3.0} and db.labels == [label]


@pytest.mark.parametrize(
    "value, shown",
    [
        (1.5, r"1\.5 \(float\)"),
        (np.float64(2), r"2\.0 \(float64\)"),
        (True, r"True \(bool\)"),
        (np.bool_(False), r"False \(bool_\)"),
        (None, r"None \(NoneType\)"),
        (b"a", r"b'a' \(bytes\)"),
        (pd.NaT, r"NaT \(NaTType\)"),
        (np.datetime64("NaT"), r"numpy.datetime64\('NaT'\) \(datetime64\)"),
        (dt.time(6), r"datetime.time\(6, 0\) \(time\)"),
        (pd.Period("2031-04"), r"Period\('2031-04', 'M'\) \(Period\)"),
    ],
)
def test_nothing_else_is_a_label(db, value, shown):
    p = db.add_parameter("p", "*")
    text = f"^{shown} is no label, expected a str, an int, or a date$"
    for use in [
        lambda: p.update({value: 1}),
        lambda: p[value],
        lambda: value in p,
        lambda: db.add_labels(["new", value]),
        lambda: db.add_set("s").add(value),
    ]:
        with pytest.raises(TypeError, match=text):
            use()
    assert db.labels == []


def test_levels_of_dates_and_integers_become_labels(db):
    days = pd.date_range("2031-04-07", periods=2, freq="12H")
    index = pd.MultiIndex.from_product([days, [1, 2]], names=["day", "unit"])
    p = db.add_parameter("p", ["*", "*"])
    p.from_pandas(pd.Series([1.0, 2.0, 3.0, 4.0], index=index))
    assert dict(p) == {
        ("2031-04-07", "1"): 1.0,
        ("2031-04-07", "2"): 2.0,
        ("2031-04-07T12:00:00", "1"): 3.0,
        ("2031-04-07T12:00:00", "2"): 4.0,
    }


def test_label_columns_of_dates_and_integers_become_labels(db):
    db.add_set("day"), db.add_set("unit")
    frame = pd.DataFrame(
        {
            "unit": pd.array([1, 2], dtype="Int64"),
            "value": [3, 4],
            "day": pd.to_datetime(["2031-04-07", "2031-04-08"]),
        }
    )
    p = db.add_parameter("p", ["day", "unit"])
    p.from_pandas(frame)
    assert dict(p) == {("2031-04-07", "1"): 3.0, ("2031-04-08", "2"): 4.0}
    frame.loc[1, "unit"] = pd.NA
    with pytest.raises(ValueError, match="row 1: a label of symbol p is missing"):
        p.from_pandas(frame)
    frame["unit"] = frame["unit"].astype(float)
    with pytest.raises(TypeError, match=r"1\.0 \(float\) is no label"):
        p.from_pandas(frame.iloc[:1])
    assert len(p) == 2
