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
  fi-rotate explain --only rotated,invalid /var/log/backup.log

The log is what --trace-file of select writes, or any log in which each of the library's lines stands behind a
prefix of the host's (time, process, level). Other lines may stand in between. Where lines of a call are
missing, what is known is shown and what is missing is said; no reason is given that could be wrong for it.

A trace does not tell the selection of a first backup, nor the time stamp of a backup that failed the check.)";

struct SOptions {
    std::string log = "-";
    std::optional<std::size_t> call;
    std::set<std::string> shownStates;
    bool json = false;
};

std::vector<SLoggedCall> readCalls(std::istream& log, const std::string& name) {
    CLogReader reader;
    std::string line;
    while (std::getline(log, line)) {
        reader.read(line);
    }
    if (log.bad()) {
        throw CLI::ValidationError("LOG", "cannot read " + quotedPrintable(name) + ": " + errorText());
    }
    return reader.finish();
}

std::vector<SLoggedCall> readCalls(const std::string& name) {
    if (name == "-") {
        return readCalls(std::cin, "standard input");
    }
    std::ifstream log(name, std::ios::binary);
    if (!log) {
        throw CLI::ValidationError("LOG", "cannot read " + quotedPrintable(name) + ": " + errorText());
    }
    return readCalls(log, name);
}

std::vector<SLoggedCall> chosenCalls(std::vector<SLoggedCall> calls, std::optional<std::size_t> number) {
    if (!number.has_value()) {
        return calls;
    }
    if (*number == 0 || *number > calls.size()) {
        return {};
    }
    return {std::move(calls[*number - 1])};
}

void reportNoCall(const SOptions& options, std::size_t count) {
    const std::string log = options.log == "-" ? "standard input" : quotedPrintable(options.log);
    if (count == 0) {
        printError("no call of the library in " + log);
    } else {
        printError(fmt::format("no call {} in {}, which has {}", *options.call, log, count));
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
    std::vector<SLoggedCall> all = readCalls(options.log);
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
    CLI::App& explain = *app.add_subcommand("explain", "Show from a log what calls came to, and why");
    setFooter(explain, kFooter);
    explain.add_option("LOG", options->log, "The log; - or nothing for standard input")->type_name("");
    explain.add_option("--call", options->call, "Show only this call; they are numbered from 1")
        ->type_name("N");
    addOnlyOption(explain, options->shownStates);
    explain.add_flag("--json", options->json, "Show the calls as one JSON document");
    explain.callback([options, &exitStatus] { exitStatus = runExplain(*options); });
}

}  // namespace fi_rotate
