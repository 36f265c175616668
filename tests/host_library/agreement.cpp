// Compares the host library with the model on random calls, and ends at the first difference. Every call is
// run as it is, with everything permitted, and with some of that permitted.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <fi_rotation/host.h>

#include "tests/host_library/Expectation.h"
#include "tests/host_library/HostCall.h"
#include "tests/model/DocumentFiles.h"
#include "tests/model/Generator.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_model::SCall;
using fi_test::HostCall;
using fi_test::SExpectedDecision;
using fi_test::SExpectedProblem;

struct SOptions {
    std::uint64_t calls = 2000;
    // The seed of the first call; each further call has the next one.
    std::uint64_t seed = 1;
};

using Tally = std::map<std::string, std::uint64_t>;

const char* nameOf(std::uint32_t kind) {
    switch (kind) {
        case FI_ROTATION_CONFIGURATION_REJECTED:
            return "refused: configuration rejected";
        case FI_ROTATION_CANNOT_OPEN:
            return "refused: cannot open";
        case FI_ROTATION_NOT_A_FILE:
            return "refused: not a file";
        case FI_ROTATION_NUL_BYTE:
            return "refused: NUL byte";
        case FI_ROTATION_LISTED_TWICE:
            return "refused: listed twice";
        case FI_ROTATION_NOT_WELL_FORMED:
            return "refused: not well-formed";
        case FI_ROTATION_NO_NODE:
            return "refused: no Node";
        case FI_ROTATION_SEVERAL_ROOTS:
            return "refused: several roots";
        case FI_ROTATION_MALFORMED_IDENTIFIER:
            return "refused: malformed identifier";
        default:
            return "refused: another kind";
    }
}

HostCall hostCallOf(const SCall& call) {
    constexpr std::int32_t kExcludeBit = 4;
    HostCall made = fi_test::newCall(*call.configuration);
    for (std::size_t i = 0; i < static_cast<std::size_t>(call.listSize); ++i) {
        fi_rotation_call_add(made.get(), call.entries[i].name.c_str(), call.entries[i].flag & kExcludeBit);
    }
    return made;
}

std::vector<SExpectedProblem> namedBy(const fi_rotation_call* call) {
    std::vector<SExpectedProblem> problems;
    for (const auto& problem : fi_test::problemsOf(call)) {
        problems.push_back({problem.kind, problem.backup});
    }
    return problems;
}

bool isPermitted(const std::vector<SExpectedProblem>& problems, std::uint32_t permitted) {
    return std::all_of(problems.begin(), problems.end(), [permitted](const SExpectedProblem& problem) {
        return (permitted & problem.kind) != 0;
    });
}

SExpectedDecision decisionIn(const fi_test::SHostAnswer& answer) {
    SExpectedDecision decision;
    decision.selection = answer.selection;
    decision.states.assign(answer.states.begin(), answer.states.end());
    return decision;
}

// One call and what is expected of it.
class CComparison {
public:
    explicit CComparison(const SCall& made)
        : call(made), problems(fi_test::problemsOf(made)), decisions(fi_test::decisionsOf(made)) {}

    // What is wrong with the library's answer; empty when nothing is.
    std::string run(std::uint32_t permitted, bool wantsReasons, Tally* tally) {
        const HostCall host = hostCallOf(call);
        fi_rotation_call_permit(host.get(), permitted);
        fi_rotation_call_ask_reasons(host.get(), wantsReasons ? 1 : 0);
        const fi_test::SHostAnswer answer = fi_test::answerOf(host.get());
        if (tally != nullptr) {
            note(answer, host.get(), *tally);
        }
        const bool isRefused = !isPermitted(problems, permitted) || decisions.empty();
        if (isRefused != (answer.outcome == FI_ROTATION_REFUSED)) {
            return "outcome " + std::to_string(answer.outcome) + ": " + answer.message;
        }
        return isRefused ? differenceOfRefusal(answer, host.get(), permitted)
                         : differenceOfDecision(answer, host.get(), wantsReasons);
    }

private:
    static void note(const fi_test::SHostAnswer& answer, const fi_rotation_call* host, Tally& tally) {
        ++tally[answer.outcome == FI_ROTATION_SELECTED         ? "selected"
                : answer.outcome == FI_ROTATION_NO_FREE_TARGET ? "no free target"
                : answer.outcome == FI_ROTATION_REFUSED        ? "refused"
                                                               : "another outcome"];
        std::uint32_t kinds = 0;
        for (const SExpectedProblem& problem : namedBy(host)) {
            kinds |= problem.kind;
        }
        for (std::uint32_t kind = 1; kind <= fi_test::kEveryProblem; kind *= 2) {
            if ((kinds & kind) != 0) {
                ++tally[nameOf(kind)];
            }
        }
    }

    std::string differenceOfRefusal(const fi_test::SHostAnswer& answer, const fi_rotation_call* host,
                                    std::uint32_t permitted) const {
        const bool isNothingDecided =
            !answer.selection.has_value() &&
            std::all_of(answer.states.begin(), answer.states.end(),
                        [](fi_rotation_state state) { return state == FI_ROTATION_NO_STATE; }) &&
            fi_rotation_call_configuration_count(host) == 0;
        if (!isNothingDecided) {
            return "something is decided although the call is refused";
        }
        const std::vector<SExpectedProblem> named = namedBy(host);
        if (!std::is_sorted(named.begin(), named.end(),
                            [](const auto& one, const auto& other) { return one.backup < other.backup; })) {
            return "the problems are not in the order of the backups";
        }
        for (const SExpectedProblem& problem : problems) {
            // When a document is refused, its further problems are not looked for.
            const bool isOfBackup =
                std::any_of(named.begin(), named.end(), [&problem, permitted](const SExpectedProblem& one) {
                    return one.backup == problem.backup &&
                           (one.kind == problem.kind || (permitted & one.kind) == 0);
                });
            if (!isOfBackup) {
                return "problem " + std::to_string(problem.kind) + " of backup " +
                       std::to_string(problem.backup) + " is not named";
            }
        }
        const bool isIdentifierAlone = decisions.empty() && isPermitted(problems, permitted);
        const bool isIdentifierNamed = std::any_of(named.begin(), named.end(), [](const auto& one) {
            return one.kind == FI_ROTATION_MALFORMED_IDENTIFIER;
        });
        return isIdentifierAlone && !isIdentifierNamed ? "the malformed identifier is not named" : "";
    }

    std::string differenceOfDecision(const fi_test::SHostAnswer& answer, const fi_rotation_call* host,
                                     bool wantsReasons) const {
        const bool isRight =
            std::find(decisions.begin(), decisions.end(), decisionIn(answer)) != decisions.end() &&
            (answer.outcome == FI_ROTATION_SELECTED) == answer.selection.has_value() &&
            answer.outcome <= FI_ROTATION_NO_FREE_TARGET;
        if (!isRight) {
            return "outcome " + std::to_string(answer.outcome) + ": " + answer.message + "; selection " +
                   answer.selection.value_or("none");
        }
        return differenceOfConfigurations(answer, host, wantsReasons || !answer.selection.has_value());
    }

    std::string differenceOfConfigurations(const fi_test::SHostAnswer& answer, const fi_rotation_call* host,
                                           bool areTargetsKnown) const {
        const fi_model::Configurations expected = fi_test::configurationsOf(call);
        if (fi_rotation_call_configuration_count(host) != static_cast<std::int32_t>(expected.size())) {
            return "the number of configurations";
        }
        std::string selection;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto place = static_cast<std::int32_t>(i);
            const std::string first = fi_rotation_call_configuration_first(host, place);
            if (first != expected[i].enclosure + "##" + expected[i].device) {
                return "the first target of configuration " + std::to_string(i);
            }
            const char* const chosen = fi_rotation_call_configuration_chosen(host, place);
            selection += "[" + first + ";" + (chosen != nullptr ? chosen : "none") + "]";
            if (areTargetsKnown && !areTargetsRight(host, place, expected[i])) {
                return "the targets of configuration " + std::to_string(i);
            }
        }
        return answer.selection.has_value() && selection != *answer.selection ? "the chosen targets" : "";
    }

    // Whether the first free target is the one that is chosen, and all holders are backups of the call.
    static bool areTargetsRight(const fi_rotation_call* host, std::int32_t place,
                                const fi_model::SConfiguration& expected) {
        if (fi_rotation_call_target_count(host, place) !=
            static_cast<std::int32_t>(expected.targets.size())) {
            return false;
        }
        std::optional<std::string> firstFree;
        for (std::size_t i = 0; i < expected.targets.size(); ++i) {
            const std::string name = expected.targets[i].enclosure + "##" + expected.targets[i].device;
            const std::int32_t holder =
                fi_rotation_call_target_holder(host, place, static_cast<std::int32_t>(i));
            if (name != fi_rotation_call_target(host, place, static_cast<std::int32_t>(i)) || holder < -1 ||
                holder >= fi_rotation_call_backup_count(host)) {
                return false;
            }
            if (holder == -1 && !firstFree.has_value()) {
                firstFree = name;
            }
        }
        const char* const chosen = fi_rotation_call_configuration_chosen(host, place);
        return chosen == nullptr ? fi_rotation_call_selection(host) == nullptr : firstFree == chosen;
    }

    const SCall& call;
    const std::vector<SExpectedProblem> problems;
    const std::vector<SExpectedDecision> decisions;
};

// A mixture of problems to permit, another one for each seed.
std::uint32_t someProblems(std::uint64_t seed) {
    return static_cast<std::uint32_t>(seed * 0x9E3779B97F4A7C15U >> 52U) & fi_test::kEveryProblem;
}

bool agrees(const SCall& call, Tally& tally) {
    CComparison comparison(call);
    std::string difference = comparison.run(0, false, &tally);
    if (difference.empty()) {
        difference = comparison.run(0, true, nullptr);
    }
    if (difference.empty()) {
        difference = comparison.run(fi_test::kEveryProblem, true, nullptr);
    }
    if (difference.empty()) {
        difference = comparison.run(someProblems(call.seed), false, nullptr);
    }
    if (!difference.empty()) {
        std::printf("DIFFERENCE at seed %ju: %s\n", std::uintmax_t{call.seed}, difference.c_str());
    }
    return difference.empty();
}

bool compareAll(const SOptions& options) {
    const bool hasMemory = access("/dev/shm", W_OK) == 0;
    const fi_test::CTemporaryFolder folder(hasMemory ? "/dev/shm" : std::filesystem::temp_directory_path());
    std::filesystem::current_path(folder.path(""));
    Tally tally;
    bool isRight = true;
    for (std::uint64_t done = 0; isRight && done < options.calls; ++done) {
        const SCall call = fi_model::makeCall(options.seed + done);
        if (!fi_test::fitsInterface(call)) {
            ++tally["left out: does not fit the interface"];
            continue;
        }
        const fi_model::CDocumentFiles documents(folder, call.files);
        isRight = agrees(call, tally);
    }
    std::filesystem::current_path("/");
    for (const auto& [name, count] : tally) {
        std::printf("%12ju  %s\n", std::uintmax_t{count}, name.c_str());
    }
    return isRight;
}

}  // namespace

int main(int count, char** arguments) {
    SOptions options;
    try {
        options.calls = count > 1 ? std::stoull(arguments[1]) : options.calls;
        options.seed = count > 2 ? std::stoull(arguments[2]) : options.seed;
    } catch (const std::exception&) {
        std::fputs("usage: fi_host_library_agreement [CALLS [SEED]]\n", stderr);
        return EXIT_FAILURE;
    }
    try {
        return compareAll(options) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "fi_host_library_agreement: %s\n", problem.what());
        return EXIT_FAILURE;
    }
}
