"""A small glossary and texts, as glossary.py compares them."""

import pathlib
import stat
import tempfile
import unittest

import glossary

CONTRIBUTING = '''
| term | what it means | not |
|---|---|---|
| claim | to take a target | reserve a target |
| pair | two identifiers, `UDID##...` | |
| release | to give up targets | rotate out, evict |

| another | table |
'''
ROWS = {"claim": ["reserve a target"], "pair": [], "release": ["rotate out", "evict"]}
TEXT = "Its pairs claimed targets, which are released. The source is out of date; targets are not rotated."

PROGRAM = """#!/bin/sh
case "$*" in
--help) printf 'Subcommands:\\n  one   First\\n        thing\\n  two   Second\\n' ;;
"check --explain unknown") printf 'these are:\\n  a-b\\n  c\\nRun it\\n' >&2; exit 2 ;;
*) printf 'said of %s' "$*" ;;
esac
"""


class Glossary(unittest.TestCase):
    def faults(self, text, rows=None):
        return list(glossary.differences(ROWS if rows is None else rows, {"page": TEXT, "other": text}))

    def test_its_terms_and_phrases_are_read(self):
        self.assertEqual(glossary.rows_of(CONTRIBUTING), ROWS)

    def test_texts_that_keep_to_it_are_accepted(self):
        self.assertEqual(self.faults("A claim. The pair is one of a releasing backup."), [])

    def test_a_phrase_is_noticed_with_other_endings_articles_and_line_breaks(self):
        for text, found in (("reserve a target", "reserve a target"),
                            ("it reserves\n  the targets", "reserves the targets"),
                            ("Reserving its target", "Reserving its target")):
            self.assertEqual(self.faults(text), [f'other has "{found}"; the glossary calls it "claim"'])

    def test_every_phrase_of_a_row_is_looked_for(self):
        for text in ("rotated out", "rotating out", "evicted"):
            self.assertEqual(self.faults(text), [f'other has "{text}"; the glossary calls it "release"'])

    def test_words_that_only_begin_like_a_phrase_are_accepted(self):
        self.assertEqual(self.faults("Reservations of a target; evictor; reserved for a target."), [])

    def test_a_term_that_nothing_uses_is_noticed(self):
        self.assertEqual(self.faults("", {**ROWS, "flag word": []}),
                         ['nothing that users read has the term "flag word" of the glossary'])

    def test_a_page_without_the_table_is_noticed(self):
        self.assertEqual(self.faults("", glossary.rows_of("| term | not |")),
                         [f'CONTRIBUTING.md has no table "{glossary.HEADING}"'])


class Texts(unittest.TestCase):
    def test_literal_parts_of_a_page_are_not_prose(self):
        page = "an *evicted* one\n```\nevict\n```\nwith `evict`\n"
        self.assertEqual(glossary.prose_of(page), "an evicted one\n\nwith \n")

    def test_every_docstring_of_a_module_is_read(self):
        code = '"""One."""\nclass A:\n    """Two."""\n    def f():\n        """Three."""\n        x = "four"\n'
        self.assertEqual(glossary.docstrings_of(code).split(), ["One.", "Two.", "Three."])

    def texts_of(self, script):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder, "program")
            program.write_text(script)
            program.chmod(program.stat().st_mode | stat.S_IXUSR)
            return glossary.texts_of_program(str(program))

    def test_the_help_of_every_subcommand_and_the_text_of_every_hazard_is_read(self):
        texts = self.texts_of(PROGRAM)
        self.assertEqual(list(texts), ["fi-rotate --help", "fi-rotate one --help", "fi-rotate two --help",
                                       "fi-rotate check --explain a-b", "fi-rotate check --explain c"])
        self.assertEqual(texts["fi-rotate two --help"], "said of two --help")
        self.assertEqual(texts["fi-rotate check --explain c"], "said of check --explain c")

    def test_a_program_that_lists_nothing_is_noticed(self):
        for script in (PROGRAM.replace("  a-b", "a-b:").replace("  c", "c:"), PROGRAM.replace("Subcommands:", "")):
            with self.assertRaisesRegex(ValueError, "lists no subcommands or hazards"):
                self.texts_of(script)


if __name__ == "__main__":
    unittest.main()
