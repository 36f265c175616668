#include "fuzz/Trace.h"

#include <cstdarg>
#include <cstdio>
#include <functional>
#include <string_view>
#include <vector>

#include "common/mofi_tracelog.h"

namespace {

std::uint64_t digest = 0;

void add(std::uint64_t value) {
    digest = digest * 1099511628211U + value;
}

}  // namespace

void mofi_tracelog(int level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::vector<char> line(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(line.data(), line.size(), format, again);
    va_end(again);
    add(static_cast<std::uint64_t>(level));
    add(std::hash<std::string_view>()(std::string_view(line.data(), line.size() - 1)));
}

std::uint64_t takeTraceDigest() {
    const std::uint64_t taken = digest;
    digest = 0;
    return taken;
}
