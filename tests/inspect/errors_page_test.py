#!/usr/bin/env python3
"""Holds docs/errors.md against <pm/error_number.h>, every number and name, in order, each fully told, and
against the sources: every place that stands there, under the number that it is raised with.

Usage: errors_page_test.py ERROR_NUMBER_H ERRORS_MD SOURCE_FOLDER...
"""

import re
import sys
from pathlib import Path

NUMBER = re.compile(r"^\s*(PM_ERR_\w+) = (\d+)\b,?\s*// (.+)$", re.MULTILINE)
HEADING = re.compile(r"^## (\d+) (\S+)$", re.MULTILINE)
COLUMNS = "| class | place | when | detail |"
CLASSES = {"PM_Warning", "PM_Error", "PM_Severe", "PM_Memory_Exception"}
ROUTES = {"", "reported", "codec"}
PLACE_CONSTANT = re.compile(r'constexpr const char16_t\*(?: const)? (\w*place) = u"([^"]+)"')
PLACE_TEXT = re.compile(r'u"((?:PM_\w+::|pm::|pm_|\.\\\\)[^"]*)"')
RAISED = re.compile(r'\b(PM_ERR_\w+),\s*(?:u"([^"]+)"|(\w*place)\b)')
NO_MEMORY = re.compile(r'\b(?:PM_Memory_Exception|raise_no_memory)\(\s*(?:u"([^"]+)"|(\w*place)\b)')
LEAST_PLACES = 40  # fewer mean that the sources aren't read as they are


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


def code_of(path):
    """The file without comments that take a line."""
    lines = path.read_text(encoding="utf-8").splitlines()
    return "\n".join(line for line in lines if not line.lstrip().startswith("//"))


def constants_of(code):
    """The places by their names, without names that stand for several."""
    found = {}
    for name, place in PLACE_CONSTANT.findall(code):
        found.setdefault(name, set()).add(place)
    return {name: next(iter(places)) for name, places in found.items() if len(places) == 1}


def raised_in(code):
    """Numbers by name with their places, as far as the text shows them."""
    constants = constants_of(code)
    for number, text, name in RAISED.findall(code):
        yield number, text or constants.get(name)
    for text, name in NO_MEMORY.findall(code):
        yield "PM_ERR_NO_MEMORY", text or constants.get(name)


def troubles_of_places(files, page):
    sections = {name: body for _, name, body in sections_of(page)}
    places, raised = set(), set()
    for path in files:
        code = code_of(path)
        places |= {place for _, place in PLACE_CONSTANT.findall(code)} | set(PLACE_TEXT.findall(code))
        raised |= {pair for pair in raised_in(code) if pair[1]}
    if len(places) < LEAST_PLACES:
        yield f"only {len(places)} places are found in the sources"
    for place in sorted(places):
        if f"`{shown(place)}`" not in page:
            yield f"the page doesn't tell the place {shown(place)}"
    for number, place in sorted(raised):
        if f"`{shown(place)}`" not in sections.get(number, ""):
            yield f"{number}: the page doesn't tell the place {shown(place)} there"


def shown(place):
    return place.replace("\\\\", "\\")


def main():
    header, page = (Path(name).read_text(encoding="utf-8") for name in sys.argv[1:3])
    files = [path for folder in sys.argv[3:] for path in Path(folder).rglob("*") if path.suffix in {".h", ".cpp"}]
    found = [*troubles(header, page), *troubles_of_places(files, page)]
    print("\n".join(found) or "docs/errors.md tells every number and every place.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
