#pragma once

#include <sys/stat.h>

#include <string>

// Which file is meant and in which state it is, as texts that can be compared. The host library notes the
// state of each document before the call; the loader traces the state of what it has read. Both use this
// class, so that the two can be compared. GCOVR_EXCL_START: in the host library only.
class CFiFileState {
public:
    explicit CFiFileState(const struct stat& seen)
        : identity(std::to_string(seen.st_dev) + ':' + std::to_string(seen.st_ino)),
          state(identity + ' ' + std::to_string(seen.st_size) + ' ' + asText(seen.st_mtim) + ' ' +
                asText(seen.st_ctim)) {}

    // Which file: the same for all names of a file, different for other files.
    std::string identity;
    // Which file, its size and the times of its last changes: another text when the file is changed or
    // replaced, as far as these show it. SReading::fileState is such a text.
    std::string state;

private:
    static std::string asText(const timespec& time) {
        return std::to_string(time.tv_sec) + '.' + std::to_string(time.tv_nsec);
    }
};
// GCOVR_EXCL_STOP
