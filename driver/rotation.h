#pragma once

#include <cstdint>

class CFiResourceManager;

// The selection across earlier backups: loads their documents, checks and claims their targets,
// releases the oldest releasable ones until every configuration in `manager` has a free target.
// Arguments, outputs and status are those of fi_process_backups; a negative `fiidListSize` stands
// for no entries.
std::int32_t selectByRotation(CFiResourceManager& manager, const char* const* fiidList,
                              std::int32_t* fiidFlags, std::int32_t fiidListSize, char** resultString);
