#include "cli/trace.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "cli/account_reader.h"

namespace fi_rotate {
namespace {

constexpr int kFailureLevel = 3;
// A line at the level of failures that reports none.
constexpr const char* kFlagLine = "fi_process_backups :  Fiid [%s] exclude rotation flag [%d] ";
constexpr const char* kLoadedLine = "fi_process_backups : parsed [%s]";

// The library's trace call has no context argument, so its receiver must be reachable without one.
CTraceReceiver* activeReceiver = nullptr;

bool isLine(const char* format, const char* line) {
    return std::strcmp(format, line) == 0;
}

std::string formatted(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

// On one line, reversibly.
std::string onOneLine(const std::string& text) {
    std::string line;
    line.reserve(text.size());
    for (const char character : text) {
        switch (character) {
            case '\n':
                line += "\\n";
                break;
            case '\r':
                line += "\\r";
                break;
            case '\\':
                line += "\\\\";
                break;
            default:
                line += character;
        }
    }
    return line;
}

std::string withoutLineEnd(std::string text) {
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

}  // namespace

CTraceReceiver::CTraceReceiver(std::vector<std::FILE*> streams, CAccountReader* reader)
    : outputs(std::move(streams)), account(reader) {
    if (activeReceiver != nullptr) {
        throw std::logic_error("the trace has a receiver already");
    }
    activeReceiver = this;
}

CTraceReceiver::~CTraceReceiver() {
    activeReceiver = nullptr;
}

void CTraceReceiver::receive(int level, const char* format, std::va_list arguments) {
    const bool isFailure = level == kFailureLevel && !isLine(format, kFlagLine);
    const bool isLoaded = isLine(format, kLoadedLine);
    if (outputs.empty() && account == nullptr && !isFailure && !isLoaded) {
        return;
    }
    if (isLoaded) {
        std::va_list again;
        va_copy(again, arguments);
        loaded.emplace_back(va_arg(again, const char*));
        va_end(again);
    }
    const std::string text = withoutLineEnd(formatted(format, arguments));
    if (isFailure) {
        failures.push_back(text);
    }
    if (account != nullptr) {
        account->read(text);
    }
    for (std::FILE* output : outputs) {
        std::fprintf(output, "%d %s\n", level, onOneLine(text).c_str());
    }
}

namespace {

void forward(int level, const char* format, std::va_list arguments) {
    if (activeReceiver != nullptr) {
        activeReceiver->receive(level, format, arguments);
    }
}

}  // namespace
}  // namespace fi_rotate

// What the library resolves from its host.
extern "C" __attribute__((format(printf, 2, 3), visibility("default"))) void mofi_tracelog(int level,
                                                                                           const char* format,
                                                                                           ...) {
    std::va_list arguments;
    va_start(arguments, format);
    fi_rotate::forward(level, format, arguments);
    va_end(arguments);
}
