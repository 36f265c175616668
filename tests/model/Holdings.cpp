#include "tests/model/Holdings.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

namespace fi_model {
namespace {

// A pair takes the first index of its target in the configurations of its first target.
std::optional<TargetIndex> targetIndexOf(const SWorldPair& pair, const SWorld& world) {
    for (std::size_t one = 0; one < world.configurations.size(); ++one) {
        const SWorldConfiguration& configuration = world.configurations[one];
        const auto& targets = configuration.targets;
        const auto found = std::find(targets.begin(), targets.end(), pair.target);
        if (configuration.first == pair.first && found != targets.end()) {
            return TargetIndex{one, static_cast<std::size_t>(found - targets.begin())};
        }
    }
    return std::nullopt;
}

// In the order of their objids; of those with the same one the last counts.
std::vector<SWorldPair> pairsThatCount(const std::vector<SWorldPair>& pairs) {
    std::map<std::pair<char, std::string>, SWorldPair> byObjid;
    for (const SWorldPair& pair : pairs) {
        byObjid[{pair.spelling, pair.first}] = pair;
    }
    std::vector<SWorldPair> counting;
    counting.reserve(byObjid.size());
    for (const auto& [objid, pair] : byObjid) {
        counting.push_back(pair);
    }
    return counting;
}

// The first pair that is malformed or has no index decides what is noted of the backup.
void look(const std::vector<SWorldPair>& pairs, const SWorld& world, SHolder& holder) {
    for (const SWorldPair& pair : pairsThatCount(pairs)) {
        const bool isMalformed = pair.first.empty() || pair.target.empty();
        const std::optional<TargetIndex> index = targetIndexOf(pair, world);
        if (isMalformed || !index) {
            holder.agreement = isMalformed ? EAgreement::kMalformed : EAgreement::kDisagrees;
            holder.indexes.clear();
            return;
        }
        holder.indexes.push_back(*index);
    }
}

}  // namespace

bool SHolder::holds(const TargetIndex& index) const {
    return agreement == EAgreement::kAgrees &&
           std::find(indexes.begin(), indexes.end(), index) != indexes.end();
}

bool SHolder::namesATargetTwice() const {
    return std::set<TargetIndex>(indexes.begin(), indexes.end()).size() < indexes.size();
}

Holders holdersOf(const SWorld& world) {
    std::map<std::string, bool> excluded;
    for (const SWorldBackup& backup : world.backups) {
        excluded[backup.name] = backup.isExcluded;
    }
    Holders holders;
    for (const SWorldBackup& backup : world.backups) {
        if (!backup.pairs) {
            break;
        }
        SHolder holder;
        holder.entry = holders.size();
        holder.age = backup.age;
        holder.isExcluded = excluded[backup.name];
        look(*backup.pairs, world, holder);
        holders.push_back(holder);
    }
    return holders;
}

std::set<TargetIndex> targetIndexesOf(const SWorld& world) {
    std::set<TargetIndex> indexes;
    for (std::size_t one = 0; one < world.configurations.size(); ++one) {
        for (std::size_t target = 0; target < world.configurations[one].targets.size(); ++target) {
            indexes.emplace(one, target);
        }
    }
    return indexes;
}

}  // namespace fi_model
