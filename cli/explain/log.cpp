#include "cli/explain/log.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "cli/explain/writers.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

// A longer text before a name belongs to a message of the host.
constexpr std::size_t kLongestPrefix = 512;

std::size_t findName(std::string_view line) {
    std::size_t place = std::string_view::npos;
    for (const std::string_view name : kOperations) {
        place = std::min(place, line.find(name));
    }
    return place <= kLongestPrefix ? place : std::string_view::npos;
}

// Whether the line may contain a text without a name after a prefix.
bool mayEndWithUnnamed(std::string_view line) {
    constexpr std::string_view kLastOfUnnamed = "]})>";
    return !line.empty() && (kLastOfUnnamed.find(line.back()) != std::string_view::npos ||
                             line.find(startOf(ETraceText::kMalformedIdentifier)) != std::string_view::npos);
}

// The kind of a text that begins with a name; nothing when the library writes no such text.
std::optional<ETraceText> kindOfNamed(std::string_view text) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(ETraceText::kCount); ++i) {
        const auto kind = static_cast<ETraceText>(i);
        if (findName(startOf(kind)) == 0 && argumentsOf(kind, text).has_value()) {
            return kind;
        }
    }
    return std::nullopt;
}

// Whether a line break in a value has cut off the text: in a configuration before its first target, or in a
// name.
bool isCutOff(std::string_view text) {
    return startsAs(ETraceText::kConfiguration, text) || startsAs(ETraceText::kNoConfiguration, text) ||
           startsAs(ETraceText::kParsed, text);
}

std::optional<SNamedLine> asNamed(std::size_t log, std::string_view line) {
    const std::size_t name = findName(line);
    // The whole line may be a text without a name that quotes a text with a name. (A line that begins with
    // "ERROR: " may have that from the host.)
    const bool isWholeUnnamed = isUnnamed(line) && !startsAs(ETraceText::kMalformedIdentifier, line);
    if (name == std::string_view::npos || isWholeUnnamed) {
        return std::nullopt;
    }
    const std::string_view text = line.substr(name);
    const auto kind = kindOfNamed(text);
    // Too many messages of hosts look like this text.
    if (kind == ETraceText::kNotClaimed) {
        return std::nullopt;
    }
    const bool isEmptyConfiguration =
        text == startOf(ETraceText::kConfiguration) || text == startOf(ETraceText::kNoConfiguration);
    if (!kind.has_value() && !isEmptyConfiguration) {
        return std::nullopt;
    }
    const bool isFailure = kind.has_value() ? reportsFailure(*kind) || *kind == ETraceText::kFlagWord
                                            : text == startOf(ETraceText::kNoConfiguration);
    return SNamedLine{log, line.substr(0, name), beginsCall(text), isFailure};
}

// A text of the library's in a line.
struct SFound {
    std::string writer;
    std::string_view text;
    std::string_view time;
    bool isNamed = false;
};

std::optional<SFound> findNamed(const CWriters& writers, std::size_t log, std::string_view line) {
    const std::size_t name = findName(line);
    if (name == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view text = line.substr(name);
    const SPrefix prefix = prefixOf(line.substr(0, name));
    const auto writer = writers.writerOf(log, prefix);
    if (!writer.has_value() || (!kindOfNamed(text).has_value() && !isCutOff(text))) {
        return std::nullopt;
    }
    return SFound{*writer, text, prefix.time, true};
}

std::optional<SFound> findUnnamed(const CWriters& writers, std::size_t log, std::string_view line) {
    // A number in the prefix may have grown.
    constexpr std::size_t kGrowth = 32;
    // A tree's lines are indented with tabs, and its texts begin with a blank.
    constexpr std::string_view kFirstOfUnnamed = "\t [{E";
    std::optional<SFound> found;
    for (std::size_t end = 0; end < std::min(line.size(), writers.longestPrefix() + kGrowth); ++end) {
        const std::string_view text = line.substr(end);
        if (kFirstOfUnnamed.find(text[0]) == std::string_view::npos || !isUnnamed(text)) {
            continue;
        }
        const SPrefix prefix = prefixOf(line.substr(0, end));
        // The longest prefix counts: the trees' own blank must not be taken from one that ends in several.
        if (const auto writer = writers.writerOfExactly(log, prefix)) {
            found = SFound{*writer, text, prefix.time, false};
        }
    }
    return found;
}

std::optional<SFound> find(const CWriters& writers, std::size_t log, std::string_view line) {
    const auto named = findNamed(writers, log, line);
    return named.has_value() ? named : findUnnamed(writers, log, line);
}

std::string textOf(const SFound& found, std::string_view line) {
    const std::string_view prefix = line.substr(0, line.size() - found.text.size());
    return isOwnPrefix(prefix) ? withLineBreaks(found.text) : std::string(found.text);
}

std::vector<SLoggedCall> inOrder(std::map<std::string, CCallReader>& readers) {
    std::vector<SLoggedCall> all;
    for (auto& [writer, reader] : readers) {
        std::vector<SLoggedCall> calls = reader.finish();
        std::move(calls.begin(), calls.end(), std::back_inserter(all));
    }
    std::sort(all.begin(), all.end(), [](const SLoggedCall& left, const SLoggedCall& right) {
        return std::tie(left.first.logNumber, left.first.line) <
               std::tie(right.first.logNumber, right.first.line);
    });
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i].number = i + 1;
    }
    return all;
}

}  // namespace

void CLogReader::beginLog(std::string log) {
    logs.push_back(std::move(log));
    lineCount = 0;
}

void CLogReader::readLine(std::string_view line) {
    ++lineCount;
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    if (findName(line) != std::string_view::npos || mayEndWithUnnamed(line)) {
        lines.push_back({logs.size() - 1, lineCount, std::string(line)});
    }
}

std::vector<SLoggedCall> CLogReader::finish() {
    std::vector<SNamedLine> named;
    for (const SLine& line : lines) {
        if (const auto one = asNamed(line.log, line.text)) {
            named.push_back(*one);
        }
    }
    const CWriters writers(named);

    std::map<std::string, CCallReader> readers;
    for (const SLine& line : lines) {
        if (const auto found = find(writers, line.log, line.text)) {
            const SLogPlace place{logs[line.log], line.log, line.number, std::string(found->time)};
            readers[found->writer].read(textOf(*found, line.text), found->isNamed, place);
        }
    }
    return inOrder(readers);
}

}  // namespace fi_rotate
