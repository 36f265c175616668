#include "host/document_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "host/host.h"

namespace fi_rotate {
namespace {

class CDescriptor {
public:
    // O_NONBLOCK, because a pipe of this name would be opened only when another process writes to it.
    explicit CDescriptor(const std::string& file)
        : number(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)) {}
    ~CDescriptor() {
        if (number != -1) {
            close(number);
        }
    }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    // -1 when it could not be opened.
    const int number;
};

std::string lastError() {
    const char* const words = strerrordesc_np(errno);
    return words != nullptr ? words : fmt::format("error {}", errno);
}

SDocumentFile cannotOpen() {
    return {{}, {{FI_ROTATION_CANNOT_OPEN, fmt::format("cannot be opened: {}", lastError())}}};
}

std::string_view kindOfFile(mode_t mode) {
    if (S_ISDIR(mode)) {
        return "a folder";
    }
    return S_ISFIFO(mode) ? "a pipe" : S_ISSOCK(mode) ? "a socket" : "a device";
}

SDocumentFile notAFile(mode_t mode) {
    return {{}, {{FI_ROTATION_NOT_A_FILE, fmt::format("is {}, not a file", kindOfFile(mode))}}};
}

SFileProblem tooLarge(std::uint64_t bytes, std::uint64_t mostBytes) {
    return {FI_ROTATION_TOO_LARGE, fmt::format("has {} bytes; at most {} are allowed", bytes, mostBytes)};
}

// Reads again when a signal interrupted it.
ssize_t readSome(int descriptor, char* buffer, std::size_t size) {
    while (true) {
        const ssize_t count = read(descriptor, buffer, size);
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

// Reads an open file to its end, or up to a place behind `mostBytes`.
std::vector<SFileProblem> readToEnd(int descriptor, std::uint64_t mostBytes, bool isReadBeyond) {
    // Small, because hosts call from threads with small stacks.
    std::array<char, std::size_t{8} << 10> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init)
    std::vector<SFileProblem> problems;
    std::uint64_t bytes = 0;
    ssize_t count = 0;
    while ((isReadBeyond || bytes <= mostBytes) &&
           (count = readSome(descriptor, buffer.data(), buffer.size())) > 0) {
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(count));
        const std::size_t nul = problems.empty() ? piece.find('\0') : std::string_view::npos;
        if (nul != std::string_view::npos) {
            problems.push_back({FI_ROTATION_NUL_BYTE,
                                fmt::format("holds a NUL byte at byte {}; restore it if it is damaged; if it "
                                            "is in UTF-16, the backup product must write UTF-8",
                                            bytes + nul)});
        }
        bytes += piece.size();
    }
    if (count < 0) {
        problems.push_back(
            {FI_ROTATION_READ_ERROR, fmt::format("cannot be read after byte {}: {}", bytes, lastError())});
    }
    if (bytes > mostBytes) {
        problems.push_back(tooLarge(bytes, mostBytes));
    }
    return problems;
}

}  // namespace

SDocumentFile inspectDocument(const std::string& file, std::uint64_t mostBytes, bool isReadBeyond) {
    struct stat state {};
    if (stat(file.c_str(), &state) != 0) {
        return cannotOpen();
    }
    if (!S_ISREG(state.st_mode)) {
        return notAFile(state.st_mode);
    }
    const CDescriptor descriptor(file);
    if (descriptor.number == -1 || fstat(descriptor.number, &state) != 0) {
        return cannotOpen();
    }
    if (!S_ISREG(state.st_mode)) {
        return notAFile(state.st_mode);
    }
    const auto size = static_cast<std::uint64_t>(state.st_size);
    if (size > mostBytes && !isReadBeyond) {
        return {CFiFileState(state), {tooLarge(size, mostBytes)}};
    }
    return {CFiFileState(state), readToEnd(descriptor.number, mostBytes, isReadBeyond)};
}

std::optional<CFiFileState> stateOf(const std::string& file) {
    struct stat state {};
    return stat(file.c_str(), &state) == 0 ? std::optional<CFiFileState>(state) : std::nullopt;
}

}  // namespace fi_rotate
