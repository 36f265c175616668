#pragma once

#include <string>
#include <string_view>

namespace fi_rotate {

// A folder for files that nobody keeps, in memory where the system offers that; removed with all that is in
// it. Its name holds the number of the process, so that one that a killed process left is known for what it
// is.
class CTemporaryFolder {
public:
    // Throws std::system_error when none can be made.
    CTemporaryFolder();
    ~CTemporaryFolder();
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    // The path of the file, which is written whole. Throws std::system_error when it cannot be.
    [[nodiscard]] std::string write(const std::string& name, std::string_view content) const;

private:
    std::string folder;
};

}  // namespace fi_rotate
