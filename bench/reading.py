"""Reading model files beside Clp's program: seconds of the processor and memory of each.

    reading.py ZTB

Both programs read the file and end: `clp FILE -quit`, and `ztb model FILE`, which also counts families and ranges. The
files are made here, the same ones each time.
"""

import gzip
import os
import random
import subprocess
import sys
import tempfile

ENTRIES = 3  # of a column, beside its cost


def write_problem(path, columns, name):
    """An MPS file of this many columns, `name` telling what they are called."""
    rows = columns * 2 // 7
    rng = random.Random(columns)
    with open(path, "w", encoding="ascii") as out:
        out.write("NAME          READING\nROWS\n N  COST\n")
        for i in range(rows):
            out.write(f" {'LGE'[i % 3]}  R{i:07d}\n")
        out.write("COLUMNS\n")
        for j in range(columns):
            column = name(j)
            entries = [("COST", round(rng.uniform(1, 9), 2))]
            chosen = rng.sample(range(rows), ENTRIES)
            entries += [(f"R{i:07d}", round(rng.uniform(-5, 5), 3)) for i in chosen]
            for (row1, value1), (row2, value2) in zip(entries[::2], entries[1::2]):
                out.write(f"    {column}  {row1:<8}  {value1:<12}   {row2:<8}  {value2:<12}\n")
        out.write("RHS\n")
        for i in range(rows):
            out.write(f"    RHS       R{i:07d}  {i % 97 + 1:<12}\n")
        out.write("BOUNDS\n")
        for j in range(0, columns, 3):
            out.write(f" UP BND       {name(j)}  {j % 89 + 1:<12}\n")
        out.write("ENDATA\n")


def measured(command):
    """Processor seconds and largest memory in MB of a program that has to end well."""
    with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as process:
        errors = process.stderr.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)} failed: {errors.decode()}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def best(command, runs):
    """The least seconds of some runs, and the memory of that one."""
    return min(measured(command) for _ in range(runs))


def main():
    (ztb,) = sys.argv[1:]
    print("Reading                    MB   seconds                  memory in MB")
    print("                              ztb    clp  ratio       ztb    clp  ratio")
    with tempfile.TemporaryDirectory() as folder:
        for columns, what, name in [
            (70_000, "70,000 columns", lambda j: f"C{j:07d}"),
            (700_000, "700,000 columns", lambda j: f"C{j:07d}"),
            (700_000, "700,000 with labels", lambda j: f"x[p{j // 1000},q{j % 1000}]"),
        ]:
            path = os.path.join(folder, "problem.mps")
            write_problem(path, columns, name)
            packed = path + ".gz"
            with open(path, "rb") as plain, gzip.open(packed, "wb", 6) as out:
                out.writelines(plain)
            for file, note in [(path, ""), (packed, ", packed")]:
                runs = 5 if columns < 100_000 else 3
                own, own_memory = best([ztb, "model", file], runs)
                clp, clp_memory = best(["clp", file, "-quit"], runs)
                size = os.path.getsize(file) / 1e6
                print(
                    f"{what + note:<26}{size:4.0f}"
                    f"{own:6.2f} {clp:6.2f} {own / clp:6.2f}"
                    f"{own_memory:10.0f} {clp_memory:6.0f} {own_memory / clp_memory:6.2f}",
                    flush=True,
                )


if __name__ == "__main__":
    main()
