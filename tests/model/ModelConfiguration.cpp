#include "tests/model/ModelConfiguration.h"

#include <cstddef>

namespace fi_model {
namespace {

std::string parser() {
    return "CFiResourceParser::parse : ";
}

std::string replaceAll(const std::string& text, const std::string& from, const std::string& to) {
    std::string result;
    std::size_t position = 0;
    while (position < text.size()) {
        if (text.compare(position, from.size(), from) == 0) {
            result += to;
            position += from.size();
        } else {
            result += text[position];
            ++position;
        }
    }
    return result;
}

bool isOneOf(char character, const std::string& characters) {
    return characters.find(character) != std::string::npos;
}

std::vector<std::string> nonEmptyFields(const std::string& text, const std::string& separators) {
    std::vector<std::string> fields;
    std::string field;
    for (const char character : text) {
        if (!isOneOf(character, separators)) {
            field += character;
        } else if (!field.empty()) {
            fields.push_back(field);
            field.clear();
        }
    }
    if (!field.empty()) {
        fields.push_back(field);
    }
    return fields;
}

// What the trace shows of the text: the separators at the start and the first configuration,
// because the text is cut where that one ends.
std::string upToEndOfFirstField(const std::string& text, const std::string& separators) {
    std::string result;
    bool inField = false;
    for (const char character : text) {
        const bool separates = isOneOf(character, separators);
        if (separates && inField) {
            break;
        }
        inField = inField || !separates;
        result += character;
    }
    return result;
}

struct SSplitTarget {
    std::string enclosure;
    std::string device;
    bool inherits = false;
};

SSplitTarget splitTarget(const std::string& text, const std::string& carriedEnclosure) {
    const std::size_t separator = text.find("##");
    if (separator == std::string::npos) {
        return {carriedEnclosure, text, true};
    }
    return {text.substr(0, separator), text.substr(separator + 2), false};
}

std::string rejection(const std::string& text, const std::string& reason) {
    return parser() + "resource configuration \"" + text + "\" has no " + reason + " specified.";
}

void noteTarget(const SSplitTarget& target, bool isFirst, SJournal& journal) {
    journal.noteIf(target.inherits && !isFirst, EOutcome::kEnclosureInherited);
    journal.noteIf(target.enclosure.empty() && !isFirst, EOutcome::kEnclosureEmptyOnLaterTarget);
    journal.noteIf(target.enclosure.empty() && target.inherits && !isFirst,
                   EOutcome::kEnclosureEmptyInherited);
    journal.noteIf(target.device.find("##") != std::string::npos, EOutcome::kDeviceWithSeparator);
}

// Appends the configuration; or, if it is malformed, traces why and returns false.
bool parseConfiguration(const std::string& text, Configurations& configurations, SJournal& journal) {
    const std::vector<std::string> fields = nonEmptyFields(text, ";");
    if (fields.empty()) {
        journal.failure(rejection(text, "targets"));
        journal.note(EOutcome::kConfigurationNoTargets);
        return false;
    }
    SConfiguration configuration;
    std::string carriedEnclosure;
    for (std::size_t index = 0; index < fields.size(); ++index) {
        const bool isFirst = index == 0;
        const SSplitTarget target = splitTarget(fields[index], carriedEnclosure);
        journal.progress(parser() + "[" + target.enclosure + "][" + target.device + "]");
        if (target.device.empty()) {
            journal.failure(rejection(fields[index], "device data"));
            journal.note(EOutcome::kConfigurationNoDevice);
            return false;
        }
        if (isFirst && target.enclosure.empty()) {
            journal.failure(rejection(fields[index], "enclosure data"));
            journal.note(EOutcome::kConfigurationNoEnclosure);
            return false;
        }
        noteTarget(target, isFirst, journal);
        if (isFirst) {
            configuration.enclosure = target.enclosure;
            configuration.device = target.device;
        } else {
            configuration.targets.push_back({target.enclosure, target.device, kAvailable});
        }
        carriedEnclosure = target.enclosure;
    }
    configurations.push_back(configuration);
    return true;
}

bool sameTarget(const STarget& left, const STarget& right) {
    return left.enclosure == right.enclosure && left.device == right.device;
}

// How often the targets of `left` occur among those of `right`.
std::size_t commonTargets(const SConfiguration& left, const SConfiguration& right) {
    std::size_t common = 0;
    for (const STarget& one : left.targets) {
        for (const STarget& other : right.targets) {
            common += sameTarget(one, other) ? 1U : 0U;
        }
    }
    return common;
}

void noteShape(const Configurations& configurations, SJournal& journal) {
    for (std::size_t later = 0; later < configurations.size(); ++later) {
        const SConfiguration& one = configurations[later];
        journal.noteIf(one.targets.empty(), EOutcome::kNoFurtherTargets);
        journal.noteIf(commonTargets(one, one) > one.targets.size(), EOutcome::kTargetListedTwice);
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            const SConfiguration& other = configurations[earlier];
            journal.noteIf(one.enclosure == other.enclosure && one.device == other.device,
                           EOutcome::kFirstTargetShared);
            journal.noteIf(commonTargets(one, other) > 0, EOutcome::kTargetSharedByConfigurations);
        }
    }
}

}  // namespace

std::string decodeReferences(const std::string& text) {
    std::string result = replaceAll(text, "&#39;", "'");
    result = replaceAll(result, "&quot;", "\"");
    result = replaceAll(result, "&gt;", ">");
    result = replaceAll(result, "&lt;", "<");
    return replaceAll(result, "&amp;", "&");
}

Configurations parseConfigurations(const std::string& text, SJournal& journal) {
    const std::string separators = "&\n\r";
    const std::string decoded = decodeReferences(text);
    journal.noteIf(decoded != text, EOutcome::kReferenceDecoded);

    Configurations configurations;
    const std::vector<std::string> fields = nonEmptyFields(decoded, separators);
    if (fields.empty()) {
        journal.failure(parser() + "Invalid resource specification [" + decoded + "]");
        journal.note(EOutcome::kConfigurationNone);
        return configurations;
    }
    journal.progress(parser() + "Resource specification [" + upToEndOfFirstField(decoded, separators) + "]");
    bool accepted = true;
    for (std::size_t index = 0; index < fields.size() && accepted; ++index) {
        accepted = parseConfiguration(fields[index], configurations, journal);
    }
    journal.noteIf(accepted, EOutcome::kConfigurationAccepted);
    journal.noteIf(!accepted && !configurations.empty(), EOutcome::kConfigurationPartlyKept);
    noteShape(configurations, journal);
    return configurations;
}

}  // namespace fi_model
