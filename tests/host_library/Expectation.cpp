#include "tests/host_library/Expectation.h"

#include <algorithm>
#include <set>

#include <fi_rotation/host.h>

#include "tests/model/Comparison.h"
#include "tests/model/Model.h"
#include "tests/model/ModelReader.h"

namespace fi_test {
namespace {

using fi_model::EOutcome;
using fi_model::SCall;
using fi_model::SEvent;

std::size_t sizeOfList(const SCall& call) {
    return static_cast<std::size_t>(call.listSize);
}

// What a reader finds in a document.
struct SReading {
    bool isWellFormed = true;
    // Top-level Nodes, and those of them that have an end: where a document is damaged, the last one may lack
    // it.
    std::size_t topLevelNodes = 0;
    std::size_t endedTopLevelNodes = 0;
};

SReading readingOf(const fi_model::SDocument& document) {
    SReading reading;
    std::size_t depth = 0;
    for (const SEvent& event : fi_model::readEvents(document)) {
        const bool isNode = event.text == "Node";
        if (event.kind == SEvent::EKind::kFatalError) {
            reading.isWellFormed = false;
        } else if (event.kind == SEvent::EKind::kStart && isNode) {
            reading.topLevelNodes += depth == 0 ? 1 : 0;
            ++depth;
        } else if (event.kind == SEvent::EKind::kEnd && isNode) {
            --depth;
            reading.endedTopLevelNodes += depth == 0 ? 1 : 0;
        }
    }
    return reading;
}

bool hasNulByte(const fi_model::SDocument& document) {
    return fi_model::xmlText(document).find('\0') != std::string::npos;
}

class CProblems {
public:
    explicit CProblems(const SCall& made) : call(made) {}

    std::vector<SExpectedProblem> find() {
        inConfiguration();
        for (std::size_t i = 0; i < sizeOfList(call); ++i) {
            inBackup(i);
        }
        std::stable_sort(problems.begin(), problems.end());
        return problems;
    }

private:
    void addIf(bool isWrong, std::uint32_t kind, std::int32_t backup) {
        if (isWrong) {
            problems.push_back({kind, backup});
        }
    }

    void inConfiguration() {
        const fi_model::CTally tally = fi_model::predict(call).tally;
        const bool isRejected =
            tally[EOutcome::kConfigurationNone] + tally[EOutcome::kConfigurationNoTargets] +
                tally[EOutcome::kConfigurationNoDevice] + tally[EOutcome::kConfigurationNoEnclosure] !=
            0;
        addIf(isRejected, FI_ROTATION_CONFIGURATION_REJECTED, -1);
    }

    void inBackup(std::size_t place) {
        const auto backup = static_cast<std::int32_t>(place);
        const std::string& name = call.entries[place].name;
        addIf(!names.insert(name).second, FI_ROTATION_LISTED_TWICE, backup);
        const auto file = call.files.find(name);
        if (file == call.files.end()) {
            problems.push_back({FI_ROTATION_CANNOT_OPEN, backup});
            isOneMissing = true;
            return;
        }
        addIf(file->second.isDirectory, FI_ROTATION_NOT_A_FILE, backup);
        addIf(!file->second.isDirectory && hasNulByte(file->second), FI_ROTATION_NUL_BYTE, backup);
        if (!isOneMissing) {
            inDocument(file->second, backup);
        }
    }

    void inDocument(const fi_model::SDocument& document, std::int32_t backup) {
        const SReading reading = readingOf(document);
        addIf(!reading.isWellFormed, FI_ROTATION_NOT_WELL_FORMED, backup);
        addIf(reading.topLevelNodes == 0, FI_ROTATION_NO_NODE, backup);
        addIf(reading.endedTopLevelNodes > 1, FI_ROTATION_SEVERAL_ROOTS, backup);
    }

    const SCall& call;
    std::set<std::string> names;
    bool isOneMissing = false;
    std::vector<SExpectedProblem> problems;
};

// The names of the documents that are not ignored: the loader comes to them, and they have a Node.
std::set<std::string> namesNotIgnored(const SCall& call) {
    std::set<std::string> names;
    for (std::size_t i = 0; i < sizeOfList(call); ++i) {
        const auto file = call.files.find(call.entries[i].name);
        if (file == call.files.end()) {
            break;
        }
        if (readingOf(file->second).topLevelNodes != 0) {
            names.insert(file->first);
        }
    }
    return names;
}

SExpectedDecision decisionIn(const SCall& call, const fi_model::SAnswer& answer) {
    SExpectedDecision decision;
    decision.selection = answer.selection;
    const std::set<std::string> names = namesNotIgnored(call);
    for (std::size_t i = 0; i < sizeOfList(call); ++i) {
        const bool hasState = answer.selection.has_value() && names.count(call.entries[i].name) != 0;
        decision.states.push_back(hasState ? answer.flags[i] : -1);
    }
    return decision;
}

}  // namespace

bool fitsInterface(const SCall& call) {
    return call.listSize >= 0 && call.configuration.has_value() && call.hasResult &&
           (call.hasFlags || call.listSize == 0);
}

std::vector<SExpectedProblem> problemsOf(const SCall& call) {
    return CProblems(call).find();
}

std::vector<SExpectedDecision> decisionsOf(const SCall& call) {
    const fi_model::SPrediction first = fi_model::predict(call);
    std::vector<SExpectedDecision> decisions;
    if (first.answer.malformed.has_value()) {
        return decisions;
    }
    const auto ranks = fi_model::tieRanks(first.timeStamps);
    for (const auto& newestFirst : ranks) {
        for (const auto& oldestFirst : ranks) {
            decisions.push_back(decisionIn(call, fi_model::predict(call, {newestFirst, oldestFirst}).answer));
        }
    }
    return decisions;
}

fi_model::Configurations configurationsOf(const SCall& call) {
    fi_model::SJournal unread;
    return fi_model::parseConfigurations(*call.configuration, unread);
}

}  // namespace fi_test
