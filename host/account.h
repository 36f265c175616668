#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What happened in one call, and why, as the library's trace tells it. Nothing is decided here: all states
// are those that the library traced, and only the names in a reason are looked up.
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
    // It is kept, and it holds no target.
    kHoldsNothing,
    // Its flag word excludes it; `configuration` was short of a target when its turn came.
    kExcluded,
    // Every configuration had a free target again before its turn came.
    kRotationStopped,
    // It was the oldest that could be released while `configuration` had no free target, and its release
    // freed a target of `configuration`.
    kNeeded,
    // The same, but its release freed no target of a configuration that was short.
    kInVain,
    // The pair of `objid` and `altobjid` names no target of `configuration`.
    kUnknownTarget,
    // `objid` names no configuration.
    kUnknownConfiguration,
    // `target` of `configuration` was held by `backup` already; when `backup` is empty, by another pair of
    // the same backup.
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
    // Of a released backup, the configurations of those targets, each once.
    std::vector<std::string> freed;
    // Whether the release did not take effect, because the call ended without a selection.
    bool isUndone = false;
    // The index of its backup among those that the rotation goes through, oldest first.
    std::size_t turn = 0;
};

// The identifier pairs of one backup. There may be a hundred thousand, so they are stored in one text.
class CPairs {
public:
    struct SPair {
        std::string_view objid;
        std::string_view altobjid;
    };

    void add(std::string_view objid, std::string_view altobjid);
    // The pairs in the order in which the library goes through them: that of their objids. Of several with
    // the same objid only the last counts, as for the library.
    [[nodiscard]] std::vector<SPair> inOrder() const;

private:
    std::string text;
    // Where each objid and each altobjid ends in `text`, in turn.
    std::vector<std::size_t> ends;
};

struct SAccountBackup {
    std::string file;
    CPairs pairs;
    // The trace tells it only of a backup that passed the check.
    std::string timeStamp;
    // FI_BACKUP_...; in a call without a selection, its state when the call ended.
    std::int32_t state = 0;
    // Nothing when the call ended before the reason was known, or lines of its trace are missing.
    std::optional<SReason> reason;
};

struct SHeldTarget {
    // Indices in the targets of its configuration and in SAccount::backups.
    std::size_t target = 0;
    std::size_t holder = 0;
    // Whether the holder is excluded from rotation; if not, it is invalid and therefore never released.
    bool isExcluded = false;
};

// A configuration that has no free target at the end of the call.
struct SShortage {
    // Its index in SAccount::configurations.
    std::size_t configuration = 0;
    // All further targets of the configuration, in order.
    std::vector<SHeldTarget> targets;
};

using Holders = std::vector<std::vector<std::optional<std::size_t>>>;

struct SAccount {
    std::vector<SAccountConfiguration> configurations;
    // In the order of loading.
    std::vector<SAccountBackup> backups;
    // The library traces the selection of a call with earlier backups only.
    std::optional<std::string> selection;
    std::vector<SShortage> shortages;
    // For each configuration and target, the index in `backups` of the holder: before any backup was
    // released, and at the end. In a call without a selection, every backup that may be released has been by
    // then. Empty when lines of the trace are missing.
    Holders heldBefore;
    Holders heldAfter;
};

// A resource configuration string that means these configurations. Names that the library has read from such
// a string hold no separators, so the string means nothing else.
std::string toSpecification(const std::vector<SAccountConfiguration>& configurations);

// How many kept backups hold targets of the configuration with this index in the account, at the end of the
// call. This function and the next count each backup once, and no invalid one, because nothing can be
// restored from it. 0 when lines of the trace are missing.
std::size_t keptHolders(const SAccount& account, std::size_t configuration);

// The same before the rotation: backups that it then released are counted, too.
std::size_t keptHoldersBeforeRotation(const SAccount& account, std::size_t configuration);

// A sentence for each configuration that would keep fewer than `least` backups, or, if it had fewer before,
// fewer than it had.
std::vector<std::string> lossesInWords(const SAccount& account, std::size_t least);

// The name of a reason for programs, such as "newest_holder". It never changes.
std::string_view nameOf(EReason kind);

// A reason as a sentence without a full stop.
std::string inWords(const SReason& reason);

}  // namespace fi_rotate
