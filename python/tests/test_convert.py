"""Conversion by the rule of writing, and the file that it replaces."""

from __future__ import annotations

import copy
import os
import pickle
import stat
import threading
from collections.abc import Iterator
from pathlib import Path

import pytest

import pm9
from pm9._replacing import locked

SAMPLES = Path(os.environ["PM9_SAMPLES"])
HEADER = b"PIAFILEVERSION_2.0,\n"


def losses(content: bytes, folder: Path) -> list[str]:
    """What converting such a file is refused for."""
    source, target = folder / "source", folder / "target.pia"
    source.write_bytes(content)
    with pytest.raises(pm9.LossError) as caught:
        pm9.convert(source, target)
    assert not target.exists()
    return [loss.reason for loss in caught.value.losses]


def test_what_the_source_doesnt_report_is_a_loss(tmp_path: Path) -> None:
    told = losses(HEADER + b"a=12 34\na=5\nb=truely\n", tmp_path)
    assert [reason[:7] for reason in told] == ["line 2,", "line 3,", "line 4,"]


def test_bad_line_is_told_once(tmp_path: Path) -> None:
    told = losses(HEADER + b"a=\na=1\na=5\n", tmp_path)
    assert told[0].startswith("The line isn't valid: 2, a=")
    assert [reason[:7] for reason in told[1:]] == ["line 4,"]


def test_what_was_lost_is_given_where_it_may_be(tmp_path: Path) -> None:
    source, target = tmp_path / "a.pia", tmp_path / "b.pia"
    source.write_bytes(HEADER + b"a=1\na=5\n")
    given = pm9.convert(source, target, lossy=True)
    assert [(loss.kind, loss.path) for loss in given] == [("source", "\\a")] and target.exists()


def test_file_of_several_trees_becomes_no_pia_file(tmp_path: Path) -> None:
    target = tmp_path / "a.pia"
    with pytest.raises(pm9.InputError, match="several plotters; choose one with section .1, 2, 3."):
        pm9.convert(SAMPLES / "three-plotters.cfg", target)
    with pytest.raises(pm9.InputError, match="several trees; choose one with section .Office, Workshop, Archive."):
        pm9.convert(SAMPLES / "sections.dpia", target)
    assert not target.exists()
    pm9.convert(SAMPLES / "three-plotters.cfg", target, section="2")
    assert pm9.load(target) == pm9.load(SAMPLES / "three-plotters.cfg", plotter=2)


def test_file_of_one_tree_becomes_a_section_of_its_name(tmp_path: Path) -> None:
    target = tmp_path / "a.dpia"
    assert pm9.convert(SAMPLES / "plotter.pia", target, type=pm9.FileType.DPIA) == []
    assert pm9.load(target, section="plotter") == pm9.load(SAMPLES / "plotter.pia")


def test_chosen_section_keeps_its_name_and_info_text(tmp_path: Path) -> None:
    target = tmp_path / "a.dpia"
    assert pm9.convert(SAMPLES / "sections.dpia", target, type=pm9.FileType.DPIA, section="Office") == []
    assert pm9.load(target, section="Office") == pm9.load(SAMPLES / "sections.dpia", section="Office")
    assert b"Drawing office, third floor" in target.read_bytes() and b"Workshop" not in target.read_bytes()


def test_tag_of_the_header_stays(tmp_path: Path) -> None:
    target = tmp_path / "a.pia"
    pm9.convert(SAMPLES / "plotter-compressed.pia", target)
    assert target.read_bytes().startswith(b"PIAFILEVERSION_2.0,DX4200CFG_1.0\r\n")
    pm9.convert(SAMPLES / "plotter-compressed.pia", target, tag="")
    assert target.read_bytes().startswith(b"PIAFILEVERSION_2.0,\r\n")


def test_header_is_for_pia_files_only(tmp_path: Path) -> None:
    with pytest.raises(ValueError, match="PIA"):
        pm9.convert(SAMPLES / "plotter.pia", tmp_path / "a.doc", type=pm9.FileType.DOC, tag="T_1.0")
    with pytest.raises(ValueError, match="PIA"):
        pm9.convert(SAMPLES / "plotter.pia", tmp_path / "a.doc", type=pm9.FileType.DOC, utf8=True)
    assert list(tmp_path.iterdir()) == []


def test_text_in_utf8_is_read_and_written_as_such(tmp_path: Path) -> None:
    source, target = tmp_path / "a.pia", tmp_path / "b"
    pm9.Tree({"a": "Ж"}).save(source, utf8=True)
    assert pm9.convert(source, target) == []
    assert "Ж".encode() in target.read_bytes()
    assert pm9.convert(source, target, type=pm9.FileType.DOC) == []
    assert pm9.code_page() == 1252


def test_pipe_is_converted(tmp_path: Path) -> None:
    pipe, target = tmp_path / "pipe", tmp_path / "a.pia"
    os.mkfifo(pipe)
    writer = threading.Thread(target=pipe.write_bytes, args=[(SAMPLES / "plotter.pia").read_bytes()])
    writer.start()
    assert pm9.convert(pipe, target) == []
    writer.join()
    assert pm9.load(target) == pm9.load(SAMPLES / "plotter.pia")


def mode(file: Path) -> int:
    return stat.S_IMODE(file.stat().st_mode)


def test_target_keeps_its_rights(tmp_path: Path) -> None:
    target = tmp_path / "a.pia"
    target.write_bytes(b"old")
    target.chmod(0o640)
    pm9.convert(SAMPLES / "plotter.pia", target)
    assert mode(target) == 0o640 and pm9.load(target) == pm9.load(SAMPLES / "plotter.pia")


@pytest.fixture
def narrow_mask() -> Iterator[None]:
    before = os.umask(0o027)
    yield
    os.umask(before)


def test_new_target_has_the_usual_rights(tmp_path: Path, narrow_mask: None) -> None:
    pm9.convert(SAMPLES / "plotter.pia", tmp_path / "a.pia")
    assert mode(tmp_path / "a.pia") == 0o640


def test_what_a_link_leads_to_is_replaced(tmp_path: Path) -> None:
    (tmp_path / "folder").mkdir()
    target, link = tmp_path / "folder" / "a.pia", tmp_path / "link.pia"
    target.write_bytes(b"old")
    link.symlink_to("folder/a.pia")
    pm9.convert(SAMPLES / "plotter.pia", link)
    assert link.is_symlink() and pm9.load(target) == pm9.load(SAMPLES / "plotter.pia")
    assert [path.name for path in target.parent.iterdir()] == ["a.pia"]


def test_target_that_cant_be_written_leaves_nothing(tmp_path: Path) -> None:
    with pytest.raises(IsADirectoryError):
        pm9.convert(SAMPLES / "plotter.pia", tmp_path)
    with pytest.raises(FileNotFoundError):
        pm9.convert(SAMPLES / "plotter.pia", tmp_path / "never" / "a.pia")
    assert list(tmp_path.iterdir()) == []


def test_change_in_place_waits_for_its_turn(tmp_path: Path) -> None:
    file = tmp_path / "a.pia"
    file.write_bytes(HEADER + b"a=1\n")
    converting = threading.Thread(target=pm9.convert, args=[file, file])
    with locked(file):
        converting.start()
        converting.join(0.2)
        assert converting.is_alive()
        changed = tmp_path / "b.pia"
        changed.write_bytes(HEADER + b"a=2\n")
        changed.replace(file)
    converting.join()
    assert pm9.load(file).to_dict() == {"a": 2}


def test_losses_are_told_by_a_copy_too() -> None:
    error = pm9.LossError([pm9.Loss("lost", r"\p", "r"), pm9.Loss("lost", r"\q", "r")])
    for other in (error, copy.copy(error), pickle.loads(pickle.dumps(error))):
        assert str(other) == r"\p: lost: r and 1 more" and other.losses == error.losses


def test_target_without_a_name_doesnt_exist() -> None:
    with pytest.raises(FileNotFoundError):
        pm9.convert(SAMPLES / "plotter.pia", "")
