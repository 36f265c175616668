#include "host/account_reader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fi_rotation/fi_process_backups.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::CAccountReader;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using Lines = std::vector<std::string>;

Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

Lines tree(const std::string& altobjid) {
    return {" [UDID##a##b##A##x]", " {" + altobjid + "}", " <0 >"};
}

// The newer backup is rotated, because the older one is excluded.
const Lines kBeginning{
    "CFiResourceParser::parse : Resource specification [A##x;1;2]",
    "CFiResourceParser::parse : [A][x]",
    "CFiResourceParser::parse : [A][1]",
    "CFiResourceParser::parse : [A][2]",
    "fi_process_backups :  Fiid [rotated] exclude rotation flag [0] ",
    "fi_process_backups :  Fiid [kept] exclude rotation flag [4] ",
};
const Lines kTreeOfRotated = tree("UDID##a##b##A##1");
const Lines kTreeOfKept = tree("UDID##a##b##A##2");
const Lines kLoading = Lines{"fi_process_backups : parsed [rotated]"} + kTreeOfRotated +
                       Lines{"fi_process_backups : parsed [kept]"} + kTreeOfKept +
                       Lines{"CFiResourceManager::print : printing resource set", "[A:x](Available)",
                             "{1,Available}", "{2,Available}"};
const Lines kChecks{
    "fi_process_backups : [RESOURCES MATCH] [rotated]",
    "fi_process_backups : [RESOURCES MATCH] [kept]",
};
const Lines kClaims{
    "fi_process_backups : [RESERVE GOOD] rotated - T: 2",
    "fi_process_backups : [RESERVE GOOD] kept - T: 1",
};
const Lines kSkip{"fi_process_backups : Skipped Rotation for fiid [kept]"};
const Lines kEnd = Lines{"fi_process_backups : resource_config_string [[A##x;A##1]] ",
                         "CFiResourceManager::print : printing resource set",
                         "[A:x](Used)",
                         "{1,Available}",
                         "{2,Used}",
                         "fi_process_backups : parsed [kept] state=[0]"} +
                   kTreeOfKept + Lines{"fi_process_backups : parsed [rotated] state=[2]"} + kTreeOfRotated;

CAccountReader readerOf(const Lines& lines) {
    CAccountReader reader;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        reader.read(lines[i], i + 1);
    }
    return reader;
}

TEST(HostAccountReader, KeepsWhatEveryPassDid) {
    const CAccountReader reader = readerOf(kBeginning + kLoading + kChecks + kClaims + kSkip + kEnd);
    EXPECT_THAT(reader.gaps(), IsEmpty());
    EXPECT_TRUE(reader.isFirstSetPrinted());
    EXPECT_TRUE(reader.isEnded());
    EXPECT_THAT(reader.flagWords, ElementsAre(Pair("rotated", 0), Pair("kept", 4)));
    EXPECT_THAT(reader.claims, ElementsAre(Pair(0, true), Pair(1, true)));
    EXPECT_THAT(reader.skipped, ElementsAre(1));
    EXPECT_THAT(reader.failedCheck, IsEmpty());
    EXPECT_THAT(reader.oldestFirst, ElementsAre(1, 0));
    EXPECT_FALSE(reader.isWithoutSelection);
    EXPECT_FALSE(reader.malformed.has_value());
}

TEST(HostAccountReader, KeepsConfigurationsAndBackups) {
    const CAccountReader reader = readerOf(kBeginning + kLoading + kChecks + kClaims + kSkip + kEnd);
    ASSERT_THAT(reader.account.configurations, SizeIs(1));
    EXPECT_EQ(reader.account.configurations[0].first, "A##x");
    EXPECT_THAT(reader.account.configurations[0].targets, ElementsAre("A##1", "A##2"));
    EXPECT_EQ(reader.account.selection, "[A##x;A##1]");
    ASSERT_THAT(reader.account.backups, SizeIs(2));
    EXPECT_EQ(reader.account.backups[0].file, "rotated");
    EXPECT_EQ(reader.account.backups[0].timeStamp, "2");
    EXPECT_EQ(reader.account.backups[0].state, FI_BACKUP_ROTATED);
    const auto pairs = reader.account.backups[0].pairs.inOrder();
    ASSERT_THAT(pairs, SizeIs(1));
    EXPECT_EQ(pairs[0].objid, "UDID##a##b##A##x");
    EXPECT_EQ(pairs[0].altobjid, "UDID##a##b##A##1");
    EXPECT_EQ(reader.account.backups[1].state, FI_BACKUP_KEPT);
}

TEST(HostAccountReader, PassesOverLinesOfOthers) {
    const Lines noise{"started", "", "{1 of 2}", "fi_process_backups : something new"};
    const CAccountReader reader =
        readerOf(kBeginning + noise + kLoading + noise + kChecks + noise + kClaims + kSkip + kEnd + noise);
    EXPECT_THAT(reader.gaps(), IsEmpty());
    EXPECT_TRUE(reader.isEnded());
}

TEST(HostAccountReader, NamesTheLinesThatACallLacks) {
    const Lines withoutStart(kBeginning.begin() + 1, kBeginning.end());
    const Lines withoutFlagWord(kBeginning.begin(), kBeginning.end() - 1);
    Lines withoutTarget = kBeginning;
    withoutTarget.erase(withoutTarget.begin() + 3);
    Lines withoutPrinted = kLoading;
    withoutPrinted.pop_back();
    const Lines withoutTree =
        Lines{"fi_process_backups : parsed [rotated]"} + Lines(kLoading.begin() + 4, kLoading.end());
    const Lines oneCheck(kChecks.begin(), kChecks.begin() + 1);
    const Lines oneClaim(kClaims.begin(), kClaims.begin() + 1);
    const struct {
        Lines lines;
        Lines gaps;
    } rows[] = {
        {withoutStart + kLoading + kChecks + kClaims + kSkip + kEnd,
         {"its beginning, with the configuration: give the earlier log too, before this one"}},
        {kBeginning + withoutPrinted + kChecks, {"lines of the configuration"}},
        {kBeginning + withoutTree + kChecks,
         {"lines somewhere before line 8, \"fi_process_backups : parsed [kept]\""}},
        {kBeginning + kLoading + oneCheck + kClaims,
         {"1 of 2 lines that say whether a backup agrees with the configuration"}},
        {kBeginning + kLoading + kChecks + oneClaim + kSkip,
         {"1 of 2 lines that say whether a backup claimed its targets"}},
        // Without the flag word 4, nobody knows that a backup is excluded.
        {withoutFlagWord + kLoading + kChecks + kClaims + kSkip + kEnd,
         {"the flag word of \"kept\"; lines of two calls may look like one here"}},
        {kBeginning + kLoading + kChecks + kClaims + kEnd, {"lines about 1 of 1 excluded backups"}},
        // A backup that is not excluded was skipped.
        {withoutFlagWord + Lines{"fi_process_backups :  Fiid [kept] exclude rotation flag [0] "} + kLoading +
             kChecks + kClaims + kSkip + kEnd,
         {"lines that say which backups are excluded, or which were rotated"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(readerOf(row.lines).gaps(), row.gaps) << row.gaps.front();
    }
    EXPECT_THAT(readerOf(withoutTarget + kLoading + kChecks).gaps(),
                ElementsAre("lines somewhere before line 17, \"{2,Available}\""));
}

TEST(HostAccountReader, NamesOnlyTheBeginningWhereThatIsMissing) {
    const Lines all = kBeginning + kLoading + kChecks + kClaims + kSkip + kEnd;
    for (std::size_t lost = 1; lost < all.size() - kTreeOfRotated.size(); ++lost) {
        const CAccountReader reader =
            readerOf(Lines(all.begin() + static_cast<std::ptrdiff_t>(lost), all.end()));
        EXPECT_THAT(reader.gaps(), ElementsAre(testing::StartsWith("its beginning, "))) << all[lost];
    }
}

TEST(HostAccountReader, NamesNoMissingLinesWhenACallBreaksOffAtItsEnd) {
    const Lines all = kBeginning + kLoading + kChecks + kClaims + kSkip + kEnd;
    for (std::size_t size = 1; size <= all.size(); ++size) {
        const CAccountReader reader =
            readerOf(Lines(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_THAT(reader.gaps(), IsEmpty()) << all[size - 1];
        // A call has ended although lines of the last tree may still follow.
        EXPECT_EQ(reader.isEnded(), size >= all.size() - kTreeOfRotated.size()) << all[size - 1];
    }
}

TEST(HostAccountReader, TakesNoPrintedTargetThatTheParserDidNotRead) {
    const std::string heading = "CFiResourceManager::print : printing resource set";
    const CAccountReader another = readerOf(kBeginning + Lines{heading, "[A:x](Available)", "{7,Available}"});
    ASSERT_THAT(another.account.configurations, SizeIs(1));
    EXPECT_THAT(another.account.configurations[0].targets, IsEmpty());
    EXPECT_THAT(another.gaps(), ElementsAre("lines somewhere before line 9, \"{7,Available}\""));
    const CAccountReader anotherFirst = readerOf(kBeginning + Lines{heading, "[A:z](Available)"});
    EXPECT_THAT(anotherFirst.account.configurations, IsEmpty());
    EXPECT_THAT(anotherFirst.gaps(), ElementsAre("lines somewhere before line 8, \"[A:z](Available)\""));
    const CAccountReader withoutFirst = readerOf(kBeginning + Lines{heading, "{1,Available}"});
    EXPECT_THAT(withoutFirst.account.configurations, IsEmpty());
    EXPECT_THAT(withoutFirst.gaps(), ElementsAre("lines somewhere before line 8, \"{1,Available}\""));
}

TEST(HostAccountReader, KnowsAPrintedTargetWhoseDeviceHoldsWhatStandsBehindAnEnclosure) {
    const CAccountReader reader =
        readerOf({"CFiResourceParser::parse : Resource specification [A##x:y;1]",
                  "CFiResourceParser::parse : [A][x:y]", "CFiResourceManager::print : printing resource set",
                  "[A:x:y](Available)"});
    ASSERT_THAT(reader.account.configurations, SizeIs(1));
    EXPECT_EQ(reader.account.configurations[0].first, "A##x:y");
    EXPECT_THAT(reader.gaps(), IsEmpty());
}

// The parser's line has "][" between the two names.
TEST(HostAccountReader, FindsWhereAnEnclosureEndsWhenNamesHoldWhatStandsBehindIt) {
    const CAccountReader reader =
        readerOf({"CFiResourceParser::parse : Resource specification [A][B##x][y:z;1][2;3]",
                  "CFiResourceParser::parse : [A][B][x][y:z]", "CFiResourceParser::parse : [A][B][1][2]",
                  "CFiResourceParser::parse : [A][B][3]", "CFiResourceManager::print : printing resource set",
                  "[A][B:x][y:z](Available)", "{1][2,Available}", "{3,Available}"});
    ASSERT_THAT(reader.account.configurations, SizeIs(1));
    EXPECT_EQ(reader.account.configurations[0].first, "A][B##x][y:z");
    EXPECT_THAT(reader.account.configurations[0].targets, ElementsAre("A][B##1][2", "A][B##3"));
    EXPECT_THAT(reader.gaps(), IsEmpty());
}

TEST(HostAccountReader, NoticesAPrintedTargetThatNoSplitOfTheParsedOneGives) {
    const Lines beginning{"CFiResourceParser::parse : Resource specification [A##x][y]",
                          "CFiResourceParser::parse : [A][x][y]",
                          "CFiResourceManager::print : printing resource set"};
    for (const std::string_view printed :
         {"[A:x:y](Available)", "[A:x][](Available)", "[A:x][yy](Available)", "[:](Available)"}) {
        const CAccountReader reader = readerOf(beginning + Lines{std::string(printed)});
        EXPECT_THAT(reader.account.configurations, IsEmpty()) << printed;
        EXPECT_THAT(reader.gaps(), SizeIs(1)) << printed;
    }
}

TEST(HostAccountReader, TakesNoLineOfABackupThatWasNotLoaded) {
    const Lines others{
        "fi_process_backups : [RESOURCES MATCH] [other]",
        "fi_process_backups : [RESERVE GOOD] other - T: 3",
        "fi_process_backups : Skipped Rotation for fiid [other]",
    };
    for (const std::string& line : others) {
        const CAccountReader reader = readerOf(kBeginning + kLoading + kChecks + Lines{line});
        EXPECT_THAT(reader.claims, IsEmpty());
        EXPECT_THAT(reader.skipped, IsEmpty());
        EXPECT_THAT(reader.gaps(), testing::Contains("lines somewhere before line 21, \"" + line + "\""))
            << line;
    }
}

TEST(HostAccountReader, NamesTheFirstOfTheLinesThatCannotFollow) {
    const Lines twice{"fi_process_backups : [RESERVE GOOD] other - T: 3",
                      "fi_process_backups : [RESERVE GOOD] another - T: 3"};
    EXPECT_THAT(readerOf(kBeginning + kLoading + kChecks + twice).gaps(),
                ElementsAre("lines, the first of them somewhere before line 21, \"" + twice.front() + "\""));
}

TEST(HostAccountReader, NoticesThatATreeLacksALine) {
    for (std::size_t lost = 0; lost < kTreeOfRotated.size(); ++lost) {
        Lines lines = kTreeOfRotated;
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(lost));
        const CAccountReader reader =
            readerOf(kBeginning + Lines{"fi_process_backups : parsed [rotated]"} + lines + kTreeOfKept);
        EXPECT_THAT(reader.gaps(), SizeIs(1)) << kTreeOfRotated[lost];
    }
}

TEST(HostAccountReader, EndsACallWithoutASelection) {
    const Lines noSelection{
        "fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids"};
    const CAccountReader reader = readerOf(kBeginning + kLoading + kChecks + kClaims + kSkip + noSelection);
    EXPECT_TRUE(reader.isWithoutSelection);
    EXPECT_TRUE(reader.isEnded());
    EXPECT_THAT(reader.gaps(), IsEmpty());
    EXPECT_THAT(readerOf(kBeginning + kLoading + kChecks + kClaims + noSelection).gaps(),
                ElementsAre("lines about 1 of 1 excluded backups"));
}

TEST(HostAccountReader, EndsACallWithAMalformedIdentifierOfItsOwn) {
    const Lines loading = Lines{"fi_process_backups : parsed [rotated]"} + tree("UDID##a") +
                          Lines{"CFiResourceManager::print : printing resource set", "[A:x](Available)",
                                "{1,Available}", "{2,Available}"};
    EXPECT_FALSE(readerOf(kBeginning + loading + Lines{"ERROR: disk full"}).isEnded());
    const CAccountReader reader = readerOf(kBeginning + loading + Lines{"ERROR: UDID##a"});
    EXPECT_EQ(reader.malformed, "UDID##a");
    EXPECT_TRUE(reader.isEnded());
}

TEST(HostAccountReader, ExpectsNoPrintOfARejectedConfiguration) {
    const CAccountReader reader = readerOf(
        Lines{"CFiResourceParser::parse : Resource specification [A##x;1&y]",
              "CFiResourceParser::parse : [A][x]", "CFiResourceParser::parse : [A][1]",
              "CFiResourceParser::parse : [][y]",
              "CFiResourceParser::parse : resource configuration \"y\" has no enclosure data specified.",
              "fi_process_backups :  Fiid [rotated] exclude rotation flag [0] ",
              "fi_process_backups : parsed [rotated]"} +
        tree("UDID##x") +
        Lines{"CFiResourceManager::print : printing resource set", "[A:x](Available)", "{1,Available}",
              "fi_process_backups : [RESOURCES MATCH] [rotated]"});
    EXPECT_THAT(reader.gaps(), IsEmpty());
    EXPECT_THAT(reader.account.configurations, SizeIs(1));
}

}  // namespace
