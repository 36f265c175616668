#pragma once

#include <cstdint>

namespace fi_test {

using EntryPoint = std::int32_t (*)(const char* const*, const char*, std::int32_t*, std::int32_t, char**);

// fi_process_backups of the built library, loaded once.
EntryPoint entryPoint();

// Another symbol of the library or of those under it; null when there is none.
void* librarySymbol(const char* name);

}  // namespace fi_test
