#ifndef FI_ROTATION_HOST_HPP
#define FI_ROTATION_HOST_HPP

// Rotation of snapshot targets for hosts in C++17: the functions of host.h as one function of values.
//
//   const fi_rotation::SOutcome outcome = fi_rotation::rotate(
//       "encA##lun1;encA##snap1;snap2", {{"monday.xml"}, {"tuesday.xml", true}});
//   if (outcome.kind == fi_rotation::EOutcome::kSelected) {
//       std::cout << *outcome.selection << '\n';
//   } else {
//       std::cerr << outcome.message << '\n';
//   }
//
// host.h says what the inputs mean, what is decided, and when a decision is refused; this header says only
// what it adds. It is compiled into the host and calls only C functions of the library, so the two need not
// be built with the same compiler, runtime library or options. Link with fi_rotation_host.
//
// Errors: that nothing was decided is an outcome (EOutcome), not an exception. What has nothing to do with
// the inputs of a rotation is an exception, see rotate(). After an exception nothing is left allocated, and
// the next call works, unless the process cannot make calls any more.
//
// Threads: any number of threads may call rotate() at once; inside, they wait for one another.
//
// Ownership: values go in and values come out. Nothing is borrowed beyond the call.
//
// Indexes begin with 0. Targets are named ENCLOSURE##DEVICE. File names and texts of documents are bytes, in
// no particular encoding.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fi_rotation/host.h>

namespace fi_rotation {

// The name changes when members of the records change, so that a process may contain libraries that were
// built with different versions of this header.
inline namespace v1 {

// What can be wrong with an input. host.h says what each means, and what happens when it is permitted.
enum class EProblem : std::uint32_t {
    kConfigurationRejected = FI_ROTATION_CONFIGURATION_REJECTED,
    kCannotOpen = FI_ROTATION_CANNOT_OPEN,
    kNotAFile = FI_ROTATION_NOT_A_FILE,
    kReadError = FI_ROTATION_READ_ERROR,
    kTooLarge = FI_ROTATION_TOO_LARGE,
    kNulByte = FI_ROTATION_NUL_BYTE,
    kListedTwice = FI_ROTATION_LISTED_TWICE,
    kNotWellFormed = FI_ROTATION_NOT_WELL_FORMED,
    kNoNode = FI_ROTATION_NO_NODE,
    kSeveralRoots = FI_ROTATION_SEVERAL_ROOTS,
    kChanged = FI_ROTATION_CHANGED,
    // It cannot be permitted.
    kMalformedIdentifier = FI_ROTATION_MALFORMED_IDENTIFIER
};

// ---- inputs ----

// An earlier backup.
struct SBackup {
    // The name of its document.
    std::string file;
    // Whether its targets must never be released.
    bool excluded = false;
};

// Levels of the trace.
constexpr std::int32_t kTraceFailures = 3;
constexpr std::int32_t kTraceProgress = 4;

struct SOptions {
    // The rotation is decided in spite of these problems.
    std::set<EProblem> permitted;
    // Documents of more bytes are refused. Without a number, the library's own limit holds; host.h advises to
    // set a lower one.
    std::optional<std::uint64_t> documentLimit;
    // At least so many kept backups must hold a target of each configuration after the rotation, or nothing
    // is decided (EOutcome::kTooFewBackups). A configuration that has fewer before it may not lose any. 0:
    // all may be released.
    std::int32_t keepAtLeast = 0;
    // Asks for the members of the outcome that say "with reasons", which take time.
    bool reasons = false;
    // Receives each line of the trace up to traceLevel: its level, and its text without a line end, which is
    // valid only until the function returns. It runs on the thread that called rotate(), while other threads
    // wait. When it throws, it is not called again, and rotate() throws the same exception.
    std::function<void(std::int32_t level, std::string_view text)> trace;
    std::int32_t traceLevel = kTraceProgress;
};

// ---- the outcome ----

enum class EOutcome {
    // Every configuration has a free target: there is a selection, and each backup whose document was not
    // ignored has its state.
    kSelected = FI_ROTATION_SELECTED,
    // The inputs are whole, but a configuration has no free target, even when every backup that may be
    // released is.
    kNoFreeTarget = FI_ROTATION_NO_FREE_TARGET,
    // A configuration would keep fewer backups than SOptions::keepAtLeast asks for.
    kTooFewBackups = FI_ROTATION_TOO_FEW_BACKUPS,
    // An input has a problem that is not permitted.
    kRefused = FI_ROTATION_REFUSED
};

// The state of an earlier backup after a rotation.
enum class EState {
    // It agrees with the configuration and keeps its targets.
    kKept = FI_ROTATION_KEPT,
    // It does not agree with the configuration, or one of its targets is held already. Take no new backup
    // while one is; host.h says why.
    kInvalid = FI_ROTATION_INVALID,
    // Its targets were released for the new backup.
    kRotated = FI_ROTATION_ROTATED
};

// What is wrong with an input.
struct SProblem {
    EProblem kind;
    // The index of the backup; nothing for the configuration.
    std::optional<std::size_t> backup;
    // The problem in words, with the file name and the place.
    std::string text;
};

// A target on which a snapshot may be taken.
struct STarget {
    std::string name;
    // The index of the backup that holds it after the rotation, which may be an invalid one; nothing when it
    // is free.
    std::optional<std::size_t> holder;
};

struct SConfiguration {
    // The device that is backed up.
    std::string first;
    // The target to use; nothing unless the outcome is kSelected.
    std::optional<std::string> chosen;
    // With reasons, and always with kNoFreeTarget and kTooFewBackups: how many kept backups hold a target of
    // this configuration after the rotation, and its further targets. With kNoFreeTarget and kTooFewBackups,
    // where in fact no backup is released, this is what the releases would have led to.
    std::optional<std::size_t> kept;
    std::vector<STarget> targets;
};

// Why a backup has its state.
struct SReason {
    // For programs; host.h lists the words.
    std::string word;
    // For people.
    std::string text;
};

// What is known of an earlier backup after the rotation.
struct SBackupOutcome {
    std::string file;
    // The problems of its document, permitted ones included; none when it was read whole.
    std::set<EProblem> problems;
    // Nothing unless the outcome is kSelected and its document was not ignored.
    std::optional<EState> state;
    // With reasons, and always with kNoFreeTarget and kTooFewBackups, but never with kRefused: the time stamp
    // of its document, nothing if that has none or was not read, or for a backup that does not agree with the
    // configuration; the reason of its state, nothing when that is not known; and the targets that it held
    // before any was released. For an invalid backup none are named, not even those that stay used.
    std::optional<std::string> timeStamp;
    std::optional<SReason> reason;
    std::vector<std::string> targets;
};

struct SOutcome {
    EOutcome kind = EOutcome::kRefused;
    // The outcome in words, with file names and places: one line, or several.
    std::string message;
    // "[FIRST;CHOSEN]" for each configuration in order, with nothing in between; nothing unless the outcome
    // is kSelected.
    std::optional<std::string> selection;
    // All that were found, permitted ones included.
    std::vector<SProblem> problems;
    // In order; none when the outcome is kRefused.
    std::vector<SConfiguration> configurations;
    // As many as were given, in their order.
    std::vector<SBackupOutcome> backups;
};

// ---- the rotation ----

// Decides which targets a new snapshot backup may use, given the resource configuration and the earlier
// backups. Without any, all targets are free, and nothing is refused: check that the list is not empty by
// mistake. It writes no files, and may be called again at any time.
//
// Throws
//   std::invalid_argument  the configuration or a file name holds a NUL byte;
//   std::logic_error       it was called from the trace function of a rotation;
//   std::bad_alloc         memory ran out: call again later;
//   std::runtime_error     the XML library could not be set up: call again later, and if it fails again,
//                          start the program anew; or this process was forked while another thread was in a
//                          rotation;
//   and whatever SOptions::trace threw.
[[nodiscard]] SOutcome rotate(const std::string& configuration, const std::vector<SBackup>& backups,
                              const SOptions& options = {});

// ---- how it is done: nothing below is for hosts ----

namespace detail {

struct SFreeCall {
    void operator()(fi_rotation_call* call) const { fi_rotation_call_free(call); }
};
using Call = std::unique_ptr<fi_rotation_call, SFreeCall>;

// The receiver of a call's trace, and what it threw.
struct STrace {
    const std::function<void(std::int32_t, std::string_view)>& receiver;
    std::exception_ptr failure;
};

inline void receiveTrace(void* user, std::int32_t level, const char* text) {
    STrace& trace = *static_cast<STrace*>(user);
    try {
        trace.receiver(level, text);
    } catch (...) {
        trace.failure = std::current_exception();
        // The library then ends the run. If this unwinds a thread that ends, it passes through the library.
        throw;
    }
}

// The C functions would use the text only up to its first NUL byte, so such a text is refused.
inline const char* requireNoNulByte(const std::string& text, const char* name) {
    if (text.find('\0') != std::string::npos) {
        throw std::invalid_argument(std::string(name) + " holds a NUL byte");
    }
    return text.c_str();
}

inline std::uint32_t sumOf(const std::set<EProblem>& problems) {
    std::uint32_t sum = 0;
    for (const EProblem problem : problems) {
        sum |= static_cast<std::uint32_t>(problem);
    }
    return sum;
}

inline std::optional<std::string> textOrNothing(const char* text) {
    return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

inline std::optional<std::size_t> numberOrNothing(std::int32_t number) {
    return number >= 0 ? std::optional<std::size_t>(static_cast<std::size_t>(number)) : std::nullopt;
}

// A failed allocation shows when the call is run: it ends with FI_ROTATION_OUT_OF_MEMORY.
inline Call makeCall(const std::string& configuration, const std::vector<SBackup>& backups,
                     const SOptions& options) {
    Call call(fi_rotation_call_new(requireNoNulByte(configuration, "the configuration")));
    for (const SBackup& backup : backups) {
        fi_rotation_call_add(call.get(), requireNoNulByte(backup.file, "a file name"),
                             backup.excluded ? 1 : 0);
    }
    fi_rotation_call_permit(call.get(), sumOf(options.permitted));
    if (options.documentLimit.has_value()) {
        fi_rotation_call_limit_document(call.get(), *options.documentLimit);
    }
    fi_rotation_call_keep_at_least(call.get(), options.keepAtLeast);
    fi_rotation_call_ask_reasons(call.get(), options.reasons ? 1 : 0);
    return call;
}

inline EOutcome run(fi_rotation_call* call, const STrace& trace) {
    const fi_rotation_outcome outcome = fi_rotation_call_run(call);
    switch (outcome) {
        case FI_ROTATION_SELECTED:
        case FI_ROTATION_NO_FREE_TARGET:
        case FI_ROTATION_TOO_FEW_BACKUPS:
        case FI_ROTATION_REFUSED:
            return static_cast<EOutcome>(outcome);
        case FI_ROTATION_OUT_OF_MEMORY:
            throw std::bad_alloc();
        case FI_ROTATION_TRACE_FAILED:
            std::rethrow_exception(trace.failure);
        case FI_ROTATION_MISUSED:
            throw std::logic_error(fi_rotation_call_message(call));
        case FI_ROTATION_FAILED:
            break;
    }
    throw std::runtime_error(fi_rotation_call_message(call));
}

inline std::vector<SProblem> problemsOf(const fi_rotation_call* call) {
    const std::int32_t count = fi_rotation_call_problem_count(call);
    std::vector<SProblem> problems;
    problems.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        problems.push_back({static_cast<EProblem>(fi_rotation_call_problem_kind(call, i)),
                            numberOrNothing(fi_rotation_call_problem_backup(call, i)),
                            fi_rotation_call_problem_text(call, i)});
    }
    return problems;
}

inline SConfiguration configurationOf(const fi_rotation_call* call, std::int32_t index) {
    SConfiguration configuration;
    configuration.first = fi_rotation_call_configuration_first(call, index);
    configuration.chosen = textOrNothing(fi_rotation_call_configuration_chosen(call, index));
    configuration.kept = numberOrNothing(fi_rotation_call_configuration_kept(call, index));
    for (std::int32_t i = 0; i < fi_rotation_call_target_count(call, index); ++i) {
        configuration.targets.push_back({fi_rotation_call_target(call, index, i),
                                         numberOrNothing(fi_rotation_call_target_holder(call, index, i))});
    }
    return configuration;
}

inline SBackupOutcome backupOf(const fi_rotation_call* call, std::int32_t index) {
    SBackupOutcome backup;
    backup.file = fi_rotation_call_backup_file(call, index);
    const fi_rotation_state state = fi_rotation_call_backup_state(call, index);
    if (state != FI_ROTATION_NO_STATE) {
        backup.state = static_cast<EState>(state);
    }
    backup.timeStamp = textOrNothing(fi_rotation_call_backup_time_stamp(call, index));
    const char* const reason = fi_rotation_call_backup_reason(call, index);
    if (reason != nullptr) {
        backup.reason = SReason{reason, fi_rotation_call_backup_reason_text(call, index)};
    }
    for (std::int32_t i = 0; i < fi_rotation_call_backup_target_count(call, index); ++i) {
        backup.targets.emplace_back(fi_rotation_call_backup_target(call, index, i));
    }
    return backup;
}

inline SOutcome outcomeOf(const fi_rotation_call* call, EOutcome kind) {
    SOutcome outcome;
    outcome.kind = kind;
    outcome.message = fi_rotation_call_message(call);
    outcome.selection = textOrNothing(fi_rotation_call_selection(call));
    outcome.problems = problemsOf(call);
    for (std::int32_t i = 0; i < fi_rotation_call_configuration_count(call); ++i) {
        outcome.configurations.push_back(configurationOf(call, i));
    }
    for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
        outcome.backups.push_back(backupOf(call, i));
    }
    for (const SProblem& problem : outcome.problems) {
        if (problem.backup.has_value()) {
            outcome.backups[*problem.backup].problems.insert(problem.kind);
        }
    }
    return outcome;
}

}  // namespace detail

inline SOutcome rotate(const std::string& configuration, const std::vector<SBackup>& backups,
                       const SOptions& options) {
    const detail::Call call = detail::makeCall(configuration, backups, options);
    detail::STrace trace{options.trace, nullptr};
    if (options.trace) {
        fi_rotation_call_set_trace(call.get(), options.traceLevel, detail::receiveTrace, &trace);
    }
    return detail::outcomeOf(call.get(), detail::run(call.get(), trace));
}

}  // namespace v1
}  // namespace fi_rotation

#endif
