#include "cli/simulate/simulation.h"

#include <ostream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_rotate {

// For the messages of failed tests.
bool operator==(const SSnapshot& one, const SSnapshot& other) {
    return one.configuration == other.configuration && one.target == other.target &&
           one.taken == other.taken && one.ended == other.ended && one.end == other.end &&
           one.document == other.document;
}

bool operator==(const SKept& one, const SKept& other) {
    return one.count == other.count && one.round == other.round;
}

bool operator==(const SFewestKept& one, const SFewestKept& other) {
    return one.sinceFirstBackup == other.sinceFirstBackup && one.sinceRotation == other.sinceRotation;
}

std::ostream& operator<<(std::ostream& stream, const SFewestKept& fewest) {
    const auto show = [&stream](const std::optional<SKept>& kept) {
        if (kept.has_value()) {
            stream << kept->count << " in round " << kept->round << ", ";
        }
    };
    show(fewest.sinceFirstBackup);
    show(fewest.sinceRotation);
    return stream;
}

std::ostream& operator<<(std::ostream& stream, const SSnapshot& snapshot) {
    return stream << "configuration " << snapshot.configuration << ", target " << snapshot.target
                  << ", rounds " << snapshot.taken << " to " << snapshot.ended << ", end "
                  << int(snapshot.end) << ", document " << snapshot.document;
}

}  // namespace fi_rotate

namespace {

using fi_rotate::EEnd;
using fi_rotate::SFewestKept;
using fi_rotate::simulate;
using fi_rotate::SKept;
using fi_rotate::SPlan;
using fi_rotate::SSimulation;
using fi_rotate::SSnapshot;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::ThrowsMessage;

bool always(const SSimulation& /*soFar*/) {
    return true;
}

SPlan daily(const std::string& configuration, std::size_t rounds) {
    SPlan plan;
    plan.configuration = configuration;
    plan.rounds = rounds;
    plan.every = fi_rotate::kSecondsPerDay;
    plan.start = fi_rotate::parseTime("2026-10-01").value();
    return plan;
}

SSimulation run(const SPlan& plan) {
    return simulate(plan, always);
}

SSnapshot held(std::uint32_t configuration, std::uint32_t target, std::uint32_t taken) {
    return {configuration, target, taken, 0, EEnd::kHeld};
}

SSnapshot rotated(std::uint32_t configuration, std::uint32_t target, std::uint32_t taken,
                  std::uint32_t ended) {
    return {configuration, target, taken, ended, EEnd::kRotated};
}

SSnapshot lost(std::uint32_t configuration, std::uint32_t target, std::uint32_t taken, std::uint32_t ended) {
    return {configuration, target, taken, ended, EEnd::kLost};
}

SFewestKept fewestKept(const SKept& sinceFirstBackup, const std::optional<SKept>& sinceRotation) {
    return {sinceFirstBackup, sinceRotation};
}

TEST(FiRotateSimulation, TheOldestBackupGivesItsTargetToTheRoundThatFindsNoneFree) {
    const SSimulation simulation = run(daily("encA##lun1;s1;s2", 4));
    EXPECT_EQ(simulation.finishedRounds, 4);
    EXPECT_THAT(simulation.snapshots,
                ElementsAre(rotated(0, 0, 1, 3), rotated(0, 1, 2, 4), held(0, 0, 3), held(0, 1, 4)));
    EXPECT_THAT(simulation.withoutTarget, SizeIs(0));
    EXPECT_EQ(simulation.shortestHeld, 2 * fi_rotate::kSecondsPerDay);
}

// Rounds 2, 4 and 6 keep what they took; the three targets are theirs after round 6.
TEST(FiRotateSimulation, ExcludedBackupsKeepTheirTargetsUntilNoneIsLeft) {
    SPlan plan = daily("encA##lun1;s1;s2;s3", 9);
    plan.excludedEvery = 2;
    const SSimulation simulation = run(plan);
    EXPECT_EQ(simulation.finishedRounds, 9);
    EXPECT_THAT(simulation.snapshots, ElementsAre(rotated(0, 0, 1, 4), held(0, 1, 2), rotated(0, 2, 3, 5),
                                                  held(0, 0, 4), rotated(0, 2, 5, 6), held(0, 2, 6)));
    ASSERT_THAT(simulation.withoutTarget, SizeIs(1));
    EXPECT_EQ(simulation.withoutTarget[0].first, 7);
    EXPECT_EQ(simulation.withoutTarget[0].last, 9);
    ASSERT_THAT(simulation.withoutTarget[0].shortages, SizeIs(1));
    const auto& shortage = simulation.withoutTarget[0].shortages.front();
    EXPECT_EQ(shortage.configuration, 0U);
    ASSERT_THAT(shortage.targets, SizeIs(3));
    EXPECT_EQ(shortage.targets[0].target, 0U);
    EXPECT_EQ(shortage.targets[0].round, 4U);
    EXPECT_EQ(shortage.targets[1].round, 2U);
    EXPECT_EQ(shortage.targets[2].round, 6U);
    EXPECT_TRUE(shortage.targets[2].isExcluded);
}

// Rounds 2, 4, 6 and 8 are excluded. Round 2 is four days old in round 6, which rotates it; round 4 in
// round 8.
TEST(FiRotateSimulation, AnExclusionThatHasEndedKeepsNoBackup) {
    SPlan plan = daily("encA##lun1;s1;s2;s3", 9);
    plan.excludedEvery = 2;
    plan.excludedFor = 4 * fi_rotate::kSecondsPerDay;
    const SSimulation simulation = run(plan);
    EXPECT_THAT(
        simulation.snapshots,
        ElementsAre(rotated(0, 0, 1, 4), rotated(0, 1, 2, 6), rotated(0, 2, 3, 5), rotated(0, 0, 4, 8),
                    rotated(0, 2, 5, 7), held(0, 1, 6), rotated(0, 2, 7, 9), held(0, 0, 8), held(0, 2, 9)));
    EXPECT_THAT(simulation.withoutTarget, SizeIs(0));
}

// Every backup is excluded for four days, and the two targets serve two rounds of four.
TEST(FiRotateSimulation, RoundsWithoutATargetEndWhenAnExclusionDoes) {
    SPlan plan = daily("encA##lun1;s1;s2", 9);
    plan.excludedEvery = 1;
    plan.excludedFor = 4 * fi_rotate::kSecondsPerDay;
    SSimulation simulation = run(plan);
    EXPECT_THAT(simulation.snapshots, ElementsAre(rotated(0, 0, 1, 5), rotated(0, 1, 2, 6),
                                                  rotated(0, 0, 5, 9), held(0, 1, 6), held(0, 0, 9)));
    ASSERT_THAT(simulation.withoutTarget, SizeIs(2));
    EXPECT_EQ(simulation.withoutTarget[0].first, 3);
    EXPECT_EQ(simulation.withoutTarget[0].last, 4);
    EXPECT_EQ(simulation.withoutTarget[1].first, 7);
    EXPECT_EQ(simulation.withoutTarget[1].last, 8);
    ASSERT_THAT(simulation.withoutTarget[1].shortages, SizeIs(1));
    EXPECT_EQ(simulation.withoutTarget[1].shortages[0].targets.at(0).round, 5);
    EXPECT_EQ(simulation.withoutTarget[1].shortages[0].targets.at(1).round, 6);
    EXPECT_EQ(countRoundsWithoutTarget(simulation), 4);
    EXPECT_EQ(firstRoundOfStandstill(simulation), std::nullopt);
    plan.rounds = 8;
    EXPECT_EQ(firstRoundOfStandstill(run(plan)), 7);
}

// Round 2 finds the backup of round 1 only. Rounds 4 and 5 find three and rotate one each.
TEST(FiRotateSimulation, TheFewestRestorePointsAreThoseBeforeTheNextSnapshot) {
    const SSimulation simulation = run(daily("encA##lun1;s1;s2;s3", 5));
    EXPECT_THAT(simulation.fewestKept, ElementsAre(fewestKept({1, 2}, SKept{2, 4})));
}

TEST(FiRotateSimulation, ARoundThatRotatesTheOnlyBackupLeavesNone) {
    const SSimulation simulation = run(daily("encA##lun1;s1&encB##lun2;t1;t2", 3));
    EXPECT_THAT(simulation.fewestKept,
                ElementsAre(fewestKept({0, 2}, SKept{0, 2}), fewestKept({0, 2}, SKept{0, 2})));
}

// Rounds 2 and 3 find no target and rotate nothing, so the one backup is there still.
TEST(FiRotateSimulation, ARoundWithoutATargetTakesNoRestorePoint) {
    SPlan plan = daily("encA##lun1;s1", 3);
    plan.excludedEvery = 1;
    EXPECT_THAT(run(plan).fewestKept, ElementsAre(fewestKept({1, 2}, std::nullopt)));
}

TEST(FiRotateSimulation, WithoutABackupThereAreNoFewestRestorePoints) {
    for (const std::string configuration : {"encA##lun1", "encA##lun1;s1"}) {
        EXPECT_FALSE(run(daily(configuration, 1)).fewestKept.at(0).sinceFirstBackup.has_value());
    }
}

// 2026-10-01 is a Thursday, so rounds 3 and 10 are on Saturdays.
TEST(FiRotateSimulation, ADayOfTheWeekIsExcluded) {
    SPlan plan = daily("encA##lun1;s1;s2", 11);
    plan.excludedWeekday = fi_rotate::parseWeekday("Saturday");
    const SSimulation simulation = run(plan);
    EXPECT_EQ(simulation.snapshots[2], held(0, 0, 3));
    EXPECT_EQ(simulation.snapshots[9], held(0, 1, 10));
    ASSERT_THAT(simulation.withoutTarget, SizeIs(1));
    EXPECT_EQ(simulation.withoutTarget[0].first, 11);
}

// The second configuration has a target to spare, but a backup gives all its targets back at once.
TEST(FiRotateSimulation, AShortConfigurationRotatesTheTargetsOfTheOthersToo) {
    const SSimulation simulation = run(daily("encA##lun1;s1;s2&encB##lun2;t1;t2;t3", 3));
    EXPECT_THAT(simulation.snapshots, ElementsAre(rotated(0, 0, 1, 3), rotated(1, 0, 1, 3), held(0, 1, 2),
                                                  held(1, 1, 2), held(0, 0, 3), held(1, 0, 3)));
}

TEST(FiRotateSimulation, OnlyShortConfigurationsAreReportedAsShort) {
    SPlan plan = daily("encA##lun1;s1&encB##lun2;t1;t2", 3);
    plan.excludedEvery = 1;
    const SSimulation simulation = run(plan);
    ASSERT_THAT(simulation.withoutTarget, SizeIs(1));
    EXPECT_EQ(simulation.withoutTarget[0].first, 2);
    ASSERT_THAT(simulation.withoutTarget[0].shortages, SizeIs(1));
    EXPECT_EQ(simulation.withoutTarget[0].shortages[0].configuration, 0U);
}

TEST(FiRotateSimulation, AConfigurationWithoutFurtherTargetsIsShortFromTheFirstRoundOn) {
    const SSimulation simulation = run(daily("encA##lun1", 2));
    EXPECT_EQ(simulation.finishedRounds, 2);
    EXPECT_THAT(simulation.snapshots, SizeIs(0));
    ASSERT_THAT(simulation.withoutTarget, SizeIs(1));
    EXPECT_EQ(simulation.withoutTarget[0].first, 1);
    ASSERT_THAT(simulation.withoutTarget[0].shortages, SizeIs(1));
    EXPECT_THAT(simulation.withoutTarget[0].shortages[0].targets, SizeIs(0));
}

// The library marks the first of the two as held and finds the second free.
TEST(FiRotateSimulation, ATargetThatIsNamedTwiceIsOverwritten) {
    const SSimulation simulation = run(daily("encA##lun1;s1;s1", 3));
    EXPECT_THAT(simulation.snapshots, ElementsAre(lost(0, 0, 1, 2), lost(0, 0, 2, 3), held(0, 0, 3)));
    EXPECT_TRUE(simulation.hasLost);
}

TEST(FiRotateSimulation, NamesWithMarkupReachTheLibraryWhole) {
    const SSimulation simulation =
        run(daily("enc&lt;A##lun &gt; 1;s&lt;1&gt;;##s\"2;h\xC3\xA9##s'\xE2\x82\xAC", 4));
    EXPECT_THAT(simulation.configurations[0].targets,
                ElementsAre("enc<A##s<1>", "##s\"2", "h\xC3\xA9##s'\xE2\x82\xAC"));
    EXPECT_THAT(simulation.snapshots,
                ElementsAre(rotated(0, 0, 1, 4), held(0, 1, 2), held(0, 2, 3), held(0, 0, 4)));
}

TEST(FiRotateSimulation, NamesThatNoDocumentCanHoldAreRefused) {
    for (const std::string name : {"s\x01", "s\xFF", "s]]>", "s\xEF\xBF\xBF"}) {
        SCOPED_TRACE(name);
        EXPECT_THAT(
            [&name] { run(daily("encA##lun1;" + name, 1)); },
            ThrowsMessage<std::invalid_argument>(HasSubstr("cannot be written into an XML document")));
    }
    EXPECT_THAT([] { run(daily("encA##a][b;s1", 1)); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("cannot be split into targets")));
}

TEST(FiRotateSimulation, ARejectedConfigurationIsRefusedWithTheLineOfTheTrace) {
    EXPECT_THAT([] { run(daily("encA##lun1;s1&lun2;s2", 1)); },
                ThrowsMessage<std::invalid_argument>(
                    HasSubstr("resource configuration \"lun2\" has no enclosure data specified.")));
    EXPECT_THAT([] { run(daily("", 1)); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("Invalid resource specification []")));
}

TEST(FiRotateSimulation, StopsBeforeTheNextRoundWhenTheCallbackSaysSo) {
    const SSimulation simulation = simulate(
        daily("encA##lun1;s1", 10), [](const SSimulation& soFar) { return soFar.finishedRounds < 3; });
    EXPECT_EQ(simulation.finishedRounds, 3);
    EXPECT_THAT(simulation.snapshots, SizeIs(3));
}

class FiRotateTakeOver : public testing::Test {
protected:
    void give(const std::string& name, const std::string& timeStamp, const std::vector<fi_test::SPair>& pairs,
              std::int32_t flagWord = 0) {
        from.push_back({folder.write(name, fi_test::document(timeStamp, pairs)), flagWord});
    }

    SPlan plan(const std::string& configuration, std::size_t rounds) {
        SPlan plan = daily(configuration, rounds);
        plan.from = from;
        return plan;
    }

    fi_test::CTemporaryFolder folder;
    std::vector<fi_rotate::SBackup> from;
};

SSnapshot takenOver(SSnapshot snapshot, std::uint32_t document) {
    snapshot.taken = 0;
    snapshot.document = document;
    return snapshot;
}

// Round 1 finds a free target, rounds 2 and 3 rotate what was there before, the older first.
TEST_F(FiRotateTakeOver, TheFirstRoundsFindTheBackupsOfDocuments) {
    give("newer", "20260929000000", {{"encA##lun1", "encA##s1"}});
    give("older", "20260928000000", {{"encA##lun1", "encA##s2"}});
    const SSimulation simulation = run(plan("encA##lun1;s1;s2;s3", 4));
    EXPECT_THAT(simulation.snapshots,
                ElementsAre(takenOver(rotated(0, 0, 0, 3), 0), takenOver(rotated(0, 1, 0, 2), 1),
                            rotated(0, 2, 1, 4), held(0, 1, 2), held(0, 0, 3), held(0, 2, 4)));
    EXPECT_EQ(simulation.takenOver.at(1).end, EEnd::kRotated);
    EXPECT_EQ(simulation.takenOver[1].ended, 2);
    EXPECT_EQ(simulation.takenOver[1].time, fi_rotate::parseTime("2026-09-28"));
    // That of round 2 was four days old, that of round 1 three.
    EXPECT_EQ(simulation.shortestHeld, 3 * fi_rotate::kSecondsPerDay);
    // Round 1 found two.
    EXPECT_THAT(simulation.fewestKept, ElementsAre(fewestKept({2, 1}, SKept{2, 2})));
}

TEST_F(FiRotateTakeOver, DocumentsAreNotChanged) {
    give("first", "20260929000000", {{"encA##lun1", "encA##s1"}});
    const SSimulation simulation = run(plan("encA##lun1;s1", 1));
    EXPECT_EQ(simulation.takenOver.at(0).end, EEnd::kRotated);
    EXPECT_THAT(folder.entries(), ElementsAre("first"));
}

// The backup of 28 September is excluded for four days: until 2 October, which is round 2.
TEST_F(FiRotateTakeOver, AnExclusionLastsFromTheTimeStampOn) {
    give("excluded", "20260928000000", {{"encA##lun1", "encA##s1"}}, FI_EXCLUDE_ROTATION);
    give("other", "20260929000000", {{"encA##lun1", "encA##s2"}});
    SPlan shortly = plan("encA##lun1;s1;s2", 2);
    shortly.excludedFor = 4 * fi_rotate::kSecondsPerDay;
    EXPECT_THAT(run(shortly).snapshots,
                ElementsAre(takenOver(rotated(0, 0, 0, 2), 0), takenOver(rotated(0, 1, 0, 1), 1),
                            held(0, 1, 1), held(0, 0, 2)));
    const SSimulation forGood = run(plan("encA##lun1;s1;s2", 2));
    EXPECT_EQ(forGood.takenOver[0].end, EEnd::kHeld);
}

TEST_F(FiRotateTakeOver, ADocumentCanHoldTheTargetThatIsShort) {
    give("free", "20260928000000", {});
    give("excluded", "20260929000000", {{"encA##lun1", "encA##s1"}}, FI_EXCLUDE_ROTATION);
    const SSimulation simulation = run(plan("encA##lun1;s1", 1));
    ASSERT_THAT(simulation.withoutTarget, SizeIs(1));
    const fi_rotate::SHeldByRound& holder = simulation.withoutTarget[0].shortages.at(0).targets.at(0);
    EXPECT_EQ(holder.round, 0);
    EXPECT_EQ(holder.document, 1);
    EXPECT_TRUE(holder.isExcluded);
}

// Neither counts as lost: their snapshots were so before.
TEST_F(FiRotateTakeOver, InvalidBackupsAreNotUsedAndHaveAReason) {
    give("unknown", "of old", {{"encA##lun1", "encA##s9"}});
    give("overwritten", "20260928000000", {{"encA##lun1", "encA##s1"}, {"encB##lun2", "encB##t1"}});
    give("newest", "20260929000000", {{"encA##lun1", "encA##s1"}});
    const SSimulation simulation = run(plan("encA##lun1;s1;s2&encB##lun2;t1;t2", 2));
    EXPECT_THAT(simulation.takenOver.at(0).whyInvalid, HasSubstr("names no target of encA##lun1"));
    EXPECT_THAT(simulation.takenOver.at(1).whyInvalid, HasSubstr("encA##s1 of encA##lun1 was already held"));
    EXPECT_EQ(simulation.takenOver.at(2).whyInvalid, "");
    // In the call of round 1 the invalid one holds t1; then it is gone.
    EXPECT_THAT(simulation.snapshots, ElementsAre(takenOver(rotated(0, 0, 0, 2), 2), held(0, 1, 1),
                                                  held(1, 1, 1), held(0, 0, 2), held(1, 0, 2)));
    EXPECT_FALSE(simulation.hasLost);
}

// "half" fails the check, so it claims neither t1 nor t2, though it names both; the newest holds t2. "torn"
// claims t3 before its claim of s1 fails: its pairs are claimed in the order of their first targets.
TEST_F(FiRotateTakeOver, TargetsThatOnlyInvalidBackupsNameAreKnownAndWhoHoldsThem) {
    give("half", "20260926000000",
         {{"encA##lun9", "encA##s9"}, {"encB##lun2", "encB##t1"}, {"encB##lun3", "encB##t2"}});
    give("torn", "20260927000000", {{"encA##lun0", "encA##t3"}, {"encA##lun1", "encA##s1"}});
    give("newest", "20260929000000", {{"encA##lun1", "encA##s1"}, {"encB##lun3", "encB##t2"}});
    const SSimulation simulation =
        run(plan("encA##lun0;t3;t4&encA##lun1;s1;s2&encB##lun2;t1;t9&encB##lun3;t2;t8", 2));
    ASSERT_THAT(simulation.unprotected, SizeIs(2));
    const fi_rotate::SUnprotected& ofHalf = simulation.unprotected[0];
    EXPECT_EQ(std::tuple(ofHalf.configuration, ofHalf.target, ofHalf.document), std::tuple(2, 0, 0));
    EXPECT_FALSE(ofHalf.isHeldAtFirst);
    // It is the first target of its configuration, and free for the library.
    EXPECT_EQ(ofHalf.overwritten, 1);
    EXPECT_EQ(lastRoundHeld(simulation, ofHalf), 0);
    const fi_rotate::SUnprotected& ofTorn = simulation.unprotected[1];
    EXPECT_EQ(std::tuple(ofTorn.configuration, ofTorn.target, ofTorn.document), std::tuple(0, 0, 1));
    EXPECT_TRUE(ofTorn.isHeldAtFirst);
    // Held in the call of round 1, after which the backup is gone; chosen by round 2.
    EXPECT_EQ(lastRoundHeld(simulation, ofTorn), 1);
    EXPECT_EQ(ofTorn.overwritten, 2);
}

// The newest of three is excluded for ever and holds the only target of lun1, so no round has a selection.
TEST_F(FiRotateTakeOver, ATargetThatAnInvalidBackupHoldsStaysHeldWhileNoRoundFindsATarget) {
    give("torn", "20260927000000", {{"encA##lun0", "encA##t3"}, {"encA##lun1", "encA##s1"}});
    give("newest", "20260929000000", {{"encA##lun1", "encA##s1"}}, FI_EXCLUDE_ROTATION);
    const SSimulation simulation = run(plan("encA##lun0;t3;t4&encA##lun1;s1", 2));
    ASSERT_THAT(simulation.unprotected, SizeIs(1));
    EXPECT_EQ(lastRoundHeld(simulation, simulation.unprotected[0]), std::nullopt);
    EXPECT_EQ(simulation.unprotected[0].overwritten, 0);
}

TEST_F(FiRotateTakeOver, DocumentsThatCannotBeUsedAreRefusedByName) {
    const std::string usable = fi_test::document("20260929000000", {});
    const struct {
        std::string content;
        const char* message;
    } rows[] = {
        {"<Node>", "b: cannot be read to its end as XML"},
        {"<a/>", "b: has no Node"},
        {"<Node><timeStamp>20260929000000</timeStamp><objid>UDID##x</objid></Node>",
         "b: holds the malformed identifier"},
        {fi_test::document("29 September", {}),
         "b: has the time stamp \"29 September\", which is no date in the form YYYYMMDDhhmmss"},
        // It has the form, but there is no thirteenth month.
        {fi_test::document("20261301000000", {}),
         "b: has the time stamp \"20261301000000\", which is no date in the form YYYYMMDDhhmmss"},
        {fi_test::document("20261001000000", {}),
         "b: was taken 2026-10-01 00:00, which is not before the first round"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        SPlan plan = daily("encA##lun1;s1", 2);
        plan.from = {{folder.write("a", usable), 0}, {folder.write("b", row.content), 0}};
        EXPECT_THAT([&plan] { run(plan); },
                    ThrowsMessage<fi_rotate::CUnusableDocuments>(HasSubstr(row.message)));
    }
    SPlan missing = daily("encA##lun1;s1", 2);
    missing.from = {{folder.path("missing"), 0}};
    EXPECT_THAT([&missing] { run(missing); },
                ThrowsMessage<fi_rotate::CUnusableDocuments>(HasSubstr("missing: cannot be opened")));
}

}  // namespace
