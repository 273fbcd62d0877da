"""The runner of examples finds what it has to: a page passes only if all of its examples hold."""

import pathlib
import subprocess
import sys

import pytest

FOLDER = pathlib.Path(__file__).resolve().parent


def run(tmp_path, text):
    page = tmp_path / "page.md"
    page.write_text(text, encoding="utf-8")
    result = subprocess.run(
        [sys.executable, str(FOLDER / "run_examples.py"), str(page), str(tmp_path), "/", "cc", "c++"],
        capture_output=True,
        text=True,
        check=False,
    )
    return result.returncode, (result.stdout + result.stderr).replace(f"{page}:", "")


@pytest.mark.parametrize(
    "page",
    [
        "```console\n$ echo one\none\n```\n",
        "```console\n$ printf 'a\\nb\\nc\\n'\n...\nc\n```\n",
        "```console\n$ echo took 0.12 s\ntook 9.99 s\n```\n",
        "```console\n$ echo a \\\n  b\na b\n$ echo c\nc\n```\n",
        "```sh\necho x > made\n```\n```console\n$ cat made\nx\n```\n",
        "```python\nprint(6 * 7)\n```\n<!-- example: output -->\n```text\n42\n```\n",
        "```python\na = 1\n```\n<!-- example: continues -->\n```python\nassert a == 1\n```\n",
        "```python\nprint(1)\n```\n<!-- example: continues -->\n```python\nprint(2)\n```\n"
        "<!-- example: output -->\n```text\n2\n```\n",
        "<!-- example: none: the form of a line -->\n```text\nNAME = VALUE\n```\n",
        "<!-- example: fails=3 -->\n```console\n$ exit 3\n```\n",
        "<!-- example: file=a.csv -->\n```csv\nx,1\n```\n```console\n$ cat a.csv\nx,1\n```\n",
        "- a list\n\n    goes on\n",
    ],
)
def test_a_page_that_holds_passes(tmp_path, page):
    code, text = run(tmp_path, page)
    assert (code, text.count("blocks ran")) == (0, 1), text


@pytest.mark.parametrize(
    ("page", "reason"),
    [
        ("```console\n$ echo one\ntwo\n```\n", "1: the page shows\ntwo\n"),
        ("```console\n$ printf 'a\\nb\\n'\na\n```\n", "what is printed is\na\nb\n"),
        ("```console\n$ printf 'a\\nb\\n'\n...\nc\n```\n", "1: the page shows\n...\nc\n"),
        ("```console\n$ exit 3\n```\n", "1: exit code 3, 0 expected"),
        ("<!-- example: fails=1 -->\n```console\n$ true\n```\n", "2: exit code 0, 1 expected"),
        ("```sh\nfalse\ntrue\n```\n", "1: exit code 1, 0 expected"),
        ("```python\nassert 1 == 2\n```\n", "AssertionError"),
        ("```python\n>>> 1 + 1\n3\n```\n", "Expected:\n    3\nGot:\n    2"),
        ("```python\nprint(1)\n```\n<!-- example: output -->\n```text\n2\n```\n", "5: the page shows\n2"),
        ("```\nx\n```\n", "1: a block of '' says in no comment what it is"),
        ("```text\nx\n```\n", "1: a block of 'text' says in no comment what it is"),
        ("```cpp\nint x = 1;\n```\n", "1: the fragment has no main() and names no frame"),
        ("<!-- example: none: -->\n```text\nx\n```\n", "1: the comment gives no reason"),
        ("<!-- example: nun=1 -->\n```text\nx\n```\n", "1: 'nun=1' is not known"),
        ("text\n\n    code by indentation\n", "3: code by indentation; put it between fences"),
        ("```console\nno prompt\n```\n", "a console block begins with '$ '"),
        ("```sh\ntrue\n", "1: the block has no end"),
        ("<!-- example: files=*.none -->\n```sh\ntrue\n```\n", "2: the project has no *.none"),
    ],
)
def test_a_page_that_does_not_hold_fails(tmp_path, page, reason):
    code, text = run(tmp_path, page)
    assert code == 1
    assert reason in text
