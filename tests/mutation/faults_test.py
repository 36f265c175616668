"""The faults of small sources, as faults.py sees them."""

import unittest
from typing import List

import faults


def faulty_lines(text: str) -> List[str]:
    """The lines as each fault changes them."""
    return [fault.applied(text) for fault in faults.faults_in("a.cpp", text)]


class Faults(unittest.TestCase):
    def test_operators_are_exchanged(self) -> None:
        for text, faulty in (
                ("x = a < b", "x = a <= b"), ("x = a >= b", "x = a > b"), ("x = a == b", "x = a != b"),
                ("x = a && b", "x = a || b"), ("x = a + b", "x = a - b"), ("x -= a", "x += a"),
                ("x = a <<\n    b", "x = a >>\n    b"), ("++x", "--x"), ("x = true", "x = false")):
            self.assertEqual(faulty_lines(text), [faulty])

    def test_numbers_become_their_neighbours(self) -> None:
        self.assertEqual(sorted(faulty_lines("x = a[7U]")), ["x = a[6U]", "x = a[8U]"])

    def test_signs_of_types_are_no_operators(self) -> None:
        self.assertEqual(faulty_lines("const std::vector<char*>& f(S&& s, T* const t, int32_t u)"), [])

    def test_negations_are_dropped_and_conditions_without_one_negated(self) -> None:
        self.assertEqual(faulty_lines("if (!a) {"), ["if (a) {"])
        self.assertEqual(faulty_lines("while (f(a)) {"), ["while (!(f(a))) {"])

    def test_statements_are_deleted(self) -> None:
        for statement in ("f(a);", "a.f();", "a[i] = b;", "return;", "delete a;", "*a = b;", "std::sort(a, b);"):
            self.assertEqual(faulty_lines("{\n    " + statement + "\n}\n"), ["{\n    ;\n}\n"])

    def test_declarations_are_not_deleted(self) -> None:
        for declaration in ("int a;", "std::string a(b);", "auto a = f();", "void f(int a) const;", "using A = B;"):
            self.assertEqual(faulty_lines("{\n    " + declaration + "\n}\n"), [])

    def test_the_end_of_a_longer_statement_is_not_deleted(self) -> None:
        self.assertEqual(faulty_lines("{\n    f(a,\n      b.c());\n}\n"), [])
        self.assertEqual(faulty_lines("{\n    const A a =\n        f();\n}\n"), [])

    def test_breaks_and_continues_are_exchanged_and_deleted(self) -> None:
        self.assertEqual(sorted(faulty_lines("{\n    break;\n}\n")), ["{\n    ;\n}\n", "{\n    continue;\n}\n"])
        self.assertEqual(sorted(faulty_lines("{\n    continue;\n}\n")), ["{\n    ;\n}\n", "{\n    break;\n}\n"])

    def test_what_is_no_code_has_no_faults(self) -> None:
        for text in ("// a < b", "/* a\n < b 1 */", '"a < 1 \\" && b"', "'1'", "#if A < 1 \\\n    && B\n",
                     "static_assert(f(1) < 2)", "C(const C&) = delete;", "a.reserve(b + 1)",
                     "__attribute__((format(printf, 2, 3)))"):
            self.assertEqual(faulty_lines(text), [])

    def test_a_fault_is_told_with_its_line(self) -> None:
        text = "// a\nx = a < b;\n"
        told = [fault.told(text) for fault in faults.faults_in("host/a.cpp", text)]
        self.assertEqual(told, ["host/a.cpp:2: x = a < b; -> ;   in: x = a < b;",
                                "host/a.cpp:2: < -> <=   in: x = a < b;"])


if __name__ == "__main__":
    unittest.main()
