// What a host's trace facility meets while a call runs: the formats of the lines, and how far the outputs are
// handed over. The facility is this program's own, so the program has no recorder.

#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <gmock/gmock.h>
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

namespace {

using fi_test::backup;
using fi_test::toXml;
using fi_test::udid;

const std::string kSelectionFormat = "fi_process_backups : resource_config_string [%s] ";

class HandOver : public testing::Test {
protected:
    HandOver() { moments.clear(); }

    void call(const std::string& configuration, const std::string& document,
              std::int32_t flagWord = kFlagWord) {
        const std::string file = folder.write("a.xml", document);
        const char* const files[] = {file.c_str()};
        flag = flagWord;
        try {
            fi_test::entryPoint()(files, configuration.c_str(), &flag, 1, &selection);
        } catch (const CFiUdidException&) {
            hasThrown = true;
        }
        std::free(selection);
        selection = nullptr;
    }

    fi_test::TemporaryFolder folder;
    bool hasThrown = false;
};

const std::string kHolder = toXml(backup("1", {{"encA##lun1", "encA##snap1"}}));

TEST_F(HandOver, OutputsAreAsTheyWereUntilTheSelectionIsMade) {
    call("encA##lun1;snap1", kHolder);
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

TEST_F(HandOver, OutputsAreAsTheyWereThroughoutACallThatFails) {
    call("encA##lun1", kHolder);
    ASSERT_FALSE(moments.empty());
    for (const SMoment& moment : moments) {
        EXPECT_FALSE(moment.isSelectionThere) << moment.format;
        EXPECT_EQ(moment.flag, kFlagWord) << moment.format;
    }
}

TEST_F(HandOver, SelectionIsHandedOverBeforeItIsTraced) {
    call("encA##lun1;snap1", kHolder);
    bool isBehindTheSelection = false;
    for (const SMoment& moment : moments) {
        isBehindTheSelection = isBehindTheSelection || moment.format == kSelectionFormat;
        EXPECT_EQ(moment.isSelectionThere, isBehindTheSelection) << moment.format;
    }
    EXPECT_TRUE(isBehindTheSelection);
}

TEST_F(HandOver, StatesAreWrittenBackBeforeTheOutcomeIsPrinted) {
    call("encA##lun1;snap1", kHolder);
    bool isBehindTheSelection = false;
    for (const SMoment& moment : moments) {
        EXPECT_EQ(moment.flag, isBehindTheSelection ? 2 : kFlagWord) << moment.format;
        isBehindTheSelection = isBehindTheSelection || moment.format == kSelectionFormat;
    }
    EXPECT_TRUE(isBehindTheSelection);
}

// Hosts tell the lines apart by their formats, which therefore never hold a text of the call.
TEST_F(HandOver, EveryLineHasOneOfTheFixedFormats) {
    const std::string heldTwice =
        "<Node><objid>UDID##v##1##encA##lun1</objid><altobjid>UDID##v##1##encA##snap1</altobjid>"
        "<Node><objid>UDID##v##2##encA##lun1</objid><altobjid>UDID##v##2##encA##snap1</altobjid>"
        "</Node></Node>";
    const std::string malformed =
        "<Node><objid>" + udid("encA##lun1") + "</objid><altobjid>bad</altobjid></Node>";
    call("encA##lun1;snap1", kHolder);
    call("encA##lun1;snap1", kHolder, 4);
    call("encA##lun1;snap1", toXml(backup("1", {{"encZ##gone", "encA##snap1"}})));
    call("encA##lun1;snap1", heldTwice);
    for (const char* configuration : {"", ";", "encA##", "lun1"}) {
        call(configuration, kHolder);
    }
    EXPECT_FALSE(hasThrown);
    call("encA##lun1;snap1", malformed);
    EXPECT_TRUE(hasThrown);
    fi_test::entryPoint()(nullptr, "encA##lun1", nullptr, 0, &selection);
    fi_test::entryPoint()(nullptr, nullptr, nullptr, 0, nullptr);
    const std::string missing = folder.path("missing.xml");
    const char* const files[] = {missing.c_str()};
    fi_test::entryPoint()(files, "encA##lun1", &flag, 1, &selection);

    std::set<std::string> formats;
    for (const SMoment& moment : moments) {
        formats.insert(moment.format);
    }
    EXPECT_THAT(
        formats,
        testing::UnorderedElementsAre(
            "Entering %s\n", "Exiting %s\n", "%s [%s]", "%s {%s}", "%s <%d %s>",
            "CFiFiidLoader::load: ERROR: failed to load FIID file",
            "CFiResourceManager::print : printing resource set", "[%s:%s](%s)", "{%s,%s}",
            "CFiResourceParser::parse : Invalid resource specification [%s]",
            "CFiResourceParser::parse : Resource specification [%s]", "CFiResourceParser::parse : [%s][%s]",
            "CFiResourceParser::parse : resource configuration \"%s\" has no targets specified.",
            "CFiResourceParser::parse : resource configuration \"%s\" has no device data "
            "specified.",
            "CFiResourceParser::parse : resource configuration \"%s\" has no enclosure data "
            "specified.",
            "ERROR: %s", "fi_process_backups : Invalid/empty parameter",
            "fi_process_backups : fiidListSize empty, no previous backups to process",
            "fi_process_backups : no resource is available",
            "fi_process_backups :  Fiid [%s] exclude rotation flag [%d] ", "fi_process_backups : parsed [%s]",
            "fi_process_backups : [RESOURCES MATCH] [%s]", "fi_process_backups : [INVALID RESOURCES] [%s]",
            "fi_process_backups : [RESERVE GOOD] %s - T: %s", "fi_process_backups : %s - T: %s",
            "fi_process_backups : Skipped Rotation for fiid [%s]",
            "fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids",
            "fi_process_backups : resource_config_string [%s] ",
            "fi_process_backups : parsed [%s] state=[%d]"));
}

}  // namespace
