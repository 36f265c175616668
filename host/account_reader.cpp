#include "host/account_reader.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/trace_text.h"

namespace fi_rotate {
namespace {

std::int32_t numberIn(std::string_view text) {
    std::int32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// The texts that a line of a log is compared with, in order. A text that contains another one comes before
// it, since a line with the longer text also fits the shorter one.
constexpr std::array kInOrder{
    ETraceText::kTarget,          ETraceText::kConfiguration,
    ETraceText::kNoConfiguration, ETraceText::kNoTargets,
    ETraceText::kNoDevice,        ETraceText::kNoEnclosure,
    ETraceText::kResourceSet,     ETraceText::kFirstTarget,
    ETraceText::kFurtherTarget,   ETraceText::kFlagWord,
    ETraceText::kFinalState,      ETraceText::kParsed,
    ETraceText::kCheckPassed,     ETraceText::kCheckFailed,
    ETraceText::kSkipped,         ETraceText::kSelection,
    ETraceText::kNotAvailable,    ETraceText::kClaimed,
    ETraceText::kNotClaimed,      ETraceText::kMalformedIdentifier,
};

// The lines of a Node, in order.
constexpr std::array kOfTree{ETraceText::kNodeObjid, ETraceText::kNodeAltobjid, ETraceText::kNodeType};

// Says how many are missing of the lines that each loaded backup has.
std::string describeMissing(std::string_view lines, std::size_t seen, std::size_t backups) {
    return seen < backups ? fmt::format("{} of {} {}", backups - seen, backups, lines)
                          : fmt::format("the loading of {} of {} backups", seen - backups, seen);
}

// Where the trace tells of more skipped backups than there can have been, it is not known which are excluded,
// or which were rotated.
std::string describeMissingOfExcluded(std::size_t found, std::size_t expected) {
    return found < expected ? fmt::format("lines about {} of {} excluded backups", expected - found, expected)
                            : std::string("lines that say which backups are excluded, or which were rotated");
}

// What the parser's line of a target has between its names.
constexpr std::string_view kBehindEnclosure = "][";

// Where the enclosure ends in the names of a parser's line, if the printed line is that of the same target.
// It has the device of a further target alone; both names of a first target are there with a ':' in between,
// so the first character that differs stands behind the enclosure.
std::size_t endOfEnclosure(std::string_view names, bool isFirst, const TraceArguments& printed) {
    if (!isFirst) {
        return names.size() - std::min(names.size(), kBehindEnclosure.size() + printed[0].size());
    }
    const std::string joined = fmt::format("{}:{}", printed[0], printed[1]);
    const auto differing = std::mismatch(names.begin(), names.end(), joined.begin(), joined.end());
    return static_cast<std::size_t>(differing.first - names.begin());
}

// The arguments of a line, if it is of this kind. Of three kinds only the beginning is compared, and no
// arguments are taken: the texts of two end with the configuration, whose line breaks cut them off in a log;
// and the third has no argument, and is told from all others by its beginning.
std::optional<TraceArguments> argumentsIn(ETraceText kind, std::string_view text) {
    const bool isKnownByStart = kind == ETraceText::kConfiguration || kind == ETraceText::kNoConfiguration ||
                                kind == ETraceText::kNotAvailable;
    if (!isKnownByStart) {
        return argumentsOf(kind, text);
    }
    return startsAs(kind, text) ? std::optional<TraceArguments>(TraceArguments()) : std::nullopt;
}

}  // namespace

std::string describeMissingFlagWords(const std::string& first, std::size_t count) {
    return count == 1 ? fmt::format("the flag word of \"{}\"", first)
                      : fmt::format("the flag words of {} backups", count);
}

void CAccountReader::read(std::string_view text, std::size_t number) {
    currentLine = text;
    currentNumber = number;
    if (isInTree && readTree(text)) {
        return;
    }
    endTree();
    for (const ETraceText kind : kInOrder) {
        const auto arguments = argumentsIn(kind, text);
        if (arguments.has_value() && takeOther(kind, *arguments)) {
            return;
        }
    }
}

void CAccountReader::take(ETraceText kind, const TraceArguments& arguments) {
    const bool isOfTree = std::find(kOfTree.begin(), kOfTree.end(), kind) != kOfTree.end();
    if (isOfTree && isInTree) {
        takeOfTree(kind, arguments[1]);
    } else {
        endTree();
        takeOther(kind, arguments);
    }
}

std::vector<std::string> CAccountReader::gaps() const {
    const bool isRotationOver = account.selection.has_value() || isWithoutSelection;
    const bool isRotationBegun = isRotationOver || !skipped.empty();
    const bool isClaimBegun = isRotationBegun || !claims.empty();
    const bool isCheckBegun = isClaimBegun || checked != 0;
    if (!isBegun) {
        // Without it, the lines that are there seem to contradict each other.
        return {"its beginning, with the configuration: give the earlier log too, before this one"};
    }
    std::vector<std::string> gaps;
    // At another log level they are all missing, which leaves nothing else in doubt.
    if (const auto without = filesWithoutFlagWord(); !flagWords.empty() && !without.empty()) {
        gaps.push_back(describeMissingFlagWords(without.front(), without.size()) +
                       "; lines of two calls may look like one here");
    }
    // The library does not print what it parsed of a configuration that it then rejected.
    if (isCheckBegun && (printedSets == 0 || (!isRejected && usedTargets != parsedTargets.size()))) {
        gaps.emplace_back("lines of the configuration");
    }
    if (isClaimBegun && checked != account.backups.size()) {
        gaps.push_back(describeMissing("lines that say whether a backup agrees with the configuration",
                                       checked, account.backups.size()));
    }
    const std::size_t passed = account.backups.size() - failedCheck.size();
    if (isRotationBegun && claims.size() != passed) {
        gaps.push_back(
            describeMissing("lines that say whether a backup claimed its targets", claims.size(), passed));
    }
    // Any other gap can be the cause of this one.
    const bool isOtherwiseWhole = gaps.empty() && contradictions == 0 && !flagWords.empty();
    if (isOtherwiseWhole && isRotationOver && isEnded() && skipped.size() != expectedSkips()) {
        gaps.push_back(describeMissingOfExcluded(skipped.size(), expectedSkips()));
    }
    if (contradictions != 0) {
        gaps.push_back(
            contradictions == 1
                ? fmt::format("lines somewhere before line {}, \"{}\"", firstNumber, firstContradiction)
                : fmt::format("lines, the first of them somewhere before line {}, \"{}\"", firstNumber,
                              firstContradiction));
    }
    return gaps;
}

// When a name is listed several times, its last flag word counts for all of them.
bool CAccountReader::isExcluded(std::size_t index) const {
    const auto listed = lastFlagWords.find(account.backups[index].file);
    return listed != lastFlagWords.end() && (listed->second & FI_EXCLUDE_ROTATION) != 0;
}

// How many backups the trace must tell to have been skipped: all excluded ones that the rotation came to. It
// stopped behind the last one that it released.
std::size_t CAccountReader::expectedSkips() const {
    std::size_t expected = 0;
    if (!account.selection.has_value()) {
        for (const auto& [index, isGood] : claims) {
            expected += isGood && isExcluded(index) ? 1 : 0;
        }
        return expected;
    }
    std::size_t met = 0;
    for (const std::size_t index : oldestFirst) {
        met += account.backups[index].state == FI_BACKUP_KEPT && isExcluded(index) ? 1 : 0;
        expected = account.backups[index].state == FI_BACKUP_ROTATED ? met : expected;
    }
    return expected;
}

std::vector<std::string> CAccountReader::filesWithoutFlagWord() const {
    std::vector<std::string> files;
    for (const SAccountBackup& backup : account.backups) {
        if (lastFlagWords.count(backup.file) == 0) {
            files.push_back(backup.file);
        }
    }
    return files;
}

bool CAccountReader::isEnded() const {
    constexpr int kSetsWithSelection = 2;
    const bool isHandedOver = account.selection.has_value() && printedSets == kSetsWithSelection &&
                              oldestFirst.size() == account.backups.size();
    return isHandedOver || isWithoutSelection || malformed.has_value();
}

bool CAccountReader::readTree(std::string_view text) {
    return std::any_of(kOfTree.begin(), kOfTree.end(), [this, text](ETraceText kind) {
        const auto inner = nodeTextIn(kind, text);
        if (inner.has_value()) {
            takeOfTree(kind, *inner);
        }
        return inner.has_value();
    });
}

void CAccountReader::takeOfTree(ETraceText kind, std::string_view inner) {
    if (kind == ETraceText::kNodeObjid) {
        expectTreeLine(ETreeLine::kObjid, ETreeLine::kAltobjid);
        objid = inner;
    } else if (kind == ETraceText::kNodeAltobjid) {
        expectTreeLine(ETreeLine::kAltobjid, ETreeLine::kType);
        if (objid.find("UDID##") != std::string::npos) {
            account.backups.back().pairs.add(objid, inner);
        }
    } else {
        expectTreeLine(ETreeLine::kType, ETreeLine::kObjid);
    }
}

void CAccountReader::endTree() {
    if (isInTree && (!hasNode || nextOfTree != ETreeLine::kObjid)) {
        noteContradiction();
    }
    isInTree = false;
}

void CAccountReader::expectTreeLine(ETreeLine line, ETreeLine next) {
    if (nextOfTree != line) {
        noteContradiction();
    }
    nextOfTree = next;
    hasNode = true;
}

bool CAccountReader::takeOther(ETraceText kind, const TraceArguments& arguments) {
    // Only lines of trees and targets follow the last pass: what seemed to be its states told of something
    // else.
    const bool isOfLastPass = kind == ETraceText::kFinalState || kind == ETraceText::kFirstTarget ||
                              kind == ETraceText::kFurtherTarget || kind == ETraceText::kMalformedIdentifier;
    if (!isOfLastPass) {
        finalStates.clear();
    }
    switch (kind) {
        case ETraceText::kTarget:
            parsedTargets.push_back({std::string(arguments[0]), std::string(arguments[1])});
            return true;
        case ETraceText::kConfiguration:
        case ETraceText::kNoConfiguration:
            isBegun = true;
            return true;
        case ETraceText::kNoTargets:
        case ETraceText::kNoDevice:
        case ETraceText::kNoEnclosure:
            isRejected = true;
            return true;
        case ETraceText::kResourceSet:
            ++printedSets;
            return true;
        case ETraceText::kFirstTarget:
        case ETraceText::kFurtherTarget:
            return takePrinted(kind, arguments);
        case ETraceText::kFlagWord:
            flagWords.emplace_back(arguments[0], numberIn(arguments[1]));
            lastFlagWords[flagWords.back().first] = flagWords.back().second;
            return true;
        case ETraceText::kMalformedIdentifier:
            return takeMalformed(arguments[0]);
        default:
            return takeOfBackup(kind, arguments);
    }
}

bool CAccountReader::takePrinted(ETraceText kind, const TraceArguments& arguments) {
    // The set that is printed first, before anything is claimed, tells how many targets each configuration
    // has. Their enclosures are only in the parser's lines.
    if (printedSets != 1 || arguments.back() != kAvailable) {
        return false;
    }
    readPrintedTarget(kind == ETraceText::kFirstTarget, arguments);
    return true;
}

void CAccountReader::readPrintedTarget(bool isFirst, const TraceArguments& printed) {
    if (usedTargets == parsedTargets.size()) {
        noteContradiction();
        return;
    }
    SParsedTarget& target = parsedTargets[usedTargets++];
    splitAsPrinted(target, isFirst, printed);
    if (!isPrinted(target, isFirst, printed) || (!isFirst && account.configurations.empty())) {
        noteContradiction();
        return;
    }
    std::string name;
    name.reserve(target.enclosure.size() + target.device.size() + 2);
    name.append(target.enclosure).append("##").append(target.device);
    if (isFirst) {
        account.configurations.push_back({std::move(name), {}});
    } else {
        account.configurations.back().targets.push_back(std::move(name));
    }
}

// The names may hold the ':' that separates them in the line, so they are compared joined, too.
bool CAccountReader::isPrinted(const SParsedTarget& target, bool isFirst, const TraceArguments& printed) {
    if (!isFirst) {
        return printed[0] == target.device;
    }
    return (printed[0] == target.enclosure && printed[1] == target.device) ||
           fmt::format("{}:{}", printed[0], printed[1]) == target.enclosure + ":" + target.device;
}

// In a log, the parser's line does not tell where the enclosure ends when a name holds what stands behind it.
void CAccountReader::splitAsPrinted(SParsedTarget& target, bool isFirst, const TraceArguments& printed) {
    if (isPrinted(target, isFirst, printed)) {
        return;
    }
    const std::string names = fmt::format("{}{}{}", target.enclosure, kBehindEnclosure, target.device);
    const std::size_t end = endOfEnclosure(names, isFirst, printed);
    if (names.compare(end, kBehindEnclosure.size(), kBehindEnclosure) == 0) {
        target = {names.substr(0, end), names.substr(end + kBehindEnclosure.size())};
    }
}

// Takes a line that names a backup or tells the end of the rotation.
bool CAccountReader::takeOfBackup(ETraceText kind, const TraceArguments& arguments) {
    switch (kind) {
        case ETraceText::kFinalState:
            return takeFinalState(arguments);
        case ETraceText::kParsed:
            return takeParsed(arguments[0]);
        case ETraceText::kCheckPassed:
        case ETraceText::kCheckFailed:
            takeCheck(kind == ETraceText::kCheckPassed, arguments[0]);
            return true;
        case ETraceText::kClaimed:
        case ETraceText::kNotClaimed:
            takeClaim(kind == ETraceText::kClaimed, arguments);
            return true;
        case ETraceText::kSkipped:
            if (const auto index = takeNextIndex(EPass::kRotation, arguments[0])) {
                skipped.insert(*index);
            }
            return true;
        case ETraceText::kSelection:
            account.selection = arguments[0];
            return true;
        case ETraceText::kNotAvailable:
            isWithoutSelection = true;
            return true;
        default:
            return false;
    }
}

bool CAccountReader::takeParsed(std::string_view file) {
    if (account.selection.has_value()) {
        return false;
    }
    SAccountBackup backup;
    backup.file = file;
    indices[backup.file].push_back(account.backups.size());
    account.backups.push_back(backup);
    isInTree = true;
    hasNode = false;
    nextOfTree = ETreeLine::kObjid;
    return true;
}

bool CAccountReader::takeFinalState(const TraceArguments& arguments) {
    if (!account.selection.has_value() && !isOnlyLastPassRead()) {
        return takeStateWithoutSelection(arguments);
    }
    const std::int32_t state = numberIn(arguments[1]);
    finalStates.emplace_back(arguments[0], state);
    // A name that is listed twice stands for two backups, of which one is invalid. The trace does not tell
    // which of the two a line means, but their states do.
    if (const auto index =
            takeNextIndex(state == FI_BACKUP_INVALID ? EPass::kFinalInvalid : EPass::kFinal, arguments[0])) {
        account.backups[*index].state = state;
        oldestFirst.push_back(*index);
    }
    return true;
}

// The state may be that of another call, so it is not used. While documents are loaded, it can also be the
// name of one that ends like a state; the flag words tell all names.
bool CAccountReader::takeStateWithoutSelection(const TraceArguments& arguments) {
    const bool isName = lastFlagWords.count(fmt::format("{}] state=[{}", arguments[0], arguments[1])) != 0;
    if (isName && !isLoadingOver()) {
        return false;
    }
    if (!isSelectionSkipped) {
        noteContradiction();
    }
    isSelectionSkipped = true;
    return true;
}

// Whether the log may begin behind the selection. The set that is printed there has the same text as the one
// before the checks.
bool CAccountReader::isOnlyLastPassRead() const {
    return !isBegun && flagWords.empty() && account.backups.empty() && checked == 0 && claims.empty() &&
           skipped.empty() && printedSets <= 1;
}

// Whether a line was read that stands behind the loading of all documents.
bool CAccountReader::isLoadingOver() const {
    return printedSets != 0 || checked != 0 || !claims.empty() || !skipped.empty();
}

void CAccountReader::takeCheck(bool isGood, std::string_view file) {
    ++checked;
    const auto index = takeNextIndex(EPass::kCheck, file);
    if (index.has_value() && !isGood) {
        account.backups[*index].state = FI_BACKUP_INVALID;
        failedCheck.push_back(*index);
    }
}

void CAccountReader::takeClaim(bool isGood, const TraceArguments& arguments) {
    const auto index = takeNextIndex(EPass::kClaim, arguments[0]);
    if (!index.has_value()) {
        return;
    }
    account.backups[*index].timeStamp = arguments[1];
    claims.emplace_back(*index, isGood);
    if (!isGood) {
        account.backups[*index].state = FI_BACKUP_INVALID;
    }
}

std::optional<std::size_t> CAccountReader::takeNextIndex(EPass pass, std::string_view file) {
    const std::vector<std::size_t>& all = indices[std::string(file)];
    std::size_t& done = taken[{pass, std::string(file)}];
    while (done < all.size()) {
        const std::size_t index = all[done++];
        // A backup that an earlier pass found invalid has no line in this pass.
        const std::int32_t wanted = pass == EPass::kFinalInvalid ? FI_BACKUP_INVALID : FI_BACKUP_KEPT;
        const bool isOut = pass != EPass::kCheck && account.backups[index].state != wanted;
        if (!isOut) {
            return index;
        }
    }
    noteContradiction();
    return std::nullopt;
}

bool CAccountReader::takeMalformed(std::string_view identifier) {
    if (!isNamed(identifier)) {
        return false;
    }
    malformed = identifier;
    return true;
}

bool CAccountReader::isNamed(std::string_view identifier) const {
    const auto& backups = account.backups;
    return std::any_of(backups.begin(), backups.end(), [identifier](const SAccountBackup& backup) {
        const std::vector<CPairs::SPair> pairs = backup.pairs.inOrder();
        return std::any_of(pairs.begin(), pairs.end(), [identifier](const CPairs::SPair& pair) {
            return pair.objid == identifier || pair.altobjid == identifier;
        });
    });
}

void CAccountReader::noteContradiction() {
    if (contradictions == 0) {
        firstContradiction = currentLine;
        firstNumber = currentNumber;
    }
    ++contradictions;
}

}  // namespace fi_rotate
