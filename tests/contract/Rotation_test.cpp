#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

// What one call does with a few earlier backups, each time with its complete trace.
namespace {

using fi_test::backup;
using fi_test::brokenImportLines;
using fi_test::call;
using fi_test::callWithSize;
using fi_test::failure;
using fi_test::flagLine;
using fi_test::importLines;
using fi_test::outcomeLines;
using fi_test::parsedLines;
using fi_test::progress;
using fi_test::SNode;
using fi_test::SObserved;
using fi_test::toXml;
using fi_test::Trace;
using fi_test::udid;
using Flags = std::vector<std::int32_t>;

const Trace kOneTarget = progress(
    {"CFiResourceParser::parse : Resource specification [encA##lun1;snap1]",
     "CFiResourceParser::parse : [encA][lun1]", "CFiResourceParser::parse : [encA][snap1]"});
const Trace kTwoTargets =
    progress({"CFiResourceParser::parse : Resource specification [encA##lun1;snap1;snap2]",
              "CFiResourceParser::parse : [encA][lun1]", "CFiResourceParser::parse : [encA][snap1]",
              "CFiResourceParser::parse : [encA][snap2]"});
const Trace kNotAvailable = failure(
    "fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids");

Trace setLines(const std::vector<std::string>& lines) {
    return progress({"CFiResourceManager::print : printing resource set"}) + progress(lines);
}

Trace matchLine(const std::string& file) {
    return progress({"fi_process_backups : [RESOURCES MATCH] [" + file + "]"});
}

Trace invalidLine(const std::string& file) {
    return progress({"fi_process_backups : [INVALID RESOURCES] [" + file + "]"});
}

Trace reservedLine(const std::string& file, const std::string& timeStamp) {
    return progress({"fi_process_backups : [RESERVE GOOD] " + file + " - T: " + timeStamp});
}

Trace notReservedLine(const std::string& file, const std::string& timeStamp) {
    return progress({"fi_process_backups : " + file + " - T: " + timeStamp});
}

Trace skippedLine(const std::string& file) {
    return progress({"fi_process_backups : Skipped Rotation for fiid [" + file + "]"});
}

Trace selectionLine(const std::string& selection) {
    return progress({"fi_process_backups : resource_config_string [" + selection + "] "});
}

class Rotation : public fi_test::CContractTest {
protected:
    std::string write(const std::string& name, const SNode& document) const {
        return CContractTest::write(name, toXml(document));
    }
};

const SNode kHolder = backup("20260101", {{"encA##lun1", "encA##snap1"}});

TEST_F(Rotation, OnlyTargetIsReleasedByTheOneBackupThatHoldsIt) {
    const std::string a = write("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1", {{a, 0}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{2});
    EXPECT_EQ(observed.standardOutput, "");
    EXPECT_EQ(observed.trace,
              kOneTarget + flagLine(a, 0) + importLines({kHolder}) + parsedLines(a, kHolder) +
                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) + matchLine(a) +
                  reservedLine(a, "20260101") + selectionLine("[encA##lun1;encA##snap1]") +
                  setLines({"[encA:lun1](Used)", "{snap1,Available}"}) +
                  outcomeLines(a, kHolder, 2));
}

TEST_F(Rotation, ExcludedBackupKeepsTheOnlyTargetAndTheCallFails) {
    const std::string a = write("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1", {{a, 4}});
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, Flags{4});
    EXPECT_EQ(observed.trace,
              kOneTarget + flagLine(a, 4) + importLines({kHolder}) + parsedLines(a, kHolder) +
                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) + matchLine(a) +
                  reservedLine(a, "20260101") + skippedLine(a) + kNotAvailable);
}

TEST_F(Rotation, OnlyTheBitOfValue4Excludes) {
    const std::string a = write("a.xml", kHolder);
    for (const std::int32_t flagWord : {0, 1, 2, 3, 8, 3 + 8 + 16, INT32_MIN, -8, INT32_MAX - 4}) {
        const SObserved observed = call("encA##lun1;snap1", {{a, flagWord}});
        EXPECT_EQ(observed.status, 0) << flagWord;
        EXPECT_EQ(observed.flags, Flags{2}) << flagWord;
        EXPECT_EQ(observed.trace.at(3), flagLine(a, flagWord).front());
    }
    for (const std::int32_t flagWord : {4, 5, 12, 7, -1, INT32_MAX, INT32_MIN + 4}) {
        const SObserved observed = call("encA##lun1;snap1", {{a, flagWord}});
        EXPECT_EQ(observed.status, 3) << flagWord;
        EXPECT_EQ(observed.flags, Flags{flagWord});
        EXPECT_EQ(observed.trace.at(3), flagLine(a, flagWord).front());
    }
}

TEST_F(Rotation, OfTwoBackupsWithOneTargetTheNewerKeepsItUntilItIsNeeded) {
    const SNode newerDocument = backup("20260102", {{"encA##lun1", "encA##snap1"}});
    const std::string older = write("older.xml", kHolder);
    const std::string newer = write("newer.xml", newerDocument);
    const SObserved needed = call("encA##lun1;snap1", {{older, 0}, {newer, 0}});
    EXPECT_EQ(needed.status, 0);
    EXPECT_EQ(needed.flags, (Flags{1, 2}));
    EXPECT_EQ(needed.trace,
              kOneTarget + flagLine(older, 0) + flagLine(newer, 0) +
                  importLines({kHolder, newerDocument}) + parsedLines(older, kHolder) +
                  parsedLines(newer, newerDocument) +
                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) + matchLine(older) +
                  matchLine(newer) + reservedLine(newer, "20260102") +
                  notReservedLine(older, "20260101") + selectionLine("[encA##lun1;encA##snap1]") +
                  setLines({"[encA:lun1](Used)", "{snap1,Available}"}) +
                  outcomeLines(older, kHolder, 1) + outcomeLines(newer, newerDocument, 2));

    const SObserved notNeeded = call("encA##lun1;snap1;snap2", {{older, 0}, {newer, 0}});
    EXPECT_EQ(notNeeded.selection, "[encA##lun1;encA##snap2]");
    EXPECT_EQ(notNeeded.flags, (Flags{1, 0}));
}

TEST_F(Rotation, ClaimThatFailsPartWayHoldsItsTargetsForTheWholeCall) {
    const std::string configuration = "encA##lun1;snap1;snap3&encB##lun2;snap2";
    const SNode newerDocument = backup("20260102", {{"encA##lun1", "encA##snap1"}});
    const SNode olderDocument =
        backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encB##lun2", "encB##snap2"}});
    const std::string newer = write("newer.xml", newerDocument);
    const std::string older = write("older.xml", olderDocument);
    const SObserved observed = call(configuration, {{newer, 0}, {older, 0}});
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, (Flags{0, 0}));
    EXPECT_EQ(
        observed.trace,
        progress(
            {"CFiResourceParser::parse : Resource specification [encA##lun1;snap1;snap3]",
             "CFiResourceParser::parse : [encA][lun1]", "CFiResourceParser::parse : [encA][snap1]",
             "CFiResourceParser::parse : [encA][snap3]", "CFiResourceParser::parse : [encB][lun2]",
             "CFiResourceParser::parse : [encB][snap2]"}) +
            flagLine(newer, 0) + flagLine(older, 0) + importLines({newerDocument, olderDocument}) +
            parsedLines(newer, newerDocument) + parsedLines(older, olderDocument) +
            setLines({"[encA:lun1](Available)", "{snap1,Available}", "{snap3,Available}",
                      "[encB:lun2](Available)", "{snap2,Available}"}) +
            matchLine(newer) + matchLine(older) + reservedLine(newer, "20260102") +
            notReservedLine(older, "20260101") + kNotAvailable);
}

TEST_F(Rotation, EnoughFreeTargetsLeaveEveryBackupAsItIs) {
    const std::string a = write("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1;snap2", {{a, 4}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap2]");
    EXPECT_EQ(observed.flags, Flags{0});
    EXPECT_EQ(observed.trace,
              kTwoTargets + flagLine(a, 4) + importLines({kHolder}) + parsedLines(a, kHolder) +
                  setLines({"[encA:lun1](Available)", "{snap1,Available}", "{snap2,Available}"}) +
                  matchLine(a) + reservedLine(a, "20260101") +
                  selectionLine("[encA##lun1;encA##snap2]") +
                  setLines({"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Available}"}) +
                  outcomeLines(a, kHolder, 0));
}

TEST_F(Rotation, BackupThatDisagreesWithTheConfigurationClaimsAndReleasesNothing) {
    const SNode document =
        backup("20260101", {{"encA##lun1", "encA##snap1"}, {"encZ##gone", "encA##snap1"}});
    const std::string a = write("a.xml", document);
    const SObserved observed = call("encA##lun1;snap1", {{a, 0}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, Flags{1});
    EXPECT_EQ(observed.trace, kOneTarget + flagLine(a, 0) + importLines({document}) +
                                  parsedLines(a, document) +
                                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) +
                                  invalidLine(a) + selectionLine("[encA##lun1;encA##snap1]") +
                                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) +
                                  outcomeLines(a, document, 1));
}

TEST_F(Rotation, FilesFromTheFirstThatCannotBeOpenedKeepTheirFlagWords) {
    const std::string a = write("a.xml", kHolder);
    const std::string c = write("c.xml", kHolder);
    const std::string missing = path("missing.xml");
    const SObserved observed = call("encA##lun1;snap1", {{a, 0}, {missing, 11}, {c, 12}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, (Flags{2, 11, 12}));
    EXPECT_EQ(observed.standardOutput, "ERROR: failed to load FIID file [" + missing + "]\n");
    EXPECT_EQ(observed.trace,
              kOneTarget + flagLine(a, 0) + flagLine(missing, 11) + flagLine(c, 12) +
                  brokenImportLines({kHolder}) + parsedLines(a, kHolder) +
                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) + matchLine(a) +
                  reservedLine(a, "20260101") + selectionLine("[encA##lun1;encA##snap1]") +
                  setLines({"[encA:lun1](Used)", "{snap1,Available}"}) +
                  outcomeLines(a, kHolder, 2));
}

TEST_F(Rotation, WithoutALoadedBackupTheConfigurationAloneDecides) {
    const std::string missing = path("missing.xml");
    const SObserved good = call("encA##lun1;snap1", {{missing, 9}});
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(good.flags, Flags{9});
    EXPECT_EQ(good.trace, kOneTarget + flagLine(missing, 9) + brokenImportLines({}) +
                              setLines({"[encA:lun1](Available)", "{snap1,Available}"}) +
                              selectionLine("[encA##lun1;encA##snap1]") +
                              setLines({"[encA:lun1](Available)", "{snap1,Available}"}));

    const SObserved bad = call("encA##lun1", {{missing, 9}});
    EXPECT_EQ(bad.status, 3);
    EXPECT_EQ(bad.selection, std::nullopt);
    EXPECT_EQ(bad.flags, Flags{9});
    EXPECT_EQ(bad.trace, progress({"CFiResourceParser::parse : Resource specification [encA##lun1]",
                                   "CFiResourceParser::parse : [encA][lun1]"}) +
                             flagLine(missing, 9) + brokenImportLines({}) +
                             setLines({"[encA:lun1](Available)"}) + kNotAvailable);
}

TEST_F(Rotation, NegativeSizeStandsForNoBackups) {
    const std::string a = write("a.xml", kHolder);
    for (const std::int32_t size : {-1, INT32_MIN}) {
        const SObserved good = callWithSize("encA##lun1;snap1", {{a, 5}}, size);
        EXPECT_EQ(good.status, 0);
        EXPECT_EQ(good.selection, "[encA##lun1;encA##snap1]");
        EXPECT_EQ(good.flags, Flags{5});
        EXPECT_EQ(good.trace, kOneTarget + importLines({}) +
                                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}) +
                                  selectionLine("[encA##lun1;encA##snap1]") +
                                  setLines({"[encA:lun1](Available)", "{snap1,Available}"}));
    }
    const SObserved bad = callWithSize("encA##lun1", {{a, 5}}, -1);
    EXPECT_EQ(bad.status, 3);
    EXPECT_EQ(bad.flags, Flags{5});
    EXPECT_EQ(bad.trace, progress({"CFiResourceParser::parse : Resource specification [encA##lun1]",
                                   "CFiResourceParser::parse : [encA][lun1]"}) +
                             importLines({}) + setLines({"[encA:lun1](Available)"}) +
                             kNotAvailable);
}

TEST_F(Rotation, DocumentWithoutANodeKeepsItsFlagWordAndHidesNothing) {
    const std::string empty = CContractTest::write("empty.xml", "<other/>");
    const std::string a = write("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1", {{empty, 9}, {a, 0}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, (Flags{9, 2}));
    EXPECT_EQ(observed.standardOutput, "");
}

TEST_F(Rotation, BackupThatNamesNoDeviceMatchesAndIsRotatedWithoutFreeingAnything) {
    const SNode document = backup("20250101", {});
    const std::string empty = write("empty.xml", document);
    const std::string a = write("a.xml", kHolder);
    const SObserved observed = call("encA##lun1;snap1", {{empty, 0}, {a, 0}});
    EXPECT_EQ(observed.flags, (Flags{2, 2}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
}

TEST_F(Rotation, PercentSignsInNamesAndTextsAreTracedAsTheyStand) {
    SNode document = backup("100%s", {});
    document.elements.push_back({"objid", "%n%d"});
    const std::string a = write("a%s%n.xml", document);
    const SObserved observed = call("encA%s##lun%n;snap%d", {{a, 0}});
    EXPECT_EQ(observed.selection, "[encA%s##lun%n;encA%s##snap%d]");
    EXPECT_EQ(observed.trace,
              progress({"CFiResourceParser::parse : Resource specification [encA%s##lun%n;snap%d]",
                        "CFiResourceParser::parse : [encA%s][lun%n]",
                        "CFiResourceParser::parse : [encA%s][snap%d]"}) +
                  flagLine(a, 0) + importLines({document}) + parsedLines(a, document) +
                  setLines({"[encA%s:lun%n](Available)", "{snap%d,Available}"}) + matchLine(a) +
                  reservedLine(a, "100%s") + selectionLine("[encA%s##lun%n;encA%s##snap%d]") +
                  setLines({"[encA%s:lun%n](Available)", "{snap%d,Available}"}) +
                  outcomeLines(a, document, 0));
}

TEST_F(Rotation, TwoCallsAlikeHaveOneOutcome) {
    const std::string a = write("a.xml", kHolder);
    const std::string b = write("b.xml", backup("20260102", {{"encA##lun1", "encA##snap2"}}));
    const SObserved first = call("encA##lun1;snap1;snap2", {{a, 0}, {b, 4}});
    const SObserved second = call("encA##lun1;snap1;snap2", {{a, 0}, {b, 4}});
    EXPECT_EQ(first.flags, (Flags{2, 0}));
    EXPECT_EQ(second.flags, first.flags);
    EXPECT_EQ(second.selection, first.selection);
    EXPECT_EQ(second.trace, first.trace);
}

}  // namespace
