#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Call.h"

// A world is one call as plain facts: configurations, backups, who names which target. The configuration text
// and the documents are written from these facts, so that their meaning is known without reading them.

namespace fi_model {

// Names are "enclosure##device".
struct SWorldConfiguration {
    std::string first;
    std::vector<std::string> targets;
};

// An empty name makes the identifier malformed.
struct SWorldPair {
    std::string first;
    std::string target;
    // A character that stands before the name in the objid, and so decides the order of the pairs. Pairs with
    // the same first target and the same spelling have the same objid.
    char spelling = '1';
};

struct SWorldBackup {
    // Backups of the same name have the same document.
    std::string name;
    // Nothing when the file is missing.
    std::optional<std::vector<SWorldPair>> pairs;
    // A backup with a greater number is newer; at most kMostAges - 1.
    std::size_t age = 0;
    bool isExcluded = false;
};

struct SWorld {
    std::vector<SWorldConfiguration> configurations;
    // In the order of the caller's list.
    std::vector<SWorldBackup> backups;
};

inline constexpr std::size_t kMostAges = 3;

// The flag words of backups that are excluded and of others. Neither is the number of a state, and both have
// a bit that is ignored.
inline constexpr std::int32_t kExcludedFlag = 5;
inline constexpr std::int32_t kOtherFlag = 3;

// The world as a call. The names of files are made from their content, so that files with the same name are
// the same in all worlds.
SCall asCall(const SWorld& world);

// The configuration, and a line for each backup.
std::string describe(const SWorld& world);

}  // namespace fi_model
