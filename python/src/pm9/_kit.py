"""What programs do with trees and files: comparison, scripts, merging, checks."""

from __future__ import annotations

import json
import os
import tempfile
from collections.abc import Iterable, Iterator, Mapping, Sequence
from contextlib import ExitStack, contextmanager
from dataclasses import dataclass
from enum import IntEnum
from types import MappingProxyType
from typing import Any, Optional

from pm9._errors import InputError, call, error_text
from pm9._library import NULL, bytes_out, ffi, lib, struct, text_in, text_out
from pm9._replacing import locked, replace
from pm9._tree import File, FileType, Tree
from pm9._values import Value


class Change(IntEnum):
    """How two trees differ at a path."""

    ADDED = 0
    REMOVED = 1
    TYPE = 2
    VALUE = 3
    STRICTNESS = 4
    ORDER = 5


@dataclass(frozen=True)
class Difference:
    """One difference. The path of a node ends in a backslash; values are None for nodes and where there is none."""

    change: Change
    path: str
    before: Value = None
    after: Value = None


@dataclass(frozen=True)
class Conflict:
    """What both sides of a merge changed, and not alike; None where a side has no such property."""

    path: str
    base: Value
    first: Value
    second: Value


class Severity(IntEnum):
    """How bad."""

    NOTE = 0
    WARNING = 1
    ERROR = 2


@dataclass(frozen=True)
class Diagnostic:
    """What a check says. What isn't known is 0 or empty; number is the library's, if it said it."""

    rule: str
    severity: Severity
    file: str
    section: str
    line: int
    column: int
    path: str
    message: str
    number: int

    def __str__(self) -> str:
        place = f"{self.file}:{self.line}" if self.line else self.file
        return f"{place}: {self.severity.name.lower()}: {self.message} [{self.rule}]"


def _optional(data: Any, length: int) -> Optional[str]:
    return None if data == NULL else text_out(data, length)


def _value(told: Optional[str]) -> Value:
    """The value of a line as the kit tells it, such as `long 2`; the stored bytes where no value tells it exactly."""
    if told is None:
        return None
    kind, _, text = told.partition(" ")
    if text == "none":
        return None
    if kind == "raw" or text.startswith("bytes"):
        return bytes.fromhex(text[len("bytes"):] if text.startswith("bytes") else text)
    readers: dict[str, Any] = {"long": int, "double": float, "bool": lambda word: word == "true", "string": json.loads}
    return readers[kind](text) if kind in readers else None


def _difference(found: Any) -> Difference:
    return Difference(Change(found.kind), text_out(found.path, found.path_length),
                      _value(_optional(found.before, found.before_length)),
                      _value(_optional(found.after, found.after_length)))


def _conflict(found: Any) -> Conflict:
    return Conflict(text_out(found.path, found.path_length), _value(_optional(found.base, found.base_length)),
                    _value(_optional(found.first, found.first_length)),
                    _value(_optional(found.second, found.second_length)))


def _diagnostic(found: Any) -> Diagnostic:
    return Diagnostic(text_out(found.rule, found.rule_length), Severity(found.severity),
                      text_out(found.file, found.file_length), text_out(found.section, found.section_length),
                      found.line, found.column, text_out(found.path, found.path_length),
                      text_out(found.message, found.message_length), found.number)


def _lines(texts: Iterable[str]) -> Any:
    if isinstance(texts, str):
        raise TypeError("several texts are expected, not one")
    return ffi.from_buffer(text_in("\n".join(texts)))


def _compare_options(exclude: Any, tolerance: float, order: bool, strictness: bool) -> Any:
    return struct("pm9_compare_options", tolerance=tolerance, exclude=exclude, exclude_length=len(exclude),
                  any_order=not order, any_strictness=not strictness)


@contextmanager
def _in_use(*trees: Tree) -> Iterator[None]:
    """Each once, and always in the same order, so that two threads don't wait for each other."""
    handles = {id(tree._handle): tree._handle for tree in trees}
    with ExitStack() as stack:
        for key in sorted(handles):
            stack.enter_context(handles[key].in_use())
        yield


def _trees(*trees: object) -> None:
    for tree in trees:
        if not isinstance(tree, Tree):
            raise TypeError(f"a Tree is expected, not {type(tree).__name__}")


def diff(first: Tree, second: Tree, *, exclude: Sequence[str] = (), tolerance: float = 0.0, order: bool = True,
         strictness: bool = True) -> list[Difference]:
    r"""What turns the first tree into the second, in the order of the second; empty if they are the same.

    What matches a pattern of `exclude`, such as r"\media\*", doesn't count; doubles that differ by no more than
    `tolerance` are the same, with 0 if their bits are. InputError for a pattern that isn't one.
    """
    _trees(first, second)
    patterns = _lines(exclude)
    options = _compare_options(patterns, tolerance, order, strictness)
    with _in_use(first, second):
        return _array(lib.pm9_compare, "pm9_difference", _difference, first._handle.pointer, second._handle.pointer,
                      options)


def script(first: Tree, second: Tree, *, exclude: Sequence[str] = (), tolerance: float = 0.0, order: bool = True,
           strictness: bool = True) -> str:
    """The same as a script that `Tree.apply()` and the tool take."""
    _trees(first, second)
    patterns = _lines(exclude)
    options = _compare_options(patterns, tolerance, order, strictness)
    data, length = ffi.new("char **"), ffi.new("size_t *")
    with _in_use(first, second):
        call(lib.pm9_script, first._handle.pointer, second._handle.pointer, options, data, length)
    try:
        return text_out(data[0], length[0])
    finally:
        lib.pm9_free(data[0])


def merge(base: Tree, first: Tree, second: Tree, *, prefer_second: bool = False) -> tuple[Tree, list[Conflict]]:
    """A new tree with what both sides made of `base`, and where they disagree: there it has what the first says."""
    _trees(base, first, second)
    merged = Tree()
    with _in_use(base, first, second):
        conflicts = _array(lib.pm9_merge, "pm9_conflict", _conflict, merged._handle.pointer, base._handle.pointer,
                           first._handle.pointer, second._handle.pointer, prefer_second)
    return merged, conflicts


@dataclass(frozen=True)
class Loss:
    """What a file doesn't give back of a tree.

    kind: "lost", "cut", "retyped", "re-encoded", "changed", "renamed", "moved", "appeared", "order", or "source" for
    what the file that was read couldn't give. reason: in words. new_path: of what was renamed or moved.
    """

    kind: str
    path: str
    reason: str
    new_path: str = ""
    before: Value = None
    after: Value = None

    def __str__(self) -> str:
        return f"{self.path}: {self.kind}: {self.reason}" if self.path else f"{self.kind}: {self.reason}"


class LossError(Exception):
    """A conversion that would lose something: `losses`. Nothing was written."""

    def __init__(self, losses: list[Loss]) -> None:
        self.losses = losses
        super().__init__(losses)

    def __str__(self) -> str:
        more = f" and {len(self.losses) - 1} more" if len(self.losses) > 1 else ""
        return f"{self.losses[0]}{more}"


def _loss(found: Any) -> Loss:
    return Loss(text_out(found.kind, found.kind_length), text_out(found.path, found.path_length),
                text_out(found.reason, found.reason_length), text_out(found.new_path, found.new_path_length),
                _value(_optional(found.before, found.before_length)),
                _value(_optional(found.after, found.after_length)))


def prepare(tree: Tree, *, type: FileType = FileType.PIA, tag: str = "", utf8: bool = False, code_page: int = 0,
            subtree: str = "\\", section: Optional[str] = None) -> tuple[bytes, list[Loss]]:
    """The content of a file of any format that is written, and what it doesn't hold, measured by reading it back.

    A DPIA file has a section for each node, or all in the one that `section` names. A tree that was read whole from one
    keeps the names and info texts of its sections.
    """
    _trees(tree)
    keep = ffi.from_buffer(text_in(tag)), ffi.from_buffer(text_in(subtree)), ffi.from_buffer(text_in(section or ""))
    options = struct("pm9_write_options", type=int(FileType(type)), utf8=bool(utf8), tag=keep[0],
                     tag_length=len(keep[0]), subtree=keep[1], subtree_length=len(keep[1]), code_page=code_page)
    if section is not None:
        options.section, options.section_length = keep[2], len(keep[2])
    data, length = ffi.new("char **"), ffi.new("size_t *")
    with tree._handle.in_use():
        losses = _array(lib.pm9_prepare, "pm9_loss", _loss, tree._handle.pointer, options, data, length)
    try:
        return bytes_out(data[0], length[0]), losses
    finally:
        lib.pm9_free(data[0])


_UTF8 = 65001
_MAY_HOLD_UTF8 = (FileType.PIA, FileType.PC2, FileType.CFG, FileType.PCP)


@dataclass(frozen=True)
class _Source:
    """A file that was read whole: its tree, what it couldn't give, and its form."""

    tree: Tree
    losses: list[Loss]
    type: FileType
    by_section: bool
    tag: str
    code_page: int


def _unreported(file: File, type: FileType, section: Optional[str], code_page: int) -> list[Loss]:
    name, part = os.fsencode(file), ffi.from_buffer(text_in(section or ""))
    options = struct("pm9_read_options", type=int(type), code_page=code_page, section=part, section_length=len(part))
    return _array(lib.pm9_unreported, "pm9_loss", _loss, name, len(name), options)


def _is_utf8(tree: Tree) -> bool:
    encoding = ffi.new("int32_t *")
    tree._handle.call(lib.pm9_tree_encoding, encoding)
    return bool(encoding[0] == lib.PM9_TEXT_UTF8)


def _read(file: File, type: Optional[FileType], section: Optional[str], code_page: int) -> _Source:
    """As the tool reads: text that is UTF-8 throughout is read so, unless a code page was told."""
    tree, form = Tree(), struct("pm9_source")
    reports = tree.read(file, type=type, section=section, code_page=code_page)
    tree._handle.call(lib.pm9_tree_source, form)
    try:
        found, tag = FileType(form.type), text_out(form.tag, form.tag_length)
    finally:
        lib.pm9_free(form.tag)
    untold = code_page == 0 and lib.pm9_code_page() == 1252
    if untold and found in _MAY_HOLD_UTF8 and _is_utf8(tree):
        code_page = _UTF8
        reports = tree.read(file, type=type, section=section, code_page=code_page)
    losses = [Loss("source", "", f"{error_text(report.number)}: {report.detail.strip()}") for report in reports]
    losses += _unreported(file, found, section, code_page)
    return _Source(tree, losses, found, bool(form.by_section), tag, code_page if untold else 0)


def _one_tree(file: File, source: _Source) -> None:
    if not source.by_section:
        return
    what = "the file holds several plotters" if source.type is FileType.CFG else "a dpia file holds several trees"
    raise InputError(200, 0, "pm9.convert()",
                     f"{os.fsdecode(file)}: {what}; choose one with section ({', '.join(source.tree)})")


def _section_for(file: File, section: Optional[str], source: _Source) -> Optional[str]:
    """The one section that a tree becomes; None for one that has a node for each."""
    if source.by_section:
        return None
    if section and source.type is FileType.DPIA:
        return section
    return os.path.splitext(os.path.basename(os.fsdecode(file).rstrip(os.sep)))[0]


def _without_compression(tag: str) -> str:
    return ",".join(item for item in tag.split(",") if "compress" not in item)


def convert(source: File, target: File, *, type: FileType = FileType.PIA, from_type: Optional[FileType] = None,
            section: Optional[str] = None, code_page: int = 0, tag: Optional[str] = None, utf8: bool = False,
            lossy: bool = False) -> list[Loss]:
    """Reads a file whole and writes it as PIA, DPIA or DOC; gives what was lost, by the source's bad lines too.

    LossError, with nothing written, for any loss unless `lossy` says that it may be: what the target wouldn't give back,
    and what the source couldn't give, such as repeated names and numbers with more behind them. InputError for a file of
    several trees that isn't to be DPIA, without a `section`; a file of one tree becomes a section of its name.

    `code_page` is that of the source's narrow text; with 0 text that is UTF-8 throughout is taken for that. `utf8` writes
    a PIA file as UTF-8, and so is one written that was read so. Without a `tag` that of a PIA file stays, but for its
    compression; "compress" in one compresses. ValueError for one and for `utf8` with another type.

    The target is replaced at once or stays as it was, with its owner and rights as far as the process may give them. Of
    a link, what it leads to is replaced. A file that is changed in place is locked meanwhile, as the tool locks it.
    """
    if type != FileType.PIA and (utf8 or tag is not None):
        raise ValueError("utf8 and tag are for PIA files")
    with ExitStack() as stack:
        if _is_same(source, target):
            stack.enter_context(locked(target))
        read = _read(stack.enter_context(_at_hand(source)), from_type, section, code_page)
        if type != FileType.DPIA:
            _one_tree(source, read)
        utf8 = utf8 or (type == FileType.PIA and read.type is FileType.PIA and read.code_page == _UTF8)
        header = _without_compression(read.tag) if tag is None else tag
        content, losses = prepare(read.tree, type=type, tag=header if type == FileType.PIA else "", utf8=utf8,
                                  code_page=0 if utf8 else read.code_page,
                                  section=_section_for(source, section, read))
        losses[:0] = read.losses
        if losses and not lossy:
            raise LossError(losses)
        replace(target, content)
    return losses


@contextmanager
def _at_hand(file: File) -> Iterator[File]:
    """A file that can be read twice: of a pipe, its content in a temporary one."""
    if not os.path.exists(file) or os.path.isfile(file) or os.path.isdir(file):
        yield file
        return
    with tempfile.TemporaryDirectory() as folder, open(file, "rb") as pipe:
        copy = os.path.join(folder, os.path.basename(os.fsdecode(file)))
        with open(copy, "wb") as content:
            content.write(pipe.read())
        yield copy


def _is_same(first: File, second: File) -> bool:
    try:
        return os.path.samefile(first, second)
    except OSError:
        return False


def check(file: File, *, type: Optional[FileType] = None, rules: Sequence[str] = (), without: Sequence[str] = (),
          round_trip: bool = False, code_page: int = 0) -> list[Diagnostic]:
    """What there is to say of a file, or of each file in a folder; what can't be read is a diagnostic, too.

    `rules` are the only ones, if there are any, `without` are left out; `round_trip` also saves, loads and compares.
    InputError for the name of a rule that isn't there.
    """
    name, only, others = os.fsencode(file), _lines(rules), _lines(without)
    options = struct("pm9_check_options", type=-1 if type is None else int(type), code_page=code_page, rules=only,
                     rules_length=len(only), without=others, without_length=len(others), round_trip=round_trip)
    return _array(lib.pm9_check, "pm9_diagnostic", _diagnostic, name, len(name), options)


@dataclass(frozen=True)
class Offer:
    """What a device offers where a configuration asks for something else."""

    value: str
    text: str
    path: str


@dataclass(frozen=True)
class Finding:
    """What a configuration asks for that isn't possible, or isn't clear, on a device."""

    rule: str
    severity: Severity
    configuration_path: str
    description_path: str
    configured: str
    described: str
    text: str
    offers: tuple[Offer, ...]
    message: str


def compatibility(configuration: Tree, description: Tree, *, description_base: str = "",
                  configuration_base: str = "\\", owner: Optional[int] = None, map: str = "") -> list[Finding]:
    """Whether a configuration is possible on the device of a description; empty if it is.

    `map` is JSON that tells where a configuration keeps its settings; the built-in one knows the formats that are read.
    `owner` is 0 to 3, or Error 78.
    """
    _trees(configuration, description)
    keep = [ffi.from_buffer(text_in(text)) for text in (description_base, configuration_base, map)]
    options = struct("pm9_compatibility_options", description_base=keep[0], description_base_length=len(keep[0]),
                     configuration_base=keep[1], configuration_base_length=len(keep[1]),
                     owner=-1 if owner is None else owner)
    if map:
        options.map, options.map_length = keep[2], len(keep[2])
    data, length = ffi.new("char **"), ffi.new("size_t *")
    with _in_use(configuration, description):
        call(lib.pm9_compatibility, configuration._handle.pointer, description._handle.pointer, options, data, length)
    try:
        found = json.loads(bytes_out(data[0], length[0]))["findings"]
    finally:
        lib.pm9_free(data[0])
    return [_finding(each) for each in found]


def _page_part(name: str, tree: Tree, base: str, keep: list[Any]) -> dict[str, Any]:
    texts = ffi.from_buffer(text_in(name)), ffi.from_buffer(text_in(base))
    keep.extend(texts)
    return {"size": ffi.sizeof("pm9_page_part"), "tree": tree._handle.pointer, "name": texts[0],
            "name_length": len(texts[0]), "base": texts[1], "base_length": len(texts[1])}


def report_page(description: Optional[Tree] = None, configurations: Mapping[str, Tree] = MappingProxyType({}), *,
                name: str = "", description_base: str = "", owner: Optional[int] = None, map: str = "") -> str:
    """One HTML page of what a device can do, what configurations ask of it and whether that fits, as the tool makes it.

    Configurations are told by the names that the page shows; `name` is that of the description. At least one of both has
    to be there: Error 78. `map` and `owner` are as for `compatibility`. InputError for a tree that is no description.
    """
    trees = [*configurations.values(), *([] if description is None else [description])]
    _trees(*trees)
    keep: list[Any] = [ffi.from_buffer(text_in(map))]
    options = struct("pm9_page_options", owner=-1 if owner is None else owner)
    if map:
        options.map, options.map_length = keep[0], len(keep[0])
    device = NULL
    if description is not None:
        device = ffi.new("pm9_page_part *", _page_part(name, description, description_base, keep))
    parts = ffi.new("pm9_page_part[]", [_page_part(each, tree, "", keep) for each, tree in configurations.items()])
    data, length = ffi.new("char **"), ffi.new("size_t *")
    with _in_use(*trees):
        call(lib.pm9_report_page, device, parts, ffi.sizeof("pm9_page_part"), len(parts), options, data, length)
    try:
        return text_out(data[0], length[0])
    finally:
        lib.pm9_free(data[0])


def _finding(found: dict[str, Any]) -> Finding:
    members = dict(found, severity=Severity[found["severity"].upper()],
                   offers=tuple(Offer(**offer) for offer in found["offers"]))
    return Finding(**members)


def _array(function: Any, item: str, read: Any, *arguments: Any) -> list[Any]:
    items, count = ffi.new(f"{item} **"), ffi.new("size_t *")
    call(function, *arguments, ffi.sizeof(item), items, count)
    try:
        return [read(items[0][at]) for at in range(count[0])]
    finally:
        lib.pm9_free(items[0])
