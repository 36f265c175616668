#pragma once

#include <cstddef>
#include <string_view>

// The times that hosts write in front of a message.
namespace fi_rotate {

// The length of the time that `text` begins with; 0 when it begins with none.
std::size_t timeLength(std::string_view text);

// The same of seconds, with a fraction, since the system or the program was started.
std::size_t secondsLength(std::string_view text);

// Whether a line with `time` is of another call than the line with `before`, because a call does not take so
// long. Unknown, and so false, unless both are seconds or have a date and a time of day.
bool isMuchLater(std::string_view time, std::string_view before);

}  // namespace fi_rotate
