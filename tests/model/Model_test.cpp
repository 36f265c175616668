#include "tests/model/Model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/ModelTestSupport.h"
#include "tests/support/Golden.h"

// The model's answers are compared with answers that were worked out by hand. If the model made the same
// mistake as the library, a comparison of the two would not show it.

namespace fi_model {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

// The document of a backup that holds one target of encA##dev1.
SDocument holding(const std::string& target, const std::string& timeStamp) {
    return {element("Node",
                    joined({data("objid", "UDID##v##m##encA##dev1"),
                            data("altobjid", "UDID##v##m##encA##" + target), data("timeStamp", timeStamp)})),
            false};
}

SCall callWith(const std::string& configuration, const std::vector<SDocument>& documents) {
    SCall call;
    call.configuration = configuration;
    for (std::size_t index = 0; index < documents.size(); ++index) {
        const std::string name = "b" + std::to_string(index) + ".xml";
        call.entries.push_back({name, 0});
        call.files[name] = documents[index];
    }
    call.listSize = static_cast<std::int32_t>(documents.size());
    return call;
}

TEST(Model, TheOnlyTargetIsReleased) {
    const SAnswer answer = predict(callWith("encA##dev1;snap1", {holding("snap1", "1")})).answer;
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.selection, "[encA##dev1;encA##snap1]");
    EXPECT_THAT(answer.flags, ElementsAre(2));
}

TEST(Model, AnExcludedBackupKeepsTheOnlyTarget) {
    SCall call = callWith("encA##dev1;snap1", {holding("snap1", "1")});
    call.entries[0].flag = 12;
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.status, 3);
    EXPECT_EQ(answer.selection, std::nullopt);
    EXPECT_THAT(answer.flags, ElementsAre(12));
    const std::vector<std::string> texts = textsOf(answer.trace);
    EXPECT_EQ(texts[texts.size() - 2], "fi_process_backups : Skipped Rotation for fiid [b0.xml]");
    EXPECT_EQ(texts.back(),
              "fi_process_backups : Resources not availabe, some/all are part of Skip rotation "
              "fiids");
}

TEST(Model, TheNewerOfTwoBackupsWithOneTargetHoldsIt) {
    const SAnswer answer =
        predict(callWith("encA##dev1;snap1", {holding("snap1", "2"), holding("snap1", "1")})).answer;
    EXPECT_EQ(answer.status, 0);
    EXPECT_THAT(answer.flags, ElementsAre(2, 1));
}

TEST(Model, OnlyTheOldestIsReleasedWhenOneTargetIsEnough) {
    const SAnswer answer =
        predict(callWith("encA##dev1;snap1;snap2", {holding("snap1", "999"), holding("snap2", "1000")}))
            .answer;
    EXPECT_EQ(answer.selection, "[encA##dev1;encA##snap2]");
    EXPECT_THAT(answer.flags, ElementsAre(0, 2));
}

TEST(Model, ABackupThatClaimsInPartBlocksWhatItClaimed) {
    SCall call = callWith("encA##dev1;snap1&encB##dev2;snap2", {holding("snap1", "2")});
    call.entries.push_back({"both.xml", 0});
    call.listSize = 2;
    // Pairs are claimed in the order of their objids: "UDID##a", whose target is free, comes first.
    const Tokens free = element("Node", joined({data("objid", "UDID##a##m##encB##dev2"),
                                                data("altobjid", "UDID##a##m##encB##snap2")}));
    const Tokens held = element("Node", joined({data("objid", "UDID##v##m##encA##dev1"),
                                                data("altobjid", "UDID##v##m##encA##snap1")}));
    call.files["both.xml"] = {element("Node", joined({data("timeStamp", "1"), free, held})), false};
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.status, 3);
    EXPECT_THAT(textsOf(answer.trace), Contains("fi_process_backups : both.xml - T: 1"));
    EXPECT_THAT(answer.flags, ElementsAre(0, 0));
}

TEST(Model, TheFirstUnmatchedPairEndsTheCheckBeforeAMalformedOne) {
    SCall call = callWith("encA##dev1;snap1", {{}});
    const Tokens unmatched = element(
        "Node", joined({data("objid", "UDID##a##m##encA##none"), data("altobjid", "UDID##a##m##encA##x")}));
    const Tokens malformed = element("Node", data("objid", "UDID##b"));
    call.files["b0.xml"] = {element("Node", joined({malformed, unmatched})), false};
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.malformed, std::nullopt);
    EXPECT_THAT(answer.flags, ElementsAre(1));
}

TEST(Model, AMalformedIdentifierEndsTheCall) {
    const Tokens tokens =
        element("Node", joined({data("objid", "UDID##v##m##encA##dev1"), data("altobjid", "UDID##v")}));
    SCall call = callWith("encA##dev1;snap1", {{tokens, false}});
    call.entries[0].flag = 2;
    const SAnswer answer = predict(call).answer;
    ASSERT_TRUE(answer.malformed.has_value());
    EXPECT_EQ(answer.malformed->code, 3);
    EXPECT_EQ(answer.malformed->identifier, "UDID##v");
    EXPECT_EQ(answer.trace.back().text, "ERROR: UDID##v");
    EXPECT_EQ(answer.trace.back().level, 3);
    EXPECT_EQ(answer.selection, std::nullopt);
    EXPECT_THAT(answer.flags, ElementsAre(2));
}

TEST(Model, AMissingFileEndsTheLoadingOnly) {
    SCall call =
        callWith("encA##dev1;snap1", {holding("snap1", "1"), holding("snap1", "2"), holding("snap1", "3")});
    call.files.erase("b1.xml");
    call.entries[1].flag = 3;
    call.entries[2].flag = 8;
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.standardOutput, "ERROR: failed to load FIID file [b1.xml]\n");
    EXPECT_THAT(answer.flags, ElementsAre(2, 3, 8));
    EXPECT_THAT(textsOf(answer.trace), Not(Contains("fi_process_backups : parsed [b2.xml]")));
}

TEST(Model, ANameListedTwiceHasTheFlagOfItsLastEntry) {
    SCall call = callWith("encA##dev1;snap1", {holding("snap1", "1")});
    call.entries = {{"b0.xml", 4}, {"b0.xml", 0}};
    call.listSize = 2;
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.status, 0);
    // Both entries have the state of the first of the two in the final order.
    EXPECT_THAT(answer.flags, ElementsAre(2, 2));
}

TEST(Model, TheFirstBackupTakesTheFirstTargets) {
    SCall call = callWith("encA##dev1;snap1;snap2\nencB##dev2;encC##x", {});
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.selection, "[encA##dev1;encA##snap1][encB##dev2;encC##x]");
    EXPECT_EQ(answer.trace.back().text,
              "fi_process_backups : fiidListSize empty, no previous backups to process");
    call.configuration = "encA##dev1";
    EXPECT_EQ(predict(call).answer.status, 3);
    EXPECT_EQ(predict(call).answer.trace.back().text, "fi_process_backups : no resource is available");
    call.configuration = "";
    EXPECT_EQ(predict(call).answer.selection, "");
}

TEST(Model, ANegativeSizeIsAListWithoutEntries) {
    SCall call = callWith("encA##dev1;snap1", {holding("snap1", "1")});
    call.listSize = -1;
    const SAnswer answer = predict(call).answer;
    EXPECT_EQ(answer.selection, "[encA##dev1;encA##snap1]");
    EXPECT_THAT(answer.flags, ElementsAre(0));
}

TEST(Model, BadArgumentsAreRejectedBeforeAnythingElse) {
    std::vector<SCall> calls(3, callWith("encA##dev1;snap1", {holding("snap1", "1")}));
    calls[0].hasFlags = false;
    calls[1].hasResult = false;
    calls[2].configuration.reset();
    for (const SCall& call : calls) {
        const SAnswer answer = predict(call).answer;
        EXPECT_EQ(answer.status, 3);
        EXPECT_THAT(textsOf(answer.trace), ElementsAre("fi_process_backups : Invalid/empty parameter"));
    }
}

// The model must trace what the golden files hold, which were written by hand for the library. In these calls
// one backup holds the only target.
TEST(Model, WholeTracesAreTheGoldenOnes) {
    const struct {
        const char* name;
        std::int32_t flag, listSize;
    } kCases[] = {{"only-target-rotated", 3, 1}, {"only-target-excluded", 5, 1}, {"negative-size", 5, -1}};
    const Tokens node = element(
        "Node", joined({data("objid", "UDID##v##m##encA##lun1"), data("altobjid", "UDID##v##m##encA##snap1"),
                        data("type", "2"), data("splitType", "mirror"), data("timeStamp", "20260101")}));
    for (const auto& one : kCases) {
        SCall call;
        call.configuration = "encA##lun1;snap1";
        call.entries = {{"folder/a.xml", one.flag}};
        call.listSize = one.listSize;
        call.files["folder/a.xml"] = {node, false};
        EXPECT_EQ(fi_test::asGoldenText(predict(call).answer.trace, "folder/"),
                  fi_test::goldenText(one.name));
    }
}

}  // namespace
}  // namespace fi_model
