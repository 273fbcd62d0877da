"""Models: opened, made of arrays, built over symbols, driven and solved. scipy's own solver is the
judge where no value is worked by hand."""

import gc
import os
import signal
import threading

import numpy as np
import pandas as pd
import pytest
import scipy.optimize
import scipy.sparse

import ztb

PLAN = """Minimize
 cost: 2 buy(x) + 3 buy(y)
Subject To
 need: buy(x) + buy(y) >= 4
Bounds
 buy(x) <= 3
End
"""


def written(folder, text, name="m.lp"):
    path = folder / name
    path.write_text(text)
    return path


@pytest.fixture
def plan(tmp_path):
    return ztb.Model.open(written(tmp_path, PLAN))


SOLVERS = "the solvers are clp, cbc, glpk, ipopt and bonmin"


FIELDS = ["level", "marginal", "lower", "upper", "scale"]


def expect_nothing_of(solution, name, names, kind):
    frame = solution[name]
    assert list(frame.columns) == FIELDS and frame.shape == (0, 5)
    assert (frame.dtypes == float).all() and list(frame.index.names) == names
    assert solution.levels(name).shape == solution.marginals(name).shape == (0,)
    symbol = solution.symbol(name)
    assert isinstance(symbol, kind) and len(symbol) == 0 and symbol.dimension == len(names)


def test_a_family_without_members_is_an_empty_frame():
    model = ztb.Model()
    food, none = ("food", ["a", "b"]), ("crop", [])
    buy = model.variable("buy", food, upper=9)
    spare = model.variable("Spare", none)
    ship = model.variable("ship", [food, none])
    model.rows("need", food, buy, lower=[1, 2])
    model.rows("most", none, spare, upper=3)
    model.minimize(buy * [1, 2] + spare + ship)
    solution = model.solve()
    assert solution.objective == pytest.approx(5)
    expect_nothing_of(solution, "Spare", ["crop"], ztb.Variable)
    expect_nothing_of(solution, "spare", ["crop"], ztb.Variable)
    expect_nothing_of(solution, "ship", ["food", "crop"], ztb.Variable)
    expect_nothing_of(solution, "most", ["crop"], ztb.Equation)
    assert solution["buy"]["level"].to_dict() == {"a": 1, "b": 2}
    with pytest.raises(ztb.NotFoundError):
        solution["other"]


def test_a_family_of_arrays_without_members_is_an_empty_frame():
    model = ztb.Model.from_arrays(
        [1, 2], np.eye(2), [1, 2], columns={"none": ("crop", []), "buy": ("food", ["a", "b"])}
    )
    expect_nothing_of(model.solve(), "none", ["crop"], ztb.Variable)


# ---- opened ----


def test_a_file_is_solved(plan):
    solution = plan.solve()
    assert (solution.status, solution.solve_status) == ("optimal", "normal completion")
    assert solution.optimal and solution.has_point and solution.solver == "clp"
    assert solution.objective == pytest.approx(9)
    assert solution["buy"]["level"].to_dict() == pytest.approx({"x": 3, "y": 1})
    assert solution["need"].loc[0, "marginal"] == pytest.approx(3)
    assert solution.levels("buy") == pytest.approx([3, 1])
    assert solution.symbol("buy")["y"].level == pytest.approx(1)


def test_integers_with_products_are_solved(tmp_path):
    # (x - 1.6)^2 + (y - 2.3)^2 less 7.85 over integers with x + 2 y <= 5: (1, 2), 0.45 away.
    text = """Minimize
 o: - 3.2 x - 4.6 y + [ 2 x ^ 2 + 2 y ^ 2 ] / 2
Subject To
 c: x + 2 y <= 5
Bounds
 x <= 9
 y <= 9
Generals
 x y
End
"""
    solution = ztb.Model.open(written(tmp_path, text)).solve()
    assert (solution.status, solution.solver) == ("optimal", "bonmin")
    assert solution.objective == pytest.approx(-7.4)
    assert solution.levels("x") == [1] and solution.levels("y") == [2]
    none = text.replace("x + 2 y <= 5", "2 x + 2 y = 3")
    solution = ztb.Model.open(written(tmp_path, none)).solve(solver="bonmin")
    assert solution.status == "infeasible"
    text = text.replace("y <= 9", "y <= 9\n -9 <= z <= 9").replace("Generals\n x y", "sos1\n s: x:1 z:2")
    with pytest.raises(ztb.Error, match="bonmin.*special ordered sets"):
        ztb.Model.open(written(tmp_path, text)).solve(solver="bonmin")


def test_a_file_that_is_none_is_told(tmp_path):
    with pytest.raises(ztb.MissingFileError, match="gone.lp"):
        ztb.Model.open(tmp_path / "gone.lp")
    with pytest.raises(ztb.Error, match="m.lp:3:"):
        ztb.Model.open(written(tmp_path, "Minimize\n cost: 2 2\n )"))


@pytest.mark.parametrize(
    "data",
    [
        np.array([5.0, 3.0]),
        [5, 3],
        pd.Series([3.0, 5.0], index=["y", "x"]),
        pd.DataFrame({"food": ["y", "x"], "price": [3.0, 5.0]}).set_index("food"),
        {"x": 5},
        pd.Series({"x": 5.0}),
    ],
)
def test_data_drive_a_model_as_it_stands(plan, data):
    tie = plan.tie()
    tie.drive("price(food) = cost of buy")
    assert list(tie.index("price")) == ["x", "y"]
    tie["price"] = data
    assert plan.solve().objective == pytest.approx(12)
    assert tie["price"]["x"] == 5
    tie["price"] = {}
    assert plan.solve().objective == pytest.approx(9)


def test_a_number_drives_all(plan):
    plan.drive("price(food) = cost of buy")
    plan.drive("need = rhs of need")
    tie = plan.tie()
    tie["price"] = 1
    tie["need"] = 10
    assert plan.solve().objective == pytest.approx(10)
    with ztb.Database() as db:
        db.add_parameter("n").value = 2
        tie["need"] = db["n"]
    assert plan.solve().objective == pytest.approx(2)
    assert tie["need"].name == "need_data"


def test_the_same_index_is_looked_at_once_and_another_anew(plan):
    plan.drive("price(food) = cost of buy")
    tie = plan.tie()
    index = pd.Index(["y", "x"])
    for x, y, objective in [(1, 5, 3 + 5), (6, 2, 8), (2, 4, 10)]:
        tie["price"] = pd.Series([y, x], index=index)
        assert plan.solve().objective == pytest.approx(objective)
    tie["price"] = pd.Series([4, 1], index=pd.Index(["x", "y"]))
    assert plan.solve().objective == pytest.approx(4)
    frame = pd.DataFrame({"dim_1": ["y", "x"], "value": [4, 2]}, index=pd.RangeIndex(2))
    other = pd.DataFrame({"dim_1": ["x", "y"], "value": [4, 2]}, index=frame.index)
    tie["price"] = frame.set_index("dim_1")
    assert plan.solve().objective == pytest.approx(10)
    tie["price"] = other.set_index("dim_1")
    assert plan.solve().objective == pytest.approx(8)


def test_records_that_meet_nothing_are_counted(plan):
    plan.drive("price(food) = cost of buy")
    assert plan.tie().set("price", {"x": 1, "z": 3}) == 1


def test_bounds_of_variables_are_updated(plan):
    tie = plan.tie()
    assert tie.update("buy", {"x": 1}, "upper") == 0
    assert plan.solve().objective == pytest.approx(2 + 9)
    assert tie.update("buy", {"x": 0}, "fix") == 0
    assert plan.solve().objective == pytest.approx(12)
    with pytest.raises(ValueError, match="no action 'halve', expected one of fix, upper, lower"):
        tie.update("buy", {}, "halve")
    with pytest.raises(ValueError, match="no missing='all', expected one of zero, base, keep"):
        tie.update("buy", {}, missing="all")


def test_what_cannot_drive_is_told(plan):
    with pytest.raises(ztb.Error, match="the model has no variable bui, is buy meant"):
        plan.drive("price(food) = cost of bui")
    plan.drive("price(food) = cost of buy")
    tie = plan.tie()
    with pytest.raises(KeyError, match="rent drives nothing in the model"):
        tie["rent"] = 1
    with pytest.raises(ValueError, match="price: 3 numbers, expected 2, one for each element"):
        tie["price"] = [1, 2, 3]
    with pytest.raises(ztb.Error, match="the model is in use and can be driven by no further"):
        tie.drive("need = rhs of need")
    tie["price"] = {"x": np.inf}
    with pytest.raises(ztb.Error, match=r"price_var\(x\) has to stand at one number"):
        plan.solve()
    tie["price"] = {"x": 3}
    assert plan.solve().objective == pytest.approx(12)


def test_no_solution_is_no_error(plan):
    plan.drive("most(food) = upper of buy")
    tie = plan.tie()
    tie["most"] = 1
    solution = plan.solve()
    assert solution.status == "infeasible" and not solution.has_point
    assert np.isnan(solution.objective)


def test_a_database_is_new_and_stays_with_its_model(plan):
    with ztb.Database() as db:
        db.add_labels(["x"])
        with pytest.raises(ValueError, match="the database holds labels or symbols already"):
            plan.tie(db)
    db = ztb.Database()
    tie = plan.tie(db)
    with pytest.raises(ValueError, match="the model is tied to a database already"):
        plan.tie()
    tie.solve()
    del tie, plan
    gc.collect()
    assert db["buy"]["x"].level == pytest.approx(3)
    db.close()


def test_a_closed_database_is_told(plan):
    tie = plan.tie()
    plan.solve()
    tie.database.close()
    with pytest.raises(ztb.Error, match="closed"):
        plan.solve()


def test_what_the_model_has_not_is_told(plan):
    solution = plan.solve()
    with pytest.raises(KeyError):
        solution["sell"]
    with pytest.raises(ztb.Error, match=f"Invalid solver name: nothing: {SOLVERS}"):
        plan.solve("nothing")
    with pytest.raises(ztb.Error, match="TimeLimit"):
        plan.solve(time_limit=-1)
    assert plan.solve(time_limit=100, options={"RelativeGap": 0.5}).optimal


# ---- arrays ----


def judged(c, a, lower, upper, bounds):
    """The optimum by scipy; None without a point."""
    dense = a.toarray() if scipy.sparse.issparse(a) else np.asarray(a)
    has_upper, has_lower = np.isfinite(upper), np.isfinite(lower)
    result = scipy.optimize.linprog(
        c,
        A_ub=np.vstack([dense[has_upper], -dense[has_lower]]),
        b_ub=np.concatenate([upper[has_upper], -lower[has_lower]]),
        bounds=np.column_stack(bounds),
        method="highs",
    )
    return result.fun if result.status == 0 else None


@pytest.mark.parametrize("seed", range(20))
def test_arrays_have_the_optimum_of_another_program(seed):
    random = np.random.default_rng(seed)
    m, n = 8, 12
    a = scipy.sparse.random(m, n, 0.4, random_state=seed, data_rvs=random.standard_normal).tocsr()
    middle = a @ random.uniform(0, 5, n)
    lower = np.where(random.random(m) < 0.6, middle - random.random(m), -np.inf)
    upper = np.where(random.random(m) < 0.6, middle + random.random(m), np.inf)
    equal = random.random(m) < 0.2
    lower[equal] = upper[equal] = middle[equal]
    bounds = (np.zeros(n), np.full(n, 10.0))
    c = random.standard_normal(n)
    expected = judged(c, a, lower, upper, bounds)
    for matrix in (a, (a.data, a.indices, a.indptr), a.toarray(), a.tocoo()):
        model = ztb.Model.from_arrays(c, matrix, lower, upper, bounds=bounds)
        assert model.solve().objective == pytest.approx(expected, rel=1e-7)
    model = ztb.Model.from_arrays(-c, a, lower, upper, bounds=bounds, maximize=True, constant=3)
    assert model.solve("glpk").objective == pytest.approx(3 - expected, rel=1e-7)


def test_arrays_have_names():
    model = ztb.Model.from_arrays(
        [2, 3, 1],
        [[1, 1, 0], [0, 0, 1]],
        lower=[4, 1],
        bounds=(0, [3, np.inf, np.inf]),
        columns={"buy": ("food", ["Milk", "it's"]), "spare": None},
        rows=["need", "least"],
        kind=[0, 0, 1],
        objective="cost",
    )
    model.drive("price(food) = cost of buy")
    tie = model.tie()
    solution = model.solve()
    assert solution.solver == "cbc"
    assert solution.objective == pytest.approx(10)
    assert solution["buy"]["level"].to_dict() == pytest.approx({"Milk": 3, "it's": 1})
    assert solution["spare"].loc[0, "level"] == 1
    tie["price"] = {"it's": 1}
    assert model.solve().objective == pytest.approx(5)
    plain = ztb.Model.from_arrays([1, 1], [[1, 2]], 4).solve()
    assert plain["x"]["level"].to_dict() == pytest.approx({"0": 0, "1": 2})
    assert plain["row"].loc["0", "lower"] == 4


@pytest.mark.parametrize(
    "arguments, text",
    [
        (dict(c=[1], A=[[1, 2]]), "A has 2 columns, c has 1 numbers"),
        (dict(c=[[1]], A=[[1]]), "c has 2 axes, expected one"),
        (dict(c=[1], A=([1.0], [0], [0, 2])), "indptr goes from 0 to the number of data"),
        (dict(c=[1], A=([1.0], [0])), r"CSR arrays are a tuple \(data, indices, indptr\)"),
        (dict(c=[1], A=[[1]], lower=[1, 2]), r"lower: an array of 1 numbers is expected"),
        (dict(c=[1], A=[[1]], columns=["a", "b"]), "columns: 2 names for 1"),
        (dict(c=[1], A=[[1]], columns={"a": ("i", "uvw")}), "the families have 3 elements"),
        (dict(c=[1], A=[[1]], kind="whole"), "no kind 'whole', expected one of continuous"),
    ],
)
def test_arrays_that_do_not_fit_are_told(arguments, text):
    with pytest.raises(ValueError, match=text):
        ztb.Model.from_arrays(**arguments)


def test_a_place_out_of_the_matrix_is_told():
    with pytest.raises(ztb.Error, match="there is no column 5, the model has 1"):
        ztb.Model.from_arrays([1], ([1.0], [5], [0, 1]))


# ---- built over symbols ----


def test_a_diet_is_built_of_symbols(diet):
    holds = diet["holds"]
    need = diet.add_parameter("need", ["nutrient"])
    need.from_pandas(pd.Series({"iron": 2.0, "zinc": 10.0, "kcal": 3.0}))
    price = diet.add_parameter("price", ["food"])
    price.from_pandas(pd.Series({"Milk": 4.0, "Tofu": 3.0}))
    model = ztb.Model()
    buy = model.variable("buy", diet["food"], upper=9)
    assert model.rows("nutrition", diet["nutrient"], buy * holds, lower=need) == 3
    model.minimize(price * buy, name="cost")
    solution = model.solve()
    # Milk alone has iron and kcal: 2 units for 2 of iron. Tofu alone has zinc: 2 for 10.
    assert solution.objective == pytest.approx(2 * 4 + 2 * 3)
    assert solution["nutrition"]["level"].to_dict() == pytest.approx(
        {"iron": 2, "zinc": 10, "kcal": 6}
    )
    assert repr(buy) == "<ztb.Family buy(food) of 2 columns>"
    assert buy.positions == ("food",) and len(buy) == 2


def test_stock_goes_from_period_to_period():
    months = [f"m{k}" for k in range(1, 5)]
    demand = pd.Series([3.0, 7.0, 2.0, 8.0], index=pd.Index(months, name="month"))
    cost = pd.Series([1.0, 4.0, 1.5, 4.5], index=demand.index)
    model = ztb.Model()
    make = model.variable("make", demand.index, upper=6)
    stock = model.variable("stock", demand.index)
    link = pd.MultiIndex.from_arrays([months[1:], months[:-1]], names=["month", "before"])
    before = stock.named("before") * pd.Series(1.0, index=link)
    model.rows("balance", demand.index, make + before - stock, equal=demand)
    model.minimize(make * cost + 0.5 * stock)
    solution = model.solve()
    # m2 needs 7: 6 - 3 = 3 kept from m1 at 1 + 0.5, the rest, 4, made at 4. m4 needs 8: 4 kept from
    # m3, whose own 2 take the rest, at 1.5 + 0.5, and 4 made at 4.5.
    assert solution["stock"]["level"].to_dict() == pytest.approx(
        dict(zip(months, [3, 0, 4, 0])), abs=1e-9
    )
    assert solution.objective == pytest.approx(6 + 1.5 + 16 + 9 + 2 + 18)


def test_expressions_take_data_of_all_kinds():
    model = ztb.Model()
    pairs = [("from", ["a", "b"]), ("to", ["u", "v"])]
    index = pd.MultiIndex.from_product([["a", "b"], ["u", "v"]], names=["from", "to"])
    ship = model.variable("ship", pairs, upper=np.array([[4, 4], [4, 1]]))
    assert model.rows("supply", ("from", ["a", "b"]), -ship, lower=-5) == 2
    model.rows("demand", ("to", ["u", "v"]), ship, lower=[2, 3], upper=[2, 9])
    model.rows("all", None, ship * 2, upper=20)
    model.minimize(ship * pd.Series([3.0, 1.0, 1.0, 2.0], index=index))
    solution = model.solve()
    # u: 2 from b at 1; v: 3 from a at 1.
    assert solution.objective == pytest.approx(5)
    assert solution["demand"].loc["v", "level"] == pytest.approx(3)
    assert solution["all"].loc[0, "level"] == pytest.approx(10)


def test_integers_are_built_and_maximized():
    model = ztb.Model()
    take = model.variable("take", ("item", ["a", "b", "c"]), kind="binary")
    more = model.variable("more", kind="integer", upper=2.5)
    model.rows("room", None, take * [3, 4, 5] + 2 * more, upper=9)
    model.maximize(take * [4, 5, 6] + more, constant=1)
    # b and c fill it: 11; a, b and one more: 10.
    assert model.solve().objective == pytest.approx(12)


@pytest.mark.parametrize(
    "build, text",
    [
        (lambda m, x: m.rows("r", None, x), "r: one of lower, upper and equal is expected"),
        (lambda m, x: m.rows("r", None, x, lower=1, equal=1), "r: equal stands alone"),
        (lambda m, x: m.rows("r", None, x * [1, 2, 3], lower=1), "r: 3 numbers for 2 elements"),
        (
            lambda m, x: m.rows(
                "r", None, x * pd.Series([1.0], index=pd.Index(["a"], name="j")), lower=1
            ),
            "r: j of the data is a position neither of x",
        ),
        (
            lambda m, x: m.rows(
                "r", ("i", ["a"]), x, lower=pd.Series([1.0], index=pd.Index(["q"], name="i"))
            ),
            "r: no record fits any element",
        ),
        (lambda m, x: m.variable("y", [("i", "ab"), ("i", "cd")]), "two positions are called i"),
        (lambda m, x: m.variable("y", ("i", "aa")), "stands twice"),
        (lambda m, x: m.variable("y", pd.Index(["a"])), "an index without a name"),
        (lambda m, x: m.variable("y", kind="half"), "no kind 'half'"),
        (lambda m, x: x.named("i", "j"), r"x has positions \('i',\), expected as many"),
    ],
)
def test_what_cannot_be_built_is_told(build, text):
    model = ztb.Model()
    x = model.variable("x", ("i", ["a", "b"]))
    with pytest.raises(ValueError, match=text):
        build(model, x)
    # It left nothing behind.
    model.rows("r", None, x, lower=1)
    model.minimize(x * [2, 3])
    assert model.solve().objective == pytest.approx(2)


# max 3 a + 2 b + c with a + b <= 4, where a is 0 or from 3 to 9, and b and c cannot both be used:
# a = 4 and c = 5, which is a whole number from 4.5 to 5.5, give 17; without the set b = 0 stays.
def test_semi_continuous_columns_and_ordered_sets_of_arrays():
    model = ztb.Model.from_arrays(
        [3, 2, 1], [[1, 1, 0]], upper=4, bounds=([3, 0, 4.5], [9, 5, 5.5]),
        kind=["semi-continuous", "continuous", "semi-integer"], sets=[(1, [1, 2])], maximize=True,
    )
    solution = model.solve()
    assert (solution.solver, solution.status) == ("cbc", "optimal")
    assert solution.objective == pytest.approx(17)
    assert solution.levels("x").tolist() == [4, 0, 5]


@pytest.mark.parametrize(
    "given, error, text",
    [
        (5, TypeError, r"sets\[0\] is \(kind, columns\) or"),
        ((3, [0]), ValueError, r"sets\[0\]: the kind of a set is 1 or 2, not 3"),
        ((1, [0.5]), TypeError, "float64, whole numbers expected"),
        ((1, [0, 1], [1]), ValueError, "1 weights for 2 columns"),
        ((1, [0, 7]), ztb.Error, "there is no column 7"),
        ((1, [0, 1], [2, 2]), ztb.Error, "or its weight stands twice"),
    ],
)
def test_ordered_sets_that_are_none(given, error, text):
    with pytest.raises(error, match=text):
        ztb.Model.from_arrays([1, 1], [[1, 1]], sets=[given])


# Of each plant one way at most: the best is worth 5 and 7. Of neighbours two: 5 + 4 and 7 + 3, where
# the order of the weights makes b and c neighbours, and not of the labels.
def test_ordered_sets_are_built_over_symbols(tmp_path):
    worth = pd.Series(
        [5.0, 1, 4, 7, 3, 6],
        index=pd.MultiIndex.from_product([["p", "q's"], ["a", "b", "c"]], names=["plant", "way"]),
    )
    order = pd.Series([1.0, 3, 2, 1, 2, 3], index=worth.index)
    for kind, weights, best in ((1, None, 12), (2, None, 6 + 10), (2, order, 9 + 10)):
        model = ztb.Model()
        use = model.variable("use", worth.index, upper=1)
        members = use if weights is None else use * weights
        assert model.sets("few", ("plant", ["p", "q's"]), members, kind=kind) == 2
        model.rows("all", None, use, upper=10)
        model.maximize(use * worth)
        model.write(tmp_path / "m.lp")
        assert model.solve().objective == pytest.approx(best)
        assert ztb.Model.open(tmp_path / "m.lp").solve().objective == pytest.approx(best)


def test_sets_over_symbols_are_refused_as_a_whole(tmp_path):
    model = ztb.Model()
    x = model.variable("x", ("i", ["a", "b"]))
    for build, text in (
        (lambda: model.sets("s", ("i", ["a", "c"]), x), r"the set of \('c',\) is empty"),
        (lambda: model.sets("s", None, x * [1, 1]), "a weight stands twice in the set of"),
        (lambda: model.sets("s", None, x + x), "a column stands twice in the set of"),
        (lambda: model.sets("s", None, x, kind=3), "the kind of a set is 1 or 2, not 3"),
    ):
        with pytest.raises(ValueError, match=text):
            build()
    model.minimize(x)
    model.write(tmp_path / "m.lp")
    assert "SOS" not in (tmp_path / "m.lp").read_text()


def test_of_elements_some_of_which_are_refused_none_is_added(tmp_path):
    pairs = pd.MultiIndex.from_tuples([("c", "1"), ("a", "1")], names=["i", "j"])
    files = []
    for refused in (False, True):
        model = ztb.Model()
        x = model.variable("x", [("i", ["a", "b"]), ("j", [1, 2])], upper=1)
        total = model.variable("total")
        model.rows("r", ("i", ["a"]), x, lower=1)
        model.rows("all", None, x - total, equal=0)
        if refused:
            for build, text in (
                (lambda: model.variable("x", pairs), r"column \"x\['a','1'\]\" stands twice"),
                (lambda: model.variable("total"), 'column "total" stands twice'),
                (lambda: model.variable("y", ("i", ["d", "e"]), lower=[0, np.nan]), "y.'e'.*no number"),
                (lambda: model.variable("y", ("i", ["d", "e"]), upper=[0, -np.inf]), "y.'e'.*no point"),
                (lambda: model.rows("r", ("k", ["b", "a"]), x, lower=1), r"row \"r\['a'\]\" stands twice"),
                (lambda: model.rows("all", [], x, lower=1), 'row "all" stands twice'),
            ):
                with pytest.raises(ztb.Error, match=text):
                    build()
        # What is new can be added to what has the name.
        model.variable("x", ("i", ["a"]))
        model.variable("y", ("i", ["d", "e"]))
        model.rows("r", ("i", ["b"]), x, lower=1)
        model.minimize(x)
        files.append(tmp_path / f"{refused}.lp")
        model.write(files[-1])
    assert files[0].read_text() == files[1].read_text()


@pytest.mark.parametrize("label", ["", "  "])
def test_blank_labels_are_none(label):
    model = ztb.Model()
    with pytest.raises(ValueError, match=f"a blank label is none: '{label}'"):
        model.variable("x", ("i", ["a", label]))
    x = model.variable("x", ("i", ["a"]))
    with pytest.raises(ValueError, match=f"a blank label is none: '{label}'"):
        model.rows("r", ("i", ["a", label]), x, lower=1)
    with pytest.raises(ValueError, match=f"a blank label is none: '{label}'"):
        ztb.Model.from_arrays([1], [[1]], columns={"x": ("i", [label])})


def test_products_of_variables_are_no_expressions():
    x = ztb.Model().variable("x", ("i", ["a", "b"]))
    with pytest.raises(TypeError, match="a product of variables"):
        x * x
    with pytest.raises(TypeError, match="data multiply one variable at a time"):
        (x + x) * [1, 2]
    with pytest.raises(TypeError, match="the variable stands before"):
        np.array([1, 2]) * x
    with pytest.raises(TypeError, match="is nothing to build over"):
        ztb.Model().variable("x", 7)


# ---- long solves ----


@pytest.fixture
def endless():
    """Rows of large numbers that no choice adds up to: a search over all of them."""
    random = np.random.default_rng(3)
    a = random.integers(0, 100, (5, 40)).astype(float)
    half = np.floor(a.sum(axis=1) / 2)
    return ztb.Model.from_arrays(
        random.random(40), a, half, half, bounds=(0, 1), kind="integer"
    )


def test_progress_is_told_and_ends_a_solve(endless):
    seen = []

    def progress(state):
        seen.append(state.seconds)
        return len(seen) < 3

    solution = endless.solve(progress=progress, every=0.05, time_limit=100)
    assert solution.solve_status == "terminated"
    assert len(seen) == 3 and seen == sorted(seen) and seen[0] >= 0.05


@pytest.mark.parametrize("solver", ["cbc", "glpk"])
def test_progress_has_the_best_objective_and_the_bound(solver):
    """Knapsacks, of which more is put in than a bound allows only in part of a thing."""
    random = np.random.default_rng(5)
    sizes = random.integers(5, 1000, (5, 60)).astype(float)
    worth = sizes.mean(axis=0) + random.integers(0, 100, 60)
    room = np.floor(sizes.sum(axis=1) / 2)
    relaxed = ztb.Model.from_arrays(worth, sizes, upper=room, bounds=(0, 1), maximize=True)
    most = relaxed.solve().objective
    model = ztb.Model.from_arrays(worth, sizes, upper=room, kind="binary", maximize=True)
    seen = []

    def progress(state):
        seen.append(state)
        return not state.gap > 0

    solution = model.solve(solver, progress=progress, every=0, time_limit=60)
    assert solution.solve_status == "terminated"
    assert 0 < seen[-1].objective < seen[-1].bound <= most + 1e-6
    assert seen[-1].gap == pytest.approx(seen[-1].bound / seen[-1].objective - 1)
    assert solution.status == "feasible" and 0 < solution.gap < 1


def test_an_error_of_the_callback_comes_out(endless):
    def progress(seconds):
        raise OSError("enough")

    with pytest.raises(OSError, match="enough"):
        endless.solve(progress=progress, every=0.05, time_limit=100)


def test_a_limit_ends_a_solve_and_is_given_back(endless):
    assert endless.solve(time_limit=0.3).solve_status == "time limit"
    assert float(endless._native.option("TimeLimit")) == 1e10


def test_solves_of_one_model_by_two_threads_have_limits_of_their_own(endless):
    first_runs, second_comes = threading.Event(), threading.Event()
    calls_left = [10]

    def first(progress):
        first_runs.set()
        if second_comes.is_set():
            calls_left[0] -= 1
        return calls_left[0] > 0

    statuses = []
    thread = threading.Thread(
        target=lambda: statuses.append(
            endless.solve(time_limit=100, progress=first, every=0.05).solve_status
        )
    )
    thread.start()
    assert first_runs.wait(60)
    second_comes.set()
    second = endless.solve(time_limit=0.3, progress=lambda progress: progress.seconds < 30)
    thread.join()
    assert (statuses, second.solve_status) == (["terminated"], "time limit")
    assert float(endless._native.option("TimeLimit")) == 1e10


def test_other_threads_run_during_a_solve_and_ctrl_c_ends_it(endless):
    """The timer's thread needs the interpreter's lock to send the signal."""
    timer = threading.Timer(0.3, lambda: os.kill(os.getpid(), signal.SIGINT))
    timer.start()
    assert endless.solution is None
    with pytest.raises(KeyboardInterrupt):
        endless.solve(time_limit=100)
    timer.join()
    assert endless.solution.solve_status == "terminated"
    assert endless.solve(time_limit=0.1).solve_status == "time limit"


def test_a_solve_that_an_exception_ends_leaves_its_best_point_and_bound():
    """How near five sums can come to their halves at once: nothing chosen misses them by these,
    and fractions miss nothing, so that 0 bounds it for long."""
    a = np.random.default_rng(4).integers(1, 100, (5, 50)).astype(float)
    half = np.floor(a.sum(axis=1) / 2)
    model = ztb.Model()
    kinds, things = pd.RangeIndex(5, name="kind"), pd.RangeIndex(50, name="thing")
    take = model.variable("take", things, kind="binary")
    over, under = model.variable("over", kinds), model.variable("under", kinds)
    weight = pd.Series(a.ravel(), index=pd.MultiIndex.from_product([kinds, things]))
    model.rows("half", kinds, take * weight - over + under, equal=half)
    model.minimize(over + under)

    def interrupted(state):
        if np.isfinite(state.objective) and np.isfinite(state.bound):
            raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        model.solve("glpk", progress=interrupted, every=0)
    left = model.solution
    assert (left.status, left.solve_status, left.solver) == ("feasible", "terminated", "glpk")
    assert 0 < left.objective <= half.sum() and left.bound == pytest.approx(0, abs=1e-6)
    assert left["over"]["level"].sum() + left["under"]["level"].sum() == pytest.approx(
        left.objective
    )


def hours_and_room():
    """max 5 x(a) + 4 x(b), 6 x(a) + 4 x(b) <= 24, x(a) + 2 x(b) <= 6: best at (3, 1.5)."""
    model = ztb.Model()
    x = model.variable("x", ("which", ["a", "b"]))
    model.rows("hours", None, x * [6, 4], upper=24)
    model.rows("room", None, x * [1, 2], upper=6)
    model.maximize(x * [5, 4])
    return model


@pytest.mark.parametrize("solver", ["clp", "glpk"])
def test_ranging_tells_how_far_costs_and_right_hand_sides_can_move(solver):
    model = hours_and_room()
    with pytest.raises(ValueError, match="the model was not solved yet"):
        model.ranging()
    model.solve(solver)
    ranging = model.ranging()
    assert ranging.costs["x"][("a",)] == pytest.approx((2, 6))
    assert ranging.costs["x"][("b",)] == pytest.approx((10 / 3, 10))
    assert ranging.sides["hours"][()] == pytest.approx((12, 36))
    assert ranging.sides["room"][()] == pytest.approx((4, 12))
    assert ranging.sides["objective"][()] == (-np.inf, np.inf)
    model.solve("cbc")
    with pytest.raises(ztb.Error, match='solver "cbc" has no ranges for the model'):
        model.ranging()


@pytest.mark.parametrize("solver", ["clp", "glpk"])
def test_a_basis_goes_from_one_model_to_the_next(solver, tmp_path):
    model = hours_and_room()
    model.solve(solver)
    assert not model.basis_taken
    model.write_basis(tmp_path / "plan.basis")
    again = hours_and_room()
    again.read_basis(tmp_path / "plan.basis")
    assert again.solve(solver).objective == pytest.approx(21)
    assert again.basis_taken
    with pytest.raises(ztb.Error, match="is no saved basis"):
        again.read_basis(__file__)


@pytest.mark.parametrize("ending", [".lp", ".mps"])
def test_a_model_is_written_and_reads_back(ending, tmp_path):
    path = tmp_path / f"m{ending}"
    built = ztb.Model.from_arrays([2, 1], [[1, 1]], 3, columns={"buy": ("food", ["a", "b"])})
    built.write(path)
    again = ztb.Model.open(path)
    assert again.solve()["buy"]["level"].to_dict() == {"a": 0, "b": 3}
    built.solve()
    with pytest.raises(ztb.Error, match="in use"):
        built.write(path)
    with pytest.raises(ztb.Error, match="gone"):
        ztb.Model().write(tmp_path / "gone" / f"m{ending}")


def test_a_start_is_told_to_be_taken():
    # 3 and 2 within 8 of 3 and 2 at most: 2 of the first, 1 of the second are worth 5.
    model = ztb.Model.from_arrays([2, 1], [[3, 2]], upper=8, kind="integer", maximize=True)
    tie = model.tie()
    assert tie.solve().objective == 5 and not model.start_taken
    tie.update("x", np.array([2.0, 1.0]), "level")
    assert tie.solve(options={"UseStart": 1}).objective == 5 and model.start_taken


def test_models_and_ties_show_what_they_are(tmp_path):
    path = tmp_path / "m.lp"
    ztb.Model.from_arrays([1], [[1]], 1).write(path)
    model = ztb.Model.open(path)
    model.drive("price(i) = cost of x")
    assert repr(model) == f"<ztb.Model of {str(path)!r}>"
    tie = model.tie()
    assert repr(tie) == f"<ztb.Tie of {model!r}>"
    tie["price"] = 2
    assert repr(tie) == f"<ztb.Tie of {model!r}, driven by price>"
    assert repr(ztb.Model()) == "<ztb.Model>"
