#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/Decision.h"

// How names and other texts of the caller and of the documents are compared.
namespace fi_test {
namespace {

class CRotationNames : public CRotationTest {
protected:
    SBackup holder(const std::string& name, const std::string& timeStamp, const std::string& snap,
                   std::int32_t flagWord = 0) const {
        return given(name, backup(timeStamp, {{"encA##lun1", "encA##" + snap}}), flagWord);
    }
};

SBackup withFlagWord(SBackup backup, std::int32_t flagWord) {
    backup.flagWord = flagWord;
    return backup;
}

const std::string kOnlyTarget = "[encA##lun1;encA##s1]";
const std::vector<std::string> kOneTargetReleased{"[encA:lun1](Used)", "{s1,Available}"};

// A name listed twice is two backups. One of them claims the target and is rotated, the claim of the other
// fails; which of them is first is not specified. Both entries get the state of the backup that comes first
// at the end.
TEST_F(CRotationNames, NameListedTwiceGivesBothEntriesTheStateOfTheFirstInTheEnd) {
    const SBackup twice = holder("twice.xml", "1", "s1");
    const SBackup newer = holder("newer.xml", "2", "s2");
    const SObserved observed = decided("encA##lun1;s1;s2", {twice, twice, newer});
    const std::int32_t first = observed.flags.front();
    ASSERT_THAT(first, testing::AnyOf(1, 2));
    EXPECT_EQ(observed,
              selected(kOnlyTarget, {first, first, 0},
                       matched({twice, twice, newer}) + claimed({newer, twice}) + notClaimed({twice}),
                       {"[encA:lun1](Used)", "{s1,Available}", "{s2,Used}"},
                       {{twice, first}, {twice, first == 1 ? 2 : 1}, {newer, 0}}));
}

// With many entries, sorting changes the order of backups with equal time stamps.
TEST_F(CRotationNames, NameListedOftenGivesEveryEntryTheStateThatIsPrintedFirst) {
    const SBackup often = holder("often.xml", "1", "s1");
    const std::string start = "fi_process_backups : parsed [" + often.file + "] state=";
    for (std::size_t count = 2; count < 60; ++count) {
        SCOPED_TRACE(count);
        const SObserved observed = call("encA##lun1;s1", std::vector<SBackup>(count, often));
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

TEST_F(CRotationNames, LastFlagWordOfANameListedTwiceExcludesBoth) {
    const SBackup a = holder("a.xml", "1", "s1");
    EXPECT_EQ(decided("encA##lun1;s1", {a, withFlagWord(a, 4)}),
              notSelected({0, 4}, matched({a, a}) + claimed({a}) + notClaimed({a}) + skipped({a})));
}

TEST_F(CRotationNames, LastFlagWordOfANameListedTwiceReleasesBoth) {
    const SBackup a = holder("a.xml", "1", "s1", 8);
    const SObserved observed = decided("encA##lun1;s1", {withFlagWord(a, 4), a});
    const std::int32_t first = observed.flags.front();
    ASSERT_THAT(first, testing::AnyOf(1, 2));
    EXPECT_EQ(observed,
              selected(kOnlyTarget, {first, first}, matched({a, a}) + claimed({a}) + notClaimed({a}),
                       kOneTargetReleased, {{a, first}, {a, first == 1 ? 2 : 1}}));
}

// Each name is the start of a longer one; no entry gets the state of another.
TEST_F(CRotationNames, StateIsGivenToTheWholeNameOnly) {
    const SBackup oldest = holder("ab", "1", "s1", 16);
    const SBackup middle = holder("a", "2", "s2", 16);
    const SBackup newest = holder("abc", "3", "s3", 16);
    EXPECT_EQ(call("encA##lun1;s1;s2;s3", {newest, middle, oldest}).flags, (Flags{0, 0, 2}));
}

TEST_F(CRotationNames, ExclusionIsOfTheWholeNameOnly) {
    const SBackup oldest = holder("ab", "1", "s1");
    const SBackup middle = holder("a", "2", "s2", 4);
    const SBackup newest = holder("abc", "3", "s3", 4);
    EXPECT_EQ(call("encA##lun1;s1;s2;s3", {newest, middle, oldest}).flags, (Flags{0, 0, 2}));
}

// Two names of one file are two backups with a flag word each.
TEST_F(CRotationNames, OneFileUnderTwoNamesIsTwoBackups) {
    const SBackup plain = holder("a.xml", "1", "s1", 4);
    const SObserved observed = call("encA##lun1;s1;s2", {plain, {path("./a.xml"), 4}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s2]");
    // One of the two claims, the other finds the target used.
    EXPECT_THAT(observed.flags, testing::UnorderedElementsAre(0, 1));
}

TEST_F(CRotationNames, PercentSignsAreTracedAsTheyStand) {
    const SNode document = backup("100%s", {{"encA%s##lun%n", "encA%s##snap%d"}});
    const SBackup a = given("a%s%n.xml", document);
    const SBackup b = given("b%d.xml", document, 4);
    const SBackup c = given("c%x.xml", backup("99%s", {{"%s##%n", "%d##%s"}}));
    EXPECT_EQ(decided("encA%s##lun%n;snap%d", {a, c}),
              selected("[encA%s##lun%n;encA%s##snap%d]", {2, 1}, matched({a}) + invalid({c}) + claimed({a}),
                       {"[encA%s:lun%n](Used)", "{snap%d,Available}"}, {{a, 2}, {c, 1}}));
    EXPECT_EQ(decided("encA%s##lun%n;snap%d", {b}),
              notSelected({4}, matched({b}) + claimed({b}) + skipped({b})));
}

TEST_F(CRotationNames, PercentSignsInTheNameOfAMissingFileArePrintedAsTheyStand) {
    const std::string missing = path("%s%n%d.xml");
    SObserved expected =
        selected(kOnlyTarget, {0}, missingFile(), {"[encA:lun1](Available)", "{s1,Available}"}, {});
    expected.standardOutput = "ERROR: failed to load FIID file [" + missing + "]\n";
    EXPECT_EQ(decided("encA##lun1;s1", {{missing, 0}}), expected);
}

TEST_F(CRotationNames, RejectedConfigurationLeavesWhatStandsBeforeItToTheRotation) {
    const SBackup a = holder("a.xml", "1", "s1");
    const SBackup b = given("b.xml", backup("2", {{"encB##lun2", "encB##t1"}}), 1);
    EXPECT_EQ(decided("encA##lun1;s1&lun2;t1&encB##lun2;t1", {a, b}),
              selected(kOnlyTarget, {2, 1},
                       rejected("lun2", "enclosure data") + matched({a}) + invalid({b}) + claimed({a}),
                       kOneTargetReleased, {{a, 2}, {b, 1}}));
}

TEST_F(CRotationNames, RejectedConfigurationWithNothingBeforeItSelectsNothing) {
    const SBackup a = holder("a.xml", "1", "s1");
    EXPECT_EQ(decided("lun1;s1", {a}),
              selected("", {1}, rejected("lun1", "enclosure data") + invalid({a}), {}, {{a, 1}}));
}

TEST_F(CRotationNames, TargetIsLookedForInEveryConfigurationWithItsFirstTarget) {
    const SBackup a = holder("a.xml", "1", "s2");
    EXPECT_EQ(decided("encA##lun1;s1&encA##lun1;s2", {a}),
              selected("[encA##lun1;encA##s1][encA##lun1;encA##s2]", {2}, matched({a}) + claimed({a}),
                       {"[encA:lun1](Available)", "{s1,Available}", "[encA:lun1](Used)", "{s2,Available}"},
                       {{a, 2}}));
}

TEST_F(CRotationNames, OfATargetConfiguredTwiceTheFirstIsHeld) {
    const SBackup older = holder("older.xml", "1", "s1");
    const SBackup newer = holder("newer.xml", "2", "s1");
    EXPECT_EQ(decided("encA##lun1;s1;s1&encA##lun1;s1", {older, newer}),
              selected("[encA##lun1;encA##s1][encA##lun1;encA##s1]", {1, 0},
                       matched({older, newer}) + claimed({newer}) + notClaimed({older}),
                       {"[encA:lun1](Used)", "{s1,Used}", "{s1,Available}", "[encA:lun1](Available)",
                        "{s1,Available}"},
                       {{older, 1}, {newer, 0}}));
}

TEST_F(CRotationNames, OfNodesWithOneObjidTheLastAltobjidCounts) {
    const SNode malformed{{{"objid", udid("encA##lun1")}, {"altobjid", "bad"}}, {}};
    const SNode first{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##s1")}}, {malformed}};
    const SNode last{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##s2")}}, {}};
    const SBackup a = given("a.xml", SNode{{{"timeStamp", "1"}}, {first, last}});
    EXPECT_EQ(decided("encA##lun1;s1;s2", {a}),
              selected(kOnlyTarget, {0}, matched({a}) + claimed({a}),
                       {"[encA:lun1](Used)", "{s1,Available}", "{s2,Used}"}, {{a, 0}}));
}

// What an objid and an altobjid must be for a backup to hold encA##lun1's target s1 or ##bare.
TEST_F(CRotationNames, IdentifiersMatchByTheirWholeEnclosureAndDevice) {
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
        const SObserved observed = call("encA##lun1;s1;##bare", {a});
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.flags, Flags{row.isMatch ? 0 : 1});
    }
}

}  // namespace
}  // namespace fi_test
