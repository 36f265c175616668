#include "host/account.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace fi_rotate {
namespace {

std::string listed(const std::vector<std::string>& names) {
    return fmt::format("{}", fmt::join(names, ", "));
}

}  // namespace

std::string_view nameOf(EReason kind) {
    switch (kind) {
        case EReason::kNewestHolder:
            return "newest_holder";
        case EReason::kHoldsNothing:
            return "holds_nothing";
        case EReason::kExcluded:
            return "excluded";
        case EReason::kRotationStopped:
            return "rotation_stopped";
        case EReason::kNeeded:
            return "needed";
        case EReason::kUnknownTarget:
            return "unknown_target";
        case EReason::kUnknownConfiguration:
            return "unknown_configuration";
        case EReason::kHeldAlready:
            return "held_already";
    }
    return "";
}

std::string inWords(const SReason& reason) {
    switch (reason.kind) {
        case EReason::kNewestHolder:
            return "the newest that holds " + listed(reason.targets);
        case EReason::kHoldsNothing:
            return "holds no target";
        case EReason::kExcluded:
            return "excluded from rotation, although " + reason.configuration + " had no free target";
        case EReason::kRotationStopped:
            return "rotation stopped before it; holds " + listed(reason.targets);
        case EReason::kNeeded:
            return reason.configuration +
                   " had no free target, and this was the oldest that could be released";
        case EReason::kUnknownTarget:
            return fmt::format("{} with {} names no target of {}", reason.objid, reason.altobjid,
                               reason.configuration);
        case EReason::kUnknownConfiguration:
            return fmt::format("{} names no configuration", reason.objid);
        case EReason::kHeldAlready:
            return fmt::format("{} of {} was already held by {}", reason.target, reason.configuration,
                               reason.backup.empty() ? "another of its pairs" : reason.backup);
    }
    return "";
}

}  // namespace fi_rotate
