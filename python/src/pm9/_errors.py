"""Failures of the library as exceptions."""

from __future__ import annotations

import errno
import os
from typing import Any

from pm9._library import NULL, ffi, lib, struct, text_out


class Error(Exception):
    """A failure of the library.

    number: which one, as docs/errors.md tells them; 200 for an input of the package's own functions that isn't valid.
    kind: 1 a warning, 2 an error, 4 a severe one, 6 a load that was ended by its `on_report`.
    place: the operation that met it. detail: what it concerns: a path, a file, a line. line: of an input, or 0.
    """

    def __init__(self, number: int, kind: int, place: str, detail: str, line: int = 0) -> None:
        self.number = number
        self.kind = kind
        self.place = place
        self.detail = detail
        self.line = line
        Exception.__init__(self, number, kind, place, detail, line)

    def __str__(self) -> str:
        text = error_text(self.number) or f"error {self.number}"
        line = f" (line {self.line})" if self.line else ""
        return f"{text}: {self.detail}{line}" if self.detail else text + line


class WrongTypeError(Error, TypeError):
    """Number 54: a strictly typed property is written with another type."""


class NoMemoryError(Error, MemoryError):
    """Number 55."""


class NoSuchFileError(Error, FileNotFoundError):
    """Number 63. `filename` is the file, as `detail` tells it."""

    def __init__(self, number: int, kind: int, place: str, detail: str, line: int = 0) -> None:
        super().__init__(number, kind, place, detail, line)
        OSError.__init__(self, errno.ENOENT, os.strerror(errno.ENOENT), detail)

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self.number, self.kind, self.place, self.detail, self.line), self.__dict__


class InputError(Error, ValueError):
    """Number 200: a JSON text, a script or a pattern that isn't valid."""


_CLASSES: dict[int, type[Error]] = {54: WrongTypeError, 55: NoMemoryError, 63: NoSuchFileError, 200: InputError}


def error_text(number: int) -> str:
    """The text of an error number, one line of English; empty if there is none."""
    data, length = ffi.new("char **"), ffi.new("size_t *")
    if lib.pm9_error_text(number, data, length, NULL) != 0:
        return ""
    try:
        return text_out(data[0], length[0])
    finally:
        lib.pm9_free(data[0])


def call(function: Any, *arguments: Any) -> None:
    """Calls a function of the interface, with the place for its failure behind the arguments."""
    error = struct("pm9_error")
    if function(*arguments, error) != 0:
        raise _CLASSES.get(error.number, Error)(
            error.number, error.kind, text_out(error.place, error.place_length),
            text_out(error.detail, error.detail_length), error.line)
