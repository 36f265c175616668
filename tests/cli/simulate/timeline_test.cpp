#include "cli/simulate/timeline.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/base/calendar.h"
#include "cli/base/columns.h"

namespace {

using fi_rotate::EEnd;
using fi_rotate::SSimulation;
using fi_rotate::SSnapshot;
using fi_rotate::toTimeline;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// One target whose snapshot each round ends that of the round before.
SSimulation oneTarget(std::uint32_t rounds) {
    SSimulation simulation;
    simulation.plan.rounds = rounds;
    simulation.plan.every = fi_rotate::kSecondsPerDay;
    simulation.configurations = {{"encA##lun1", {"encA##s1"}}};
    simulation.finishedRounds = rounds;
    for (std::uint32_t round = 1; round <= rounds; ++round) {
        const bool isLast = round == rounds;
        simulation.snapshots.push_back(
            {0, 0, round, isLast ? 0 : round + 1, isLast ? EEnd::kHeld : EEnd::kRotated});
    }
    return simulation;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(FiRotateTimeline, ShowsTheLastRoundsThatFitAndSaysSo) {
    // 17 columns are taken by "    (no target)  ".
    EXPECT_THAT(
        linesOf(toTimeline(oneTarget(30), 17 * 3)),
        ElementsAre(
            "Rounds 1 to 30, a column each", "                 1         11        21", "  encA##lun1",
            "    encA##s1     abcdefghijklmnopqrstuvwxyzabcd",
            "  a letter: the backup that holds the target; a capital letter: an excluded one; .: free"));
    EXPECT_THAT(
        linesOf(toTimeline(oneTarget(40), 17 * 3)),
        ElementsAre(
            "Rounds 7 to 40, a column each", "  not shown (terminal too narrow): 1 to 6",
            "                 7         17        27        37", "  encA##lun1",
            "    encA##s1     ghijklmnopqrstuvwxyzabcdefghijklmn",
            "  a letter: the backup that holds the target; a capital letter: an excluded one; .: free"));
}

TEST(FiRotateTimeline, ASingleRoundThatIsNotShownHasItsNumberOnly) {
    EXPECT_THAT(toTimeline(oneTarget(35), 17 * 3), HasSubstr("\n  not shown (terminal too narrow): 1\n"));
}

TEST(FiRotateTimeline, NoRowIsWiderThanTheTerminal) {
    SSimulation simulation = oneTarget(500);
    simulation.configurations = {{std::string(300, 'l'), {std::string(300, 's')}}};
    for (const std::size_t width : {40U, 80U, 200U}) {
        const auto lines = linesOf(toTimeline(simulation, width));
        for (const std::string& line : {lines.at(2), lines.at(3), lines.at(4)}) {
            EXPECT_LE(fi_rotate::displayWidth(line), width) << line;
        }
        EXPECT_THAT(lines.at(3), HasSubstr("l…l"));
        EXPECT_THAT(lines.at(4), HasSubstr("s…s"));
    }
}

// Twice as many targets as there are letters are held at once, each for as many rounds.
TEST(FiRotateTimeline, BackupsThatFollowOneAnotherOnATargetHaveDifferentLetters) {
    constexpr std::uint32_t kTargets = 52;
    SSimulation simulation = oneTarget(0);
    simulation.configurations[0].targets.assign(kTargets, "encA##s");
    simulation.finishedRounds = 3 * kTargets;
    for (std::uint32_t round = 1; round <= simulation.finishedRounds; ++round) {
        simulation.snapshots.push_back({0, (round - 1) % kTargets, round, round + kTargets, EEnd::kRotated});
    }
    std::size_t row = 0;
    constexpr std::size_t kFirstColumn = 17;
    for (const std::string& line : linesOf(toTimeline(simulation, 200))) {
        if (line.find("encA##s ") != std::string::npos) {
            const std::string cells = line.substr(kFirstColumn);
            EXPECT_NE(cells.at(row + kTargets - 1), cells.at(row + kTargets)) << line;
            EXPECT_NE(cells.at(row + 2 * kTargets - 1), cells.at(row + 2 * kTargets)) << line;
            ++row;
        }
    }
    EXPECT_EQ(row, kTargets);
}

// Excluded for two days, and no target in round 3.
TEST(FiRotateTimeline, CapitalsAndMarksLastAsLongAsWhatTheyStandFor) {
    SSimulation simulation = oneTarget(0);
    simulation.plan.excludedEvery = 1;
    simulation.plan.excludedFor = 2 * fi_rotate::kSecondsPerDay;
    simulation.finishedRounds = 6;
    simulation.snapshots = {{0, 0, 1, 5, EEnd::kRotated}, {0, 0, 5, 0, EEnd::kHeld}};
    simulation.withoutTarget = {{2, 2, {}}, {4, 4, {}}};
    EXPECT_THAT(linesOf(toTimeline(simulation, 80)),
                testing::IsSupersetOf({"    encA##s1     AAaaBB", "    (no target)   ! !"}));
}

// Two that were there before, of which one holds two targets; the other is excluded until round 2.
TEST(FiRotateTimeline, BackupsThatWereThereBeforeHaveLettersOfTheirOwn) {
    SSimulation simulation = oneTarget(0);
    simulation.configurations = {{"encA##lun1", {"encA##s1", "encA##s2", "encA##s3"}}};
    simulation.plan.excludedFor = 2 * fi_rotate::kSecondsPerDay;
    simulation.plan.from = {{"a", 0}, {"b", 4}};
    simulation.takenOver = {{-fi_rotate::kSecondsPerDay, 2, "", 0, EEnd::kHeld},
                            {-fi_rotate::kSecondsPerDay, 1, "", 3, EEnd::kRotated}};
    simulation.finishedRounds = 3;
    simulation.snapshots = {{0, 0, 0, 0, EEnd::kHeld, 0},
                            {0, 2, 0, 0, EEnd::kHeld, 0},
                            {0, 1, 0, 3, EEnd::kRotated, 1},
                            {0, 1, 3, 0, EEnd::kHeld, 0}};
    EXPECT_THAT(
        linesOf(toTimeline(simulation, 80)),
        testing::IsSupersetOf({"    encA##s1     aaa", "    encA##s2     Bbc", "    encA##s3     aaa"}));
}

// s1 is held by an invalid backup until round 2 removes that, and taken by round 4; s2 is named only, and
// taken by none.
TEST(FiRotateTimeline, TargetsOfInvalidBackupsAreNotShownAsFree) {
    SSimulation simulation = oneTarget(0);
    simulation.configurations = {{"encA##lun1", {"encA##s1", "encA##s2", "encA##s3"}}};
    simulation.plan.from = {{"held", 0}, {"named", 0}};
    simulation.takenOver = {{std::nullopt, 0, "why", 2, EEnd::kLost},
                            {std::nullopt, 0, "why", 2, EEnd::kLost}};
    simulation.finishedRounds = 5;
    simulation.snapshots = {{0, 0, 4, 0, EEnd::kHeld}};
    simulation.unprotected = {{0, 0, 0, true, 4}, {0, 1, 1, false, 0}};
    EXPECT_THAT(
        linesOf(toTimeline(simulation, 80)),
        testing::IsSupersetOf({"    encA##s1     ##-aa", "    encA##s2     -----", "    encA##s3     .....",
                               "  -: named by an invalid backup only: the library may choose it",
                               "  #: held by an invalid backup: not free in the call of this round"}));
    // Held to the end, because no round removes the backup.
    simulation.takenOver[0].ended = 0;
    simulation.snapshots.clear();
    simulation.unprotected = {{0, 0, 0, true, 0}};
    const std::string toTheEnd = toTimeline(simulation, 80);
    EXPECT_THAT(linesOf(toTheEnd), testing::Contains("    encA##s1     #####"));
    EXPECT_THAT(toTheEnd, Not(HasSubstr("-: ")));
    simulation.unprotected.clear();
    EXPECT_THAT(toTimeline(simulation, 80), Not(HasSubstr("invalid")));
}

TEST(FiRotateTimeline, IsEmptyWhenNoRoundWasFinished) {
    EXPECT_EQ(toTimeline(oneTarget(0), 80), "");
}

}  // namespace
