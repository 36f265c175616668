#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/check/document_text.h"
#include "cli/check/findings.h"

namespace fi_rotate {

// The text of a data element as the library takes it, and the place in the content, as the XML library
// counts, where the element's own text begins.
struct SValue {
    std::string text;
    SPlace place;
    // The hazard because of which `text` is not what was written.
    std::optional<EHazard> distortedBy = std::nullopt;
};

struct SNode {
    std::optional<SValue> objid;
    std::optional<SValue> altobjid;
    // If they are missing: the hazard that is the cause.
    std::optional<EHazard> objidLostTo = std::nullopt;
    std::optional<EHazard> altobjidLostTo = std::nullopt;
};

// A document as the library reads it.
struct SDocumentTree {
    // The time stamp of the Node that counts: the last one that is not inside another.
    std::optional<SValue> timeStamp;
    // That Node and the Nodes in it, in the order of their start tags; empty when there is none.
    std::vector<SNode> nodes;
    // Reading was stopped at a limit or at a reference to another file; the library may have read more.
    bool isCutShort = false;
};

// Whether the library takes the Node for a device.
bool isDevice(const SNode& node);

// What to do at a reference to another file or server. fi-rotate never opens it; the library may.
enum class EForeign {
    // Stop reading the document there.
    kStop,
    kReadAsEmpty,
};

// Reads `document` while a CXmlLibrary lives. What is wrong with its form is added to `findings`.
SDocumentTree readTree(const CDocumentText& document, EForeign foreign, CFindings& findings);

// The time stamp in the document with these bytes; empty when there is none, or when reading stops before it.
// A CXmlLibrary must live.
std::string readTimeStamp(std::string bytes);

}  // namespace fi_rotate
