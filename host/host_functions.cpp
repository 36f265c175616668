#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include <cxxabi.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/account.h"
#include "host/host.h"
#include "host/process_lock.h"
#include "host/safe_call.h"

// The functions of the host library. Nothing leaves them but the end of the thread.

using fi_rotate::SBackupOutcome;
using fi_rotate::SConfigurationOfDecision;
using fi_rotate::SDecision;
using fi_rotate::SProblem;

struct fi_rotation_call {
    fi_rotate::SCall inputs;
    fi_rotate::SSafety safety;
    bool wantsReasons = false;
    std::int32_t traceLevel = fi_rotate::kProgressLevel;
    fi_rotation_trace_fn traceFunction = nullptr;
    void* traceUser = nullptr;
    // A backup could not be added.
    bool isIncomplete = false;

    std::atomic<bool> isRunning = false;
    // It was freed while it ran.
    bool isAbandoned = false;

    SDecision decision;
    // By backup.
    std::vector<std::uint32_t> problemsOfBackups;
    std::vector<std::string> reasonTexts;
    // What decision.message says, or a text that needs no memory.
    const char* message = "the call was not run";
};

namespace {

class CTraceFailure : public std::exception {};

// While it exists, the thread cannot be cancelled; afterwards that and errno are as they were.
class CThreadState {
public:
    CThreadState() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState); }
    ~CThreadState() {
        pthread_setcancelstate(cancelState, nullptr);
        errno = error;
    }
    CThreadState(const CThreadState&) = delete;
    CThreadState& operator=(const CThreadState&) = delete;

private:
    int error = errno;
    int cancelState = PTHREAD_CANCEL_ENABLE;
};

// At the end of the run a call that was freed meanwhile is deleted.
class CRun {
public:
    explicit CRun(fi_rotation_call& running) : call(running) {}
    ~CRun() {
        call.isRunning = false;
        if (call.isAbandoned) {
            delete &call;
        }
    }
    CRun(const CRun&) = delete;
    CRun& operator=(const CRun&) = delete;

private:
    fi_rotation_call& call;
};

void handToTraceFunction(const fi_rotation_call& call, int level, const std::string& text) {
    try {
        call.traceFunction(call.traceUser, level, text.c_str());
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
        throw CTraceFailure();
    }
}

fi_rotate::SWishes wishesOf(const fi_rotation_call& call) {
    fi_rotate::SWishes wishes;
    wishes.account = call.wantsReasons;
    wishes.traceLevel = call.traceLevel;
    if (call.traceFunction != nullptr) {
        wishes.trace = [&call](int level, const std::string& text) {
            handToTraceFunction(call, level, text);
        };
    }
    return wishes;
}

fi_rotation_outcome endWithout(fi_rotation_call& call, fi_rotation_outcome outcome, const char* message) {
    call.decision = SDecision();
    call.decision.kind = outcome;
    call.problemsOfBackups.clear();
    call.reasonTexts.clear();
    call.message = message;
    return outcome;
}

fi_rotation_outcome outOfMemory(fi_rotation_call& call) {
    return endWithout(call, FI_ROTATION_OUT_OF_MEMORY, "memory ran out");
}

// With what an exception says, if there is memory for that.
fi_rotation_outcome endWithout(fi_rotation_call& call, fi_rotation_outcome outcome,
                               const std::exception& cause) {
    endWithout(call, outcome, "the run failed");
    try {
        call.decision.message = cause.what();
    } catch (const std::bad_alloc&) {
        return outOfMemory(call);
    }
    call.message = call.decision.message.c_str();
    return outcome;
}

fi_rotation_outcome decide(fi_rotation_call& call) {
    endWithout(call, FI_ROTATION_FAILED, "the run did not come to its end");
    call.decision = fi_rotate::decideSafely(call.inputs, wishesOf(call), call.safety);
    call.problemsOfBackups.assign(call.inputs.backups.size(), 0);
    for (const SProblem& problem : call.decision.problems) {
        if (problem.backup.has_value()) {
            call.problemsOfBackups[*problem.backup] |= problem.kind;
        }
    }
    for (const SBackupOutcome& backup : call.decision.outcome.backups) {
        call.reasonTexts.push_back(backup.reason.has_value() ? fi_rotate::inWords(*backup.reason) : "");
    }
    call.message = call.decision.message.c_str();
    return call.decision.kind;
}

// An element of a sequence by an index from outside; null when there is none.
template <typename Sequence>
auto elementOf(const Sequence& sequence, std::int32_t index) -> const typename Sequence::value_type* {
    const bool isInside = index >= 0 && static_cast<std::size_t>(index) < sequence.size();
    return isInside ? &sequence[static_cast<std::size_t>(index)] : nullptr;
}

template <typename Sequence>
std::int32_t countOf(const Sequence& sequence) {
    return static_cast<std::int32_t>(sequence.size());
}

constexpr std::int32_t kNothing = -1;

template <typename Number>
std::int32_t numberOr(const std::optional<Number>& number) {
    return number.has_value() ? static_cast<std::int32_t>(*number) : kNothing;
}

const SProblem* problemOf(const fi_rotation_call* call, std::int32_t problem) {
    return call != nullptr ? elementOf(call->decision.problems, problem) : nullptr;
}

const SConfigurationOfDecision* configurationOf(const fi_rotation_call* call, std::int32_t configuration) {
    return call != nullptr ? elementOf(call->decision.configurations, configuration) : nullptr;
}

const fi_rotate::STargetOfDecision* targetOf(const fi_rotation_call* call, std::int32_t configuration,
                                             std::int32_t target) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? elementOf(found->targets, target) : nullptr;
}

// What a run that decided something says of a backup.
const SBackupOutcome* backupOf(const fi_rotation_call* call, std::int32_t backup) {
    const bool isDecided = call != nullptr && call->decision.kind <= FI_ROTATION_TOO_FEW_BACKUPS;
    return isDecided ? elementOf(call->decision.outcome.backups, backup) : nullptr;
}

const fi_rotate::SReason* reasonOf(const fi_rotation_call* call, std::int32_t backup) {
    const SBackupOutcome* const found = backupOf(call, backup);
    return found != nullptr && found->reason.has_value() ? &*found->reason : nullptr;
}

}  // namespace

const char* fi_rotation_version() {
    return FI_ROTATION_VERSION;
}

fi_rotation_call* fi_rotation_call_new(const char* configuration) {
    const CThreadState unchanged;
    try {
        auto call = std::make_unique<fi_rotation_call>();
        call->inputs.configuration = configuration != nullptr ? configuration : "";
        return call.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void fi_rotation_call_free(fi_rotation_call* call) {
    const CThreadState unchanged;
    if (call != nullptr && call->isRunning) {
        call->isAbandoned = true;
    } else {
        delete call;
    }
}

std::int32_t fi_rotation_call_add(fi_rotation_call* call, const char* file, std::int32_t excluded) {
    const CThreadState unchanged;
    if (call == nullptr || call->isRunning) {
        return kNothing;
    }
    try {
        if (file != nullptr) {
            call->inputs.backups.push_back({file, excluded != 0 ? FI_EXCLUDE_ROTATION : 0});
            return countOf(call->inputs.backups) - 1;
        }
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): told by what is returned.
    }
    call->isIncomplete = true;
    return kNothing;
}

void fi_rotation_call_permit(fi_rotation_call* call, std::uint32_t problems) {
    if (call != nullptr && !call->isRunning) {
        call->safety.permitted = problems & ~std::uint32_t{FI_ROTATION_MALFORMED_IDENTIFIER};
    }
}

void fi_rotation_call_limit_document(fi_rotation_call* call, std::uint64_t bytes) {
    if (call != nullptr && !call->isRunning) {
        call->safety.mostBytes = bytes;
    }
}

void fi_rotation_call_keep_at_least(fi_rotation_call* call, std::int32_t backups) {
    if (call != nullptr && !call->isRunning) {
        call->safety.leastKept = backups > 0 ? static_cast<std::size_t>(backups) : 0;
    }
}

void fi_rotation_call_ask_reasons(fi_rotation_call* call, std::int32_t wanted) {
    if (call != nullptr && !call->isRunning) {
        call->wantsReasons = wanted != 0;
    }
}

void fi_rotation_call_set_trace(fi_rotation_call* call, std::int32_t level, fi_rotation_trace_fn function,
                                void* user) {
    if (call != nullptr && !call->isRunning) {
        call->traceLevel = level;
        call->traceFunction = function;
        call->traceUser = user;
    }
}

fi_rotation_outcome fi_rotation_call_run(fi_rotation_call* call) {
    if (call == nullptr) {
        return FI_ROTATION_OUT_OF_MEMORY;
    }
    const CThreadState unchanged;
    if (call->isRunning.exchange(true)) {
        return FI_ROTATION_MISUSED;
    }
    const CRun run(*call);
    if (call->isIncomplete) {
        return endWithout(*call, FI_ROTATION_OUT_OF_MEMORY, "a backup could not be added to the call");
    }
    try {
        return decide(*call);
    } catch (const std::bad_alloc&) {
        return outOfMemory(*call);
    } catch (const CTraceFailure&) {
        return endWithout(*call, FI_ROTATION_TRACE_FAILED, "the trace function threw an exception");
    } catch (const fi_rotate::CProcessLock::CMisuse& misuse) {
        return endWithout(*call, FI_ROTATION_MISUSED, misuse);
    } catch (const std::exception& failure) {
        return endWithout(*call, FI_ROTATION_FAILED, failure);
    }
}

const char* fi_rotation_call_message(const fi_rotation_call* call) {
    return call != nullptr ? call->message : "memory ran out before there was a call";
}

std::int32_t fi_rotation_call_problem_count(const fi_rotation_call* call) {
    return call != nullptr ? countOf(call->decision.problems) : 0;
}

std::uint32_t fi_rotation_call_problem_kind(const fi_rotation_call* call, std::int32_t problem) {
    const SProblem* const found = problemOf(call, problem);
    return found != nullptr ? found->kind : 0;
}

std::int32_t fi_rotation_call_problem_backup(const fi_rotation_call* call, std::int32_t problem) {
    const SProblem* const found = problemOf(call, problem);
    return found != nullptr ? numberOr(found->backup) : kNothing;
}

const char* fi_rotation_call_problem_text(const fi_rotation_call* call, std::int32_t problem) {
    const SProblem* const found = problemOf(call, problem);
    return found != nullptr ? found->text.c_str() : nullptr;
}

const char* fi_rotation_call_selection(const fi_rotation_call* call) {
    const bool isSelected = call != nullptr && call->decision.outcome.selection.has_value();
    return isSelected ? call->decision.outcome.selection->c_str() : nullptr;
}

std::int32_t fi_rotation_call_configuration_count(const fi_rotation_call* call) {
    return call != nullptr ? countOf(call->decision.configurations) : 0;
}

const char* fi_rotation_call_configuration_first(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? found->first.c_str() : nullptr;
}

const char* fi_rotation_call_configuration_chosen(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr && found->chosen.has_value() ? found->chosen->c_str() : nullptr;
}

std::int32_t fi_rotation_call_configuration_kept(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? numberOr(found->kept) : kNothing;
}

std::int32_t fi_rotation_call_target_count(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? countOf(found->targets) : 0;
}

const char* fi_rotation_call_target(const fi_rotation_call* call, std::int32_t configuration,
                                    std::int32_t target) {
    const auto* const found = targetOf(call, configuration, target);
    return found != nullptr ? found->name.c_str() : nullptr;
}

std::int32_t fi_rotation_call_target_holder(const fi_rotation_call* call, std::int32_t configuration,
                                            std::int32_t target) {
    const auto* const found = targetOf(call, configuration, target);
    return found != nullptr ? numberOr(found->holder) : kNothing;
}

std::int32_t fi_rotation_call_backup_count(const fi_rotation_call* call) {
    return call != nullptr ? countOf(call->inputs.backups) : 0;
}

const char* fi_rotation_call_backup_file(const fi_rotation_call* call, std::int32_t backup) {
    const fi_rotate::SBackup* const found =
        call != nullptr ? elementOf(call->inputs.backups, backup) : nullptr;
    return found != nullptr ? found->file.c_str() : nullptr;
}

std::uint32_t fi_rotation_call_backup_problems(const fi_rotation_call* call, std::int32_t backup) {
    const std::uint32_t* const found = call != nullptr ? elementOf(call->problemsOfBackups, backup) : nullptr;
    return found != nullptr ? *found : 0;
}

fi_rotation_state fi_rotation_call_backup_state(const fi_rotation_call* call, std::int32_t backup) {
    const SBackupOutcome* const found = backupOf(call, backup);
    const bool isKnown = found != nullptr && found->state.has_value();
    return isKnown ? static_cast<fi_rotation_state>(*found->state) : FI_ROTATION_NO_STATE;
}

const char* fi_rotation_call_backup_time_stamp(const fi_rotation_call* call, std::int32_t backup) {
    const SBackupOutcome* const found = backupOf(call, backup);
    return found != nullptr && !found->timeStamp.empty() ? found->timeStamp.c_str() : nullptr;
}

std::int32_t fi_rotation_call_backup_target_count(const fi_rotation_call* call, std::int32_t backup) {
    const fi_rotate::SReason* const reason = reasonOf(call, backup);
    return reason != nullptr ? countOf(reason->targets) : 0;
}

const char* fi_rotation_call_backup_target(const fi_rotation_call* call, std::int32_t backup,
                                           std::int32_t target) {
    const fi_rotate::SReason* const reason = reasonOf(call, backup);
    const std::string* const found = reason != nullptr ? elementOf(reason->targets, target) : nullptr;
    return found != nullptr ? found->c_str() : nullptr;
}

const char* fi_rotation_call_backup_reason(const fi_rotation_call* call, std::int32_t backup) {
    const fi_rotate::SReason* const reason = reasonOf(call, backup);
    // A literal.
    return reason != nullptr ? fi_rotate::nameOf(reason->kind).data() : nullptr;
}

const char* fi_rotation_call_backup_reason_text(const fi_rotation_call* call, std::int32_t backup) {
    const bool isKnown = reasonOf(call, backup) != nullptr;
    return isKnown ? call->reasonTexts[static_cast<std::size_t>(backup)].c_str() : nullptr;
}
