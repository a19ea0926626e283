#!/usr/bin/env python3
"""Prints a header with its plain comments as Doxygen has them.

    comments_for_doxygen.py HEADER

A comment in front of something is its description, one behind code on a line that of what stands there. Text stays as it
is, lines and all, since the comments are laid out for a reader of the header; a line that ends a run of indented ones
ends the example that they are.
"""

import re
import sys
from pathlib import Path

COMMENT = re.compile(r"^(\s*)// ?(.*)$")
TRAILING = re.compile(r"^(.*\S)\s+// (.*)$")


def escaped(text):
    """No command of Doxygen's, no tag, no link."""
    return re.sub(r"([\\@<>&#%\"])", r"\\\1", text).replace("::", "\\::")


def lines_of(text):
    in_example = False
    in_comment = False
    for line in text.splitlines():
        comment = COMMENT.match(line)
        if not comment:
            if in_example:
                yield "/// \\endcode"
            in_example = in_comment = False
            trailing = TRAILING.match(line)
            yield f"{trailing[1]} ///< {escaped(trailing[2])}" if trailing and not line.startswith("#") else line
            continue
        indent, words = comment[1], comment[2]
        is_example = words.startswith("    ") or (in_example and words == "")
        if is_example and not in_example:
            yield f"{indent}/// \\code{{.unparsed}}"
        elif in_example and not is_example:
            yield f"{indent}/// \\endcode"
        in_example = is_example
        yield f"{indent}/// {words if is_example else escaped(words)}"
        in_comment = True
    if in_example:
        yield "/// \\endcode"


def without_specialisations(text):
    """What a header says to the standard library is nothing to read, and Doxygen takes it for a mistake."""
    return re.sub(r"^template<>\nstruct std::[^\n]*\{(?:\};|\n.*?^\};)\n", "", text, flags=re.M | re.S)


print("/** \\file */\n" + "\n".join(lines_of(without_specialisations(Path(sys.argv[1]).read_text(encoding="utf-8")))))
