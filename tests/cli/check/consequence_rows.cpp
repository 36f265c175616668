// What follows from a fault, or repeats it, names it.

#include <string>

#include "tests/cli/check/Rows.h"

namespace fi_test {
namespace {

using fi_rotate::EHazard;

constexpr const char* kConfiguration = "encA##lun1;snap1;snap2\nencB##lun2;snap3";

std::string device(const std::string& first, const std::string& further) {
    return "<Node><objid>UDID##v##m##" + first + "</objid><altobjid>UDID##v##m##" + further +
           "</altobjid></Node>\n";
}

// Nodes begin on the second line.
std::string backup(const std::string& timeStamp, const std::string& nodes) {
    return "<Node><timeStamp>" + timeStamp + "</timeStamp>\n" + nodes + "</Node>";
}

SCheckedCall with(const std::string& configuration) {
    return {configuration,
            {{"d", backup("1", device("encA##lun1", "encA##snap1") + device("encB##lun2", "encB##snap3"))}}};
}

SCheckedCall of(const std::string& document) {
    return {kConfiguration, {{"d", document}}};
}

std::string unknownFirst(const std::string& place, const std::string& first, const std::string& nearest,
                         const std::string& cause) {
    return "d:" + place + ": error: no configuration has the first target \"" + first + "\"" +
           (nearest.empty() ? "" : "; did you mean " + nearest + "?") + " [pair-matches-nothing] <- " + cause;
}

std::string unknownFurther(const std::string& place, const std::string& further, const std::string& rest,
                           const std::string& cause) {
    return "d:" + place + ": error: \"" + further + "\" is not among the further targets of " + rest +
           " [pair-matches-nothing] <- " + cause;
}

// Consequences of a fault in the configuration for the backups.
std::vector<SCheckRow> ofConfigurations() {
    const SCheckedCall clean = with(kConfiguration);
    const std::string rejected = "configuration-rejected of config";
    return {
        {"nothing is configured",
         EHazard::kNoConfiguration,
         with("\n"),
         {"config:1:1: error: there is no configuration; a call succeeds with an empty selection "
          "[no-configuration]",
          unknownFirst("2:26", "encA##lun1", "", "no-configuration of config"),
          unknownFirst("3:26", "encB##lun2", "", "no-configuration of config")},
         clean},
        {"a comment before all",
         EHazard::kConfigurationRejected,
         with("# weekly\n" + std::string(kConfiguration)),
         {"config:1:1: error: configuration rejected: \"# weekly\" has no enclosure, which a first target "
          "needs (a configuration cannot contain comments); configurations 1 to 3 are not used, and a call "
          "succeeds with an empty selection [configuration-rejected]",
          unknownFirst("2:26", "encA##lun1", "", rejected), unknownFirst("3:26", "encB##lun2", "", rejected)},
         clean},
        {"the first target of the malformed one is still known",
         EHazard::kConfigurationRejected,
         with("encA##lun1;snap1\nencB##lun2;encC##;snap3"),
         {"config:2:12: error: configuration rejected: \"encC##\" has no device; configuration 2 is not "
          "used, but configuration 1 is [configuration-rejected]",
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", rejected)},
         clean},
        {"the first target of the malformed one ends in the device",
         EHazard::kConfigurationRejected,
         with("encA##lun1;snap1\nencB#lun2;snap4"),
         {"config:2:1: error: configuration rejected: \"encB#lun2\" has no enclosure, which a first target "
          "needs; configuration 2 is not used, but configuration 1 is [configuration-rejected]",
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", rejected)},
         clean},
        {"no further targets",
         EHazard::kNoFurtherTargets,
         with("encA##lun1;snap1\nencB##lun2"),
         {"config:2:1: error: \"encB##lun2\" has no further targets, so no call can succeed "
          "[no-further-targets]",
          unknownFurther("3:66", "encB##snap3", "\"encB##lun2\"", "no-further-targets of config")},
         clean},
        {"a blank before a first target and one behind a further one",
         EHazard::kBlankInTarget,
         with("encA##lun1;snap1 \n encB##lun2;snap3"),
         {"config:1:12: warning: \"encA##snap1 \" has a name that begins or ends with a blank "
          "[blank-in-target]",
          "config:2:1: warning: \" encB##lun2\" has a name that begins or ends with a blank "
          "[blank-in-target]",
          unknownFurther("2:66", "encA##snap1", "\"encA##lun1\"; did you mean \"encA##snap1 \" in config:1?",
                         "blank-in-target of config"),
          unknownFirst("3:26", "encB##lun2", "\" encB##lun2\" in config:2", "blank-in-target of config")},
         clean},
        {"a blank for a line end",
         EHazard::kBlankInTarget,
         with("encA##lun1;snap2;snap1 encB##lun2;snap3 "),
         {"config:1:18: warning: \"snap1 encB##lun2\" is one target; line ends or & separate configurations, "
          "not blanks [blank-in-target]",
          "config:1:35: warning: \"snap1 encB##snap3 \" has a name that begins or ends with a blank "
          "[blank-in-target]",
          unknownFurther("2:66", "encA##snap1", "\"encA##lun1\"", "blank-in-target of config"),
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", "blank-in-target of config")},
         clean},
        {"a comma for a semicolon, with a blank behind it and before another enclosure",
         EHazard::kCommaInTarget,
         with("encA##lun1;snap0, snap1\nencB##lun2,encB##snap3;snap4"),
         {"config:1:12: warning: \"encA##snap0, snap1\" is one target; a semicolon separates targets, not a "
          "comma "
          "[comma-in-target]",
          "config:2:1: warning: \"encB##lun2,encB##snap3\" is one target; a semicolon separates targets, not "
          "a "
          "comma [comma-in-target]",
          unknownFurther(
              "2:66", "encA##snap1",
              "\"encA##lun1\"; the configuration has \"encA##snap0, snap1\" in config:1, but only a "
              "semicolon separates targets",
              "comma-in-target of config"),
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", "comma-in-target of config")},
         clean},
        {"a NUL within a target",
         EHazard::kNulByte,
         with(std::string("encA##lun1;sn\0ap1\nencB##lun2;snap3", 34)),
         {"config:1:14: error: a NUL byte ends the configuration here [nul-byte]",
          unknownFurther("2:66", "encA##snap1", "\"encA##lun1\"", "nul-byte of config"),
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", "nul-byte of config")},
         clean},
        {"a NUL within a first target",
         EHazard::kNulByte,
         with(std::string("encA##lun1;snap1\nencB##\0lun2;snap3", 34)),
         {"config:2:1: error: configuration rejected: \"encB##\" has no device; configuration 2 is not used, "
          "but configuration 1 is [configuration-rejected] <- nul-byte of config",
          "config:2:7: error: a NUL byte ends the configuration here [nul-byte]",
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", "nul-byte of config")},
         clean},
        {"a byte-order mark",
         EHazard::kByteOrderMark,
         with("\xEF\xBB\xBF" + std::string(kConfiguration)),
         {"config:1:1: error: a byte-order mark becomes part of the name of the first enclosure, so no "
          "backup matches it; save the configuration without the mark [byte-order-mark]",
          unknownFirst("2:26", "encA##lun1", "\"encB##lun2\" in config:2", "byte-order-mark of config")},
         clean},
        {"a byte-order mark and nothing else",
         EHazard::kByteOrderMark,
         {"\xEF\xBB\xBF", {}},
         {"config:1:1: error: a byte-order mark becomes part of the name of the first enclosure, so no "
          "backup matches it; save the configuration without the mark [byte-order-mark]",
          "config:1:1: error: configuration rejected: \"\xEF\xBB\xBF\" has no enclosure, which a first "
          "target needs; configuration 1 is not used, and a call succeeds with an empty selection "
          "[configuration-rejected] <- byte-order-mark of config"},
         clean},
        {"a byte-order mark of UTF-16",
         EHazard::kUtf16,
         {std::string("\xFE\xFF\0e\0#\0#", 8), {{"d", backup("1", device("encA##lun1", "encA##snap1"))}}},
         {"config:1:1: error: the configuration is encoded in UTF-16, so it is read only up to its first NUL "
          "byte; save it as UTF-8 [utf-16]",
          "config:1:1: error: configuration rejected: \"\xFE\xFF\" has no enclosure, which a first target "
          "needs; configuration 1 is not used, and a call succeeds with an empty selection "
          "[configuration-rejected] <- utf-16 of config",
          "config:1:3: error: a NUL byte ends the configuration here [nul-byte] <- utf-16 of config",
          unknownFirst("2:26", "encA##lun1", "", "utf-16 of config")},
         clean},
        {"UTF-16 without a byte-order mark, the low byte first",
         EHazard::kUtf16,
         {std::string("e\0#\0#\0l\0", 8), {}},
         {"config:1:1: error: the configuration is encoded in UTF-16, so it is read only up to its first NUL "
          "byte; save it as UTF-8 [utf-16]",
          "config:1:1: error: configuration rejected: \"e\" has no enclosure, which a first target needs; "
          "configuration 1 is not used, and a call succeeds with an empty selection "
          "[configuration-rejected] <- utf-16 of config",
          "config:1:2: error: a NUL byte ends the configuration here [nul-byte] <- utf-16 of config"},
         clean},
        {"UTF-16 without a byte-order mark, the high byte first",
         EHazard::kUtf16,
         {std::string("\0e\0#\0#", 6), {}},
         {"config:1:1: error: the configuration is encoded in UTF-16, so it is read only up to its first NUL "
          "byte; save it as UTF-8 [utf-16]",
          "config:1:1: error: a NUL byte ends the configuration here [nul-byte] <- utf-16 of config",
          "config:1:1: error: there is no configuration; a call succeeds with an empty selection "
          "[no-configuration] <- utf-16 of config"},
         clean},
        {"a configuration is listed twice",
         EHazard::kDeviceConfiguredTwice,
         with(std::string(kConfiguration) + "\nencB##lun2;snap3"),
         {"config:3:1: warning: \"encB##lun2\" is the first target of configuration 2 too "
          "[device-configured-twice]",
          "config:3:12: error: \"encB##snap3\" is already in configuration 2 [target-in-two-configurations] "
          "<- device-configured-twice of config"},
         clean},
        {"what is not configured at all follows from nothing",
         EHazard::kConfigurationRejected,
         {"encB##lun2;snap3\n# weekly\nencA##lun1;snap1",
          {{"d", backup("1", device("encC##vol9", "encC##snap9"))}}},
         {"config:2:1: error: configuration rejected: \"# weekly\" has no enclosure, which a first target "
          "needs (a configuration cannot contain comments); configurations 2 to 3 are not used, but "
          "configuration 1 is "
          "[configuration-rejected]",
          "d:2:26: error: no configuration has the first target \"encC##vol9\" [pair-matches-nothing]"},
         clean},
        {"when no configuration is left, whatever a backup holds",
         EHazard::kConfigurationRejected,
         with("encAlun1;snap1;snap2"),
         {"config:1:1: error: configuration rejected: \"encAlun1\" has no enclosure, which a first target "
          "needs; configuration 1 is not used, and a call succeeds with an empty selection "
          "[configuration-rejected]",
          unknownFirst("2:26", "encA##lun1", "", rejected), unknownFirst("3:26", "encB##lun2", "", rejected)},
         clean},
        {"a further target of the malformed one is known, whatever its first one was",
         EHazard::kConfigurationRejected,
         with("encA##lun1;snap1;snap2\nencBlun2;encB##snap3"),
         {"config:2:1: error: configuration rejected: \"encBlun2\" has no enclosure, which a first target "
          "needs; configuration 2 is not used, but configuration 1 is [configuration-rejected]",
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", rejected)},
         clean},
        {"the first target of the malformed one is missing, so that a further one stands in its place",
         EHazard::kConfigurationRejected,
         with("encA##lun1;snap1;snap2\nsnap3;snap4"),
         {"config:2:1: error: configuration rejected: \"snap3\" has no enclosure, which a first target "
          "needs; configuration 2 is not used, but configuration 1 is [configuration-rejected]",
          unknownFirst("3:26", "encB##lun2", "\"encA##lun1\" in config:1", rejected)},
         clean},
        {"a separator within a name cuts off further targets of the configuration before it, and no others",
         EHazard::kConfigurationRejected,
         {"encA##lun1;R&amp;D;snap1",
          {{"d", backup("1", device("encA##lun1", "encA##snap1"))},
           {"e", backup("2", device("encA##lun1", "encA##snap9"))}}},
         {"config:1:18: error: configuration rejected: \"D\" has no enclosure, which a first target needs; "
          "configuration 2 is not used, but configuration 1 is [configuration-rejected]",
          unknownFurther("2:66", "encA##snap1", "\"encA##lun1\"", rejected),
          "e:2:66: error: \"encA##snap9\" is not among the further targets of \"encA##lun1\" "
          "[pair-matches-nothing]"},
         clean},
    };
}

// Consequences of a fault in a document within the same document.
std::vector<SCheckRow> withinDocuments() {
    const std::string good = device("encA##lun1", "encA##snap1");
    const SCheckedCall clean = of(backup("1", good));
    const std::string altobjid = "<altobjid>UDID##v##m##encA##snap1</altobjid></Node>";
    const std::string noDevice =
        "d:1:1: warning: the backup names no device: no objid contains UDID## [no-device] <- ";
    const auto unused = [](const std::string& place, const std::string& objid,
                           const std::string& meant = "") {
        return "d:" + place + ": error: the objid \"" + objid +
               "\" does not contain UDID##, so the altobjid \"UDID##v##m##encA##snap1\" is not used" + meant +
               " [unused-altobjid]";
    };
    return {
        {"the end is missing, and with it the altobjid",
         EHazard::kMalformedXml,
         of("<Node><timeStamp>1</timeStamp>\n<Node><objid>UDID##v##m##encA##lun1</objid>"),
         {"d:2:14: error: the device \"UDID##v##m##encA##lun1\" has no altobjid; an exception ends the call "
          "[no-altobjid] <- malformed-xml of d",
          "d:2:44: error: not well-formed: input ended before all started tags were ended; last tag started "
          "is 'Node'; the library uses what comes before: 2 Nodes with 1 device [malformed-xml]"},
         clean},
        {"a byte that the encoding does not have",
         EHazard::kEncodingMismatch,
         of("<Node>\xE4</Node>"),
         {"d:1:1: error: not well-formed: invalid byte '<' at position 2 of a 3-byte sequence; the library "
          "uses what comes before: 0 Nodes with 0 devices [malformed-xml] <- encoding-mismatch of d",
          "d:1:1: error: there is no Node, so the document adds no backup [no-node] <- encoding-mismatch of "
          "d",
          "d:1:7: warning: the document declares no encoding, which means UTF-8; this byte is not UTF-8 "
          "[encoding-mismatch]"},
         clean},
        {"names in another case",
         EHazard::kWrongName,
         of("<Node><TimeStamp>1</TimeStamp>\n<Node><objid>UDID##v##m##encA##lun1</objid>"
            "<Altobjid>UDID##v##m##encA##snap1</Altobjid></Node></Node>"),
         {"d:1:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- wrong-name of d",
          "d:1:7: warning: the element \"TimeStamp\" is ignored; did you mean timeStamp? [wrong-name]",
          "d:2:14: error: the device \"UDID##v##m##encA##lun1\" has no altobjid; an exception ends the call "
          "[no-altobjid] <- wrong-name of d",
          "d:2:44: warning: the element \"Altobjid\" is ignored; did you mean altobjid? [wrong-name]"},
         clean},
        {"the same wrong name again",
         EHazard::kWrongName,
         of(backup("1", good + "<Type>1</Type>\n<Type>1</Type>")),
         {"d:3:1: warning: the element \"Type\" is ignored; did you mean type? [wrong-name]",
          "d:4:1: warning: the element \"Type\" is ignored; did you mean type? [wrong-name] <- wrong-name of "
          "d"},
         clean},
        {"a wrong name of one Node is no reason for another",
         EHazard::kWrongName,
         of(backup("1",
                   "<Node><objid>UDID##v##m##encA##lun1</objid></Node>\n"
                   "<Node><Altobjid>none</Altobjid></Node>")),
         {"d:2:14: error: the device \"UDID##v##m##encA##lun1\" has no altobjid; an exception ends the call "
          "[no-altobjid]",
          "d:3:7: warning: the element \"Altobjid\" is ignored; did you mean altobjid? [wrong-name]"},
         clean},
        {"data without a Node",
         EHazard::kNoNode,
         of("<a>\n<objid>1</objid></a>"),
         {"d:1:1: error: there is no Node, so the document adds no backup [no-node]",
          "d:2:1: warning: objid is not inside a Node and is ignored [outside-node] <- no-node of d"},
         clean},
        {"a time stamp before the Node",
         EHazard::kOutsideNode,
         of("<a><timeStamp>1</timeStamp>\n<Node>" + good + "</Node></a>"),
         {"d:1:4: warning: timeStamp is before the first Node and is ignored [outside-node]",
          "d:2:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- outside-node of d"},
         clean},
        {"the time stamp of a Node that does not count",
         EHazard::kSeveralNodes,
         of("<a><Node><timeStamp>1</timeStamp></Node>\n<Node>" + good + "</Node></a>"),
         {"d:2:1: error: 2 Nodes are side by side, and only the last counts; 0 devices of the others do not "
          "[several-nodes]",
          "d:2:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- several-nodes of d"},
         clean},
        {"an empty altobjid that takes the objid",
         EHazard::kEmptyElement,
         of(backup("1", "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid/></Node>")),
         {"d:2:44: warning: altobjid contains no text and takes the text before it, "
          "\"UDID##v##m##encA##lun1\" [empty-element]",
          unknownFurther("2:55", "encA##lun1", "\"encA##lun1\"", "empty-element of d")},
         clean},
        {"an objid in small letters, so that its altobjid is not used",
         EHazard::kUnusedAltobjid,
         of(backup("1", "<Node><objid>udid##v##m##encA##lun1</objid>" + altobjid)),
         {noDevice + "unused-altobjid of d",
          unused("2:14", "udid##v##m##encA##lun1", "; did you mean UDID##?")},
         clean},
        {"no objid for an altobjid",
         EHazard::kUnusedAltobjid,
         of(backup("1", "<Node>" + altobjid)),
         {noDevice + "unused-altobjid of d",
          "d:2:17: error: the altobjid \"UDID##v##m##encA##snap1\" is not used: its Node has no objid "
          "[unused-altobjid]"},
         clean},
        {"an objid in two pieces",
         EHazard::kSplitValue,
         of(backup("1", "<Node><objid>UDID##v##m##encA##<!-- -->lun1</objid>" + altobjid)),
         {noDevice + "split-value of d",
          "d:2:14: error: the text of objid consists of 2 pieces; only the last counts: \"lun1\" "
          "[split-value]",
          unused("2:14", "lun1") + " <- split-value of d"},
         clean},
        {"an objid in two pieces without an altobjid",
         EHazard::kSplitValue,
         of(backup("1", "<Node><objid>UDID##v##m##encA##<!-- -->lun1</objid></Node>")),
         {noDevice + "split-value of d",
          "d:2:14: error: the text of objid consists of 2 pieces; only the last counts: \"lun1\" "
          "[split-value]"},
         clean},
        {"an empty objid",
         EHazard::kEmptyElement,
         of(backup("1", "<Node><objid/>" + altobjid)),
         {noDevice + "empty-element of d",
          "d:2:7: warning: objid contains no text and takes the text before it, \"\n\" [empty-element]",
          unused("2:15", "\n") + " <- empty-element of d"},
         clean},
        {"the start tag of the outermost Node is misspelt",
         EHazard::kMalformedXml,
         of("<ode><timeStamp>1</timeStamp>\n" + good + "</Node>"),
         {"d:1:6: warning: timeStamp is before the first Node and is ignored [outside-node] <- "
          "malformed-xml of d",
          "d:2:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- malformed-xml of d",
          "d:3:3: error: not well-formed: expected end of tag 'ode'; the library uses what comes before: 1 "
          "Node with 1 device [malformed-xml]"},
         clean},
        {"an end that is missing is no reason for a time stamp before the Node",
         EHazard::kOutsideNode,
         of("<a><timeStamp>1</timeStamp>\n<Node>" + good),
         {"d:1:4: warning: timeStamp is before the first Node and is ignored [outside-node]",
          "d:2:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- malformed-xml of d",
          "d:3:1: error: not well-formed: input ended before all started tags were ended; last tag started "
          "is 'Node'; the library uses what comes before: 2 Nodes with 1 device [malformed-xml]"},
         clean},
        {"an identifier in two pieces",
         EHazard::kSplitValue,
         of(backup("1", device("encA##lun1", "encA##<!-- -->snap1"))),
         {"d:2:54: error: the text of altobjid consists of 2 pieces; only the last counts: \"snap1\" "
          "[split-value]",
          "d:2:54: error: malformed identifier \"snap1\": it holds neither UDID## nor UEID## (code 2); an "
          "exception ends the call [malformed-identifier] <- split-value of d"},
         clean},
        {"an altobjid from outside the document",
         EHazard::kExternalEntity,
         of("<!DOCTYPE Node [<!ENTITY e SYSTEM \"e\">]>\n"
            "<Node><timeStamp>1</timeStamp><objid>UDID##v##m##encA##lun1</objid><altobjid>&e;</altobjid></"
            "Node>"),
         {"d:1:1: warning: the document has a DOCTYPE; the entities that it declares are expanded [doctype]",
          "d:2:68: warning: altobjid contains no text and takes the text before it, "
          "\"UDID##v##m##encA##lun1\" [empty-element] <- external-entity of d",
          "d:2:78: error: the document refers to \"e\", which the check does not open [external-entity]",
          unknownFurther("2:78", "encA##lun1", "\"encA##lun1\"", "external-entity of d")},
         clean},
    };
}

// Consequences of a fault in one document for another.
std::vector<SCheckRow> acrossDocuments() {
    const SCheckedCall clean{kConfiguration,
                             {{"a", backup("1", device("encA##lun1", "encA##snap1"))},
                              {"b", backup("2", device("encA##lun1", "encA##snap2"))}}};
    return {
        {"two documents name the same device",
         EHazard::kPairMatchesNothing,
         {kConfiguration,
          {{"a", backup("1", device("encC##vol9", "encC##snap8"))},
           {"b", backup("2", device("encC##vol9", "encC##snap9"))}}},
         {"a:2:26: error: no configuration has the first target \"encC##vol9\" [pair-matches-nothing]",
          "b:2:26: error: no configuration has the first target \"encC##vol9\" [pair-matches-nothing] <- "
          "pair-matches-nothing of a"},
         clean},
        {"the same in each of three documents, with what follows from it",
         EHazard::kWrongName,
         {kConfiguration,
          {{"a", "<Node><timestamp>1</timestamp>\n<timestamp/></Node>"},
           {"b", "<Node><timestamp>2</timestamp>\n<timestamp/></Node>"},
           {"c", "<Node><Type>1</Type>\n<timestamp>3</timestamp></Node>"}}},
         {"a:1:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- wrong-name of a",
          "a:1:1: warning: the backup names no device: no objid contains UDID## [no-device]",
          "a:1:7: warning: the element \"timestamp\" is ignored; did you mean timeStamp? [wrong-name]",
          "a:2:1: warning: the element \"timestamp\" is ignored; did you mean timeStamp? [wrong-name] <- "
          "wrong-name of a",
          "b:1:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- wrong-name of a",
          "b:1:1: warning: the backup names no device: no objid contains UDID## [no-device] <- no-device of "
          "a",
          "b:1:7: warning: the element \"timestamp\" is ignored; did you mean timeStamp? [wrong-name] <- "
          "wrong-name of a",
          "b:2:1: warning: the element \"timestamp\" is ignored; did you mean timeStamp? [wrong-name] <- "
          "wrong-name of a",
          "c:1:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp] <- wrong-name of c",
          "c:1:1: warning: the backup names no device: no objid contains UDID## [no-device] <- no-device of "
          "a",
          "c:1:7: warning: the element \"Type\" is ignored; did you mean type? [wrong-name]",
          "c:2:1: warning: the element \"timestamp\" is ignored; did you mean timeStamp? [wrong-name] <- "
          "wrong-name of a"},
         clean},
        {"the same mistake in other values",
         EHazard::kSplitValue,
         {kConfiguration,
          {{"a", backup("1", device("encA##lun1", "encA##<!-- -->snap1"))},
           {"b", backup("2", device("encA##lun1", "encA##<!-- -->snap2"))}}},
         {"a:2:54: error: the text of altobjid consists of 2 pieces; only the last counts: "
          "\"snap1\" "
          "[split-value]",
          "a:2:54: error: malformed identifier \"snap1\": it holds neither UDID## nor UEID## (code 2); an "
          "exception ends the call [malformed-identifier] <- split-value of a",
          "b:2:54: error: the text of altobjid consists of 2 pieces; only the last counts: "
          "\"snap2\" "
          "[split-value] <- split-value of a",
          "b:2:54: error: malformed identifier \"snap2\": it holds neither UDID## nor UEID## (code 2); an "
          "exception ends the call [malformed-identifier] <- split-value of a"},
         clean},
        {"documents that cannot be opened for one reason",
         EHazard::kCannotOpen,
         {kConfiguration, {{"a", std::nullopt}, {"b", std::nullopt}, {"/etc/passwd/c", std::nullopt}}},
         {"a:1:1: error: cannot be opened: No such file or directory; it and the 2 documents after it are "
          "ignored "
          "[cannot-open]",
          "b:1:1: error: cannot be opened: No such file or directory; the library does not come this far, "
          "because an earlier document cannot be opened [cannot-open] <- cannot-open of a",
          "/etc/passwd/c:1:1: error: cannot be opened: Not a directory; the library does not come this far, "
          "because "
          "an earlier document cannot be opened [cannot-open]"},
         clean},
        {"a time stamp in two pieces",
         EHazard::kSplitValue,
         {kConfiguration,
          {{"a", backup("10", device("encA##lun1", "encA##snap1"))},
           {"b", backup("1<!-- -->2", device("encA##lun1", "encA##snap2"))}}},
         {"b:1:18: error: the text of timeStamp consists of 2 pieces; only the last counts: \"2\" "
          "[split-value]",
          "b:1:18: error: the time stamp \"2\" differs in width from \"10\" in a [mixed-time-stamps] <- "
          "split-value of b"},
         clean},
    };
}

}  // namespace

std::vector<SCheckRow> consequenceRows() {
    std::vector<SCheckRow> rows = ofConfigurations();
    for (const std::vector<SCheckRow>& more : {withinDocuments(), acrossDocuments()}) {
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

}  // namespace fi_test
