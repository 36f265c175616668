#pragma once

#include <string>
#include <vector>

#include "host/account_reader.h"
#include "host/outcome.h"

// Which backups the lines of a call in a log tell of.
namespace fi_rotate {

// Whether lines that seem to be of one call may be of two: a name has two flag words or two states, or a
// backup is excluded and yet rotated. To be asked only when lines are missing, because a whole call may list
// a name twice.
bool isOfSeveralCalls(const CAccountReader& account);

// All backups that the log names, first those whose flag words it lacks, which is added to `missing`. These
// are left out unless the lines that name them are of one call for certain. When lines of the loading are
// missing, it is not known which backups were ignored, so all count as loaded.
std::vector<SBackupOutcome> backupsOf(const CAccountReader& account, bool areNamesOfOneCall,
                                      std::vector<std::string>& missing);

}  // namespace fi_rotate
