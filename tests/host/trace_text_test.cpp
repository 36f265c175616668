#include "host/trace_text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::argumentsOf;
using fi_rotate::ETraceText;
using testing::ElementsAre;
using testing::Optional;

TEST(HostTraceText, TakesLinesApart) {
    EXPECT_THAT(argumentsOf(ETraceText::kParsed, "fi_process_backups : parsed [a.xml]"),
                Optional(ElementsAre("a.xml")));
    EXPECT_THAT(argumentsOf(ETraceText::kTarget, "CFiResourceParser::parse : [A][1]"),
                Optional(ElementsAre("A", "1")));
    EXPECT_THAT(argumentsOf(ETraceText::kFirstTarget, "[A:x](Used)"),
                Optional(ElementsAre("A", "x", "Used")));
    EXPECT_THAT(argumentsOf(ETraceText::kNodeType, "\t <7 full>"), Optional(ElementsAre("\t", "7", "full")));
    EXPECT_THAT(argumentsOf(ETraceText::kFinalState, "fi_process_backups : parsed [a.xml] state=[2]"),
                Optional(ElementsAre("a.xml", "2")));
    EXPECT_THAT(argumentsOf(ETraceText::kResourceSet, "CFiResourceManager::print : printing resource set"),
                Optional(ElementsAre()));
}

// Names may hold the text that stands between two arguments.
TEST(HostTraceText, TakesTheLastPlaceThatFitsForTheEndOfAName) {
    EXPECT_THAT(argumentsOf(ETraceText::kClaimed, "fi_process_backups : [RESERVE GOOD] a - T: b - T: 1"),
                Optional(ElementsAre("a - T: b", "1")));
    EXPECT_THAT(argumentsOf(ETraceText::kFurtherTarget, "{a,b,Used}"), Optional(ElementsAre("a,b", "Used")));
    EXPECT_THAT(argumentsOf(ETraceText::kTarget, "CFiResourceParser::parse : [A][1][2]"),
                Optional(ElementsAre("A][1", "2")));
}

TEST(HostTraceText, TakesTheFirstPlaceThatFitsBehindIndentation) {
    EXPECT_THAT(argumentsOf(ETraceText::kNodeObjid, " [a [b]]"), Optional(ElementsAre("", "a [b]")));
}

TEST(HostTraceText, KnowsALineThatLostTheBlankAtItsEnd) {
    const std::string line = "fi_process_backups :  Fiid [a] exclude rotation flag [4]";
    EXPECT_THAT(argumentsOf(ETraceText::kFlagWord, line + " "), Optional(ElementsAre("a", "4")));
    EXPECT_THAT(argumentsOf(ETraceText::kFlagWord, line), Optional(ElementsAre("a", "4")));
}

TEST(HostTraceText, TakesNoOtherLineApart) {
    for (const std::string_view line :
         {"", "fi_process_backups : parsed", "fi_process_backups : parsed [a.xml",
          "fi_process_backups : parsed [", "x fi_process_backups : parsed [a.xml]",
          "fi_process_backups : parsed [a.xml] x"}) {
        EXPECT_EQ(argumentsOf(ETraceText::kParsed, line), std::nullopt) << line;
    }
    EXPECT_EQ(argumentsOf(ETraceText::kFirstTarget, "[A](Used)"), std::nullopt);
    EXPECT_EQ(argumentsOf(ETraceText::kResourceSet, "CFiResourceManager::print : printing resource sets"),
              std::nullopt);
}

TEST(HostTraceText, KnowsTheFormatsOfTheLibrary) {
    EXPECT_EQ(fi_rotate::kindOf("Entering %s\n"), ETraceText::kEntering);
    EXPECT_EQ(fi_rotate::kindOf("fi_process_backups : parsed [%s] state=[%d]"), ETraceText::kFinalState);
    EXPECT_EQ(fi_rotate::kindOf("Entering %s"), std::nullopt);
    EXPECT_EQ(fi_rotate::kindOf(""), std::nullopt);
}

// Lines with a flag word have the level of failures and report none. The text for a malformed identifier is
// left out, because lines that a host writes itself may begin like it.
TEST(HostTraceText, TellsFailuresFromTheRest) {
    EXPECT_TRUE(fi_rotate::isCertainFailure("fi_process_backups : no resource is available"));
    EXPECT_TRUE(fi_rotate::isCertainFailure("CFiFiidLoader::load: ERROR: failed to load FIID file"));
    EXPECT_FALSE(fi_rotate::isCertainFailure("fi_process_backups :  Fiid [a] exclude rotation flag [4] "));
    EXPECT_FALSE(fi_rotate::isCertainFailure("fi_process_backups : parsed [a.xml]"));
    EXPECT_FALSE(fi_rotate::isCertainFailure("ERROR: disk full"));
    EXPECT_TRUE(fi_rotate::reportsFailure(ETraceText::kMalformedIdentifier));
    EXPECT_FALSE(fi_rotate::reportsFailure(ETraceText::kFlagWord));
    EXPECT_FALSE(fi_rotate::reportsFailure(ETraceText::kSelection));
}

TEST(HostTraceText, KnowsLinesOfTheParserAndThoseThatReject) {
    EXPECT_TRUE(fi_rotate::isOfParser("CFiResourceParser::parse : [A][1]"));
    EXPECT_FALSE(fi_rotate::isOfParser("fi_process_backups : parsed [a.xml]"));
    for (const std::string_view fault : {"targets", "device data", "enclosure data"}) {
        EXPECT_TRUE(fi_rotate::rejectsConfiguration(
            "CFiResourceParser::parse : resource configuration \"y\" has no " + std::string(fault) +
            " specified."))
            << fault;
    }
    EXPECT_FALSE(fi_rotate::rejectsConfiguration("CFiResourceParser::parse : Resource specification [y]"));
    EXPECT_FALSE(fi_rotate::rejectsConfiguration("CFiResourceParser::parse : [A][1]"));
}

TEST(HostTraceText, TakesForALineOfATreeOnlyWhatTabsIndent) {
    EXPECT_EQ(fi_rotate::nodeTextIn(ETraceText::kNodeObjid, "\t\t [a]"), "a");
    EXPECT_EQ(fi_rotate::nodeTextIn(ETraceText::kNodeAltobjid, " {}"), "");
    EXPECT_EQ(fi_rotate::nodeTextIn(ETraceText::kNodeObjid, "volume [a]"), std::nullopt);
    EXPECT_EQ(fi_rotate::nodeTextIn(ETraceText::kNodeObjid, "\t\t {a}"), std::nullopt);
}

TEST(HostTraceText, KnowsLinesWithoutTheNameOfAnOperation) {
    for (const std::string_view line : {" [a]", "\t {a}", " <0 >", "[A:x](Available)", "[A:x](Used)",
                                        "{1,Invalid}", "{1,Unknown}", "ERROR: a"}) {
        EXPECT_TRUE(fi_rotate::isUnnamed(line)) << line;
    }
    for (const std::string_view line :
         {"", "[A:x](Free)", "{1 of 2}", "{1,2}", "fi_process_backups : parsed [a]", "volume [a]"}) {
        EXPECT_FALSE(fi_rotate::isUnnamed(line)) << line;
    }
}

TEST(HostTraceText, WritesALineOfATraceFile) {
    EXPECT_EQ(fi_rotate::toTraceLine(4, ""), "4 \n");
    EXPECT_EQ(fi_rotate::toTraceLine(3, "a\nb\rc\\d"), "3 a\\nb\\rc\\\\d\n");
}

TEST(HostTraceText, PutsLineBreaksBack) {
    for (const std::string_view text : {"", "a", "a\nb\rc\\d", "\\n", "\\", "\n\n\\\\"}) {
        std::string line = fi_rotate::toTraceLine(4, text);
        line.pop_back();
        EXPECT_EQ(fi_rotate::withoutEscapes(line.substr(2)), text);
    }
    EXPECT_EQ(fi_rotate::withoutEscapes("a\\tb\\"), "a\\tb\\");
    // The backslash is the last character of the text; what stands behind the text must not be read.
    EXPECT_EQ(fi_rotate::withoutEscapes(std::string_view("a\\n").substr(0, 2)), "a\\");
}

TEST(HostTraceText, KnowsAFileThatItWroteByItsFirstLine) {
    EXPECT_TRUE(fi_rotate::isTraceFileText("4 CFiResourceParser::parse : Resource specification [A##x;1]\n"));
    EXPECT_TRUE(fi_rotate::isTraceFileText("9 CFiResourceParser::parse : "));
    EXPECT_TRUE(fi_rotate::isTraceFileText("0 CFiResourceParser::parse : "));
    for (const std::string_view text :
         {"", "4", "4 fi_process_backups : parsed [a]",
          "CFiResourceParser::parse : ", "/ CFiResourceParser::parse : ", ": CFiResourceParser::parse : "}) {
        EXPECT_FALSE(fi_rotate::isTraceFileText(text)) << text;
    }
    EXPECT_TRUE(fi_rotate::isOwnPrefix("3 "));
    EXPECT_TRUE(fi_rotate::isOwnPrefix("4 "));
    EXPECT_FALSE(fi_rotate::isOwnPrefix("5 "));
    EXPECT_FALSE(fi_rotate::isOwnPrefix(""));
}

}  // namespace
