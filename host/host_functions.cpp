#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include <cxxabi.h>

#include <fi_rotation/fi_process_backups.h>

#include "common/CFiDocumentLimits.h"
#include "host/account.h"
#include "host/call_handle.h"
#include "host/host.h"
#include "host/process_lock.h"
#include "host/safe_call.h"

// The functions of the host library that take inputs and run a call. No exception leaves them; only when the
// trace function ends its thread, that unwinds them.

using fi_rotate::SBackupOutcome;
using fi_rotate::SDecision;
using fi_rotate::SProblem;

namespace {

class CTraceFailure : public std::exception {};

// While it exists, the thread cannot be cancelled. At its end, the cancellation state and errno are put back.
class CThreadStateGuard {
public:
    CThreadStateGuard() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState); }
    ~CThreadStateGuard() {
        pthread_setcancelstate(cancelState, nullptr);
        errno = error;
    }
    CThreadStateGuard(const CThreadStateGuard&) = delete;
    CThreadStateGuard& operator=(const CThreadStateGuard&) = delete;

private:
    int error = errno;
    int cancelState = PTHREAD_CANCEL_ENABLE;
};

// Ends the run of a call at the end of the scope, and deletes the call if it was freed meanwhile.
class CRunGuard {
public:
    explicit CRunGuard(fi_rotation_call& running) : call(running) {}
    ~CRunGuard() {
        call.isRunning = false;
        if (call.isAbandoned) {
            delete &call;
        }
    }
    CRunGuard(const CRunGuard&) = delete;
    CRunGuard& operator=(const CRunGuard&) = delete;

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

// Clears the results of the call, and sets these instead. Returns `outcome`.
fi_rotation_outcome replaceResults(fi_rotation_call& call, fi_rotation_outcome outcome, const char* message) {
    call.decision = SDecision();
    call.decision.kind = outcome;
    call.problemsOfBackups.clear();
    call.reasonTexts.clear();
    call.message = message;
    return outcome;
}

fi_rotation_outcome setOutOfMemory(fi_rotation_call& call) {
    return replaceResults(call, FI_ROTATION_OUT_OF_MEMORY, "memory ran out, so nothing was decided");
}

// The message is that of `cause`, if there is memory for it.
fi_rotation_outcome replaceResults(fi_rotation_call& call, fi_rotation_outcome outcome,
                                   const std::exception& cause) {
    replaceResults(call, outcome, "the run failed");
    try {
        call.decision.message = cause.what();
    } catch (const std::bad_alloc&) {
        return setOutOfMemory(call);
    }
    call.message = call.decision.message.c_str();
    return outcome;
}

fi_rotation_outcome decide(fi_rotation_call& call) {
    // What the call shows until the run has ended, or when it never does.
    replaceResults(call, FI_ROTATION_FAILED, "the run has not ended, or its trace function ended the thread");
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

}  // namespace

const char* fi_rotation_version() {
    return FI_ROTATION_VERSION;
}

fi_rotation_call* fi_rotation_call_new(const char* configuration) {
    const CThreadStateGuard guard;
    try {
        auto call = std::make_unique<fi_rotation_call>();
        call->inputs.configuration = configuration != nullptr ? configuration : "";
        return call.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void fi_rotation_call_free(fi_rotation_call* call) {
    const CThreadStateGuard guard;
    if (call != nullptr && call->isRunning) {
        call->isAbandoned = true;
    } else {
        delete call;
    }
}

std::int32_t fi_rotation_call_add(fi_rotation_call* call, const char* file, std::int32_t excluded) {
    const CThreadStateGuard guard;
    if (call == nullptr || call->isRunning) {
        return -1;
    }
    try {
        if (file != nullptr) {
            call->inputs.backups.push_back({file, excluded != 0 ? FI_EXCLUDE_ROTATION : 0});
            return static_cast<std::int32_t>(call->inputs.backups.size()) - 1;
        }
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): the result says so.
    }
    call->isIncomplete = true;
    return -1;
}

void fi_rotation_call_permit(fi_rotation_call* call, std::uint32_t problems) {
    if (call != nullptr && !call->isRunning) {
        call->safety.permitted = problems & ~std::uint32_t{FI_ROTATION_MALFORMED_IDENTIFIER};
    }
}

void fi_rotation_call_limit_document(fi_rotation_call* call, std::uint64_t bytes) {
    if (call != nullptr && !call->isRunning) {
        call->safety.mostBytes = std::min<std::uint64_t>(bytes, CFiDocumentLimits::kMostBytes);
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
    const CThreadStateGuard guard;
    if (call->isRunning.exchange(true)) {
        return FI_ROTATION_MISUSED;
    }
    const CRunGuard run(*call);
    if (call->isIncomplete) {
        return replaceResults(
            *call, FI_ROTATION_OUT_OF_MEMORY,
            "a backup could not be added (memory ran out, or its name was a null pointer), so "
            "nothing is decided; make a new call");
    }
    // There is no catch (...): the unwinding of a thread that a trace function ends must pass, or the process
    // ends. Everything else that comes here is a std::exception: callLibrary and handToTraceFunction see to
    // it.
    try {
        return decide(*call);
    } catch (const std::bad_alloc&) {
        return setOutOfMemory(*call);
    } catch (const CTraceFailure&) {
        return replaceResults(*call, FI_ROTATION_TRACE_FAILED,
                              "the trace function threw an exception, so nothing was decided");
    } catch (const fi_rotate::CProcessLock::CMisuse& misuse) {
        return replaceResults(*call, FI_ROTATION_MISUSED, misuse);
    } catch (const std::exception& failure) {
        return replaceResults(*call, FI_ROTATION_FAILED, failure);
    }
}

const char* fi_rotation_call_message(const fi_rotation_call* call) {
    return call != nullptr ? call->message : "the call could not be made, because memory ran out";
}
