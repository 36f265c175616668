#include "cli/json.h"

#include <nlohmann/json.hpp>

#include <fi_rotation/fi_process_backups.h>

#include "cli/printable.h"

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

Json backupsOf(const SOutcome& outcome) {
    Json rows = Json::array();
    for (const SBackup& backup : outcome.backups) {
        rows.push_back({
            {"file", asUtf8(backup.file)},
            {"time_stamp",
             backup.timeStamp.empty() ? Json(nullptr) : Json(asUtf8(backup.timeStamp))},
            {"flag_word", backup.flagWord},
            {"excluded", (backup.flagWord & FI_EXCLUDE_ROTATION) != 0},
            {"state", orNull(stateWord(backup))},
        });
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

Json messagesOf(const std::vector<std::string>& messages) {
    Json rows = Json::array();
    for (const std::string& message : messages) {
        rows.push_back(asUtf8(message));
    }
    return rows;
}

}  // namespace

std::string toJson(const SOutcome& outcome) {
    const Json document = {
        {"status", orNull(outcome.status)},
        {"selection", orNull(outcome.selection)},
        {"configurations", configurationsOf(outcome.selection)},
        {"backups", backupsOf(outcome)},
        {"exception", exceptionOf(outcome.exception)},
        {"messages", messagesOf(outcome.messages)},
    };
    return document.dump(2) + "\n";
}

}  // namespace fi_rotate
