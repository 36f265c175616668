#include "cli/outcome/request.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::parseRequest;
using fi_rotate::SCall;
using fi_rotate::toRequest;
using fi_test::contentOf;
using fi_test::example;
using fi_test::exampleBackups;
using fi_test::runFiRotate;
using testing::HasSubstr;

TEST(FiRotateRequest, HoldsConfigurationNamesAndFlagWords) {
    const SCall call = parseRequest(
        R"({"configuration": "encA##lun1;snap1",
            "backups": [{"file": "a.xml", "flag_word": 4}, {"flag_word": -1, "file": "b.xml"}]})");
    EXPECT_EQ(call.configuration, "encA##lun1;snap1");
    ASSERT_EQ(call.backups.size(), 2U);
    EXPECT_EQ(call.backups[0].file, "a.xml");
    EXPECT_EQ(call.backups[0].flagWord, 4);
    EXPECT_EQ(call.backups[1].file, "b.xml");
    EXPECT_EQ(call.backups[1].flagWord, -1);
}

TEST(FiRotateRequest, IsRefusedWithWhatIsWrongAndWhere) {
    const struct {
        const char* text;
        const char* fault;
    } rows[] = {
        {"", "it is not JSON; the error is at byte 1"},
        {"{\"configuration\": x}", "it is not JSON; the error is at byte 19"},
        {"[]", "the request is not an object"},
        {R"({"backups": []})", "the request has no \"configuration\""},
        {R"({"configuration": ""})", "the request has no \"backups\""},
        {R"({"configuration": "", "backups": [], "flags": []})", "the request has the unknown key \"flags\""},
        {R"({"configuration": 1, "backups": []})", "\"configuration\" of the request is not a string"},
        {R"({"configuration": "a\u0000b", "backups": []})",
         "\"configuration\" of the request contains a NUL character"},
        {R"({"configuration": "", "backups": {}})", "\"backups\" of the request is not an array"},
        {R"({"configuration": "", "backups": ["a.xml"]})", "backup 1 is not an object"},
        {R"({"configuration": "", "backups": [{"file": "a"}]})", "backup 1 has no \"flag_word\""},
        {R"({"configuration": "", "backups": [{"file": null, "flag_word": 0}]})",
         "\"file\" of backup 1 is not a string"},
        {R"({"configuration": "", "backups": [{"file": "a", "flag_word": 0},
             {"file": "b\u0000", "flag_word": 0}]})",
         "\"file\" of backup 2 contains a NUL character"},
        {R"({"configuration": "", "backups": [{"file": "a", "flag_word": 2147483648}]})",
         "\"flag_word\" of backup 1 is not a whole number of 32 bits"},
        {R"({"configuration": "", "backups": [{"file": "a", "flag_word": -2147483649}]})",
         "\"flag_word\" of backup 1 is not a whole number of 32 bits"},
        {R"({"configuration": "", "backups": [{"file": "a", "flag_word": 18446744073709551615}]})",
         "\"flag_word\" of backup 1 is not a whole number of 32 bits"},
        {R"({"configuration": "", "backups": [{"file": "a", "flag_word": 0.5}]})",
         "\"flag_word\" of backup 1 is not a whole number of 32 bits"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        try {
            parseRequest(row.text);
            ADD_FAILURE() << "was not refused";
        } catch (const std::invalid_argument& fault) {
            EXPECT_STREQ(fault.what(), row.fault);
        }
    }
}

TEST(FiRotateRequest, ComesBackAsItWasWritten) {
    SCall call;
    call.configuration = "enc\"A\"##lun\\1;sn\xC3\xA4p1\n&\t";
    call.backups.resize(2);
    call.backups[0].file = "a b'\".xml";
    call.backups[0].flagWord = 2147483647;
    call.backups[1].file = "";
    call.backups[1].flagWord = -2147483647 - 1;
    const SCall again = parseRequest(toRequest(call));
    EXPECT_EQ(again.configuration, call.configuration);
    ASSERT_EQ(again.backups.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(again.backups[i].file, call.backups[i].file);
        EXPECT_EQ(again.backups[i].flagWord, call.backups[i].flagWord);
    }
}

TEST(FiRotateRequest, CannotBeWrittenOfTextsThatAreNotUtf8) {
    SCall call;
    call.backups.resize(1);
    call.backups[0].file = "a\xFF.xml";
    EXPECT_THROW(toRequest(call), std::invalid_argument);
}

TEST(FiRotateRequest, SavedFromACallMakesTheSameCall) {
    const fi_test::CTemporaryFolder folder;
    const std::string request = folder.path("request.json");
    std::vector<std::string> arguments{"select",         "--json",
                                       "--config-file",  example("resource.conf"),
                                       "--exclude",      exampleBackups().front(),
                                       "--save-request", request};
    for (const std::string& backup : exampleBackups()) {
        arguments.push_back(backup);
    }
    const auto saved = runFiRotate(arguments);
    const auto again = runFiRotate({"select", "--json", "--request", request});
    EXPECT_EQ(saved.exitStatus, 0);
    EXPECT_EQ(again.exitStatus, 0);
    EXPECT_THAT(saved.output, HasSubstr("\"rotated\""));
    EXPECT_EQ(again.output, saved.output);
}

TEST(FiRotateRequest, IsSavedOfACallWithoutASelectionToo) {
    const fi_test::CTemporaryFolder folder;
    const std::string request = folder.path("request.json");
    EXPECT_EQ(runFiRotate({"select", "--config", "encA##lun1", "--save-request", request}).exitStatus, 3);
    EXPECT_EQ(contentOf(request), "{\n  \"configuration\": \"encA##lun1\",\n  \"backups\": []\n}\n");
}

TEST(FiRotateRequest, IsNotWrittenWhenItCannotBeSavedWhole) {
    const fi_test::CTemporaryFolder folder;
    const std::string request = folder.path("request.json");
    const auto result =
        runFiRotate({"select", "--config", "encA##lun1;s", "--save-request", request, "a\xFF.xml"});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_THAT(result.error, HasSubstr("--save-request: cannot save: \"a\\xFF.xml\" is not UTF-8"));
    EXPECT_EQ(contentOf(request), "");
    const auto full = runFiRotate({"select", "--config", "encA##lun1;s", "--save-request", "/dev/full"});
    EXPECT_EQ(full.exitStatus, 1);
    EXPECT_EQ(full.output, "");
}

}  // namespace
