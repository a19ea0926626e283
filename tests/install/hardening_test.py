#!/usr/bin/env python3
"""Reads of libraries and programs how they were built and linked, and tells what of their hardening is missing.

    hardening_test.py READELF FILE...   exit with 1 if something is missing
"""

import re
import subprocess
import sys
from pathlib import Path

# The checked copies and the guard of the stack are imports, where there is anything to check or to guard.
WITH_CHECKED_COPIES = re.compile(r"libpm9\.so")
WITHOUT_GUARD = re.compile(r"libpmres9\.so")
ENDBR64 = bytes.fromhex("f30f1efa")


class File:
    def __init__(self, readelf, path):
        self.path = path
        self.bytes = Path(path).read_bytes()
        self.header, self.segments, self.dynamic, self.symbols = (
            subprocess.run([readelf, "--wide", option, path], check=True, capture_output=True, text=True).stdout
            for option in ("--file-header", "--program-headers", "--dynamic", "--dyn-syms"))

    def segment(self, kind):
        """Offset, address and size in the file of each segment of a kind, and its flags."""
        row = re.compile(rf"^ *{kind} +(0x\w+) (0x\w+) 0x\w+ (0x\w+) 0x\w+ ([RWE ]{{3}})", re.MULTILINE)
        return [(int(found[1], 16), int(found[2], 16), int(found[3], 16), found[4].replace(" ", ""))
                for found in row.finditer(self.segments)]

    def at(self, address, size):
        for offset, start, length, _ in self.segment("LOAD"):
            if start <= address < start + length:
                return self.bytes[offset + address - start:][:size]
        return b""

    def missing(self):
        if [flags for *_, flags in self.segment("GNU_STACK")] != ["RW"]:
            yield "a stack that isn't executed"
        if any("W" in flags and "E" in flags for *_, flags in self.segment("LOAD")):
            yield "memory that is written or executed, not both"
        if not self.segment("GNU_RELRO") or not re.search(r"\(FLAGS_1\).*\bNOW\b", self.dynamic):
            yield "relocations that are done, and read only, before it runs"
        if "(TEXTREL)" in self.dynamic:
            yield "code without relocations"
        if not re.search(r"Type: +DYN\b", self.header) or ("INTERP" in self.segments and
                                                         not re.search(r"\bPIE\b", self.dynamic)):
            yield "independence of its place"
        imported = set(re.findall(r"UND +(\w+)", self.symbols))
        if not WITHOUT_GUARD.search(self.path) and "__stack_chk_fail" not in imported:
            yield "the guard of the stack"
        if WITH_CHECKED_COPIES.search(self.path) and not any(re.fullmatch(r"__\w+_chk", name) for name in imported):
            yield "checked copies"
        yield from self.missing_landings()

    def missing_landings(self):
        """What is called through a pointer begins with the mark of such a place."""
        if "X86-64" not in self.header or "INTERP" in self.segments:
            return
        functions = re.findall(r"^ *\d+: (\w+) +\w+ +FUNC +\w+ +DEFAULT +\d+ (\S+)", self.symbols, re.MULTILINE)
        unmarked = [name for address, name in functions if self.at(int(address, 16), len(ENDBR64)) != ENDBR64]
        if unmarked or not functions:
            yield f"the mark at the start of {len(unmarked)} functions, such as {unmarked[:3]}"


def main(readelf, *paths):
    told = [f"{path}: without {missing}" for path in paths for missing in File(readelf, path).missing()]
    if told:
        sys.exit("\n".join(told))
    print(f"{len(paths)} files are hardened.")


main(*sys.argv[1:])
