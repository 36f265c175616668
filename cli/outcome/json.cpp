#include "cli/outcome/json.h"

#include <cstddef>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/json.h"
#include "cli/outcome/summary.h"

namespace fi_rotate {
namespace {

Json configurationsOf(const SOutcome& outcome) {
    const auto chosen = outcome.selection.has_value() ? choices(*outcome.selection) : std::nullopt;
    if (!chosen.has_value()) {
        return nullptr;
    }
    const std::vector<SRestorePoints> points = restorePointsOf(outcome);
    Json rows = Json::array();
    for (std::size_t i = 0; i < chosen->size(); ++i) {
        const SChoice& choice = (*chosen)[i];
        rows.push_back(
            {{"first", asUtf8(choice.first)},
             {"chosen", asUtf8(choice.chosen)},
             {"restore_points", i < points.size() ? Json(points[i].after) : Json(nullptr)},
             {"restore_points_before", i < points.size() ? Json(points[i].before) : Json(nullptr)}});
    }
    return rows;
}

Json totalsJson(const SOutcome& outcome) {
    const STotals totals = totalsOf(outcome);
    const auto& [kept, invalid, rotated, notLoaded] = totals.ofState;
    return {{"kept", kept},
            {"invalid", invalid},
            {"rotated", rotated},
            {"rotated_in_vain", totals.inVain},
            {"not_loaded", notLoaded},
            {"without_state", totals.withoutState}};
}

Json changeJson(const SChange& change) {
    return {{"change", change.kind == EChange::kAllowRotation ? "allow_rotation" : "leave_out"},
            {"file", asUtf8(change.file)}};
}

Json adviceJson(const std::optional<SAdvice>& advice) {
    if (!advice.has_value()) {
        return nullptr;
    }
    Json changes = Json::array();
    for (const SChange& change : advice->neededChanges) {
        changes.push_back(changeJson(change));
    }
    Json trials = Json::array();
    for (const STrial& trial : advice->trials) {
        trials.push_back(changeJson(trial.change));
        trials.back()["released"] = trial.released.has_value() ? listOf(*trial.released) : Json(nullptr);
    }
    return {{"changes", changes},
            {"released", changes.empty() ? Json(nullptr) : listOf(advice->released)},
            {"released_with_another_target",
             advice->releasedWithTargets.has_value() ? listOf(*advice->releasedWithTargets) : Json(nullptr)},
            {"trials", trials},
            {"untried", advice->untried}};
}

Json orNullIfEmpty(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(asUtf8(text));
}

// What the flag word of the backup tells.
Json orNullIfUnknown(const SBackupOutcome& backup, const Json& told) {
    return backup.isFlagWordKnown ? told : Json(nullptr);
}

Json reasonJson(const std::optional<SReason>& reason) {
    if (!reason.has_value()) {
        return nullptr;
    }
    return {
        {"name", nameOf(reason->kind)},
        {"words", asUtf8(inWords(*reason))},
        {"configuration", orNullIfEmpty(reason->configuration)},
        {"target", orNullIfEmpty(reason->target)},
        {"backup", orNullIfEmpty(reason->backup)},
        {"objid", orNullIfEmpty(reason->objid)},
        {"altobjid", orNullIfEmpty(reason->altobjid)},
        {"targets", listOf(reason->targets)},
        {"freed", listOf(reason->freed)},
    };
}

Json shortagesOf(const SAccount& account) {
    Json rows = Json::array();
    for (const SShortage& shortage : account.shortages) {
        const SAccountConfiguration& configuration = account.configurations[shortage.configuration];
        Json targets = Json::array();
        for (const SHeldTarget& held : shortage.targets) {
            targets.push_back({{"target", asUtf8(configuration.targets[held.target])},
                               {"holder", asUtf8(account.backups[held.holder].file)},
                               {"excluded", held.isExcluded}});
        }
        rows.push_back({{"configuration", asUtf8(configuration.first)}, {"targets", targets}});
    }
    return rows;
}

Json backupsOf(const SOutcome& outcome, const SView& view, bool hasReasons) {
    Json rows = Json::array();
    for (const SBackupOutcome* const backup : view.shownBackups(outcome)) {
        rows.push_back({
            {"file", asUtf8(backup->given.file)},
            {"time_stamp", orNullIfEmpty(backup->timeStamp)},
            {"flag_word", orNullIfUnknown(*backup, backup->given.flagWord)},
            {"excluded", orNullIfUnknown(*backup, (backup->given.flagWord & FI_EXCLUDE_ROTATION) != 0)},
            {"state", orNull(stateWord(*backup))},
        });
        if (hasReasons) {
            rows.back()["reason"] = reasonJson(backup->reason);
        }
    }
    return rows;
}

Json exceptionOf(const std::optional<SException>& exception) {
    if (!exception.has_value()) {
        return nullptr;
    }
    return {
        {"identifier", orNull(exception->identifier)},
        {"code", orNull(exception->code)},
        {"reason", asUtf8(exception->reason)},
    };
}

Json documentOf(const SOutcome& outcome, const SView& view) {
    const bool hasReasons = view.withReasons && outcome.account.has_value();
    Json document = {
        {"status", orNull(outcome.status)},
        {"selection", orNull(outcome.selection)},
        {"configurations", configurationsOf(outcome)},
        {"backups", backupsOf(outcome, view, hasReasons)},
        {"totals", totalsJson(outcome)},
        {"exception", exceptionOf(outcome.exception)},
        {"messages", listOf(outcome.messages)},
    };
    if (hasReasons) {
        document["shortages"] = shortagesOf(*outcome.account);
    }
    return document;
}

Json placeOf(const SLogPlace& place) {
    return {{"log", asUtf8(place.log)}, {"line", place.line}, {"time", orNullIfEmpty(place.time)}};
}

// Escapes the control characters that JSON allows in texts but that a terminal obeys.
std::string withoutControls(const std::string& json) {
    std::string result;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const auto byte = static_cast<unsigned char>(json[i]);
        const auto next = static_cast<unsigned char>(i + 1 < json.size() ? json[i + 1] : '\0');
        const bool isOfTwoBytes = byte == 0xC2 && next < 0xA0;
        if (byte == 0x7F || isOfTwoBytes) {
            result += fmt::format("\\u{:04x}", isOfTwoBytes ? next : byte);
            i += isOfTwoBytes ? 1U : 0U;
        } else {
            result += json[i];
        }
    }
    return result;
}

}  // namespace

std::string toJson(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice) {
    Json document = documentOf(outcome, view);
    document["advice"] = adviceJson(advice);
    return document.dump(2) + "\n";
}

std::string toJson(const std::vector<SLoggedCall>& calls, const SView& view) {
    Json rows = Json::array();
    for (const SLoggedCall& call : calls) {
        rows.push_back({{"number", call.number},
                        {"first", placeOf(call.first)},
                        {"last", placeOf(call.last)},
                        {"missing", listOf(call.missing)},
                        {"outcome", documentOf(call.outcome, view)}});
    }
    return withoutControls(Json{{"calls", rows}}.dump(2)) + "\n";
}

}  // namespace fi_rotate
