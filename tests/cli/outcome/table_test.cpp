#include "cli/outcome/table.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string>

#include <fi_rotation/fi_process_backups.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::SBackupOutcome;
using fi_rotate::SOutcome;
using fi_rotate::SView;

SBackupOutcome backup(const std::string& file, const std::string& timeStamp, int flagWord, int state) {
    return {{file, flagWord}, timeStamp, true, state, std::nullopt};
}

constexpr std::size_t kAnyWidth = std::numeric_limits<std::size_t>::max();

SOutcome someOutcome() {
    SOutcome outcome;
    outcome.status = FI_STATUS_SUCCESS;
    outcome.selection = "[encA##lun1;encA##snap1][encLonger##lun2;##s2]";
    outcome.backups = {backup("a.xml", "20260101", 4, FI_BACKUP_KEPT),
                       backup("a much longer name.xml", "", -12, FI_BACKUP_ROTATED)};
    outcome.backups.emplace_back();
    outcome.backups.back().given.file = "gone.xml";
    return outcome;
}

TEST(FiRotateTable, AlignsColumnsAndCutsNothing) {
    EXPECT_EQ(fi_rotate::toTables(someOutcome(), {}, std::nullopt, kAnyWidth, false),
              "Selection\n"
              "  first target     chosen target\n"
              "  encA##lun1       encA##snap1\n"
              "  encLonger##lun2  ##s2\n"
              "\n"
              "Backups\n"
              "  file                    time stamp  flags  state\n"
              "  a.xml                   20260101    4      kept\n"
              "  a much longer name.xml  -           -12    rotated\n"
              "  gone.xml                -           0      not loaded\n"
              "Total: 1 kept, 1 rotated, 1 not loaded\n");
}

TEST(FiRotateTable, AlignsByColumnsOfTheTerminalNotByBytes) {
    SOutcome outcome = someOutcome();
    outcome.backups = {backup("\xC3\xA4.xml", "1", 0, FI_BACKUP_KEPT),
                       backup("\xE6\x97\xA5\xE6\x9C\xAC.xml", "2", 0, FI_BACKUP_INVALID)};
    const std::string tables = fi_rotate::toTables(outcome, {}, std::nullopt, kAnyWidth, false);
    EXPECT_NE(tables.find("  file      time stamp"), std::string::npos) << tables;
    EXPECT_NE(tables.find("  \xC3\xA4.xml     1 "), std::string::npos) << tables;
    EXPECT_NE(tables.find("  \xE6\x97\xA5\xE6\x9C\xAC.xml  2 "), std::string::npos) << tables;
}

TEST(FiRotateTable, KeepsANameWithALineBreakOnItsLine) {
    SOutcome outcome = someOutcome();
    outcome.backups = {backup("a\nb.xml", "1", 0, FI_BACKUP_KEPT)};
    EXPECT_NE(fi_rotate::toTables(outcome, {}, std::nullopt, kAnyWidth, false).find("  a\\x0Ab.xml  1 "),
              std::string::npos);
}

TEST(FiRotateTable, SaysWhyThereAreNoRows) {
    SOutcome outcome;
    outcome.status = FI_STATUS_FAILURE;
    EXPECT_EQ(fi_rotate::toTables(outcome, {}, std::nullopt, kAnyWidth, false),
              "Selection: none\n\nBackups: none; this is the first backup\n");
    outcome.status = FI_STATUS_SUCCESS;
    outcome.selection = "";
    EXPECT_EQ(fi_rotate::toTables(outcome, {}, std::nullopt, kAnyWidth, false),
              "Selection: empty, because no configuration could be used\n\n"
              "Backups: none; this is the first backup\n");
}

TEST(FiRotateTable, CountsTheBackupsThatItDoesNotShow) {
    SOutcome outcome;
    outcome.status = FI_STATUS_FAILURE;
    outcome.backups = {backup("b.xml", "", 0, FI_BACKUP_KEPT), backup("c.xml", "", 0, FI_BACKUP_ROTATED)};
    const SView view{{"not loaded"}, false};
    EXPECT_EQ(fi_rotate::toTables(outcome, view, std::nullopt, kAnyWidth, false),
              "Selection: none\n\nBackups: none in these states, 2 in other states\n");
    outcome.backups.emplace_back().given.file = "a.xml";
    EXPECT_EQ(fi_rotate::toTables(outcome, view, std::nullopt, kAnyWidth, false),
              "Selection: none\n\nBackups\n"
              "  file   time stamp  flags  state\n"
              "  a.xml  -           0      not loaded\n"
              "  (2 in other states)\n"
              "Total: 1 kept, 1 rotated, 1 not loaded\n");
}

TEST(FiRotateTable, SaysOfHiddenBackupsWithoutAStateThatTheyAreNotInOthers) {
    const SView view{{"rotated"}, false};
    const auto shown = [&view](const SOutcome& outcome) {
        return fi_rotate::toTables(outcome, view, std::nullopt, kAnyWidth, false);
    };
    // Without a status the end of the call is missing from the log.
    SOutcome outcome;
    SBackupOutcome unknown = backup("a.xml", "", 0, 0);
    unknown.state.reset();
    outcome.backups = {unknown, unknown};
    EXPECT_EQ(shown(outcome),
              "Selection: not known\n\nBackups: the states of 2 are not known; there may be more backups, "
              "because lines are missing\n");
    outcome.backups.push_back(backup("b.xml", "", 0, FI_BACKUP_KEPT));
    EXPECT_EQ(shown(outcome),
              "Selection: not known\n\nBackups: the states of 2 are not known, 1 in other states; there may "
              "be more backups, because lines are missing\n");
    outcome.backups.push_back(backup("c.xml", "", 0, FI_BACKUP_ROTATED));
    EXPECT_EQ(shown(outcome),
              "Selection: not known\n\nBackups\n"
              "  file   time stamp  flags  state\n"
              "  c.xml  not known   0      rotated\n"
              "  (1 in other states, 2 of unknown state)\n"
              "Total: 1 kept, 1 rotated, 2 of unknown state; there may be more backups, because lines are "
              "missing\n");
    outcome.status = FI_STATUS_FAILURE;
    outcome.backups = {unknown};
    EXPECT_EQ(shown(outcome), "Selection: none\n\nBackups: none in these states, 1 without a state\n");
}

// The host library's trace of a first backup is that of a call whose documents were all left out.
TEST(FiRotateTable, DoesNotCallALoggedCallAFirstBackupThatMayHaveHadBackups) {
    fi_rotate::SLoggedCall call;
    call.outcome.status = FI_STATUS_FAILURE;
    call.outcome.account.emplace();
    const auto shown = [&call] { return fi_rotate::toTables(call, SView(), kAnyWidth, false); };
    EXPECT_THAT(shown(), testing::EndsWith("Selection: none\n\nBackups: none was read\n"));
    call.missing = {"its end"};
    EXPECT_THAT(shown(), testing::EndsWith("Selection: none\n\nBackups: not known\n"));
    call.areBackupsKnown = true;
    EXPECT_THAT(shown(), testing::EndsWith("Selection: none\n\nBackups: none; this is the first backup\n"));
}

TEST(FiRotateTable, SaysOfALoggedCallThatDocumentsWereIgnored) {
    fi_rotate::SLoggedCall call;
    call.outcome = someOutcome();
    call.outcome.account.emplace();
    SView view;
    view.states = {"invalid"};
    const auto shown = [&call, &view] { return fi_rotate::toTables(call, view, kAnyWidth, false); };
    EXPECT_THAT(shown(),
                testing::EndsWith("\nMessages\n  1 document was ignored; the chosen targets may hold the "
                                  "snapshots of its backup\n"));
    call.outcome.backups.push_back(call.outcome.backups.back());
    EXPECT_THAT(shown(),
                testing::EndsWith("\nMessages\n  2 documents were ignored; the chosen targets may hold "
                                  "the snapshots of their backups\n"));
    call.outcome.selection.reset();
    EXPECT_THAT(shown(), testing::Not(testing::HasSubstr("Messages")));
}

TEST(FiRotateTable, SaysOfABackupWithoutItsFlagWordWhatIsNotKnown) {
    SOutcome outcome;
    outcome.status = FI_STATUS_SUCCESS;
    SBackupOutcome told = backup("a.xml", "", 0, FI_BACKUP_ROTATED);
    told.isFlagWordKnown = false;
    SBackupOutcome untold = backup("b.xml", "1", 0, 0);
    untold.state.reset();
    outcome.backups = {told, untold};
    EXPECT_THAT(fi_rotate::toTables(outcome, SView(), std::nullopt, kAnyWidth, false),
                testing::EndsWith("  file   time stamp  flags      state\n"
                                  "  a.xml  not known   not known  rotated\n"
                                  "  b.xml  1           0          not known\n"
                                  "Total: 1 rotated, 1 of unknown state\n"));
}

TEST(FiRotateTable, SaysWhoHoldsTheTargetsOfAShortConfigurationThoughNoBackupIsShown) {
    SOutcome outcome;
    outcome.status = FI_STATUS_FAILURE;
    outcome.backups = {backup("a.xml", "1", 4, 0)};
    outcome.backups[0].state.reset();
    fi_rotate::SAccount& account = outcome.account.emplace();
    account.configurations.push_back({"A##x", {"A##1"}});
    account.backups.emplace_back().file = "a.xml";
    account.shortages.push_back({0, {{0, 0, true}}});
    SView view;
    view.states = {"rotated"};
    view.withReasons = true;
    EXPECT_EQ(fi_rotate::toTables(outcome, view, std::nullopt, kAnyWidth, false),
              "Selection: none\n"
              "\n"
              "Backups: none in these states, 1 without a state\n"
              "\n"
              "A##x has no free target\n"
              "  A##1 is held by a.xml, which would be rotated if it were not excluded\n");
}

TEST(FiRotateTable, SaysHowToDeleteSeveralBackups) {
    SOutcome outcome;
    outcome.status = FI_STATUS_FAILURE;
    outcome.account.emplace().configurations.push_back({"A##x", {"A##1"}});
    outcome.account->shortages.push_back({0, {}});
    fi_rotate::SAdvice advice;
    advice.neededChanges = {{fi_rotate::EChange::kLeaveOut, "a.xml"},
                            {fi_rotate::EChange::kLeaveOut, "b.xml"}};
    EXPECT_THAT(
        fi_rotate::toTables(outcome, {}, advice, kAnyWidth, false),
        testing::StartsWith(
            "Selection: none\n"
            "A##x has no free target\n"
            "Without new targets: delete the backup of a.xml, which is invalid, and delete the backup of "
            "b.xml, which is invalid (no backup would be released)\n"
            "  Run without those documents first, to try it. Delete in the product only if no other "
            "document names the targets.\n"));
}

TEST(FiRotateTable, ShowsTheSelectionAsOneTextWhenItCannotBeSplit) {
    SOutcome outcome = someOutcome();
    outcome.backups.clear();
    outcome.selection = "[A##x][1;B##2]";
    EXPECT_EQ(fi_rotate::toTables(outcome, {}, std::nullopt, kAnyWidth, false),
              "Selection: [A##x][1;B##2]\n\nBackups: none; this is the first backup\n");
}

// Colour adds to what is there: without its escape sequences the text is the same.
TEST(FiRotateTable, ColourChangesNoText) {
    std::string coloured = fi_rotate::toTables(someOutcome(), {}, std::nullopt, kAnyWidth, true);
    EXPECT_NE(coloured.find("\x1B["), std::string::npos);
    for (std::size_t start = 0; (start = coloured.find("\x1B[")) != std::string::npos;) {
        coloured.erase(start, coloured.find('m', start) - start + 1);
    }
    EXPECT_EQ(coloured, fi_rotate::toTables(someOutcome(), {}, std::nullopt, kAnyWidth, false));
}

TEST(FiRotateTable, ShowsListsWhenRowsAreTooLongForTheTerminal) {
    SOutcome outcome = someOutcome();
    outcome.selection = "[enclosure-0001##lun-0001;enclosure-0002##snapshot-000000001]";
    outcome.backups = {backup("/backups/2026/11/monday-the-second.xml", "20261102", 0, FI_BACKUP_KEPT)};
    // A row of the selection takes 62 columns, one of the backups 66.
    EXPECT_EQ(fi_rotate::toTables(outcome, {}, std::nullopt, 65, false),
              "Selection\n"
              "  first target              chosen target\n"
              "  enclosure-0001##lun-0001  enclosure-0002##snapshot-000000001\n"
              "\n"
              "Backups\n"
              "  /backups/2026/11/monday-the-second.xml\n"
              "    time stamp: 20261102\n"
              "    flags: 0\n"
              "    state: kept\n"
              "Total: 1 kept\n");
    EXPECT_THAT(fi_rotate::toTables(outcome, {}, std::nullopt, 61, false),
                testing::StartsWith("Selection\n"
                                    "  enclosure-0001##lun-0001\n"
                                    "    chosen target: enclosure-0002##snapshot-000000001\n"));
}

}  // namespace
