"""Data that fill the sets and parameters of a MathProg model, of whatever kind they come."""

import pandas as pd
import pytest

import ztb

# 2 of a at 1 and 3 of b at 10 make 32; its own data know 7 of a alone.
MODEL = """set Item; param need{Item}; param cost{Item};
var buy{i in Item} >= 0;
minimize total: sum{i in Item} cost[i] * buy[i];
s.t. least{i in Item}: buy[i] >= need[i];
data;
set Item := a;
param need := a 7;
param cost := a 1;
end;
"""
DATA = {"item": ["a", "b"], "need": pd.Series({"a": 2.0, "b": 3.0}), "cost": {"a": 1, "b": 10}}


@pytest.fixture
def model(tmp_path):
    path = tmp_path / "m.mod"
    path.write_text(MODEL)
    return path


@pytest.fixture
def file(tmp_path):
    with ztb.Database() as db:
        db.add_set("Item").extend(["a", "b"])
        db.add_parameter("need", "Item").from_pandas(DATA["need"])
        db.add_parameter("cost", "Item").from_pandas(pd.Series(DATA["cost"], dtype=float))
        db.write(tmp_path / "d.rxf")
    return tmp_path / "d.rxf"


def test_a_model_without_data_has_its_own(model):
    assert ztb.Model.open(model).solve().objective == pytest.approx(7)


def test_files_databases_and_mappings_fill_it(model, file):
    with ztb.Database(file) as db:
        for data in (file, str(file), db, DATA):
            opened = ztb.Model.open(model, data)
            assert opened.solve().objective == pytest.approx(32)
            assert opened.notes == []


def test_data_in_mathprog_take_the_place_of_its_own(model, tmp_path):
    path = tmp_path / "m.dat"
    path.write_text("data; set Item := c; param need := c 4; param cost := c 2; end;\n")
    for given in ({"data": path}, {"model_data": path}):
        assert ztb.Model.open(model, **given).solve().objective == pytest.approx(8)
    both = ztb.Model.open(model, {"need": {"c": 5}}, model_data=path)
    assert both.solve().objective == pytest.approx(10)
    with pytest.raises(ValueError, match="is no .rxf file, and model_data is given"):
        ztb.Model.open(model, path, model_data=path)


def test_what_does_not_fit_is_told(model, tmp_path):
    opened = ztb.Model.open(model, {**DATA, "rent": 3})
    assert opened.notes == ["the model declares no parameter rent"]
    with pytest.raises(ztb.Error, match="no finite number"):
        ztb.Model.open(model, {**DATA, "need": {"a": ztb.NA, "b": 1}})
    with pytest.raises(ztb.Error, match="no finite number"):
        ztb.Model.open(model, {**DATA, "need": {"a": ztb.INF, "b": 1}})
    with pytest.raises(TypeError, match="need: object is no data, expected a series"):
        ztb.Model.open(model, {"need": object()})
    with pytest.raises(ztb.MissingFileError, match="gone.rxf"):
        ztb.Model.open(model, tmp_path / "gone.rxf")
    other = tmp_path / "m.lp"
    other.write_text("Minimize\n v: x\nSubject To\n c: x >= 1\nEnd\n")
    with pytest.raises(ValueError, match="m.lp is none; say what they drive"):
        ztb.Model.open(other, DATA)
