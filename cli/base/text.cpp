#include "cli/base/text.h"

#include <algorithm>

#include <fmt/format.h>

namespace fi_rotate {
namespace {

// The well-formed sequences of UTF-8, by their first byte. The range of the second byte excludes overlong
// forms, surrogates and characters after U+10FFFF.
struct SSequence {
    unsigned char firstLow, firstHigh;
    unsigned char secondLow, secondHigh;
    std::size_t length;
};
constexpr SSequence kSequences[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool isWithin(char byte, unsigned char low, unsigned char high) {
    const auto value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

bool startsWith(std::string_view text, const SSequence& sequence) {
    if (text.size() < sequence.length || !isWithin(text[0], sequence.firstLow, sequence.firstHigh) ||
        !isWithin(text[1], sequence.secondLow, sequence.secondHigh)) {
        return false;
    }
    for (std::size_t i = 2; i < sequence.length; ++i) {
        if (!isWithin(text[i], 0x80, 0xBF)) {
            return false;
        }
    }
    return true;
}

// Length of the character at the start of `text`; 0 when there is none.
std::size_t characterLength(std::string_view text) {
    if (isWithin(text[0], 0x00, 0x7F)) {
        return 1;
    }
    for (const SSequence& sequence : kSequences) {
        if (startsWith(text, sequence)) {
            return sequence.length;
        }
    }
    return 0;
}

bool isControl(std::string_view character) {
    const bool c0 = character.size() == 1 && (isWithin(character[0], 0x00, 0x1F) || character[0] == 0x7F);
    const bool c1 = character.size() == 2 && character[0] == '\xC2' && isWithin(character[1], 0x80, 0x9F);
    return c0 || c1;
}

std::string escaped(std::string_view bytes) {
    std::string result;
    for (const char byte : bytes) {
        result += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
    }
    return result;
}

std::string converted(std::string_view text, bool escapeControls) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::string_view character = text.substr(0, length == 0 ? 1 : length);
        const bool isShown = length != 0 && !(escapeControls && isControl(character));
        result += isShown ? std::string(character) : escaped(character);
        text.remove_prefix(character.size());
    }
    return result;
}

}  // namespace

std::string asUtf8(std::string_view text) {
    return converted(text, false);
}

std::string asPrintable(std::string_view text) {
    return converted(text, true);
}

std::string quoted(std::string_view text, std::size_t longest) {
    return text.size() <= longest ? fmt::format("\"{}\"", text)
                                  : fmt::format("\"{}...\"", text.substr(0, characterStart(text, longest)));
}

std::string printableInQuotes(std::string_view text) {
    return quoted(asPrintable(text));
}

std::size_t utf8Length(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size()) {
        const std::size_t next = characterLength(text.substr(length));
        if (next == 0) {
            break;
        }
        length += next;
    }
    return length;
}

std::size_t firstCharacterLength(std::string_view text) {
    return std::max<std::size_t>(characterLength(text), 1);
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t offset = 0; offset < text.size(); ++count) {
        offset += firstCharacterLength(text.substr(offset));
    }
    return count;
}

std::size_t characterStart(std::string_view text, std::size_t offset) {
    constexpr std::size_t kLongestCharacter = 4;
    for (std::size_t back = 1; back < kLongestCharacter && back <= offset; ++back) {
        if (characterLength(text.substr(offset - back)) > back) {
            return offset - back;
        }
    }
    return offset;
}

}  // namespace fi_rotate
