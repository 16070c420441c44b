"""Tests of fuzz_corpus.py."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import fuzz_corpus


class FuzzCorpusTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.file = self.root / "corpus" / "map.txt"

    def packed_and_unpacked(self, contents):
        for name in ("in", "out"):
            (self.root / name).mkdir()
        for number, content in enumerate(contents):
            (self.root / "in" / str(number)).write_bytes(content)
        with contextlib.redirect_stdout(io.StringIO()):
            fuzz_corpus.pack(self.root / "in", self.file)
        fuzz_corpus.unpack(self.file, self.root / "out")
        return {path.read_bytes() for path in (self.root / "out").iterdir()}

    def test_any_bytes_come_back(self):
        contents = {bytes(range(256)), b"", b"a\\n", b"\r\n", b" a ", b"\xe2\x80\xa8", b"\\x41"}
        self.assertEqual(self.packed_and_unpacked(contents), contents)

    def test_lines_are_sorted_and_come_once(self):
        self.packed_and_unpacked([b"b\0", b"a", b"b\0"])
        self.assertEqual(self.file.read_bytes(), b"a\nb\\x00\n")

    def test_the_longest_stay_out_of_a_large_corpus(self):
        short = {bytes([65 + i]) for i in range(9)}
        large = b"x" * fuzz_corpus.MOST_BYTES
        self.assertEqual(self.packed_and_unpacked(short | {large}), short)


if __name__ == "__main__":
    unittest.main()
