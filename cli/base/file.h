#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace fi_rotate {

struct SFileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using CFile = std::unique_ptr<std::FILE, SFileClose>;

// What errno says.
std::string errorText();

// All bytes that are left of `stream`; nothing, with errno set, when they cannot be read.
std::optional<std::string> readAll(std::FILE* stream);

// All bytes of `file`; nothing, with errno set, when it cannot be opened or read.
std::optional<std::string> readFile(const std::string& file);

// Where a file is, or would be when it is not there yet: the same for all its names, but for hard links.
std::string placeOf(const std::string& file);

// A file that is there whole or not at all: written beside its place under another name, and moved there in
// the end. What is no ordinary file (a pipe, a device) is written in place.
class COutputFile {
public:
    // Throws std::system_error when it cannot be written.
    explicit COutputFile(std::string file);
    // Without commit() the file is as it was before.
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    // As it was given.
    [[nodiscard]] const std::string& name() const { return given; }

    // Throws std::system_error when it cannot be written whole.
    void write(std::string_view text);

    // For content that is written as it comes; whether all of it could be is for commit() to find out.
    [[nodiscard]] std::FILE* stream() const { return content.get(); }

    // Moves the file to its place, to be called once. Throws std::system_error when it could not be written
    // whole.
    void commit();

private:
    std::string given;
    std::string place;
    // Empty when it is written in place.
    std::string temporary;
    CFile content;
};

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
