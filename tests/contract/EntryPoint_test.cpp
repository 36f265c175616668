#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include <fi_rotation/fi_process_backups.h>
#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

namespace {

using fi_test::call;
using fi_test::entryPoint;
using fi_test::failure;
using fi_test::progress;
using fi_test::SObserved;
using fi_test::Trace;

const Trace kInvalid = failure("fi_process_backups : Invalid/empty parameter");
const Trace kNoPrevious =
    progress({"fi_process_backups : fiidListSize empty, no previous backups to process"});

class EntryPoint : public fi_test::CContractTest {};

TEST_F(EntryPoint, NamesAreTheValuesOfTheContract) {
    EXPECT_EQ(FI_EXCLUDE_ROTATION, 4);
    EXPECT_EQ(FI_STATUS_SUCCESS, 0);
    EXPECT_EQ(FI_STATUS_FAILURE, 3);
    EXPECT_EQ(FI_BACKUP_KEPT, 0);
    EXPECT_EQ(FI_BACKUP_INVALID, 1);
    EXPECT_EQ(FI_BACKUP_ROTATED, 2);
}

TEST_F(EntryPoint, AcceptsNullFlagsWithoutBackups) {
    char* result = nullptr;
    EXPECT_EQ(entryPoint()(nullptr, "encA##lun1;snap1", nullptr, 0, &result), 0);
    EXPECT_STREQ(result, "[encA##lun1;encA##snap1]");
    std::free(result);
}

TEST_F(EntryPoint, RejectsNullFlagsWithBackupsOrANegativeSize) {
    const char* const files[] = {"no such file"};
    for (const std::int32_t size : {1, -1, INT32_MIN}) {
        char untouched = 'u';
        char* result = &untouched;
        fi_test::TraceRecorder recorder;
        EXPECT_EQ(entryPoint()(files, "encA##lun1;snap1", nullptr, size, &result), 3) << size;
        EXPECT_EQ(recorder.take(), kInvalid) << size;
        EXPECT_EQ(result, &untouched);
    }
}

TEST_F(EntryPoint, RejectsANullResultStringWhateverElseIsPassed) {
    const char* const files[] = {"no such file"};
    std::int32_t flags[] = {7};
    for (const std::int32_t size : {0, 1, -1}) {
        for (const char* configuration :
             {"encA##lun1;snap1", "", static_cast<const char*>(nullptr)}) {
            fi_test::TraceRecorder recorder;
            EXPECT_EQ(entryPoint()(files, configuration, flags, size, nullptr), 3);
            EXPECT_EQ(recorder.take(), kInvalid);
        }
    }
    EXPECT_EQ(flags[0], 7);
}

TEST_F(EntryPoint, RejectsANullConfigurationWhateverElseIsPassed) {
    const char* const files[] = {"no such file"};
    std::int32_t flags[] = {7};
    for (const std::int32_t size : {0, 1, -1}) {
        char untouched = 'u';
        char* result = &untouched;
        fi_test::TraceRecorder recorder;
        EXPECT_EQ(entryPoint()(files, nullptr, flags, size, &result), 3);
        EXPECT_EQ(recorder.take(), kInvalid);
        EXPECT_EQ(result, &untouched);
    }
    EXPECT_EQ(flags[0], 7);
}

TEST_F(EntryPoint, TracesARejectionOnceWhenSeveralArgumentsAreBad) {
    fi_test::TraceRecorder recorder;
    EXPECT_EQ(entryPoint()(nullptr, nullptr, nullptr, 1, nullptr), 3);
    EXPECT_EQ(recorder.take(), kInvalid);
}

TEST_F(EntryPoint, FirstBackupGetsTheFirstTargetOfEachConfigurationWithoutASeparator) {
    const SObserved observed = call("encA##lun1;encA##snap1&encB##lun2;encC##snap2", {});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1][encB##lun2;encC##snap2]");
    EXPECT_EQ(observed.standardOutput, "");
    EXPECT_EQ(
        observed.trace,
        progress({"CFiResourceParser::parse : Resource specification [encA##lun1;encA##snap1]",
                  "CFiResourceParser::parse : [encA][lun1]",
                  "CFiResourceParser::parse : [encA][snap1]",
                  "CFiResourceParser::parse : [encB][lun2]",
                  "CFiResourceParser::parse : [encC][snap2]"}) +
            kNoPrevious);
}

TEST_F(EntryPoint, FirstBackupFailsWhenAConfigurationHasNoFurtherTarget) {
    const SObserved observed = call("encA##lun1;snap1&encB##lun2", {});
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.trace,
              progress({"CFiResourceParser::parse : Resource specification [encA##lun1;snap1]",
                        "CFiResourceParser::parse : [encA][lun1]",
                        "CFiResourceParser::parse : [encA][snap1]",
                        "CFiResourceParser::parse : [encB][lun2]"}) +
                  kNoPrevious + failure("fi_process_backups : no resource is available"));
}

TEST_F(EntryPoint, NoConfigurationGivesAnEmptySelectionWithoutBackups) {
    const SObserved observed = call("", {});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "");
    EXPECT_EQ(
        observed.trace,
        failure("CFiResourceParser::parse : Invalid resource specification []") + kNoPrevious);
}

TEST_F(EntryPoint, NoConfigurationGivesAnEmptySelectionWithBackups) {
    const SObserved observed = call("&\n", {{write("a.xml", "<Node/>"), 0}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "");
    EXPECT_EQ(observed.flags, std::vector<std::int32_t>{0});
}

TEST_F(EntryPoint, RejectedConfigurationDoesNotStopTheCall) {
    const SObserved observed = call("encA##lun1;snap1&lun2;snap2&encC##lun3;snap3", {});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(
        observed.trace,
        progress({"CFiResourceParser::parse : Resource specification [encA##lun1;snap1]",
                  "CFiResourceParser::parse : [encA][lun1]",
                  "CFiResourceParser::parse : [encA][snap1]",
                  "CFiResourceParser::parse : [][lun2]"}) +
            failure("CFiResourceParser::parse : resource configuration \"lun2\" has no enclosure "
                    "data specified.") +
            kNoPrevious);
}

TEST_F(EntryPoint, OnlyFurtherTargetsAreSearchedForAFreeOne) {
    // The backup's claim marks the configuration itself Used; its second further target is still free.
    const SObserved observed = call(
        "encA##lun1;snap1;snap2",
        {{write("a.xml", fi_test::toXml(fi_test::backup("1", {{"encA##lun1", "encA##snap1"}}))),
          0}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap2]");
}

TEST_F(EntryPoint, ReferencesInTheConfigurationAreDecoded) {
    EXPECT_EQ(call("encA##&lt;lun&gt;;snap&#39;1&amp;encB##lun2;&quot;", {}).selection,
              "[encA##<lun>;encA##snap'1][encB##lun2;encB##\"]");
}

TEST_F(EntryPoint, SelectionIsAllocatedAnewForEachCall) {
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
