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

    struct SPlace {
        std::size_t configuration = 0;
        std::size_t target = 0;
    };

    // The place of a pair's target. When configurations or targets have the same name, the first is meant, as
    // for the library.
    std::optional<SPlace> find(std::string_view objid, std::string_view altobjid) const {
        const auto named = byFirst.find(targetOf(objid));
        if (named == byFirst.end()) {
            return std::nullopt;
        }
        const std::string target = targetOf(altobjid);
        for (const std::size_t i : named->second) {
            const auto& targets = configurations[i].targets;
            const auto found = std::find(targets.begin(), targets.end(), target);
            if (found != targets.end()) {
                return SPlace{i, static_cast<std::size_t>(found - targets.begin())};
            }
        }
        return std::nullopt;
    }

    bool isConfigured(std::string_view objid) const { return byFirst.count(targetOf(objid)) != 0; }

    // The backup that holds the target; nothing when it is free.
    std::optional<std::size_t>& holder(const SPlace& place) {
        return holders[place.configuration][place.target];
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
    explicit CExplanation(CAccountReader reader) : passes(std::move(reader)) {}

    SAccount explain() {
        if (!passes.gaps().empty()) {
            return std::move(passes.account);
        }
        explainChecks();
        explainClaims();
        passes.account.heldBefore = holders.all();
        if (passes.account.selection.has_value() || passes.isWithoutSelection) {
            explainRotation();
        }
        passes.account.heldAfter = holders.all();
        if (passes.isWithoutSelection) {
            listShortages();
        }
        return std::move(passes.account);
    }

private:
    SAccountBackup& backup(std::size_t place) { return passes.account.backups[place]; }

    const std::string& nameOf(std::size_t configuration) const {
        return passes.account.configurations[configuration].first;
    }

    void explainChecks() {
        for (const std::size_t place : passes.failedCheck) {
            for (const auto& [objid, altobjid] : backup(place).pairs.inOrder()) {
                if (holders.find(objid, altobjid).has_value()) {
                    continue;
                }
                SReason reason;
                reason.kind =
                    holders.isConfigured(objid) ? EReason::kUnknownTarget : EReason::kUnknownConfiguration;
                reason.configuration = targetOf(objid);
                reason.objid = objid;
                reason.altobjid = altobjid;
                backup(place).reason = reason;
                break;
            }
        }
    }

    void explainClaims() {
        for (const auto& [place, isGood] : passes.claims) {
            for (const auto& [objid, altobjid] : backup(place).pairs.inOrder()) {
                const auto found = holders.find(objid, altobjid);
                if (!found.has_value()) {
                    continue;
                }
                placesOf[place].push_back(*found);
                std::optional<std::size_t>& holder = holders.holder(*found);
                if (!holder.has_value()) {
                    holder = place;
                } else if (!isGood && !backup(place).reason.has_value()) {
                    SReason reason;
                    reason.kind = EReason::kHeldAlready;
                    reason.configuration = nameOf(found->configuration);
                    reason.target = targetOf(altobjid);
                    reason.backup = *holder == place ? "" : backup(*holder).file;
                    backup(place).reason = reason;
                }
            }
        }
    }

    void explainRotation() {
        auto shortOne = holders.firstShort();
        const bool wasNeeded = shortOne.has_value();
        std::size_t turn = 0;
        for (const std::size_t place : orderOfRotation()) {
            if (backup(place).reason.has_value()) {
                continue;
            }
            const bool isSkipped = passes.skipped.count(place) != 0;
            SReason reason;
            reason.turn = turn++;
            reason.targets = targetsOf(place);
            reason.configuration = shortOne.has_value() ? nameOf(*shortOne) : "";
            if (isSkipped) {
                reason.kind = EReason::kExcluded;
            } else if (backup(place).state == FI_BACKUP_ROTATED) {
                explainRelease(place, reason);
                release(place);
                shortOne = holders.firstShort();
            } else if (reason.targets.empty()) {
                reason.kind = EReason::kHoldsNothing;
            } else {
                reason.kind = wasNeeded ? EReason::kRotationStopped : EReason::kNewestHolder;
            }
            backup(place).reason = std::move(reason);
        }
    }

    void explainRelease(std::size_t place, SReason& reason) {
        reason.kind = EReason::kInVain;
        reason.isUndone = passes.isWithoutSelection;
        // Several configurations may have the same name, which is to be listed once.
        std::set<std::string_view> named;
        for (const std::size_t configuration : configurationsOf(place)) {
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
    std::set<std::size_t> configurationsOf(std::size_t place) const {
        std::set<std::size_t> configurations;
        for (const CHolders::SPlace& held : placesOf[place]) {
            configurations.insert(held.configuration);
        }
        return configurations;
    }

    // The backups in the order of the rotation, oldest first. A call without a selection does not trace this
    // order; it is the opposite of that of the claims. Such a call released every backup whose claim
    // succeeded and that is not excluded.
    std::vector<std::size_t> orderOfRotation() {
        if (passes.account.selection.has_value()) {
            return passes.oldestFirst;
        }
        std::vector<std::size_t> order;
        for (auto claim = passes.claims.rbegin(); claim != passes.claims.rend(); ++claim) {
            const auto [place, isGood] = *claim;
            order.push_back(place);
            const bool isSkipped = passes.skipped.count(place) != 0;
            if (isGood && !isSkipped) {
                backup(place).state = FI_BACKUP_ROTATED;
            }
        }
        return order;
    }

    std::vector<std::string> targetsOf(std::size_t place) {
        std::vector<std::string> targets;
        targets.reserve(placesOf[place].size());
        for (const auto& [configuration, target] : placesOf[place]) {
            targets.push_back(passes.account.configurations[configuration].targets[target]);
        }
        return targets;
    }

    void release(std::size_t place) {
        for (const auto& found : placesOf[place]) {
            holders.holder(found).reset();
        }
    }

    void listShortages() {
        for (std::size_t i = 0; i < passes.account.configurations.size(); ++i) {
            if (!holders.isShort(i)) {
                continue;
            }
            SShortage shortage;
            shortage.configuration = i;
            for (const auto& holder : holders.all()[i]) {
                shortage.targets.push_back(
                    {shortage.targets.size(), *holder, passes.skipped.count(*holder) != 0});
            }
            passes.account.shortages.push_back(std::move(shortage));
        }
    }

    CAccountReader passes;
    CHolders holders{passes.account.configurations};
    // The targets that each backup claimed after it passed the check.
    std::vector<std::vector<CHolders::SPlace>> placesOf =
        std::vector<std::vector<CHolders::SPlace>>(passes.account.backups.size());
};

}  // namespace

SAccount explain(CAccountReader passes) {
    return CExplanation(std::move(passes)).explain();
}

}  // namespace fi_rotate
