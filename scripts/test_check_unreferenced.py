"""Shows that the check for functions that only tests call notices what it is there for. Each test
writes a small tree of sources and compares the whole report."""

import pathlib
import tempfile
import unittest

from check_unreferenced import findings_in

NAMESPACE = "namespace com::velanto::connectivity {{ {} }}\n"
HEADER = "#pragma once\n" + NAMESPACE
ENTRY_POINT = 'extern "C" void enter() {{ {} }}\n'


class CheckUnreferencedTest(unittest.TestCase):
    def findings(self, exceptions=(), **sources):
        """Takes path=text with '__' for '/' and '_dot_' for '.'."""
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder).resolve()
            entries = []
            for name, text in sources.items():
                path = root / name.replace("__", "/").replace("_dot_", ".")
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
                if path.suffix == ".cpp":
                    command = f"clang++-14 -I{root} -std=c++20 -O3 -o a.cpp.o -c {path}"
                    entries.append({"directory": folder, "command": command, "file": str(path)})
            return findings_in(root, entries, exceptions)

    def findings_in(self, code, entry="", exceptions=()):
        return self.findings(
            exceptions,
            value__a_dot_cpp=NAMESPACE.format(code) + ENTRY_POINT.format(
                f"using namespace com::velanto::connectivity; {entry}"))

    def test_function_behind_an_entry_point_passes(self):
        self.assertEqual([], self.findings_in("void called() {} void calls() { called(); }", "calls();"))

    def test_functions_that_only_call_each_other_are_reported(self):
        self.assertEqual(
            ["value/a.cpp:1: only tests call lonely(int)"],
            self.findings_in("int lonely(int depth) { return lonely(depth); }"))

    def test_overload_and_const_are_told_apart(self):
        self.assertEqual(
            ["value/a.cpp:2: only tests call a_t::get(int)",
             "value/a.cpp:3: only tests call a_t::get() const"],
            self.findings_in("struct a_t { void get() {}\n void get(int) {}\n void get() const {} };",
                         "a_t().get();"))

    def test_virtual_function_is_referenced_with_its_class(self):
        code = "struct a_t { virtual ~a_t() = default; virtual void f() {} };"
        self.assertEqual([], self.findings_in(code, "delete new a_t;"))
        self.assertEqual(["value/a.cpp:1: only tests call a_t::f()"], self.findings_in(code))

    def test_inline_function_and_template_of_a_header_are_reported(self):
        header = HEADER.format(
            "inline void used() {}\n template <class T> void lonely(T) {}\n inline void idle() {}")
        self.assertEqual(
            ["value/a.hpp:3: only tests call lonely(T)", "value/a.hpp:4: only tests call idle()"],
            self.findings(value__a_dot_hpp=header, value__a_dot_cpp='#include "value/a.hpp"\n'
                          + ENTRY_POINT.format("com::velanto::connectivity::used();")))

    def test_template_is_referenced_by_any_instance(self):
        self.assertEqual([], self.findings_in("template <class T> void f(T) {}", "f(1);"))
        self.assertEqual([], self.findings_in("template <class T> struct a_t { void f(); };\n"
                                          "template <class T> void a_t<T>::f() {}", "a_t<int>().f();"))

    def test_tools_call_but_tests_do_not(self):
        header = HEADER.format("inline void f() {}")
        caller = '#include "value/a.hpp"\nvoid call() { com::velanto::connectivity::f(); }\n'
        report = ["value/a.hpp:2: only tests call f()"]
        source = '#include "value/a.hpp"\n'
        self.assertEqual([], self.findings(value__a_dot_hpp=header, value__a_dot_cpp=source,
                                           tools__b_dot_cpp=caller))
        self.assertEqual(report, self.findings(value__a_dot_hpp=header, value__a_dot_cpp=source,
                                               tests__b_dot_cpp=caller))

    def test_call_while_compiling_is_enough_for_a_constexpr_function(self):
        self.assertEqual([], self.findings_in("constexpr int f() { return 1; } static_assert(f() == 1);"))
        self.assertEqual([], self.findings_in(
            "template <int N> consteval int f() { return N; } static_assert(f<1>() == 1);"))

    def test_sources_with_the_same_internal_names_are_told_apart(self):
        internal = "namespace {{ void f() {{}} {} }}"
        self.assertEqual(
            ["value/b.cpp:1: only tests call f()", "value/b.cpp:2: only tests call idle()"],
            self.findings(
                value__a_dot_cpp=NAMESPACE.format(internal.format(""))
                + ENTRY_POINT.format("com::velanto::connectivity::f();"),
                value__b_dot_cpp=NAMESPACE.format(internal.format("") + "\nvoid idle() { f(); }")))

    def test_exception_covers_what_it_calls(self):
        code = "void helper() {}\n void lonely() { helper(); }"
        self.assertEqual([], self.findings_in(code, exceptions={"lonely()": "a host's own tests"}))

    def test_exception_that_is_called_again_is_reported(self):
        self.assertEqual(["EXCEPTIONS: f() is gone or called by others than tests"],
                         self.findings_in("void f() {}", "f();", {"f()": "a reason"}))

    def test_sixth_exception_is_reported(self):
        names = [f"f{number}()" for number in range(6)]
        code = "\n".join(f"void {name} {{}}" for name in names)
        self.assertEqual([], self.findings_in(code.rsplit("\n", 1)[0],
                                          exceptions=dict.fromkeys(names[:5], "a reason")))
        self.assertEqual(["EXCEPTIONS: 6, at most 5"],
                         self.findings_in(code, exceptions=dict.fromkeys(names, "a reason")))


if __name__ == "__main__":
    unittest.main()
