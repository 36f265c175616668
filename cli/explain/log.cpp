#include "cli/explain/log.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
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

// The states that the library hands back, by name: of several backups of one name that of the oldest.
using States = std::unordered_map<std::string, std::int32_t>;

States finalStates(const CAccountReader& account) {
    States states;
    for (const std::size_t place : account.oldestFirst) {
        const SAccountBackup& backup = account.account.backups[place];
        states.emplace(backup.file, backup.state);
    }
    return states;
}

// The backups whose flag words are known; the others are missing. Where loading was not seen to its end,
// nothing tells that one was left out.
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

std::size_t findName(std::string_view line) {
    std::size_t place = std::string_view::npos;
    for (const std::string_view name : kOperations) {
        place = std::min(place, line.find(name));
    }
    return place;
}

// What a prefix looks like: words and numbers look alike, whatever their length, and blanks count at the end
// only. So one shape stands for all times, processes and levels.
class CShape {
public:
    void extend(char character) {
        constexpr char kWord = 'a';
        const bool isWord = std::isalnum(static_cast<unsigned char>(character)) != 0;
        if (character == ' ') {
            ++blanks;
            return;
        }
        if (!isWord || blanks != 0 || body.empty() || body.back() != kWord) {
            body += isWord ? kWord : character;
        }
        blanks = 0;
    }

    [[nodiscard]] std::string text() const { return body + std::string(blanks, ' '); }

private:
    std::string body;
    std::size_t blanks = 0;
};

std::string shapeOf(std::string_view prefix) {
    CShape shape;
    std::for_each(prefix.begin(), prefix.end(), [&shape](char character) { shape.extend(character); });
    return shape.text();
}

}  // namespace

void CLogReader::read(std::string_view line) {
    ++lines;
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    const std::optional<std::string> text = texts.find(line);
    if (!text.has_value()) {
        return;
    }
    if (begins(*text)) {
        endCall();
    }
    if (call.firstLine == 0) {
        call.firstLine = lines;
    }
    call.lastLine = lines;
    readText(*text);
}

// Whether `text` is the first one of a call: because no call has it elsewhere, or because the one before is
// over.
bool CLogReader::begins(const std::string& text) const {
    const bool isFirst = startsAs(ETraceText::kConfiguration, text) ||
                         startsAs(ETraceText::kNoConfiguration, text) ||
                         text == formatOf(ETraceText::kInvalidParameter);
    // Lines of the last pass can be surplus when others were lost.
    const bool isOfAnyPass =
        startsAs(ETraceText::kParsed, text) || text == formatOf(ETraceText::kResourceSet);
    const bool isNamed = findName(text) == 0;
    const bool isOver = account.isEnded() || isRefused;
    return isFirst || (isOver && isNamed && !isOfAnyPass);
}

void CLogReader::readText(const std::string& text) {
    if (isFailure(text)) {
        call.outcome.messages.push_back(text);
    }
    isRefused = isRefused || text == formatOf(ETraceText::kInvalidParameter);
    isFirstBackup = isFirstBackup || text == formatOf(ETraceText::kFirstBackup);
    const bool wasMalformed = account.malformed.has_value();
    account.read(text);
    if (account.malformed.has_value() && !wasMalformed) {
        call.outcome.messages.push_back(text);
    }
}

void CLogReader::endCall() {
    if (call.firstLine == 0) {
        return;
    }
    call.number = calls.size() + 1;
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
}

void CLogReader::endDecision() {
    SOutcome& outcome = call.outcome;
    outcome.selection = account.account.selection;
    outcome.status = isFirstBackup ? firstBackupStatus(outcome.messages) : statusOf(account);
    if (account.malformed.has_value()) {
        outcome.exception = SException{account.malformed, {}, "it is malformed", {}, false};
    }
    call.missing = account.gaps();
    outcome.backups = backupsOf(account, call.missing);
    if (!isFirstBackup && !account.isEnded()) {
        call.missing.push_back(fmt::format("its end, after line {}", call.lastLine));
    }
    outcome.account = explain(std::move(account));
    giveReasons(outcome);
}

std::vector<SLoggedCall> CLogReader::finish() {
    endCall();
    return std::move(calls);
}

std::optional<std::string> CLogText::find(std::string_view line) {
    std::string_view text;
    if (const std::size_t name = findName(line); name != std::string_view::npos) {
        text = line.substr(name);
        prefixShapes.insert(shapeOf(line.substr(0, name)));
        longestPrefix = std::max(longestPrefix, name);
    } else if (const auto unnamed = findUnnamed(line)) {
        text = *unnamed;
    } else {
        return std::nullopt;
    }
    const std::string_view prefix = line.substr(0, line.size() - text.size());
    return isOwnPrefix(prefix) ? withLineBreaks(text) : std::string(text);
}

std::optional<std::string_view> CLogText::findUnnamed(std::string_view line) const {
    // A number in the prefix may have grown since.
    constexpr std::size_t kGrowth = 32;
    CShape shape;
    std::optional<std::string_view> found;
    for (std::size_t end = 0; end <= std::min(line.size(), longestPrefix + kGrowth); ++end) {
        const std::string_view text = line.substr(end);
        // The longest prefix counts: the trees' own blank must not be taken from one that ends in several.
        if (isUnnamed(text) && prefixShapes.count(shape.text()) != 0) {
            found = text;
        }
        if (end < line.size()) {
            shape.extend(line[end]);
        }
    }
    return found;
}

}  // namespace fi_rotate
