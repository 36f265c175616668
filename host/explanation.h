#pragma once

#include "host/account.h"
#include "host/account_reader.h"

namespace fi_rotate {

// The account of a call with earlier backups, whose lines `passes` has read. Without reasons when some are
// missing in between, and with those that were known already when the end is missing.
SAccount explain(CAccountReader passes);

}  // namespace fi_rotate
