#include "tests/model/Holdings.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

namespace fi_model {
namespace {

// A pair takes the first place of its target in the configurations of its first target.
std::optional<Place> placeOf(const SWorldPair& pair, const SWorld& world) {
    for (std::size_t one = 0; one < world.configurations.size(); ++one) {
        const SWorldConfiguration& configuration = world.configurations[one];
        const auto& targets = configuration.targets;
        const auto found = std::find(targets.begin(), targets.end(), pair.target);
        if (configuration.first == pair.first && found != targets.end()) {
            return Place{one, static_cast<std::size_t>(found - targets.begin())};
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

// The first pair that is malformed or has no place decides what is noted of the backup.
void look(const std::vector<SWorldPair>& pairs, const SWorld& world, SHolder& holder) {
    for (const SWorldPair& pair : pairsThatCount(pairs)) {
        const bool isMalformed = pair.first.empty() || pair.target.empty();
        const std::optional<Place> place = placeOf(pair, world);
        if (isMalformed || !place) {
            holder.agreement = isMalformed ? EAgreement::kMalformed : EAgreement::kDisagrees;
            holder.places.clear();
            return;
        }
        holder.places.push_back(*place);
    }
}

}  // namespace

bool SHolder::holds(const Place& place) const {
    return agreement == EAgreement::kAgrees && std::find(places.begin(), places.end(), place) != places.end();
}

bool SHolder::namesATargetTwice() const {
    return std::set<Place>(places.begin(), places.end()).size() < places.size();
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

std::set<Place> placesOf(const SWorld& world) {
    std::set<Place> places;
    for (std::size_t one = 0; one < world.configurations.size(); ++one) {
        for (std::size_t target = 0; target < world.configurations[one].targets.size(); ++target) {
            places.emplace(one, target);
        }
    }
    return places;
}

}  // namespace fi_model
