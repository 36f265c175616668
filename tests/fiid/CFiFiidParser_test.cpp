#include "fiid/CFiFiidParser.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

using xercesc::XMLUni;

// Notes the events that it receives: "<a" for a start, ">" for an end, "!" for a report.
class CEventNotes : public xercesc::DefaultHandler {
public:
    void startElement(const XMLCh*, const XMLCh*, const XMLCh* qname, const xercesc::Attributes&) override {
        char* name = xercesc::XMLString::transcode(qname);
        notes += '<' + std::string(name);
        xercesc::XMLString::release(&name);
    }
    void endElement(const XMLCh*, const XMLCh*, const XMLCh*) override { notes += '>'; }
    void fatalError(const xercesc::SAXParseException& report) override {
        notes += '!';
        char* id = xercesc::XMLString::transcode(report.getSystemId());
        systemId = id;
        xercesc::XMLString::release(&id);
    }
    void error(const xercesc::SAXParseException&) override { notes += '?'; }

    std::string notes;
    std::string systemId;
};

std::string notesOf(const std::string& document) {
    CFiFiidParser parser(nullptr);
    CEventNotes handler;
    parser.setHandler(&handler);
    parser.parse(document);
    return handler.notes;
}

TEST(CFiFiidParser, ConstructionWithoutAHandlerInitialisesOnly) {
    CTraceRecorder recorder;
    const CFiFiidParser parser(nullptr);
    EXPECT_EQ(recorder.take(), progress({"Entering CFiFiidParser::CFiFiidParser\n"}) +
                                   entryAndExit("CFiFiidParser::init") +
                                   progress({"Exiting CFiFiidParser::CFiFiidParser\n"}));
    EXPECT_EQ(parser.handler, nullptr);
    EXPECT_NE(parser.reader, nullptr);
}

TEST(CFiFiidParser, ConstructionWithAHandlerInstallsIt) {
    CEventNotes handler;
    CTraceRecorder recorder;
    CFiFiidParser parser(&handler);
    EXPECT_EQ(recorder.take(), progress({"Entering CFiFiidParser::CFiFiidParser\n"}) +
                                   entryAndExit("CFiFiidParser::init") +
                                   entryAndExit("CFiFiidParser::setHandler") +
                                   progress({"Exiting CFiFiidParser::CFiFiidParser\n"}));
    EXPECT_EQ(parser.handler, &handler);
    parser.parse("<a/>");
    EXPECT_EQ(handler.notes, "<a>");
}

TEST(CFiFiidParser, SetHandlerInstallsForContentAndErrorsOnly) {
    CFiFiidParser parser(nullptr);
    CEventNotes handler;
    CTraceRecorder recorder;
    parser.setHandler(&handler);
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::setHandler"));
    EXPECT_EQ(parser.handler, &handler);
    // In a hardened library the limits stand between.
    EXPECT_EQ(parser.reader->getContentHandler() == &handler, !kHardenedXml);
    EXPECT_EQ(parser.reader->getErrorHandler(), &handler);
    EXPECT_EQ(parser.reader->getDTDHandler() != nullptr, kHardenedXml);
    EXPECT_EQ(parser.reader->getEntityResolver(), nullptr);
    EXPECT_EQ(parser.reader->getLexicalHandler(), nullptr);
    EXPECT_EQ(parser.reader->getDeclarationHandler() != nullptr, kHardenedXml);
}

TEST(CFiFiidParser, EmptyHandlerTakesTheInstalledOneAway) {
    CEventNotes handler;
    CFiFiidParser parser(&handler);
    parser.setHandler(nullptr);
    EXPECT_EQ(parser.handler, nullptr);
    EXPECT_EQ(parser.reader->getContentHandler() == nullptr, !kHardenedXml);
    EXPECT_EQ(parser.reader->getErrorHandler(), nullptr);
    parser.parse("<a/>");
    EXPECT_EQ(handler.notes, "");
}

TEST(CFiFiidParser, SwitchesValidationAndNamespacesOff) {
    const CFiFiidParser parser(nullptr);
    for (const XMLCh* feature :
         {XMLUni::fgSAX2CoreValidation, XMLUni::fgSAX2CoreNameSpaces, XMLUni::fgXercesSchema,
          XMLUni::fgXercesSchemaFullChecking, XMLUni::fgSAX2CoreNameSpacePrefixes}) {
        EXPECT_FALSE(parser.reader->getFeature(feature));
    }
}

TEST(CFiFiidParser, ParseTracesEntryAndExit) {
    CFiFiidParser parser(nullptr);
    CTraceRecorder recorder;
    parser.parse("<a/>");
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::parse"));
    parser.parse("<a>");
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::parse"));
}

TEST(CFiFiidParser, DestructionTracesEntryAndExit) {
    auto parser = std::make_unique<CFiFiidParser>(nullptr);
    CTraceRecorder recorder;
    parser.reset();
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::~CFiFiidParser"));
}

TEST(CFiFiidParser, EmptyDocumentGivesNoElement) {
    EXPECT_EQ(notesOf(""), "!");
}

TEST(CFiFiidParser, PrefixesStayInQualifiedNames) {
    EXPECT_EQ(notesOf("<x:Node xmlns:x='u'><y:z/></x:Node>"), "<x:Node<y:z>>");
}

TEST(CFiFiidParser, NothingIsValidatedWhateverTheDocumentDeclares) {
    EXPECT_EQ(notesOf("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a><b/></a>"), "<a<b>>");
    EXPECT_EQ(notesOf("<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                      "xsi:noNamespaceSchemaLocation='no-such.xsd'><b/></a>"),
              "<a<b>>");
}

TEST(CFiFiidParser, MalformedDocumentIsReportedToTheHandlerAndToNobodyElse) {
    EXPECT_NO_THROW(EXPECT_EQ(notesOf("<a><b></a>"), "<a<b!"));
}

TEST(CFiFiidParser, DocumentsAreParsedUnderOneFixedName) {
    CFiFiidParser parser(nullptr);
    CEventNotes handler;
    parser.setHandler(&handler);
    parser.parse("<a>");
    EXPECT_EQ(handler.systemId.substr(handler.systemId.size() - 15), "mofi_sax_parser");
}

TEST(CFiFiidParser, BytesAreReadInTheEncodingThatTheDocumentDeclares) {
    EXPECT_EQ(notesOf("<?xml version='1.0' encoding='ISO-8859-1'?><\xE4/>"), "<\xC3\xA4>");
    EXPECT_EQ(notesOf(std::string("\xFF\xFE<\0a\0/\0>\0", 10)), "<a>");
}

TEST(CFiFiidParser, ParsersMayBeMadeOneAfterAnother) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(notesOf("<a/>"), "<a>");
    }
}

TEST(CFiFiidParser, ParsersMayOverlapOnOneThread) {
    auto first = std::make_unique<CFiFiidParser>(nullptr);
    const CFiFiidParser second(nullptr);
    first.reset();
    EXPECT_EQ(notesOf("<a/>"), "<a>");
    EXPECT_NE(second.reader, nullptr);
}

}  // namespace
}  // namespace fi_test
