#include "cli/simulate/take_over.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "cli/base/terminal.h"
#include "cli/base/text.h"
#include "host/identifier.h"
#include "host/safe_call.h"

namespace fi_rotate {
namespace {

[[noreturn]] void refuse(const std::vector<std::string>& faults) {
    throw CUnusableDocuments(fmt::format("{}", fmt::join(faults, "\n")));
}

SAccount accountOf(const SPlan& plan) {
    const CMutedStandardOutput muted;
    SCall call;
    call.configuration = plan.configuration;
    call.backups = plan.from;
    SWishes wishes;
    wishes.account = true;
    SDecision decision = decideSafely(call, wishes, SSafety());
    if (decision.kind == FI_ROTATION_REFUSED) {
        std::vector<std::string> faults;
        for (const SProblem& problem : decision.problems) {
            faults.push_back(asPrintable(problem.text));
        }
        refuse(faults);
    }
    return std::move(*decision.outcome.account);
}

// What is wrong with the time stamp of a backup that is to be older than the first round; empty when nothing
// is.
std::string faultOfTime(const SAccountBackup& backup, const SPlan& plan) {
    const auto time = parseTimeStamp(backup.timeStamp);
    if (!time.has_value()) {
        return fmt::format("has the time stamp {}, which is no date in the form YYYYMMDDhhmmss",
                           printableInQuotes(backup.timeStamp));
    }
    return *time < plan.start
               ? ""
               : fmt::format("was taken {}, which is not before the first round", toShownTime(*time));
}

void requireUsableTimeStamps(const SAccount& account, const SPlan& plan) {
    std::vector<std::string> faults;
    for (const SAccountBackup& backup : account.backups) {
        // The library does not ask for the time stamp of one that fails the check.
        const bool isInvalid = backup.state == FI_BACKUP_INVALID;
        if (const std::string fault = faultOfTime(backup, plan); !isInvalid && !fault.empty()) {
            faults.push_back(asPrintable(backup.file) + ": " + fault);
        }
    }
    if (!faults.empty()) {
        refuse(faults);
    }
}

// For each backup, the snapshots that it holds.
std::vector<std::vector<SSnapshot>> snapshotsOf(const SAccount& account) {
    std::vector<std::vector<SSnapshot>> snapshots(account.backups.size());
    for (std::size_t i = 0; i < account.heldBefore.size(); ++i) {
        for (std::size_t j = 0; j < account.heldBefore[i].size(); ++j) {
            if (const auto& holder = account.heldBefore[i][j]) {
                SSnapshot& snapshot = snapshots[*holder].emplace_back();
                snapshot.configuration = static_cast<std::uint32_t>(i);
                snapshot.target = static_cast<std::uint32_t>(j);
                snapshot.document = static_cast<std::uint32_t>(*holder);
            }
        }
    }
    return snapshots;
}

// The target that a pair names, with the indexes of SUnprotected; nothing when none is configured.
std::optional<SUnprotected> targetNamedBy(const CPairs::SPair& pair, const SAccount& account) {
    const SIdentifier first = parseIdentifier(pair.objid);
    const SIdentifier further = parseIdentifier(pair.altobjid);
    if (first.fault.has_value() || further.fault.has_value()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < account.configurations.size(); ++i) {
        const SAccountConfiguration& configuration = account.configurations[i];
        const auto& targets = configuration.targets;
        const auto found = std::find(targets.begin(), targets.end(), further.name());
        if (configuration.first == first.name() && found != targets.end()) {
            SUnprotected named;
            named.configuration = static_cast<std::uint32_t>(i);
            named.target = static_cast<std::uint32_t>(found - targets.begin());
            return named;
        }
    }
    return std::nullopt;
}

std::vector<SUnprotected> unprotectedTargets(const SAccount& account) {
    std::vector<SUnprotected> all;
    std::set<std::pair<std::uint32_t, std::uint32_t>> known;
    for (std::size_t i = 0; i < account.backups.size(); ++i) {
        if (account.backups[i].state != FI_BACKUP_INVALID) {
            continue;
        }
        for (const CPairs::SPair& pair : account.backups[i].pairs.inOrder()) {
            auto named = targetNamedBy(pair, account);
            if (!named.has_value()) {
                continue;
            }
            const auto& holder = account.heldBefore[named->configuration][named->target];
            named->document = static_cast<std::uint32_t>(i);
            named->isHeldAtFirst = holder == i;
            const bool isOfOther = holder.has_value() && holder != i;
            if (!isOfOther && known.insert({named->configuration, named->target}).second) {
                all.push_back(*named);
            }
        }
    }
    return all;
}

}  // namespace

STakeOver takeOver(const SPlan& plan) {
    const SAccount account = accountOf(plan);
    requireUsableTimeStamps(account, plan);
    const auto snapshots = snapshotsOf(account);
    STakeOver result;
    result.unprotected = unprotectedTargets(account);
    for (std::size_t i = 0; i < account.backups.size(); ++i) {
        STakenOver& backup = result.backups.emplace_back();
        backup.time = parseTimeStamp(account.backups[i].timeStamp);
        if (account.backups[i].state == FI_BACKUP_INVALID) {
            backup.whyInvalid = inWords(account.backups[i].reason.value());
            continue;
        }
        backup.snapshots = snapshots[i].size();
        result.snapshots.insert(result.snapshots.end(), snapshots[i].begin(), snapshots[i].end());
    }
    return result;
}

}  // namespace fi_rotate
