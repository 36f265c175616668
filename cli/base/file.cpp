#include "cli/base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

namespace fi_rotate {
namespace {

constexpr mode_t kAllMayReadAndWrite = 0666;

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

mode_t modeOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return kAllMayReadAndWrite & ~mask;
}

// Where a link leads: moving a file onto a link would replace the link.
std::string resolved(const std::string& file) {
    std::error_code ignored;
    const auto target = std::filesystem::canonical(file, ignored);
    return target.empty() ? file : target.string();
}

std::string parentFolder() {
    constexpr const char* kInMemory = "/dev/shm";
    return access(kInMemory, W_OK | X_OK) == 0 ? kInMemory : std::filesystem::temp_directory_path().string();
}

[[noreturn]] void fail(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), "cannot write \"" + path + "\"");
}

}  // namespace

std::string errorText() {
    return std::generic_category().message(errno);
}

std::optional<std::string> readAll(std::FILE* stream) {
    std::string content;
    char piece[65536];
    while (const std::size_t length = std::fread(piece, 1, sizeof piece, stream)) {
        content.append(piece, length);
    }
    if (std::ferror(stream) != 0) {
        return std::nullopt;
    }
    return content;
}

std::optional<std::string> readFile(const std::string& file) {
    const CFile stream(std::fopen(file.c_str(), "rb"));
    return stream == nullptr ? std::nullopt : readAll(stream.get());
}

COutputFile::COutputFile(const std::string& file) : place(resolved(file)) {
    struct stat before {};
    const bool exists = stat(place.c_str(), &before) == 0;
    if (exists && !S_ISREG(before.st_mode)) {
        descriptor = open(place.c_str(), O_WRONLY | O_CLOEXEC);
    } else if (exists && access(place.c_str(), W_OK) != 0) {
        fail();
    } else {
        temporary = place + ".XXXXXX";
        descriptor = mkstemp(temporary.data());
    }
    if (descriptor == -1) {
        fail();
    }
    if (!temporary.empty()) {
        fchmod(descriptor, exists ? before.st_mode : modeOfNewFiles());
    }
}

COutputFile::~COutputFile() {
    close(descriptor);
    if (!temporary.empty()) {
        unlink(temporary.c_str());
    }
}

void COutputFile::write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written == -1 && errno != EINTR) {
            fail();
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
}

void COutputFile::keep() {
    if (!temporary.empty() && std::rename(temporary.c_str(), place.c_str()) != 0) {
        fail();
    }
    temporary.clear();
}

CTemporaryFolder::CTemporaryFolder()
    : folder(fmt::format("{}/fi-rotate-{}-XXXXXX", parentFolder(), getpid())) {
    if (mkdtemp(folder.data()) == nullptr) {
        fail(folder);
    }
}

CTemporaryFolder::~CTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string CTemporaryFolder::write(const std::string& name, std::string_view content) const {
    std::string path = folder + "/" + name;
    const CFile file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr) {
        fail(path);
    }
    std::fwrite(content.data(), 1, content.size(), file.get());
    if (std::fflush(file.get()) != 0 || std::ferror(file.get()) != 0) {
        fail(path);
    }
    return path;
}

}  // namespace fi_rotate
