#include "fiid/CFiFiidHandler.h"

#include <cstdlib>
#include <memory>

#include <xercesc/util/PlatformUtils.hpp>

#include "fiid/CFiFiidNode.h"
#include "fiid/CFiXmlLimits.h"
#include "fiid/entry_exit_trace.h"
#include "fiid/host_library.h"
#include "fiid/local_code_page.h"

using xercesc::XMLPlatformUtils;

namespace {

// GCOVR_EXCL_START: in the host library, and in the first library when that is built hardened.
void tracePlace(const xercesc::SAXParseException& report) {
    std::string words;
    toLocalCodePage(report.getMessage(), words);
    mofi_tracelog(kTraceFailure, "CFiFiidHandler::fatalError : line %s, column %s : %s",
                  std::to_string(report.getLineNumber()).c_str(),
                  std::to_string(report.getColumnNumber()).c_str(), words.c_str());
}
// GCOVR_EXCL_STOP

// Compares in UTF-16, which is faster and gives the same answer as a comparison in the local code page: in
// none of these does a character outside ASCII become one of the letters of `element`.
bool isNamed(const XMLCh* qname, const XMLCh* element) {
    while (*qname == *element && *element != 0) {
        ++qname;
        ++element;
    }
    return *qname == *element;
}

}  // namespace

CFiFiidHandler::CFiFiidHandler()
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): this initialises a member and throws nothing.
    : lastException(nullptr, nullptr, nullptr, 0, 0, XMLPlatformUtils::fgMemoryManager) {
    traceEntering("CFiFiidHandler::CFiFiidHandler");
    traceExiting("CFiFiidHandler::CFiFiidHandler");
}

CFiFiidHandler::~CFiFiidHandler() {
    traceEntering("CFiFiidHandler::~CFiFiidHandler");
    traceExiting("CFiFiidHandler::~CFiFiidHandler");
}

void CFiFiidHandler::characters(const XMLCh* chars, XMLSize_t /*length*/) {
    toLocalCodePage(chars, text);
}

void CFiFiidHandler::startElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* qname,
                                  const xercesc::Attributes& /*attributes*/) {
    traceEntering("CFiFiidHandler::startElement");
    if (done) {
        // This extra line tells readers of the trace that the tree was complete before.
        traceExiting("CFiFiidHandler::startElement");
    }
    if (isNamed(qname, u"Node")) {
        openNode();
    }
    traceExiting("CFiFiidHandler::startElement");
}

void CFiFiidHandler::endElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* qname) {
    traceEntering("CFiFiidHandler::endElement");
    if (root != nullptr && isNamed(qname, u"timeStamp")) {
        root->timeStamp = text;
    }
    if (done) {
        traceExiting("CFiFiidHandler::endElement");
    }
    if (isNamed(qname, u"Node")) {
        closeNode();
    } else if (current != nullptr) {
        storeInCurrent(qname);
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
        // An earlier root of this document stays allocated: nothing points to it any more, and the
        // code that builds nodes never deletes any. In the host library it is kept in a list, so that
        // the driver frees it with the other trees.
        if constexpr (kInHostLibrary) {
            linkReplacedRoot();
        }
        root = node.get();
    }
    current = node.release();
}

// GCOVR_EXCL_START: in the host library only.
void CFiFiidHandler::linkReplacedRoot() {
    if (root != nullptr) {
        root->parent = replaced;
        replaced = root;
    }
}
// GCOVR_EXCL_STOP

void CFiFiidHandler::closeNode() {
    --depth;
    current = current->parent;
    if (depth == 0) {
        done = true;
        traceExiting("CFiFiidHandler::endElement");
    }
}

void CFiFiidHandler::storeInCurrent(const XMLCh* qname) {
    if (isNamed(qname, u"objid")) {
        current->objid = text;
    } else if (isNamed(qname, u"type")) {
        current->type = static_cast<std::int32_t>(std::strtol(text.c_str(), nullptr, 10));
    } else if (isNamed(qname, u"altobjid")) {
        current->altobjid = text;
    } else if (isNamed(qname, u"splitType")) {
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
    // The bare function has this line only for a limit that is exceeded. For other ill-formed documents, its
    // trace stays as its hosts know it.
    if (kInHostLibrary || dynamic_cast<const CFiXmlExcess*>(&report) != nullptr) {
        tracePlace(report);  // GCOVR_EXCL_LINE
    }
    record(report);
    traceExiting("CFiFiidHandler::fatalError");
}

void CFiFiidHandler::warning(const xercesc::SAXParseException& report) {
    traceEntering("CFiFiidHandler::warning");
    record(report);
    traceExiting("CFiFiidHandler::warning");
}
