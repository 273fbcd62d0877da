"""What models are given that they cannot take, and what looks like it: told, or taken as it is meant,
never as something else."""

import numpy as np
import pandas as pd
import pytest
import scipy.sparse

import ztb


def solved(*arguments, **options):
    solution = ztb.Model.from_arrays(*arguments, **options).solve()
    return solution.status, solution.levels("x").tolist()


# ---- arrays ----


@pytest.mark.parametrize(
    "matrix, error, text",
    [
        (scipy.sparse.csr_matrix([[1j, 1]]), TypeError, "complex128"),
        (([1.0], [0.7], [0, 1]), TypeError, "indices are of type float64"),
        (([1.0], np.array([2**32]), [0, 1]), ValueError, "4294967296 is not within 0 and"),
        (([1.0], [5], [0, 1]), ztb.Error, "there is no column 5, the model has 2"),
        (([1.0], [-1], [0, 1]), ValueError, "indices: -1 is not within 0 and"),
        (([1.0], [0], [0]), ValueError, "indptr goes from 0 to the number of data"),
        (([1.0, 2.0], [0, 1], [0, 3]), ValueError, "indptr goes from 0 to the number"),
        (([1.0, 2.0], [0, 1], [0, 2, 1, 2]), ValueError, "indptr does not ascend"),
        (([1.0], [0]), ValueError, "a tuple"),
        ([["1", "2"]], TypeError, "numbers expected"),
        (None, TypeError, "A is None, expected a matrix"),
        ([[1, 1, 1]], ValueError, "A has 3 columns, c has 2 numbers"),
        (np.zeros((1, 1, 2)), ValueError, "A has 3 axes, expected two"),
        ([[1, 2], [3, np.nan]], ValueError, r"A\[1, 1\] is nan, a finite number is expected"),
        (([1.0, -np.inf], [1, 0], [0, 0, 2]), ValueError, r"A\[1, 0\] is -inf, a finite number"),
    ],
)
def test_matrices_that_are_none(matrix, error, text):
    with pytest.raises(error, match=text):
        ztb.Model.from_arrays([1, 2], matrix, lower=1)


@pytest.mark.parametrize(
    "options, error, text",
    [
        ({"bounds": [(0, 1), (0, 2)]}, TypeError, "bounds is a tuple of the lower bounds and"),
        ({"bounds": 5}, TypeError, "bounds is a tuple"),
        ({"bounds": (np.nan, 1)}, ztb.Error, "a bound is no number"),
        ({"bounds": (0, [1, 2, 3])}, ValueError, "upper bounds: an array of 2 numbers"),
        ({"kind": "int"}, ValueError, "no kind 'int', expected one of continuous, integer, binary"),
        ({"kind": [0, 7]}, ValueError, "no kind 7"),
        ({"kind": [0.5, 1]}, TypeError, "not of type float64"),
        ({"kind": ["integer"]}, ValueError, "an array of 2 is expected"),
        ({"lower": np.nan}, ValueError, "row 0 is from nan to inf"),
        ({"lower": [1, 2]}, ValueError, "lower: an array of 1 numbers"),
        ({"upper": -np.inf}, ValueError, "row 0 is from -inf to -inf, which is no range of numbers"),
        ({"columns": ["a"]}, ValueError, "columns: 1 names for 2"),
        ({"columns": ["a", "a"]}, ztb.Error, 'column "a" stands twice'),
        ({"columns": {"buy": ("f", ["a"])}}, ValueError, "the families have 1 elements, expected 2"),
        ({"maximize": "min"}, TypeError, "maximize is True or False, not 'min'"),
        ({"constant": np.nan}, ztb.Error, "constant has to be a finite number"),
        ({"constant": "5"}, TypeError, "'5' .str. is no constant, expected a number"),
        ({"columns": [None, "b"]}, ValueError, "columns: name 0 is missing"),
        ({"rows": [np.nan]}, ValueError, "rows: name 0 is missing"),
    ],
)
def test_arrays_that_do_not_fit(options, error, text):
    with pytest.raises(error, match=text):
        ztb.Model.from_arrays([1, 2], [[1, 1]], **options)


def test_rows_that_contradict_themselves_have_no_solution():
    model = ztb.Model.from_arrays([1, 2], [[1, 1], [1, 0]], lower=[4, 0], upper=[3, 9])
    assert model.solve().status == "infeasible"
    assert model.explain().members == ["row(0) >= 4", "row(0) <= 3"]


def test_costs_that_are_no_numbers_are_told_by_place():
    with pytest.raises(ValueError, match=r"c\[1\] is inf, a finite number is expected"):
        ztb.Model.from_arrays([1, np.inf], [[1, 1]])


def test_arrays_are_taken_as_they_are_meant():
    one = [[1, 1]]
    assert solved([-1, -2], one, None, 4) == ("optimal", [0, 4])
    assert solved([1, 2], one, 1, None) == ("optimal", [1, 0])
    assert solved([1, 2], one, lower=1, bounds=(0, None)) == ("optimal", [1, 0])
    assert solved([1, 2], one, lower=1, bounds=(None, None))[0] == "unbounded"
    assert solved([1, 2], one, lower=1, bounds=([0, 2], 1))[0] == "infeasible"
    assert solved([1, 2], pd.DataFrame(one), lower=1) == ("optimal", [1, 0])
    assert solved(pd.Series([1, 2]), one, lower=pd.Series([1])) == ("optimal", [1, 0])
    twice = scipy.sparse.coo_matrix(([1.0, 1.0], ([0, 0], [0, 0])), shape=(1, 2))
    assert solved([1, 2], twice, lower=1) == ("optimal", [0.5, 0])
    assert solved([1, 2], scipy.sparse.csr_array([[1.0, 1.0]]), lower=1) == ("optimal", [1, 0])
    assert solved([1, 2], np.zeros((0, 2))) == ("optimal", [0, 0])


def test_binary_columns_are_within_0_and_1_whatever_their_bounds():
    for bounds in ((0, np.inf), (-3, 5), (None, None)):
        status, levels = solved([-1, -2], [[1, 1]], upper=1.5, kind="binary", bounds=bounds)
        assert (status, levels) == ("optimal", [0, 1])
    kinds = ["binary", "continuous"]
    assert solved([-1, -2], [[1, 1]], upper=5, kind=kinds) == ("optimal", [0, 5])
    model = ztb.Model()
    x = model.variable("x", ("i", ["a", "b"]), kind="binary", upper=3)
    model.maximize(x)
    assert model.solve().objective == 2


# ---- built ----


@pytest.fixture
def model():
    return ztb.Model()


@pytest.fixture
def x(model):
    return model.variable("x", ("i", ["a", "b"]), lower=1)


def test_there_is_one_objective(model, x):
    model.minimize(x)
    with pytest.raises(ValueError, match="the model has its objective already"):
        model.maximize(x)
    assert model.solve().objective == 2


def test_variables_of_another_model_are_refused(model, x):
    other = ztb.Model().variable("y", ("i", ["a", "b"]))
    with pytest.raises(ValueError, match="r: y is a variable of another model"):
        model.rows("r", None, x + other, lower=1)
    with pytest.raises(ValueError, match="the objective: y is a variable of another model"):
        model.minimize(other)


def test_what_is_no_expression(model, x):
    with pytest.raises(TypeError, match=r"the objective: 3 \(int\) is no expression"):
        model.minimize(3)
    with pytest.raises(TypeError, match=r"r: 3 \(int\) is no expression in variables"):
        model.rows("r", None, 3, lower=1)
    for wrong in (lambda: x + 1, lambda: 2 - x, lambda: x / x):
        with pytest.raises(TypeError):
            wrong()
    for data in ([np.nan, 1], [np.inf, 1], pd.Series({"a": np.inf, "b": 1.0})):
        with pytest.raises(ValueError, match="r: a coefficient is .*, a finite number is expected"):
            model.rows("r", None, x * data, lower=1)
    model.minimize(sum([x, x]) / 4)
    assert model.solve().objective == 1


PAIRS = pd.MultiIndex.from_product([["p", "q"], ["a", "b"]], names=["r", "i"])


def over_pairs(data, lower=1):
    model = ztb.Model()
    x = model.variable("x", ("i", ["a", "b"]))
    model.rows("need", ("r", ["p", "q"]), x * data, lower=lower)
    model.minimize(x * [1, 1])
    return model.solve().objective


@pytest.mark.parametrize(
    "data, error, text",
    [
        (pd.Series([1, 2, 3, 4], PAIRS[[0, 1, 0, 3]]), ValueError, r"labels \('p', 'a'\)"),
        (pd.Series(list("1234"), PAIRS), TypeError, "is no number"),
        (pd.Series([1, None, 3, 4], PAIRS), ValueError, "a coefficient is nan"),
        (pd.Series([1, None, 3, 4], PAIRS, dtype="Int64"), ValueError, "a coefficient is nan"),
        (pd.Series([1, 2, 3, 4], PAIRS).unstack(), ValueError, r"not of 2 \(a, b\)"),
    ],
)
def test_coefficients_that_are_none(data, error, text):
    with pytest.raises(error, match=text):
        over_pairs(data)


@pytest.mark.parametrize(
    "data, error, text",
    [
        (pd.Series([1.0, np.nan], pd.Index(["p", "q"], name="r")), ValueError, r"\('q',\) is nan"),
        (pd.Series([1.0, 2], pd.Index(["q", "q"], name="r")), ValueError, r"labels \('q',\)"),
        (pd.Series(["1", "2"], pd.Index(["p", "q"], name="r")), TypeError, "is no number"),
    ],
)
def test_sides_that_are_none(data, error, text):
    with pytest.raises(error, match=text):
        over_pairs(pd.Series([1, 2, 3, 4], PAIRS), data)


# 4 x(b) >= 8 and x(a) + 2 x(b) >= 1: x(b) at 2.
def test_frames_are_taken_with_labels_in_their_index_or_before_the_numbers():
    series = pd.Series([1, 2, 0, 4], PAIRS)
    sides = pd.Series([8, 1], pd.Index(["q", "p"], name="r"))
    for data in (series, series.to_frame("v"), series.sample(frac=1).rename("v").reset_index()):
        for lower in (sides, sides.to_frame(), sides.rename("v").reset_index()):
            assert over_pairs(data, lower) == pytest.approx(2)


@pytest.mark.parametrize("name, error", [("", ValueError), (3, TypeError), (None, TypeError)])
def test_names_that_are_none(model, x, name, error):
    with pytest.raises(error, match="name"):
        model.variable(name, ("i", ["a"]))
    with pytest.raises(error, match="name"):
        model.rows(name, None, x, lower=1)
    assert model.rows("r", None, x, lower=1) == 1


# ---- tied ----


@pytest.fixture
def tie(model, x):
    model.minimize(x * [2, 3], name="cost")
    model.rows("need", None, x, lower=4)
    model.drive("price(i) = cost of x")
    return model.tie()


def test_data_that_are_none(tie):
    with ztb.Database() as db:
        some = db.add_set("some")
        with pytest.raises(TypeError, match="price: some is no parameter, and has no numbers"):
            tie["price"] = some
    for data in ("3", {1, 2}, (n for n in [1, 2]), np.array([1j, 2])):
        with pytest.raises(TypeError, match="price"):
            tie["price"] = data
    with pytest.raises(ValueError, match="a frame of one column is expected"):
        tie["price"] = pd.DataFrame({"p": [1.0, 2.0], "q": [1.0, 2.0]}, index=["a", "b"])
    with pytest.raises(ValueError, match="another row has the same labels"):
        tie["price"] = pd.Series([1.0, 2.0], index=["a", "a"])
    assert tie.solve().objective == 2 * 3 + 3


def test_ways_to_solve_that_are_none(tie):
    for options, error, text in [
        ({"progress": 3}, TypeError, "progress=3 cannot be called"),
        ({"every": -1}, ValueError, "every=-1 is no number of seconds"),
        ({"every": np.nan}, ValueError, "every=nan"),
        ({"every": np.inf}, ValueError, "every=inf"),
        ({"solver": 3}, TypeError, "3 is no name of a solver"),
        ({"time_limit": 0}, ztb.Error, "TimeLimit"),
        ({"options": {"Nope": 1}}, ztb.Error, "there is no option"),
    ]:
        with pytest.raises(error, match=text):
            tie.solve(**options)
    assert tie.solve(time_limit=np.inf).optimal
    with pytest.raises(TypeError, match="7 .int. is no statement of what a symbol drives"):
        tie.drive(7)
    with pytest.raises(ValueError, match="time_limit=nan is no number of seconds"):
        tie._model.explain(time_limit=np.nan)


def test_a_solve_within_a_solve_is_refused(model):
    """The callback of a search that does not end comes back to the model that is being solved."""
    random = np.random.default_rng(3)
    sizes = random.integers(0, 100, (5, 40)).astype(float)
    half = np.floor(sizes.sum(axis=1) / 2)
    endless = ztb.Model.from_arrays(random.random(40), sizes, half, half, bounds=(0, 1), kind="integer")
    with pytest.raises(ztb.Error, match="in use|inside|operation"):
        endless.solve(progress=lambda state: endless.solve(), every=0, time_limit=60)
    assert endless.solve(time_limit=0.1).solve_status == "time limit"


@pytest.mark.parametrize("lower, upper", [(1, 1e20), (-1e20, 1), (1e-3, 1e17), (2, 2), (-3, 4)])
def test_both_sides_of_a_row_are_kept(lower, upper):
    for maximize, expected in ((False, max(lower, -1e6)), (True, min(upper, 1e6))):
        model = ztb.Model.from_arrays(
            [1], [[1]], lower, upper, bounds=(-1e6, 1e6), maximize=maximize
        )
        assert model.solve().objective == pytest.approx(expected, rel=1e-9)


def test_a_mapping_that_is_refused_leaves_the_data_as_they_were():
    model = ztb.Model.from_arrays([2, 1], [[1, 1]], 3, columns={"buy": ("food", ["a", "b"])})
    model.drive("price(food) = cost of buy")
    tie = model.tie()
    tie["price"] = {"a": 5.0, "b": 4.0}
    with pytest.raises(TypeError):
        tie["price"] = {"a": 7.0, "b": "cheap"}
    assert dict(tie["price"]) == {("a",): 5.0, ("b",): 4.0}
    assert tie.solve().objective == 12


@pytest.mark.parametrize("action", ["fix", "lower", "upper", "bounds"])
def test_an_equation_has_no_bounds_to_be_updated(action):
    # The library would write to the column that has the number of the row.
    model = ztb.Model.from_arrays([2, 1], [[1, 1]], 3, rows={"need": None}, bounds=(0, 9))
    tie = model.tie()
    with pytest.raises(ValueError, match="need is an equation: level or marginal is expected"):
        tie.update("need", 7.0, action)
    assert tie.solve()["x"]["upper"].tolist() == [9, 9]
    assert tie.update("need", 3.0, "level") == 0
