"""Arrays that come in: what their cells may be, and missing ones by choice."""

from decimal import Decimal

import numpy as np
import pandas as pd
import pytest

import ztb

MISSING = [
    np.array([[1, np.nan, 0], [0, 5, 0]]),
    np.ma.masked_equal([[1, 99, 0], [0, 5, 0]], 99),
    np.ma.masked_equal([[1.0, 99, 0], [0, 5, 0]], 99),
    np.array([[1, None, 0], [0, Decimal(5), 0]], dtype=object),
    [[1, pd.NA, 0], [0, 5, 0]],
]
IDS = ["float", "masked", "masked-float", "None", "NA"]


def cells(symbol):
    """Each record with its number, or its code where it is special."""
    return {key: value if value == value else ztb.special_code(value)
            for key, value in symbol.items()}


@pytest.mark.parametrize("array", MISSING, ids=IDS)
def test_missing_cells_go_by_choice(diet, array):
    holds = diet["holds"]
    before = dict(holds)
    with pytest.raises(ValueError) as failure:
        holds.from_numpy(array, nan="error")
    assert str(failure.value) == (
        "cell (0, 1): a value of symbol holds is missing; nan='skip' makes no record of it, "
        "nan='na' stores it as not available"
    )
    assert dict(holds) == before
    stored = {("Milk", "iron"): 1, ("Tofu", "zinc"): 5}
    holds.from_numpy(array, nan="skip")
    assert cells(holds) == stored
    for choice in [{"nan": "na"}, {}]:
        holds.from_numpy(array, **choice)
        assert cells(holds) == {**stored, ("Milk", "zinc"): ztb.CODE_NOT_AVAILABLE}
    holds.from_numpy(array, nan="skip", keep_zeros=True)
    zeros = {("Milk", "kcal"): 0, ("Tofu", "iron"): 0, ("Tofu", "kcal"): 0}
    assert cells(holds) == {**stored, **zeros}


def test_the_undefined_value_is_kept_or_skipped(diet):
    array = np.array([[ztb.UNDEF, 0, 0], [0, 5, 0]])
    diet["holds"].from_numpy(array)
    assert cells(diet["holds"]) == {("Milk", "iron"): ztb.CODE_UNDEFINED, ("Tofu", "zinc"): 5}
    diet["holds"].from_numpy(array, nan="skip")
    assert cells(diet["holds"]) == {("Tofu", "zinc"): 5}


@pytest.mark.parametrize("array", MISSING, ids=IDS)
def test_a_set_does_not_take_a_missing_cell_for_an_element(diet, array):
    pairs = diet.add_set("pairs", ["food", "nutrient"])
    pairs.add("Tofu", "kcal")
    with pytest.raises(ValueError) as failure:
        pairs.from_numpy(array)
    assert str(failure.value) == (
        "cell (0, 1): whether it is an element of set pairs is missing; nan='skip' makes no "
        "element of it"
    )
    assert list(pairs) == [("Tofu", "kcal")]
    pairs.from_numpy(array, nan="skip")
    assert list(pairs) == [("Milk", "iron"), ("Tofu", "zinc")]


def test_other_choices_are_refused(diet):
    for call in [diet["holds"].from_numpy, diet["food"].from_numpy]:
        with pytest.raises(ValueError, match="^nan='drop' is no choice, expected one of skip"):
            call(np.ones((2, 3)), nan="drop")
        with pytest.raises(TypeError, match="^None \\(NoneType\\) is no choice for nan, expected"):
            call(np.ones((2, 3)), nan=None)
    with pytest.raises(ValueError, match="^nan='na' is no choice, expected one of skip, error$"):
        diet["food"].from_numpy([True, True], nan="na")


@pytest.mark.parametrize("array, text", [
    ([["1", "2", "3"]] * 2, "cells of type <U1 for symbol holds, numbers expected"),
    (np.ones((2, 3), dtype=complex), "cells of type complex128 for symbol holds, numbers expected"),
    (np.zeros((2, 3), dtype="M8[D]"),
     r"cells of type datetime64\[D\] for symbol holds, numbers expected"),
    (np.array([[1, 2, "3"]] * 2, dtype=object), r"the value '3' \(str\) of symbol holds is no number"),
    (pd.DataFrame([[1, 2, 3]] * 2), "a DataFrame for symbol holds has labels of its own"),
], ids=["str", "complex", "date", "object", "frame"])
def test_cells_that_are_no_numbers_are_refused(diet, array, text):
    before = dict(diet["holds"])
    with pytest.raises(TypeError, match=f"^{text}"):
        diet["holds"].from_numpy(array)
    assert dict(diet["holds"]) == before


def test_lists_of_different_lengths_are_refused(diet):
    with pytest.raises(ValueError, match="^lists of different lengths are no array for symbol holds$"):
        diet["holds"].from_numpy([[1, 2, 3], [1]])


def test_labels_of_a_series_are_not_passed_over(diet):
    """Its order is not that of the set: as an array it would go in turned around."""
    p = diet.add_parameter("p", "food")
    series = pd.Series([2.0, 1.0], index=["Tofu", "Milk"])
    with pytest.raises(TypeError) as failure:
        p.from_numpy(series)
    assert str(failure.value) == (
        "a Series for symbol p has labels of its own, which an array has not: from_pandas goes by "
        "them, and its to_numpy() leaves them out"
    )
    p.from_pandas(series)
    assert p.to_numpy().tolist() == [1, 2]
