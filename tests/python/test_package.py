"""The package as a whole: its version, its modules, its types."""

import ast
import pathlib
import subprocess
import sys

import pytest

import ztb

FOLDER = pathlib.Path(ztb.__file__).parent
PROJECT = pathlib.Path(__file__).parents[2]


def imports_of(path):
    """The modules of the package that a module imports, wherever in it."""
    names = set()
    for node in ast.walk(ast.parse(path.read_text())):
        if isinstance(node, ast.ImportFrom) and node.level == 1:
            names |= {node.module} if node.module else {alias.name for alias in node.names}
        elif isinstance(node, ast.ImportFrom) and (node.module or "").split(".")[0] == "ztb":
            names.add(node.module.partition(".")[2] or "__init__")
        elif isinstance(node, ast.Import):
            names |= {
                alias.name.partition(".")[2] or "__init__"
                for alias in node.names
                if alias.name.split(".")[0] == "ztb"
            }
    return names & {path.stem for path in FOLDER.glob("*.py")}


def test_no_module_imports_itself_through_others():
    imports = {path.stem: imports_of(path) for path in FOLDER.glob("*.py")}
    assert "symbol" in imports["numeric"] and "home" in imports["symbol"]
    left = dict(imports)
    while leaves := [name for name, needs in left.items() if not needs & left.keys()]:
        for name in leaves:
            del left[name]
    assert left == {}


# What other packages do is done once for all.
EACH_FIRST = """
import importlib, os, sys
import numpy, pandas
for name in sys.argv[1:]:
    child = os.fork()
    if not child:
        importlib.import_module(name)
        os._exit(0)
    if os.waitpid(child, 0)[1]:
        sys.exit(f"{name} cannot be imported first")
"""


def test_each_module_can_be_imported_first():
    names = [f"ztb.{path.stem}".removesuffix(".__init__") for path in FOLDER.glob("*.py")]
    said = subprocess.run(
        [sys.executable, "-c", EACH_FIRST, *names], text=True, stderr=subprocess.PIPE
    )
    assert said.returncode == 0, said.stderr


def test_the_version_is_that_of_the_project():
    tomllib = pytest.importorskip("tomllib")
    project = tomllib.loads((PROJECT / "pyproject.toml").read_text())["project"]
    assert ztb.__version__ == project["version"]
    assert f"project(ztb VERSION {ztb.__version__} " in (PROJECT / "CMakeLists.txt").read_text()


def test_every_public_name_is_there():
    assert sorted(ztb.__all__) == ztb.__all__
    assert all(hasattr(ztb, name) for name in ztb.__all__)
    assert (FOLDER / "py.typed").exists()


# What a program may say, and what it may not.
GOOD = """
from typing import Tuple
import ztb

with ztb.open("a.rxf") as db:
    food = db.add_set("food")
    p = db.add_parameter("p", food)
    x = db.add_variable("x", ["food", food, None])
    food.extend(["Milk", 7])
    number: float = p["Milk"]
    values: ztb.Values = x["a", "b", "c"]
    keys: Tuple[str, ...] = next(iter(p))
    p["Milk"] = number + values.level
    part: ztb.Selection[float] = p[["Milk", "Tofu"]]
    for key, value in p.items():
        number += value
    for name, symbol in db.items():
        print(name.upper(), symbol.text, db.get("x"), symbol.database["p"])
    db.write("b.rxf", only=[p, "x"], rename={"p": "q"})
"""
BAD = """
import ztb

db = ztb.Database(3)
p = db.add_parameter("p", 3)
text: str = p["a"]
p.to_numpy().nothing
"""


def mypy(*arguments, folder):
    command = ["mypy", "--strict", f"--python-executable={sys.executable}"]
    command.append(f"--config-file={PROJECT / 'pyproject.toml'}")
    said = subprocess.run(
        [*command, f"--cache-dir={folder}/cache", *arguments],
        cwd=folder, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
    )
    return said.returncode, said.stdout


def test_the_package_is_typed_throughout(tmp_path):
    sources = sorted(map(str, (PROJECT / "bindings/python/ztb").glob("*.py")))
    code, said = mypy(*sources, folder=tmp_path)
    assert code == 0, said


def test_programs_that_use_the_package_are_checked(tmp_path, monkeypatch):
    monkeypatch.setenv("MYPYPATH", str(FOLDER.parent))
    (tmp_path / "good.py").write_text(GOOD)
    (tmp_path / "bad.py").write_text(BAD)
    code, said = mypy("--follow-imports=silent", "good.py", "bad.py", folder=tmp_path)
    assert code == 1
    wrong = [line.split(": error:")[0] for line in said.splitlines() if ": error:" in line]
    assert wrong == [f"bad.py:{line}" for line in (4, 5, 6, 7)], said
