#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::example;
using fi_test::runFiRotate;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class FiRotateExplain : public testing::Test {
protected:
    // A call whose trace goes to `log`, behind what stands there.
    void call(const std::string& configuration, const std::vector<std::string>& backups) {
        const std::string trace = folder.path("trace");
        std::vector<std::string> arguments{"select", "--trace-file", trace, "--config", configuration};
        arguments.insert(arguments.end(), backups.begin(), backups.end());
        runFiRotate(arguments);
        std::ofstream(log, std::ios::app) << std::ifstream(trace).rdbuf() << "2 a line of the host's\n";
    }

    fi_test::CTemporaryFolder folder;
    std::string log = folder.path("log");
    std::string backup = folder.write("backup",
                                      "<Node><timeStamp>1</timeStamp><objid>UDID##v##m##A##x</objid>"
                                      "<altobjid>UDID##v##m##A##1</altobjid></Node>");
};

TEST_F(FiRotateExplain, ShowsEveryCallOfALog) {
    call("A##x;1", {backup});
    call("A##x;1;2", {backup});
    const auto result = runFiRotate({"explain", log});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_THAT(result.output, StartsWith("Call 1, " + log + ", lines 1 to "));
    EXPECT_THAT(result.output, HasSubstr("\n\nCall 2, " + log + ", lines "));
    EXPECT_THAT(result.output, HasSubstr("Selection\n"
                                         "  first target  chosen target  restore points\n"
                                         "  A##x          A##2           1\n"));
    EXPECT_THAT(result.output,
                HasSubstr("rotated: released while A##x had no free target; it held targets of A##x\n"));
    EXPECT_THAT(result.output, EndsWith("kept: the newest that holds A##1\n"));
}

TEST_F(FiRotateExplain, PicksOneCall) {
    call("A##x;1", {backup});
    call("A##x;1;2", {backup});
    const auto result = runFiRotate({"explain", "--call", "2", log});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.output, StartsWith("Call 2, " + log + ", lines "));
    EXPECT_THAT(result.output, Not(HasSubstr("rotated")));
}

TEST_F(FiRotateExplain, SaysWhichCallTheLogDoesNotHave) {
    call("A##x;1", {backup});
    const auto result = runFiRotate({"explain", "--call", "2", log});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error,
              "fi-rotate: there is no call 2 in \"" + log + "\"; the calls are numbered from 1 to 1\n");
}

TEST_F(FiRotateExplain, SaysThatALogHoldsNoCall) {
    const auto result = runFiRotate({"explain", folder.write("empty", "nothing of ours\n")});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.error, StartsWith("fi-rotate: there is no call of the library in \""));
}

TEST_F(FiRotateExplain, RefusesALogThatCannotBeRead) {
    const auto result = runFiRotate({"explain", folder.path("missing")});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_THAT(result.error, HasSubstr("missing\": No such file or directory"));
    const auto ofFolder = runFiRotate({"explain", folder.path("")});
    EXPECT_EQ(ofFolder.exitStatus, 2);
    EXPECT_THAT(ofFolder.error, HasSubstr("Is a directory"));
}

TEST_F(FiRotateExplain, GivesTheSameAccountAsTheCallItself) {
    std::vector<std::string> arguments{"select",
                                       "--json",
                                       "--explain",
                                       "--trace-file",
                                       log,
                                       "--config-file",
                                       example("resource.conf"),
                                       "--exclude",
                                       fi_test::exampleBackups()[0]};
    const auto backups = fi_test::exampleBackups();
    arguments.insert(arguments.end(), backups.begin(), backups.end());
    auto selected = nlohmann::json::parse(runFiRotate(arguments).output);
    auto explained = nlohmann::json::parse(runFiRotate({"explain", "--json", log}).output);
    ASSERT_EQ(explained["calls"].size(), 1U);
    EXPECT_THAT(explained["calls"][0]["missing"], IsEmpty());
    auto& outcome = explained["calls"][0]["outcome"];
    // The trace does not tell the time stamp of the one that failed the check.
    EXPECT_EQ(outcome["backups"][1]["time_stamp"], nullptr);
    outcome["backups"][1].erase("time_stamp");
    selected["backups"][1].erase("time_stamp");
    // No call is made again to find out what would have helped.
    selected.erase("advice");
    EXPECT_EQ(outcome, selected);
}

TEST_F(FiRotateExplain, ShowsOnlyTheStatesAskedFor) {
    call("A##x;1;2", {backup});
    const auto result = runFiRotate({"explain", "--only", "rotated", log});
    EXPECT_THAT(result.output, HasSubstr("Backups: none in these states, 1 in other states\n"));
}

TEST_F(FiRotateExplain, SaysWhatALogLacks) {
    const std::string cut =
        folder.write("cut",
                     "app: CFiResourceParser::parse : Resource specification [A##x;1]\n"
                     "app: CFiResourceParser::parse : [A][x]\n"
                     "app: CFiResourceParser::parse : [A][1]\n"
                     "app: fi_process_backups :  Fiid [a.xml] exclude rotation flag [4] \n");
    const auto result = runFiRotate({"explain", cut});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output,
              "Call 1, " + cut +
                  ", lines 1 to 4\n"
                  "\n"
                  "Missing from the log\n"
                  "  its end, after line 4\n"
                  "\n"
                  "Selection: not known\n"
                  "\n"
                  "Backups\n"
                  "  file   time stamp  flags  state\n"
                  "  a.xml  not known   4      not known\n"
                  "Total: 1 of unknown state; there may be more backups, because lines are missing\n"
                  "\n"
                  "Reasons\n"
                  "  a.xml\n"
                  "    state not known: lines are missing\n");
}

TEST_F(FiRotateExplain, ListsBackupsByTheirStatesWhereTheLinesThatListThemAreMissing) {
    call("A##x;1", {backup});
    std::string lines = fi_test::contentOf(log);
    lines.erase(0, lines.find("4 fi_process_backups : parsed ["));
    const auto result = runFiRotate({"explain", folder.write("cut", lines)});
    EXPECT_THAT(result.output, HasSubstr("  the flag word of \"" + backup + "\"\n"));
    EXPECT_THAT(
        result.output,
        HasSubstr(" rotated\nTotal: 1 rotated; there may be more backups, because lines are missing\n"));
    EXPECT_THAT(result.output, HasSubstr(", up to line "));
    const auto json = nlohmann::json::parse(runFiRotate({"explain", "--json", folder.path("cut")}).output);
    const auto& shown = json["calls"][0]["outcome"]["backups"];
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0]["state"], "rotated");
    EXPECT_EQ(shown[0]["flag_word"], nullptr);
    EXPECT_EQ(shown[0]["excluded"], nullptr);
}

TEST_F(FiRotateExplain, ReadsSeveralLogsOneAfterTheOther) {
    const std::string older = folder.write("log.1",
                                           "Nov  2 01:30:00 h app[7]: CFiResourceParser::parse : "
                                           "Resource specification [A##x;1]\n");
    const std::string last =
        folder.write("log",
                     "Nov  2 01:30:01 h app[7]: CFiResourceParser::parse : [A][x]\n"
                     "Nov  2 01:30:01 h app[7]: CFiResourceParser::parse : [A][1]\n"
                     "Nov  2 01:30:02 h app[7]: fi_process_backups : fiidListSize empty, no previous "
                     "backups to process\n"
                     "Nov  3 01:30:00 h app[7]: fi_process_backups : Invalid/empty parameter\n");
    const std::string calls =
        "Time: Nov  2 01:30:00 to Nov  2 01:30:02\n"
        "\n"
        "Selection: made, but the trace of a first backup does not contain it\n"
        "\n"
        "Backups: none; this is the first backup\n"
        "\n"
        "Call 2, ";
    const auto result = runFiRotate({"explain", older, last});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.output, StartsWith("Call 1, " + older + ", line 1, to " + last + ", line 3\n" + calls +
                                          last + ", lines 4 to 4\nTime: Nov  3 01:30:00\n"));
    const auto first =
        nlohmann::json::parse(runFiRotate({"explain", "--json", older, last}).output)["calls"][0];
    EXPECT_EQ(first["first"], (nlohmann::json{{"log", older}, {"line", 1}, {"time", "Nov  2 01:30:00"}}));
    EXPECT_EQ(first["last"], (nlohmann::json{{"log", last}, {"line", 3}, {"time", "Nov  2 01:30:02"}}));
    EXPECT_EQ(runFiRotate({"explain", "--call", "3", older, last}).error,
              "fi-rotate: there is no call 3 in these 2 logs; the calls are numbered from 1 to 2\n");
}

TEST_F(FiRotateExplain, PrintsNoControlCharacterOfALog) {
    const std::string name =
        "a\033[31m\x7f\xC2\x9B"
        "31m.xml";
    const std::string cut = folder.write("cut",
                                         "app: CFiResourceParser::parse : Resource specification [A##x;1]\n"
                                         "app: fi_process_backups :  Fiid [" +
                                             name + "] exclude rotation flag [4] \n");
    for (const char* const option : {"--only=not loaded,kept", "--json"}) {
        const auto result = runFiRotate({"explain", option, cut});
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.output.find_first_of("\033\x7f\x9B"), std::string::npos) << option;
    }
    const auto shown = nlohmann::json::parse(runFiRotate({"explain", "--json", cut}).output);
    EXPECT_EQ(shown["calls"][0]["outcome"]["backups"][0]["file"], name);
}

}  // namespace
