#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/account.h"

namespace fi_rotate {

// Takes the lines of one call in and keeps what each pass did, in order. Lines that are not the library's are
// passed over.
class CAccountReader {
public:
    // The text of one line, without its line end.
    void read(std::string_view text);

    // Configurations, backups with their pairs and states, and the selection; reasons and shortages are not
    // filled in.
    SAccount account;
    // Places in `account.backups`: of those whose claim was decided, newest first, and whether it was good.
    std::vector<std::pair<std::size_t, bool>> claims;
    // Those that the rotation passed over because they are excluded.
    std::vector<std::size_t> skipped;
    // Those that failed the check.
    std::vector<std::size_t> failedCheck;
    // In the order of the last pass, oldest first; empty without a selection.
    std::vector<std::size_t> oldestFirst;
    bool isWithoutSelection = false;

private:
    bool readTree(std::string_view text);
    bool readConfiguration(std::string_view text);
    bool readLoaded(std::string_view text);
    bool readCheck(std::string_view text);
    bool readClaim(std::string_view text);
    bool readRotation(std::string_view text);
    void readFinalState(std::string_view text);

    // The next backup of this name in this pass. A name listed twice stands for two backups with one content,
    // so it does not matter which of them is taken first.
    std::optional<std::size_t> next(std::string_view pass, std::string_view file);

    // Parsed targets that no printed configuration has taken yet.
    std::vector<std::string> parsedTargets;
    std::size_t usedTargets = 0;
    int printedSets = 0;
    bool isInTree = false;
    std::string objid;
    std::map<std::pair<std::string, std::string>, std::size_t> taken;
};

}  // namespace fi_rotate
