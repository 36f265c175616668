#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <fi_rotation/fi_process_backups.h>
#include <gtest/gtest.h>

#include "tests/contract/Decision.h"

// How a call checks its arguments and its configuration, and everything about a call without backups.
namespace fi_test {
namespace {

static_assert(std::is_same_v<decltype(&fi_process_backups), EntryPoint>,
              "the declared function is the one that these tests call");

const Trace kInvalid = failure("fi_process_backups : Invalid/empty parameter");
const Trace kNoPrevious =
    progress({"fi_process_backups : fiidListSize empty, no previous backups to process"});

// A call without backups. Its trace begins with the rejections of its configuration.
SObserved firstBackup(const std::string& selection, const Trace& rejections = {}) {
    return {0, std::nullopt, selection, {}, rejections + kNoPrevious, ""};
}

class CEntryPoint : public CRotationTest {};

TEST_F(CEntryPoint, NamesAreTheValuesOfTheContract) {
    EXPECT_EQ(FI_EXCLUDE_ROTATION, 4);
    EXPECT_EQ(FI_STATUS_SUCCESS, 0);
    EXPECT_EQ(FI_STATUS_FAILURE, 3);
    EXPECT_EQ(FI_BACKUP_KEPT, 0);
    EXPECT_EQ(FI_BACKUP_INVALID, 1);
    EXPECT_EQ(FI_BACKUP_ROTATED, 2);
}

TEST_F(CEntryPoint, AcceptsNullFlagsWithoutBackups) {
    char* result = nullptr;
    CTraceRecorder recorder;
    EXPECT_EQ(entryPoint()(nullptr, "encA##lun1;snap1", nullptr, 0, &result), 0);
    EXPECT_STREQ(result, "[encA##lun1;encA##snap1]");
    std::free(result);
    EXPECT_EQ(decisionIn(recorder.take()), kNoPrevious);
}

void expectRejection(const char* configuration, std::int32_t* flags, std::int32_t size,
                     bool hasResult = true) {
    const char* const files[] = {"no such file"};
    char untouched = 'u';
    char* result = &untouched;
    CTraceRecorder recorder;
    EXPECT_EQ(entryPoint()(files, configuration, flags, size, hasResult ? &result : nullptr), 3) << size;
    EXPECT_EQ(decisionIn(recorder.take()), kInvalid) << size;
    EXPECT_EQ(result, &untouched) << size;
}

TEST_F(CEntryPoint, RejectsNullFlagsWithBackupsOrANegativeSize) {
    for (const std::int32_t size : {1, -1, INT32_MIN}) {
        expectRejection("encA##lun1;snap1", nullptr, size);
    }
}

TEST_F(CEntryPoint, RejectsANullResultStringWhateverElseIsPassed) {
    std::int32_t flags[] = {7};
    for (const std::int32_t size : {0, 1, -1}) {
        for (const char* configuration : {"encA##lun1;snap1", "", static_cast<const char*>(nullptr)}) {
            expectRejection(configuration, flags, size, false);
        }
    }
    EXPECT_EQ(flags[0], 7);
}

TEST_F(CEntryPoint, RejectsANullConfigurationWhateverElseIsPassed) {
    std::int32_t flags[] = {7};
    for (const std::int32_t size : {0, 1, -1}) {
        expectRejection(nullptr, flags, size);
    }
    EXPECT_EQ(flags[0], 7);
}

TEST_F(CEntryPoint, TracesARejectionOnceWhenSeveralArgumentsAreBad) {
    expectRejection(nullptr, nullptr, 1, false);
}

TEST_F(CEntryPoint, FirstBackupGetsTheFirstTargetOfEachConfigurationWithoutASeparator) {
    EXPECT_EQ(decided("encA##lun1;encA##snap1;snap2&encB##lun2;encC##snap3", {}),
              firstBackup("[encA##lun1;encA##snap1][encB##lun2;encC##snap3]"));
}

TEST_F(CEntryPoint, FirstBackupFailsWhenAnyConfigurationHasNoFurtherTarget) {
    const Trace lines = kNoPrevious + failure("fi_process_backups : no resource is available");
    for (const char* configuration : {"encA##lun1;snap1&encB##lun2", "encB##lun2&encA##lun1;snap1"}) {
        EXPECT_EQ(decided(configuration, {}), (SObserved{3, std::nullopt, std::nullopt, {}, lines, ""}));
    }
}

// The pointer to the list need not be null: the size of 0 says that it has no entries.
TEST_F(CEntryPoint, FirstBackupLeavesTheFlagsAlone) {
    const SBackup a = given("a.xml", backup("1", {{"encA##lun1", "encA##snap1"}}), 7);
    SObserved expected = firstBackup("[encA##lun1;encA##snap1]");
    expected.flags = {7};
    EXPECT_EQ(decisionOf(callWithSize("encA##lun1;snap1", {a}, 0)), expected);
}

TEST_F(CEntryPoint, NoConfigurationGivesAnEmptySelectionWithoutBackups) {
    for (const std::string configuration : {"", "&", "&\r\n&"}) {
        EXPECT_EQ(decided(configuration, {}),
                  firstBackup("", failure("CFiResourceParser::parse : Invalid resource specification [" +
                                          configuration + "]")));
    }
}

TEST_F(CEntryPoint, NoConfigurationGivesAnEmptySelectionWithBackups) {
    const SBackup a = given("a.xml", SNode{{{"objid", "disk"}}, {}}, 5);
    const Trace invalid = failure("CFiResourceParser::parse : Invalid resource specification [&\n]");
    EXPECT_EQ(decided("&\n", {a}), selected("", {0}, invalid + matched({a}) + claimed({a}), {}, {{a, 0}}));
}

TEST_F(CEntryPoint, RejectedConfigurationDoesNotStopTheCall) {
    const std::string first = "[encA##lun1;encA##snap1]";
    const struct {
        std::string configuration, rejected, missing, selection;
    } rows[] = {
        {"encA##lun1;snap1&lun2;snap2&encC##lun3;snap3", "lun2", "enclosure data", first},
        {"encA##lun1;snap1\nencB##lun2;encB##\nencC##lun3;snap3", "encB##", "device data", first},
        {"encA##lun1;snap1&;;&encC##lun3;snap3", ";;", "targets", first},
        {"##lun1;snap1", "##lun1", "enclosure data", ""},
        {"##;snap1", "##", "device data", ""},
        {"%s%n", "%s%n", "enclosure data", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decided(row.configuration, {}),
                  firstBackup(row.selection, rejected(row.rejected, row.missing)));
    }
}

TEST_F(CEntryPoint, SeparatorsOfAllKindsSeparateConfigurations) {
    EXPECT_EQ(decided("&\n&encA##lun1;snap1\r\nencB##lun2;snap2&", {}),
              firstBackup("[encA##lun1;encA##snap1][encB##lun2;encB##snap2]"));
}

// The backup's claim marks the configuration itself Used; its second further target is still free.
TEST_F(CEntryPoint, OnlyFurtherTargetsAreSearchedForAFreeOne) {
    const SBackup a = given("a.xml", backup("1", {{"encA##lun1", "encA##snap1"}}));
    EXPECT_EQ(decided("encA##lun1;snap1;snap2", {a}),
              selected("[encA##lun1;encA##snap2]", {0}, matched({a}) + claimed({a}),
                       {"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Available}"}, {{a, 0}}));
}

TEST_F(CEntryPoint, ReferencesInTheConfigurationAreDecoded) {
    EXPECT_EQ(decided("encA##&lt;lun&gt;;snap&#39;1&amp;encB##lun2;&quot;&amp;encC##a;b", {}),
              firstBackup("[encA##<lun>;encA##snap'1][encB##lun2;encB##\"][encC##a;encC##b]"));
}

TEST_F(CEntryPoint, ReferenceThatADecodedAmpersandBeginsIsNotDecoded) {
    EXPECT_EQ(decided("encA##lun1;snap1&amp;lt;", {}),
              firstBackup("[encA##lun1;encA##snap1]", rejected("lt", "enclosure data")));
}

TEST_F(CEntryPoint, SelectionIsAllocatedAnewForEachCall) {
    char* first = nullptr;
    char* second = nullptr;
    EXPECT_EQ(entryPoint()(nullptr, "encA##lun1;snap1", nullptr, 0, &first), 0);
    EXPECT_EQ(entryPoint()(nullptr, "encA##lun1;snap1", nullptr, 0, &second), 0);
    EXPECT_NE(first, second);
    EXPECT_STREQ(first, second);
    std::free(first);
    std::free(second);
}

}  // namespace
}  // namespace fi_test
