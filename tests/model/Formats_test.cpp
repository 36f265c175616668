#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <regex>
#include <string>

#include "tests/model/Generator.h"
#include "tests/model/LibraryHost.h"

// Hosts tell the lines of a trace apart by their formats, so these never hold a text of the call. The one
// list of them is the table in the guide for hosts.

namespace fi_model {
namespace {

using fi_test::Formats;

// Those of calls; a line end stands as \n in the guide.
Formats listedFormats() {
    static const std::regex kRow("\\| ([34]) \\| `(.*)` \\| (.+) \\|");
    static const std::string kOfNoCall = "Does not occur in a call";
    std::ifstream guide(FI_HOST_GUIDE);
    Formats formats;
    std::smatch row;
    for (std::string line; std::getline(guide, line);) {
        if (std::regex_match(line, row, kRow) && row.str(3).compare(0, kOfNoCall.size(), kOfNoCall) != 0) {
            formats.emplace(std::regex_replace(row.str(2), std::regex(R"(\\n)"), "\n"),
                            std::stoi(row.str(1)));
        }
    }
    return formats;
}

TEST(Formats, OfRandomCallsAreThoseThatTheGuideLists) {
    CLibraryHost host;
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        host.run(makeCall(seed));
    }
    EXPECT_THAT(host.formats(), testing::UnorderedElementsAreArray(listedFormats()));
}

}  // namespace
}  // namespace fi_model
