#!/usr/bin/env python3
"""Makes the module through which the package calls the C interface, from the header.

    make_interface.py HEADER MODULE
"""

import re
import sys
from pathlib import Path

import cffi


def declarations(header):
    """The header without what is for the preprocessor and for C++."""
    text = re.sub(r"#ifdef __cplusplus.*?#endif", "", header, flags=re.DOTALL)
    lines = (line for line in text.splitlines() if not line.startswith("#"))
    return "\n".join(lines).replace("PM9_API ", "")


def main(header, module):
    builder = cffi.FFI()
    builder.cdef(declarations(Path(header).read_text(encoding="utf-8")))
    builder.set_source("pm9._interface", None)
    builder.emit_python_code(module)


main(*sys.argv[1:])
