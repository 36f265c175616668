#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "host/account.h"
#include "host/call_handle.h"
#include "host/host.h"

// The functions of the host library that give the results of a run.

using fi_rotate::SBackupOutcome;
using fi_rotate::SConfigurationOfDecision;
using fi_rotate::SProblem;

namespace {

// The element at an index that a host gave; null when it is out of range.
template <typename Sequence>
auto elementOf(const Sequence& sequence, std::int32_t index) -> const typename Sequence::value_type* {
    const bool isInside = index >= 0 && static_cast<std::size_t>(index) < sequence.size();
    return isInside ? &sequence[static_cast<std::size_t>(index)] : nullptr;
}

template <typename Sequence>
std::int32_t countOf(const Sequence& sequence) {
    return static_cast<std::int32_t>(sequence.size());
}

constexpr std::int32_t kNothing = -1;

template <typename Number>
std::int32_t numberOrMinusOne(const std::optional<Number>& number) {
    return number.has_value() ? static_cast<std::int32_t>(*number) : kNothing;
}

const SProblem* problemOf(const fi_rotation_call* call, std::int32_t problem) {
    return call != nullptr ? elementOf(call->decision.problems, problem) : nullptr;
}

const SConfigurationOfDecision* configurationOf(const fi_rotation_call* call, std::int32_t configuration) {
    return call != nullptr ? elementOf(call->decision.configurations, configuration) : nullptr;
}

const fi_rotate::STargetOfDecision* targetOf(const fi_rotation_call* call, std::int32_t configuration,
                                             std::int32_t target) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? elementOf(found->targets, target) : nullptr;
}

// What is known of a backup; null unless the last run decided.
const SBackupOutcome* backupOf(const fi_rotation_call* call, std::int32_t backup) {
    const bool isDecided = call != nullptr && call->decision.kind <= FI_ROTATION_TOO_FEW_BACKUPS;
    return isDecided ? elementOf(call->decision.outcome.backups, backup) : nullptr;
}

const fi_rotate::SReason* reasonOf(const fi_rotation_call* call, std::int32_t backup) {
    const SBackupOutcome* const found = backupOf(call, backup);
    return found != nullptr && found->reason.has_value() ? &*found->reason : nullptr;
}

}  // namespace

std::int32_t fi_rotation_call_problem_count(const fi_rotation_call* call) {
    return call != nullptr ? countOf(call->decision.problems) : 0;
}

std::uint32_t fi_rotation_call_problem_kind(const fi_rotation_call* call, std::int32_t problem) {
    const SProblem* const found = problemOf(call, problem);
    return found != nullptr ? found->kind : 0;
}

std::int32_t fi_rotation_call_problem_backup(const fi_rotation_call* call, std::int32_t problem) {
    const SProblem* const found = problemOf(call, problem);
    return found != nullptr ? numberOrMinusOne(found->backup) : kNothing;
}

const char* fi_rotation_call_problem_text(const fi_rotation_call* call, std::int32_t problem) {
    const SProblem* const found = problemOf(call, problem);
    return found != nullptr ? found->text.c_str() : nullptr;
}

const char* fi_rotation_call_selection(const fi_rotation_call* call) {
    const bool isSelected = call != nullptr && call->decision.outcome.selection.has_value();
    return isSelected ? call->decision.outcome.selection->c_str() : nullptr;
}

std::int32_t fi_rotation_call_configuration_count(const fi_rotation_call* call) {
    return call != nullptr ? countOf(call->decision.configurations) : 0;
}

const char* fi_rotation_call_configuration_first(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? found->first.c_str() : nullptr;
}

const char* fi_rotation_call_configuration_chosen(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr && found->chosen.has_value() ? found->chosen->c_str() : nullptr;
}

std::int32_t fi_rotation_call_configuration_kept(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? numberOrMinusOne(found->kept) : kNothing;
}

std::int32_t fi_rotation_call_target_count(const fi_rotation_call* call, std::int32_t configuration) {
    const SConfigurationOfDecision* const found = configurationOf(call, configuration);
    return found != nullptr ? countOf(found->targets) : 0;
}

const char* fi_rotation_call_target(const fi_rotation_call* call, std::int32_t configuration,
                                    std::int32_t target) {
    const auto* const found = targetOf(call, configuration, target);
    return found != nullptr ? found->name.c_str() : nullptr;
}

std::int32_t fi_rotation_call_target_holder(const fi_rotation_call* call, std::int32_t configuration,
                                            std::int32_t target) {
    const auto* const found = targetOf(call, configuration, target);
    return found != nullptr ? numberOrMinusOne(found->holder) : kNothing;
}

std::int32_t fi_rotation_call_backup_count(const fi_rotation_call* call) {
    return call != nullptr ? countOf(call->inputs.backups) : 0;
}

const char* fi_rotation_call_backup_file(const fi_rotation_call* call, std::int32_t backup) {
    const fi_rotate::SBackup* const found =
        call != nullptr ? elementOf(call->inputs.backups, backup) : nullptr;
    return found != nullptr ? found->file.c_str() : nullptr;
}

std::uint32_t fi_rotation_call_backup_problems(const fi_rotation_call* call, std::int32_t backup) {
    const std::uint32_t* const found = call != nullptr ? elementOf(call->problemsOfBackups, backup) : nullptr;
    return found != nullptr ? *found : 0;
}

fi_rotation_state fi_rotation_call_backup_state(const fi_rotation_call* call, std::int32_t backup) {
    const SBackupOutcome* const found = backupOf(call, backup);
    const bool isKnown = found != nullptr && found->state.has_value();
    return isKnown ? static_cast<fi_rotation_state>(*found->state) : FI_ROTATION_NO_STATE;
}

const char* fi_rotation_call_backup_time_stamp(const fi_rotation_call* call, std::int32_t backup) {
    const SBackupOutcome* const found = backupOf(call, backup);
    return found != nullptr && !found->timeStamp.empty() ? found->timeStamp.c_str() : nullptr;
}

std::int32_t fi_rotation_call_backup_target_count(const fi_rotation_call* call, std::int32_t backup) {
    const fi_rotate::SReason* const reason = reasonOf(call, backup);
    return reason != nullptr ? countOf(reason->targets) : 0;
}

const char* fi_rotation_call_backup_target(const fi_rotation_call* call, std::int32_t backup,
                                           std::int32_t target) {
    const fi_rotate::SReason* const reason = reasonOf(call, backup);
    const std::string* const found = reason != nullptr ? elementOf(reason->targets, target) : nullptr;
    return found != nullptr ? found->c_str() : nullptr;
}

const char* fi_rotation_call_backup_reason(const fi_rotation_call* call, std::int32_t backup) {
    const fi_rotate::SReason* const reason = reasonOf(call, backup);
    // The name is a literal, so it ends with a NUL byte and is never freed.
    return reason != nullptr ? fi_rotate::nameOf(reason->kind).data() : nullptr;
}

const char* fi_rotation_call_backup_reason_text(const fi_rotation_call* call, std::int32_t backup) {
    const bool isKnown = reasonOf(call, backup) != nullptr;
    return isKnown ? call->reasonTexts[static_cast<std::size_t>(backup)].c_str() : nullptr;
}
