#include "cli/check/document_text.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "cli/check/encoding.h"

namespace fi_rotate {
namespace {

constexpr std::size_t kLongestPiece = 2047;

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

void CDocumentText::checkNulBytes(CFindings& findings) const {
    if (!pieces.empty()) {
        findings.add({EHazard::kNulByte, fileLines.at(file.find('\0')),
                      cutPieces == 1
                          ? "a NUL byte cuts off the rest of its line"
                          : fmt::format("a NUL byte, the first of those that cut {} lines off", cutPieces)});
    }
}

bool CDocumentText::check(CFindings& findings) const {
    if (const auto name = wideEncoding(file)) {
        findings.addOfWhole(EHazard::kUtf16,
                            fmt::format("the document is written in {}, which reading it up to the NUL "
                                        "bytes of its lines damages",
                                        *name));
        return false;
    }
    checkNulBytes(findings);
    if (const auto mismatch = encodingMismatch(content())) {
        findings.add({EHazard::kEncodingMismatch, spotAt(mismatch->offset), mismatch->text});
    }
    return true;
}

}  // namespace fi_rotate
