#include "tests/contract/Document.h"

namespace fi_test {
namespace {

Trace entryAndExit(const std::string& name) {
    return progress({"Entering " + name + "\n", "Exiting " + name + "\n"});
}

Trace elementLines() {
    return entryAndExit("CFiFiidHandler::startElement") + entryAndExit("CFiFiidHandler::endElement");
}

Trace nodeLines(const SNode& node) {
    Trace trace = entryAndExit("CFiFiidHandler::startElement");
    for (std::size_t i = 0; i < node.elements.size(); ++i) {
        trace = trace + elementLines();
    }
    for (const SNode& child : node.children) {
        trace = trace + nodeLines(child);
    }
    return trace + entryAndExit("CFiFiidHandler::endElement");
}

// The outermost Node's end tag traces one more exit.
Trace documentLines(const SNode& root) {
    return entryAndExit("") +
           progress({"Entering CFiFiidParser::CFiFiidParser\n", "Entering CFiFiidParser::init\n",
                     "Exiting CFiFiidParser::init\n", "Exiting CFiFiidParser::CFiFiidParser\n"}) +
           entryAndExit("CFiFiidHandler::CFiFiidHandler") + entryAndExit("CFiFiidParser::setHandler") +
           progress({"Entering CFiFiidParser::parse\n"}) + nodeLines(root) +
           progress({"Exiting CFiFiidHandler::endElement\n", "Exiting CFiFiidParser::parse\n"}) +
           entryAndExit("CFiFiidHandler::~CFiFiidHandler") + entryAndExit("CFiFiidParser::~CFiFiidParser");
}

Trace treeLines(const SNode& node, const std::string& indentation) {
    const std::string type = valueOf(node, "type");
    Trace trace =
        progress({indentation + " [" + valueOf(node, "objid") + "]",
                  indentation + " {" + valueOf(node, "altobjid") + "}",
                  indentation + " <" + (type.empty() ? "0" : type) + " " + valueOf(node, "splitType") + ">"});
    for (const SNode& child : node.children) {
        trace = trace + treeLines(child, indentation + "\t");
    }
    return trace;
}

}  // namespace

std::string toXml(const SNode& root) {
    std::string xml = "<Node>";
    for (const auto& [name, text] : root.elements) {
        xml += '<' + name + '>' + text + "</" + name + '>';
    }
    for (const SNode& child : root.children) {
        xml += toXml(child);
    }
    return xml + "</Node>";
}

std::string valueOf(const SNode& node, const std::string& name) {
    std::string value;
    for (const auto& element : node.elements) {
        if (element.first == name) {
            value = element.second;
        }
    }
    return value;
}

std::string udid(const std::string& target) {
    return "UDID##v##m##" + target;
}

SNode backup(const std::string& timeStamp, const std::vector<std::pair<std::string, std::string>>& pairs) {
    SNode root{{{"timeStamp", timeStamp}}, {}};
    for (const auto& [first, further] : pairs) {
        root.children.push_back(
            SNode{{{"objid", udid(first)}, {"altobjid", udid(further)}, {"type", "2"}}, {}});
    }
    return root;
}

Trace flagLine(const std::string& file, std::int32_t flagWord) {
    return failure("fi_process_backups :  Fiid [" + file + "] exclude rotation flag [" +
                   std::to_string(flagWord) + "] ");
}

Trace importLines(const std::vector<SNode>& documents) {
    Trace trace = progress({"Entering \n"});
    for (const SNode& document : documents) {
        trace = trace + documentLines(document);
    }
    return trace + progress({"Exiting \n"});
}

Trace brokenImportLines(const std::vector<SNode>& documents) {
    Trace trace = importLines(documents);
    trace.pop_back();
    return trace + progress({"Entering \n"}) +
           failure("CFiFiidLoader::load: ERROR: failed to load FIID file") +
           progress({"Exiting \n", "Exiting \n"});
}

Trace parsedLines(const std::string& file, const SNode& document) {
    return progress({"fi_process_backups : parsed [" + file + "]"}) + treeLines(document, "");
}

Trace outcomeLines(const std::string& file, const SNode& document, int state) {
    return progress({"fi_process_backups : parsed [" + file + "] state=[" + std::to_string(state) + "]"}) +
           treeLines(document, "");
}

Trace progress(const std::vector<std::string>& texts) {
    Trace trace;
    for (const std::string& text : texts) {
        trace.push_back({4, text});
    }
    return trace;
}

Trace failure(const std::string& text) {
    return {{3, text}};
}

Trace operator+(Trace left, const Trace& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace fi_test
