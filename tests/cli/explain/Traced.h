#pragma once

#include <string>
#include <vector>

#include "cli/explain/log.h"
#include "host/call.h"
#include "host/outcome.h"

namespace fi_test {

// Makes the call; `lines` gets its trace as fi-rotate writes it.
fi_rotate::SOutcome traced(const fi_rotate::SCall& call, std::vector<std::string>& lines);

// What a log of these lines tells.
std::vector<fi_rotate::SLoggedCall> callsOf(const std::vector<std::string>& lines);

// Everything of an outcome that its trace tells, for comparisons. Time stamps are told of some backups only.
std::string told(const fi_rotate::SOutcome& outcome);

}  // namespace fi_test
