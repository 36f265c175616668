#include "cli/outcome/advice.h"

#include <algorithm>
#include <set>
#include <utility>

#include <fi_rotation/fi_process_backups.h>

namespace fi_rotate {
namespace {

// Each trial costs a call of the library.
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

void apply(const SChange& change, SCall& call) {
    auto& backups = call.backups;
    const auto isMeant = [&change](const SBackup& backup) { return backup.file == change.file; };
    if (change.kind == EChange::kLeaveOut) {
        backups.erase(std::remove_if(backups.begin(), backups.end(), isMeant), backups.end());
        return;
    }
    for (SBackup& backup : backups) {
        backup.flagWord &= isMeant(backup) ? ~FI_EXCLUDE_ROTATION : ~0;
    }
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

class CAdviser {
public:
    CAdviser(const SCall& inputs, const SOutcome& found, const MakeCall& make)
        : call(inputs), outcome(found), makeCall(make) {}

    SAdvice advise() {
        const std::vector<SChange> holders = changesOfHolders(*outcome.account);
        advice.untried = holders.size() - std::min(holders.size(), kMostTrials);
        for (std::size_t i = 0; i < holders.size() - advice.untried; ++i) {
            tryChange(holders[i]);
        }
        findCheapestChanges();
        SCall changed = call;
        addTargets(changed, *outcome.account);
        advice.releasedWithTargets = releasedWithSelection(makeCall(changed));
        return std::move(advice);
    }

private:
    // One change for each backup that holds a target of a short configuration.
    static std::vector<SChange> changesOfHolders(const SAccount& account) {
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

    void tryChange(const SChange& wanted) {
        SCall changed = call;
        apply(wanted, changed);
        advice.trials.push_back({wanted, releasedWithSelection(makeCall(changed))});
    }

    void findCheapestChanges() {
        const STrial* best = nullptr;
        for (const STrial& trial : advice.trials) {
            const bool isBetter = trial.released.has_value() &&
                                  (best == nullptr || trial.released->size() < best->released->size());
            best = isBetter ? &trial : best;
        }
        if (best != nullptr) {
            advice.cheapestChanges = {best->change};
            advice.released = *best->released;
        } else if (outcome.account->shortages.size() > 1) {
            changeOneAfterTheOther();
        }
    }

    // To be called when no single change is enough. Each step makes the change after which the fewest
    // configurations are short and, of equally good ones, the one that releases the fewest backups.
    void changeOneAfterTheOther() {
        SCall changed = call;
        SOutcome now = outcome;
        std::vector<SChange> steps;
        std::size_t trials = 0;
        while (!now.selection.has_value() && now.account.has_value()) {
            const std::vector<SChange> changes = changesOfHolders(*now.account);
            std::optional<SOutcome> best;
            SCall bestCall;
            SChange step;
            for (const SChange& candidate : changes) {
                if (++trials > kMostTrials) {
                    return;
                }
                SCall tried = changed;
                apply(candidate, tried);
                SOutcome then = makeCall(tried);
                if (then.account.has_value() && isCloserToSelection(then, best.has_value() ? *best : now)) {
                    best = std::move(then);
                    bestCall = std::move(tried);
                    step = candidate;
                }
            }
            if (!best.has_value()) {
                return;
            }
            steps.push_back(step);
            changed = std::move(bestCall);
            now = std::move(*best);
        }
        advice.cheapestChanges = std::move(steps);
        advice.released = releasedIn(now);
    }

    static bool isCloserToSelection(const SOutcome& candidate, const SOutcome& best) {
        const std::size_t shortOfCandidate = candidate.account->shortages.size();
        const std::size_t shortOfBest = best.account->shortages.size();
        return shortOfCandidate < shortOfBest ||
               (shortOfCandidate == shortOfBest && candidate.selection.has_value() &&
                releasedIn(candidate).size() < releasedIn(best).size());
    }

    const SCall& call;
    const SOutcome& outcome;
    const MakeCall& makeCall;
    SAdvice advice;
};

}  // namespace

SAdvice adviseOn(const SCall& call, const SOutcome& outcome, const MakeCall& makeCall) {
    return CAdviser(call, outcome, makeCall).advise();
}

}  // namespace fi_rotate
