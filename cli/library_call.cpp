#include "cli/library_call.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <set>
#include <system_error>
#include <utility>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

#include "cli/account_reader.h"
#include "cli/trace.h"

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

}  // namespace

SOutcome runCall(SCall call, const std::vector<std::FILE*>& traceOutputs, bool wantsAccount) {
    std::vector<std::int32_t> flags;
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

    outcome.backups = std::move(call.backups);
    for (std::size_t i = 0; i < flags.size(); ++i) {
        SBackup& backup = outcome.backups[i];
        backup.loaded = loaded.count(backup.file) != 0;
        if (backup.loaded && outcome.status == FI_STATUS_SUCCESS) {
            backup.state = flags[i];
        }
    }
    if (wantsAccount) {
        giveReasons(outcome);
    }
    return outcome;
}

}  // namespace fi_rotate
