"""Sweeps from Python, whose results read as frames."""

import io
import subprocess
import sys
import types

import numpy as np
import pandas as pd
import pytest

import ztb

PLAIN = """Minimize
 total: 3 ship(a,x) + 5 ship(b,x)
Subject To
 demand(x): ship(a,x) + ship(b,x) >= 10
Bounds
 ship(a,x) <= 6
 ship(b,x) <= 20
End
"""
DRIVE = ["rate(source) = cost of ship(source, *)", "demand(target) = rhs of demand"]
SCENARIOS = ["s1", "s2", "s3"]
TWO = pd.MultiIndex.from_tuples([("s1", "x"), ("s2", "x")])


@pytest.fixture
def file(tmp_path):
    path = tmp_path / "m.lp"
    path.write_text(PLAIN)
    return path


@pytest.fixture
def scenarios():
    """Demands 10, 4 and 30, of which the last cannot be met; in s2 the rates change places."""
    over = pd.Index(SCENARIOS, name="s")
    both = pd.MultiIndex.from_product([over, ["x"]])
    rates = pd.Series(
        [5.0, 3.0], index=pd.MultiIndex.from_tuples([("s2", "a"), ("s2", "b")])
    )
    return {"demand": pd.Series([10.0, 4.0, 30.0], index=both), "rate": rates}


@pytest.mark.parametrize("jobs", [1, 2])
def test_each_scenario_has_its_result(file, scenarios, jobs):
    model = ztb.Model.open(file)
    for statement in DRIVE:
        model.drive(statement)
    result = ztb.sweep(model, scenarios, over="s", report=["ship"], jobs=jobs)
    assert list(result) == SCENARIOS and len(result) == 3
    assert result.objective.to_dict() == pytest.approx({"s1": 18 + 20, "s2": 12})
    assert result.frame["status"].to_dict() == {
        "s1": "optimal", "s2": "optimal", "s3": "infeasible",
    }
    assert np.isnan(result.frame.loc["s3", "objective"])
    assert result["ship"]["level"]["s2", "b", "x"] == pytest.approx(4)
    with pytest.raises(KeyError, match="demand was not reported"):
        result["demand"]


def test_a_sweep_is_resumed(file, scenarios, tmp_path):
    with ztb.Database() as db:
        db.add_set("s").extend(SCENARIOS)
        for name, series in scenarios.items():
            db.add_parameter(name, ["s", "*"]).from_pandas(series)
        out = tmp_path / "out.rxf"
        first = ztb.sweep(file, db, over="s", drive=DRIVE, out=out)
        again = ztb.sweep(file, db, over="s", drive=DRIVE, out=out, resume=True)
    assert first.path == str(out)
    assert again.objective.to_dict() == first.objective.to_dict()
    with pytest.raises(ztb.Error, match="is from a sweep with another --drive"):
        ztb.sweep(file, scenarios, over="s", drive=DRIVE[:1], out=out, resume=True)


def test_what_is_wrong_is_told(file, scenarios, tmp_path):
    with pytest.raises(ztb.Error, match="the model has no variable shop, is ship meant"):
        ztb.sweep(file, scenarios, over="s", drive=["rate(i, j) = cost of shop"])
    with pytest.raises(ztb.Error, match="gone.lp"):
        ztb.sweep(tmp_path / "gone.lp", scenarios, over="s")
    with pytest.raises(ValueError, match="the model was built with its data"):
        ztb.sweep(ztb.Model(), scenarios, over="s", data={})


@pytest.mark.parametrize("value, word", [(ztb.NA, "na"), (ztb.UNDEF, "undef")])
def test_a_missing_number_of_a_file_is_refused_ahead(file, tmp_path, value, word):
    with ztb.Database() as db:
        db.add_set("s").extend(["s1", "s2"])
        db.add_parameter("demand", ["s", "*"])
        db["demand"]["s1", "x"] = 1
        db["demand"]["s2", "x"] = value
        db.write(tmp_path / "sc.rxf")
        for scenarios, name in (db, "scenarios.rxf"), (tmp_path / "sc.rxf", "sc.rxf"):
            with pytest.raises(ztb.Error) as told:
                ztb.sweep(
                    file, scenarios, over="s", report="ship", drive=DRIVE[1:], out=tmp_path / "r.rxf"
                )
            assert (
                f"{name}: scenario s2, record demand(x) holds {word}, a number is expected; what a "
                "scenario has no record for stays as the model has it"
            ) in str(told.value)
    assert not (tmp_path / "r.rxf").exists()


@pytest.mark.parametrize(
    "demand, place",
    [
        (pd.Series([1.0, np.nan], index=TWO), "s2, record demand(x) holds NaN (row s2, x)"),
        (
            pd.DataFrame({"s": ["s1", "s2"], "to": ["x", "x"], "tons": [1, None]}, index=[7, 8]),
            "s2, record demand(x) holds NaN (column tons, row 8)",
        ),
        # The level of the scenarios is not the first.
        (
            pd.DataFrame({"to": ["x", "x"], "s": ["s1", "s2"], "tons": [1, None]}),
            "s2, record demand(x) holds NaN (column tons, row 1)",
        ),
        ({("s1", "x"): np.nan, ("s2", "x"): 1.0}, "s1, record demand(x) holds NaN (row s1, x)"),
        (pd.Series([1, pd.NA], dtype="Int64", index=TWO), "s2, record demand(x) holds NaN (row s2, x)"),
    ],
)
def test_a_missing_number_is_refused_ahead(file, tmp_path, demand, place):
    with pytest.raises(ValueError) as told:
        ztb.sweep(
            file, {"demand": demand}, over="s", report="ship", drive=DRIVE[1:], out=tmp_path / "r.rxf"
        )
    assert str(told.value) == (
        f"demand: scenario {place}, a number is expected; what a scenario has no row for stays as the "
        "model has it"
    )
    assert not (tmp_path / "r.rxf").exists()


def test_scenarios_come_as_mappings_too(file):
    data = {"demand": {("s1", "x"): 10, ("s2", "x"): 4}}
    result = ztb.sweep(file, data, over="s", drive=DRIVE[1])
    assert result.objective.to_dict() == pytest.approx({"s1": 38, "s2": 12})
    assert result.notes == []
    with pytest.raises(TypeError, match="demand: ndarray is no data of scenarios, expected a series"):
        ztb.sweep(file, {"demand": np.zeros(2)}, over="s", drive=DRIVE)


def test_what_is_told_of_a_sweep_stands_in_its_notes(file, scenarios):
    strange = pd.Series([1.0], index=pd.MultiIndex.from_tuples([("s1", "nowhere")]))
    result = ztb.sweep(file, {**scenarios, "rate": strange}, over="s", drive=DRIVE)
    assert len(result.notes) == 2
    assert result.notes[0].endswith("rate has records that meet no column rate_var of the model")
    assert result.notes[1] == "scenario s3: infeasible"


def test_what_drives_nothing_is_told_with_what_does(file, scenarios):
    with pytest.raises(ztb.Error, match="no columns prise_var; data drive rate and demand"):
        ztb.sweep(file, {"prise": scenarios["demand"]}, over="s", drive=DRIVE)


COSTS = {("s1", "a", "b"): 100.0, ("s2", "a", "b"): 200.0}


@pytest.mark.parametrize("order", [
    ["s", "plant", "city"], ["s", "city", "plant"], ["plant", "city", "s"], ["city", "s", "plant"],
])
def test_levels_are_taken_by_their_names(tmp_path, order):
    model = tmp_path / "m.lp"
    model.write_text(
        "Minimize\n z: ship[a,a] + ship[a,b] + ship[b,a]\n"
        "Subject To\n c: ship[a,b] >= 5\n d: ship[b,a] >= 1\nEnd\n"
    )
    costs = pd.Series(COSTS)
    costs.index.names = ["s", "plant", "city"]
    drive = ["cost(plant, city) = cost of ship"]
    # 5 at 100 or 200, and 1 at the file's own 1.
    result = ztb.sweep(model, {"cost": costs.reorder_levels(order)}, over="s", drive=drive)
    assert result.objective.to_dict() == {"s1": 501, "s2": 1001}


def test_levels_with_the_name_of_another_position_are_refused(file):
    costs = pd.Series(COSTS)
    costs.index.names = ["s", "city", "x"]
    with pytest.raises(ValueError, match="the index is named city, which is position 2"):
        ztb.sweep(file, {"cost": costs}, over="s", drive=["cost(plant, city) = cost of ship"])


def test_files_that_are_missing_or_damaged_have_their_errors(file, scenarios, tmp_path):
    with pytest.raises(ztb.MissingFileError, match="No such file: .*gone.lp") as failure:
        ztb.sweep(tmp_path / "gone.lp", scenarios, over="s")
    assert failure.value.filename.endswith("gone.lp")
    with pytest.raises(ztb.MissingFileError, match="gone.rxf"):
        ztb.sweep(file, tmp_path / "gone.rxf", over="s")
    (tmp_path / "junk.rxf").write_text("junk")
    with pytest.raises(ztb.DamagedFileError, match="junk.rxf"):
        ztb.sweep(file, tmp_path / "junk.rxf", over="s")


def test_a_damaged_record_is_a_damaged_file(tmp_path):
    with ztb.Database() as db:
        over = db.add_set("s")
        over.extend([f"s{number}" for number in range(200)])
        rate = db.add_parameter("rate", [over, "*"])
        for number in range(200):
            rate[f"s{number}", "a"] = number
        db.write(tmp_path / "sc.rxf")
    content = bytearray((tmp_path / "sc.rxf").read_bytes())
    content[len(content) // 3] ^= 0x55
    (tmp_path / "sc.rxf").write_bytes(content)
    (tmp_path / "m.lp").write_text(PLAIN)
    with pytest.raises(ztb.DamagedFileError, match="File is damaged: .* of symbol rate in .*sc.rxf"):
        ztb.sweep(tmp_path / "m.lp", tmp_path / "sc.rxf", over="s", drive=DRIVE)


def test_over_an_alias_the_scenarios_are_those_of_its_set(file, tmp_path):
    with ztb.Database() as db:
        over = db.add_set("s")
        over.extend(["s1", "s2"])
        case = db.add_alias("case", over)
        db.add_parameter("rate", [case, "*"])["s1", "a"] = 4
        db.write(tmp_path / "sc.rxf")
    result = ztb.sweep(file, tmp_path / "sc.rxf", over="case", drive=DRIVE)
    assert len(result) == 2 and list(result) == ["s1", "s2"]
    assert list(result.frame.index) == ["s1", "s2"]


def test_frames_of_scenarios_are_taken_by_their_columns(file, scenarios):
    frames = {
        name: series.rename_axis(["s", "label"]).rename("value").reset_index()[["label", "s", "value"]]
        for name, series in scenarios.items()
    }
    expected = ztb.sweep(file, scenarios, over="s", drive=DRIVE).frame
    assert ztb.sweep(file, frames, over="s", drive=DRIVE).frame.equals(expected)
    with pytest.raises(ValueError, match="demand: a frame of scenarios has a column s, .* has x, y"):
        ztb.sweep(file, {"demand": pd.DataFrame({"x": [1], "y": [2]})}, over="s", drive=DRIVE)


def test_scenarios_without_a_record_are_told(file):
    with pytest.raises(ValueError, match="the scenarios hold no record, so .* no element of s"):
        ztb.sweep(file, {}, over="s", drive=DRIVE)


@pytest.mark.parametrize("arguments, options, text", [
    (({"price": 3}, "s"), {},
     "price: int is no data of scenarios, expected a series or a mapping whose first label is the "
     "scenario, or a frame"),
    (({}, "s"), {"solver": 3}, "3 (int) is no name of a solver, expected a str"),
    ((3, "s"), {}, "3 (int) is no path of a file, expected a str or a path object"),
    (({}, 3), {}, "3 (int) is no name of a set to sweep over, expected a str"),
    (({}, "s"), {"jobs": "2"}, "'2' (str) is no number of jobs, expected an int"),
    (({}, "s"), {"report": 3}, "3 (int) holds no reports, expected a list or the like"),
    (({}, "s"), {"drive": [3]}, "3 (int) is no report or statement, expected a str"),
])
def test_wrong_types_are_told(file, arguments, options, text):
    with pytest.raises(TypeError) as failure:
        ztb.sweep(file, *arguments, **options)
    assert str(failure.value) == text


@pytest.mark.parametrize("family", ["ship", "2nd"])
def test_a_model_that_was_built_is_swept(family, tmp_path):
    def built():
        model = ztb.Model()
        over = [("plant", ["a", "b"]), ("city", ["a", "b"])]
        ship = model.variable("ship", over, upper=9)
        model.rows("need", over, ship, lower=pd.Series({("a", "b"): 5.0, ("b", "a"): 1.0})
                   .rename_axis(["plant", "city"]))
        if family == "2nd":  # no name in an LP file
            ship = ship + model.variable(family, None, lower=1)
        model.minimize(ship)
        return model

    costs = pd.Series(COSTS).rename_axis(["s", "city", "plant"])
    drive = ["cost(city, plant) = cost of ship"]
    spare = 1 if family == "2nd" else 0
    # COSTS are of city a and plant b, which ships 1; the other 5 cost 1 each.
    for resume in (False, True):
        result = ztb.sweep(
            built(), {"cost": costs}, over="s", drive=drive, out=tmp_path / "o.rxf", resume=resume
        )
        assert result.objective.to_dict() == {"s1": 105 + spare, "s2": 205 + spare}
    model = built()
    model.drive(drive[0])
    with pytest.raises(ValueError, match="before it is driven, tied or solved; say in drive="):
        ztb.sweep(model, {"cost": costs}, over="s")


def test_progress_is_told(file, scenarios, tmp_path, capfd):
    told = []
    ztb.sweep(file, scenarios, "s", drive=DRIVE, jobs=2, progress=told.append)
    assert told[-1]["done"] == told[-1]["count"] == 3
    assert set(told[-1]) == {
        "done", "count", "rate", "seconds_left", "failures", "lost", "workers",
    }  # fmt: skip
    # Nothing is drawn where standard error is no terminal.
    capfd.readouterr()
    result = ztb.sweep(file, scenarios, "s", drive=DRIVE, progress=True)
    assert len(result) == 3 and result.notes == ["scenario s3: infeasible"]
    assert capfd.readouterr().err == ""
    with pytest.raises(TypeError, match="progress is True or is called with a dict, not int"):
        ztb.sweep(file, scenarios, "s", drive=DRIVE, progress=5)


STATE = {
    "done": 30, "count": 120, "rate": 2.5, "seconds_left": 36.0, "failures": 1, "lost": 2, "workers": 4,
}  # fmt: skip


def test_a_notebook_shows_a_sweep_as_a_bar(monkeypatch):
    shown = []

    class Handle:
        def update(self, view):
            shown.append(view._repr_html_())

    def display(view, display_id):
        assert display_id
        shown.append(view._repr_html_())
        return Handle()

    shell = types.ModuleType("IPython")
    shell.get_ipython = lambda: types.SimpleNamespace(kernel=None)
    shell.display = types.ModuleType("IPython.display")
    shell.display.display = display
    monkeypatch.setitem(sys.modules, "IPython", shell)
    monkeypatch.setitem(sys.modules, "IPython.display", shell.display)
    view = ztb.SweepView()
    view({**STATE, "done": 0, "seconds_left": None})
    view(STATE)
    view.close()
    assert len(shown) == 2
    assert '<progress value="30" max="120"' in shown[1]
    assert "30 of 120 scenarios solved, 2.5 a second, 36 s left, 1 failed, 2 workers lost, 4 workers" in shown[1]
    assert "s left" not in shown[0]


def test_a_terminal_shows_a_sweep_as_a_line(monkeypatch):
    class Terminal(io.StringIO):
        def isatty(self):
            return True

    terminal = Terminal()
    monkeypatch.setattr(sys, "stderr", terminal)
    view = ztb.SweepView()
    view(STATE)
    view.close()
    # Without wrapping, so that the whole line can be wiped where the terminal is narrow.
    assert terminal.getvalue() == f"\r\x1b[K\x1b[?7l{view}\x1b[?7h\n"
    assert repr(view) == f"<ztb.SweepView: {view}>"


def test_a_sweep_that_is_interrupted_leaves_what_is_solved(tmp_path):
    """Weights of which some are to be half of all: an endless search, but none of them at once."""
    weights = np.random.default_rng(1).integers(100, 1000, size=(5, 50))
    things = pd.RangeIndex(50, name="thing")
    model = ztb.Model()
    take = model.variable("take", things, kind="binary")
    pairs = pd.MultiIndex.from_product([range(5), range(50)], names=["kind", "thing"])
    model.rows(
        "weight", pd.RangeIndex(5, name="kind"),
        take * pd.Series(weights.ravel(), index=pairs), equal=0,
    )
    model.minimize(take)
    model.write(tmp_path / "m.lp")
    half = {("s4", str(kind)): float(weights[kind].sum() // 2) for kind in range(5)}
    wanted = {(f"s{s}", str(kind)): 0.0 for s in range(1, 4) for kind in range(5)}

    # As a terminal does it: to all processes of the group, here and in the program.
    script = tmp_path / "script.py"
    script.write_text(f"""
import os, signal, ztb
def interrupted(state):
    if state["done"] == 3:
        os.killpg(0, signal.SIGINT)
try:
    ztb.sweep("m.lp", {{"want": {wanted | half!r}}}, over="s", out="r.rxf", chunk=1,
              drive=["want(kind) = rhs of weight"], progress=interrupted)
except KeyboardInterrupt:
    print("interrupted")
""")
    run = subprocess.run(
        [sys.executable, script], cwd=tmp_path, start_new_session=True, capture_output=True, text=True
    )
    assert (run.stdout, run.stderr, run.returncode) == ("interrupted\n", "", 0)
    parts = {file.name.split("-", 1)[1] for file in (tmp_path / "r.rxf.parts").glob("*.rxf")}
    assert "0-3.rxf" in parts, parts
