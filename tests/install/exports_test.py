#!/usr/bin/env python3
"""Compares what a library exports with the list that is kept, and tells what was added and what was lost.

    exports_test.py NM DEMANGLER LIBRARY LIST          exit with 1 if there is a difference
    exports_test.py --write NM DEMANGLER LIBRARY LIST  write the list
"""

import subprocess
import sys
from pathlib import Path


def exported(nm, demangler, library):
    """The demangled names, each once: constructors and destructors have several bodies of one name."""
    rows = subprocess.run([nm, "--dynamic", "--defined-only", library],
                          check=True, capture_output=True, text=True).stdout.splitlines()
    # Address, kind and name; the name of a version stands as an absolute symbol of no use to a program.
    symbols = (row.split()[1:] for row in rows)
    names = "\n".join(name.split("@@")[0] for kind, name in symbols if kind != "A")
    return set(subprocess.run([demangler], input=names, check=True, capture_output=True, text=True).stdout.splitlines())


def main(arguments):
    write = arguments[:1] == ["--write"]
    nm, demangler, library, kept = arguments[write:]
    now = exported(nm, demangler, library)
    if write:
        Path(kept).write_text("".join(f"{name}\n" for name in sorted(now)), encoding="ascii")
        return
    before = set(Path(kept).read_text(encoding="ascii").splitlines())
    for name in sorted(now - before):
        print(f"added: {name}")
    for name in sorted(before - now):
        print(f"lost: {name}")
    if now != before:
        sys.exit(f"{library} doesn't export what {kept} lists")


main(sys.argv[1:])
