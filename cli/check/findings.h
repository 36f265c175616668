#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "cli/check/hazard.h"

namespace fi_rotate {

// Both count from 1.
struct SPlace {
    std::size_t line = 1;
    std::size_t column = 1;
};

// A place and what stands there, to be shown with a caret under it.
struct SSpot {
    SPlace place;
    // The part of its line that the place is in, and the bytes of it before the place; may be empty.
    std::string excerpt;
    std::size_t caret = 0;
    // Bytes at the place that belong together, as a target, a tag or the text of an element do.
    std::size_t wordLength = 0;
    // More of the line stands before the excerpt, and behind it.
    bool isCutBefore = false;
    bool isCutAfter = false;
};

// Finds the places of bytes in a text, whose lines end in a line feed, a carriage return, or both.
class CLines {
public:
    // The text is borrowed.
    explicit CLines(std::string_view borrowed);

    // The byte at `offset`, which is at most the size of the text; columns count characters.
    [[nodiscard]] SSpot at(std::size_t offset) const;

    // The byte at a place whose column counts UTF-16's units, as the XML library does. The nearest one when
    // there is no such place.
    [[nodiscard]] std::size_t offsetOf(SPlace place) const;

private:
    std::string_view text;
    // Offsets of the first bytes of all lines.
    std::vector<std::size_t> starts;
};

// All findings of one hazard in one input, as the cause of another finding, which follows from them or
// repeats them.
struct SCause {
    std::string input;
    EHazard hazard = EHazard::kNoConfiguration;

    bool operator<(const SCause& other) const {
        return std::tie(input, hazard) < std::tie(other.input, other.hazard);
    }
    bool operator==(const SCause& other) const { return input == other.input && hazard == other.hazard; }
};

// One place of an input that has a hazard. Text of the inputs stands in it as it is, whatever its bytes.
struct SFinding {
    EHazard hazard = EHazard::kNoConfiguration;
    SSpot spot;
    std::string text;
    // Nothing when it is a fault of its own.
    std::optional<SCause> cause = std::nullopt;
    // How many findings it stands for: more than 1 only in a row for those that were not kept.
    std::size_t count = 1;
};

// What was found in one input: a document or the configuration.
class CFindings {
public:
    explicit CFindings(std::string input) : name(std::move(input)) {}

    // Of each hazard with one cause the first few are kept; the others are counted.
    void add(SFinding finding);

    // Adds a finding on the whole input. Its place is line 1, column 1, and no text is shown there.
    void addOnWhole(EHazard hazard, std::string text, std::optional<SCause> cause = std::nullopt);

    // Whether `add` would only count another one. Then `countAnother` does the same without a text to make.
    [[nodiscard]] bool isFull(EHazard hazard, const std::optional<SCause>& cause = std::nullopt) const;
    void countAnother(EHazard hazard, const std::optional<SCause>& cause = std::nullopt);

    [[nodiscard]] bool has(EHazard hazard) const;

    // Sets the cause of all findings of `hazard` so far that have none: the finding of `cause` in this input.
    void setMissingCauses(EHazard hazard, EHazard cause);

    // Gives every finding the cause that `causeOf` tells. What was only counted goes with the last one of its
    // kind that was kept.
    void changeCauses(const std::function<std::optional<SCause>(const SFinding&)>& causeOf);

    // By place; what was only counted has a row of its own, after the last one that was kept.
    [[nodiscard]] std::vector<SFinding> inOrder() const;

    [[nodiscard]] const std::string& input() const { return name; }

private:
    using Counts = std::map<std::pair<EHazard, std::optional<SCause>>, std::size_t>;

    [[nodiscard]] Counts notKept() const;

    std::string name;
    std::vector<SFinding> kept;
    Counts counts;
};

// `text` in quotation marks, cut when it is long.
std::string inQuotes(std::string_view text);

// "a, b and c"; of many names the first ones and the number of the others.
std::string enumerate(const std::vector<std::string>& names);

}  // namespace fi_rotate
