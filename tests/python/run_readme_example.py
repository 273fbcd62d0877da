"""Runs the Python example of a README in a folder of its own: run_readme_example.py README.md"""

import os
import re
import sys
import tempfile

with open(sys.argv[1], encoding="utf-8") as readme:
    examples = re.findall(r"```python\n(.*?)```", readme.read(), re.DOTALL)
assert len(examples) == 1, f"{len(examples)} Python examples in {sys.argv[1]}"
assert len(examples[0].splitlines()) <= 20
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    exec(compile(examples[0], "README.md", "exec"), {})
    os.chdir("/")
