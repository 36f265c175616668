#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/account.h"

// What one call of the library came to, as facts that every renderer shows alike.
namespace fi_rotate {

struct SBackup {
    std::string file;
    std::int32_t flagWord = 0;
    // As the library reads it; empty when the document has none or was not loaded.
    std::string timeStamp;
    bool loaded = false;
    // FI_BACKUP_...; nothing when the library handed no state back.
    std::optional<std::int32_t> state;
    // Why it came to its state; nothing unless asked for and known.
    std::optional<SReason> reason;
};

// What left the library in place of a status.
struct SException {
    // Nothing for an exception that is not about an identifier.
    std::optional<std::string> identifier;
    std::optional<std::int32_t> code;
    std::string reason;
};

struct SOutcome {
    // Nothing when an exception left the call.
    std::optional<std::int32_t> status;
    // The selection string; nothing when there is none.
    std::optional<std::string> selection;
    std::optional<SException> exception;
    // In the order given, but for those that are not to be shown.
    std::vector<SBackup> backups;
    std::size_t hiddenBackups = 0;
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

// "kept", "invalid", "rotated", "not loaded"; nothing when the library handed no state back.
std::optional<std::string_view> stateWord(const SBackup& backup);

// All state words of the library's.
constexpr std::array<const char*, 4> kStateWords{"kept", "invalid", "rotated", "not loaded"};

// `outcome` with only the backups whose state word is among `states`; whole when that is empty.
SOutcome onlyShown(SOutcome outcome, const std::set<std::string>& states);

}  // namespace fi_rotate
