"""Finds and loads libqm_api.so: QM_LIB when set, else beside this package (an installed copy),
else the build tree this package sits in (build*/ at the repository root), else the system's
library path."""
import ctypes
import os
import pathlib

from . import _api
from .errors import LibraryNotFound

SONAME = "libqm_api.so.1"


def candidates():
    """The places looked at, in order, when QM_LIB is not set."""
    here = pathlib.Path(__file__).resolve().parent
    found = [here / SONAME]
    repo = here.parents[1]
    builds = [repo / "build"] + sorted(p for p in repo.glob("build?*") if p.is_dir())
    found += [b / SONAME for b in builds if (b / SONAME).exists()]
    return found + [SONAME]


def load():
    """The C library with every function declared; LibraryNotFound says where it looked."""
    explicit = os.environ.get("QM_LIB")
    places = [explicit] if explicit else candidates()
    errors = []
    for place in places:
        if isinstance(place, pathlib.Path) and not place.exists():
            errors.append(f"{place}: no such file")
            continue
        try:
            return _api.bind(ctypes.CDLL(str(place)))
        except OSError as e:
            errors.append(f"{place}: {e}")
    raise LibraryNotFound("libqm_api.so not found; build it (cmake --build build), install it, or set QM_LIB "
                          "to its path. Tried:\n  " + "\n  ".join(errors))
