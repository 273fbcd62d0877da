"""RXF files: written, mirrored, refused."""

import errno
import pickle
import subprocess
import sys

import pytest

import ztb


def test_a_file_gives_back_what_was_written(diet, tmp_path):
    diet["food"]["Milk"] = "1 qt."
    x = diet.add_variable("x", ["food"], "Amounts", subtype=3)
    x["Milk"] = (1, ztb.NA, ztb.UNDEF, ztb.EPS, 2)
    diet.add_alias("dish", diet["food"])
    path = tmp_path / "diet.rxf"
    diet.write(path, check_domains=True)
    with ztb.open(path) as copy:
        assert list(copy) == ["food", "nutrient", "holds", "x", "dish"]
        assert copy.labels == diet.labels
        assert dict(copy["food"]) == {"Milk": "1 qt.", "Tofu": ""}
        assert dict(copy["holds"]) == dict(diet["holds"])
        assert ztb.special_codes(copy["x"]["Milk"]).tolist() == [-1, 1, 0, 4, -1]
        assert copy["x"].user_info == 3 and copy["x"].text == "Amounts"
        assert copy["holds"].domains[0].set == copy["food"]


def test_a_file_may_be_written_over_its_own_source(diet, tmp_path):
    path = str(tmp_path / "diet.rxf")
    diet.write(path)
    with ztb.Database(path) as copy:
        copy["holds"]["Milk", "zinc"] = 2
        copy.write(path)
    with ztb.Database(path) as copy:
        assert len(copy["holds"]) == 4


def test_a_label_outside_its_domain_is_refused_when_asked(diet, tmp_path):
    diet["holds"]["Lard", "iron"] = 1
    checked = tmp_path / "checked.rxf"
    checked.write_bytes(b"old")
    with pytest.raises(ztb.Error, match="Record outside its domain: holds, label >Lard<"):
        diet.write(checked, check_domains=True)
    assert checked.read_bytes() == b"old"
    assert [path.name for path in tmp_path.iterdir()] == ["checked.rxf"]
    diet.write(tmp_path / "loose.rxf")
    with ztb.open(tmp_path / "loose.rxf") as copy:
        assert copy["holds"].violations() == [(("Lard", "iron"), (0,))]


def test_closing_the_file_reads_the_rest_first(diet, tmp_path):
    path = tmp_path / "diet.rxf"
    diet.write(path)
    with ztb.open(path) as copy:
        copy.close_file()
        path.unlink()
        assert len(copy["holds"]) == 3
    diet.write(path)
    with ztb.open(path) as copy:
        copy.close_file(load_remaining=False)
        with pytest.raises(ztb.Error, match="not initialized from RXF"):
            len(copy["holds"])


def test_a_missing_or_foreign_file_is_an_error_that_names_it(tmp_path):
    path = tmp_path / "none.rxf"
    for use in [lambda: ztb.open(path), lambda: ztb.memory_needed(path)]:
        with pytest.raises(FileNotFoundError, match="No such file: ") as failure:
            use()
        assert isinstance(failure.value, ztb.Error) and failure.value.errno == errno.ENOENT
        assert isinstance(pickle.loads(pickle.dumps(failure.value)), ztb.MissingFileError)
    with pytest.raises(FileNotFoundError) as failure:
        ztb.open(path)
    assert failure.value.filename == str(path)
    with ztb.Database() as db, pytest.raises(FileNotFoundError, match="the folder does not exist"):
        db.write(tmp_path / "none" / "a.rxf")
    (tmp_path / "a.rxf").write_text("no data")
    with pytest.raises(ztb.DamagedFileError, match=r"Not an RXF file.*a\.rxf"):
        ztb.open(tmp_path / "a.rxf")


def test_a_folder_and_a_name_that_speaks_of_damage_are_no_damage(tmp_path):
    folder = tmp_path / "File is damaged"
    folder.mkdir()
    for use in [lambda: ztb.open(folder), lambda: ztb.Database().write(folder)]:
        with pytest.raises(ztb.Error, match="Is a folder") as failure:
            use()
        assert type(failure.value) is ztb.Error
    with pytest.raises(KeyError) as failure:
        ztb.Database()["No such file: x"]
    assert type(failure.value) is ztb.NotFoundError


# A process loads the file library once, so that this wants one of its own.
WITHOUT_LIBRARY = """
import ztb
with ztb.Database(system_directory=".") as db:
    db.add_parameter("p").value = 1
    try:
        db.write("a.rxf")
    except ztb.Error:
        pass
    else:
        raise AssertionError("written without a library")
try:
    ztb.Database("a.rxf", system_directory=".")
except ztb.Error as error:
    assert str(error).startswith("RXF create did not succeed"), error
else:
    raise AssertionError("opened without a library")
"""


def test_a_folder_without_the_file_library_fails_only_at_files(tmp_path):
    subprocess.run([sys.executable, "-c", WITHOUT_LIBRARY], cwd=tmp_path, check=True)
