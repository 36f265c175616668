#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace fi_test {

// A folder of its own for one test, removed with all that is in it.
class CTemporaryFolder {
public:
    explicit CTemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
    ~CTemporaryFolder();
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    // The path of `name` in this folder, whether it exists or not.
    std::string path(const std::string& name) const;

    // Writes `content` byte for byte and returns the file's path.
    std::string write(const std::string& name, std::string_view content) const;

    // The names of all files and folders in it.
    std::vector<std::string> entries() const;

private:
    std::filesystem::path folder;
};

}  // namespace fi_test
