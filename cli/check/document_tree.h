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
    // What makes it another text than was written.
    std::optional<EHazard> distortedBy = std::nullopt;
};

struct SNode {
    std::optional<SValue> objid;
    std::optional<SValue> altobjid;
    // What took them away if they are missing.
    std::optional<EHazard> objidLostTo = std::nullopt;
    std::optional<EHazard> altobjidLostTo = std::nullopt;
};

// What the library makes of a document.
struct SDocumentTree {
    // Of the Node that counts: the last one that stands in no other.
    std::optional<SValue> timeStamp;
    // That Node and those in it, in the order of their start tags. None when there is none.
    std::vector<SNode> nodes;
    // The document asked for more than is followed, so that the library may have read more.
    bool isCutShort = false;
};

// The library takes such Nodes for devices.
bool isDevice(const SNode& node);

// What is outside a document is opened by nobody here. Whether the library can open it is not known.
enum class EForeign {
    // Where the document refers to it, its tree ends.
    kStop,
    kReadAsEmpty,
};

// Reads `document` while a CXmlLibrary lives. What is wrong with its form is added to `findings`.
SDocumentTree readTree(const CDocumentText& document, EForeign foreign, CFindings& findings);

// The time stamp of the backup that `bytes` are the document of, as the library reads it at least; empty
// when there is none. A CXmlLibrary must live.
std::string readTimeStamp(std::string bytes);

}  // namespace fi_rotate
