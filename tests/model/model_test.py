#!/usr/bin/python3
"""Tests of the model itself, worked out by hand, and of the comparison: it must notice every difference."""

import contextlib
import io
import os
import sys
import tempfile
import unittest

import calls
import model
import soak

HOST, LIBRARY = sys.argv.pop(1), sys.argv.pop(1)


def element(name, text):
    return calls.Element(name, text=text, pieces=[text])


def backup(name, time_stamp, pairs, flag=0):
    nodes = [
        calls.Element(
            "Node",
            children=[
                element("objid", f"UDID##v##m##{first}"),
                element("altobjid", f"UDID##v##m##{further}"),
            ],
        )
        for first, further in pairs
    ]
    root = calls.Element("Node", children=[element("timeStamp", time_stamp)] + nodes)
    return calls.Backup(name, flag, calls.Document(root))


def outcome_of(configuration, *backups):
    return soak.expected(calls.Call(configuration, list(backups)))[0]


class Identifiers(unittest.TestCase):
    def test_whole_ones_name_enclosure_and_device(self):
        for text, target in [
            ("UDID##v##m##e##d", ("e", "d")),
            ("UDID##v##m##e##d##more", ("e", "d##more")),
            ("UDID##v##m##d", ("", "d")),
            ("UEID##v##m##e", ("e", "")),
            ("UEID##v##m##e##d", ("e", "d")),
            ("before UDID##v##m##e##d", ("e", "d")),
            ("UEID##a##UDID##v##m##d", ("", "d")),
        ]:
            with self.subTest(text):
                self.assertEqual(model.split_identifier(text), target)

    def test_malformed_ones_have_a_reason(self):
        for text, code in [
            ("UDID##v##m##", 1),
            ("", 2),
            ("UDID#v", 2),
            ("UDID##v", 3),
            ("UDID##v##m", 4),
        ]:
            with self.subTest(text), self.assertRaises(model.MalformedIdentifier) as caught:
                model.split_identifier(text)
            self.assertEqual(caught.exception.code, code)


class Decisions(unittest.TestCase):
    def test_first_backup_gets_the_first_further_targets(self):
        outcome = outcome_of("A##x;1;2&B##y;A##3")
        self.assertEqual(outcome.status, 0)
        self.assertEqual(outcome.selection, "[A##x;A##1][B##y;A##3]")

    def test_oldest_backup_is_rotated(self):
        outcome = outcome_of(
            "A##x;1;2",
            backup("new", "2", [("A##x", "A##1")]),
            backup("old", "1", [("A##x", "A##2")]),
        )
        self.assertEqual((outcome.status, outcome.selection), (0, "[A##x;A##2]"))
        self.assertEqual(outcome.flags, [model.KEPT, model.ROTATED])

    def test_excluded_backups_keep_their_targets(self):
        outcome = outcome_of("A##x;1", backup("only", "1", [("A##x", "A##1")], flag=4))
        self.assertEqual((outcome.status, outcome.selection, outcome.flags), (3, None, [4]))

    def test_newer_of_two_holders_keeps_the_target(self):
        outcome = outcome_of(
            "A##x;1;2",
            backup("old", "1", [("A##x", "A##1")]),
            backup("new", "2", [("A##x", "A##1")]),
        )
        self.assertEqual((outcome.status, outcome.selection), (0, "[A##x;A##2]"))
        self.assertEqual(outcome.flags, [model.INVALID, model.KEPT])

    def test_unknown_target_makes_a_backup_invalid(self):
        outcome = outcome_of("A##x;1", backup("only", "1", [("A##x", "A##9")]))
        self.assertEqual((outcome.status, outcome.flags), (0, [model.INVALID]))

    def test_malformed_identifier_leaves_the_flags_alone(self):
        malformed = backup("only", "1", [("A##x", "A##1")], flag=8)
        malformed.document.root.children[1].children[1] = element("altobjid", "none")
        outcome = outcome_of("A##x;1", malformed)
        self.assertEqual((outcome.status, outcome.exception), (None, ("none", 2)))
        self.assertEqual(outcome.flags, [8])

    def test_first_missing_file_hides_those_behind_it(self):
        outcome = outcome_of(
            "A##x;1",
            calls.Backup("missing", 8, None),
            backup("hidden", "1", [("A##x", "A##1")], flag=8),
        )
        self.assertEqual((outcome.selection, outcome.flags), ("[A##x;A##1]", [8, 8]))
        self.assertEqual(outcome.output, "ERROR: failed to load FIID file [missing]\n")

    def test_whole_trace_of_a_small_call(self):
        self.assertEqual(
            outcome_of("A##x;1").trace,
            [
                (4, "CFiResourceParser::parse : Resource specification [A##x;1]"),
                (4, "CFiResourceParser::parse : [A][x]"),
                (4, "CFiResourceParser::parse : [A][1]"),
                (4, "fi_process_backups : fiidListSize empty, no previous backups to process"),
            ],
        )


class Comparison(unittest.TestCase):
    ALTERATIONS = {
        "status": lambda outcome: outcome._replace(status=3),
        "selection": lambda outcome: outcome._replace(selection=(outcome.selection or "") + "]"),
        "flags": lambda outcome: outcome._replace(flags=outcome.flags + [0]),
        "exception": lambda outcome: outcome._replace(exception=("none", 2)),
        "trace": lambda outcome: outcome._replace(trace=outcome.trace[:-1]),
        "output": lambda outcome: outcome._replace(output=outcome.output + "\n"),
    }

    def test_every_part_of_an_outcome_is_compared(self):
        for part, alteration in self.ALTERATIONS.items():
            with self.subTest(part), tempfile.TemporaryDirectory() as folder:
                library = soak.Library(HOST, LIBRARY, folder)
                shown = io.StringIO()
                with contextlib.redirect_stdout(shown):
                    differences, _ = soak.run(library, folder, 20, 1, alteration)
                self.assertEqual(differences, 1)
                self.assertIn(f"  {part}", shown.getvalue())

    def test_call_with_a_difference_is_made_as_small_as_it_can_be(self):
        def hide_rotated(outcome):
            return outcome._replace(flags=[0 if flag == 2 else flag for flag in outcome.flags])

        with tempfile.TemporaryDirectory() as folder:
            library = soak.Library(HOST, LIBRARY, folder)
            names = [os.path.join(folder, name) for name in ("a", "b", "c")]
            call = calls.Call(
                "A##x;1&B##y;1;2",
                [
                    backup(names[0], "1", [("A##x", "A##1"), ("B##y", "B##1")], flag=1),
                    backup(names[1], "2", []),
                    backup(names[2], "3", [("B##y", "B##2")]),
                ],
            )
            self.assertTrue(soak.differs(library, call, hide_rotated))
            small = soak.smallest(library, call, hide_rotated)
        # One backup that is rotated, and nothing that is not needed for that.
        self.assertEqual(len(small.backups), 1)
        self.assertEqual(small.backups[0].flag, 0)
        self.assertLess(len(small.configuration), len("A##x;1&"))
        self.assertLessEqual(calls.count_elements(small.backups[0].document.root), 3)


if __name__ == "__main__":
    unittest.main()
