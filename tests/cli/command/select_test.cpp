#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::contentOf;
using fi_test::example;
using fi_test::exampleBackups;
using fi_test::runFiRotate;
using fi_test::runFiRotateOnTerminal;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// One configuration with one further target, and a backup that holds it.
constexpr const char* kConfiguration = "encA##lun1;encA##snap1";
constexpr const char* kHolder =
    "<Node><objid>UDID##a##b##encA##lun1</objid><altobjid>UDID##a##b##encA##snap1</altobjid>"
    "<timeStamp>20260101</timeStamp></Node>";

std::vector<std::string> selectExamples() {
    std::vector<std::string> arguments{"select", "--config-file", example("resource.conf"), "--exclude",
                                       exampleBackups().front()};
    for (const std::string& backup : exampleBackups()) {
        arguments.push_back(backup);
    }
    return arguments;
}

TEST(FiRotateSelect, ShowsSelectionAndEveryBackupInTheOrderGiven) {
    const auto result = runFiRotate(selectExamples());
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.error, "");
    const std::string folder = example("");
    EXPECT_EQ(result.output,
              "Selection\n"
              "  first target     chosen target    restore points\n"
              "  ENC-A##VOL-0011  ENC-A##SNP-0102  5 (6 before)\n"
              "  ENC-A##VOL-0012  ENC-A##SNP-0112  5 (6 before)\n"
              "  ENC-B##VOL-0021  ENC-B##SNP-0202  5 (6 before)\n"
              "\n"
              "Backups\n"
              "  file" +
                  std::string(folder.size() + 17, ' ') +
                  "  time stamp      flags  state\n"
                  "  " +
                  folder +
                  "backup-2026-10-01.xml  20261001013000  4      kept\n"
                  "  " +
                  folder +
                  "backup-2026-10-02.xml  20261002013000  0      invalid\n"
                  "  " +
                  folder +
                  "backup-2026-10-03.xml  20261003013000  0      rotated\n"
                  "  " +
                  folder +
                  "backup-2026-10-04.xml  20261004013000  0      invalid\n"
                  "  " +
                  folder +
                  "backup-2026-10-05.xml  20261005013000  0      kept\n"
                  "  " +
                  folder +
                  "backup-2026-10-06.xml  20261006013000  0      kept\n"
                  "  " +
                  folder +
                  "backup-2026-10-07.xml  20261007013000  0      kept\n"
                  "  " +
                  folder +
                  "backup-2026-10-08.xml  20261008013000  0      kept\n"
                  "Total: 5 kept, 2 invalid, 1 rotated\n");
}

TEST(FiRotateSelect, ShowsOnlyTheStatesAskedFor) {
    std::vector<std::string> arguments = selectExamples();
    arguments.insert(arguments.end(), {"--only", "rotated,not loaded", "--only", "invalid"});
    const auto result = runFiRotate(arguments);
    EXPECT_EQ(result.exitStatus, 0);
    for (const char* shown : {"10-02.xml", "10-03.xml", "10-04.xml"}) {
        EXPECT_THAT(result.output, HasSubstr(shown));
    }
    for (const char* hidden : {"10-01.xml", "10-05.xml", "10-08.xml"}) {
        EXPECT_THAT(result.output, Not(HasSubstr(hidden)));
    }
    EXPECT_THAT(result.output, EndsWith("  (5 in other states)\nTotal: 5 kept, 2 invalid, 1 rotated\n"));
}

TEST(FiRotateSelect, WithoutBackupsChoosesTheFirstTargets) {
    const auto result = runFiRotate({"select", "--config", kConfiguration});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output,
              "Selection\n"
              "  first target  chosen target\n"
              "  encA##lun1    encA##snap1\n"
              "\n"
              "Backups: none; this is the first backup\n");
}

TEST(FiRotateSelect, ExitsWith3AndSaysSoWhenThereIsNoSelection) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", kHolder);
    const auto result = runFiRotate({"select", "--config", kConfiguration, "--exclude", file, file});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output, StartsWith("Selection: none\n"));
    EXPECT_THAT(result.output, HasSubstr("  " + file + "  20260101    4      -\n"));
    EXPECT_EQ(result.error, "fi-rotate: no selection: at least one configuration has no free target\n");
}

TEST(FiRotateSelect, ExitsWith4AndNamesTheIdentifierWhenAnExceptionLeavesTheLibrary) {
    const struct {
        const char* identifier;
        const char* fault;
    } rows[] = {
        {"UDID##a##b##", "nothing follows the second ## after its prefix"},
        {"snap1", "it holds neither UDID## nor UEID##"},
        {"UDID##a", "no ## follows its prefix"},
        {"UDID##a##b", "only one ## follows its prefix"},
    };
    for (const auto& row : rows) {
        const fi_test::CTemporaryFolder folder;
        const std::string file =
            folder.write("a.xml", std::string("<Node><objid>UDID##a##b##encA##lun1</objid><altobjid>") +
                                      row.identifier + "</altobjid></Node>");
        const auto result = runFiRotate({"select", "--config", kConfiguration, file});
        EXPECT_EQ(result.exitStatus, 4) << row.identifier;
        EXPECT_EQ(result.error, std::string("fi-rotate: malformed identifier \"") + row.identifier +
                                    "\": " + row.fault + "\n");
        EXPECT_THAT(result.output, StartsWith("Selection: none\n"));
    }
}

TEST(FiRotateSelect, NamesEveryBackupThatWasNotLoadedWithTheReasonAndExitsWith6) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", kHolder);
    const std::string missing = folder.path("missing.xml");
    const auto result =
        runFiRotate({"select", "--config", "encA##lun1;encA##snap1;snap2", file, missing, file + "2"});
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_EQ(result.error, "fi-rotate: " + missing +
                                " was ignored: it cannot be opened: No such file or directory\n"
                                "fi-rotate: " +
                                file +
                                "2 was ignored: a document before it cannot be opened\n"
                                "fi-rotate: the chosen targets may hold the snapshots of these backups; make "
                                "the documents readable first\n");
    EXPECT_THAT(result.output, HasSubstr("  -           0      not loaded\n"));
}

TEST(FiRotateSelect, CallsADocumentWithoutANodeNotLoaded) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<nothing/>");
    const auto result = runFiRotate({"select", "--config", kConfiguration, file});
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_THAT(result.output, EndsWith("not loaded\n"));
    EXPECT_EQ(result.error, "fi-rotate: " + file +
                                " was ignored: it has no Node\n"
                                "fi-rotate: the chosen targets may hold the snapshots of these backups; make "
                                "the documents readable first\n");
}

TEST(FiRotateSelect, NamesADocumentThatWasReadOnlyInPartAndExitsWith6) {
    const fi_test::CTemporaryFolder folder;
    const std::string file =
        folder.write("a.xml", std::string("<Node>") + kHolder + "<Node><objid>UDID##a##b");
    const auto result =
        runFiRotate({"select", "--config", "encA##lun1;encA##snap1;snap2&encB##lun2;snap3", file});
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_THAT(result.output, HasSubstr("  kept\n"));
    EXPECT_EQ(result.error,
              "fi-rotate: " + file +
                  " was read only in part: it cannot be read to its end as XML; fi-rotate check "
                  "shows where\n"
                  "fi-rotate: the chosen targets may hold the snapshots of these backups; make "
                  "the documents readable first\n");
}

TEST(FiRotateSelect, StrictSelectsFromWholeInputsAsWithoutIt) {
    std::vector<std::string> arguments = selectExamples();
    const auto bare = runFiRotate(arguments);
    arguments.insert(arguments.begin() + 1, "--strict");
    const auto strict = runFiRotate(arguments);
    EXPECT_EQ(strict.exitStatus, 0);
    EXPECT_EQ(strict.error, "");
    EXPECT_EQ(strict.output, bare.output);
}

TEST(FiRotateSelect, StrictNamesEveryInputThatIsNotWholeAndDecidesNothing) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", kHolder);
    const std::string missing = folder.path("missing.xml");
    const std::string without = folder.write("b.xml", "<nothing/>");
    const auto result = runFiRotate(
        {"select", "--strict", "--config", "encA##lun1;encA##snap1;snap2&encB##", missing, without, file});
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_THAT(result.output, StartsWith("Selection: none\n"));
    EXPECT_EQ(result.error,
              "fi-rotate: the configuration \"encB##\" has a target without a device\n"
              "fi-rotate: " +
                  missing + ": cannot be opened: No such file or directory\n" + "fi-rotate: " + without +
                  ": has no Node\n"
                  "fi-rotate: nothing was decided, because these inputs are missing or damaged\n");
}

TEST(FiRotateSelect, StrictNamesADocumentThatIsNotWellFormed) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<Node>");
    const auto result = runFiRotate({"select", "--strict", "--config", kConfiguration, file});
    EXPECT_EQ(result.exitStatus, 6);
    EXPECT_THAT(result.error, HasSubstr(file + ": cannot be read to its end as XML\n"));
}

TEST(FiRotateSelect, StrictExitsWith3WhenNoTargetIsFree) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", kHolder);
    const auto result =
        runFiRotate({"select", "--strict", "--config", kConfiguration, "--exclude", file, file});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output, StartsWith("Selection: none\n"));
}

TEST(FiRotateSelect, TellsWhichConfigurationWasRejected) {
    const auto result = runFiRotate({"select", "--config", "encA##lun1;snap1&lun2;snap2"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.output, HasSubstr("  encA##lun1    encA##snap1\n\n"));
    EXPECT_EQ(result.error,
              "fi-rotate: \"lun2\" names no enclosure; a target is ENCLOSURE##DEVICE; its configuration "
              "and all after it are not used\n");
}

TEST(FiRotateSelect, WritesTheTraceToStandardErrorOneLineACall) {
    const auto result = runFiRotate({"select", "--config", "encA##lun1;sn\\p", "--trace"});
    EXPECT_EQ(result.error,
              "4 CFiResourceParser::parse : Resource specification [encA##lun1;sn\\\\p]\n"
              "4 CFiResourceParser::parse : [encA][lun1]\n"
              "4 CFiResourceParser::parse : [encA][sn\\\\p]\n"
              "4 fi_process_backups : fiidListSize empty, no previous backups to process\n");
}

TEST(FiRotateSelect, KeepsLineBreaksOfATraceTextOnItsLine) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<Node><objid>one\ntwo</objid></Node>");
    const auto result = runFiRotate({"select", "--config", kConfiguration, "--trace", file});
    EXPECT_THAT(result.error, HasSubstr("4  [one\\ntwo]\n4  {"));
    EXPECT_THAT(result.error, HasSubstr("4 Entering CFiFiidHandler::startElement\n4 Exiting "));
}

TEST(FiRotateSelect, WritesTheSameTraceToAFile) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.path("trace");
    const auto onError = runFiRotate({"select", "--config", kConfiguration, "--trace"});
    const auto inFile = runFiRotate({"select", "--config", kConfiguration, "--trace-file", file});
    EXPECT_EQ(inFile.error, "");
    EXPECT_EQ(contentOf(file), onError.error);
    EXPECT_THAT(contentOf(file), HasSubstr("4 CFiResourceParser::parse : [encA][lun1]\n"));
}

TEST(FiRotateSelect, ColoursStatesOnATerminalOnly) {
    if (!fi_test::hasTerminals()) {
        GTEST_SKIP() << fi_test::kNoTerminals;
    }
    EXPECT_THAT(runFiRotateOnTerminal(selectExamples()).output, HasSubstr("\x1B["));
    EXPECT_THAT(runFiRotate(selectExamples()).output, Not(HasSubstr("\x1B[")));
}

TEST(FiRotateSelect, NeverColoursWithNoColorSet) {
    if (!fi_test::hasTerminals()) {
        GTEST_SKIP() << fi_test::kNoTerminals;
    }
    const auto result = runFiRotateOnTerminal(selectExamples(), {"NO_COLOR=1"});
    EXPECT_THAT(result.output, HasSubstr("rotated"));
    EXPECT_THAT(result.output, Not(HasSubstr("\x1B[")));
    EXPECT_THAT(runFiRotateOnTerminal(selectExamples(), {"NO_COLOR="}).output, Not(HasSubstr("\x1B[")));
    EXPECT_THAT(runFiRotateOnTerminal(selectExamples(), {"TERM=dumb"}).output, Not(HasSubstr("\x1B[")));
    EXPECT_THAT(runFiRotateOnTerminal(selectExamples(), {"TERM=xterm"}).output, HasSubstr("\x1B["));
}

// The oldest holds the only target, and would be all that is left of its configuration.
TEST(FiRotateSelect, DecidesNothingWhereTooFewBackupsWouldBeKept) {
    const fi_test::CTemporaryFolder folder;
    const std::string holder = folder.write("a.xml", kHolder);
    const auto warned = runFiRotate({"select", "--config", kConfiguration, holder});
    EXPECT_EQ(warned.exitStatus, 0);
    EXPECT_THAT(warned.output,
                HasSubstr("WARNING: encA##lun1 has no restore point left until its new snapshot is taken\n"));
    for (const bool isStrict : {false, true}) {
        SCOPED_TRACE(isStrict);
        std::vector<std::string> arguments{"select",          "--config", kConfiguration,
                                           "--keep-at-least", "1",        holder};
        if (isStrict) {
            arguments.emplace_back("--strict");
        }
        const auto refused = runFiRotate(arguments);
        EXPECT_EQ(refused.exitStatus, 7);
        EXPECT_THAT(refused.output, StartsWith("Selection: none\n"));
        EXPECT_THAT(refused.output, Not(HasSubstr("rotated")));
        EXPECT_EQ(refused.error,
                  "fi-rotate: encA##lun1 would keep 0 of its 1 backups; at least 1 must remain: add further "
                  "targets, or keep fewer\n"
                  "fi-rotate: nothing was decided, because too few backups would be kept\n");
    }
}

TEST(FiRotateSelect, BeginsWithTheWaysOutOfAShortage) {
    const fi_test::CTemporaryFolder folder;
    const std::string holder = folder.write("a.xml", kHolder);
    const auto result = runFiRotate({"select", "--config", kConfiguration, "--exclude", holder, holder});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output, StartsWith("Selection: none\n"
                                          "encA##lun1 has no free target\n"
                                          "Without new targets: allow rotation of " +
                                          holder +
                                          " (1 backup would be released)\n"
                                          "With new targets: add one to it (no backup would be released)\n"));
}

// The older of two backups with one target in common is invalid, and holds the only target of the second
// volume.
TEST(FiRotateSelect, SaysHowToDeleteAnInvalidBackupThatHoldsTheLastTarget) {
    const fi_test::CTemporaryFolder folder;
    const auto node = [](const std::string& first, const std::string& target) {
        return "<Node><objid>UDID##a##b##" + first + "</objid><altobjid>UDID##a##b##" + target +
               "</altobjid></Node>";
    };
    const std::string invalid = folder.write(
        "a.xml", "<Node><timeStamp>1</timeStamp>" + node("e##v", "e##1") + node("e##u", "e##2") + "</Node>");
    const std::string newer =
        folder.write("b.xml", "<Node><timeStamp>2</timeStamp>" + node("e##v", "e##1") + "</Node>");
    const auto result = runFiRotate({"select", "--config", "e##v;1;3&e##u;2", invalid, newer});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(
        result.output,
        StartsWith("Selection: none\n"
                   "e##u has no free target\n"
                   "Without new targets: delete the backup of " +
                   invalid +
                   ", which is invalid (no backup would be released)\n"
                   "  Run without that document first, to try it. Delete in the product only if no other "
                   "document names the targets.\n"
                   "With new targets: add one to it (no backup would be released)\n"
                   "\n"
                   "Targets of e##u\n"
                   "  e##2 is held by " +
                   invalid +
                   ", invalid, so never released\n"
                   "    if it is deleted, no backup would be released\n"));
    EXPECT_EQ(runFiRotate({"select", "--config", "e##v;1;3&e##u;2", newer}).exitStatus, 0);
}

TEST(FiRotateSelect, SaysThatOnlyATargetHelpsAConfigurationThatHasNone) {
    const fi_test::CTemporaryFolder folder;
    const std::string backup = folder.write("a.xml", "<Node><timeStamp>1</timeStamp></Node>");
    const auto result = runFiRotate({"select", "--config", "encA##lun1", backup});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output,
                StartsWith("Selection: none\n"
                           "encA##lun1 has no free target\n"
                           "Without new targets: nothing helps, whichever backups are deleted\n"
                           "With new targets: add one to it (no backup would be released)\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("not configured")));
}

TEST(FiRotateSelect, NamesTheShortConfigurationOfAFirstBackup) {
    const auto result = runFiRotate({"select", "--config", "encA##lun1;snap1&encA##lun2"});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output,
                StartsWith("Selection: none\n"
                           "encA##lun2 has no free target\n"
                           "Without new targets: nothing helps, whichever backups are deleted\n"
                           "With new targets: add one to it (no backup would be released)\n"));
}

TEST(FiRotateSelect, SaysWhichShortageMayComeFromTargetsThatWereTakenOutOfTheConfiguration) {
    const fi_test::CTemporaryFolder folder;
    const std::string backup =
        folder.write("a.xml",
                     "<Node><timeStamp>1</timeStamp><objid>UDID##v##m##encA##lun1</objid>"
                     "<altobjid>UDID##v##m##encA##snap1</altobjid></Node>");
    const auto result = runFiRotate({"select", "--config", "encA##lun1", backup});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output,
                HasSubstr("(no backup would be released)\n"
                          "Before that: 1 backup names targets that are not configured, so what "
                          "it holds can be overwritten; see --explain\n"));
}

}  // namespace
