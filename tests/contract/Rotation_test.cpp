#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/RotationLines.h"

// What one call does with a few earlier backups, each time with its complete trace.
namespace {

using fi_test::backup;
using fi_test::brokenImportLines;
using fi_test::call;
using fi_test::callWithSize;
using fi_test::closingLines;
using fi_test::configurationLines;
using fi_test::failure;
using fi_test::flagLine;
using fi_test::importLines;
using fi_test::invalidLine;
using fi_test::listed;
using fi_test::matchLine;
using fi_test::notAvailableLine;
using fi_test::notReservedLine;
using fi_test::openingLines;
using fi_test::outcomeLines;
using fi_test::parsedLines;
using fi_test::progress;
using fi_test::reservedLine;
using fi_test::SBackup;
using fi_test::setLines;
using fi_test::skippedLine;
using fi_test::SNode;
using fi_test::SObserved;
using fi_test::Trace;
using fi_test::udid;
using Flags = std::vector<std::int32_t>;

class Rotation : public fi_test::CRotationTest {};

const SNode kHolder = backup("20260101", {{"encA##lun1", "encA##snap1"}});
const SNode kNewerHolder = backup("20260102", {{"encA##lun1", "encA##snap1"}});

const Trace kOneTarget = configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}});
const Trace kTwoTargets =
    configurationLines("encA##lun1;snap1;snap2", {{"encA", "lun1"}, {"encA", "snap1"}, {"encA", "snap2"}});
const std::vector<std::string> kOneTargetFree{"[encA:lun1](Available)", "{snap1,Available}"};
const std::vector<std::string> kTwoTargetsFree{"[encA:lun1](Available)", "{snap1,Available}",
                                               "{snap2,Available}"};
const std::vector<std::string> kOneTargetReleased{"[encA:lun1](Used)", "{snap1,Available}"};

// A call in which the only target is held by `only`, which may be rotated.
Trace linesOfARelease(const SBackup& only) {
    return kOneTarget + openingLines({only}, kOneTargetFree) + matchLine(only) + reservedLine(only) +
           closingLines("[encA##lun1;encA##snap1]", kOneTargetReleased, {{only, 2}});
}

// The same when `only` is excluded from rotation.
Trace linesOfAnExclusion(const SBackup& only) {
    return kOneTarget + openingLines({only}, kOneTargetFree) + matchLine(only) + reservedLine(only) +
           skippedLine(only) + notAvailableLine();
}

TEST_F(Rotation, OnlyTargetIsReleasedByTheOneBackupThatHoldsIt) {
    const SBackup a = given("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{2});
    EXPECT_EQ(observed.standardOutput, "");
    EXPECT_EQ(observed.trace, linesOfARelease(a));
}

TEST_F(Rotation, ExcludedBackupKeepsTheOnlyTargetAndTheCallFails) {
    const SBackup a = given("a.xml", kHolder, 4);
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, Flags{4});
    EXPECT_EQ(observed.standardOutput, "");
    EXPECT_EQ(observed.trace, linesOfAnExclusion(a));
}

TEST_F(Rotation, FlagWordWithoutTheBitOfValue4DoesNotExclude) {
    for (const std::int32_t flagWord : {0, 1, 2, 3, 8, 3 + 8 + 16, -5, -8, INT32_MIN, INT32_MAX - 4}) {
        SCOPED_TRACE(flagWord);
        const SBackup a = given("a.xml", kHolder, flagWord);
        const SObserved observed = call("encA##lun1;snap1", listed({a}));
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.flags, Flags{2});
        EXPECT_EQ(observed.trace, linesOfARelease(a));
    }
}

TEST_F(Rotation, FlagWordWithTheBitOfValue4Excludes) {
    for (const std::int32_t flagWord : {4, 5, 12, 7, -1, -4, INT32_MAX, INT32_MIN + 4}) {
        SCOPED_TRACE(flagWord);
        const SBackup a = given("a.xml", kHolder, flagWord);
        const SObserved observed = call("encA##lun1;snap1", listed({a}));
        EXPECT_EQ(observed.status, 3);
        EXPECT_EQ(observed.selection, std::nullopt);
        EXPECT_EQ(observed.flags, Flags{flagWord});
        EXPECT_EQ(observed.trace, linesOfAnExclusion(a));
    }
}

TEST_F(Rotation, OfTwoBackupsWithOneTargetTheNewerGivesItUpWhenItIsNeeded) {
    const SBackup older = given("older.xml", kHolder);
    const SBackup newer = given("newer.xml", kNewerHolder);
    const SObserved observed = call("encA##lun1;snap1", listed({older, newer}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, (Flags{1, 2}));
    EXPECT_EQ(observed.trace,
              kOneTarget + openingLines({older, newer}, kOneTargetFree) + matchLine(older) +
                  matchLine(newer) + reservedLine(newer) + notReservedLine(older) +
                  closingLines("[encA##lun1;encA##snap1]", kOneTargetReleased, {{older, 1}, {newer, 2}}));
}

TEST_F(Rotation, OfTwoBackupsWithOneTargetTheNewerKeepsItWhenItIsNotNeeded) {
    const SBackup older = given("older.xml", kHolder);
    const SBackup newer = given("newer.xml", kNewerHolder);
    const SObserved observed = call("encA##lun1;snap1;snap2", listed({older, newer}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap2]");
    EXPECT_EQ(observed.flags, (Flags{1, 0}));
    EXPECT_EQ(observed.trace, kTwoTargets + openingLines({older, newer}, kTwoTargetsFree) + matchLine(older) +
                                  matchLine(newer) + reservedLine(newer) + notReservedLine(older) +
                                  closingLines("[encA##lun1;encA##snap2]",
                                               {"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Available}"},
                                               {{older, 1}, {newer, 0}}));
}

TEST_F(Rotation, ClaimThatFailsPartWayHoldsItsOtherTargetsForTheWholeCall) {
    const SBackup newer = given("newer.xml", kNewerHolder, 1);
    const SBackup older = given(
        "older.xml", backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encB##lun2", "encB##snap2"}}), 2);
    const SObserved observed = call("encA##lun1;snap1;snap3&encB##lun2;snap2", listed({newer, older}));
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, (Flags{1, 2}));
    EXPECT_EQ(
        observed.trace,
        configurationLines(
            "encA##lun1;snap1;snap3",
            {{"encA", "lun1"}, {"encA", "snap1"}, {"encA", "snap3"}, {"encB", "lun2"}, {"encB", "snap2"}}) +
            openingLines({newer, older}, {"[encA:lun1](Available)", "{snap1,Available}", "{snap3,Available}",
                                          "[encB:lun2](Available)", "{snap2,Available}"}) +
            matchLine(newer) + matchLine(older) + reservedLine(newer) + notReservedLine(older) +
            notAvailableLine());
}

TEST_F(Rotation, ClaimThatFailsPartWayIsInvalidAndItsOtherTargetsStayUsed) {
    const SBackup newer = given("newer.xml", kNewerHolder, 1);
    const SBackup older = given(
        "older.xml", backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encB##lun2", "encB##snap2"}}), 2);
    const SObserved observed = call("encA##lun1;snap1;snap3&encB##lun2;snap2;snap4", listed({newer, older}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap3][encB##lun2;encB##snap4]");
    EXPECT_EQ(observed.flags, (Flags{0, 1}));
    EXPECT_EQ(observed.trace,
              configurationLines("encA##lun1;snap1;snap3", {{"encA", "lun1"},
                                                            {"encA", "snap1"},
                                                            {"encA", "snap3"},
                                                            {"encB", "lun2"},
                                                            {"encB", "snap2"},
                                                            {"encB", "snap4"}}) +
                  openingLines({newer, older},
                               {"[encA:lun1](Available)", "{snap1,Available}", "{snap3,Available}",
                                "[encB:lun2](Available)", "{snap2,Available}", "{snap4,Available}"}) +
                  matchLine(newer) + matchLine(older) + reservedLine(newer) + notReservedLine(older) +
                  closingLines("[encA##lun1;encA##snap3][encB##lun2;encB##snap4]",
                               {"[encA:lun1](Used)", "{snap1,Used}", "{snap3,Available}", "[encB:lun2](Used)",
                                "{snap2,Used}", "{snap4,Available}"},
                               {{older, 1}, {newer, 0}}));
}

TEST_F(Rotation, ClaimGoesOnBehindWhicheverTargetIsHeldByANewerBackup) {
    for (const std::string held : {"1", "2", "3"}) {
        SCOPED_TRACE(held);
        const SBackup newer = given("newer.xml", backup("2", {{"encA##lun" + held, "encA##snap" + held}}));
        const SBackup older = given("older.xml", backup("1", {{"encA##lun1", "encA##snap1"},
                                                              {"encA##lun2", "encA##snap2"},
                                                              {"encA##lun3", "encA##snap3"}}));
        const SObserved observed =
            call("encA##lun1;snap1;free&encA##lun2;snap2;free&encA##lun3;snap3;free", listed({older, newer}));
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.flags, (Flags{1, 0}));
        const std::string selection = "[encA##lun1;encA##free][encA##lun2;encA##free][encA##lun3;encA##free]";
        EXPECT_EQ(observed.selection, selection);
        EXPECT_EQ(observed.trace,
                  configurationLines("encA##lun1;snap1;free", {{"encA", "lun1"},
                                                               {"encA", "snap1"},
                                                               {"encA", "free"},
                                                               {"encA", "lun2"},
                                                               {"encA", "snap2"},
                                                               {"encA", "free"},
                                                               {"encA", "lun3"},
                                                               {"encA", "snap3"},
                                                               {"encA", "free"}}) +
                      openingLines({older, newer},
                                   {"[encA:lun1](Available)", "{snap1,Available}", "{free,Available}",
                                    "[encA:lun2](Available)", "{snap2,Available}", "{free,Available}",
                                    "[encA:lun3](Available)", "{snap3,Available}", "{free,Available}"}) +
                      matchLine(older) + matchLine(newer) + reservedLine(newer) + notReservedLine(older) +
                      closingLines(selection,
                                   {"[encA:lun1](Used)", "{snap1,Used}", "{free,Available}",
                                    "[encA:lun2](Used)", "{snap2,Used}", "{free,Available}",
                                    "[encA:lun3](Used)", "{snap3,Used}", "{free,Available}"},
                                   {{older, 1}, {newer, 0}}));
    }
}

TEST_F(Rotation, BackupThatHoldsOneTargetTwiceFailsItsClaimAndIsNeverReleased) {
    const SNode device{{{"objid", "UDID##v##m##encA##lun1"}, {"altobjid", udid("encA##snap1")}}, {}};
    const SNode same{{{"objid", "UDID##v##n##encA##lun1"}, {"altobjid", udid("encA##snap1")}}, {}};
    const SBackup a = given("a.xml", SNode{{{"timeStamp", "1"}}, {device, same}});
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.flags, Flags{0});
    EXPECT_EQ(observed.trace, kOneTarget + openingLines({a}, kOneTargetFree) + matchLine(a) +
                                  notReservedLine(a) + notAvailableLine());
}

TEST_F(Rotation, EnoughFreeTargetsLeaveEveryBackupAsItIs) {
    const SBackup excluded = given("excluded.xml", kHolder, 4);
    const SBackup other = given("other.xml", backup("20260102", {{"encA##lun1", "encA##snap2"}}), 1);
    const SObserved observed = call("encA##lun1;snap1;snap2;snap3", listed({excluded, other}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap3]");
    EXPECT_EQ(observed.flags, (Flags{0, 0}));
    EXPECT_EQ(
        observed.trace,
        configurationLines("encA##lun1;snap1;snap2;snap3",
                           {{"encA", "lun1"}, {"encA", "snap1"}, {"encA", "snap2"}, {"encA", "snap3"}}) +
            openingLines({excluded, other}, {"[encA:lun1](Available)", "{snap1,Available}",
                                             "{snap2,Available}", "{snap3,Available}"}) +
            matchLine(excluded) + matchLine(other) + reservedLine(other) + reservedLine(excluded) +
            closingLines("[encA##lun1;encA##snap3]",
                         {"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Used}", "{snap3,Available}"},
                         {{excluded, 0}, {other, 0}}));
}

// Its other identifier matches a target that is then free for the new backup.
TEST_F(Rotation, BackupWithAnIdentifierOfNoConfiguredTargetIsInvalidAndHoldsNothing) {
    const SBackup a =
        given("a.xml", backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encZ##gone", "encA##snap1"}}));
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{1});
    EXPECT_EQ(observed.trace, kOneTarget + openingLines({a}, kOneTargetFree) + invalidLine(a) +
                                  closingLines("[encA##lun1;encA##snap1]", kOneTargetFree, {{a, 1}}));
}

TEST_F(Rotation, FilesFromTheFirstThatCannotBeOpenedKeepTheirFlagWords) {
    const SBackup a = given("a.xml", kHolder);
    const SBackup c = given("c.xml", kHolder, 12);
    const std::string missing = path("missing.xml");
    const std::string alsoMissing = path("also-missing.xml");
    const SObserved observed =
        call("encA##lun1;snap1", {a.listed, {missing, 11}, c.listed, {alsoMissing, -1}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, (Flags{2, 11, 12, -1}));
    EXPECT_EQ(observed.standardOutput, "ERROR: failed to load FIID file [" + missing + "]\n");
    EXPECT_EQ(observed.trace, kOneTarget + flagLine(a.listed.file, 0) + flagLine(missing, 11) +
                                  flagLine(c.listed.file, 12) + flagLine(alsoMissing, -1) +
                                  brokenImportLines({kHolder}) + parsedLines(a.listed.file, kHolder) +
                                  setLines(kOneTargetFree) + matchLine(a) + reservedLine(a) +
                                  closingLines("[encA##lun1;encA##snap1]", kOneTargetReleased, {{a, 2}}));
}

// Its trace is spelled out in golden/documents-without-a-node.trace.
TEST_F(Rotation, DocumentWithoutANodeKeepsItsFlagWordAndHidesNothing) {
    const std::string empty = write("empty.xml", "");
    const std::string other = write("other.xml", "<other><x:Node/></other>");
    const SBackup a = given("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1", {{empty, 9}, {other, 4}, a.listed});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, (Flags{9, 4, 2}));
    EXPECT_EQ(observed.standardOutput, "");
}

TEST_F(Rotation, WithoutALoadedBackupAFreeTargetIsEnough) {
    const std::string missing = path("missing.xml");
    const SBackup behind = given("behind.xml", kHolder, 4);
    const SObserved observed = call("encA##lun1;snap1", {{missing, 9}, behind.listed});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, (Flags{9, 4}));
    EXPECT_EQ(observed.standardOutput, "ERROR: failed to load FIID file [" + missing + "]\n");
    EXPECT_EQ(observed.trace, kOneTarget + flagLine(missing, 9) + flagLine(behind.listed.file, 4) +
                                  brokenImportLines({}) + setLines(kOneTargetFree) +
                                  closingLines("[encA##lun1;encA##snap1]", kOneTargetFree, {}));
}

TEST_F(Rotation, WithoutALoadedBackupAConfigurationWithoutTargetsFailsTheCall) {
    const std::string missing = path("missing.xml");
    const SObserved observed = call("encA##lun1", {{missing, 9}});
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, Flags{9});
    EXPECT_EQ(observed.trace, configurationLines("encA##lun1", {{"encA", "lun1"}}) + flagLine(missing, 9) +
                                  brokenImportLines({}) + setLines({"[encA:lun1](Available)"}) +
                                  notAvailableLine());
}

TEST_F(Rotation, NegativeSizeStandsForNoBackups) {
    const SBackup a = given("a.xml", kHolder, 5);
    for (const std::int32_t size : {-1, INT32_MIN}) {
        SCOPED_TRACE(size);
        const SObserved observed = callWithSize("encA##lun1;snap1", listed({a}), size);
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
        EXPECT_EQ(observed.flags, Flags{5});
        EXPECT_EQ(observed.standardOutput, "");
        EXPECT_EQ(observed.trace, kOneTarget + importLines({}) + setLines(kOneTargetFree) +
                                      closingLines("[encA##lun1;encA##snap1]", kOneTargetFree, {}));
    }
}

TEST_F(Rotation, NegativeSizeFailsWithoutATarget) {
    const SBackup a = given("a.xml", kHolder, 5);
    const SObserved observed = callWithSize("encA##lun1", listed({a}), -1);
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, Flags{5});
    EXPECT_EQ(observed.trace, configurationLines("encA##lun1", {{"encA", "lun1"}}) + importLines({}) +
                                  setLines({"[encA:lun1](Available)"}) + notAvailableLine());
}

}  // namespace
