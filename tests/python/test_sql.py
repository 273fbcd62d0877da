"""Queries in SQL over databases, beside the answers of pandas."""

import datetime
import math
import random
import sqlite3

import numpy as np
import pytest

import ztb


def test_a_symbol_is_a_table(diet):
    frame = ztb.sql(diet, "select food, nutrient, value from holds where food = 'MILK'")
    assert list(frame.columns) == ["food", "nutrient", "value"]
    assert frame.values.tolist() == [["Milk", "iron", 1.0], ["Milk", "kcal", 3.0]]


def test_groups_are_those_of_pandas(diet):
    frame = ztb.sql(diet, "select nutrient, sum(value) as amount from holds group by nutrient")
    sums = diet["holds"].to_pandas().groupby(level="nutrient").sum()
    assert dict(zip(frame.nutrient, frame.amount)) == sums.to_dict()


def test_parameters_take_labels_and_numbers(diet):
    query = "select value from holds where food = ? and value > ?"
    assert ztb.sql(diet, query, "milk", 1.5).value.tolist() == [3.0]
    with pytest.raises(ValueError, match="the query has 2 parameters, 1 is given"):
        ztb.sql(diet, query, "milk")


def test_parameters_are_integers_of_any_kind_within_64_bits(diet):
    frame = ztb.sql(diet, "select typeof(?1) as t, ?1 as n", np.int32(7))
    assert frame.values.tolist() == [["integer", 7]]
    assert ztb.sql(diet, "select ? as n", -(2**63)).n.tolist() == [-(2**63)]
    with pytest.raises(ValueError, match="parameter 2 is an integer beyond the 64 bits"):
        ztb.sql(diet, "select ?, ?", 1, 2**63)


def test_parameters_and_results_are_texts_bytes_and_none(diet):
    frame = ztb.sql(
        diet,
        "select ?1 as n, ?2 as b, ?3 as t, ?4 as r, ?5 as d, hex(?3) as h, x'' as e",
        *(None, b"\x00\xff", "x\0y", np.float32(1.5), datetime.date(2024, 3, 1)),
    )
    assert frame.iloc[0, 1:].tolist() == [b"\0\xff", "x\0y", 1.5, "2024-03-01", "780079", b""]
    assert math.isnan(frame.n[0])
    assert ztb.sql(diet, "select count(*) as n from holds where food = ?", None).n.tolist() == [0]
    with pytest.raises(TypeError, match="no label"):
        ztb.sql(diet, "select ?", object())
    with pytest.raises(ValueError, match="a null character in"):
        ztb.sql(diet, "select 1\0 + 1")


def test_queries_begin_with_anything_that_gives_rows(diet):
    assert ztb.sql(diet, "-- c\nvalues (1, 2)").values.tolist() == [[1, 2]]
    query = "/* c */ with t as (select count(*) as n from holds) select n from t"
    assert ztb.sql(diet, query).n.tolist() == [len(diet["holds"])]


def test_special_values(diet):
    diet["holds"]["Milk", "iron"] = ztb.NA
    diet["holds"]["Milk", "kcal"] = ztb.UNDEF
    diet["holds"]["Tofu", "zinc"] = ztb.INF
    values = ztb.sql(diet, "select value from holds").value.tolist()
    assert math.isnan(values[0]) and math.isnan(values[1]) and values[2] == math.inf
    assert ztb.sql(diet, "select count(*) as n from holds where value is null").n.tolist() == [2]


def test_two_databases_by_name(diet):
    with ztb.Database() as other:
        other.add_parameter("holds", ["food"])["Milk"] = 7
        frame = ztb.sql(
            {"a": diet, "b": other},
            "select b.holds.value as v, a.holds.value as w from a.holds join b.holds using (food)",
        )
    assert frame.values.tolist() == [[7.0, 1.0], [7.0, 3.0]]


def test_mistakes_are_told(diet):
    with pytest.raises(ztb.Error, match="no such table: nowhere"):
        ztb.sql(diet, "select * from nowhere")
    with pytest.raises(ztb.Error, match="a query that gives rows is expected, as select does"):
        ztb.sql(diet, "create table t(x)")
    with pytest.raises(ztb.Error, match=r"no such table: main\.holds; the databases are called db"):
        ztb.sql(diet, "select * from main.holds")
    with pytest.raises(ztb.Error, match="a database cannot be called main, which is a name of SQL"):
        ztb.sql({"main": diet}, "select 1")
    with pytest.raises(TypeError, match="3 .* is no database"):
        ztb.sql(3, "select 1")
    diet.close()
    with pytest.raises(ztb.Error):
        ztb.sql(diet, "select 1")


def test_random_queries_give_what_tables_of_sqlite_do(tmp_path):
    """Labels and numbers of every look in conditions, lists and joins, on each store."""
    texts = "Milk tofu ZINC 1 01 1.0 2 10 1e1 -3 3.5 \u00e4 \u00c4 Apple Inf nan 0x10".split()
    values = [1.0, 2.0, 3.5, -3.0, 10.0, 0.0, ztb.NA, ztb.INF]
    numbers = ["1", "1.0", "10", "-3", "3.5", "null", "' '", "x'31'", "(select 1)"]
    draw = random.Random(3)

    def any_value():
        text = draw.choice(texts)
        return draw.choice([f"'{text}'", f"'{text.swapcase()}'", draw.choice(numbers)])

    def condition():
        key = draw.choice(["q.k0", "q.k1"])
        some = ", ".join(any_value() for _ in range(draw.randint(1, 4)))
        inner = draw.choice(["value", "k0", "cast(value as integer)", "k1 || ''"])
        operator = draw.choice("= = is < <= > >= <>".split())
        return draw.choice(
            [
                f"{key} {operator} {any_value()}",
                f"{key} in ({some})",
                f"{key} not in ({some})",
                f"{key} in (select {inner} from b)",
                f"{key} between {any_value()} and {any_value()}",
                f"{key} = {any_value()} collate binary",
                f"{key} = (select max(k1) from b)",
                "q.value > 1",
            ]
        )

    def rows_of(rows):
        clean = [[None if cell != cell else cell for cell in row] for row in rows]
        return sorted([[str(cell) for cell in row] for row in clean])

    for store in ("map", "vector", "trie"):
        database = ztb.Database()
        tables = sqlite3.connect(":memory:")
        for name in "ab":
            symbol = database.add_parameter(name, ["k0", "k1"])
            for _ in range(60):
                symbol[draw.choice(texts), draw.choice(texts)] = draw.choice(values)
            tables.execute(
                f"create table {name}(k0 text collate nocase, k1 text collate nocase, value real)"
            )
            rows = [(*key, value if value == value else None) for key, value in symbol.items()]
            tables.executemany(f"insert into {name} values(?, ?, ?)", rows)
        database.write(tmp_path / "a.rxf")
        database = ztb.open(tmp_path / "a.rxf", store=store)
        for number in range(120):
            conditions = [condition() for _ in range(draw.randint(1, 3))]
            where = draw.choice([" and ", " or "]).join(conditions)
            own, other = draw.choice(["k0", "k1"]), draw.choice(["k0", "k1", "value"])
            query = draw.choice(
                [
                    f"select q.k0, q.k1, q.value from a q where {where}",
                    f"select q.k0, count(*), max(q.value) from a q where {where} group by 1",
                    f"select q.*, y.* from a q join b y on q.{own} = y.{other} where {where}",
                ]
            )
            expected = rows_of(tables.execute(query).fetchall())
            frame = ztb.sql(database, query)
            found = rows_of(row[1:] for row in frame.astype(object).itertuples())
            assert found == expected, (store, number, query)
