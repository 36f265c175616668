#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/account_reader.h"
#include "cli/log_text.h"
#include "cli/outcome.h"

// Calls of the library as a log tells of them.
namespace fi_rotate {

struct SLoggedCall {
    // From 1 in the order of the log.
    std::size_t number = 0;
    // Of its first and its last line in the log, from 1.
    std::size_t firstLine = 0;
    std::size_t lastLine = 0;
    // With an account, unless the arguments were refused. The trace tells no selection of a first backup, a
    // time stamp only of backups that passed the check, and not the code of an exception. Status and
    // exception are both missing when the end is.
    SOutcome outcome;
    // What the log should hold of the call, and does not.
    std::vector<std::string> missing;
};

// Takes a log in, line by line, and tells its calls apart. Lines that are not the library's are passed over.
class CLogReader {
public:
    // `line` is without its line end.
    void read(std::string_view line);

    // The calls that were read.
    std::vector<SLoggedCall> finish();

private:
    void readText(const std::string& text);
    bool begins(const std::string& text) const;
    void endCall();
    void endDecision();

    CLogText texts;
    std::size_t lines = 0;
    std::vector<SLoggedCall> calls;
    // The call that is being read; its first line is 0 when there is none.
    SLoggedCall call;
    CAccountReader account;
    bool isRefused = false;
    bool isFirstBackup = false;
};

}  // namespace fi_rotate
