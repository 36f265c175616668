#include "host/explanation.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <fi_rotation/fi_process_backups.h>

#include "host/identifier.h"

namespace fi_rotate {
namespace {

// Who holds which target, worked out from what the trace says of each check, claim and release.
class CHolders {
public:
    explicit CHolders(const std::vector<SAccountConfiguration>& all) : configurations(all) {
        for (std::size_t i = 0; i < all.size(); ++i) {
            byFirst[all[i].first].push_back(i);
            holders.emplace_back(all[i].targets.size());
        }
    }

    struct STarget {
        std::size_t configuration = 0;
        std::size_t target = 0;
    };

    // The target of a pair. When configurations or targets have the same name, the first is meant, as
    // for the library.
    std::optional<STarget> find(std::string_view objid, std::string_view altobjid) const {
        const auto named = byFirst.find(targetOf(objid));
        if (named == byFirst.end()) {
            return std::nullopt;
        }
        const std::string target = targetOf(altobjid);
        for (const std::size_t i : named->second) {
            const auto& targets = configurations[i].targets;
            const auto found = std::find(targets.begin(), targets.end(), target);
            if (found != targets.end()) {
                return STarget{i, static_cast<std::size_t>(found - targets.begin())};
            }
        }
        return std::nullopt;
    }

    bool isConfigured(std::string_view objid) const { return byFirst.count(targetOf(objid)) != 0; }

    // The backup that holds the target; nothing when it is free.
    std::optional<std::size_t>& holder(const STarget& target) {
        return holders[target.configuration][target.target];
    }

    // The first configuration without a free target.
    std::optional<std::size_t> firstShort() const {
        for (std::size_t i = 0; i < holders.size(); ++i) {
            if (isShort(i)) {
                return i;
            }
        }
        return std::nullopt;
    }

    bool isShort(std::size_t configuration) const {
        const auto& row = holders[configuration];
        return std::none_of(row.begin(), row.end(), [](const auto& holder) { return !holder.has_value(); });
    }

    const Holders& all() const { return holders; }

private:
    const std::vector<SAccountConfiguration>& configurations;
    std::unordered_map<std::string, std::vector<std::size_t>> byFirst;
    Holders holders;
};

// Goes through the passes of the rotation again and notes why each backup came to its state. The decision
// itself is made in driver/rotation.cpp.
class CExplanation {
public:
    explicit CExplanation(CAccountReader finished) : reader(std::move(finished)) {}

    SAccount explain() {
        if (!reader.gaps().empty()) {
            return std::move(reader.account);
        }
        explainChecks();
        explainClaims();
        reader.account.heldBefore = holders.all();
        if (reader.account.selection.has_value() || reader.isWithoutSelection) {
            explainRotation();
        }
        reader.account.heldAfter = holders.all();
        if (reader.isWithoutSelection) {
            listShortages();
        }
        return std::move(reader.account);
    }

private:
    SAccountBackup& backup(std::size_t index) { return reader.account.backups[index]; }

    const std::string& nameOf(std::size_t configuration) const {
        return reader.account.configurations[configuration].first;
    }

    void explainChecks() {
        for (const std::size_t index : reader.failedCheck) {
            for (const auto& [objid, altobjid] : backup(index).pairs.inOrder()) {
                if (holders.find(objid, altobjid).has_value()) {
                    continue;
                }
                SReason reason;
                reason.kind =
                    holders.isConfigured(objid) ? EReason::kUnknownTarget : EReason::kUnknownConfiguration;
                reason.configuration = targetOf(objid);
                reason.objid = objid;
                reason.altobjid = altobjid;
                backup(index).reason = reason;
                break;
            }
        }
    }

    void explainClaims() {
        for (const auto& [index, isGood] : reader.claims) {
            for (const auto& [objid, altobjid] : backup(index).pairs.inOrder()) {
                const auto found = holders.find(objid, altobjid);
                if (!found.has_value()) {
                    continue;
                }
                claimedBy[index].push_back(*found);
                std::optional<std::size_t>& holder = holders.holder(*found);
                if (!holder.has_value()) {
                    holder = index;
                } else if (!isGood && !backup(index).reason.has_value()) {
                    SReason reason;
                    reason.kind = EReason::kHeldAlready;
                    reason.configuration = nameOf(found->configuration);
                    reason.target = targetOf(altobjid);
                    reason.backup = *holder == index ? "" : backup(*holder).file;
                    backup(index).reason = reason;
                }
            }
        }
    }

    void explainRotation() {
        auto shortOne = holders.firstShort();
        const bool wasNeeded = shortOne.has_value();
        std::size_t turn = 0;
        for (const std::size_t index : orderOfRotation()) {
            if (backup(index).reason.has_value()) {
                continue;
            }
            const bool isSkipped = reader.skipped.count(index) != 0;
            SReason reason;
            reason.turn = turn++;
            reason.targets = targetsOf(index);
            reason.configuration = shortOne.has_value() ? nameOf(*shortOne) : "";
            if (isSkipped) {
                reason.kind = EReason::kExcluded;
            } else if (backup(index).state == FI_BACKUP_ROTATED) {
                explainRelease(index, reason);
                release(index);
                shortOne = holders.firstShort();
            } else if (reason.targets.empty()) {
                reason.kind = EReason::kHoldsNothing;
            } else {
                reason.kind = wasNeeded ? EReason::kRotationStopped : EReason::kNewestHolder;
            }
            backup(index).reason = std::move(reason);
        }
    }

    void explainRelease(std::size_t index, SReason& reason) {
        reason.kind = EReason::kInVain;
        reason.isUndone = reader.isWithoutSelection;
        // Several configurations may have the same name, which is to be listed once.
        std::set<std::string_view> named;
        for (const std::size_t configuration : configurationsOf(index)) {
            if (reason.kind == EReason::kInVain && holders.isShort(configuration)) {
                reason.kind = EReason::kNeeded;
                reason.configuration = nameOf(configuration);
            }
            if (named.insert(nameOf(configuration)).second) {
                reason.freed.push_back(nameOf(configuration));
            }
        }
    }

    // The configurations of which the backup holds a target.
    std::set<std::size_t> configurationsOf(std::size_t index) const {
        std::set<std::size_t> configurations;
        for (const CHolders::STarget& held : claimedBy[index]) {
            configurations.insert(held.configuration);
        }
        return configurations;
    }

    // The backups in the order of the rotation, oldest first. A call without a selection does not trace this
    // order; it is the opposite of that of the claims. Such a call released every backup whose claim
    // succeeded and that is not excluded.
    std::vector<std::size_t> orderOfRotation() {
        if (reader.account.selection.has_value()) {
            return reader.oldestFirst;
        }
        std::vector<std::size_t> order;
        for (auto claim = reader.claims.rbegin(); claim != reader.claims.rend(); ++claim) {
            const auto [index, isGood] = *claim;
            order.push_back(index);
            const bool isSkipped = reader.skipped.count(index) != 0;
            if (isGood && !isSkipped) {
                backup(index).state = FI_BACKUP_ROTATED;
            }
        }
        return order;
    }

    std::vector<std::string> targetsOf(std::size_t index) {
        std::vector<std::string> targets;
        targets.reserve(claimedBy[index].size());
        for (const auto& [configuration, target] : claimedBy[index]) {
            targets.push_back(reader.account.configurations[configuration].targets[target]);
        }
        return targets;
    }

    void release(std::size_t index) {
        for (const auto& found : claimedBy[index]) {
            holders.holder(found).reset();
        }
    }

    void listShortages() {
        for (std::size_t i = 0; i < reader.account.configurations.size(); ++i) {
            if (!holders.isShort(i)) {
                continue;
            }
            SShortage shortage;
            shortage.configuration = i;
            for (const auto& holder : holders.all()[i]) {
                shortage.targets.push_back(
                    {shortage.targets.size(), *holder, reader.skipped.count(*holder) != 0});
            }
            reader.account.shortages.push_back(std::move(shortage));
        }
    }

    CAccountReader reader;
    CHolders holders{reader.account.configurations};
    // The targets that each backup claimed after it passed the check.
    std::vector<std::vector<CHolders::STarget>> claimedBy =
        std::vector<std::vector<CHolders::STarget>>(reader.account.backups.size());
};

}  // namespace

SAccount explain(CAccountReader reader) {
    return CExplanation(std::move(reader)).explain();
}

}  // namespace fi_rotate
