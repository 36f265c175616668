#include "host/account_reader.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/trace_text.h"

namespace fi_rotate {
namespace {

std::int32_t numberIn(std::string_view text) {
    std::int32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// What a line with one argument holds.
std::optional<std::string_view> nameIn(ETraceText kind, std::string_view text) {
    const auto arguments = argumentsOf(kind, text);
    return arguments.has_value() ? std::optional(arguments->front()) : std::nullopt;
}

}  // namespace

void CAccountReader::read(std::string_view text) {
    if (isInTree && readTree(text)) {
        return;
    }
    if (isInTree && nextOfTree != ETreeLine::kObjid) {
        contradict(text);
    }
    isInTree = false;
    // Each is asked in turn until one knows the line.
    static_cast<void>(readConfiguration(text) || readPrintedSet(text) || readFlagWord(text) ||
                      readFinalState(text) || readParsed(text) || readCheck(text) || readRotation(text) ||
                      readClaim(text) || readMalformed(text));
}

std::vector<std::string> CAccountReader::gaps() const {
    const bool isRotationOver = account.selection.has_value() || isWithoutSelection;
    const bool isRotationBegun = isRotationOver || !skipped.empty();
    const bool isClaimBegun = isRotationBegun || !claims.empty();
    const bool isCheckBegun = isClaimBegun || checked != 0;
    std::vector<std::string> gaps;
    if (!isBegun) {
        gaps.emplace_back("its beginning, with the configuration");
    }
    // What was parsed of a rejected configuration is never printed.
    if (isCheckBegun && (printedSets == 0 || (!isRejected && usedTargets != parsedTargets.size()))) {
        gaps.emplace_back("lines of the configuration");
    }
    if (isClaimBegun && checked != account.backups.size()) {
        gaps.push_back(
            fmt::format("checks, {} of {}", account.backups.size() - checked, account.backups.size()));
    }
    const std::size_t passed = account.backups.size() - failedCheck.size();
    if (isRotationBegun && claims.size() != passed) {
        gaps.push_back(fmt::format("claims, {} of {}", passed - claims.size(), passed));
    }
    if (isRotationOver && isEnded() && skipped.size() != expectedSkips()) {
        gaps.push_back(fmt::format("skipped backups, {} instead of {}", skipped.size(), expectedSkips()));
    }
    if (contradictions != 0) {
        gaps.push_back(fmt::format(
            "what comes before \"{}\"{}", firstContradiction,
            contradictions == 1 ? "" : fmt::format(" and before {} other lines", contradictions - 1)));
    }
    return gaps;
}

// Of a name that is listed several times the last flag word counts for all.
bool CAccountReader::isExcluded(std::size_t place) const {
    const auto listed = lastFlagWords.find(account.backups[place].file);
    return listed != lastFlagWords.end() && (listed->second & FI_EXCLUDE_ROTATION) != 0;
}

// How many backups the rotation passed over because they are excluded: all that it met before it stopped,
// which was behind the last one that it released.
std::size_t CAccountReader::expectedSkips() const {
    std::size_t expected = 0;
    if (!account.selection.has_value()) {
        for (const auto& [place, isGood] : claims) {
            expected += isGood && isExcluded(place) ? 1 : 0;
        }
        return expected;
    }
    std::size_t met = 0;
    for (const std::size_t place : oldestFirst) {
        met += account.backups[place].state == FI_BACKUP_KEPT && isExcluded(place) ? 1 : 0;
        expected = account.backups[place].state == FI_BACKUP_ROTATED ? met : expected;
    }
    return expected;
}

bool CAccountReader::isEnded() const {
    constexpr int kSetsWithSelection = 2;
    const bool isHandedOver = account.selection.has_value() && printedSets == kSetsWithSelection &&
                              oldestFirst.size() == account.backups.size();
    return isHandedOver || isWithoutSelection || malformed.has_value();
}

bool CAccountReader::readTree(std::string_view text) {
    if (const auto first = nodeTextIn(ETraceText::kNodeObjid, text)) {
        follow(ETreeLine::kObjid, ETreeLine::kAltobjid, text);
        objid = *first;
        return true;
    }
    if (const auto second = nodeTextIn(ETraceText::kNodeAltobjid, text)) {
        follow(ETreeLine::kAltobjid, ETreeLine::kType, text);
        if (objid.find("UDID##") != std::string::npos) {
            account.backups.back().pairs[objid] = *second;
        }
        return true;
    }
    if (nodeTextIn(ETraceText::kNodeType, text).has_value()) {
        follow(ETreeLine::kType, ETreeLine::kObjid, text);
        return true;
    }
    return false;
}

void CAccountReader::follow(ETreeLine line, ETreeLine next, std::string_view text) {
    if (nextOfTree != line) {
        contradict(text);
    }
    nextOfTree = next;
}

bool CAccountReader::readConfiguration(std::string_view text) {
    if (const auto target = argumentsOf(ETraceText::kTarget, text)) {
        parsedTargets.push_back({std::string(target->at(0)), std::string(target->at(1))});
        return true;
    }
    const bool isFirst =
        startsAs(ETraceText::kConfiguration, text) || startsAs(ETraceText::kNoConfiguration, text);
    isBegun = isBegun || isFirst;
    const bool rejects = rejectsConfiguration(text);
    isRejected = isRejected || rejects;
    return isFirst || rejects;
}

bool CAccountReader::readPrintedSet(std::string_view text) {
    if (text == formatOf(ETraceText::kResourceSet)) {
        ++printedSets;
        return true;
    }
    // The first printed set, before anything is claimed, says how many targets each configuration has; their
    // enclosures stand in the lines of the parser only.
    if (printedSets != 1) {
        return false;
    }
    const auto first = argumentsOf(ETraceText::kFirstTarget, text);
    if (first.has_value() && first->back() == kAvailable) {
        readPrintedTarget(true, fmt::format("{}:{}", first->at(0), first->at(1)));
        return true;
    }
    const auto further = argumentsOf(ETraceText::kFurtherTarget, text);
    if (further.has_value() && further->back() == kAvailable) {
        readPrintedTarget(false, std::string(further->front()));
        return true;
    }
    return false;
}

void CAccountReader::readPrintedTarget(bool isFirst, const std::string& printed) {
    if (usedTargets == parsedTargets.size()) {
        contradict(printed);
        return;
    }
    const SParsedTarget& target = parsedTargets[usedTargets++];
    const bool isSame = printed == (isFirst ? target.enclosure + ":" + target.device : target.device);
    if (!isSame || (!isFirst && account.configurations.empty())) {
        contradict(printed);
        return;
    }
    const std::string name = target.enclosure + "##" + target.device;
    if (isFirst) {
        account.configurations.push_back({name, {}});
    } else {
        account.configurations.back().targets.push_back(name);
    }
}

bool CAccountReader::readFlagWord(std::string_view text) {
    const auto listed = argumentsOf(ETraceText::kFlagWord, text);
    if (!listed.has_value()) {
        return false;
    }
    flagWords.emplace_back(listed->at(0), numberIn(listed->at(1)));
    lastFlagWords[flagWords.back().first] = flagWords.back().second;
    return true;
}

bool CAccountReader::readParsed(std::string_view text) {
    const auto file = nameIn(ETraceText::kParsed, text);
    if (!file.has_value() || account.selection.has_value()) {
        return false;
    }
    SAccountBackup backup;
    backup.file = *file;
    places[backup.file].push_back(account.backups.size());
    account.backups.push_back(backup);
    isInTree = true;
    nextOfTree = ETreeLine::kObjid;
    return true;
}

bool CAccountReader::readFinalState(std::string_view text) {
    const auto backup =
        account.selection.has_value() ? argumentsOf(ETraceText::kFinalState, text) : std::nullopt;
    if (!backup.has_value()) {
        return false;
    }
    if (const auto place = next("final", backup->at(0))) {
        account.backups[*place].state = numberIn(backup->at(1));
        oldestFirst.push_back(*place);
    }
    return true;
}

bool CAccountReader::readCheck(std::string_view text) {
    if (const auto file = nameIn(ETraceText::kCheckPassed, text)) {
        ++checked;
        next("check", *file);
        return true;
    }
    const auto file = nameIn(ETraceText::kCheckFailed, text);
    if (file.has_value()) {
        ++checked;
        if (const auto place = next("check", *file)) {
            account.backups[*place].state = FI_BACKUP_INVALID;
            failedCheck.push_back(*place);
        }
    }
    return file.has_value();
}

bool CAccountReader::readRotation(std::string_view text) {
    if (const auto file = nameIn(ETraceText::kSkipped, text)) {
        if (const auto place = next("rotation", *file)) {
            skipped.insert(*place);
        }
        return true;
    }
    if (const auto result = nameIn(ETraceText::kSelection, text)) {
        account.selection = *result;
        return true;
    }
    if (startsAs(ETraceText::kNotAvailable, text)) {
        isWithoutSelection = true;
        return true;
    }
    return false;
}

bool CAccountReader::readClaim(std::string_view text) {
    const auto claimed = argumentsOf(ETraceText::kClaimed, text);
    const bool isGood = claimed.has_value();
    const auto backup = isGood ? claimed : argumentsOf(ETraceText::kNotClaimed, text);
    if (!backup.has_value()) {
        return false;
    }
    if (const auto place = next("claim", backup->at(0))) {
        account.backups[*place].timeStamp = backup->at(1);
        claims.emplace_back(*place, isGood);
        if (!isGood) {
            account.backups[*place].state = FI_BACKUP_INVALID;
        }
    }
    return true;
}

std::optional<std::size_t> CAccountReader::next(std::string_view pass, std::string_view file) {
    const std::vector<std::size_t>& all = places[std::string(file)];
    std::size_t& done = taken[{std::string(pass), std::string(file)}];
    while (done < all.size()) {
        const std::size_t place = all[done++];
        // A pass asks only for those that the passes before left in play.
        const bool isOut =
            pass != "check" && pass != "final" && account.backups[place].state != FI_BACKUP_KEPT;
        if (!isOut) {
            return place;
        }
    }
    contradict(file);
    return std::nullopt;
}

bool CAccountReader::readMalformed(std::string_view text) {
    const auto identifier = nameIn(ETraceText::kMalformedIdentifier, text);
    if (!identifier.has_value() || !isNamed(*identifier)) {
        return false;
    }
    malformed = *identifier;
    return true;
}

bool CAccountReader::isNamed(std::string_view identifier) const {
    const auto& backups = account.backups;
    return std::any_of(backups.begin(), backups.end(), [identifier](const SAccountBackup& backup) {
        return std::any_of(backup.pairs.begin(), backup.pairs.end(), [identifier](const auto& pair) {
            return pair.first == identifier || pair.second == identifier;
        });
    });
}

void CAccountReader::contradict(std::string_view text) {
    if (contradictions == 0) {
        firstContradiction = text;
    }
    ++contradictions;
}

}  // namespace fi_rotate
