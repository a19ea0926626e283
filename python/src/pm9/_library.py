"""The C interface, found and opened.

Looked for: the file that the environment variable PM9_LIBRARY names and nothing else if it is set; the folder `lib`
of this package, which a wheel has; the libraries of the system.
"""

from __future__ import annotations

import os
from pathlib import Path
from typing import Any

from pm9 import _interface

ffi: Any = _interface.ffi
NAME = "libpm9c.so.9"
ABI_VERSION = 2  # PM9_ABI_VERSION of the header that the package was made with


def _places() -> list[str]:
    chosen = os.environ.get("PM9_LIBRARY")
    if chosen:
        return [chosen]
    own = Path(__file__).parent / "lib" / NAME
    return [str(own), NAME] if own.exists() else [NAME]


def _open() -> Any:
    places = _places()
    failures = []
    for place in places:
        try:
            return ffi.dlopen(place)
        except OSError as failure:
            failures.append(str(failure))
    raise ImportError(f"pm9 needs {NAME}: " + "; ".join(failures))


lib = _open()
if lib.pm9_abi_version() < ABI_VERSION:
    raise ImportError(f"{NAME} is older than this package: interface {lib.pm9_abi_version()}, not {ABI_VERSION}")

NULL = ffi.NULL


def text_in(text: str) -> bytes:
    """UTF-8 as the interface has it: an unpaired surrogate is three bytes."""
    return text.encode("utf-8", "surrogatepass")


def text_out(data: Any, length: int) -> str:
    return bytes_out(data, length).decode("utf-8", "surrogatepass")


def bytes_out(data: Any, length: int) -> bytes:
    return bytes(ffi.buffer(data, length)) if length else b""


def struct(name: str, **members: Any) -> Any:
    """A struct that knows its size."""
    made = ffi.new(f"{name} *", members)
    made.size = ffi.sizeof(name)
    return made
