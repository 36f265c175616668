// Hosts have the values of the public constants and the layout of the exception compiled in. This compiles
// only while both are those that the hosts of this major version were built with, on 64-bit Linux with the
// C++ runtime of GCC.
#include <cstddef>
#include <type_traits>

#include "driver/fi_process_backups.h"
#include "host/host.h"
#include "resource/CFiUdidException.h"

static_assert(FI_EXCLUDE_ROTATION == 4);
static_assert(FI_STATUS_SUCCESS == 0);
static_assert(FI_STATUS_FAILURE == 3);
static_assert(FI_BACKUP_KEPT == 0);
static_assert(FI_BACKUP_INVALID == 1);
static_assert(FI_BACKUP_ROTATED == 2);

static_assert(CFiUdidException::kNothingAfterSecondPart == 1);
static_assert(CFiUdidException::kNoPrefix == 2);
static_assert(CFiUdidException::kNoSeparatorAfterFirstPart == 3);
static_assert(CFiUdidException::kNoSeparatorAfterSecondPart == 4);

static_assert(sizeof(CFiUdidException) == 40);
static_assert(alignof(CFiUdidException) == 8);
static_assert(std::is_standard_layout_v<CFiUdidException>);
static_assert(offsetof(CFiUdidException, identifier) == 0);
static_assert(offsetof(CFiUdidException, code) == 32);
static_assert(std::is_same_v<decltype(CFiUdidException::identifier), std::string>);
static_assert(std::is_same_v<decltype(CFiUdidException::code), std::int32_t>);

static_assert(FI_ROTATION_SELECTED == 0);
static_assert(FI_ROTATION_NO_FREE_TARGET == 1);
static_assert(FI_ROTATION_TOO_FEW_BACKUPS == 2);
static_assert(FI_ROTATION_REFUSED == 3);
static_assert(FI_ROTATION_OUT_OF_MEMORY == 4);
static_assert(FI_ROTATION_TRACE_FAILED == 5);
static_assert(FI_ROTATION_MISUSED == 6);
static_assert(FI_ROTATION_FAILED == 7);

static_assert(FI_ROTATION_CONFIGURATION_REJECTED == 1);
static_assert(FI_ROTATION_CANNOT_OPEN == 2);
static_assert(FI_ROTATION_NOT_A_FILE == 4);
static_assert(FI_ROTATION_READ_ERROR == 8);
static_assert(FI_ROTATION_TOO_LARGE == 16);
static_assert(FI_ROTATION_NUL_BYTE == 32);
static_assert(FI_ROTATION_LISTED_TWICE == 64);
static_assert(FI_ROTATION_NOT_WELL_FORMED == 128);
static_assert(FI_ROTATION_NO_NODE == 256);
static_assert(FI_ROTATION_SEVERAL_ROOTS == 512);
static_assert(FI_ROTATION_CHANGED == 1024);
static_assert(FI_ROTATION_MALFORMED_IDENTIFIER == 2048);

static_assert(FI_ROTATION_NO_STATE == -1);
static_assert(FI_ROTATION_KEPT == 0);
static_assert(FI_ROTATION_INVALID == 1);
static_assert(FI_ROTATION_ROTATED == 2);

// They are returned by value.
static_assert(sizeof(fi_rotation_outcome) == 4);
static_assert(sizeof(fi_rotation_state) == 4);
static_assert(std::is_same_v<fi_rotation_trace_fn, void (*)(void*, std::int32_t, const char*)>);
