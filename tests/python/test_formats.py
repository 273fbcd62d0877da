"""Tables and databases of other programs, in and out."""

import errno
import json
import sqlite3
from fractions import Fraction

import pytest

import ztb


def stock(path):
    with sqlite3.connect(path) as file:
        file.execute("create table food(name text, cents real)")
        file.executemany("insert into food values(?, ?)", [("Milk", 11), ("Tofu", 7.25)])
    file.close()


@pytest.mark.parametrize("target", ["a.db", "a.xlsx", "a.jsonl", "a.jsonl.gz", "folder/", "parquet"])
def test_a_database_comes_back_as_it_was(diet, tmp_path, target):
    diet["food"]["Milk"] = "1 qt."
    diet.add_labels(["", "never used"])
    x = diet.add_variable("x", ["food"], "Amounts", subtype=3)
    x["Milk"] = (1, ztb.NA, ztb.UNDEF, ztb.EPS, 0.1 + 0.2)
    diet.add_alias("dish", diet["food"])
    diet.export(f"{tmp_path}/{target}", format="parquet" if target == "parquet" else None)
    with ztb.read(tmp_path / target) as copy:
        assert list(copy) == ["food", "nutrient", "holds", "x", "dish"]
        assert copy.labels == diet.labels
        assert dict(copy["food"]) == {"Milk": "1 qt.", "Tofu": ""}
        assert dict(copy["holds"]) == dict(diet["holds"])
        assert ztb.special_codes(copy["x"]["Milk"]).tolist() == [-1, 1, 0, 4, -1]
        assert copy["x"]["Milk"].scale == 0.1 + 0.2
        assert copy["x"].user_info == 3 and copy["x"].text == "Amounts"
        assert copy["holds"].domains[0].set == copy["food"]


def test_lines_of_a_database_without_its_end_are_refused(diet, tmp_path):
    whole, cut = tmp_path / "a.jsonl", tmp_path / "cut.jsonl"
    diet.export(whole)
    lines = whole.read_bytes().splitlines(keepends=True)
    for count in range(1, len(lines)):
        cut.write_bytes(b"".join(lines[:count]))
        with pytest.raises(ztb.DamagedFileError, match=": its end is missing"):
            ztb.read(cut)


def test_a_table_is_read_into_a_database(diet, tmp_path):
    stock(tmp_path / "stock.db")
    diet.import_table(
        tmp_path / "stock.db#food",
        parameters=["price(name in food) = cents", "double(name in food) = cents"],
        check_domains=True,
    )
    assert dict(diet["price"]) == {("Milk",): 11, ("Tofu",): 7.25}
    assert diet["price"].domains[0].name == "name" and diet["name"] == diet["food"]
    query = f"{tmp_path / 'stock.db'}#select name as food, cents from food where cents > 10"
    with ztb.read(query, sets="food", parameters="price(food) = cents", store="vector") as other:
        assert list(other["food"]) == ["Milk"]
        assert other["price"]["Milk"] == 11


def test_shapes_have_their_arguments(tmp_path):
    (tmp_path / "w.csv").write_text("from;31.12.2023;1.1.2024\nLIS;1,5;2\nOPO;;4\n")
    with ztb.read(
        tmp_path / "w.csv",
        parameters="flow(origin, day)",
        wide="day",
        rename={"from": "origin"},
        dates="dmy",
        separator=";",
        decimal=",",
    ) as database:
        assert dict(database["flow"]) == {
            ("LIS", "2023-12-31"): 1.5,
            ("LIS", "2024-01-01"): 2,
            ("OPO", "2024-01-01"): 4,
        }
        database.export(tmp_path / "x.csv", ["flow"], wide="day", separator=";", decimal=",")
    assert (tmp_path / "x.csv").read_text() == (
        "origin;2023-12-31;2024-01-01\nLIS;1,5;2\nOPO;;4\n"
    )


def test_numbers_come_in_another_unit(tmp_path):
    (tmp_path / "a.csv").write_text("food,cents,tons\nMilk,7,2\n")
    options = {"parameters": ["price(food) = cents", "kilos(food) = tons"]}
    with ztb.read(
        tmp_path / "a.csv", units={"cents": Fraction(1, 100), "tons": 1000}, **options
    ) as database:
        assert database["price"]["Milk"] == 0.07
        assert database["kilos"]["Milk"] == 2000
    with pytest.raises(TypeError, match="'x' \\(str\\) is no factor of column tons"):
        ztb.read(tmp_path / "a.csv", units={"tons": "x"}, **options)


def test_chosen_symbols_go_out(diet, tmp_path):
    diet.export(tmp_path / "n.jsonl", "nutrient")
    lines = [json.loads(line) for line in (tmp_path / "n.jsonl").read_text().splitlines()]
    assert [line["nutrient"] for line in lines] == list(diet["nutrient"])
    diet.export(tmp_path / "some", ["food", diet["nutrient"]], format="sqlite")
    with ztb.read(tmp_path / "some", format="sqlite") as copy:
        assert list(copy) == ["food", "nutrient"]


def test_what_is_wrong_is_told_and_nothing_is_added(diet, tmp_path):
    before = (list(diet), diet.labels)
    (tmp_path / "a.csv").write_text("food,cents\nMilk,much\n,2\n")
    (tmp_path / "whole.csv").write_text("food,cents\nMilk,1\n")
    with pytest.raises(ztb.DamagedFileError) as caught:
        diet.import_table(tmp_path / "a.csv", parameters="price(food) = cents")
    text = str(caught.value)
    assert "a.csv:2:6: cents: 'much' is not a number\n" in text
    assert "a.csv:3:1: food: is empty, expected a label" in text
    assert text.endswith("nothing is imported: 2 problems in the input")
    with pytest.raises(ztb.MissingFileError):
        ztb.read(tmp_path / "none.db")
    with pytest.raises(ValueError, match="--dates ydm: expected dmy, mdy or ymd"):
        diet.import_table(tmp_path / "a.csv", parameters="p(food)", dates="ydm")
    with pytest.raises(ztb.Error, match="Symbol holds exists already"):
        diet.import_table(tmp_path / "whole.csv", sets="holds(food)")
    with pytest.raises(ValueError, match="a csv file takes the table of one symbol"):
        diet.export(tmp_path / "b.csv")
    assert (list(diet), diet.labels) == before


def test_damaged_and_missing_files_have_their_errors(diet, tmp_path):
    diet.write(tmp_path / "cut.rxf")
    whole = (tmp_path / "cut.rxf").read_bytes()
    (tmp_path / "cut.rxf").write_bytes(whole[: len(whole) // 2])
    for name in ["no.db", "no.xlsx", "no.jsonl", "no.nc"]:
        (tmp_path / name).write_text("hello, world\n")
    damaged = [
        lambda: ztb.where(tmp_path / "cut.rxf", "value > 2"),
        lambda: ztb.merge([tmp_path / "cut.rxf"], tmp_path / "out.rxf"),
        lambda: ztb.read(tmp_path / "no.db"),
        lambda: ztb.read(tmp_path / "no.xlsx"),
        lambda: ztb.read(tmp_path / "no.jsonl"),
        lambda: ztb.read(tmp_path / "no.nc"),
        lambda: diet.import_table(tmp_path / "no.db", sets="x"),
    ]
    for attempt in damaged:
        with pytest.raises(ztb.DamagedFileError, match=r"(cut\.rxf|no\.\w+)"):
            attempt()
    missing = [
        lambda: ztb.where(tmp_path / "none.rxf", "value > 2"),
        lambda: ztb.read(tmp_path / "none.db"),
        lambda: ztb.read(tmp_path / "none.nc"),
        lambda: diet.export(tmp_path / "none" / "a.db"),
        lambda: diet.export(tmp_path / "none" / "a.csv", ["holds"]),
        lambda: diet.export(tmp_path / "none" / "a.nc"),
        lambda: ztb.where(diet, "value > 2", tmp_path / "none" / "out.rxf"),
    ]
    for attempt in missing:
        with pytest.raises(ztb.MissingFileError, match="none") as failure:
            attempt()
        assert failure.value.errno == errno.ENOENT
    with pytest.raises(ztb.MissingFileError) as failure:
        diet.export(tmp_path / "none" / "a.db")
    assert failure.value.operation == "ztbFormatsExportDatabase"
    assert not (tmp_path / "out.rxf").exists()


@pytest.mark.parametrize(
    "attempt, text",
    [
        (lambda db: ztb.read(3), "3 (int) is no path of a file, expected a str or a path object"),
        (lambda db: db.export(3), "3 (int) is no path of a file, expected a str or a path object"),
        (lambda db: ztb.read("a.csv", parameters=3), "3 (int) holds no parameters, expected a list"),
        (lambda db: ztb.read("a.csv", sets=[3]), "3 (int) is no text for sets, expected a str"),
        (lambda db: ztb.read("a.csv", rename=3), "3 (int) is no rename, expected a mapping"),
        (lambda db: ztb.read("a.csv", rename={"a": 3}), "3 (int) is no name of a column"),
        (lambda db: ztb.read("a.csv", units=["a"]), "['a'] (list) is no units, expected a mapping"),
        (lambda db: ztb.read("a.csv", separator=3), "3 (int) is no separator, expected a str"),
        (lambda db: ztb.read("a.csv", skip_empty=1), "1 (int) is no value for skip_empty"),
        (lambda db: db.export("a.db", format=3), "3 (int) is no format, expected a str"),
        (lambda db: ztb.merge("a.rxf"), "'a.rxf' is one file, expected several"),
        (lambda db: ztb.aggregate(db, "holds", by=1.5), "1.5 (float) holds no positions"),
    ],
)
def test_arguments_of_a_wrong_type_are_told(diet, tmp_path, monkeypatch, attempt, text):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "a.csv").write_text("a,v\nx,1\n")
    with pytest.raises(TypeError) as failure:
        attempt(diet)
    assert str(failure.value).startswith(text)


def test_positions_are_numbers_too_and_unknown_symbols_are_not_found(diet, tmp_path):
    with ztb.aggregate(diet, "holds", by=1) as sums:
        assert dict(sums["holds_sum"]) == dict(
            ztb.aggregate(diet, "holds", by="food")["holds_sum"])
    with pytest.raises(ztb.NotFoundError, match="^Cannot find symbol nosuch$"):
        diet.export(tmp_path / "a.db", ["nosuch"])
    assert not (tmp_path / "a.db").exists()


def test_warnings_are_warnings(tmp_path):
    (tmp_path / "a.csv").write_text("i,t\na,text\nb,TEXT\n")
    with pytest.warns(UserWarning, match="text 'TEXT' is kept as 'text'"):
        ztb.read(tmp_path / "a.csv", sets="i : t").close()


def test_tables_that_cannot_be_read_are_told_together(diet, tmp_path):
    diet.export(f"{tmp_path}/dir/")
    (tmp_path / "dir" / "food.csv").unlink()
    (tmp_path / "dir" / "holds.csv").write_text("food,nutrient,value\nMilk,Iron,much\n")
    with pytest.raises(ztb.DamagedFileError) as raised:
        ztb.read(tmp_path / "dir")
    text = str(raised.value)
    assert "food.csv: cannot be read: No such file or directory\n" in text
    assert "holds.csv:2:11: value: 'much' is not a number\n" in text
    assert "nothing is imported: 2 problems in the input" in text
    (tmp_path / "dir" / "holds.csv").unlink()
    with pytest.raises(ztb.MissingFileError) as raised:
        ztb.read(tmp_path / "dir")
    assert "food.csv: cannot be read" in str(raised.value)
    assert "holds.csv: cannot be read" in str(raised.value)


@pytest.mark.parametrize("target", ["p.xlsx", "p.xlsx#price", "p.db", "p.db#price"])
def test_the_table_of_one_symbol_comes_back_as_it_was(tmp_path, target):
    with ztb.Database() as database:
        price = database.add_parameter("price", ["food"])
        values = {"Milk": 0.1 + 0.2, "2020": ztb.NA, "\\x": ztb.UNDEF, "1e3": ztb.EPS, "t\u00f6": -0.0}
        for label, value in values.items():
            price[label] = value
        database.export(tmp_path / target.partition("#")[0], ["price"])
        with ztb.read(tmp_path / target, parameters="price(food)") as back:
            assert [keys[0] for keys in back["price"]] == list(values)
            for label, value in values.items():
                found = back["price"][label]
                assert ztb.special_codes(found) == ztb.special_codes(value), label
                if label == "Milk":
                    assert found == 0.1 + 0.2
