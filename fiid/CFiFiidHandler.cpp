#include "fiid/CFiFiidHandler.h"

#include <cstdlib>
#include <memory>
#include <optional>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "fiid/CFiFiidNode.h"
#include "fiid/entry_exit_trace.h"

using xercesc::XMLPlatformUtils;
using xercesc::XMLString;

namespace {

struct STranscodedRelease {
    void operator()(char* buffer) const {
        XMLString::release(&buffer, XMLPlatformUtils::fgMemoryManager);
    }
};

// The text up to its NUL in the local code page; nothing when the conversion gives no buffer.
std::optional<std::string> toLocalCodePage(const XMLCh* text) {
    const std::unique_ptr<char, STranscodedRelease> buffer(
        XMLString::transcode(text, XMLPlatformUtils::fgMemoryManager));
    if (buffer == nullptr) {
        return std::nullopt;
    }
    return std::string(buffer.get());
}

}  // namespace

CFiFiidHandler::CFiFiidHandler()
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): a member, the last report; nothing is thrown.
    : lastException(nullptr, nullptr, nullptr, 0, 0, XMLPlatformUtils::fgMemoryManager) {
    traceEntering("CFiFiidHandler::CFiFiidHandler");
    traceExiting("CFiFiidHandler::CFiFiidHandler");
}

CFiFiidHandler::~CFiFiidHandler() {
    traceEntering("CFiFiidHandler::~CFiFiidHandler");
    traceExiting("CFiFiidHandler::~CFiFiidHandler");
}

void CFiFiidHandler::characters(const XMLCh* chars, XMLSize_t /*length*/) {
    if (auto converted = toLocalCodePage(chars)) {
        text = std::move(*converted);
    }
}

void CFiFiidHandler::startElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/,
                                  const XMLCh* qname, const xercesc::Attributes& /*attributes*/) {
    traceEntering("CFiFiidHandler::startElement");
    if (done) {
        // The extra line is what tells a reader of the trace that the tree was already complete.
        traceExiting("CFiFiidHandler::startElement");
    }
    if (toLocalCodePage(qname) == "Node") {
        openNode();
    }
    traceExiting("CFiFiidHandler::startElement");
}

void CFiFiidHandler::endElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/,
                                const XMLCh* qname) {
    traceEntering("CFiFiidHandler::endElement");
    const std::string element = toLocalCodePage(qname).value_or("");
    if (element == "timeStamp" && root != nullptr) {
        root->timeStamp = text;
    }
    if (done) {
        traceExiting("CFiFiidHandler::endElement");
    }
    if (element == "Node") {
        closeNode();
    } else if (current != nullptr) {
        storeInCurrent(element);
    }
    traceExiting("CFiFiidHandler::endElement");
}

void CFiFiidHandler::openNode() {
    ++depth;
    auto node = std::make_unique<CFiFiidNode>();
    if (current != nullptr) {
        node->parent = current;
        current->children.push_back(node.get());
    } else {
        // A root made earlier in this document is dropped from view here and stays allocated:
        // nobody holds it any more, and nodes are never deleted by the code that builds them.
        root = node.get();
    }
    current = node.release();
}

void CFiFiidHandler::closeNode() {
    --depth;
    current = current->parent;
    if (depth == 0) {
        done = true;
        traceExiting("CFiFiidHandler::endElement");
    }
}

void CFiFiidHandler::storeInCurrent(const std::string& element) {
    if (element == "objid") {
        current->objid = text;
    } else if (element == "type") {
        current->type = static_cast<std::int32_t>(std::strtol(text.c_str(), nullptr, 10));
    } else if (element == "altobjid") {
        current->altobjid = text;
    } else if (element == "splitType") {
        current->splitType = text;
    }
}

void CFiFiidHandler::record(const xercesc::SAXParseException& report) {
    errorSeen = true;
    lastException = report;
}

void CFiFiidHandler::error(const xercesc::SAXParseException& report) {
    traceEntering("CFiFiidHandler::error");
    record(report);
    traceExiting("CFiFiidHandler::error");
}

void CFiFiidHandler::fatalError(const xercesc::SAXParseException& report) {
    traceEntering("CFiFiidHandler::fatalError");
    record(report);
    traceExiting("CFiFiidHandler::fatalError");
}

void CFiFiidHandler::warning(const xercesc::SAXParseException& report) {
    traceEntering("CFiFiidHandler::warning");
    record(report);
    traceExiting("CFiFiidHandler::warning");
}
