#include "cli/log_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

namespace fi_rotate {
namespace {

constexpr std::array<std::string_view, 4> kNames{
    "fi_process_backups : ",
    "CFiResourceParser::parse : ",
    "CFiResourceManager::print : ",
    "CFiFiidLoader::load: ERROR: ",
};

std::size_t findName(std::string_view line) {
    std::size_t place = std::string_view::npos;
    for (const std::string_view name : kNames) {
        place = std::min(place, line.find(name));
    }
    return place;
}

// What a prefix looks like: words and numbers look alike, whatever their length, and blanks count at the end
// only. So one shape stands for all times, processes and levels.
class CShape {
public:
    void extend(char character) {
        constexpr char kWord = 'a';
        const bool isWord = std::isalnum(static_cast<unsigned char>(character)) != 0;
        if (character == ' ') {
            ++blanks;
            return;
        }
        if (!isWord || blanks != 0 || body.empty() || body.back() != kWord) {
            body += isWord ? kWord : character;
        }
        blanks = 0;
    }

    [[nodiscard]] std::string text() const { return body + std::string(blanks, ' '); }

private:
    std::string body;
    std::size_t blanks = 0;
};

std::string shapeOf(std::string_view prefix) {
    CShape shape;
    std::for_each(prefix.begin(), prefix.end(), [&shape](char character) { shape.extend(character); });
    return shape.text();
}

bool hasEnds(std::string_view text, std::string_view start, std::string_view end) {
    return text.size() >= start.size() + end.size() && text.substr(0, start.size()) == start &&
           text.substr(text.size() - end.size()) == end;
}

bool isTreeLine(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of('\t'), text.size()));
    return hasEnds(text, " [", "]") || hasEnds(text, " {", "}") || hasEnds(text, " <", ">");
}

bool isPrintedTarget(std::string_view text) {
    constexpr std::array<std::string_view, 4> kFirst{"](Available)", "](Used)", "](Invalid)", "](Unknown)"};
    constexpr std::array<std::string_view, 4> kFurther{",Available}", ",Used}", ",Invalid}", ",Unknown}"};
    const auto endsIn = [text](std::string_view start, const auto& ends) {
        return std::any_of(ends.begin(), ends.end(),
                           [text, start](std::string_view end) { return hasEnds(text, start, end); });
    };
    return endsIn("[", kFirst) || endsIn("{", kFurther);
}

bool isUnnamed(std::string_view text) {
    return isTreeLine(text) || isPrintedTarget(text) || hasEnds(text, "ERROR: ", "");
}

// Nothing but a level and a blank is the prefix that fi-rotate writes; it also escapes line breaks.
bool isOwnPrefix(std::string_view prefix) {
    return prefix == "3 " || prefix == "4 ";
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
        switch (next) {
            case 'n':
                result += '\n';
                break;
            case 'r':
                result += '\r';
                break;
            case '\\':
                result += '\\';
                break;
            default:
                result += text[i];
                continue;
        }
        ++i;
    }
    return result;
}

}  // namespace

std::optional<std::string> CLogText::find(std::string_view line) {
    std::string_view text;
    if (const std::size_t name = findName(line); name != std::string_view::npos) {
        text = line.substr(name);
        prefixShapes.insert(shapeOf(line.substr(0, name)));
        longestPrefix = std::max(longestPrefix, name);
    } else if (const auto unnamed = findUnnamed(line)) {
        text = *unnamed;
    } else {
        return std::nullopt;
    }
    const std::string_view prefix = line.substr(0, line.size() - text.size());
    return isOwnPrefix(prefix) ? unescaped(text) : std::string(text);
}

std::optional<std::string_view> CLogText::findUnnamed(std::string_view line) const {
    // A number in the prefix may have grown since.
    constexpr std::size_t kGrowth = 32;
    CShape shape;
    std::optional<std::string_view> found;
    for (std::size_t end = 0; end <= std::min(line.size(), longestPrefix + kGrowth); ++end) {
        const std::string_view text = line.substr(end);
        // The longest prefix counts: the trees' own blank must not be taken from one that ends in several.
        if (isUnnamed(text) && prefixShapes.count(shape.text()) != 0) {
            found = text;
        }
        if (end < line.size()) {
            shape.extend(line[end]);
        }
    }
    return found;
}

}  // namespace fi_rotate
