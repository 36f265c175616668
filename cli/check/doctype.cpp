#include "cli/check/doctype.h"

#include <algorithm>
#include <iterator>

#include "cli/text.h"

namespace fi_rotate {
namespace {

// What may stand before it.
struct SSkipped {
    std::string_view start;
    std::string_view end;
};
constexpr SSkipped kSkipped[] = {
    {"\xEF\xBB\xBF", ""}, {" ", ""}, {"\t", ""}, {"\r", ""}, {"\n", ""}, {"<!--", "-->"}, {"<?", "?>"},
};

// Bytes at the start of `text` that may stand before it.
std::size_t skippedAt(std::string_view text) {
    const auto* const found =
        std::find_if(std::begin(kSkipped), std::end(kSkipped),
                     [text](const SSkipped& row) { return startsWith(text, row.start); });
    if (found == std::end(kSkipped)) {
        return 0;
    }
    const std::size_t end = text.find(found->end, found->start.size());
    return end == std::string_view::npos ? 0 : end + found->end.size();
}

}  // namespace

std::optional<std::size_t> doctypeIn(std::string_view document) {
    std::size_t offset = 0;
    while (const std::size_t skipped = skippedAt(document.substr(offset))) {
        offset += skipped;
    }
    if (startsWith(document.substr(offset), "<!DOCTYPE")) {
        return offset;
    }
    return std::nullopt;
}

}  // namespace fi_rotate
