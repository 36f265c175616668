"""Which arguments rotate() accepts and which it refuses, and how texts are passed and returned."""

import os
import pathlib
import subprocess
import sys
import unittest

import fi_rotation
from backups import CONFIGURATION, FolderTest, document


class Names(FolderTest):
    def test_a_name_may_be_text_bytes_or_a_path(self):
        for name in "old.xml", b"old.xml", pathlib.Path("old.xml"):
            with self.subTest(name):
                backups = [name, self.two_backups()[1]]
                outcome = fi_rotation.rotate(CONFIGURATION, backups, excluded=[pathlib.Path("old.xml")])
                self.assertEqual([backup.file for backup in outcome.backups], ["old.xml", "new.xml"])
                self.assertEqual(outcome.selection, "[encA##lun1;encA##snap2]")

    def test_names_may_come_from_a_generator(self):
        outcome = fi_rotation.rotate(CONFIGURATION, (name for name in self.two_backups()),
                                     excluded=(name for name in ["old.xml"]))
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap2]")

    def test_a_name_that_is_no_utf_8_comes_back_as_it_was(self):
        name = b"b\xe4ckup.xml"
        pathlib.Path(os.fsdecode(name)).write_text(document(("encA##lun1", "encA##snap1")), encoding="utf-8")
        for given in name, os.fsdecode(name):
            with self.subTest(given):
                backup, = fi_rotation.rotate(CONFIGURATION, [given]).backups
                self.assertEqual((os.fsencode(backup.file), backup.state), (name, fi_rotation.State.KEPT))

    def test_names_are_the_systems_whatever_its_encoding_is(self):
        name = "bäckup.xml".encode()
        pathlib.Path(os.fsdecode(name)).write_text(document(("encA##lun1", "encA##snap1")), encoding="utf-8")
        script = ("import fi_rotation, os, sys\n"
                  "backup, = fi_rotation.rotate(sys.argv[1], [sys.argv[2]]).backups\n"
                  "assert os.fsencode(backup.file) == b'b\\xc3\\xa4ckup.xml'\n"
                  "print(sys.getfilesystemencoding())")
        ascii_only = {**os.environ, "LC_ALL": "C", "PYTHONUTF8": "0", "PYTHONCOERCECLOCALE": "0"}
        run = subprocess.run([sys.executable, "-B", "-c", script, CONFIGURATION, name], stdout=subprocess.PIPE,
                             text=True, env=ascii_only, check=True)
        self.assertEqual(run.stdout, "ascii\n")

    def test_words_about_a_name_that_is_no_utf_8_can_be_printed(self):
        with self.assertRaises(fi_rotation.Refused) as raised:
            fi_rotation.rotate(CONFIGURATION, [b"b\xe4ckup.xml"])
        for words in str(raised.exception), raised.exception.outcome.problems[0].text:
            self.assertTrue(words.startswith("b\\xe4ckup.xml: "))
            words.encode("utf-8")

    def test_one_name_is_not_a_list_of_names(self):
        self.write("x", document())
        for arguments in {"backups": "x"}, {"backups": b"x"}, {"backups": ["x"], "excluded": "x"}:
            with self.subTest(arguments), self.assertRaisesRegex(TypeError, "list of file names"):
                fi_rotation.rotate(CONFIGURATION, **arguments)

    def test_what_is_no_name_is_noticed(self):
        for backups in [1], [None], None:
            with self.subTest(backups), self.assertRaises(TypeError):
                fi_rotation.rotate(CONFIGURATION, backups)

    def test_an_excluded_backup_that_is_not_listed_is_noticed(self):
        backups = self.two_backups()
        for name in "olt.xml", "./old.xml":
            with self.subTest(name), self.assertRaisesRegex(ValueError, name):
                fi_rotation.rotate(CONFIGURATION, backups, excluded=[name])

    def test_an_empty_list_is_noticed(self):
        with self.assertRaisesRegex(ValueError, "allow_no_backups=True"):
            fi_rotation.rotate(CONFIGURATION, [])


class Values(FolderTest):
    def test_a_nul_is_noticed_and_not_cut_off_at(self):
        old, new = self.two_backups()
        for arguments in ((CONFIGURATION + "\0", [old]), (CONFIGURATION.encode() + b"\0;x", [old]),
                          (CONFIGURATION, [old + "\0"]), (CONFIGURATION, [new, b"old.xml\0x"])):
            with self.subTest(arguments), self.assertRaisesRegex(ValueError, "NUL"):
                fi_rotation.rotate(*arguments)

    def test_a_configuration_may_be_text_or_bytes_and_comes_back_as_it_was(self):
        for configuration, target in (("encA##lun1;encA##snäp", "encA##snäp"),
                                      (b"encA##lun1;encA##sn\xe4p", "encA##sn\udce4p"),
                                      ("encA##lun1;encA##sn\udce4p", "encA##sn\udce4p")):
            with self.subTest(configuration):
                outcome = fi_rotation.rotate(configuration, [], allow_no_backups=True)
                self.assertEqual(outcome.selection, f"[encA##lun1;{target}]")
                self.assertEqual(outcome.configurations[0].chosen, target)

    def test_a_configuration_of_another_type_is_noticed(self):
        for configuration in None, 1, pathlib.Path("resource.conf"):
            with self.subTest(configuration), self.assertRaises(TypeError):
                fi_rotation.rotate(configuration, self.two_backups())

    def test_numbers_that_the_library_cannot_hold_are_noticed(self):
        for option, value in (("keep_at_least", -1), ("keep_at_least", 1 << 31), ("limit_document", -1),
                              ("limit_document", 1 << 64)):
            with self.subTest(option=option, value=value), self.assertRaisesRegex(ValueError, option):
                fi_rotation.rotate(CONFIGURATION, self.two_backups(), **{option: value})

    def test_numbers_that_are_none_are_type_errors(self):
        for name in ("permit", "keep_at_least", "limit_document"):
            for value in ("1", 1.5):
                arguments = {name: value}
                with self.subTest(arguments), self.assertRaisesRegex(TypeError, f"{name} must be an int"):
                    fi_rotation.rotate(CONFIGURATION, [], allow_no_backups=True, **arguments)

    def test_the_largest_numbers_reach_the_library(self):
        backups = self.two_backups()
        self.assertEqual(fi_rotation.rotate(CONFIGURATION, backups, limit_document=(1 << 64) - 1).problems, ())
        with self.assertRaises(fi_rotation.TooFewBackups):
            fi_rotation.rotate(CONFIGURATION, backups, keep_at_least=(1 << 31) - 1)


if __name__ == "__main__":
    unittest.main()
