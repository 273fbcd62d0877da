"""Holds the table of docs/licences.md against the dynamic sections of the built files.

    licences_test.py PAGE BUILD_FOLDER [joined]

What a file links besides the runtime of C and C++ has to stand in its row, and nothing else; each
library, command and extension module has to have a row. In a joined build, whose sources are compiled
in groups, the viewer's library also links what others of such a group need of libztbformats.so.
"""

import pathlib
import re
import subprocess
import sys

RUNTIME = re.compile(r"lib(stdc\+\+|m|gcc_s|c|pthread|dl)\.so\.\d+$|ld-linux")


def table(page):
    """Name of the file: the libraries of the second column."""
    rows = {}
    section = page.split("## What each file links", 1)[1].split("\n## ", 1)[0]
    for line in section.splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if line.startswith("| `"):
            rows[re.match(r"`([^`]*)`", cells[0]).group(1)] = set(re.findall(r"`([^`]*)`", cells[1]))
    return rows


def needed(path):
    text = subprocess.run(["readelf", "-d", path], capture_output=True, text=True, check=True).stdout
    names = re.findall(r"\(NEEDED\)[^[]*\[([^\]]*)\]", text)
    assert names, f"{path}: no dynamic section"
    return {name for name in names if not RUNTIME.match(name)}


def built(folder):
    files = {path.name: path for path in (folder / "lib").glob("lib*.so")}
    files = {name: path for name, path in files.items() if not name.startswith("libztb_")}  # tests'
    files["ztb"] = folder / "bin" / "ztb"
    for path in (folder / "python" / "ztb").glob("_native*.so"):
        files["_native"] = path
    return files


def main():
    page, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    rows = table(page.read_text(encoding="utf-8"))
    assert len(rows) >= 8, rows
    joined = sys.argv[3:] == ["joined"]
    also = {"libztbview.so": rows["libztbformats.so"]} if joined else {}
    wrong = 0
    for name, path in sorted(built(folder).items()):
        if name not in rows:
            print(f"{page}: no row for {name}, which links {sorted(needed(path))}")
            wrong += 1
        elif needed(path) - also.get(name, set()) != rows[name] - also.get(name, set()):
            print(f"{page}: {name}: the page says {sorted(rows[name])}, it links {sorted(needed(path))}")
            wrong += 1
    for name in sorted(rows.keys() - built(folder).keys()):
        print(f"{page}: {name} has a row and was not built")
        wrong += 1
    sys.exit(wrong > 0)


if __name__ == "__main__":
    main()
