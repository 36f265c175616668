#include "cli/outcome/failure_words.h"

#include <string>

#include <gtest/gtest.h>

namespace fi_rotate {
namespace {

TEST(FiRotateFailureWords, SayWhatIsWrongWithAConfiguration) {
    const std::string ignored = "; its configuration and all after it are ignored";
    EXPECT_EQ(
        failureInWords(
            "CFiResourceParser::parse : resource configuration \"lun1\" has no enclosure data specified."),
        "\"lun1\" names no enclosure; a target is ENCLOSURE##DEVICE" + ignored);
    EXPECT_EQ(failureInWords(
                  "CFiResourceParser::parse : resource configuration \"A##\" has no device data specified."),
              "\"A##\" names no device; a target is ENCLOSURE##DEVICE" + ignored);
    EXPECT_EQ(
        failureInWords("CFiResourceParser::parse : resource configuration \";\" has no targets specified."),
        "\";\" names no target" + ignored);
    EXPECT_EQ(failureInWords("CFiResourceParser::parse : Invalid resource specification [\n]"),
              "the configuration names no target: \"\n\"");
}

TEST(FiRotateFailureWords, LeaveOutWhatIsReportedElsewhere) {
    for (const char* traced :
         {"CFiFiidLoader::load: ERROR: failed to load FIID file", "ERROR: UDID##a",
          "fi_process_backups : no resource is available",
          "fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids"}) {
        EXPECT_EQ(failureInWords(traced), "") << traced;
    }
}

TEST(FiRotateFailureWords, ShowALineThatTheyDoNotKnow) {
    EXPECT_EQ(failureInWords("something new"), "something new");
}

}  // namespace
}  // namespace fi_rotate
