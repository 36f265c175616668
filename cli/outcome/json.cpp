#include "cli/outcome/json.h"

#include <nlohmann/json.hpp>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

// Keys in the order in which they are set.
using Json = nlohmann::ordered_json;

template <typename Value>
Json orNull(const std::optional<Value>& value) {
    return value.has_value() ? Json(*value) : Json(nullptr);
}

Json orNull(const std::optional<std::string>& text) {
    return text.has_value() ? Json(asUtf8(*text)) : Json(nullptr);
}

Json configurationsOf(const std::optional<std::string>& selection) {
    const auto chosen = selection.has_value() ? choices(*selection) : std::nullopt;
    if (!chosen.has_value()) {
        return nullptr;
    }
    Json rows = Json::array();
    for (const SChoice& choice : *chosen) {
        rows.push_back({{"first", asUtf8(choice.first)}, {"chosen", asUtf8(choice.chosen)}});
    }
    return rows;
}

Json listOf(const std::vector<std::string>& texts) {
    Json list = Json::array();
    for (const std::string& text : texts) {
        list.push_back(asUtf8(text));
    }
    return list;
}

Json orNullIfEmpty(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(asUtf8(text));
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
    };
}

Json shortagesOf(const std::vector<SShortage>& shortages) {
    Json rows = Json::array();
    for (const SShortage& shortage : shortages) {
        Json targets = Json::array();
        for (const SHeldTarget& held : shortage.targets) {
            targets.push_back({{"target", asUtf8(held.target)},
                               {"holder", asUtf8(held.holder)},
                               {"excluded", held.isExcluded}});
        }
        rows.push_back({{"configuration", asUtf8(shortage.configuration)}, {"targets", targets}});
    }
    return rows;
}

Json backupsOf(const SOutcome& outcome) {
    Json rows = Json::array();
    for (const SBackup& backup : outcome.backups) {
        rows.push_back({
            {"file", asUtf8(backup.file)},
            {"time_stamp", backup.timeStamp.empty() ? Json(nullptr) : Json(asUtf8(backup.timeStamp))},
            {"flag_word", backup.flagWord},
            {"excluded", (backup.flagWord & FI_EXCLUDE_ROTATION) != 0},
            {"state", orNull(stateWord(backup))},
        });
        if (outcome.account.has_value()) {
            rows.back()["reason"] = reasonJson(backup.reason);
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

Json documentOf(const SOutcome& outcome) {
    Json document = {
        {"status", orNull(outcome.status)},
        {"selection", orNull(outcome.selection)},
        {"configurations", configurationsOf(outcome.selection)},
        {"backups", backupsOf(outcome)},
        {"exception", exceptionOf(outcome.exception)},
        {"messages", listOf(outcome.messages)},
    };
    if (outcome.account.has_value()) {
        document["shortages"] = shortagesOf(outcome.account->shortages);
    }
    return document;
}

}  // namespace

std::string toJson(const SOutcome& outcome) {
    return documentOf(outcome).dump(2) + "\n";
}

std::string toJson(const std::vector<SLoggedCall>& calls) {
    Json rows = Json::array();
    for (const SLoggedCall& call : calls) {
        rows.push_back({{"number", call.number},
                        {"first_line", call.firstLine},
                        {"last_line", call.lastLine},
                        {"missing", listOf(call.missing)},
                        {"outcome", documentOf(call.outcome)}});
    }
    return Json{{"calls", rows}}.dump(2) + "\n";
}

}  // namespace fi_rotate
