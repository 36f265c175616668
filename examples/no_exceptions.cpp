#include "no_exceptions.h"

#include <cstdio>
#include <exception>

#include <fi_rotation/CFiUdidException.h>

// Nothing leaves this function: the last handler takes whatever the others do not.
extern "C" int32_t call_without_exceptions(process_backups_function function, const char* const* fiidList,
                                           const char* resource_config_string, int32_t* fiidFlags,
                                           int32_t fiidListSize, char** resultString, char* problem,
                                           size_t problemSize) {
    try {
        return function(fiidList, resource_config_string, fiidFlags, fiidListSize, resultString);
    } catch (const CFiUdidException& malformed) {
        std::snprintf(problem, problemSize, "malformed device identifier \"%s\" (reason %d)",
                      malformed.identifier.c_str(), static_cast<int>(malformed.code));
    } catch (const std::exception& error) {
        std::snprintf(problem, problemSize, "%s", error.what());
    } catch (...) {
        // The XML library's exception for a shortage of memory is no std::exception.
        std::snprintf(problem, problemSize, "out of memory in the XML library");
    }
    return CALL_ENDED_BY_EXCEPTION;
}
