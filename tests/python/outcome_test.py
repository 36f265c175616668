"""What rotate() returns and raises, for every outcome and every kind of problem."""

import dataclasses
import os
import pickle
import unittest

import fi_rotation
from backups import CONFIGURATION, FolderTest, document, node
from fi_rotation import ProblemKind, State

MALFORMED = document(("encA##lun1", "encA##snap1")).replace("UDID##v##m##encA##snap1", "no-identifier")


class Selections(FolderTest):
    def test_the_oldest_backup_is_rotated_when_no_target_is_free(self):
        outcome = fi_rotation.rotate(CONFIGURATION, self.two_backups())
        self.assertEqual(outcome.kind, fi_rotation.OutcomeKind.SELECTED)
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap1]")
        self.assertEqual([backup.state for backup in outcome.backups], [State.ROTATED, State.KEPT])
        self.assertEqual(outcome.problems, ())

    def test_an_excluded_backup_keeps_its_target(self):
        outcome = fi_rotation.rotate(CONFIGURATION, self.two_backups(), excluded=["old.xml"])
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap2]")
        self.assertEqual([backup.state for backup in outcome.backups], [State.KEPT, State.ROTATED])

    def test_every_configuration_has_its_choice_and_the_holders_of_its_targets(self):
        backups = self.two_backups()
        outcome = fi_rotation.rotate(CONFIGURATION + "&encB##lun2;encB##snap3", backups)
        first, second = outcome.configurations
        self.assertEqual((first.first, first.chosen, first.kept), ("encA##lun1", "encA##snap1", 1))
        self.assertEqual([(target.name, target.holder) for target in first.targets],
                         [("encA##snap1", None), ("encA##snap2", outcome.backups[1])])
        self.assertEqual((second.first, second.chosen, second.kept), ("encB##lun2", "encB##snap3", 0))
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap1][encB##lun2;encB##snap3]")

    def test_a_backup_has_its_time_targets_and_reason(self):
        rotated, kept = fi_rotation.rotate(CONFIGURATION, self.two_backups()).backups
        self.assertEqual((rotated.time_stamp, rotated.targets, rotated.reason),
                         ("20261001013000", ("encA##snap1",), "needed"))
        self.assertEqual((kept.file, kept.targets, kept.problems), ("new.xml", ("encA##snap2",), ProblemKind(0)))
        self.assertIn("encA##lun1", rotated.reason_text)

    def test_a_backup_that_does_not_agree_is_invalid(self):
        backups = [self.write("other.xml", document(("encA##lun9", "encA##snap1")))]
        outcome = fi_rotation.rotate(CONFIGURATION, backups)
        self.assertEqual((outcome.backups[0].state, outcome.backups[0].reason),
                         (State.INVALID, "unknown_configuration"))
        self.assertEqual((outcome.backups[0].time_stamp, outcome.backups[0].targets), (None, ()))

    def test_a_first_backup_takes_the_first_target(self):
        outcome = fi_rotation.rotate(CONFIGURATION, [], allow_no_backups=True)
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap1]")
        self.assertEqual(outcome.backups, ())
        self.assertEqual([target.name for target in outcome.configurations[0].targets],
                         ["encA##snap1", "encA##snap2"])

    def test_records_cannot_be_changed(self):
        outcome = fi_rotation.rotate(CONFIGURATION, self.two_backups())
        for record in outcome, outcome.backups[0], outcome.configurations[0], outcome.configurations[0].targets[0]:
            with self.subTest(type(record)), self.assertRaises(dataclasses.FrozenInstanceError):
                setattr(record, dataclasses.fields(record)[0].name, None)


class NoSelections(FolderTest):
    def test_no_free_target_raises_with_who_holds_what(self):
        with self.assertRaises(fi_rotation.NoFreeTarget) as raised:
            fi_rotation.rotate(CONFIGURATION, self.two_backups(), excluded=["old.xml", "new.xml"])
        outcome = raised.exception.outcome
        self.assertEqual(outcome.kind, fi_rotation.OutcomeKind.NO_FREE_TARGET)
        self.assertEqual([target.holder.file for target in outcome.configurations[0].targets],
                         ["old.xml", "new.xml"])
        self.assertIn("encA##snap1 is held by old.xml", str(raised.exception))

    def test_too_few_backups_raises_and_names_no_target(self):
        with self.assertRaises(fi_rotation.TooFewBackups) as raised:
            fi_rotation.rotate(CONFIGURATION, self.two_backups(), keep_at_least=2)
        outcome = raised.exception.outcome
        self.assertEqual(outcome.kind, fi_rotation.OutcomeKind.TOO_FEW_BACKUPS)
        self.assertEqual([backup.state for backup in outcome.backups], [State.NO_STATE] * 2)
        self.assertEqual((outcome.configurations[0].kept, outcome.configurations[0].chosen), (1, None))
        self.assertIn("encA##lun1", str(raised.exception))

    def test_an_outcome_without_a_selection_has_none_to_be_read(self):
        with self.assertRaises(fi_rotation.NoFreeTarget) as raised:
            fi_rotation.rotate("encA##lun1", [], allow_no_backups=True)
        self.assertFalse(hasattr(raised.exception.outcome, "selection"))

    def test_exceptions_pass_between_processes(self):
        for configuration, backups, kind in (("encA##lun1", [], fi_rotation.NoFreeTarget),
                                             (CONFIGURATION, ["none.xml"], fi_rotation.Refused)):
            with self.subTest(kind), self.assertRaises(fi_rotation.RotationError) as raised:
                fi_rotation.rotate(configuration, backups, allow_no_backups=True)
            again = pickle.loads(pickle.dumps(raised.exception))
            self.assertIs(type(again), kind)
            self.assertEqual(again.outcome, raised.exception.outcome)


class Problems(FolderTest):
    def refusal(self, backups, configuration=CONFIGURATION, **options):
        with self.assertRaises(fi_rotation.Refused) as raised:
            fi_rotation.rotate(configuration, backups, **options)
        outcome = raised.exception.outcome
        self.assertEqual(outcome.kind, fi_rotation.OutcomeKind.REFUSED)
        self.assertEqual(outcome.configurations, ())
        return [(problem.kind, problem.backup.file if problem.backup else None) for problem in outcome.problems]

    def check(self, kind, file, permitted_state, **options):
        """Only this problem is found; it refuses the call unless its own bit is permitted."""
        self.assertEqual(self.refusal([file], **options), [(kind, file)])
        self.assertEqual(self.refusal([file], permit=~kind, **options), [(kind, file)])
        outcome = fi_rotation.rotate(CONFIGURATION, [file], permit=kind, **options)
        self.assertEqual([problem.kind for problem in outcome.problems], [kind])
        self.assertEqual((outcome.backups[0].problems, outcome.backups[0].state), (kind, permitted_state))

    def test_configuration_rejected(self):
        for configuration in "", "lun1;snap1", CONFIGURATION + "&lun2;snap3":
            with self.subTest(configuration):
                self.assertEqual(self.refusal(self.two_backups(), configuration),
                                 [(ProblemKind.CONFIGURATION_REJECTED, None)])
        outcome = fi_rotation.rotate(CONFIGURATION + "&lun2;snap3", self.two_backups(),
                                     permit=ProblemKind.CONFIGURATION_REJECTED)
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap1]")

    def test_cannot_open(self):
        self.check(ProblemKind.CANNOT_OPEN, "none.xml", State.NO_STATE)

    def test_not_a_file(self):
        os.mkdir("folder")
        self.assertEqual(self.refusal(["folder"]), [(ProblemKind.NOT_A_FILE, "folder")])

    def test_read_error(self):
        # stat calls it a regular file, but reading at its beginning fails.
        self.assertEqual(self.refusal(["/proc/self/mem"]), [(ProblemKind.READ_ERROR, "/proc/self/mem")])

    def test_too_large(self):
        text = document(("encA##lun1", "encA##snap1"))
        file = self.write("large.xml", text)
        self.check(ProblemKind.TOO_LARGE, file, State.KEPT, limit_document=len(text) - 1)
        self.assertEqual(fi_rotation.rotate(CONFIGURATION, [file], limit_document=len(text)).problems, ())

    def test_nul_byte(self):
        file = self.write("nul.xml", document(("encA##lun1", "encA##snap1")) + "\n\0")
        self.check(ProblemKind.NUL_BYTE, file, State.KEPT)

    def test_listed_twice(self):
        file = self.write("one.xml", document(("encA##lun1", "encA##snap1")))
        os.symlink(file, "other.xml")
        for second in file, "./one.xml", "other.xml":
            with self.subTest(second):
                self.assertEqual(self.refusal([file, second]), [(ProblemKind.LISTED_TWICE, second)])

    def test_not_well_formed(self):
        file = self.write("torn.xml", document(("encA##lun1", "encA##snap1")) + "<")
        self.check(ProblemKind.NOT_WELL_FORMED, file, State.KEPT)

    def test_no_node(self):
        self.check(ProblemKind.NO_NODE, self.write("empty.xml", "<backup/>"), State.NO_STATE)

    def test_several_roots(self):
        roots = node(("encA##lun9", "encA##snap9")) + node(("encA##lun1", "encA##snap1"))
        file = self.write("two.xml", f"<backup>{roots}</backup>")
        self.check(ProblemKind.SEVERAL_ROOTS, file, State.KEPT)

    def test_changed(self):
        file = self.write("moving.xml", document(("encA##lun1", "encA##snap1")))

        def change(_level, _text):
            with open(file, "a", encoding="utf-8") as moving:
                moving.write("\n")

        self.check(ProblemKind.CHANGED, file, State.KEPT, trace=change)

    def test_malformed_identifier_cannot_be_permitted(self):
        file = self.write("malformed.xml", MALFORMED)
        for permit in ProblemKind(0), ProblemKind.MALFORMED_IDENTIFIER, ~ProblemKind(0):
            with self.subTest(permit):
                self.assertEqual(self.refusal([file], permit=permit), [(ProblemKind.MALFORMED_IDENTIFIER, file)])

    def test_every_offending_document_is_named(self):
        good, bad = self.write("good.xml", document()), self.write("bad.xml", "<backup/>")
        self.assertEqual(self.refusal(["none.xml", good, bad]),
                         [(ProblemKind.CANNOT_OPEN, "none.xml"), (ProblemKind.NO_NODE, "bad.xml")])

    def test_the_words_of_a_refusal_name_every_file(self):
        with self.assertRaises(fi_rotation.Refused) as raised:
            fi_rotation.rotate(CONFIGURATION, ["none.xml", "neither.xml"])
        lines = str(raised.exception).splitlines()
        self.assertEqual(lines, [problem.text for problem in raised.exception.outcome.problems])
        self.assertEqual([line.split(":")[0] for line in lines], ["none.xml", "neither.xml"])


if __name__ == "__main__":
    unittest.main()
