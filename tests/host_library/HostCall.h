#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fi_rotation/host.h>

namespace fi_test {

struct SFreeCall {
    void operator()(fi_rotation_call* call) const { fi_rotation_call_free(call); }
};
using HostCall = std::unique_ptr<fi_rotation_call, SFreeCall>;

// A call with these backups, none of them excluded. Throws when one cannot be added.
HostCall newCall(const std::string& configuration, const std::vector<std::string>& files = {});

constexpr std::uint32_t kEveryProblem = 4095;

struct SHostProblem {
    std::uint32_t kind = 0;
    std::int32_t backup = 0;
    std::string text;
};

std::vector<SHostProblem> problemsOf(const fi_rotation_call* call);

// What a call decided, so that two can be compared.
struct SHostAnswer {
    fi_rotation_outcome outcome = FI_ROTATION_FAILED;
    std::optional<std::string> selection;
    std::vector<fi_rotation_state> states;
    std::string message;

    bool operator==(const SHostAnswer& other) const;
};

// Runs the call.
SHostAnswer answerOf(fi_rotation_call* call);

// A document whose outermost Node has this time stamp and holds a device for each pair of a first and a
// further target, ENCLOSURE##DEVICE.
std::string documentOf(const std::string& timeStamp,
                       const std::vector<std::pair<std::string, std::string>>& pairs);

}  // namespace fi_test
