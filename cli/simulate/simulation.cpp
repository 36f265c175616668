#include "cli/simulate/simulation.h"

#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "cli/base/file.h"
#include "cli/base/terminal.h"
#include "cli/base/text.h"
#include "cli/base/xml_reader.h"
#include "cli/simulate/take_over.h"
#include "host/library_call.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

// Makes a call and returns its outcome with the account.
SOutcome callWithAccount(const SCall& arguments) {
    const CMutedStandardOutput muted;
    SWishes wishes;
    wishes.account = true;
    wishes.configurationsOfFirstBackup = true;
    SOutcome outcome = runCall(arguments, wishes);
    if (outcome.exception.has_value()) {
        throw CLibraryFailure("an exception left the library: " + outcome.exception->reason);
    }
    return outcome;
}

// The configurations as the library reads them, found out by a call without backups.
std::vector<SAccountConfiguration> configurationsOf(const std::string& configuration) {
    SCall arguments;
    arguments.configuration = configuration;
    SOutcome outcome = callWithAccount(arguments);
    for (const std::string& message : outcome.messages) {
        if (isOfParser(message)) {
            throw std::invalid_argument(message);
        }
    }
    return std::move(outcome.account->configurations);
}

bool areSame(const SShortConfiguration& one, const SShortConfiguration& other) {
    return one.configuration == other.configuration &&
           std::equal(one.targets.begin(), one.targets.end(), other.targets.begin(), other.targets.end(),
                      [](const SHeldByRound& held, const SHeldByRound& before) {
                          return held.target == before.target && held.round == before.round &&
                                 held.document == before.document && held.isExcluded == before.isExcluded;
                      });
}

bool rotatesOne(const SOutcome& outcome) {
    return std::any_of(outcome.backups.begin(), outcome.backups.end(),
                       [](const SBackupOutcome& backup) { return backup.state == FI_BACKUP_ROTATED; });
}

void keepFewer(std::optional<SKept>& fewest, const SKept& kept) {
    if (!fewest.has_value() || kept.count < fewest->count) {
        fewest = kept;
    }
}

struct SLiveBackup {
    std::string file;
    // The round that took it, or 0 and its index in SPlan::from.
    std::size_t round = 0;
    std::size_t document = 0;
    std::int64_t time = 0;
    bool isExcluded = false;
    // Its snapshots are next to each other in SSimulation::snapshots.
    std::size_t firstSnapshot = 0;
    std::size_t snapshots = 0;
};

bool isExclusionOver(const SPlan& plan, std::int64_t taken, std::int64_t now) {
    return plan.excludedFor.has_value() && now - taken >= *plan.excludedFor;
}

class CRounds {
public:
    explicit CRounds(const SPlan& plan) {
        simulation.plan = plan;
        simulation.configurations = configurationsOf(plan.configuration);
        simulation.fewestKept.resize(simulation.configurations.size());
        if (!plan.from.empty()) {
            beginWith(takeOver(plan));
        }
    }

    SSimulation run(const ContinueCallback& mayContinue) {
        while (simulation.finishedRounds < simulation.plan.rounds && mayContinue(simulation)) {
            runRound(simulation.finishedRounds + 1);
            ++simulation.finishedRounds;
        }
        return std::move(simulation);
    }

private:
    void beginWith(STakeOver taken) {
        simulation.snapshots = std::move(taken.snapshots);
        simulation.takenOver = std::move(taken.backups);
        simulation.unprotected = std::move(taken.unprotected);
        std::size_t firstSnapshot = 0;
        for (std::size_t i = 0; i < simulation.takenOver.size(); ++i) {
            const SBackup& given = simulation.plan.from[i];
            SLiveBackup& backup = live.emplace_back();
            backup.file = given.file;
            backup.document = i;
            backup.time = simulation.takenOver[i].time.value_or(simulation.plan.start);
            backup.isExcluded = (given.flagWord & FI_EXCLUDE_ROTATION) != 0;
            backup.firstSnapshot = firstSnapshot;
            backup.snapshots = simulation.takenOver[i].snapshots;
            firstSnapshot += backup.snapshots;
        }
    }

    [[nodiscard]] SCall callOf(std::size_t round) const {
        const std::int64_t now = timeOf(simulation.plan, round);
        SCall arguments;
        arguments.configuration = simulation.plan.configuration;
        for (const SLiveBackup& backup : live) {
            const bool isExcluded = backup.isExcluded && !isExclusionOver(simulation.plan, backup.time, now);
            // Each call overwrites the flag word with a state, so it is set again for each call.
            arguments.backups.push_back({backup.file, isExcluded ? FI_EXCLUDE_ROTATION : 0});
        }
        return arguments;
    }

    void runRound(std::size_t round) {
        const SOutcome outcome = callWithAccount(callOf(round));
        noteKept(outcome, round);
        if (!outcome.selection.has_value()) {
            noteWithoutTarget(round, outcome.account->shortages);
            return;
        }
        const auto chosen = choices(*outcome.selection);
        if (!chosen.has_value()) {
            throw std::invalid_argument(
                "names in it contain \"][\", so its selections cannot be split into targets");
        }
        dropEnded(outcome, round);
        take(*chosen, round);
    }

    void noteKept(const SOutcome& outcome, std::size_t round) {
        hasRotated = hasRotated || rotatesOne(outcome);
        for (std::size_t i = 0; i < simulation.configurations.size(); ++i) {
            const std::size_t before = keptHoldersBeforeRotation(*outcome.account, i);
            // Without a selection the library hands back no states, and every backup stays as it was.
            const std::size_t kept =
                outcome.selection.has_value() ? keptHolders(*outcome.account, i) : before;
            SFewestKept& fewest = simulation.fewestKept[i];
            if (before != 0 || fewest.sinceFirstBackup.has_value()) {
                keepFewer(fewest.sinceFirstBackup, {kept, round});
                if (hasRotated) {
                    keepFewer(fewest.sinceRotation, {kept, round});
                }
            }
        }
    }

    void noteWithoutTarget(std::size_t round, const std::vector<SShortage>& shortages) {
        std::vector<SShortConfiguration> found;
        for (const SShortage& shortage : shortages) {
            SShortConfiguration& row = found.emplace_back();
            row.configuration = shortage.configuration;
            for (const SHeldTarget& held : shortage.targets) {
                // The account has the backups in the order in which they were handed over.
                const SLiveBackup& holder = live.at(held.holder);
                row.targets.push_back({held.target, holder.round, holder.document, held.isExcluded});
            }
        }
        auto& all = simulation.withoutTarget;
        const bool isAsBefore = !all.empty() && all.back().last + 1 == round &&
                                std::equal(found.begin(), found.end(), all.back().shortages.begin(),
                                           all.back().shortages.end(), areSame);
        if (isAsBefore) {
            all.back().last = round;
        } else {
            all.push_back({round, round, std::move(found)});
        }
    }

    void dropEnded(const SOutcome& outcome, std::size_t round) {
        std::vector<SLiveBackup> kept;
        for (std::size_t i = 0; i < live.size(); ++i) {
            if (!outcome.backups[i].state.has_value()) {
                throw CLibraryFailure("the library did not load \"" + live[i].file + "\"");
            }
            switch (*outcome.backups[i].state) {
                case FI_BACKUP_ROTATED:
                    endBackup(live[i], round, EEnd::kRotated);
                    break;
                case FI_BACKUP_INVALID:
                    endBackup(live[i], round, EEnd::kLost);
                    break;
                default:
                    kept.push_back(std::move(live[i]));
            }
        }
        live = std::move(kept);
    }

    // Ends the snapshots of the backup and deletes its document, unless it is one of SPlan::from.
    void endBackup(const SLiveBackup& backup, std::size_t round, EEnd how) {
        if (backup.round == 0) {
            STakenOver& taken = simulation.takenOver[backup.document];
            taken.ended = static_cast<std::uint32_t>(round);
            taken.end = how;
        } else {
            unlink(backup.file.c_str());
        }
        for (std::size_t i = 0; i < backup.snapshots; ++i) {
            endSnapshot(simulation.snapshots[backup.firstSnapshot + i], round, how);
        }
    }

    void endSnapshot(SSnapshot& snapshot, std::size_t round, EEnd how) {
        if (snapshot.end != EEnd::kHeld) {
            return;
        }
        snapshot.ended = static_cast<std::uint32_t>(round);
        snapshot.end = how;
        if (how == EEnd::kRotated) {
            const std::int64_t held = timeOf(simulation.plan, round) - timeOf(simulation, snapshot);
            simulation.shortestHeld = std::min(held, simulation.shortestHeld.value_or(held));
        } else {
            simulation.hasLost = true;
        }
    }

    void take(const std::vector<SChoice>& chosen, std::size_t round) {
        SLiveBackup backup;
        backup.round = round;
        backup.time = timeOf(simulation.plan, round);
        backup.isExcluded = isExcluded(simulation.plan, round);
        backup.firstSnapshot = simulation.snapshots.size();
        backup.snapshots = chosen.size();
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            const auto& targets = simulation.configurations[i].targets;
            const auto found = std::find(targets.begin(), targets.end(), chosen[i].chosen);
            SSnapshot snapshot;
            snapshot.configuration = static_cast<std::uint32_t>(i);
            snapshot.target = static_cast<std::uint32_t>(found - targets.begin());
            snapshot.taken = static_cast<std::uint32_t>(round);
            overwriteHolder(snapshot);
            overwriteUnprotected(snapshot);
            simulation.snapshots.push_back(snapshot);
        }
        backup.file =
            folder.write(fmt::format("round-{}.xml", round), toDocument(toTimeStamp(backup.time), chosen));
        live.push_back(std::move(backup));
    }

    // When a configuration names a target twice, the library can choose the target although a backup holds
    // it.
    void overwriteHolder(const SSnapshot& next) {
        for (const SLiveBackup& backup : live) {
            for (std::size_t i = 0; i < backup.snapshots; ++i) {
                SSnapshot& held = simulation.snapshots[backup.firstSnapshot + i];
                if (held.configuration == next.configuration && held.target == next.target) {
                    endSnapshot(held, next.taken, EEnd::kLost);
                }
            }
        }
    }

    void overwriteUnprotected(const SSnapshot& next) {
        for (SUnprotected& target : simulation.unprotected) {
            if (target.configuration == next.configuration && target.target == next.target &&
                target.overwritten == 0) {
                target.overwritten = next.taken;
            }
        }
    }

    CXmlLibrary xmlLibrary;
    CTemporaryFolder folder;
    SSimulation simulation;
    std::vector<SLiveBackup> live;
    bool hasRotated = false;
};

constexpr std::string_view kSectionEnd = "]]>";

// Whether `text` contains only characters that an XML document can contain.
bool canStandInXml(const std::string& text) {
    const auto isControl = [](char character) {
        return character >= '\0' && character < ' ' && character != '\t';
    };
    return asUtf8(text) == text && std::none_of(text.begin(), text.end(), isControl) &&
           text.find("\xEF\xBF\xBE") == std::string::npos && text.find("\xEF\xBF\xBF") == std::string::npos;
}

// Writes a name with < or & as a CDATA section. A reference would end the piece of text before it, and the
// library reads only the last piece.
std::string asOnePiece(const std::string& text) {
    const bool needsSection = text.find_first_of("<&") != std::string::npos;
    const bool holdsSectionEnd = text.find(kSectionEnd) != std::string::npos;
    if (!canStandInXml(text) || holdsSectionEnd) {
        throw std::invalid_argument(
            fmt::format("the name \"{}\" cannot be written into an XML document", asPrintable(text)));
    }
    return needsSection ? fmt::format("<![CDATA[{}]]>", text) : text;
}

std::string identifier(const std::string& target) {
    return asOnePiece("UDID##EXAMPLE##ARRAY##" + target);
}

}  // namespace

std::int64_t timeOf(const SPlan& plan, std::size_t round) {
    return plan.start + static_cast<std::int64_t>(round - 1) * plan.every;
}

bool isExcluded(const SPlan& plan, std::size_t round) {
    if (plan.excludedEvery.has_value()) {
        return round % *plan.excludedEvery == 0;
    }
    return plan.excludedWeekday.has_value() && weekdayOf(timeOf(plan, round)) == *plan.excludedWeekday;
}

bool areOfOneBackup(const SSnapshot& one, const SSnapshot& other) {
    return one.taken == other.taken && one.document == other.document;
}

std::int64_t timeOf(const SSimulation& simulation, const SSnapshot& snapshot) {
    return snapshot.taken == 0 ? simulation.takenOver[snapshot.document].time.value()
                               : timeOf(simulation.plan, snapshot.taken);
}

bool isExcluded(const SSimulation& simulation, const SSnapshot& snapshot) {
    return snapshot.taken == 0 ? (simulation.plan.from[snapshot.document].flagWord & FI_EXCLUDE_ROTATION) != 0
                               : isExcluded(simulation.plan, snapshot.taken);
}

bool isExcludedAt(const SSimulation& simulation, const SSnapshot& snapshot, std::int64_t time) {
    return isExcluded(simulation, snapshot) &&
           !isExclusionOver(simulation.plan, timeOf(simulation, snapshot), time);
}

std::optional<std::uint32_t> lastRoundHeld(const SSimulation& simulation, const SUnprotected& target) {
    const std::uint32_t ended = simulation.takenOver[target.document].ended;
    if (!target.isHeldAtFirst) {
        return 0;
    }
    return ended != 0 ? std::optional(ended) : std::nullopt;
}

std::size_t countRoundsWithoutTarget(const SSimulation& simulation) {
    std::size_t count = 0;
    for (const SRoundsWithoutTarget& rounds : simulation.withoutTarget) {
        count += rounds.count();
    }
    return count;
}

std::optional<std::size_t> firstRoundOfStandstill(const SSimulation& simulation) {
    std::optional<std::size_t> first;
    const auto& all = simulation.withoutTarget;
    for (auto rounds = all.rbegin(); rounds != all.rend(); ++rounds) {
        if (rounds->last + 1 != first.value_or(simulation.finishedRounds + 1)) {
            break;
        }
        first = rounds->first;
    }
    return first;
}

SSimulation simulate(const SPlan& plan, const ContinueCallback& mayContinue) {
    return CRounds(plan).run(mayContinue);
}

std::string toDocument(const std::string& timeStamp, const std::vector<SChoice>& choices) {
    std::string text = fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<snapshotBackup>\n"
        "  <Node>\n"
        "    <timeStamp>{}</timeStamp>\n",
        timeStamp);
    for (const SChoice& choice : choices) {
        text += fmt::format(
            "    <Node>\n"
            "      <objid>{}</objid>\n"
            "      <altobjid>{}</altobjid>\n"
            "    </Node>\n",
            identifier(choice.first), identifier(choice.chosen));
    }
    return text + "  </Node>\n</snapshotBackup>\n";
}

}  // namespace fi_rotate
