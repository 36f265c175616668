// The input is a configuration string. For every input: all targets that are read have names and are free; a
// call without backups selects the first further target of each configuration, or fails when one has none;
// the same text has the same answer again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "driver/fi_process_backups.h"
#include "fuzz/Trace.h"
#include "fuzz/require.h"
#include "resource/CFiResourceParser.h"

namespace {

struct SFree {
    void operator()(char* text) const { std::free(text); }
};

struct SAnswer {
    std::int32_t status = -1;
    std::string selection;
    std::uint64_t trace = 0;
};

SAnswer select(const std::string& configuration) {
    SAnswer answer;
    char untouched = 'u';
    char* result = &untouched;
    takeTraceDigest();
    answer.status = fi_process_backups(nullptr, configuration.c_str(), nullptr, 0, &result);
    answer.trace = takeTraceDigest();
    if (answer.status == FI_STATUS_SUCCESS) {
        answer.selection = std::unique_ptr<char, SFree>(result).get();
    } else {
        require(answer.status == FI_STATUS_FAILURE, "a status is 0 or 3");
        require(result == &untouched, "a failure leaves the result alone");
    }
    return answer;
}

void requireNamed(const SFiResourceList& list) {
    require(!list.enclosure.empty() && !list.device.empty(), "a first target has a name");
    require(list.state == kResourceAvailable, "nothing is used yet");
    for (const SFiResource& resource : list.resources) {
        require(!resource.device.empty(), "a further target has a device");
        require(resource.state == kResourceAvailable, "nothing is used yet");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The library reads the text up to its first NUL byte.
    const std::string configuration = std::string(reinterpret_cast<const char*>(data), size).c_str();
    CFiResourceParser parser;
    const std::int32_t status = parser.parse(configuration.c_str());
    require(status == CFiResourceParser::kParsed || status == CFiResourceParser::kRejected ||
                status == CFiResourceParser::kNoConfiguration,
            "a parser's status is 0, 3 or 6");
    require(status != CFiResourceParser::kNoConfiguration || parser.configurations.empty(),
            "no configuration means none");

    std::string expected;
    bool isComplete = true;
    for (const SFiResourceList& list : parser.configurations) {
        requireNamed(list);
        if (list.resources.empty()) {
            isComplete = false;
            break;
        }
        const SFiResource& first = list.resources.front();
        expected +=
            "[" + list.enclosure + "##" + list.device + ";" + first.enclosure + "##" + first.device + "]";
    }

    const SAnswer answer = select(configuration);
    require((answer.status == FI_STATUS_SUCCESS) == isComplete, "a selection is complete or there is none");
    require(!isComplete || answer.selection == expected, "each first further target is selected");

    const SAnswer again = select(configuration);
    require(
        again.status == answer.status && again.selection == answer.selection && again.trace == answer.trace,
        "the same text gives the same answer");
    return 0;
}
