#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <fi_rotation/CFiUdidException.h>
#include <gtest/gtest.h>

#include "tests/contract/Library.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {

// An earlier backup as the host lists it.
struct SBackup {
    std::string file;
    std::int32_t flagWord = 0;
    // The time stamp of its document, for the lines that are expected.
    std::string timeStamp{};
};

// All that a host sees of one call.
struct SObserved {
    // Nothing when an exception left the call.
    std::optional<std::int32_t> status;
    std::optional<CFiUdidException> exception;
    // Nothing when the target of resultString was left as it was.
    std::optional<std::string> selection;
    std::vector<std::int32_t> flags;
    Trace trace;
    std::string standardOutput;
};

bool operator==(const SObserved& left, const SObserved& right);
std::ostream& operator<<(std::ostream& out, const SObserved& observed);

// Calls the library, and expects that it leaves the words before and behind the flag array alone.
SObserved call(const std::string& configuration, const std::vector<SBackup>& backups);

// The same with a configuration that may be null, and with any size in place of that of the list.
SObserved callWithSize(const char* configuration, const std::vector<SBackup>& backups, std::int32_t size);

// A test with documents in a folder of its own.
class CContractTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder.path(name); }
    std::string write(const std::string& name, const std::string& content) const {
        return folder.write(name, content);
    }

    CTemporaryFolder folder;
};

}  // namespace fi_test
