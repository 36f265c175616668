#include "cli/explain/prefix.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

// The characters that replace times and words in a shape. If a prefix itself contains them, '?' replaces
// them.
constexpr char kTime = '\1';
constexpr char kWord = '\2';

bool isDigit(char character) {
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

std::size_t countDigits(std::string_view text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    return static_cast<std::size_t>(end - text.begin());
}

// The forms of a time; a longer form comes before a shorter one that it begins with. 9 is a digit, # one or
// two digits after an optional blank, A a letter, and * a character between a date and a time of day.
constexpr std::array<std::string_view, 15> kTimes{
    "AAA AAA # #:#:# 9999",
    "AAA 9999-#-#*#:#:#",
    "9999-#-#*#:#:#",
    "9999-#-#*#:#",
    "9999/#/#*#:#:#",
    "#.#.9999*#:#:#",
    "#/AAA/9999*#:#:#",
    "AAA # 9999 #:#:#",
    "AAA # #:#:#",
    "99999999*999999",
    "9999-#-#",
    "#:#:#",
    "#:#",
    "1999999999999",
    "1999999999",
};

bool fits(char wanted, char character) {
    switch (wanted) {
        case '9':
            return isDigit(character);
        case 'A':
            return std::isalpha(static_cast<unsigned char>(character)) != 0;
        case '*':
            return character == 'T' || std::ispunct(static_cast<unsigned char>(character)) != 0 ||
                   character == ' ' || character == '\t';
        default:
            return character == wanted;
    }
}

// Of "7", "07" or " 7" at the start of `text`.
std::size_t shortNumberLength(std::string_view text) {
    constexpr std::size_t kLongest = 2;
    const std::size_t blanks = !text.empty() && text[0] == ' ' ? 1 : 0;
    const std::size_t digits = countDigits(text.substr(blanks, kLongest - blanks));
    return digits == 0 ? 0 : blanks + digits;
}

// Of what `text` begins with; 0 when it does not begin like the pattern.
std::size_t lengthLike(std::string_view text, std::string_view pattern) {
    std::size_t length = 0;
    for (const char wanted : pattern) {
        const std::string_view rest = text.substr(length);
        const std::size_t next = wanted == '#'                            ? shortNumberLength(rest)
                                 : !rest.empty() && fits(wanted, rest[0]) ? 1
                                                                          : 0;
        if (next == 0) {
            return 0;
        }
        length += next;
    }
    return length;
}

// Of ".123" or ",123456" at the start of `text`.
std::size_t fractionLength(std::string_view text) {
    const bool isBegun = !text.empty() && (text[0] == '.' || text[0] == ',');
    const std::size_t digits = isBegun ? countDigits(text.substr(1)) : 0;
    return digits == 0 ? 0 : digits + 1;
}

std::size_t zoneLength(std::string_view text) {
    for (const std::string_view pattern : {"+99:99", "-99:99", "+9999", "-9999", " +9999", " -9999", "Z"}) {
        if (const std::size_t length = lengthLike(text, pattern)) {
            return length;
        }
    }
    return 0;
}

// Whether a time may end before `behind`; otherwise it is the beginning of an address or the like.
bool endsTime(std::string_view behind) {
    if (behind.empty()) {
        return true;
    }
    const bool goesOn = (behind[0] == ':' || behind[0] == '.') && behind.size() > 1 && isDigit(behind[1]);
    return !isWordCharacter(behind[0]) && !goesOn;
}

// Of the time that `text` begins with; 0 when it begins with none.
std::size_t timeLength(std::string_view text) {
    for (const std::string_view pattern : kTimes) {
        if (std::size_t length = lengthLike(text, pattern)) {
            length += fractionLength(text.substr(length));
            length += zoneLength(text.substr(length));
            if (endsTime(text.substr(length))) {
                return length;
            }
        }
    }
    return 0;
}

// Seconds since the system or the program was started, with a fraction.
std::size_t secondsLength(std::string_view text) {
    constexpr std::size_t kMilliseconds = 4;
    const std::size_t seconds = countDigits(text);
    const std::size_t fraction = fractionLength(text.substr(seconds));
    const bool isTime =
        seconds != 0 && fraction >= kMilliseconds && endsTime(text.substr(seconds + fraction));
    return isTime ? seconds + fraction : 0;
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
