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

// YYYY-MM-DD, or YYYY-MM-DDThh:mm with or without :ss; nothing when `text` is no such time.
std::optional<std::int64_t> parseTime(std::string_view text);

// A time stamp of fixed width, YYYYMMDDhhmmss; nothing when `text` is none.
std::optional<std::int64_t> parseTimeStamp(std::string_view text);

// A whole number above 0 with a unit: s, m, h, d or w.
std::optional<std::int64_t> parseDuration(std::string_view text);

// The same in its largest unit that is whole: "24h" is shown as "1d".
std::string toShownDuration(std::int64_t seconds);

// A day by its name or the first three letters of it.
std::optional<int> parseWeekday(std::string_view text);

int weekdayOf(std::int64_t time);

// YYYYMMDDhhmmss: of the same width for all years up to 9999, so that the order of the texts is that of time.
std::string toTimeStamp(std::int64_t time);

// YYYY-MM-DDThh:mm:ssZ.
std::string toIsoTime(std::int64_t time);

// YYYY-MM-DD hh:mm, with :ss where there are seconds.
std::string toShownTime(std::int64_t time);

// In days, to the hundredth and without needless zeros: "10 d", "5.5 d".
std::string toShownDays(std::int64_t seconds);

// The last second of the year 9999.
std::int64_t lastTime();

}  // namespace fi_rotate
