#!/usr/bin/env python3
"""Makes price scenarios: each food at half to twice its price of 1939, the same every time.

    make_scenarios.py COUNT

Writes scenarios.csv, the names, and prices.csv, the price index of each food, to the present
folder.
"""

import csv
import pathlib
import random
import sys


def main():
    folder = pathlib.Path(__file__).resolve().parent
    with open(folder / "foods.csv", newline="", encoding="utf-8") as file:
        foods = [row["food"] for row in csv.DictReader(file)]
    generator = random.Random(1939)
    with open("scenarios.csv", "w", newline="", encoding="utf-8") as names, open(
        "prices.csv", "w", newline="", encoding="utf-8"
    ) as prices:
        name_writer = csv.writer(names, lineterminator="\n")
        price_writer = csv.writer(prices, lineterminator="\n")
        name_writer.writerow(["scenario"])
        price_writer.writerow(["scenario", "food", "index"])
        for number in range(1, int(sys.argv[1]) + 1):
            name = f"s{number:04}"
            name_writer.writerow([name])
            for food in foods:
                # Equally likely to be halved and doubled.
                price_writer.writerow([name, food, f"{2 ** generator.uniform(-1, 1):.4f}"])


if __name__ == "__main__":
    main()
