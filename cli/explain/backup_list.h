#pragma once

#include <string>
#include <vector>

#include "host/account_reader.h"
#include "host/outcome.h"

// Which backups the lines of a call in a log tell of.
namespace fi_rotate {

// Whether an excluded backup seems to be rotated, which happens in no call: the flag words are those of one
// call and the states those of another, and the lines between are missing.
bool isExcludedYetRotated(const CAccountReader& account);

// Whether a name has two flag words or two states. Where lines are missing, these may be of two calls. A
// whole call may list a name twice, too.
bool hasNameTwice(const CAccountReader& account);

// All backups that the log names, first those whose flag words it lacks, which is added to `missing`. These
// are left out unless the lines that name them are of one call for certain. When lines of the loading are
// missing, it is not known which backups were ignored, so all count as loaded.
std::vector<SBackupOutcome> backupsOf(const CAccountReader& account, bool areNamesOfOneCall,
                                      std::vector<std::string>& missing);

}  // namespace fi_rotate
