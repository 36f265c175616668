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

// Simulates many rounds. Each is a call of the library with the backups that the rounds before it left.
namespace fi_rotate {

struct SPlan {
    std::string configuration;
    std::size_t rounds = 0;
    // Seconds between two rounds.
    std::int64_t every = 0;
    // The time of the first round.
    std::int64_t start = 0;
    // The backups of every K-th round, or those of a day of the week, are excluded. At most one of the two is
    // set.
    std::optional<std::size_t> excludedEvery;
    std::optional<int> excludedWeekday;
    // The seconds after which an exclusion ends; without a value it never ends.
    std::optional<std::int64_t> excludedFor;
    // The backups that exist before the first round. Those with the exclude bit in their flag word are
    // excluded.
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

// The snapshot that one backup took on a target of one configuration.
struct SSnapshot {
    // Indexes in SSimulation::configurations and in the targets there.
    std::uint32_t configuration = 0;
    std::uint32_t target = 0;
    // The round that took it; 0 when it existed before the first round.
    std::uint32_t taken = 0;
    // The round that ended it; 0 while it is held.
    std::uint32_t ended = 0;
    EEnd end = EEnd::kHeld;
    // For a snapshot that existed before the first round: the index of its backup in SPlan::from.
    std::uint32_t document = 0;
};

// A backup that existed before the first round, and its state after the last one.
struct STakenOver {
    // Nothing when the library finds it invalid before it asks for its time stamp.
    std::optional<std::int64_t> time;
    std::size_t snapshots = 0;
    // Why it is invalid before the first round, in words; then none of its snapshots is used. Empty when it
    // is not invalid.
    std::string whyInvalid;
    // The same as in SSnapshot.
    std::uint32_t ended = 0;
    EEnd end = EEnd::kHeld;
};

// A target that an invalid backup of SPlan::from names and that no other backup holds before the first round.
// A snapshot may be on it, but nothing protects it: the library may choose the target.
struct SUnprotected {
    // Indexes as in SSnapshot.
    std::uint32_t configuration = 0;
    std::uint32_t target = 0;
    std::uint32_t document = 0;
    // The backup has claimed this target before its claim failed at another one. So the target cannot be
    // chosen in the calls that the backup is part of, and only later.
    bool isHeldAtFirst = false;
    // The round that took the target; 0 when none did.
    std::uint32_t overwritten = 0;
};

// A target of a configuration, and the backup that holds it.
struct SHeldByRound {
    std::size_t target = 0;
    // The round that took the backup; 0 for a backup of SPlan::from.
    std::size_t round = 0;
    // The index of the backup in SPlan::from if `round` is 0.
    std::size_t document = 0;
    // Whether the backup is excluded in this round. If not, it is invalid and so never released.
    bool isExcluded = false;
};

// A configuration, by its index in SSimulation::configurations, and the backups that hold its targets.
struct SShortConfiguration {
    std::size_t configuration = 0;
    std::vector<SHeldByRound> targets;
};

// Consecutive rounds that found no target, all for the same reason: a call without a selection leaves every
// backup as it was, so the next round finds the same unless an exclusion ends.
struct SRoundsWithoutTarget {
    std::size_t first = 0;
    std::size_t last = 0;
    std::vector<SShortConfiguration> shortages;

    [[nodiscard]] std::size_t count() const { return last + 1 - first; }
};

// How many restore points a configuration had after the call of a round. A round without a target rotates no
// backup, so it keeps all restore points.
struct SKept {
    std::size_t count = 0;
    std::size_t round = 0;
};

// The fewest restore points of a configuration, each with the first round that had so few.
struct SFewestKept {
    // Counted from the first call that has a backup of this configuration.
    std::optional<SKept> sinceFirstBackup;
    // Counted from the first call that rotates a backup; before it the number of backups only grows.
    std::optional<SKept> sinceRotation;
};

struct SSimulation {
    SPlan plan;
    std::vector<SAccountConfiguration> configurations;
    // Fewer than planned only when `mayContinue` returned false. The summary then says that the simulation
    // was interrupted.
    std::size_t finishedRounds = 0;
    // One for each of SPlan::from.
    std::vector<STakenOver> takenOver;
    // First those that existed before, in the order of SPlan::from, then those of the rounds. The snapshots
    // of one backup are next to each other.
    std::vector<SSnapshot> snapshots;
    std::vector<SUnprotected> unprotected;
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
// Whether the backup was excluded when it was taken, and whether its exclusion still lasts at `time`.
bool isExcluded(const SSimulation& simulation, const SSnapshot& snapshot);
bool isExcludedAt(const SSimulation& simulation, const SSnapshot& snapshot, std::int64_t time);

// The last round in whose call the target is held; 0 when there is none. Nothing when it is held to the end.
std::optional<std::uint32_t> lastRoundHeld(const SSimulation& simulation, const SUnprotected& target);

std::size_t countRoundsWithoutTarget(const SSimulation& simulation);

// The first of the rounds without a target at the end of the simulation; nothing when its last round found a
// target.
std::optional<std::size_t> firstRoundOfStandstill(const SSimulation& simulation);

// Called before each round with the results of the rounds before it. Returns whether to go on.
using ContinueCallback = std::function<bool(const SSimulation&)>;

// An exception left the library.
class CLibraryFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Documents of backups before the first round cannot be used. what() says which and why, a line for each.
class CUnusableDocuments : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Runs the rounds of `plan`. Throws std::invalid_argument when the configuration is rejected (the text is
// then a line of the library's trace) or a name in it cannot be written into a document, CUnusableDocuments,
// CLibraryFailure, and std::system_error when a document cannot be written.
SSimulation simulate(const SPlan& plan, const ContinueCallback& mayContinue);

// The document of a backup with snapshots on the chosen targets, as a host writes it: a Node with the time
// stamp, and in it one Node for each configuration. Throws std::invalid_argument when a name cannot be
// written in one piece of text, because the library would then read another name.
std::string toDocument(const std::string& timeStamp, const std::vector<SChoice>& choices);

}  // namespace fi_rotate
