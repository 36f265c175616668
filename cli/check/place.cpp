#include "cli/check/place.h"

#include <algorithm>
#include <iterator>

#include "cli/printable.h"

namespace fi_rotate {
namespace {

// Bytes shown of a line on each side of the place in it.
constexpr std::size_t kExcerptBefore = 50;
constexpr std::size_t kExcerptAfter = 30;

}  // namespace

CLines::CLines(std::string_view borrowed) : text(borrowed), starts{0} {
    constexpr const char* kLineEnds = "\r\n";
    for (std::size_t end = text.find_first_of(kLineEnds); end != std::string_view::npos;
         end = text.find_first_of(kLineEnds, end)) {
        end += text.substr(end, 2) == "\r\n" ? 2 : 1;
        starts.push_back(end);
    }
}

SSpot CLines::at(std::size_t offset) const {
    const auto next = std::upper_bound(starts.begin(), starts.end(), offset);
    const std::size_t lineBegin = *std::prev(next);
    const std::size_t lineEnd = std::min(text.find_first_of("\r\n", offset), text.size());
    const std::size_t begin =
        offset - lineBegin <= kExcerptBefore ? lineBegin : characterStart(text, offset - kExcerptBefore);
    const std::size_t end = std::max(offset, characterStart(text, std::min(lineEnd, offset + kExcerptAfter)));
    return {{static_cast<std::size_t>(std::distance(starts.begin(), next)),
             1 + characterCount(text.substr(lineBegin, offset - lineBegin))},
            std::string(text.substr(begin, end - begin)),
            offset - begin};
}

std::size_t CLines::offsetOf(SPlace place) const {
    // Of a character that takes four bytes UTF-16 makes two units.
    constexpr std::size_t kLongCharacter = 4;
    if (place.line == 0 || place.line > starts.size()) {
        return text.size();
    }
    const std::size_t begin = starts[place.line - 1];
    const std::size_t end = place.line < starts.size() ? starts[place.line] : text.size();
    std::size_t offset = begin;
    for (std::size_t column = 1; column < place.column && offset < end; ++column) {
        const std::size_t length = firstCharacterLength(text.substr(offset, end - offset));
        column += length == kLongCharacter ? 1 : 0;
        offset += length;
    }
    return offset;
}

}  // namespace fi_rotate
