#include "cli/picture/svg_parts.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/layout.h"

namespace fi_rotate {

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : asPrintable(text)) {
        switch (character) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += character;
        }
    }
    // Two characters that UTF-8 has and XML has not.
    for (const std::string_view forbidden : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (std::size_t at = 0; (at = result.find(forbidden)) != std::string::npos;) {
            result.replace(at, forbidden.size(), "?");
        }
    }
    return result;
}

std::string text(double x, double y, std::string_view attributes, std::string_view content) {
    return fmt::format("  <text x=\"{:.1f}\" y=\"{:.1f}\"{}>{}</text>\n", x, y, attributes, content);
}

std::string cutText(double x, double y, std::string_view attributes, const std::string& whole,
                    const std::string& title) {
    const std::string printable = asPrintable(whole);
    const std::string cut = cutTo(printable, kLongestPictureName);
    const std::string pointed = title.empty() && cut != printable ? whole : title;
    return text(x, y, attributes,
                escaped(cut) + (pointed.empty() ? "" : "<title>" + escaped(pointed) + "</title>"));
}

double widthOf(const std::string& shown) {
    return static_cast<double>(displayWidth(shown)) * kPictureCharacter;
}

std::vector<std::string> wrapped(const std::string& whole, std::size_t columns) {
    std::vector<std::string> lines(1);
    for (std::size_t at = 0; at < whole.size();) {
        const std::size_t end = std::min(whole.find(' ', at), whole.size());
        const std::string word = cutTo(whole.substr(at, end - at), columns);
        if (!lines.back().empty() && displayWidth(lines.back()) + 1 + displayWidth(word) > columns) {
            lines.emplace_back();
        }
        lines.back() += (lines.back().empty() ? "" : " ") + word;
        at = end + 1;
    }
    return lines;
}

const char* classOf(EBar kind) {
    switch (kind) {
        case EBar::kPlain:
            return "plain";
        case EBar::kRotated:
            return "rotated";
        case EBar::kExcluded:
            return "excluded";
        case EBar::kInvalid:
            return "invalid";
        case EBar::kUnprotected:
            return "unprotected";
    }
    return "";
}

std::string shape(EBar kind, bool isOpen, double x, double y, double width) {
    if (isOpen) {
        return fmt::format(R"(<path class="shape" d="M{:.1f} {:.1f}h{:.1f}l{} {}l-{} {}h-{:.1f}z"/>)", x, y,
                           width, kTip, kBarHeight / 2, kTip, kBarHeight / 2, width);
    }
    const std::string bar = fmt::format(
        R"(<rect class="shape" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{}"/>)", x, y, width, kBarHeight);
    return kind != EBar::kRotated
               ? bar
               : bar + fmt::format(R"(<rect class="ink" x="{:.1f}" y="{:.1f}" width="{}" height="{}"/>)",
                                   x + width - kBlock, y, kBlock, kBarHeight);
}

std::string chosenTag(double x, double y) {
    return fmt::format(R"(<path class="tag" d="M{:.1f} {:.1f}l{} -{}h{}v{}h-{}z"/>)"
                       R"(<text class="on" x="{:.1f}" y="{:.1f}">NEXT</text>)",
                       x, y + kBarHeight / 2, kTip, kBarHeight / 2, kTagWidth, kBarHeight, kTagWidth,
                       x + kTip + 3, y + kBarHeight - 2.5);
}

std::string cross(double x, double y) {
    const double arm = kBarHeight - 4;
    return fmt::format(R"(<path class="cross" d="M{0:.1f} {1:.1f}l{2} {2}m0 -{2}l-{2} {2}"/>)", x, y + 2,
                       arm);
}

}  // namespace fi_rotate
