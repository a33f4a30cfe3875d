"""The ctypes layer is what the headers declare: regenerated output equals the checked-in one,
and every record has the C compiler's size and field offsets."""
import ctypes
import os
import shutil
import subprocess

import generate_python_api
import header_reader
from conftest import REPO

from qm import _api

HEADERS = REPO / "src/Application/public_headers"


def test_checked_in_layer_matches_the_headers():
    assert generate_python_api.main(["--check", str(HEADERS)]) == 0


def test_check_fails_when_a_header_changed(tmp_path):
    for header in HEADERS.glob("*.h"):
        shutil.copy(header, tmp_path)
    define = tmp_path / "qm_define.h"
    define.write_text(define.read_text().replace("int err[24];", "int err[25];"))
    assert generate_python_api.main(["--check", str(tmp_path)]) == 1


def test_every_record_has_the_c_layout(tmp_path):
    probe = tmp_path / "layout.c"
    probe.write_text(generate_python_api.layout_probe(header_reader.read_headers(HEADERS)))
    compiler = os.environ.get("QM_CC", "cc")
    subprocess.run([compiler, "-std=c99", f"-I{HEADERS}", str(probe), "-o", str(tmp_path / "layout")], check=True)
    lines = subprocess.run([str(tmp_path / "layout")], capture_output=True, text=True, check=True).stdout.split("\n")
    mismatches, checked = [], 0
    for line in filter(None, lines):
        name, value = line.split()
        record, _, field = name.partition(".")
        kind = getattr(_api, record)
        python = getattr(kind, field).offset if field else ctypes.sizeof(kind)
        checked += 1
        if python != int(value):
            mismatches.append(f"{name}: C {value}, Python {python}")
    assert not mismatches
    assert checked > 400


def test_records_convert_to_dataclasses_and_back():
    frame = _api.Frame("tool_a", _api.Pose(_api.Position(0.1, 0.2, 0.3)), 1.5, 0.0, 0.0, 0.05)
    struct = frame.as_struct()
    assert struct.frame_name == b"tool_a" and abs(struct.pose.position.y - 0.2) < 1e-7
    assert struct.as_record().frame_name == "tool_a"
    # Texts are cut to leave the record's terminating zero.
    assert _api.Frame(frame_name="x" * 20).as_struct().frame_name == b"x" * 11
