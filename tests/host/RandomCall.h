#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "host/call.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_test {

// Targets as ENCLOSURE##DEVICE.
struct SPair {
    std::string first;
    std::string further;
};

// A backup's document.
std::string document(const std::string& timeStamp, const std::vector<SPair>& pairs);

// How many random calls a test makes.
constexpr unsigned kRandomCalls = FI_RANDOM_CALLS;

// Makes a call of few names, so that they meet often, and writes its documents.
class CRandomCall {
public:
    // `place` is borrowed.
    CRandomCall(unsigned seed, const CTemporaryFolder& place);

    fi_rotate::SCall make();

private:
    int below(int bound);
    std::string first();
    std::string further();
    fi_rotate::SBackup backup(int number, const std::vector<fi_rotate::SBackup>& earlier);

    std::mt19937 random;
    const CTemporaryFolder& folder;
};

}  // namespace fi_test
