"""Reads blocks of the library with Python's zlib, and has the library read blocks made with it."""

import heapq
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

HELPER = sys.argv.pop(1)
TAG = b"pmzlibcodec"

random.seed(4200)
SAMPLES = [
    b"",
    b"hello",
    bytes(100000),
    b"user_scale=0.25\r\n" * 5000,
    random.randbytes(70000),
    "".join(random.choices("aeiou \n", [9, 8, 7, 3, 2, 12, 1], k=200000)).encode(),
]


def library(operation, data):
    """The bytes that the library makes of `data`, or None where it gives false."""
    with tempfile.TemporaryDirectory() as folder:
        source, target = pathlib.Path(folder, "from"), pathlib.Path(folder, "to")
        source.write_bytes(data)
        result = subprocess.run([HELPER, operation, source, target], check=False)
        if result.returncode == 1:
            return None
        result.check_returncode()
        return target.read_bytes()


def plain_block(data, level=6):
    stream = zlib.compress(data, level)
    return TAG + struct.pack("<II", len(data), len(stream)) + stream


def checked_block(data, level=6):
    stream = zlib.compress(data, level)
    return TAG + struct.pack("<III", zlib.adler32(stream), len(data), len(stream)) + stream


class BlocksOfTheLibrary(unittest.TestCase):
    def test_plain_blocks_are_read(self):
        for data in SAMPLES:
            block = library("encode", data)
            self.assertEqual(TAG, block[:11])
            length, stream_length = struct.unpack_from("<II", block, 11)
            self.assertEqual(len(data), length)
            self.assertEqual(len(block), 19 + stream_length)
            self.assertEqual(data, zlib.decompress(block[19:]))

    def test_checked_blocks_are_read(self):
        for data in SAMPLES:
            block = library("encodeCRC", data)
            self.assertEqual(TAG, block[:11])
            checksum, length, stream_length = struct.unpack_from("<III", block, 11)
            self.assertEqual(zlib.adler32(block[23:]), checksum)
            self.assertEqual(len(data), length)
            self.assertEqual(len(block), 23 + stream_length)
            self.assertEqual(data, zlib.decompress(block[23:]))

    def test_stream_is_that_of_level_9(self):
        for data in SAMPLES:
            self.assertEqual(zlib.compress(data, 9), library("encode", data)[19:])

    def test_huffman_blocks_are_as_short_as_huffman_codes_can_be(self):
        for data in SAMPLES[3:]:
            block = library("huffman-encode", data)
            self.assertEqual(b"pmhuffcodec", block[:11])
            counts = struct.unpack_from("<256I", block, 11)
            self.assertEqual([data.count(value) for value in range(256)], list(counts))
            heap = [count for count in counts if count]
            heapq.heapify(heap)
            bits = 0
            while len(heap) > 1:
                both = heapq.heappop(heap) + heapq.heappop(heap)
                bits += both
                heapq.heappush(heap, both)
            self.assertEqual(bits, struct.unpack_from("<I", block, 1035)[0])
            self.assertEqual(len(block), bits // 8 + 1040)
            self.assertEqual(data[:-1], library("huffman-decode", block))


class BlocksOfPython(unittest.TestCase):
    def test_blocks_of_every_level_are_read(self):
        for data in SAMPLES:
            for level in range(10):
                self.assertEqual(data, library("decode", plain_block(data, level)))
                self.assertEqual(data, library("decodeCRC", checked_block(data, level)))

    def test_text_ahead_of_a_block_is_skipped(self):
        self.assertEqual(b"hello", library("decode", b"a line of text\r\n" + plain_block(b"hello")))

    def test_block_with_a_broken_stream_is_refused(self):
        block = bytearray(plain_block(b"hello"))
        block[-1] ^= 1
        self.assertIsNone(library("decode", bytes(block)))

    def test_file_without_a_block_is_refused(self):
        self.assertIsNone(library("decode", b"no block"))
        self.assertIsNone(library("decodeCRC", b""))
        self.assertIsNone(library("huffman-decode", b"no block"))


if __name__ == "__main__":
    unittest.main()
