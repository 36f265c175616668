#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The lines of the library's trace, which is all that tells why a call came to its outcome. The live reader
// and the reader of logs know them from this one table; a test compares it with what the library writes.
namespace fi_rotate {

// The levels of the library's lines.
constexpr int kFailureLevel = 3;
constexpr int kProgressLevel = 4;

// Each has a row in trace_text.cpp, in this order: those of which a call has most come first, since a line is
// looked for from the beginning.
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
// Which text has this format; nothing when it is none of the table's.
std::optional<ETraceText> kindOf(const char* format);

// What `text` holds in the places of the format's conversions; nothing when it is another line. Texts of the
// host's may stand in several places, so that a line can have several readings: names of files and
// identifiers may hold anything, what comes after them is short, so the last place that fits ends them.
using TraceArguments = std::vector<std::string_view>;
std::optional<TraceArguments> argumentsOf(ETraceText kind, std::string_view text);

// The part of the format before its first conversion.
std::string_view startOf(ETraceText kind);
bool startsAs(ETraceText kind, std::string_view text);

// It reports that something failed. (The flag words stand at that level too and report no failure.)
bool reportsFailure(ETraceText kind);

// The line of some failure, but for that of a malformed identifier, which may begin any line of a host's.
bool isFailure(std::string_view text);

// A line of the parser of configurations, and one that says that a target was malformed: it, its
// configuration and all after it do not count.
bool isOfParser(std::string_view text);
bool rejectsConfiguration(std::string_view text);

// What a line of a tree, kNodeObjid and so on, holds behind its indentation.
std::optional<std::string_view> nodeTextIn(ETraceText kind, std::string_view text);

// The states in the lines of a printed target.
constexpr std::string_view kAvailable = "Available";

// The names of operations that lines begin with. Those of a tree, of a printed target and of a malformed
// identifier have none and are told by their form.
constexpr std::array<std::string_view, 4> kOperations{
    "fi_process_backups : ",
    "CFiResourceParser::parse : ",
    "CFiResourceManager::print : ",
    "CFiFiidLoader::load: ERROR: ",
};
bool isUnnamed(std::string_view text);

// A text as a line of a trace file: the level, a blank and the text without its line end; line breaks and
// backslashes within it become \n, \r, \\.
std::string toTraceLine(int level, std::string_view text);

// Whether a file with this text is the trace of a call, as such lines.
bool isTraceFile(std::string_view text);
// What stands before the text in such a line; then `withLineBreaks` gives back what the text was.
bool isOwnPrefix(std::string_view prefix);
std::string withLineBreaks(std::string_view text);

}  // namespace fi_rotate
