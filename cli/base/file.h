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

// The text of the error in errno.
std::string errorText();

// All bytes that are left of `stream`; nothing, with errno set, when they cannot be read.
std::optional<std::string> readAll(std::FILE* stream);

// All bytes of `file`; nothing, with errno set, when it cannot be opened or read.
std::optional<std::string> readFile(const std::string& file);

// The absolute path of `file` without symbolic links, also of a file that does not exist yet. It is the same
// for all names of a file except hard links.
std::string resolvedPathOf(const std::string& file);

// An output file that is written completely or not at all: it is written under another name in the same
// folder and renamed by commit(). A pipe or a device is written to directly.
class COutputFile {
public:
    // Throws std::system_error when it cannot be written.
    explicit COutputFile(std::string file);
    // Leaves the file as it was before, unless commit() was called.
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    // As it was given.
    [[nodiscard]] const std::string& name() const { return given; }

    // Throws std::system_error when it cannot be written whole.
    void write(std::string_view text);

    // For content that is written in parts. commit() reports whether all of it could be written.
    [[nodiscard]] std::FILE* stream() const { return content.get(); }

    // Renames the file to its own name, to be called once. Throws std::system_error when not all of it could
    // be written.
    void commit();

private:
    std::string given;
    std::string path;
    // The name while it is written; empty when it is written to directly.
    std::string temporary;
    CFile content;
};

// A folder for temporary files, in memory where the system has /dev/shm; removed with all files in it. Its
// name contains the number of the process, so that a folder that a killed process left can be recognised.
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
