#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

#include "tests/model/Generator.h"
#include "tests/model/LibraryHost.h"

// Hosts tell the lines of a trace apart by their formats, so a format must not hold texts of the call. The
// table in the guide for hosts lists all formats.

namespace fi_model {
namespace {

using fi_test::Formats;

// Adds the format of a row "| severity | `format` | when it occurs |".
void addRow(const std::string& row, Formats& formats) {
    const std::size_t begin = row.find("| `");
    const std::size_t end = row.rfind("` |");
    const bool isOfNoCall = row.find("Does not occur in a call", end) == end + 4;
    if (!isOfNoCall) {
        std::string format = row.substr(begin + 3, end - begin - 3);
        // A line end stands as \n in the guide.
        for (std::size_t at = format.find("\\n"); at != std::string::npos; at = format.find("\\n", at)) {
            format.replace(at, 2, "\n");
        }
        formats.emplace(format, std::stoi(row.substr(2)));
    }
}

// The formats that the guide lists for calls.
Formats listedFormats() {
    std::ifstream guide(FI_HOST_GUIDE);
    Formats formats;
    for (std::string line; std::getline(guide, line);) {
        if (line.compare(0, 5, "| 3 |") == 0 || line.compare(0, 5, "| 4 |") == 0) {
            addRow(line, formats);
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
