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

// What one call of the library came to, as facts that every renderer shows alike.
namespace fi_rotate {

// What the reader of the library found in a document.
struct SReading {
    bool isMalformed = false;
    // What is wrong with a malformed one and where, if the library says so.
    std::string fault;
    // It has more than one Node that stands in no other.
    bool hasSeveralRoots = false;
    // What was read (CFiFileState), and whether to its end; nothing if the library does not say.
    std::optional<std::string> file;
    bool isWhole = true;
};

// What became of an earlier backup.
struct SBackupOutcome {
    SBackup given;
    // As the library reads it; empty when the document has none, was not loaded, or was not looked into: the
    // library tells it of few backups only.
    std::string timeStamp;
    bool isLoaded = false;
    // FI_BACKUP_...; nothing when the library handed no state back.
    std::optional<std::int32_t> state;
    // Why it came to its state; nothing unless asked for and known.
    std::optional<SReason> reason;
    // Nothing when the reader did not come to its document: that or one before it could not be opened.
    std::optional<SReading> reading = std::nullopt;
};

// What left the library in place of a status.
struct SException {
    // Nothing for an exception that is not about an identifier.
    std::optional<std::string> identifier;
    std::optional<std::int32_t> code;
    std::string reason;
    // The place in SOutcome::backups of the one whose document holds it.
    std::optional<std::size_t> backup;
    // Memory ran out.
    bool isShortage = false;
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
    // What its trace says; nothing unless asked for.
    std::optional<SAccount> account;
};

// One configuration of a selection; targets as ENCLOSURE##DEVICE.
struct SChoice {
    std::string first;
    std::string chosen;
};

// Takes a selection string apart. Nothing when a name in it holds "][", which makes it impossible to
// say where one configuration ends.
std::optional<std::vector<SChoice>> choices(std::string_view selection);

// Gives each backup the reason that the account has for it.
void giveReasons(SOutcome& outcome);

// Takes the decision back: no selection, no states, and no release that was carried out.
void withdraw(SOutcome& outcome);

// What became of a backup, in a word. They are also the words in which people ask for backups.
constexpr std::string_view kNotLoaded = "not loaded";
constexpr std::array<std::string_view, 4> kStateWords{"kept", "invalid", "rotated", kNotLoaded};

// The word for a state, FI_BACKUP_...
std::string_view stateWord(std::int32_t state);

// Nothing when the library handed no state back.
std::optional<std::string_view> stateWord(const SBackupOutcome& backup);

}  // namespace fi_rotate
