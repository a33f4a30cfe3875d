"""Copies libqm_api.so.1 into the package when it is built: from QM_LIB, else from the build tree
beside this directory (../build). Without either the package looks for the library at run time."""
import os
import pathlib
import shutil

from setuptools import setup
from setuptools.command.build_py import build_py

HERE = pathlib.Path(__file__).resolve().parent


class BuildWithLibrary(build_py):
    def run(self):
        super().run()
        source = pathlib.Path(os.environ.get("QM_LIB") or HERE.parent / "build" / "libqm_api.so.1")
        if source.exists():
            target = pathlib.Path(self.build_lib) / "qm" / "libqm_api.so.1"
            shutil.copyfile(source.resolve(), target)
            print(f"copied {source} into the package")


setup(cmdclass={"build_py": BuildWithLibrary})
