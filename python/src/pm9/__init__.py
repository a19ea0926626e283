r"""The property manager: plot configurations and device descriptions as trees.

    import pm9

    tree = pm9.load("plotter.pia")
    tree["media"]["copies"] = 2
    tree.save("copy.pia", tag="EXAMPLE_1.0,compress")
"""

from __future__ import annotations

from typing import Optional

from pm9._errors import Error, InputError, NoMemoryError, NoSuchFileError, WrongTypeError, error_text
from pm9._errors import call as _call
from pm9._library import lib as _lib
from pm9._kit import (Change, Conflict, Diagnostic, Difference, Finding, Loss, LossError, Offer, Severity, check,
                      compatibility, convert, diff, merge, prepare, report_page, script)
from pm9._tree import File, FileType, Node, OnReport, Report, Tree
from pm9._values import Type, Value

__all__ = ["Change", "Conflict", "Diagnostic", "Difference", "Error", "FileType", "Finding", "InputError", "Loss",
           "LossError", "Node", "NoMemoryError", "NoSuchFileError", "Offer", "OnReport", "Report", "Severity", "Tree",
           "Type", "Value", "WrongTypeError", "check", "code_page", "compatibility", "convert", "diff", "error_text",
           "load", "loads", "merge", "prepare", "report_page", "script", "set_code_page", "version"]


def load(file: File, *, type: Optional[FileType] = None, section: Optional[str] = None, plotter: int = 0,
         on_report: Optional[OnReport] = None) -> Tree:
    """A new tree with what a file holds, as Tree.load() reads it; its `reports` are those of the load."""
    tree = Tree()
    tree.load(file, type=type, section=section, plotter=plotter, on_report=on_report)
    return tree


def loads(data: bytes, *, type: Optional[FileType] = None, on_report: Optional[OnReport] = None) -> Tree:
    """The same for the content of a file."""
    tree = Tree()
    tree.load_bytes(data, type=type, on_report=on_report)
    return tree


def code_page() -> int:
    """What narrow text in files is taken to be; 1252 until it is set."""
    return int(_lib.pm9_code_page())


def set_code_page(number: int) -> None:
    """Sets it for the whole process; 0 sets that of the locale, 65001 is UTF-8. Error 78 for an unknown one."""
    _call(_lib.pm9_set_code_page, number)


def version() -> str:
    """That of the library."""
    number = int(_lib.pm9_version())
    return f"{number // 10000}.{number // 100 % 100}.{number % 100}"
