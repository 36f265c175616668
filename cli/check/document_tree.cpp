#include "cli/check/document_tree.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>

#include "cli/base/text.h"
#include "cli/base/xml_reader.h"
#include "cli/check/document_text.h"
#include "cli/check/element.h"
#include "common/CFiDocumentLimits.h"
#include "common/document_prolog.h"

namespace fi_rotate {
namespace {

using EExcess = CFiDocumentLimits::EExcess;

// The XML library delivers longer runs of text in pieces.
constexpr std::size_t kLongestRun = 1 << 20;

constexpr const char* kReadOnlyUpToHere = "the check and hardened libraries read only up to here";

// "0 Nodes", "1 Node", "2 Nodes".
std::string countInDigits(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::size_t deviceCount(const std::vector<SNode>& nodes) {
    return static_cast<std::size_t>(std::count_if(nodes.begin(), nodes.end(), isDevice));
}

// The XML library has no other sign for it. Messages of other faults end with what the document holds.
bool isExpansionLimit(const std::string& message) {
    return message.rfind(fmt::format("parser has encountered more than '{}' entity expansions",
                                     CFiDocumentLimits::kMostReferences),
                         0) == 0;
}

// A construct of the document by its position: the XML library reports where it ends.
struct SSite {
    SPlace end;
    // The text that the construct begins with ("<", "&"), which is searched for backwards from the end; empty
    // when the reported position itself is meant.
    std::string_view start;
};

// Builds the tree as the library does.
class CTreeReader : public xercesc::DefaultHandler {
public:
    CTreeReader(const CDocumentText& source, EForeign whatIsForeign, CFindings& receiver)
        : document(source), foreign(whatIsForeign), findings(receiver) {}

    // Reads the document, unless it goes beyond a limit from the start.
    SDocumentTree read();

    void setDocumentLocator(const xercesc::Locator* given) override { locator = given; }
    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc::Attributes& attributes) override;
    void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override;
    void characters(const XMLCh* chars, XMLSize_t count) override;
    void fatalError(const xercesc::SAXParseException& report) override;

    void startDTD(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void endDTD() override { isInDtd = false; }
    void startEntity(const XMLCh* /*name*/) override { ++openEntities; }
    void endEntity(const XMLCh* /*name*/) override { --openEntities; }
    void attributeDecl(const XMLCh* element, const XMLCh* attribute, const XMLCh* type, const XMLCh* mode,
                       const XMLCh* value) override;
    void elementDecl(const XMLCh* name, const XMLCh* model) override;
    void externalEntityDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void internalEntityDecl(const XMLCh* name, const XMLCh* value) override;
    void notationDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void unparsedEntityDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId,
                            const XMLCh* notation) override;
    xercesc::InputSource* resolveEntity(const XMLCh* publicId, const XMLCh* systemId) override;

private:
    // A data element that has not ended.
    struct SOpenData {
        SSite startTag;
        // How much had been read before the element.
        std::size_t pieces = 0;
        std::size_t length = 0;
        std::size_t foreignEntities = 0;
    };

    [[nodiscard]] SPlace here() const;
    [[nodiscard]] SSite startTag() const;
    [[nodiscard]] std::size_t offsetOf(const SSite& site) const;
    void report(EHazard hazard, const SSite& site, std::string what,
                const std::optional<EHazard>& causedBy = std::nullopt);
    [[noreturn]] void stop(EHazard hazard, const SSite& site, std::string what);
    void stopAt(EExcess excess);
    void reportExcess(EExcess excess, const SSpot& spot);
    SDocumentTree finish();

    void openNode();
    void noteMisnamed(EElement element, const std::string& name);
    std::optional<EHazard> checkText(const SOpenData& data, const std::string& name);
    void store(EElement element, const SOpenData& data, const std::string& name,
               const std::optional<EHazard>& distortedBy);
    void set(std::optional<SValue>& value, const SOpenData& data, const std::string& name,
             const std::optional<EHazard>& distortedBy);
    void finishFault();
    void blameForOpenNodes(EHazard cause);
    void finishRoots();
    [[nodiscard]] std::optional<EHazard> bytesCause() const;
    [[nodiscard]] EHazard faultCause() const;
    [[nodiscard]] std::optional<EHazard> lossOf(EElement element, bool isInLostRoot) const;

    const CDocumentText& document;
    EForeign foreign;
    CFindings& findings;
    const xercesc::Locator* locator = nullptr;

    SDocumentTree tree;
    // Indexes in tree.nodes of the Nodes that have not ended, the innermost last.
    std::vector<std::size_t> openNodes;
    std::vector<SOpenData> openData;
    std::u16string text;
    std::size_t pieces = 0;
    std::size_t length = 0;
    int openEntities = 0;
    bool isInDtd = false;
    CFiDocumentLimits limits;

    SSite root;
    // Outermost Nodes that a later one replaced, and the devices in them.
    std::size_t lostRoots = 0;
    std::size_t lostDevices = 0;
    SSite secondRoot;
    bool isTimeStampLost = false;

    // The elements that misspelled names were probably meant to be, and these names.
    std::set<EElement> misnamed;
    std::set<std::string> misnamedNames;
    // The elements that were found outside every Node.
    std::set<EElement> outside;
    std::size_t foreignEntities = 0;

    std::optional<SValue> fault;
};

SPlace CTreeReader::here() const {
    return {static_cast<std::size_t>(locator->getLineNumber()),
            static_cast<std::size_t>(locator->getColumnNumber())};
}

SSite CTreeReader::startTag() const {
    // The text of an entity has the position of the reference to it.
    return {here(), openEntities > 0 ? "&" : "<"};
}

std::size_t CTreeReader::offsetOf(const SSite& site) const {
    const std::size_t end = document.offsetOf(site.end);
    const std::size_t begin =
        end == 0 || site.start.empty() ? std::string::npos : document.content().rfind(site.start, end - 1);
    return begin == std::string::npos ? end : begin;
}

void CTreeReader::report(EHazard hazard, const SSite& site, std::string what,
                         const std::optional<EHazard>& causedBy) {
    const auto cause =
        causedBy.has_value() ? std::optional<SCause>({findings.input(), *causedBy}) : std::nullopt;
    if (findings.isFull(hazard, cause)) {
        findings.countAnother(hazard, cause);
    } else {
        findings.add({hazard, document.spotAt(offsetOf(site)), std::move(what), cause});
    }
}

void CTreeReader::stop(EHazard hazard, const SSite& site, std::string what) {
    report(hazard, site, std::move(what));
    tree.isCutShort = true;
    stopReading();
}

void CTreeReader::characters(const XMLCh* chars, XMLSize_t count) {
    text.assign(chars, count);
    ++pieces;
    length += count;
}

void CTreeReader::startElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* qname,
                               const xercesc::Attributes& /*attributes*/) {
    stopAt(limits.startElement(qname));
    const EElement element = elementOf(qname);
    if (element == EElement::kNode) {
        openNode();
    } else if (isData(element)) {
        openData.push_back({startTag(), pieces, length, foreignEntities});
    } else if (element == EElement::kMisnamed) {
        noteMisnamed(meantBy(qname), toLocalCodePage(qname));
    }
}

void CTreeReader::noteMisnamed(EElement element, const std::string& name) {
    misnamed.insert(element);
    const bool isNew = misnamedNames.insert(name).second;
    report(EHazard::kWrongName, startTag(),
           fmt::format("the element {} is ignored; did you mean {}?", inQuotes(name), shownName(element)),
           isNew ? std::nullopt : std::optional<EHazard>(EHazard::kWrongName));
    if (openNodes.empty()) {
        return;
    }
    SNode& node = tree.nodes[openNodes.back()];
    if (element == EElement::kObjid) {
        node.objidLostTo = EHazard::kWrongName;
    } else if (element == EElement::kAltobjid) {
        node.altobjidLostTo = EHazard::kWrongName;
    }
}

void CTreeReader::openNode() {
    if (openNodes.empty()) {
        const SSite site = startTag();
        if (!tree.nodes.empty()) {
            secondRoot = lostRoots == 0 ? site : secondRoot;
            ++lostRoots;
            lostDevices += deviceCount(tree.nodes);
            isTimeStampLost = isTimeStampLost || tree.timeStamp.has_value();
        }
        root = site;
        tree.nodes.clear();
        tree.timeStamp.reset();
    }
    openNodes.push_back(tree.nodes.size());
    tree.nodes.emplace_back();
}

void CTreeReader::endElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* qname) {
    limits.endElement();
    const EElement element = elementOf(qname);
    if (element == EElement::kNode) {
        openNodes.pop_back();
    } else if (isData(element)) {
        const SOpenData data = openData.back();
        openData.pop_back();
        const std::string name = shownName(element);
        store(element, data, name, checkText(data, name));
    }
}

std::optional<EHazard> CTreeReader::checkText(const SOpenData& data, const std::string& name) {
    const std::size_t ownPieces = pieces - data.pieces;
    const std::size_t ownLength = length - data.length;
    const auto foreignCause = foreignEntities > data.foreignEntities
                                  ? std::optional<EHazard>(EHazard::kExternalEntity)
                                  : std::nullopt;
    if (ownPieces == 0) {
        report(EHazard::kEmptyElement, data.startTag,
               fmt::format("{} contains no text and takes the text before it, {}", name,
                           inQuotes(toLocalCodePage(text.c_str()))),
               foreignCause);
        return foreignCause.value_or(EHazard::kEmptyElement);
    }
    if (ownLength == text.size()) {
        return foreignCause;
    }
    const bool isLong = ownLength > kLongestRun;
    const EHazard hazard = isLong ? EHazard::kLongText : EHazard::kSplitValue;
    report(hazard, {data.startTag.end, ""},
           fmt::format("the text of {} {} {} pieces; only the last counts: {}", name,
                       isLong ? "is longer than 1 MiB and is read in" : "consists of", ownPieces,
                       inQuotes(toLocalCodePage(text.c_str()))));
    return hazard;
}

void CTreeReader::store(EElement element, const SOpenData& data, const std::string& name,
                        const std::optional<EHazard>& distortedBy) {
    const bool isTimeStamp = element == EElement::kTimeStamp;
    const bool isIgnored = isTimeStamp ? tree.nodes.empty() : openNodes.empty();
    if (isIgnored) {
        const bool isNodeMisnamed = misnamed.count(EElement::kNode) != 0;
        outside.insert(element);
        report(EHazard::kOutsideNode, data.startTag,
               isTimeStamp ? name + " is before the first Node and is ignored"
                           : name + " is not inside a Node and is ignored",
               isNodeMisnamed ? std::optional<EHazard>(EHazard::kWrongName) : std::nullopt);
    } else if (isTimeStamp) {
        set(tree.timeStamp, data, name, distortedBy);
    } else if (element == EElement::kObjid) {
        set(tree.nodes[openNodes.back()].objid, data, name, distortedBy);
    } else if (element == EElement::kAltobjid) {
        set(tree.nodes[openNodes.back()].altobjid, data, name, distortedBy);
    }
}

void CTreeReader::set(std::optional<SValue>& value, const SOpenData& data, const std::string& name,
                      const std::optional<EHazard>& distortedBy) {
    const std::string taken = toLocalCodePage(text.c_str());
    if (value.has_value() && value->text != taken) {
        report(EHazard::kRepeatedElement, data.startTag,
               fmt::format("{} {} replaces {}", name, inQuotes(taken), inQuotes(value->text)), distortedBy);
    }
    value = SValue{taken, data.startTag.end, distortedBy};
}

void CTreeReader::fatalError(const xercesc::SAXParseException& report) {
    if (!fault.has_value()) {
        fault = SValue{toLocalCodePage(report.getMessage()),
                       {static_cast<std::size_t>(report.getLineNumber()),
                        static_cast<std::size_t>(report.getColumnNumber())}};
    }
}

void CTreeReader::startDTD(const XMLCh* /*name*/, const XMLCh* /*publicId*/, const XMLCh* /*systemId*/) {
    isInDtd = true;
}

void CTreeReader::attributeDecl(const XMLCh* /*element*/, const XMLCh* /*attribute*/, const XMLCh* /*type*/,
                                const XMLCh* /*mode*/, const XMLCh* value) {
    stopAt(limits.declareAttribute(value));
}

void CTreeReader::elementDecl(const XMLCh* /*name*/, const XMLCh* /*model*/) {
    stopAt(limits.declareOther());
}

void CTreeReader::externalEntityDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/,
                                     const XMLCh* /*systemId*/) {
    stopAt(limits.declareOther());
}

void CTreeReader::internalEntityDecl(const XMLCh* name, const XMLCh* value) {
    const EExcess excess = limits.declareEntity(name, value);
    if (excess == EExcess::kNestedEntity) {
        stop(EHazard::kNestedEntities, {here(), "<"},
             fmt::format("the entity {} refers to another one; {}", inQuotes(toLocalCodePage(name)),
                         kReadOnlyUpToHere));
    }
    stopAt(excess);
}

void CTreeReader::notationDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/, const XMLCh* /*systemId*/) {
    stopAt(limits.declareOther());
}

void CTreeReader::unparsedEntityDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/,
                                     const XMLCh* /*systemId*/, const XMLCh* /*notation*/) {
    stopAt(limits.declareOther());
}

void CTreeReader::stopAt(EExcess excess) {
    if (excess != EExcess::kNone) {
        reportExcess(excess, document.spotAt(offsetOf({here(), "<"})));
        stopReading();
    }
}

void CTreeReader::reportExcess(EExcess excess, const SSpot& spot) {
    findings.add({EHazard::kReadingLimit, spot,
                  fmt::format("{}; {}", CFiDocumentLimits::inWords(excess), kReadOnlyUpToHere)});
    tree.isCutShort = true;
}

xercesc::InputSource* CTreeReader::resolveEntity(const XMLCh* /*publicId*/, const XMLCh* systemId) {
    const SSite site{here(), isInDtd ? "<!DOCTYPE" : "&"};
    const std::string what = fmt::format("the document refers to {}, which the check does not open",
                                         inQuotes(toLocalCodePage(systemId)));
    if (foreign == EForeign::kStop) {
        stop(EHazard::kExternalEntity, site, what);
    }
    report(EHazard::kExternalEntity, site, what);
    ++foreignEntities;
    static constexpr XMLByte kNothing[] = {0};
    // The reader deletes it.
    return new xercesc::MemBufInputSource(kNothing, 0, "nothing");
}

void CTreeReader::finishFault() {
    if (!fault.has_value()) {
        return;
    }
    const SSite site{fault->place, ""};
    if (!tree.isCutShort && isExpansionLimit(fault->text)) {
        reportExcess(EExcess::kReferences, document.spotAt(offsetOf(site)));
    }
    if (tree.isCutShort) {
        blameForOpenNodes(EHazard::kReadingLimit);
        return;
    }
    report(EHazard::kMalformedXml, site,
           fmt::format("not well-formed: {}; the library uses what comes before: {} with {}", fault->text,
                       countInDigits(tree.nodes.size(), "Node"),
                       countInDigits(deviceCount(tree.nodes), "device")),
           bytesCause());
    blameForOpenNodes(faultCause());
    if (openNodes.empty()) {
        // What is damaged may be the start tag of the Node that held it.
        findings.setMissingCauses(EHazard::kOutsideNode, faultCause());
    }
}

// What the Nodes that have not ended lack would have come after the place where reading ended.
void CTreeReader::blameForOpenNodes(EHazard cause) {
    for (const std::size_t node : openNodes) {
        tree.nodes[node].objidLostTo = cause;
        tree.nodes[node].altobjidLostTo = cause;
    }
}

// Wrong bytes of a document make it malformed too, so they are the cause.
std::optional<EHazard> CTreeReader::bytesCause() const {
    for (const EHazard hazard : {EHazard::kNulByte, EHazard::kEncodingMismatch}) {
        if (findings.has(hazard)) {
            return hazard;
        }
    }
    return std::nullopt;
}

EHazard CTreeReader::faultCause() const {
    return bytesCause().value_or(EHazard::kMalformedXml);
}

// The hazard because of which the value of `element` is missing. An outermost Node that was replaced may have
// had it.
std::optional<EHazard> CTreeReader::lossOf(EElement element, bool isInLostRoot) const {
    if (fault.has_value()) {
        return faultCause();
    }
    if (misnamed.count(element) != 0 || misnamed.count(EElement::kNode) != 0) {
        return EHazard::kWrongName;
    }
    if (outside.count(element) != 0) {
        return EHazard::kOutsideNode;
    }
    return isInLostRoot ? std::optional<EHazard>(EHazard::kSeveralNodes) : std::nullopt;
}

void CTreeReader::finishRoots() {
    if (lostRoots > 0) {
        report(EHazard::kSeveralNodes, secondRoot,
               fmt::format("{} Nodes are side by side, and only the last counts; {} of the others {} not",
                           lostRoots + 1, countInDigits(lostDevices, "device"),
                           lostDevices == 1 ? "does" : "do"));
    }
    if (tree.nodes.empty()) {
        const auto cause = lossOf(EElement::kNode, false);
        report(EHazard::kNoNode, {}, "there is no Node, so the document adds no backup", cause);
        findings.setMissingCauses(EHazard::kOutsideNode, cause.value_or(EHazard::kNoNode));
        return;
    }
    if (!tree.timeStamp.has_value() || tree.timeStamp->text.empty()) {
        report(EHazard::kNoTimeStamp, root,
               "the backup has no time stamp and counts as older than all backups that have one",
               tree.timeStamp.has_value() ? tree.timeStamp->distortedBy
                                          : lossOf(EElement::kTimeStamp, isTimeStampLost));
    }
    if (deviceCount(tree.nodes) == 0) {
        report(EHazard::kNoDevice, root, "the backup names no device: no objid contains UDID##",
               lossOf(EElement::kObjid, lostDevices > 0));
    }
}

SDocumentTree CTreeReader::read() {
    const CFiDocumentLimits::SExcess excess = limits.startDocument(document.content());
    if (excess.kind != EExcess::kNone) {
        reportExcess(excess.kind, document.spotAt(excess.offset));
        return std::move(tree);
    }
    readDocument(document.content(), *this);
    return finish();
}

SDocumentTree CTreeReader::finish() {
    finishFault();
    if (!tree.isCutShort) {
        finishRoots();
    }
    return std::move(tree);
}

}  // namespace

bool isDevice(const SNode& node) {
    return node.objid.has_value() && node.objid->text.find("UDID##") != std::string::npos;
}

SDocumentTree readTree(const CDocumentText& document, EForeign foreign, CFindings& findings) {
    // The XML library tells only of those that declare something.
    if (const auto doctype = doctypeIn(document.content())) {
        findings.add({EHazard::kDoctype, document.spotAt(*doctype),
                      "the document has a DOCTYPE; the entities that it declares are expanded"});
    }
    return CTreeReader(document, foreign, findings).read();
}

std::string readTimeStamp(std::string bytes) {
    CFindings ignored("");
    const SDocumentTree tree = readTree(CDocumentText(std::move(bytes)), EForeign::kStop, ignored);
    return tree.timeStamp.has_value() ? tree.timeStamp->text : "";
}

}  // namespace fi_rotate
