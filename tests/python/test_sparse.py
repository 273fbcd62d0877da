"""Records as sparse matrices."""

import os
import subprocess
import sys

import numpy as np
import pytest
from scipy import sparse


def test_two_positions_are_a_matrix(diet):
    holds = diet["holds"]
    matrix = holds.to_coo()
    assert isinstance(matrix, sparse.coo_array) and matrix.shape == (2, 3) and matrix.nnz == 3
    assert matrix.toarray().tolist() == [[1, 0, 3], [0, 5, 0]]


def test_a_record_of_zero_is_an_entry(diet):
    diet["holds"]["Tofu", "iron"] = 0
    assert diet["holds"].to_coo().nnz == 4


def test_axes_are_those_of_arrays(diet):
    few = diet.add_set("few", "nutrient")
    few.extend(["kcal", "iron"])
    holds = diet["holds"]
    with pytest.raises(ValueError, match="1 record of symbol holds has labels outside the domains"):
        holds.to_coo(["food", few])
    # Elements come in the order of their labels: iron, kcal.
    assert holds.to_coo(["food", few], drop=True).toarray().tolist() == [[1, 3], [0, 0]]
    assert (holds.to_coo(["food", few], drop=True).toarray() ==
            holds.to_numpy(["food", few], drop=True)).all()


def test_positions_are_rows_or_columns(db):
    sets = [db.add_set(name) for name in "abc"]
    shape = (2, 3, 4)
    for set_, size in zip(sets, shape):
        set_.extend([f"{set_.name}{n}" for n in range(size)])
    p = db.add_parameter("p", sets)
    cube = np.arange(24.0).reshape(shape) * (np.arange(24).reshape(shape) % 3 == 1)
    p.from_numpy(cube)
    for rows, size in [(0, (1, 24)), (1, (2, 12)), (2, (6, 4)), (3, (24, 1))]:
        assert (p.to_coo(rows=rows).toarray() == cube.reshape(size)).all()
    with pytest.raises(ValueError, match="4 positions cannot be rows, symbol p has 3 positions"):
        p.to_coo(rows=4)


def test_one_position_is_a_column_and_a_field_a_matrix(diet):
    x = diet.add_variable("x", "food", subtype=3)
    x["Tofu"] = (2, 0, 0, 9)
    assert x.to_coo().toarray().tolist() == [[0], [2]]
    assert x.to_coo(field="upper").toarray().tolist() == [[0], [9]]
    scalar = diet.add_parameter("pi")
    scalar.value = 3
    assert scalar.to_coo(rows=0).toarray().tolist() == [[3]]


def test_a_set_is_a_matrix_of_truth(diet):
    pairs = diet.add_set("pairs", ["food", "nutrient"])
    pairs["Tofu", "iron"] = "some"
    pairs.add("Milk", "kcal")
    matrix = pairs.to_coo()
    assert isinstance(matrix, sparse.coo_array) and matrix.dtype == np.bool_ and matrix.nnz == 2
    assert matrix.toarray().tolist() == [[False, False, True], [True, False, False]]
    few = diet.add_set("few", "food")
    few.add("Milk")
    with pytest.raises(ValueError, match="1 record of symbol pairs has labels outside the domains"):
        pairs.to_coo([few, "nutrient"])
    assert pairs.to_coo([few, "nutrient"], drop=True).toarray().tolist() == [[False, False, True]]
    assert few.to_coo(["food"]).toarray().tolist() == [[True], [False]]


def test_a_matrix_too_large_to_count_is_refused(db):
    s = db.add_set("s")
    s.extend(map(str, range(100)))
    p = db.add_parameter("p", [s] * 20)
    with pytest.raises(ValueError, match="cannot be counted"):
        p.to_coo(rows=10)


def test_without_scipy_the_error_names_it(tmp_path):
    (tmp_path / "scipy.py").write_text("raise ImportError('hidden')\n")
    program = (
        "import ztb\n"
        "db = ztb.Database()\n"
        "s = db.add_set('s')\n"
        "try:\n"
        "    db.add_parameter('p', s).to_coo()\n"
        "except ImportError as error:\n"
        "    print(error)\n"
    )
    environment = {**os.environ, "PYTHONPATH": f"{tmp_path}:{os.environ['PYTHONPATH']}"}
    said = subprocess.run(
        [sys.executable, "-c", program], env=environment, capture_output=True, text=True, check=True
    ).stdout
    assert said == "to_coo needs scipy, which is not there (Debian: python3-scipy)\n"
