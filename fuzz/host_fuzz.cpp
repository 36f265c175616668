// The input is the choices of a host, a configuration, and documents, separated by lines "%%". For every
// input: a selection is made from whole inputs only and names a free target for each configuration; an
// excluded backup is not rotated; without a selection there are no states; a refusal names an input; with
// everything permitted only a malformed identifier is refused; asking for reasons changes nothing; the same
// call has the same answer again.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <fi_rotation/host.h>

#include "fuzz/parts.h"
#include "fuzz/require.h"
#include "tests/support/TemporaryFolder.h"

// This exists in programs with a leak checker, which would report the roots that a later one of their
// document replaced.
extern "C" __attribute__((weak)) void __lsan_disable();

namespace {

constexpr std::size_t kMostParts = 7;
constexpr std::uint32_t kEverything = 2047;

struct SFree {
    void operator()(fi_rotation_call* call) const { fi_rotation_call_free(call); }
};
using Call = std::unique_ptr<fi_rotation_call, SFree>;

struct SInputs {
    std::string choices;
    std::string configuration;
    std::vector<std::string> files;

    // Whether the host makes the choice of this number.
    bool chooses(std::size_t number) const {
        const std::size_t byte = number / 8;
        return byte < choices.size() && (static_cast<unsigned char>(choices[byte]) >> number % 8 & 1) != 0;
    }
};

// The first choices; the ones after them say which backups are excluded.
enum EChoice : std::size_t { kKeepsOne, kListsOneTwice, kExclusions };

Call newCall(const SInputs& inputs) {
    Call call(fi_rotation_call_new(inputs.configuration.c_str()));
    for (std::size_t i = 0; i < inputs.files.size(); ++i) {
        fi_rotation_call_add(call.get(), inputs.files[i].c_str(), inputs.chooses(kExclusions + i) ? 1 : 0);
    }
    if (inputs.chooses(kListsOneTwice) && !inputs.files.empty()) {
        fi_rotation_call_add(call.get(), inputs.files[0].c_str(), 0);
    }
    fi_rotation_call_keep_at_least(call.get(), inputs.chooses(kKeepsOne) ? 1 : 0);
    return call;
}

// The decision as a host sees it, as text.
std::string told(const fi_rotation_call* call, fi_rotation_outcome outcome) {
    std::string text = std::to_string(outcome) + ' ' + fi_rotation_call_message(call);
    const char* const selection = fi_rotation_call_selection(call);
    text += selection != nullptr ? std::string("\n") + selection : "";
    for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
        text += ' ' + std::to_string(fi_rotation_call_backup_state(call, i));
    }
    return text;
}

void requireNoDecision(const fi_rotation_call* call) {
    require(fi_rotation_call_selection(call) == nullptr,
            "there is a selection only when the outcome says so");
    for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
        require(fi_rotation_call_backup_state(call, i) == FI_ROTATION_NO_STATE, "no decision, no state");
    }
}

// Runs the call with reasons, in which each configuration must have the right free target.
void requireFreeTargets(const fi_rotation_call* call, const SInputs& inputs) {
    for (std::int32_t i = 0; i < fi_rotation_call_configuration_count(call); ++i) {
        const std::string chosen = fi_rotation_call_configuration_chosen(call, i);
        bool isFree = false;
        for (std::int32_t j = 0; j < fi_rotation_call_target_count(call, i); ++j) {
            isFree = isFree || (fi_rotation_call_target(call, i, j) == chosen &&
                                fi_rotation_call_target_holder(call, i, j) == -1);
        }
        require(isFree, "what is chosen is a free target of its configuration");
    }
    for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
        const fi_rotation_state state = fi_rotation_call_backup_state(call, i);
        require(state != FI_ROTATION_NO_STATE, "every backup has its state");
        const bool isExcluded = inputs.chooses(kExclusions + static_cast<std::size_t>(i));
        require(!isExcluded || state != FI_ROTATION_ROTATED, "what is excluded is not rotated");
    }
}

void requireProblems(const fi_rotation_call* call) {
    require(fi_rotation_call_problem_count(call) > 0, "a refusal names an input");
    for (std::int32_t i = 0; i < fi_rotation_call_problem_count(call); ++i) {
        const std::int32_t backup = fi_rotation_call_problem_backup(call, i);
        const std::string text = fi_rotation_call_problem_text(call, i);
        require(backup == -1 || text.find(fi_rotation_call_backup_file(call, backup)) == 0,
                "a problem names its file");
        require(backup == -1 || (fi_rotation_call_backup_problems(call, backup) &
                                 fi_rotation_call_problem_kind(call, i)) != 0,
                "a backup has the problems that are its own");
    }
}

std::string requireAnswer(const SInputs& inputs) {
    const Call call = newCall(inputs);
    const fi_rotation_outcome outcome = fi_rotation_call_run(call.get());
    require(outcome <= FI_ROTATION_REFUSED, "every input has an answer");
    const std::string answer = told(call.get(), outcome);

    fi_rotation_call_ask_reasons(call.get(), 1);
    const fi_rotation_outcome again = fi_rotation_call_run(call.get());
    require(told(call.get(), again) == answer, "the same call has the same answer, with reasons or without");
    if (outcome == FI_ROTATION_SELECTED) {
        require(fi_rotation_call_problem_count(call.get()) == 0, "a selection comes from whole inputs");
        requireFreeTargets(call.get(), inputs);
    } else {
        requireNoDecision(call.get());
    }
    if (outcome == FI_ROTATION_REFUSED) {
        requireProblems(call.get());
    }
    return answer;
}

void requirePermission(const SInputs& inputs) {
    const Call call = newCall(inputs);
    fi_rotation_call_permit(call.get(), kEverything);
    const fi_rotation_outcome outcome = fi_rotation_call_run(call.get());
    require(outcome <= FI_ROTATION_REFUSED, "every input has an answer when all is permitted");
    bool isMalformed = false;
    for (std::int32_t i = 0; i < fi_rotation_call_problem_count(call.get()); ++i) {
        isMalformed =
            isMalformed || fi_rotation_call_problem_kind(call.get(), i) == FI_ROTATION_MALFORMED_IDENTIFIER;
    }
    require((outcome == FI_ROTATION_REFUSED) == isMalformed, "only a malformed identifier is refused then");
}

bool leaveLeaksAlone() {
    if (__lsan_disable != nullptr) {
        __lsan_disable();
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fi_test::CTemporaryFolder folder;
    static const bool isUnwatched = leaveLeaksAlone();
    static_cast<void>(isUnwatched);
    const std::vector<std::string> parts =
        partsOf(std::string(reinterpret_cast<const char*>(data), size), kMostParts);
    SInputs inputs;
    inputs.choices = parts[0];
    // The library reads a configuration up to its first NUL byte.
    inputs.configuration = parts.size() > 1 ? parts[1].c_str() : "";
    for (std::size_t i = 2; i < parts.size(); ++i) {
        inputs.files.push_back(folder.write("backup-" + std::to_string(i) + ".xml", parts[i]));
    }
    requireAnswer(inputs);
    requirePermission(inputs);
    return 0;
}
