"""Files that are replaced whole, or stay as they were."""

from __future__ import annotations

import errno
import fcntl
import os
import secrets
import stat
import struct
from collections.abc import Iterator
from contextlib import contextmanager
from typing import Optional

from pm9._tree import File


def replace(target: File, content: bytes) -> None:
    """Writes the content beside the target, and then in its place; what isn't a regular file is written to.

    A link stays and what it leads to is replaced; the new file has the owner, rights and attributes of the old one, as
    far as the process may give them. OSError for one that can't be written.
    """
    if not os.fspath(target):
        raise FileNotFoundError(errno.ENOENT, os.strerror(errno.ENOENT), target)
    path = os.path.realpath(os.fsdecode(target))
    old = _status(path)
    if old is not None and not stat.S_ISREG(old.st_mode):
        with open(path, "wb") as file:
            file.write(content)
        return
    if old is not None and not os.access(path, os.W_OK):
        raise PermissionError(errno.EACCES, os.strerror(errno.EACCES), path)
    made = os.path.join(os.path.dirname(path), f".pm9-{secrets.token_hex(8)}")
    handle = os.open(made, os.O_WRONLY | os.O_CREAT | os.O_EXCL | os.O_CLOEXEC, 0o666 if old is None else 0o600)
    try:
        with open(handle, "wb") as file:
            file.write(content)
            file.flush()
            if old is not None:
                _take_over(file.fileno(), path, old)
            os.fsync(file.fileno())
        os.replace(made, path)
    except BaseException:
        os.unlink(made)
        raise


def _status(path: str) -> Optional[os.stat_result]:
    try:
        return os.stat(path)
    except FileNotFoundError:
        return None


def _take_over(handle: int, path: str, old: os.stat_result) -> None:
    """Owner, attributes and rights of the old file; nobody gets rights who hadn't them."""
    for owner in (old.st_uid, -1):
        try:
            os.fchown(handle, owner, old.st_gid)
            break
        except PermissionError:
            continue
    new, mode = os.fstat(handle), stat.S_IMODE(old.st_mode)
    if (new.st_uid, new.st_gid) != (old.st_uid, old.st_gid):
        mode &= 0o777
    if new.st_gid != old.st_gid:
        mode &= ~0o070 | (mode & 0o007) << 3  # another group gets what everybody has
    else:
        _copy_attributes(handle, path)
    os.fchmod(handle, mode)


def _copy_attributes(handle: int, path: str) -> None:
    try:
        for name in os.listxattr(path):
            if not name.startswith("security.") or name == "security.selinux":
                os.setxattr(handle, name, os.getxattr(path, name))
    except OSError:
        pass  # a file system without them, or one that the process may not set


@contextmanager
def locked(file: File) -> Iterator[None]:
    """Waits until no other program changes the file in place, and keeps others waiting."""
    path = os.path.realpath(os.fsdecode(file))
    handle = _lock(path)
    try:
        yield
    finally:
        if handle is not None:
            os.close(handle)


def _lock(path: str) -> Optional[int]:
    while True:
        try:
            handle = os.open(path, os.O_RDWR | os.O_CLOEXEC | os.O_NONBLOCK)
        except OSError:
            return None  # it can't be changed, which is told where it is tried
        # struct flock, whole file; of the open file, so that nothing else in the process lets it go.
        whole = struct.pack("hhqqi4x", fcntl.F_WRLCK, os.SEEK_SET, 0, 0, 0)
        try:
            fcntl.fcntl(handle, fcntl.F_OFD_SETLKW, whole)
        except OSError:
            return handle  # a file system without locks
        if _is_at(handle, path):
            return handle
        os.close(handle)  # who held the lock has put another file in its place


def _is_at(handle: int, path: str) -> bool:
    now = _status(path)
    return now is not None and os.path.samestat(now, os.fstat(handle))
