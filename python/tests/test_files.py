"""Loads and saves."""

from __future__ import annotations

import copy
import errno
import os
import pickle
from collections.abc import Iterator
from pathlib import Path

import pytest

import pm9

SAMPLES = Path(os.environ["PM9_SAMPLES"])
BAD = b"PIAFILEVERSION_2.0\na=\nb=1\nc=x\n"


@pytest.fixture
def usual_code_page() -> Iterator[None]:
    before = pm9.code_page()
    yield
    pm9.set_code_page(before)


def test_saved_tree_is_loaded_again(tmp_path: Path) -> None:
    tree = pm9.Tree({"media": {"copies": 2, "width": 0.1, "name": "A0", "rolled": True, "raw": b"\0\1"}})
    for file_type in (pm9.FileType.PIA, pm9.FileType.DOC):
        file = tmp_path / file_type.name
        tree.save(file, type=file_type)
        loaded = pm9.load(file)
        assert loaded.to_dict() == tree.to_dict() and loaded.reports == []
        assert loaded.child("media").type_of("width") is pm9.Type.DOUBLE


def test_every_format_is_known_by_its_content() -> None:
    for name in ("dx4200", "office.pc2", "pens.pcp", "plotter-compressed.pia", "plotter.pia", "sections.dpia"):
        assert len(pm9.load(SAMPLES / name)) > 0


def test_compressed_file_holds_the_same_tree() -> None:
    assert pm9.load(SAMPLES / "plotter.pia") == pm9.load(str(SAMPLES / "plotter-compressed.pia"))


def test_tag_asks_for_compression() -> None:
    tree = pm9.Tree({"a": "x" * 1000})
    plain, packed = tree.to_bytes(tag="T_1.0"), tree.to_bytes(tag="T_1.0,compress")
    assert plain.startswith(b"PIAFILEVERSION_2.0,T_1.0\r\n") and len(packed) < 200
    assert pm9.loads(packed) == tree


def test_section_and_plotter_are_loaded_alone() -> None:
    archive = pm9.load(SAMPLES / "sections.dpia", section="Archive")
    assert archive != pm9.load(SAMPLES / "sections.dpia", section="Office")
    with pytest.raises(pm9.Error) as caught:
        pm9.load(SAMPLES / "sections.dpia", section="never")
    assert caught.value.number == 83
    assert pm9.load(SAMPLES / "three-plotters.cfg", plotter=1) != pm9.load(SAMPLES / "three-plotters.cfg", plotter=2)


def test_load_goes_into_its_base() -> None:
    tree = pm9.Tree({"kept": 1})
    tree.load_bytes(b"PIAFILEVERSION_2.0\na=1\n", base=r"\here")
    assert tree.to_dict() == {"kept": 1, "here": {"a": 1}}


def test_bad_lines_are_reports() -> None:
    tree = pm9.loads(BAD)
    assert tree.to_dict() == {"b": 1}
    assert [(report.kind, report.number) for report in tree.reports] == [(2, 57), (1, 88)]
    assert tree.reports[0].place == "PM_PIAFile::load()" and "a=" in tree.reports[0].detail


def test_load_ends_where_it_is_told() -> None:
    heard: list[pm9.Report] = []

    def ask(report: pm9.Report) -> bool:
        heard.append(report)
        return report.number != 88

    with pytest.raises(pm9.Error) as caught:
        pm9.loads(BAD, on_report=ask)
    assert caught.value.kind == 6 and [report.number for report in heard] == [57, 88]


def test_what_the_asked_raises_comes_out() -> None:
    def ask(report: pm9.Report) -> bool:
        raise LookupError(report.number)

    with pytest.raises(LookupError) as caught:
        pm9.loads(BAD, on_report=ask)
    assert caught.value.args == (57,)


def test_tree_cant_be_used_while_it_is_loaded() -> None:
    tree = pm9.Tree()
    with pytest.raises(RuntimeError):
        tree.load_bytes(BAD, on_report=lambda report: "a" in tree)
    assert "b" not in tree


def test_name_of_a_file_may_be_any_bytes(tmp_path: Path) -> None:
    name = os.fsencode(tmp_path) + b"/n\xff.pia"
    pm9.Tree({"a": 1}).save(name)
    assert pm9.load(os.fsdecode(name)).to_dict() == {"a": 1}


def test_failure_tells_all(tmp_path: Path) -> None:
    with pytest.raises(FileNotFoundError) as caught:
        pm9.load(tmp_path / "never.pia")
    error = caught.value
    assert isinstance(error, pm9.NoSuchFileError) and isinstance(error, pm9.Error)
    assert (error.number, error.kind, error.detail) == (63, 4, str(tmp_path / "never.pia"))
    assert (error.errno, error.filename) == (errno.ENOENT, str(tmp_path / "never.pia"))
    assert error.strerror == os.strerror(errno.ENOENT)
    assert error.place != "" and str(error) == f"The file doesn't exist: {error.detail}"


def test_failure_is_copied_whole(tmp_path: Path) -> None:
    for file in (tmp_path / "never.pia", tmp_path):
        with pytest.raises(pm9.Error) as caught:
            pm9.load(file)
        for other in (copy.copy(caught.value), pickle.loads(pickle.dumps(caught.value))):
            assert type(other) is type(caught.value) and str(other) == str(caught.value)
            assert vars(other) == vars(caught.value)
            assert getattr(other, "filename", None) == getattr(caught.value, "filename", None)


def test_name_with_a_zero_is_error_51() -> None:
    name = str(SAMPLES / "plotter.pia")
    for act in (pm9.load, pm9.check, pm9.Tree().read, pm9.Tree({"a": 1}).save):
        with pytest.raises(pm9.Error) as caught:
            act(f"{name}\0junk")  # type: ignore[operator]
        assert (caught.value.number, caught.value.detail) == (51, name)


def test_reports_are_those_of_the_last_load(tmp_path: Path) -> None:
    tree = pm9.loads(BAD)
    with pytest.raises(pm9.NoSuchFileError):
        tree.load(tmp_path / "never.pia")
    assert tree.reports == []


def test_line_without_a_sign_ends_the_load() -> None:
    tree = pm9.Tree()
    with pytest.raises(pm9.Error) as caught:
        tree.load_bytes(b"PIAFILEVERSION_2.0\nb=1\nbad line\na=1\n")
    assert caught.value.number == 57 and tree.to_dict() == {"b": 1} and tree.reports == []


def test_plotter_of_another_format_is_error_67() -> None:
    with pytest.raises(pm9.Error) as caught:
        pm9.load(SAMPLES / "plotter.pia", plotter=2)
    assert caught.value.number == 67


def test_type_that_isnt_written_is_error_67(tmp_path: Path) -> None:
    with pytest.raises(pm9.Error) as caught:
        pm9.Tree().save(tmp_path / "a", type=pm9.FileType.PC2)
    assert caught.value.number == 67
    with pytest.raises(ValueError):
        pm9.Tree().save(tmp_path / "a", type=12)  # type: ignore[arg-type]


def test_content_of_no_kind_is_error_56() -> None:
    with pytest.raises(pm9.Error) as caught:
        pm9.loads(b"nothing")
    assert caught.value.number == 56


def test_code_page_tells_narrow_text(usual_code_page: None) -> None:
    assert pm9.code_page() == 1252
    pm9.set_code_page(1251)
    assert pm9.loads(b'PIAFILEVERSION_2.0\na="\xc6\n')["a"] == "Ж"
    with pytest.raises(pm9.Error) as caught:
        pm9.set_code_page(1)
    assert caught.value.number == 78 and pm9.code_page() == 1251


def test_texts_of_errors() -> None:
    assert pm9.error_text(57) == "The line isn't valid" and pm9.error_text(1) == ""
    assert pm9.version().startswith("9.")
