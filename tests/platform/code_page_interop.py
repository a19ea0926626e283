"""Python's codecs read and write every byte, pair of bytes and unit as our code pages do.

Usage: code_page_interop.py LIST_CODE_PAGES
"""

import subprocess
import sys
from collections import defaultdict

SINGLE = {
    **{page: f"cp{page}" for page in (437, 720, 737, 775, 850, 852, 855, 857, 858, 860, 861, 862, 863, 864,
                                      865, 866, 869, 874, *range(1250, 1259))},
    20127: "ascii", 20866: "koi8_r", 21866: "koi8_u",
    **{28590 + part: f"iso8859_{part}" for part in (1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 15)},
}
DOUBLE = {932: "cp932", 936: "gbk", 949: "cp949", 950: "cp950"}
PAIRS = {932: 9604, 936: 23940, 949: 17236, 950: 19720}

errors = []


def expect(holds, *what):
    if not holds:
        errors.append(" ".join(str(each) for each in what))


def listed(program):
    """By page: bytes to text, and text to bytes."""
    decoded, encoded = defaultdict(dict), defaultdict(dict)
    output = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    for line in output.splitlines():
        page, direction, source, result = line.split()
        if direction == "decode":
            text = bytes.fromhex(result).decode("utf_16_be", "surrogatepass")
            decoded[int(page)][bytes.fromhex(source)] = text
        else:
            encoded[int(page)][chr(int(source, 16))] = bytes.fromhex(result)
    return decoded, encoded


def python_text(codec, encoded):
    try:
        return encoded.decode(codec)
    except UnicodeDecodeError:
        return None


def is_private(text):
    return "\uE000" <= text <= "\uF8FF"


def check_single(page, codec, decoded, encoded):
    for byte in range(256):
        source = bytes([byte])
        # 864 has a percent sign of its own at 25; ASCII is ASCII here.
        expected = python_text(codec, source) if byte >= 0x80 else chr(byte)
        ours = decoded[source]
        expect(encoded.get(ours) == source, page, source.hex(), "doesn't come back")
        if expected is not None:
            expect(ours == expected, page, source.hex(), "is", ascii(ours), "not", ascii(expected))
        elif (page, byte) == (1255, 0xCA):
            expect(ours == "\u05BA", page, source.hex(), "is", ascii(ours))
        else:
            control = byte < 0xA0 and ours == chr(byte)
            expect(control or is_private(ours), page, source.hex(), "is", ascii(ours))
    expect(set(encoded) == set(decoded.values()), page, "writes units that it doesn't read")


def check_double(page, codec, decoded, encoded):
    pairs = {source: unit for source, unit in decoded.items() if len(source) == 2}
    expect(len(pairs) == PAIRS[page], page, "has", len(pairs), "pairs")
    for lead in range(0x81, 0xFF):
        for trail in range(256):
            source = bytes([lead, trail])
            expected = python_text(codec, source)
            ours = pairs.get(source)
            if expected is None or len(expected) != 1:
                expect(ours is None or is_private(ours), page, source.hex(), "is", ascii(ours))
            elif page == 950 and b"\xC6\xA1" <= source <= b"\xC7\xFC":
                # Windows has private-use characters where others have an extension of the vendor ETEN.
                expect(ours is not None and is_private(ours), page, source.hex(), "is", ascii(ours))
            else:
                expect(ours == expected, page, source.hex(), "is", ascii(ours), "not", ascii(expected))
    for unit, narrow in encoded.items():
        expect(decoded[narrow] == unit, page, ascii(unit), "goes out as", narrow.hex())
    readable = {unit for unit in decoded.values() if len(unit) == 1 and unit != "\uFFFD"}
    expect(set(encoded) == readable, page, "writes units that it doesn't read, or the other way about")


def main(program):
    decoded, encoded = listed(program)
    for page, codec in SINGLE.items():
        check_single(page, codec, decoded[page], encoded[page])
    for page, codec in DOUBLE.items():
        check_double(page, codec, decoded[page], encoded[page])
    if errors:
        sys.exit("\n".join(errors[:50] + [f"{len(errors)} errors"]))


main(sys.argv[1])
