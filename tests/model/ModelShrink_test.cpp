#include "tests/model/Shrink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>

#include "tests/model/Comparison.h"
#include "tests/model/Generator.h"
#include "tests/model/Model.h"

namespace fi_model {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Optional;

using Alteration = std::function<void(SAnswer&)>;

// A subject that changes one thing in the model's answer.
Subject altered(const Alteration& alteration) {
    return [alteration](const SCall& call) {
        SAnswer answer = predict(call).answer;
        alteration(answer);
        return answer;
    };
}

bool differs(const SCall& call, const Subject& subject) {
    return !compare(call, subject).difference.empty();
}

SCall firstDiffering(const Subject& subject) {
    std::uint64_t seed = 1;
    while (!differs(makeCall(seed), subject)) {
        ++seed;
    }
    return makeCall(seed);
}

void reportRotatedAsKept(SAnswer& answer) {
    std::replace(answer.flags.begin(), answer.flags.end(), 2, 0);
}

TEST(Comparison, AgreesWithAnUnalteredAnswer) {
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        EXPECT_FALSE(differs(makeCall(seed), altered([](SAnswer&) {}))) << seed;
    }
}

struct SAlterationCase {
    const char* what;
    Alteration alteration;
};

TEST(Comparison, NoticesEveryPartOfAnAnswer) {
    const fi_test::STraceLine more{4, "more"};
    const SMalformed thrown{"x", 1};
    const SAlterationCase kCases[] = {
        {"trace line", [](SAnswer& answer) { answer.trace.back().level = 0; }},
        {"trace line", [](SAnswer& answer) { answer.trace.back().text += " "; }},
        {"trace line", [](SAnswer& answer) { answer.trace.pop_back(); }},
        {"trace line", [&more](SAnswer& answer) { answer.trace.push_back(more); }},
        {"exception", [&thrown](SAnswer& answer) { answer.malformed = thrown; }},
        {"status", [](SAnswer& answer) { answer.status = 6; }},
        {"selection", [](SAnswer& answer) { answer.selection = "[]"; }},
        {"flags", [](SAnswer& answer) { answer.flags.push_back(0); }},
        {"standard output", [](SAnswer& answer) { answer.standardOutput += "\n"; }},
    };
    SCall call;
    call.configuration = "encA##dev1;snap1";
    for (const SAlterationCase& one : kCases) {
        EXPECT_THAT(compare(call, altered(one.alteration)).difference, HasSubstr(one.what));
    }
}

TEST(Comparison, NoticesAnotherExceptionCode) {
    const Alteration alteration = [](SAnswer& answer) {
        if (answer.malformed) {
            answer.malformed->code = 9;
        }
    };
    const SCall call = firstDiffering(altered(alteration));
    EXPECT_THAT(compare(call, altered(alteration)).difference, HasSubstr("library: code 9"));
}

SCall tiedBackups() {
    SCall call;
    call.configuration = "encA##dev1;snap1;snap2";
    call.entries = {{"b0.xml", 0}, {"b1.xml", 0}, {"b2.xml", 0}};
    call.listSize = 3;
    for (const SEntry& entry : call.entries) {
        call.files[entry.name] = {{{SToken::EKind::kEmpty, "Node", ""}}, false};
    }
    return call;
}

TEST(Comparison, AcceptsEveryOrderOfTiedBackups) {
    const Subject reversed = [](const SCall& call) { return predict(call, {{2, 1, 0}, {1, 2, 0}}).answer; };
    EXPECT_THAT(compare(tiedBackups(), reversed).difference, IsEmpty());
}

TEST(Comparison, AcceptsNoOtherOrderOfBackupsWithDifferentTimeStamps) {
    SCall call = tiedBackups();
    for (const SEntry& entry : call.entries) {
        call.files[entry.name].tokens = {{SToken::EKind::kOpen, "Node", ""},
                                         {SToken::EKind::kOpen, "timeStamp", ""},
                                         {SToken::EKind::kText, entry.name, ""},
                                         {SToken::EKind::kClose, "timeStamp", ""},
                                         {SToken::EKind::kClose, "Node", ""}};
    }
    const Subject swapped = [](const SCall& asked) {
        SAnswer answer = predict(asked).answer;
        const auto reserves = [](const fi_test::STraceLine& line) {
            return line.text.find("[RESERVE GOOD]") != std::string::npos;
        };
        const auto first = std::find_if(answer.trace.begin(), answer.trace.end(), reserves);
        std::iter_swap(first, first + 1);
        return answer;
    };
    EXPECT_THAT(compare(call, swapped).difference, HasSubstr("[RESERVE GOOD]"));
}

TEST(TieRanks, AreAllOrdersOfEachGroup) {
    EXPECT_EQ(tieRanks({"1", "2"}).size(), 1U);
    EXPECT_EQ(tieRanks({"1", "2", "1"}).size(), 2U);
    EXPECT_EQ(tieRanks({"1", "2", "1", "2", "1"}).size(), 12U);
    EXPECT_EQ(countTieRanks({"1", "2", "1", "2", "1"}), 12U);
    EXPECT_EQ(tieRanks({}).size(), 1U);
}

TEST(Shrink, LeavesOneBackupAndOneConfigurationOfARotation) {
    const Subject subject = altered(reportRotatedAsKept);
    const SCall call = firstDiffering(subject);
    const SCall smallest = shrink(call, [&](const SCall& candidate) { return differs(candidate, subject); });

    EXPECT_THAT(smallest.entries, ElementsAre(Field(&SEntry::flag, 0)));
    EXPECT_EQ(smallest.listSize, 1);
    ASSERT_EQ(smallest.files.size(), 1U);
    EXPECT_THAT(smallest.configuration, Optional(Not(AnyOf(HasSubstr("&"), HasSubstr("\n")))));
    // To hold a target, a document needs one Node with an objid and an altobjid.
    EXPECT_LE(smallest.files.begin()->second.tokens.size(), 8U);
    EXPECT_TRUE(differs(smallest, subject));
}

TEST(Shrink, ExplainsADifferenceInFull) {
    const Subject subject = altered(reportRotatedAsKept);
    const SCall call = firstDiffering(subject);
    const std::string explanation = explainDifference(call, subject);

    EXPECT_THAT(explanation, HasSubstr("seed " + std::to_string(call.seed)));
    EXPECT_THAT(explanation, HasSubstr("configuration: \""));
    EXPECT_THAT(explanation, HasSubstr("list size: 1"));
    EXPECT_THAT(explanation, HasSubstr("document: \""));
    EXPECT_THAT(explanation, HasSubstr("flags\n  model:   { 2 }\n  library: { 0 }"));
}

TEST(Shrink, RemovesEverythingFromACallOfWhichNothingMatters) {
    const SCall smallest = shrink(makeCall(1), [](const SCall&) { return true; });
    EXPECT_THAT(smallest.entries, IsEmpty());
    EXPECT_THAT(smallest.files, IsEmpty());
    EXPECT_EQ(smallest.configuration.value_or(""), "");
    EXPECT_THAT(describe(smallest), Not(HasSubstr("document")));
}

}  // namespace
}  // namespace fi_model
