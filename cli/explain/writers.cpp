#include "cli/explain/writers.h"

#include <algorithm>

namespace fi_rotate {

CWriters::CWriters(const std::vector<SNamedLine>& lines) {
    for (const SNamedLine& line : lines) {
        learn(line);
    }
    for (auto& [shape, format] : formats) {
        for (const auto& words : format.words) {
            format.isName.push_back(namesWriter(words));
        }
    }
    for (const SNamedLine& line : lines) {
        learnWriter(line);
    }
    for (const SNamedLine& line : lines) {
        leaveOutQuoted(line);
    }
    leaveOutBare();
}

void CWriters::learn(const SNamedLine& line) {
    longest = std::max(longest, line.prefix.size());
    const SPrefix prefix = prefixOf(line.prefix);
    SFormat& format = formats[prefix.shape];
    format.words.resize(prefix.words.size());
    for (std::size_t i = 0; i < prefix.words.size(); ++i) {
        SLines& lines = format.words[i][prefix.words[i]];
        ++lines.count;
        lines.hasBeginning = lines.hasBeginning || line.isBeginning;
        lines.hasFailure = lines.hasFailure || line.isFailure;
        lines.hasProgress = lines.hasProgress || !line.isFailure;
    }
}

// A writer begins the calls that it goes on with, so most lines stand with a word that a beginning stands
// with too: that of a counter or a clock has none, as a rule. And a call has lines at both levels, so a word
// that comes with one level only, like all others in its place, says the level.
bool CWriters::namesWriter(const std::unordered_map<std::string_view, SLines>& words) {
    std::size_t all = 0;
    std::size_t ofBegun = 0;
    bool hasFailure = false;
    bool hasProgress = false;
    bool isOfBothLevels = false;
    for (const auto& [word, lines] : words) {
        all += lines.count;
        ofBegun += lines.hasBeginning ? lines.count : 0;
        hasFailure = hasFailure || lines.hasFailure;
        hasProgress = hasProgress || lines.hasProgress;
        isOfBothLevels = isOfBothLevels || (lines.hasFailure && lines.hasProgress);
    }
    const bool isLevel = hasFailure && hasProgress && !isOfBothLevels;
    return !isLevel && ofBegun > all / 2;
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

// A prefix that goes on behind that of another writer belongs to a message of that writer's, unless calls
// begin behind the longer one only.
void CWriters::leaveOutQuoted(const SNamedLine& line) {
    const SPrefix prefix = prefixOf(line.prefix);
    SWriter& writer = writers.at(*nameIn(prefix, prefix.shape.size()));
    for (std::size_t length = 1; length < prefix.shape.size(); ++length) {
        const auto name = nameIn(prefix, length);
        const auto shorter = name.has_value() ? writers.find(*name) : writers.end();
        if (shorter != writers.end() && (shorter->second.hasBeginning || !writer.hasBeginning)) {
            writer.isQuoted = true;
        }
    }
}

// Lines without a prefix, or without a time where the writers of the log put one, are those of something
// else: the rest of a text with line breaks, for one.
void CWriters::leaveOutBare() {
    const auto bare = writers.find(std::string(1, '\n'));
    for (const auto& [name, writer] : writers) {
        if (writer.isQuoted || !writer.hasBeginning) {
            continue;
        }
        if (writer.hasTime) {
            timedLogs.insert(writer.logs.begin(), writer.logs.end());
        }
        if (bare != writers.end() && writer.lines > bare->second.lines) {
            bare->second.isQuoted = true;
        }
    }
}

// The shape, and each word that names the writer, ended by line feeds, which no line holds.
std::optional<std::string> CWriters::nameIn(const SPrefix& prefix, std::size_t length) const {
    const std::string shape = prefix.shape.substr(0, length);
    const auto format = formats.find(shape);
    if (format == formats.end()) {
        return std::nullopt;
    }
    std::string name = shape + '\n';
    for (std::size_t i = 0; i < format->second.isName.size(); ++i) {
        name += format->second.isName[i] ? std::string(prefix.words[i]) + '\n' : "\n";
    }
    return name;
}

std::optional<std::string> CWriters::find(std::size_t log, const SPrefix& prefix) const {
    const auto name = nameIn(prefix, prefix.shape.size());
    const auto writer = name.has_value() ? writers.find(*name) : writers.end();
    if (writer == writers.end() || writer->second.isQuoted) {
        return std::nullopt;
    }
    const bool lacksTime = !writer->second.hasTime && timedLogs.count(log) != 0;
    return lacksTime ? std::nullopt : name;
}

std::optional<std::string> CWriters::findWhole(std::size_t log, const SPrefix& prefix) const {
    const auto name = find(log, prefix);
    const bool isWhole = name.has_value() && writers.at(*name).blanks.count(prefix.blanks) != 0;
    return isWhole ? name : std::nullopt;
}

}  // namespace fi_rotate
