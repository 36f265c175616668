#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the library's trace says happened in one call, and why. Nothing is decided here: every verdict and
// every state is one that the library traced; only the names in a reason are looked up.
namespace fi_rotate {

// Targets are written ENCLOSURE##DEVICE.
struct SAccountConfiguration {
    std::string first;
    std::vector<std::string> targets;
};

// Each has a row in account.cpp, in this order.
enum class EReason {
    // Nothing had to be released, and it is the newest that holds its targets.
    kNewestHolder,
    // The same, and it holds none.
    kHoldsNothing,
    // Its flag word excludes it; `configuration` was short of a target when its turn came.
    kExcluded,
    // Every configuration had a free target again before its turn came.
    kRotationStopped,
    // It was the oldest that could be released while `configuration` had no free target, and freed one of
    // its.
    kNeeded,
    // The same, but it held nothing of a configuration that was short.
    kInVain,
    // The pair of `objid` and `altobjid` names no target of `configuration`.
    kUnknownTarget,
    // `objid` names no configuration.
    kUnknownConfiguration,
    // `target` of `configuration` was held by `backup` already; by another pair of the same backup when that
    // is
    // empty.
    kHeldAlready,
    kCount,
};

struct SReason {
    EReason kind = EReason::kNewestHolder;
    std::string configuration;
    std::string target;
    std::string backup;
    std::string objid;
    std::string altobjid;
    // What a kept backup holds and a released one held.
    std::vector<std::string> targets;
    // Configurations of those targets, each once, of a released one.
    std::vector<std::string> freed;
    // The release came to nothing, since the call ended without a selection.
    bool isUndone = false;
    // The place of its backup among those that the rotation goes through, oldest first.
    std::size_t turn = 0;
};

// The identifier pairs of one backup. They may be a hundred thousand, so all stand in one text.
class CPairs {
public:
    struct SPair {
        std::string_view objid;
        std::string_view altobjid;
    };

    void add(std::string_view objid, std::string_view altobjid);
    // In the order in which the library goes through them, which is that of the objids. Of several with one
    // objid the last counts.
    [[nodiscard]] std::vector<SPair> inOrder() const;

private:
    std::string text;
    // Of each objid and altobjid in turn, where it ends.
    std::vector<std::size_t> ends;
};

struct SAccountBackup {
    std::string file;
    CPairs pairs;
    // Told only of a backup that passed the check.
    std::string timeStamp;
    // FI_BACKUP_...; in a call without a selection the one that it had come to.
    std::int32_t state = 0;
    // Nothing when the call ended before one was known, or lines of its trace are missing.
    std::optional<SReason> reason;
};

struct SHeldTarget {
    // Places in the targets of its configuration and in SAccount::backups.
    std::size_t target = 0;
    std::size_t holder = 0;
    // The holder is excluded from rotation; otherwise it is invalid and never released.
    bool isExcluded = false;
};

// A configuration that has no free target in the end.
struct SShortage {
    // Its place in SAccount::configurations.
    std::size_t configuration = 0;
    // All that it has, in order.
    std::vector<SHeldTarget> targets;
};

using Holders = std::vector<std::vector<std::optional<std::size_t>>>;

struct SAccount {
    std::vector<SAccountConfiguration> configurations;
    // In the order of loading.
    std::vector<SAccountBackup> backups;
    // The library traces it for a call with earlier backups only.
    std::optional<std::string> selection;
    std::vector<SShortage> shortages;
    // By configuration and target, the place in `backups` of the one that holds it: before any was released,
    // and in the end. Without a selection all that can be released are. Empty when lines of the trace are
    // missing.
    Holders heldBefore;
    Holders heldAfter;
};

// The resource configuration string that the library reads as these. No name that it has read holds what
// separates names.
std::string toSpecification(const std::vector<SAccountConfiguration>& configurations);

// How many backups hold targets of a configuration, which is given by its place in the account: those that
// are kept, in the end. Neither function counts a backup twice, nor an invalid one, of which nothing can be
// restored. None when lines of the trace are missing.
std::size_t keptHolders(const SAccount& account, std::size_t configuration);

// The same before any was rotated, those that were rotated afterwards among them.
std::size_t keptHoldersBeforeRotation(const SAccount& account, std::size_t configuration);

// In words, each configuration that would keep fewer than `least` backups; one that had fewer may not lose
// any. Empty when there is none.
std::vector<std::string> lossesInWords(const SAccount& account, std::size_t least);

// "newest_holder" and so on: a stable name for programs.
std::string_view nameOf(EReason kind);

// A reason as a sentence without a full stop.
std::string inWords(const SReason& reason);

}  // namespace fi_rotate
