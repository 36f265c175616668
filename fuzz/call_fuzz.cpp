// The input has parts, separated by lines "%%": the choices of the generator of calls, a text that is added
// to the configuration, and documents that replace the first ones. For every input: the answer is the
// model's, unless a document was replaced; a selection names one further target of each configuration, and
// none that a kept backup holds; a state is 0, 1 or 2; an excluded backup is not rotated; a failure and an
// exception leave the outputs alone; the same call has the same answer again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "driver/fi_process_backups.h"
#include "fiid/CFiXmlLibrary.h"
#include "fuzz/parts.h"
#include "fuzz/require.h"
#include "tests/model/Comparison.h"
#include "tests/model/Generator.h"
#include "tests/model/LibraryHost.h"
#include "tests/model/Model.h"
#include "tests/model/ModelIdentifier.h"
#include "tests/model/ModelResources.h"
#include "tests/model/Shrink.h"

// These exist in programs with a leak checker. Blocks that are allocated between them are not reported.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace {

using fi_model::Configurations;
using fi_model::SAnswer;
using fi_model::SBackup;
using fi_model::SCall;
using fi_model::SConfiguration;
using fi_model::SJournal;
using fi_model::SPrediction;
using fi_model::STarget;

constexpr std::size_t kMostParts = 5;

// Each choice takes the bytes that it needs. When there are no more bytes, the choices are random, with a
// fixed seed.
class CChoices {
public:
    explicit CChoices(std::string chosen) : bytes(std::move(chosen)) {}

    std::size_t operator()(std::size_t limit) {
        std::size_t number = 0;
        for (std::size_t range = 1; range < limit; range *= 256) {
            number = number * 256 + next();
        }
        return number % limit;
    }

private:
    std::size_t next() {
        return position < bytes.size() ? static_cast<unsigned char>(bytes[position++]) : chance() % 256;
    }

    std::string bytes;
    std::size_t position = 0;
    std::minstd_rand chance;
};

struct SScenario {
    SCall call;
    // Names of the documents that consist of bytes from the input.
    std::set<std::string> raw;
    // The model's prediction, which does not know those documents.
    SPrediction expected;
};

// When a document has several top-level Nodes, all but the last stay allocated, and a leak checker would
// report them.
bool leavesRoots(const SPrediction& prediction) {
    return prediction.tally[fi_model::EOutcome::kSeveralTopLevelNodes] > 0;
}

SScenario choose(const std::string& input) {
    const std::vector<std::string> parts = partsOf(input, kMostParts);
    fi_model::CRandom random{CChoices(parts[0])};
    SScenario scenario;
    SCall& call = scenario.call;
    do {
        call = makeCall(random);
        if (parts.size() > 1 && call.configuration.has_value()) {
            // The library reads a configuration up to its first NUL byte.
            call.configuration = (*call.configuration + parts[1]).c_str();
        }
        scenario.expected = predict(call);
    } while (leavesRoots(scenario.expected));
    for (std::size_t i = 2; i < parts.size() && i - 2 < call.entries.size(); ++i) {
        const std::string& name = call.entries[i - 2].name;
        if (call.files.count(name) == 1 && !call.files[name].isDirectory) {
            call.files[name].tokens = {{fi_model::SToken::EKind::kText, parts[i], ""}};
            scenario.raw.insert(name);
        }
    }
    return scenario;
}

class CWithoutLeakCheck {
public:
    CWithoutLeakCheck() {
        if (__lsan_disable != nullptr) {
            __lsan_disable();
        }
    }
    ~CWithoutLeakCheck() {
        if (__lsan_enable != nullptr) {
            __lsan_enable();
        }
    }
    CWithoutLeakCheck(const CWithoutLeakCheck&) = delete;
    CWithoutLeakCheck& operator=(const CWithoutLeakCheck&) = delete;
};

SAnswer run(fi_model::CLibraryHost& host, const SScenario& scenario) {
    if (scenario.raw.empty()) {
        return host.run(scenario.call);
    }
    // A document of bytes from the input may have several top-level Nodes.
    const CWithoutLeakCheck unwatched;
    return host.run(scenario.call);
}

std::vector<std::int32_t> flagsOf(const SCall& call) {
    std::vector<std::int32_t> flags;
    for (const fi_model::SEntry& entry : call.entries) {
        flags.push_back(entry.flag);
    }
    return flags;
}

void requireEnd(const SCall& call, const SAnswer& answer) {
    if (answer.malformed.has_value()) {
        require(answer.malformed->code >= 1 && answer.malformed->code <= 4, "the reason exists");
    } else {
        require(answer.status == FI_STATUS_SUCCESS || answer.status == FI_STATUS_FAILURE,
                "a status is 0 or 3");
    }
    const bool isSelected = !answer.malformed.has_value() && answer.status == FI_STATUS_SUCCESS;
    require(answer.selection.has_value() == isSelected, "there is a selection when the status says so");
    require(isSelected || answer.flags == flagsOf(call), "a failure leaves the flags alone");
}

// The names that are listed, as many as the size says.
std::vector<std::string> namesOf(const SCall& call) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < call.listSize; ++i) {
        names.push_back(call.entries[static_cast<std::size_t>(i)].name);
    }
    return names;
}

bool isListedOnce(const SCall& call, const std::string& name) {
    const std::vector<std::string> names = namesOf(call);
    return std::count(names.begin(), names.end(), name) == 1;
}

void requireStates(const SCall& call, const SAnswer& answer) {
    bool isReached = true;
    for (std::size_t i = 0; i < call.entries.size(); ++i) {
        const fi_model::SEntry& entry = call.entries[i];
        const std::int32_t after = answer.flags[i];
        const bool isListed = call.listSize > 0 && i < static_cast<std::size_t>(call.listSize);
        isReached = isReached && isListed && call.files.count(entry.name) == 1;
        require(after == entry.flag || (after >= FI_BACKUP_KEPT && after <= FI_BACKUP_ROTATED),
                "a flag word is a state or what it was");
        if (isListed && !isListedOnce(call, entry.name)) {
            continue;
        }
        require(isReached || after == entry.flag, "a backup that was not loaded keeps its flag word");
        const bool isExcluded = (entry.flag & FI_EXCLUDE_ROTATION) != 0;
        require(after != FI_BACKUP_ROTATED || after == entry.flag || !isExcluded,
                "what is excluded is not rotated");
    }
}

std::string nameOf(const std::string& enclosure, const std::string& device) {
    return enclosure + "##" + device;
}

// The target that the selection names for each configuration.
std::vector<std::string> requireTargets(const Configurations& configurations, const std::string& selection) {
    std::vector<std::string> targets;
    std::size_t position = 0;
    for (const SConfiguration& configuration : configurations) {
        const std::string start = "[" + nameOf(configuration.enclosure, configuration.device) + ";";
        require(selection.compare(position, start.size(), start) == 0,
                "the configurations are selected in order");
        position += start.size();
        const auto chosen = std::find_if(
            configuration.targets.begin(), configuration.targets.end(), [&](const STarget& target) {
                const std::string text = nameOf(target.enclosure, target.device) + "]";
                return selection.compare(position, text.size(), text) == 0;
            });
        require(chosen != configuration.targets.end(), "a further target of the configuration is chosen");
        targets.push_back(nameOf(chosen->enclosure, chosen->device));
        position += targets.back().size() + 1;
    }
    require(position == selection.size(), "nothing else is selected");
    return targets;
}

std::string targetOf(const std::string& text) {
    SJournal ignored;
    const fi_model::SIdentifier identifier = parseIdentifier(text, ignored);
    return nameOf(identifier.enclosure, identifier.device);
}

// Whether no name is repeated. Where names are, a pair means the first configuration and the first target of
// a name, and a kept backup does not hold the others.
bool holdsNamesOnce(const Configurations& configurations) {
    std::vector<std::string> names;
    for (const SConfiguration& configuration : configurations) {
        const std::string first = nameOf(configuration.enclosure, configuration.device);
        names.push_back(first);
        for (const STarget& target : configuration.targets) {
            names.push_back(first + ";" + nameOf(target.enclosure, target.device));
        }
    }
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) == names.end();
}

void requireKeptTargets(const SScenario& scenario, const SAnswer& answer,
                        const Configurations& configurations, const std::vector<std::string>& targets) {
    SJournal ignored;
    const std::vector<std::string> names = namesOf(scenario.call);
    for (const SBackup& backup : loadBackups(names, scenario.call.files, ignored)) {
        const auto place = std::find(names.begin(), names.end(), backup.name) - names.begin();
        if (answer.flags[static_cast<std::size_t>(place)] != FI_BACKUP_KEPT ||
            !isListedOnce(scenario.call, backup.name) || scenario.raw.count(backup.name) == 1) {
            continue;
        }
        std::map<std::string, std::string> pairs;
        collectPairs(backup.root, pairs, ignored);
        for (const auto& [objid, altobjid] : pairs) {
            for (std::size_t i = 0; i < configurations.size(); ++i) {
                const bool isOfList =
                    targetOf(objid) == nameOf(configurations[i].enclosure, configurations[i].device);
                require(!isOfList || targetOf(altobjid) != targets[i],
                        "what a kept backup holds is not selected");
            }
        }
    }
}

void requireSelection(const SScenario& scenario, const SAnswer& answer) {
    requireStates(scenario.call, answer);
    // With a ']' in a name, the selection cannot be split into configurations for certain.
    if (scenario.call.configuration->find(']') != std::string::npos) {
        return;
    }
    SJournal ignored;
    const Configurations configurations = parseConfigurations(*scenario.call.configuration, ignored);
    const std::vector<std::string> targets = requireTargets(configurations, *answer.selection);
    if (holdsNamesOnce(configurations)) {
        requireKeptTargets(scenario, answer, configurations, targets);
    }
}

void requireAgreement(fi_model::CLibraryHost& host, const SScenario& scenario, const SAnswer& answer) {
    if (firstDifference(scenario.expected.answer, answer).empty()) {
        return;
    }
    // Where time stamps are equal, the library may take another order of these backups than the prediction.
    const SCall& call = scenario.call;
    const bool agrees = compare(call, [&](const SCall&) { return answer; }).difference.empty();
    if (!agrees) {
        const auto library = [&](const SCall& smaller) { return host.run(smaller); };
        std::fprintf(stderr, "%s\n", explainDifference(call, library).c_str());
    }
    require(agrees, "the answer is the model's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Initialising the XML library for every input would take most of the time.
    static const CFiXmlLibrary held;
    static fi_model::CLibraryHost host;
    const SScenario scenario = choose(std::string(reinterpret_cast<const char*>(data), size));
    const SAnswer answer = run(host, scenario);
    requireEnd(scenario.call, answer);
    if (answer.selection.has_value()) {
        requireSelection(scenario, answer);
    }
    if (scenario.raw.empty()) {
        requireAgreement(host, scenario, answer);
    }
    require(firstDifference(answer, run(host, scenario)).empty(), "the same call has the same answer");
    return 0;
}
