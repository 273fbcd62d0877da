"""What drives a model again and again: data whose labels were looked at before, and results as
arrays and frames. The model is worked by hand."""

import copy
import gc
import weakref

import numpy as np
import pandas as pd
import pytest

import ztb

PLAN = """Minimize
 cost: 2 buy(x) + 3 buy(y)
Subject To
 need: buy(x) + buy(y) >= 4
Bounds
 buy(x) <= 3
End
"""


@pytest.fixture
def tie(tmp_path):
    path = tmp_path / "m.lp"
    path.write_text(PLAN)
    model = ztb.Model.open(path)
    model.drive("price(food) = cost of buy")
    return model.tie()


def cost(tie):
    """3 of x and 1 of y, or 4 of y alone: what the cheaper of the two makes."""
    return tie.solve("clp").objective


# ---- data ----


@pytest.mark.parametrize(
    "array",
    [
        np.array([5.0, 3.0]),
        np.array([5, 3]),
        np.array([5, 3], dtype=np.float32),
        np.array([5.0, 0.0, 3.0])[::2],
        np.array([[5.0, 3.0]], order="F"),
        np.ma.array([5.0, 3.0], mask=[False, False]),
        np.array([5.0, 3.0], dtype=">f8"),
        np.frombuffer(b"-" + np.array([5.0, 3.0]).tobytes(), np.float64, offset=1),
    ],
)
def test_arrays_of_all_kinds_are_taken_in_their_order(tie, array):
    for _ in range(2):
        tie["price"] = array
        assert cost(tie) == pytest.approx(12)
        assert dict(tie["price"]) == {("x",): 5, ("y",): 3}
    tie["price"] = [2, 3]
    assert cost(tie) == pytest.approx(9)


def test_arrays_that_do_not_fit_are_refused(tie):
    for array in (np.zeros(3), np.zeros((2, 2)), [1.0]):
        with pytest.raises(ValueError, match="price: . numbers, expected 2, one for each element"):
            tie["price"] = array
    with pytest.raises(TypeError):
        tie["price"] = np.array(["5", "3"])
    with pytest.raises(ztb.Error, match=r"Bad value nan in price\(x\)"):
        tie["price"] = np.array([np.nan, 3.0])
    tie["price"] = np.array([5.0, 3.0])
    assert cost(tie) == pytest.approx(12)


def test_an_array_may_be_written_over_when_it_was_taken(tie):
    tie["price"] = 1
    array = np.array([5.0, 3.0])
    tie["price"] = array
    array[:] = 1
    with pytest.raises(ztb.Error, match=r"Bad value nan in price\(y\)"):
        tie["price"] = np.array([1.0, np.nan])
    assert dict(tie["price"]) == {("x",): 5, ("y",): 3}
    assert cost(tie) == pytest.approx(12)


def test_data_cannot_be_deleted(tie):
    with pytest.raises(TypeError, match="the data of a model cannot be deleted"):
        del tie["price"]
    with pytest.raises(KeyError, match="rent drives nothing in the model"):
        tie["rent"] = np.array([5.0, 3.0])
    with pytest.raises(TypeError):
        tie[["price"]] = np.array([5.0, 3.0])


def test_what_a_step_gave_stays_after_the_next(tie):
    tie["price"] = np.array([5.0, 3.0])
    solution = tie.solve("clp")
    levels, copied = solution.levels("buy"), copy.copy(solution)
    levels[0] = 7  # the caller's own
    tie["price"] = np.array([1.0, 3.0])
    assert cost(tie) == pytest.approx(6)
    np.testing.assert_array_equal(levels, [7, 4])
    np.testing.assert_array_equal(solution.levels("buy"), [3, 1])  # those of the last solve
    assert solution.objective == copied.objective == pytest.approx(12)
    assert tie.solution.objective == pytest.approx(6)
    with pytest.raises(ztb.NotFoundError, match="the model has no variable or equation sell"):
        solution.levels("sell")


def test_ties_end_when_nobody_holds_them(tmp_path):
    path = tmp_path / "m.lp"
    path.write_text(PLAN)
    model = ztb.Model.open(path)
    model.drive("price(food) = cost of buy")
    tie = model.tie()
    tie["price"] = np.array([5.0, 3.0])
    solution, ended = tie.solve("clp"), weakref.ref(tie)
    del model, tie
    gc.collect()
    assert solution.levels("buy").sum() == pytest.approx(4)
    del solution
    gc.collect()
    assert ended() is None


def test_what_a_step_passes_through_is_made_by_the_package_alone(tie):
    with pytest.raises(TypeError, match="made by the package ztb alone"):
        ztb.Solution()
    for half in ztb.Tie.__new__(ztb.Tie), type(tie).__new__(type(tie)):
        with pytest.raises(ValueError, match="__init__ was not called"):
            half["price"] = np.array([5.0, 3.0])


def test_other_labels_in_an_index_that_looks_alike_are_seen(tie):
    for labels, values, expected in [
        (["y", "x"], [3.0, 5.0], 12),
        (["y", "x"], [1.0, 5.0], 4),
        (["y", "x"], [1.0, 0.5], 2.5),
        (["x", "y"], [1.0, 0.5], 2),
        (["x", "y"], [4.0, 2.0], 8),
        (["x", "z"], [1.0, 9.0], 3 + 3),
        (["x", "z"], [2.0, 9.0], 9),
        (["y"], [1.0], 4),
    ]:
        tie["price"] = pd.Series(values, index=pd.Index(labels))
        assert cost(tie) == pytest.approx(expected), labels


def test_the_labels_of_a_frame_are_looked_at_in_each_step(tie):
    label = tie.index("price").name
    frame = pd.DataFrame({label: ["y", "x"], "price": [3.0, 5.0]})
    for _ in range(3):
        tie["price"] = frame
        assert cost(tie) == pytest.approx(12)
    frame.loc[0, "price"] = 1.0
    tie["price"] = frame
    assert cost(tie) == pytest.approx(4)
    frame[label] = ["x", "y"]
    tie["price"] = frame
    assert cost(tie) == pytest.approx(3 + 5)
    tie["price"] = frame.rename(columns={"price": "cost"})
    assert cost(tie) == pytest.approx(3 + 5)
    tie["price"] = frame[["price", label]]
    assert cost(tie) == pytest.approx(3 + 5)


def test_labels_that_are_written_over_in_place_are_seen(tie):
    label = tie.index("price").name
    for kind in ("object", "category"):
        frame = pd.DataFrame({label: pd.Series(["y", "x"], dtype=kind), "price": [3.0, 5.0]})
        for _ in range(2):
            tie["price"] = frame
            assert cost(tie) == pytest.approx(12)
        frame.loc[0, label], frame.loc[1, label] = "x", "y"
        tie["price"] = frame
        assert cost(tie) == pytest.approx(3 * 3 + 5)


def test_labels_of_many_frames_are_the_same_whoever_made_them(tie):
    label = tie.index("price").name
    for step in range(80):
        labels = [bytes([number]).decode() for number in (121, 120)]  # y and x, made anew
        tie["price"] = pd.DataFrame({label: labels, "price": [3.0, 5.0 + step]})
        assert dict(tie["price"]) == {("x",): 5 + step, ("y",): 3}
    assert cost(tie) == pytest.approx(12)


def test_numbers_of_other_types_are_taken_with_labels_that_are_known(tie):
    index = tie.index("price")
    for values in ([5.0, 3.0], [5, 3], pd.array([5, 3], dtype="Int64")):
        tie["price"] = pd.Series(values, index=index)
        assert cost(tie) == pytest.approx(12)
    with pytest.raises(TypeError, match="'5'"):
        tie["price"] = pd.Series(["5", "3"], index=index)
    with pytest.raises(ztb.Error, match=r"Bad value nan in price\(y\)"):
        tie["price"] = pd.Series([5.0, np.nan], index=index)
    with pytest.raises(ztb.Error, match=r"Bad value nan in price\(y\)"):
        tie["price"] = pd.DataFrame({"food": ["x", "y"], "value": [5.0, np.nan]})


@pytest.mark.parametrize("manager", ["block", "array"])
@pytest.mark.parametrize("held_by", ["column", "index"])
def test_frames_that_are_new_in_each_step_are_looked_at(tie, held_by, manager):
    label = tie.index("price").name

    def frame(labels, values, kind=pd.DataFrame):
        # How pandas keeps columns within.
        with pd.option_context("mode.data_manager", manager):
            table = kind({label: pd.Series(labels, dtype=object), "price": values})
        return table if held_by == "column" else table.set_index(label)

    for labels, values, expected in [
        (["y", "x"], [3.0, 5.0], 12),
        (["y", "x"], [1.0, 5.0], 4),
        (["x", "y"], [1.0, 5.0], 3 + 5),
        (["x", "y"], [1.0, 5.0], 3 + 5),
        (["x", "z"], [1.0, 5.0], 3 + 3),
        (["y"], [1.0], 4),
        (["y", "x"], [1, 5], 4),
        (["y", "x"], pd.array([3, 5], dtype="Int64"), 12),
        (["y", "x"], np.array([[3.0, 9.0], [5.0, 9.0]])[:, 0], 12),
    ]:
        tie["price"] = frame(labels, values)
        assert cost(tie) == pytest.approx(expected), labels

    class Frame(pd.DataFrame):
        _constructor = property(lambda self: Frame)

    for x in (1, 2):
        tie["price"] = frame(["x", "y"], [x, 5.0], Frame)
        assert cost(tie) == pytest.approx(3 * x + 5)


def test_frames_may_keep_the_same_columns_in_different_ways(tie):
    label = tie.index("price").name
    columns = [label, "price"]

    def by_column(x):
        return pd.DataFrame({label: ["y", "x"], "price": [3.0, x]})

    def numbers_first(x):
        frame = pd.DataFrame({"price": [3.0, x]})
        frame.insert(0, label, ["y", "x"])
        return frame

    def by_row(x):
        return pd.DataFrame([["y", 3.0], ["x", x]], columns=columns, dtype=object)

    def of_a_wider_one(x):
        frame = pd.DataFrame({"more": [9.0, 9.0], "price": [3.0, x], label: ["y", "x"]})
        return frame[columns]

    def every_other_row(x):
        frame = pd.DataFrame({label: list("yzxz"), "price": [3.0, 9.0, x, 9.0]})
        return frame[::2]

    def in_columns(x):
        cells = np.array([["y", 3.0], ["x", x]], dtype=object, order="F")
        return pd.DataFrame(cells, columns=columns)

    ways = [by_column, numbers_first, by_row, of_a_wider_one, every_other_row, in_columns]
    for first in ways:
        tie["price"] = first(7.0)
        for step, way in enumerate(ways):
            tie["price"] = way(4.0 + step)
            assert dict(tie["price"]) == {("x",): 4 + step, ("y",): 3}, (first, way)
    assert cost(tie) == pytest.approx(12)


def test_columns_of_labels_that_changed_places_are_seen(tmp_path):
    path = tmp_path / "m.lp"
    path.write_text(PLAN.replace("(x)", "(x,y)").replace("(y)", "(y,x)"))
    model = ztb.Model.open(path)
    model.drive("price(from, to) = cost of buy")
    tie = model.tie()
    forth, back = ["x", "y"], ["y", "x"]
    frame = pd.DataFrame({"price": [5.0, 3.0]})
    frame.insert(0, "from", forth)
    frame.insert(1, "to", back)
    tie["price"] = frame
    assert cost(tie) == pytest.approx(12)
    # The labels were put in in another order, too.
    frame = pd.DataFrame({"price": [3.0, 5.0]})
    frame.insert(0, "to", forth)
    frame.insert(0, "from", back)
    tie["price"] = frame
    assert dict(tie["price"]) == {("x", "y"): 5, ("y", "x"): 3}


def test_columns_that_changed_places_are_seen_when_the_labels_are_known(tmp_path):
    path = tmp_path / "m.lp"
    path.write_text(PLAN.replace("(x)", "(x,y)").replace("(y)", "(y,x)"))
    model = ztb.Model.open(path)
    model.drive("price(from, to) = cost of buy")
    tie = model.tie()

    def frame(first, second, heads=("from", "to", "price")):
        # The numbers lie behind the labels, or in front of them, in the order of their insertion.
        table = pd.DataFrame({"price": [5.0, 3.0]})
        table.insert(0, first, ["x", "y"])
        table.insert(0 if second == "from" else 1, second, ["y", "x"])
        assert list(table.columns) == ["from", "to", "price"]
        table.columns = list(heads)
        return table

    forth, back = {("x", "y"): 5, ("y", "x"): 3}, {("x", "y"): 3, ("y", "x"): 5}
    for table, expected in [
        (frame("from", "to"), forth),
        (frame("to", "from"), back),
        (frame("from", "to", ("to", "from", "price")), back),
    ]:
        for _ in range(3):
            tie["price"] = frame("from", "to")
            assert dict(tie["price"]) == forth
        tie["price"] = table
        assert dict(tie["price"]) == expected
    tie["price"] = frame("from", "to")
    with pytest.raises(ValueError, match="label columns are not all there: from, to"):
        tie["price"] = frame("from", "to", ("a", "b", "c"))


def test_columns_that_are_put_into_a_frame_are_seen(tie):
    label = tie.index("price").name
    frame = pd.DataFrame({label: ["y", "x"], "price": [3.0, 5.0]})
    tie["price"] = frame
    frame["price"] = [1.0, 5.0]
    tie["price"] = frame
    assert cost(tie) == pytest.approx(4)
    frame[label] = ["x", "y"]
    tie["price"] = frame
    assert cost(tie) == pytest.approx(3 + 5)
    frame[label] = pd.Categorical(["y", "x"])
    tie["price"] = frame
    assert cost(tie) == pytest.approx(4)
    # Another name in the same frame, and the columns the other way round.
    frame.columns = [label, "cost"]
    tie["price"] = frame
    assert cost(tie) == pytest.approx(4)
    frame.insert(0, "first", frame.pop("cost"))
    tie["price"] = frame
    assert cost(tie) == pytest.approx(4)
    frame["second"] = 1.0
    with pytest.raises(ValueError, match="a frame of one column is expected, not of 2"):
        tie["price"] = frame


def test_what_another_door_wrote_is_replaced(tie):
    data = pd.Series([5.0, 3.0], index=tie.index("price"))
    for _ in range(2):
        tie["price"] = data
        tie["price"]["x"] = 1
        tie["price"]["z"] = 7
        tie["price"] = data
        assert dict(tie["price"]) == {("x",): 5, ("y",): 3}
        assert cost(tie) == pytest.approx(12)
        tie["price"].clear()


def test_frames_whose_labels_are_known_are_checked_like_the_first(tie):
    label = tie.index("price").name
    for _ in range(2):
        tie["price"] = pd.DataFrame({label: ["y", "x"], "price": [3.0, 5.0]})
        assert cost(tie) == pytest.approx(12)
        with pytest.warns(UserWarning, match="row 1: 9007199254740993 for symbol price is no"):
            tie["price"] = pd.DataFrame({label: ["y", "x"], "price": [3, 2**53 + 1]})
        assert cost(tie) == pytest.approx(12)
        for wrong in ([np.nan, 5.0], pd.array([None, 5], dtype="Int64")):
            with pytest.raises(ztb.Error, match=r"Bad value nan in price\(y\)"):
                tie["price"] = pd.DataFrame({label: ["y", "x"], "price": wrong})
        with pytest.raises(ValueError, match="row 0: a label of symbol price is missing"):
            tie["price"] = pd.DataFrame({label: [None, "x"], "price": [3.0, 5.0]})


def test_names_are_found_in_any_case(tie):
    tie["PRICE"] = np.array([5.0, 3.0])
    tie["Price"] = np.array([2.0, 3.0])
    assert tie["price"]["x"] == 2
    assert len([name for name in tie.database if name.lower().startswith("price")]) == 2


def test_updates_take_arrays_and_leave_one_symbol_behind(tie):
    for upper, expected in [(1, 11), (2, 10), (0, 12)]:
        tie.update("buy", np.array([upper, 100.0]), "upper")
        assert cost(tie) == pytest.approx(expected)
    assert [name for name in tie.database if name.startswith("buy")] == ["buy", "buy_data"]
    with pytest.raises(ValueError, match="3 numbers, expected 2, one for each element"):
        tie.update("buy", np.zeros(3), "upper")


# ---- results ----


def test_frames_and_arrays_have_what_the_symbols_have(tie):
    for price in ([2.0, 3.0], [5.0, 3.0]):
        tie["price"] = np.array(price)
        solution = tie.solve()
        for name in ("buy", "need", "cost"):
            frame = solution.symbol(name).to_pandas()
            pd.testing.assert_frame_equal(solution[name], frame)
            assert solution.levels(name).tolist() == frame["level"].tolist()
            assert solution.marginals(name).tolist() == frame["marginal"].tolist()
    assert solution["buy"].loc["y", "upper"] == np.inf
    with pytest.raises(KeyError, match="no variable or equation price"):
        solution["price"]
    with pytest.raises(ztb.NotFoundError, match="no variable or equation sell"):
        solution.levels("sell")


def test_names_that_one_frame_is_given_are_not_those_of_the_next(tie):
    solution = tie.solve("clp")
    for read in (lambda: solution["buy"], lambda: solution.symbol("buy").to_pandas()):
        names = list(read().index.names)
        frame = read()
        frame.index.names = ["mine"]
        frame.columns.name = "field"
        assert list(read().index.names) == names != ["mine"]
        assert read().columns.name is None
        assert list(read().columns) == ["level", "marginal", "lower", "upper", "scale"]


def test_a_solution_tells_bound_gap_and_times(tie):
    solution = tie.solve()
    assert solution.bound == pytest.approx(9) and solution.gap == 0
    assert 0 <= solution.processor_seconds and 0 <= solution.seconds < 60
    assert repr(solution) == "<ztb.Solution optimal, objective 9, by clp>"
    tie.update("buy", 0, "upper")
    without = tie.solve()
    assert without.status == "infeasible" and np.isnan(without.gap)
    assert repr(without) == "<ztb.Solution infeasible, by clp>"
    assert solution.status == "optimal" and solution.objective == pytest.approx(9)


def test_what_drives_nothing_is_told_with_what_does(tie):
    with pytest.raises(KeyError, match="rent drives nothing in the model, what drives it is price"):
        tie["rent"] = 1


@pytest.mark.parametrize(
    "bad",
    [
        np.array([1.0, np.nan]),
        {"x": 1, "y": ztb.NA},
        pd.Series([1.0, np.nan], index=["x", "y"]),
        pd.DataFrame({"food": ["x", "y"], "value": [1.0, np.nan]}),
        {"x": 1, "y": ztb.UNDEF},
    ],
    ids=["array", "mapping", "series", "frame", "undefined"],
)
def test_refused_data_leave_the_model_as_it_was(tie, bad):
    """x was at 1 already when y was refused."""
    with pytest.raises(ztb.Error, match="Bad value"):
        tie["price"] = bad
    assert cost(tie) == pytest.approx(9)
    for price, expected in ({"x": 5.0, "y": 3.0}, 12), ({"y": 1.0}, 4):
        tie["price"] = price
        for _ in range(2):
            with pytest.raises(ztb.Error, match="Bad value"):
                tie["price"] = bad
            assert cost(tie) == pytest.approx(expected)
            assert dict(tie["price"]) == {(label,): value for label, value in price.items()}


def test_refused_bounds_leave_the_model_as_it_was(tie):
    tie.update("buy", [3, 4], "upper")
    assert cost(tie) == pytest.approx(9)
    with pytest.raises(ztb.Error, match=r"Bad value nan in buy_data\(y\)"):
        tie.update("buy", [1, np.nan], "upper")
    assert cost(tie) == pytest.approx(9)
