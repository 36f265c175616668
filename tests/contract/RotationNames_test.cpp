#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/RotationLines.h"

// Names and other texts of the caller and of the documents, and what is told apart by them.
namespace {

using fi_test::backup;
using fi_test::brokenImportLines;
using fi_test::call;
using fi_test::closingLines;
using fi_test::configurationLines;
using fi_test::failure;
using fi_test::flagLine;
using fi_test::importLines;
using fi_test::listed;
using fi_test::matchLine;
using fi_test::notAvailableLine;
using fi_test::notReservedLine;
using fi_test::openingLines;
using fi_test::progress;
using fi_test::reservedLine;
using fi_test::SBackup;
using fi_test::setLines;
using fi_test::skippedLine;
using fi_test::SListed;
using fi_test::SNode;
using fi_test::SObserved;
using fi_test::Trace;
using fi_test::udid;
using Flags = std::vector<std::int32_t>;

class RotationNames : public fi_test::CRotationTest {
protected:
    SBackup holder(const std::string& name, const std::string& timeStamp, const std::string& snap,
                   std::int32_t flagWord = 0) const {
        return given(name, backup(timeStamp, {{"encA##lun1", "encA##" + snap}}), flagWord);
    }
};

SBackup withFlagWord(SBackup backup, std::int32_t flagWord) {
    backup.listed.flagWord = flagWord;
    return backup;
}

const Trace kOneTarget = configurationLines("encA##lun1;s1", {{"encA", "lun1"}, {"encA", "s1"}});
const std::vector<std::string> kOneTargetFree{"[encA:lun1](Available)", "{s1,Available}"};

// A name listed twice is two backups. One of them claims the target and is rotated, the other claims in
// vain; which goes first is open. Both entries get the state of the one that comes first in the end.
TEST_F(RotationNames, NameListedTwiceGivesBothEntriesTheStateOfTheFirstInTheEnd) {
    const SBackup twice = holder("twice.xml", "1", "s1");
    const SBackup newer = holder("newer.xml", "2", "s2");
    const SObserved observed = call("encA##lun1;s1;s2", listed({twice, twice, newer}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    ASSERT_THAT(observed.flags, testing::AnyOf(Flags{1, 1, 0}, Flags{2, 2, 0}));
    const int first = observed.flags.front();
    const int second = first == 1 ? 2 : 1;
    EXPECT_EQ(observed.trace,
              configurationLines("encA##lun1;s1;s2", {{"encA", "lun1"}, {"encA", "s1"}, {"encA", "s2"}}) +
                  openingLines({twice, twice, newer},
                               {"[encA:lun1](Available)", "{s1,Available}", "{s2,Available}"}) +
                  matchLine(twice) + matchLine(twice) + matchLine(newer) + reservedLine(newer) +
                  reservedLine(twice) + notReservedLine(twice) +
                  closingLines("[encA##lun1;encA##s1]", {"[encA:lun1](Used)", "{s1,Available}", "{s2,Used}"},
                               {{twice, first}, {twice, second}, {newer, 0}}));
}

// The more entries, the more the order of equal time stamps changes between load and end.
TEST_F(RotationNames, NameListedOftenGivesEveryEntryTheStateThatIsPrintedFirst) {
    const SBackup often = holder("often.xml", "1", "s1");
    const std::string start = "fi_process_backups : parsed [" + often.listed.file + "] state=";
    for (std::size_t count = 2; count < 60; ++count) {
        SCOPED_TRACE(count);
        const SObserved observed = call("encA##lun1;s1", std::vector<SListed>(count, often.listed));
        EXPECT_EQ(observed.status, 0);
        const auto first = std::find_if(observed.trace.begin(), observed.trace.end(), [&](const auto& line) {
            return line.text.compare(0, start.size(), start) == 0;
        });
        ASSERT_NE(first, observed.trace.end());
        for (const std::int32_t flag : observed.flags) {
            EXPECT_EQ(start + "[" + std::to_string(flag) + "]", first->text);
        }
    }
}

TEST_F(RotationNames, LastFlagWordOfANameListedTwiceExcludesBoth) {
    const SBackup a = holder("a.xml", "1", "s1");
    const SBackup excluded = withFlagWord(a, 4);
    const SObserved observed = call("encA##lun1;s1", listed({a, excluded}));
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.flags, (Flags{0, 4}));
    EXPECT_EQ(observed.trace, kOneTarget + openingLines({a, excluded}, kOneTargetFree) + matchLine(a) +
                                  matchLine(a) + reservedLine(a) + notReservedLine(a) + skippedLine(a) +
                                  notAvailableLine());
}

TEST_F(RotationNames, LastFlagWordOfANameListedTwiceReleasesBoth) {
    const SBackup a = holder("a.xml", "1", "s1", 8);
    const SBackup excluded = withFlagWord(a, 4);
    const SObserved observed = call("encA##lun1;s1", listed({excluded, a}));
    EXPECT_EQ(observed.status, 0);
    ASSERT_THAT(observed.flags, testing::AnyOf(Flags{1, 1}, Flags{2, 2}));
    const int first = observed.flags.front();
    const int second = first == 1 ? 2 : 1;
    EXPECT_EQ(observed.trace,
              kOneTarget + openingLines({excluded, a}, kOneTargetFree) + matchLine(a) + matchLine(a) +
                  reservedLine(a) + notReservedLine(a) +
                  closingLines("[encA##lun1;encA##s1]", {"[encA:lun1](Used)", "{s1,Available}"},
                               {{a, first}, {a, second}}));
}

// Each name is the start of a longer one; no entry gets the state of another.
TEST_F(RotationNames, StatesGoToTheWholeName) {
    const SBackup oldest = holder("ab", "1", "s1", 16);
    const SBackup middle = holder("a", "2", "s2", 16);
    const SBackup newest = holder("abc", "3", "s3", 16);
    const SObserved observed = call("encA##lun1;s1;s2;s3", listed({newest, middle, oldest}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, (Flags{0, 0, 2}));
}

TEST_F(RotationNames, ExclusionGoesToTheWholeName) {
    const SBackup oldest = holder("ab", "1", "s1");
    const SBackup middle = holder("a", "2", "s2", 4);
    const SBackup newest = holder("abc", "3", "s3", 4);
    const SObserved observed = call("encA##lun1;s1;s2;s3", listed({newest, middle, oldest}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, (Flags{0, 0, 2}));
}

// Two names of one file are two backups with a flag word each.
TEST_F(RotationNames, OneFileUnderTwoNamesIsTwoBackups) {
    const SBackup plain = holder("a.xml", "1", "s1", 4);
    SBackup detour = withFlagWord(plain, 4);
    detour.listed.file = path("./a.xml");
    const SObserved observed = call("encA##lun1;s1;s2", listed({plain, detour}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s2]");
    // One of the two claims, the other finds the target used.
    EXPECT_THAT(observed.flags, testing::UnorderedElementsAre(0, 1));
}

TEST_F(RotationNames, PercentSignsAreTracedAsTheyStand) {
    SNode document = backup("100%s", {{"encA%s##lun%n", "encA%s##snap%d"}});
    document.elements.push_back({"splitType", "%s%n"});
    document.elements.push_back({"objid", "%n%d"});
    document.elements.push_back({"altobjid", "%5$s"});
    const SBackup a = given("a%s%n.xml", document);
    const SBackup b = given("b%d.xml", document, 4);
    const SBackup c = given("c%x.xml", backup("99%s", {{"%s##%n", "%d##%s"}}));
    const std::vector<std::string> set{"[encA%s:lun%n](Available)", "{snap%d,Available}"};
    const SObserved observed = call("encA%s##lun%n;snap%d", listed({a, c}));
    EXPECT_EQ(observed.selection, "[encA%s##lun%n;encA%s##snap%d]");
    EXPECT_EQ(observed.trace,
              configurationLines("encA%s##lun%n;snap%d", {{"encA%s", "lun%n"}, {"encA%s", "snap%d"}}) +
                  openingLines({a, c}, set) + matchLine(a) + invalidLine(c) + reservedLine(a) +
                  closingLines("[encA%s##lun%n;encA%s##snap%d]",
                               {"[encA%s:lun%n](Used)", "{snap%d,Available}"}, {{a, 2}, {c, 1}}));

    const SObserved excluded = call("encA%s##lun%n;snap%d", listed({b}));
    EXPECT_EQ(excluded.trace,
              configurationLines("encA%s##lun%n;snap%d", {{"encA%s", "lun%n"}, {"encA%s", "snap%d"}}) +
                  openingLines({b}, set) + matchLine(b) + reservedLine(b) + skippedLine(b) +
                  notAvailableLine());
}

TEST_F(RotationNames, PercentSignsInTheNameOfAMissingFileArePrintedAsTheyStand) {
    const std::string missing = path("%s%n%d.xml");
    const SObserved observed = call("encA##lun1;s1", {{missing, 0}});
    EXPECT_EQ(observed.standardOutput, "ERROR: failed to load FIID file [" + missing + "]\n");
    EXPECT_EQ(observed.trace, kOneTarget + flagLine(missing, 0) + brokenImportLines({}) +
                                  setLines(kOneTargetFree) +
                                  closingLines("[encA##lun1;encA##s1]", kOneTargetFree, {}));
}

TEST_F(RotationNames, RejectedConfigurationLeavesWhatStandsBeforeItToTheRotation) {
    const SBackup a = holder("a.xml", "1", "s1");
    const SBackup b = given("b.xml", backup("2", {{"encB##lun2", "encB##t1"}}), 1);
    const SObserved observed = call("encA##lun1;s1&lun2;t1&encB##lun2;t1", listed({a, b}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    EXPECT_EQ(observed.flags, (Flags{2, 1}));
    EXPECT_EQ(
        observed.trace,
        configurationLines("encA##lun1;s1", {{"encA", "lun1"}, {"encA", "s1"}, {"", "lun2"}}) +
            failure("CFiResourceParser::parse : resource configuration \"lun2\" has no "
                    "enclosure data specified.") +
            openingLines({a, b}, kOneTargetFree) + matchLine(a) + invalidLine(b) + reservedLine(a) +
            closingLines("[encA##lun1;encA##s1]", {"[encA:lun1](Used)", "{s1,Available}"}, {{a, 2}, {b, 1}}));
}

TEST_F(RotationNames, RejectedConfigurationWithNothingBeforeItSelectsNothing) {
    const SBackup a = holder("a.xml", "1", "s1");
    const SObserved observed = call("lun1;s1", listed({a}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "");
    EXPECT_EQ(observed.flags, Flags{1});
    EXPECT_EQ(observed.trace, configurationLines("lun1;s1", {{"", "lun1"}}) +
                                  failure("CFiResourceParser::parse : resource configuration \"lun1\" has no "
                                          "enclosure data specified.") +
                                  openingLines({a}, {}) + invalidLine(a) + closingLines("", {}, {{a, 1}}));
}

TEST_F(RotationNames, TargetIsLookedForInEveryConfigurationWithItsFirstTarget) {
    const SBackup a = holder("a.xml", "1", "s2");
    const SObserved observed = call("encA##lun1;s1&encA##lun1;s2", listed({a}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1][encA##lun1;encA##s2]");
    EXPECT_EQ(observed.flags, Flags{2});
    EXPECT_EQ(
        observed.trace,
        configurationLines("encA##lun1;s1",
                           {{"encA", "lun1"}, {"encA", "s1"}, {"encA", "lun1"}, {"encA", "s2"}}) +
            openingLines({a}, {"[encA:lun1](Available)", "{s1,Available}", "[encA:lun1](Available)",
                               "{s2,Available}"}) +
            matchLine(a) + reservedLine(a) +
            closingLines("[encA##lun1;encA##s1][encA##lun1;encA##s2]",
                         {"[encA:lun1](Available)", "{s1,Available}", "[encA:lun1](Used)", "{s2,Available}"},
                         {{a, 2}}));
}

TEST_F(RotationNames, OfATargetConfiguredTwiceTheFirstIsHeld) {
    const SBackup older = holder("older.xml", "1", "s1");
    const SBackup newer = holder("newer.xml", "2", "s1");
    const SObserved observed = call("encA##lun1;s1;s1&encA##lun1;s1", listed({older, newer}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1][encA##lun1;encA##s1]");
    EXPECT_EQ(observed.flags, (Flags{1, 0}));
    EXPECT_EQ(observed.trace,
              configurationLines(
                  "encA##lun1;s1;s1",
                  {{"encA", "lun1"}, {"encA", "s1"}, {"encA", "s1"}, {"encA", "lun1"}, {"encA", "s1"}}) +
                  openingLines({older, newer}, {"[encA:lun1](Available)", "{s1,Available}", "{s1,Available}",
                                                "[encA:lun1](Available)", "{s1,Available}"}) +
                  matchLine(older) + matchLine(newer) + reservedLine(newer) + notReservedLine(older) +
                  closingLines("[encA##lun1;encA##s1][encA##lun1;encA##s1]",
                               {"[encA:lun1](Used)", "{s1,Used}", "{s1,Available}", "[encA:lun1](Available)",
                                "{s1,Available}"},
                               {{older, 1}, {newer, 0}}));
}

TEST_F(RotationNames, OfNodesWithOneObjidTheLastAltobjidCounts) {
    const SNode malformed{{{"objid", udid("encA##lun1")}, {"altobjid", "bad"}}, {}};
    const SNode first{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##s1")}}, {malformed}};
    const SNode last{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##s2")}}, {}};
    const SBackup a = given("a.xml", SNode{{{"timeStamp", "1"}}, {first, last}});
    const SObserved observed = call("encA##lun1;s1;s2", listed({a}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    EXPECT_EQ(observed.flags, Flags{0});
    EXPECT_EQ(observed.trace,
              configurationLines("encA##lun1;s1;s2", {{"encA", "lun1"}, {"encA", "s1"}, {"encA", "s2"}}) +
                  openingLines({a}, {"[encA:lun1](Available)", "{s1,Available}", "{s2,Available}"}) +
                  matchLine(a) + reservedLine(a) +
                  closingLines("[encA##lun1;encA##s1]", {"[encA:lun1](Used)", "{s1,Available}", "{s2,Used}"},
                               {{a, 0}}));
}

// What an objid and an altobjid must be for a backup to hold encA##lun1's target s1 or ##bare.
TEST_F(RotationNames, IdentifiersMatchByTheirWholeEnclosureAndDevice) {
    const struct {
        std::string objid, altobjid;
        bool isMatch;
    } rows[] = {
        {udid("encA##lun1"), udid("encA##s1"), true},
        {"xyz" + udid("encA##lun1"), "xyz" + udid("encA##s1"), true},
        {"UDID####w##encA##lun1", "UEID##other##parts##encA##s1", true},
        {"UEID##x##UDID##v##m##encA##lun1", udid("encA##s1"), true},
        {udid("encA##lun1"), "UDID##v##m##bare", true},
        {udid("encA##lun1"), udid("##bare"), true},
        {udid("encA##LUN1"), udid("encA##s1"), false},
        {udid("encA##lun1"), udid("encA##S1"), false},
        {udid("encB##lun1"), udid("encA##s1"), false},
        {udid("encA##lun1"), udid("encB##s1"), false},
        {udid("encA##lun"), udid("encA##s1"), false},
        {udid("encA##lun1"), udid("encA##s1##x"), false},
        {udid("encA##lun1"), udid("encA##lun1"), false},
        {udid("encA##s1"), udid("encA##lun1"), false},
        {"UDID##v##m##lun1", udid("encA##s1"), false},
        {udid("encA##lun1"), "UDID##v##m##s1", false},
        {udid("encA##lun1"), "UEID##v##m##bare", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.objid + " " + row.altobjid);
        const SBackup a = given("a.xml", SNode{{{"objid", row.objid}, {"altobjid", row.altobjid}}, {}}, 8);
        const SObserved observed = call("encA##lun1;s1;##bare", listed({a}));
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.flags, Flags{row.isMatch ? 0 : 1});
    }
}

}  // namespace
