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

namespace fi_model {
namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

// In memory where that can be: documents are many and live shortly.
std::filesystem::path parentOfFolder() {
    return access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path();
}

// Makes a folder the process's working folder while it lives.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& folder) : former_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(former_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    std::filesystem::path former_;
};

// The documents of one call, there while the call runs.
class Documents {
public:
    Documents(const fi_test::TemporaryFolder& folder, const std::map<std::string, Document>& files)
        : folder_(folder), files_(files) {
        for (const auto& [name, document] : files_) {
            if (!document.isDirectory) {
                folder_.write(name, xmlText(document));
            }
        }
    }
    ~Documents() {
        for (const auto& [name, document] : files_) {
            if (!document.isDirectory) {
                unlink(folder_.path(name).c_str());
            }
        }
    }
    Documents(const Documents&) = delete;
    Documents& operator=(const Documents&) = delete;

private:
    const fi_test::TemporaryFolder& folder_;
    const std::map<std::string, Document>& files_;
};

// Sends the standard output into a file while it lives. The descriptor is exchanged, because the
// library may print in any way.
class OutputCapture {
public:
    explicit OutputCapture(int file) : former_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        require(former_ >= 0 && dup2(file, STDOUT_FILENO) >= 0, "no capture of the output");
    }
    ~OutputCapture() {
        std::fflush(stdout);
        dup2(former_, STDOUT_FILENO);
        close(former_);
    }
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

private:
    int former_;
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

// The call as such. The caller's pointer is filled beforehand, to tell whether it was written.
void callLibrary(const Call& call, Answer& answer) {
    std::vector<const char*> names;
    for (const Entry& entry : call.entries) {
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
        answer.malformed = Malformed{exception.identifier, exception.code};
    } catch (...) {
        answer.malformed = Malformed{"an exception of another type", -1};
    }
    if (selection == nullptr) {
        answer.selection = "a null pointer";
    } else if (selection != &untouched) {
        answer.selection = selection;
        std::free(selection);
    }
}

}  // namespace

LibraryHost::LibraryHost()
    : folder_(parentOfFolder()), captureFile_(memfd_create("fi_model_output", MFD_CLOEXEC)) {
    require(captureFile_ >= 0, "no file for the captured output");
}

LibraryHost::~LibraryHost() {
    close(captureFile_);
}

Answer LibraryHost::run(const Call& call) {
    Answer answer;
    const WorkingFolder inFolder(folder_.path(""));
    const Documents documents(folder_, call.files);
    {
        fi_test::TraceRecorder recorder;
        const OutputCapture capture(captureFile_);
        callLibrary(call, answer);
        answer.trace = recorder.take();
        formats_.insert(recorder.formats().begin(), recorder.formats().end());
    }
    answer.standardOutput = takeText(captureFile_);
    return answer;
}

}  // namespace fi_model
