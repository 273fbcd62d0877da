"""Limits on the memory that the records of a file take."""

import pathlib
import shutil
import subprocess
import sys

import pytest

import ztb


@pytest.fixture
def path(db, tmp_path):
    """Parameters p and q of 1000 records each, which take 64 bytes a record in the map."""
    labels = [f"l{number}" for number in range(1000)]
    for name in ("p", "q"):
        symbol = db.add_parameter(name, ["*"])
        for label in labels:
            symbol[label] = 1
    db.add_alias("s", db.add_set("few"))
    path = tmp_path / "a.rxf"
    db.write(path)
    return path


def test_a_symbol_that_needs_more_is_refused_before_it_is_read(path):
    with ztb.open(path, max_memory=63999) as db:
        for _ in range(2):
            with pytest.raises(ztb.Error) as raised:
                len(db["p"])
            assert str(raised.value) == (
                f"Symbol p could not be read from {path}: Limit exceeded: its 1000 records need "
                "about 62.5 KiB in memory, the limit is 62.4 KiB"
            )


def test_the_symbols_of_a_database_count_together(path):
    with ztb.open(path, max_memory="100k") as db:
        assert len(db["p"]) == 1000
        with pytest.raises(ztb.Error, match="what was read before about 62.5 KiB, the limit is 100 KiB"):
            len(db["q"])
    with ztb.Database(path, max_memory="128K") as db:
        assert len(db["p"]) + len(db["q"]) == 2000


def test_the_limit_holds_for_that_database_alone(path):
    with ztb.open(path, max_memory=1), ztb.open(path) as db:
        assert len(db["p"]) == 1000


@pytest.mark.parametrize("size", [0, -1, 2**64, "", "0", "2GB", "1.5G", "-1", " 2", "2G ", "٢", "much"])
def test_anything_but_a_size_is_refused(path, size):
    with pytest.raises(ValueError) as raised:
        ztb.open(path, max_memory=size)
    assert str(raised.value) == (
        f"max_memory {size!r} is no size, expected bytes from 1 on, or a text of a whole number "
        "with or without K, M, G or T, as '2G'"
    )


@pytest.mark.parametrize("size", [True, 2.5, b"2G"])
def test_a_size_of_another_type_is_refused(path, size):
    with pytest.raises(TypeError):
        ztb.open(path, max_memory=size)


def test_the_need_is_told_without_reading(path):
    assert ztb.memory_needed(path) == {"p": 64000, "q": 64000, "few": 0}
    assert ztb.memory_needed(path, store="vector")["p"] < 64000
    with pytest.raises(ztb.Error, match="No such file"):
        ztb.memory_needed(path.parent / "none.rxf")
    with pytest.raises(ValueError, match="no store 'heap'"):
        ztb.memory_needed(path, store="heap")


def test_a_limit_is_refused_where_databases_use_another_copy_of_the_library(path, tmp_path):
    library = pathlib.Path(ztb.__file__).parents[2] / "lib" / "librxfcclib64.so"
    shutil.copy(library, tmp_path)
    # A process of its own, since a library that has been opened once stays open.
    program = (
        "import sys, ztb\n"
        "file, folder = sys.argv[1:]\n"
        "ztb.Database(file, system_directory=folder).close()\n"
        "try:\n"
        "    ztb.Database(file, system_directory=folder, max_memory=1)\n"
        "except ztb.Error as error:\n"
        "    print(error)\n"
    )
    result = subprocess.run(
        [sys.executable, "-c", program, str(path), str(tmp_path)],
        stdout=subprocess.PIPE,
        text=True,
        check=True,
    )
    assert result.stdout == (
        "No memory limit can be set: databases use another exchange-file library than the one "
        "that this program is linked with\n"
    )
