// What hosts have compiled into themselves, beside the function: the values of the public constants and the
// layout of the exception, on 64-bit Linux with the C++ runtime of GCC. Compiles as long as they are what the
// hosts of this major version were built with.
#include <cstddef>
#include <type_traits>

#include "driver/fi_process_backups.h"
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
