#include "bench/Readers.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>

#include <expat.h>
#include <pugixml.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace fi_bench {
namespace {

using xercesc::XMLUni;
using Pairs = std::map<std::string, std::string>;

bool isDevice(const std::string& objid) {
    return objid.find("UDID##") != std::string::npos;
}

void gather(const pugi::xml_node& node, Pairs& pairs) {
    const std::string objid = node.child_value("objid");
    if (isDevice(objid)) {
        pairs[objid] = node.child_value("altobjid");
    }
    for (const pugi::xml_node& child : node.children("Node")) {
        gather(child, pairs);
    }
}

// Gathers a pair when its altobjid ends, since the objid and the altobjid of a Node stand before its inner
// Nodes.
struct SGathering {
    Pairs pairs;
    std::string text;
    std::string objid;

    static void XMLCALL start(void* self, const XML_Char* /*name*/, const XML_Char** /*attributes*/) {
        static_cast<SGathering*>(self)->text.clear();
    }
    static void XMLCALL characters(void* self, const XML_Char* chars, int length) {
        static_cast<SGathering*>(self)->text.append(chars, static_cast<std::size_t>(length));
    }
    static void XMLCALL end(void* self, const XML_Char* name) {
        auto& gathering = *static_cast<SGathering*>(self);
        if (std::strcmp(name, "objid") == 0) {
            gathering.objid = gathering.text;
        } else if (std::strcmp(name, "altobjid") == 0 && isDevice(gathering.objid)) {
            gathering.pairs[gathering.objid] = gathering.text;
        }
    }
};

}  // namespace

std::string readFile(const std::string& file) {
    std::FILE* const stream = std::fopen(file.c_str(), "r");
    if (stream == nullptr) {
        throw std::runtime_error("cannot open " + file);
    }
    std::string content;
    char piece[65536];
    while (const std::size_t length = std::fread(piece, 1, sizeof piece, stream)) {
        content.append(piece, length);
    }
    std::fclose(stream);
    return content;
}

void parseWithBareReader(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        const std::string content = readFile(file);
        const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
        for (const XMLCh* feature :
             {XMLUni::fgSAX2CoreValidation, XMLUni::fgSAX2CoreNameSpaces, XMLUni::fgXercesSchema,
              XMLUni::fgXercesSchemaFullChecking, XMLUni::fgSAX2CoreNameSpacePrefixes}) {
            reader->setFeature(feature, false);
        }
        xercesc::DefaultHandler handler;
        reader->setContentHandler(&handler);
        reader->setErrorHandler(&handler);
        reader->parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(content.data()),
                                                 content.size(), "bench"));
    }
}

std::size_t gatherWithPugixml(const std::vector<std::string>& files) {
    std::size_t count = 0;
    for (const std::string& file : files) {
        pugi::xml_document document;
        Pairs pairs;
        if (document.load_file(file.c_str())) {
            gather(document.child("Node"), pairs);
        }
        count += pairs.size();
    }
    return count;
}

std::size_t gatherWithExpat(const std::vector<std::string>& files) {
    std::size_t count = 0;
    for (const std::string& file : files) {
        const std::string content = readFile(file);
        SGathering gathering;
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &gathering);
        XML_SetElementHandler(parser, SGathering::start, SGathering::end);
        XML_SetCharacterDataHandler(parser, SGathering::characters);
        XML_Parse(parser, content.data(), static_cast<int>(content.size()), XML_TRUE);
        XML_ParserFree(parser);
        count += gathering.pairs.size();
    }
    return count;
}

}  // namespace fi_bench
