#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Decision.h"

// What one call decides about a few earlier backups.
namespace fi_test {
namespace {

class CRotation : public CRotationTest {};

const SNode kHolder = backup("20260101", {{"encA##lun1", "encA##snap1"}});
const SNode kNewerHolder = backup("20260102", {{"encA##lun1", "encA##snap1"}});
const SNode kHolderOfTwo = backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encB##lun2", "encB##snap2"}});

const std::string kOnlyTarget = "[encA##lun1;encA##snap1]";
const std::vector<std::string> kOneTargetFree{"[encA:lun1](Available)", "{snap1,Available}"};
const std::vector<std::string> kOneTargetReleased{"[encA:lun1](Used)", "{snap1,Available}"};

std::string lineOfMissing(const std::string& file) {
    return "ERROR: failed to load FIID file [" + file + "]\n";
}

TEST_F(CRotation, OnlyBackupIsReleasedWhenItHoldsTheOnlyTarget) {
    const SBackup a = given("a.xml", kHolder);
    EXPECT_EQ(decided("encA##lun1;snap1", {a}),
              selected(kOnlyTarget, {2}, matched({a}) + claimed({a}), kOneTargetReleased, {{a, 2}}));
}

TEST_F(CRotation, ExcludedBackupKeepsTheOnlyTargetAndTheCallFails) {
    const SBackup a = given("a.xml", kHolder, 4);
    EXPECT_EQ(decided("encA##lun1;snap1", {a}), notSelected({4}, matched({a}) + claimed({a}) + skipped({a})));
}

TEST_F(CRotation, FlagWordWithoutTheBitOfValue4DoesNotExclude) {
    for (const std::int32_t flagWord : {0, 1, 2, 3, 8, 3 + 8 + 16, -5, -8, INT32_MIN, INT32_MAX - 4}) {
        SCOPED_TRACE(flagWord);
        const SBackup a = given("a.xml", kHolder, flagWord);
        EXPECT_EQ(decided("encA##lun1;snap1", {a}),
                  selected(kOnlyTarget, {2}, matched({a}) + claimed({a}), kOneTargetReleased, {{a, 2}}));
    }
}

TEST_F(CRotation, FlagWordWithTheBitOfValue4Excludes) {
    for (const std::int32_t flagWord : {4, 5, 12, 7, -1, -4, INT32_MAX, INT32_MIN + 4}) {
        SCOPED_TRACE(flagWord);
        const SBackup a = given("a.xml", kHolder, flagWord);
        EXPECT_EQ(decided("encA##lun1;snap1", {a}),
                  notSelected({flagWord}, matched({a}) + claimed({a}) + skipped({a})));
    }
}

TEST_F(CRotation, OfTwoBackupsWithOneTargetTheNewerGivesItUpWhenItIsNeeded) {
    const SBackup older = given("older.xml", kHolder);
    const SBackup newer = given("newer.xml", kNewerHolder);
    EXPECT_EQ(decided("encA##lun1;snap1", {older, newer}),
              selected(kOnlyTarget, {1, 2}, matched({older, newer}) + claimed({newer}) + notClaimed({older}),
                       kOneTargetReleased, {{older, 1}, {newer, 2}}));
}

TEST_F(CRotation, OfTwoBackupsWithOneTargetTheNewerKeepsItWhenItIsNotNeeded) {
    const SBackup older = given("older.xml", kHolder);
    const SBackup newer = given("newer.xml", kNewerHolder);
    EXPECT_EQ(decided("encA##lun1;snap1;snap2", {older, newer}),
              selected("[encA##lun1;encA##snap2]", {1, 0},
                       matched({older, newer}) + claimed({newer}) + notClaimed({older}),
                       {"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Available}"}, {{older, 1}, {newer, 0}}));
}

TEST_F(CRotation, ClaimThatFailsPartWayHoldsItsOtherTargetsForTheWholeCall) {
    const SBackup newer = given("newer.xml", kNewerHolder, 1);
    const SBackup older = given("older.xml", kHolderOfTwo, 2);
    EXPECT_EQ(decided("encA##lun1;snap1;snap3&encB##lun2;snap2", {newer, older}),
              notSelected({1, 2}, matched({newer, older}) + claimed({newer}) + notClaimed({older})));
}

TEST_F(CRotation, ClaimThatFailsPartWayIsInvalidAndItsOtherTargetsStayUsed) {
    const SBackup newer = given("newer.xml", kNewerHolder, 1);
    const SBackup older = given("older.xml", kHolderOfTwo, 2);
    EXPECT_EQ(decided("encA##lun1;snap1;snap3&encB##lun2;snap2;snap4", {newer, older}),
              selected("[encA##lun1;encA##snap3][encB##lun2;encB##snap4]", {0, 1},
                       matched({newer, older}) + claimed({newer}) + notClaimed({older}),
                       {"[encA:lun1](Used)", "{snap1,Used}", "{snap3,Available}", "[encB:lun2](Used)",
                        "{snap2,Used}", "{snap4,Available}"},
                       {{older, 1}, {newer, 0}}));
}

TEST_F(CRotation, ClaimGoesOnBehindWhicheverTargetIsHeldByANewerBackup) {
    for (const std::string held : {"1", "2", "3"}) {
        SCOPED_TRACE(held);
        const SBackup newer = given("newer.xml", backup("2", {{"encA##lun" + held, "encA##snap" + held}}));
        const SBackup older = given("older.xml", backup("1", {{"encA##lun1", "encA##snap1"},
                                                              {"encA##lun2", "encA##snap2"},
                                                              {"encA##lun3", "encA##snap3"}}));
        EXPECT_EQ(
            decided("encA##lun1;snap1;free&encA##lun2;snap2;free&encA##lun3;snap3;free", {older, newer}),
            selected(
                "[encA##lun1;encA##free][encA##lun2;encA##free][encA##lun3;encA##free]", {1, 0},
                matched({older, newer}) + claimed({newer}) + notClaimed({older}),
                {"[encA:lun1](Used)", "{snap1,Used}", "{free,Available}", "[encA:lun2](Used)", "{snap2,Used}",
                 "{free,Available}", "[encA:lun3](Used)", "{snap3,Used}", "{free,Available}"},
                {{older, 1}, {newer, 0}}));
    }
}

TEST_F(CRotation, BackupThatHoldsOneTargetTwiceFailsItsClaimAndIsNeverReleased) {
    const SNode device{{{"objid", "UDID##v##m##encA##lun1"}, {"altobjid", udid("encA##snap1")}}, {}};
    const SNode same{{{"objid", "UDID##v##n##encA##lun1"}, {"altobjid", udid("encA##snap1")}}, {}};
    const SBackup a = given("a.xml", SNode{{{"timeStamp", "1"}}, {device, same}});
    EXPECT_EQ(decided("encA##lun1;snap1", {a}), notSelected({0}, matched({a}) + notClaimed({a})));
}

TEST_F(CRotation, EnoughFreeTargetsLeaveEveryBackupAsItIs) {
    const SBackup excluded = given("excluded.xml", kHolder, 4);
    const SBackup other = given("other.xml", backup("20260102", {{"encA##lun1", "encA##snap2"}}), 1);
    EXPECT_EQ(
        decided("encA##lun1;snap1;snap2;snap3", {excluded, other}),
        selected("[encA##lun1;encA##snap3]", {0, 0}, matched({excluded, other}) + claimed({other, excluded}),
                 {"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Used}", "{snap3,Available}"},
                 {{excluded, 0}, {other, 0}}));
}

// Its other identifier matches a target that is then free for the new backup.
TEST_F(CRotation, BackupWithAnIdentifierOfNoConfiguredTargetIsInvalidAndHoldsNothing) {
    const SBackup a =
        given("a.xml", backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encZ##gone", "encA##snap1"}}));
    EXPECT_EQ(decided("encA##lun1;snap1", {a}),
              selected(kOnlyTarget, {1}, invalid({a}), kOneTargetFree, {{a, 1}}));
}

TEST_F(CRotation, FilesFromTheFirstThatCannotBeOpenedKeepTheirFlagWords) {
    const SBackup a = given("a.xml", kHolder);
    const std::string missing = path("missing.xml");
    SObserved expected = selected(kOnlyTarget, {2, 11, 12, -1}, missingFile() + matched({a}) + claimed({a}),
                                  kOneTargetReleased, {{a, 2}});
    expected.standardOutput = lineOfMissing(missing);
    EXPECT_EQ(decided("encA##lun1;snap1",
                      {a, {missing, 11}, given("c.xml", kHolder, 12), {path("also-missing.xml"), -1}}),
              expected);
}

TEST_F(CRotation, DocumentWithoutANodeKeepsItsFlagWordAndHidesNothing) {
    const SBackup a = given("a.xml", kHolder);
    EXPECT_EQ(decided("encA##lun1;snap1",
                      {{write("empty.xml", ""), 9}, {write("other.xml", "<other><x:Node/></other>"), 4}, a}),
              selected(kOnlyTarget, {9, 4, 2}, matched({a}) + claimed({a}), kOneTargetReleased, {{a, 2}}));
}

TEST_F(CRotation, WithoutALoadedBackupAFreeTargetIsEnough) {
    const std::string missing = path("missing.xml");
    SObserved expected = selected(kOnlyTarget, {9, 4}, missingFile(), kOneTargetFree, {});
    expected.standardOutput = lineOfMissing(missing);
    EXPECT_EQ(decided("encA##lun1;snap1", {{missing, 9}, given("behind.xml", kHolder, 4)}), expected);
}

TEST_F(CRotation, WithoutALoadedBackupAConfigurationWithoutTargetsFailsTheCall) {
    const std::string missing = path("missing.xml");
    SObserved expected = notSelected({9}, missingFile());
    expected.standardOutput = lineOfMissing(missing);
    EXPECT_EQ(decided("encA##lun1", {{missing, 9}}), expected);
}

TEST_F(CRotation, NegativeSizeStandsForNoBackups) {
    const SBackup a = given("a.xml", kHolder, 5);
    for (const std::int32_t size : {-1, INT32_MIN}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(decisionOf(callWithSize("encA##lun1;snap1", {a}, size)),
                  selected(kOnlyTarget, {5}, {}, kOneTargetFree, {}));
    }
}

TEST_F(CRotation, NegativeSizeFailsWithoutATarget) {
    EXPECT_EQ(decisionOf(callWithSize("encA##lun1", {given("a.xml", kHolder, 5)}, -1)), notSelected({5}, {}));
}

}  // namespace
}  // namespace fi_test
