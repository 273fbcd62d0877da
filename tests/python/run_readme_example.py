"""Runs the Python examples of a README in a folder of their own: run_readme_example.py README.md"""

import os
import re
import sys
import tempfile

with open(sys.argv[1], encoding="utf-8") as readme:
    examples = re.findall(r"```python\n(.*?)```", readme.read(), re.DOTALL)
assert len(examples) == 2, f"{len(examples)} Python examples in {sys.argv[1]}"
assert all(len(example.splitlines()) <= 20 for example in examples)
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for example in examples:
        exec(compile(example, "README.md", "exec"), {})
    os.chdir("/")
