#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/model/Answer.h"
#include "tests/model/Call.h"
#include "tests/model/Outcome.h"

namespace fi_model {

// The order of backups with equal time stamps, which the rotation leaves open: ranks of the loaded
// backups, by their place in load order. Each of the two sorts may resolve ties in its own way.
struct STieOrder {
    std::vector<std::size_t> newestFirst;
    std::vector<std::size_t> oldestFirst;
};

struct SPrediction {
    SAnswer answer;
    CTally tally;
    // Of the loaded backups, in load order.
    std::vector<std::string> timeStamps;
};

// What a call must answer, worked out in the plainest way. Without a tie order, ties are resolved
// by load order.
SPrediction predict(const SCall& call, const STieOrder& ties = {});

}  // namespace fi_model
