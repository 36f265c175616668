// A host in C++17: excludes the first document it is given and catches the exceptions that may leave the
// call.
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

extern "C" void mofi_tracelog(int level, const char* format, ...) {
    if (level == 3) {
        std::va_list arguments;
        va_start(arguments, format);
        std::vfprintf(stderr, format, arguments);
        va_end(arguments);
        std::fputc('\n', stderr);
    }
}

namespace {

struct SRelease {
    void operator()(char* text) const { std::free(text); }
};

int rotate(const char* configuration, const std::vector<const char*>& documents) {
    std::vector<std::int32_t> flags(documents.size(), 0);
    if (!flags.empty()) {
        flags[0] = FI_EXCLUDE_ROTATION;
    }
    char* text = nullptr;
    const std::int32_t status = fi_process_backups(documents.data(), configuration, flags.data(),
                                                   static_cast<std::int32_t>(documents.size()), &text);
    const std::unique_ptr<char, SRelease> selection(text);
    if (status != FI_STATUS_SUCCESS) {
        std::printf("no selection\n");
        return 1;
    }
    std::printf("%s\n", selection.get());
    for (std::size_t i = 0; i < documents.size(); ++i) {
        std::printf("%s %d\n", documents[i], static_cast<int>(flags[i]));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: cxx_host CONFIGURATION [DOCUMENT]...\n");
        return 2;
    }
    try {
        return rotate(argv[1], std::vector<const char*>(argv + 2, argv + argc));
    } catch (const CFiUdidException& malformed) {
        std::printf("malformed %s %d\n", malformed.identifier.c_str(), static_cast<int>(malformed.code));
    } catch (const std::exception& error) {
        std::printf("exception %s\n", error.what());
    }
    return 2;
}
