#include "host/account_reader.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

namespace fi_rotate {
namespace {

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// What stands between `start` and `end`; nothing when the text is not of that form.
std::optional<std::string_view> between(std::string_view text, std::string_view start, std::string_view end) {
    if (!startsWith(text, start) || !endsWith(text, end) || text.size() < start.size() + end.size()) {
        return std::nullopt;
    }
    text.remove_prefix(start.size());
    text.remove_suffix(end.size());
    return text;
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
                      readLoaded(text) || readCheck(text) || readRotation(text) || readClaim(text) ||
                      readMalformed(text));
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
    std::string_view line = text;
    line.remove_prefix(std::min(line.find_first_not_of('\t'), line.size()));
    if (const auto first = between(line, " [", "]")) {
        follow(ETreeLine::kObjid, ETreeLine::kAltobjid, text);
        objid = *first;
        return true;
    }
    if (const auto second = between(line, " {", "}")) {
        follow(ETreeLine::kAltobjid, ETreeLine::kType, text);
        if (objid.find("UDID##") != std::string::npos) {
            account.backups.back().pairs[objid] = *second;
        }
        return true;
    }
    if (between(line, " <", ">").has_value()) {
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
    if (!startsWith(text, "CFiResourceParser::parse : ")) {
        return false;
    }
    isBegun = isBegun || startsWith(text, kParsedConfiguration) || startsWith(text, kNoConfiguration);
    isRejected = isRejected || endsWith(text, " specified.");
    if (const auto target = between(text, "CFiResourceParser::parse : [", "]")) {
        const std::size_t separator = target->find("][");
        if (separator != std::string_view::npos) {
            parsedTargets.push_back(
                {std::string(target->substr(0, separator)), std::string(target->substr(separator + 2))});
        }
    }
    return true;
}

bool CAccountReader::readPrintedSet(std::string_view text) {
    if (text == "CFiResourceManager::print : printing resource set") {
        ++printedSets;
        return true;
    }
    // The first printed set, before anything is claimed, says how many targets each configuration has; their
    // enclosures stand in the lines of the parser only.
    if (printedSets != 1) {
        return false;
    }
    if (const auto first = between(text, "[", "](Available)")) {
        readPrintedTarget(true, *first);
        return true;
    }
    if (const auto further = between(text, "{", ",Available}")) {
        readPrintedTarget(false, *further);
        return true;
    }
    return false;
}

void CAccountReader::readPrintedTarget(bool isFirst, std::string_view printed) {
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
    constexpr std::string_view kStart = "fi_process_backups :  Fiid [";
    constexpr std::string_view kBetween = "] exclude rotation flag [";
    const std::size_t end = text.rfind(kBetween);
    if (!startsWith(text, kStart) || end == std::string_view::npos) {
        return false;
    }
    const std::string_view number = text.substr(end + kBetween.size());
    std::int32_t flagWord = 0;
    std::from_chars(number.data(), number.data() + number.size(), flagWord);
    flagWords.emplace_back(text.substr(kStart.size(), end - kStart.size()), flagWord);
    lastFlagWords[flagWords.back().first] = flagWord;
    return true;
}

bool CAccountReader::readLoaded(std::string_view text) {
    const auto file = between(text, "fi_process_backups : parsed [", "]");
    if (!file.has_value()) {
        return false;
    }
    if (account.selection.has_value()) {
        readFinalState(*file);
        return true;
    }
    SAccountBackup backup;
    backup.file = *file;
    places[backup.file].push_back(account.backups.size());
    account.backups.push_back(backup);
    isInTree = true;
    nextOfTree = ETreeLine::kObjid;
    return true;
}

void CAccountReader::readFinalState(std::string_view text) {
    constexpr std::string_view kBetween = "] state=[";
    const std::size_t end = text.rfind(kBetween);
    if (end == std::string_view::npos) {
        return;
    }
    const auto place = next("final", text.substr(0, end));
    const std::string_view state = text.substr(end + kBetween.size());
    if (place.has_value()) {
        std::from_chars(state.data(), state.data() + state.size(), account.backups[*place].state);
        oldestFirst.push_back(*place);
    }
}

bool CAccountReader::readCheck(std::string_view text) {
    if (const auto file = between(text, "fi_process_backups : [RESOURCES MATCH] [", "]")) {
        ++checked;
        next("check", *file);
        return true;
    }
    const auto file = between(text, "fi_process_backups : [INVALID RESOURCES] [", "]");
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
    if (const auto file = between(text, "fi_process_backups : Skipped Rotation for fiid [", "]")) {
        if (const auto place = next("rotation", *file)) {
            skipped.insert(*place);
        }
        return true;
    }
    if (const auto result = between(text, "fi_process_backups : resource_config_string [", "] ")) {
        account.selection = *result;
        return true;
    }
    if (startsWith(text, "fi_process_backups : Resources not availabe")) {
        isWithoutSelection = true;
        return true;
    }
    return false;
}

bool CAccountReader::readClaim(std::string_view text) {
    constexpr std::string_view kGood = "fi_process_backups : [RESERVE GOOD] ";
    constexpr std::string_view kBad = "fi_process_backups : ";
    constexpr std::string_view kBeforeTimeStamp = " - T: ";
    const bool isGood = startsWith(text, kGood);
    if (!isGood && !startsWith(text, kBad)) {
        return false;
    }
    const std::string_view rest = text.substr(isGood ? kGood.size() : kBad.size());
    const std::size_t end = rest.rfind(kBeforeTimeStamp);
    if (end == std::string_view::npos) {
        return false;
    }
    if (const auto place = next("claim", rest.substr(0, end))) {
        account.backups[*place].timeStamp = rest.substr(end + kBeforeTimeStamp.size());
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
    constexpr std::string_view kError = "ERROR: ";
    if (!startsWith(text, kError) || !isNamed(text.substr(kError.size()))) {
        return false;
    }
    malformed = text.substr(kError.size());
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
