#include "cli/temporary_folder.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "cli/file.h"

namespace fi_rotate {
namespace {

std::string parentFolder() {
    constexpr const char* kInMemory = "/dev/shm";
    return access(kInMemory, W_OK | X_OK) == 0 ? kInMemory : std::filesystem::temp_directory_path().string();
}

[[noreturn]] void fail(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), "cannot write \"" + path + "\"");
}

}  // namespace

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
