#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The texts of the library's trace, which alone tells why a call had its outcome. The reader of a running
// call and the reader of logs both take them from this table. A test compares it with what the library
// writes.
namespace fi_rotate {

// The levels of the library's lines.
constexpr int kFailureLevel = 3;
constexpr int kProgressLevel = 4;

// Each has a row in trace_text.cpp, in this order. The search for a line goes from the beginning, so the
// texts that a call has most come first.
enum class ETraceText {
    kEntering,
    kExiting,
    kNodeObjid,
    kNodeAltobjid,
    kNodeType,
    kTarget,
    kFirstTarget,
    kFurtherTarget,
    kInvalidParameter,
    kNoSpecification,
    kNoConfiguration,
    kConfiguration,
    kNoTargets,
    kNoDevice,
    kNoEnclosure,
    kFirstBackup,
    kNoResource,
    kFlagWord,
    kCannotLoad,
    kDocumentRead,
    kMalformedDocument,
    kParsed,
    kResourceSet,
    kMalformedIdentifier,
    kCheckPassed,
    kCheckFailed,
    kClaimed,
    kNotClaimed,
    kSkipped,
    kNotAvailable,
    kSelection,
    kFinalState,
    kCount,
};

// The format that the library passes to the trace facility.
std::string_view formatOf(ETraceText kind);
// The text that has this format; nothing when it is not in the table.
std::optional<ETraceText> kindOf(const char* format);

// The arguments that were formatted into `text`; nothing when it is another line. File names and identifiers
// may hold anything, also what stands between two arguments, so that a line may be split in several ways.
// What comes behind a name is short and holds no such text, so a name ends at the last place where it can.
// Only a kTarget has another name there; CAccountReader finds out from the printed target where the first one
// ends.
using TraceArguments = std::vector<std::string_view>;
std::optional<TraceArguments> argumentsOf(ETraceText kind, std::string_view text);

// The part of the format before its first conversion.
std::string_view startOf(ETraceText kind);
bool startsAs(ETraceText kind, std::string_view text);

// Whether texts of this kind report a failure. (The flag words are traced at the level of failures, too, and
// report none.)
bool reportsFailure(ETraceText kind);

// Whether a line of a log surely reports a failure. The text for a malformed identifier is left out: lines
// that a host writes itself may begin like it.
bool isCertainFailure(std::string_view text);

// Whether a line is one of the parser of configurations.
bool isOfParser(std::string_view text);
// Whether a line says that a target is malformed, so that its configuration and all after it are not used.
bool rejectsConfiguration(std::string_view text);

// The argument behind the indentation of a tree's line, of the kind kNodeObjid, kNodeAltobjid or kNodeType.
std::optional<std::string_view> nodeTextIn(ETraceText kind, std::string_view text);
// Whether the text is such a line of a tree.
bool isOfTree(std::string_view text);

// How the line of a printed target names the state of a target that is free.
constexpr std::string_view kAvailable = "Available";

// The names of operations that lines begin with.
constexpr std::string_view kParserOperation = "CFiResourceParser::parse : ";
constexpr std::array<std::string_view, 5> kOperations{
    "fi_process_backups : ",         kParserOperation,
    "CFiResourceManager::print : ",  "CFiFiidLoader::load: ERROR: ",
    "CFiFiidHandler::fatalError : ",
};

// The operation that is entered when a document is found to be damaged.
constexpr std::string_view kDamageOperation = "CFiFiidHandler::fatalError";
// Whether a line says that this operation is entered.
bool entersDamage(std::string_view text);

// Whether it is a line without such a name, known by its form: of a tree, of a printed target, or of a
// malformed identifier.
bool isUnnamed(std::string_view text);

// A text as a line of a trace file: the level, a blank and the text without its line end; line breaks and
// backslashes within it become \n, \r, \\.
std::string toTraceLine(int level, std::string_view text);

// Whether a file with this text is the trace of a call, as such lines.
bool isTraceFileText(std::string_view text);
// Whether `prefix` is what such a line has before its text.
bool isOwnPrefix(std::string_view prefix);
// The text of such a line as it was before toTraceLine.
std::string withoutEscapes(std::string_view text);

}  // namespace fi_rotate
