#include "cli/explain/call_reader.h"

#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/explanation.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

std::optional<std::int32_t> statusOf(const CAccountReader& account) {
    if (account.account.selection.has_value()) {
        return FI_STATUS_SUCCESS;
    }
    return account.isWithoutSelection ? std::optional<std::int32_t>(FI_STATUS_FAILURE) : std::nullopt;
}

std::int32_t firstBackupStatus(const std::vector<std::string>& messages) {
    const bool isShort = !messages.empty() && messages.back() == formatOf(ETraceText::kNoResource);
    return isShort ? FI_STATUS_FAILURE : FI_STATUS_SUCCESS;
}

// The states that the library returns, by the name of the backup: of several backups with one name, that of
// the oldest.
using States = std::unordered_map<std::string, std::int32_t>;

States finalStates(const CAccountReader& account) {
    States states;
    for (const std::size_t place : account.oldestFirst) {
        const SAccountBackup& backup = account.account.backups[place];
        states.emplace(backup.file, backup.state);
    }
    return states;
}

// The backups whose flag words are known; the others are added to `missing`. When lines of the loading are
// missing, it is not known which backups were ignored, so all count as loaded.
std::vector<SBackupOutcome> backupsOf(const CAccountReader& account, std::vector<std::string>& missing) {
    const bool isLoadingKnown = missing.empty() && account.isLoadingOver();
    const States states = finalStates(account);
    std::unordered_map<std::string, std::string> loaded;
    for (const SAccountBackup& backup : account.account.backups) {
        loaded[backup.file] = backup.timeStamp;
    }
    std::set<std::string> known;
    std::vector<SBackupOutcome> backups;
    for (const auto& [file, flagWord] : account.flagWords) {
        known.insert(file);
        SBackupOutcome backup;
        backup.given = {file, flagWord};
        backup.isLoaded = !isLoadingKnown;
        if (const auto found = loaded.find(file); found != loaded.end()) {
            backup.isLoaded = true;
            backup.timeStamp = found->second;
        }
        if (const auto state = states.find(file); state != states.end()) {
            backup.state = state->second;
        }
        backups.push_back(std::move(backup));
    }
    for (const SAccountBackup& backup : account.account.backups) {
        if (known.insert(backup.file).second) {
            missing.push_back(fmt::format("the flag word of \"{}\"", backup.file));
        }
    }
    return backups;
}

}  // namespace

bool beginsCall(std::string_view text) {
    return startsAs(ETraceText::kConfiguration, text) || startsAs(ETraceText::kNoConfiguration, text) ||
           text == formatOf(ETraceText::kInvalidParameter);
}

void CCallReader::read(const std::string& text, bool isNamed, const SLogPlace& place) {
    if (begins(text, isNamed)) {
        endCall();
    }
    const bool isInCall = call.first.line != 0;
    if (!isInCall && !isNamed) {
        return;
    }
    if (!isInCall) {
        call.first = place;
    }
    call.last = place;
    readText(text);
}

// Whether `text` is the first line of a call: because it can be no other, or because the call before it is
// over.
bool CCallReader::begins(const std::string& text, bool isNamed) const {
    // When other lines were lost, these can follow the end of a call and belong to it.
    const bool isOfAnyPass =
        startsAs(ETraceText::kParsed, text) || text == formatOf(ETraceText::kResourceSet);
    const bool isOver = account.isEnded() || isRefused;
    return beginsCall(text) || (isOver && isNamed && !isOfAnyPass);
}

void CCallReader::readText(const std::string& text) {
    if (isFailure(text)) {
        call.outcome.messages.push_back(text);
    }
    isCut =
        isCut || (startsAs(ETraceText::kParsed, text) && !argumentsOf(ETraceText::kParsed, text).has_value());
    isRefused = isRefused || text == formatOf(ETraceText::kInvalidParameter);
    isFirstBackup = isFirstBackup || text == formatOf(ETraceText::kFirstBackup);
    const bool wasMalformed = account.malformed.has_value();
    account.read(text);
    if (account.malformed.has_value() && !wasMalformed) {
        call.outcome.messages.push_back(text);
    }
}

void CCallReader::endCall() {
    if (call.first.line == 0) {
        return;
    }
    if (isRefused) {
        call.outcome.status = FI_STATUS_FAILURE;
    } else {
        endDecision();
    }
    calls.push_back(std::move(call));

    call = {};
    account = {};
    isRefused = false;
    isFirstBackup = false;
    isCut = false;
}

void CCallReader::endDecision() {
    SOutcome& outcome = call.outcome;
    outcome.selection = account.account.selection;
    outcome.status = isFirstBackup ? firstBackupStatus(outcome.messages) : statusOf(account);
    if (account.malformed.has_value()) {
        outcome.exception = SException{account.malformed, {}, "it is malformed", {}, false};
    }
    call.missing = account.gaps();
    if (isCut) {
        call.missing.emplace_back("the rest of names with line breaks");
    }
    outcome.backups = backupsOf(account, call.missing);
    if (!isFirstBackup && !account.isEnded()) {
        call.missing.push_back(fmt::format("its end, after line {}", call.last.line));
    }
    outcome.account = isCut ? std::move(account.account) : explain(std::move(account));
    copyReasons(outcome);
}

std::vector<SLoggedCall> CCallReader::finish() {
    endCall();
    return std::move(calls);
}

}  // namespace fi_rotate
