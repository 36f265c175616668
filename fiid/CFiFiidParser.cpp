#include "fiid/CFiFiidParser.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "fiid/entry_exit_trace.h"
#include "fiid/host_library.h"

using xercesc::MemBufInputSource;
using xercesc::XMLException;
using xercesc::XMLPlatformUtils;
using xercesc::XMLReaderFactory;
using xercesc::XMLUni;

CFiFiidParser::CFiFiidParser(xercesc::DefaultHandler* initialHandler) {
    traceEntering("CFiFiidParser::CFiFiidParser");
    try {
        init();
        if (initialHandler != nullptr) {
            setHandler(initialHandler);
        }
    } catch (...) {
        // The destructor does not run for an object whose constructor throws.
        closeReaderAndLibrary();
        throw;
    }
    traceExiting("CFiFiidParser::CFiFiidParser");
}

CFiFiidParser::~CFiFiidParser() {
    traceEntering("CFiFiidParser::~CFiFiidParser");
    closeReaderAndLibrary();
    traceExiting("CFiFiidParser::~CFiFiidParser");
}

void CFiFiidParser::init() {
    traceEntering("CFiFiidParser::init");
    try {
        // The host library keeps the XML library initialised. There, the count of its users is left alone,
        // because other threads of the process may be changing it.
        if constexpr (!kInHostLibrary) {
            XMLPlatformUtils::Initialize(XMLUni::fgXercescDefaultLocale);
        }
        reader.reset(XMLReaderFactory::createXMLReader(XMLPlatformUtils::fgMemoryManager));
        reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
        reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
        reader->setFeature(XMLUni::fgXercesSchema, false);
        reader->setFeature(XMLUni::fgXercesSchemaFullChecking, false);
        reader->setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, false);
        if constexpr (kHardenedXml) {
            limits.applyTo(*reader);
        }
    } catch (const XMLException&) {  // NOLINT(bugprone-empty-catch)
        // A parser without a reader yields no tree; the backup is then ignored.
    }
    traceExiting("CFiFiidParser::init");
}

void CFiFiidParser::setHandler(xercesc::DefaultHandler* newHandler) {
    traceEntering("CFiFiidParser::setHandler");
    handler = newHandler;
    try {
        limits.setHandler(handler);
        if (reader != nullptr) {
            if constexpr (!kHardenedXml) {
                reader->setContentHandler(handler);
            }
            reader->setErrorHandler(handler);
        }
        // GCOVR_EXCL_START: this version of the library only stores what it is given and never throws here.
    } catch (const XMLException&) {  // NOLINT(bugprone-empty-catch)
        // As in init: without its handler the document yields no tree.
    }
    // GCOVR_EXCL_STOP
    traceExiting("CFiFiidParser::setHandler");
}

void CFiFiidParser::parse(const std::string& document) {
    traceEntering("CFiFiidParser::parse");
    if (reader != nullptr) {
        const MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()), document.size(),
                                       "mofi_sax_parser", false, XMLPlatformUtils::fgMemoryManager);
        try {
            if constexpr (kHardenedXml) {
                limits.begin(document);
            }
            reader->parse(source);
            // GCOVR_EXCL_START: in libraries that are built hardened, as the host library is.
        } catch (const CFiXmlExcess& excess) {
            // Reported like a document that is not well-formed.
            if (handler != nullptr) {
                handler->fatalError(excess);
            }
        }
        // GCOVR_EXCL_STOP
    }
    traceExiting("CFiFiidParser::parse");
}

void CFiFiidParser::closeReaderAndLibrary() {
    reader.reset();
    if constexpr (!kInHostLibrary) {
        XMLPlatformUtils::Terminate();
    }
}
