#include "LibraryHost.h"

#include <fcntl.h>
#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace {

// Where the lines of the running call go. The trace facility has no argument of ours, so this is
// the one thing that has to be global.
std::vector<fi_model::TraceLine>* activeTrace = nullptr;

}  // namespace

extern "C" __attribute__((visibility("default"), format(printf, 2, 3))) void mofi_tracelog(int level,
                                                                                           const char* format,
                                                                                           ...) {
    if (activeTrace == nullptr) {
        return;
    }
    char* text = nullptr;
    va_list arguments;
    va_start(arguments, format);
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    if (length >= 0) {
        activeTrace->push_back({level, std::string(text, static_cast<std::size_t>(length))});
        std::free(text);
    }
}

namespace fi_model {

namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

std::string makeFolder() {
    std::string path = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    path += "/fi_model_XXXXXX";
    require(mkdtemp(path.data()) != nullptr, "no folder for the documents");
    return path;
}

void writeFile(const std::string& name, const std::string& text) {
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    require(file >= 0, "a document cannot be created");
    const ssize_t written = write(file, text.data(), text.size());
    close(file);
    require(written == static_cast<ssize_t>(text.size()), "a document cannot be written");
}

// The documents of one call, there while the call runs.
class Documents {
public:
    explicit Documents(const std::map<std::string, Document>& files) : files_(files) {
        for (const auto& [name, document] : files_) {
            if (!document.isDirectory) {
                writeFile(name, xmlText(document));
            }
        }
    }
    ~Documents() {
        for (const auto& [name, document] : files_) {
            if (!document.isDirectory) {
                unlink(name.c_str());
            }
        }
    }
    Documents(const Documents&) = delete;
    Documents& operator=(const Documents&) = delete;

private:
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

class TraceRecording {
public:
    explicit TraceRecording(std::vector<TraceLine>& trace) { activeTrace = &trace; }
    ~TraceRecording() { activeTrace = nullptr; }
    TraceRecording(const TraceRecording&) = delete;
    TraceRecording& operator=(const TraceRecording&) = delete;
};

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
    : folder_(makeFolder()),
      formerFolder_(std::filesystem::current_path().string()),
      captureFile_(memfd_create("fi_model_output", MFD_CLOEXEC)) {
    require(captureFile_ >= 0, "no file for the captured output");
    std::filesystem::current_path(folder_);
}

LibraryHost::~LibraryHost() {
    std::error_code ignored;
    std::filesystem::current_path(formerFolder_, ignored);
    std::filesystem::remove_all(folder_, ignored);
    close(captureFile_);
}

Answer LibraryHost::run(const Call& call) {
    Answer answer;
    const Documents documents(call.files);
    {
        const TraceRecording recording(answer.trace);
        const OutputCapture capture(captureFile_);
        callLibrary(call, answer);
    }
    answer.standardOutput = takeText(captureFile_);
    return answer;
}

}  // namespace fi_model
