#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::contentOf;
using fi_test::CTemporaryFolder;
using fi_test::runFiRotate;
using fi_test::runFiRotateOnTerminal;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// `configuration` daily from 2026-10-01 on.
std::vector<std::string> daily(const std::string& configuration, const std::string& rounds,
                               const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"simulate", "--config", configuration, "--rounds",  rounds,
                                       "--every",  "24h",      "--start",     "2026-10-01"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

// Rounds 2, 4 and 6 are excluded and hold the three targets of the first volume after round 6. Round 4
// rotates round 1, round 5 round 3, round 6 round 5: after 3, 2 and 1 days.
std::vector<std::string> untilNoneIsLeft(const std::vector<std::string>& more = {}) {
    auto arguments = daily("encA##lun1;s1;s2;s3&encA##lun2;t1;t2;t3;t4", "12", {"--exclude-every", "2"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST(FiRotateSimulate, ShowsASummaryAndEveryTargetsHoldersBelowIt) {
    const auto result = runFiRotate(untilNoneIsLeft({"--keep-days", "2"}));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output,
              "12 rounds: 2026-10-01 00:00 to 2026-10-12 00:00\n"
              "  configuration  targets  taken  rotated  held  age min  median  max  targets for 2 d\n"
              "  encA##lun1     3        6      3        3     1 d      2 d     3 d  no limit\n"
              "  encA##lun2     4        6      3        3     1 d      2 d     3 d  no limit\n"
              "\n"
              "Fewest restore points after the call of a round\n"
              "  encA##lun1: 1 in round 2 (2026-10-02 00:00), since the first rotation 2 in round 4 "
              "(2026-10-04 00:00)\n"
              "  encA##lun2: 1 in round 2 (2026-10-02 00:00), since the first rotation 2 in round 4 "
              "(2026-10-04 00:00)\n"
              "\n"
              "No target was found from round 7 on (2026-10-07 00:00), in 6 of 12 rounds\n"
              "  encA##lun1: all 3 targets are held by excluded backups\n"
              "No number of targets stays enough: each excluded backup keeps its target forever\n"
              "\n"
              "Rounds 1 to 9, a column each\n"
              "  not shown (no target was found either): 10 to 12\n"
              "                 1\n"
              "  encA##lun1\n"
              "    encA##s1     aaaDDDDDD\n"
              "    encA##s2     .BBBBBBBB\n"
              "    encA##s3     ..cceFFFF\n"
              "  encA##lun2\n"
              "    encA##t1     aaaDDDDDD\n"
              "    encA##t2     .BBBBBBBB\n"
              "    encA##t3     ..cceFFFF\n"
              "    encA##t4     .........\n"
              "    (no target)        !!!\n"
              "  a letter: the backup that holds the target; a capital letter: an excluded one; .: free\n");
}

TEST(FiRotateSimulate, SaysThatEveryRoundFoundATarget) {
    const auto result = runFiRotate(daily("encA##lun1;s1;s2", "2", {"--no-timeline"}));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output,
              "2 rounds: 2026-10-01 00:00 to 2026-10-02 00:00\n"
              "  configuration  targets  taken  rotated  held  age min  median  max\n"
              "  encA##lun1     2        2      0        2     -        -       -\n"
              "\n"
              "Fewest restore points after the call of a round\n"
              "  encA##lun1: 1 in round 2 (2026-10-02 00:00)\n"
              "\n"
              "Every round found a target\n");
}

TEST(FiRotateSimulate, OneRoundIsSingularWhereverItIsNamed) {
    const auto one = runFiRotate(daily("encA##lun1;s1", "1"));
    EXPECT_THAT(one.output, StartsWith("1 round: 2026-10-01 00:00\n"));
    EXPECT_THAT(one.output, HasSubstr("\nRound 1\n"));
    // Round 2 of three is short, until the exclusion of round 1 ends.
    const auto between =
        runFiRotate(daily("encA##lun1;s1", "3", {"--exclude-every", "1", "--exclude-for", "2d"}));
    EXPECT_THAT(between.output, HasSubstr("No target was found in 1 of 3 rounds: 2\n"
                                          "  encA##lun1 (round 2): its only target is held by an excluded "
                                          "backup\n"));
    // Rounds 2 to 4 are shown.
    const auto atTheEnd = runFiRotate(daily("encA##lun1;s1", "5", {"--exclude-every", "1"}));
    EXPECT_THAT(atTheEnd.output, HasSubstr("\n  not shown (no target was found either): 5\n"));
}

// Each backup is excluded for four days, so that the two targets serve two rounds of four. Four targets would
// be enough: one for the round, three for the backups of the three rounds before it, which are still
// excluded.
TEST(FiRotateSimulate, ShowsEveryStretchOfRoundsWithoutATarget) {
    const auto result = runFiRotate(
        daily("encA##lun1;s1;s2", "9", {"--exclude-every", "1", "--exclude-for", "4d", "--keep-days", "3"}));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output,
              "9 rounds: 2026-10-01 00:00 to 2026-10-09 00:00\n"
              "  configuration  targets  taken  rotated  held  age min  median  max  targets for 3 d\n"
              "  encA##lun1     2        5      3        2     4 d      4 d     4 d  4\n"
              "\n"
              "Fewest restore points after the call of a round\n"
              "  encA##lun1: 1 in round 2 (2026-10-02 00:00)\n"
              "\n"
              "No target was found in 4 of 9 rounds: 3 to 4, 7 to 8\n"
              "  encA##lun1 (4 rounds, the first is 3): all 2 targets are held by excluded backups\n"
              "\n"
              "Rounds 1 to 9, a column each\n"
              "                 1\n"
              "  encA##lun1\n"
              "    encA##s1     AAAACCCCE\n"
              "    encA##s2     .BBBBDDDD\n"
              "    (no target)    !!  !!\n"
              "  a letter: the backup that holds the target; a capital letter: an excluded one; .: free\n");
}

TEST(FiRotateSimulate, NamesSnapshotsThatWereOverwritten) {
    const auto result = runFiRotate(daily("encA##lun1;s1;s1", "3", {"--keep-days", "2"}));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(
        result.output,
        HasSubstr(
            "  configuration  targets  taken  rotated  held  lost  age min  median  max  targets for 2 d\n"
            "  encA##lun1     2        3      0        1     2     -        -       -    impossible\n"
            "\n"
            "Fewest restore points after the call of a round\n"
            "  encA##lun1: 1 in round 2 (2026-10-02 00:00)\n"
            "\n"
            "2 of 3 snapshots were lost: later rounds overwrote them\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("found a target")));
}

TEST(FiRotateSimulate, JsonHoldsTheSummary) {
    const auto result = runFiRotate(untilNoneIsLeft({"--keep-days", "2", "--json"}));
    EXPECT_EQ(result.exitStatus, 0);
    const auto targets = [](const char* letter) {
        return nlohmann::json{std::string("encA##") + letter + "1", std::string("encA##") + letter + "2",
                              std::string("encA##") + letter + "3"};
    };
    auto second = targets("t");
    second.push_back("encA##t4");
    const nlohmann::json ages = {{"minimum", 86400}, {"median", 2 * 86400}, {"maximum", 3 * 86400}};
    const nlohmann::json least = {{"search", "no_limit"}, {"targets", nullptr}};
    const nlohmann::json expected = {
        {"rounds", 12},
        {"finished_rounds", 12},
        {"start", "2026-10-01T00:00:00Z"},
        {"every_seconds", 86400},
        {"exclude_every", 2},
        {"exclude_weekday", nullptr},
        {"exclude_seconds", nullptr},
        {"keep_seconds", 2 * 86400},
        {"from", nlohmann::json::array()},
        {"first_round_without_target", 7},
        {"rounds_without_target", 6},
        {"configurations",
         {{{"first", "encA##lun1"},
           {"targets", targets("s")},
           {"taken_over", 0},
           {"taken", 6},
           {"rotated", 3},
           {"held", 3},
           {"lost", 0},
           {"seconds_until_rotated", ages},
           {"fewest_restore_points", {{"count", 1}, {"round", 2}}},
           {"fewest_restore_points_since_rotation", {{"count", 2}, {"round", 4}}},
           {"shortage",
            {{"rounds", 6},
             {"first_round", 7},
             {"words", "all 3 targets are held by excluded backups"},
             {"targets",
              {{{"target", "encA##s1"},
                {"holder_round", 4},
                {"holder_document", nullptr},
                {"excluded", true}},
               {{"target", "encA##s2"},
                {"holder_round", 2},
                {"holder_document", nullptr},
                {"excluded", true}},
               {{"target", "encA##s3"},
                {"holder_round", 6},
                {"holder_document", nullptr},
                {"excluded", true}}}}}},
           {"least_targets", least}},
          {{"first", "encA##lun2"},
           {"targets", second},
           {"taken_over", 0},
           {"taken", 6},
           {"rotated", 3},
           {"held", 3},
           {"lost", 0},
           {"seconds_until_rotated", ages},
           {"fewest_restore_points", {{"count", 1}, {"round", 2}}},
           {"fewest_restore_points_since_rotation", {{"count", 2}, {"round", 4}}},
           {"shortage", nullptr},
           {"least_targets", least}}}},
    };
    EXPECT_EQ(nlohmann::json::parse(result.output), expected);
}

TEST(FiRotateSimulate, CsvHasALineForEachRound) {
    const CTemporaryFolder folder;
    const std::string file = folder.path("rounds.csv");
    const auto result =
        runFiRotate(daily("encA##lun,1;s\"1;s2", "4", {"--exclude-weekday", "fri", "--csv", file}));
    EXPECT_EQ(result.exitStatus, 0);
    // 2026-10-02 is a Friday.
    EXPECT_EQ(contentOf(file),
              "round,time,excluded,selection,rotated,lost,\"encA##lun,1\"\n"
              "1,2026-10-01T00:00:00Z,no,yes,,,\"encA##s\"\"1\"\n"
              "2,2026-10-02T00:00:00Z,yes,yes,,,encA##s2\n"
              "3,2026-10-03T00:00:00Z,no,yes,1,,\"encA##s\"\"1\"\n"
              "4,2026-10-04T00:00:00Z,no,yes,3,,\"encA##s\"\"1\"\n");
}

// Round 1 rotates the older of the two that may go; the excluded one holds the third target.
class FiRotateSimulateFrom : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> arguments(const std::vector<std::string>& more) const {
        auto all = daily("encA##lun1;s1;s2;s3", "2",
                         {"--exclude", excluded, "--from", excluded, older, newer, invalid});
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::string write(const std::string& name, const std::string& timeStamp,
                      const std::string& target) const {
        return folder.write(
            name, "<Node><timeStamp>" + timeStamp +
                      "</timeStamp><objid>UDID##a##b##encA##lun1</objid><altobjid>UDID##a##b##encA##" +
                      target + "</altobjid></Node>");
    }

    CTemporaryFolder folder;
    std::string excluded = write("excluded", "20260926000000", "s1");
    std::string older = write("older", "20260927000000", "s2");
    std::string newer = write("newer", "20260928000000", "s3");
    std::string invalid = write("invalid", "20260925000000", "s9");
};

TEST_F(FiRotateSimulateFrom, ShowsEachDocumentAndTheResultOfItsBackup) {
    const auto result = runFiRotate(arguments({"--no-timeline"}));
    EXPECT_EQ(result.exitStatus, 0);
    const std::string blanks(folder.path("").size(), ' ');
    EXPECT_EQ(result.output,
              "2 rounds: 2026-10-01 00:00 to 2026-10-02 00:00\n"
              "  configuration  targets  there before  taken  rotated  held  age min  median  max\n"
              "  encA##lun1     3        3             2      2        3     4 d      4 d     4 d\n"
              "\n"
              "Fewest restore points after the call of a round\n"
              "  encA##lun1: 2 in round 1 (2026-10-01 00:00)\n"
              "\n"
              "Every round found a target\n"
              "\n"
              "The rounds began with the backups of 3 of 4 documents\n"
              "  document" +
                  blanks +
                  "  name  letter  taken             excluded  snapshots  result\n"
                  "  " +
                  excluded +
                  "  d1    a       2026-09-26 00:00  yes       1          held after round 2\n"
                  "  " +
                  older +
                  "     d2    b       2026-09-27 00:00  no        1          rotated in round 1 (2026-10-01 "
                  "00:00)\n"
                  "  " +
                  newer +
                  "     d3    c       2026-09-28 00:00  no        1          rotated in round 2 (2026-10-02 "
                  "00:00)\n"
                  "  " +
                  invalid +
                  "   d4    -       -                 no        0          invalid, not used: "
                  "UDID##a##b##encA##lun1 with UDID##a##b##encA##s9 names no target of encA##lun1\n");
}

TEST_F(FiRotateSimulateFrom, NoOutputIsWrittenOverADocument) {
    const std::string before = contentOf(older);
    for (const std::string option : {"--csv", "--svg"}) {
        const auto result = runFiRotate(arguments({option, older, "--force"}));
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_THAT(result.error, HasSubstr("is an input of this command"));
        EXPECT_EQ(contentOf(older), before);
    }
}

TEST_F(FiRotateSimulateFrom, JsonAndCsvNameTheBackupsThatWereThereBefore) {
    const std::string csv = folder.path("rounds.csv");
    const auto result = runFiRotate(arguments({"--json", "--csv", csv}));
    const nlohmann::json shown = nlohmann::json::parse(result.output);
    const nlohmann::json expected = {
        {{"file", excluded},
         {"time", "2026-09-26T00:00:00Z"},
         {"excluded", true},
         {"snapshots", 1},
         {"state", "held"},
         {"ended_in_round", nullptr},
         {"ended_at", nullptr},
         {"reason", nullptr}},
        {{"file", older},
         {"time", "2026-09-27T00:00:00Z"},
         {"excluded", false},
         {"snapshots", 1},
         {"state", "rotated"},
         {"ended_in_round", 1},
         {"ended_at", "2026-10-01T00:00:00Z"},
         {"reason", nullptr}},
        {{"file", newer},
         {"time", "2026-09-28T00:00:00Z"},
         {"excluded", false},
         {"snapshots", 1},
         {"state", "rotated"},
         {"ended_in_round", 2},
         {"ended_at", "2026-10-02T00:00:00Z"},
         {"reason", nullptr}},
        {{"file", invalid},
         {"time", nullptr},
         {"excluded", false},
         {"snapshots", 0},
         {"state", "invalid"},
         {"ended_in_round", nullptr},
         {"ended_at", nullptr},
         {"reason", "UDID##a##b##encA##lun1 with UDID##a##b##encA##s9 names no target of encA##lun1"}},
    };
    EXPECT_EQ(shown["from"], expected);
    EXPECT_EQ(shown["configurations"][0]["taken_over"], 3);
    EXPECT_EQ(contentOf(csv),
              "round,time,excluded,selection,rotated,lost,encA##lun1\n"
              "1,2026-10-01T00:00:00Z,no,yes,d2,,encA##s2\n"
              "2,2026-10-02T00:00:00Z,no,yes,d3,,encA##s3\n");
}

// A document without pairs holds no target, so that its backup is released first and in vain.
TEST_F(FiRotateSimulateFrom, CsvNamesRotatedBackupsThatHoldNoTarget) {
    const std::string csv = folder.path("rounds.csv");
    const std::string empty = folder.write("empty", "<Node><timeStamp>20260901000000</timeStamp></Node>");
    runFiRotate(daily("encA##lun1;s2", "2", {"--from", empty, older, "--csv", csv}));
    EXPECT_EQ(contentOf(csv),
              "round,time,excluded,selection,rotated,lost,encA##lun1\n"
              "1,2026-10-01T00:00:00Z,no,yes,d1 d2,,encA##s2\n"
              "2,2026-10-02T00:00:00Z,no,yes,1,,encA##s2\n");
}

TEST(FiRotateSimulate, CsvContainsRoundsWithoutATargetAndLostSnapshots) {
    const CTemporaryFolder folder;
    const std::string file = folder.path("rounds.csv");
    runFiRotate(daily("encA##lun1;s1", "2", {"--exclude-every", "1", "--csv", file}));
    EXPECT_EQ(contentOf(file),
              "round,time,excluded,selection,rotated,lost,encA##lun1\n"
              "1,2026-10-01T00:00:00Z,yes,yes,,,encA##s1\n"
              "2,2026-10-02T00:00:00Z,yes,no,,,\n");
    runFiRotate(daily("encA##lun1;s1;s1", "2", {"--csv", file}));
    EXPECT_THAT(contentOf(file), EndsWith("2,2026-10-02T00:00:00Z,no,yes,,1,encA##s1\n"));
}

TEST(FiRotateSimulate, ReadsANumberWithZerosInFrontAsADecimalOne) {
    EXPECT_THAT(runFiRotate(daily("encA##lun1;s1", "010")).output, StartsWith("10 rounds: "));
}

TEST(FiRotateSimulate, WrongUsageExitsWith2AndWritesNothing) {
    const CTemporaryFolder folder;
    const std::string csv = folder.path("rounds.csv");
    const auto with = [&csv](const std::string& option, const std::string& value) {
        std::map<std::string, std::string> options = {{"--config", "a##b;c"},
                                                      {"--rounds", "5"},
                                                      {"--every", "24h"},
                                                      {"--start", "2026-10-01"},
                                                      {"--csv", csv}};
        options[option] = value;
        std::vector<std::string> arguments{"simulate"};
        for (const auto& [name, text] : options) {
            arguments.insert(arguments.end(), {name, text});
        }
        return arguments;
    };
    auto bothExclusions = with("--exclude-every", "2");
    bothExclusions.insert(bothExclusions.end(), {"--exclude-weekday", "sun"});
    auto excludedUnlisted = with("--from", "y");
    excludedUnlisted.insert(excludedUnlisted.end(), {"--exclude", "x"});
    auto searchWithDocuments = with("--from", "y");
    searchWithDocuments.insert(searchWithDocuments.end(), {"--keep-days", "2"});
    auto timelineOfJson = with("--start", "2026-10-01");
    timelineOfJson.insert(timelineOfJson.end(), {"--json", "--no-timeline"});
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {{"simulate", "--rounds", "5", "--every", "24h", "--start", "2026-10-01"}, "--config"},
        {with("--rounds", "0"), "\"0\" is not a whole number from 1 to 100000000"},
        {with("--rounds", "many"), "\"many\" is not a whole number from 1 to 100000000"},
        {with("--rounds", "-18446744073709551615"),
         "\"-18446744073709551615\" is not a whole number from 1 to 100000000"},
        {with("--rounds", "18446744073709551617"),
         "\"18446744073709551617\" is not a whole number from 1 to 100000000"},
        {with("--exclude-every", "-18446744073709551615"),
         "\"-18446744073709551615\" is not a whole number from 1 to 100000000"},
        {with("--every", "-24h"), "\"-24h\" is not a whole number with one of the units s, m, h, d, w"},
        {with("--every", "-18446744073709551615h"), "\"-18446744073709551615h\" is not a whole number"},
        {with("--every", "9223372036854775807w"), "\"9223372036854775807w\" is not a whole number"},
        {with("--keep-days", "-5"), "\"-5\" is not a whole number of days above 0, without a unit"},
        {with("--keep-days", "-18446744073709551615"), "\"-18446744073709551615\" is not a whole number"},
        {with("--every", "1"), "\"1\" is not a whole number with one of the units s, m, h, d, w"},
        {with("--start", "1.10.2026"), "\"1.10.2026\" is not a date like 2026-10-01"},
        {with("--exclude-every", "0"), "\"0\" is not a whole number from 1 to 100000000"},
        {with("--exclude-weekday", "someday"), "\"someday\" is not a day of the week like sunday or sun"},
        {with("--exclude-weekday", "sun,wed"),
         "\"sun,wed\" is not a day of the week like sunday or sun; give only one\n"},
        {with("--exclude", "x"), "--exclude needs --from"},
        {with("--from", "/no/such/document"),
         "--from: these documents cannot be used\n/no/such/document: cannot be opened: No such file"},
        {excludedUnlisted,
         "--exclude: \"x\" is not among the documents of --from; write its name exactly as there, and repeat "
         "--exclude for each file\n"},
        {searchWithDocuments, "--from cannot be used together with --keep-days"},
        {timelineOfJson, "--no-timeline cannot be used together with --json"},
        {bothExclusions, "--exclude-every cannot be used together with --exclude-weekday"},
        {with("--keep-days", "x"), "\"x\" is not a whole number of days above 0, without a unit"},
        {with("--keep-days", "5"), "to find the targets for 5 days, give at least 6 --rounds"},
        {with("--exclude-for", "8w"),
         "--exclude-for: needs --exclude-every, --exclude-weekday or --exclude too"},
        {with("--exclude-for", "8"), "\"8\" is not a whole number with one of the units s, m, h, d, w"},
        {with("--every", "999999w"),
         "the last round would be after the year 9999; give fewer rounds or a shorter --every"},
        {with("--config-file", "no/such/file"), "give exactly one of --config, --config-file"},
        {with("--config", "a##b;c&d"), "--config: \"d\" names no enclosure; a target is ENCLOSURE##DEVICE"},
        {with("--config", "a##b;\x01"),
         "--config: the name \"UDID##EXAMPLE##ARRAY##a##\\x01\" cannot be written into an XML document"},
        {with("--csv", "/no/such/folder/c"), "cannot write \"/no/such/folder/c\": No such file"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const auto result = runFiRotate(row.arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.error, StartsWith("fi-rotate: "));
        EXPECT_THAT(result.error, HasSubstr(row.message));
        EXPECT_EQ(folder.entries(), std::vector<std::string>());
    }
}

TEST(FiRotateSimulate, ExitsWith1WhenAFileCannotBeWrittenWhole) {
    const auto result = runFiRotate(daily("encA##lun1;s1", "3", {"--csv", "/dev/full"}));
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.error, "fi-rotate: cannot write /dev/full: No space left on device\n");
}

TEST(FiRotateSimulate, OnATerminalTheSummarysHeadingIsBoldUnlessColourIsUnwanted) {
    if (!fi_test::hasTerminals()) {
        GTEST_SKIP() << fi_test::kNoTerminals;
    }
    EXPECT_THAT(runFiRotateOnTerminal(daily("encA##lun1;s1", "1")).output,
                HasSubstr("\x1B[1mtargets\x1B[0m"));
    EXPECT_THAT(runFiRotateOnTerminal(daily("encA##lun1;s1", "1"), {"NO_COLOR="}).output,
                Not(HasSubstr("\x1B")));
}

}  // namespace
