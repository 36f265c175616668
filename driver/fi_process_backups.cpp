#include "driver/fi_process_backups.h"

#include <optional>
#include <string>
#include <utility>

#include "common/mofi_tracelog.h"
#include "driver/rotation.h"
#include "driver/selection.h"
#include "resource/CFiResourceManager.h"
#include "resource/CFiResourceParser.h"

namespace {

std::int32_t selectForFirstBackup(const CFiResourceManager& manager, char** resultString) {
    mofi_tracelog(kTraceProgress, "fi_process_backups : fiidListSize empty, no previous backups to process");
    const std::optional<std::string> selection = buildSelection(manager.resourceSet);
    if (!selection.has_value()) {
        mofi_tracelog(kTraceFailure, "fi_process_backups : no resource is available");
        return FI_STATUS_FAILURE;
    }
    CMallocedText result = duplicateForCaller(*selection);
    if (result == nullptr) {
        return FI_STATUS_FAILURE;
    }
    *resultString = result.release();
    return FI_STATUS_SUCCESS;
}

}  // namespace

std::int32_t fi_process_backups(const char* const* fiidList, const char* resource_config_string,
                                std::int32_t* fiidFlags, std::int32_t fiidListSize, char** resultString) {
    if ((fiidListSize != 0 && fiidFlags == nullptr) || resultString == nullptr ||
        resource_config_string == nullptr) {
        mofi_tracelog(kTraceFailure, "fi_process_backups : Invalid/empty parameter");
        return FI_STATUS_FAILURE;
    }

    // The parser's status is ignored: the call goes on with the configurations before a rejected one.
    CFiResourceParser parser;
    parser.parse(resource_config_string);
    CFiResourceManager manager;
    manager.resourceSet = std::move(parser.configurations);

    if (fiidListSize == 0) {
        return selectForFirstBackup(manager, resultString);
    }
    return selectByRotation(manager, fiidList, fiidFlags, fiidListSize, resultString);
}
