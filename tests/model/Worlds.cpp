#include "tests/model/Worlds.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <stdexcept>

namespace fi_model {
namespace {

// Some of these names differ only in their enclosures and some only in their devices, so that both must be
// compared.
constexpr std::array<const char*, 2> kFirsts = {"E##l1", "E##l2"};
constexpr std::array<const char*, 4> kTargets = {"E##s1", "E##s2", "F##s1", "F##s2"};
constexpr const char* kUnknownFirst = "F##l1";
constexpr const char* kUnknownTarget = "G##s1";
constexpr const char* kMalformed = "";

using Numbers = std::vector<std::size_t>;

// Every list of so many numbers up to `most` where each is at most one more than the greatest before it.
std::vector<Numbers> numberedByOccurrence(std::size_t length, std::size_t most) {
    std::vector<Numbers> lists = {{}};
    for (std::size_t place = 0; place < length; ++place) {
        std::vector<Numbers> longer;
        for (const Numbers& list : lists) {
            const std::size_t fresh = list.empty() ? 0 : *std::max_element(list.begin(), list.end()) + 1;
            for (std::size_t number = 0; number <= std::min(fresh, most); ++number) {
                longer.push_back(list);
                longer.back().push_back(number);
            }
        }
        lists = longer;
    }
    return lists;
}

// Every list of `length` numbers below `radix`.
std::vector<Numbers> allNumbers(std::size_t length, std::size_t radix) {
    std::vector<Numbers> lists = {{}};
    for (std::size_t place = 0; place < length; ++place) {
        std::vector<Numbers> longer;
        for (const Numbers& list : lists) {
            for (std::size_t number = 0; number < radix; ++number) {
                longer.push_back(list);
                longer.back().push_back(number);
            }
        }
        lists = longer;
    }
    return lists;
}

using Configurations = std::vector<SWorldConfiguration>;

Configurations named(const Numbers& sizes, const Numbers& firsts, const Numbers& targets) {
    Configurations configurations;
    auto next = targets.begin();
    for (std::size_t index = 0; index < sizes.size(); ++index) {
        SWorldConfiguration configuration{kFirsts.at(firsts[index]), {}};
        for (std::size_t count = 0; count < sizes[index]; ++count) {
            configuration.targets.emplace_back(kTargets.at(*next++));
        }
        configurations.push_back(configuration);
    }
    return configurations;
}

std::vector<Configurations> configurationsWithin(const SWorldBounds& bounds) {
    std::vector<Configurations> all;
    for (std::size_t count = 0; count <= bounds.configurations; ++count) {
        for (const Numbers& sizes : allNumbers(count, bounds.targets + 1)) {
            std::size_t size = 0;
            for (const std::size_t one : sizes) {
                size += one;
            }
            for (const Numbers& firsts : numberedByOccurrence(count, kFirsts.size() - 1)) {
                for (const Numbers& targets : numberedByOccurrence(size, kTargets.size() - 1)) {
                    all.push_back(named(sizes, firsts, targets));
                }
            }
        }
    }
    return all;
}

std::set<std::string> firstsOf(const Configurations& configurations) {
    std::set<std::string> firsts;
    for (const SWorldConfiguration& configuration : configurations) {
        firsts.insert(configuration.first);
    }
    return firsts;
}

std::set<std::string> targetsOf(const Configurations& configurations) {
    std::set<std::string> targets;
    for (const SWorldConfiguration& configuration : configurations) {
        targets.insert(configuration.targets.begin(), configuration.targets.end());
    }
    return targets;
}

std::vector<SWorldPair> everyPair(const Configurations& configurations) {
    std::set<std::string> targets = targetsOf(configurations);
    // A configured target, if there is one: a pair with an unknown first target must not match it.
    const std::string target = targets.empty() ? kUnknownTarget : *targets.begin();
    std::vector<SWorldPair> pairs = {
        {kMalformed, target}, {kUnknownFirst, target}, {kUnknownFirst, kMalformed}};
    targets.insert({kUnknownTarget, kMalformed});
    for (const std::string& first : firstsOf(configurations)) {
        for (const std::string& one : targets) {
            pairs.push_back({first, one});
        }
    }
    if (!configurations.empty()) {
        pairs.push_back({kFirsts[0], kFirsts[0]});
    }
    return pairs;
}

std::vector<SWorldPair> agreeingPairs(const Configurations& configurations) {
    std::set<std::pair<std::string, std::string>> names;
    for (const SWorldConfiguration& configuration : configurations) {
        for (const std::string& target : configuration.targets) {
            names.emplace(configuration.first, target);
        }
    }
    std::vector<SWorldPair> pairs;
    pairs.reserve(names.size());
    for (const auto& [first, target] : names) {
        pairs.push_back({first, target});
    }
    return pairs;
}

using Documents = std::vector<std::vector<SWorldPair>>;

Documents listsOf(const std::vector<SWorldPair>& pairs, std::size_t most, bool alsoSameObjid) {
    Documents documents = {{}};
    if (most >= 1) {
        for (const SWorldPair& pair : pairs) {
            documents.push_back({pair});
        }
    }
    if (most >= 2) {
        for (const SWorldPair& pair : pairs) {
            for (SWorldPair second : pairs) {
                second.spelling = '2';
                documents.push_back({pair, second});
                if (alsoSameObjid && pair.first == second.first) {
                    second.spelling = pair.spelling;
                    documents.push_back({pair, second});
                }
            }
        }
    }
    return documents;
}

Documents documentsWithin(const SWorldBounds& bounds, const Configurations& configurations) {
    if (bounds.documents == EDocuments::kAll) {
        return listsOf(everyPair(configurations), bounds.pairs, true);
    }
    Documents documents = listsOf(agreeingPairs(configurations), bounds.pairs, false);
    documents.push_back({{kFirsts[0], kUnknownTarget}});
    documents.push_back({{kFirsts[0], kMalformed}});
    return documents;
}

// Splits a number into digits, each with a radix of its own.
class CDigits {
public:
    explicit CDigits(std::uint64_t number) : rest(number) {}

    std::size_t next(std::size_t radix) {
        const std::uint64_t digit = rest % radix;
        rest /= radix;
        return static_cast<std::size_t>(digit);
    }

private:
    std::uint64_t rest;
};

}  // namespace

std::vector<std::vector<std::size_t>> weakOrders(std::size_t count) {
    std::vector<Numbers> orders;
    for (const Numbers& ranks : allNumbers(count, count)) {
        const std::set<std::size_t> used(ranks.begin(), ranks.end());
        if (used.empty() || *used.rbegin() + 1 == used.size()) {
            orders.push_back(ranks);
        }
    }
    return orders;
}

CWorlds::CWorlds(const std::vector<SWorldBounds>& all) {
    for (std::size_t count = 0; count <= kMostAges; ++count) {
        everyOrder.push_back(weakOrders(count));
        oldestFirst.emplace_back();
        std::copy_if(everyOrder.back().begin(), everyOrder.back().end(),
                     std::back_inserter(oldestFirst.back()),
                     [](const Numbers& ages) { return std::is_sorted(ages.begin(), ages.end()); });
    }
    for (const SWorldBounds& bounds : all) {
        add(bounds);
    }
}

void CWorlds::add(const SWorldBounds& bounds) {
    for (const Configurations& configurations : configurationsWithin(bounds)) {
        SGroup group;
        group.configurations = configurationSets.size();
        group.documents = documentSets.size();
        group.arguments = bounds.arguments;
        configurationSets.push_back(configurations);
        documentSets.push_back(documentsWithin(bounds, configurations));
        for (group.backups = bounds.fewestBackups; group.backups <= bounds.backups; ++group.backups) {
            group.files = EFiles::kAllThere;
            add(group);
            group.files = EFiles::kOneMissing;
            for (group.missing = 0; group.missing < group.backups; ++group.missing) {
                add(group);
            }
            group.files = EFiles::kFirstRepeated;
            if (group.backups >= 2) {
                add(group);
            }
        }
    }
}

// The digits of a world's number in its group stand for the order of ages, and for the flag of each backup
// and its document, if it has one of its own.
void CWorlds::add(SGroup group) {
    group.firstNumber = total;
    groups.push_back(group);
    const std::size_t own = ownDocuments(group);
    std::uint64_t size = ordersOf(group).size();
    for (std::size_t place = 0; place < group.backups; ++place) {
        size *= 2;
    }
    for (std::size_t place = 0; place < own; ++place) {
        size *= documentSets[group.documents].size();
    }
    total += size;
}

std::size_t CWorlds::ownDocuments(const SGroup& group) {
    return group.files == EFiles::kAllThere ? group.backups : group.backups - 1;
}

const CWorlds::Orders& CWorlds::ordersOf(const SGroup& group) const {
    const bool inEveryOrder =
        group.arguments == EArguments::kInEveryOrder || group.files != EFiles::kAllThere;
    return (inEveryOrder ? everyOrder : oldestFirst)[ownDocuments(group)];
}

SWorld CWorlds::at(std::uint64_t number) const {
    if (number >= total) {
        throw std::out_of_range("no world has this number");
    }
    const auto after =
        std::upper_bound(groups.begin(), groups.end(), number,
                         [](std::uint64_t left, const SGroup& right) { return left < right.firstNumber; });
    const SGroup& group = *std::prev(after);
    const Documents& documents = documentSets[group.documents];
    const Orders& orders = ordersOf(group);

    CDigits digits(number - group.firstNumber);
    auto age = orders[digits.next(orders.size())].begin();
    SWorld world;
    world.configurations = configurationSets[group.configurations];
    for (std::size_t place = 0; place < group.backups; ++place) {
        SWorldBackup backup;
        if (group.files == EFiles::kFirstRepeated && place + 1 == group.backups) {
            backup = world.backups.front();
        } else {
            backup.name = std::string(1, static_cast<char>('a' + place));
            if (group.files != EFiles::kOneMissing || place != group.missing) {
                backup.age = *age++;
                backup.pairs = documents[digits.next(documents.size())];
            }
        }
        backup.isExcluded = digits.next(2) == 1;
        world.backups.push_back(backup);
    }
    return world;
}

}  // namespace fi_model
