#include "cli/explain/prefix.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "cli/base/text.h"
#include "cli/explain/log_time.h"

namespace fi_rotate {
namespace {

// The characters that replace times and words in a shape. If a prefix itself contains them, '?' replaces
// them.
constexpr char kTime = '\1';
constexpr char kWord = '\2';

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

bool isLevel(std::string_view word) {
    constexpr std::array<std::string_view, 26> kLevels{
        "trace",         "trc",    "debug", "dbg",   "verbose", "vrb", "info",  "inf",    "information",
        "informational", "notice", "warn",  "wrn",   "warning", "err", "error", "severe", "crit",
        "critical",      "alert",  "emerg", "panic", "fatal",   "ftl", "fine",  "finer",
    };
    std::string lower(word);
    std::transform(lower.begin(), lower.end(), lower.begin(), lowerCase<char>);
    return std::find(kLevels.begin(), kLevels.end(), lower) != kLevels.end();
}

class CPrefixParser {
public:
    explicit CPrefixParser(std::string_view text) : rest(text) {}

    SPrefix parse() {
        while (!rest.empty()) {
            if (rest[0] == ' ') {
                ++prefix.blanks;
                skip(1);
            } else if (isWordCharacter(rest[0])) {
                takeWord();
            } else {
                take(isMark(rest[0]) ? '?' : rest[0], 1);
            }
        }
        prefix.time = prefix.time.empty() ? seconds : prefix.time;
        return std::move(prefix);
    }

private:
    void skip(std::size_t length) {
        last = rest[length - 1];
        rest.remove_prefix(length);
    }

    void take(char mark, std::size_t length) {
        const bool isBehindWord = !prefix.shape.empty() && isMark(prefix.shape.back());
        if (prefix.blanks != 0 && isBehindWord && isMark(mark)) {
            prefix.shape += ' ';
        }
        prefix.shape += mark;
        prefix.blanks = 0;
        skip(length);
    }

    static bool isMark(char character) { return character == kTime || character == kWord; }

    void takeWord() {
        // After these it is part of an address or a version.
        const bool mayBeTime = last != ':' && last != '.';
        if (const std::size_t length = mayBeTime ? timeLength(rest) : 0) {
            prefix.time = prefix.time.empty() ? rest.substr(0, length) : prefix.time;
            take(kTime, length);
            return;
        }
        if (const std::size_t length = mayBeTime ? secondsLength(rest) : 0) {
            seconds = seconds.empty() ? rest.substr(0, length) : seconds;
            take(kTime, length);
            return;
        }
        const auto* const end = std::find_if_not(rest.begin(), rest.end(), isWordCharacter);
        const std::string_view word = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
        if (isLevel(word)) {
            skipLevel(word.size());
        } else {
            prefix.words.push_back(word);
            take(kWord, word.size());
        }
    }

    // Removes a level with the brackets around it and a colon after it, because a host may write only some
    // levels.
    void skipLevel(std::size_t length) {
        skip(length);
        constexpr std::string_view kOpening = "[<(";
        constexpr std::string_view kClosing = "]>)";
        const std::size_t bracket =
            prefix.shape.empty() ? std::string_view::npos : kOpening.find(prefix.shape.back());
        const std::size_t closing = rest.find_first_not_of(' ');
        if (bracket != std::string_view::npos && closing != std::string_view::npos &&
            rest[closing] == kClosing[bracket]) {
            prefix.shape.pop_back();
            skip(closing + 1);
        }
        if (!rest.empty() && rest[0] == ':') {
            skip(1);
        }
        prefix.blanks = 0;
    }

    std::string_view rest;
    SPrefix prefix;
    std::string_view seconds;
    char last = ' ';
};

}  // namespace

SPrefix prefixOf(std::string_view text) {
    return CPrefixParser(text).parse();
}

bool hasTime(std::string_view shape) {
    return shape.find(kTime) != std::string_view::npos;
}

std::vector<bool> areProcessesIn(std::string_view shape) {
    const std::string process{kWord, '[', kWord, ']'};
    std::vector<bool> are;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        if (shape[i] == kWord) {
            are.push_back(i >= 2 && shape.substr(i - 2, process.size()) == process);
        }
    }
    return are;
}

}  // namespace fi_rotate
