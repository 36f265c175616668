#include "tests/cli/Program.h"

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

#include <gtest/gtest.h>

#include "cli/base/file.h"
#include "tests/support/TemporaryFolder.h"

extern char** environ;

namespace fi_test {
namespace {

class CDescriptor {
public:
    explicit CDescriptor(int opened) : descriptor(opened) {
        if (descriptor == -1) {
            throw std::system_error(errno, std::generic_category(), "open");
        }
    }
    ~CDescriptor() { close(); }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    void close() {
        if (descriptor != -1) {
            ::close(descriptor);
            descriptor = -1;
        }
    }
    int get() const { return descriptor; }

private:
    int descriptor;
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view variable(*entry);
        if (variable.substr(0, 9) != "NO_COLOR=" && variable.substr(0, 5) != "TERM=") {
            result.emplace_back(*entry);
        }
    }
    result.insert(result.end(), additions.begin(), additions.end());
    return result;
}

pid_t start(std::vector<std::string> arguments, const std::vector<std::string>& additions, int output,
            int error) {
    arguments.insert(arguments.begin(), FI_ROTATE_PROGRAM);
    std::vector<std::string> environment = environmentWith(additions);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error, STDERR_FILENO);
    pid_t process = -1;
    const int failure = posix_spawn(&process, FI_ROTATE_PROGRAM, &actions, nullptr,
                                    pointersTo(arguments).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::system_error(failure, std::generic_category(), FI_ROTATE_PROGRAM);
    }
    return process;
}

// Until the end of the file; a terminal ends with an error when its last writer has gone.
std::string readAll(int descriptor) {
    std::string text;
    char piece[4096];
    for (ssize_t length = 0; (length = read(descriptor, piece, sizeof piece)) > 0;) {
        text.append(piece, static_cast<std::size_t>(length));
    }
    return text;
}

std::string readBack(const CDescriptor& file) {
    lseek(file.get(), 0, SEEK_SET);
    return readAll(file.get());
}

// Waits for the process and takes its exit status and what it wrote to `error`. The test fails when a signal
// ended it.
void finish(SProgramResult& result, pid_t process, const CDescriptor& error) {
    int status = 0;
    waitpid(process, &status, 0);
    result.error = readBack(error);
    if (WIFEXITED(status)) {
        result.exitStatus = WEXITSTATUS(status);
    } else {
        ADD_FAILURE() << "fi-rotate was ended by signal " << WTERMSIG(status) << " ("
                      << strsignal(WTERMSIG(status)) << "); its standard error:\n"
                      << result.error;
    }
}

CDescriptor scratchFile(const CTemporaryFolder& folder, const std::string& name) {
    return CDescriptor(open(folder.path(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
}

}  // namespace

SProgramResult runFiRotate(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment) {
    const CTemporaryFolder folder;
    const CDescriptor output = scratchFile(folder, "output");
    const CDescriptor error = scratchFile(folder, "error");
    SProgramResult result;
    finish(result, start(arguments, environment, output.get(), error.get()), error);
    result.output = readBack(output);
    return result;
}

SProgramResult runFiRotateTo(const std::string& file, const std::vector<std::string>& arguments) {
    const CTemporaryFolder folder;
    const CDescriptor output(open(file.c_str(), O_WRONLY | O_CLOEXEC));
    const CDescriptor error = scratchFile(folder, "error");
    SProgramResult result;
    finish(result, start(arguments, {}, output.get(), error.get()), error);
    return result;
}

bool hasTerminals() {
    int ends[2] = {-1, -1};
    if (openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) == -1) {
        return false;
    }
    close(ends[0]);
    close(ends[1]);
    return true;
}

SProgramResult runFiRotateOnTerminal(const std::vector<std::string>& arguments,
                                     const std::vector<std::string>& environment) {
    const CTemporaryFolder folder;
    const CDescriptor error = scratchFile(folder, "error");
    int ends[2] = {-1, -1};
    if (openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) == -1) {
        throw std::system_error(errno, std::generic_category(), "openpty");
    }
    const CDescriptor ours(ends[0]);
    CDescriptor theirs(ends[1]);

    const pid_t process = start(arguments, environment, theirs.get(), error.get());
    theirs.close();
    SProgramResult result;
    result.output = readAll(ours.get());
    finish(result, process, error);
    return result;
}

std::string contentOf(const std::string& file) {
    return fi_rotate::readFile(file).value_or("");
}

std::string example(const std::string& name) {
    return FI_ROTATE_EXAMPLES "/" + name;
}

std::vector<std::string> exampleBackups() {
    std::vector<std::string> paths;
    for (int day = 1; day <= 8; ++day) {
        paths.push_back(example("backup-2026-10-0" + std::to_string(day) + ".xml"));
    }
    return paths;
}

}  // namespace fi_test
