#include "tests/contract/Decision.h"

#include <algorithm>
#include <cstddef>

namespace fi_test {
namespace {

const std::string kDriver = "fi_process_backups : ";
const std::string kSelection = kDriver + "resource_config_string [";

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool isOfDecision(const std::string& text) {
    static const struct {
        std::string start, inside;
    } forms[] = {
        {"CFiResourceParser::parse : Invalid resource specification [", ""},
        {"CFiResourceParser::parse : resource configuration \"", ""},
        {"CFiFiidLoader::load: ERROR", ""},
        {"ERROR: ", ""},
        {kDriver + "Invalid/empty parameter", ""},
        {kDriver + "fiidListSize empty", ""},
        {kDriver + "no resource is available", ""},
        {kDriver + "[RESOURCES MATCH] [", ""},
        {kDriver + "[INVALID RESOURCES] [", ""},
        {kDriver, " - T: "},
        {kDriver + "Skipped Rotation for fiid [", ""},
        {kDriver + "Resources not availabe", ""},
        {kSelection, ""},
        {kDriver + "parsed [", "] state=["},
    };
    return std::any_of(std::begin(forms), std::end(forms), [&](const auto& form) {
        return startsWith(text, form.start) && text.find(form.inside) != std::string::npos;
    });
}

// A line for each backup: `start`, its file, `end`.
Trace named(const std::vector<SBackup>& backups, const std::string& start, const std::string& end) {
    Trace trace;
    for (const SBackup& backup : backups) {
        trace = trace + progress({kDriver + start + backup.file + end});
    }
    return trace;
}

// A line for each backup: `start`, its file and its time stamp.
Trace dated(const std::vector<SBackup>& backups, const std::string& start) {
    Trace trace;
    for (const SBackup& backup : backups) {
        trace = trace + named({backup}, start, " - T: " + backup.timeStamp);
    }
    return trace;
}

}  // namespace

Trace decisionIn(const Trace& trace) {
    Trace lines;
    bool isBehindSelection = false;
    for (const STraceLine& line : trace) {
        const bool isTarget = startsWith(line.text, "[") || startsWith(line.text, "{");
        if (isOfDecision(line.text) || (isBehindSelection && isTarget)) {
            lines.push_back(line);
        }
        isBehindSelection = isBehindSelection || startsWith(line.text, kSelection);
    }
    return lines;
}

SObserved decisionOf(SObserved observed) {
    observed.trace = decisionIn(observed.trace);
    return observed;
}

SObserved decided(const std::string& configuration, const std::vector<SBackup>& backups) {
    return decisionOf(call(configuration, backups));
}

Trace rejected(const std::string& text, const std::string& missing) {
    return failure("CFiResourceParser::parse : resource configuration \"" + text + "\" has no " + missing +
                   " specified.");
}

Trace missingFile() {
    return failure("CFiFiidLoader::load: ERROR: failed to load FIID file");
}

Trace matched(const std::vector<SBackup>& backups) {
    return named(backups, "[RESOURCES MATCH] [", "]");
}

Trace invalid(const std::vector<SBackup>& backups) {
    return named(backups, "[INVALID RESOURCES] [", "]");
}

Trace claimed(const std::vector<SBackup>& backups) {
    return dated(backups, "[RESERVE GOOD] ");
}

Trace notClaimed(const std::vector<SBackup>& backups) {
    return dated(backups, "");
}

Trace skipped(const std::vector<SBackup>& backups) {
    return named(backups, "Skipped Rotation for fiid [", "]");
}

SObserved selected(const std::string& selection, const Flags& flags, const Trace& lines,
                   const std::vector<std::string>& targets, const States& backups) {
    Trace trace = lines + progress({kSelection + selection + "] "}) + progress(targets);
    for (const auto& [backup, state] : backups) {
        trace = trace + named({backup}, "parsed [", "] state=[" + std::to_string(state) + "]");
    }
    return {0, std::nullopt, selection, flags, trace, ""};
}

SObserved notSelected(const Flags& flags, const Trace& lines) {
    return {3,
            std::nullopt,
            std::nullopt,
            flags,
            lines + failure(kDriver + "Resources not availabe, some/all are part of Skip rotation fiids"),
            ""};
}

SObserved thrown(const CFiUdidException& malformed, const Flags& flags, const Trace& lines) {
    return {
        std::nullopt, malformed, std::nullopt, flags, lines + failure("ERROR: " + malformed.identifier), ""};
}

}  // namespace fi_test
