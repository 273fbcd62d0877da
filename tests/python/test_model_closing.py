"""Models and ties that are closed, and what is used of them afterwards."""

import threading

import pytest

import ztb


def test_a_closed_model_frees_its_database_and_raises_on_every_use(tmp_path):
    (tmp_path / "m.lp").write_text(
        "Minimize\n c: 2 x(a) + 3 x(b)\nSubject To\n r: x(a) + x(b) >= 4\nEnd\n"
    )
    with ztb.Model.open(tmp_path / "m.lp") as model:
        tie = model.tie()
        solution = tie.solve()
        symbol = tie["x"]
        assert solution.objective == 8 and not model.closed
    assert model.closed and tie.closed and tie.database.closed
    assert solution.objective == 8  # what was taken out stays
    uses = [
        lambda: model.solve(),
        lambda: tie.solve("clp"),
        lambda: tie.solve(),
        lambda: model.tie(),
        lambda: ztb.sweep(model, {}, over="s", report="x"),
        lambda: model.drive("price(i) = cost of x"),
        lambda: tie.drive("price(i) = cost of x"),
        lambda: model.write(tmp_path / "n.lp"),
        lambda: model.explain(),
        lambda: model.ranging(),
        lambda: model.notes,
        lambda: model.start_taken,
        lambda: model.basis_taken,
        lambda: model.read_basis(tmp_path / "b"),
        lambda: model.write_basis(tmp_path / "b"),
        lambda: solution["x"],
        lambda: solution.levels("x"),
        lambda: tie.__setitem__("price", 1),
    ]
    for use in uses:
        with pytest.raises(ztb.Error, match="^The (model|database) is closed$"):
            use()
    for use in (lambda: tie["x"], lambda: symbol.to_pandas(), lambda: tie.index("price")):
        with pytest.raises(ztb.Error, match="^The database is closed$"):
            use()
    assert not (tmp_path / "n.lp").exists()
    model.close()
    assert repr(model).endswith("m.lp', closed>")


def test_a_model_that_was_not_tied_is_closed():
    model = ztb.Model()
    x = model.variable("x", upper=3)
    model.close()
    for use in (
        lambda: model.variable("y"),
        lambda: model.rows("r", None, x * 1, lower=1),
        lambda: model.minimize(x * 1),
        lambda: model.solve(),
    ):
        with pytest.raises(ztb.Error, match="^The model is closed$"):
            use()
    assert repr(model) == "<ztb.Model, closed>"


def test_a_tie_closes_model_and_database():
    model = ztb.Model()
    x = model.variable("x", upper=3)
    model.maximize(x * 2)
    db = ztb.Database()
    with model.tie(db) as tie:
        assert tie.solve().objective == 6
    assert model.closed and db.closed
    tie.close()


def test_closing_waits_for_a_solve_of_another_thread():
    model = ztb.Model()
    x = model.variable("x", ("i", list("abcdef")), kind="integer", upper=9)
    model.maximize(x * [1, 2, 3, 4, 5, 6])
    model.rows("r", None, x * [5, 7, 9, 11, 13, 17], upper=60)
    entered, results = threading.Event(), []

    def told(progress):
        entered.set()

    def solve():
        results.append(model.solve("cbc", progress=told, every=0).status)

    thread = threading.Thread(target=solve)
    thread.start()
    while not entered.wait(0.01) and thread.is_alive():
        pass
    model.close()
    thread.join()
    assert results == ["optimal"] and model.closed
