#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace fi_test {

// One call of mofi_tracelog as the host sees it.
struct TraceLine {
    int level;
    std::string text;

    bool operator==(const TraceLine& other) const { return level == other.level && text == other.text; }
};

std::ostream& operator<<(std::ostream& out, const TraceLine& line);

using Trace = std::vector<TraceLine>;

// Collects the calls of mofi_tracelog, formatted, from its construction to its destruction. At most
// one exists at a time; without one the calls are dropped.
class TraceRecorder {
public:
    TraceRecorder();
    ~TraceRecorder();
    TraceRecorder(const TraceRecorder&) = delete;
    TraceRecorder& operator=(const TraceRecorder&) = delete;

    // The lines since the last take.
    Trace take();

    void add(TraceLine line);

private:
    Trace lines;
};

}  // namespace fi_test
