"""Trees as nested mappings."""

from __future__ import annotations

import array
import copy
import math
import pickle
import threading
from collections.abc import Callable, MutableMapping
from typing import Any

import pytest

import pm9


def sample() -> pm9.Tree:
    return pm9.Tree({"n": {"copies": 2, "m": {"deep": 1}}, "z": 1.5})


def test_tree_is_a_mutable_mapping() -> None:
    tree = sample()
    assert isinstance(tree, MutableMapping) and isinstance(tree["n"], MutableMapping)
    assert len(tree) == 2 and "n" in tree and "z" in tree and "copies" not in tree
    assert tree.get("never") is None and tree.get("z") == 1.5


def test_keys_come_in_order_properties_before_children() -> None:
    tree = pm9.Tree({"b": {"x": 1}, "z": 1, "a": {}, "c": 2})
    assert list(tree) == ["z", "c", "b", "a"]
    assert [child.name for child in tree.children()] == ["b", "a"]
    assert tree.properties() == {"z": 1, "c": 2}


@pytest.mark.parametrize("value", [0, -2**31, 2**31 - 1, 0.1, -1e300, "", "Größe", "\ud800x", "a\U0001f600", True, False,
                                   b"", b"\0\xff"])
def test_value_comes_back_as_it_is(value: Any) -> None:
    tree = pm9.Tree({"a": value})
    assert tree["a"] == value and type(tree["a"]) is type(value)
    assert tree.to_dict() == {"a": value}


def test_doubles_are_exact() -> None:
    tree = pm9.Tree({"zero": -0.0, "nan": math.nan, "inf": math.inf, "third": 1 / 3})
    assert tree["zero"] == 0 and math.copysign(1, tree["zero"]) == -1
    assert math.isnan(tree["nan"]) and tree["inf"] == math.inf and tree["third"] == 1 / 3


def test_buffers_are_bytes() -> None:
    tree = pm9.Tree({"a": bytearray(b"ab"), "b": memoryview(b"cd")})
    assert tree["a"] == b"ab" and tree["b"] == b"cd"


@pytest.mark.parametrize("value", [None, [1], object(), 1j, {1}, array.array("i", [1])])
def test_value_of_no_type_is_a_type_error(value: object) -> None:
    tree = sample()
    with pytest.raises(TypeError, match="a property holds int, float, str, bool or bytes"):
        tree["new"] = value
    with pytest.raises(TypeError):
        tree["n"] = {"good": 1, "bad": value}
    assert tree == sample()


def test_integer_beyond_32_bits_is_an_overflow() -> None:
    tree = sample()
    for value in (2**31, -2**31 - 1):
        with pytest.raises(OverflowError):
            tree["new"] = value
    assert "new" not in tree


def test_other_type_for_a_strict_property_is_a_type_error() -> None:
    tree = sample()
    with pytest.raises(TypeError) as caught:
        tree["z"] = 1
    assert isinstance(caught.value, pm9.WrongTypeError) and caught.value.number == 54
    assert tree["z"] == 1.5


def test_loose_property_takes_another_type() -> None:
    tree = pm9.Tree()
    tree.set("a", 1, strict=False)
    assert not tree.is_strict("a") and tree.type_of("a") is pm9.Type.LONG
    tree["a"] = "text"
    assert tree.is_strict("a") and tree.type_of("a") is pm9.Type.STRING


def test_missing_key_is_a_key_error() -> None:
    tree = sample()
    for name in ("never", "", "a\\b", "a\0b"):
        assert name not in tree
        with pytest.raises(KeyError):
            tree[name]
        with pytest.raises(KeyError):
            del tree[name]
    with pytest.raises(KeyError):
        tree.type_of("n")
    with pytest.raises(KeyError):
        tree.child("z")


def test_name_that_cant_be_is_refused() -> None:
    tree = sample()
    for name in ("", "a\\b", "a\0b"):
        with pytest.raises(ValueError):
            tree[name] = 1
        with pytest.raises(ValueError):
            tree["n"] = {"inner": {name: 1}}
    with pytest.raises(TypeError):
        tree[1] = 1  # type: ignore[index]
    with pytest.raises(TypeError):
        tree[1]  # type: ignore[index]
    assert tree == sample()
    number: object = 1
    assert number not in tree


def test_star_in_a_name_is_a_star() -> None:
    tree = pm9.Tree({"*": 1, "n*": {"a*b": "x"}})
    assert tree.to_dict() == {"*": 1, "n*": {"a*b": "x"}}
    assert tree["n*"]["a*b"] == "x"
    del tree["*"]
    assert list(tree) == ["n*"]


def test_mapping_makes_a_node_anew() -> None:
    tree = sample()
    tree["n"] = {"only": True}
    assert tree.to_dict() == {"z": 1.5, "n": {"only": True}}
    tree["z"] = {}
    assert tree["z"] == {} and tree.properties() == {}


@pytest.mark.parametrize("refused", ["z" * 4097, "z\0", 2**31, None, {"a\\b": 1}, {"n" * 1024: 1}],
                         ids=["long text", "zero", "large number", "no value", "bad name", "long name"])
def test_mapping_that_is_refused_leaves_what_was_there(refused: object) -> None:
    tree = sample()
    with pytest.raises((pm9.Error, TypeError, ValueError, OverflowError)):
        tree["n"] = {"x": 1, "y": refused}
    assert tree.to_dict() == sample().to_dict()


def test_mapping_that_is_too_deep_leaves_what_was_there() -> None:
    tree, deep = sample(), {"x": 1}
    for _ in range(300):
        deep = {"d": deep}  # type: ignore[dict-item]
    with pytest.raises(pm9.Error) as caught:
        tree["n"] = deep
    assert caught.value.number == 51 and tree.to_dict() == sample().to_dict()


def test_node_goes_into_what_takes_its_place() -> None:
    tree = sample()
    tree["n"] = {"old": tree["n"], "new": 1}
    assert tree.to_dict() == {"n": {"old": {"copies": 2, "m": {"deep": 1}}, "new": 1}, "z": 1.5}


def test_node_is_copied_into_another_tree_and_into_itself() -> None:
    tree, other = sample(), pm9.Tree()
    other["from"] = tree["n"]
    assert other.to_dict() == {"from": {"copies": 2, "m": {"deep": 1}}}
    other["from"] = other["from"]
    assert other.to_dict() == {"from": {"copies": 2, "m": {"deep": 1}}}
    assert pm9.Tree(tree) == tree


def test_deletion_removes_a_node_with_all_below_it() -> None:
    tree = sample()
    node = tree.child("n").child("m")
    del tree["n"]
    assert tree.to_dict() == {"z": 1.5}
    with pytest.raises(KeyError):
        list(node)
    tree.clear()
    assert len(tree) == 0


def test_property_and_child_of_one_name() -> None:
    tree = pm9.Tree({"a": 1})
    tree.make_child("a")["b"] = 2
    assert tree["a"] == 1 and tree.child("a").to_dict() == {"b": 2}
    assert list(tree) == ["a"] and len(tree) == 1
    del tree["a"]
    assert tree["a"] == {"b": 2}


def test_path_with_an_index() -> None:
    tree = pm9.Tree()
    tree.set(r"size\*\name", "A0", 0)
    tree.set(r"size\*\name", "A1", 1)
    assert tree.to_dict() == {"size": {"0": {"name": "A0"}, "1": {"name": "A1"}}}
    assert tree.at(r"size\*\name", 1) == "A1" and tree.child("size").at(r"0\name") == "A0"
    with pytest.raises(pm9.Error) as caught:
        tree.at("name")
    assert caught.value.number == 87


def test_path_without_a_name_is_error_51() -> None:
    tree = pm9.Tree({"a": {"b": 1}})
    for path in ("", "\\", "\\\\"):
        for node in (tree, tree["a"]):
            with pytest.raises(pm9.Error) as caught:
                node.set(path, 5)
            assert caught.value.number == 51
            with pytest.raises(pm9.Error) as caught:
                node.at(path)
            assert caught.value.number == 51
    tree["a"].set("", 5, 3)
    assert tree["a"].at("", 3) == 5 and tree.to_dict() == {"a": {"b": 1, "3": 5}}


def test_copy_of_a_tree_is_another_tree() -> None:
    tree = sample()
    tree.set("loose", "x", strict=False)
    tree.make_child("z")["\ud800"] = b""
    for other in (copy.copy(tree), copy.deepcopy(tree), pickle.loads(pickle.dumps(tree))):
        assert type(other) is pm9.Tree and pm9.diff(tree, other) == []
        other["new"] = 1
        assert "new" not in tree


def test_copy_of_a_node_is_refused() -> None:
    node = sample()["n"]
    acts: list[Callable[[Any], Any]] = [copy.copy, copy.deepcopy, pickle.dumps]
    for act in acts:
        with pytest.raises(TypeError, match="a node is a place in its tree"):
            act(node)


def test_node_that_is_popped_is_a_tree_of_its_own() -> None:
    tree = sample()
    tree["n"].set("loose", 1, strict=False)
    node = tree.pop("n")
    assert type(node) is pm9.Tree and tree.to_dict() == {"z": 1.5}
    assert node.to_dict() == {"copies": 2, "loose": 1, "m": {"deep": 1}} and not node.is_strict("loose")
    assert tree.popitem() == ("z", 1.5) and tree.pop("z", 3) == 3
    with pytest.raises(KeyError):
        tree.popitem()
    with pytest.raises(KeyError):
        tree.pop("z")


def test_node_that_is_gone_is_made_anew_by_what_is_set() -> None:
    tree = sample()
    node = tree["n"]
    del tree["n"]
    assert "copies" not in node
    with pytest.raises(KeyError):
        node.to_dict()
    node["c"] = 5
    assert tree.to_dict() == {"n": {"c": 5}, "z": 1.5}


def test_name_of_two_surrogates_is_that_of_the_character() -> None:
    tree = pm9.Tree({"\U0001f600": 1})
    tree.make_child("\U0001f601")
    assert tree.type_of("\ud83d\ude00") is pm9.Type.LONG
    assert tree.child("\ud83d\ude01").to_dict() == {}


def test_walk_goes_in_order() -> None:
    tree = pm9.Tree({"b": {"x": 1, "c": {"y": 2}}, "a": {"z": 3}, "top": 4})
    walked = [(node.path, properties) for node, properties in tree.walk()]
    assert walked == [("\\", {"top": 4}), ("\\b", {"x": 1}), ("\\b\\c", {"y": 2}), ("\\a", {"z": 3})]
    assert [node.path for node, _ in tree.walk(1)] == ["\\", "\\b", "\\a"]
    assert [node.name for node, _ in tree.child("b").walk()] == ["b", "c"]


def test_equality_is_that_of_nested_dicts() -> None:
    tree = sample()
    assert tree == {"z": 1.5, "n": {"copies": 2, "m": {"deep": 1}}}
    assert tree == sample() and tree != pm9.Tree() and tree != 5
    with pytest.raises(TypeError):
        hash(tree)


def test_repr_tells_the_path() -> None:
    tree = sample()
    assert repr(tree) == "<Tree \\>" and repr(tree.child("n").child("m")) == "<Node \\n\\m>"


def test_tree_of_several_threads_stays_whole() -> None:
    tree = pm9.Tree()

    def work(number: int) -> None:
        for at in range(200):
            tree[f"{number}.{at}"] = at

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(tree) == 800


def test_path_that_is_too_deep_is_error_51() -> None:
    tree = pm9.Tree()
    with pytest.raises(pm9.Error) as caught:
        tree.set("\\".join(["a"] * 257), 1)
    assert caught.value.number == 51 and caught.value.kind == 1
