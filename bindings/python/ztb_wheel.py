"""Makes the wheel of the Python package: the package together with the libraries that it needs.

``python3 bindings/python/ztb_wheel.py BUILD_FOLDER TARGET_FOLDER`` makes it from a build tree;
``pip wheel`` and ``pip install`` on the project build the release preset first. What stands in the
wheel is what CMake installs as its component ``wheel``. A wheel is for the Python and the system
that it was built on: libraries of the system (zstd, the solvers) are not in it.
"""

from __future__ import annotations

import base64
import hashlib
import os
import pathlib
import subprocess
import sys
import sysconfig
import tempfile
import tomllib
import zipfile
from typing import Any, Dict, List, Optional

PROJECT = pathlib.Path(__file__).resolve().parents[2]

#: The oldest time that a zip file can tell: the same files make the same wheel.
_TIME = (1980, 1, 1, 0, 0, 0)


def build_wheel(
    wheel_directory: str,
    config_settings: Optional[Dict[str, Any]] = None,
    metadata_directory: Optional[str] = None,
) -> str:
    """Builds the libraries and makes the wheel; gives its file name. For pip."""
    build = ["cmake", "--build", "--preset", "release", "--target", "ztb_wheel_parts"]
    for command in (["cmake", "--preset", "release"], build):
        subprocess.run(command, cwd=PROJECT, check=True)
    return pack(PROJECT / "build" / "release", pathlib.Path(wheel_directory))


def pack(build: pathlib.Path, target: pathlib.Path) -> str:
    """Makes the wheel from a build tree; gives its file name."""
    project = tomllib.loads((PROJECT / "pyproject.toml").read_text())["project"]
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    tag = f"{python}-{python}-{sysconfig.get_platform().replace('-', '_').replace('.', '_')}"
    information = f"{project['name']}-{project['version']}.dist-info"
    with tempfile.TemporaryDirectory() as folder:
        install = ["cmake", "--install", str(build), "--component", "wheel", "--strip"]
        subprocess.run([*install, "--prefix", folder], check=True, stdout=subprocess.DEVNULL)
        root = pathlib.Path(folder)
        files = {
            str(path.relative_to(root)): path.read_bytes()
            for path in sorted(root.rglob("*"))
            if path.is_file()
        }
    files[f"{information}/METADATA"] = _metadata(project)
    files[f"{information}/WHEEL"] = (
        f"Wheel-Version: 1.0\nGenerator: ztb_wheel\nRoot-Is-Purelib: false\nTag: {tag}\n".encode()
    )
    files[f"{information}/LICENSE"] = (PROJECT / "LICENSE").read_bytes()
    record = f"{information}/RECORD"
    files[record] = _record(files, record)
    name = f"{project['name']}-{project['version']}-{tag}.whl"
    target.mkdir(parents=True, exist_ok=True)
    _write(target / name, files)
    return name


def _metadata(project: Dict[str, Any]) -> bytes:
    lines = [
        "Metadata-Version: 2.1",
        f"Name: {project['name']}",
        f"Version: {project['version']}",
        f"Summary: {project['description']}",
        f"License: {project['license']['text']}",
        "License-File: LICENSE",
        f"Requires-Python: {project['requires-python']}",
        *(f"Requires-Dist: {name}" for name in project["dependencies"]),
    ]
    for extra, names in project["optional-dependencies"].items():
        lines.append(f"Provides-Extra: {extra}")
        lines.extend(f'Requires-Dist: {name}; extra == "{extra}"' for name in names)
    lines.append("Description-Content-Type: text/markdown")
    text: str = "\n".join(lines) + "\n\n" + (PROJECT / project["readme"]).read_text()
    return text.encode()


def _record(files: Dict[str, bytes], record: str) -> bytes:
    """The list of all files with their checksums; its own line has none."""
    lines: List[str] = []
    for name, content in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        lines.append(f"{name},sha256={digest},{len(content)}")
    return "".join(line + "\n" for line in [*lines, f"{record},,"]).encode()


def _write(path: pathlib.Path, files: Dict[str, bytes]) -> None:
    """Publishes the wheel as a whole one."""
    unfinished = path.with_name(f".{path.name}.{os.getpid()}")
    try:
        with zipfile.ZipFile(unfinished, "w", zipfile.ZIP_DEFLATED) as archive:
            for name, content in files.items():
                entry = zipfile.ZipInfo(name, _TIME)
                entry.compress_type = zipfile.ZIP_DEFLATED
                entry.external_attr = (0o100755 if name.endswith(".so") else 0o100644) << 16
                archive.writestr(entry, content)
        unfinished.replace(path)
    finally:
        unfinished.unlink(missing_ok=True)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: ztb_wheel.py BUILD_FOLDER TARGET_FOLDER")
    print(pack(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])))
