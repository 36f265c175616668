// What a call does when strdup fails, which makes the copy of the selection. The library finds this program's
// strdup before that of the C library.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

namespace {

bool isShortOfMemory = false;
int duplicates = 0;

}  // namespace

extern "C" __attribute__((visibility("default"))) char* strdup(const char* text) noexcept {
    ++duplicates;
    if (isShortOfMemory) {
        return nullptr;
    }
    const std::size_t size = std::strlen(text) + 1;
    void* const copy = std::malloc(size);
    return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

namespace fi_test {
namespace {

class CStrdup : public CContractTest {
protected:
    CStrdup() { duplicates = 0; }
    ~CStrdup() override { isShortOfMemory = false; }
};

TEST_F(CStrdup, MakesTheSelectionThatTheCallerGets) {
    EXPECT_EQ(call("encA##lun1;snap1", {}).selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(duplicates, 1);
}

TEST_F(CStrdup, FailureFailsAFirstBackup) {
    isShortOfMemory = true;
    const SObserved observed = call("encA##lun1;snap1", {});
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(duplicates, 1);
}

TEST_F(CStrdup, FailureFailsARotationAndLeavesTheFlagsAsTheyWere) {
    const std::string a = write("a.xml", toXml(backup("1", {{"encA##lun1", "encA##snap1"}})));
    isShortOfMemory = true;
    const SObserved observed = call("encA##lun1;snap1", {{a, 8}});
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, std::vector<std::int32_t>{8});
    EXPECT_EQ(duplicates, 1);

    isShortOfMemory = false;
    EXPECT_EQ(call("encA##lun1;snap1", {{a, 8}}).flags, std::vector<std::int32_t>{2});
}

}  // namespace
}  // namespace fi_test
