#include "tests/model/ModelIdentifier.h"

#include <cstddef>

namespace fi_model {
namespace {

// Cuts the part before the first "##" off the front of `rest`; false when there is no "##".
bool takePart(std::string& rest, std::string& part) {
    const std::size_t separator = rest.find("##");
    if (separator == std::string::npos) {
        return false;
    }
    part = rest.substr(0, separator);
    rest = rest.substr(separator + 2);
    return true;
}

void noteForm(bool isEnclosureId, bool hasFourParts, SJournal& journal) {
    if (isEnclosureId) {
        journal.note(hasFourParts ? EOutcome::kIdentifierEnclosureFourParts
                                  : EOutcome::kIdentifierEnclosureThreeParts);
    } else {
        journal.note(hasFourParts ? EOutcome::kIdentifierDeviceFourParts
                                  : EOutcome::kIdentifierDeviceThreeParts);
    }
}

}  // namespace

SIdentifier parseIdentifier(const std::string& text, SJournal& journal) {
    bool isEnclosureId = false;
    std::size_t prefix = text.find("UDID##");
    if (prefix == std::string::npos) {
        isEnclosureId = true;
        prefix = text.find("UEID##");
    }
    if (prefix == std::string::npos) {
        throw SMalformed{text, 2};
    }
    std::string rest = text.substr(prefix + 6);
    std::string ignored;
    if (!takePart(rest, ignored)) {
        throw SMalformed{text, 3};
    }
    if (!takePart(rest, ignored)) {
        throw SMalformed{text, 4};
    }
    if (rest.empty()) {
        throw SMalformed{text, 1};
    }
    SIdentifier identifier;
    const bool hasFourParts = takePart(rest, identifier.enclosure);
    // Three parts name a device where the prefix says device, and an enclosure where it does not.
    if (hasFourParts || !isEnclosureId) {
        identifier.device = rest;
    } else {
        identifier.enclosure = rest;
    }
    noteForm(isEnclosureId, hasFourParts, journal);
    journal.noteIf(prefix != 0, EOutcome::kIdentifierPrefixNotAtStart);
    return identifier;
}

}  // namespace fi_model
