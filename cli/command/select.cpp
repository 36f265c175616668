#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/file.h"
#include "cli/base/terminal.h"
#include "cli/base/text.h"
#include "cli/base/xml_reader.h"
#include "cli/check/document_tree.h"
#include "cli/command/command.h"
#include "cli/command/outputs.h"
#include "cli/command/subcommands.h"
#include "cli/outcome/advice.h"
#include "cli/outcome/failure_words.h"
#include "cli/outcome/json.h"
#include "cli/outcome/picture.h"
#include "cli/outcome/request.h"
#include "cli/outcome/table.h"
#include "cli/picture/svg.h"
#include "host/document_file.h"
#include "host/library_call.h"
#include "host/outcome.h"
#include "host/safe_call.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

constexpr const char* kFooter = R"(Example:
  fi-rotate select --config 'encA##lun1;encA##snap1;snap2' --exclude monday.xml monday.xml tuesday.xml

  fi-rotate select --request call.json --only rotated,invalid

FIID is the document of an earlier backup. Give the documents of all of them, or none for the first backup. They are
loaded in the order given. When one cannot be opened, it and all documents after it are ignored, and so is a document
without a Node: they are "not loaded", and the targets of their backups may be chosen; so may those that a damaged
document does not name any more. With --strict nothing is decided then. State "-" (null in JSON): there is no
selection, so the library returns no states.

A request is a file with a whole call as JSON; the JSON Schema fi-rotate-request.json describes it. Relative file
names in it are relative to the current folder.)";

// In the order of EOrder.
constexpr std::array<std::string_view, 3> kOrders{"argument", "time", "release"};
static_assert(kOrders.size() == static_cast<std::size_t>(EOrder::kCount));

struct SOptions {
    SCallOptions call;
    std::optional<std::string> savedRequest;
    // States of the backups to show; all when there is none.
    std::set<std::string> shownStates;
    std::vector<std::string> excluded;
    std::vector<std::string> flagWords;
    bool isStrict = false;
    std::size_t leastKept = 0;
    std::string order{kOrders.front()};
    bool explain = false;
    bool json = false;
    bool trace = false;
    std::optional<std::string> traceFile;
    std::optional<std::string> svgFile;
    bool isForced = false;
    std::vector<std::string> files;
};

void requireListed(const std::string& option, const std::string& file, const std::set<std::string>& listed) {
    if (listed.count(file) == 0) {
        throw CLI::ValidationError(
            option, fmt::format("{} is not among the documents given; write its name exactly as there, and "
                                "repeat {} for each file",
                                printableInQuotes(file), option));
    }
}

// Splits FILE=N at the last '=', because a name may contain one.
std::pair<std::string, std::int32_t> parseFlagWord(const std::string& text) {
    const std::size_t separator = text.rfind('=');
    std::int32_t flagWord = 0;
    if (separator != std::string::npos) {
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + separator + 1, end, flagWord);
        if (error == std::errc() && stop == end) {
            return {text.substr(0, separator), flagWord};
        }
    }
    throw CLI::ValidationError("--flags",
                               printableInQuotes(text) + " is not FILE=N with N a whole number of 32 bits");
}

std::vector<SBackup> backupsOf(const SOptions& options) {
    const std::set<std::string> listed(options.files.begin(), options.files.end());
    std::map<std::string, std::int32_t> flagWords;
    for (const std::string& text : options.flagWords) {
        const auto [file, flagWord] = parseFlagWord(text);
        requireListed("--flags", file, listed);
        if (!flagWords.emplace(file, flagWord).second) {
            throw CLI::ValidationError("--flags", printableInQuotes(file) + " has a flag word already");
        }
    }
    for (const std::string& file : options.excluded) {
        requireListed("--exclude", file, listed);
        flagWords[file] |= FI_EXCLUDE_ROTATION;
    }

    std::vector<SBackup> backups;
    for (const std::string& file : options.files) {
        const auto found = flagWords.find(file);
        backups.push_back({file, found != flagWords.end() ? found->second : 0});
    }
    return backups;
}

SCall callOf(const SOptions& options) {
    SCall call = readCallWithoutNul(options.call);
    if (!options.call.request.has_value()) {
        call.backups = backupsOf(options);
    }
    return call;
}

// What the command shows of a call.
struct SShownCall {
    SOutcome outcome;
    // An input is missing or damaged, so nothing was decided.
    bool isRefused = false;
    // A configuration would keep too few backups, so nothing was decided.
    bool isTooFew = false;
};

bool isMalformed(const SBackupOutcome& backup) {
    return backup.reading.has_value() && backup.reading->isMalformed;
}

bool areAllReadWhole(const SOutcome& outcome) {
    return std::all_of(outcome.backups.begin(), outcome.backups.end(),
                       [](const SBackupOutcome& backup) { return backup.isLoaded && !isMalformed(backup); });
}

std::string whyNotLoaded(const SBackupOutcome& backup, bool isFirstUnread) {
    if (backup.reading.has_value()) {
        return isMalformed(backup) ? "it cannot be read to its end as XML" : "it has no Node";
    }
    if (!isFirstUnread) {
        return "a document before it cannot be opened";
    }
    const SDocumentFile file = inspectDocument(backup.given.file, SSafety().mostBytes, false);
    return "it " + (file.problems.empty() ? "could not be opened" : file.problems.front().fault);
}

// A document that was read in part names a backup without all of its targets, which look free then.
void reportNotReadWhole(const SOutcome& outcome) {
    bool isFirstUnread = true;
    for (const SBackupOutcome& backup : outcome.backups) {
        if (!backup.isLoaded) {
            printError(backup.given.file + " was ignored: " + whyNotLoaded(backup, isFirstUnread));
            isFirstUnread = isFirstUnread && backup.reading.has_value();
        } else if (isMalformed(backup)) {
            printError(
                backup.given.file +
                " was read only in part: it cannot be read to its end as XML; fi-rotate check shows where");
        }
    }
    if (outcome.selection.has_value() && !areAllReadWhole(outcome)) {
        printError(
            "the chosen targets may hold the snapshots of these backups; make the documents readable first");
    }
}

void reportWhatWentWrong(const SShownCall& call, bool isTraceShown) {
    const SOutcome& outcome = call.outcome;
    for (const std::string& message : outcome.messages) {
        // The trace on standard error contains the message already.
        const bool isTold = isTraceShown && !call.isRefused && !call.isTooFew;
        // The exception is printed below, with its reason.
        const bool isOfException = outcome.exception.has_value() &&
                                   argumentsOf(ETraceText::kMalformedIdentifier, message).has_value();
        const std::string words = failureInWords(message);
        if (!isTold && !isOfException && !words.empty()) {
            printError(words);
        }
    }
    if (outcome.exception.has_value()) {
        const SException& exception = *outcome.exception;
        printError(exception.identifier.has_value() ? fmt::format("malformed identifier \"{}\": {}",
                                                                  *exception.identifier, exception.reason)
                                                    : "an exception left the library: " + exception.reason);
        return;
    }
    if (call.isRefused) {
        printError("nothing was decided, because these inputs are missing or damaged");
        return;
    }
    reportNotReadWhole(outcome);
    if (call.isTooFew) {
        printError("nothing was decided, because too few backups would be kept");
        return;
    }
    if (!outcome.selection.has_value()) {
        printError("no selection: at least one configuration has no free target");
    }
}

int exitStatusOf(const SShownCall& call) {
    if (call.isRefused) {
        return kExitNotWhole;
    }
    if (call.outcome.exception.has_value()) {
        return kExitException;
    }
    if (call.isTooFew) {
        return kExitTooFewKept;
    }
    if (!call.outcome.selection.has_value()) {
        return kExitNegative;
    }
    return areAllReadWhole(call.outcome) ? kExitDone : kExitNotWhole;
}

// The trace contains the time stamps of only some backups, so all are read from the documents.
void readTimeStamps(std::vector<SBackupOutcome>& backups) {
    const CXmlLibrary library;
    for (SBackupOutcome& backup : backups) {
        if (backup.isLoaded) {
            backup.timeStamp = readTimeStamp(readFile(backup.given.file).value_or(""));
        }
    }
}

EOrder orderOf(const SOptions& options) {
    return static_cast<EOrder>(std::find(kOrders.begin(), kOrders.end(), options.order) - kOrders.begin());
}

// Does nothing without a file. Prints an error and returns false when not all could be written.
bool saveRequestOrReport(const SCall& call, const SOutput& file) {
    if (!file.file.has_value()) {
        return true;
    }
    std::string text;
    try {
        text = toRequest(call);
    } catch (const std::invalid_argument& fault) {
        throw CLI::ValidationError("--save-request", std::string("cannot save: ") + fault.what());
    }
    return writeAndCommitOrReport(*openOutput(file), text);
}

// Writes the trace to standard error, to a file, or to both; null when it is written nowhere.
TraceSink traceSinkOf(bool isShown, COutputFile* file) {
    if (!isShown && file == nullptr) {
        return nullptr;
    }
    return [isShown, file](int level, const std::string& text) {
        const std::string line = toTraceLine(level, text);
        if (isShown) {
            std::fwrite(line.data(), 1, line.size(), stderr);
        }
        if (file != nullptr) {
            std::fwrite(line.data(), 1, line.size(), file->stream());
        }
    };
}

// The outcome of a call in which nothing was decided: its messages are the problems of its inputs.
SOutcome refusedOutcome(const SCall& call, const SDecision& decision) {
    SOutcome outcome;
    outcome.status = FI_STATUS_FAILURE;
    for (const SBackup& backup : call.backups) {
        SBackupOutcome& row = outcome.backups.emplace_back();
        row.given = backup;
        row.isLoaded = true;
    }
    for (const SProblem& problem : decision.problems) {
        outcome.messages.push_back(problem.text);
        if (problem.backup.has_value()) {
            outcome.backups[*problem.backup].isLoaded = false;
        }
    }
    return outcome;
}

SOutcome makeBareCall(const SCall& call, const SWishes& wishes) {
    SOutcome outcome = runCall(call, wishes);
    if (call.backups.empty() && !outcome.selection.has_value()) {
        // The trace of a first backup does not tell which configuration is short, so the call is made again.
        SWishes configurations;
        configurations.account = true;
        configurations.configurationsOfFirstBackup = true;
        outcome.account = runCall(call, configurations).account;
    }
    return outcome;
}

SShownCall makeCall(const SCall& call, const SWishes& wishes, bool isStrict) {
    const CMutedStandardOutput muted;
    if (!isStrict) {
        return {makeBareCall(call, wishes)};
    }
    SDecision decision = decideSafely(call, wishes, SSafety());
    const bool isRefused = decision.kind == FI_ROTATION_REFUSED;
    return {isRefused ? refusedOutcome(call, decision) : std::move(decision.outcome), isRefused};
}

SShownCall makeCall(const SCall& call, const SWishes& wishes, const SOptions& options) {
    SShownCall made = makeCall(call, wishes, options.isStrict);
    SOutcome& outcome = made.outcome;
    if (outcome.selection.has_value() && outcome.account.has_value()) {
        const auto losses = lossesInWords(*outcome.account, options.leastKept);
        made.isTooFew = !losses.empty();
        outcome.messages.insert(outcome.messages.end(), losses.begin(), losses.end());
    }
    if (made.isTooFew) {
        withdraw(outcome);
    }
    return made;
}

std::optional<SAdvice> adviceFor(const SCall& call, const SOutcome& outcome) {
    if (!outcome.account.has_value() || outcome.account->shortages.empty()) {
        return std::nullopt;
    }
    const CMutedStandardOutput muted;
    return adviseOn(call, outcome, [](const SCall& changed) {
        SWishes wishes;
        wishes.account = true;
        return runCall(changed, wishes);
    });
}

int runSelect(const SOptions& options) {
    const SCall call = callOf(options);
    const SOutput request{"--save-request", options.savedRequest, isRequest};
    const SOutput traceOutput{"--trace-file", options.traceFile, isTraceFileText};
    const SOutput picture{"--svg", options.svgFile, isOwnPicture};
    requireNoFileIsDestroyed({request, traceOutput, picture}, inputsOf(options.call, call), options.isForced);
    const auto trace = openOutput(traceOutput);
    const auto svg = openOutput(picture);
    if (!saveRequestOrReport(call, request)) {
        return kExitNotWritten;
    }

    SWishes wishes;
    wishes.account = true;
    wishes.trace = traceSinkOf(options.trace, trace.get());
    SShownCall made = makeCall(call, wishes, options);
    SOutcome& outcome = made.outcome;
    readTimeStamps(outcome.backups);
    const bool isTraceWritten = trace == nullptr || writeAndCommitOrReport(*trace);
    if (svg != nullptr && !writeAndCommitOrReport(*svg, toSvg(pictureOf(outcome)))) {
        return kExitNotWritten;
    }
    const SView view{options.shownStates, options.explain, orderOf(options)};
    const std::optional<SAdvice> advice = adviceFor(call, outcome);
    const std::string shown = options.json ? toJson(outcome, view, advice)
                                           : toTables(outcome, view, advice, widthOfOutput(), wantsColour());
    const bool isShown = printOrReport(shown);
    reportWhatWentWrong(made, options.trace);
    return isShown && isTraceWritten ? exitStatusOf(made) : kExitNotWritten;
}

}  // namespace

void addSelect(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<SOptions>();
    CLI::App& select = *app.add_subcommand(
        "select", "Choose the targets for a new backup, and show which earlier backups are rotated for it");
    setFooter(select, kFooter);

    CLI::Option_group& configuration = addConfigurationOptions(select, "configuration", options->call);
    CLI::Option* const request = addRequestOption(configuration, options->call);
    select
        .add_option("--save-request", options->savedRequest,
                    "Write the whole call to a file, so that --request can repeat it")
        ->type_name("FILE");

    select.add_option("--exclude", options->excluded, "Never rotate this backup (adds 4 to its flag word)")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->excludes(request);
    select.add_option("--flags", options->flagWords, "Set the flag word of this backup to N")
        ->type_name("FILE=N")
        ->allow_extra_args(false)
        ->excludes(request);
    select.add_flag("--strict", options->isStrict, "Decide nothing when an input is missing or damaged");
    constexpr auto kMostKept = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    CLI::Option* const leastKept =
        select
            .add_option("--keep-at-least", options->leastKept,
                        "Decide nothing unless each configuration keeps N of its backups, or all that it has")
            ->type_name("N");
    requireWholeNumber(*leastKept, 0, kMostKept);
    addOnlyOption(select, options->shownStates);
    select
        .add_option("--sort", options->order,
                    "Sort the backups as they are given, by time stamp, or by when they are released")
        ->type_name("ORDER")
        ->check(CLI::IsMember(kOrders));
    select.add_flag("--explain", options->explain, "Say why each backup is in its state");
    select.add_flag("--json", options->json, "Show the outcome as one JSON document");
    select.add_flag("--trace", options->trace,
                    "Write the library's trace to standard error, each message as a line: level and text");
    select.add_option("--trace-file", options->traceFile, "Write the library's trace to a file")
        ->type_name("FILE");
    select
        .add_option("--svg", options->svgFile,
                    "Draw which backup holds which target, as an SVG picture in a file")
        ->type_name("FILE");
    addForceOption(select, options->isForced);
    select.add_option("FIID", options->files, "The documents of the earlier backups")
        ->type_name("")
        ->excludes(request);

    select.callback([options, &exitStatus] { exitStatus = runSelect(*options); });
}

}  // namespace fi_rotate
