#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/base/file.h"
#include "cli/base/terminal.h"
#include "cli/base/text.h"
#include "cli/command/command.h"
#include "cli/command/subcommands.h"
#include "cli/explain/log.h"
#include "cli/outcome/json.h"
#include "cli/outcome/table.h"

namespace fi_rotate {
namespace {

constexpr const char* kFooter = R"(Example:
  fi-rotate explain --only rotated,invalid /var/log/backup.log.1 /var/log/backup.log

A log is a file that select --trace-file has written, or any log that contains the messages of the library at the
levels 3 and 4, each after a prefix of the host such as time, process and level. Other lines between them are
ignored. Calls that overlap are told apart by the process or thread in the prefix. A call may continue in the next
log. When lines that matter are missing, the output says which, and gives no reason that depends on them: without
the beginning of a call it gives none and may miss backups, too, so give the older log first.

The trace does not contain the selection of a first backup, unless the product uses the host library, nor the
time stamp of a backup whose objid or altobjid matches no configuration, nor any before an exception.)";

struct SOptions {
    std::vector<std::string> logs{"-"};
    std::optional<std::size_t> call;
    std::set<std::string> shownStates;
    bool json = false;
};

constexpr const char* kStandardInput = "standard input";

void readLog(std::istream& log, const std::string& name, CLogReader& reader) {
    reader.beginLog(name);
    std::string line;
    while (std::getline(log, line)) {
        reader.readLine(line);
    }
    if (log.bad()) {
        throw CLI::ValidationError("LOG", "cannot read " + printableInQuotes(name) + ": " + errorText());
    }
}

std::vector<SLoggedCall> readCalls(const std::vector<std::string>& names) {
    CLogReader reader;
    for (const std::string& name : names) {
        if (name == "-") {
            readLog(std::cin, kStandardInput, reader);
            continue;
        }
        std::ifstream log(name, std::ios::binary);
        if (!log) {
            throw CLI::ValidationError("LOG", "cannot read " + printableInQuotes(name) + ": " + errorText());
        }
        readLog(log, name, reader);
    }
    return reader.finish();
}

std::vector<SLoggedCall> chosenCalls(std::vector<SLoggedCall> calls, std::optional<std::size_t> number) {
    if (!number.has_value()) {
        return calls;
    }
    if (*number > calls.size()) {
        return {};
    }
    return {std::move(calls[*number - 1])};
}

std::string inWords(const std::vector<std::string>& logs) {
    if (logs.size() > 1) {
        return fmt::format("these {} logs", logs.size());
    }
    return logs.front() == "-" ? kStandardInput : printableInQuotes(logs.front());
}

void reportNoCall(const SOptions& options, std::size_t count) {
    if (count == 0) {
        printError("there is no call of the library in " + inWords(options.logs) +
                   "; a log must contain the library's trace, and not only the middle of a call");
    } else {
        printError(fmt::format("there is no call {} in {}; the calls are numbered from 1 to {}",
                               *options.call, inWords(options.logs), count));
    }
}

std::string toTables(const std::vector<SLoggedCall>& calls, const SView& view) {
    std::string text;
    for (const SLoggedCall& call : calls) {
        text += (text.empty() ? "" : "\n") + toTables(call, view, widthOfOutput(), wantsColour());
    }
    return text;
}

int runExplain(const SOptions& options) {
    std::vector<SLoggedCall> all = readCalls(options.logs);
    const std::size_t count = all.size();
    const std::vector<SLoggedCall> calls = chosenCalls(std::move(all), options.call);
    if (calls.empty()) {
        reportNoCall(options, count);
        return kExitNegative;
    }
    const SView view{options.shownStates, true};
    return printOrReport(options.json ? toJson(calls, view) : toTables(calls, view)) ? kExitDone
                                                                                     : kExitNotWritten;
}

}  // namespace

void addExplain(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<SOptions>();
    CLI::App& explain =
        *app.add_subcommand("explain", "Explain past calls of the library from its trace in log files");
    setFooter(explain, kFooter);
    explain
        .add_option("LOG", options->logs,
                    "The log files, the oldest first; - or no file means standard input")
        ->type_name("");
    constexpr std::size_t kMostCalls = 1000000000;
    CLI::Option* const call =
        explain.add_option("--call", options->call, "Show only this call; calls are numbered from 1")
            ->type_name("N");
    requireWholeNumber(*call, 1, kMostCalls);
    addOnlyOption(explain, options->shownStates);
    explain.add_flag("--json", options->json, "Show the calls as one JSON document");
    explain.callback([options, &exitStatus] { exitStatus = runExplain(*options); });
}

}  // namespace fi_rotate
