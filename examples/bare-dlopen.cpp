// A host in C++17 that loads the library when it runs and calls its function itself: it supplies the trace
// function and catches whatever may leave the call. It needs the library's headers to be built, and the
// library itself only to be started. A first host is shorter and safer in safe-host.c and safe-host.cpp.
//
//   c++ -std=c++17 -Wl,--export-dynamic-symbol=mofi_tracelog bare-dlopen.cpp -ldl -o bare-dlopen
//   ./bare-dlopen "$(cat resource.conf)" backup-*.xml
//
// Exit status: 0 a selection was made, 1 there is none, 2 the call could not be made.
#include <dlfcn.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

namespace {

// Whether no configuration was malformed and no document damaged. Only the trace tells.
bool isWhole = true;

}  // namespace

// The library finds this function in the program by its name. The linker exports it only when told to, since
// nothing that it sees refers to it: that is the -Wl option above (-rdynamic exports everything). A host in
// production keeps these lines; this one shows only failures.
void mofi_tracelog(int level, const char* format, ...) {
    constexpr int kFailure = 3;
    std::va_list arguments;
    va_start(arguments, format);
    if (level == kFailure) {
        if (std::strncmp(format, "CFiResourceParser::", 19) == 0) {
            isWhole = false;
        }
        std::vfprintf(stderr, format, arguments);
        std::fputc('\n', stderr);
    } else if (std::strcmp(format, "Entering %s\n") == 0 &&
               std::strcmp(va_arg(arguments, const char*), "CFiFiidHandler::fatalError") == 0) {
        isWhole = false;
    }
    va_end(arguments);
}

namespace {

// The library's soname: the number changes only when programs built before would break.
constexpr const char* kLibrary = "libfi_rotation.so.1";

using ProcessBackups = decltype(&fi_process_backups);

enum EExitStatus { kSelected = 0, kNotSelected = 1, kNotCalled = 2 };

// Any bit but FI_EXCLUDE_ROTATION is the host's own. The library overwrites the words of the backups that it
// loaded; in the others this bit remains, and so the two can be told apart.
constexpr std::int32_t kNotLoaded = 256;

// The selection is the caller's and came from malloc.
struct SFree {
    void operator()(char* text) const { std::free(text); }
};

// RTLD_NOW: a missing mofi_tracelog is found here and has a message, not in the middle of a call.
// The library stays loaded to the end of the process: an exception of its own could still be alive.
ProcessBackups loadRotation() {
    void* const library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "bare-dlopen: cannot load %s: %s\n", kLibrary, dlerror());
        return nullptr;
    }
    const auto function = reinterpret_cast<ProcessBackups>(dlsym(library, "fi_process_backups"));
    if (function == nullptr) {
        std::fprintf(stderr, "bare-dlopen: %s has no rotation: %s\n", kLibrary, dlerror());
    }
    return function;
}

const char* nameOf(std::int32_t state) {
    switch (state) {
        case FI_BACKUP_KEPT:
            return "kept";
        case FI_BACKUP_INVALID:
            return "invalid";
        case FI_BACKUP_ROTATED:
            return "rotated";
        default:
            return "in another state";
    }
}

// To be known before the call, which waits for a pipe, and does not tell that a NUL byte hid the rest of its
// line.
bool isFileWithoutNul(const char* name) {
    if (!std::filesystem::is_regular_file(name)) {
        return false;
    }
    std::ifstream file(name, std::ios::binary);
    const std::istreambuf_iterator<char> end;
    return std::find(std::istreambuf_iterator<char>(file), end, '\0') == end;
}

// One call, which exceptions may leave.
int rotate(ProcessBackups processBackups, const char* configuration,
           const std::vector<const char*>& documents) {
    const auto unusable = std::find_if_not(documents.begin(), documents.end(), isFileWithoutNul);
    if (unusable != documents.end()) {
        std::fprintf(stderr, "bare-dlopen: %s is no file, or holds a NUL byte\n", *unusable);
        return kNotSelected;
    }
    // Made for every call: after one, the words are states. `| FI_EXCLUDE_ROTATION` excludes a backup.
    std::vector<std::int32_t> flags(documents.size(), kNotLoaded);
    isWhole = true;
    char* text = nullptr;
    const std::int32_t status = processBackups(documents.data(), configuration, flags.data(),
                                               static_cast<std::int32_t>(documents.size()), &text);
    const std::unique_ptr<char, SFree> selection(text);
    if (status != FI_STATUS_SUCCESS) {
        std::fprintf(stderr, "bare-dlopen: no selection (status %d)\n", static_cast<int>(status));
        return kNotSelected;
    }
    // The targets of what is not known look free, so this selection could overwrite a snapshot.
    if (!isWhole || std::find(flags.begin(), flags.end(), kNotLoaded) != flags.end()) {
        std::fprintf(stderr, "bare-dlopen: a document or a configuration was ignored, or is damaged\n");
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
    // A call without documents is that of a first backup: all targets are free.
    if (argc < 3) {
        std::fprintf(stderr, "usage: bare-dlopen CONFIGURATION DOCUMENT...\n");
        return kNotCalled;
    }
    const ProcessBackups processBackups = loadRotation();
    if (processBackups == nullptr) {
        return kNotCalled;
    }
    try {
        return rotate(processBackups, argv[1], std::vector<const char*>(argv + 2, argv + argc));
    } catch (const CFiUdidException& malformed) {
        std::fprintf(stderr, "bare-dlopen: malformed device identifier \"%s\" (reason %d)\n",
                     malformed.identifier.c_str(), static_cast<int>(malformed.code));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bare-dlopen: %s\n", error.what());
    } catch (...) {
        // The XML library's exception for a shortage of memory is no std::exception.
        std::fprintf(stderr, "bare-dlopen: out of memory in the XML library\n");
    }
    return kNotCalled;
}
