#include <algorithm>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Host.h"
#include "tests/support/Golden.h"

// Calls whose complete trace is compared with one that was written by hand.
namespace fi_test {
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
// Reading ends at the end tag that closes nothing.
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

// A backup of `first` that holds `further`.
std::string holder(const std::string& timeStamp, const std::string& first, const std::string& further) {
    return "<Node><objid>UDID##v##m##" + first + "</objid><altobjid>UDID##v##m##" + further +
           "</altobjid><timeStamp>" + timeStamp + "</timeStamp></Node>";
}

// Claims t1 and then finds s3 used.
const std::string kPartly =
    "<Node><timeStamp>3</timeStamp><Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##s3"
    "</altobjid></Node><Node><objid>UDID##v##m##encB##lun2</objid><altobjid>UDID##v##m##encB##t1</altobjid>"
    "</Node></Node>";
const std::string kPercent =
    "<Node><timeStamp>99%s</timeStamp><splitType>%s%n</splitType><objid>UDID##v##m##encA%s##lun%n</objid>"
    "<altobjid>UDID##v##m##encA%s##snap%d</altobjid></Node>";
const std::string kInvalidPercent =
    "<Node><objid>UDID##v##m##%s##%n</objid><altobjid>UDID##%d##%5$s##%n##%s</altobjid></Node>";

struct SDocument {
    const char* name;
    // Nothing when the file is missing.
    std::optional<std::string> content;
    std::int32_t flagWord;
};

struct SGolden {
    const char* name;
    const char* configuration;
    std::vector<SDocument> documents;
    // The size that is passed; that of the list when there is none.
    std::optional<std::int32_t> size = std::nullopt;
};

// Shown by the test framework in place of its bytes.
void PrintTo(const SGolden& golden, std::ostream* out) {
    *out << golden.name;
}

class CGoldenTrace : public CContractTest, public testing::WithParamInterface<SGolden> {};

TEST_P(CGoldenTrace, IsWhatTheCallTraces) {
    std::vector<SBackup> backups;
    for (const SDocument& document : GetParam().documents) {
        const std::string file =
            document.content ? write(document.name, *document.content) : path(document.name);
        backups.push_back({file, document.flagWord});
    }
    const auto size = GetParam().size.value_or(static_cast<std::int32_t>(backups.size()));
    const SObserved observed = callWithSize(GetParam().configuration, backups, size);
    EXPECT_EQ(asGoldenText(observed.trace, path("")), goldenText(GetParam().name));
}

const SGolden kGolden[] = {
    {"first-backup", "encA##lun1;snap1;snap2", {}},
    {"first-backup-without-a-target", "encA##lun1", {}},
    {"only-target-rotated", "encA##lun1;snap1", {{"a.xml", kHolder, 3}}},
    {"only-target-excluded", "encA##lun1;snap1", {{"a.xml", kHolder, 5}}},
    {"target-held-twice", "encA##lun1;snap1", {{"a.xml", kHolder, 0}, {"b.xml", kNewerHolder, 0}}},
    {"missing-file-in-the-middle",
     "encA##lun1;snap1;snap2",
     {{"a.xml", kHolder, 0}, {"missing.xml", std::nullopt, 0}, {"b.xml", kHolder, 0}}},
    {"malformed-identifier", "encA##lun1;snap1", {{"a.xml", kHolder, 0}, {"bad.xml", kMalformed, 0}}},
    {"ill-formed-document", "encA##lun1;snap1", {{"ill.xml", kIllFormed, 0}}},
    {"documents-without-a-node",
     "encA##lun1;snap1",
     {{"empty.xml", "", 9}, {"other.xml", "<other><x:Node/></other>", 9}, {"a.xml", kHolder, 0}}},
    {"document-vocabulary", "encA##lun1;snap1", {{"words.xml", kVocabulary, 0}}},
    {"nested-document-kept", "encA##lun1;snap1;snap2", {{"n.xml", kNested, 4}}},
    {"every-state",
     "encA##lun1;s1;s2;s3&encB##lun2;t1;t2",
     {{"kept.xml", holder("5", "encA##lun1", "encA##s3"), 0},
      {"invalid.xml", holder("1", "encZ##gone", "encA##s2"), 0},
      {"released.xml", holder("4", "encA##lun1", "encA##s2"), 1},
      {"partly.xml", kPartly, 0},
      {"excluded.xml", holder("2", "encA##lun1", "encA##s1"), 4}}},
    {"percent-signs",
     "encA%s##lun%n;snap%d;%x",
     {{"a%s%n.xml", kPercent, 0},
      {"b%d.xml", holder("98%s", "encA%s##lun%n", "encA%s##%x"), 4},
      {"c%x.xml", kInvalidPercent, 0},
      {"missing%s.xml", std::nullopt, 0}}},
    {"missing-first-file", "encA##lun1;snap1", {{"missing.xml", std::nullopt, 9}, {"a.xml", kHolder, 4}}},
    {"missing-file-without-a-target", "encA##lun1", {{"missing.xml", std::nullopt, 9}}},
    {"negative-size", "encA##lun1;snap1", {{"a.xml", kHolder, 5}}, -1},
    {"negative-size-without-a-target", "encA##lun1", {{"a.xml", kHolder, 5}}, -1},
    {"null-configuration", nullptr, {{"a.xml", kHolder, 0}}},
    {"no-configuration", "&\n", {{"a.xml", "<Node><objid>disk</objid></Node>", 5}}},
    {"no-configuration-without-backups", "&\n", {}},
    {"configuration-rejected-in-part",
     "encA##lun1;snap1&lun2;t1&encB##lun2;t1",
     {{"a.xml", holder("1", "encA##lun1", "encA##snap1"), 0}}},
    {"configuration-rejected-without-a-device", "encA##lun1;snap1\nencB##lun2;encB##\nencC##lun3;snap3", {}},
    {"configuration-rejected-without-targets", "encA##lun1;snap1&;;&encC##lun3;snap3", {}},
    {"configuration-with-references", "&\n&encA##&lt;lun&gt;;snap&#39;1&amp;encB##lun2;&quot;&", {}},
};

std::string testName(const testing::TestParamInfo<SGolden>& golden) {
    std::string name = golden.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Calls, CGoldenTrace, testing::ValuesIn(kGolden), testName);

}  // namespace
}  // namespace fi_test
