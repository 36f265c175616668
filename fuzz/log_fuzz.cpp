// The input is one or more logs. For every input: calls are in the order in which they begin; what is shown
// of them is printable text, and JSON that a program can read; reasons are given only where no lines are
// missing in between.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/explain/log.h"
#include "cli/outcome/json.h"
#include "cli/outcome/table.h"
#include "fuzz/require.h"

namespace {

using fi_rotate::SLoggedCall;

const fi_rotate::SView kWithReasons{{}, true};

bool isBefore(const fi_rotate::SLogPlace& left, const fi_rotate::SLogPlace& right) {
    return std::tie(left.logNumber, left.line) < std::tie(right.logNumber, right.line);
}

void requireOrder(const std::vector<SLoggedCall>& calls) {
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const SLoggedCall& call = calls[i];
        require(call.number == i + 1, "calls are numbered in order");
        require(call.first.line != 0, "a call begins in a line");
        require(i == 0 || isBefore(calls[i - 1].first, call.first), "a call begins behind the one before");
        require(!isBefore(call.last, call.first), "a call ends behind its beginning");
    }
}

// Whether lines are missing before the end. When only the end is missing, reasons are kept.
bool lacksLinesInBetween(const SLoggedCall& call) {
    for (const std::string& missing : call.missing) {
        const bool isOfEnd = missing.rfind("its end", 0) == 0 || missing.rfind("the states of", 0) == 0 ||
                             missing.rfind("lines between the selection", 0) == 0;
        if (!isOfEnd && missing.rfind("the flag word", 0) != 0) {
            return true;
        }
    }
    return false;
}

void requireReasons(const SLoggedCall& call) {
    for (const auto& backup : call.outcome.backups) {
        require(!backup.reason.has_value() || !lacksLinesInBetween(call),
                "a reason is given only where all is known");
        require(!backup.state.has_value() || call.outcome.selection.has_value() || call.isBeginningMissing,
                "a state is handed back only with a selection, which the log may lack");
    }
}

void requirePrintable(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : ' ');
        const bool isOfTwoBytes = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        require((byte >= ' ' || byte == '\n') && byte != 0x7F && !isOfTwoBytes,
                "no control character is shown");
    }
}

void requireReadable(const std::vector<SLoggedCall>& calls) {
    const std::string json = toJson(calls, kWithReasons);
    require(nlohmann::json::parse(json)["calls"].size() == calls.size(), "every call is in the JSON");
    requirePrintable(json);
    for (const SLoggedCall& call : calls) {
        constexpr std::size_t kWidth = 80;
        requirePrintable(toTables(call, kWithReasons, kWidth, false));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A line with a form feed alone separates logs.
    std::string_view log(reinterpret_cast<const char*>(data), size);
    fi_rotate::CLogReader reader;
    while (!log.empty()) {
        const std::size_t end = log.find('\n');
        const std::string_view line = log.substr(0, end);
        if (line == "\f") {
            reader.beginLog("next");
        } else {
            reader.readLine(line);
        }
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
