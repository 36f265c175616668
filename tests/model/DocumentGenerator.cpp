#include "tests/model/DocumentGenerator.h"

#include <cstddef>
#include <utility>

namespace fi_model {
namespace {

using Kind = Token::Kind;

// Writes a document from front to back.
class Writer {
public:
    Writer(Random& random, std::string timeStamp)
        : random_(random), timeStamp_(std::move(timeStamp)), indented_(random.percent(70)) {}

    Document write(const std::vector<PlannedPair>& pairs) {
        prolog();
        if (random_.percent(45)) {
            rootNode(pairs);
        } else {
            wrapped(pairs);
        }
        epilog();
        return {tokens_, false};
    }

private:
    void add(Kind kind, const std::string& text, const std::string& attributes = "") {
        tokens_.push_back({kind, text, attributes});
    }

    void space() {
        static const std::vector<std::string> kSpaces = {"\n  ", "\n", "\r\n", " ", "\n\t\t"};
        if (indented_) {
            add(Kind::kText, random_.pick(kSpaces));
        }
    }

    std::string attributes() {
        static const std::vector<std::string> kAttributes = {R"( objid="UDID##a##b##c##d")",
                                                             R"( x='1' y="2")", R"( name="a&lt;b")", "  "};
        return random_.percent(5) ? random_.pick(kAttributes) : "";
    }

    void prolog() {
        if (random_.percent(40)) {
            add(Kind::kDeclaration, R"(<?xml version="1.0" encoding="UTF-8"?>)");
        }
        if (random_.percent(20)) {
            add(Kind::kComment, " <Node><objid>no</objid></Node> ");
        }
        if (random_.percent(6)) {
            hasHostEntity_ = true;
            add(random_.percent(30) ? Kind::kDoctypeTwice : Kind::kDoctype, "");
        }
    }

    void epilog() {
        if (random_.percent(20)) {
            add(Kind::kText, "\n");
        }
        if (random_.percent(3)) {
            add(Kind::kComment, "end");
        }
    }

    void rootNode(const std::vector<PlannedPair>& pairs) {
        timeStampPlace_ = random_.percent(96) ? random_.below(3) : kNowhere;
        nodes(pairs);
    }

    // The Nodes inside another element, where more can stand beside them.
    void wrapped(const std::vector<PlannedPair>& pairs) {
        add(Kind::kOpen, "fiid", attributes());
        const bool after = random_.percent(20);
        timeStampPlace_ = after ? kNowhere : random_.below(3);
        outsideNodes();
        if (random_.percent(8)) {
            droppedNode();
        }
        nodes(pairs);
        if (after) {
            data("timeStamp", timeStamp_);
        }
        outsideNodes();
        if (random_.percent(4)) {
            droppedNode();
        }
        space();
        add(Kind::kClose, "fiid");
    }

    // A top-level Node beside the one that is meant.
    void droppedNode() {
        const std::size_t place = timeStampPlace_;
        timeStampPlace_ = kNowhere;
        nodes({{"UDID##v##m##encA##other", "UDID##v##m##encA##snap1"}});
        timeStampPlace_ = place;
    }

    void outsideNodes() {
        static const std::vector<std::string> kNames = {"objid",     "altobjid",  "type",
                                                        "splitType", "timeStamp", "info"};
        space();
        if (random_.percent(8)) {
            data(random_.pick(kNames), "outside");
        }
        noise();
    }

    void noise() {
        static const std::vector<std::string> kNames = {"info",      "node",  "x:Node",     "Objid",
                                                        "TimeStamp", "Nodes", "N\xC3\xB6n", "ALTOBJID"};
        if (random_.percent(8)) {
            const std::string name = random_.pick(kNames);
            add(Kind::kOpen, name, attributes());
            add(Kind::kText, "noise");
            if (random_.percent(6)) {
                space();
                data("objid", "UDID##v##m##encA##noise");
            }
            add(Kind::kClose, name);
        }
        if (random_.percent(4)) {
            add(Kind::kInstruction, "target <Node>");
        }
        if (random_.percent(2)) {
            add(Kind::kNulLine, "<Node/>");
        }
        if (random_.percent(2)) {
            add(Kind::kComment, std::string(random_.between(2000, 4200), 'c'));
        }
    }

    // The pairs as a tree: the first one is the root, or the root is no device.
    void nodes(const std::vector<PlannedPair>& pairs) {
        const bool rootIsDevice = !pairs.empty() && random_.percent(40);
        if (pairs.empty() && random_.percent(20)) {
            return add(Kind::kEmpty, "Node", attributes());
        }
        const std::size_t firstChild = rootIsDevice ? 1 : 0;
        add(Kind::kOpen, "Node", attributes());
        timeStampAt(0);
        const bool childrenFirst = random_.percent(20);
        if (!childrenFirst) {
            nodeData(rootIsDevice ? pairs.front() : plainPair());
        }
        children(pairs, firstChild);
        if (childrenFirst) {
            nodeData(rootIsDevice ? pairs.front() : plainPair());
        }
        timeStampAt(timeStampPlace_);
        space();
        add(Kind::kClose, "Node");
    }

    void children(const std::vector<PlannedPair>& pairs, std::size_t first) {
        const std::size_t levels = random_.perMille(5) ? random_.between(20, 150) : 0;
        for (std::size_t level = 0; level < levels; ++level) {
            add(Kind::kOpen, "Node");
        }
        for (std::size_t index = first; index < pairs.size(); ++index) {
            child(pairs[index]);
        }
        if (random_.percent(10)) {
            child(plainPair());
        }
        for (std::size_t level = 0; level < levels; ++level) {
            add(Kind::kClose, "Node");
        }
    }

    void child(const PlannedPair& pair) {
        space();
        const std::size_t wrappers = random_.percent(25) ? random_.between(1, 3) : 0;
        for (std::size_t level = 0; level < wrappers; ++level) {
            add(Kind::kOpen, "Node", attributes());
        }
        add(Kind::kOpen, "Node", attributes());
        nodeData(pair);
        timeStampAt(1);
        space();
        add(Kind::kClose, "Node");
        for (std::size_t level = 0; level < wrappers; ++level) {
            add(Kind::kClose, "Node");
        }
    }

    PlannedPair plainPair() {
        static const std::vector<PlannedPair> kPairs = {
            {"VOL##1", "alt"}, {"", ""}, {"udid##v##m##encA##dev1", "x"}, {"UEID##v##m##encA", "y"}};
        return random_.pick(kPairs);
    }

    void timeStampAt(std::size_t place) {
        if (timeStampPlace_ != place || place == kNowhere) {
            return;
        }
        if (random_.percent(4)) {
            data("timeStamp", "20990101000000");
        }
        data("timeStamp", timeStamp_);
        timeStampPlace_ = kNowhere;
    }

    void nodeData(const PlannedPair& pair) {
        static const std::vector<std::string> kTypes = {"0",
                                                        "1",
                                                        "7",
                                                        "12abc",
                                                        "abc",
                                                        " -3",
                                                        "4294967297",
                                                        "3000000000",
                                                        "+5",
                                                        "99999999999999999999",
                                                        "-99999999999999999999",
                                                        "\n\t 42 "};
        static const std::vector<std::string> kSplitTypes = {"full", "mirror", "s%n", "", "\xC3\xA4 x"};
        std::vector<std::string> names = {"objid", "altobjid", "type", "splitType"};
        if (random_.percent(30)) {
            random_.shuffle(names);
        }
        for (const std::string& name : names) {
            if (name == "objid") {
                data(name, pair.objid);
            } else if (name == "altobjid") {
                data(name, pair.altobjid);
            } else if (random_.percent(70)) {
                data(name, random_.pick(name == "type" ? kTypes : kSplitTypes));
            }
            noise();
        }
    }

    void data(const std::string& name, const std::string& value) {
        space();
        if (random_.perMille(5)) {
            return add(Kind::kEmpty, name, attributes());
        }
        if (random_.perMille(5)) {
            return;
        }
        add(Kind::kOpen, name, attributes());
        text(value);
        add(Kind::kClose, name);
    }

    // In most elements the whole value is one piece of text; in some it is in pieces, of which
    // the last one counts.
    void text(const std::string& value) {
        const std::size_t way = random_.below(100);
        const bool plain = value.find_first_of("<&>") == std::string::npos;
        const bool startsInAscii = !value.empty() && (value.front() & 0x80) == 0;
        const bool hasMarkup = value.find_first_of("<&") != std::string::npos;
        if (hasMarkup ? way < 85 : way < 3) {
            add(Kind::kCdata, value);
        } else if (way < 6) {
            add(Kind::kText, "old text");
            add(Kind::kComment, "new text");
            characters(value);
        } else if (way < 9 && plain && startsInAscii) {
            add(Kind::kReference, "#" + std::to_string(static_cast<int>(value.front())));
            add(Kind::kText, value.substr(1));
        } else if (way < 10) {
            pieces(value);
        } else {
            characters(value);
        }
    }

    void pieces(const std::string& value) {
        const std::size_t middle = characterStart(value, random_.below(value.size() + 1));
        characters(value.substr(0, middle));
        switch (random_.below(6)) {
            case 0:
                add(Kind::kComment, "between");
                break;
            case 1:
                add(Kind::kCdata, "");
                break;
            case 2:
                add(Kind::kInstruction, "pi");
                break;
            case 3:
                add(Kind::kOpen, "b");
                characters(value.substr(middle));
                return add(Kind::kClose, "b");
            case 4:
                add(Kind::kReference, hasHostEntity_ ? "host" : "#xE9");
                break;
            default:
                add(Kind::kReference, "amp");
        }
        characters(value.substr(middle));
    }

    // The start of the character at a position, whose bytes must stay together.
    static std::size_t characterStart(const std::string& value, std::size_t position) {
        while (position < value.size() && (value[position] & 0xC0) == 0x80) {
            --position;
        }
        return position;
    }

    void characters(const std::string& value) {
        std::string run;
        for (const char character : value) {
            if (character != '<' && character != '&') {
                run += character;
                continue;
            }
            add(Kind::kText, run);
            run.clear();
            add(Kind::kReference, character == '<' ? "lt" : "amp");
        }
        add(Kind::kText, run);
    }

    static constexpr std::size_t kNowhere = 99;

    Random& random_;
    std::string timeStamp_;
    bool indented_;
    bool hasHostEntity_ = false;
    // Where the time stamp still has to be written: at the start of the root, in a child, at the
    // end of the root.
    std::size_t timeStampPlace_ = kNowhere;
    std::vector<Token> tokens_;
};

Document oneText(const std::string& text) {
    if (text.empty()) {
        return {};
    }
    return {{{Kind::kText, text, ""}}, false};
}

void insertAnywhere(Document& document, const Token& token, Random& random) {
    const std::size_t place = random.below(document.tokens.size() + 1);
    document.tokens.insert(document.tokens.begin() + static_cast<std::ptrdiff_t>(place), token);
}

void spoil(Document& document, Random& random) {
    static const std::vector<std::string> kDamage = {"]]> <", "& ", "<<", "&#0;", "<No de", "</"};
    switch (random.below(8)) {
        case 0:
            document = oneText(random.percent(50) ? "" : " \n ");
            return;
        case 1:
            document = oneText("no markup");
            return;
        case 2:
            document.tokens.push_back({Kind::kOpen, "Node", ""});
            return;
        case 3:
            if (xmlText(document).size() < 8000) {
                insertAnywhere(document, {Kind::kInvalidByte, "", ""}, random);
            }
            return;
        case 4:
            insertAnywhere(document, {Kind::kClose, "wrong", ""}, random);
            return;
        case 5:
            insertAnywhere(document, {Kind::kDamage, random.pick(kDamage), ""}, random);
            return;
        default:
            document.tokens.resize(random.below(document.tokens.size() + 1));
    }
}

}  // namespace

Document makeDocument(const std::vector<PlannedPair>& pairs, const std::string& timeStamp, Random& random) {
    Document document = Writer(random, timeStamp).write(pairs);
    if (random.percent(4)) {
        spoil(document, random);
    }
    return document;
}

}  // namespace fi_model
