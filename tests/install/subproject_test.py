#!/usr/bin/env python3
"""Takes the sources into another project, by add_subdirectory and by FetchContent from a folder.

    subproject_test.py CMAKE COMPILER LAUNCHER SOURCES   LAUNCHER: such as ccache; may be empty

Both are configured; one is built, without optimisation, since it is the library itself that is compiled.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path


def run(*command):
    done = subprocess.run(list(map(str, command)), text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout}")
    return done.stdout


def configure(cmake, compiler, launcher, sources, build, *options):
    """The targets of the project by what CMake tells of them."""
    query = build / ".cmake/api/v1/query"
    query.mkdir(parents=True)
    (query / "codemodel-v2").touch()
    run(cmake, "-S", Path(sources) / "tests/install/subproject", "-B", build, "-G", "Ninja",
        f"-DPM9_SOURCES={sources}", f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_CXX_COMPILER_LAUNCHER={launcher}",
        "-DCMAKE_CXX_FLAGS=-O0", *options)
    model = json.loads(next((build / ".cmake/api/v1/reply").glob("codemodel-v2-*.json")).read_text())
    return {target["name"] for target in model["configurations"][0]["targets"]}


def main(cmake, compiler, launcher, sources):
    expected = {"user", "pm9", "pm9_objects", "pm9_static", "pmres9"}
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name).resolve()
        for way, options in (("fetched", ["-DBY_FETCH=ON"]), ("added", [])):
            targets = configure(cmake, compiler, launcher, sources, folder / way, *options)
            if targets != expected:
                sys.exit(f"{way}: the targets are {sorted(targets)}")
        install = run(cmake, "--install", folder / "added", "--prefix", folder / "prefix")
        if (folder / "prefix").exists():
            sys.exit(f"the user's project installs the library:\n{install}")
        run(cmake, "--build", folder / "added", "--target", "user")
        told = run(folder / "added/user")
        if told != "2 The line isn't valid\n":
            sys.exit(f"the user's program told {told!r}")


main(*sys.argv[1:])
