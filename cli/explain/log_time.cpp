#include "cli/explain/log_time.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

namespace fi_rotate {
namespace {

bool isDigit(char character) {
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

std::size_t countDigits(std::string_view text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    return static_cast<std::size_t>(end - text.begin());
}

struct SForm {
    // 9 is a digit, 0 one or two digits, # the same after an optional blank, A a letter, and * a character
    // between a date and a time of day.
    std::string_view pattern;
    // How strptime reads it when every mark is a blank; null for seconds, empty when a part is missing.
    const char* reading;
};

// A longer form comes before a shorter one that it begins with.
constexpr std::array<SForm, 15> kForms{{
    {"AAA AAA # #:0:0 9999", "%a %b %d %H %M %S %Y"},
    {"AAA 9999-0-0*#:0:0", "%a %Y %m %d %H %M %S"},
    {"9999-0-0*#:0:0", "%Y %m %d %H %M %S"},
    {"9999-0-0*#:0", "%Y %m %d %H %M"},
    {"9999/0/0*#:0:0", "%Y %m %d %H %M %S"},
    {"0.0.9999*#:0:0", "%d %m %Y %H %M %S"},
    {"0/AAA/9999*#:0:0", "%d %b %Y %H %M %S"},
    {"AAA # 9999 #:0:0", "%b %d %Y %H %M %S"},
    {"AAA # #:0:0", "%b %d %H %M %S"},
    {"99999999*999999", "%Y%m%d %H%M%S"},
    {"9999-0-0", ""},
    {"0:0:0", ""},
    // Otherwise the number of a process and what follows it, as in "thread-1:4", would be a time.
    {"0:99", ""},
    {"1999999999999", nullptr},
    {"1999999999", nullptr},
}};

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

// Of "7" or "07" at the start of `text`; of " 7", too, when it may be padded.
std::size_t shortNumberLength(std::string_view text, bool isPadded) {
    constexpr std::size_t kLongest = 2;
    const std::size_t blanks = isPadded && !text.empty() && text[0] == ' ' ? 1 : 0;
    const std::size_t digits = countDigits(text.substr(blanks, kLongest - blanks));
    return digits == 0 ? 0 : blanks + digits;
}

// Of what `text` begins with; 0 when it does not begin like the pattern.
std::size_t lengthLike(std::string_view text, std::string_view pattern) {
    std::size_t length = 0;
    for (const char wanted : pattern) {
        const std::string_view rest = text.substr(length);
        const bool isNumber = wanted == '0' || wanted == '#';
        const std::size_t next = isNumber ? shortNumberLength(rest, wanted == '#')
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
    return std::isalnum(static_cast<unsigned char>(behind[0])) == 0 && !goesOn;
}

struct STime {
    const char* reading = nullptr;
    std::size_t length = 0;
};

// The time that `text` begins with.
std::optional<STime> findTime(std::string_view text) {
    for (const SForm& form : kForms) {
        if (std::size_t length = lengthLike(text, form.pattern)) {
            length += fractionLength(text.substr(length));
            length += zoneLength(text.substr(length));
            if (endsTime(text.substr(length))) {
                return STime{form.reading, length};
            }
        }
    }
    return std::nullopt;
}

// Of whole seconds or milliseconds. Ten digits are the seconds since 1970.
std::optional<std::int64_t> readSeconds(std::string_view text) {
    constexpr std::size_t kDigits = 10;
    const std::string_view digits = text.substr(0, kDigits);
    std::int64_t seconds = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), seconds);
    return read.ec == std::errc() ? std::optional(seconds) : std::nullopt;
}

// The year is the same for all times that do not tell it. Zones are ignored.
std::optional<std::int64_t> readDate(std::string_view text, const char* reading) {
    constexpr int kLeapYear = 72;
    std::string fields(text);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const bool isSeparator = fields[i] == 'T' && i != 0 && isDigit(text[i - 1]);
        if (isSeparator || std::isalnum(static_cast<unsigned char>(fields[i])) == 0) {
            fields[i] = ' ';
        }
    }
    std::tm date{};
    date.tm_year = kLeapYear;
    date.tm_mday = 1;
    if (strptime(fields.c_str(), reading, &date) == nullptr) {
        return std::nullopt;
    }
    return timegm(&date);
}

// Seconds from some time that is the same for all texts of one form.
std::optional<std::int64_t> secondsOf(std::string_view text) {
    const auto time = findTime(text);
    if (!time.has_value() || time->reading == nullptr) {
        return readSeconds(text);
    }
    return *time->reading == '\0' ? std::nullopt : readDate(text, time->reading);
}

}  // namespace

std::size_t timeLength(std::string_view text) {
    const auto time = findTime(text);
    return time.has_value() ? time->length : 0;
}

std::size_t secondsLength(std::string_view text) {
    constexpr std::size_t kMilliseconds = 4;
    const std::size_t seconds = countDigits(text);
    const std::size_t fraction = fractionLength(text.substr(seconds));
    const bool isTime =
        seconds != 0 && fraction >= kMilliseconds && endsTime(text.substr(seconds + fraction));
    return isTime ? seconds + fraction : 0;
}

bool isMuchLater(std::string_view time, std::string_view before) {
    // Above an hour, by which clocks are put forward.
    constexpr std::int64_t kSeconds = 7200;
    if (time == before) {
        return false;
    }
    const auto now = secondsOf(time);
    const auto then = secondsOf(before);
    return now.has_value() && then.has_value() && *now - *then > kSeconds;
}

}  // namespace fi_rotate
