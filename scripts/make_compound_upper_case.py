#!/usr/bin/env python3
"""Writes compound_upper_case.h from the Unicode character database (Debian's package unicode-data):

    scripts/make_compound_upper_case.py [/usr/share/unicode] > src/platform/compound_upper_case.h
    clang-format -i src/platform/compound_upper_case.h

The compound format compares names by the simple upper case of each 16-bit unit. A file's order must not depend on
who reads it, so the mappings are those of one version of Unicode, in which both letters have to be assigned.
"""

import sys
from pathlib import Path

VERSION = (5, 0)

HEAD = """#pragma once

// Made by make_compound_upper_case.py from the Unicode character database; not to be edited.

#include <array>

namespace pm {

// Units from `first` to `last`, every `step`th of them, whose simple upper case in Unicode %d.%d is another unit:
// that of `first` is `upper`, and those of the others follow in the same steps.
struct UpperCaseRow {
    char16_t first;
    char16_t last;
    char16_t step;
    char16_t upper;
};

inline constexpr std::array<UpperCaseRow, %d> upper_case_rows{{
"""
TAIL = """}};

} // namespace pm
"""


def assigned_units(path):
    units = set()
    for line in path.read_text(encoding="utf-8").splitlines():
        fields = line.split("#")[0].split(";")
        if len(fields) == 2 and tuple(int(part) for part in fields[1].strip().split(".")) <= VERSION:
            first, _, last = fields[0].strip().partition("..")
            units.update(range(int(first, 16), min(int(last or first, 16), 0xFFFF) + 1))
    return units


def mappings(folder):
    assigned = assigned_units(folder / "DerivedAge.txt")
    for line in (folder / "UnicodeData.txt").read_text(encoding="utf-8").splitlines():
        fields = line.split(";")
        if fields[12]:
            unit, upper = int(fields[0], 16), int(fields[12], 16)
            if unit != upper and unit in assigned and upper in assigned:
                yield unit, upper


def rows(pairs):
    """Runs of equal steps, as (first, last, step, upper of first)."""
    row = None
    for unit, upper in pairs:
        if row:
            first, last, step, start = row
            here = unit - last
            if upper - start == unit - first and here in ((step,) if step else (1, 2)):
                row = (first, unit, here, start)
                continue
            yield first, last, step or 1, start
        row = (unit, unit, None, upper)
    yield row[0], row[1], row[2] or 1, row[3]


def main():
    folder = Path(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/unicode")
    table = list(rows(sorted(mappings(folder))))
    print(HEAD % (*VERSION, len(table)), end="")
    for first, last, step, upper in table:
        print(f"    {{0x{first:04X}, 0x{last:04X}, {step}, 0x{upper:04X}}},")
    print(TAIL, end="")


if __name__ == "__main__":
    main()
