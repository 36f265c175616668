#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/account_reader.h"
#include "host/outcome.h"

namespace fi_rotate {

struct SLogPlace {
    // As the reader of the logs was told, and which of them it is.
    std::string log;
    std::size_t logNumber = 0;
    // From 1; 0 when it is none.
    std::size_t line = 0;
    // What the line says of its time, as it stands there; empty when it says nothing.
    std::string time;
};

struct SLoggedCall {
    // From 1 in the order of the logs.
    std::size_t number = 0;
    // Its first and its last line.
    SLogPlace first;
    SLogPlace last;
    // With an account, unless the arguments were refused. The trace tells no selection of a first backup, a
    // time stamp only of backups that passed the check, and not the code of an exception. Status and
    // exception are both missing when the end is.
    SOutcome outcome;
    // What the log should hold of the call, and does not.
    std::vector<std::string> missing;
};

// Whether a call begins with this text of the library's; no call has it elsewhere.
bool beginsCall(std::string_view text);

// Takes in the library's texts that one writer wrote, and tells its calls apart.
class CCallReader {
public:
    // `text` is without its line end; a named one begins with the name of its operation.
    void read(const std::string& text, bool isNamed, const SLogPlace& place);

    // The calls that were read, without numbers.
    std::vector<SLoggedCall> finish();

private:
    void readText(const std::string& text);
    bool begins(const std::string& text, bool isNamed) const;
    void endCall();
    void endDecision();

    std::vector<SLoggedCall> calls;
    // The call that is being read.
    SLoggedCall call;
    CAccountReader account;
    bool isRefused = false;
    bool isFirstBackup = false;
    // A line break has cut off the line that a document's tree begins with, so that it is known of none of
    // its lines whose they are.
    bool isCut = false;
};

}  // namespace fi_rotate
