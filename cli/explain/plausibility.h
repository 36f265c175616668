#pragma once

#include "host/account.h"

namespace fi_rotate {

// Whether a call can have these reasons and this selection. Where a line of a tree was lost, a backup seems
// to hold less than it did: then its state may have no reason, or a target that seems to be free was not
// chosen.
bool isPlausible(const SAccount& account);

// Removes all that depends on what the backups hold.
void withdrawReasons(SAccount& account);

}  // namespace fi_rotate
