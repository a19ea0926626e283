#!/usr/bin/env python3
"""Holds docs/errors.md against <pm/error_number.h>: every number and name, in order, each fully told.

Usage: errors_page_test.py ERROR_NUMBER_H ERRORS_MD
"""

import re
import sys
from pathlib import Path

NUMBER = re.compile(r"^\s*(PM_ERR_\w+) = (\d+)\b,?\s*// (.+)$", re.MULTILINE)
HEADING = re.compile(r"^## (\d+) (\S+)$", re.MULTILINE)
COLUMNS = "| class | place | when | detail |"
CLASSES = {"PM_Warning", "PM_Error", "PM_Severe", "PM_Memory_Exception"}
ROUTES = {"", "reported", "codec"}


def plain(text):
    """A meaning as the page tells it: a sentence."""
    return text[0].upper() + text[1:] + "."


def sections_of(page):
    parts = HEADING.split(page)[1:]
    return [(int(parts[i]), parts[i + 1], parts[i + 2]) for i in range(0, len(parts), 3)]


def troubles_of_row(row):
    cells = [cell.strip() for cell in row.strip("|").split("|")]
    if len(cells) != 4 or not all(cells):
        yield f"a row without its four cells: {row}"
        return
    for part in re.finditer(r"`(\w+)`(?:, (\w+))?", cells[0]):
        if part[1] not in CLASSES:
            yield f"no such class: {part[1]}"
        if (part[2] or "") not in ROUTES:
            yield f"no such way: {part[2]}"


def troubles_of_section(body, meaning):
    if plain(meaning) not in body:
        yield f"doesn't tell the meaning of the header: {plain(meaning)}"
    rows = [line for line in body.splitlines() if line.startswith("| `")]
    if body.count(COLUMNS) != 1 or not rows:
        yield "has no table of uses"
    for row in rows:
        yield from troubles_of_row(row)
    if body.count("**What to do:** ") != 1:
        yield "doesn't tell what to do"


def troubles(header, page):
    numbers = [(int(value), name, meaning) for name, value, meaning in NUMBER.findall(header)]
    told = sections_of(page)
    if [row[0] for row in numbers] != list(range(50, 100)):
        yield "the header isn't read as 50 to 99"
    if [row[:2] for row in numbers] != [section[:2] for section in told]:
        missing = set(row[:2] for row in numbers) ^ set(section[:2] for section in told)
        yield f"header and page differ in numbers, names or order: {sorted(missing)}"
    bodies = {number: body for number, _, body in told}
    for number, _, meaning in numbers:
        for trouble in troubles_of_section(bodies.get(number, ""), meaning):
            yield f"{number}: {trouble}"
    anchors = {f"{number}-{name.lower()}" for number, name, _ in told}
    for link in re.findall(r"\]\(#([^)]+)\)", page):
        if link not in anchors:
            yield f"a link to nowhere: {link}"


def main():
    header, page = (Path(name).read_text(encoding="utf-8") for name in sys.argv[1:3])
    found = list(troubles(header, page))
    print("\n".join(found) or "docs/errors.md tells every number.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
