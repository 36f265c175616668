#include "host/library_call.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

#include "host/explanation.h"
#include "host/identifier.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

// Standard output stands for standard error from construction to destruction.
class CStandardOutputDiversion {
public:
    CStandardOutputDiversion() : saved(duplicateStandardOutput()) {
        if (saved == -1 || dup2(STDERR_FILENO, STDOUT_FILENO) == -1) {
            throw std::system_error(errno, std::generic_category(), "cannot divert standard output");
        }
    }
    ~CStandardOutputDiversion() {
        std::fflush(stdout);
        dup2(saved, STDOUT_FILENO);
        close(saved);
    }
    CStandardOutputDiversion(const CStandardOutputDiversion&) = delete;
    CStandardOutputDiversion& operator=(const CStandardOutputDiversion&) = delete;

private:
    // What was written before the diversion must not follow it.
    static int duplicateStandardOutput() {
        std::fflush(stdout);
        return dup(STDOUT_FILENO);
    }

    int saved;
};

struct SFree {
    void operator()(char* text) const { std::free(text); }
};

// Status and selection, or the exception; `flags` is overwritten as the library does.
void callLibrary(const SCall& call, std::vector<std::int32_t>& flags, SOutcome& outcome) {
    std::vector<const char*> files;
    files.reserve(call.backups.size());
    for (const SBackup& backup : call.backups) {
        files.push_back(backup.file.c_str());
    }

    const CStandardOutputDiversion diversion;
    try {
        char* result = nullptr;
        outcome.status = fi_process_backups(files.data(), call.configuration.c_str(), flags.data(),
                                            static_cast<std::int32_t>(files.size()), &result);
        const std::unique_ptr<char, SFree> selection(result);
        if (outcome.status == FI_STATUS_SUCCESS) {
            outcome.selection = selection.get();
        }
    } catch (const CFiUdidException& malformed) {
        outcome.exception =
            SException{malformed.identifier, malformed.code, std::string(identifierFault(malformed.code))};
    } catch (const std::exception& other) {
        outcome.exception = SException{std::nullopt, std::nullopt, other.what()};
    } catch (...) {
        outcome.exception = SException{std::nullopt, std::nullopt, "an exception of an unknown type"};
    }
}

constexpr int kFailureLevel = 3;

std::string formatted(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

std::string withoutLineEnd(std::string text) {
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

// Receives the library's trace from its construction to its destruction; at most one exists at a time.
// Lines are formatted only where somebody reads them: the trace of a large document is many times its
// size.
class CTraceReceiver {
public:
    // Each call is written to every stream of `streams`, which are borrowed. `reader`, which is borrowed and
    // may be null, gets each text without its line end.
    CTraceReceiver(std::vector<std::FILE*> streams, CAccountReader* reader);
    ~CTraceReceiver();
    CTraceReceiver(const CTraceReceiver&) = delete;
    CTraceReceiver& operator=(const CTraceReceiver&) = delete;

    void receive(int level, const char* format, std::va_list arguments);

    // Names of the documents that were loaded, in order.
    std::vector<std::string> loaded;
    // The failures that the library told of.
    std::vector<std::string> failures;

private:
    std::vector<std::FILE*> outputs;
    CAccountReader* account;
};

// The library's trace call has no context argument, so its receiver must be reachable without one.
CTraceReceiver* activeReceiver = nullptr;

CTraceReceiver::CTraceReceiver(std::vector<std::FILE*> streams, CAccountReader* reader)
    : outputs(std::move(streams)), account(reader) {
    if (activeReceiver != nullptr) {
        throw std::logic_error("the trace has a receiver already");
    }
    activeReceiver = this;
}

CTraceReceiver::~CTraceReceiver() {
    activeReceiver = nullptr;
}

void CTraceReceiver::receive(int level, const char* format, std::va_list arguments) {
    const bool isFailure = level == kFailureLevel && format != formatOf(ETraceText::kFlagWord);
    const bool isLoaded = format == formatOf(ETraceText::kParsed);
    if (outputs.empty() && account == nullptr && !isFailure && !isLoaded) {
        return;
    }
    if (isLoaded) {
        std::va_list again;
        va_copy(again, arguments);
        loaded.emplace_back(va_arg(again, const char*));
        va_end(again);
    }
    const std::string text = withoutLineEnd(formatted(format, arguments));
    if (isFailure) {
        failures.push_back(text);
    }
    if (account != nullptr) {
        account->read(text);
    }
    const std::string line = outputs.empty() ? "" : toTraceLine(level, text);
    for (std::FILE* const output : outputs) {
        std::fwrite(line.data(), 1, line.size(), output);
    }
}

void forward(int level, const char* format, std::va_list arguments) {
    if (activeReceiver != nullptr) {
        activeReceiver->receive(level, format, arguments);
    }
}

}  // namespace

SOutcome runCall(const SCall& call, const std::vector<std::FILE*>& traceOutputs, bool wantsAccount) {
    std::vector<std::int32_t> flags;
    flags.reserve(call.backups.size());
    for (const SBackup& backup : call.backups) {
        flags.push_back(backup.flagWord);
    }

    SOutcome outcome;
    std::set<std::string> loaded;
    {
        CAccountReader reader;
        CTraceReceiver trace(traceOutputs, wantsAccount ? &reader : nullptr);
        callLibrary(call, flags, outcome);
        loaded.insert(trace.loaded.begin(), trace.loaded.end());
        outcome.messages = std::move(trace.failures);
        if (wantsAccount) {
            outcome.account = explain(std::move(reader));
        }
    }

    for (std::size_t i = 0; i < flags.size(); ++i) {
        SBackupOutcome& backup = outcome.backups.emplace_back();
        backup.given = call.backups[i];
        backup.isLoaded = loaded.count(backup.given.file) != 0;
        if (backup.isLoaded && outcome.status == FI_STATUS_SUCCESS) {
            backup.state = flags[i];
        }
    }
    if (wantsAccount) {
        giveReasons(outcome);
    }
    return outcome;
}

}  // namespace fi_rotate

// What the library resolves from its host.
extern "C" __attribute__((format(printf, 2, 3), visibility("default"))) void mofi_tracelog(int level,
                                                                                           const char* format,
                                                                                           ...) {
    std::va_list arguments;
    va_start(arguments, format);
    fi_rotate::forward(level, format, arguments);
    va_end(arguments);
}
