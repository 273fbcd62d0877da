"""What tests of the engines share: the command, its Python package, and sweeps to be solved."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).parent))

from slurm_cluster import SlurmCluster

PROJECT = Path(__file__).parents[2]
PROGRAM = str(Path(os.environ.get("ZTB_BUILD", PROJECT / "build" / "release")) / "bin" / "ztb")


class Sweep:
    """A folder in which the command runs, with the words that stand for one sweep."""

    PROGRAM = PROGRAM

    def __init__(self, folder, words, environment=None):
        self.folder = folder
        self.words = [str(word) for word in words]
        self.environment = environment

    def start(self, *more, program=PROGRAM, **options):
        return subprocess.Popen(
            [program, "sweep", *self.words, *map(str, more)],
            cwd=self.folder, env=options.pop("env", self.environment), stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **options,
        )  # fmt: skip

    def __call__(self, *more, expected=0, **options):
        """Runs it to its end: standard output and standard error."""
        process = self.start(*more, **options)
        output, errors = process.communicate(timeout=240)
        assert process.returncode == expected, output + errors
        return output, errors

    def bytes(self, file):
        return (Path(self.folder) / file).read_bytes()


@pytest.fixture(scope="session")
def slurm(tmp_path_factory):
    cluster = SlurmCluster(tmp_path_factory.mktemp("slurm"))
    yield cluster
    cluster.close()
