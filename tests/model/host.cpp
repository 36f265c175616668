// Makes calls that a file describes and writes what a host sees of each to another one.
//
// Usage: fi_model_host LIBRARY CALLS OUTCOMES
//
// A call: configuration, size, number of backups, their names, their flag words. An outcome: whether an
// exception left, status, exception's code and identifier, whether there is a selection, selection, flag
// words, number of trace lines, level and text of each, standard output. Numbers have 32 bits; a text is its
// length and its bytes.

#include <dlfcn.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

namespace {

std::vector<std::pair<std::int32_t, std::string>> trace;

}  // namespace

extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int level, const char* format,
                                                                     ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
    va_end(arguments);
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    trace.emplace_back(level, std::move(text));
}

namespace {

constexpr std::int32_t kGuard = 0x5AFE5AFE;

class CReader {
public:
    explicit CReader(const char* name) : file(name, std::ios::binary) {}

    bool isAtEnd() { return file.peek() == std::ifstream::traits_type::eof(); }
    std::int32_t number() {
        std::int32_t value = 0;
        file.read(reinterpret_cast<char*>(&value), sizeof value);
        return value;
    }
    std::string text() {
        std::string value(static_cast<std::size_t>(number()), '\0');
        file.read(value.data(), static_cast<std::streamsize>(value.size()));
        return value;
    }

private:
    std::ifstream file;
};

class CWriter {
public:
    explicit CWriter(const char* name) : file(name, std::ios::binary) {}

    void number(std::int32_t value) {
        file.write(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void text(const std::string& value) {
        number(static_cast<std::int32_t>(value.size()));
        file.write(value.data(), static_cast<std::streamsize>(value.size()));
    }

private:
    std::ofstream file;
};

// What the library writes to standard output, which this program has made a file.
std::string takeStandardOutput() {
    std::fflush(stdout);
    std::string text(static_cast<std::size_t>(lseek(STDOUT_FILENO, 0, SEEK_CUR)), '\0');
    if (pread(STDOUT_FILENO, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()) ||
        ftruncate(STDOUT_FILENO, 0) != 0) {
        throw std::runtime_error("standard output cannot be read");
    }
    lseek(STDOUT_FILENO, 0, SEEK_SET);
    return text;
}

void redirectStandardOutput() {
    std::FILE* const file = std::tmpfile();
    if (file == nullptr || dup2(fileno(file), STDOUT_FILENO) < 0) {
        throw std::runtime_error("standard output cannot be redirected");
    }
}

decltype(&fi_process_backups) load(const char* library) {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = handle != nullptr ? dlsym(handle, "fi_process_backups") : nullptr;
    if (symbol == nullptr) {
        throw std::runtime_error(dlerror());
    }
    return reinterpret_cast<decltype(&fi_process_backups)>(symbol);
}

void makeCall(decltype(&fi_process_backups) process, CReader& calls, CWriter& outcomes) {
    const std::string configuration = calls.text();
    const std::int32_t size = calls.number();
    std::vector<std::string> names(static_cast<std::size_t>(calls.number()));
    std::vector<const char*> files;
    for (std::string& name : names) {
        name = calls.text();
        files.push_back(name.c_str());
    }
    std::vector<std::int32_t> flags(names.size() + 2, kGuard);
    for (std::size_t i = 0; i < names.size(); ++i) {
        flags[i + 1] = calls.number();
    }

    char untouched = 'u';
    char* result = &untouched;
    std::int32_t status = 0;
    bool hasThrown = false;
    CFiUdidException exception;
    trace.clear();
    try {
        status = process(files.data(), configuration.c_str(), flags.data() + 1, size, &result);
    } catch (const CFiUdidException& malformed) {
        hasThrown = true;
        exception = malformed;
    }
    if (flags.front() != kGuard || flags.back() != kGuard) {
        throw std::runtime_error("a word beside the flags was written");
    }

    outcomes.number(hasThrown ? 1 : 0);
    outcomes.number(status);
    outcomes.number(exception.code);
    outcomes.text(exception.identifier);
    const bool hasSelection = result != &untouched;
    outcomes.number(hasSelection ? 1 : 0);
    outcomes.text(hasSelection ? result : "");
    for (std::size_t i = 0; i < names.size(); ++i) {
        outcomes.number(flags[i + 1]);
    }
    outcomes.number(static_cast<std::int32_t>(trace.size()));
    for (const auto& [level, text] : trace) {
        outcomes.number(level);
        outcomes.text(text);
    }
    outcomes.text(takeStandardOutput());
    if (hasSelection) {
        std::free(result);
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::fprintf(stderr, "usage: fi_model_host LIBRARY CALLS OUTCOMES\n");
        return 2;
    }
    try {
        redirectStandardOutput();
        const auto process = load(arguments[1]);
        CReader calls(arguments[2]);
        CWriter outcomes(arguments[3]);
        while (!calls.isAtEnd()) {
            makeCall(process, calls, outcomes);
        }
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "fi_model_host: %s\n", fault.what());
        return 1;
    }
    return 0;
}
