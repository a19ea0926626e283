#!/usr/bin/env python3
"""Makes a wheel of the package with the shared libraries in it. Needs no network.

    make_wheel.py CMAKE BUILD_FOLDER LIBRARY_FOLDER RESULT_FOLDER

BUILD_FOLDER is the project's, with the target pm9_python built; LIBRARY_FOLDER is where libraries lie in a prefix.
"""

import shutil
import subprocess
import sys
import tempfile
from pathlib import Path


def run(*command):
    done = subprocess.run(list(map(str, command)), text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout}")


def main(cmake, build, library_folder, result):
    with tempfile.TemporaryDirectory() as name:
        prefix, package = Path(name) / "prefix", Path(name) / "package"
        run(cmake, "--install", build, "--prefix", prefix, "--component", "runtime", "--strip")
        shutil.copytree(Path(build) / "python", package, ignore=shutil.ignore_patterns("__pycache__"))
        # A wheel has no links: each library stands under the one name by which it is looked for.
        libraries = package / "src/pm9/lib"
        for library in (prefix / library_folder).glob("libpm9*.so.9"):
            libraries.mkdir(exist_ok=True)
            shutil.copy(library, libraries / library.name)
        shutil.copytree(prefix / library_folder / "pm9", libraries / "pm9")
        # hatchling names a package that only installs for development need, and that Debian doesn't have.
        run(sys.executable, "-m", "build", "--no-isolation", "--skip-dependency-check", "--wheel", "--outdir", result,
            package)


main(*sys.argv[1:])
