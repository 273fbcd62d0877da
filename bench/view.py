#!/usr/bin/env python3
"""What a user waits for in the page of ``ztb view``, beside the command for the same question.

    view.py ZTB [RECORDS]

A parameter of so many records, 10,000,000 without a number, is made and asked for windows of rows,
filters, an order, a pivot and counts, each first anew and then again. Times are those of a client:
from the request to its whole answer, or of the whole process.
"""

import argparse
import json
import os
import subprocess
import tempfile
import time
import urllib.parse
import urllib.request


def make(ztb, folder, records):
    """A file with cost(plant, week, item), made of CSV."""
    path = os.path.join(folder, "costs.csv")
    with open(path, "w", encoding="utf-8") as file:
        file.write("plant,week,item,value\n")
        side = round(records ** (1 / 3))
        for plant in range(side):
            for week in range(side):
                first = (plant * side + week) * side
                file.writelines(
                    f"p{plant},w{week},i{item},{(first + item) * 7919 % 100003}\n"
                    for item in range(side)
                )
    made = os.path.join(folder, "costs.rxf")
    sets = [word for name in ("plant", "week", "item") for word in ("--distinct-set", name)]
    spec = ["--parameter", "cost(plant, week, item) = value"]
    subprocess.run([ztb, "import", made, "--from", path, *sets, *spec], check=True)
    return made


class Server:
    """A viewer, asked as its page asks."""

    def __init__(self, ztb, file):
        command = [ztb, "view", "--no-open", file]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.address, token = self.process.stdout.readline().strip().split("/#token=")
        body = json.dumps({"token": token}).encode()
        with urllib.request.urlopen(self.address + "/api/session", body) as answer:
            self.key = json.load(answer)["key"]

    def seconds(self, path, **parameters):
        address = f"{self.address}/api/{path}?" + urllib.parse.urlencode(parameters)
        request = urllib.request.Request(address, headers={"Authorization": f"Bearer {self.key}"})
        began = time.perf_counter()
        with urllib.request.urlopen(request) as answer:
            answer.read()
        return time.perf_counter() - began

    def end(self):
        self.process.terminate()
        self.process.wait()


def seconds_of(command):
    began = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
    return time.perf_counter() - began


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("ztb")
    parser.add_argument("records", nargs="?", type=int, default=10_000_000)
    options = parser.parse_args()
    ztb = os.path.abspath(options.ztb)
    with tempfile.TemporaryDirectory() as folder:
        file = make(ztb, folder, options.records)
        kept = os.path.join(folder, "kept.rxf")
        condition = "value > 99990"
        where = [ztb, "where", file, kept, "--where", condition]
        sort = ["--sort", "value", "--head", "100"]
        by = ["--by", "plant,week", "--sum"]
        questions = [
            ("first window", "rows", {"count": 100}, [ztb, "show", file, "cost", "--head", "100"]),
            ("window in the middle", "rows", {"count": 100, "from": options.records // 2}, None),
            ("filter by value", "rows", {"count": 100, "where": condition}, where),
            ("filter by label", "rows", {"count": 100, "p1": "w7*"}, None),
            ("order by value", "rows", {"count": 100, "sort": "value"}, [ztb, "show", file, "cost", *sort]),
            ("pivot", "pivot", {"rows": "0", "cols": "1"}, [ztb, "aggregate", file, "cost", *by]),
            ("labels with counts", "counts", {"pos": 2}, None),
            ("distribution", "histogram", {}, None),
        ]
        server = Server(ztb, file)
        print(f"{'':24}{'view, first':>14}{'again':>10}{'command':>10}   seconds")
        for name, path, parameters, command in questions:
            times = [server.seconds(path, s="cost", **parameters) for _ in range(2)]
            beside = f"{seconds_of(command):10.3f}" if command else f"{'':>10}"
            print(f"{name:24}{times[0]:14.3f}{times[1]:10.3f}{beside}", flush=True)
        server.end()


if __name__ == "__main__":
    main()
