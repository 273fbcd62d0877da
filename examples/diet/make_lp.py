#!/usr/bin/env python3
"""Makes diet.lp from the three tables that stand beside it.

buy is what is bought of a food a day, counted in 1939 dollars, so that a unit of it holds what
the table gives for a dollar. The cost is in dollars a year. price_var is the price of a food
relative to 1939: it stands still at 1 and multiplies what is bought, so that a database can set
other prices. allowance_var is the daily need of a
nutrient.
"""

import csv
import pathlib

DAYS = 365
FOLDER = pathlib.Path(__file__).resolve().parent


def rows(name):
    with open(FOLDER / name, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file))


def element(symbol, label):
    return f"{symbol}['" + label.replace("'", "''") + "']"


def main():
    foods = [row["food"] for row in rows("foods.csv")]
    needs = {row["nutrient"]: row["daily_allowance"] for row in rows("requirements.csv")}
    holds = {}
    for row in rows("nutrition.csv"):
        holds.setdefault(row["nutrient"], []).append((row["food"], row["per_dollar"]))

    lines = ["\\ The cheapest diet of 1939, in dollars a year; made by make_lp.py."]
    lines += ["Minimize", " cost: ["]
    for number, food in enumerate(foods):
        sign = "+ " if number else "  "
        lines.append(f"  {sign}{2 * DAYS} {element('price_var', food)} * {element('buy', food)}")
    lines += ["  ] / 2", "Subject To"]
    for nutrient, allowance in needs.items():
        lines.append(f" {element('enough', nutrient)}:")
        lines += [f"  + {amount} {element('buy', food)}" for food, amount in holds[nutrient]]
        lines.append(f"  - {element('allowance_var', nutrient)} >= 0")
    lines.append("Bounds")
    lines += [f" {element('price_var', food)} = 1" for food in foods]
    lines += [f" {element('allowance_var', nutrient)} = {need}" for nutrient, need in needs.items()]
    lines.append("End")
    (FOLDER / "diet.lp").write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
