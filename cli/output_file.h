#pragma once

#include <string>
#include <string_view>

namespace fi_rotate {

// A file that is there whole or not at all: written beside its place under another name, and moved there in
// the end. What is no ordinary file (a pipe, a device) is written in place.
class COutputFile {
public:
    // Throws std::system_error when it cannot be written.
    explicit COutputFile(const std::string& file);
    // Without keep() the file is as it was before.
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    // Throws std::system_error when it cannot be written whole.
    void write(std::string_view text);
    void keep();

private:
    std::string place;
    // Empty when it is written in place.
    std::string temporary;
    int descriptor = -1;
};

}  // namespace fi_rotate
