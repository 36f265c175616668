#include "cli/picture/svg.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/layout.h"
#include "cli/picture/style.h"
#include "cli/picture/svg_parts.h"

namespace fi_rotate {
namespace {

// Every picture of fi-rotate begins with this, so that it can be recognised.
constexpr std::string_view kBeginning =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!-- drawn by fi-rotate -->\n";

class CDrawing {
public:
    explicit CDrawing(const SPicture& shown)
        : picture(shown), layout(shown), marks(layout.left + layout.width + 2 * kTip) {}

    std::string draw() {
        std::string body = heading();
        body += legend();
        body += lineLabel();
        body += axis();
        body += text(kPictureMargin, top - 5, R"( class="remark")", escaped(picture.rowLabel));
        const double first = top;
        body += rows(first) + grid(first) + lineAcross(first) + groupHeadings(first) + bars(first);
        top += layout.height;
        body += picture.leftOut.empty() ? "" : line("group", picture.leftOut);
        body += axis();
        top += kPictureLine;
        body += text(layout.left + layout.width / 2, top - 5, R"( class="remark" text-anchor="middle")",
                     escaped(picture.timeLabel));
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
                           end() + kPictureMargin, top + kPictureMargin, escaped(picture.title), kStyle,
                           kPatterns, body);
    }

private:
    // Where the marks of the rows end.
    [[nodiscard]] double end() const { return marks + kTip + kTagWidth; }

    // Text from there on as wide as the picture, in as many lines as it takes.
    std::string lineFrom(double x, std::string_view kind, const std::string& content) {
        constexpr double kWidestLetter = 8;
        std::string lines;
        for (const std::string& each :
             wrapped(asPrintable(content), static_cast<std::size_t>((end() - x) / kWidestLetter))) {
            top += kPictureLine;
            lines += text(x, top - 5, fmt::format(" class=\"{}\"", kind), escaped(each));
        }
        return lines;
    }

    std::string line(std::string_view kind, const std::string& content) {
        return lineFrom(kPictureMargin, kind, content);
    }

    std::string heading() {
        top = kPictureMargin;
        std::string lines = line("heading", picture.title);
        for (const std::string& warning : picture.warnings) {
            lines += fmt::format("  <path class=\"alarm\" d=\"M{} {:.1f}l7 -13l7 13z\"/>\n", kPictureMargin,
                                 top + kPictureLine - 4);
            lines += lineFrom(kPictureMargin + 20, "warning", warning);
        }
        for (const std::string& remark : picture.remarks) {
            lines += line("remark", remark);
        }
        top += kPictureLine / 2;
        return lines;
    }

    std::string legend() {
        double x = kPictureMargin;
        top += kPictureLine;
        std::string drawn = barEntry(x, EBar::kPlain, false, picture.plainMeaning);
        drawn += barEntry(x, EBar::kRotated, false, picture.rotatedMeaning);
        drawn += barEntry(x, EBar::kExcluded, false, picture.excludedMeaning);
        drawn += barEntry(x, EBar::kInvalid, false, picture.invalidMeaning);
        drawn += barEntry(x, EBar::kUnprotected, false, picture.unprotectedMeaning);
        drawn += barEntry(x, EBar::kPlain, true, picture.openMeaning);
        if (picture.has(ETarget::kChosen)) {
            const std::string words = "free, and chosen for the next snapshot";
            constexpr double kWidth = kTip + kTagWidth;
            const double at = nextEntry(x, kWidth, words);
            drawn += "  <g class=\"chosen\">" + chosenTag(at, top - kPictureLine + 4) + "</g>\n" +
                     meaning(at + kWidth, words);
        }
        if (picture.has(ETarget::kBlocked)) {
            const std::string words = "held, and its configuration has no free target";
            const double at = nextEntry(x, kBarHeight, words);
            drawn += "  " + cross(at, top - kPictureLine + 4) + "\n" + meaning(at + kBarHeight, words);
        }
        top += kPictureLine / 2;
        return drawn;
    }

    std::string barEntry(double& x, EBar kind, bool isOpen, const std::string& words) {
        if (words.empty()) {
            return "";
        }
        constexpr double kSample = 28;
        const double width = kSample + (isOpen ? kTip : 0);
        const double at = nextEntry(x, width, words);
        return fmt::format("  <g class=\"{}\">{}</g>\n", classOf(kind),
                           shape(kind, isOpen, at, top - kPictureLine + 4, kSample)) +
               meaning(at + width, words);
    }

    // Where the next entry of the legend begins: at `x` or, where it has no room there, on the next line.
    double nextEntry(double& x, double sample, const std::string& words) {
        const double width = sample + kPictureMargin / 2 + widthOf(words);
        if (x > kPictureMargin && x + width > end()) {
            x = kPictureMargin;
            top += kPictureLine;
        }
        const double at = x;
        x += width + 2 * kPictureMargin;
        return at;
    }

    [[nodiscard]] std::string meaning(double x, const std::string& words) const {
        return text(x + kPictureMargin / 2, top - 5, "", escaped(words));
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
            for (std::size_t j = 0; j < group.rows.size(); ++j) {
                drawn += row(group.rows[j], layout.rows[i][j], first, j % 2 == 0);
            }
        }
        return drawn;
    }

    // Drawn over the grid, which would make the texts hard to read.
    [[nodiscard]] std::string groupHeadings(double first) const {
        std::string drawn;
        for (std::size_t i = 0; i < picture.groups.size(); ++i) {
            drawn += groupHeading(picture.groups[i], first + layout.groupTops[i], layout.rows[i]);
        }
        return drawn;
    }

    // A configuration without a free target has a label that says so, and a line along its rows.
    [[nodiscard]] std::string groupHeading(const SPictureGroup& group, double y,
                                           const std::vector<SPlacedRow>& placed) const {
        const double base = y + kPictureLine - 5;
        std::string drawn = cutText(kPictureMargin, base, R"( class="group")", group.name, "");
        double x = layout.left;
        if (group.isShort) {
            double height = kPictureLine;
            for (const SPlacedRow& each : placed) {
                height += each.height;
            }
            const std::string words = "no free target";
            const double width = widthOf(words) + 10;
            drawn += fmt::format(
                "  <g class=\"short\"><title>{} has no free target</title>"
                R"(<rect class="alarm" x="{}" y="{:.1f}" width="4" height="{:.1f}"/>)"
                R"(<rect class="alarm" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{}"/>)"
                R"(<text class="on" x="{:.1f}" y="{:.1f}">{}</text>)"
                "</g>\n",
                escaped(group.name), kPictureMargin / 2 - 2, y, height, x, base - 10, width, kBarHeight + 1,
                x + 5, base, words);
            x += width + kPictureMargin / 2;
        }
        return group.remark.empty()
                   ? drawn
                   : drawn + text(x, base, R"( class="remark above")", escaped(group.remark));
    }

    [[nodiscard]] std::string row(const SPictureRow& shown, const SPlacedRow& place, double first,
                                  bool isBand) const {
        const double y = first + place.top;
        const double base = y + kPictureLane - 4;
        std::string drawn;
        if (isBand) {
            drawn += fmt::format(R"(  <rect class="band" x="{:.1f}" y="{:.1f}" width="{:.1f}" )"
                                 "height=\"{:.1f}\"/>\n",
                                 layout.left, y, layout.width, place.height);
        }
        switch (shown.state) {
            case ETarget::kHeld:
                break;
            case ETarget::kFree:
                drawn += text(marks + kTip, base, R"( class="remark")", "free");
                break;
            case ETarget::kUnprotected:
                drawn += text(marks + kTip, base, R"( class="remark")", "-");
                break;
            case ETarget::kChosen:
                return drawn + chosenRow(shown, place, y);
            case ETarget::kBlocked:
                drawn += "  " + cross(marks + kTip, y + 2) + "\n";
                break;
        }
        return drawn + cutText(2 * kPictureMargin, base, "", shown.name, shown.title);
    }

    // The row has a frame from its name to its mark, so that it is seen first.
    [[nodiscard]] std::string chosenRow(const SPictureRow& shown, const SPlacedRow& place, double y) const {
        const double x = 1.5 * kPictureMargin;
        return fmt::format(
            "  <g class=\"chosen\"><title>{} is chosen for the next snapshot</title>"
            R"(<rect class="shape" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{:.1f}"/>)"
            "{}\n{}  </g>\n",
            escaped(shown.name), x, y + 0.5, marks - kTip / 2 - x, place.height - 1, chosenTag(marks, y + 2),
            cutText(2 * kPictureMargin, y + kPictureLane - 4, "", shown.name, shown.title));
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

    // The label of the line is above the dates, because one of them may be at the line.
    std::string lineLabel() {
        if (picture.lineLabel.empty()) {
            return "";
        }
        top += kPictureLine;
        return text(layout.x(picture.lineAt), top - 5, R"( text-anchor="middle")",
                    escaped(picture.lineLabel));
    }

    [[nodiscard]] std::string lineAcross(double first) const {
        if (picture.lineLabel.empty()) {
            return "";
        }
        return verticalLine(layout.x(picture.lineAt), first, "line");
    }

    [[nodiscard]] std::string bars(double first) const {
        std::string drawn;
        for (std::size_t i = 0; i < picture.groups.size(); ++i) {
            for (std::size_t j = 0; j < picture.groups[i].rows.size(); ++j) {
                const std::vector<SBar>& all = picture.groups[i].rows[j].bars;
                for (std::size_t k = 0; k < all.size(); ++k) {
                    drawn += bar(all[k], layout.rows[i][j].bars[k], first);
                }
            }
        }
        return drawn;
    }

    [[nodiscard]] std::string bar(const SBar& shown, const SPlacedBar& place, double first) const {
        const double x = layout.x(shown.from);
        const double width = std::max(layout.x(shown.to) - x, 0.5);
        const double y = first + place.top + 2;
        return fmt::format("  <g class=\"bar {}\"><title>{}</title>{}{}</g>\n", classOf(shown.kind),
                           escaped(shown.title), shape(shown.kind, shown.isOpen, x, y, width),
                           name(shown, place.before, x, y, width));
    }

    // The name is written in the bar, on a plain background because a pattern would make it hard to read;
    // before the bar if it fits only there; nowhere if too little of it fits.
    static std::string name(const SBar& bar, double before, double x, double y, double width) {
        const double block = bar.kind == EBar::kRotated ? kBlock : 0;
        const auto room = static_cast<std::size_t>(std::max((width - block - 6) / kPictureCharacter, 0.0));
        const std::string whole = asPrintable(bar.name);
        const std::size_t length = displayWidth(whole);
        const double base = y + kBarHeight - 2.5;
        if (length > room && widthOf(whole) + 9 <= x - before) {
            return fmt::format(R"(<text x="{:.1f}" y="{:.1f}" text-anchor="end">{}</text>)", x - 4, base,
                               escaped(whole));
        }
        constexpr std::size_t kFewest = 6;
        if (length > room && room < kFewest) {
            return "";
        }
        const std::string cut = cutTo(whole, std::max<std::size_t>(room, 1));
        std::string ground;
        if (bar.kind != EBar::kPlain && bar.kind != EBar::kRotated) {
            ground = fmt::format(R"(<rect class="paper" x="{:.1f}" y="{:.1f}" width="{:.1f}" height="{}"/>)",
                                 x + 0.5, y + 0.5, widthOf(cut) + 4, kBarHeight - 1);
        }
        return ground + fmt::format(R"(<text x="{:.1f}" y="{:.1f}">{}</text>)", x + 3, base, escaped(cut));
    }

    std::string notes() {
        std::string lines;
        top += picture.notes.empty() ? 0 : kPictureLine / 2;
        for (const std::string& note : picture.notes) {
            lines += line("remark", note);
        }
        return lines;
    }

    const SPicture& picture;
    SLayout layout;
    // Where the marks of the rows begin.
    double marks;
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
