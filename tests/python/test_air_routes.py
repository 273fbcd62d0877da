"""The airline routes of the world through the package, equal at every step.

Read where they lie beside the project, with pandas, which is what they are held against.
"""

import os
import pathlib

import numpy as np
import pandas as pd
import pytest

import ztb

FOLDER = pathlib.Path(os.environ["ZTB_AIR_ROUTES"])


@pytest.fixture(scope="module")
def routes():
    # Codes such as NA are labels, not missing values.
    frame = pd.read_csv(FOLDER / "routes.csv", keep_default_na=False)
    return frame.set_index(["airline", "from", "to"])["aircraft_types"].astype(float)


@pytest.fixture(scope="module")
def airports():
    return pd.read_csv(FOLDER / "airports.csv", keep_default_na=False)["airport"]


@pytest.fixture
def world(routes, airports):
    with ztb.Database() as db:
        db.add_set("airline").from_pandas(pd.Index(routes.index.levels[0]))
        db.add_set("airport").from_pandas(pd.Index(airports))
        db.add_parameter("types", ["airline", "airport", "airport"]).from_pandas(routes)
        yield db


def test_routes_come_in_and_out(world, routes):
    assert len(world["types"]) == len(routes) == 66934
    assert world["types"].to_pandas().to_dict() == routes.to_dict()
    assert dict(world["types"].items()) == routes.to_dict()


def test_routes_are_written_and_read(world, routes, tmp_path):
    world.write(tmp_path / "routes.rxf")
    with ztb.open(tmp_path / "routes.rxf") as copy:
        assert copy["types"].to_pandas().to_dict() == routes.to_dict()
        assert copy["types"].axes() == world["types"].axes()


def test_damaged_routes_are_whole_or_an_error(world, routes, tmp_path):
    path = tmp_path / "routes.rxf"
    world.write(path)
    data = path.read_bytes()
    whole = {name: dict(world[name]) for name in world}
    refused = 0
    for at in range(0, len(data), len(data) // 40):
        damaged = bytearray(data)
        damaged[at] ^= 0x10
        path.write_bytes(damaged)
        try:
            with ztb.open(path) as copy:
                for name in copy:
                    try:
                        assert dict(copy[name]) == whole[name], (at, name)
                    except ztb.Error as error:
                        assert f"Symbol {name} could not be read from {path}: " in str(error)
                        with pytest.raises(ztb.Error, match=f"Symbol {name} could not be read"):
                            copy.write(tmp_path / "copy.rxf")
                        refused += 1
        except ztb.Error as error:
            assert str(error).startswith("Error opening RXF file: "), (at, error)
            refused += 1
    assert refused >= 40 and not (tmp_path / "copy.rxf").exists()


def test_routes_break_their_domains_where_an_airport_is_missing(world, routes, airports):
    def broken(known):
        frame = routes.index.to_frame(index=False)
        outside = ~frame[["from", "to"]].isin(set(known))
        bad = outside.any(axis=1)
        return {
            tuple(key): tuple(np.flatnonzero(flags) + 1)
            for key, flags in zip(frame[bad].values.tolist(), outside[bad].values)
        }

    def found():
        return {tuple(key): positions for key, positions in world["types"].violations()}

    assert found() == broken(airports)
    few = airports[airports.index % 40 != 7]
    world["airport"].from_pandas(pd.Index(few))
    assert len(found()) > 1000
    assert found() == broken(few)


def test_routes_are_copied_to_a_database_with_other_numbers(world, routes, airports):
    with ztb.Database() as other:
        other.add_labels(airports.sample(frac=1, random_state=1).tolist())
        copy = other.add_parameter("types", ["*"] * 3)
        copy.copy_from(world["types"])
        assert copy.to_pandas().to_dict() == routes.to_dict()


def test_routes_of_each_large_airline_pivot_as_pandas_does(world, routes):
    sizes = routes.groupby(level=0).size()
    large = sizes[sizes > 400].index
    assert len(large) > 20
    own = world.add_set("own")
    one = world.add_set("one")
    for airline in large:
        table = routes.loc[airline].unstack(fill_value=0.0)
        one.clear()
        one.add(airline)
        own.from_pandas(pd.Index(table.index.union(table.columns)))
        cube = world["types"].to_numpy([one, own, own], drop=True)[0]
        axis = list(own)
        ours = pd.DataFrame(cube, index=axis, columns=axis)
        assert (ours.loc[table.index, table.columns] == table).all(axis=None)
        assert ours.to_numpy().sum() == table.to_numpy().sum()


def test_routes_go_to_an_array_and_back(world, routes):
    # Airlines by airports of departure, which fit into one array.
    departures = routes.groupby(level=[0, 1]).sum()
    p = world.add_parameter("departures", ["airline", "airport"])
    known = departures[departures.index.get_level_values(1).isin(world["airport"].to_pandas().index)]
    p.from_pandas(known)
    cube = p.to_numpy()
    assert cube.shape == (len(world["airline"]), len(world["airport"]))
    expected = known[known != 0]
    p.clear()
    p.from_numpy(cube)
    assert p.to_pandas().to_dict() == expected.to_dict()
    rows, columns = p.axes()
    table = known.unstack(fill_value=0.0).reindex(index=rows, columns=columns, fill_value=0.0)
    assert (cube == table.to_numpy()).all()
