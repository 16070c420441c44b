"""Shows that the layer check notices what it is there for; a silent check looks just like a passing
one. Each test writes a small tree of sources and compares the whole report."""

import pathlib
import tempfile
import unittest

from check_layers import check


class CheckLayersTest(unittest.TestCase):
    def report(self, **sources):
        """Takes path=text with '__' for '/' and '_dot_' for '.'; returns (errors, warnings)."""
        with tempfile.TemporaryDirectory() as root:
            paths = []
            for name, text in sources.items():
                path = name.replace("__", "/").replace("_dot_", ".")
                paths.append(path)
                file = pathlib.Path(root, path)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text, encoding="utf-8")
            return check(root, paths)

    def test_includes_that_point_down_pass(self):
        self.assertEqual(
            ([], []),
            self.report(
                host__types_dot_h="#include <stdint.h>\n",
                value__data_dot_hpp='#include "host/types.h"\n',
                codec__codec_dot_cpp='#include "value/data.hpp"\n#include <vector>\n',
            ),
        )

    def test_plugin_must_not_include_codec(self):
        errors, _ = self.report(
            codec__codec_dot_hpp="\n", plugin__entry_dot_cpp='\n#include "codec/codec.hpp"\n'
        )
        self.assertEqual(["plugin/entry.cpp:2: plugin/ must not include codec/codec.hpp"], errors)

    def test_a_layer_in_a_folder_has_rules_of_its_own(self):
        self.assertEqual(
            (
                [
                    "tools/replay/input/lines.hpp:1: tools/replay/input/ must not include "
                    "tools/replay/running/team.hpp",
                    "tools/replay/running/team.hpp:1: tools/replay/running/ must not include "
                    "tools/replay/replay.hpp",
                ],
                [],
            ),
            self.report(
                tools__replay__replay_dot_hpp="\n",
                tools__replay__replay_dot_cpp='#include "tools/replay/input/lines.hpp"\n',
                tools__replay__input__lines_dot_hpp='#include "tools/replay/running/team.hpp"\n',
                tools__replay__running__team_dot_hpp='#include "tools/replay/replay.hpp"\n',
            ),
        )

    def test_what_is_below_a_lower_layer_is_granted(self):
        self.assertEqual(
            ([], []),
            self.report(
                host__types_dot_h="\n", codec__codec_dot_cpp='#include "host/types.h"\n'
            ),
        )

    def test_fuzz_takes_models_from_the_tests_and_nobody_takes_from_fuzz(self):
        self.assertEqual(
            (["tests/a_test.cpp:1: tests/ must not include fuzz/finding.hpp"], []),
            self.report(
                tests__model_dot_hpp="\n",
                fuzz__finding_dot_hpp='#include "tests/model.hpp"\n',
                tests__a_test_dot_cpp='#include "fuzz/finding.hpp"\n',
            ),
        )

    def test_angle_brackets_hide_no_project_file(self):
        errors, _ = self.report(
            value__data_dot_hpp="\n", standin__map_dot_cpp="#include <value/data.hpp>\n"
        )
        self.assertEqual(["standin/map.cpp:1: standin/ must not include value/data.hpp"], errors)

    def test_path_beside_the_includer_counts_as_its_real_folder(self):
        errors, _ = self.report(
            tests__help_dot_hpp="\n", value__data_dot_cpp='#include "../tests/help.hpp"\n'
        )
        self.assertEqual(["value/data.cpp:1: value/ must not include tests/help.hpp"], errors)

    def test_quoted_foreign_header_is_reported(self):
        errors, _ = self.report(tests__a_dot_cpp='#include "gtest/gtest.h"\n')
        self.assertEqual(
            ['tests/a.cpp:1: "gtest/gtest.h" is no file of the project; foreign: use <>'], errors
        )

    def test_cycle_through_two_files_is_reported_once(self):
        errors, _ = self.report(
            value__a_dot_hpp='#include "value/b.hpp"\n',
            value__b_dot_hpp='#include "value/a.hpp"\n',
            value__c_dot_cpp='#include "value/a.hpp"\n#include "value/b.hpp"\n',
        )
        self.assertEqual(
            ["value/b.hpp:1: include cycle: value/a.hpp -> value/b.hpp -> value/a.hpp"], errors
        )

    def test_unknown_folder_is_reported(self):
        errors, _ = self.report(extras__a_dot_cpp="\n")
        self.assertEqual(
            ["extras/a.cpp:1: the folder 'extras' is no layer; LAYERS in check_layers.py names them"],
            errors,
        )

    def test_length_limits_lie_at_400_and_500_lines(self):
        self.assertEqual(([], []), self.report(value__a_dot_cpp="\n" * 400))
        self.assertEqual(
            ([], ["value/a.cpp:401: warning: 401 lines, better at most 400"]),
            self.report(value__a_dot_cpp="\n" * 401),
        )
        self.assertEqual(
            (["value/a.cpp:501: 501 lines, at most 500"], []),
            self.report(value__a_dot_cpp="\n" * 501),
        )


if __name__ == "__main__":
    unittest.main()
