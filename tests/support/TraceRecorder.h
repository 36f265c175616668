#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace fi_test {

// One call of mofi_tracelog as the host sees it.
struct STraceLine {
    int level;
    std::string text;

    bool operator==(const STraceLine& other) const { return level == other.level && text == other.text; }
};

std::ostream& operator<<(std::ostream& out, const STraceLine& line);

using Trace = std::vector<STraceLine>;

// Lines that a test expects: at level 4, one at level 3, and the entry of an operation with its exit.
Trace progress(const std::vector<std::string>& texts);
Trace failure(const std::string& text);
Trace entryAndExit(const std::string& operation);

Trace operator+(Trace left, const Trace& right);

// Levels by format.
using Formats = std::map<std::string, int, std::less<>>;

// Collects the calls of mofi_tracelog, formatted, from its construction to its destruction. At most
// one exists at a time; without one the calls are dropped.
class CTraceRecorder {
public:
    CTraceRecorder();
    ~CTraceRecorder();
    CTraceRecorder(const CTraceRecorder&) = delete;
    CTraceRecorder& operator=(const CTraceRecorder&) = delete;

    // Returns the lines since it was called last.
    Trace take();

    // The formats since its construction, each with its level.
    const Formats& formats() const { return seenFormats; }

    void add(STraceLine line, const char* format);

private:
    Trace lines;
    Formats seenFormats;
};

}  // namespace fi_test
