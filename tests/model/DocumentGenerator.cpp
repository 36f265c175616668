#include "tests/model/DocumentGenerator.h"

#include <cstddef>
#include <utility>

namespace fi_model {
namespace {

using EKind = SToken::EKind;

// Writes a document from front to back.
class CWriter {
public:
    CWriter(CRandom& choices, std::string stamp)
        : random(choices), timeStamp(std::move(stamp)), indented(choices.percent(70)) {}

    SDocument write(const std::vector<SPlannedPair>& pairs) {
        prolog();
        if (random.percent(45)) {
            rootNode(pairs);
        } else {
            wrapped(pairs);
        }
        epilog();
        return {tokens, false};
    }

private:
    void add(EKind kind, const std::string& text, const std::string& attributes = "") {
        tokens.push_back({kind, text, attributes});
    }

    void space() {
        static const std::vector<std::string> kSpaces = {"\n  ", "\n", "\r\n", " ", "\n\t\t"};
        if (indented) {
            add(EKind::kText, random.pick(kSpaces));
        }
    }

    std::string attributes() {
        static const std::vector<std::string> kAttributes = {R"( objid="UDID##a##b##c##d")",
                                                             R"( x='1' y="2")", R"( name="a&lt;b")", "  "};
        return random.percent(5) ? random.pick(kAttributes) : "";
    }

    void prolog() {
        if (random.percent(40)) {
            add(EKind::kDeclaration, R"(<?xml version="1.0" encoding="UTF-8"?>)");
        }
        if (random.percent(20)) {
            add(EKind::kComment, " <Node><objid>no</objid></Node> ");
        }
        if (random.percent(6)) {
            hasHostEntity = true;
            add(random.percent(30) ? EKind::kDoctypeTwice : EKind::kDoctype, "");
        }
    }

    void epilog() {
        if (random.percent(20)) {
            add(EKind::kText, "\n");
        }
        if (random.percent(3)) {
            add(EKind::kComment, "end");
        }
    }

    void rootNode(const std::vector<SPlannedPair>& pairs) {
        timeStampPlace = random.percent(96) ? random.below(3) : kNowhere;
        nodes(pairs);
    }

    // The Nodes inside another element, where more can stand beside them.
    void wrapped(const std::vector<SPlannedPair>& pairs) {
        add(EKind::kOpen, "fiid", attributes());
        const bool after = random.percent(20);
        timeStampPlace = after ? kNowhere : random.below(3);
        outsideNodes();
        if (random.percent(8)) {
            droppedNode();
        }
        nodes(pairs);
        if (after) {
            data("timeStamp", timeStamp);
        }
        outsideNodes();
        if (random.percent(4)) {
            droppedNode();
        }
        space();
        add(EKind::kClose, "fiid");
    }

    // A top-level Node beside the one that is meant.
    void droppedNode() {
        const std::size_t place = timeStampPlace;
        timeStampPlace = kNowhere;
        nodes({{"UDID##v##m##encA##other", "UDID##v##m##encA##snap1"}});
        timeStampPlace = place;
    }

    void outsideNodes() {
        static const std::vector<std::string> kNames = {"objid",     "altobjid",  "type",
                                                        "splitType", "timeStamp", "info"};
        space();
        if (random.percent(8)) {
            data(random.pick(kNames), "outside");
        }
        noise();
    }

    void noise() {
        static const std::vector<std::string> kNames = {"info",      "node",  "x:Node",     "Objid",
                                                        "TimeStamp", "Nodes", "N\xC3\xB6n", "ALTOBJID"};
        if (random.percent(8)) {
            const std::string name = random.pick(kNames);
            add(EKind::kOpen, name, attributes());
            add(EKind::kText, "noise");
            if (random.percent(6)) {
                space();
                data("objid", "UDID##v##m##encA##noise");
            }
            add(EKind::kClose, name);
        }
        if (random.percent(4)) {
            add(EKind::kInstruction, "target <Node>");
        }
        if (random.percent(2)) {
            add(EKind::kNulLine, "<Node/>");
        }
        if (random.percent(2)) {
            add(EKind::kComment, std::string(random.between(2000, 4200), 'c'));
        }
    }

    // The pairs as a tree: the first one is the root, or the root is no device.
    void nodes(const std::vector<SPlannedPair>& pairs) {
        const bool rootIsDevice = !pairs.empty() && random.percent(40);
        if (pairs.empty() && random.percent(20)) {
            return add(EKind::kEmpty, "Node", attributes());
        }
        const std::size_t firstChild = rootIsDevice ? 1 : 0;
        add(EKind::kOpen, "Node", attributes());
        timeStampAt(0);
        const bool childrenFirst = random.percent(20);
        if (!childrenFirst) {
            nodeData(rootIsDevice ? pairs.front() : plainPair());
        }
        children(pairs, firstChild);
        if (childrenFirst) {
            nodeData(rootIsDevice ? pairs.front() : plainPair());
        }
        timeStampAt(timeStampPlace);
        space();
        add(EKind::kClose, "Node");
    }

    void children(const std::vector<SPlannedPair>& pairs, std::size_t first) {
        const std::size_t levels = random.perMille(5) ? random.between(20, 150) : 0;
        for (std::size_t level = 0; level < levels; ++level) {
            add(EKind::kOpen, "Node");
        }
        for (std::size_t index = first; index < pairs.size(); ++index) {
            child(pairs[index]);
        }
        if (random.percent(10)) {
            child(plainPair());
        }
        for (std::size_t level = 0; level < levels; ++level) {
            add(EKind::kClose, "Node");
        }
    }

    void child(const SPlannedPair& pair) {
        space();
        const std::size_t wrappers = random.percent(25) ? random.between(1, 3) : 0;
        for (std::size_t level = 0; level < wrappers; ++level) {
            add(EKind::kOpen, "Node", attributes());
        }
        add(EKind::kOpen, "Node", attributes());
        nodeData(pair);
        timeStampAt(1);
        space();
        add(EKind::kClose, "Node");
        for (std::size_t level = 0; level < wrappers; ++level) {
            add(EKind::kClose, "Node");
        }
    }

    SPlannedPair plainPair() {
        static const std::vector<SPlannedPair> kPairs = {
            {"VOL##1", "alt"}, {"", ""}, {"udid##v##m##encA##dev1", "x"}, {"UEID##v##m##encA", "y"}};
        return random.pick(kPairs);
    }

    void timeStampAt(std::size_t place) {
        if (timeStampPlace != place || place == kNowhere) {
            return;
        }
        if (random.percent(4)) {
            data("timeStamp", "20990101000000");
        }
        data("timeStamp", timeStamp);
        timeStampPlace = kNowhere;
    }

    void nodeData(const SPlannedPair& pair) {
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
        if (random.percent(30)) {
            random.shuffle(names);
        }
        for (const std::string& name : names) {
            if (name == "objid") {
                data(name, pair.objid);
            } else if (name == "altobjid") {
                data(name, pair.altobjid);
            } else if (random.percent(70)) {
                data(name, random.pick(name == "type" ? kTypes : kSplitTypes));
            }
            noise();
        }
    }

    void data(const std::string& name, const std::string& value) {
        space();
        if (random.perMille(5)) {
            return add(EKind::kEmpty, name, attributes());
        }
        if (random.perMille(5)) {
            return;
        }
        add(EKind::kOpen, name, attributes());
        text(value);
        add(EKind::kClose, name);
    }

    // In most elements the whole value is one piece of text; in some it is in pieces, of which
    // the last one counts.
    void text(const std::string& value) {
        const std::size_t way = random.below(100);
        const bool plain = value.find_first_of("<&>") == std::string::npos;
        const bool startsInAscii = !value.empty() && (value.front() & 0x80) == 0;
        const bool hasMarkup = value.find_first_of("<&") != std::string::npos;
        if (hasMarkup ? way < 85 : way < 3) {
            add(EKind::kCdata, value);
        } else if (way < 6) {
            add(EKind::kText, "old text");
            add(EKind::kComment, "new text");
            characters(value);
        } else if (way < 9 && plain && startsInAscii) {
            add(EKind::kReference, "#" + std::to_string(static_cast<int>(value.front())));
            add(EKind::kText, value.substr(1));
        } else if (way < 10) {
            pieces(value);
        } else {
            characters(value);
        }
    }

    void pieces(const std::string& value) {
        const std::size_t middle = characterStart(value, random.below(value.size() + 1));
        characters(value.substr(0, middle));
        switch (random.below(6)) {
            case 0:
                add(EKind::kComment, "between");
                break;
            case 1:
                add(EKind::kCdata, "");
                break;
            case 2:
                add(EKind::kInstruction, "pi");
                break;
            case 3:
                add(EKind::kOpen, "b");
                characters(value.substr(middle));
                return add(EKind::kClose, "b");
            case 4:
                add(EKind::kReference, hasHostEntity ? "host" : "#xE9");
                break;
            default:
                add(EKind::kReference, "amp");
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
            add(EKind::kText, run);
            run.clear();
            add(EKind::kReference, character == '<' ? "lt" : "amp");
        }
        add(EKind::kText, run);
    }

    static constexpr std::size_t kNowhere = 99;

    CRandom& random;
    std::string timeStamp;
    bool indented;
    bool hasHostEntity = false;
    // Where the time stamp still has to be written: at the start of the root, in a child, at the
    // end of the root.
    std::size_t timeStampPlace = kNowhere;
    std::vector<SToken> tokens;
};

SDocument oneText(const std::string& text) {
    if (text.empty()) {
        return {};
    }
    return {{{EKind::kText, text, ""}}, false};
}

void insertAnywhere(SDocument& document, const SToken& token, CRandom& random) {
    const std::size_t place = random.below(document.tokens.size() + 1);
    document.tokens.insert(document.tokens.begin() + static_cast<std::ptrdiff_t>(place), token);
}

void spoil(SDocument& document, CRandom& random) {
    static const std::vector<std::string> kDamage = {"]]> <", "& ", "<<", "&#0;", "<No de", "</"};
    switch (random.below(8)) {
        case 0:
            document = oneText(random.percent(50) ? "" : " \n ");
            return;
        case 1:
            document = oneText("no markup");
            return;
        case 2:
            document.tokens.push_back({EKind::kOpen, "Node", ""});
            return;
        case 3:
            if (xmlText(document).size() < 8000) {
                insertAnywhere(document, {EKind::kInvalidByte, "", ""}, random);
            }
            return;
        case 4:
            insertAnywhere(document, {EKind::kClose, "wrong", ""}, random);
            return;
        case 5:
            insertAnywhere(document, {EKind::kDamage, random.pick(kDamage), ""}, random);
            return;
        default:
            document.tokens.resize(random.below(document.tokens.size() + 1));
    }
}

}  // namespace

SDocument makeDocument(const std::vector<SPlannedPair>& pairs, const std::string& timeStamp,
                       CRandom& random) {
    SDocument document = CWriter(random, timeStamp).write(pairs);
    if (random.percent(4)) {
        spoil(document, random);
    }
    return document;
}

}  // namespace fi_model
