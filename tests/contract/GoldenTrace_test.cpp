#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Host.h"

// Complete traces spelled out in golden/, one line a call: level and text, a line end at the end of a text
// as \n, the folder of the documents as {dir}.
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

class GoldenTrace : public fi_test::CContractTest, public testing::WithParamInterface<SGolden> {
protected:
    std::string expected() const {
        std::ifstream file(FI_CONTRACT_GOLDEN "/" + std::string(GetParam().name) + ".trace");
        EXPECT_TRUE(file.is_open());
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string asText(const fi_test::Trace& trace) const {
        std::string text;
        for (const fi_test::TraceLine& line : trace) {
            text += std::to_string(line.level) + ' ' + withoutFolder(line.text);
            if (text.back() == '\n') {
                text.replace(text.size() - 1, 1, "\\n");
            }
            text += '\n';
        }
        return text;
    }

private:
    std::string withoutFolder(std::string text) const {
        const std::string own = path("");
        for (std::size_t i = 0; (i = text.find(own, i)) != std::string::npos;) {
            text.replace(i, own.size(), "{dir}/");
        }
        return text;
    }
};

TEST_P(GoldenTrace, IsWhatTheCallTraces) {
    std::vector<fi_test::SListed> backups;
    for (const SDocument& document : GetParam().documents) {
        const std::string file = document.content == nullptr
                                     ? path(document.name)
                                     : write(document.name, document.content);
        backups.push_back({file, document.flagWord});
    }
    EXPECT_EQ(asText(fi_test::call(GetParam().configuration, backups).trace), expected());
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
    {"malformed-identifier",
     "encA##lun1;snap1",
     {{"a.xml", kHolder, 0}, {"bad.xml", kMalformed, 0}}},
    {"nested-document-kept", "encA##lun1;snap1;snap2", {{"n.xml", kNested, 4}}},
};

std::string testName(const testing::TestParamInfo<SGolden>& golden) {
    std::string name = golden.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Calls, GoldenTrace, testing::ValuesIn(kGolden), testName);

}  // namespace
