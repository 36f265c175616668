#include "cli/check/excerpt.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "cli/base/columns.h"
#include "cli/base/text.h"

namespace fi_rotate {
namespace {

constexpr std::size_t kWidest = 100;
constexpr std::size_t kNarrowest = 10;
constexpr const char* kDots = "…";

// A character as it is shown.
struct SShown {
    std::string text;
    std::size_t width = 0;
};

std::vector<SShown> charactersOf(std::string_view text) {
    std::vector<SShown> characters;
    while (!text.empty()) {
        const std::size_t length = firstCharacterLength(text);
        const std::string shown = asPrintable(text.substr(0, length));
        characters.push_back({shown, displayWidth(shown)});
        text.remove_prefix(length);
    }
    return characters;
}

// A part of some characters that grows as long as it fits.
class CWindow {
public:
    // `all` is borrowed.
    CWindow(const std::vector<SShown>& all, std::size_t start, std::size_t columns)
        : characters(all), begin(start), end(start), room(columns) {}

    bool growLeft() {
        const bool isGrown = begin > 0 && take(characters[begin - 1]);
        begin -= isGrown ? 1 : 0;
        return isGrown;
    }
    bool growRight() {
        const bool isGrown = end < characters.size() && take(characters[end]);
        end += isGrown ? 1 : 0;
        return isGrown;
    }

    [[nodiscard]] std::size_t first() const { return begin; }
    [[nodiscard]] std::size_t behindLast() const { return end; }

private:
    bool take(const SShown& character) {
        const bool fits = character.width <= room;
        room -= fits ? character.width : 0;
        return fits;
    }

    const std::vector<SShown>& characters;
    std::size_t begin;
    std::size_t end;
    std::size_t room;
};

}  // namespace

SShownExcerpt showExcerpt(const SSpot& spot, std::size_t width) {
    const std::vector<SShown> characters = charactersOf(spot.excerpt);
    const std::size_t place = charactersOf(spot.excerpt.substr(0, spot.caret)).size();
    const std::size_t wordEnd = charactersOf(spot.excerpt.substr(0, spot.caret + spot.wordLength)).size();

    // Dots take a column at each end.
    CWindow window(characters, place, std::max(std::min(width, kWidest), kNarrowest) - 2);
    while (window.behindLast() < wordEnd && window.growRight()) {
    }
    for (bool isGrown = true; isGrown;) {
        const bool isGrownLeft = window.growLeft();
        isGrown = window.growRight() || isGrownLeft;
    }

    SShownExcerpt shown;
    const bool isCutBefore = spot.isCutBefore || window.first() > 0;
    shown.line = isCutBefore ? kDots : "";
    shown.caret = isCutBefore ? 1 : 0;
    for (std::size_t i = window.first(); i < window.behindLast(); ++i) {
        shown.line += characters[i].text;
        shown.caret += i < place ? characters[i].width : 0;
    }
    shown.line += spot.isCutAfter || window.behindLast() < characters.size() ? kDots : "";
    return shown;
}

}  // namespace fi_rotate
