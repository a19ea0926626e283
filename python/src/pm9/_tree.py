"""Trees as nested mappings."""

from __future__ import annotations

import os
import threading
from collections.abc import Callable, Iterator, Mapping, MutableMapping
from contextlib import contextmanager
from dataclasses import dataclass
from enum import IntEnum
from typing import Any, Optional, Union

from pm9._errors import Error, call
from pm9._library import NULL, bytes_out, ffi, lib, struct, text_in, text_out
from pm9._values import Type, Value, value_in, value_out

_NOTHING, _PROPERTY, _NODE = 0, 1, 2
_EXACT = -2**31  # an index: a "*" in a path is an ordinary character

File = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class FileType(IntEnum):
    """The format of a file."""

    PIA = 0
    PCP = 1
    PC2 = 2
    DOC = 3
    PDT = 4
    DPIA = 5
    CFG = 6


@dataclass(frozen=True)
class Report:
    """Something that a load passed over. kind: 1 a warning, 2 an error, 4 severe."""

    kind: int
    number: int
    place: str
    detail: str


OnReport = Callable[[Report], bool]
"""Asked at each report: False ends the load with an Error of kind 6."""


@dataclass(frozen=True)
class _Item:
    is_node: bool
    depth: int
    name: str
    type: Type
    strict: bool
    value: Value


def _item(item: Any) -> _Item:
    return _Item(item.what == _NODE, item.depth, text_out(item.name, item.name_length), Type(item.type),
                 bool(item.strict), bytes_out(item.data, item.length) if item.problem else value_out(item))


def _report(report: Any) -> Report:
    return Report(report.kind, report.number, text_out(report.place, report.place_length),
                  text_out(report.detail, report.detail_length))


class _Handle:
    """The library's tree, used by one thread at a time."""

    def __init__(self) -> None:
        made = ffi.new("pm9_tree **")
        call(lib.pm9_tree_new, made)
        self._tree = ffi.gc(made[0], lib.pm9_tree_delete)
        self._lock = threading.Lock()
        self._user = 0

    @property
    def pointer(self) -> Any:
        return self._tree

    @contextmanager
    def in_use(self) -> Iterator[None]:
        if self._user == threading.get_ident():
            raise RuntimeError("a tree can't be used by what its load asks")
        with self._lock:
            self._user = threading.get_ident()
            try:
                yield
            finally:
                self._user = 0

    def call(self, function: Any, *arguments: Any) -> None:
        with self.in_use():
            call(function, self._tree, *arguments)

    def text(self, function: Any, *arguments: Any) -> bytes:
        """What a function gives as text or bytes."""
        data, length = ffi.new("char **"), ffi.new("size_t *")
        self.call(function, *arguments, data, length)
        try:
            return bytes_out(data[0], length[0])
        finally:
            lib.pm9_free(data[0])

    def array(self, function: Any, item: str, read: Callable[[Any], Any], *arguments: Any) -> list[Any]:
        """What a function gives as an array of structs."""
        items, count = ffi.new(f"{item} **"), ffi.new("size_t *")
        self.call(function, *arguments, ffi.sizeof(item), items, count)
        try:
            return [read(items[0][at]) for at in range(count[0])]
        finally:
            lib.pm9_free(items[0])


def _is_name(name: object) -> bool:
    return isinstance(name, str) and name != "" and "\\" not in name and "\0" not in name


def _checked_name(name: object) -> str:
    if not isinstance(name, str):
        raise TypeError(f"a name is a str, not {type(name).__name__}")
    if not _is_name(name):
        raise ValueError(f"no name of a node or property: {name!r}")
    return name


def _paired(name: str) -> str:
    """As the tree has it: two surrogates that make a character are that."""
    if not isinstance(name, str):
        return name
    return name.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "surrogatepass")


_NO_DEFAULT: Any = object()


class Node(MutableMapping[str, Any]):
    """A node of a tree: a mapping of the names of its properties to their values and of its children to nodes.

    Its keys come in the tree's order, properties before children. Where a property and a child have the same name,
    the name stands for the property; `child()` gives the child.

    A node is known by its path: it is what stands there when it is used. If nothing does, no name is in it, to read or
    list it is a KeyError, and to set something in it makes it anew. So a copy of a node is refused, a TypeError: take
    `to_dict()` of it, or a Tree made of it.

    It equals what has the same nested dicts: neither order nor strictness counts, 1 equals 1.0 and True, and a child
    that has the name of a property doesn't count. `pm9.diff()` is exact.
    """

    __slots__ = ("_handle", "_path")

    def __init__(self, handle: _Handle, path: str) -> None:
        self._handle = handle
        self._path = path

    @property
    def path(self) -> str:
        r"""From the root: "\media\size"; "\" for the root itself."""
        return self._path or "\\"

    @property
    def name(self) -> str:
        """The last name of the path; empty for the root."""
        return self._path.rpartition("\\")[2]

    # --- the mapping

    def __getitem__(self, name: str) -> Any:
        """The value of the property, a Value, or else the child, a Node."""
        if not isinstance(name, str):
            raise TypeError(f"a name is a str, not {type(name).__name__}")
        kind = self._kind(name)
        if kind == _NOTHING:
            raise KeyError(name)
        return self._value(self._below(name), _EXACT) if kind == _PROPERTY else Node(self._handle, self._below(name))

    def __setitem__(self, name: str, value: object) -> None:
        """Sets a property, or for a mapping makes the node anew with what that holds.

        WrongTypeError for a value of another type than a property that is there, TypeError for one that no property
        can hold, OverflowError for an integer beyond 32 bits. When it fails, what was there stays.
        """
        path = self._below(_checked_name(name))
        if not isinstance(value, Mapping):
            self._set(path, value, _EXACT, True)
            return
        trial = Node(_Handle(), path)  # it refuses all that this tree would
        trial._fill(path, value)
        content = trial.to_dict()
        while self._erase(path) != _NOTHING:
            pass
        self._fill(path, content)

    def __delitem__(self, name: str) -> None:
        """Removes the property of that name, or else the child with all below it."""
        if not _is_name(name) or self._erase(self._below(name)) == _NOTHING:
            raise KeyError(name)

    def __iter__(self) -> Iterator[str]:
        return iter(dict.fromkeys(item.name for item in self._items(1)[1:]))

    def __len__(self) -> int:
        return len({item.name for item in self._items(1)[1:]})

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and self._kind(name) != _NOTHING

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Mapping):
            return NotImplemented
        return self.to_dict() == (other.to_dict() if isinstance(other, Node) else dict(other))

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self.path}>"

    def __reduce__(self) -> Any:
        raise TypeError("a node is a place in its tree: copy its to_dict(), or the tree")

    def pop(self, name: str, default: Any = _NO_DEFAULT) -> Any:
        """Removes what has the name and gives it: a value or, as a tree of its own, what was in the child."""
        try:
            held = self[name]
        except KeyError:
            if default is _NO_DEFAULT:
                raise
            return default
        if isinstance(held, Node):
            held = Tree.from_json(held._json())
        del self[name]
        return held

    def popitem(self) -> tuple[str, Any]:
        """Removes the first name and what it stands for, and gives both as `pop` does; KeyError if there is none."""
        for name in self:
            return name, self.pop(name)
        raise KeyError("nothing is left")

    # --- beyond the mapping

    def child(self, name: str) -> Node:
        """The child of that name, whatever property has it too; KeyError if there is none."""
        if _paired(name) not in (item.name for item in self._items(1)[1:] if item.is_node):
            raise KeyError(name)
        return Node(self._handle, self._below(name))

    def children(self) -> list[Node]:
        """In order."""
        return [Node(self._handle, self._below(item.name)) for item in self._items(1)[1:] if item.is_node]

    def properties(self) -> dict[str, Value]:
        """Its own ones, in order."""
        return {item.name: item.value for item in self._items(1) if not item.is_node}

    def make_child(self, name: str) -> Node:
        """The child of that name, made as the last one if it is missing."""
        path = self._below(_checked_name(name))
        self._make(path)
        return Node(self._handle, path)

    def type_of(self, name: str) -> Type:
        """The type of a property; KeyError if there is none."""
        return self._property(name).type

    def is_strict(self, name: str) -> bool:
        """Whether a property takes values of its own type only; KeyError if there is none."""
        return self._property(name).strict

    def at(self, path: str, index: Optional[int] = None) -> Value:
        r"""The value at a path below this node: r"size\*\name" with an index in place of the "*".

        Error with number 51, 86 or 87 where there is no property.
        """
        return self._value(self._down(path, index), -1 if index is None else index)

    def set(self, path: str, value: object, index: Optional[int] = None, strict: bool = True) -> None:
        """Sets the property at a path below this node, making what is missing; fails as an assignment does."""
        self._set(self._down(path, index), value, -1 if index is None else index, strict)

    def walk(self, levels: int = 0) -> Iterator[tuple[Node, dict[str, Value]]]:
        """This node and those below it, `levels` deep or all, each with its properties; a node before its children."""
        path = self._path
        paths = [path]
        node, properties = Node(self._handle, path), dict[str, Value]()
        for item in self._items(levels + 1 if levels > 0 else 0)[1:]:
            if not item.is_node:
                properties[item.name] = item.value
                continue
            if levels > 0 and item.depth > levels:
                continue
            yield node, properties
            del paths[item.depth:]
            paths.append(f"{paths[-1]}\\{item.name}")
            node, properties = Node(self._handle, paths[-1]), {}
        yield node, properties

    def to_dict(self) -> dict[str, Any]:
        """A copy as nested dicts; a child that has the name of a property is left out."""
        top: dict[str, Any] = {}
        open_nodes = [top]
        for item in self._items(0)[1:]:
            del open_nodes[item.depth:]
            if item.is_node:
                open_nodes.append({})
                open_nodes[-2].setdefault(item.name, open_nodes[-1])
            else:
                open_nodes[-1][item.name] = item.value
        return top

    # --- the way to the library

    def _below(self, name: str) -> str:
        return f"{self._path}\\{name}"

    def _down(self, path: str, index: Optional[int]) -> str:
        if not isinstance(path, str):
            raise TypeError(f"a path is a str, not {type(path).__name__}")
        if not path.strip("\\") and index in (None, -1):
            raise Error(51, 1, "pm9.Node", path)  # with this node's own name it would be a property beside it
        return f"{self._path}\\{path}"

    def _json(self, **how: bool) -> str:
        path = text_in(self.path)
        told = self._handle.text(lib.pm9_tree_to_json, path, len(path), struct("pm9_json_options", **how))
        return told.decode("utf-8", "surrogatepass")

    def _kind(self, name: str) -> int:
        if not _is_name(name):
            return _NOTHING
        path, what = text_in(self._below(name)), ffi.new("int32_t *")
        access = struct("pm9_access", index=_EXACT)
        self._handle.call(lib.pm9_tree_contains, path, len(path), access, what)
        return int(what[0])

    def _value(self, path: str, index: int) -> Value:
        encoded, value = text_in(path), struct("pm9_value")
        self._handle.call(lib.pm9_tree_get, encoded, len(encoded), struct("pm9_access", index=index), value)
        try:
            return value_out(value)
        finally:
            lib.pm9_free(value.data)

    def _set(self, path: str, value: object, index: int, strict: bool) -> None:
        encoded, (given, keep) = text_in(path), value_in(value)
        access = struct("pm9_access", index=index, loose=not strict)
        self._handle.call(lib.pm9_tree_set, encoded, len(encoded), access, given)
        del keep

    def _erase(self, path: str) -> int:
        encoded, what = text_in(path), ffi.new("int32_t *")
        self._handle.call(lib.pm9_tree_erase, encoded, len(encoded), struct("pm9_access", index=_EXACT), what)
        return int(what[0])

    def _make(self, path: str) -> None:
        encoded = text_in(path)
        self._handle.call(lib.pm9_tree_make_node, encoded, len(encoded))

    def _fill(self, path: str, content: Mapping[str, Any]) -> None:
        if path:
            self._make(path)
        for name, value in (content.to_dict() if isinstance(content, Node) else content).items():
            below = f"{path}\\{_checked_name(name)}"
            if isinstance(value, Mapping):
                self._fill(below, value)
            else:
                self._set(below, value, _EXACT, True)

    def _items(self, levels: int) -> list[_Item]:
        path, how = text_in(self.path), struct("pm9_list_options", levels=levels)
        try:
            return self._handle.array(lib.pm9_tree_list, "pm9_item", _item, path, len(path), how)
        except Exception as failure:
            if getattr(failure, "number", 0) == 86:
                raise KeyError(self.path) from None
            raise

    def _property(self, name: str) -> _Item:
        for item in self._items(1)[1:]:
            if item.name == _paired(name) and not item.is_node:
                return item
        raise KeyError(name)


class Tree(Node):
    """A tree of named nodes and typed properties, as a nested mapping.

        tree = Tree({"media": {"copies": 2, "name": "A0"}})
        tree["media"]["copies"] = 3

    Values keep their type: int (32 bits), float, str, bool, bytes. `reports` has what the last load passed over.
    A tree may be used by several threads, one waiting for the other. A copy of one, also by pickle, is a tree of its
    own with all that is in it; reports and what is known of the file that it was read from stay behind.
    """

    __slots__ = ()

    def __init__(self, content: Optional[Mapping[str, Any]] = None) -> None:
        super().__init__(_Handle(), "")
        if content is not None:
            if not isinstance(content, Mapping):
                raise TypeError(f"a tree is made of a mapping, not {type(content).__name__}")
            self._fill("", content)

    def __copy__(self) -> Tree:
        return self.from_json(self._json())

    def __deepcopy__(self, _memo: dict[int, Any]) -> Tree:
        return self.from_json(self._json())

    def __reduce__(self) -> Any:
        return self.from_json, (self._json(one_line=True),)

    @property
    def reports(self) -> list[Report]:
        """What the last load passed over, also one that failed."""
        return self._handle.array(lib.pm9_tree_reports, "pm9_report", _report)

    def load(self, file: File, *, type: Optional[FileType] = None, base: str = "\\", section: Optional[str] = None,
             plotter: int = 0, on_report: Optional[OnReport] = None) -> list[Report]:
        """Reads a file into the node `base`; gives the reports met. What was read before a failure stays.

        Without a type the content tells it. `section` is the one of a DPIA file to read, `plotter` that of a CFG file.
        """
        name = os.fsencode(file)
        with _LoadOptions(type, base, section, plotter, on_report) as options:
            self._handle.call(lib.pm9_tree_load, name, len(name), options)
        return self.reports

    def load_bytes(self, data: bytes, *, type: Optional[FileType] = None, base: str = "\\",
                   on_report: Optional[OnReport] = None) -> list[Report]:
        """Reads the content of a file as `load` does."""
        with _LoadOptions(type, base, None, 0, on_report) as options:
            self._handle.call(lib.pm9_tree_load_memory, ffi.from_buffer(data), len(data), options)
        return self.reports

    def read(self, file: File, *, type: Optional[FileType] = None, section: Optional[str] = None, code_page: int = 0,
             on_report: Optional[OnReport] = None) -> list[Report]:
        """Reads a whole file in place of what is in the tree: several sections or plotters are a node each.

        Without a type the content tells it. `section` is the one of a DPIA file, or the plotter of a CFG file, to
        read alone. When it fails, the tree stays as it was.
        """
        name = os.fsencode(file)
        with _LoadOptions(type, "", section, 0, on_report) as load:
            options = struct("pm9_read_options", type=load.type, code_page=code_page, section=load.section,
                             section_length=load.section_length, on_report=load.on_report)
            self._handle.call(lib.pm9_tree_read, name, len(name), options)
        return self.reports

    def to_json(self, *, one_line: bool = False, plain: bool = False) -> str:
        """The tree as JSON, exact; `plain` is nested objects for other programs, without types."""
        return self._json(one_line=one_line, plain=plain)

    @classmethod
    def from_json(cls, text: str) -> Tree:
        """The tree that `to_json` told; InputError, with the line, for a text that isn't valid."""
        tree, encoded = cls(), text_in(text)
        tree._handle.call(lib.pm9_tree_from_json, encoded, len(encoded))
        return tree

    def apply(self, script: str) -> None:
        """Changes the tree by a script, such as `pm9.script()` makes, all or nothing; InputError if it can't be."""
        encoded = text_in(script)
        self._handle.call(lib.pm9_tree_apply, encoded, len(encoded))

    def save(self, file: File, *, type: FileType = FileType.PIA, tag: str = "", utf8: bool = False,
             subtree: str = "\\") -> None:
        """Writes the tree as the library does: what the format can't hold is left out or changed without a word.

        Formats are PIA, DPIA and DOC; "compress" in the tag of a PIA file compresses.
        """
        name = os.fsencode(file)
        options, keep = _save_options(type, tag, utf8, subtree)
        self._handle.call(lib.pm9_tree_save, name, len(name), options)
        del keep

    def to_bytes(self, *, type: FileType = FileType.PIA, tag: str = "", utf8: bool = False,
                 subtree: str = "\\") -> bytes:
        """The content of the file that `save` writes; not for DOC."""
        options, keep = _save_options(type, tag, utf8, subtree)
        try:
            return self._handle.text(lib.pm9_tree_save_memory, options)
        finally:
            del keep


class _LoadOptions:
    """The options of a load while it runs; what its `on_report` raises comes out of it."""

    def __init__(self, type: Optional[FileType], base: str, section: Optional[str], plotter: int,
                 on_report: Optional[OnReport]) -> None:
        self._ask = on_report
        self._raised: Optional[BaseException] = None
        self._keep: list[Any] = [ffi.from_buffer(text_in(base)), ffi.from_buffer(text_in(section or ""))]
        self._options = struct("pm9_load_options", type=-1 if type is None else int(type), plotter=plotter,
                               base=self._keep[0], base_length=len(self._keep[0]))
        if section is not None:
            self._options.section, self._options.section_length = self._keep[1], len(self._keep[1])
        if on_report is not None:
            self._keep.append(ffi.callback("int32_t(void *, const pm9_report *)", self._answer))
            self._options.on_report = self._keep[-1]

    def _answer(self, _context: Any, report: Any) -> int:
        assert self._ask is not None
        try:
            return int(bool(self._ask(_report(report))))
        except BaseException as raised:  # it can't pass through the library
            self._raised = raised
            return 0

    def __enter__(self) -> Any:
        return self._options

    def __exit__(self, *_: object) -> None:
        if self._raised is not None:
            raise self._raised from None


def _save_options(type: FileType, tag: str, utf8: bool, subtree: str) -> tuple[Any, Any]:
    keep = ffi.from_buffer(text_in(tag)), ffi.from_buffer(text_in(subtree))
    return struct("pm9_save_options", type=int(FileType(type)), utf8=bool(utf8), tag=keep[0], tag_length=len(keep[0]),
                  subtree=keep[1], subtree_length=len(keep[1])), keep
