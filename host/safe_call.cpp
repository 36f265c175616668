#include "host/safe_call.h"

#include <algorithm>
#include <array>
#include <map>
#include <new>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/configuration_text.h"
#include "host/document_file.h"
#include "host/process_lock.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

// Why the library rejects a configuration, with what the line of its trace holds.
struct SRejection {
    ETraceText kind;
    std::string_view words;
};

constexpr std::array kRejections{
    SRejection{ETraceText::kNoConfiguration, "there is no configuration in \"{}\""},
    SRejection{ETraceText::kNoTargets, "the configuration \"{}\" names no target"},
    SRejection{ETraceText::kNoDevice, "the configuration \"{}\" has a target without a device"},
    SRejection{ETraceText::kNoEnclosure, "the configuration \"{}\" has a target without an enclosure"},
};

class CSafeCall {
public:
    CSafeCall(const SCall& inputs, const SWishes& wished, const SSafety& asked)
        : call(inputs), wishes(wished), safety(asked) {}

    SDecision decide() {
        inspectConfiguration();
        inspectDocuments();
        run();
        findProblems();
        if (isRefused()) {
            refuse();
        } else {
            fillInConfigurations();
            judge();
        }
        return std::move(decision);
    }

private:
    void add(std::uint32_t kind, std::optional<std::size_t> backup, const std::string& words) {
        const std::string text =
            backup.has_value() ? fmt::format("{}: {}", call.backups[*backup].file, words) : words;
        decision.problems.push_back({kind, backup, text});
    }

    [[nodiscard]] bool isPermitted(std::uint32_t kind) const { return (safety.permitted & kind) != 0; }

    [[nodiscard]] bool isRefused() const {
        return std::any_of(decision.problems.begin(), decision.problems.end(),
                           [this](const SProblem& problem) { return !isPermitted(problem.kind); });
    }

    void inspectConfiguration() {
        const auto enclosure = findLongEnclosure(call.configuration);
        if (!enclosure.has_value()) {
            return;
        }
        constexpr std::size_t kShown = 32;
        add(FI_ROTATION_CONFIGURATION_REJECTED, std::nullopt,
            fmt::format(
                "an enclosure of the configuration has {} bytes and may have {}: it begins with \"{}\"",
                enclosure->length, kLongestEnclosure,
                std::string_view(call.configuration).substr(enclosure->offset, kShown)));
        isConfigurationUsable = isPermitted(FI_ROTATION_CONFIGURATION_REJECTED);
    }

    void inspectDocuments() {
        for (std::size_t i = 0; i < call.backups.size(); ++i) {
            // A document of any size that is permitted must have no other problem.
            const SDocumentFile file =
                inspectDocument(call.backups[i].file, safety.mostBytes, isPermitted(FI_ROTATION_TOO_LARGE));
            for (const SFileProblem& problem : file.problems) {
                add(problem.kind, i, problem.fault);
            }
            fileStates.push_back(file.state);
        }
        findListedTwice();
    }

    void findListedTwice() {
        std::map<std::string_view, std::size_t> firstOfName;
        std::map<std::string_view, std::size_t> firstOfFile;
        for (std::size_t i = 0; i < call.backups.size(); ++i) {
            std::size_t first = firstOfName.emplace(call.backups[i].file, i).first->second;
            if (first == i && fileStates[i].has_value()) {
                first = firstOfFile.emplace(fileStates[i]->identity, i).first->second;
            }
            if (first != i) {
                add(FI_ROTATION_LISTED_TWICE, i,
                    fmt::format("is listed before, as {}", call.backups[first].file));
            }
        }
    }

    // What cannot be used is left out, so that the rest is looked at nevertheless; nothing is decided then.
    SCall usableCall() {
        std::set<std::size_t> unusable;
        for (const SProblem& problem : decision.problems) {
            if (problem.backup.has_value() && !isPermitted(problem.kind)) {
                unusable.insert(*problem.backup);
            }
        }
        SCall usable;
        usable.configuration = isConfigurationUsable ? call.configuration : "";
        for (std::size_t i = 0; i < call.backups.size(); ++i) {
            if (unusable.count(i) == 0) {
                usable.backups.push_back(call.backups[i]);
                indexInCall.push_back(i);
            }
        }
        return usable;
    }

    void run() {
        const SCall usable = usableCall();
        SWishes wishesNow = wishes;
        wishesNow.configurationsOfFirstBackup = true;
        wishesNow.account = wishes.account || safety.leastKept != 0;
        const CProcessLock lock;
        decision.outcome = runCall(usable, wishesNow);
        const bool isAccountNeeded =
            !decision.outcome.exception.has_value() && !hasConfigurationsInSelection();
        if (isAccountNeeded && !wishesNow.account) {
            wishesNow.account = true;
            wishesNow.trace = nullptr;
            decision.outcome = runCall(usable, wishesNow);
        }
        findMalformedIdentifiers(usable);
    }

    // The first one ends a call, so the documents after it are tried in calls of their own.
    void findMalformedIdentifiers(SCall rest) {
        std::optional<SException> exception = decision.outcome.exception;
        std::size_t done = 0;
        while (exception.has_value()) {
            requireIdentifier(*exception);
            add(FI_ROTATION_MALFORMED_IDENTIFIER, indexInCall[done + exception->backup.value()],
                fmt::format("holds the malformed identifier \"{}\": {}", *exception->identifier,
                            exception->reason));
            const std::size_t tried = *exception->backup + 1;
            done += tried;
            rest.backups.erase(rest.backups.begin(),
                               rest.backups.begin() + static_cast<std::ptrdiff_t>(tried));
            exception = rest.backups.empty() ? std::nullopt : runCall(rest, {}).exception;
        }
    }

    static void requireIdentifier(const SException& exception) {
        if (exception.isOutOfMemory) {
            throw std::bad_alloc();
        }
        if (!exception.identifier.has_value()) {
            throw std::runtime_error(exception.reason);
        }
    }

    // Whether the selection tells the configurations. If there is none, or a name in it keeps it from being
    // split, only an account tells which configurations are short, or what they are called.
    [[nodiscard]] bool hasConfigurationsInSelection() const {
        return decision.outcome.selection.has_value() && choices(*decision.outcome.selection).has_value();
    }

    void findProblems() {
        const bool isDecided = !decision.outcome.exception.has_value();
        if (isDecided && !decision.outcome.selection.has_value() && !isShortOfTargets()) {
            // The library found a selection and had no memory to hand it over.
            throw std::bad_alloc();
        }
        for (const std::string& message : decision.outcome.messages) {
            findRejection(message);
        }
        for (std::size_t i = 0; i < decision.outcome.backups.size(); ++i) {
            findInDocument(indexInCall[i], decision.outcome.backups[i]);
        }
        std::stable_sort(
            decision.problems.begin(), decision.problems.end(),
            [](const SProblem& one, const SProblem& other) { return one.backup < other.backup; });
    }

    [[nodiscard]] bool isShortOfTargets() const {
        const auto& messages = decision.outcome.messages;
        return std::any_of(messages.begin(), messages.end(), [](const std::string& message) {
            return startsAs(ETraceText::kNotAvailable, message);
        });
    }

    void findRejection(const std::string& message) {
        if (!isConfigurationUsable) {
            return;
        }
        for (const SRejection& rejection : kRejections) {
            if (const auto arguments = argumentsOf(rejection.kind, message)) {
                add(FI_ROTATION_CONFIGURATION_REJECTED, std::nullopt,
                    fmt::format(fmt::runtime(rejection.words), arguments->front()));
            }
        }
    }

    void findInDocument(std::size_t index, const SBackupOutcome& backup) {
        const auto& reading = backup.reading;
        if (!reading.has_value()) {
            const bool isKnown = decision.outcome.exception.has_value() || isKnownProblem(index);
            if (!isKnown) {
                add(FI_ROTATION_CANNOT_OPEN, index,
                    "was not read, because it or one before it could not be opened");
            }
            return;
        }
        if (reading->isMalformed) {
            // Only the host library traces the fault. It may be a limit of reading that the document exceeds.
            const std::string fault = reading->fault.empty() ? "" : ": " + reading->fault;
            add(FI_ROTATION_NOT_WELL_FORMED, index, "cannot be read to its end as XML" + fault);
        }
        if (!backup.isLoaded && (!reading->isMalformed || isPermitted(FI_ROTATION_NOT_WELL_FORMED))) {
            add(FI_ROTATION_NO_NODE, index, "has no Node");
        }
        if (reading->hasSeveralRoots) {
            add(FI_ROTATION_SEVERAL_ROOTS, index, "has several Nodes that stand in no other");
        }
        if (!reading->isWhole && fileStates[index].has_value()) {
            add(FI_ROTATION_READ_ERROR, index, "could not be read to its end again");
        } else if (hasChanged(index, *reading)) {
            add(FI_ROTATION_CHANGED, index, "changed while it was read");
        }
    }

    // Another file, or another state of it, was read than was looked at before; or its name stands for
    // another one now.
    [[nodiscard]] bool hasChanged(std::size_t index, const SReading& reading) const {
        const auto& before = fileStates[index];
        const auto after = stateOf(call.backups[index].file);
        return before.has_value() && (reading.fileState.value_or(before->state) != before->state ||
                                      !after.has_value() || after->state != before->state);
    }

    [[nodiscard]] bool isKnownProblem(std::size_t index) const {
        return std::any_of(decision.problems.begin(), decision.problems.end(),
                           [index](const SProblem& problem) {
                               return problem.backup == index && problem.kind == FI_ROTATION_CANNOT_OPEN;
                           });
    }

    void refuse() {
        decision.kind = FI_ROTATION_REFUSED;
        std::vector<std::string_view> texts;
        for (const SProblem& problem : decision.problems) {
            if (!isPermitted(problem.kind)) {
                texts.push_back(problem.text);
            }
        }
        decision.message = fmt::format("{}", fmt::join(texts, "\n"));
        decision.outcome.selection.reset();
    }

    // Fills in the configurations of the decision; with an account, also their targets with the holders, the
    // kept counts, and the time stamps of the backups.
    void fillInConfigurations() {
        const auto& account = decision.outcome.account;
        if (account.has_value()) {
            fillInFromAccount(*account);
        }
        const auto chosen =
            decision.outcome.selection.has_value() ? choices(*decision.outcome.selection) : std::nullopt;
        if (!chosen.has_value()) {
            return;
        }
        decision.configurations.resize(chosen->size());
        for (std::size_t i = 0; i < chosen->size(); ++i) {
            decision.configurations[i].first = (*chosen)[i].first;
            decision.configurations[i].chosen = (*chosen)[i].chosen;
        }
    }

    void fillInFromAccount(const SAccount& account) {
        const std::vector<std::size_t> indices = indicesOf(account);
        decision.configurations.reserve(account.configurations.size());
        for (std::size_t i = 0; i < account.configurations.size(); ++i) {
            SConfigurationOfDecision& configuration = decision.configurations.emplace_back();
            configuration.first = account.configurations[i].first;
            const auto& targets = account.configurations[i].targets;
            configuration.targets.reserve(targets.size());
            for (std::size_t j = 0; j < targets.size(); ++j) {
                const auto& holder = account.heldAfter[i][j];
                configuration.targets.push_back(
                    {targets[j], holder.has_value() ? std::optional(indices[*holder]) : std::nullopt});
                if (!holder.has_value() && decision.outcome.selection.has_value() &&
                    !configuration.chosen.has_value()) {
                    configuration.chosen = targets[j];
                }
            }
            configuration.kept = keptHolders(account, i);
        }
        for (std::size_t i = 0; i < indices.size(); ++i) {
            decision.outcome.backups[indices[i]].timeStamp = account.backups[i].timeStamp;
        }
    }

    // The indices in the call of the backups that the account tells of. It has them in the order of the call;
    // of a name that is listed twice it may have one only, since what is listed after a missing file is not
    // read.
    [[nodiscard]] std::vector<std::size_t> indicesOf(const SAccount& account) const {
        std::vector<std::size_t> indices;
        for (std::size_t i = 0; i < decision.outcome.backups.size(); ++i) {
            const SBackupOutcome& backup = decision.outcome.backups[i];
            const bool isNext = backup.reading.has_value() && indices.size() < account.backups.size() &&
                                account.backups[indices.size()].file == backup.given.file;
            if (isNext) {
                indices.push_back(i);
            }
        }
        return indices;
    }

    void judge() {
        if (!decision.outcome.selection.has_value()) {
            decision.kind = FI_ROTATION_NO_FREE_TARGET;
            decision.message = shortageInWords();
            return;
        }
        const auto losses = safety.leastKept != 0 ? lossesInWords(*decision.outcome.account, safety.leastKept)
                                                  : std::vector<std::string>();
        if (!losses.empty()) {
            decision.kind = FI_ROTATION_TOO_FEW_BACKUPS;
            decision.message = fmt::format("{}", fmt::join(losses, "\n"));
            withdraw(decision.outcome);
            for (SConfigurationOfDecision& configuration : decision.configurations) {
                configuration.chosen.reset();
            }
            return;
        }
        decision.kind = FI_ROTATION_SELECTED;
        decision.message = "every configuration has a free target";
    }

    [[nodiscard]] std::string shortageInWords() const {
        std::vector<std::string> lines;
        for (const SShortage& shortage : decision.outcome.account->shortages) {
            const SConfigurationOfDecision& configuration = decision.configurations[shortage.configuration];
            if (shortage.targets.empty()) {
                lines.push_back(configuration.first + " has no targets for its snapshots");
                continue;
            }
            std::vector<std::string> held;
            for (const SHeldTarget& target : shortage.targets) {
                const STargetOfDecision& named = configuration.targets[target.target];
                held.push_back(fmt::format("{} is held by {}, which is {}", named.name,
                                           call.backups[*named.holder].file,
                                           target.isExcluded ? "excluded from rotation" : "invalid"));
            }
            lines.push_back(
                fmt::format("no target of {} is free: {}", configuration.first, fmt::join(held, "; ")));
        }
        return fmt::format("{}", fmt::join(lines, "\n"));
    }

    const SCall& call;
    const SWishes& wishes;
    const SSafety& safety;
    // False when the cost of reading it has no limit. An empty one is then read in its place.
    bool isConfigurationUsable = true;
    // By index in the call.
    std::vector<std::optional<CFiFileState>> fileStates;
    // Of the backups that the library was handed, their indices in the call.
    std::vector<std::size_t> indexInCall;
    SDecision decision;
};

}  // namespace

SDecision decideSafely(const SCall& call, const SWishes& wishes, const SSafety& safety) {
    return CSafeCall(call, wishes, safety).decide();
}

}  // namespace fi_rotate
