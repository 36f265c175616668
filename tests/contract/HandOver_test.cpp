// Which outputs have been handed over when a line is traced. A trace facility of this program looks at them,
// so the program has no recorder.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Library.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr std::int32_t kFlagWord = 16;

// The outputs of the call that runs.
char* selection = nullptr;
std::int32_t flag = kFlagWord;

struct SMoment {
    std::string format;
    bool isSelectionThere;
    std::int32_t flag;
};
std::vector<SMoment> moments;

}  // namespace

extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int /*level*/, const char* format, ...) {
    moments.push_back({format, selection != nullptr, flag});
}

namespace fi_test {
namespace {

const std::string kSelectionFormat = "fi_process_backups : resource_config_string [%s] ";

class CHandOver : public testing::Test {
protected:
    CHandOver() { moments.clear(); }

    void call(const char* configuration) {
        const std::string file = folder.write("a.xml", toXml(backup("1", {{"encA##lun1", "encA##snap1"}})));
        const char* const files[] = {file.c_str()};
        flag = kFlagWord;
        entryPoint()(files, configuration, &flag, 1, &selection);
        std::free(selection);
        selection = nullptr;
    }

    CTemporaryFolder folder;
};

TEST_F(CHandOver, OutputsAreAsTheyWereUntilTheSelectionIsMade) {
    call("encA##lun1;snap1");
    ASSERT_FALSE(moments.empty());
    for (const SMoment& moment : moments) {
        if (moment.format == kSelectionFormat) {
            return;
        }
        EXPECT_FALSE(moment.isSelectionThere) << moment.format;
        EXPECT_EQ(moment.flag, kFlagWord) << moment.format;
    }
    FAIL() << "the selection was not traced";
}

TEST_F(CHandOver, OutputsAreAsTheyWereThroughoutACallThatFails) {
    call("encA##lun1");
    ASSERT_FALSE(moments.empty());
    for (const SMoment& moment : moments) {
        EXPECT_FALSE(moment.isSelectionThere) << moment.format;
        EXPECT_EQ(moment.flag, kFlagWord) << moment.format;
    }
}

TEST_F(CHandOver, SelectionIsHandedOverBeforeItIsTraced) {
    call("encA##lun1;snap1");
    bool isBehindTheSelection = false;
    for (const SMoment& moment : moments) {
        isBehindTheSelection = isBehindTheSelection || moment.format == kSelectionFormat;
        EXPECT_EQ(moment.isSelectionThere, isBehindTheSelection) << moment.format;
    }
    EXPECT_TRUE(isBehindTheSelection);
}

TEST_F(CHandOver, StatesAreWrittenBackBeforeTheOutcomeIsPrinted) {
    call("encA##lun1;snap1");
    bool isBehindTheSelection = false;
    for (const SMoment& moment : moments) {
        EXPECT_EQ(moment.flag, isBehindTheSelection ? 2 : kFlagWord) << moment.format;
        isBehindTheSelection = isBehindTheSelection || moment.format == kSelectionFormat;
    }
    EXPECT_TRUE(isBehindTheSelection);
}

}  // namespace
}  // namespace fi_test
