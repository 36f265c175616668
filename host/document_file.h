#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

// The files of documents, looked at before the library reads them and after.
namespace fi_rotate {

// Tells one state of a file from every other that it was in or may come to.
class CFileIdentity {
public:
    explicit CFileIdentity(const struct stat& state) : seen(state) {}

    bool operator==(const CFileIdentity& other) const;

    // By file, in whatever state.
    struct SFileOrder {
        bool operator()(const CFileIdentity& one, const CFileIdentity& other) const {
            return std::pair(one.seen.st_dev, one.seen.st_ino) <
                   std::pair(other.seen.st_dev, other.seen.st_ino);
        }
    };

private:
    struct stat seen;
};

struct SDocumentFile {
    // What the file was before it was read; nothing when it is none.
    std::optional<CFileIdentity> identity;
    // A value of fi_rotation_problem, and in words what is wrong; 0 when it could be read whole.
    std::uint32_t problem = 0;
    std::string fault;
};

// Reads a file to its end, without keeping it.
SDocumentFile inspectDocument(const std::string& file, std::uint64_t mostBytes);

// The present state of what has this name; nothing when that cannot be told.
std::optional<CFileIdentity> identityOf(const std::string& file);

}  // namespace fi_rotate
