#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Call.h"
#include "tests/model/ModelConfiguration.h"

// What the host library must answer to a call of the model's generator, worked out from the call and the
// model.
namespace fi_test {

// Whether the call can be made through the host library, which has no null pointers and no negative sizes.
bool fitsInterface(const fi_model::SCall& call);

struct SExpectedProblem {
    std::uint32_t kind = 0;
    // -1 for the configuration.
    std::int32_t backup = 0;

    bool operator==(const SExpectedProblem& other) const {
        return kind == other.kind && backup == other.backup;
    }
    bool operator<(const SExpectedProblem& other) const {
        return backup != other.backup ? backup < other.backup : kind < other.kind;
    }
};

// All problems of the inputs, in the order of the backups. A document that is not read, because one before it
// is missing, has only the problems that can be seen from its file.
std::vector<SExpectedProblem> problemsOf(const fi_model::SCall& call);

struct SExpectedDecision {
    // Nothing when no target is free.
    std::optional<std::string> selection;
    // By backup; -1 for none.
    std::vector<std::int32_t> states;

    bool operator==(const SExpectedDecision& other) const {
        return selection == other.selection && states == other.states;
    }
};

// All right decisions: where time stamps are equal, one for each order of these backups. None for a call that
// a malformed identifier ends.
std::vector<SExpectedDecision> decisionsOf(const fi_model::SCall& call);

fi_model::Configurations configurationsOf(const fi_model::SCall& call);

}  // namespace fi_test
