#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/account.h"
#include "host/call.h"
#include "host/outcome.h"

// Many rounds of the library, each with the backups that the rounds before it left.
namespace fi_rotate {

struct SPlan {
    std::string configuration;
    std::size_t rounds = 0;
    // Seconds between two rounds.
    std::int64_t every = 0;
    // The time of the first round.
    std::int64_t start = 0;
    // At most one of the two: every K-th round, and the rounds of a day of the week, are excluded from
    // rotation.
    std::optional<std::size_t> excludedEvery;
    std::optional<int> excludedWeekday;
    // Seconds after which an excluded backup may be rotated like the others; never without.
    std::optional<std::int64_t> excludedFor;
    // The backups that are there before the first round, as a call is given them; excluded are those whose
    // flag word says so.
    std::vector<SBackup> from;
};

// Rounds are counted from 1.
std::int64_t timeOf(const SPlan& plan, std::size_t round);
// Whether the backup of this round is excluded when it is taken.
bool isExcluded(const SPlan& plan, std::size_t round);

enum class EEnd : std::uint8_t {
    kHeld,
    kRotated,
    // A later round was given its target, or the library called the backup invalid.
    kLost,
};

// What one backup took of one configuration.
struct SSnapshot {
    // Places in SSimulation::configurations and in its targets.
    std::uint32_t configuration = 0;
    std::uint32_t target = 0;
    // The round; 0 when it was there before.
    std::uint32_t taken = 0;
    // The round that ended it; 0 while it is held.
    std::uint32_t ended = 0;
    EEnd end = EEnd::kHeld;
    // Of one that was there before the first round: the place of its backup in SPlan::from.
    std::uint32_t document = 0;
};

// What became of a backup that was there before the first round.
struct STakenOver {
    // Nothing when the library calls it invalid before it asks for its time stamp.
    std::optional<std::int64_t> time;
    std::size_t snapshots = 0;
    // Empty unless it is invalid from the start, in words; then none of its snapshots is taken over.
    std::string whyInvalid;
    // As of a snapshot.
    std::uint32_t ended = 0;
    EEnd end = EEnd::kHeld;
};

// A target of a configuration, and the backup that holds it.
struct SHeldByRound {
    std::size_t target = 0;
    // 0 for one of SPlan::from, and its place there.
    std::size_t round = 0;
    std::size_t document = 0;
    // Then; otherwise it is invalid and never released.
    bool isExcluded = false;
};

// A configuration, by its place in SSimulation::configurations, and who holds its targets.
struct SShortConfiguration {
    std::size_t configuration = 0;
    std::vector<SHeldByRound> targets;
};

// Rounds one after another that found no target, all for the same reason: a call without a selection leaves
// every backup as it was, so the next round finds the same as long as no exclusion ends.
struct SRoundsWithoutTarget {
    std::size_t first = 0;
    std::size_t last = 0;
    std::vector<SShortConfiguration> shortages;

    [[nodiscard]] std::size_t count() const { return last + 1 - first; }
};

// So many restore points a configuration had after the call of a round. A restore point is a kept backup that
// holds one of its targets; in a round without a target all are, since it rotates none.
struct SKept {
    std::size_t count = 0;
    std::size_t round = 0;
};

// The fewest of a configuration, each with the first round that had so few.
struct SFewestKept {
    // From the first call on that finds a backup of it.
    std::optional<SKept> everSince;
    // From the first call on that rotates a backup. Before that the backups are only growing in number.
    std::optional<SKept> sinceRotation;
};

struct SSimulation {
    SPlan plan;
    std::vector<SAccountConfiguration> configurations;
    // Fewer than planned when somebody stopped it.
    std::size_t finishedRounds = 0;
    // One for each of SPlan::from.
    std::vector<STakenOver> takenOver;
    // Those taken over first, by their places in SPlan::from, then in the order of taking; those of one
    // backup are one after another.
    std::vector<SSnapshot> snapshots;
    // In their order.
    std::vector<SRoundsWithoutTarget> withoutTarget;
    // One for each configuration.
    std::vector<SFewestKept> fewestKept;
    // In seconds, of those that were rotated.
    std::optional<std::int64_t> shortestHeld;
    bool hasLost = false;
};

bool areOfOneBackup(const SSnapshot& one, const SSnapshot& other);

std::int64_t timeOf(const SSimulation& simulation, const SSnapshot& snapshot);
// Whether its backup was excluded when it was taken, and whether it is still at `time`.
bool isExcluded(const SSimulation& simulation, const SSnapshot& snapshot);
bool isExcludedAt(const SSimulation& simulation, const SSnapshot& snapshot, std::int64_t time);

std::size_t countWithoutTarget(const SSimulation& simulation);

// The first of the rounds without a target that the simulation ended with; nothing when its last round found
// one.
std::optional<std::size_t> standstillOf(const SSimulation& simulation);

// Asked before each round with what came of those before; false ends the simulation there.
using GoOn = std::function<bool(const SSimulation&)>;

// An exception left the library.
class CLibraryFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Backups that are to be there before the first round cannot be; it says which and why, a line for each.
class CUnusableDocuments : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws std::invalid_argument when the configuration is rejected or a name in it cannot be written into a
// document, CUnusableDocuments, CLibraryFailure, and std::system_error when a document cannot be written.
SSimulation simulate(const SPlan& plan, const GoOn& goOn);

// The document of a backup that took its snapshots on the chosen targets, as a host writes it: a Node with
// the time stamp, and in it one Node for each configuration. Throws std::invalid_argument when a name cannot
// stand in a document in one piece, without which the library would read another name.
std::string toDocument(const std::string& timeStamp, const std::vector<SChoice>& choices);

}  // namespace fi_rotate
