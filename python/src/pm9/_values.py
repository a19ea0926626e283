"""Values on their way to the library and back."""

from __future__ import annotations

from enum import IntEnum
from typing import Any, Union

from pm9._library import bytes_out, ffi, struct, text_in, text_out

Value = Union[int, float, str, bool, bytes, None]
"""What a property holds; None for one that was never given a value. Bytes go in as bytearray and memoryview, too."""


class Type(IntEnum):
    """The type of a property."""

    NONE = 0
    LONG = 1
    DOUBLE = 2
    STRING = 3
    BOOL = 4
    RAW = 5


def value_in(value: object) -> tuple[Any, Any]:
    """The struct of a value, and what has to live as long as it is used.

    TypeError for what no property can hold, OverflowError for an integer beyond 32 bits.
    """
    if isinstance(value, bool):
        return struct("pm9_value", type=Type.BOOL, number=int(value)), None
    if isinstance(value, int):
        if not -2**31 <= value < 2**31:
            raise OverflowError(f"an integer of a property has 32 bits, {value} has more")
        return struct("pm9_value", type=Type.LONG, number=value), None
    if isinstance(value, float):
        return struct("pm9_value", type=Type.DOUBLE, real=value), None
    if isinstance(value, str):
        data = ffi.from_buffer(text_in(value))
        return struct("pm9_value", type=Type.STRING, data=data, length=len(data)), data
    if isinstance(value, (bytes, bytearray, memoryview)):
        data = ffi.from_buffer(bytes(value))
        return struct("pm9_value", type=Type.RAW, data=data, length=len(data)), data
    raise TypeError(f"a property holds int, float, str, bool or bytes, not {type(value).__name__}")


def value_out(held: Any) -> Value:
    """The value of a pm9_value or a pm9_item; the stored bytes of one that is damaged."""
    if held.type == Type.LONG:
        return int(held.number)
    if held.type == Type.DOUBLE:
        return float(held.real)
    if held.type == Type.BOOL:
        return bool(held.number)
    if held.type == Type.STRING:
        return text_out(held.data, held.length)
    if held.type == Type.RAW:
        return bytes_out(held.data, held.length)
    return None
