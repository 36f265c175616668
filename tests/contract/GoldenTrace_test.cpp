#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Golden.h"
#include "tests/contract/Host.h"

// Calls whose complete trace is spelled out.
namespace {

constexpr const char* kHolder =
    "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1</altobjid>"
    "<type>2</type><splitType>mirror</splitType><timeStamp>20260101</timeStamp></Node>";
constexpr const char* kNewerHolder =
    "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1</altobjid>"
    "<type>2</type><splitType>mirror</splitType><timeStamp>20260102</timeStamp></Node>";
constexpr const char* kMalformed =
    "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>snap1</altobjid>"
    "<type>2</type><splitType>mirror</splitType><timeStamp>20260102</timeStamp></Node>";
// The reader gives up at the end tag that closes nothing.
constexpr const char* kIllFormed =
    "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1</altobjid>"
    "<unclosed></Node><Node/>";
constexpr const char* kVocabulary =
    "<?xml version=\"1.0\"?>\n"
    "<Node objid=\"ignored\"><!-- no -->\n"
    "<type> -3</type><objid/><node>lower</node>"
    "<Node><splitType>a&lt;b</splitType><type>12abc</type><timeStamp>5</timeStamp></Node>"
    "<x:Node><Node><type>4294967298</type><altobjid>one<i/>\ntwo\\</altobjid></Node></x:Node>"
    "</Node>";
constexpr const char* kNested =
    "<backup><Node><timeStamp>7</timeStamp><Node><objid>UDID##v##m##encA##lun1</objid>"
    "<altobjid>UDID##v##m##encA##snap1</altobjid></Node><Node><objid>disk</objid></Node></Node>"
    "<end/></backup>";

struct SDocument {
    const char* name;
    // Null for a file that is not there.
    const char* content;
    std::int32_t flagWord;
};

struct SGolden {
    const char* name;
    const char* configuration;
    std::vector<SDocument> documents;
};

// Shown by the test framework in place of its bytes.
void PrintTo(const SGolden& golden, std::ostream* out) {
    *out << golden.name;
}

class GoldenTrace : public fi_test::CContractTest, public testing::WithParamInterface<SGolden> {};

TEST_P(GoldenTrace, IsWhatTheCallTraces) {
    std::vector<fi_test::SListed> backups;
    for (const SDocument& document : GetParam().documents) {
        const std::string file =
            document.content == nullptr ? path(document.name) : write(document.name, document.content);
        backups.push_back({file, document.flagWord});
    }
    const fi_test::SObserved observed = fi_test::call(GetParam().configuration, backups);
    EXPECT_EQ(fi_test::asGoldenText(observed.trace, path("")), fi_test::goldenText(GetParam().name));
}

const SGolden kGolden[] = {
    {"first-backup", "encA##lun1;snap1;snap2", {}},
    {"first-backup-without-a-target", "encA##lun1", {}},
    {"only-target-rotated", "encA##lun1;snap1", {{"a.xml", kHolder, 3}}},
    {"only-target-excluded", "encA##lun1;snap1", {{"a.xml", kHolder, 5}}},
    {"target-held-twice", "encA##lun1;snap1", {{"a.xml", kHolder, 0}, {"b.xml", kNewerHolder, 0}}},
    {"missing-file-in-the-middle",
     "encA##lun1;snap1;snap2",
     {{"a.xml", kHolder, 0}, {"missing.xml", nullptr, 0}, {"b.xml", kHolder, 0}}},
    {"malformed-identifier", "encA##lun1;snap1", {{"a.xml", kHolder, 0}, {"bad.xml", kMalformed, 0}}},
    {"ill-formed-document", "encA##lun1;snap1", {{"ill.xml", kIllFormed, 0}}},
    {"documents-without-a-node",
     "encA##lun1;snap1",
     {{"empty.xml", "", 9}, {"other.xml", "<other><x:Node/></other>", 9}, {"a.xml", kHolder, 0}}},
    {"document-vocabulary", "encA##lun1;snap1", {{"words.xml", kVocabulary, 0}}},
    {"nested-document-kept", "encA##lun1;snap1;snap2", {{"n.xml", kNested, 4}}},
};

std::string testName(const testing::TestParamInfo<SGolden>& golden) {
    std::string name = golden.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Calls, GoldenTrace, testing::ValuesIn(kGolden), testName);

}  // namespace
