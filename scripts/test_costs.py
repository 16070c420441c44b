"""Tests of scripts/costs.sh: the comparison of today's costs with the accepted ones."""

import pathlib
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parent
COMPARE = """
set -euo pipefail
source "$1"
costs_file=$2
costs_today() { printf '%b' "$3"; }
costs_today "$@" | compare_costs
"""


def compare(accepted, today):
    """The exit status and the printed lines."""
    with tempfile.NamedTemporaryFile("w", suffix=".tsv") as file:
        file.write("# comment\n" + accepted)
        file.flush()
        result = subprocess.run(["bash", "-c", COMPARE, "bash", SCRIPTS / "costs.sh", file.name, today],
                                text=True, capture_output=True, check=False)
    assert result.stderr == "", result.stderr
    return result.returncode, result.stdout.splitlines()


class CostsTest(unittest.TestCase):
    def test_unchanged_costs_pass(self):
        status, lines = compare("instructions/alarms\t8000\n", "instructions/alarms\t8000\n")
        self.assertEqual(status, 0)
        self.assertEqual(lines[1].split(), ["instructions/alarms", "8000", "8000", "+0.00%"])

    def test_one_percent_more_instructions_pass(self):
        self.assertEqual(compare("instructions/a\t8000\n", "instructions/a\t8080\n")[0], 0)

    def test_more_instructions_fail(self):
        status, lines = compare("instructions/a\t8000\n", "instructions/a\t8081\n")
        self.assertEqual(status, 1)
        self.assertEqual(lines[-1], "Over 1 % more than accepted: instructions/a. Find out why, or "
                                    "accept the cost: ./dev costs --accept")

    def test_other_costs_may_grow(self):
        self.assertEqual(compare("lines/codec\t1\n", "lines/codec\t2\n")[0], 0)

    def test_cost_without_accepted_value_fails(self):
        status, lines = compare("lines/codec\t1\n", "lines/codec\t1\nlines/new\t1\n")
        self.assertEqual(status, 1)
        self.assertTrue(lines[-1].endswith(" lacks a value: ./dev costs --accept writes it"))

    def test_value_of_a_person_is_shown(self):
        self.assertIn("percent/m 0.4", [" ".join(line.split()) for line in
                                        compare("percent/m\t0.4\n", "lines/a\t1\n")[1]])


if __name__ == "__main__":
    unittest.main()
