#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/account_reader.h"
#include "host/outcome.h"

namespace fi_rotate {

struct SLogPlace {
    // The name of the log as it was given, and its index.
    std::string log;
    std::size_t logNumber = 0;
    // Counted from 1; 0 when there is no line.
    std::size_t line = 0;
    // The time in the line, as it is written there; empty when there is none.
    std::string time;
};

struct SLoggedCall {
    // From 1 in the order of the logs.
    std::size_t number = 0;
    // Its first and its last line.
    SLogPlace first;
    SLogPlace last;
    // With an account, unless the arguments were refused. The trace does not contain the selection of a first
    // backup, the time stamp of a backup whose identifiers match no configuration, or the code of an
    // exception. Status and exception are both missing when the end of the call is missing.
    SOutcome outcome;
    // Lines of the call that the log should contain but does not, in words.
    std::vector<std::string> missing;
};

// Whether this text of the library can only be the first line of a call.
bool beginsCall(std::string_view text);

// Reads the library's texts that one writer wrote, and separates its calls.
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
    // A line break has cut off the first line of a document's tree, so it is not known which backup the lines
    // of the tree belong to.
    bool isCut = false;
};

}  // namespace fi_rotate
