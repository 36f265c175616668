// Any bytes are a log. Its calls stand one behind the other; what is shown of them keeps to its lines and is
// JSON that a program can read; a reason is given only where nothing is missing in between.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/explain/log.h"
#include "cli/outcome/json.h"
#include "cli/outcome/table.h"
#include "fuzz/require.h"

namespace {

using fi_rotate::SLoggedCall;

const fi_rotate::SView kWithReasons{{}, true};

void requireOrder(const std::vector<SLoggedCall>& calls) {
    std::size_t last = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        require(calls[i].number == i + 1, "calls are numbered in order");
        require(calls[i].firstLine > last, "a call begins behind the one before");
        require(calls[i].lastLine >= calls[i].firstLine, "a call ends behind its beginning");
        last = calls[i].lastLine;
    }
}

// Only the missing end leaves reasons standing.
bool lacksLinesInBetween(const SLoggedCall& call) {
    for (const std::string& missing : call.missing) {
        if (missing.rfind("its end", 0) != 0 && missing.rfind("the flag word", 0) != 0) {
            return true;
        }
    }
    return false;
}

void requireReasons(const SLoggedCall& call) {
    for (const auto& backup : call.outcome.backups) {
        require(!backup.reason.has_value() || !lacksLinesInBetween(call),
                "a reason is given only where all is known");
        require(!backup.state.has_value() || call.outcome.selection.has_value(),
                "a state is handed back only with a selection");
    }
}

void requireReadable(const std::vector<SLoggedCall>& calls) {
    require(nlohmann::json::parse(toJson(calls, kWithReasons))["calls"].size() == calls.size(),
            "every call is in the JSON");
    for (const SLoggedCall& call : calls) {
        constexpr std::size_t kWidth = 80;
        for (const char character : toTables(call, kWithReasons, kWidth, false)) {
            require(static_cast<unsigned char>(character) >= ' ' || character == '\n',
                    "no control character is shown");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view log(reinterpret_cast<const char*>(data), size);
    fi_rotate::CLogReader reader;
    while (!log.empty()) {
        const std::size_t end = log.find('\n');
        reader.read(log.substr(0, end));
        log.remove_prefix(end == std::string_view::npos ? log.size() : end + 1);
    }
    const std::vector<SLoggedCall> calls = reader.finish();
    requireOrder(calls);
    for (const SLoggedCall& call : calls) {
        requireReasons(call);
    }
    requireReadable(calls);
    return 0;
}
