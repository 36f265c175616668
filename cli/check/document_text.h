#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/check/findings.h"

namespace fi_rotate {

// A document's bytes as the library reads them: in lines, or pieces of 2047 bytes of longer ones, each up to
// its first NUL. Remembers where in the file everything stood.
class CDocumentText {
public:
    explicit CDocumentText(std::string bytes);
    ~CDocumentText() = default;
    CDocumentText(const CDocumentText&) = delete;
    CDocumentText& operator=(const CDocumentText&) = delete;

    [[nodiscard]] const std::string& content() const { return pieces.empty() ? file : joined; }

    // The byte of the content at a place that the XML library tells.
    [[nodiscard]] std::size_t offsetOf(SPlace place) const { return contentLines.offsetOf(place); }

    // The place in the file of a byte of the content.
    [[nodiscard]] SSpot spotAt(std::size_t contentOffset) const;

    // Adds a finding for UTF-16 or UTF-32, or else for NUL bytes and for an encoding that does not agree with
    // the bytes.
    void addFindings(CFindings& findings) const;

    // Whether it is encoded in UTF-16 or UTF-32: the library reads next to nothing of it, so that its content
    // cannot be checked.
    [[nodiscard]] bool isWide() const;

private:
    // Where a piece begins.
    struct SBegin {
        std::size_t inContent = 0;
        std::size_t inFile = 0;
    };

    void cut();
    void addNulBytes(CFindings& findings) const;

    std::string file;
    // These are empty when the file holds no NUL: then it is read as it is.
    std::string joined;
    std::vector<SBegin> pieces;
    std::size_t cutPieces = 0;
    CLines fileLines;
    CLines contentLines;
};

// The name of the encoding when `bytes` are a document in one whose characters are wider than a byte.
std::optional<std::string_view> wideEncoding(std::string_view bytes);

struct SEncodingMismatch {
    std::size_t offset = 0;
    std::string text;
};

// How the encoding that a document declares disagrees with its bytes.
std::optional<SEncodingMismatch> encodingMismatch(std::string_view document);

}  // namespace fi_rotate
