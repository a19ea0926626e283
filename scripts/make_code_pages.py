#!/usr/bin/env python3
"""Makes src/platform/code_page_tables.inc, the upper halves of the single-byte code pages.

Source: the codecs of Python's standard library, which come from the mapping tables of the Unicode Consortium
(https://www.unicode.org/Public/MAPPINGS). A byte that a page doesn't define takes the character that Windows
gives it: a private-use one of the table below, or else the C1 control of its value for a byte of 80 to 9F.
U+F700 plus the byte stands where neither is known.

    make_code_pages.py FILE          write the tables to FILE
    make_code_pages.py --check FILE  exit with 1 if FILE isn't what would be written
"""

import sys
from pathlib import Path

CODECS = {
    **{page: f"cp{page}" for page in (437, 720, 737, 775, 850, 852, 855, 857, 858, 860, 861, 862, 863, 864,
                                      865, 866, 869, 874, *range(1250, 1259))},
    20127: "ascii",
    20866: "koi8_r",
    21866: "koi8_u",
    **{28590 + part: f"iso8859_{part}" for part in (1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 15)},
}


def numbered(first, *ranges):
    """Characters from `first` on for the bytes of the ranges (first byte, last byte), in order."""
    undefined = [byte for low, high in ranges for byte in range(low, high + 1)]
    return {byte: first + index for index, byte in enumerate(undefined)}


# Windows numbers the undefined bytes of its pages one behind the other.
WINDOWS = {
    857: {0xD5: 0xF8BB, 0xE7: 0xF8BC, 0xF2: 0xF8BD},
    864: {0xA6: 0xF8BE, 0xA7: 0xF8BF, 0xFF: 0xF8C0},
    874: numbered(0xF8C1, (0xDB, 0xDE), (0xFC, 0xFF)),
    1253: {0xAA: 0xF8F9, 0xD2: 0xF8FA, 0xFF: 0xF8FB},
    1255: {0xCA: 0x05BA} | numbered(0xF88D, (0xD9, 0xDF), (0xFB, 0xFC), (0xFF, 0xFF)),
    1257: {0xA1: 0xF8FC, 0xA5: 0xF8FD},
    28593: numbered(0xF7F5, (0xA5, 0xA5), (0xAE, 0xAE), (0xBE, 0xBE), (0xC3, 0xC3), (0xD0, 0xD0),
                    (0xE3, 0xE3), (0xF0, 0xF0)),
    28596: numbered(0xF7C8, (0xA1, 0xA3), (0xA5, 0xAB), (0xAE, 0xBA), (0xBC, 0xBE), (0xC0, 0xC0),
                    (0xDB, 0xDF), (0xF3, 0xFF)),
    28597: {0xAE: 0xF7C5, 0xD2: 0xF7C6, 0xFF: 0xF7C7},
    28598: numbered(0xF79C, (0xA1, 0xA1), (0xBF, 0xDE), (0xFB, 0xFC)) | {0xFF: 0xF7C1},
}

HEAD = """\
// Made by scripts/make_code_pages.py, which tells where the values come from. Each row is a page's number and
// the characters of its bytes 80 to FF.
// clang-format off
"""


def character(page, byte):
    try:
        return ord(bytes([byte]).decode(CODECS[page]))
    except UnicodeDecodeError:
        return WINDOWS.get(page, {}).get(byte, byte if byte < 0xA0 else 0xF700 + byte)


def rows(page):
    upper = [character(page, byte) for byte in range(0x80, 0x100)]
    if len(set(upper)) != len(upper) or min(upper) < 0x80:
        sys.exit(f"two bytes of page {page} have one character")
    yield f"{{{page}, {{"
    for start in range(0, len(upper), 8):
        yield "    " + ", ".join(f"0x{unit:04X}" for unit in upper[start:start + 8]) + ","
    yield "}},"


def main(arguments):
    lines = [line + "\n" for page in sorted(CODECS) for line in rows(page)]
    text = HEAD + "".join(lines) + "// clang-format on\n"
    if len(arguments) == 1:
        Path(arguments[0]).write_text(text, encoding="ascii")
    elif len(arguments) == 2 and arguments[0] == "--check":
        if Path(arguments[1]).read_text(encoding="ascii") != text:
            sys.exit(f"{arguments[1]} isn't what the script makes")
    else:
        sys.exit(__doc__)


main(sys.argv[1:])
