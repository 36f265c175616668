#include "host/account.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/rows.h"

namespace fi_rotate {
namespace {

struct SReasonKind {
    EReason kind;
    std::string_view name;
    // A sentence, with the names of the reason's fields in braces.
    std::string_view words;
};

constexpr std::size_t kReasonCount = static_cast<std::size_t>(EReason::kCount);

constexpr std::array<SReasonKind, kReasonCount> kKinds{{
    {EReason::kNewestHolder, "newest_holder", "the newest that holds {targets}"},
    {EReason::kHoldsNothing, "holds_nothing", "holds no target"},
    {EReason::kExcluded, "excluded", "excluded from rotation, although {configuration} had no free target"},
    {EReason::kRotationStopped, "rotation_stopped", "rotation stopped before it; holds {targets}"},
    {EReason::kNeeded, "needed", "{released} while {configuration} had no free target; {held}"},
    {EReason::kInVain, "in_vain", "{released} while {configuration} had no free target; {held}"},
    {EReason::kUnknownTarget, "unknown_target", "{objid} with {altobjid} names no target of {configuration}"},
    {EReason::kUnknownConfiguration, "unknown_configuration", "{objid} names no configuration"},
    {EReason::kHeldAlready, "held_already", "{target} of {configuration} was already held by {backup}"},
}};

static_assert(areInOrder(kKinds, &SReasonKind::kind), "a row for each EReason, in that order");

const SReasonKind& rowOf(EReason kind) {
    return kKinds.at(static_cast<std::size_t>(kind));
}

std::size_t countHolders(const SAccount& account, const Holders& holders, std::size_t configuration,
                         std::initializer_list<std::int32_t> states) {
    // When lines of the trace are missing, the holders are not known.
    if (configuration >= holders.size()) {
        return 0;
    }
    std::vector<std::size_t> counted;
    for (const auto& holder : holders[configuration]) {
        const bool isCounted =
            holder.has_value() &&
            std::find(states.begin(), states.end(), account.backups[*holder].state) != states.end();
        if (isCounted) {
            counted.push_back(*holder);
        }
    }
    std::sort(counted.begin(), counted.end());
    return static_cast<std::size_t>(std::unique(counted.begin(), counted.end()) - counted.begin());
}

// Several configurations may have the same name, and the release may have freed another one of that name.
std::string shortOneNotFreed(const SReason& reason) {
    const bool isNameFreed =
        std::find(reason.freed.begin(), reason.freed.end(), reason.configuration) != reason.freed.end();
    return isNameFreed ? ", but not of the one that was short" : ", none of " + reason.configuration;
}

std::string targetsHeldBefore(const SReason& reason) {
    if (reason.freed.empty()) {
        return "it held no target";
    }
    return fmt::format("it {} targets of {}{}", reason.isUndone ? "holds" : "held",
                       fmt::join(reason.freed, ", "),
                       reason.kind == EReason::kInVain ? shortOneNotFreed(reason) : "");
}

}  // namespace

void CPairs::add(std::string_view objid, std::string_view altobjid) {
    ends.push_back(text.append(objid).size());
    ends.push_back(text.append(altobjid).size());
}

std::vector<CPairs::SPair> CPairs::inOrder() const {
    std::vector<SPair> pairs;
    pairs.reserve(ends.size() / 2);
    std::size_t begin = 0;
    for (std::size_t i = 0; i < ends.size(); i += 2) {
        const std::string_view all = text;
        pairs.push_back({all.substr(begin, ends[i] - begin), all.substr(ends[i], ends[i + 1] - ends[i])});
        begin = ends[i + 1];
    }
    const auto isBefore = [](const SPair& one, const SPair& other) { return one.objid < other.objid; };
    // Most documents have them in order, and to look takes less time than to sort.
    if (!std::is_sorted(pairs.begin(), pairs.end(), isBefore)) {
        std::stable_sort(pairs.begin(), pairs.end(), isBefore);
    }
    const auto isSame = [](const SPair& one, const SPair& other) { return one.objid == other.objid; };
    const auto counting = std::unique(pairs.rbegin(), pairs.rend(), isSame);
    pairs.erase(pairs.begin(), counting.base());
    return pairs;
}

std::string toSpecification(const std::vector<SAccountConfiguration>& configurations) {
    std::string text;
    for (const SAccountConfiguration& configuration : configurations) {
        text += fmt::format("{}{}{}{}", text.empty() ? "" : "&", configuration.first,
                            configuration.targets.empty() ? "" : ";", fmt::join(configuration.targets, ";"));
    }
    return text;
}

std::size_t keptHolders(const SAccount& account, std::size_t configuration) {
    return countHolders(account, account.heldAfter, configuration, {FI_BACKUP_KEPT});
}

std::size_t keptHoldersBeforeRotation(const SAccount& account, std::size_t configuration) {
    return countHolders(account, account.heldBefore, configuration, {FI_BACKUP_KEPT, FI_BACKUP_ROTATED});
}

std::vector<std::string> lossesInWords(const SAccount& account, std::size_t least) {
    std::vector<std::string> losses;
    for (std::size_t i = 0; i < account.configurations.size(); ++i) {
        const std::size_t before = keptHoldersBeforeRotation(account, i);
        const std::size_t after = keptHolders(account, i);
        if (after >= std::min(before, least)) {
            continue;
        }
        const std::string rule = before < least ? fmt::format("it has fewer than {} and may lose none", least)
                                                : fmt::format("at least {} must remain", least);
        losses.push_back(
            fmt::format("{} would keep {} of its {} backups; {}: add further targets, or keep fewer",
                        account.configurations[i].first, after, before, rule));
    }
    return losses;
}

std::string_view nameOf(EReason kind) {
    return rowOf(kind).name;
}

std::string inWords(const SReason& reason) {
    const std::string holder = reason.backup.empty() ? "another of its pairs" : reason.backup;
    return fmt::format(
        fmt::runtime(rowOf(reason.kind).words), fmt::arg("targets", fmt::join(reason.targets, ", ")),
        fmt::arg("configuration", reason.configuration), fmt::arg("target", reason.target),
        fmt::arg("objid", reason.objid), fmt::arg("altobjid", reason.altobjid), fmt::arg("backup", holder),
        fmt::arg("released", reason.isUndone ? "would be released" : "released"),
        fmt::arg("held", targetsHeldBefore(reason)));
}

}  // namespace fi_rotate
