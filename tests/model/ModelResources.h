#pragma once

#include <optional>
#include <string>

#include "tests/model/Journal.h"
#include "tests/model/ModelConfiguration.h"
#include "tests/model/ModelTree.h"

namespace fi_model {

enum class EMode { kCheck, kClaim, kRelease };

// Whether every device of the backup has its target, and in claim mode whether none of them was
// held by another backup. Throws SMalformed for a malformed identifier.
bool validate(const SNode& root, EMode mode, Configurations& configurations, SJournal& journal);

// The first free target of every configuration, or nothing when one of them has none.
std::optional<std::string> selectionOf(const Configurations& configurations);

void printResources(const Configurations& configurations, SJournal& journal);

}  // namespace fi_model
