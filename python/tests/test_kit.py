"""Comparison, scripts, merging, JSON, conversion and checks."""

from __future__ import annotations

import json
import math
import os
from pathlib import Path

import pytest

import pm9

SAMPLES = Path(os.environ["PM9_SAMPLES"])


def sample(copies: int = 2) -> pm9.Tree:
    return pm9.Tree({"media": {"copies": copies, "name": "A0", "raw": b"\0\1"}})


def test_diff_tells_kind_path_and_values() -> None:
    other = sample(3)
    other["media"]["new"] = {"t": True}
    del other["media"]["raw"]
    assert pm9.diff(sample(), other) == [
        pm9.Difference(pm9.Change.REMOVED, "\\media\\raw", b"\0\1"),
        pm9.Difference(pm9.Change.VALUE, "\\media\\copies", 2, 3),
        pm9.Difference(pm9.Change.ADDED, "\\media\\new\\"),
        pm9.Difference(pm9.Change.ADDED, "\\media\\new\\t", None, True),
    ]
    assert pm9.diff(other, other) == []


def test_diff_leaves_out_and_tolerates() -> None:
    first, second = pm9.Tree({"a": 1.0, "b": "x"}), pm9.Tree({"a": 1.01, "b": "y"})
    assert [each.path for each in pm9.diff(first, second)] == ["\\a", "\\b"]
    assert [each.path for each in pm9.diff(first, second, tolerance=0.1, exclude=["\\b"])] == []


def test_diff_tells_a_change_of_type_and_of_order() -> None:
    assert pm9.diff(pm9.Tree({"a": 1}), pm9.Tree({"a": "1"})) == [pm9.Difference(pm9.Change.TYPE, "\\a", 1, "1")]
    first, second = pm9.Tree({"a": 1, "b": 2}), pm9.Tree({"b": 2, "a": 1})
    assert [each.change for each in pm9.diff(first, second)] == [pm9.Change.ORDER]
    assert pm9.diff(first, second, order=False) == []


def test_diff_takes_trees_only() -> None:
    with pytest.raises(TypeError):
        pm9.diff(sample(), {})  # type: ignore[arg-type]
    with pytest.raises(TypeError):
        pm9.diff(sample(), sample(), exclude="a")
    with pytest.raises(pm9.InputError):
        pm9.diff(sample(), sample(), exclude=["a\0b"])


def test_script_turns_one_tree_into_the_other() -> None:
    first, second = sample(), sample(5)
    second["media"]["odd \ud800;{\n"] = "two\nlines \"quoted\""
    first.apply(pm9.script(first, second))
    assert first == second and pm9.diff(first, second) == []


def test_script_with_a_mistake_changes_nothing() -> None:
    tree = sample()
    with pytest.raises(pm9.InputError) as caught:
        tree.apply("set \\new long 1\nnonsense\n")
    assert caught.value.line == 2 and isinstance(caught.value, ValueError) and tree == sample()


def test_merge_takes_both_sides() -> None:
    base, first, second = sample(), sample(3), sample(4)
    second["added"] = 1
    merged, conflicts = pm9.merge(base, first, second)
    assert merged.to_dict() == {"added": 1, "media": {"copies": 3, "name": "A0", "raw": b"\0\1"}}
    assert conflicts == [pm9.Conflict("\\media\\copies", 2, 3, 4)]
    merged, _ = pm9.merge(base, first, second, prefer_second=True)
    assert merged["media"]["copies"] == 4


def test_json_is_exact() -> None:
    tree = pm9.Tree({"zero": -0.0, "third": 1 / 3, "nan": math.nan, "lone": "\ud800", "raw": b"\0\xff", "n": {"t": True}})
    again = pm9.Tree.from_json(tree.to_json())
    assert pm9.diff(tree, again) == []
    assert json.loads(sample().to_json(plain=True))["media"]["copies"] == 2
    assert "\n" not in sample().to_json(one_line=True).rstrip("\n")
    with pytest.raises(pm9.InputError):
        pm9.Tree.from_json("[]")


def test_whole_file_has_a_node_for_each_section() -> None:
    tree = pm9.Tree()
    tree.read(SAMPLES / "sections.dpia")
    assert list(tree) == ["Office", "Workshop", "Archive"]
    tree.read(SAMPLES / "sections.dpia", section="Archive")
    assert tree == pm9.load(SAMPLES / "sections.dpia", section="Archive")


def test_conversion_gives_what_was_lost(tmp_path: Path) -> None:
    target = tmp_path / "a.pia"
    assert pm9.convert(SAMPLES / "dx4200", target, tag="T_1.0,compress") == []
    assert pm9.load(target) == pm9.load(SAMPLES / "dx4200")
    assert [path.name for path in tmp_path.iterdir()] == ["a.pia"]


def test_conversion_that_loses_something_is_refused(tmp_path: Path) -> None:
    source, target = tmp_path / "a.pia", tmp_path / "b.pia"
    pm9.Tree({"a": "Ж", "b": 1}).save(source, utf8=True)
    with pytest.raises(pm9.LossError) as caught:
        pm9.convert(source, target, code_page=65001)
    loss = caught.value.losses[0]
    assert (loss.kind, loss.path, loss.before, loss.after) == ("re-encoded", "\\a", "Ж", "?") and loss.reason != ""
    assert len(caught.value.losses) == 1 and str(caught.value) == str(loss) and not target.exists()
    assert pm9.convert(source, target, code_page=65001, lossy=True) == caught.value.losses
    assert pm9.load(target).to_dict() == {"a": "?", "b": 1}
    assert pm9.convert(source, target, code_page=65001, utf8=True) == []
    assert sorted(path.name for path in tmp_path.iterdir()) == ["a.pia", "b.pia"]


def test_conversion_tells_what_the_source_couldnt_give(tmp_path: Path) -> None:
    source, target = tmp_path / "a.pia", tmp_path / "b.pia"
    source.write_bytes(b"PIAFILEVERSION_2.0,\na=\nb=1\n")
    losses = pm9.convert(source, target, lossy=True)
    assert [loss.kind for loss in losses] == ["source"] and losses[0].reason.startswith("The line isn't valid: 2, a=")
    assert pm9.load(target).to_dict() == {"b": 1}


def test_sections_keep_their_texts(tmp_path: Path) -> None:
    target = tmp_path / "a.dpia"
    assert pm9.convert(SAMPLES / "sections.dpia", target, type=pm9.FileType.DPIA) == []
    assert b"Drawing office, third floor" in target.read_bytes()


def test_prepared_content_is_that_of_the_file() -> None:
    tree = sample()
    tree["empty"] = {}
    content, losses = pm9.prepare(tree, type=pm9.FileType.DOC)
    assert pm9.Tree(tree["media"]).to_dict() == sample()["media"].to_dict()
    assert content.startswith(b"\xd0\xcf\x11\xe0") and [loss.path for loss in losses] == ["\\empty\\"]


def test_configuration_is_held_against_a_device() -> None:
    device, configuration = pm9.load(SAMPLES / "dx4200"), pm9.load(SAMPLES / "plotter.pia")
    for finding in pm9.compatibility(configuration, device):
        assert finding.rule != "" and finding.message != "" and finding.severity in pm9.Severity
    with pytest.raises(pm9.InputError):
        pm9.compatibility(device, configuration)
    with pytest.raises(pm9.InputError):
        pm9.compatibility(configuration, device, map="no JSON")


def test_page_shows_a_device_and_configurations() -> None:
    device, one = pm9.load(SAMPLES / "dx4200"), pm9.load(SAMPLES / "plotter.pia")
    page = pm9.report_page(device, {"first <one>": one, "Zweite – 2": pm9.load(SAMPLES / "office.pc2")}, name="DX")
    assert page.startswith("<!DOCTYPE html>") and page.index("first &lt;one&gt;") < page.index("Zweite – 2")
    assert "Does it fit?" in page and "Does it fit?" not in pm9.report_page(device)
    assert "plotter alone" in pm9.report_page(configurations={"plotter alone": one})
    assert pm9.report_page(device, {"a": one}, owner=3) != pm9.report_page(device, {"a": one})


def test_page_of_nothing_is_refused() -> None:
    with pytest.raises(pm9.Error) as caught:
        pm9.report_page()
    assert caught.value.number == 78
    with pytest.raises(pm9.InputError):
        pm9.report_page(pm9.load(SAMPLES / "plotter.pia"))
    with pytest.raises(pm9.InputError):
        pm9.report_page(configurations={"a": sample()}, map="no JSON")
    with pytest.raises(TypeError):
        pm9.report_page(configurations={"a": {}})  # type: ignore[dict-item]


def test_check_tells_rule_place_and_words(tmp_path: Path) -> None:
    file = tmp_path / "bad.pia"
    file.write_bytes(b"PIAFILEVERSION_2.0,\na=\nb=1\n")
    first = pm9.check(file)[0]
    assert (first.rule, first.severity, first.line, first.number) == ("bad-line", pm9.Severity.ERROR, 2, 57)
    assert first.file == str(file) and str(first) == f"{file}:2: error: {first.message} [bad-line]"
    assert pm9.check(file, without=["bad-line"], rules=["bad-line"]) == []
    with pytest.raises(pm9.InputError):
        pm9.check(file, rules=["bad-lin"])
    assert [each.rule for each in pm9.check(tmp_path / "never")] == ["unreadable"]
