"""ztb import and export of a big CSV file beside DuckDB's reading and writing of the same.

    csv_files.py ZTB DUCKDB [RECORDS]

DUCKDB is libduckdb.so or its folder. Each is timed three times, in turn, and the least is told.
"""

import ctypes
import os
import subprocess
import sys
import tempfile
import time

ROUNDS = 3


class Duck:
    """A database in memory of DuckDB's C interface."""

    def __init__(self, library):
        if os.path.isdir(library):
            library = os.path.join(library, "libduckdb.so")
        self.library = ctypes.CDLL(library)
        self.library.duckdb_query.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p]
        self.library.duckdb_result_error.restype = ctypes.c_char_p
        database, self.connection = ctypes.c_void_p(), ctypes.c_void_p()
        if self.library.duckdb_open(None, ctypes.byref(database)):
            sys.exit(f"{library}: no database can be opened")
        self.library.duckdb_connect(database, ctypes.byref(self.connection))
        self.query(f"set threads = {os.cpu_count()}")

    def query(self, text):
        result = ctypes.create_string_buffer(256)
        if self.library.duckdb_query(self.connection, text.encode(), result):
            sys.exit(self.library.duckdb_result_error(result).decode())
        self.library.duckdb_destroy_result(result)


def write_table(path, records):
    with open(path, "w", encoding="ascii") as file:
        file.write("i,j,k,value\n")
        for record in range(records):
            i, j, k = record // 10000, record // 10 % 1000, record % 10
            file.write(f"i{i:04},j{j:05},k{k},{record * 7919 % 10000019 / 10000}\n")


def seconds(work):
    began = time.monotonic()
    work()
    return time.monotonic() - began


def beside(what, ours, theirs):
    times = [(seconds(ours), seconds(theirs)) for _ in range(ROUNDS)]
    mine, other = (min(pair[side] for pair in times) for side in (0, 1))
    print(f"{what}: ztb {mine:.2f} s, DuckDB {other:.2f} s, {mine / other:.2f} times as long")


def main():
    ztb, library = sys.argv[1:3]
    records = int(float(sys.argv[3])) if len(sys.argv) > 3 else 10_000_000
    with tempfile.TemporaryDirectory() as folder:
        path, back, file, other = (
            os.path.join(folder, name) for name in ("a.csv", "b.csv", "a.rxf", "d.csv")
        )
        write_table(path, records)
        duck = Duck(library)
        columns = "{'i': 'varchar', 'j': 'varchar', 'k': 'varchar', 'value': 'double'}"
        command = [ztb, "import", file, "--from", path, "--parameter", "p(i, j, k) = value"]

        def read():
            duck.query(
                f"create or replace table t as from read_csv('{path}', columns = {columns})"
            )

        def run(arguments):
            subprocess.run(arguments, check=True, stdout=subprocess.DEVNULL)

        beside(f"{records} records of CSV in", lambda: run(command), read)
        beside(
            f"{records} records of CSV out",
            lambda: run([ztb, "export", file, "p", "--to", back]),
            lambda: duck.query(f"copy t to '{other}' (header)"),
        )


if __name__ == "__main__":
    main()
