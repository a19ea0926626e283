#!/usr/bin/env python3
"""Runs what README and the pages show: programs and fragments in C++ and C, Python, and transcripts of a shell.

    examples_test.py CXX CC PYTHON BUILD_FOLDER SOURCES [--without-python]

A fenced block says what it is by its language:

    cpp       with a main() a program that ends with 0; else a fragment, which is compiled as a function, or
              as it is if it has a TEST(). A comment in front of it, <!-- with: PM_Object object; -->, declares what it uses
    c         a program
    python    a script that ends without an exception
    console   (in README) lines that begin with "$ " are given to a shell one after the other, what they print is the lines behind
              them; a line "..." stands for any lines

A block "text" behind a program or script is what it prints. All run in one folder with the sample files in it.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"^(?:<!-- with: (?P<with>.*?) -->\n)?```(?P<language>\w+)[^\n]*\n(?P<text>.*?)^```$", re.M | re.S)


class Examples:
    def __init__(self, cxx, cc, python, build, sources, folder):
        self.cxx, self.cc, self.python = cxx, cc, python
        self.sources, self.folder, self.build = sources, folder, build
        lib, package = build / "lib", build / "python/src"
        self.flags = [f"-I{sources}/include", f"-L{lib}", f"-Wl,-rpath,{lib}", f"-Wl,-rpath-link,{lib}"]
        self.environment = {**os.environ, "PATH": f"{build}/bin:{os.environ['PATH']}", "PYTHONPATH": str(package),
                            "PM9_LIBRARY": f"{lib}/libpm9c.so.9", "LC_ALL": "C.UTF-8"}
        self.failures = []
        # Most of the time is that of the header.
        (folder / "pch/pm").mkdir(parents=True)
        self.expect("pm.h", self.run(cxx, "-std=c++20", "-x", "c++-header", sources / "include/pm/pm.h", "-o",
                                     "pch/pm/pm.h.gch", self.flags[0]))
        self.fragments = []
        self.includes = set()

    def run(self, *command, **options):
        return subprocess.run([str(part) for part in command], cwd=self.folder, env=self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)

    def expect(self, place, done, expected=None):
        if done.returncode != 0:
            self.failures.append(f"{place}: exit code {done.returncode}\n{done.stdout}")
        elif expected is not None and done.stdout != expected:
            self.failures.append(f"{place}: expected\n{expected}but it printed\n{done.stdout}")

    def program(self, place, text, expected, compiler, source, *flags):
        (self.folder / source).write_text(text, encoding="utf-8")
        compiled = self.run(*compiler, source, "-o", "program", *self.flags, *flags)
        self.expect(place, compiled)
        if compiled.returncode == 0:
            self.expect(place, self.run("./program"), expected)

    def cpp(self, place, text, expected, given):
        if "int main" in text:
            self.program(place, text, expected, [self.cxx, "-std=c++20", "-Ipch"], "program.cpp", "-lpm9kit", "-lpm9")
            return
        self.includes.update(re.findall(r"^#include.*\n", text, re.M))
        text = re.sub(r"^#include.*\n", "", text, flags=re.M).replace("{ ... }", "{}")
        if "TEST(" in text:
            self.fragments.append(f'#line 1 "{place}"\n{text}\n')
            return
        self.fragments.append(f'#line 1 "{place}"\n[[maybe_unused]] void f{len(self.fragments)}() {{ {given}\n{text}}}\n')

    def c(self, place, text, expected, given):
        self.program(place, text, expected, [self.cc, "-std=c11"], "program.c", "-lpm9c")

    def script(self, place, text, expected, given):
        self.expect(place, self.run(self.python, "-c", text), expected)

    def console(self, place, text, expected, given):
        """The commands share a shell's folder and nothing else."""
        for command, told in re.findall(r"^\$ (.*\n)((?:(?!\$ ).*\n)*)", text, re.M):
            printed = self.run("bash", "-c", command).stdout
            lines = [".*?" if line == "..." else re.escape(line) for line in told.rstrip("\n").split("\n")]
            if not re.fullmatch("\n".join(lines), printed.rstrip("\n"), re.S):
                self.failures.append(f"{place}: {command}expected\n{told}but it printed\n{printed}")

    def page(self, path, with_python):
        runners = {"cpp": self.cpp, "c": self.c, "python": self.script, "console": self.console}
        if path.name != "README.md":
            del runners["console"]  # the tool's own tests run those of its pages
        if not with_python:
            del runners["python"]
        text = path.read_text(encoding="utf-8")
        blocks = list(BLOCK.finditer(text))
        for at, block in enumerate(blocks):
            following = blocks[at + 1] if at + 1 < len(blocks) else None
            expected = following["text"] if following and following["language"] == "text" else None
            place = f"{path.relative_to(self.sources)}:{text.count(chr(10), 0, block.start()) + 1}"
            if block["language"] in runners:
                runners[block["language"]](place, block["text"], expected, block["with"] or "")

    def finish(self):
        first = "#include <pm/pm.h>\n"
        kit = {f"#include <pm/kit/{header.name}>\n" for header in (self.sources / "include/pm/kit").glob("*.h")}
        rest = self.includes | kit | {"#include <cstdio>\n", "#include <iostream>\n"}
        (self.folder / "fragments.cpp").write_text(
            first + "".join(sorted(rest - {first}) + self.fragments), encoding="utf-8")
        self.expect("fragments", self.run(self.cxx, "-std=c++20", "-Ipch", "-fsyntax-only", "fragments.cpp",
                                            self.flags[0]))


def main(cxx, cc, python, build, sources, *options):
    build, sources = Path(build), Path(sources)
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name).resolve() / "examples"
        shutil.copytree(sources / "examples/samples", folder)
        examples = Examples(cxx, cc, python, build, sources, folder)
        for page in (sources / "README.md", *sorted((sources / "docs").glob("*.md")), sources / "python/README.md"):
            examples.page(page, "--without-python" not in options)
        examples.finish()
        if examples.failures:
            sys.exit("\n".join(examples.failures))
        print(f"{len(examples.fragments)} fragments compile, and all else runs")


main(*sys.argv[1:])
