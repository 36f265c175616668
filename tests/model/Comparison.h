#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tests/model/Answer.h"
#include "tests/model/Call.h"
#include "tests/model/Outcome.h"

namespace fi_model {

// What answers calls: the library, or in a test something that errs on purpose.
using Subject = std::function<SAnswer(const SCall&)>;

struct SComparison {
    // Empty when the answers agree.
    std::string difference;
    // What the model counted.
    CTally tally;
    // The subject's answer.
    SAnswer actual;
};

// Every order of equal time stamps, as ranks by load order; the load order itself is the first.
std::vector<std::vector<std::size_t>> tieRanks(const std::vector<std::string>& timeStamps);

// How many orders there are, without making them.
std::size_t countTieRanks(const std::vector<std::string>& timeStamps);

// Asks the model and the subject. Where time stamps are equal, any order of theirs is right, and
// the answers agree when the model gives the subject's answer under one of them.
SComparison compare(const SCall& call, const Subject& subject);

}  // namespace fi_model
