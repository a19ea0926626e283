"""Runs pmtool over every sample and holds what it writes to a kept list: the same bytes on every system.

Usage: kept_results_test.py [--write] PMTOOL SAMPLES LIST
--write makes the list anew, after a change that is meant.

A line of the list: size and SHA-256 of a result, and what it is: a tree as JSON, or a sample converted to a format;
or why it can't be converted.
"""

import hashlib
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

# How a plotter of a CFG file is told, which holds several.
SECTIONS = {"three-plotters.cfg": ["--section", "1"]}
FORMATS = ("pia", "dpia", "doc")


def line(content, what):
    return f"{len(content):8} {hashlib.sha256(content).hexdigest()} {what}"


def results(tool, folder):
    def run(*arguments):
        return subprocess.run([tool, *arguments], cwd=folder, capture_output=True, check=False)

    for sample in sorted(folder.iterdir()):
        section = SECTIONS.get(sample.name, [])
        yield line(run("tree", sample.name, *section, "--json").stdout, f"tree {sample.name}")
        for form in FORMATS:
            out = folder / f"out.{form}"
            done = run("convert", sample.name, out.name, "--lossy", *section)
            if done.returncode != 0:
                yield f"{sample.name} as {form}: {done.stderr.decode().strip()}"
                continue
            yield line(out.read_bytes(), f"{sample.name} as {form}")
            yield line(run("tree", out.name, "--json").stdout, f"tree {sample.name} as {form}")


def main():
    write = "--write" in sys.argv
    tool, samples, kept = [argument for argument in sys.argv[1:] if argument != "--write"]
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(samples, folder, dirs_exist_ok=True)
        found = list(results(Path(tool).resolve(), Path(folder)))
    if write:
        Path(kept).write_text("\n".join(found) + "\n", encoding="utf-8")
        return 0
    expected = Path(kept).read_text(encoding="utf-8").splitlines()
    for missing in sorted(set(expected) - set(found)):
        print("expected:", missing)
    for other in sorted(set(found) - set(expected)):
        print("     met:", other)
    return 0 if found == expected and found else 1


if __name__ == "__main__":
    sys.exit(main())
