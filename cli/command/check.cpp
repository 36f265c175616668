#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/base/terminal.h"
#include "cli/base/text.h"
#include "cli/check/call_check.h"
#include "cli/check/hazard.h"
#include "cli/check/report.h"
#include "cli/command/command.h"
#include "cli/command/subcommands.h"

namespace fi_rotate {
namespace {

constexpr const char* kFooter = R"(Example:
  fi-rotate check --config-file resource.conf monday.xml tuesday.xml

  fi-rotate check --explain split-value

Checks the inputs of a call without making the call. Give all documents: some mistakes show only when documents
are compared. Each mistake is shown in a line FILE:LINE:COLUMN: error|warning: TEXT [NAME], with the line of the
input under it; NAME is the name of the hazard. In a request, LINE and COLUMN count within the text of the
configuration. A line under a mistake counts what follows from it and where it occurs again; --json lists each of
these with its cause. Of one hazard in one input the first 20 are shown, and the others are counted. The check opens
no other file, even if a document refers to one. --explain with an unknown name lists all names;
fiid-document(5) describes the elements of a document.)";

struct SOptions {
    // The call to check, unless a hazard is explained instead.
    SCallOptions call;
    std::optional<std::string> explained;
    bool json = false;
    std::vector<std::string> files;
};

std::string configurationName(const SCallOptions& options) {
    if (options.request.has_value()) {
        return *options.request + " (configuration)";
    }
    return options.configuration.has_value() ? "--config" : *options.configurationFile;
}

SInputs inputsOf(const SOptions& options) {
    const SCall call = readCall(options.call);
    SInputs inputs{call.configuration, configurationName(options.call), options.files};
    for (const SBackup& backup : call.backups) {
        inputs.files.push_back(backup.file);
    }
    return inputs;
}

int exitStatusOf(const SCounts& counts) {
    if (counts.errors > 0) {
        return kExitNegative;
    }
    return counts.warnings > 0 ? kExitWarnings : kExitDone;
}

constexpr const char* kWhoCanMend = R"(
The backup product writes its documents: do not edit this one, but tell the
maker of the product.
)";

std::string explanationOf(const std::string& name) {
    if (const SHazardKind* const kind = findKind(name)) {
        return fmt::format("{} ({})\n\n{}\n{}", kind->name, nameOf(kind->severity), kind->paragraph,
                           kind->mender == EMender::kMaker ? kWhoCanMend : "");
    }
    std::vector<std::string> names;
    for (const SHazardKind& kind : hazardKinds()) {
        names.emplace_back(kind.name);
    }
    throw CLI::ValidationError(
        "--explain", fmt::format("there is no hazard {}{}\nThe hazards are:\n  {}", printableInQuotes(name),
                                 suggestion(name, names), fmt::join(names, "\n  ")));
}

int runCheck(const SOptions& options) {
    if (options.explained.has_value()) {
        return printOrReport(explanationOf(*options.explained)) ? kExitDone : kExitNotWritten;
    }
    const std::vector<CFindings> found = checkCall(inputsOf(options));
    const bool isWritten =
        printOrReport(options.json ? toJson(found) : toText(found, widthOfOutput(), wantsColour()));
    return isWritten ? exitStatusOf(countAll(found)) : kExitNotWritten;
}

}  // namespace

void addCheck(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<SOptions>();
    CLI::App& check = *app.add_subcommand("check", "Check a configuration and documents for mistakes");
    setFooter(check, kFooter);

    CLI::Option_group& input = addConfigurationOptions(check, "input", options->call);
    CLI::Option* const request = addRequestOption(input, options->call);
    CLI::Option* const explained =
        input
            .add_option("--explain", options->explained,
                        "Say what a hazard means and what to do, and check nothing")
            ->type_name("NAME");
    check.add_flag("--json", options->json, "Show the result as one JSON document")->excludes(explained);
    check.add_option("FIID", options->files, "The documents of the earlier backups")
        ->type_name("")
        ->excludes(request)
        ->excludes(explained);

    check.callback([options, &exitStatus] { exitStatus = runCheck(*options); });
}

}  // namespace fi_rotate
