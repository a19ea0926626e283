#!/usr/bin/env python3
"""Installs the build into an empty folder, moves that, and builds the examples against it.

    install_test.py CMAKE COMPILER C_COMPILER PKG_CONFIG BUILD_FOLDER LIBRARY_FOLDER VERSION

LIBRARY_FOLDER is where libraries lie in the prefix, such as lib.
"""

import os
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

from user_project import TOLD, write_project

# The environment of someone who has only the prefix.
ENVIRONMENT = {name: value for name, value in os.environ.items()
               if name not in ("LD_LIBRARY_PATH", "CMAKE_PREFIX_PATH", "PKG_CONFIG_PATH", "DESTDIR")}

# What the tool makes of its own help.
PAGES = {"share/bash-completion/completions/pmtool", "share/zsh/vendor-completions/_pmtool",
         "share/fish/vendor_completions.d/pmtool.fish",
         *(f"share/man/man1/pmtool{name}.1.gz"
           for name in ("", "-look", "-change", "-compare", "-convert", "-sections", "-help"))}


LIBRARIES = ("pm9", "pm9kit", "pm9c")

def run(*command, **environment):
    """What the command prints; an end other than well ends the test."""
    done = subprocess.run(list(map(str, command)), env={**ENVIRONMENT, **environment}, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout}")
    return done.stdout


def expect(condition, message):
    if not condition:
        sys.exit(message)


def dynamic(file, entry):
    """The values of an entry of the dynamic section, such as NEEDED."""
    return re.findall(rf"\({entry}\)[^\[]*\[([^\]]*)\]", run("readelf", "--dynamic", "--wide", file))


def files_of(prefix):
    return {path.relative_to(prefix).as_posix() for path in prefix.rglob("*") if not path.is_dir()}


def check_layout(shown, lib, version):
    """Everything is where it belongs, and nothing else is there."""
    headers = {name for name in shown if name.startswith("include/pm/")}
    documents = {name for name in shown if name.startswith("share/doc/pm9/")}
    expect("include/pm/pm.h" in headers, "the headers are missing")
    expect({"share/doc/pm9/README.md", "share/doc/pm9/docs/pia.md", "share/doc/pm9/examples/walk.cpp",
            "share/doc/pm9/examples/samples/plotter.pia"} <= documents, "documents are missing")
    rest = shown - headers - documents
    build_type = {name for name in rest if re.fullmatch(rf"{lib}/cmake/pm9/pm9-targets-\w+\.cmake", name)}
    expect(len(build_type) == 1, f"targets of one build type: {build_type}")
    libraries = {f"{lib}/lib{name}.so{end}" for name in LIBRARIES for end in ("", ".9", f".{version}")}
    expected = {"bin/pmtool", *libraries, f"{lib}/pm9/libpmres9.so", *(f"{lib}/pkgconfig/{name}.pc" for name in LIBRARIES),
                *build_type, *PAGES,
                *(f"{lib}/cmake/pm9/pm9-{name}.cmake" for name in ("config", "config-version", "targets"))}
    expect(rest == expected, f"unexpected {sorted(rest - expected)}, missing {sorted(expected - rest)}")


def check_components(cmake, build, folder, lib, version):
    """What the components bring, each alone; no file is brought by two."""
    whole, found = set(), {}
    for component in ("runtime", "development", "tools", "doc"):
        prefix = folder / component
        run(cmake, "--install", build, "--prefix", prefix, "--component", component)
        found[component] = files_of(prefix)
        expect(not whole & found[component], f"{component} brings files of others")
        whole |= found[component]
    libraries = {f"{lib}/lib{name}.so.{end}" for name in LIBRARIES for end in ("9", version)}
    expect(found["runtime"] == libraries | {f"{lib}/pm9/libpmres9.so"},
           f"runtime is {sorted(found['runtime'])}")
    expect(found["tools"] == {"bin/pmtool"} | PAGES, f"tools is {sorted(found['tools'])}")
    return whole


def check_search_path(cmake, build, folder, prefix, lib):
    """The tool finds the library wherever the prefix is; below /usr the system does."""
    expect(dynamic(prefix / "bin/pmtool", "RUNPATH") == [f"$ORIGIN/../{lib}"], "the tool's way to the library")
    expect(dynamic(prefix / lib / "libpm9.so.9", "RUNPATH") == [], "the library has a RUNPATH")
    expect(dynamic(prefix / lib / "libpm9.so.9", "SONAME") == ["libpm9.so.9"], "the library's name")
    run(cmake, "--install", build, "--prefix", "/usr", DESTDIR=str(folder / "staged"))
    staged = folder / "staged/usr/bin/pmtool"
    expect(dynamic(staged, "RUNPATH") == [] and "libpm9.so.9" in dynamic(staged, "NEEDED"), "RUNPATH below /usr")


def build_with_find_package(cmake, compiler, folder, prefix):
    """The installed examples are a project, with their tests."""
    build = folder / "examples"
    run(cmake, "-S", prefix / "share/doc/pm9/examples", "-B", build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF")
    run(cmake, "--build", build)
    passed = run(Path(cmake).with_name("ctest"), "--test-dir", build, "--no-tests=error", "--output-on-failure")
    expect("100% tests passed, 0 tests failed out of 4" in passed, passed)


def build_with_pkg_config(compiler, pkg_config, folder, prefix, lib, version):
    """A program from the flags alone; it prints the text of an error number, for which it needs the messages."""
    path = {"PKG_CONFIG_PATH": str(prefix / lib / "pkgconfig")}
    expect(run(pkg_config, "--modversion", "pm9", **path) == f"{version}\n", "the version of pm9.pc")
    flags = shlex.split(run(pkg_config, "--cflags", "--libs", "pm9", **path))
    examples = prefix / "share/doc/pm9/examples"
    arguments = {"first_tree": [folder / "first_tree.pia"], "walk": [examples / "samples/plotter.pia"],
                 "bad_lines": [], "classes": []}
    told = {}
    for name, values in arguments.items():
        program = folder / name
        run(compiler, "-std=c++20", examples / f"{name}.cpp", "-o", program, *flags, f"-Wl,-rpath,{prefix / lib}")
        told[name] = run(program, *values)
    expect("57: The line isn't valid" in told["bad_lines"], told["bad_lines"])
    expect("copies = 1\n" in told["walk"], told["walk"])


def build_in_c_and_with_the_kit(cmake, c_compiler, compiler, pkg_config, folder, prefix, lib):
    """Both by CMake and by the flags alone."""
    sources = folder / "user"
    write_project(sources)
    run(cmake, "-S", sources, "-B", sources / "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_C_COMPILER={c_compiler}", "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF")
    run(cmake, "--build", sources / "build")
    path = {"PKG_CONFIG_PATH": str(prefix / lib / "pkgconfig")}
    for name, library, build in (("in_c", "pm9c", [c_compiler, "-std=c11", sources / "program.c"]),
                                 ("with_kit", "pm9kit", [compiler, "-std=c++20", sources / "program.cpp"])):
        flags = shlex.split(run(pkg_config, "--cflags", "--libs", library, **path))
        run(*build, "-o", sources / name, *flags, f"-Wl,-rpath,{prefix / lib}", f"-Wl,-rpath-link,{prefix / lib}")
        for program in (sources / name, sources / "build" / name):
            told = run(program)
            expect(told == TOLD[name], f"{program} told {told}")


def main(cmake, compiler, c_compiler, pkg_config, build, lib, version):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name).resolve()
        run(cmake, "--install", build, "--prefix", folder / "first")
        prefix = (folder / "first").rename(folder / "moved here")
        shown = files_of(prefix)
        check_layout(shown, lib, version)
        expect(check_components(cmake, build, folder, lib, version) == shown, "the components don't make the whole")
        check_search_path(cmake, build, folder, prefix, lib)
        sample = prefix / "share/doc/pm9/examples/samples/plotter.pia"
        expect(run(prefix / "bin/pmtool", "get", sample, r"\media\copies") == "1\n", "the moved tool")
        build_with_find_package(cmake, compiler, folder, prefix)
        build_with_pkg_config(compiler, pkg_config, folder, prefix, lib, version)
        build_in_c_and_with_the_kit(cmake, c_compiler, compiler, pkg_config, folder, prefix, lib)


main(*sys.argv[1:])
