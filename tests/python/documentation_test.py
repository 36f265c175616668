"""Usage: documentation_test.py PROJECT

All that is public has a documentation with an example, and the examples are true.
"""

import doctest
import os
import pathlib
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


if __name__ == "__main__":
    PROJECT = pathlib.Path(sys.argv.pop()).resolve()
    unittest.main()
