#include "cli/base/file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

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
    std::size_t length = sizeof piece;
    while (length == sizeof piece) {
        length = std::fread(piece, 1, sizeof piece, stream);
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

// weakly_canonical does not follow a link to a file that does not exist yet.
std::string resolvedPathOf(const std::string& file) {
    constexpr int kMostLinks = 40;
    std::error_code ignored;
    std::filesystem::path path = std::filesystem::absolute(file, ignored);
    for (int i = 0; i < kMostLinks && !exists(path, ignored) && is_symlink(path, ignored); ++i) {
        path = path.parent_path() / read_symlink(path, ignored);
    }
    const auto resolved = weakly_canonical(path, ignored);
    return resolved.empty() ? path : resolved;
}

// Uses the resolved path, because renaming a file to the name of a link would replace the link.
COutputFile::COutputFile(std::string file) : given(std::move(file)), path(resolvedPathOf(given)) {
    struct stat before = {};
    const bool exists = stat(path.c_str(), &before) == 0;
    if (exists && !S_ISREG(before.st_mode)) {
        content.reset(std::fopen(path.c_str(), "we"));
    } else if (!path.empty() && (!exists || access(path.c_str(), W_OK) == 0)) {
        temporary = path + ".XXXXXX";
        const int descriptor = mkstemp(temporary.data());
        content.reset(descriptor == -1 ? nullptr : fdopen(descriptor, "w"));
    }
    if (content == nullptr) {
        fail();
    }
    if (!temporary.empty()) {
        fchmod(fileno(content.get()), exists ? before.st_mode : modeOfNewFiles());
    }
}

COutputFile::~COutputFile() {
    if (!temporary.empty()) {
        unlink(temporary.c_str());
    }
}

void COutputFile::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), content.get()) != text.size()) {
        fail();
    }
}

void COutputFile::commit() {
    const bool isBroken = std::ferror(content.get()) != 0;
    if (std::fclose(content.release()) != 0) {
        fail();
    }
    if (isBroken) {
        // errno no longer has the error of the write that failed.
        throw std::system_error(EIO, std::generic_category());
    }
    if (!temporary.empty() && std::rename(temporary.c_str(), path.c_str()) != 0) {
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
