#pragma once

#include <string>

// A device identifier "UDID##part1##part2##enclosure##device" or an enclosure identifier
// "UEID##part1##part2##enclosure##device", split into its parts. When no "##" follows the third part,
// it is the device of a device identifier and the enclosure of an enclosure identifier, and the
// other one is empty; only then do the two prefixes mean different targets. The prefix may stand
// anywhere in the text; what stands before it is ignored.
class CFiUdid {
public:
    // Fills the parts from `text`. Throws CFiUdidException when `text` is not of the form; the
    // parts set before the fault was met keep their values, and the object may be parsed into
    // again.
    void parse(const std::string& text);

    std::string idPart1;
    std::string idPart2;
    std::string enclosure;
    // The rest of the text, further "##" included.
    std::string device;
    // Unused; part of the record's fixed layout.
    std::string reserved;
    bool isEnclosureId = false;
};
