#include "cli/explain/log.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "cli/explain/indentation.h"
#include "cli/explain/log_time.h"
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

// Where a line says that an operation is entered or left, which is all that most lines of a trace say.
std::optional<std::size_t> findProgress(std::string_view line) {
    for (const ETraceText kind : {ETraceText::kEntering, ETraceText::kExiting}) {
        const std::string_view start = startOf(kind);
        const std::size_t place = line.rfind(start);
        // `place` is npos when it is not found, and so greater than kLongestPrefix.
        if (place <= kLongestPrefix &&
            line.find_first_of(" \t", place + start.size()) == std::string_view::npos) {
            return place;
        }
    }
    return std::nullopt;
}

// A text of the library's in a line.
struct SFound {
    std::string writer;
    std::string_view text;
    // What stands before the text; borrowed from the line.
    SPrefix prefix;
    ELogText kind = ELogText::kUnnamed;
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
    return SFound{*writer, text, prefix, ELogText::kNamed};
}

// A number in the prefix may have grown.
constexpr std::size_t kGrowth = 32;

std::optional<SFound> findUnnamed(const CWriters& writers, std::size_t log, std::string_view line) {
    // A tree's lines are indented with tabs, and its texts begin with a blank.
    constexpr std::string_view kFirstOfUnnamed = "\t [{E";
    std::optional<SFound> found;
    for (std::size_t end = 0; end < std::min(line.size(), writers.longestPrefix() + kGrowth); ++end) {
        const std::string_view text = line.substr(end);
        if (kFirstOfUnnamed.find(text[0]) == std::string_view::npos || !isUnnamed(text)) {
            continue;
        }
        const SPrefix prefix = prefixOf(line.substr(0, end));
        // Of several prefixes that fit, the longest counts: the text of a tree begins with one blank, and
        // further blanks before it belong to the prefix.
        if (const auto writer = writers.writerOfExactly(log, prefix)) {
            found = SFound{*writer, text, prefix, ELogText::kUnnamed};
        }
    }
    return found;
}

// A line of a tree, which begins with what a logger put in place of tabs.
std::optional<SFound> findAltered(const CWriters& writers, std::size_t log, std::string_view line) {
    const CReplacedTabs replaced(line);
    for (std::size_t end = 0; end < std::min(line.size(), writers.longestPrefix() + kGrowth); ++end) {
        const auto tabs = replaced.at(end);
        if (!tabs.has_value()) {
            continue;
        }
        const SPrefix prefix = prefixOf(line.substr(0, end));
        if (const auto writer = writers.writerOfExactly(log, prefix)) {
            return SFound{*writer, line.substr(end + tabs->length), prefix,
                          tabs->isCertain ? ELogText::kUnnamed : ELogText::kDoubtful};
        }
    }
    return std::nullopt;
}

std::optional<SFound> find(const CWriters& writers, std::size_t log, std::string_view line) {
    auto found = findNamed(writers, log, line);
    found = found.has_value() ? found : findUnnamed(writers, log, line);
    return found.has_value() ? found : findAltered(writers, log, line);
}

std::optional<SFound> findProgressOf(const CWriters& writers, std::size_t log, std::string_view prefixText) {
    const SPrefix prefix = prefixOf(prefixText);
    const auto writer = writers.writerOfExactly(log, prefix);
    return writer.has_value() ? std::optional(SFound{*writer, {}, prefix, ELogText::kProgress})
                              : std::nullopt;
}

std::string textOf(const SFound& found, std::string_view line) {
    const std::string_view prefix = line.substr(0, line.size() - found.text.size());
    return isOwnPrefix(prefix) ? withoutEscapes(found.text) : std::string(found.text);
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
    } else if (const auto place = findProgress(line)) {
        keepProgress(line, *place);
    }
}

// Of several in a row the last one tells how far the call went on, but all damages are kept.
void CLogReader::keepProgress(std::string_view whole, std::size_t text) {
    const std::string_view prefix = whole.substr(0, text);
    const bool tellsDamage = entersDamage(whole.substr(text));
    const auto isOfSame = [prefix](const SLine& last) {
        const SPrefix before = prefixOf(last.text);
        const SPrefix now = prefixOf(prefix);
        return before.shape == now.shape && before.words == now.words && !isMuchLater(now.time, before.time);
    };
    const SLine line{logs.size() - 1, lineCount, std::string(prefix), true, tellsDamage};
    const bool isReplaceable = !lines.empty() && lines.back().isProgress && !lines.back().tellsDamage;
    if (isReplaceable && isOfSame(lines.back())) {
        lines.back() = line;
    } else {
        lines.push_back(line);
    }
}

std::vector<SLoggedCall> CLogReader::finish() {
    std::vector<SNamedLine> named;
    for (const SLine& line : lines) {
        const auto one = line.isProgress ? std::nullopt : asNamed(line.log, line.text);
        if (one.has_value()) {
            named.push_back(*one);
        }
    }
    const CWriters writers(named);

    std::map<std::string, CCallReader> readers;
    for (const SLine& line : lines) {
        const auto found = line.isProgress ? findProgressOf(writers, line.log, line.text)
                                           : find(writers, line.log, line.text);
        if (found.has_value()) {
            const SLogPlace place{logs[line.log], line.log, line.number, std::string(found->prefix.time)};
            const ELogText kind = line.tellsDamage ? ELogText::kDamage : found->kind;
            readers[found->writer].read(textOf(*found, line.text), kind, place, found->prefix.words);
        }
    }
    return inOrder(readers);
}

}  // namespace fi_rotate
