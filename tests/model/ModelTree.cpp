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
class TreeBuilder {
public:
    explicit TreeBuilder(Journal& journal) : journal_(journal) {
        enterAndExit("CFiFiidHandler::CFiFiidHandler");
    }

    void take(const Event& event) {
        switch (event.kind) {
            case Event::Kind::kStart:
                return start(event.text);
            case Event::Kind::kEnd:
                return end(event.text);
            case Event::Kind::kCharacters:
                ++pieces_;
                text_ = event.text;
                return;
            case Event::Kind::kWarning:
                journal_.note(Outcome::kDocumentWarned);
                return enterAndExit("CFiFiidHandler::warning");
            case Event::Kind::kFatalError:
                malformed_ = true;
                return enterAndExit("CFiFiidHandler::fatalError");
        }
    }

    // The last top-level Node, open or not, as a backup without a name.
    std::optional<Backup> finish() {
        enterAndExit("CFiFiidHandler::~CFiFiidHandler");
        while (!open_.empty()) {
            closeNode();
        }
        noteDocument();
        return root_;
    }

private:
    void enterAndExit(const std::string& operation) {
        journal_.entering(operation);
        journal_.exiting(operation);
    }

    void start(const std::string& name) {
        const std::string operation = "CFiFiidHandler::startElement";
        journal_.entering(operation);
        if (done_) {
            journal_.exiting(operation);
        }
        if (name == "Node") {
            openNode();
        }
        pieces_ = 0;
        journal_.exiting(operation);
    }

    void end(const std::string& name) {
        const std::string operation = "CFiFiidHandler::endElement";
        journal_.entering(operation);
        if (name == "timeStamp") {
            setTimeStamp();
        }
        if (done_) {
            journal_.exiting(operation);
        }
        if (name == "Node") {
            closeNode();
            if (open_.empty()) {
                done_ = true;
                journal_.exiting(operation);
            }
        }
        if (name == "objid" || name == "altobjid" || name == "splitType" || name == "type") {
            setData(name);
        }
        journal_.exiting(operation);
    }

    void openNode() {
        if (open_.empty()) {
            journal_.noteIf(root_.has_value(), Outcome::kSeveralTopLevelNodes);
            root_ = Backup();
        } else {
            journal_.note(Outcome::kNestedNode);
        }
        open_.emplace_back();
    }

    void closeNode() {
        const Node closed = open_.back();
        open_.pop_back();
        if (open_.empty()) {
            root_->root = closed;
        } else {
            open_.back().children.push_back(closed);
        }
    }

    void setTimeStamp() {
        noteText();
        if (!root_) {
            journal_.note(Outcome::kTimeStampWithoutRoot);
            return;
        }
        journal_.noteIf(!root_->timeStamp.empty(), Outcome::kTimeStampReplaced);
        journal_.noteIf(open_.size() > 1, Outcome::kTimeStampFromInnerNode);
        journal_.noteIf(open_.empty(), Outcome::kTimeStampAfterRoot);
        root_->timeStamp = text_;
    }

    void setData(const std::string& name) {
        noteText();
        if (open_.empty()) {
            journal_.note(Outcome::kDataOutsideNode);
            return;
        }
        Node& node = open_.back();
        if (name == "objid") {
            node.objid = text_;
        } else if (name == "altobjid") {
            node.altobjid = text_;
        } else if (name == "splitType") {
            node.splitType = text_;
        } else {
            node.type = convertType(text_, journal_);
        }
    }

    void noteText() {
        journal_.noteIf(pieces_ == 0, Outcome::kTextFromBefore);
        journal_.noteIf(pieces_ > 1, Outcome::kTextLastPieceOnly);
    }

    void noteDocument() {
        journal_.note(root_ ? Outcome::kDocumentLoaded : Outcome::kDocumentWithoutRoot);
        if (malformed_) {
            journal_.note(root_ ? Outcome::kDocumentMalformedWithRoot
                                : Outcome::kDocumentMalformedWithoutRoot);
        }
    }

    Journal& journal_;
    std::optional<Backup> root_;
    std::vector<Node> open_;
    // The latest piece of characters in the document, wherever it stood.
    std::string text_;
    // Pieces since the latest start tag.
    int pieces_ = 0;
    // A top-level Node has closed.
    bool done_ = false;
    bool malformed_ = false;
};

std::optional<Backup> parseDocument(const Document& document, Journal& journal) {
    const std::string parser = "CFiFiidParser::";
    journal.entering(parser + "CFiFiidParser");
    journal.entering(parser + "init");
    journal.exiting(parser + "init");
    journal.exiting(parser + "CFiFiidParser");
    TreeBuilder builder(journal);
    journal.entering(parser + "setHandler");
    journal.exiting(parser + "setHandler");
    journal.entering(parser + "parse");
    for (const Event& event : readEvents(document)) {
        builder.take(event);
    }
    journal.exiting(parser + "parse");
    std::optional<Backup> backup = builder.finish();
    journal.entering(parser + "~CFiFiidParser");
    journal.exiting(parser + "~CFiFiidParser");
    return backup;
}

void reportMissing(const std::string& name, bool isFirst, Journal& journal) {
    journal.standardOutput += "ERROR: failed to load FIID file [" + name + "]\n";
    journal.failure("CFiFiidLoader::load: ERROR: failed to load FIID file");
    journal.note(isFirst ? Outcome::kMissingFirst : Outcome::kMissingLater);
}

}  // namespace

std::int32_t convertType(const std::string& text, Journal& journal) {
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
    journal.noteIf(lowBits < 0, Outcome::kTypeNegative);
    journal.noteIf(lowBits != value, Outcome::kTypeTruncated);
    return lowBits;
}

std::vector<Backup> loadBackups(const std::vector<std::string>& names,
                                const std::map<std::string, Document>& files, Journal& journal) {
    std::vector<Backup> backups;
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
        journal.noteIf(file->second.isDirectory, Outcome::kFolderAsDocument);
        std::optional<Backup> backup = parseDocument(file->second, journal);
        if (backup) {
            backup->name = names[index];
            backup->loadIndex = backups.size();
            backups.push_back(*backup);
        }
    }
    journal.exiting("");
    return backups;
}

void printTree(const Node& node, int level, Journal& journal) {
    const std::string indentation = std::string(static_cast<std::size_t>(level), '\t') + " ";
    journal.progress(indentation + "[" + node.objid + "]");
    journal.progress(indentation + "{" + node.altobjid + "}");
    journal.progress(indentation + "<" + std::to_string(node.type) + " " + node.splitType + ">");
    for (const Node& child : node.children) {
        printTree(child, level + 1, journal);
    }
}

void collectPairs(const Node& node, std::map<std::string, std::string>& pairs, Journal& journal) {
    if (node.objid.find("UDID##") != std::string::npos) {
        journal.noteIf(pairs.count(node.objid) > 0, Outcome::kPairOverwritten);
        pairs[node.objid] = node.altobjid;
    }
    for (const Node& child : node.children) {
        collectPairs(child, pairs, journal);
    }
}

}  // namespace fi_model
