#include "tests/contract/RotationLines.h"

namespace fi_test {
namespace {

// The file and, behind it, the time stamp of a backup.
std::string dated(const SBackup& backup) {
    return backup.listed.file + " - T: " + valueOf(backup.document, "timeStamp");
}

}  // namespace

std::vector<SListed> listed(const std::vector<SBackup>& backups) {
    std::vector<SListed> all;
    for (const SBackup& backup : backups) {
        all.push_back(backup.listed);
    }
    return all;
}

Trace configurationLines(const std::string& shown,
                         const std::vector<std::pair<std::string, std::string>>& targets) {
    Trace trace = progress({"CFiResourceParser::parse : Resource specification [" + shown + "]"});
    for (const auto& [enclosure, device] : targets) {
        trace = trace + progress({"CFiResourceParser::parse : [" + enclosure + "][" + device + "]"});
    }
    return trace;
}

Trace setLines(const std::vector<std::string>& lines) {
    return progress({"CFiResourceManager::print : printing resource set"}) + progress(lines);
}

Trace openingLines(const std::vector<SBackup>& backups, const std::vector<std::string>& set) {
    Trace flags;
    std::vector<SNode> documents;
    Trace parsed;
    for (const auto& [listed, document] : backups) {
        flags = flags + flagLine(listed.file, listed.flagWord);
        documents.push_back(document);
        parsed = parsed + parsedLines(listed.file, document);
    }
    return flags + importLines(documents) + parsed + setLines(set);
}

Trace matchLine(const SBackup& backup) {
    return progress({"fi_process_backups : [RESOURCES MATCH] [" + backup.listed.file + "]"});
}

Trace invalidLine(const SBackup& backup) {
    return progress({"fi_process_backups : [INVALID RESOURCES] [" + backup.listed.file + "]"});
}

Trace reservedLine(const SBackup& backup) {
    return progress({"fi_process_backups : [RESERVE GOOD] " + dated(backup)});
}

Trace notReservedLine(const SBackup& backup) {
    return progress({"fi_process_backups : " + dated(backup)});
}

Trace skippedLine(const SBackup& backup) {
    return progress({"fi_process_backups : Skipped Rotation for fiid [" + backup.listed.file + "]"});
}

Trace notAvailableLine() {
    return failure("fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids");
}

Trace closingLines(const std::string& selection, const std::vector<std::string>& set,
                   const std::vector<SOutcome>& outcomes) {
    Trace trace =
        progress({"fi_process_backups : resource_config_string [" + selection + "] "}) + setLines(set);
    for (const auto& [backup, state] : outcomes) {
        trace = trace + outcomeLines(backup.listed.file, backup.document, state);
    }
    return trace;
}

}  // namespace fi_test
