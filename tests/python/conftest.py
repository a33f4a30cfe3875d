"""Fixtures of the Python package's tests: the package from the source tree, the library and the
simulator from the build tree (QM_LIB, QM_SIM; ctest sets both), a simulator per test."""
import contextlib
import os
import pathlib
import subprocess
import sys
import time

import pytest

REPO = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(REPO / "python"), str(REPO / "scripts")]
os.environ.setdefault("QM_LIB", str(REPO / "build/libqm_api.so.1"))
SIM = os.environ.get("QM_SIM", str(REPO / "build/sim/qm_sim"))

import qm  # noqa: E402


@contextlib.contextmanager
def running_simulator(tmp_path, *options):
    """A fresh simulated QM65-B on a free port, ten times faster than real; yields the port."""
    port_file = tmp_path / "port"
    sim = subprocess.Popen([SIM, "--port", "0", "--push-port", "0", "--port-file", str(port_file),
                            "--speed-factor", "10", *options], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        for _ in range(200):
            if port_file.exists() and port_file.read_text().strip():
                break
            assert sim.poll() is None, "qm_sim exited"
            time.sleep(0.02)
        yield int(port_file.read_text())
    finally:
        sim.terminate()
        sim.wait(10)


@pytest.fixture
def simulator(tmp_path):
    with running_simulator(tmp_path) as port:
        yield port


@pytest.fixture
def lib():
    with qm.Library(qm.ThreadMode.TRIPLE, log_level=qm.LogLevel.ERROR) as lib:
        yield lib


@pytest.fixture
def arm(lib, simulator):
    with lib.connect("127.0.0.1", simulator) as arm:
        yield arm


def package_env(**extra):
    """The environment of a child Python that imports the package from the source tree."""
    return dict(os.environ, PYTHONPATH=str(REPO / "python"), **extra)
