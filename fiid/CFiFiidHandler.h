#pragma once

#include <cstdint>
#include <string>

#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>

class CFiFiidNode;

// Builds the tree of one document from the events of its reader. One handler serves one document.
//
// The value of a data element is the last piece of character data that arrived before its end tag:
// pieces are not joined, and an element without any takes what came before it.
class CFiFiidHandler : public xercesc::DefaultHandler {
public:
    CFiFiidHandler();
    // Deletes no nodes.
    ~CFiFiidHandler() override;

    CFiFiidHandler(const CFiFiidHandler&) = delete;
    CFiFiidHandler& operator=(const CFiFiidHandler&) = delete;

    void characters(const XMLCh* chars, XMLSize_t length) override;
    void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override;
    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc::Attributes& attributes) override;

    // Each records the report; none throws or prints.
    void error(const xercesc::SAXParseException& report) override;
    void fatalError(const xercesc::SAXParseException& report) override;
    void warning(const xercesc::SAXParseException& report) override;

    // Number of open Nodes.
    std::int32_t depth = 0;
    // The last top-level Node so far, the result of the parse. Not owned.
    CFiFiidNode* root = nullptr;
    // The innermost open Node.
    CFiFiidNode* current = nullptr;
    // Whether a top-level Node has closed.
    bool done = false;
    // Unused; part of the record's fixed layout.
    std::string spareName;
    xercesc::SAXParseException lastException;
    // A warning counts like an error.
    bool errorSeen = false;
    // The latest piece of character data; white space between tags is one, too.
    std::string text;
    // Used in the host library only: the first of a list of roots that a later one replaced, or null. The
    // next in the list is the `parent` of each.
    CFiFiidNode* replaced = nullptr;

private:
    void openNode();
    void linkReplacedRoot();
    void closeNode();
    void storeInCurrent(const XMLCh* qname);
    void record(const xercesc::SAXParseException& report);
};
