#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/check/document_text.h"
#include "cli/check/findings.h"

namespace fi_rotate {

struct SConfiguredTarget {
    std::string enclosure;
    std::string device;
    // In the text as it was given, before references are decoded.
    std::size_t offset = 0;
    // The enclosure is that of the target before.
    bool isEnclosureCarried = false;

    // ENCLOSURE##DEVICE. An enclosure holds no "##" and does not end in '#', so the name tells both.
    [[nodiscard]] std::string name() const { return enclosure + "##" + device; }
};

struct SConfiguration {
    SConfiguredTarget first;
    std::vector<SConfiguredTarget> further;
};

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
    ~CConfigurationText() = default;
    CConfigurationText(const CConfigurationText&) = delete;
    CConfigurationText& operator=(const CConfigurationText&) = delete;

    [[nodiscard]] SPiece whole() const { return {decoded, 0}; }

    // The parts of `piece`, which is one of this text, between runs of `separators`; none is empty.
    std::vector<SPiece> split(const SPiece& piece, const char* separators) const;

    // A finding with its place and the line around it.
    [[nodiscard]] SFinding findingAt(EHazard hazard, std::size_t offset, std::string what) const;

private:
    std::string_view given;
    CLines lines;
    std::string decoded;
    // Of each decoded character.
    std::vector<std::size_t> offsets;
};

struct SConfigurationFault {
    // In the text as it was given.
    std::size_t offset = 0;
    std::string text;
    // The targets of its configuration, as they are written.
    std::vector<std::string> targets;
    // What is malformed, as it is written.
    std::string target;
};

// What the library makes of a configuration.
struct SReadConfigurations {
    std::vector<SConfiguration> used;
    // How many there are, the lost ones included.
    std::size_t count = 0;
    // What the first lost one is lost for.
    std::optional<SConfigurationFault> fault;
    // Those of the lost ones whose first target can be read, with as many of the others as can.
    std::vector<SConfiguration> lost;
    // The targets of the others, as they are written.
    std::vector<std::vector<std::string>> malformed;
};

// The target as it stands in the configuration.
std::string writtenAs(const SConfiguredTarget& target);

// The target at `position` of `configuration`, whose first target is at 0.
const SConfiguredTarget& targetAt(const SConfiguration& configuration, std::size_t position);

// Between the enclosure and the device of a target.
constexpr std::string_view kSeparator = "##";

// Reads one configuration into `configuration`.
std::optional<SConfigurationFault> parseConfiguration(const CConfigurationText& text, const SPiece& piece,
                                                      SConfiguration& configuration);

SReadConfigurations parseConfigurations(const CConfigurationText& text);

}  // namespace fi_rotate
