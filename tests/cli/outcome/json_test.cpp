#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_test::example;
using fi_test::exampleBackups;
using fi_test::runFiRotate;
using Json = nlohmann::json;

// Throws when standard output is not one JSON document and nothing else.
Json selectJson(std::vector<std::string> arguments, int expectedStatus) {
    arguments.insert(arguments.begin(), {"select", "--json"});
    const auto result = runFiRotate(arguments);
    EXPECT_EQ(result.exitStatus, expectedStatus) << result.error;
    return Json::parse(result.output);
}

TEST(FiRotateSelectJson, HoldsTheFactsOfTheTables) {
    std::vector<std::string> arguments{"--config-file", example("resource.conf"), "--exclude",
                                       exampleBackups()[0]};
    for (const std::string& backup : exampleBackups()) {
        arguments.push_back(backup);
    }
    const Json document = selectJson(arguments, 0);

    Json expected = Json::parse(R"({
        "status": 0,
        "selection": "[ENC-A##VOL-0011;ENC-A##SNP-0102][ENC-A##VOL-0012;ENC-A##SNP-0112][ENC-B##VOL-0021;ENC-B##SNP-0202]",
        "configurations": [
            {"first": "ENC-A##VOL-0011", "chosen": "ENC-A##SNP-0102", "restore_points": 5, "restore_points_before": 6},
            {"first": "ENC-A##VOL-0012", "chosen": "ENC-A##SNP-0112", "restore_points": 5, "restore_points_before": 6},
            {"first": "ENC-B##VOL-0021", "chosen": "ENC-B##SNP-0202", "restore_points": 5, "restore_points_before": 6}
        ],
        "backups": [],
        "totals": {
            "kept": 5, "invalid": 2, "rotated": 1, "rotated_in_vain": 0, "not_loaded": 0, "without_state": 0
        },
        "exception": null,
        "messages": [],
        "advice": null
    })");
    const char* const states[] = {"kept", "invalid", "rotated", "invalid", "kept", "kept", "kept", "kept"};
    for (std::size_t i = 0; i < 8; ++i) {
        expected["backups"].push_back({{"file", exampleBackups()[i]},
                                       {"time_stamp", "2026100" + std::to_string(i + 1) + "013000"},
                                       {"flag_word", i == 0 ? 4 : 0},
                                       {"excluded", i == 0},
                                       {"state", states[i]}});
    }
    EXPECT_EQ(document, expected);
}

TEST(FiRotateSelectJson, StaysWholeWhenAFileIsMissing) {
    const fi_test::CTemporaryFolder folder;
    const std::string missing = folder.path("missing.xml");
    EXPECT_EQ(selectJson({"--config", "encA##lun1;snap1", missing}, 6),
              (Json{
                  {"status", 0},
                  {"selection", "[encA##lun1;encA##snap1]"},
                  {"configurations",
                   {{{"first", "encA##lun1"},
                     {"chosen", "encA##snap1"},
                     {"restore_points", 0},
                     {"restore_points_before", 0}}}},
                  {"backups",
                   {{{"file", missing},
                     {"time_stamp", nullptr},
                     {"flag_word", 0},
                     {"excluded", false},
                     {"state", "not loaded"}}}},
                  {"totals",
                   {{"kept", 0},
                    {"invalid", 0},
                    {"rotated", 0},
                    {"rotated_in_vain", 0},
                    {"not_loaded", 1},
                    {"without_state", 0}}},
                  {"exception", nullptr},
                  {"messages", {"CFiFiidLoader::load: ERROR: failed to load FIID file"}},
                  {"advice", nullptr},
              }));
}

TEST(FiRotateSelectJson, HasNullsWhereThereIsNoSelection) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<Node/>");
    EXPECT_EQ(selectJson({"--config", "encA##lun1", "--flags", file + "=-3", file}, 3),
              (Json{
                  {"status", 3},
                  {"selection", nullptr},
                  {"configurations", nullptr},
                  {"backups",
                   {{{"file", file},
                     {"time_stamp", nullptr},
                     {"flag_word", -3},
                     {"excluded", true},
                     {"state", nullptr}}}},
                  {"totals",
                   {{"kept", 0},
                    {"invalid", 0},
                    {"rotated", 0},
                    {"rotated_in_vain", 0},
                    {"not_loaded", 0},
                    {"without_state", 1}}},
                  {"exception", nullptr},
                  {"messages",
                   {"fi_process_backups : Resources not availabe, some/all are part of Skip "
                    "rotation fiids"}},
                  {"advice",
                   {{"changes", Json::array()},
                    {"released", nullptr},
                    {"released_with_another_target", Json::array()},
                    {"trials", Json::array()},
                    {"untried", 0}}},
              }));
}

TEST(FiRotateSelectJson, HoldsTheExceptionThatLeftTheLibrary) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write(
        "a.xml", "<Node><objid>UDID##a##b##encA##lun1</objid><altobjid>UDID##\xC3\xA4</altobjid></Node>");
    const Json document = selectJson({"--config", "encA##lun1;snap1", file}, 4);
    EXPECT_EQ(document["status"], nullptr);
    EXPECT_EQ(document["exception"],
              (Json{{"identifier", "UDID##\xC3\xA4"}, {"code", 3}, {"reason", "no ## follows its prefix"}}));
    EXPECT_EQ(document["messages"], (Json{"ERROR: UDID##\xC3\xA4"}));
}

TEST(FiRotateSelectJson, CarriesNamesThatAreNotUtf8) {
    const fi_test::CTemporaryFolder folder;
    const std::string file = folder.write("B\xFCro.xml", "<Node/>");
    const Json document = selectJson({"--config", "enc\xE4##lun1;snap1", file}, 0);
    EXPECT_EQ(document["backups"][0]["file"], folder.path("B\\xFCro.xml"));
    EXPECT_EQ(document["selection"], "[enc\\xE4##lun1;enc\\xE4##snap1]");
}

TEST(FiRotateSelectJson, LeavesConfigurationsOutWhenNamesMakeTheSelectionAmbiguous) {
    const Json document = selectJson({"--config", "encA##x][y;snap1"}, 0);
    EXPECT_EQ(document["selection"], "[encA##x][y;encA##snap1]");
    EXPECT_EQ(document["configurations"], nullptr);
}

TEST(FiRotateSelectJson, ListsBackupsWithoutConfigurations) {
    const Json document = selectJson({"--config", ""}, 0);
    EXPECT_EQ(document["selection"], "");
    EXPECT_EQ(document["configurations"], Json::array());
    EXPECT_EQ(document["backups"], Json::array());
    EXPECT_EQ(document["messages"], (Json{"CFiResourceParser::parse : Invalid resource specification []"}));
}

}  // namespace
