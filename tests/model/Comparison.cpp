#include "tests/model/Comparison.h"

#include <algorithm>
#include <map>
#include <numeric>

#include "tests/model/Model.h"

namespace fi_model {
namespace {

// Places in load order, by time stamp.
std::map<std::string, std::vector<std::size_t>> groupsOf(const std::vector<std::string>& timeStamps) {
    std::map<std::string, std::vector<std::size_t>> groups;
    for (std::size_t index = 0; index < timeStamps.size(); ++index) {
        groups[timeStamps[index]].push_back(index);
    }
    return groups;
}

bool agreesUnderSomeOrder(const SCall& call, const SAnswer& actual,
                          const std::vector<std::string>& timeStamps) {
    const auto ranks = tieRanks(timeStamps);
    for (const auto& newestFirst : ranks) {
        for (const auto& oldestFirst : ranks) {
            const SAnswer expected = predict(call, {newestFirst, oldestFirst}).answer;
            if (firstDifference(expected, actual).empty()) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

std::size_t countTieRanks(const std::vector<std::string>& timeStamps) {
    constexpr std::size_t kMany = 1000000;
    std::size_t count = 1;
    for (const auto& [timeStamp, places] : groupsOf(timeStamps)) {
        for (std::size_t size = 2; size <= places.size() && count < kMany; ++size) {
            count *= size;
        }
    }
    return count;
}

std::vector<std::vector<std::size_t>> tieRanks(const std::vector<std::string>& timeStamps) {
    std::vector<std::size_t> loadOrder(timeStamps.size());
    std::iota(loadOrder.begin(), loadOrder.end(), std::size_t{0});
    std::vector<std::vector<std::size_t>> all = {loadOrder};
    for (const auto& [timeStamp, places] : groupsOf(timeStamps)) {
        std::vector<std::vector<std::size_t>> extended;
        for (const auto& ranks : all) {
            std::vector<std::size_t> order = places;
            do {
                extended.push_back(ranks);
                for (std::size_t index = 0; index < places.size(); ++index) {
                    extended.back()[places[index]] = order[index];
                }
            } while (std::next_permutation(order.begin(), order.end()));
        }
        all = extended;
    }
    return all;
}

SComparison compare(const SCall& call, const Subject& subject) {
    const SPrediction prediction = predict(call);
    SComparison comparison;
    comparison.tally = prediction.tally;
    comparison.actual = subject(call);
    comparison.difference = firstDifference(prediction.answer, comparison.actual);
    if (!comparison.difference.empty() && countTieRanks(prediction.timeStamps) > 1 &&
        agreesUnderSomeOrder(call, comparison.actual, prediction.timeStamps)) {
        comparison.difference.clear();
    }
    return comparison;
}

}  // namespace fi_model
