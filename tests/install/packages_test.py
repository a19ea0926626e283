#!/usr/bin/env python3
"""Makes the Debian packages, unpacks them into an empty root folder and runs the tool there.

    packages_test.py CPACK BUILD_FOLDER LIBRARY_FOLDER VERSION

The system's loader is told where the root's libraries lie, as /etc/ld.so.conf tells it where they are installed; no
environment variable and no search path of the program's own leads there.
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ENVIRONMENT = {name: value for name, value in os.environ.items() if name not in ("LD_LIBRARY_PATH", "DESTDIR")}

PAGES = {"bash-completion/completions/pmtool", "zsh/vendor-completions/_pmtool", "fish/vendor_completions.d/pmtool.fish",
         *(f"man/man1/pmtool{name}.1.gz"
           for name in ("", "-look", "-change", "-compare", "-convert", "-sections", "-help"))}


def run(*command, **options):
    """What the command prints; an end other than well ends the test."""
    done = subprocess.run(list(map(str, command)), env=ENVIRONMENT, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout}")
    return done.stdout


def expect(condition, message):
    if not condition:
        sys.exit(message)


def dependencies(package):
    """The packages that it needs, with the versions told."""
    return dict(re.fullmatch(r"(\S+)(?: \((.*)\))?", text).groups()
                for text in run("dpkg-deb", "--field", package, "Depends").strip().split(", "))


def check_dependencies(packages, version):
    runtime = dependencies(packages["libpm9-9"])
    expect({"libc6", "libstdc++6", "zlib1g"} <= runtime.keys(), f"the library depends on {sorted(runtime)}")
    expect(any(re.fullmatch(r"libicu\d+", name) for name in runtime), f"the library depends on {sorted(runtime)}")
    expect(dependencies(packages["libpm9-dev"]) == {"libpm9-9": f"= {version}-1"}, "libpm9-dev and its library")
    tool = dependencies(packages["pmtool"])
    expect(tool.get("libpm9-9") == f">= {version}" and "libc6" in tool, f"the tool depends on {tool}")


def check_files(packages, folder, lib, version):
    """Each package brings what it is for; its licence and its changes with it."""
    found = {}
    for name, package in packages.items():
        run("dpkg-deb", "-x", package, folder / name)
        files = {path.relative_to(folder / name).as_posix() for path in (folder / name).rglob("*")
                 if not path.is_dir()}
        told = {f"usr/share/doc/{name}/copyright", f"usr/share/doc/{name}/changelog.Debian.gz"}
        expect(told <= files, f"{name} has no copyright or changelog")
        found[name] = files - told
    libraries = {f"usr/{lib}/lib{name}.so.{end}" for name in ("pm9", "pm9kit", "pm9c") for end in ("9", version)}
    expect(found["libpm9-9"] == libraries | {f"usr/{lib}/pm9/libpmres9.so"}, f"libpm9-9 holds {sorted(found['libpm9-9'])}")
    expect(found["pmtool"] == {"usr/bin/pmtool"} | {f"usr/share/{name}" for name in PAGES},
           f"pmtool holds {sorted(found['pmtool'])}")
    expect({"usr/include/pm/pm.h", f"usr/{lib}/libpm9.so", f"usr/{lib}/pkgconfig/pm9.pc",
            f"usr/{lib}/pkgconfig/pm9kit.pc",
            f"usr/{lib}/pkgconfig/pm9c.pc", f"usr/{lib}/cmake/pm9/pm9-config.cmake", "usr/include/pm/pm_c.h", "usr/share/doc/pm9/docs/pia.md",
            "usr/share/doc/pm9/examples/walk.cpp"} <= found["libpm9-dev"], "libpm9-dev lacks files")


def check_binaries(root, lib):
    """Stripped, and without a search path."""
    for file in (root / "usr/bin/pmtool", root / "usr" / lib / "libpm9.so.9",
                 root / "usr" / lib / "libpm9kit.so.9", root / "usr" / lib / "libpm9c.so.9",
                 root / "usr" / lib / "pm9/libpmres9.so"):
        sections = run("readelf", "--sections", "--wide", file)
        expect(".dynsym" in sections and ".symtab" not in sections and ".debug" not in sections,
               f"{file} isn't stripped")
        expect(not re.search(r"\((RUNPATH|RPATH)\)", run("readelf", "--dynamic", file)), f"{file} has a search path")


def run_tool(root, lib):
    program = root / "usr/bin/pmtool"
    loader = re.search(r"interpreter: (\S+)\]", run("readelf", "--program-headers", program))[1]
    pmtool = [loader, "--library-path", root / "usr" / lib, program]
    samples = root / "usr/share/doc/pm9/examples/samples"
    run(*pmtool, "convert", samples / "dx4200", root / "dx4200.pia")
    compared = run(*pmtool, "compare", samples / "dx4200", root / "dx4200.pia")
    expect(compared.endswith("hold equal trees.\n"), compared)
    # A message of the message library, which lies beside the library.
    bad = (samples / "office.pc2").read_bytes() + b"no line of the format\r\n"
    (root / "bad.pc2").write_bytes(bad)
    checked = subprocess.run([*map(str, pmtool), "check", str(root / "bad.pc2")], env=ENVIRONMENT, text=True,
                             capture_output=True)
    expect(checked.returncode == 1 and "(error 57)" in checked.stdout + checked.stderr, checked)


def main(cpack, build, lib, version):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name).resolve()
        run(cpack, "-G", "DEB", "-B", folder, cwd=build)
        packages = {path.name.split("_")[0]: path for path in folder.glob("*.deb")}
        expect(packages.keys() == {"libpm9-9", "libpm9-dev", "pmtool"}, f"packages: {sorted(packages)}")
        check_dependencies(packages, version)
        check_files(packages, folder, lib, version)
        root = folder / "root"
        for package in packages.values():
            run("dpkg-deb", "-x", package, root)
        check_binaries(root, lib)
        run_tool(root, lib)


main(*sys.argv[1:])
