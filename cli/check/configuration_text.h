#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/check/findings.h"
#include "cli/check/place.h"

namespace fi_rotate {

// A part of the decoded text and where it stands in the text as it was given.
struct SPiece {
    std::string_view text;
    std::size_t offset = 0;
};

// A configuration as the library reads it, up to its first NUL and with its references decoded, that
// remembers where everything stood.
class CConfigurationText {
public:
    // `text` is borrowed.
    explicit CConfigurationText(const std::string& text);
    CConfigurationText(const CConfigurationText&) = delete;
    CConfigurationText& operator=(const CConfigurationText&) = delete;

    SPiece whole() const { return {decoded, 0}; }

    // The parts of `piece`, which is one of this text, between runs of `separators`; none is empty.
    std::vector<SPiece> split(const SPiece& piece, const char* separators) const;

    // A finding with its place and the line around it.
    SFinding findingAt(EHazard hazard, std::size_t offset, std::string what) const;

private:
    std::string_view given;
    CLines lines;
    std::string decoded;
    // Of each decoded character.
    std::vector<std::size_t> offsets;
};

}  // namespace fi_rotate
