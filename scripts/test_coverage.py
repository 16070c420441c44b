"""Tests of scripts/coverage.py with a small export of llvm-cov."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parent / "coverage.py"
LINES = ["int f(bool a, bool b) {", "  if (a && b) return 1;", "  return 0;", "}"]


def judge(reasons="", when_false=0, decided=(True, True), last_count=1):
    """The status and output for a function whose `a && b` was false so often."""
    with tempfile.TemporaryDirectory() as root:
        folder = pathlib.Path(root).resolve()
        (folder / "value").mkdir()
        (folder / "value" / "f.cpp").write_text("\n".join(LINES), encoding="utf-8")
        (folder / "reasons").write_text(reasons, encoding="utf-8")
        file = {"filename": str(folder / "value" / "f.cpp"),
                "segments": [[1, 1, 1, True, True, False], [3, 3, last_count, True, True, False],
                             [4, 2, 0, False, False, False]],
                "branches": [[2, 7, 2, 8, 1, when_false, 0, 0, 4]],
                "mcdc_records": [[2, 7, 2, 13, 0, 5, list(decided)]]}
        result = subprocess.run([sys.executable, SCRIPT, folder / "reasons"], cwd=folder, text=True,
                                input=json.dumps({"data": [{"files": [file]}]}), check=False,
                                capture_output=True)
    assert result.stderr == "", result.stderr
    return result.returncode, result.stdout.splitlines()[3:]


class CoverageTest(unittest.TestCase):
    def test_all_reached_is_success(self):
        self.assertEqual(judge(when_false=1), (0, []))

    def test_missed_branch_is_named(self):
        self.assertEqual(judge(), (1, [f"value/f.cpp:2: branches [7, False]: {LINES[1].strip()}"]))

    def test_condition_that_never_decides_is_named(self):
        self.assertEqual(judge(when_false=1, decided=(True, False)),
                         (1, [f"value/f.cpp:2: conditions [7, 1]: {LINES[1].strip()}"]))

    def test_line_without_a_run_is_named(self):
        self.assertEqual(judge(when_false=1, last_count=0),
                         (1, ["value/f.cpp:3: lines [0]: return 0;"]))

    def test_reason_is_enough(self):
        self.assertEqual(judge(f"# comment\nvalue/f.cpp\t{LINES[1].strip()}\twhy\n"), (0, []))

    def test_reason_for_a_reached_place_is_stale(self):
        self.assertEqual(judge(f"value/f.cpp\t{LINES[1].strip()}\twhy\n", when_false=1),
                         (1, [f"value/f.cpp: reached, but listed as unreachable: {LINES[1].strip()}"]))


if __name__ == "__main__":
    unittest.main()
