#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/check/hazard.h"
#include "cli/check/place.h"

namespace fi_rotate {

// One hazard of one input. Text of the inputs stands in it as it is, whatever its bytes.
struct SFinding {
    EHazard hazard = EHazard::kNoConfiguration;
    SSpot spot;
    std::string text;
    // How many hazards it stands for.
    std::size_t count = 1;
};

// What was found in one input: a document or the configuration.
class CFindings {
public:
    explicit CFindings(std::string input) : name(std::move(input)) {}

    // Of each hazard the first few are kept; the others are counted.
    void add(SFinding finding);

    // What has no place within the input.
    void addOfWhole(EHazard hazard, std::string text);

    // Whether `add` would only count another one. Then `countAnother` does the same without a text to make.
    bool isFull(EHazard hazard) const;
    void countAnother(EHazard hazard);

    // By place; what was only counted has a row of its own, after the last one that was kept.
    std::vector<SFinding> inOrder() const;

    const std::string& input() const { return name; }

private:
    std::string name;
    std::vector<SFinding> kept;
    std::array<std::size_t, kHazardCount> counts{};
};

// `text` in quotation marks, cut when it is long.
std::string inQuotes(std::string_view text);

}  // namespace fi_rotate
