"""symbol.plot: what stands on the axes of matplotlib."""

import math
import sys

import matplotlib
import numpy as np
import pytest

import ztb

matplotlib.use("Agg")


@pytest.fixture(autouse=True)
def no_figure_is_left():
    from matplotlib import pyplot

    yield
    pyplot.close("all")


def lines(axes):
    return {line.get_label(): line.get_ydata().tolist() for line in axes.get_lines()}


def words(axes):
    return [label.get_text() for label in axes.get_xticklabels()]


def test_lines_are_series_with_gaps(diet):
    axes = diet["holds"].plot(x="nutrient", by="food", kind="line")
    assert words(axes) == ["iron", "zinc", "kcal"]
    drawn = lines(axes)
    assert drawn["Milk"][0] == 1 and math.isnan(drawn["Milk"][1]) and drawn["Milk"][2] == 3
    assert drawn["Tofu"][1] == 5 and math.isnan(drawn["Tofu"][0])
    assert axes.get_xlabel() == "nutrient" and axes.get_title() == "holds"
    assert [text.get_text() for text in axes.get_legend().get_texts()] == ["Milk", "Tofu"]


def test_positions_are_numbers_too(diet):
    assert lines(diet["holds"].plot(1, 0)).keys() == {"Milk", "Tofu"}


def test_bars_stand_side_by_side(diet):
    axes = diet["holds"].plot(x=1, by=0, kind="bar")
    heights = [[bar.get_height() for bar in group] for group in axes.containers]
    assert heights[0][0] == 1 and heights[0][2] == 3 and heights[1][1] == 5
    milk, tofu = axes.containers
    assert milk[0].get_x() + milk[0].get_width() == pytest.approx(tofu[0].get_x())


def test_areas_pile_up(diet):
    axes = diet["holds"].plot(x=1, by=0, kind="area")
    tops = [area.get_paths()[0].vertices[:, 1].max() for area in axes.collections]
    assert tops == [3, 5]
    diet["holds"]["Milk", "iron"] = -1
    with pytest.raises(ValueError, match="^an area chart piles values up; none may be below zero$"):
        diet["holds"].plot(x=1, by=0, kind="area")


def test_labels_that_are_numbers_stand_at_their_numbers(db):
    p = db.add_parameter("p", ["*"], text="Sold")
    for label in (10, 0, 2):
        p[label] = label * 3
    axes = p.plot(x=0, kind="scatter")
    assert axes.collections[0].get_offsets().tolist() == [[0, 0], [2, 6], [10, 30]]
    assert axes.get_title() == "p: Sold"


def test_special_values_are_gaps_and_eps_is_zero(db):
    p = db.add_parameter("p", ["*"])
    for index, value in enumerate((ztb.UNDEF, ztb.NA, ztb.INF, ztb.EPS, 1.5)):
        p[f"l{index}"] = value
    drawn = lines(p.plot(x=0))["p"]
    assert np.isnan(drawn[:3]).all() and drawn[3:] == [0, 1.5]


def test_without_x_values_are_counted(db):
    p = db.add_parameter("p", ["*"])
    for index, value in enumerate((0, 1, 1, 10)):
        p[f"l{index}"] = value
    counts = [bar.get_height() for bar in p.plot().patches]
    assert sum(counts) == 4 and counts[0] == 1 and counts[1] == 2 and counts[-1] == 1


def test_a_field_of_a_variable_on_axes_of_the_caller(db):
    from matplotlib.figure import Figure

    x = db.add_variable("x", ["*"])
    x["a"] = (1, 7)
    mine = Figure().add_subplot()
    assert x.plot(x=0, kind="bar", field="marginal", ax=mine) is mine
    assert mine.patches[0].get_height() == 7


@pytest.mark.parametrize(
    "arguments, said",
    [
        (
            {"x": "food"},
            "symbol holds has several records at one place; choose with by=, or sum them up first",
        ),
        (
            {"x": "plant"},
            "x='plant' (str) is no position of symbol holds, expected one of food, nutrient or its "
            "number, from 0",
        ),
        (
            {"x": 0, "by": 2},
            "by=2 (int) is no position of symbol holds, expected one of food, nutrient or its "
            "number, from 0",
        ),
        ({"x": 0, "by": "food"}, "x= and by= are one position"),
        ({"by": 0}, "by= is given without x="),
        ({"kind": "bar"}, "bar: x= is missing, a position"),
        ({"x": 0, "kind": "hist"}, "a histogram is of values alone, without x="),
        (
            {"x": 0, "kind": "pie"},
            "kind='pie' (str): one of line, bar, area, scatter, hist is expected",
        ),
    ],
)
def test_what_cannot_be_drawn_is_said(diet, arguments, said):
    with pytest.raises(ValueError) as error:
        diet["holds"].plot(**arguments)
    assert str(error.value) == said


def test_a_wrong_field_and_a_set_are_said(db):
    x = db.add_variable("x", ["*"])
    with pytest.raises(ValueError) as error:
        x.plot(x=0, field="value")
    assert str(error.value) == (
        "field='value' (str): one of level, marginal, lower, upper, scale is expected"
    )
    with pytest.raises(TypeError) as error:
        db.add_set("s").plot()
    assert str(error.value) == "s is a set, which has no values to draw"


def test_a_missing_matplotlib_is_named(diet, monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib.pyplot", None)
    with pytest.raises(ImportError) as error:
        diet["holds"].plot(x=0, by=1)
    assert str(error.value) == (
        "matplotlib is needed for this: install the Debian package python3-matplotlib, or "
        "matplotlib by pip"
    )


@pytest.mark.parametrize("kind", ["line", "bar", "area", "scatter", "hist"])
def test_a_symbol_without_records_is_an_empty_picture(db, kind):
    db.add_set("a")
    for symbol in (db.add_parameter("p", "a"), db.add_variable("x", "a")):
        axes = symbol.plot(kind=kind, **({} if kind == "hist" else {"x": "a"}))
        assert axes.get_title() == symbol.name


@pytest.mark.parametrize("kind", ["line", "bar", "area", "scatter"])
def test_labels_and_texts_are_no_formulas(kind, tmp_path):
    database = ztb.Database()
    odd = database.add_parameter("odd", ["*", "*"], "costs $a_{$ in $")
    for number, label in enumerate(["$a_{$", "_hidden", "<b>"], start=1):
        odd[label, "$\\frac$"] = float(number)
    axes = odd.plot(x=1, by=0, kind=kind)
    assert [text.get_text() for text in axes.get_legend().get_texts()] == ["$a_{$", "_hidden", "<b>"]
    assert words(axes) == ["$\\frac$"]
    axes.figure.savefig(tmp_path / "odd.svg")
    assert (tmp_path / "odd.svg").stat().st_size > 0
