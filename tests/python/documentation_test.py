"""Usage: documentation_test.py PROJECT

Every public function and class has documentation with an example, and the examples are run.
"""

import doctest
import os
import pathlib
import re
import subprocess
import sys
import unittest

import fi_rotation

PROJECT = pathlib.Path()


class Documentation(unittest.TestCase):
    def setUp(self):
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(PROJECT / "examples")

    def public(self):
        return [(name, getattr(fi_rotation, name)) for name in fi_rotation.__all__ if name != "__version__"]

    def test_every_function_and_class_has_an_example_that_is_true(self):
        for name, thing in self.public():
            with self.subTest(name):
                parsed = doctest.DocTestParser().get_doctest(thing.__doc__, dict(vars(fi_rotation)), name, None, None)
                self.assertNotEqual(parsed.examples, [])
                self.assertEqual(doctest.DocTestRunner().run(parsed).failed, 0)

    def test_what_is_public_shows_itself_under_the_name_that_scripts_import(self):
        for name, thing in self.public():
            if isinstance(thing, type):
                with self.subTest(name):
                    self.assertEqual(f"{thing.__module__}.{thing.__name__}", f"fi_rotation.{name}")


class Readme(unittest.TestCase):
    def test_its_session_is_true(self):
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(PROJECT)
        sessions = re.findall(r"^<!-- python -->\n```python\n(.*?)^```$", (PROJECT / "README.md").read_text(),
                              re.MULTILINE | re.DOTALL)
        self.assertEqual(len(sessions), 1)
        parsed = doctest.DocTestParser().get_doctest(sessions[0], {}, "README.md", None, None)
        self.assertNotEqual(parsed.examples, [])
        self.assertEqual(doctest.DocTestRunner().run(parsed).failed, 0)


class Example(unittest.TestCase):
    def run_example(self, *arguments):
        return subprocess.run([sys.executable, "-B", "safe-host.py", *arguments], cwd=PROJECT / "examples",
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)

    def test_it_prints_the_selection_and_what_became_of_each_backup(self):
        backups = sorted(file.name for file in (PROJECT / "examples").glob("backup-*.xml"))
        run = self.run_example("resource.conf", *backups)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        lines = run.stdout.splitlines()
        self.assertEqual(lines[0], "[ENC-A##VOL-0011;ENC-A##SNP-0101][ENC-A##VOL-0012;ENC-A##SNP-0111]"
                                   "[ENC-B##VOL-0021;ENC-B##SNP-0201]")
        self.assertEqual([line.split(":")[0] for line in lines[1:]], backups)

    def test_it_prints_no_selection_when_a_document_is_not_whole(self):
        run = self.run_example("resource.conf", "backup-2026-10-01.xml", "../tests/package/malformed.xml")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertIn("no-identifier", run.stderr)

    def test_it_prints_no_selection_without_documents(self):
        run = self.run_example("resource.conf")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertRegex(run.stderr, "^safe-host: backups is empty")


if __name__ == "__main__":
    PROJECT = pathlib.Path(sys.argv.pop()).resolve()
    unittest.main()
