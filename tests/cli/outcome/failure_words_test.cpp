#include "cli/outcome/failure_words.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fi_rotate {
namespace {

TEST(FiRotateFailureWords, SayWhatIsWrongWithAConfiguration) {
    const std::string ignored = "; its configuration and all after it are not used";
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
         {"CFiFiidLoader::load: ERROR: failed to load FIID file",
          "fi_process_backups : no resource is available",
          "fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids"}) {
        EXPECT_EQ(failureInWords(traced), "") << traced;
    }
}

TEST(FiRotateFailureWords, SayWhereAHardenedLibraryStopsReading) {
    EXPECT_EQ(failureInWords(
                  "CFiFiidHandler::fatalError : line 2, column 9 : more than 256 different element names"),
              "a document was read only up to line 2, column 9: more than 256 different element names");
}

TEST(FiRotateFailureWords, SayThatADocumentIsReadInPart) {
    EXPECT_EQ(failureInWords("Entering CFiFiidHandler::fatalError"),
              "a document cannot be read to its end as XML, so no more than its beginning was used; "
              "fi-rotate check shows where");
}

// A message of ours may begin as the line of a malformed identifier does: with the name of a file.
TEST(FiRotateFailureWords, ShowALineThatTheyDoNotKnow) {
    EXPECT_EQ(failureInWords("something new"), "something new");
    EXPECT_EQ(failureInWords("ERROR: a.xml: cannot be opened"), "ERROR: a.xml: cannot be opened");
}

TEST(FiRotateFailureWords, SayWhyACallWasRefused) {
    EXPECT_EQ(failureInWords("fi_process_backups : Invalid/empty parameter"),
              "the library refused the call, because one of its arguments was missing or empty");
}

TEST(FiRotateFailureWords, NameTheIdentifierThatEndedACall) {
    SOutcome outcome;
    outcome.exception = SException{"UDID##x", {}, "it is malformed", {}, false};
    outcome.messages = {"CFiFiidLoader::load: ERROR: failed to load FIID file", "ERROR: UDID##x"};
    EXPECT_EQ(messagesInWords(outcome),
              std::vector<std::string>{"malformed identifier \"UDID##x\": an exception ended the call"});
}

}  // namespace
}  // namespace fi_rotate
