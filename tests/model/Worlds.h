#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/World.h"

namespace fi_model {

// Which lists of pairs are documents.
enum class EDocuments {
    // Every list of pairs. A pair names something that is configured, something unknown, something malformed,
    // or a
    // first target in the place of a further one. A second pair has an objid of its own, or that of the first
    // one.
    kAll,
    // Every list of pairs that agree with the configuration, one pair that does not, and a malformed one.
    kAgreeing,
};

// In which orders of ages the caller lists the backups.
enum class EArguments {
    kInEveryOrder,
    // The oldest first, where no file is missing and no name is listed twice. The other orders make the same
    // worlds with another order of the list.
    kOldestFirst,
};

// Upper bounds of a world, and the lower bound `fewestBackups`.
struct SWorldBounds {
    std::size_t fewestBackups = 0;
    std::size_t backups = 0;
    std::size_t configurations = 0;
    // Further targets of each configuration.
    std::size_t targets = 0;
    // Pairs of each backup.
    std::size_t pairs = 0;
    EDocuments documents = EDocuments::kAll;
    EArguments arguments = EArguments::kInEveryOrder;
};

// Every world within some bounds, by number: every configuration (names are numbered in the order in which
// they occur, since a world with other names is the same); every document of each backup; both flag words;
// all orders of ages, equal ones included; with all files, with any one of them missing, and with the last
// name the same as the first.
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
        // The numbers of its sets of configurations and documents.
        std::size_t configurations = 0;
        std::size_t documents = 0;
        std::size_t backups = 0;
        EArguments arguments = EArguments::kInEveryOrder;
        EFiles files = EFiles::kAllThere;
        // The place of the missing file, where one is missing.
        std::size_t missing = 0;
    };

    void add(const SWorldBounds& bounds);
    void add(SGroup group);
    // How many backups have a document of their own.
    static std::size_t ownDocuments(const SGroup& group);
    const Orders& ordersOf(const SGroup& group) const;

    // The orders of ages, by the number of backups.
    std::vector<Orders> everyOrder;
    std::vector<Orders> oldestFirst;
    std::vector<std::vector<SWorldConfiguration>> configurationSets;
    std::vector<Documents> documentSets;
    std::vector<SGroup> groups;
    std::uint64_t total = 0;
};

// All orders of so many ages, equal ones included, each as ranks without gaps.
std::vector<std::vector<std::size_t>> weakOrders(std::size_t count);

}  // namespace fi_model
