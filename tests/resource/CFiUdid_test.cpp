#include "resource/CFiUdid.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "resource/CFiUdidException.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

// "idPart1|idPart2|enclosure|device|D" or "|E" for an enclosure identifier.
std::string dump(const CFiUdid& udid) {
    return udid.idPart1 + '|' + udid.idPart2 + '|' + udid.enclosure + '|' + udid.device +
           (udid.isEnclosureId ? "|E" : "|D");
}

struct SGoodRow {
    const char* text;
    const char* parts;
};

template <std::size_t count>
void expectParts(const SGoodRow (&rows)[count]) {
    for (const SGoodRow& row : rows) {
        CFiUdid udid;
        udid.parse(row.text);
        EXPECT_EQ(dump(udid), row.parts) << row.text;
        EXPECT_EQ(udid.reserved, "") << row.text;
    }
}

std::optional<CFiUdidException> thrownBy(CFiUdid& udid, const std::string& text) {
    try {
        udid.parse(text);
    } catch (const CFiUdidException& malformed) {
        return malformed;
    }
    return std::nullopt;
}

TEST(CFiUdid, StartsEmpty) {
    EXPECT_EQ(dump(CFiUdid()), "||||D");
    EXPECT_EQ(CFiUdid().reserved, "");
}

TEST(CFiUdid, SplitsFourPartsAlikeForBothPrefixes) {
    expectParts({{"UDID##w##x##y##z", "w|x|y|z|D"}, {"UEID##w##x##y##z", "w|x|y|z|E"}});
}

TEST(CFiUdid, ThirdOfThreePartsIsTheDeviceOfADeviceAndTheEnclosureOfAnEnclosure) {
    expectParts({{"UDID##a##b##c", "a|b||c|D"}, {"UEID##a##b##c", "a|b|c||E"}});
}

TEST(CFiUdid, KeepsFurtherSeparatorsInTheDevice) {
    expectParts({{"UDID##a##b##c##d##e", "a|b|c|d##e|D"}, {"UDID##a##b##c##d##", "a|b|c|d##|D"}});
}

TEST(CFiUdid, IgnoresWhatStandsBeforeThePrefix) {
    expectParts({{"xyzUDID##a##b##c", "a|b||c|D"},
                 {"##UDID##a##b##c##d", "a|b|c|d|D"},
                 {"xUEID##a##b##c", "a|b|c||E"}});
}

TEST(CFiUdid, PrefersTheDevicePrefixWhereverItStands) {
    expectParts({{"UEID##x##UDID##a##b##c", "a|b||c|D"}, {"UDID##a##b##UEID##c", "a|b|UEID|c|D"}});
}

TEST(CFiUdid, TakesTheFirstOfSeveralPrefixes) {
    expectParts({{"UDID##a##UDID##b##c", "a|UDID|b|c|D"}, {"UEID##a##UEID##b##c", "a|UEID|b|c|E"}});
}

TEST(CFiUdid, AllowsEmptyParts) {
    expectParts({{"UDID####b##c", "|b||c|D"},
                 {"UDID##a####c", "a|||c|D"},
                 {"UDID######c", "|||c|D"},
                 {"UDID##a##b####d", "a|b||d|D"},
                 {"UDID##a##b##c##", "a|b|c||D"},
                 {"UEID##a##b##c##", "a|b|c||E"}});
}

TEST(CFiUdid, SplitsAtTheFirstPairOfARunOfSeparators) {
    expectParts({{"UDID##a###b##c##d", "a|#b|c|d|D"}, {"UDID##a#b##c##d", "a#b|c||d|D"}});
}

struct SBadRow {
    const char* text;
    std::int32_t code;
};

template <std::size_t count>
void expectRejections(const SBadRow (&rows)[count]) {
    for (const SBadRow& row : rows) {
        CFiUdid udid;
        const auto thrown = thrownBy(udid, row.text);
        ASSERT_TRUE(thrown.has_value()) << row.text;
        EXPECT_EQ(thrown->code, row.code) << row.text;
        EXPECT_EQ(thrown->identifier, row.text);
    }
}

TEST(CFiUdid, ThrowsCode1WhenNothingFollowsTheSecondSeparator) {
    expectRejections({{"UDID##a##b##", 1}, {"UEID##a##b##", 1}, {"UDID######", 1}});
}

TEST(CFiUdid, ThrowsCode2WithoutAPrefix) {
    expectRejections({{"", 2}, {"abc", 2}, {"UDID#a##b##c", 2}, {"udid##a##b##c", 2}, {"UDID", 2}});
}

TEST(CFiUdid, ThrowsCode3WithoutASeparatorBehindThePrefix) {
    expectRejections({{"UDID##a", 3}, {"UDID##", 3}, {"UEID##", 3}, {"UEID##a#b", 3}});
}

TEST(CFiUdid, ThrowsCode4WithOnlyOneSeparatorBehindThePrefix) {
    expectRejections({{"UDID##a##b", 4}, {"UEID##a##b", 4}, {"UDID##a##", 4}, {"UDID####", 4}});
}

TEST(CFiUdid, NamesItsReasonsByTheirCodes) {
    EXPECT_EQ(CFiUdidException::kNothingAfterSecondPart, 1);
    EXPECT_EQ(CFiUdidException::kNoPrefix, 2);
    EXPECT_EQ(CFiUdidException::kNoSeparatorAfterFirstPart, 3);
    EXPECT_EQ(CFiUdidException::kNoSeparatorAfterSecondPart, 4);
}

TEST(CFiUdid, ExceptionNamesTheWholeTextWithWhatStoodBeforeThePrefix) {
    expectRejections({{"xyzUDID##a##b##", 1}, {"xyzUEID##a", 3}});
}

TEST(CFiUdid, KeepsThePartsSetBeforeItThrew) {
    CFiUdid udid;
    ASSERT_TRUE(thrownBy(udid, "UDID##a##b").has_value());
    EXPECT_EQ(dump(udid), "a||||D");
    ASSERT_TRUE(thrownBy(udid, "UEID##a##b##").has_value());
    EXPECT_EQ(dump(udid), "a|b|||E");
}

TEST(CFiUdid, ClearsThePartsOfTheParseBefore) {
    CFiUdid udid;
    udid.parse("UEID##a##b##c##d");
    udid.parse("UDID##e##f##g");
    EXPECT_EQ(dump(udid), "e|f||g|D");
    ASSERT_TRUE(thrownBy(udid, "").has_value());
    EXPECT_EQ(dump(udid), "||||D");
}

TEST(CFiUdid, LeavesReservedAsItIs) {
    CFiUdid udid;
    udid.reserved = "kept";
    udid.parse("UDID##a##b##c");
    EXPECT_EQ(udid.reserved, "kept");
}

TEST(CFiUdid, WritesNoTraceLines) {
    CTraceRecorder recorder;
    CFiUdid udid;
    udid.parse("UDID##a##b##c");
    ASSERT_TRUE(thrownBy(udid, "UDID##a").has_value());
    EXPECT_EQ(recorder.take(), Trace());
}

}  // namespace
}  // namespace fi_test
