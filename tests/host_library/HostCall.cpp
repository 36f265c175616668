#include "tests/host_library/HostCall.h"

#include <new>
#include <stdexcept>

namespace fi_test {

HostCall newCall(const std::string& configuration, const std::vector<std::string>& files) {
    HostCall call(fi_rotation_call_new(configuration.c_str()));
    if (call == nullptr) {
        throw std::bad_alloc();
    }
    for (const std::string& file : files) {
        if (fi_rotation_call_add(call.get(), file.c_str(), 0) < 0) {
            throw std::runtime_error("cannot be added: " + file);
        }
    }
    return call;
}

std::vector<SHostProblem> problemsOf(const fi_rotation_call* call) {
    std::vector<SHostProblem> problems;
    for (std::int32_t i = 0; i < fi_rotation_call_problem_count(call); ++i) {
        problems.push_back({fi_rotation_call_problem_kind(call, i), fi_rotation_call_problem_backup(call, i),
                            fi_rotation_call_problem_text(call, i)});
    }
    return problems;
}

bool SHostAnswer::operator==(const SHostAnswer& other) const {
    return outcome == other.outcome && selection == other.selection && states == other.states &&
           message == other.message;
}

SHostAnswer answerOf(fi_rotation_call* call) {
    SHostAnswer answer;
    answer.outcome = fi_rotation_call_run(call);
    if (const char* const selection = fi_rotation_call_selection(call)) {
        answer.selection = selection;
    }
    for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
        answer.states.push_back(fi_rotation_call_backup_state(call, i));
    }
    answer.message = fi_rotation_call_message(call);
    return answer;
}

std::string documentOf(const std::string& timeStamp,
                       const std::vector<std::pair<std::string, std::string>>& pairs) {
    std::string xml = "<Node>\n<timeStamp>" + timeStamp + "</timeStamp>\n";
    for (const auto& [first, further] : pairs) {
        xml += "<Node><objid>UDID##v##m##" + first + "</objid><altobjid>UDID##v##m##" + further +
               "</altobjid></Node>\n";
    }
    return xml + "</Node>\n";
}

}  // namespace fi_test
