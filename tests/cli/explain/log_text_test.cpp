#include "cli/explain/log.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

using fi_rotate::CLogText;

struct SPrefix {
    const char* name;
    const char* first;
    const char* later;
};

class FiRotateLogText : public testing::TestWithParam<SPrefix> {};

TEST_P(FiRotateLogText, FindsEveryKindOfLineBehindAPrefix) {
    CLogText texts;
    const std::string first = GetParam().first;
    const std::string later = GetParam().later;
    const std::string named = "fi_process_backups : parsed [a.xml]";
    EXPECT_EQ(texts.find(first + named), named);
    for (const char* const text :
         {" [UDID##v##m##A##x]", "\t\t {UDID##v##m##A##1}", "\t <0 all>", " <-3 >", "[A:x](Used)",
          "{1,Available}", "ERROR: UDID##v", "CFiResourceParser::parse : [A][x]",
          "CFiResourceManager::print : printing resource set"}) {
        EXPECT_EQ(texts.find(later + text), text);
    }
}

TEST_P(FiRotateLogText, PassesOverWhatTheHostWrites) {
    CLogText texts;
    texts.find(std::string(GetParam().first) + "fi_process_backups : parsed [a.xml]");
    for (const char* const noise : {"starting", "", "see [1]", "[A:x](free)", "{}", "done <5 s>."}) {
        EXPECT_EQ(texts.find(GetParam().later + std::string(noise)), std::nullopt) << noise;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Prefixes, FiRotateLogText,
    testing::Values(SPrefix{"None", "", ""}, SPrefix{"Level", "4 ", "3 "},
                    SPrefix{"Syslog",
                            "Nov  1 09:59:59 host backupd[99]: ", "Nov 21 10:00:00 host backupd[4711]: "},
                    SPrefix{"Iso", "2026-11-21T07:00:00.123Z INFO ", "2026-11-21T07:00:00.9Z WARNING "},
                    SPrefix{"Brackets", "[  17][t:0x7f] <trace> ", "[4711][t:0xffee12] <error> "},
                    SPrefix{"Tab", "07:00\t", "19:30\t"}),
    [](const auto& row) { return row.param.name; });

TEST(FiRotateLogText, KnowsNoUnnamedLineBeforeANamedOne) {
    CLogText texts;
    EXPECT_EQ(texts.find(" [UDID##v##m##A##x]"), std::nullopt);
    EXPECT_EQ(texts.find("[A:x](Used)"), std::nullopt);
}

TEST(FiRotateLogText, PutsLineBreaksBackIntoLinesOfFiRotate) {
    CLogText texts;
    EXPECT_EQ(texts.find(R"(4 fi_process_backups : parsed [a\nb\rc\\nd\t])"),
              "fi_process_backups : parsed [a\nb\rc\\nd\\t]");
    EXPECT_EQ(texts.find(R"(info: fi_process_backups : parsed [a\n])"),
              R"(fi_process_backups : parsed [a\n])");
}

}  // namespace
