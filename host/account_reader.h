#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/account.h"
#include "host/trace_text.h"

namespace fi_rotate {

// Takes the lines of one call in and keeps what each pass did, in order. Lines that are not the library's are
// passed over.
class CAccountReader {
public:
    // The text of one line of a log, without its line end.
    void read(std::string_view text);
    // The same of a line that is known: which text it is and what stands in the places of its conversions.
    void take(ETraceText kind, const TraceArguments& arguments);

    // What a call cannot be without up to its last line, and yet was not read: lines were lost, or another
    // call's stand in between. Empty for a call that is merely cut off at its end.
    std::vector<std::string> gaps() const;
    // All that could be loaded was read.
    bool isLoadingOver() const { return printedSets != 0; }
    // No line can follow but those of the last tree.
    bool isEnded() const;

    // Configurations, backups with their pairs and states, and the selection; reasons and shortages are not
    // filled in.
    SAccount account;
    // The flag words of the backups that the call was given, in order.
    std::vector<std::pair<std::string, std::int32_t>> flagWords;
    // Places in `account.backups`: of those whose claim was decided, newest first, and whether it was good.
    std::vector<std::pair<std::size_t, bool>> claims;
    // Those that the rotation passed over because they are excluded.
    std::set<std::size_t> skipped;
    // Those that failed the check.
    std::vector<std::size_t> failedCheck;
    // In the order of the last pass, oldest first; empty without a selection.
    std::vector<std::size_t> oldestFirst;
    bool isWithoutSelection = false;
    // A malformed identifier ended the call.
    std::optional<std::string> malformed;

private:
    struct SParsedTarget {
        std::string enclosure;
        std::string device;
    };

    // What a line of a tree tells of its Node.
    enum class ETreeLine { kObjid, kAltobjid, kType };

    bool readTree(std::string_view text);
    void endTree(std::string_view text);
    void follow(ETreeLine line, ETreeLine next, std::string_view text);
    void takeOfTree(ETraceText kind, std::string_view inner, std::string_view text);
    // These say whether the line was one that can stand here.
    bool takeOther(ETraceText kind, const TraceArguments& arguments);
    bool takePrinted(ETraceText kind, const TraceArguments& arguments);
    bool takeOfBackup(ETraceText kind, const TraceArguments& arguments);
    bool takeParsed(std::string_view file);
    bool takeFinalState(const TraceArguments& arguments);
    bool takeMalformed(std::string_view identifier);
    void takeCheck(bool isGood, std::string_view file);
    void takeClaim(bool isGood, const TraceArguments& arguments);

    void readPrintedTarget(bool isFirst, const TraceArguments& printed);
    static bool isPrinted(const SParsedTarget& target, bool isFirst, const TraceArguments& printed);
    void contradict(std::string_view text);

    // The next backup of this name in this pass. A name listed twice stands for two backups with one content,
    // so it does not matter which of them is taken first.
    std::optional<std::size_t> next(std::string_view pass, std::string_view file);
    bool isNamed(std::string_view identifier) const;
    bool isExcluded(std::size_t place) const;
    std::size_t expectedSkips() const;

    // Parsed targets that no printed configuration has taken yet.
    std::vector<SParsedTarget> parsedTargets;
    std::size_t usedTargets = 0;
    bool isBegun = false;
    bool isRejected = false;
    int printedSets = 0;
    bool isInTree = false;
    ETreeLine nextOfTree = ETreeLine::kObjid;
    std::string objid;
    std::size_t checked = 0;
    // Lines that cannot follow the ones before.
    std::string firstContradiction;
    std::size_t contradictions = 0;
    // By name: places in `account.backups`, and the last flag word.
    std::unordered_map<std::string, std::vector<std::size_t>> places;
    std::unordered_map<std::string, std::int32_t> lastFlagWords;
    // By pass and name, how many of the places are done with.
    std::map<std::pair<std::string, std::string>, std::size_t> taken;
};

}  // namespace fi_rotate
