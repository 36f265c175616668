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

// Says that the flag words of so many backups are missing; one backup is named.
std::string describeMissingFlagWords(const std::string& first, std::size_t count);

// Reads the lines of one call and keeps what each pass of the rotation did, in order. Lines that are not the
// library's are passed over.
class CAccountReader {
public:
    // The text of one line of a log, without its line end, and the number of that line.
    void read(std::string_view text, std::size_t number);
    // The same for a line that is known already: its text, and the arguments that were formatted into it.
    void take(ETraceText kind, const TraceArguments& arguments);

    // Says which lines are missing before the last one that was read: they were lost, or stand among those of
    // another call. Empty when lines are missing only at the end of the call.
    std::vector<std::string> gaps() const;
    // Whether the first line of the call was read, with the configuration.
    bool hasBeginning() const { return isBegun; }
    // Whether the configurations were printed, which follows the loading of all documents.
    bool isFirstSetPrinted() const { return printedSets != 0; }
    // Whether the next line may be one of a document's tree.
    bool isTreeBegun() const { return isInTree; }
    // Whether the call is over: only lines of the last tree may follow.
    bool isEnded() const;

    // Configurations, backups with their pairs and states, and the selection; reasons and shortages are not
    // filled in.
    SAccount account;
    // The flag words of the backups that the call was given, in order.
    std::vector<std::pair<std::string, std::int32_t>> flagWords;
    // The claims, newest backup first: the backup's index in `account.backups`, and whether its claim
    // succeeded.
    std::vector<std::pair<std::size_t, bool>> claims;
    // Indices of the backups that the rotation skipped because they are excluded.
    std::set<std::size_t> skipped;
    // Indices of the backups that failed the check.
    std::vector<std::size_t> failedCheck;
    // Indices of all backups in the order of the last pass; empty without a selection.
    std::vector<std::size_t> oldestFirst;
    // The names and states of the last pass, in order: also those of backups whose loading was not read.
    std::vector<std::pair<std::string, std::int32_t>> finalStates;
    bool isWithoutSelection = false;
    // States of the last pass were read, but not the selection before them.
    bool isSelectionSkipped = false;
    // The malformed identifier that ended the call, if one did.
    std::optional<std::string> malformed;

private:
    struct SParsedTarget {
        std::string enclosure;
        std::string device;
    };

    // The kinds of lines that a tree has for each Node.
    enum class ETreeLine { kObjid, kAltobjid, kType };

    // The loops over the backups that trace a line for each of them. In the last one, the backups that are
    // invalid are told apart from the others.
    enum class EPass { kCheck, kClaim, kRotation, kFinal, kFinalInvalid };

    bool readTree(std::string_view text);
    void endTree();
    void expectTreeLine(ETreeLine line, ETreeLine next);
    void takeOfTree(ETraceText kind, std::string_view inner);
    // These return whether the line can stand here; if not, it is passed over.
    bool takeOther(ETraceText kind, const TraceArguments& arguments);
    bool takePrinted(ETraceText kind, const TraceArguments& arguments);
    bool takeOfBackup(ETraceText kind, const TraceArguments& arguments);
    bool takeParsed(std::string_view file);
    bool takeFinalState(const TraceArguments& arguments);
    bool takeStateWithoutSelection(const TraceArguments& arguments);
    bool takeMalformed(std::string_view identifier);
    void takeCheck(bool isGood, std::string_view file);
    void takeClaim(bool isGood, const TraceArguments& arguments);

    void readPrintedTarget(bool isFirst, const TraceArguments& printed);
    static bool isPrinted(const SParsedTarget& target, bool isFirst, const TraceArguments& printed);
    static void splitAsPrinted(SParsedTarget& target, bool isFirst, const TraceArguments& printed);
    void noteContradiction();

    // The index of the next backup of this name in the pass that traced the line. A name listed twice stands
    // for two backups with one content, so it does not matter which of them is taken first.
    std::optional<std::size_t> takeNextIndex(EPass pass, std::string_view file);
    bool isNamed(std::string_view identifier) const;
    bool isOnlyLastPassRead() const;
    bool isLoadingOver() const;
    bool isExcluded(std::size_t index) const;
    // The names of the loaded backups whose flag words were not read.
    std::vector<std::string> filesWithoutFlagWord() const;
    std::size_t expectedSkips() const;

    // All targets in the parser's lines. The first `usedTargets` of them were found again in the printed set.
    std::vector<SParsedTarget> parsedTargets;
    std::size_t usedTargets = 0;
    bool isBegun = false;
    bool isRejected = false;
    int printedSets = 0;
    bool isInTree = false;
    ETreeLine nextOfTree = ETreeLine::kObjid;
    // Whether a Node of this tree was read. Every tree has one; without it, lines were lost.
    bool hasNode = false;
    std::string objid;
    std::size_t checked = 0;
    // The line that is being read, and its number.
    std::string_view currentLine;
    std::size_t currentNumber = 0;
    // The first line that cannot follow the one before it, and how many such lines there are.
    std::string firstContradiction;
    std::size_t firstNumber = 0;
    std::size_t contradictions = 0;
    // For each name, its indices in `account.backups`, and its last flag word.
    std::unordered_map<std::string, std::vector<std::size_t>> indices;
    std::unordered_map<std::string, std::int32_t> lastFlagWords;
    // For each pass and name, how many of its indices have had their line.
    std::map<std::pair<EPass, std::string>, std::size_t> taken;
};

}  // namespace fi_rotate
