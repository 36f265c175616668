// fi-rotate check as a program: what it prints and how it ends.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::example;
using fi_test::exampleBackups;
using fi_test::runFiRotate;
using fi_test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> checkOfExamples() {
    std::vector<std::string> arguments{"check", "--config-file", example("resource.conf")};
    for (const std::string& file : exampleBackups()) {
        arguments.push_back(file);
    }
    return arguments;
}

TEST(FiRotateCheck, FindsInTheExamplesTheDeviceThatIsNoLongerConfiguredAndNothingElse) {
    const auto result = runFiRotate(checkOfExamples());
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output,
              example("backup-2026-10-02.xml") +
                  ":19:14: error: \"ENC-A##VOL-0013\" is the first target of no configuration; the "
                  "nearest is \"ENC-A##VOL-0011\" [pair-matches-nothing]\n"
                  "          <objid>UDID##EXAMPLE##ARRAY-9##ENC-A#\n"
                  "                 ^\n"
                  "1 error, no warnings; checked the configuration and 8 documents\n");
}

TEST(FiRotateCheck, IsSilentAndSucceedsOnCleanInputs) {
    const auto result = runFiRotate({"check", "--config", "encA##lun1;snap1;snap2"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output,
              "no errors, no warnings; checked the configuration and no documents\n");
}

TEST(FiRotateCheck, EndsWithOneWhenThereAreWarningsOnly) {
    const auto result = runFiRotate({"check", "--config", "encA##lun1;snap1; snap2"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output,
              "--config:1:18: warning: \"encA## snap2\" has a blank at the start or end of a name "
              "[blank-in-target]\n"
              "    encA##lun1;snap1; snap2\n"
              "                     ^\n"
              "no errors, 1 warning; checked the configuration and no documents\n");
}

}  // namespace
