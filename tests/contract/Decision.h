#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

// What a call decides, and the lines of its trace that say so, with a function for each kind of line. Whole
// traces are compared elsewhere: with those in golden/ and with those of tests/model.
namespace fi_test {

// A test with earlier backups in a folder of its own.
class CRotationTest : public CContractTest {
protected:
    SBackup given(const std::string& name, const SNode& document, std::int32_t flagWord = 0) const {
        return {write(name, toXml(document)), flagWord, valueOf(document, "timeStamp")};
    }
};

// The lines of the decision: why a configuration or an argument was rejected, that a file is missing, what
// each pass found of a backup, why there is no selection, and behind a selection the states of targets and
// backups. All other lines are left away, so that later versions may add lines.
Trace decisionIn(const Trace& trace);

// What was observed of a call, with those lines of its trace.
SObserved decisionOf(SObserved observed);
SObserved decided(const std::string& configuration, const std::vector<SBackup>& backups);

// `text` was rejected because it has no `missing`.
Trace rejected(const std::string& text, const std::string& missing);
Trace missingFile();

// The lines that a pass traces, one for each of these backups in order.
Trace matched(const std::vector<SBackup>& backups);
Trace invalid(const std::vector<SBackup>& backups);
Trace claimed(const std::vector<SBackup>& backups);
Trace notClaimed(const std::vector<SBackup>& backups);
Trace skipped(const std::vector<SBackup>& backups);

using Flags = std::vector<std::int32_t>;
using States = std::vector<std::pair<SBackup, int>>;

// A rotation that selects: `lines` come before the selection; behind it come the states of the targets,
// "[ENCLOSURE:DEVICE](STATE)" and "{DEVICE,STATE}", and of the backups, oldest first.
SObserved selected(const std::string& selection, const Flags& flags, const Trace& lines,
                   const std::vector<std::string>& targets, const States& backups);

// A rotation without a selection, and a call that ends with an exception.
SObserved notSelected(const Flags& flags, const Trace& lines);
SObserved thrown(const CFiUdidException& malformed, const Flags& flags, const Trace& lines);

}  // namespace fi_test
