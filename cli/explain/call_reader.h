#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/explain/call_order.h"
#include "cli/explain/repeated_print.h"
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
    // With an account, unless the arguments were refused. The bare function does not trace the selection of a
    // first backup, the time stamp of a backup whose identifiers match no configuration, or the code of an
    // exception. Status and exception are both missing when the end of the call is missing.
    SOutcome outcome;
    // Lines of the call that the log should contain but does not, in words.
    std::vector<std::string> missing;
    // Whether the log lacks the first line of the call, so that `first` is not that line.
    bool isBeginningMissing = false;
    // Whether the call had no other backups than those of the outcome.
    bool areBackupsKnown = false;
};

enum class ELogText {
    // It begins with the name of its operation.
    kNamed,
    // A line of a tree, a printed target or a malformed identifier.
    kUnnamed,
    // A line of a tree whose tabs something has replaced, if it is the library's.
    kDoubtful,
    // An operation is entered or left, which says no more than that the call goes on.
    kProgress,
    // The same, and a document was found to be damaged.
    kDamage,
};

// Whether this text of the library can only be the first line of a call.
bool beginsCall(std::string_view text);

// Compares the words in the prefixes of lines of one kind. If they differ, the lines may be of several
// writers that nothing else tells apart.
class CPrefixWords {
public:
    void note(const std::vector<std::string_view>& words);
    [[nodiscard]] bool areAllSame() const { return areSame; }

private:
    std::optional<std::vector<std::string>> first;
    bool areSame = true;
};

// Reads the library's texts that one writer wrote, and separates its calls.
class CCallReader {
public:
    // `text` is without its line end. `words` are those of the prefix (SPrefix::words).
    void read(const std::string& text, ELogText kind, const SLogPlace& place,
              const std::vector<std::string_view>& words);

    // The calls that were read, without numbers.
    std::vector<SLoggedCall> finish();

private:
    void goOn(ELogText kind, const SLogPlace& place);
    void readText(const std::string& text);
    bool begins(const std::string& text, bool isNamed) const;
    void endCall();
    void endDecision();
    bool seemsMixed(const std::vector<std::string>& gaps) const;
    void endMixed();
    bool isOver() const;
    bool areBackupsKnown(const std::vector<std::string>& gaps) const;
    std::optional<std::string> missingEnd() const;

    std::vector<SLoggedCall> calls;
    // The call that is being read.
    SLoggedCall call;
    CAccountReader account;
    CCallOrder order;
    CRepeatedPrint prints;
    // The last line that told a state that the call handed back.
    std::size_t stateLine = 0;
    bool isRefused = false;
    bool isFirstBackup = false;
    // Of the lines that load a backup or tell its state, and of those that tell its flag word.
    CPrefixWords prefixesOfBackups;
    CPrefixWords prefixesOfFlagWords;
    // Once the call has ended, whether no line was missing then. Noted, since finding it out takes time in
    // proportion to the backups, and lines of other calls can follow.
    std::optional<bool> isEndedWhole;
    // A line was read that is not at the level of failures.
    bool hasProgressLevel = false;
    // Another call of the same writer begins behind its last line.
    bool isInterrupted = false;
    // Lines of a tree began with something else than tabs.
    bool isAltered = false;
    // A line break has cut off the first line of a document's tree, so it is not known which backup the lines
    // of the tree belong to.
    bool isCut = false;
};

}  // namespace fi_rotate
