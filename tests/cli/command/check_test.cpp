// fi-rotate check as a program: what it prints and how it ends.

#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/check/hazard.h"
#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::CTemporaryFolder;
using fi_test::example;
using fi_test::exampleBackups;
using fi_test::runFiRotate;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> checkOfExamples() {
    std::vector<std::string> arguments{"check", "--config-file", example("resource.conf")};
    for (const std::string& file : exampleBackups()) {
        arguments.push_back(file);
    }
    return arguments;
}

TEST(FiRotateCheck, FindsInTheExamplesADeviceThatIsNoLongerConfiguredATargetHeldTwiceAndNothingElse) {
    const auto result = runFiRotate(checkOfExamples());
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output,
              example("backup-2026-10-02.xml") +
                  ":19:38: error: no configuration has the first target \"ENC-A##VOL-0013\" "
                  "[pair-matches-nothing]\n"
                  "          <objid>UDID##EXAMPLE##ARRAY-9##ENC-A##VOL-0013</objid>\n"
                  "                                         ^\n" +
                  example("backup-2026-10-04.xml") +
                  ":12:41: error: \"ENC-A##SNP-0103\" is also held by a newer backup, " +
                  example("backup-2026-10-08.xml") +
                  ":12, which claims it; this backup becomes invalid [target-held-by-several]\n"
                  "          <altobjid>UDID##EXAMPLE##ARRAY-9##ENC-A##SNP-0103</altobjid>\n"
                  "                                            ^\n"
                  "2 errors, no warnings; checked the configuration and 8 documents\n");
}

// A carriage return before each line end is the terminal's.
TEST(FiRotateCheck, ColoursSeveritiesOnATerminalUnlessNoColorIsSet) {
    if (!fi_test::hasTerminals()) {
        GTEST_SKIP() << fi_test::kNoTerminals;
    }
    const std::vector<std::string> error{"check", "--config", "encA##lun1"};
    EXPECT_THAT(fi_test::runFiRotateOnTerminal(error).output,
                StartsWith("--config:1:1: \x1B[31merror\x1B[0m: \"encA##lun1\" has no further targets"));
    EXPECT_THAT(fi_test::runFiRotateOnTerminal({"check", "--config", "encA##lun1; snap1"}).output,
                StartsWith("--config:1:12: \x1B[33mwarning\x1B[0m: "));
    EXPECT_THAT(fi_test::runFiRotateOnTerminal(error, {"NO_COLOR=1"}).output,
                StartsWith("--config:1:1: error: "));
    EXPECT_THAT(runFiRotate(error).output, StartsWith("--config:1:1: error: "));
}

TEST(FiRotateCheck, IsSilentAndSucceedsOnCleanInputs) {
    const auto result = runFiRotate({"check", "--config", "encA##lun1;snap1;snap2"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "no errors, no warnings; checked the configuration and no documents\n");
}

TEST(FiRotateCheck, ExitsWith5WhenThereAreOnlyWarnings) {
    const auto result = runFiRotate({"check", "--config", "encA##lun1;snap1; snap2"});
    EXPECT_EQ(result.exitStatus, 5);
    EXPECT_EQ(result.output,
              "--config:1:18: warning: \"encA## snap2\" has a name that begins or ends with a blank "
              "[blank-in-target]\n"
              "    encA##lun1;snap1; snap2\n"
              "                     ^\n"
              "no errors, 1 warning; checked the configuration and no documents\n");
}

TEST(FiRotateCheck, ShowsTheSameInJson) {
    auto arguments = checkOfExamples();
    arguments.emplace_back("--json");
    const auto result = runFiRotate(arguments);
    EXPECT_EQ(result.exitStatus, 3);
    const auto expected =
        nlohmann::json{{"findings",
                        {{{"file", example("backup-2026-10-02.xml")},
                          {"line", 19},
                          {"column", 38},
                          {"severity", "error"},
                          {"name", "pair-matches-nothing"},
                          {"text", "no configuration has the first target \"ENC-A##VOL-0013\""},
                          {"caused_by", nullptr},
                          {"count", 1}},
                         {{"file", example("backup-2026-10-04.xml")},
                          {"line", 12},
                          {"column", 41},
                          {"severity", "error"},
                          {"name", "target-held-by-several"},
                          {"text", "\"ENC-A##SNP-0103\" is also held by a newer backup, " +
                                       example("backup-2026-10-08.xml") +
                                       ":12, which claims it; this backup becomes invalid"},
                          {"caused_by", nullptr},
                          {"count", 1}}}},
                       {"errors", 2},
                       {"warnings", 0},
                       {"documents", 8}};
    EXPECT_EQ(nlohmann::json::parse(result.output), expected);
}

// A configuration with a comment in it and three backups: of a device that is lost for it, of one that no
// line has, and of that again.
class FiRotateCheckFolding : public testing::Test {
protected:
    static std::string backup(char timeStamp, const std::string& device) {
        return std::string("<Node><timeStamp>") + timeStamp + "</timeStamp><objid>UDID##v##m##" + device +
               "</objid>\n<altobjid>UDID##v##m##encA##snap" + timeStamp + "</altobjid></Node>";
    }
    std::vector<std::string> check() const { return {"check", "--config-file", configuration, a, b, c}; }

    CTemporaryFolder folder;
    std::string configuration = folder.write("conf", "main##tape;day1\n# daily\nencA##lun1;snap1;snap2\n");
    std::string a = folder.write("a", backup('1', "encA##lun1"));
    std::string b = folder.write("b", backup('2', "encC##vol9"));
    std::string c = folder.write("c", backup('3', "encC##vol9"));
};

TEST_F(FiRotateCheckFolding, TellsWhatFollowsFromAFaultAndWhatRepeatsItInALineUnderIt) {
    const auto result = runFiRotate(check());
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(
        result.output,
        configuration +
            ":2:1: error: configuration rejected: \"# daily\" has no enclosure, which a first target needs "
            "(a configuration cannot contain comments); configurations 2 to 3 are not used, but "
            "configuration 1 is "
            "[configuration-rejected]\n"
            "    # daily\n"
            "    ^\n"
            "    consequences: 1 error in " +
            a + " [pair-matches-nothing]\n" + b +
            ":1:50: error: no configuration has the first target \"encC##vol9\" [pair-matches-nothing]\n"
            "    <Node><timeStamp>2</timeStamp><objid>UDID##v##m##encC##vol9</objid>\n"
            "                                                     ^\n"
            "    the same: 1 error in " +
            c +
            "\n"
            "4 errors, no warnings; 2 of these follow from others or repeat them; checked the "
            "configuration and 3 documents\n");
}

TEST_F(FiRotateCheckFolding, TellsOfEachInJsonAndNamesItsCause) {
    auto arguments = check();
    arguments.emplace_back("--json");
    const auto report = nlohmann::json::parse(runFiRotate(arguments).output);
    ASSERT_EQ(report["findings"].size(), 4U);
    EXPECT_EQ(report["errors"], 4);
    EXPECT_EQ(report["findings"][0]["caused_by"], nlohmann::json());
    EXPECT_EQ(report["findings"][1]["file"], a);
    EXPECT_EQ(report["findings"][1]["caused_by"],
              (nlohmann::json{{"file", configuration}, {"name", "configuration-rejected"}}));
    EXPECT_EQ(report["findings"][2]["caused_by"], nlohmann::json());
    EXPECT_EQ(report["findings"][3]["caused_by"],
              (nlohmann::json{{"file", b}, {"name", "pair-matches-nothing"}}));
}

TEST(FiRotateCheck, NamesTheFirstOfManyDocumentsInWhichSomethingFollows) {
    const CTemporaryFolder folder;
    std::vector<std::string> arguments{"check", "--config", ""};
    for (char name = 'a'; name <= 'f'; ++name) {
        arguments.push_back(
            folder.write(std::string(1, name), std::string("<Node><timeStamp>") + name +
                                                   "</timeStamp><objid>UDID##v##m##e##l</objid>"
                                                   "<altobjid>UDID##v##m##e##s</altobjid></Node>"));
    }
    EXPECT_THAT(runFiRotate(arguments).output,
                HasSubstr("\n    consequences: 6 errors in " + arguments[3] + ", " + arguments[4] + ", " +
                          arguments[5] + ", " + arguments[6] + " and 2 more [pair-matches-nothing]\n"));
}

// More in each than is shown of one.
TEST(FiRotateCheck, CountsUnderTheFirstDocumentWhatIsTheSameInTheOthers) {
    const CTemporaryFolder folder;
    std::vector<std::string> arguments{"check", "--config", "e##l;s1;s2;s3"};
    for (const std::string number : {"1", "2", "3"}) {
        std::string document = "<Node><timeStamp>" + number +
                               "</timeStamp><objid>UDID##v##m##e##l</objid><altobjid>UDID##v##m##e##s" +
                               number + "</altobjid>\n";
        for (int i = 0; i < 23; ++i) {
            document += "<type/>\n";
        }
        arguments.push_back(folder.write(number, document + "</Node>"));
    }
    const auto result = runFiRotate(arguments);
    EXPECT_EQ(result.exitStatus, 5);
    EXPECT_THAT(
        result.output,
        EndsWith(arguments[3] +
                 ":21:1: warning: and 3 more of these [empty-element]\n    the same: 46 "
                 "warnings in " +
                 arguments[4] + " and " + arguments[5] +
                 "\nno errors, 69 warnings; 46 of these follow from others or repeat them; checked the "
                 "configuration and 3 documents\n"));
}

TEST(FiRotateCheck, HasTheSameExitStatusInJsonAndInWords) {
    EXPECT_EQ(runFiRotate({"check", "--json", "--config", "encA##lun1;snap1"}).exitStatus, 0);
    EXPECT_EQ(runFiRotate({"check", "--json", "--config", "encA##lun1; snap1"}).exitStatus, 5);
    EXPECT_EQ(runFiRotate({"check", "--json", "--config", "encA##lun1"}).exitStatus, 3);
}

TEST(FiRotateCheck, TakesAWholeCallFromARequest) {
    const CTemporaryFolder folder;
    const std::string request = folder.write(
        "call.json", R"({"configuration": "encA##lun1", "backups": [{"file": "/", "flag_word": 4}]})");
    const auto result = runFiRotate({"check", "--request", request});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(
        result.output,
        request +
            " (configuration):1:1: error: \"encA##lun1\" has no further targets, so no call can succeed "
            "[no-further-targets]\n"
            "    encA##lun1\n"
            "    ^\n"
            "/:1:1: error: this is a folder, which the library reads as an empty document [not-a-file]\n"
            "2 errors, no warnings; checked the configuration and 1 document\n");
}

TEST(FiRotateCheck, ReportsANulInAConfigurationFileRatherThanRefusingIt) {
    const CTemporaryFolder folder;
    const std::string file = folder.write("c", std::string("encA##lun1;snap1\0;snap2", 23));
    const auto result = runFiRotate({"check", "--config-file", file});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output, StartsWith(file + ":1:17: error: a NUL byte ends the configuration "
                                                 "here [nul-byte]\n"
                                                 "    encA##lun1;snap1\\x00;snap2\n"
                                                 "                    ^\n"));
}

TEST(FiRotateCheck, ShowsBytesThatAreNotPrintableAndPutsTheCaretUnderThePlace) {
    const auto result = runFiRotate({"check", "--config", "e\xFF\x1B[##\xE6\xBC\xA2;s1; s2"});
    EXPECT_EQ(result.output,
              "--config:1:12: warning: \"e\\xFF\\x1B[## s2\" has a name that begins or ends with a blank "
              "[blank-in-target]\n"
              "    e\\xFF\\x1B[##\xE6\xBC\xA2;s1; s2\n"
              "                      ^\n"
              "no errors, 1 warning; checked the configuration and no documents\n");
}

TEST(FiRotateCheck, ShowsTwentyOfAHazardAndCountsTheOthers) {
    const CTemporaryFolder folder;
    std::string document =
        "<Node><timeStamp>1</timeStamp><objid>UDID##v##m##e##l</objid>"
        "<altobjid>UDID##v##m##e##s</altobjid>\n";
    for (int i = 0; i < 23; ++i) {
        document += "<type/>\n";
    }
    const std::string file = folder.write("d.xml", document + "</Node>");
    const auto result = runFiRotate({"check", "--config", "e##l;s", file});
    EXPECT_EQ(result.exitStatus, 5);
    EXPECT_THAT(result.output, HasSubstr(file + ":21:1: warning: type contains no text"));
    EXPECT_THAT(result.output, Not(HasSubstr(file + ":22:1:")));
    EXPECT_THAT(result.output, HasSubstr(file + ":21:1: warning: and 3 more of these [empty-element]\n"));
    EXPECT_THAT(result.output, HasSubstr("no errors, 23 warnings;"));
}

// More of them than a sort leaves in order.
TEST(FiRotateCheck, NamesThoseBackupsOfEqualTimeStampsThatSelectCallsInvalid) {
    const CTemporaryFolder folder;
    std::vector<std::string> arguments{"--json", "--config", "e##l;s1;s2;s3;s4;s5;s6;s7;s8;s9"};
    for (int i = 0; i < 36; ++i) {
        arguments.push_back(
            folder.write("d" + std::to_string(i) + ".xml",
                         "<Node><timeStamp>" + std::to_string(i % 3) +
                             "</timeStamp><objid>UDID##v##m##e##l</objid><altobjid>UDID##v##m##e##s" +
                             std::to_string(1 + i % 9) + "</altobjid></Node>"));
    }
    std::set<std::string> invalid;
    std::set<std::string> claimed;
    auto selecting = arguments;
    selecting.insert(selecting.begin(), "select");
    const auto outcome = nlohmann::json::parse(runFiRotate(selecting).output);
    for (const auto& backup : outcome["backups"]) {
        (backup["state"] == "invalid" ? invalid : claimed).insert(backup["file"].get<std::string>());
    }
    std::set<std::string> reported;
    std::set<std::string> toldToClaim;
    arguments.insert(arguments.begin(), "check");
    const auto report = nlohmann::json::parse(runFiRotate(arguments).output);
    for (const auto& finding : report["findings"]) {
        if (finding["name"] == "target-held-by-several") {
            reported.insert(finding["file"].get<std::string>());
            const auto text = finding["text"].get<std::string>();
            const std::size_t end = text.find(":1, which claims it");
            const std::size_t begin = text.rfind(' ', end) + 1;
            toldToClaim.insert(text.substr(begin, end - begin));
        }
    }
    EXPECT_EQ(reported.size(), 27U);
    EXPECT_EQ(reported, invalid);
    EXPECT_EQ(toldToClaim, claimed);
}

TEST(FiRotateCheck, ExplainsEveryHazardByItsName) {
    for (const fi_rotate::SHazardKind& kind : fi_rotate::hazardKinds()) {
        const std::string name(kind.name);
        const auto result = runFiRotate({"check", "--explain", name});
        EXPECT_EQ(result.exitStatus, 0) << name;
        EXPECT_EQ(result.error, "") << name;
        EXPECT_THAT(result.output, StartsWith(name + " ("));
        EXPECT_THAT(result.output, HasSubstr(std::string(kind.paragraph)));
    }
}

TEST(FiRotateCheck, ExplainsInAParagraph) {
    EXPECT_EQ(runFiRotate({"check", "--explain", "no-further-targets"}).output,
              "no-further-targets (error)\n\n"
              "A configuration has only its first target. There is no target for its snapshots,\n"
              "so no call can succeed, even when backups of other configurations are released.\n"
              "Put back the further targets that it had. Otherwise add at least one.\n");
}

TEST(FiRotateCheck, ExplainsWhoCanMendADocument) {
    EXPECT_EQ(runFiRotate({"check", "--explain", "long-text"}).output,
              "long-text (error)\n\n"
              "The text of a data element is longer than 1 MiB. The XML library delivers it in\n"
              "pieces, and only the last piece counts. No identifier or time stamp needs to be\n"
              "that long.\n\n"
              "The backup product writes its documents: do not edit this one, but tell the\n"
              "maker of the product.\n");
}

// Documents belong to the product: a name that was corrected by hand can let a good snapshot be overwritten.
TEST(FiRotateCheck, TellsNobodyToEditADocument) {
    for (const fi_rotate::SHazardKind& kind : fi_rotate::hazardKinds()) {
        const bool isOfDocuments = kind.hazard >= fi_rotate::EHazard::kEncodingMismatch;
        const std::string output = runFiRotate({"check", "--explain", std::string(kind.name)}).output;
        EXPECT_EQ(output.find("not edit") != std::string::npos, isOfDocuments) << output;
        for (const std::string order : {"Correct ", "correct the objid", "correct the altobjid", "Write ",
                                        "Put ", "Remove ", "Move ", "Give "}) {
            EXPECT_TRUE(!isOfDocuments || output.find(order) == std::string::npos) << order << "in\n"
                                                                                   << output;
        }
    }
}

TEST(FiRotateCheck, NamesTheHazardsWhenOneIsNotKnown) {
    const auto result = runFiRotate({"check", "--explain", "nonsense"});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.error, StartsWith("fi-rotate: --explain: there is no hazard \"nonsense\"\n"
                                         "The hazards are:\n  no-configuration\n"));
    EXPECT_THAT(result.error, HasSubstr("\n  target-held-twice\n"));
    EXPECT_THAT(runFiRotate({"check", "--explain", "pair-match-nothing"}).error,
                HasSubstr("there is no hazard \"pair-match-nothing\"; did you mean pair-matches-nothing?\n"));
}

TEST(FiRotateCheck, WrongUsageExitsWith2) {
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {{"check"}, "give exactly one of --config, --config-file"},
        {{"check", "a.xml"}, "give exactly one of --config, --config-file"},
        {{"check", "--config", "a##b", "--config-file", "c"}, "give exactly one of --config, --config-file"},
        {{"check", "--config", "a##b", "--explain", "doctype"},
         "give exactly one of --config, --config-file"},
        {{"check", "--explain", "doctype", "a.xml"}, "FIID cannot be used together with --explain"},
        {{"check", "--explain", "doctype", "--json"}, "--json cannot be used together with --explain"},
        {{"check", "--request", "r", "a.xml"}, "FIID cannot be used together with --request"},
        {{"check", "--request", "/dev/null"}, "\"/dev/null\" is not a request: it is not JSON"},
        {{"check", "--config-file", "no/such"}, "cannot read \"no/such\": No such file"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const auto result = runFiRotate(row.arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.error, HasSubstr(row.message));
    }
}

TEST(FiRotateCheck, HelpEndsWithTheExitStatusesOfThisSubcommand) {
    EXPECT_THAT(runFiRotate({"check", "--help"}).output,
                EndsWith("\n\nExit status:\n"
                         "    0  no errors and no warnings\n"
                         "    1  the output could not be written, or the work could not be finished\n"
                         "    2  wrong usage, or a file (not a document) cannot be used; nothing was done\n"
                         "    3  errors were found\n"
                         "    5  warnings were found, but no errors\n"));
}

TEST(FiRotateCheck, SaysWhenItsReportCannotBeWritten) {
    const auto result = fi_test::runFiRotateTo("/dev/full", {"check", "--config", "encA##lun1;snap1"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.error, HasSubstr("cannot write standard output"));
}

// The XML library quotes what it found in its messages.
TEST(FiRotateCheck, DoesNotReportMalformedXmlAsALimit) {
    const CTemporaryFolder folder;
    const std::string file =
        folder.write("backup.xml", "<?xml version=\"1entity expansions.0\"?>\n<Node/>\n");
    const auto result = runFiRotate({"check", "--config", "encA##lun1;snap1", file});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.output, HasSubstr("[malformed-xml]"));
    EXPECT_THAT(result.output, HasSubstr("[no-node]"));
    EXPECT_THAT(result.output, Not(HasSubstr("[reading-limit]")));
}

}  // namespace
