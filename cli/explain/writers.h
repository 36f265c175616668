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

// Finds out who wrote the library's lines into logs. The prefixes of one writer (a process or a thread)
// contain the same words. Words that change from line to line, such as levels and counters, do not name the
// writer. A program that only quotes such lines, in a message or from a document, is not a writer. A log may
// begin within calls, so that no line of a writer begins a call.
class CWriters {
public:
    explicit CWriters(const std::vector<SNamedLine>& lines);

    // The name of the writer whose lines in this log have this prefix; nothing when no writer has it.
    [[nodiscard]] std::optional<std::string> writerOf(std::size_t log, const SPrefix& prefix) const;

    // The same, but only if the prefix also ends with a number of blanks that this writer uses.
    [[nodiscard]] std::optional<std::string> writerOfExactly(std::size_t log, const SPrefix& prefix) const;

    // The length in bytes of the longest prefix that was given.
    [[nodiscard]] std::size_t longestPrefix() const { return longest; }

private:
    // The lines that have a certain word at a certain position.
    struct SLines {
        std::size_t count = 0;
        bool hasBeginning = false;
        bool hasFailure = false;
        // One that is not at the level of failures.
        bool hasOther = false;
    };

    // A position of a word in the prefixes of one format.
    struct SWordPosition {
        std::unordered_map<std::string_view, SLines> words;
        // The last words that differ, the latest at the end.
        std::vector<std::string_view> recent;
        // How often the word was another one than in the line before, and how often one of the recent ones.
        std::size_t changes = 0;
        std::size_t returns = 0;
        bool isName = false;
    };

    using Format = std::vector<SWordPosition>;

    struct SWriter {
        bool hasBeginning = false;
        bool hasTime = false;
        std::size_t lines = 0;
        std::set<std::size_t> logs;
        // How many blanks its prefixes end with.
        std::set<std::size_t> blanks;
        bool isIgnored = false;
    };

    static void follow(SWordPosition& position, std::string_view word);
    static bool namesWriter(const SWordPosition& position, bool isProcess);
    static bool isOfWriters(const SWordPosition& position, std::size_t lines, bool isProcess, bool isBegun);
    void learn(const SNamedLine& line);
    void learnWriter(const SNamedLine& line);
    void ignoreIfQuoted(const SNamedLine& line);
    void learnTimedLogsAndIgnoreBareLines();
    // The name of the writer whose prefixes have the first `length` characters of the shape.
    [[nodiscard]] std::optional<std::string> nameIn(const SPrefix& prefix, std::size_t length) const;

    std::unordered_map<std::string, Format> formats;
    std::unordered_map<std::string, SWriter> writers;
    // Logs whose writers put the time in front of their lines.
    std::set<std::size_t> timedLogs;
    std::size_t longest = 0;
};

}  // namespace fi_rotate
