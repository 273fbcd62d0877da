"""Sweeps of a MathProg model that data fill."""

import pandas as pd
import pytest
from test_model_fill import DATA, file, model  # noqa: F401  (the fixtures are those of the models)

import ztb


def test_a_sweep_is_of_the_model_as_it_was_filled(model, file):
    scenarios = {
        "amount": pd.Series(
            [5.0, 6.0], index=pd.MultiIndex.from_tuples([("s1", "a"), ("s2", "a")])
        )
    }
    drive = "amount(item) = rhs of least"
    expected = {"s1": 35, "s2": 36}
    for data in (file, DATA):
        result = ztb.sweep(model, scenarios, over="s", drive=drive, data=data)
        assert result.objective.to_dict() == pytest.approx(expected)
    opened = ztb.Model.open(model, DATA)
    opened.drive(drive)
    result = ztb.sweep(opened, scenarios, over="s", jobs=2)
    assert result.objective.to_dict() == pytest.approx(expected)
    with pytest.raises(ValueError, match="the model was opened with its data"):
        ztb.sweep(opened, scenarios, over="s", data=file)
