"""The package on every record store."""

import numpy as np
import pytest

import ztb

STORES = ["map", "vector", "trie"]


@pytest.mark.parametrize("store", STORES)
def test_frames_and_arrays_come_back_on_every_store(store):
    random = np.random.default_rng(3)
    cube = random.integers(1, 9, (4, 3, 5)).astype(float) * (random.random((4, 3, 5)) < 0.5)
    with ztb.Database(store=store) as db:
        sets = [db.add_set(name) for name in "abc"]
        for set_, size in zip(sets, cube.shape):
            set_.extend([f"{set_.name}{label}" for label in range(size)])
        p = db.add_parameter("p", sets)
        p.from_numpy(cube)
        assert (p.to_numpy() == cube).all()
        series = p.to_pandas()
        assert len(series) == np.count_nonzero(cube)
        p.from_pandas(series.sample(frac=1, random_state=2))
        assert (p.to_numpy() == cube).all()
        x = db.add_variable("x", sets)
        x.from_pandas(series)
        assert (x.to_numpy() == cube).all()
        assert (x.to_numpy(field="lower") == np.where(cube == 0, 0, -np.inf)).all()
        s = db.add_set("s", sets)
        s.from_pandas(series.map(str).sample(frac=1, random_state=2))
        assert dict(s.items()) == {key: str(value) for key, value in series.items()}
        s.from_numpy(cube > 3)
        assert (s.to_numpy() == (cube > 3)).all()


@pytest.mark.parametrize("store", STORES)
def test_files_open_on_every_store(diet, tmp_path, store):
    diet.write(tmp_path / "diet.rxf")
    with ztb.open(tmp_path / "diet.rxf", store=store) as copy:
        assert dict(copy["holds"].items()) == dict(diet["holds"].items())
        assert copy["holds"]["Tofu", "zinc"] == 5.0
        assert copy["holds"].to_numpy().tolist() == diet["holds"].to_numpy().tolist()
