#include "cli/account_reader.h"

#include <algorithm>
#include <charconv>

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
std::optional<std::string_view> between(std::string_view text, std::string_view start,
                                        std::string_view end) {
    if (!startsWith(text, start) || !endsWith(text, end) ||
        text.size() < start.size() + end.size()) {
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
    isInTree = false;
    // Each is asked in turn until one knows the line.
    static_cast<void>(readConfiguration(text) || readLoaded(text) || readCheck(text) ||
                      readRotation(text) || readClaim(text));
}

bool CAccountReader::readTree(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of('\t'), text.size()));
    if (const auto first = between(text, " [", "]")) {
        objid = *first;
        return true;
    }
    if (const auto second = between(text, " {", "}")) {
        if (objid.find("UDID##") != std::string::npos) {
            account.backups.back().pairs[objid] = *second;
        }
        return true;
    }
    return between(text, " <", ">").has_value();
}

bool CAccountReader::readConfiguration(std::string_view text) {
    if (const auto target = between(text, "CFiResourceParser::parse : [", "]")) {
        const std::size_t separator = target->find("][");
        if (separator != std::string_view::npos) {
            parsedTargets.push_back(std::string(target->substr(0, separator)) + "##" +
                                    std::string(target->substr(separator + 2)));
        }
        return true;
    }
    if (text == "CFiResourceManager::print : printing resource set") {
        ++printedSets;
        return true;
    }
    // The first printed set, before anything is claimed, says how many targets each configuration has; their
    // enclosures stand in the lines of the parser only.
    const bool isFirst = between(text, "[", "](Available)").has_value();
    const bool isFurther = between(text, "{", ",Available}").has_value();
    if (printedSets != 1 || !(isFirst || isFurther) || usedTargets == parsedTargets.size()) {
        return false;
    }
    const std::string& target = parsedTargets[usedTargets++];
    if (isFirst) {
        account.configurations.push_back({target, {}});
    } else if (!account.configurations.empty()) {
        account.configurations.back().targets.push_back(target);
    }
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
    account.backups.push_back(backup);
    isInTree = true;
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
        next("check", *file);
        return true;
    }
    const auto file = between(text, "fi_process_backups : [INVALID RESOURCES] [", "]");
    if (file.has_value()) {
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
            skipped.push_back(*place);
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
    const bool isGood = startsWith(text, kGood);
    if (!isGood && !startsWith(text, kBad)) {
        return false;
    }
    const std::string_view rest = text.substr(isGood ? kGood.size() : kBad.size());
    const std::size_t end = rest.rfind(" - T: ");
    if (end == std::string_view::npos) {
        return false;
    }
    if (const auto place = next("claim", rest.substr(0, end))) {
        claims.emplace_back(*place, isGood);
        if (!isGood) {
            account.backups[*place].state = FI_BACKUP_INVALID;
        }
    }
    return true;
}

std::optional<std::size_t> CAccountReader::next(std::string_view pass, std::string_view file) {
    std::size_t& from = taken[{std::string(pass), std::string(file)}];
    for (std::size_t place = from; place < account.backups.size(); ++place) {
        // A pass asks only for those that the passes before left in play.
        const bool isOut =
            pass != "check" && pass != "final" && account.backups[place].state != FI_BACKUP_KEPT;
        if (account.backups[place].file == file && !isOut) {
            from = place + 1;
            return place;
        }
    }
    return std::nullopt;
}

}  // namespace fi_rotate
