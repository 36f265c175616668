"""The examples of small pages, true and untrue ones, as examples.py sees them."""

import argparse
import pathlib
import tempfile
import unittest

import examples

HEADER = "int fi_process_backups(int size);\n"


class Page(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        header = self.folder / "include/fi_rotation/fi_process_backups.h"
        header.parent.mkdir(parents=True)
        header.write_text(HEADER)
        (self.folder / "shown").mkdir()
        (self.folder / "shown/one.txt").write_text("one\n")

    def faults(self, text, suffix=".scd"):
        page = self.folder / ("page" + suffix)
        page.write_text(text)
        try:
            return examples.faults_of(page, argparse.Namespace(
                program="/bin/true", library=["/lib/none.so"], include=str(self.folder / "include"),
                examples=self.folder / "shown", cc="/usr/bin/cc", cxx="/usr/bin/c++"))
        except examples.NoTerminals as reason:
            self.skipTest(str(reason))

    def test_true_output_is_accepted(self):
        self.assertEqual(self.faults("; run\n```\n$ echo a\na\n$ echo b\nb\n```\n"), ([], 2))

    def test_other_output_is_noticed(self):
        faults, _ = self.faults("; run\n```\n$ echo a\nb\n```\n")
        self.assertIn("-b", faults)
        self.assertIn("+a", faults)

    def test_missing_and_surplus_lines_are_noticed(self):
        self.assertTrue(self.faults("; run\n```\n$ echo a; echo b\na\n```\n")[0])
        self.assertTrue(self.faults("; run\n```\n$ echo a\na\nb\n```\n")[0])

    def test_standard_error_stands_where_it_was_written(self):
        self.assertEqual(self.faults("; run\n```\n$ echo a; echo b >&2; echo c\na\nb\nc\n```\n")[0], [])

    def test_what_is_written_over_is_not_seen(self):
        page = "; run\n```\n$ printf '[##  ] 1 of 2\\\\r             \\\\rone\\\\n' >&2\none\n```\n"
        self.assertEqual(self.faults(page)[0], [])
        page = "; run\n```\n$ printf 'one two\\\\rTWO\\\\n'\nTWO two\n```\n"
        self.assertEqual(self.faults(page)[0], [])

    def test_a_command_sees_the_status_of_the_one_before(self):
        self.assertEqual(self.faults("; run\n```\n$ false\n$ echo $?\n1\n```\n")[0], [])

    def test_a_page_is_one_session_in_a_copy_of_the_examples(self):
        page = "; run\n```\n$ x=examples/one.txt\n```\n; run\n```\n$ cat $x\none\n```\n"
        self.assertEqual(self.faults(page)[0], [])

    def test_a_command_may_go_on_in_the_next_line(self):
        self.assertEqual(self.faults("; run\n```\n$ echo a \\\\\n  b\na b\n```\n")[0], [])

    def test_files_are_written_as_a_reader_sees_them(self):
        self.assertEqual(self.faults("; file f\n```\na\\\\b\n```\n; run\n```\n$ cat f\na\\\\b\n```\n")[0], [])

    def test_a_session_that_ends_early_is_noticed(self):
        self.assertTrue(self.faults("; run\n```\n$ exit\n$ echo a\na\n```\n")[0])

    def test_a_declaration_that_the_header_contradicts_is_noticed(self):
        self.assertEqual(self.faults("; declaration\n```\nint fi_process_backups(int n);\n```\n")[0], [])
        self.assertTrue(self.faults("; declaration\n```\nint fi_process_backups(long n);\n```\n")[0])

    def test_statements_that_do_not_compile_are_noticed(self):
        self.assertEqual(self.faults("; statements\n```\nint n = fi_process_backups(1);\n```\n")[0], [])
        self.assertTrue(self.faults("; statements\n```\nint n = fi_process_backups();\n```\n")[0])

    def test_guides_say_it_in_comments_of_their_own(self):
        page = "<!-- run -->\n```console\n$ echo 'a\\\\b'\na\\\\b\n```\n"
        self.assertEqual(self.faults(page, ".md"), ([], 1))

    def test_mistakes_of_the_page_are_noticed(self):
        for text in ("```\n$ echo a\n```\n", "; ran\n```\n```\n", "; file\n```\n```\n", "; run x\n```\n```\n",
                     "; run\n```\n$ echo a\n", "; run\n```\na\n```\n",
                     "; file f\n```\n```\n; file f\n```\n```\n",
                     "; run\n```\n$ echo a \\\n  b\na b\n```\n", "; file f\n```\na\\\\\\\n```\n"):
            with self.subTest(text), self.assertRaises(examples.Mistake):
                self.faults(text)


if __name__ == "__main__":
    unittest.main()
