#include "cli/check/claims.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include <fmt/format.h>

namespace fi_rotate {

void CClaims::add(std::string timeStamp, const std::vector<SNamedTarget>& named,
                  const CDocumentText& document, CFindings& findings) {
    const std::size_t index = backups.size();
    backups.push_back({std::move(timeStamp), &findings});
    for (const SNamedTarget& each : named) {
        STarget& target = targets[{each.configuration, each.name}];
        target.name = each.name;
        if (!target.claimants.empty() && target.claimants.back() == index) {
            losers.insert(index);
            continue;
        }
        target.claimants.push_back(index);
        if (target.claimants.size() == 2) {
            target.spot = document.spotAt(each.offset);
            target.findings = &findings;
        }
    }
}

void CClaims::report() {
    sortClaimants();
    for (const SGroup& group : groups()) {
        const STarget& first = **std::min_element(
            group.targets.begin(), group.targets.end(), [](const STarget* left, const STarget* right) {
                return std::tie(left->spot.place.line, left->spot.place.column) <
                       std::tie(right->spot.place.line, right->spot.place.column);
            });
        first.findings->add({EHazard::kTargetHeldBySeveral, first.spot, textOf(group)});
        std::set<const CFindings*> claimants;
        for (const std::size_t claimant : group.claimants) {
            claimants.insert(backups[claimant].findings);
            reportsOn[backups[claimant].findings].push_back(reports.size());
        }
        reports.emplace_back(std::move(claimants), first.findings->input());
    }
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
        std::vector<std::size_t>& claimants = target.claimants;
        std::sort(claimants.begin(), claimants.end(),
                  [&rank](std::size_t left, std::size_t right) { return rank[left] < rank[right]; });
        losers.insert(claimants.begin() + 1, claimants.end());
    }
}

std::vector<CClaims::SGroup> CClaims::groups() const {
    std::map<std::vector<std::size_t>, std::vector<const STarget*>> byClaimants;
    for (const auto& [key, target] : targets) {
        if (target.claimants.size() > 1) {
            byClaimants[target.claimants].push_back(&target);
        }
    }
    std::vector<SGroup> all;
    all.reserve(byClaimants.size());
    for (auto& [claimants, claimed] : byClaimants) {
        all.push_back({claimants, std::move(claimed)});
    }
    return all;
}

std::string CClaims::textOf(const SGroup& group) const {
    const std::size_t others = group.targets.size() - 1;
    std::string text = inQuotes(group.targets.front()->name);
    if (others > 0) {
        text += fmt::format(" and {} more target{}", others, others == 1 ? "" : "s");
    }
    std::vector<std::string> invalid;
    for (auto claimant = group.claimants.begin() + 1; claimant != group.claimants.end(); ++claimant) {
        invalid.push_back(backups[*claimant].findings->input());
    }
    return fmt::format("{} {} held by {} backups: {}; {} {} invalid", text, others == 0 ? "is" : "are",
                       group.claimants.size(), claimInWords(group), enumerate(invalid),
                       invalid.size() == 1 ? "becomes" : "become");
}

std::string CClaims::claimInWords(const SGroup& group) const {
    const SBackup& newest = backups[group.claimants[0]];
    const bool isTied = newest.timeStamp == backups[group.claimants[1]].timeStamp;
    const char* const what = group.targets.size() == 1 ? "it" : "them";
    const std::string claim =
        isTied ? fmt::format("{} claims {}, though the order of equal time stamps is undefined",
                             newest.findings->input(), what)
               : fmt::format("{}, the newest, claims {}", newest.findings->input(), what);
    return claim +
           (losers.count(group.claimants[0]) == 0 ? "" : ", but becomes invalid because of another target");
}

std::optional<std::string> CClaims::reportOf(const CFindings& one, const CFindings& other) const {
    const auto found = reportsOn.find(&one);
    if (found == reportsOn.end()) {
        return std::nullopt;
    }
    const auto report =
        std::find_if(found->second.begin(), found->second.end(),
                     [this, &other](std::size_t index) { return reports[index].first.count(&other) != 0; });
    return report == found->second.end() ? std::nullopt : std::optional(reports[*report].second);
}

}  // namespace fi_rotate
