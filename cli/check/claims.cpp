#include "cli/check/claims.h"

#include <algorithm>
#include <numeric>

#include <fmt/format.h>

namespace fi_rotate {

void CClaims::add(std::string timeStamp, const std::vector<SNamedTarget>& named,
                  std::unique_ptr<const CDocumentText> document, CFindings& findings) {
    const std::size_t index = backups.size();
    backups.push_back({std::move(timeStamp), std::move(document), &findings});
    for (const SNamedTarget& each : named) {
        STarget& target = targets[{each.configuration, each.name}];
        target.name = each.name;
        if (!target.claimants.empty() && target.claimants.back().backup == index) {
            losers.insert(index);
        } else {
            target.claimants.push_back({index, each.offset});
        }
    }
}

void CClaims::report() {
    sortClaimants();
    for (const SGroup& group : groups()) {
        std::map<const CFindings*, std::size_t> order;
        for (std::size_t index = 0; index < group.claimants.size(); ++index) {
            const CFindings* const findings = backups[group.claimants[index]].findings;
            order.emplace(findings, index);
            reportsOn[findings].push_back(reports.size());
            if (index > 0) {
                reportLoss(group, index);
            }
        }
        reports.push_back(std::move(order));
    }
}

// Adds to the backup with this index among the claimants the finding that its targets were claimed before.
void CClaims::reportLoss(const SGroup& group, std::size_t index) {
    const SBackup& loser = backups[group.claimants[index]];
    const STarget& first = **std::min_element(
        group.targets.begin(), group.targets.end(), [index](const STarget* left, const STarget* right) {
            return left->claimants[index].offset < right->claimants[index].offset;
        });
    loser.findings->add({EHazard::kTargetHeldBySeveral, loser.document->spotAt(first.claimants[index].offset),
                         textOf(group, first, loser)});
}

// The library's own order, ties included: the same sort of as many time stamps in the same order.
void CClaims::sortClaimants() {
    std::vector<std::size_t> order(backups.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
        return backups[left].timeStamp > backups[right].timeStamp;
    });
    std::vector<std::size_t> rank(backups.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        rank[order[i]] = i;
    }
    for (auto& [key, target] : targets) {
        std::vector<SClaimant>& claimants = target.claimants;
        std::sort(claimants.begin(), claimants.end(), [&rank](const SClaimant& left, const SClaimant& right) {
            return rank[left.backup] < rank[right.backup];
        });
        for (auto claimant = claimants.begin() + 1; claimant != claimants.end(); ++claimant) {
            losers.insert(claimant->backup);
        }
    }
}

std::vector<CClaims::SGroup> CClaims::groups() const {
    std::map<std::vector<std::size_t>, std::vector<const STarget*>> byClaimants;
    for (const auto& [key, target] : targets) {
        if (target.claimants.size() > 1) {
            std::vector<std::size_t> claimants;
            for (const SClaimant& claimant : target.claimants) {
                claimants.push_back(claimant.backup);
            }
            byClaimants[std::move(claimants)].push_back(&target);
        }
    }
    std::vector<SGroup> all;
    all.reserve(byClaimants.size());
    for (auto& [claimants, claimed] : byClaimants) {
        all.push_back({claimants, std::move(claimed)});
    }
    return all;
}

std::string CClaims::textOf(const SGroup& group, const STarget& first, const SBackup& loser) const {
    const SClaimant& winner = first.claimants.front();
    const SBackup& newest = backups[winner.backup];
    const std::size_t others = group.targets.size() - 1;
    const bool isTied = newest.timeStamp == loser.timeStamp;
    const bool isInvalid = losers.count(winner.backup) != 0;

    std::string text = inQuotes(first.name);
    text += others == 0 ? " is" : fmt::format(" and {} more target{} are", others, others == 1 ? "" : "s");
    text += fmt::format(" also held by {}{}:{}, which claims {}", isTied ? "" : "a newer backup, ",
                        newest.findings->input(), newest.document->spotAt(winner.offset).place.line,
                        others == 0 ? "it" : "them");
    text += isTied ? ", though the order of equal time stamps is undefined" : "";
    text += isInvalid ? ", but becomes invalid because of another target" : "";
    return text + (isInvalid ? "; this backup becomes invalid, too" : "; this backup becomes invalid");
}

std::optional<std::string> CClaims::reportOf(const CFindings& one, const CFindings& other) const {
    const auto found = reportsOn.find(&one);
    if (found == reportsOn.end()) {
        return std::nullopt;
    }
    for (const std::size_t index : found->second) {
        const std::map<const CFindings*, std::size_t>& order = reports[index];
        if (const auto ofOther = order.find(&other); ofOther != order.end()) {
            // The first of them to claim it is told nothing.
            return (ofOther->second > order.at(&one) ? other : one).input();
        }
    }
    return std::nullopt;
}

}  // namespace fi_rotate
