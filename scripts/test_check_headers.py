"""Shows that the check of headers notices what it is there for. Each test writes a small tree."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().with_name("check_headers.py")


class CheckHeadersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)

    def write(self, name, text):
        (self.root / name).write_text(text, encoding="utf-8")

    def errors(self):
        """The first line of the compiler for each error."""
        headers = sorted(path.name for path in self.root.glob("*.hpp"))
        result = subprocess.run([sys.executable, SCRIPT, "passed", *headers], cwd=self.root, text=True,
                                check=False, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        lines = [line for line in result.stderr.splitlines() if ": error: " in line]
        self.assertEqual(1 if lines else 0, result.returncode, result.stderr)
        return lines

    def test_self_contained_headers_pass(self):
        self.write("a.hpp", "#pragma once\nstruct point_t {};\n")
        self.write("b.hpp", '#pragma once\n#include "a.hpp"\nextern point_t origin;\n')
        self.assertEqual([], self.errors())

    def test_missing_include_of_the_project_is_found(self):
        self.write("a.hpp", "#pragma once\nstruct point_t {};\n")
        self.write("b.hpp", "#pragma once\nextern point_t origin;\n")
        self.write("c.hpp", '#pragma once\n#include "a.hpp"\n#include "b.hpp"\n')
        self.assertEqual(["./b.hpp:2:8: error: unknown type name 'point_t'"], self.errors())

    def test_missing_include_of_a_library_is_found(self):
        self.write("a.hpp", "#pragma once\n#include <string>\n")
        self.write("b.hpp", "#pragma once\nstd::string text();\n")
        self.assertEqual(["./b.hpp:2:1: error: use of undeclared identifier 'std'"], self.errors())

    def test_header_is_read_again_after_a_change_below(self):
        self.write("a.hpp", "#pragma once\nstruct point_t {};\n")
        self.write("b.hpp", '#pragma once\n#include "a.hpp"\nextern point_t origin;\n')
        self.assertEqual([], self.errors())
        self.write("a.hpp", "#pragma once\n")
        self.assertEqual(["./b.hpp:3:8: error: unknown type name 'point_t'"], self.errors())


if __name__ == "__main__":
    unittest.main()
