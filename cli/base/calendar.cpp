#include "cli/base/calendar.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <limits>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

struct SUnit {
    char letter;
    std::int64_t seconds;
};
constexpr std::array<SUnit, 5> kUnits = {
    {{'w', 7 * kSecondsPerDay}, {'d', kSecondsPerDay}, {'h', 3600}, {'m', 60}, {'s', 1}}};

std::tm calendarTime(std::int64_t time) {
    const auto seconds = static_cast<std::time_t>(time);
    std::tm result{};
    gmtime_r(&seconds, &result);
    return result;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// The digits of `text` at the positions where `form` has a D. At all other positions both must be equal.
std::optional<std::string> digitsIn(std::string_view text, std::string_view form) {
    std::string digits;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (i >= text.size() || (form[i] == 'D' ? !isDigit(text[i]) : form[i] != text[i])) {
            return std::nullopt;
        }
        if (form[i] == 'D') {
            digits += text[i];
        }
    }
    return text.size() == form.size() ? std::optional(digits) : std::nullopt;
}

}  // namespace

std::optional<std::int64_t> parseTime(std::string_view text) {
    constexpr std::array<std::string_view, 3> kForms = {"DDDD-DD-DD", "DDDD-DD-DDTDD:DD",
                                                        "DDDD-DD-DDTDD:DD:DD"};
    for (const std::string_view form : kForms) {
        if (auto digits = digitsIn(text, form)) {
            digits->resize(std::string_view("YYYYMMDDhhmmss").size(), '0');
            return parseTimeStamp(*digits);
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> parseTimeStamp(std::string_view text) {
    if (!digitsIn(text, "DDDDDDDDDDDDDD").has_value()) {
        return std::nullopt;
    }
    constexpr std::size_t kSecond = 12;
    const auto number = [text](std::size_t from, std::size_t count) {
        int value = 0;
        std::from_chars(text.data() + from, text.data() + from + count, value);
        return value;
    };
    std::tm calendar{};
    calendar.tm_year = number(0, 4) - 1900;
    calendar.tm_mon = number(4, 2) - 1;
    calendar.tm_mday = number(6, 2);
    calendar.tm_hour = number(8, 2);
    calendar.tm_min = number(10, 2);
    calendar.tm_sec = text.substr(kSecond) == "60" ? 59 : number(kSecond, 2);
    const std::int64_t time = timegm(&calendar);
    // timegm turns a day that the month does not have into a day of the next month, and so on.
    const bool isDate = toTimeStamp(time).substr(0, kSecond) == text.substr(0, kSecond);
    return isDate ? std::optional(time) : std::nullopt;
}

std::optional<std::int64_t> parseDuration(std::string_view text) {
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number <= 0 || stop + 1 != text.data() + text.size()) {
        return std::nullopt;
    }
    for (const SUnit& unit : kUnits) {
        if (*stop == unit.letter && number <= std::numeric_limits<std::int64_t>::max() / unit.seconds) {
            return number * unit.seconds;
        }
    }
    return std::nullopt;
}

std::string toShownDuration(std::int64_t seconds) {
    const auto* const unit = std::find_if(
        kUnits.begin(), kUnits.end(), [seconds](const SUnit& each) { return seconds % each.seconds == 0; });
    return fmt::format("{}{}", seconds / unit->seconds, unit->letter);
}

std::optional<int> parseWeekday(std::string_view text) {
    std::string name(text);
    std::transform(name.begin(), name.end(), name.begin(), lowerCase<char>);
    for (std::size_t day = 0; day < kWeekdays.size(); ++day) {
        if (name == kWeekdays[day] || name == kWeekdays[day].substr(0, 3)) {
            return static_cast<int>(day);
        }
    }
    return std::nullopt;
}

int weekdayOf(std::int64_t time) {
    return calendarTime(time).tm_wday;
}

std::string toTimeStamp(std::int64_t time) {
    return fmt::format("{:%Y%m%d%H%M%S}", calendarTime(time));
}

std::string toIsoTime(std::int64_t time) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", calendarTime(time));
}

std::string toShownTime(std::int64_t time) {
    const std::tm calendar = calendarTime(time);
    return calendar.tm_sec == 0 ? fmt::format("{:%Y-%m-%d %H:%M}", calendar)
                                : fmt::format("{:%Y-%m-%d %H:%M:%S}", calendar);
}

std::string toShownDays(std::int64_t seconds) {
    constexpr double kHundredths = 100.0;
    const double days = static_cast<double>(seconds) / static_cast<double>(kSecondsPerDay);
    return fmt::format("{} d", std::round(days * kHundredths) / kHundredths);
}

std::int64_t lastTime() {
    constexpr std::int64_t kEndOf9999 = 253402300799;
    return kEndOf9999;
}

}  // namespace fi_rotate
