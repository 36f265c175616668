#include "tests/model/Worlds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/model/LibraryHost.h"
#include "tests/model/XmlLibraryInUse.h"

// All worlds are there, and those that are left out are the same as others.

namespace fi_model {
namespace {

using ::testing::ElementsAre;
using ::testing::IsSubsetOf;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

void forEach(const SWorldBounds& bounds, const std::function<void(const SWorld&)>& look) {
    const CWorlds worlds({bounds});
    for (std::uint64_t number = 0; number < worlds.count(); ++number) {
        look(worlds.at(number));
    }
}

std::set<std::string> described(const SWorldBounds& bounds) {
    std::set<std::string> descriptions;
    forEach(bounds, [&](const SWorld& world) { descriptions.insert(describe(world)); });
    return descriptions;
}

// The same backups with the oldest first. Each gets the name of its new place and keeps its age.
SWorld oldestFirst(SWorld world) {
    std::stable_sort(
        world.backups.begin(), world.backups.end(),
        [](const SWorldBackup& left, const SWorldBackup& right) { return left.age < right.age; });
    for (std::size_t place = 0; place < world.backups.size(); ++place) {
        world.backups[place].name = std::string(1, static_cast<char>('a' + place));
    }
    return world;
}

bool allAreThereOnce(const SWorld& world) {
    std::set<std::string> names;
    for (const SWorldBackup& backup : world.backups) {
        if (backup.pairs) {
            names.insert(backup.name);
        }
    }
    return names.size() == world.backups.size();
}

bool agesDiffer(const SWorld& world) {
    std::set<std::size_t> ages;
    for (const SWorldBackup& backup : world.backups) {
        ages.insert(backup.age);
    }
    return ages.size() == world.backups.size();
}

TEST(Worlds, HaveEveryOrderAndEqualityOfAges) {
    EXPECT_THAT(weakOrders(0), SizeIs(1));
    EXPECT_THAT(weakOrders(2), UnorderedElementsAre(ElementsAre(0, 0), ElementsAre(0, 1), ElementsAre(1, 0)));
    EXPECT_THAT(weakOrders(3), SizeIs(13));
}

// Without a configuration there are 3 pairs: an unknown first target with an unknown and with a malformed
// further one, and a malformed first target. A configuration adds 3 pairs: its first target with an unknown
// one, a malformed one and itself. A further target adds 1. So there are 4, 7 and 8 documents of at most one
// pair, each with both flags. In each of the 3 configurations there are also the list without backups, and a
// missing file with both flags.
TEST(Worlds, AreAsManyAsWorkedOutByHand) {
    EXPECT_EQ(CWorlds({{0, 1, 1, 1, 1}}).count(), 2u * (4 + 7 + 8) + 3 * (1 + 2));
}

// Without pairs all documents are the same. There are 13 orders of three ages when no file is missing, and 3
// orders of two when one of three is missing or repeats the first.
TEST(Worlds, HaveAMissingFileInEveryPlace) {
    const SWorldBounds bounds{3, 3, 0, 0, 0};
    EXPECT_EQ(CWorlds({bounds}).count(), 8u * (13 + 3 * 3 + 3));
    std::map<std::size_t, std::size_t> missing;
    forEach(bounds, [&](const SWorld& world) {
        for (std::size_t place = 0; place < world.backups.size(); ++place) {
            missing[place] += world.backups[place].pairs ? 0 : 1;
        }
    });
    EXPECT_THAT(missing, ElementsAre(std::pair(0, 24), std::pair(1, 24), std::pair(2, 24)));
}

// One configuration with one target; two configurations with one target each, which have the same first
// target or not, and the same further target or not; and those without targets.
TEST(Worlds, HaveEveryConfiguration) {
    std::set<std::string> configurations;
    forEach({0, 0, 2, 1, 0},
            [&](const SWorld& world) { configurations.insert(*asCall(world).configuration); });
    EXPECT_THAT(configurations, UnorderedElementsAre("", "E##l1", "E##l1;E##s1", "E##l1&E##l1", "E##l1&E##l2",
                                                     "E##l1;E##s1&E##l1", "E##l1;E##s1&E##l2",
                                                     "E##l1&E##l1;E##s1", "E##l1&E##l2;E##s1",
                                                     "E##l1;E##s1&E##l1;E##s1", "E##l1;E##s1&E##l2;E##s1",
                                                     "E##l1;E##s1&E##l1;E##s2", "E##l1;E##s1&E##l2;E##s2"));
}

TEST(Worlds, AreDifferentUnderEachNumber) {
    const SWorldBounds bounds{0, 2, 1, 2, 1};
    EXPECT_THAT(described(bounds), SizeIs(CWorlds({bounds}).count()));
}

TEST(Worlds, HaveNoNumberBeyondTheirCount) {
    const CWorlds worlds({{0, 0, 1, 1, 1}, {1, 1, 1, 1, 1}});
    EXPECT_NO_THROW(worlds.at(worlds.count() - 1));
    EXPECT_THROW(worlds.at(worlds.count()), std::out_of_range);
}

TEST(Worlds, WithTheOldestFirstAreTheOthersInAnotherOrder) {
    SWorldBounds bounds{0, 3, 0, 0, 0, EDocuments::kAgreeing, EArguments::kInEveryOrder};
    std::set<std::string> sorted;
    forEach(bounds, [&](const SWorld& world) {
        sorted.insert(describe(allAreThereOnce(world) ? oldestFirst(world) : world));
    });
    bounds.arguments = EArguments::kOldestFirst;
    EXPECT_EQ(described(bounds), sorted);
}

// Where ages are equal the order of the list may matter, so every order of such documents is a world of its
// own.
TEST(WorldsAndTheLibrary, TheOrderOfTheListDoesNotMatter) {
    const CXmlLibraryInUse held;
    CLibraryHost host;
    std::uint64_t looked = 0;
    for (const SWorldBounds& bounds : {SWorldBounds{2, 3, 1, 1, 1, EDocuments::kAgreeing},
                                       SWorldBounds{2, 2, 2, 1, 1, EDocuments::kAgreeing}}) {
        forEach(bounds, [&](const SWorld& world) {
            if (!allAreThereOnce(world) || !agesDiffer(world)) {
                return;
            }
            const SWorld sorted = oldestFirst(world);
            const SAnswer answer = host.runOnKeptFiles(asCall(world));
            const SAnswer ofSorted = host.runOnKeptFiles(asCall(sorted));
            ASSERT_EQ(answer.malformed.has_value(), ofSorted.malformed.has_value()) << describe(world);
            ASSERT_EQ(answer.status, ofSorted.status) << describe(world);
            ASSERT_EQ(answer.selection, ofSorted.selection) << describe(world);
            for (std::size_t place = 0; place < world.backups.size(); ++place) {
                // Ages are ranks, so the age of a backup is its place in the sorted list.
                ASSERT_EQ(answer.flags[place], ofSorted.flags[world.backups[place].age]) << describe(world);
            }
            ++looked;
        });
    }
    EXPECT_GT(looked, 1000u);
}

const std::map<std::string, std::string>& otherNames() {
    static const std::map<std::string, std::string> kNames = {{"E##l1", "E##l2"}, {"E##l2", "E##l1"},
                                                              {"E##s1", "F##s2"}, {"E##s2", "F##s1"},
                                                              {"F##s1", "E##s2"}, {"F##s2", "E##s1"}};
    return kNames;
}

void rename(std::string& name) {
    const auto found = otherNames().find(name);
    name = found == otherNames().end() ? name : found->second;
}

SWorld renamed(SWorld world) {
    for (SWorldConfiguration& configuration : world.configurations) {
        rename(configuration.first);
        std::for_each(configuration.targets.begin(), configuration.targets.end(), rename);
    }
    for (SWorldBackup& backup : world.backups) {
        for (SWorldPair& pair : *backup.pairs) {
            rename(pair.first);
            rename(pair.target);
        }
    }
    return world;
}

// All names have the same length.
std::string renamed(const std::string& selection) {
    std::string text = selection;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const auto found = otherNames().find(selection.substr(place, 5));
        if (found != otherNames().end()) {
            text.replace(place, 5, found->second);
        }
    }
    return text;
}

// The new names are ordered differently, so that the order of names must not matter either.
TEST(WorldsAndTheLibrary, NamesDoNotMatter) {
    const CXmlLibraryInUse held;
    CLibraryHost host;
    std::uint64_t looked = 0;
    for (const SWorldBounds& bounds : {SWorldBounds{1, 1, 2, 2, 1, EDocuments::kAgreeing},
                                       SWorldBounds{2, 2, 2, 1, 1, EDocuments::kAgreeing}}) {
        forEach(bounds, [&](const SWorld& world) {
            if (!allAreThereOnce(world)) {
                return;
            }
            const SAnswer answer = host.runOnKeptFiles(asCall(world));
            const SAnswer ofRenamed = host.runOnKeptFiles(asCall(renamed(world)));
            ASSERT_EQ(answer.malformed.has_value(), ofRenamed.malformed.has_value()) << describe(world);
            ASSERT_EQ(answer.status, ofRenamed.status) << describe(world);
            ASSERT_EQ(renamed(answer.selection.value_or("")), ofRenamed.selection.value_or(""))
                << describe(world);
            ASSERT_EQ(answer.flags, ofRenamed.flags) << describe(world);
            ++looked;
        });
    }
    EXPECT_GT(looked, 1000u);
}

}  // namespace
}  // namespace fi_model
