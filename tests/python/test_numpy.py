"""Dense arrays over the domains of a symbol, and back."""

import numpy as np
import pytest

import ztb


def test_an_array_has_each_value_at_the_places_of_its_labels(diet):
    cube = diet["holds"].to_numpy()
    assert cube.dtype == np.float64
    assert cube.tolist() == [[1, 0, 3], [0, 5, 0]]
    assert diet["holds"].axes() == (["Milk", "Tofu"], ["iron", "zinc", "kcal"])


def test_axes_follow_the_set_and_not_the_universe(db):
    db.add_labels(["c", "a", "b"])
    s = db.add_set("s")
    s.extend(["b", "c"])
    p = db.add_parameter("p", ["s"])
    p["b"], p["c"] = 1, 2
    assert dict(zip(p.axes()[0], p.to_numpy().tolist())) == {"b": 1.0, "c": 2.0}
    assert p.axes() == (list(s),)


def test_other_sets_can_lay_out_the_array(diet):
    few = diet.add_set("few")
    few.extend(["zinc", "iron"])
    holds = diet["holds"]
    with pytest.raises(ValueError, match="1 record of symbol holds has labels outside"):
        holds.to_numpy(["food", few])
    cube = holds.to_numpy(["food", few], drop=True)
    assert holds.axes(["food", few]) == (["Milk", "Tofu"], ["iron", "zinc"])
    assert cube.tolist() == [[1, 0], [0, 5]]


def test_an_alias_lays_out_as_its_set(diet):
    alias = diet.add_alias("dish", diet["food"])
    pairs = diet.add_parameter("pairs", ["food", alias])
    pairs["Milk", "Tofu"] = 4
    assert pairs.to_numpy().tolist() == [[0, 4], [0, 0]]
    assert pairs.to_numpy([alias, "dish"]).tolist() == [[0, 4], [0, 0]]


def test_an_array_comes_back_as_the_records_that_are_not_zero(diet):
    holds = diet["holds"]
    holds.from_numpy([[0, 2, 0], [7, 0, -0.0]])
    assert dict(holds) == {("Milk", "zinc"): 2.0, ("Tofu", "iron"): 7.0}
    holds.from_numpy([[0, 2, 0], [7, 0, 1]], keep_zeros=True)
    assert len(holds) == 6 and holds["Milk", "iron"] == 0.0


def test_arrays_of_any_layout_and_type_come_in(diet):
    holds = diet["holds"]
    source = np.arange(1, 7).reshape(2, 3)
    # Doubles that begin at an odd address.
    misaligned = np.frombuffer(b"-" + source.astype(float).tobytes(), offset=1).reshape(2, 3)
    for array in [source, np.asfortranarray(source), source[:, ::-1][:, ::-1], source.tolist(),
                  source.astype(np.float32), source.astype(np.int8), misaligned]:
        holds.from_numpy(array)
        assert holds.to_numpy().tolist() == source.tolist()


def test_a_set_is_an_array_of_truth(diet):
    pairs = diet.add_set("pairs", ["food", "nutrient"])
    pairs["Tofu", "iron"] = "some"
    cube = pairs.to_numpy()
    assert cube.dtype == np.bool_ and cube.tolist() == [[False] * 3, [True, False, False]]
    pairs.from_numpy(~cube)
    assert len(pairs) == 5 and ("Tofu", "iron") not in pairs
    assert set(pairs.values()) == {""}
    assert (pairs.to_numpy() == ~cube).all()


def test_a_field_of_a_variable_is_an_array(diet):
    x = diet.add_variable("x", ["food"], subtype=3)
    x["Tofu"] = (1, 2)
    assert x.to_numpy().tolist() == [0, 1]
    assert x.to_numpy(field="marginal").tolist() == [0, 2]
    assert x.to_numpy(field="upper").tolist() == [0, np.inf]


def test_a_refused_array_leaves_the_records(diet):
    holds = diet["holds"]
    before = dict(holds)
    for array, domains, text in [
        (np.ones((3, 2)), None, r"shape \(3, 2\)"),
        (np.ones(6), None, r"shape \(6,\)"),
        (np.ones((2, 3)), ["food"], "1 domain given, symbol holds has 2 positions"),
        (np.ones((2, 3)), ["food", "holds"], "position 1 of symbol holds: no one-dimensional set"),
        (np.ones((2, 3)), ["food", "*"], "position 1 of symbol holds has no set"),
    ]:
        with pytest.raises(ValueError, match=text):
            holds.from_numpy(array, domains)
        assert dict(holds) == before
    with pytest.raises(KeyError):
        holds.from_numpy(np.ones((2, 3)), ["food", "nosuch"])
    with pytest.raises(TypeError):
        holds.from_numpy([["a", "b", "c"], ["d", "e", "f"]])
    assert dict(holds) == before


def test_a_position_over_the_universe_needs_a_set(diet):
    p = diet.add_parameter("p", ["food", "*"])
    p["Milk", "iron"] = 2
    with pytest.raises(ValueError, match="position 1 of symbol p has no set for a domain"):
        p.to_numpy()
    assert p.to_numpy(["food", "nutrient"]).tolist() == [[2, 0, 0], [0, 0, 0]]


def test_a_set_of_another_database_is_refused(diet):
    with ztb.Database() as other:
        food = other.add_set("food")
        food.extend(["Milk", "Tofu"])
        with pytest.raises(ValueError, match="set food belongs to another database"):
            diet["holds"].to_numpy([food, "nutrient"])


def test_what_the_library_refuses_comes_with_its_text(db):
    with pytest.raises(ValueError, match="symbol pi has no position, so to_numpy has no axis for it"):
        db.add_parameter("pi").to_numpy()
    with pytest.raises(ValueError, match="symbol pi has no position, so to_coo has no axis for it"):
        db["pi"].to_coo()
    db.add_set("none")
    with pytest.raises(ztb.Error, match="Zero sized cube"):
        db.add_parameter("p", ["none"]).to_numpy()


def test_random_cubes_come_back_bit_for_bit(db):
    random = np.random.default_rng(7)
    shape = (5, 1, 7, 3)
    sets = [db.add_set(f"s{d}") for d in range(len(shape))]
    for d, size in enumerate(shape):
        sets[d].extend([f"l{label}" for label in random.permutation(20)[:size]])
    p = db.add_parameter("p", sets)
    for _ in range(20):
        cube = random.normal(size=shape) * (random.random(shape) < 0.4)
        p.from_numpy(cube)
        assert len(p) == np.count_nonzero(cube)
        assert (p.to_numpy() == cube).all()
        p.from_numpy(cube, keep_zeros=True)
        assert p.to_numpy().tobytes() == cube.tobytes()
        axes = p.axes()
        for place in np.argwhere(cube)[:5]:
            assert p[tuple(axes[d][i] for d, i in enumerate(place))] == cube[tuple(place)]
