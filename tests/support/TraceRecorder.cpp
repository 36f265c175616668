#include "tests/support/TraceRecorder.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace fi_test {
namespace {

// The trace call has no context argument, so its receiver must be reachable without one.
CTraceRecorder* activeRecorder = nullptr;

std::string formatted(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    // Most lines are no longer than this and are formatted once.
    std::array<char, 256> line{};
    const auto length = static_cast<std::size_t>(std::vsnprintf(line.data(), line.size(), format, arguments));
    std::string text(line.data(), std::min(length, line.size() - 1));
    if (length >= line.size()) {
        text.resize(length + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const STraceLine& line) {
    return out << line.level << ' ' << line.text;
}

Trace progress(const std::vector<std::string>& texts) {
    Trace trace;
    for (const std::string& text : texts) {
        trace.push_back({4, text});
    }
    return trace;
}

Trace failure(const std::string& text) {
    return {{3, text}};
}

Trace entryAndExit(const std::string& operation) {
    return progress({"Entering " + operation + "\n", "Exiting " + operation + "\n"});
}

Trace operator+(Trace left, const Trace& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

CTraceRecorder::CTraceRecorder() {
    if (activeRecorder != nullptr) {
        throw std::logic_error("a trace recorder exists already");
    }
    activeRecorder = this;
}

CTraceRecorder::~CTraceRecorder() {
    activeRecorder = nullptr;
}

Trace CTraceRecorder::take() {
    return std::exchange(lines, {});
}

void CTraceRecorder::add(STraceLine line, const char* format) {
    if (seenFormats.find(format) == seenFormats.end()) {
        seenFormats.emplace(format, line.level);
    }
    lines.push_back(std::move(line));
}

}  // namespace fi_test

extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int level, const char* format, ...) {
    if (fi_test::activeRecorder == nullptr) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = fi_test::formatted(format, arguments);
    va_end(arguments);
    fi_test::activeRecorder->add({level, std::move(text)}, format);
}
