"""The README's install: pip puts the package and a copy of the library into a virtual
environment, offline, and it loads from there with QM_LIB unset."""
import os
import shutil
import subprocess
import sys

import pytest
from conftest import REPO


def test_pip_install_carries_the_library(tmp_path):
    if subprocess.run([sys.executable, "-c", "import ensurepip, setuptools"]).returncode != 0:
        pytest.skip("python3-venv or python3-setuptools is missing")
    source = shutil.copytree(REPO / "python", tmp_path / "python", ignore=shutil.ignore_patterns("build", "*.egg-info"))
    venv = tmp_path / "venv"
    subprocess.run([sys.executable, "-m", "venv", "--system-site-packages", str(venv)], check=True)
    subprocess.run([str(venv / "bin/pip"), "install", "-q", "--no-index", "--no-build-isolation", str(source)],
                   check=True, env=dict(os.environ, QM_LIB=os.environ["QM_LIB"]))
    env = {k: v for k, v in os.environ.items() if k not in ("QM_LIB", "PYTHONPATH")}
    run = subprocess.run([str(venv / "bin/python"), "-c",
                          "import qm; lib = qm.Library(); print(lib.version, lib.c._name); lib.close()"],
                         capture_output=True, text=True, cwd=tmp_path, env=env, check=True)
    version, path = run.stdout.split()
    assert version == "1.1.0" and path.startswith(str(venv)) and path.endswith("qm/libqm_api.so.1")
