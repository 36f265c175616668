#include "cli/explain/call_reader.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/explain/backup_list.h"
#include "cli/explain/log_time.h"
#include "cli/explain/plausibility.h"
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

}  // namespace

bool beginsCall(std::string_view text) {
    return startsAs(ETraceText::kConfiguration, text) || startsAs(ETraceText::kNoConfiguration, text) ||
           text == formatOf(ETraceText::kInvalidParameter);
}

void CCallReader::read(const std::string& text, ELogText kind, const SLogPlace& place,
                       const std::vector<std::string_view>& words) {
    if (isMuchLater(place.time, call.last.time)) {
        endCall();
    }
    if (kind == ELogText::kProgress || kind == ELogText::kDamage) {
        goOn(kind, place);
        return;
    }
    const bool isNamed = kind == ELogText::kNamed;
    if (begins(text, isNamed)) {
        isInterrupted = call.first.line != 0;
        endCall();
    }
    const bool isInCall = call.first.line != 0;
    const bool isOfNone = kind == ELogText::kDoubtful && !account.isTreeBegun();
    if ((!isInCall && !isNamed) || isOfNone) {
        return;
    }
    isAltered = isAltered || kind == ELogText::kDoubtful;
    if (!isInCall) {
        call.first = place;
    }
    call.last = place;
    const std::size_t states = account.finalStates.size();
    const std::size_t loaded = account.account.backups.size();
    const std::size_t flagWords = account.flagWords.size();
    readText(text);
    stateLine = account.finalStates.size() > states ? place.line : stateLine;
    if (account.finalStates.size() > states || account.account.backups.size() > loaded) {
        prefixesOfBackups.note(words);
    }
    if (account.flagWords.size() > flagWords) {
        prefixesOfFlagWords.note(words);
    }
    if (account.isEnded() && !isEndedWhole.has_value()) {
        isEndedWhole = account.account.selection.has_value() && !isCut && account.gaps().empty();
    }
}

void CCallReader::goOn(ELogText kind, const SLogPlace& place) {
    hasProgressLevel = true;
    if (call.first.line == 0 || isOver()) {
        return;
    }
    call.last = place;
    if (kind == ELogText::kDamage) {
        call.outcome.messages.push_back(
            fmt::format("{}{}", startOf(ETraceText::kEntering), kDamageOperation));
    }
}

void CPrefixWords::note(const std::vector<std::string_view>& words) {
    if (!first.has_value()) {
        first.emplace(words.begin(), words.end());
    }
    areSame = areSame && std::equal(words.begin(), words.end(), first->begin(), first->end());
}

// Whether `text` is the first line of a call: because it can be no other, or because the call before it is
// over.
bool CCallReader::begins(const std::string& text, bool isNamed) const {
    // When other lines were lost, these can follow the end of a call and belong to it.
    const bool isOfAnyPass =
        startsAs(ETraceText::kParsed, text) || text == formatOf(ETraceText::kResourceSet);
    const bool isEnded = account.isEnded() || isRefused;
    return beginsCall(text) || (isEnded && isNamed && (!isOfAnyPass || isEndedWhole.value_or(false)));
}

bool CCallReader::isOver() const {
    return account.isEnded() || isRefused || isFirstBackup;
}

void CCallReader::readText(const std::string& text) {
    std::vector<std::string>& messages = call.outcome.messages;
    if (startsAs(ETraceText::kMalformedDocument, text) && !messages.empty() &&
        entersDamage(messages.back())) {
        // It says more.
        messages.pop_back();
    }
    if (isCertainFailure(text)) {
        messages.push_back(text);
    }
    const bool isOfFailureLevel = isCertainFailure(text) || startsAs(ETraceText::kFlagWord, text) ||
                                  startsAs(ETraceText::kMalformedIdentifier, text);
    hasProgressLevel = hasProgressLevel || !isOfFailureLevel;
    isCut =
        isCut || (startsAs(ETraceText::kParsed, text) && !argumentsOf(ETraceText::kParsed, text).has_value());
    isRefused = isRefused || text == formatOf(ETraceText::kInvalidParameter);
    isFirstBackup = isFirstBackup || text == formatOf(ETraceText::kFirstBackup);
    const bool wasMalformed = account.malformed.has_value();
    order.read(text);
    prints.read(text, order.isDecided());
    account.read(text, call.last.line);
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
    order = {};
    prints = {};
    stateLine = 0;
    isRefused = false;
    isFirstBackup = false;
    prefixesOfBackups = {};
    prefixesOfFlagWords = {};
    isEndedWhole.reset();
    hasProgressLevel = false;
    isInterrupted = false;
    isAltered = false;
    isCut = false;
}

bool CCallReader::areBackupsKnown(const std::vector<std::string>& gaps) const {
    const bool areFlagWordsOver = !account.account.backups.empty() || account.isFirstSetPrinted();
    return isFirstBackup || (gaps.empty() && !account.flagWords.empty() && areFlagWordsOver);
}

bool CCallReader::seemsMixed(const std::vector<std::string>& gaps) const {
    return order.isBroken() || isExcludedYetRotated(account) || (!gaps.empty() && hasNameTwice(account)) ||
           (!hasProgressLevel && !prefixesOfFlagWords.areAllSame());
}

// It is not known which line belongs to which call, so no outcome is given for any of them.
void CCallReader::endMixed() {
    SOutcome& outcome = call.outcome;
    call.missing.emplace_back(
        "what tells calls apart: lines of several calls are mixed here, or the lines between two calls are "
        "missing. Give all logs, or the lines of one process or thread alone");
    for (const auto& [file, flagWord] : account.flagWords) {
        SBackupOutcome backup;
        backup.given = {file, flagWord};
        backup.isLoaded = true;
        outcome.backups.push_back(std::move(backup));
    }
    outcome.account.emplace();
}

void CCallReader::endDecision() {
    SOutcome& outcome = call.outcome;
    std::vector<std::string> gaps = account.gaps();
    call.isBeginningMissing = !account.hasBeginning();
    call.areBackupsKnown = areBackupsKnown(gaps);
    if (seemsMixed(gaps)) {
        endMixed();
        return;
    }
    outcome.selection = account.account.selection;
    outcome.status = isFirstBackup ? firstBackupStatus(outcome.messages) : statusOf(account);
    if (account.malformed.has_value()) {
        outcome.exception = SException{account.malformed, {}, "it is malformed", {}, false};
    }
    if (isAltered) {
        call.missing.emplace_back("tabs at the beginning of lines: something has replaced them in the log");
    }
    if (call.isBeginningMissing && !hasProgressLevel) {
        gaps = {
            "its messages of level 4, only those of level 3 were found: set the product's log to levels 3 "
            "and 4"};
    }
    std::move(gaps.begin(), gaps.end(), std::back_inserter(call.missing));
    if (isCut) {
        call.missing.emplace_back("the rest of names with line breaks");
    }
    outcome.backups = backupsOf(account, prefixesOfBackups.areAllSame(), call.missing);
    const bool isEnded = isFirstBackup || account.isEnded();
    const auto end = isEnded ? std::nullopt : missingEnd();
    if (end.has_value()) {
        call.missing.push_back(*end);
    }
    outcome.account = isCut || isAltered ? std::move(account.account) : explain(std::move(account));
    if (!isEnded) {
        // Who holds which target in the end is not known without all states.
        outcome.account->heldBefore.clear();
        outcome.account->heldAfter.clear();
    }
    if (prints.isFirstIncomplete() || !isPlausible(*outcome.account)) {
        withdrawReasons(*outcome.account);
        if (isEnded) {
            call.missing.emplace_back("lines that say what the backups hold");
        }
    }
    copyReasons(outcome);
}

// The last pass traces the states oldest first. So if the state of the newest backup is there, the missing
// ones stood before it. Without the beginning of the call its backups are not all known: nothing is said when
// each that is known has its state, or when nothing at the level of progress was found.
std::optional<std::string> CCallReader::missingEnd() const {
    const std::vector<std::size_t>& told = account.oldestFirst;
    const std::size_t all = account.account.backups.size();
    const bool areAllTold = !account.finalStates.empty() && told.size() == all;
    if (call.isBeginningMissing && (areAllTold || !hasProgressLevel)) {
        return std::nullopt;
    }
    if (account.isSelectionSkipped) {
        return "the line with the selection";
    }
    const char* const next =
        isInterrupted ? ", where another call begins: missing, or mixed with the lines of that call" : "";
    if (account.finalStates.empty()) {
        return fmt::format("its end, after line {}{}", call.last.line, next);
    }
    if (told.size() < all && account.finalStates.size() >= all) {
        // All states are there. What is missing before them is named elsewhere.
        return std::nullopt;
    }
    if (told.size() == all) {
        return fmt::format("lines between the selection and line {}", stateLine);
    }
    const bool isEndThere = !account.claims.empty() &&
                            std::find(told.begin(), told.end(), account.claims.front().first) != told.end();
    return fmt::format("the states of {} of {} backups, {} line {}{}", all - told.size(), all,
                       isEndThere ? "before" : "after", stateLine, isEndThere ? "" : next);
}

std::vector<SLoggedCall> CCallReader::finish() {
    endCall();
    return std::move(calls);
}

}  // namespace fi_rotate
