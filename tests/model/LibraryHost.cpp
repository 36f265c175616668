#include "tests/model/LibraryHost.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

#include "tests/model/DocumentFiles.h"

namespace fi_model {
namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

// A folder in memory, if there is one, since many documents are written and soon removed.
std::filesystem::path parentOfFolder() {
    return access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path();
}

// Makes a folder the process's working folder while it lives.
class CWorkingFolder {
public:
    explicit CWorkingFolder(const std::string& folder) : former(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~CWorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(former, ignored);
    }
    CWorkingFolder(const CWorkingFolder&) = delete;
    CWorkingFolder& operator=(const CWorkingFolder&) = delete;

private:
    std::filesystem::path former;
};

// Sends the standard output into a file while it lives. It replaces the descriptor, so that it does not
// matter how the library prints.
class COutputCapture {
public:
    explicit COutputCapture(int file) : former(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        require(former >= 0 && dup2(file, STDOUT_FILENO) >= 0, "no capture of the output");
    }
    ~COutputCapture() {
        std::fflush(stdout);
        dup2(former, STDOUT_FILENO);
        close(former);
    }
    COutputCapture(const COutputCapture&) = delete;
    COutputCapture& operator=(const COutputCapture&) = delete;

private:
    int former;
};

std::string takeText(int file) {
    const off_t size = lseek(file, 0, SEEK_CUR);
    std::string text(static_cast<std::size_t>(size), '\0');
    if (size > 0) {
        require(pread(file, text.data(), text.size(), 0) == size, "no captured output");
        require(ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0, "no capture file");
    }
    return text;
}

// Makes the call. The caller's pointer has a value before it, which shows whether the call overwrites it.
void callLibrary(const SCall& call, SAnswer& answer) {
    std::vector<const char*> names;
    for (const SEntry& entry : call.entries) {
        names.push_back(entry.name.c_str());
        answer.flags.push_back(entry.flag);
    }
    char untouched = '\0';
    char* selection = &untouched;
    try {
        answer.status =
            fi_process_backups(names.data(), call.configuration ? call.configuration->c_str() : nullptr,
                               call.hasFlags ? answer.flags.data() : nullptr, call.listSize,
                               call.hasResult ? &selection : nullptr);
    } catch (const CFiUdidException& exception) {
        answer.malformed = SMalformed{exception.identifier, exception.code};
    } catch (...) {
        answer.malformed = SMalformed{"an exception of another type", -1};
    }
    if (selection == nullptr) {
        answer.selection = "a null pointer";
    } else if (selection != &untouched) {
        answer.selection = selection;
        std::free(selection);
    }
}

}  // namespace

CLibraryHost::CLibraryHost()
    : folder(parentOfFolder()), captureFile(memfd_create("fi_model_output", MFD_CLOEXEC)) {
    require(captureFile >= 0, "no file for the captured output");
}

CLibraryHost::~CLibraryHost() {
    close(captureFile);
}

SAnswer CLibraryHost::run(const SCall& call) {
    const CDocumentFiles documents(folder, call.files);
    return answer(call);
}

SAnswer CLibraryHost::runOnKeptFiles(const SCall& call) {
    for (const auto& [name, document] : call.files) {
        if (keptFiles.insert(name).second) {
            folder.write(name, xmlText(document));
        }
    }
    return answer(call);
}

SAnswer CLibraryHost::answer(const SCall& call) {
    SAnswer seen;
    const CWorkingFolder inFolder(folder.path(""));
    {
        fi_test::CTraceRecorder recorder;
        const COutputCapture capture(captureFile);
        callLibrary(call, seen);
        seen.trace = recorder.take();
        seenFormats.insert(recorder.formats().begin(), recorder.formats().end());
    }
    seen.standardOutput = takeText(captureFile);
    return seen;
}

}  // namespace fi_model
