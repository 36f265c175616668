#include "host/trace_text.h"

#include <algorithm>

#include "host/rows.h"

namespace fi_rotate {
namespace {

// Where a line is split when the text between two arguments occurs several times in it: kFirst when only
// indentation stands before that text, kLast when a name does.
enum class ESplit { kFirst, kLast };

enum class ELevel { kFailure, kProgress };

struct STraceText {
    ETraceText kind;
    ELevel level;
    std::string_view format;
    ESplit split = ESplit::kLast;
};

constexpr std::size_t kTextCount = static_cast<std::size_t>(ETraceText::kCount);

constexpr std::array<STraceText, kTextCount> kTexts{{
    {ETraceText::kEntering, ELevel::kProgress, "Entering %s\n"},
    {ETraceText::kExiting, ELevel::kProgress, "Exiting %s\n"},
    {ETraceText::kNodeObjid, ELevel::kProgress, "%s [%s]", ESplit::kFirst},
    {ETraceText::kNodeAltobjid, ELevel::kProgress, "%s {%s}", ESplit::kFirst},
    {ETraceText::kNodeType, ELevel::kProgress, "%s <%d %s>", ESplit::kFirst},
    {ETraceText::kTarget, ELevel::kProgress, "CFiResourceParser::parse : [%s][%s]"},
    {ETraceText::kFirstTarget, ELevel::kProgress, "[%s:%s](%s)"},
    {ETraceText::kFurtherTarget, ELevel::kProgress, "{%s,%s}"},
    {ETraceText::kInvalidParameter, ELevel::kFailure, "fi_process_backups : Invalid/empty parameter"},
    {ETraceText::kNoSpecification, ELevel::kFailure,
     "CFiResourceParser::parse : Resource specification is null."},
    {ETraceText::kNoConfiguration, ELevel::kFailure,
     "CFiResourceParser::parse : Invalid resource specification [%s]"},
    {ETraceText::kConfiguration, ELevel::kProgress, "CFiResourceParser::parse : Resource specification [%s]"},
    {ETraceText::kNoTargets, ELevel::kFailure,
     "CFiResourceParser::parse : resource configuration \"%s\" has no targets specified."},
    {ETraceText::kNoDevice, ELevel::kFailure,
     "CFiResourceParser::parse : resource configuration \"%s\" has no device data specified."},
    {ETraceText::kNoEnclosure, ELevel::kFailure,
     "CFiResourceParser::parse : resource configuration \"%s\" has no enclosure data specified."},
    {ETraceText::kFirstBackup, ELevel::kProgress,
     "fi_process_backups : fiidListSize empty, no previous backups to process"},
    {ETraceText::kNoResource, ELevel::kFailure, "fi_process_backups : no resource is available"},
    {ETraceText::kFlagWord, ELevel::kFailure, "fi_process_backups :  Fiid [%s] exclude rotation flag [%d] "},
    {ETraceText::kCannotLoad, ELevel::kFailure, "CFiFiidLoader::load: ERROR: failed to load FIID file"},
    {ETraceText::kDocumentRead, ELevel::kProgress, "CFiFiidLoader::load : read [%s] whole [%d]"},
    {ETraceText::kMalformedDocument, ELevel::kFailure,
     "CFiFiidHandler::fatalError : line %s, column %s : %s"},
    {ETraceText::kParsed, ELevel::kProgress, "fi_process_backups : parsed [%s]"},
    {ETraceText::kResourceSet, ELevel::kProgress, "CFiResourceManager::print : printing resource set"},
    {ETraceText::kMalformedIdentifier, ELevel::kFailure, "ERROR: %s"},
    {ETraceText::kCheckPassed, ELevel::kProgress, "fi_process_backups : [RESOURCES MATCH] [%s]"},
    {ETraceText::kCheckFailed, ELevel::kProgress, "fi_process_backups : [INVALID RESOURCES] [%s]"},
    {ETraceText::kClaimed, ELevel::kProgress, "fi_process_backups : [RESERVE GOOD] %s - T: %s"},
    {ETraceText::kNotClaimed, ELevel::kProgress, "fi_process_backups : %s - T: %s"},
    {ETraceText::kSkipped, ELevel::kProgress, "fi_process_backups : Skipped Rotation for fiid [%s]"},
    {ETraceText::kNotAvailable, ELevel::kFailure,
     "fi_process_backups : Resources not availabe, some/all are part of Skip rotation fiids"},
    {ETraceText::kSelection, ELevel::kProgress, "fi_process_backups : resource_config_string [%s] "},
    {ETraceText::kFinalState, ELevel::kProgress, "fi_process_backups : parsed [%s] state=[%d]"},
}};

static_assert(areInOrder(kTexts, &STraceText::kind), "a row for each ETraceText, in that order");

const STraceText& rowOf(ETraceText kind) {
    return kTexts.at(static_cast<std::size_t>(kind));
}

// Characters that a line of a trace file must not hold, and for each the letter that stands for it behind a
// backslash.
constexpr std::string_view kEscaped = "\n\r\\";
constexpr std::string_view kEscapes = "nr\\";

constexpr std::size_t kConversionLength = std::string_view("%s").size();

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Some formats end with a blank, which the writer of a log may have removed.
std::string_view withoutLastBlank(std::string_view text) {
    return endsWith(text, " ") ? text.substr(0, text.size() - 1) : text;
}

// The parts of a format around its conversions: one more than it has of these.
std::vector<std::string_view> literalsOf(std::string_view format) {
    std::vector<std::string_view> literals;
    for (std::size_t end = format.find('%'); end != std::string_view::npos; end = format.find('%')) {
        literals.push_back(format.substr(0, end));
        format.remove_prefix(end + kConversionLength);
    }
    literals.push_back(format);
    return literals;
}

// The arguments between `literals`. The first and the last of these have been removed from `inner` already.
std::optional<TraceArguments> split(std::string_view inner, const std::vector<std::string_view>& literals,
                                    ESplit how) {
    TraceArguments arguments;
    for (std::size_t left = literals.size() - 2; left > 0; --left) {
        const bool isFirst = how == ESplit::kFirst;
        const std::string_view literal = isFirst ? literals[literals.size() - 1 - left] : literals[left];
        const std::size_t place = isFirst ? inner.find(literal) : inner.rfind(literal);
        if (place == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string_view before = inner.substr(0, place);
        const std::string_view behind = inner.substr(place + literal.size());
        arguments.push_back(isFirst ? before : behind);
        inner = isFirst ? behind : before;
    }
    arguments.push_back(inner);
    if (how == ESplit::kLast) {
        std::reverse(arguments.begin(), arguments.end());
    }
    return arguments;
}

}  // namespace

std::string_view formatOf(ETraceText kind) {
    return rowOf(kind).format;
}

std::optional<ETraceText> kindOf(const char* format) {
    const auto* const row = std::find_if(kTexts.begin(), kTexts.end(), [format](const STraceText& candidate) {
        return candidate.format.front() == *format && candidate.format == format;
    });
    return row != kTexts.end() ? std::optional(row->kind) : std::nullopt;
}

std::optional<TraceArguments> argumentsOf(ETraceText kind, std::string_view text) {
    const STraceText& row = rowOf(kind);
    const std::size_t last = row.format.rfind('%');
    if (last == std::string_view::npos) {
        return text == row.format ? std::optional<TraceArguments>(TraceArguments()) : std::nullopt;
    }
    const std::string_view start = startOf(kind);
    const std::string_view end = withoutLastBlank(row.format.substr(last + kConversionLength));
    if (row.format.back() == ' ') {
        text = withoutLastBlank(text);
    }
    if (text.size() < start.size() + end.size() || !startsWith(text, start) || !endsWith(text, end)) {
        return std::nullopt;
    }
    return split(text.substr(start.size(), text.size() - start.size() - end.size()), literalsOf(row.format),
                 row.split);
}

std::string_view startOf(ETraceText kind) {
    const std::string_view format = formatOf(kind);
    return format.substr(0, format.find('%'));
}

bool startsAs(ETraceText kind, std::string_view text) {
    return startsWith(text, startOf(kind));
}

bool reportsFailure(ETraceText kind) {
    return rowOf(kind).level == ELevel::kFailure && kind != ETraceText::kFlagWord;
}

bool isCertainFailure(std::string_view text) {
    return std::any_of(kTexts.begin(), kTexts.end(), [text](const STraceText& row) {
        return row.kind != ETraceText::kMalformedIdentifier && reportsFailure(row.kind) &&
               startsAs(row.kind, text);
    });
}

bool entersDamage(std::string_view text) {
    return startsAs(ETraceText::kEntering, text) &&
           text.substr(startOf(ETraceText::kEntering).size()) == kDamageOperation;
}

bool isOfParser(std::string_view text) {
    return startsWith(text, kParserOperation);
}

bool rejectsConfiguration(std::string_view text) {
    return argumentsOf(ETraceText::kNoTargets, text).has_value() ||
           argumentsOf(ETraceText::kNoDevice, text).has_value() ||
           argumentsOf(ETraceText::kNoEnclosure, text).has_value();
}

std::optional<std::string_view> nodeTextIn(ETraceText kind, std::string_view text) {
    // Each of these formats begins with the indentation. What stands behind it is compared before anything is
    // searched for: otherwise a line of blanks would be searched to its end from each of its places.
    constexpr std::size_t kLengthOfLiteral = std::string_view(" [").size();
    const std::string_view literal = formatOf(kind).substr(kConversionLength, kLengthOfLiteral);
    const std::string_view unindented = text.substr(std::min(text.find_first_not_of('\t'), text.size()));
    const auto arguments =
        startsWith(unindented, literal) ? argumentsOf(kind, unindented) : std::optional<TraceArguments>();
    return arguments.has_value() ? std::optional(arguments->at(1)) : std::nullopt;
}

bool isOfTree(std::string_view text) {
    return nodeTextIn(ETraceText::kNodeObjid, text).has_value() ||
           nodeTextIn(ETraceText::kNodeAltobjid, text).has_value() ||
           nodeTextIn(ETraceText::kNodeType, text).has_value();
}

bool isUnnamed(std::string_view text) {
    constexpr std::array<std::string_view, 4> kStates{kAvailable, "Used", "Invalid", "Unknown"};
    const auto isPrinted = [text, &kStates](ETraceText kind) {
        const auto arguments = argumentsOf(kind, text);
        return arguments.has_value() &&
               std::find(kStates.begin(), kStates.end(), arguments->back()) != kStates.end();
    };
    return isOfTree(text) || isPrinted(ETraceText::kFirstTarget) || isPrinted(ETraceText::kFurtherTarget) ||
           startsAs(ETraceText::kMalformedIdentifier, text);
}

std::string toTraceLine(int level, std::string_view text) {
    std::string line = std::to_string(level) + ' ';
    line.reserve(line.size() + text.size() + 1);
    for (const char character : text) {
        const std::size_t place = kEscaped.find(character);
        if (place == std::string_view::npos) {
            line += character;
        } else {
            line += {'\\', kEscapes[place]};
        }
    }
    return line + '\n';
}

bool isTraceFileText(std::string_view text) {
    // The first line of every call is one of the parser of the configuration.
    constexpr std::string_view kBegins = " CFiResourceParser::parse : ";
    return !text.empty() && text[0] >= '0' && text[0] <= '9' && text.substr(1, kBegins.size()) == kBegins;
}

bool isOwnPrefix(std::string_view prefix) {
    return prefix == "3 " || prefix == "4 ";
}

std::string withoutEscapes(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 1 < text.size();
        const std::size_t place = isEscape ? kEscapes.find(text[i + 1]) : std::string_view::npos;
        const bool isEscaped = place != std::string_view::npos;
        result += isEscaped ? kEscaped[place] : text[i];
        i += isEscaped ? 1U : 0U;
    }
    return result;
}

}  // namespace fi_rotate
