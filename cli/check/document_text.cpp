#include "cli/check/document_text.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include <fmt/format.h>

#include "cli/base/text.h"
#include "cli/check/findings.h"
#include "common/document_prolog.h"

namespace fi_rotate {
namespace {

constexpr std::size_t kLongestPiece = 2047;

using namespace std::string_view_literals;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct SWideStart {
    std::string_view bytes;
    std::string_view name;
};
// The longer ones first: some begin like others.
constexpr SWideStart kWideStarts[] = {
    {"\x00\x00\xFE\xFF"sv, "UTF-32"},
    {"\xFF\xFE\x00\x00"sv, "UTF-32"},
    {"\x00\x00\x00<"sv, "UTF-32"},
    {"<\x00\x00\x00"sv, "UTF-32"},
    {"\xFE\xFF"sv, "UTF-16"},
    {"\xFF\xFE"sv, "UTF-16"},
    {"\x00<"sv, "UTF-16"},
    {"<\x00"sv, "UTF-16"},
};

std::string inCapitals(std::string_view text) {
    std::string capitals;
    for (const char character : text) {
        capitals += static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    }
    return capitals;
}

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> starts) {
    return std::any_of(starts.begin(), starts.end(),
                       [&name](std::string_view start) { return startsWith(name, start); });
}

// What the declaration says that the bytes are not; they hold more than ASCII when `isAscii` is false.
std::optional<std::string> contradiction(const std::string& name, bool isAscii, bool isUtf8) {
    if (isOneOf(name, {"UTF-16", "UTF16", "UTF-32", "UTF32", "UCS", "ISO-10646-UCS"})) {
        return "its bytes are not in this encoding";
    }
    const bool declaresUtf8 = isOneOf(name, {"UTF-8", "UTF8"});
    if (declaresUtf8 && !isUtf8) {
        return "this byte is not UTF-8";
    }
    if (!declaresUtf8 && !isAscii && isUtf8) {
        return "from here on its bytes look like UTF-8";
    }
    if (isOneOf(name, {"US-ASCII", "ASCII"}) && !isAscii) {
        return "this byte is not ASCII";
    }
    return std::nullopt;
}

}  // namespace

CDocumentText::CDocumentText(std::string bytes) : file(std::move(bytes)), fileLines(file), contentLines("") {
    if (file.find('\0') != std::string::npos) {
        cut();
    }
    contentLines = pieces.empty() ? fileLines : CLines(joined);
}

void CDocumentText::cut() {
    const std::string_view all = file;
    for (std::size_t begin = 0; begin < all.size();) {
        const std::string_view rest = all.substr(begin, kLongestPiece);
        const std::string_view line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
        const std::string_view read = line.substr(0, line.find('\0'));
        cutPieces += read.size() < line.size() ? 1 : 0;
        pieces.push_back({joined.size(), begin});
        joined += read;
        begin += line.size();
    }
}

SSpot CDocumentText::spotAt(std::size_t contentOffset) const {
    if (pieces.empty()) {
        return fileLines.at(contentOffset);
    }
    const auto next =
        std::upper_bound(pieces.begin(), pieces.end(), contentOffset,
                         [](std::size_t sought, const SBegin& piece) { return sought < piece.inContent; });
    const SBegin& piece = *std::prev(next);
    return fileLines.at(piece.inFile + contentOffset - piece.inContent);
}

void CDocumentText::addNulBytes(CFindings& findings) const {
    if (!pieces.empty()) {
        findings.add(
            {EHazard::kNulByte, fileLines.at(file.find('\0')),
             cutPieces == 1
                 ? "a NUL byte cuts off the rest of its line"
                 : fmt::format("NUL bytes cut off the rest of {} lines; this is the first", cutPieces)});
    }
}

void CDocumentText::addFindings(CFindings& findings) const {
    if (const auto name = wideEncoding(file)) {
        findings.addOnWhole(EHazard::kUtf16,
                            fmt::format("the document is encoded in {}, and each of its lines is read only "
                                        "up to its first NUL byte",
                                        *name));
        return;
    }
    addNulBytes(findings);
    if (const auto mismatch = encodingMismatch(content())) {
        findings.add({EHazard::kEncodingMismatch, spotAt(mismatch->offset), mismatch->text});
    }
}

bool CDocumentText::isWide() const {
    return wideEncoding(file).has_value();
}

std::optional<std::string_view> wideEncoding(std::string_view bytes) {
    const auto* const found =
        std::find_if(std::begin(kWideStarts), std::end(kWideStarts),
                     [bytes](const SWideStart& start) { return startsWith(bytes, start.bytes); });
    if (found == std::end(kWideStarts)) {
        return std::nullopt;
    }
    return found->name;
}

std::optional<SEncodingMismatch> encodingMismatch(std::string_view document) {
    const bool hasMark = startsWith(document, kByteOrderMark);
    const auto declared = declaredEncoding(document);
    const std::string name = inCapitals(declared.value_or("UTF-8"));
    if (hasMark && !isOneOf(name, {"UTF-8", "UTF8"})) {
        return SEncodingMismatch{
            0, "the document begins with the byte-order mark of UTF-8, but declares " + inQuotes(*declared)};
    }

    const auto isPlain = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    const auto* const beyond = std::find_if_not(document.begin(), document.end(), isPlain);
    const std::size_t valid = utf8Length(document);
    const auto fault = contradiction(name, beyond == document.end(), valid == document.size());
    if (!fault.has_value()) {
        return std::nullopt;
    }
    const auto offset =
        valid < document.size() ? valid : static_cast<std::size_t>(std::distance(document.begin(), beyond));
    return SEncodingMismatch{
        offset < document.size() ? offset : 0,
        (declared.has_value() ? "the document declares " + inQuotes(*declared)
                              : std::string("the document declares no encoding, which means UTF-8")) +
            "; " + *fault};
}

}  // namespace fi_rotate
