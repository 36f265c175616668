#include "cli/picture/svg.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <fmt/format.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/layout.h"

namespace fi_rotate {
namespace {

// In pixels.
constexpr double kBarHeight = 12;
constexpr double kTip = 5;
constexpr double kAfterEnd = 48;

constexpr const char* kStyle = R"(
    text { font: 11px ui-monospace, "DejaVu Sans Mono", "Liberation Mono", monospace; fill: #1b1f24; }
    .heading { font: bold 15px sans-serif; }
    .remark { font: 12px sans-serif; fill: #4a525c; }
    .group { font-weight: bold; }
    .page { fill: #ffffff; }
    .band { fill: #f1f3f5; }
    .grid { stroke: #c9ced4; stroke-width: 1; }
    .line { stroke: #1b1f24; stroke-width: 1.5; stroke-dasharray: 6 3; }
    .shape { stroke: #1b1f24; stroke-width: 1; }
    .plain .shape { fill: #a9c4e6; }
    .rotated .shape { fill: #ffffff; stroke-width: 3; }
    .excluded .shape { fill: url(#stripes); }
    .invalid .shape { fill: url(#dots); stroke-dasharray: 3 2; }
    .chosen .shape { fill: none; stroke-width: 1.5; stroke-dasharray: 4 2; }
    .paper { fill: #ffffff; }
    .ink { fill: #1b1f24; }
    @media screen and (prefers-color-scheme: dark) {
      text { fill: #e6e9ec; }
      .remark { fill: #b4bcc5; }
      .page { fill: #14171a; }
      .band { fill: #1e2327; }
      .grid { stroke: #3a4149; }
      .line, .shape { stroke: #e6e9ec; }
      .plain .shape { fill: #2f5688; }
      .rotated .shape { fill: #14171a; }
      .paper { fill: #14171a; }
      .ink { fill: #e6e9ec; }
    }
  )";

constexpr const char* kPatterns = R"xml(  <defs>
    <pattern id="stripes" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
      <rect class="paper" width="6" height="6"/>
      <rect class="ink" width="1.4" height="6"/>
    </pattern>
    <pattern id="dots" width="4" height="4" patternUnits="userSpaceOnUse">
      <rect class="paper" width="4" height="4"/>
      <circle class="ink" cx="1" cy="1" r="0.7"/>
    </pattern>
  </defs>
)xml";

// Text as it may stand in an element or an attribute.
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

// Cut where it is too long; the whole is shown when it is pointed at.
std::string cutText(double x, double y, std::string_view attributes, const std::string& whole) {
    const std::string printable = asPrintable(whole);
    const std::string cut = cutTo(printable, kLongestPictureName);
    return text(x, y, attributes,
                escaped(cut) + (cut == printable ? "" : "<title>" + escaped(whole) + "</title>"));
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
    }
    return "";
}

// A bar with its upper left corner there; an open one ends in a tip.
std::string shape(double x, double y, double width, bool isOpen) {
    if (!isOpen) {
        return fmt::format(R"(<rect class="shape" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{}"/>)", x, y,
                           width, kBarHeight);
    }
    return fmt::format(R"(<path class="shape" d="M{:.1f} {:.1f}h{:.1f}l{} {}l-{} {}h-{:.1f}z"/>)", x, y,
                       width, kTip, kBarHeight / 2, kTip, kBarHeight / 2, width);
}

// By which a picture of ours is known.
constexpr std::string_view kBeginning =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!-- drawn by fi-rotate -->\n";

class CDrawing {
public:
    explicit CDrawing(const SPicture& shown) : picture(shown), layout(shown) {}

    std::string draw() {
        std::string body = heading();
        body += axis();
        body += text(kPictureMargin, top - 5, R"( class="remark")", escaped(picture.rowLabel));
        const double first = top;
        body += rows(first) + grid(first) + lineAcross(first) + bars(first);
        top += layout.height;
        body += axis();
        top += kPictureLine;
        body += text(layout.left + layout.width / 2, top - 5, R"( class="remark" text-anchor="middle")",
                     escaped(picture.timeLabel));
        body += legend();
        body += notes();
        return std::string(kBeginning) +
               fmt::format(R"(<svg xmlns="http://www.w3.org/2000/svg" width="{0:.0f}" height="{1:.0f}" )"
                           "viewBox=\"0 0 {0:.0f} {1:.0f}\" role=\"img\">\n"
                           "  <title>{2}</title>\n"
                           "  <style>{3}</style>\n"
                           "{4}"
                           "  <rect class=\"page\" width=\"100%\" height=\"100%\"/>\n"
                           "{5}"
                           "</svg>\n",
                           layout.left + layout.width + kAfterEnd + kPictureMargin, top + kPictureMargin,
                           escaped(picture.title), kStyle, kPatterns, body);
    }

private:
    // Lines of text from the left margin on, one below the other.
    std::string line(std::string_view attributes, const std::string& content) {
        top += kPictureLine;
        return text(kPictureMargin, top - 5, attributes, escaped(content));
    }

    std::string heading() {
        top = kPictureMargin;
        std::string lines = line(R"( class="heading")", picture.title);
        for (const std::string& remark : picture.remarks) {
            lines += line(R"( class="remark")", remark);
        }
        top += kPictureLine / 2;
        return lines;
    }

    std::string axis() {
        top += kPictureLine;
        std::string labels;
        for (const STick& tick : picture.ticks) {
            labels += text(layout.x(tick.at), top - 5, R"( text-anchor="middle")", escaped(tick.label));
        }
        return labels;
    }

    [[nodiscard]] std::string rows(double first) const {
        std::string drawn;
        for (std::size_t i = 0; i < picture.groups.size(); ++i) {
            const SPictureGroup& group = picture.groups[i];
            drawn += cutText(kPictureMargin, first + layout.groupTops[i] + kPictureLine - 5,
                             R"( class="group")", group.name);
            for (std::size_t j = 0; j < group.rows.size(); ++j) {
                drawn += row(group.rows[j], layout.rows[i][j], first, j % 2 == 0);
            }
        }
        return drawn;
    }

    [[nodiscard]] std::string row(const SPictureRow& shown, const SPlacedRow& place, double first,
                                  bool isBand) const {
        const double y = first + place.top;
        std::string drawn;
        if (isBand) {
            drawn += fmt::format(R"(  <rect class="band" x="{:.1f}" y="{:.1f}" width="{:.1f}" )"
                                 "height=\"{:.1f}\"/>\n",
                                 layout.left, y, layout.width, place.height);
        }
        drawn += cutText(2 * kPictureMargin, y + kPictureLane - 4, "", shown.name);
        if (shown.isChosen) {
            constexpr double kChosenWidth = 34;
            drawn +=
                fmt::format("  <g class=\"chosen\"><title>{} is chosen for the next snapshot</title>{}</g>\n",
                            escaped(shown.name),
                            shape(layout.left + layout.width + 2 * kTip, y + 2, kChosenWidth, false));
        }
        return drawn;
    }

    [[nodiscard]] std::string grid(double first) const {
        std::string lines;
        for (const STick& tick : picture.ticks) {
            lines += verticalLine(layout.x(tick.at), first, "grid");
        }
        return lines;
    }

    [[nodiscard]] std::string verticalLine(double x, double first, std::string_view kind) const {
        return fmt::format(
            "  <line class=\"{0}\" x1=\"{1:.1f}\" y1=\"{2:.1f}\" x2=\"{1:.1f}\" y2=\"{3:.1f}\"/>\n", kind, x,
            first, first + layout.height);
    }

    [[nodiscard]] std::string lineAcross(double first) const {
        if (picture.lineLabel.empty()) {
            return "";
        }
        const double x = layout.x(picture.lineAt);
        return verticalLine(x, first, "line") +
               text(x + 4, first + kPictureLine - 5, "", escaped(picture.lineLabel));
    }

    [[nodiscard]] std::string bars(double first) const {
        std::string drawn;
        for (std::size_t i = 0; i < picture.bars.size(); ++i) {
            const SBar& bar = picture.bars[i];
            const double x = layout.x(bar.from);
            const double width = std::max(layout.x(bar.to) - x, 0.5);
            const double y = first + layout.barTops[i] + 2;
            drawn +=
                fmt::format("  <g class=\"bar {}\"><title>{}</title>{}{}</g>\n", classOf(bar.kind),
                            escaped(bar.title), shape(x, y, width, bar.isOpen), nameIn(bar, x, y, width));
        }
        return drawn;
    }

    // On a ground of its own, since a pattern would make it hard to read. Nothing where too little has room.
    static std::string nameIn(const SBar& bar, double x, double y, double width) {
        const auto room = static_cast<std::size_t>(std::max((width - 6) / kPictureCharacter, 0.0));
        const std::string name = asPrintable(bar.name);
        const std::size_t length = displayWidth(name);
        constexpr std::size_t kFewest = 6;
        if (length > room && room < kFewest) {
            return "";
        }
        const std::string cut = cutTo(name, std::max<std::size_t>(room, 1));
        std::string ground;
        if (bar.kind == EBar::kExcluded || bar.kind == EBar::kInvalid) {
            ground = fmt::format(
                R"(<rect class="paper" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{}"/>)", x + 0.5, y + 0.5,
                static_cast<double>(displayWidth(cut)) * kPictureCharacter + 4, kBarHeight - 1);
        }
        return ground + fmt::format(R"(<text x="{:.1f}" y="{:.1f}">{}</text>)", x + 3, y + kBarHeight - 2.5,
                                    escaped(cut));
    }

    std::string legend() {
        struct SEntry {
            const std::string& meaning;
            EBar kind;
            bool isOpen;
        };
        const SEntry entries[] = {{picture.plainMeaning, EBar::kPlain, false},
                                  {picture.rotatedMeaning, EBar::kRotated, false},
                                  {picture.excludedMeaning, EBar::kExcluded, false},
                                  {picture.invalidMeaning, EBar::kInvalid, false},
                                  {picture.openMeaning, EBar::kPlain, true}};
        top += kPictureLine / 2;
        std::string drawn;
        for (const SEntry& entry : entries) {
            if (!entry.meaning.empty()) {
                drawn += legendLine(classOf(entry.kind), entry.isOpen, entry.meaning);
            }
        }
        const bool hasChosen =
            std::any_of(picture.groups.begin(), picture.groups.end(), [](const SPictureGroup& group) {
                return std::any_of(group.rows.begin(), group.rows.end(),
                                   [](const SPictureRow& row) { return row.isChosen; });
            });
        return drawn + (hasChosen ? legendLine("chosen", false, "chosen for the next snapshot") : "");
    }

    std::string legendLine(std::string_view kind, bool isOpen, const std::string& meaning) {
        constexpr double kSample = 28;
        top += kPictureLine;
        return fmt::format("  <g class=\"{}\">{}</g>\n", kind,
                           shape(layout.left, top - kPictureLine + 4, kSample, isOpen)) +
               text(layout.left + kSample + kPictureMargin, top - 5, "", escaped(meaning));
    }

    std::string notes() {
        std::string lines;
        top += picture.notes.empty() ? 0 : kPictureLine / 2;
        for (const std::string& note : picture.notes) {
            lines += line(R"( class="remark")", note);
        }
        return lines;
    }

    const SPicture& picture;
    SLayout layout;
    // Where the next thing is drawn.
    double top = 0;
};

}  // namespace

bool isOwnPicture(std::string_view text) {
    return text.substr(0, kBeginning.size()) == kBeginning;
}

std::string toSvg(const SPicture& picture) {
    return CDrawing(picture).draw();
}

}  // namespace fi_rotate
