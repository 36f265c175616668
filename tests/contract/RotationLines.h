#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

// What a call traces about its configuration and its rotation, one function for each thing it says.
namespace fi_test {

// An earlier backup as a call gets it, and what its document holds.
struct SBackup {
    SListed listed;
    SNode document;
};

std::vector<SListed> listed(const std::vector<SBackup>& backups);

// A test with earlier backups in a folder of its own.
class CRotationTest : public CContractTest {
protected:
    SBackup given(const std::string& name, const SNode& document, std::int32_t flagWord = 0) const {
        return {{write(name, toXml(document)), flagWord}, document};
    }
};

// A configuration string that was accepted: what is shown of it, and its targets as enclosure and device.
Trace configurationLines(const std::string& shown,
                         const std::vector<std::pair<std::string, std::string>>& targets);

// The resource set: "[ENCLOSURE:DEVICE](STATE)" and "{DEVICE,STATE}".
Trace setLines(const std::vector<std::string>& lines);

// All that comes before the first backup is checked, when each of the documents is there and `set` is what
// was configured.
Trace openingLines(const std::vector<SBackup>& backups, const std::vector<std::string>& set);

Trace matchLine(const SBackup& backup);
Trace invalidLine(const SBackup& backup);
Trace reservedLine(const SBackup& backup);
Trace notReservedLine(const SBackup& backup);
Trace skippedLine(const SBackup& backup);
Trace notAvailableLine();

struct SOutcome {
    SBackup backup;
    int state;
};

// All that comes after the last release of a call that succeeds. `outcomes` are oldest first.
Trace closingLines(const std::string& selection, const std::vector<std::string>& set,
                   const std::vector<SOutcome>& outcomes);

}  // namespace fi_test
