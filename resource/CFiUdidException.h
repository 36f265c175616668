#ifndef FI_UDID_EXCEPTION_H
#define FI_UDID_EXCEPTION_H

#include <cstdint>
#include <string>

// Thrown for a malformed device or enclosure identifier in a backup's document. It may leave
// fi_process_backups, and a C++ host catches it by reference:
//
//   try {
//       status = fi_process_backups(...);
//   } catch (const CFiUdidException& malformed) {
//       report(malformed.identifier, malformed.code);
//   }
//
// The type is complete in this header, so the host needs no symbol of the library for it. The host
// must use the same C++ runtime library and string layout as the library, and must not unload the
// library while it holds the exception.
class __attribute__((visibility("default"))) CFiUdidException {
public:
    // Reasons, as found in `code`.
    static constexpr std::int32_t kNothingAfterSecondPart = 1;
    static constexpr std::int32_t kNoPrefix = 2;
    static constexpr std::int32_t kNoSeparatorAfterFirstPart = 3;
    static constexpr std::int32_t kNoSeparatorAfterSecondPart = 4;

    // The whole identifier as it stood in the document, in the local code page.
    std::string identifier;
    // Why it was rejected, one of the reasons above.
    std::int32_t code = 0;
};

#endif
