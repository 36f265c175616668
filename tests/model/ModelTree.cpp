#include "tests/model/ModelTree.h"

#include <cstddef>
#include <limits>
#include <optional>

#include "tests/model/ModelReader.h"

namespace fi_model {
namespace {

bool isSpace(char character) {
    return std::string(" \t\n\v\f\r").find(character) != std::string::npos;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// Builds the tree of one document from its events.
class CTreeBuilder {
public:
    explicit CTreeBuilder(SJournal& lines) : journal(lines) {
        enterAndExit("CFiFiidHandler::CFiFiidHandler");
    }

    void take(const SEvent& event) {
        switch (event.kind) {
            case SEvent::EKind::kStart:
                return start(event.text);
            case SEvent::EKind::kEnd:
                return end(event.text);
            case SEvent::EKind::kCharacters:
                ++pieces;
                text = event.text;
                return;
            case SEvent::EKind::kWarning:
                journal.note(EOutcome::kDocumentWarned);
                return enterAndExit("CFiFiidHandler::warning");
            case SEvent::EKind::kFatalError:
                malformed = true;
                return enterAndExit("CFiFiidHandler::fatalError");
        }
    }

    // The last top-level Node, open or not, as a backup without a name.
    std::optional<SBackup> finish() {
        enterAndExit("CFiFiidHandler::~CFiFiidHandler");
        while (!openNodes.empty()) {
            closeNode();
        }
        noteDocument();
        return root;
    }

private:
    void enterAndExit(const std::string& operation) {
        journal.entering(operation);
        journal.exiting(operation);
    }

    void start(const std::string& name) {
        const std::string operation = "CFiFiidHandler::startElement";
        journal.entering(operation);
        if (done) {
            journal.exiting(operation);
        }
        if (name == "Node") {
            openNode();
        }
        pieces = 0;
        journal.exiting(operation);
    }

    void end(const std::string& name) {
        const std::string operation = "CFiFiidHandler::endElement";
        journal.entering(operation);
        if (name == "timeStamp") {
            setTimeStamp();
        }
        if (done) {
            journal.exiting(operation);
        }
        if (name == "Node") {
            closeNode();
            if (openNodes.empty()) {
                done = true;
                journal.exiting(operation);
            }
        }
        if (name == "objid" || name == "altobjid" || name == "splitType" || name == "type") {
            setData(name);
        }
        journal.exiting(operation);
    }

    void openNode() {
        if (openNodes.empty()) {
            journal.noteIf(root.has_value(), EOutcome::kSeveralTopLevelNodes);
            root = SBackup();
        } else {
            journal.note(EOutcome::kNestedNode);
        }
        openNodes.emplace_back();
    }

    void closeNode() {
        const SNode closed = openNodes.back();
        openNodes.pop_back();
        if (openNodes.empty()) {
            root->root = closed;
        } else {
            openNodes.back().children.push_back(closed);
        }
    }

    void setTimeStamp() {
        noteText();
        if (!root) {
            journal.note(EOutcome::kTimeStampWithoutRoot);
            return;
        }
        journal.noteIf(!root->timeStamp.empty(), EOutcome::kTimeStampReplaced);
        journal.noteIf(openNodes.size() > 1, EOutcome::kTimeStampFromInnerNode);
        journal.noteIf(openNodes.empty(), EOutcome::kTimeStampAfterRoot);
        root->timeStamp = text;
    }

    void setData(const std::string& name) {
        noteText();
        if (openNodes.empty()) {
            journal.note(EOutcome::kDataOutsideNode);
            return;
        }
        SNode& node = openNodes.back();
        if (name == "objid") {
            node.objid = text;
        } else if (name == "altobjid") {
            node.altobjid = text;
        } else if (name == "splitType") {
            node.splitType = text;
        } else {
            node.type = convertType(text, journal);
        }
    }

    void noteText() {
        journal.noteIf(pieces == 0, EOutcome::kTextFromBefore);
        journal.noteIf(pieces > 1, EOutcome::kTextLastPieceOnly);
    }

    void noteDocument() {
        journal.note(root ? EOutcome::kDocumentLoaded : EOutcome::kDocumentWithoutRoot);
        if (malformed) {
            journal.note(root ? EOutcome::kDocumentMalformedWithRoot
                              : EOutcome::kDocumentMalformedWithoutRoot);
        }
    }

    SJournal& journal;
    std::optional<SBackup> root;
    std::vector<SNode> openNodes;
    // The latest piece of characters in the document, wherever it stood.
    std::string text;
    // Pieces since the latest start tag.
    int pieces = 0;
    // A top-level Node has closed.
    bool done = false;
    bool malformed = false;
};

std::optional<SBackup> parseDocument(const SDocument& document, SJournal& journal) {
    const std::string parser = "CFiFiidParser::";
    journal.entering(parser + "CFiFiidParser");
    journal.entering(parser + "init");
    journal.exiting(parser + "init");
    journal.exiting(parser + "CFiFiidParser");
    CTreeBuilder builder(journal);
    journal.entering(parser + "setHandler");
    journal.exiting(parser + "setHandler");
    journal.entering(parser + "parse");
    for (const SEvent& event : readEvents(document)) {
        builder.take(event);
    }
    journal.exiting(parser + "parse");
    std::optional<SBackup> backup = builder.finish();
    journal.entering(parser + "~CFiFiidParser");
    journal.exiting(parser + "~CFiFiidParser");
    return backup;
}

void reportMissing(const std::string& name, bool isFirst, SJournal& journal) {
    journal.standardOutput += "ERROR: failed to load FIID file [" + name + "]\n";
    journal.failure("CFiFiidLoader::load: ERROR: failed to load FIID file");
    journal.note(isFirst ? EOutcome::kMissingFirst : EOutcome::kMissingLater);
}

}  // namespace

std::int32_t convertType(const std::string& text, SJournal& journal) {
    std::size_t position = 0;
    while (position < text.size() && isSpace(text[position])) {
        ++position;
    }
    bool negative = false;
    if (position < text.size() && (text[position] == '-' || text[position] == '+')) {
        negative = text[position] == '-';
        ++position;
    }
    // Counted downwards, because the smallest number has no positive counterpart.
    constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    std::int64_t value = 0;
    bool overflowed = false;
    for (; position < text.size() && isDigit(text[position]); ++position) {
        const std::int64_t digit = text[position] - '0';
        overflowed = overflowed || value < (kSmallest + digit) / 10;
        value = overflowed ? kSmallest : value * 10 - digit;
    }
    if (!negative) {
        value = value == kSmallest ? kLargest : -value;
    }
    const auto lowBits = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    journal.noteIf(lowBits < 0, EOutcome::kTypeNegative);
    journal.noteIf(lowBits != value, EOutcome::kTypeTruncated);
    return lowBits;
}

std::vector<SBackup> loadBackups(const std::vector<std::string>& names,
                                 const std::map<std::string, SDocument>& files, SJournal& journal) {
    std::vector<SBackup> backups;
    // The loader's lines carry no operation name.
    journal.entering("");
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto file = files.find(names[index]);
        journal.entering("");
        if (file == files.end()) {
            reportMissing(names[index], index == 0, journal);
            journal.exiting("");
            break;
        }
        journal.exiting("");
        journal.noteIf(file->second.isDirectory, EOutcome::kFolderAsDocument);
        std::optional<SBackup> backup = parseDocument(file->second, journal);
        if (backup) {
            backup->name = names[index];
            backup->loadIndex = backups.size();
            backups.push_back(*backup);
        }
    }
    journal.exiting("");
    return backups;
}

void printTree(const SNode& node, int level, SJournal& journal) {
    const std::string indentation = std::string(static_cast<std::size_t>(level), '\t') + " ";
    journal.progress(indentation + "[" + node.objid + "]");
    journal.progress(indentation + "{" + node.altobjid + "}");
    journal.progress(indentation + "<" + std::to_string(node.type) + " " + node.splitType + ">");
    for (const SNode& child : node.children) {
        printTree(child, level + 1, journal);
    }
}

void collectPairs(const SNode& node, std::map<std::string, std::string>& pairs, SJournal& journal) {
    if (node.objid.find("UDID##") != std::string::npos) {
        journal.noteIf(pairs.count(node.objid) > 0, EOutcome::kPairOverwritten);
        pairs[node.objid] = node.altobjid;
    }
    for (const SNode& child : node.children) {
        collectPairs(child, pairs, journal);
    }
}

}  // namespace fi_model
