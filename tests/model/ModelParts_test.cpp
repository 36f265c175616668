#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/model/Journal.h"
#include "tests/model/ModelConfiguration.h"
#include "tests/model/ModelIdentifier.h"
#include "tests/model/ModelReader.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/model/ModelTree.h"

// Each part of the model by itself, compared with results that were worked out by hand.

namespace fi_model {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;
using EKind = SToken::EKind;

TEST(ModelReferences, AreDecodedOnceEach) {
    const std::pair<std::string, std::string> kCases[] = {
        {"a&lt;b&gt;c", "a<b>c"}, {"&quot;x&quot;", "\"x\""}, {"it&#39;s", "it's"},
        {"&amp;lt;", "&lt;"},     {"&amp;amp;", "&amp;"},     {"&apos;&#34;", "&apos;&#34;"},
        {"&&amp;;", "&&;"},       {"&amp", "&amp"},           {"", ""},
        {"&amp;quot;", "&quot;"},
    };
    for (const auto& [text, decoded] : kCases) {
        EXPECT_EQ(decodeReferences(text), decoded) << text;
    }
}

TEST(ModelConfiguration, TwoConfigurationsWithCarriedAndEmptyEnclosures) {
    SJournal journal;
    const Configurations parsed =
        parseConfigurations("encA##dev1;dev2;encB##dev3&encC##dev4;;##dev5", journal);

    ASSERT_EQ(parsed.size(), 2U);
    EXPECT_EQ(parsed[0].enclosure, "encA");
    EXPECT_EQ(parsed[0].device, "dev1");
    ASSERT_EQ(parsed[0].targets.size(), 2U);
    EXPECT_EQ(parsed[0].targets[0].enclosure, "encA");
    EXPECT_EQ(parsed[0].targets[0].device, "dev2");
    EXPECT_EQ(parsed[0].targets[1].enclosure, "encB");
    EXPECT_EQ(parsed[0].targets[1].device, "dev3");
    ASSERT_EQ(parsed[1].targets.size(), 1U);
    EXPECT_EQ(parsed[1].targets[0].enclosure, "");
    EXPECT_EQ(parsed[1].targets[0].device, "dev5");
    EXPECT_THAT(
        textsOf(journal.trace),
        ElementsAre("CFiResourceParser::parse : Resource specification "
                    "[encA##dev1;dev2;encB##dev3]",
                    "CFiResourceParser::parse : [encA][dev1]", "CFiResourceParser::parse : [encA][dev2]",
                    "CFiResourceParser::parse : [encB][dev3]", "CFiResourceParser::parse : [encC][dev4]",
                    "CFiResourceParser::parse : [][dev5]"));
}

TEST(ModelConfiguration, TracesLeadingSeparatorsButNotTrailingOnes) {
    SJournal journal;
    EXPECT_EQ(parseConfigurations("&&encA##dev1&&", journal).size(), 1U);
    EXPECT_EQ(journal.trace.front().text, "CFiResourceParser::parse : Resource specification [&&encA##dev1]");
}

struct SRejectedConfiguration {
    std::string text;
    std::size_t kept;
    std::string message;
};

TEST(ModelConfiguration, KeepsWhatComesBeforeARejectedConfiguration) {
    const std::string named = "CFiResourceParser::parse : resource configuration \"";
    const SRejectedConfiguration kCases[] = {
        {"", 0, "CFiResourceParser::parse : Invalid resource specification []"},
        {"\r\n", 0, "CFiResourceParser::parse : Invalid resource specification [\r\n]"},
        {"encA##dev1&;;", 1, named + ";;\" has no targets specified."},
        {"encA##", 0, named + "encA##\" has no device data specified."},
        {"encA##dev1;encB##;x", 0, named + "encB##\" has no device data specified."},
        {"##", 0, named + "##\" has no device data specified."},
        {"encA##dev1;dev2&dev3", 1, named + "dev3\" has no enclosure data specified."},
        {"##dev1", 0, named + "##dev1\" has no enclosure data specified."},
        {"encA&amp;encB##dev2", 0, named + "encA\" has no enclosure data specified."},
    };
    for (const SRejectedConfiguration& one : kCases) {
        SJournal journal;
        EXPECT_EQ(parseConfigurations(one.text, journal).size(), one.kept) << one.text;
        EXPECT_EQ(journal.trace.back().text, one.message);
        EXPECT_EQ(journal.trace.back().level, 3);
    }
}

struct SIdentifierCase {
    std::string text;
    std::string enclosure;
    std::string device;
};

TEST(ModelIdentifier, EnclosureAndDevice) {
    const SIdentifierCase kCases[] = {
        {"UDID##v##m##encA##dev1", "encA", "dev1"},
        {"UDID##v##m##encA##dev1##x", "encA", "dev1##x"},
        {"UDID##v##m##dev1", "", "dev1"},
        {"UEID##v##m##encA##dev1", "encA", "dev1"},
        {"UEID##v##m##encA", "encA", ""},
        {"xyzUDID##v##m##dev1", "", "dev1"},
        {"UEID##x##UDID##a##b##c", "", "c"},
        {"UDID####b##c", "", "c"},
        {"UDID##a##b####c", "", "c"},
        {"UDID##a##b##c##", "c", ""},
    };
    for (const SIdentifierCase& one : kCases) {
        SJournal journal;
        const SIdentifier identifier = parseIdentifier(one.text, journal);
        EXPECT_EQ(identifier.enclosure, one.enclosure) << one.text;
        EXPECT_EQ(identifier.device, one.device) << one.text;
    }
}

TEST(ModelIdentifier, ReasonsOfRejection) {
    const std::pair<std::string, int> kCases[] = {
        {"UDID##a##b##", 1}, {"UEID##a##b##", 1}, {"", 2},           {"udid##a##b##c", 2},
        {"UDID##", 3},       {"UDID##a", 3},      {"UDID##a##b", 4}, {"UEID##a##b", 4},
    };
    for (const auto& [text, code] : kCases) {
        SJournal journal;
        try {
            parseIdentifier(text, journal);
            ADD_FAILURE() << text;
        } catch (const SMalformed& malformed) {
            EXPECT_EQ(malformed.code, code) << text;
            EXPECT_EQ(malformed.identifier, text);
        }
    }
}

TEST(ModelType, IsConvertedLikeANumberOf64BitsAndCutTo32) {
    const std::pair<std::string, std::int32_t> kCases[] = {
        {"12abc", 12},
        {"abc", 0},
        {" -3", -3},
        {"+5", 5},
        {"", 0},
        {"-", 0},
        {"4294967297", 1},
        {"3000000000", -1294967296},
        {"9223372036854775807", -1},
        {"99999999999999999999", -1},
        {"-9223372036854775808", 0},
        {"-99999999999999999999", 0},
    };
    for (const auto& [text, value] : kCases) {
        SJournal journal;
        EXPECT_EQ(convertType(text, journal), value) << text;
    }
}

std::vector<std::string> piecesOf(const Tokens& content) {
    std::vector<std::string> pieces;
    for (const SEvent& event : readEvents({element("a", content), false})) {
        if (event.kind == SEvent::EKind::kCharacters) {
            pieces.push_back(event.text);
        }
    }
    return pieces;
}

TEST(ModelReader, PiecesOfText) {
    EXPECT_THAT(piecesOf({text("a"), {EKind::kReference, "amp", ""}, text("b")}), ElementsAre("a", "&b"));
    EXPECT_THAT(piecesOf({text("a"), {EKind::kComment, "c", ""}, text("b")}), ElementsAre("a", "b"));
    EXPECT_THAT(piecesOf({text("a"), {EKind::kCdata, "", ""}}), ElementsAre("a", ""));
    EXPECT_THAT(piecesOf({{EKind::kReference, "#65", ""}, {EKind::kReference, "#xE9", ""}}),
                ElementsAre("A", "\xC3\xA9"));
    EXPECT_THAT(piecesOf({text("a\r\nb\rc")}), ElementsAre("a\nb\nc"));
    EXPECT_THAT(piecesOf({text("a"), {EKind::kNulLine, "lost", ""}, text("b")}), ElementsAre("a\nb"));
}

TEST(ModelReader, AnIllFormedDocumentEndsWithOneError) {
    const Tokens kDocuments[] = {
        {},
        {text("no markup")},
        {open("a"), text("cut")},
        {open("a"), close("b"), close("a")},
        joined({element("a", {}), element("b", {})}),
        {open("a"), {EKind::kDamage, "& ", ""}, close("a")},
        {open("a"), {EKind::kInvalidByte, "", ""}, close("a")},
    };
    for (const Tokens& tokens : kDocuments) {
        const std::vector<SEvent> events = readEvents({tokens, false});
        ASSERT_FALSE(events.empty());
        EXPECT_EQ(events.back().kind, SEvent::EKind::kFatalError) << xmlText({tokens, false});
    }
}

// The one backup of a document, or an empty one when the document holds no Node.
SBackup loaded(const Tokens& tokens) {
    SJournal journal;
    const auto backups = loadBackups({"b.xml"}, {{"b.xml", {tokens, false}}}, journal);
    return backups.empty() ? SBackup() : backups.front();
}

TEST(ModelTree, AnEmptyElementTakesTheTextBeforeIt) {
    const SBackup backup =
        loaded(element("Node", joined({data("type", "7"), {{EKind::kEmpty, "objid", ""}}})));
    EXPECT_EQ(backup.root.objid, "7");
    EXPECT_EQ(backup.root.type, 7);
}

TEST(ModelTree, TheLastTopLevelNodeIsTheRoot) {
    const Tokens first = element("Node", joined({data("objid", "1"), data("timeStamp", "t1")}));
    const Tokens second = element("Node", data("objid", "2"));
    const SBackup backup = loaded(element("fiid", joined({first, second})));
    EXPECT_EQ(backup.root.objid, "2");
    EXPECT_EQ(backup.timeStamp, "");
}

TEST(ModelTree, ATimeStampBelongsToTheRootWhereverItStands) {
    const Tokens inner = element("Node", element("Node", data("timeStamp", "t1")));
    EXPECT_EQ(loaded(inner).timeStamp, "t1");
    const Tokens after = joined({element("Node", {}), data("timeStamp", "t2")});
    EXPECT_EQ(loaded(element("fiid", after)).timeStamp, "t2");
    const Tokens before = joined({data("timeStamp", "t3"), element("Node", {})});
    EXPECT_EQ(loaded(element("fiid", before)).timeStamp, "");
}

TEST(ModelTree, ACutDocumentKeepsItsOpenNodes) {
    const SBackup backup =
        loaded(joined({{open("Node")}, data("objid", "1"), {open("Node")}, data("objid", "2")}));
    EXPECT_EQ(backup.root.objid, "1");
    ASSERT_EQ(backup.root.children.size(), 1U);
    EXPECT_EQ(backup.root.children.front().objid, "2");
}

TEST(ModelTree, OfEqualKeysTheLaterNodeWins) {
    SNode root{"xUDID##1", "A", "", 0, {}};
    root.children.push_back({"UDID##2", "B", "", 0, {{"xUDID##1", "C", "", 0, {}}}});
    root.children.push_back({"udid##3", "D", "", 0, {}});
    SJournal journal;
    std::map<std::string, std::string> pairs;
    collectPairs(root, pairs, journal);
    EXPECT_THAT(pairs, ElementsAre(Pair("UDID##2", "B"), Pair("xUDID##1", "C")));
}

TEST(ModelTree, AfterTheOutermostNodeEveryTagExitsTwice) {
    SJournal journal;
    const Tokens tokens = element("fiid", {{EKind::kEmpty, "Node", ""}, {EKind::kEmpty, "a", ""}});
    loadBackups({"b.xml"}, {{"b.xml", {tokens, false}}}, journal);
    const std::string startIn = "Entering CFiFiidHandler::startElement\n";
    const std::string startOut = "Exiting CFiFiidHandler::startElement\n";
    const std::string endIn = "Entering CFiFiidHandler::endElement\n";
    const std::string endOut = "Exiting CFiFiidHandler::endElement\n";
    EXPECT_THAT(
        textsOf(journal.trace),
        ElementsAre("Entering \n", "Entering \n", "Exiting \n", "Entering CFiFiidParser::CFiFiidParser\n",
                    "Entering CFiFiidParser::init\n", "Exiting CFiFiidParser::init\n",
                    "Exiting CFiFiidParser::CFiFiidParser\n", "Entering CFiFiidHandler::CFiFiidHandler\n",
                    "Exiting CFiFiidHandler::CFiFiidHandler\n", "Entering CFiFiidParser::setHandler\n",
                    "Exiting CFiFiidParser::setHandler\n", "Entering CFiFiidParser::parse\n",
                    // <fiid><Node/>
                    startIn, startOut, startIn, startOut, endIn, endOut, endOut,
                    // <a/></fiid>
                    startIn, startOut, startOut, endIn, endOut, endOut, endIn, endOut, endOut,
                    "Exiting CFiFiidParser::parse\n", "Entering CFiFiidHandler::~CFiFiidHandler\n",
                    "Exiting CFiFiidHandler::~CFiFiidHandler\n", "Entering CFiFiidParser::~CFiFiidParser\n",
                    "Exiting CFiFiidParser::~CFiFiidParser\n", "Exiting \n"));
}

}  // namespace
}  // namespace fi_model
