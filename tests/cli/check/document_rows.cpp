#include <string>
#include <string_view>

#include "tests/cli/check/Rows.h"

namespace fi_test {
namespace {

using fi_rotate::EHazard;

constexpr const char* kConfiguration = "encA##lun1;snap1;snap2";

SCheckedCall of(const std::string& document) {
    return {kConfiguration, {{"d", document}}};
}

// A backup with nothing wrong, but for what `added` brings: it begins on the fifth line.
std::string backup(const std::string& added = "") {
    return "<Node>\n"
           "<timeStamp>1</timeStamp>\n"
           "<objid>UDID##v##m##encA##lun1</objid>\n"
           "<altobjid>UDID##v##m##encA##snap1</altobjid>\n" +
           added + "</Node>";
}

std::string withDtd(const std::string& declarations, const std::string& added = "") {
    return "<!DOCTYPE Node [\n" + declarations + "]>\n" + backup(added);
}

std::string wide(const std::string& text, char first, char second) {
    std::string bytes{first, second};
    for (const char character : text) {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

std::string times(std::size_t count, std::string_view text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string attributes(std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += "<!ATTLIST a b" + std::to_string(i) + " CDATA \"\">";
    }
    return all;
}

constexpr std::size_t kMebibyte = 1024 * 1024;
const std::string kDoctype =
    "d:1:1: warning: the document has a DOCTYPE; the entities that it declares are expanded "
    "[doctype]";

std::vector<SCheckRow> byteRows() {
    using std::string_literals::operator""s;
    const std::string latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n";
    return {
        {"a NUL",
         EHazard::kNulByte,
         of(backup("<!-- -->\0 lost\n"s)),
         {"d:5:9: error: a NUL byte cuts off the rest of its line [nul-byte]"},
         of(backup("<!-- -->\n"))},
        {"two NULs, and a place after them",
         EHazard::kNulByte,
         of(backup("<!--\0 lost\n-->\0\n<type/>\n"s)),
         {"d:5:5: error: NUL bytes cut off the rest of 2 lines; this is the first [nul-byte]",
          "d:7:1: warning: type contains no text and takes the text before it, \"\n\" [empty-element]"},
         of(backup("<!--\n-->\n"))},
        {"UTF-16",
         EHazard::kUtf16,
         of(wide(backup(), '\xFF', '\xFE')),
         {"d:1:1: error: the document is encoded in UTF-16, and each of its lines is read only up to its "
          "first NUL byte [utf-16]"},
         of("\xEF\xBB\xBF" + backup())},
        {"another encoding than declared",
         EHazard::kEncodingMismatch,
         of(latin + backup("<x>\xC3\xA4</x>\n")),
         {"d:6:4: warning: the document declares \"ISO-8859-1\"; from here on its bytes look like UTF-8 "
          "[encoding-mismatch]"},
         of(latin + backup("<x>\xE4</x>\n"))},
        {"the mark of UTF-8 and another encoding",
         EHazard::kEncodingMismatch,
         of("\xEF\xBB\xBF" + latin + backup()),
         {"d:1:1: warning: the document begins with the byte-order mark of UTF-8, but declares "
          "\"ISO-8859-1\" [encoding-mismatch]"},
         of(latin + backup())},
    };
}

std::vector<SCheckRow> xmlRows() {
    return {
        {"not ended",
         EHazard::kMalformedXml,
         of("<a>\n" + backup()),
         {"d:6:8: error: not well-formed: input ended before all started tags were ended; last tag started "
          "is 'a'; the library uses what comes before: 1 Node with 1 device [malformed-xml]"},
         of("<a>\n" + backup() + "</a>")},
        {"nothing of use",
         EHazard::kMalformedXml,
         of(""),
         {"d:1:1: error: not well-formed: invalid document structure; the library uses what comes before: 0 "
          "Nodes with 0 devices [malformed-xml]",
          "d:1:1: error: there is no Node, so the document adds no backup [no-node] <- malformed-xml of d"},
         of(backup())},
        {"a DOCTYPE",
         EHazard::kDoctype,
         of("<!-- <!DOCTYPE Node> -->\n<!DOCTYPE Node>\n" + backup()),
         {"d:2:1: warning: the document has a DOCTYPE; the entities that it declares are expanded "
          "[doctype]"},
         of("<!-- <!DOCTYPE Node> -->\n" + backup())},
        {"an external entity that is used",
         EHazard::kExternalEntity,
         of(withDtd("<!ENTITY e SYSTEM \"/no/such/e.txt\">", "<x>&e;</x>\n")),
         {kDoctype,
          "d:7:4: error: the document refers to \"/no/such/e.txt\", which the check does not open "
          "[external-entity]"},
         of(withDtd("<!ENTITY e SYSTEM \"/no/such/e.txt\">")),
         {"doctype"}},
        {"an external DTD",
         EHazard::kExternalEntity,
         of("<!DOCTYPE Node SYSTEM \"/no/such.dtd\">\n" + backup()),
         {kDoctype,
          "d:1:1: error: the document refers to \"/no/such.dtd\", which the check does not open "
          "[external-entity]"},
         of("<!DOCTYPE Node>\n" + backup()),
         {"doctype"}},
        {"an entity in an entity",
         EHazard::kNestedEntities,
         of(withDtd("<!ENTITY a \"x\">\n<!ENTITY b \"&a;\">\n")),
         {kDoctype,
          "d:3:1: error: the entity \"b\" refers to another one; the check and hardened libraries read only "
          "up to here "
          "[nested-entities]"},
         of(withDtd("<!ENTITY a \"x\">\n<!ENTITY b \"y\">\n")),
         {"doctype"}},
    };
}

std::vector<SCheckRow> formRows() {
    const std::string lost =
        "<Node><objid>UDID##v##m##encA##lun1</objid>"
        "<altobjid>UDID##v##m##encA##snap2</altobjid></Node>";
    return {
        {"another root",
         EHazard::kNoNode,
         of("<a>\n<b/></a>"),
         {"d:1:1: error: there is no Node, so the document adds no backup [no-node]"},
         of("<a>\n" + backup() + "</a>")},
        {"side by side",
         EHazard::kSeveralNodes,
         of("<a>\n" + lost + "\n" + backup() + "</a>"),
         {"d:3:1: error: 2 Nodes are side by side, and only the last counts; 1 device of the others does not "
          "[several-nodes]"},
         of("<a>\n" + backup("<Node><objid>JOB</objid></Node><Node><objid>JOB</objid></Node>") + "</a>")},
        {"three of them",
         EHazard::kSeveralNodes,
         of("<a>\n" + lost + "\n" + lost + "\n" + backup() + "</a>"),
         {"d:3:1: error: 3 Nodes are side by side, and only the last counts; 2 devices of the others do not "
          "[several-nodes]"},
         of(backup())},
        {"before the Node",
         EHazard::kOutsideNode,
         of("<a>\n <type>7</type>\n <timeStamp>2</timeStamp>\n" + backup() + "</a>"),
         {"d:2:2: warning: type is not inside a Node and is ignored [outside-node]",
          "d:3:2: warning: timeStamp is before the first Node and is ignored [outside-node]"},
         of(backup("<type>7</type>"))},
        {"behind the Node",
         EHazard::kOutsideNode,
         of("<a>" + backup() + "\n<objid>x</objid><altobjid>y</altobjid><splitType>z</splitType></a>"),
         {"d:6:1: warning: objid is not inside a Node and is ignored [outside-node]",
          "d:6:17: warning: altobjid is not inside a Node and is ignored [outside-node]",
          "d:6:39: warning: splitType is not inside a Node and is ignored [outside-node]"},
         of("<a>" + backup() + "\n<timeStamp>1</timeStamp></a>")},
        {"another case",
         EHazard::kWrongName,
         of(backup("<NODE><ObjID>x</ObjID></NODE>\n")),
         {"d:5:1: warning: the element \"NODE\" is ignored; did you mean Node? [wrong-name]",
          "d:5:7: warning: the element \"ObjID\" is ignored; did you mean objid? [wrong-name]"},
         of(backup("<Nodes><objids>x</objids></Nodes>\n"))},
        {"a prefix",
         EHazard::kWrongName,
         of(backup("<x:timeStamp xmlns:x=\"u>\">9</x:timeStamp>\n")),
         {"d:5:1: warning: the element \"x:timeStamp\" is ignored; did you mean timeStamp? [wrong-name]"},
         of(backup("<x:stamp xmlns:x=\"u>\">9</x:stamp>\n"))},
    };
}

std::vector<SCheckRow> valueRows() {
    const auto split = [](const std::string& value, const std::string& pieces, const std::string& last,
                          const std::string& neighbour) {
        return SCheckRow{"split by " + value,
                         EHazard::kSplitValue,
                         of(backup("<splitType>" + value + "</splitType>\n")),
                         {"d:5:12: error: the text of splitType consists of " + pieces +
                          " pieces; only the last counts: \"" + last + "\" [split-value]"},
                         of(backup("<splitType>" + neighbour + "</splitType>\n"))};
    };
    return {
        {"between others",
         EHazard::kEmptyElement,
         of(backup("<type>7</type><splitType/>\n")),
         {"d:5:15: warning: splitType contains no text and takes the text before it, \"7\" [empty-element]"},
         of(backup("<type>7</type><splitType> </splitType>\n"))},
        {"with an end tag and a comment",
         EHazard::kEmptyElement,
         of(backup("<type><!-- x --></type>\n")),
         {"d:5:1: warning: type contains no text and takes the text before it, \"\n\" [empty-element]"},
         of(backup("<x/>\n"))},
        split("a&amp;b", "2", "&b", "a+b"),
        split("a<!-- -->b", "2", "b", "<!-- -->b<!-- -->"),
        split("a<![CDATA[b]]>", "2", "b", "<![CDATA[ab]]>"),
        split("a<![CDATA[]]>", "2", "", "<![CDATA[]]>a"),
        split("a<?p q?>b", "2", "b", "ab<?p q?>"),
        split("a&#65;b&#66;", "3", "B", "&#66;"),
        split("a<x>b</x>", "2", "b", "<x>b</x>"),
        {"of an entity of its own",
         EHazard::kSplitValue,
         of(withDtd("<!ENTITY e \"lun\">", "<splitType>a&e;</splitType>\n")),
         {kDoctype,
          "d:7:12: error: the text of splitType consists of 2 pieces; only the last counts: \"lun\" "
          "[split-value]"},
         of(withDtd("<!ENTITY e \"lun\">", "<splitType>&e;</splitType>\n")),
         {"doctype"}},
        {"more than a mebibyte",
         EHazard::kLongText,
         of(backup("<type>" + times(kMebibyte + 1, "7") + "</type>\n")),
         {"d:5:7: error: the text of type is longer than 1 MiB and is read in 2 pieces; only the last "
          "counts: \"" +
          times(80, "7") + "...\" [long-text]"},
         of(backup("<type>" + times(kMebibyte, "7") + "</type>\n"))},
        {"another altobjid",
         EHazard::kRepeatedElement,
         of(backup("<altobjid>UDID##v##m##encA##snap2</altobjid>\n")),
         {"d:5:1: warning: altobjid \"UDID##v##m##encA##snap2\" replaces "
          "\"UDID##v##m##encA##snap1\" [repeated-element]"},
         of(backup("<altobjid>UDID##v##m##encA##snap1</altobjid>\n"))},
        {"another time stamp, in an inner Node",
         EHazard::kRepeatedElement,
         of(backup("<Node><timeStamp>2</timeStamp></Node>\n")),
         {"d:5:7: warning: timeStamp \"2\" replaces \"1\" [repeated-element]"},
         of(backup("<Node><timeStamp>1</timeStamp><objid>JOB</objid></Node>\n"))},
    };
}

// `count` elements of different names, side by side.
std::string elements(int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += "<n" + std::to_string(i) + "/>";
    }
    return all;
}

// As many declarations of a kind as are allowed, a line each, and one more.
SCheckRow declarations(const std::string& what, const std::string& before, const std::string& after) {
    std::string all;
    for (int i = 0; i < 256; ++i) {
        all += before + std::to_string(i) + after + "\n";
    }
    return {"257 " + what,
            EHazard::kReadingLimit,
            of(withDtd(all + before + "256" + after + "\n")),
            {kDoctype,
             "d:258:1: error: more than 256 declarations in the DTD; the check and hardened libraries read "
             "only up "
             "to here [reading-limit]"},
            of(withDtd(all)),
            {"doctype"}};
}

// The document reaches each limit, and then goes beyond it.
std::vector<SCheckRow> limitRows() {
    return {
        {"a parameter entity",
         EHazard::kReadingLimit,
         of(withDtd("<!ENTITY % a \"x\">\n")),
         {kDoctype,
          "d:2:1: error: a parameter entity; the check and hardened libraries read only up to here "
          "[reading-limit]"},
         of(withDtd("<!ENTITY a \"x\">\n")),
         {"doctype"}},
        {"a long entity",
         EHazard::kReadingLimit,
         of(withDtd("<!ENTITY a \"" + times(257, "x") + "\">\n")),
         {kDoctype,
          "d:2:1: error: an entity of more than 256 characters; the check and hardened libraries read only "
          "up to here "
          "[reading-limit]"},
         of(withDtd("<!ENTITY a \"" + times(256, "x") + "\">\n")),
         {"doctype"}},
        {"a long default",
         EHazard::kReadingLimit,
         of(withDtd("<!ATTLIST a b CDATA \"" + times(257, "x") + "\">\n")),
         {kDoctype,
          "d:2:1: error: a default of an attribute of more than 256 characters; the check and hardened "
          "libraries read only up "
          "to here [reading-limit]"},
         of(withDtd("<!ATTLIST a b CDATA \"" + times(256, "x") + "\">\n")),
         {"doctype"}},
        {"101 references to entities",
         EHazard::kReadingLimit,
         of(withDtd("<!ENTITY e \"x\">", "<x>" + times(101, "&e;") + "</x>\n")),
         {kDoctype,
          "d:7:307: error: more than 100 references to entities; the check and hardened libraries read only "
          "up to here "
          "[reading-limit]"},
         of(withDtd("<!ENTITY e \"x\">", "<x>" + times(100, "&e;") + "</x>\n")),
         {"doctype"}},
        {"101 references to entities in an attribute",
         EHazard::kReadingLimit,
         of(withDtd("<!ENTITY e \"x\">", "<x a=\"" + times(101, "&e;") + "\"/>\n")),
         {kDoctype,
          "d:7:310: error: more than 100 references to entities; the check and hardened libraries read only "
          "up to "
          "here [reading-limit]"},
         of(withDtd("<!ENTITY e \"x\">", "<x a=\"" + times(100, "&e;") + "\"/>\n")),
         {"doctype"}},
        declarations("entities", "<!ENTITY e", " \"x\">"),
        declarations("elements", "<!ELEMENT e", " ANY>"),
        declarations("notations", "<!NOTATION e", " SYSTEM \"x\">"),
        declarations("external entities", "<!ENTITY e", " SYSTEM \"x\">"),
        {"reached before the altobjid",
         EHazard::kReadingLimit,
         of("<Node>\n<timeStamp>1</timeStamp>\n<objid>UDID##v##m##encA##lun1</objid>\n" + times(256, "<a>") +
            times(256, "</a>") + "<altobjid>UDID##v##m##encA##snap1</altobjid></Node>"),
         {"d:3:8: error: the device \"UDID##v##m##encA##lun1\" has no altobjid; an exception ends the call "
          "[no-altobjid] <- reading-limit of d",
          "d:4:766: error: elements nested more than 256 deep; the check and hardened libraries read only up "
          "to "
          "here [reading-limit]"},
         of(backup(times(255, "<a>") + times(255, "</a>") + "\n"))},
        {"33 attributes",
         EHazard::kReadingLimit,
         of(withDtd(attributes(32) + "\n<!ATTLIST a last CDATA \"\">")),
         {kDoctype,
          "d:3:1: error: more than 32 attributes declared in the DTD; the check and hardened libraries read "
          "only up to here "
          "[reading-limit]"},
         of(withDtd(attributes(32))),
         {"doctype"}},
        {"elements 257 deep",
         EHazard::kReadingLimit,
         of(backup(times(256, "<a>") + times(256, "</a>") + "\n")),
         {"d:5:766: error: elements nested more than 256 deep; the check and hardened libraries read only up "
          "to here "
          "[reading-limit]"},
         of(backup(times(255, "<a>") + times(255, "</a>") + "\n"))},
        {"257 element names",
         EHazard::kReadingLimit,
         // Beside the four of the backup.
         of(backup(elements(253) + "\n")),
         {"d:5:1655: error: more than 256 different element names; the check and hardened libraries read "
          "only up to here "
          "[reading-limit]"},
         of(backup(elements(252) + "\n"))},
        {"a long tag",
         EHazard::kReadingLimit,
         of(backup("<a b='" + times(8184, "x") + "'/>\n")),
         {"d:5:1: error: a tag of more than 8192 bytes; the check and hardened libraries read only up to "
          "here "
          "[reading-limit]"},
         of(backup("<a b='" + times(8183, "x") + "'/>\n"))},
        {"a long DTD",
         EHazard::kReadingLimit,
         of(withDtd("<!--" + times(16384, "x") + "-->")),
         {kDoctype,
          "d:1:1: error: a DTD of more than 16384 bytes; the check and hardened libraries read only up to "
          "here "
          "[reading-limit]"},
         of(withDtd("<!--" + times(16000, "x") + "-->")),
         {"doctype"}},
        {"an encoding whose bytes do not show the tags",
         EHazard::kReadingLimit,
         of("<?xml version=\"1.0\" encoding=\"UTF-7\"?>\n" + backup()),
         {"d:1:1: error: an encoding that is not read; the check and hardened libraries read only up to here "
          "[reading-limit]"},
         of("<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n" + backup())},
    };
}

}  // namespace

std::vector<SCheckRow> documentRows() {
    std::vector<SCheckRow> rows;
    for (auto* const some : {byteRows, xmlRows, formRows, valueRows, limitRows}) {
        const std::vector<SCheckRow> more = some();
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

}  // namespace fi_test
