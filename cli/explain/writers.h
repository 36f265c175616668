#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/explain/prefix.h"

namespace fi_rotate {

// A line that holds a text of the library's, which names its operation.
struct SNamedLine {
    // Which of the logs that are read together.
    std::size_t log = 0;
    std::string_view prefix;
    // Whether a call begins with the text, and whether it is at the level of failures.
    bool isBeginning = false;
    bool isFailure = false;
};

// Knows who writes the library's lines into logs: those of one writer, a process or a thread, have the same
// words in front. Words that change from line to line, as levels and counters do, tell nothing of the writer.
// Who only quotes such lines, in a message or from a document, is no writer.
class CWriters {
public:
    explicit CWriters(const std::vector<SNamedLine>& lines);

    // The name of the writer whose lines in this log have this prefix; nothing when no writer has it.
    [[nodiscard]] std::optional<std::string> find(std::size_t log, const SPrefix& prefix) const;

    // The same of a prefix that must be whole, blanks at its end included.
    [[nodiscard]] std::optional<std::string> findWhole(std::size_t log, const SPrefix& prefix) const;

    // Of the prefixes that were given, bytes.
    [[nodiscard]] std::size_t longestPrefix() const { return longest; }

private:
    // The lines that have a certain word in a certain place.
    struct SLines {
        std::size_t count = 0;
        bool hasBeginning = false;
        bool hasFailure = false;
        bool hasProgress = false;
    };

    // A format of prefixes.
    struct SFormat {
        // By place, the words that occur there.
        std::vector<std::unordered_map<std::string_view, SLines>> words;
        // By place, whether the word there names the writer.
        std::vector<bool> isName;
    };

    struct SWriter {
        bool hasBeginning = false;
        bool hasTime = false;
        std::size_t lines = 0;
        std::set<std::size_t> logs;
        // How many blanks its prefixes end with.
        std::set<std::size_t> blanks;
        bool isQuoted = false;
    };

    static bool namesWriter(const std::unordered_map<std::string_view, SLines>& words);
    void learn(const SNamedLine& line);
    void learnWriter(const SNamedLine& line);
    void leaveOutQuoted(const SNamedLine& line);
    void leaveOutBare();
    // Of the writer whose prefixes are the first `length` characters of the shape.
    [[nodiscard]] std::optional<std::string> nameIn(const SPrefix& prefix, std::size_t length) const;

    std::unordered_map<std::string, SFormat> formats;
    std::unordered_map<std::string, SWriter> writers;
    // Logs whose writers put the time in front of their lines.
    std::set<std::size_t> timedLogs;
    std::size_t longest = 0;
};

}  // namespace fi_rotate
