"""Where Slurm cannot be started its tests say so, and have failed."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest
import slurm_cluster

HERE = Path(__file__).parent
# Runs the tests of Slurm with the programs of a folder alone.
TESTS = """
import sys
sys.path.insert(0, sys.argv[1])
import pytest, slurm_cluster
slurm_cluster.PATH = sys.argv[2]
sys.exit(pytest.main(["-q", "-p", "no:cacheprovider", sys.argv[1] + "/test_slurm.py"]))
"""


@pytest.fixture
def programs(tmp_path):
    folder = tmp_path / "programs"
    folder.mkdir()
    for name in slurm_cluster.DAEMONS:
        (folder / name).symlink_to(shutil.which(name, path=slurm_cluster.PATH))
    return folder


def run(programs):
    return subprocess.run(
        [sys.executable, "-c", TESTS, str(HERE), str(programs)],
        env={**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)},
        stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False, timeout=120,
    )  # fmt: skip


def expect_failure(programs, text):
    ended = run(programs)
    assert ended.returncode == 1
    assert text in ended.stdout
    assert " passed" not in ended.stdout and " skipped" not in ended.stdout


def test_without_its_controller(programs):
    (programs / "slurmctld").unlink()
    (programs / "munged").unlink()
    expect_failure(programs, "Slurm cannot be started here, there is no munged, slurmctld")


def test_with_a_daemon_that_ends_at_once(programs):
    (programs / "munged").unlink()
    (programs / "munged").write_text("#!/bin/sh\necho no room for a socket\nexit 1\n")
    (programs / "munged").chmod(0o755)
    expect_failure(programs, "Slurm cannot be started here, munged does not come up:")
    assert "no room for a socket" in run(programs).stdout
