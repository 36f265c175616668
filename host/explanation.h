#pragma once

#include "host/account.h"
#include "host/account_reader.h"

namespace fi_rotate {

// The account of a call with earlier backups, whose lines `reader` has read, with reasons. When lines are
// missing in between, it has no reasons; when the end is missing, it has those that were known by then.
SAccount explain(CAccountReader reader);

}  // namespace fi_rotate
