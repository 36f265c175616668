#pragma once

#include <sys/stat.h>

#include <string>

// A file, and the state that it is in, as texts to be compared. The host library looks at each document
// before it is read, and what reads it says what it has read: both ask here.
// GCOVR_EXCL_START: in the host library only.
class CFiFileState {
public:
    explicit CFiFileState(const struct stat& seen)
        : file(std::to_string(seen.st_dev) + ':' + std::to_string(seen.st_ino)),
          text(file + ' ' + std::to_string(seen.st_size) + ' ' + asText(seen.st_mtim) + ' ' +
               asText(seen.st_ctim)) {}

    // Of which file, whatever its names.
    std::string file;
    // Different for every state that a file was in or may come to.
    std::string text;

private:
    static std::string asText(const timespec& time) {
        return std::to_string(time.tv_sec) + '.' + std::to_string(time.tv_nsec);
    }
};
// GCOVR_EXCL_STOP
