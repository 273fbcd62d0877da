"""Data of models are taken by the names of their levels and columns, and labels come back as they
went in."""

import pandas as pd
import pytest

import ztb

# Two sets that share their labels: what is transposed still fits.
PLANTS, CITIES = ("plant", ["a", "b"]), ("city", ["a", "b"])
COST = pd.Series({("a", "b"): 100.0}).rename_axis(["plant", "city"])
NEED = pd.Series({("a", "b"): 5.0, ("b", "a"): 1.0}).rename_axis(["plant", "city"])


@pytest.fixture
def tie():
    model = ztb.Model()
    ship = model.variable("ship", [PLANTS, CITIES], upper=1000)
    model.rows("need", [PLANTS, CITIES], ship, lower=NEED)
    model.minimize(ship)
    model.drive("cost(plant, city) = cost of ship")
    return model.tie()


LONG = COST.rename("value").reset_index()


@pytest.mark.parametrize("data", [
    COST, COST.swaplevel(), COST.to_frame("value"), COST.swaplevel().to_frame("value"),
    LONG, LONG[["city", "value", "plant"]], COST.rename_axis(["PLANT", "City"]),
    COST.rename_axis([None, None]),
], ids=["series", "swapped", "frame", "swapped frame", "long", "turned", "case", "unnamed"])
def test_data_are_taken_by_name(tie, data):
    # 5 at 100 and 1 at 1.
    for _ in range(2):
        tie["cost"] = data
        assert tie.solve().objective == 501
    assert list(tie["cost"]) == [("a", "b")]


def test_bounds_are_taken_by_name(tie):
    for data in (COST, COST.swaplevel(), COST.swaplevel().rename("value").reset_index()):
        tie.update("ship", data * 1 if isinstance(data, pd.Series) else data, "upper")
        frame = tie.solve()["ship"]
        assert frame["upper"].to_dict() == {
            ("a", "a"): 1000, ("a", "b"): 100, ("b", "a"): 1000, ("b", "b"): 1000,
        }


def test_levels_with_the_name_of_another_position_are_refused(tie):
    with pytest.raises(ValueError, match="level 0 of the index is named city, which is position 1"):
        tie["cost"] = COST.rename_axis(["city", "x"])
    with pytest.raises(ValueError, match="level 0 of the index is named city, which is position 1"):
        tie.update("ship", COST.rename_axis(["city", "x"]), "upper")


def test_solutions_have_the_names_of_the_positions(tie):
    solution = tie.solve()
    assert list(solution["ship"].index.names) == ["plant", "city"]
    assert list(solution["need"].index.names) == ["plant", "city"]
    assert list(tie.index("cost").names) == ["plant", "city"]
    # And so what a solution gives goes in again.
    tie["cost"] = solution["ship"]["level"].swaplevel()
    assert tie["cost"].to_pandas()["a", "b"] == 5


def test_a_name_that_no_position_of_a_symbol_can_have_is_left_out():
    model = ztb.Model()
    x = model.variable("x", [("from city", ["a"]), ("to, city", ["b"])])
    model.maximize(x)
    tie = model.tie()
    tie.update("x", pd.Series({("a", "b"): 3.0}), "upper")
    solution = tie.solve()
    assert solution.objective == 3
    assert list(solution["x"].index.names) == ["from city", "to, city"]


def test_labels_come_back_as_they_went_in():
    labels = ['12" pipe', "it's", "a,b", "(c", "[d]", " e", "é", "x y", '"', "'"]
    model = ztb.Model()
    x = model.variable("x", ("part", labels), upper=2)
    model.rows("r", ("part", labels), x, upper=1)
    model.maximize(x)
    solution = model.solve()
    assert list(solution["x"].index) == labels
    assert list(solution["r"].index) == labels
    assert model.notes == []


@pytest.mark.parametrize("wrong, text", [
    (lambda m, b: b * None,
     "what multiplies a variable: None (NoneType) is no number, parameter, series or array"),
    (lambda m, b: b * "3",
     "what multiplies a variable: '3' (str) is no number, parameter, series or array"),
    (lambda m, b: m.variable("u", None, upper="z"),
     "upper bounds of u: 'z' (str) is no number, parameter, series or array"),
    (lambda m, b: m.rows("r", None, b, lower="x"),
     "r: 'x' (str) is no number, parameter, series or array"),
    (lambda m, b: m.minimize(b, constant="x"), "'x' (str) is no constant, expected a number"),
    (lambda m, b: m.solve(options=3), "3 (int) is no mapping from options to values"),
    (lambda m, b: m.solve(time_limit="x"),
     "'x' (str) is no number of seconds for time_limit, expected a number"),
    (lambda m, b: m.solve(every="x"),
     "'x' (str) is no number of seconds for every, expected a number"),
    (lambda m, b: m.tie(3), "3 (int) is no database"),
    (lambda m, b: ztb.Model.open(3), "3 (int) is no path of a file, expected a str or a path object"),
    (lambda m, b: ztb.Model.from_arrays("x", "y"), "cells of type <U1 for symbol c, numbers expected"),
])
def test_wrong_types_are_told(wrong, text):
    model = ztb.Model()
    b = model.variable("b", ("i", ["a", "c"]))
    with pytest.raises(TypeError) as failure:
        wrong(model, b)
    assert str(failure.value) == text
    model.minimize(b * 2)
    assert model.solve().objective == 0


@pytest.mark.parametrize("data, text", [
    ("x", "cells of type <U1 for symbol cost, numbers expected"),
    (1j, "cells of type complex128 for symbol cost, numbers expected"),
    (None, "cost: None (NoneType) holds no numbers"),
])
def test_data_that_are_no_numbers_are_told(tie, data, text):
    with pytest.raises(TypeError) as failure:
        tie["cost"] = data
    assert str(failure.value) == text
    assert tie.solve().objective == 6
    with pytest.raises(TypeError, match="3 .int. is no action, expected one of fix, upper"):
        tie.update("ship", 1, 3)


@pytest.mark.parametrize("statement", [
    "price(city, plant) = cost of ship", "price(City, PLANT) = cost of ship(plant, city)",
])
def test_positions_of_what_was_built_are_matched_by_name(statement):
    model = ztb.Model()
    ship = model.variable("ship", [PLANTS, CITIES], upper=1000)
    model.rows("need", [PLANTS, CITIES], ship, lower=NEED)
    model.minimize(ship)
    model.drive(statement)
    tie = model.tie()
    tie["price"] = {("b", "a"): 100.0}  # of city b and plant a
    assert tie.solve().objective == 501


def test_coefficients_are_matched_by_name_in_the_variable_and_in_the_row():
    model = ztb.Model()
    grow = model.variable("grow", [("crop", ["rye", "oat"]), ("soil", ["x", "y"])], upper=9)
    model.rows("harvest", ("soil", ["x", "y"]), grow, lower=6)
    model.minimize(grow)
    model.drive("yield(soil, crop) = coefficient of grow in harvest")
    tie = model.tie()
    tie["yield"] = {("y", "rye"): 3.0}
    # 6 on x at 1 a unit, 2 on y at 3 a unit.
    assert tie.solve().objective == 8


def test_arrays_with_named_families_have_frames_with_these_names():
    model = ztb.Model.from_arrays(
        [2, 1], [[1, 1]], 3, columns={"buy": ("food", ["a", "b"])}, rows={"need": ("what", ["n"])}
    )
    model.drive("price(food) = cost of buy")
    solution = model.solve()
    assert solution["buy"].index.names == ["food"]
    assert solution["need"].index.names == ["what"]


def over(name, **numbers):
    return pd.Series({key: float(value) for key, value in numbers.items()}).rename_axis(name)


def test_labels_are_one_in_any_case():
    """Six at a weight of 3 for oslo and 2 for Ghent; the cheaper way costs 2 for two of oslo."""
    model = ztb.Model()
    x = model.variable("x", ("city", ["oslo", "Ghent"]), upper=over("city", Oslo=9, GHENT=9))
    model.rows("need", None, x * over("city", OSLO=3, ghent=2), lower=6)
    model.rows("most", ("city", ["OSLO"]), x, upper=over("city", osLO=5))
    model.minimize(x * over("city", Ghent=2, oSLO=1))
    solution = model.solve()
    assert solution.objective == 2
    assert solution["x"]["level"].to_dict() == {"oslo": 2, "Ghent": 0}
    assert list(solution["most"].index) == ["oslo"] and model.notes == []


def test_two_records_of_one_label_in_two_cases_are_refused():
    model = ztb.Model()
    x = model.variable("x", ("city", ["oslo"]))
    with pytest.raises(ValueError, match=r"two records have the labels \('oslo',\)"):
        model.rows("need", None, x * over("city", Oslo=3, oslo=2), lower=0)


def test_labels_of_one_position_may_differ_by_case():
    model = ztb.Model()
    x = model.variable("x", ("gas", ["CO", "Co"]), upper=4)
    model.maximize(x * over("gas", CO=1, Co=10))
    solution = model.solve()
    assert solution.objective == 44 and len(model.notes) == 1


def test_data_of_which_nothing_fits_are_refused():
    model = ztb.Model()
    x = model.variable("x", ("city", ["oslo"]))
    with pytest.raises(ValueError, match="need: no record of the data fits any element of x"):
        model.rows("need", None, x * over("city", paris=3), lower=6)
