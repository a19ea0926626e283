"""Packs the build for Windows, unpacks that in another folder, and uses it from there.

zip_test.py CMAKE CPACK TOOLCHAIN BUILD_FOLDER RUN_IN_WINE
"""

import os
import shutil
import subprocess
import sys
import tempfile
import zipfile
from pathlib import Path

from user_project import TOLD, write_project

CMAKE, CPACK, TOOLCHAIN, BUILD, WINE = sys.argv[1:]
LIBRARIES = ("pm9", "pm9kit", "pm9c")
RUNTIME = {"libgcc_s_seh-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll"}


def run(*command, **environment):
    done = subprocess.run(list(map(str, command)), env={**os.environ, **environment}, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False)
    text = done.stdout.decode(errors="replace")
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}\n{text}")
    return text


def run_windows(program, *arguments):
    """With nothing to find but what lies beside the program."""
    return run(WINE, BUILD, program, *arguments, PM_WINE_PATH="")


def expect(condition, message):
    if not condition:
        sys.exit(message)


with tempfile.TemporaryDirectory() as name:
    folder = Path(name)
    run(CPACK, "-G", "ZIP", "--config", f"{BUILD}/CPackConfig.cmake", "-B", folder / "packed")
    (archive,) = (folder / "packed").glob("*.zip")
    zipfile.ZipFile(archive).extractall(folder / "un packed")
    (root,) = (folder / "un packed").iterdir()
    held = {path.relative_to(root).as_posix() for path in root.rglob("*") if path.is_file()}
    wanted = {"bin/pmtool.exe", "bin/pm9/pmres9.dll", *(f"bin/{name}.dll" for name in LIBRARIES),
              *(f"bin/{dll}" for dll in RUNTIME), *(f"lib/lib{name}.dll.a" for name in LIBRARIES),
              "lib/cmake/pm9/pm9-config.cmake", "lib/cmake/pm9/pm9-targets.cmake",
              "include/pm/pm.h", "include/pm/pm_c.h", "include/pm/kit/difference.h",
              "share/doc/pm9/README.md", "share/doc/pm9/examples/samples/plotter.pia"}
    expect(wanted <= held, f"missing: {sorted(wanted - held)}")
    binaries = {path for path in held if path.startswith("bin/")}
    expect(binaries == {path for path in wanted if path.startswith("bin/")}, f"in bin: {sorted(binaries)}")

    tool, samples = root / "bin/pmtool.exe", root / "share/doc/pm9/examples/samples"
    copies = run_windows(tool, "get", samples / "plotter.pia", "\\media\\copies")
    expect(copies == "1\n", f"pmtool get: {copies}")
    converted = folder / "plotter \N{LATIN SMALL LETTER A WITH DIAERESIS}\N{CYRILLIC SMALL LETTER ZHE}.doc"
    run_windows(tool, "convert", samples / "plotter.pia", converted, "--lossy")
    expect(converted.exists(), "pmtool didn't write a file of that name")

    # Programs of somebody else's, built against the unpacked files.
    projects = {"walk": root / "share/doc/pm9/examples", "in_c with_kit": folder / "user"}
    write_project(folder / "user")
    for programs, sources in projects.items():
        build = folder / "build" / sources.name
        run(CMAKE, "-S", sources, "-B", build, "-G", "Ninja", f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}",
            f"-Dpm9_DIR={root}/lib/cmake/pm9", "-DCMAKE_BUILD_TYPE=Debug")
        run(CMAKE, "--build", build, "--target", *programs.split())
        for program in programs.split():
            shutil.copy(build / f"{program}.exe", root / "bin")
    shown = run_windows(root / "bin/walk.exe", samples / "plotter.pia")
    expect("copies = 1" in shown, f"walk: {shown}")
    for program, expected in TOLD.items():
        told = run_windows(root / f"bin/{program}.exe").replace("\r\n", "\n")
        expect(told == expected, f"{program} told {told}")
