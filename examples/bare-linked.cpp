// A host in C++17 that is linked with the library and calls its function itself: it supplies the trace
// function and catches whatever may leave the call. A first host is shorter and safer in safe-host.c and
// safe-host.cpp.
//
//   c++ -std=c++17 bare-linked.cpp $(pkg-config --cflags --libs fi_rotation) -o bare-linked
//   ./bare-linked "$(cat resource.conf)" backup-*.xml
//
// Exit status: 0 a selection was made, 1 none was, 2 the call could not be made.
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

// The library takes this function, which its header declares, from the program. The linker sees that and
// exports it without being told. A host in production keeps these lines; this one shows only failures.
void mofi_tracelog(int level, const char* format, ...) {
    constexpr int kFailure = 3;
    if (level != kFailure) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}

namespace {

enum EExitStatus { kSelected = 0, kNotSelected = 1, kNotCalled = 2 };

// Any bit but FI_EXCLUDE_ROTATION is the host's own. The library overwrites the words of the backups that it
// loaded; in the others this bit remains, and so the two can be told apart.
constexpr std::int32_t kNotLoaded = 256;

// The selection is the caller's and came from malloc.
struct SFree {
    void operator()(char* text) const { std::free(text); }
};

const char* nameOf(std::int32_t state) {
    switch (state) {
        case FI_BACKUP_KEPT:
            return "kept";
        case FI_BACKUP_INVALID:
            return "invalid";
        case FI_BACKUP_ROTATED:
            return "rotated";
        default:
            return "not loaded";
    }
}

// One call, which exceptions may leave.
int rotate(const char* configuration, const std::vector<const char*>& documents) {
    // Made for every call: after one, the words are states. `| FI_EXCLUDE_ROTATION` protects a backup.
    std::vector<std::int32_t> flags(documents.size(), kNotLoaded);
    char* text = nullptr;
    const std::int32_t status = fi_process_backups(documents.data(), configuration, flags.data(),
                                                   static_cast<std::int32_t>(documents.size()), &text);
    const std::unique_ptr<char, SFree> selection(text);
    if (status != FI_STATUS_SUCCESS) {
        std::fprintf(stderr, "bare-linked: no selection (status %d)\n", static_cast<int>(status));
        return kNotSelected;
    }
    std::printf("selection: %s\n", selection.get());
    for (std::size_t i = 0; i < documents.size(); ++i) {
        std::printf("%s: %s\n", documents[i], nameOf(flags[i]));
    }
    return kSelected;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: bare-linked CONFIGURATION [DOCUMENT]...\n");
        return kNotCalled;
    }
    try {
        return rotate(argv[1], std::vector<const char*>(argv + 2, argv + argc));
    } catch (const CFiUdidException& malformed) {
        std::fprintf(stderr, "bare-linked: malformed device identifier \"%s\" (reason %d)\n",
                     malformed.identifier.c_str(), static_cast<int>(malformed.code));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bare-linked: %s\n", error.what());
    } catch (...) {
        // The XML library's exception for a shortage of memory is no std::exception.
        std::fprintf(stderr, "bare-linked: out of memory in the XML library\n");
    }
    return kNotCalled;
}
