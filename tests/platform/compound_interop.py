#!/usr/bin/python3
"""Writes compound files by the program given and reads them with other readers:
olefile, the command gsf, and a strict one of its own that finds elements by binary search.

compound_interop.py <write_compound_file>
"""

import os
import re
import struct
import subprocess
import sys
import tempfile
import unittest

import olefile

WRITER = sys.argv.pop(1)


def content(size):
    return bytes((7 * at + size) & 0xFF for at in range(size))


def upper(unit):
    character = chr(unit)
    if 0xD800 <= unit < 0xE000:
        return unit
    for mapped in (character.upper(), character.title()):  # the second where the first is of several units
        if len(mapped) == 1:
            return ord(mapped)
    return unit


def key(name):
    units = struct.unpack("<%dH" % (len(name.encode("utf-16-le")) // 2), name.encode("utf-16-le"))
    return len(units), [upper(unit) for unit in units]


class StrictReader:
    """Follows the format to the letter, and fails where a file doesn't."""

    END, FREE, FAT, DIFAT = 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFD, 0xFFFFFFFC

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        assert self.data[:8] == bytes.fromhex("D0CF11E0A1B11AE1")
        assert struct.unpack_from("<HHH", self.data, 26) == (3, 0xFFFE, 9)
        assert len(self.data) % 512 == 0
        number, self.directory_start = struct.unpack_from("<II", self.data, 44)
        cutoff, mini_fat, mini_fat_count, difat, difat_count = struct.unpack_from("<IIIII", self.data, 56)
        assert cutoff == 4096
        self.read_fat(number, difat, difat_count)
        self.entries = self.split_directory(self.chain(self.directory_start))
        root = self.entries[0]
        assert root["type"] == 5 and root["colour"] == 1 and root["name"] == "Root Entry"
        mini = self.chain(mini_fat)
        assert len(mini) == 512 * mini_fat_count
        self.mini_fat = struct.unpack("<%dI" % (len(mini) // 4), mini)
        self.mini_stream = self.chain(root["start"])[: root["size"]] if root["size"] else b""
        assert len(self.mini_stream) == root["size"]

    def sector(self, number):
        assert 512 * (number + 2) <= len(self.data)
        return self.data[512 * (number + 1) : 512 * (number + 2)]

    def read_fat(self, number, difat, difat_count):
        listed = list(struct.unpack_from("<109I", self.data, 76))
        difat_sectors = []
        while difat not in (self.END, self.FREE):
            difat_sectors.append(difat)
            more = struct.unpack("<128I", self.sector(difat))
            listed += more[:127]
            difat = more[127]
        assert len(difat_sectors) == difat_count
        assert all(each == self.FREE for each in listed[number:])
        self.fat = b"".join(self.sector(each) for each in listed[:number])
        self.fat = struct.unpack("<%dI" % (len(self.fat) // 4), self.fat)
        assert all(self.fat[each] == self.FAT for each in listed[:number])
        assert all(self.fat[each] == self.DIFAT for each in difat_sectors)

    def chain(self, start):
        parts = []
        while start != self.END:
            parts.append(self.sector(start))
            start = self.fat[start]
        return b"".join(parts)

    @staticmethod
    def split_directory(directory):
        entries = []
        for at in range(0, len(directory), 128):
            raw = directory[at : at + 128]
            size, kind, colour, left, right, child = struct.unpack_from("<HBBIII", raw, 64)
            start, length = struct.unpack_from("<IQ", raw, 116)
            entries.append(
                dict(
                    name=raw[: max(size - 2, 0)].decode("utf-16-le"), type=kind, colour=colour, left=left,
                    right=right, child=child, start=start, size=length,
                )
            )
        return entries

    def find(self, storage, name):
        number = self.entries[storage]["child"]
        while number != self.FREE:
            entry = self.entries[number]
            if key(name) == key(entry["name"]):
                return number
            number = entry["left"] if key(name) < key(entry["name"]) else entry["right"]
        raise AssertionError("%r isn't found" % name)

    def check_tree(self, number, low=None, high=None, parent_red=False):
        """Gives the number of black entries on each way down and that of all entries."""
        if number == self.FREE:
            return 1, 0
        entry = self.entries[number]
        here = key(entry["name"])
        assert (low is None or low < here) and (high is None or here < high), "out of order"
        red = entry["colour"] == 0
        assert not (red and parent_red), "two red ones"
        left, left_count = self.check_tree(entry["left"], low, here, red)
        right, right_count = self.check_tree(entry["right"], here, high, red)
        assert left == right, "unequal ways"
        return left + (0 if red else 1), left_count + right_count + 1

    def read(self, number):
        entry = self.entries[number]
        assert entry["type"] == 2
        if entry["size"] == 0:
            return b""
        if entry["size"] >= 4096:
            data = self.chain(entry["start"])
        else:
            parts, mini = [], entry["start"]
            while mini != self.END:
                parts.append(self.mini_stream[64 * mini : 64 * mini + 64])
                mini = self.mini_fat[mini]
            data = b"".join(parts)
        assert entry["size"] <= len(data)
        return data[: entry["size"]]


class Expected:
    """A tree by its manifest: folders are dicts, streams bytes."""

    def __init__(self, lines):
        self.root = {}
        for kind, path, *rest in lines:
            *folders, last = path.split("/")
            place = self.root
            for folder in folders:
                place = place.setdefault(folder, {})
            place[last] = {} if kind == "storage" else content(int(rest[0])) if kind == "stream" else bytes.fromhex(rest[0])

    def streams(self):
        pending = [((), self.root)]
        while pending:
            path, folder = pending.pop()
            for name, value in folder.items():
                if isinstance(value, dict):
                    pending.append((path + (name,), value))
                else:
                    yield path + (name,), value

    def folders(self):
        pending = [((), self.root)]
        while pending:
            path, folder = pending.pop()
            yield path, folder
            pending += [(path + (name,), value) for name, value in folder.items() if isinstance(value, dict)]


NAMES = [
    "A", "b", "aB", "AC", "aZ", "a[", "a_", "abc", "Version", "zz", "Zy", "Größe", "ÄÖ", "äp", "ÿ", "µ", "ı", "ß", "ς",
    "Москва", "москвб", "名前", "ﬀ", "ａａ", "ＡＢ", "😀", "😁x", "𐐨", "ǆ", "ŉ", "ͅ9", "Ι8", "ΙΧ", "n" * 31, "😀" * 15 + "x",
    "\x05SummaryInformation", "a b.c (d)", "ᾳ", "ᾼ9",
]
SIZES = [0, 1, 63, 64, 65, 511, 512, 513, 4032, 4095, 4096, 4097, 4608, 20000, 70000]

CASES = {
    "empty": [],
    "names": [("stream", name, str(place * 13)) for place, name in enumerate(NAMES)],
    "storages_of_all_names": [("storage", name) for name in NAMES],
    "sizes": [("stream", "size%d" % size, str(size)) for size in SIZES],
    "many": [("stream", "many/Item%d" % (place * 7919 % 10007), str(place % 90)) for place in range(3000)],
    "deep": [("stream", "/".join("L%d" % level for level in range(depth)) + "/value", str(depth)) for depth in range(1, 256)],
    "few": [("stream", "folder%d/%d" % (count, place), "5") for count in range(20) for place in range(count)],
    # One and two sectors of the list of the table's sectors.
    "large": [("stream", "one", "7200000")],
    "larger": [("stream", "one", "9000000"), ("stream", "two", "100"), ("stream", "three", "8000000")],
}


class Interop(unittest.TestCase):
    def for_each_file(self, check):
        for name, lines in CASES.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                manifest = os.path.join(folder, "manifest.txt")
                path = os.path.join(folder, name + ".doc")
                with open(manifest, "w", encoding="utf-8", newline="\n") as file:
                    file.writelines("\t".join(line) + "\n" for line in lines)
                written = subprocess.run([WRITER, manifest, path], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                self.assertEqual((0, b""), (written.returncode, written.stdout))
                check(path, Expected(lines))

    def test_strict_reader_finds_every_element_by_binary_search(self):
        def check(path, expected):
            reader = StrictReader(path)
            numbers = {(): 0}
            for folder, elements in expected.folders():
                _, count = reader.check_tree(reader.entries[numbers[folder]]["child"])
                self.assertEqual(len(elements), count)
                for name, value in elements.items():
                    number = reader.find(numbers[folder], name)
                    self.assertEqual(name, reader.entries[number]["name"])
                    if isinstance(value, dict):
                        self.assertEqual(1, reader.entries[number]["type"])
                        numbers[folder + (name,)] = number
                    else:
                        self.assertEqual(value, reader.read(number))

        self.for_each_file(check)

    def test_olefile_reads_every_stream(self):
        def check(path, expected):
            streams = dict(expected.streams())
            with olefile.OleFileIO(path, raise_defects=olefile.DEFECT_POTENTIAL) as file:
                self.assertEqual([], file.parsing_issues)
                listed = {tuple(each) for each in file.listdir()}
                self.assertEqual(set(streams), listed)
                for name, value in streams.items():
                    self.assertEqual(value, file.openstream(list(name)).read())

        self.for_each_file(check)

    def test_gsf_reads_every_stream(self):
        def check(path, expected):
            environment = dict(os.environ, LC_ALL="C.UTF-8")
            listing = subprocess.run(["gsf", "list", path], capture_output=True, check=True, env=environment)
            self.assertEqual(b"", listing.stderr)
            lines = [re.match(r"([df]) +(\d+) (.*)", line) for line in listing.stdout.decode().splitlines()[1:]]
            # It lists an empty storage as a file.
            found = {line[3]: int(line[2]) for line in lines if line[1] == "f" and line[3] != "*root*"}
            streams = {"/".join(name): value for name, value in expected.streams()}
            leaves = {"/".join(name): 0 for name, elements in expected.folders() if name and not elements}
            leaves.update((name, len(value)) for name, value in streams.items())
            self.assertEqual(leaves, found)
            for name in list(streams)[:40]:
                out = subprocess.run(["gsf", "cat", path, name], capture_output=True, check=True, env=environment)
                self.assertEqual(streams[name], out.stdout)

        self.for_each_file(check)


if __name__ == "__main__":
    unittest.main()
