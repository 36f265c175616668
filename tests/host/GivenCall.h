#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/library_call.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_test {

inline fi_rotate::SOutcome accountedOutcome(const fi_rotate::SCall& call) {
    fi_rotate::SWishes wishes;
    wishes.account = true;
    return fi_rotate::runCall(call, wishes);
}

// A call that a test puts together, with its documents.
class CGivenCall : public testing::Test {
protected:
    std::string give(const std::string& name, const std::string& timeStamp, const std::vector<SPair>& pairs,
                     std::int32_t flagWord = 0) {
        call.backups.push_back({folder.write(name, document(timeStamp, pairs)), flagWord});
        return call.backups.back().file;
    }

    CTemporaryFolder folder;
    fi_rotate::SCall call;
};

}  // namespace fi_test
