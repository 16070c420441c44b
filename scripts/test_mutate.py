"""Shows which faults are planted in a source, where, and which outcomes are kept."""

import pathlib
import subprocess
import tempfile
import time
import unittest
import unittest.mock

from jumps import condition_at
from mutants import mutants_of
from mutation_tree import LIMITED, SURVIVED, Laboratory, Results


def changes(text):
    """The mutants of a source: operator and changed line."""
    return [(mutant.operator, mutant.after) for mutant in mutants_of("a.cpp", text)]


def changes_of_body(body):
    """The same for statements of a function, which come in lines of their own."""
    return changes("void f() {\n" + body + "\n}\n")


class MutantsTest(unittest.TestCase):
    def test_operators_have_another_instead(self):
        for line, changed in (("a = b + c;", "a = b - c;"), ("a = b < c;", "a = b <= c;"),
                              ("a = b && c;", "a = b || c;"), ("a = b & c;", "a = b | c;"),
                              ("a += b;", "a -= b;"), ("++a;", "--a;"), ("f(!a);", "f(a);"),
                              ("f('a');", "f('b');"), ('f("a");', 'f("a~");'),
                              ('f(R"(a)");', 'f(R"(a~)");'), ("f(0x0F);", "f(0x10);"),
                              ("f(1.5);", "f(2.5);"), ("f(true);", "f(false);")):
            self.assertIn(changed, [after for _, after in changes_of_body(line)], line)

    def test_one_is_made_larger_and_smaller(self):
        self.assertEqual([("removal", "{}"), ("constant+1", "f(2U);"), ("constant-1", "f(0U);")],
                         changes_of_body("f(1U);"))

    def test_brackets_of_templates_and_references_stay(self):
        self.assertEqual([], changes("template <class T>\nstruct a<T&&>;\nvoid f(int&& a, b<c>* d);\n"))

    def test_comments_directives_attributes_and_assertions_stay(self):
        self.assertEqual([], changes("// 1 + 1\n/* 1 */\n#if A == 1 \\\n    + 2\n#endif\n"
                                     'static_assert(1 + 1 == 2, "sum");\n[[deprecated("1")]] int a;\n'))

    def test_conditions_are_negated(self):
        self.assertIn(("negation", "if (!(a && b)) {"), changes_of_body("if (a && b) {\n}"))
        self.assertIn(("negation", "while (!(a)) {"), changes_of_body("while (a) {\n}"))
        self.assertIn(("negation", "for (; !(a); b()) {"), changes_of_body("for (; a; b()) {\n}"))
        self.assertIn(("negation", "int a = !(b) ? c : d;"), changes_of_body("int a = b ? c : d;"))

    def test_negation_like_another_mutant_is_none(self):
        self.assertEqual([("relation", "if (a != b) {")], changes_of_body("if (a == b) {\n}"))
        self.assertEqual([("unary", "if (a) {")], changes_of_body("if (!a) {\n}"))

    def test_statements_are_removed_but_declarations_are_not(self):
        self.assertEqual([("removal", "{}")], changes_of_body("a.b(c);"))
        self.assertEqual([("removal", "{}")], changes_of_body("*a = b;"))
        self.assertEqual([], changes_of_body("const a<b>& c = d;\nusing e;"))

    def test_statements_of_lambdas_are_removed_too(self):
        self.assertIn(("removal", "f([] { {} });"), changes_of_body("f([] { a(); });"))

    def test_types_and_initialisers_are_no_code(self):
        self.assertEqual([], changes("struct a {\n  void f();\n};\nint b[] = {c, d};\n"))

    def test_neighbours_are_swapped_unless_the_second_needs_the_first(self):
        self.assertIn(("swap", "b(); a();"), changes_of_body("a();\nb();"))
        self.assertNotIn("swap", [operator for operator, _ in changes_of_body("int a = b();\nc(a);")])

    def test_ways_out_are_changed(self):
        self.assertEqual([("return", "return {};")], changes_of_body("return a;"))
        self.assertIn(("removal", "if (a) {}"), changes_of_body("if (a) return b;\nreturn c;"))
        self.assertEqual([("jump", "continue;"), ("removal", "{}")], changes_of_body("break;"))

    def test_noexcept_goes_where_it_is_once(self):
        self.assertEqual([("noexcept", "void f() {}")], changes("void f() noexcept {}\n"))
        self.assertEqual([], changes("void f() noexcept;\nvoid a::f() noexcept {}\n"))

    def test_name_is_the_place_and_the_lines_are_the_identity(self):
        mutant, = mutants_of("v/a.cpp", "\n  int  a = b +\n      c;\n")
        self.assertEqual("v/a.cpp:2:14:arithmetic", mutant.name)
        self.assertEqual(("int a = b +", "int a = b -"), (mutant.before, mutant.after))


class ResultsTest(unittest.TestCase):
    def test_survivors_are_tried_again_with_other_tests(self):
        killed, survivor = mutants_of("a.cpp", "int a = b + c;\nint d = e - f;\n")
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "results.tsv"
            results = Results(path, "tests 1")
            results.add(killed, "value")
            results.add(survivor, SURVIVED)
            self.assertEqual(SURVIVED, Results(path, "tests 1").of(survivor))
            self.assertIsNone(Results(path, "tests 2").of(survivor))
            self.assertEqual("value", Results(path, "tests 2").of(killed))


class LaboratoryTest(unittest.TestCase):
    def test_interrupted_run_examines_no_more(self):
        mutants = mutants_of("a.cpp", "int a = b + c;\n" * 50)
        planted = []

        def plant(_, mutant):
            planted.append(mutant)
            time.sleep(0.01)

        interrupted = unittest.mock.Mock(add=unittest.mock.Mock(side_effect=KeyboardInterrupt))
        with self.assertRaises(KeyboardInterrupt):
            Laboratory([], "none", {}, builds=False).run(
                mutants, interrupted, lambda _: (), plant, lambda *_: None)
        self.assertLess(len(planted), len(mutants))


class LimitsTest(unittest.TestCase):
    def test_programs_have_a_limit_of_each_kind(self):
        limits = subprocess.run([*LIMITED, "7", "sh", "-c", "ulimit -c; ulimit -v; ulimit -t"],
                                capture_output=True, text=True, check=True)
        self.assertEqual(["0", "8388608", "7"], limits.stdout.split())


class JumpsTest(unittest.TestCase):
    def test_both_forms_of_conditional_jumps_are_known(self):
        for code, at in (("74 05", 0), ("0f 85 00 01 00 00", 1), ("eb 05", None),
                         ("0f 1f 40 00", None)):
            self.assertEqual(at, condition_at(bytes.fromhex(code)), code)


if __name__ == "__main__":
    unittest.main()
