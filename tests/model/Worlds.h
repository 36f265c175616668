#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/World.h"

namespace fi_model {

// Which lists of pairs are documents.
enum class EDocuments {
    // Every list of pairs that name something configured, something unknown, or nothing well-formed, or the
    // very first target in the place of a further one; each second pair with an objid of its own and with
    // that
    // of the first.
    kAll,
    // Every list of pairs that agree with the configuration, one pair that does not, and a malformed one.
    kAgreeing,
};

// Which orders of the caller's list, as far as ages tell its entries apart.
enum class EArguments {
    kInEveryOrder,
    // The oldest first, where all files are there and no name is listed twice: the others are the same worlds
    // with the list in another order.
    kOldestFirst,
};

// What is the most that a world has, but for the fewest backups.
struct SWorldBounds {
    std::size_t fewestBackups = 0;
    std::size_t backups = 0;
    std::size_t configurations = 0;
    // Further ones, of each configuration.
    std::size_t targets = 0;
    // Of each backup.
    std::size_t pairs = 0;
    EDocuments documents = EDocuments::kAll;
    EArguments arguments = EArguments::kInEveryOrder;
};

// Every world within some bounds, by number: each configuration (its names numbered by where they occur
// first, since a world with other names is the same), each document of each backup, both flag words, every
// order and equality of ages; all files there, or that of any one backup missing, or the last name that of
// the first.
class CWorlds {
public:
    explicit CWorlds(const std::vector<SWorldBounds>& all);

    std::uint64_t count() const { return total; }

    // `number` is less than the count.
    SWorld at(std::uint64_t number) const;

private:
    using Orders = std::vector<std::vector<std::size_t>>;
    using Documents = std::vector<std::vector<SWorldPair>>;
    enum class EFiles { kAllThere, kOneMissing, kFirstRepeated };

    // Worlds that differ in ages, documents and flags only.
    struct SGroup {
        std::uint64_t firstNumber = 0;
        // Numbers of the sets.
        std::size_t configurations = 0;
        std::size_t documents = 0;
        std::size_t backups = 0;
        EArguments arguments = EArguments::kInEveryOrder;
        EFiles files = EFiles::kAllThere;
        // Which one, where one is missing.
        std::size_t missing = 0;
    };

    void add(const SWorldBounds& bounds);
    void add(SGroup group);
    // How many backups have a document of their own.
    static std::size_t ownDocuments(const SGroup& group);
    const Orders& ordersOf(const SGroup& group) const;

    // By their count.
    std::vector<Orders> everyOrder;
    std::vector<Orders> oldestFirst;
    std::vector<std::vector<SWorldConfiguration>> configurationSets;
    std::vector<Documents> documentSets;
    std::vector<SGroup> groups;
    std::uint64_t total = 0;
};

// Every order and equality of so many ages, each as ranks without a gap.
std::vector<std::vector<std::size_t>> weakOrders(std::size_t count);

}  // namespace fi_model
