#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/account.h"
#include "host/call.h"

// The outcome of one call of the library, as facts. Tables, JSON and pictures all show these.
namespace fi_rotate {

// What the library's XML reader found in a document.
struct SReading {
    bool isMalformed = false;
    // What is wrong with a malformed document, and where, if the library says so.
    std::string fault;
    // Whether it has several top-level Nodes.
    bool hasSeveralRoots = false;
    // Which file was read in which state (CFiFileState::state), and whether to its end, if the
    // library says so.
    std::optional<std::string> fileState;
    bool isWhole = true;
};

// What a call found out and decided about an earlier backup.
struct SBackupOutcome {
    SBackup given;
    // The time stamp as the library reads it; empty when the document has none or was not loaded, and when it
    // is not known: the library traces it only of some backups.
    std::string timeStamp;
    bool isLoaded = false;
    // FI_BACKUP_...; nothing when the library gave it no state, or when a log does not tell it.
    std::optional<std::int32_t> state;
    // Why it came to its state; nothing unless asked for and known.
    std::optional<SReason> reason;
    // Nothing when its document was not read, because it or one before it could not be opened.
    std::optional<SReading> reading = std::nullopt;
    // False only for a call in a log that lacks the line with the flag word.
    bool isFlagWordKnown = true;
};

// The exception that left the library instead of a status.
struct SException {
    // Nothing for an exception that is not about an identifier.
    std::optional<std::string> identifier;
    std::optional<std::int32_t> code;
    std::string reason;
    // The index in SOutcome::backups of the backup whose document holds the identifier.
    std::optional<std::size_t> backup;
    // Memory ran out.
    bool isOutOfMemory = false;
};

struct SOutcome {
    // Nothing when an exception left the call.
    std::optional<std::int32_t> status;
    // The selection string; nothing when there is none.
    std::optional<std::string> selection;
    std::optional<SException> exception;
    // In the order given.
    std::vector<SBackupOutcome> backups;
    // Failures that the library traced, in order.
    std::vector<std::string> messages;
    // Nothing unless asked for.
    std::optional<SAccount> account;
};

// One configuration of a selection; targets as ENCLOSURE##DEVICE.
struct SChoice {
    std::string first;
    std::string chosen;
};

// Splits a selection string into configurations. Nothing when a name in it holds "][", since the end of a
// configuration cannot be found then.
std::optional<std::vector<SChoice>> choices(std::string_view selection);

// Copies to each backup the reason that the account has for it.
void copyReasons(SOutcome& outcome);

// Takes the decision back: removes the selection and the states, and marks every release as undone.
void withdraw(SOutcome& outcome);

// The words for states. In outputs they say the state of a backup; on the command line they select backups.
// A backup whose document is ignored has no state, and "not loaded" stands in its place.
constexpr std::string_view kNotLoaded = "not loaded";
constexpr std::array<std::string_view, 4> kStateWords{"kept", "invalid", "rotated", kNotLoaded};

// The word for a state, FI_BACKUP_...
std::string_view stateWord(std::int32_t state);

// The word for the state of this backup; nothing when it has none, or when a log does not tell it.
std::optional<std::string_view> stateWord(const SBackupOutcome& backup);

}  // namespace fi_rotate
