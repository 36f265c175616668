#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <fi_rotation/fi_process_backups.h>
#include <gtest/gtest.h>

#include "tests/contract/RotationLines.h"

// What a call says of its arguments and its configuration, and the whole of a call without backups.
namespace {

using fi_test::backup;
using fi_test::call;
using fi_test::callWithSize;
using fi_test::closingLines;
using fi_test::configurationLines;
using fi_test::entryPoint;
using fi_test::failure;
using fi_test::listed;
using fi_test::matchLine;
using fi_test::openingLines;
using fi_test::progress;
using fi_test::reservedLine;
using fi_test::SBackup;
using fi_test::SNode;
using fi_test::SObserved;
using fi_test::Trace;
using Flags = std::vector<std::int32_t>;

static_assert(std::is_same_v<decltype(&fi_process_backups), fi_test::EntryPoint>,
              "the declared function is the one that these tests call");

const Trace kInvalid = failure("fi_process_backups : Invalid/empty parameter");
const Trace kNoPrevious =
    progress({"fi_process_backups : fiidListSize empty, no previous backups to process"});

class EntryPoint : public fi_test::CRotationTest {};

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
    fi_test::TraceRecorder recorder;
    EXPECT_EQ(entryPoint()(nullptr, "encA##lun1;snap1", nullptr, 0, &result), 0);
    EXPECT_STREQ(result, "[encA##lun1;encA##snap1]");
    std::free(result);
    EXPECT_EQ(recorder.take(),
              configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}}) + kNoPrevious);
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
        for (const char* configuration : {"encA##lun1;snap1", "", static_cast<const char*>(nullptr)}) {
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
    const SObserved observed = call("encA##lun1;encA##snap1;snap2&encB##lun2;encC##snap3", {});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1][encB##lun2;encC##snap3]");
    EXPECT_EQ(observed.standardOutput, "");
    EXPECT_EQ(
        observed.trace,
        configurationLines(
            "encA##lun1;encA##snap1;snap2",
            {{"encA", "lun1"}, {"encA", "snap1"}, {"encA", "snap2"}, {"encB", "lun2"}, {"encC", "snap3"}}) +
            kNoPrevious);
}

TEST_F(EntryPoint, FirstBackupFailsWhenAnyConfigurationHasNoFurtherTarget) {
    const SObserved last = call("encA##lun1;snap1&encB##lun2", {});
    EXPECT_EQ(last.status, 3);
    EXPECT_EQ(last.selection, std::nullopt);
    EXPECT_EQ(last.trace, configurationLines("encA##lun1;snap1",
                                             {{"encA", "lun1"}, {"encA", "snap1"}, {"encB", "lun2"}}) +
                              kNoPrevious + failure("fi_process_backups : no resource is available"));

    const SObserved first = call("encB##lun2&encA##lun1;snap1", {});
    EXPECT_EQ(first.status, 3);
    EXPECT_EQ(first.selection, std::nullopt);
    EXPECT_EQ(first.trace,
              configurationLines("encB##lun2", {{"encB", "lun2"}, {"encA", "lun1"}, {"encA", "snap1"}}) +
                  kNoPrevious + failure("fi_process_backups : no resource is available"));
}

// The list may be there all the same; a size of 0 says that it has no entries.
TEST_F(EntryPoint, FirstBackupLeavesTheFlagsAlone) {
    const SBackup a = given("a.xml", backup("1", {{"encA##lun1", "encA##snap1"}}), 7);
    const SObserved observed = callWithSize("encA##lun1;snap1", listed({a}), 0);
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.flags, Flags{7});
    EXPECT_EQ(observed.trace,
              configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}}) + kNoPrevious);
}

TEST_F(EntryPoint, NoConfigurationGivesAnEmptySelectionWithoutBackups) {
    for (const char* configuration : {"", "&", "&\r\n&"}) {
        SCOPED_TRACE(configuration);
        const SObserved observed = call(configuration, {});
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.selection, "");
        EXPECT_EQ(observed.trace, failure("CFiResourceParser::parse : Invalid resource specification [" +
                                          std::string(configuration) + "]") +
                                      kNoPrevious);
    }
}

TEST_F(EntryPoint, NoConfigurationGivesAnEmptySelectionWithBackups) {
    const SBackup a = given("a.xml", SNode{{{"objid", "disk"}}, {}}, 5);
    const SObserved observed = call("&\n", listed({a}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "");
    EXPECT_EQ(observed.flags, Flags{0});
    EXPECT_EQ(observed.trace, failure("CFiResourceParser::parse : Invalid resource specification [&\n]") +
                                  openingLines({a}, {}) + matchLine(a) + reservedLine(a) +
                                  closingLines("", {}, {{a, 0}}));
}

TEST_F(EntryPoint, RejectedConfigurationDoesNotStopTheCall) {
    const std::string start = "CFiResourceParser::parse : resource configuration ";
    const struct {
        const char* configuration;
        Trace lines;
        const char* selection;
    } rows[] = {
        {"encA##lun1;snap1&lun2;snap2&encC##lun3;snap3",
         configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}, {"", "lun2"}}) +
             failure(start + "\"lun2\" has no enclosure data specified."),
         "[encA##lun1;encA##snap1]"},
        {"encA##lun1;snap1\nencB##lun2;encB##\nencC##lun3;snap3",
         configurationLines("encA##lun1;snap1",
                            {{"encA", "lun1"}, {"encA", "snap1"}, {"encB", "lun2"}, {"encB", ""}}) +
             failure(start + "\"encB##\" has no device data specified."),
         "[encA##lun1;encA##snap1]"},
        {"encA##lun1;snap1&;;&encC##lun3;snap3",
         configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}}) +
             failure(start + "\";;\" has no targets specified."),
         "[encA##lun1;encA##snap1]"},
        {"##lun1;snap1",
         configurationLines("##lun1;snap1", {{"", "lun1"}}) +
             failure(start + "\"##lun1\" has no enclosure data specified."),
         ""},
        {"##;snap1",
         configurationLines("##;snap1", {{"", ""}}) + failure(start + "\"##\" has no device data specified."),
         ""},
        {"%s%n",
         configurationLines("%s%n", {{"", "%s%n"}}) +
             failure(start + "\"%s%n\" has no enclosure data specified."),
         ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.configuration);
        const SObserved observed = call(row.configuration, {});
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.selection, row.selection);
        EXPECT_EQ(observed.trace, row.lines + kNoPrevious);
    }
}

TEST_F(EntryPoint, SpecificationLineShowsTheFirstConfigurationOnly) {
    const SObserved observed = call("&\n&encA##lun1;snap1\r\nencB##lun2;snap2&", {});
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1][encB##lun2;encB##snap2]");
    EXPECT_EQ(observed.trace,
              configurationLines("&\n&encA##lun1;snap1",
                                 {{"encA", "lun1"}, {"encA", "snap1"}, {"encB", "lun2"}, {"encB", "snap2"}}) +
                  kNoPrevious);
}

// The backup's claim marks the configuration itself Used; its second further target is still free.
TEST_F(EntryPoint, OnlyFurtherTargetsAreSearchedForAFreeOne) {
    const SBackup a = given("a.xml", backup("1", {{"encA##lun1", "encA##snap1"}}));
    const SObserved observed = call("encA##lun1;snap1;snap2", listed({a}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap2]");
    EXPECT_EQ(observed.trace,
              configurationLines("encA##lun1;snap1;snap2",
                                 {{"encA", "lun1"}, {"encA", "snap1"}, {"encA", "snap2"}}) +
                  openingLines({a}, {"[encA:lun1](Available)", "{snap1,Available}", "{snap2,Available}"}) +
                  matchLine(a) + reservedLine(a) +
                  closingLines("[encA##lun1;encA##snap2]",
                               {"[encA:lun1](Used)", "{snap1,Used}", "{snap2,Available}"}, {{a, 0}}));
}

TEST_F(EntryPoint, ReferencesInTheConfigurationAreDecoded) {
    const SObserved observed = call("encA##&lt;lun&gt;;snap&#39;1&amp;encB##lun2;&quot;&amp;encC##a;b", {});
    EXPECT_EQ(observed.selection, "[encA##<lun>;encA##snap'1][encB##lun2;encB##\"][encC##a;encC##b]");
    EXPECT_EQ(observed.trace, configurationLines("encA##<lun>;snap'1", {{"encA", "<lun>"},
                                                                        {"encA", "snap'1"},
                                                                        {"encB", "lun2"},
                                                                        {"encB", "\""},
                                                                        {"encC", "a"},
                                                                        {"encC", "b"}}) +
                                  kNoPrevious);
}

TEST_F(EntryPoint, ReferenceThatADecodedAmpersandBeginsIsNotDecoded) {
    const SObserved observed = call("encA##lun1;snap1&amp;lt;", {});
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(observed.trace,
              configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}, {"", "lt"}}) +
                  failure("CFiResourceParser::parse : resource configuration \"lt\" has no "
                          "enclosure data specified.") +
                  kNoPrevious);
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
