#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/account_reader.h"
#include "host/outcome.h"

// Calls of the library as a log tells of them.
namespace fi_rotate {

// Finds the library's texts in the lines of a log. Most of them name the operation that they come from; what
// stands before such a name is the host's prefix (time, process, level). The others are known by their form,
// behind a prefix that looks like one of those.
class CLogText {
public:
    // The library's text in `line`, which is without its line end; nothing when there is none. Line breaks
    // are put back in where fi-rotate wrote the line.
    std::optional<std::string> find(std::string_view line);

private:
    [[nodiscard]] std::optional<std::string_view> findUnnamed(std::string_view line) const;

    std::set<std::string> prefixShapes;
    std::size_t longestPrefix = 0;
};

struct SLoggedCall {
    // From 1 in the order of the log.
    std::size_t number = 0;
    // Of its first and its last line in the log, from 1.
    std::size_t firstLine = 0;
    std::size_t lastLine = 0;
    // With an account, unless the arguments were refused. The trace tells no selection of a first backup, a
    // time stamp only of backups that passed the check, and not the code of an exception. Status and
    // exception are both missing when the end is.
    SOutcome outcome;
    // What the log should hold of the call, and does not.
    std::vector<std::string> missing;
};

// Takes a log in, line by line, and tells its calls apart. Lines that are not the library's are passed over.
class CLogReader {
public:
    // `line` is without its line end.
    void read(std::string_view line);

    // The calls that were read.
    std::vector<SLoggedCall> finish();

private:
    void readText(const std::string& text);
    bool begins(const std::string& text) const;
    void endCall();
    void endDecision();

    CLogText texts;
    std::size_t lines = 0;
    std::vector<SLoggedCall> calls;
    // The call that is being read; its first line is 0 when there is none.
    SLoggedCall call;
    CAccountReader account;
    bool isRefused = false;
    bool isFirstBackup = false;
};

}  // namespace fi_rotate
