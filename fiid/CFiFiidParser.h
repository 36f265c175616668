#pragma once

#include <memory>
#include <string>

#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>

#include "fiid/CFiXmlLimits.h"

// One SAX2 reader of the XML library, without validation and namespace processing, for documents
// that are already in memory. Each parser initialises the XML library and terminates it again; the
// XML library counts these calls, but not safely across threads.
//
// Objects that allocate through the XML library (handlers, transcoded text) must be created after
// the parser and destroyed before it.
class CFiFiidParser {
public:
    // Calls init(), then setHandler(initialHandler) when it is not null.
    explicit CFiFiidParser(xercesc::DefaultHandler* initialHandler);
    ~CFiFiidParser();

    CFiFiidParser(const CFiFiidParser&) = delete;
    CFiFiidParser& operator=(const CFiFiidParser&) = delete;

    // Initialises the XML library and makes the reader; the constructor's first step. An
    // XMLException is dropped and may leave the parser without a reader: setHandler then only
    // stores the handler, and parse does nothing.
    void init();

    // Installs `newHandler`, which is borrowed and may be null, for content and errors.
    void setHandler(xercesc::DefaultHandler* newHandler);

    // Delivers the events of `document` to the handler. Malformed XML is reported to the handler
    // and to nobody else; what the reader throws passes to the caller.
    void parse(const std::string& document);

    xercesc::DefaultHandler* handler = nullptr;
    std::unique_ptr<xercesc::SAX2XMLReader> reader;

private:
    void closeReaderAndLibrary();

    CFiXmlLimits limits;
};
