#include "cli/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <system_error>

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

}  // namespace

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

}  // namespace fi_rotate
