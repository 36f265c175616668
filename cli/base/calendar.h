#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Times of backups: seconds since 1970 in the calendar of UTC, in which every day has 24 hours.
namespace fi_rotate {

constexpr std::int64_t kSecondsPerDay = 86400;

// The first is 0.
constexpr std::array<std::string_view, 7> kWeekdays = {"sunday",   "monday", "tuesday", "wednesday",
                                                       "thursday", "friday", "saturday"};

// Reads YYYY-MM-DD, or YYYY-MM-DDThh:mm with or without :ss; nothing when `text` is not such a time.
std::optional<std::int64_t> parseTime(std::string_view text);

// Reads a time stamp of fixed width, YYYYMMDDhhmmss; nothing when `text` is not one or is no date. A leap
// second, 60, counts as the second before it.
std::optional<std::int64_t> parseTimeStamp(std::string_view text);

// Reads a whole number above 0 with a unit: s, m, h, d or w.
std::optional<std::int64_t> parseDuration(std::string_view text);

// A duration in the largest unit in which it is a whole number: "24h" is shown as "1d".
std::string toShownDuration(std::int64_t seconds);

// Reads the name of a day of the week, or its first three letters.
std::optional<int> parseWeekday(std::string_view text);

int weekdayOf(std::int64_t time);

// YYYYMMDDhhmmss. All have the same width, up to the year 9999, so sorting them as texts sorts them by time.
std::string toTimeStamp(std::int64_t time);

// YYYY-MM-DDThh:mm:ssZ.
std::string toIsoTime(std::int64_t time);

// YYYY-MM-DD hh:mm, with :ss where there are seconds.
std::string toShownTime(std::int64_t time);

// In days, rounded to hundredths, without zeros at the end: "10 d", "5.5 d".
std::string toShownDays(std::int64_t seconds);

// The last second of the year 9999.
std::int64_t lastTime();

}  // namespace fi_rotate
