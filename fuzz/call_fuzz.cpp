// Bytes are the choices of whoever writes a configuration and some documents. Whatever they choose: a
// selection names one further target of each configuration, and none that a kept backup holds; a state is
// 0, 1 or 2; an excluded backup is not rotated; a failure and an exception leave the outputs alone; the same
// call has the same outcome and trace again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "driver/fi_process_backups.h"
#include "fiid/CFiXmlLibrary.h"
#include "fuzz/Document.h"
#include "fuzz/Trace.h"
#include "fuzz/require.h"
#include "resource/CFiResourceParser.h"
#include "resource/CFiUdid.h"
#include "resource/CFiUdidException.h"

namespace {

// Few names, so that the same ones meet often.
class CChoices {
public:
    CChoices(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}

    unsigned below(unsigned bound) { return next == end ? 0 : *next++ % bound; }
    std::string text(std::size_t longest) {
        const std::size_t length = below(static_cast<unsigned>(longest) + 1);
        std::string result;
        while (result.size() < length && next != end) {
            result += static_cast<char>(*next++);
        }
        return result;
    }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

struct SBackup {
    std::string file;
    std::int32_t flagWord = 0;
    // objid to altobjid; of several Nodes with one objid the last one counts.
    std::map<std::string, std::string> pairs;
};

struct SScenario {
    std::string configuration;
    std::vector<CDocument> documents;
    std::vector<SBackup> backups;
    // Backups before the first file that cannot be opened.
    std::size_t loaded = 0;
};

struct SOutcome {
    std::int32_t status = -1;
    bool hasThrown = false;
    std::string selection;
    std::vector<std::int32_t> flags;
    std::uint64_t trace = 0;
};

std::string enclosure(CChoices& choices) {
    return "enc" + std::to_string(choices.below(2));
}

std::string firstTarget(CChoices& choices) {
    return enclosure(choices) + "##lun" + std::to_string(choices.below(4));
}

std::string furtherTarget(CChoices& choices) {
    return enclosure(choices) + "##s" + std::to_string(choices.below(6));
}

std::string chooseConfiguration(CChoices& choices) {
    std::string configuration;
    for (unsigned lists = choices.below(5); lists > 0; --lists) {
        configuration += firstTarget(choices);
        for (unsigned targets = choices.below(6); targets > 0; --targets) {
            configuration += ';' + furtherTarget(choices);
        }
        configuration += '&';
    }
    return (configuration + choices.text(12)).c_str();
}

std::string identifier(CChoices& choices, const std::string& target) {
    switch (choices.below(16)) {
        case 0:
            return "UEID##v##m##" + target;
        case 1:
            return "x UDID##v##" + std::to_string(choices.below(2)) + "##" + target;
        case 2:
            return "UDID##v##m";
        case 3:
            return "none";
        default:
            return "UDID##v##m##" + target;
    }
}

std::string element(const std::string& name, const std::string& value) {
    return '<' + name + '>' + value + "</" + name + ">\n";
}

// Adds the pair as the library gathers it: a Node's objid must hold a device identifier.
std::string chooseNode(CChoices& choices, SBackup& backup) {
    const std::string objid = identifier(choices, firstTarget(choices));
    const std::string altobjid = identifier(choices, furtherTarget(choices));
    if (objid.find("UDID##") != std::string::npos) {
        backup.pairs[objid] = altobjid;
    }
    return element("objid", objid) + element("altobjid", altobjid);
}

std::string chooseDocument(CChoices& choices, SBackup& backup) {
    std::string open = "<Node>" + element("timeStamp", std::to_string(choices.below(8)));
    std::string close = "</Node>";
    for (unsigned nodes = choices.below(4); nodes > 0; --nodes) {
        open += "<Node>" + chooseNode(choices, backup);
        if (choices.below(2) == 0) {
            open += "</Node>";
        } else {
            close += "</Node>";
        }
    }
    // What is cut off behind the root has been read.
    return choices.below(8) == 0 ? open : open + close;
}

SScenario choose(CChoices& choices) {
    SScenario scenario;
    scenario.configuration = chooseConfiguration(choices);
    bool isReadable = true;
    for (unsigned backups = choices.below(8); backups > 0; --backups) {
        const unsigned kind = choices.below(16);
        SBackup backup;
        if (kind == 0) {
            backup.file = "/proc/self/fd/no such file";
            isReadable = false;
        } else if (kind == 1 && !scenario.backups.empty()) {
            backup = scenario.backups.front();
        } else {
            scenario.documents.emplace_back(chooseDocument(choices, backup));
            backup.file = scenario.documents.back().name();
        }
        backup.flagWord = static_cast<std::int32_t>(choices.below(16));
        scenario.backups.push_back(backup);
        scenario.loaded += isReadable ? 1 : 0;
    }
    return scenario;
}

SOutcome run(const SScenario& scenario) {
    std::vector<const char*> files;
    SOutcome outcome;
    for (const SBackup& backup : scenario.backups) {
        files.push_back(backup.file.c_str());
        outcome.flags.push_back(backup.flagWord);
    }
    const std::vector<std::int32_t> before = outcome.flags;
    char untouched = 'u';
    char* result = &untouched;
    takeTraceDigest();
    try {
        outcome.status =
            fi_process_backups(files.data(), scenario.configuration.c_str(), outcome.flags.data(),
                               static_cast<std::int32_t>(scenario.backups.size()), &result);
    } catch (const CFiUdidException& malformed) {
        require(malformed.code >= 1 && malformed.code <= 4, "the reason exists");
        outcome.hasThrown = true;
    }
    outcome.trace = takeTraceDigest();
    if (outcome.status == FI_STATUS_SUCCESS) {
        outcome.selection = result;
        std::free(result);
        return outcome;
    }
    require(outcome.hasThrown || outcome.status == FI_STATUS_FAILURE, "a status is 0 or 3");
    require(result == &untouched, "a failure leaves the result alone");
    require(outcome.flags == before, "a failure leaves the flags alone");
    return outcome;
}

bool isListedOnce(const SScenario& scenario, const std::string& file) {
    return std::count_if(scenario.backups.begin(), scenario.backups.end(),
                         [&](const SBackup& backup) { return backup.file == file; }) == 1;
}

void requireStates(const SScenario& scenario, const SOutcome& outcome) {
    for (std::size_t i = 0; i < scenario.backups.size(); ++i) {
        const SBackup& backup = scenario.backups[i];
        const std::int32_t after = outcome.flags[i];
        if (!isListedOnce(scenario, backup.file)) {
            require(after >= 0 && after < 16, "a flag word is a state or what it was");
        } else if (i >= scenario.loaded) {
            require(after == backup.flagWord, "a backup that was not loaded keeps its flag word");
        } else {
            require(after >= FI_BACKUP_KEPT && after <= FI_BACKUP_ROTATED, "a state is 0, 1 or 2");
            const bool isExcluded = (backup.flagWord & FI_EXCLUDE_ROTATION) != 0;
            require(after != FI_BACKUP_ROTATED || !isExcluded, "what is excluded is not rotated");
        }
    }
}

std::string nameOf(const std::string& enclosure, const std::string& device) {
    return enclosure + "##" + device;
}

// The target that the selection names for each configuration.
std::vector<std::string> requireTargets(const std::vector<SFiResourceList>& lists,
                                        const std::string& selection) {
    std::vector<std::string> targets;
    std::size_t position = 0;
    for (const SFiResourceList& list : lists) {
        const std::string start = "[" + nameOf(list.enclosure, list.device) + ";";
        require(selection.compare(position, start.size(), start) == 0,
                "the configurations are selected in order");
        position += start.size();
        const auto chosen =
            std::find_if(list.resources.begin(), list.resources.end(), [&](const SFiResource& resource) {
                const std::string text = nameOf(resource.enclosure, resource.device) + "]";
                return selection.compare(position, text.size(), text) == 0;
            });
        require(chosen != list.resources.end(), "a further target of the configuration is chosen");
        targets.push_back(nameOf(chosen->enclosure, chosen->device));
        position += targets.back().size() + 1;
    }
    require(position == selection.size(), "nothing else is selected");
    return targets;
}

std::string targetOf(const std::string& text) {
    CFiUdid udid;
    udid.parse(text);
    return nameOf(udid.enclosure, udid.device);
}

// A pair means the first configuration of its first target, and the first target of its name in there; where
// a configuration string repeats names, a kept backup says nothing of the others.
bool holdsNamesOnce(const std::vector<SFiResourceList>& lists) {
    std::vector<std::string> names;
    for (const SFiResourceList& list : lists) {
        const std::string first = nameOf(list.enclosure, list.device);
        names.push_back(first);
        for (const SFiResource& resource : list.resources) {
            names.push_back(first + ";" + nameOf(resource.enclosure, resource.device));
        }
    }
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) == names.end();
}

void requireKeptTargets(const SScenario& scenario, const SOutcome& outcome,
                        const std::vector<SFiResourceList>& lists, const std::vector<std::string>& targets) {
    for (std::size_t i = 0; i < scenario.loaded; ++i) {
        const SBackup& backup = scenario.backups[i];
        if (outcome.flags[i] != FI_BACKUP_KEPT || !isListedOnce(scenario, backup.file)) {
            continue;
        }
        for (const auto& [objid, altobjid] : backup.pairs) {
            for (std::size_t list = 0; list < lists.size(); ++list) {
                const bool isOfList = targetOf(objid) == nameOf(lists[list].enclosure, lists[list].device);
                require(!isOfList || targetOf(altobjid) != targets[list],
                        "what a kept backup holds is not selected");
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Initialising the XML library for every input would take most of the time.
    static const CFiXmlLibrary held;
    CChoices choices(data, size);
    const SScenario scenario = choose(choices);
    const SOutcome outcome = run(scenario);
    if (outcome.status == FI_STATUS_SUCCESS) {
        CFiResourceParser parser;
        parser.parse(scenario.configuration.c_str());
        // A device that ends like a group of the selection could be read in two ways.
        if (scenario.configuration.find(']') == std::string::npos) {
            const std::vector<std::string> targets = requireTargets(parser.configurations, outcome.selection);
            if (!scenario.backups.empty()) {
                requireStates(scenario, outcome);
            }
            if (holdsNamesOnce(parser.configurations)) {
                requireKeptTargets(scenario, outcome, parser.configurations, targets);
            }
        }
    }

    const SOutcome again = run(scenario);
    require(again.status == outcome.status && again.hasThrown == outcome.hasThrown &&
                again.selection == outcome.selection && again.flags == outcome.flags &&
                again.trace == outcome.trace,
            "the same call has the same outcome");
    return 0;
}
