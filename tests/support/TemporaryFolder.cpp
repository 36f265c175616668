#include "tests/support/TemporaryFolder.h"

#include <stdlib.h>

#include <cerrno>
#include <fstream>
#include <ios>
#include <system_error>

namespace fi_test {

CTemporaryFolder::CTemporaryFolder(const std::filesystem::path& parent) {
    std::string pattern = (parent / "fi-rotation-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), pattern);
    }
    folder = pattern;
}

CTemporaryFolder::~CTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string CTemporaryFolder::path(const std::string& name) const {
    return (folder / name).string();
}

std::string CTemporaryFolder::write(const std::string& name, std::string_view content) const {
    std::ofstream file(folder / name, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    return path(name);
}

std::vector<std::string> CTemporaryFolder::entries() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

}  // namespace fi_test
