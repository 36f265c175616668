#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Call.h"

// One call as the plain facts from which it is written, so that what it means is known without reading its
// documents.

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
    // Stands before the name in the objid, and so decides in which order pairs are visited. Pairs that have
    // the same first target and spelling have the same objid.
    char spelling = '1';
};

struct SWorldBackup {
    // Backups of the same name have the same document.
    std::string name;
    // Without them there is no file.
    std::optional<std::vector<SWorldPair>> pairs;
    // A greater one is newer; at most kMostAges - 1.
    std::size_t age = 0;
    bool isExcluded = false;
};

struct SWorld {
    std::vector<SWorldConfiguration> configurations;
    // In the order of the caller's list.
    std::vector<SWorldBackup> backups;
};

inline constexpr std::size_t kMostAges = 3;

// The flag words of backups that are excluded and of others. Neither is a state, and both have a bit that
// means nothing.
inline constexpr std::int32_t kExcludedFlag = 5;
inline constexpr std::int32_t kOtherFlag = 3;

// The name of a file tells all that is in it: files of the same name are the same in all worlds.
SCall asCall(const SWorld& world);

// The configuration, and a line for each backup.
std::string describe(const SWorld& world);

}  // namespace fi_model
