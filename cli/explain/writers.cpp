#include "cli/explain/writers.h"

#include <algorithm>

#include "host/trace_text.h"

namespace fi_rotate {
namespace {

// At most so many writers are recognised by the fact that their lines alternate.
constexpr std::size_t kRecentWords = 16;

}  // namespace

CWriters::CWriters(const std::vector<SNamedLine>& lines) {
    for (const SNamedLine& line : lines) {
        learn(line);
    }
    for (auto& [shape, format] : formats) {
        const std::vector<bool> areProcesses = areProcessesIn(shape);
        for (std::size_t i = 0; i < format.size(); ++i) {
            format[i].isName = namesWriter(format[i], areProcesses[i]);
        }
    }
    for (const SNamedLine& line : lines) {
        learnWriter(line);
    }
    for (const SNamedLine& line : lines) {
        ignoreIfQuoted(line);
    }
    learnTimedLogsAndIgnoreBareLines();
}

void CWriters::learn(const SNamedLine& line) {
    longest = std::max(longest, line.prefix.size());
    const SPrefix prefix = prefixOf(line.prefix);
    Format& format = formats[prefix.shape];
    format.resize(prefix.words.size());
    for (std::size_t i = 0; i < prefix.words.size(); ++i) {
        follow(format[i], prefix.words[i]);
        SLines& lines = format[i].words[prefix.words[i]];
        ++lines.count;
        lines.hasBeginning = lines.hasBeginning || line.isBeginning;
        lines.hasFailure = lines.hasFailure || line.isFailure;
        lines.hasOther = lines.hasOther || !line.isFailure;
    }
}

void CWriters::follow(SWordPosition& position, std::string_view word) {
    std::vector<std::string_view>& recent = position.recent;
    if (!recent.empty() && recent.back() == word) {
        return;
    }
    position.changes += recent.empty() ? 0 : 1;
    const auto known = std::find(recent.begin(), recent.end(), word);
    if (known != recent.end()) {
        ++position.returns;
        recent.erase(known);
    } else if (recent.size() == kRecentWords) {
        recent.erase(recent.begin());
    }
    recent.push_back(word);
}

// Decides for one position in a prefix whether the word there names the writer. It does when most lines have
// a word that the first line of a call has too, because a writer writes calls from their first line on.
// Counters and clocks change with each line, so a first line rarely has the same word. The words at a
// position name the level instead when each of them occurs at one level only, because each call has lines at
// both levels. Where all lines are of one level, it is the number that the library gives to that level.
bool CWriters::namesWriter(const SWordPosition& position, bool isProcess) {
    std::size_t all = 0;
    std::size_t ofBegun = 0;
    bool hasFailure = false;
    bool hasOther = false;
    bool isOfBothLevels = false;
    for (const auto& [word, lines] : position.words) {
        all += lines.count;
        ofBegun += lines.hasBeginning ? lines.count : 0;
        hasFailure = hasFailure || lines.hasFailure;
        hasOther = hasOther || lines.hasOther;
        isOfBothLevels = isOfBothLevels || (lines.hasFailure && lines.hasOther);
    }
    const bool isNumberOfLevel =
        position.words.size() == 1 && hasFailure != hasOther &&
        position.words.begin()->first == std::to_string(hasFailure ? kFailureLevel : kProgressLevel);
    const bool isLevel = (hasFailure && hasOther && !isOfBothLevels) || isNumberOfLevel;
    return !isLevel && (ofBegun > all / 2 || isOfWriters(position, all, isProcess, ofBegun != 0));
}

// Decides for logs in which most lines belong to calls that had begun before. Few words, each in many lines,
// name writers in three cases: they stand where syslog has the process; no line with one of them begins a
// call; or they alternate, which the words of a clock never do.
bool CWriters::isOfWriters(const SWordPosition& position, std::size_t lines, bool isProcess, bool isBegun) {
    constexpr std::size_t kLeastLines = 4;
    if (lines < kLeastLines * position.words.size()) {
        return false;
    }
    const bool alternates = position.words.size() <= kRecentWords && position.returns > position.changes / 2;
    return isProcess || !isBegun || alternates;
}

void CWriters::learnWriter(const SNamedLine& line) {
    const SPrefix prefix = prefixOf(line.prefix);
    SWriter& writer = writers[*nameIn(prefix, prefix.shape.size())];
    writer.hasBeginning = writer.hasBeginning || line.isBeginning;
    writer.hasTime = hasTime(prefix.shape);
    ++writer.lines;
    writer.logs.insert(line.log);
    writer.blanks.insert(prefix.blanks);
}

// A prefix that begins with the prefix of another writer belongs to a message of that writer, unless first
// lines of calls have only the longer prefix.
void CWriters::ignoreIfQuoted(const SNamedLine& line) {
    const SPrefix prefix = prefixOf(line.prefix);
    SWriter& writer = writers.at(*nameIn(prefix, prefix.shape.size()));
    for (std::size_t length = 1; length < prefix.shape.size(); ++length) {
        const auto name = nameIn(prefix, length);
        const auto shorter = name.has_value() ? writers.find(*name) : writers.end();
        if (shorter != writers.end() && (shorter->second.hasBeginning || !writer.hasBeginning)) {
            writer.isIgnored = true;
        }
    }
}

// Records which logs have a time in front of their lines, and ignores lines without a prefix if most lines
// have one: they are something else, such as the rest of a text with line breaks.
void CWriters::learnTimedLogsAndIgnoreBareLines() {
    const auto bare = writers.find(std::string(1, '\n'));
    for (const auto& [name, writer] : writers) {
        if (writer.isIgnored || !writer.hasBeginning) {
            continue;
        }
        if (writer.hasTime) {
            timedLogs.insert(writer.logs.begin(), writer.logs.end());
        }
        if (bare != writers.end() && writer.lines > bare->second.lines) {
            bare->second.isIgnored = true;
        }
    }
}

// The name is the shape and the words that name the writer, each ended by a line feed, which no line
// contains.
std::optional<std::string> CWriters::nameIn(const SPrefix& prefix, std::size_t length) const {
    const std::string shape = prefix.shape.substr(0, length);
    const auto format = formats.find(shape);
    if (format == formats.end()) {
        return std::nullopt;
    }
    std::string name = shape + '\n';
    for (std::size_t i = 0; i < format->second.size(); ++i) {
        name += format->second[i].isName ? std::string(prefix.words[i]) + '\n' : "\n";
    }
    return name;
}

std::optional<std::string> CWriters::writerOf(std::size_t log, const SPrefix& prefix) const {
    const auto name = nameIn(prefix, prefix.shape.size());
    const auto writer = name.has_value() ? writers.find(*name) : writers.end();
    if (writer == writers.end() || writer->second.isIgnored) {
        return std::nullopt;
    }
    const bool lacksTime = !writer->second.hasTime && timedLogs.count(log) != 0;
    return lacksTime ? std::nullopt : name;
}

std::optional<std::string> CWriters::writerOfExactly(std::size_t log, const SPrefix& prefix) const {
    const auto name = writerOf(log, prefix);
    const bool isWhole = name.has_value() && writers.at(*name).blanks.count(prefix.blanks) != 0;
    return isWhole ? name : std::nullopt;
}

}  // namespace fi_rotate
