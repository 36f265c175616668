#include "cli/outcome/advice.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include <fi_rotation/fi_process_backups.h>

namespace fi_rotate {
namespace {

// At most so many single changes are tried, and at most as often a change is taken back. Each time takes a
// call.
constexpr std::size_t kMostTrials = 200;

// A target that no configuration names and that no backup is likely to name.
std::string unusedTarget(const std::vector<SAccountConfiguration>& configurations) {
    std::set<std::string> used;
    for (const SAccountConfiguration& configuration : configurations) {
        used.insert(configuration.targets.begin(), configuration.targets.end());
    }
    std::string target = "fi-rotate##one more target";
    while (used.count(target) != 0) {
        target += '\'';
    }
    return target;
}

// Gives each configuration that is short one more target.
void addTargets(SCall& call, const SAccount& account) {
    std::vector<SAccountConfiguration> configurations = account.configurations;
    for (const SShortage& shortage : account.shortages) {
        configurations[shortage.configuration].targets.push_back(unusedTarget(configurations));
    }
    call.configuration = toSpecification(configurations);
}

SCall with(const std::vector<SChange>& changes, SCall call) {
    std::set<std::string> allowed;
    std::set<std::string> leftOut;
    for (const SChange& change : changes) {
        (change.kind == EChange::kAllowRotation ? allowed : leftOut).insert(change.file);
    }
    auto& backups = call.backups;
    backups.erase(
        std::remove_if(backups.begin(), backups.end(),
                       [&leftOut](const SBackup& backup) { return leftOut.count(backup.file) != 0; }),
        backups.end());
    for (SBackup& backup : backups) {
        backup.flagWord &= allowed.count(backup.file) != 0 ? ~FI_EXCLUDE_ROTATION : ~0;
    }
    return call;
}

std::vector<std::string> releasedIn(const SOutcome& outcome) {
    std::vector<const SBackupOutcome*> released;
    for (const SBackupOutcome& backup : outcome.backups) {
        if (backup.state == FI_BACKUP_ROTATED) {
            released.push_back(&backup);
        }
    }
    std::stable_sort(released.begin(), released.end(), [](const auto* one, const auto* other) {
        return one->reason.has_value() && other->reason.has_value() &&
               one->reason->turn < other->reason->turn;
    });
    std::vector<std::string> files;
    files.reserve(released.size());
    for (const SBackupOutcome* const backup : released) {
        files.push_back(backup->given.file);
    }
    return files;
}

std::optional<std::vector<std::string>> releasedWithSelection(const SOutcome& outcome) {
    return outcome.selection.has_value() ? std::optional(releasedIn(outcome)) : std::nullopt;
}

// Of each backup that holds a target of a short configuration, once.
std::vector<SChange> changesOfHolders(const SAccount& account) {
    std::vector<SChange> changes;
    std::set<std::string> known;
    for (const SShortage& shortage : account.shortages) {
        for (const SHeldTarget& held : shortage.targets) {
            const std::string& file = account.backups[held.holder].file;
            if (known.insert(file).second) {
                changes.push_back({held.isExcluded ? EChange::kAllowRotation : EChange::kLeaveOut, file});
            }
        }
    }
    return changes;
}

// The indices of the backups that were not released: those first that hold the most targets of short
// configurations, and of those that hold as many the oldest.
std::vector<std::size_t> byUse(const SAccount& account) {
    std::vector<std::size_t> held(account.backups.size());
    for (const SShortage& shortage : account.shortages) {
        for (const SHeldTarget& target : shortage.targets) {
            ++held[target.holder];
        }
    }
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < account.backups.size(); ++i) {
        if (account.backups[i].state != FI_BACKUP_ROTATED) {
            indices.push_back(i);
        }
    }
    std::stable_sort(indices.begin(), indices.end(), [&account, &held](std::size_t one, std::size_t other) {
        return std::tie(held[other], account.backups[one].timeStamp) <
               std::tie(held[one], account.backups[other].timeStamp);
    });
    return indices;
}

// Of all backups. An invalid one may be excluded too: when another is left out it may become valid.
std::vector<SChange> allChanges(const SCall& call, const SAccount& account) {
    std::set<std::string> excluded;
    for (const SBackup& backup : call.backups) {
        if ((backup.flagWord & FI_EXCLUDE_ROTATION) != 0) {
            excluded.insert(backup.file);
        }
    }
    std::vector<SChange> changes;
    for (const std::size_t index : byUse(account)) {
        const SAccountBackup& backup = account.backups[index];
        if (excluded.count(backup.file) != 0) {
            changes.push_back({EChange::kAllowRotation, backup.file});
        }
        if (backup.state == FI_BACKUP_INVALID) {
            changes.push_back({EChange::kLeaveOut, backup.file});
        }
    }
    return changes;
}

// All `changes` but those from `first` on up to `last`.
std::vector<SChange> without(std::size_t first, std::size_t last, const std::vector<SChange>& changes) {
    std::vector<SChange> left;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (i < first || i >= last) {
            left.push_back(changes[i]);
        }
    }
    return left;
}

class CAdviser {
public:
    CAdviser(const SCall& inputs, const SOutcome& found, const MakeCall& make)
        : call(inputs), account(*found.account), makeCall(make) {}

    SAdvice advise() {
        trySingleChanges();
        if (!takeBestTrial()) {
            changeSeveral();
        }
        SCall extended = call;
        addTargets(extended, account);
        advice.releasedWithTargets = releasedWithSelection(makeCall(extended));
        return std::move(advice);
    }

private:
    void trySingleChanges() {
        std::vector<SChange> changes = changesOfHolders(account);
        const std::size_t tried = std::min(changes.size(), kMostTrials);
        advice.untried = changes.size() - tried;
        changes.resize(tried);
        for (const SChange& change : changes) {
            advice.trials.push_back({change, releasedWith({change})});
        }
    }

    bool takeBestTrial() {
        const STrial* best = nullptr;
        for (const STrial& trial : advice.trials) {
            const bool isBetter = trial.released.has_value() &&
                                  (best == nullptr || trial.released->size() < best->released->size());
            best = isBetter ? &trial : best;
        }
        if (best == nullptr) {
            return false;
        }
        advice.neededChanges = {best->change};
        advice.released = *best->released;
        return true;
    }

    // When each invalid backup is left out and each excluded one may be released, none can hold a target for
    // good: then only a configuration that has no targets is still short. Not all of these changes are
    // needed, so they are taken back from the last on, many at once and then fewer, as long as there is a
    // selection.
    void changeSeveral() {
        if (!takeIfEnough(allChanges(call, account))) {
            return;
        }
        std::size_t trials = 0;
        for (std::size_t size = advice.neededChanges.size() / 2; size > 0; size /= 2) {
            for (std::size_t last = advice.neededChanges.size(); last > 0 && trials < kMostTrials; ++trials) {
                const std::size_t first = last - std::min(size, last);
                takeIfEnough(without(first, last, advice.neededChanges));
                last = first;
            }
        }
    }

    bool takeIfEnough(std::vector<SChange> changes) {
        std::optional<std::vector<std::string>> released = releasedWith(changes);
        if (!released.has_value()) {
            return false;
        }
        advice.neededChanges = std::move(changes);
        advice.released = std::move(*released);
        return true;
    }

    [[nodiscard]] std::optional<std::vector<std::string>> releasedWith(
        const std::vector<SChange>& changes) const {
        return releasedWithSelection(makeCall(with(changes, call)));
    }

    const SCall& call;
    const SAccount& account;
    const MakeCall& makeCall;
    SAdvice advice;
};

}  // namespace

SAdvice adviseOn(const SCall& call, const SOutcome& outcome, const MakeCall& makeCall) {
    return CAdviser(call, outcome, makeCall).advise();
}

}  // namespace fi_rotate
