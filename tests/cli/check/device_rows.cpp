#include <string>

#include "tests/cli/check/Rows.h"

namespace fi_test {
namespace {

using fi_rotate::EHazard;

// `nodes` begin on the second line.
SCheckedCall of(const std::string& nodes) {
    return {"encA##lun1;snap1;snap2&encA##lun2;snap3",
            {{"d", "<Node><timeStamp>1</timeStamp>\n" + nodes + "\n</Node>"}}};
}

// The text of its objid begins at column 14; that of its altobjid after 29 more characters and those of the
// text before.
std::string node(const std::string& objid, const std::string& altobjid) {
    return "<Node><objid>" + objid + "</objid><altobjid>" + altobjid + "</altobjid></Node>";
}

std::string device(const std::string& first, const std::string& further) {
    return node("UDID##v##m##" + first, "UDID##v##m##" + further);
}

SCheckRow malformed(const std::string& identifier, const std::string& fault, const std::string& neighbour,
                    const std::string& neighbourHazard) {
    return {"altobjid " + identifier,
            EHazard::kMalformedIdentifier,
            of(node("UDID##v##m##encA##lun1", identifier)),
            {"d:2:54: error: malformed identifier \"" + identifier + "\": " + fault +
             "; an exception ends the call [malformed-identifier]"},
            of(node("UDID##v##m##encA##lun1", neighbour)),
            {neighbourHazard}};
}

}  // namespace

std::vector<SCheckRow> deviceRows() {
    const SCheckedCall clean = of(device("encA##lun1", "encA##snap1"));
    return {
        {"no time stamp",
         EHazard::kNoTimeStamp,
         {"encA##lun1;snap1", {{"d", "<a>\n" + device("encA##lun1", "encA##snap1") + "</a>"}}},
         {"d:2:1: error: the backup has no time stamp and counts as older than all backups that have one "
          "[no-time-stamp]"},
         clean},
        {"a job only",
         EHazard::kNoDevice,
         of("<objid>JOB##nightly</objid>"),
         {"d:1:1: warning: the backup names no device: no objid contains UDID## [no-device]"},
         clean},
        {"no altobjid",
         EHazard::kNoAltobjid,
         of("<objid>UDID##v##m##encA##lun1</objid>"),
         {"d:2:8: error: the device \"UDID##v##m##encA##lun1\" has no altobjid; an exception ends "
          "the call [no-altobjid]"},
         clean},
        {"an empty altobjid",
         EHazard::kNoAltobjid,
         of(node("UDID##v##m##encA##lun1", "<![CDATA[]]>")),
         {"d:2:14: error: the device \"UDID##v##m##encA##lun1\" has no altobjid; an exception ends "
          "the call [no-altobjid]"},
         clean},
        {"the prefix in another case",
         EHazard::kUnusedAltobjid,
         of(device("encA##lun1", "encA##snap1") + "\n" +
            node("udid##v##m##encA##lun2", "UDID##v##m##encA##snap3")),
         {"d:3:14: error: the objid \"udid##v##m##encA##lun2\" does not contain UDID##, so the altobjid "
          "\"UDID##v##m##encA##snap3\" is not used; did you mean UDID##? [unused-altobjid]"},
         of(device("encA##lun1", "encA##snap1") + "\n" + device("encA##lun2", "encA##snap3"))},
        {"an objid that is no identifier",
         EHazard::kUnusedAltobjid,
         of(device("encA##lun1", "encA##snap1") + "\n" + node("JOB##nightly", "UDID##v##m##encA##snap3")),
         {"d:3:14: error: the objid \"JOB##nightly\" does not contain UDID##, so the altobjid "
          "\"UDID##v##m##encA##snap3\" is not used [unused-altobjid]"},
         of(device("encA##lun1", "encA##snap1") + "\n" + node("JOB##nightly", "none"))},
        {"an altobjid without an objid",
         EHazard::kUnusedAltobjid,
         of(device("encA##lun1", "encA##snap1") + "\n<Node><altobjid>UEID##v##m##e</altobjid></Node>"),
         {"d:3:17: error: the altobjid \"UEID##v##m##e\" is not used: its Node has no objid "
          "[unused-altobjid]"},
         of(device("encA##lun1", "encA##snap1") + "\n<Node><altobjid>none</altobjid></Node>")},
        malformed("snap1", "it holds neither UDID## nor UEID## (code 2)", "UDID##v##m##encA##snap9",
                  "pair-matches-nothing"),
        malformed("UDID##v", "no ## follows its prefix (code 3)", "UDID##v##m##snap1",
                  "pair-matches-nothing"),
        malformed("UDID##v##m", "only one ## follows its prefix (code 4)", "UEID##v##m##encA",
                  "pair-matches-nothing"),
        malformed("UDID##v##m##", "nothing follows the second ## after its prefix (code 1)", "UDID##v##m##x",
                  "pair-matches-nothing"),
        {"an objid",
         EHazard::kMalformedIdentifier,
         of(node("UDID##lun1", "UDID##v##m##encA##snap1")),
         {"d:2:14: error: malformed identifier \"UDID##lun1\": no ## follows its prefix (code 3); "
          "an "
          "exception ends the call [malformed-identifier]"},
         clean},
        {"after a pair that matches nothing, in the order of objids",
         EHazard::kMalformedIdentifier,
         of(node("UDID##v##m##encA##lun1", "none") + "\n" + device("encA##lun0", "encA##snap1")),
         {"d:2:54: error: malformed identifier \"none\": it holds neither UDID## nor UEID## (code 2); it is "
          "not checked, because a pair before it matches no configuration [malformed-identifier]",
          "d:3:26: error: no configuration has the first target \"encA##lun0\" [pair-matches-nothing]"},
         clean},
        {"two targets for an objid",
         EHazard::kSameObjid,
         of(device("encA##lun1", "encA##snap1") + "\n" + device("encA##lun1", "encA##snap2")),
         {"d:3:14: error: an earlier Node has the objid \"UDID##v##m##encA##lun1\" too; its altobjid "
          "\"UDID##v##m##encA##snap1\" does not count [same-objid]"},
         of(device("encA##lun1", "encA##snap1") + "\n" + device("encA##lun1", "encA##snap1"))},
        {"a first target that is not configured",
         EHazard::kPairMatchesNothing,
         of(device("ENCA##LUN1", "encA##snap1")),
         {"d:2:26: error: no configuration has the first target \"ENCA##LUN1\"; did you mean \"encA##lun1\" "
          "in config:1? "
          "[pair-matches-nothing]"},
         clean},
        {"a further target of another configuration",
         EHazard::kPairMatchesNothing,
         of(device("encA##lun2", "encA##snap1")),
         {"d:2:66: error: \"encA##snap1\" is not among the further targets of \"encA##lun2\" "
          "[pair-matches-nothing]"},
         of(device("encA##lun2", "encA##snap3"))},
        {"a letter that looks like a digit",
         EHazard::kPairMatchesNothing,
         {"encA##lun10;snap1",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1O", "encA##snap1") + "</Node>"}}},
         {"d:2:26: error: no configuration has the first target \"encA##lun1O\"; did you mean "
          "\"encA##lun10\" in config:1? [pair-matches-nothing]"},
         clean},
        {"a letter for a digit beside targets in which another digit differs",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snap1\nencA##lun2;snap11;snap12;snapl3;snap14",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun2", "encA##snap13") + "</Node>"}}},
         {"d:2:66: error: \"encA##snap13\" is not among the further targets of \"encA##lun2\"; did you mean "
          "\"encA##snapl3\" in config:2? [pair-matches-nothing]"},
         clean},
        {"a letter for a digit in a target that is less similar than one in which a digit differs",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snap11;snapl2",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1", "encA##snap13") + "</Node>"}}},
         {"d:2:66: error: \"encA##snap13\" is not among the further targets of \"encA##lun1\" "
          "[pair-matches-nothing]"},
         clean},
        {"a letter for a digit in two targets",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snapl3;snap1E",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1", "encA##snap13") + "</Node>"}}},
         {"d:2:66: error: \"encA##snap13\" is not among the further targets of \"encA##lun1\" "
          "[pair-matches-nothing]"},
         clean},
        {"one digit more",
         EHazard::kPairMatchesNothing,
         of(device("encA##lun12", "encA##snap1")),
         {"d:2:26: error: no configuration has the first target \"encA##lun12\" [pair-matches-nothing]"},
         clean},
        {"a colon for the semicolon behind the first target",
         EHazard::kPairMatchesNothing,
         {"encA##lun1:snap1;snap2",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1", "encA##snap2") + "</Node>"}}},
         {"d:2:26: error: no configuration has the first target \"encA##lun1\"; the configuration has "
          "\"encA##lun1:snap1\" in config:1, but only a semicolon separates targets [pair-matches-nothing]"},
         // The name of such a target may hold a colon.
         {"iqn.2001-04.com.example:disk1##lun1;snap:1",
          {{"d", "<Node><timeStamp>1</timeStamp>" +
                     device("iqn.2001-04.com.example:disk1##lun1", "iqn.2001-04.com.example:disk1##snap:1") +
                     "</Node>"}}}},
        {"a colon for the semicolon before a further target",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snap1;snap2:snap3",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1", "encA##snap3") + "</Node>"}}},
         {"d:2:66: error: \"encA##snap3\" is not among the further targets of \"encA##lun1\"; the "
          "configuration has \"encA##snap2:snap3\" in config:1, but only a semicolon separates targets "
          "[pair-matches-nothing]"},
         {"encA##lun1;snap1;snap2:snap3",
          {{"d",
            "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1", "encA##snap2:snap3") + "</Node>"}}}},
        {"a blank for a semicolon between further targets",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snap1 snap2",
          {{"d", "<Node><timeStamp>1</timeStamp>\n" + device("encA##lun1", "encA##snap1") + "</Node>"}}},
         {"d:2:66: error: \"encA##snap1\" is not among the further targets of \"encA##lun1\"; the "
          "configuration has \"encA##snap1 snap2\" in config:1, but only a semicolon separates targets "
          "[pair-matches-nothing]"},
         clean},
        {"nothing like it is configured",
         EHazard::kPairMatchesNothing,
         of(device("rack7##volume", "encA##snap1")),
         {"d:2:26: error: no configuration has the first target \"rack7##volume\" [pair-matches-nothing]"},
         clean},
        {"white space around an identifier",
         EHazard::kPairMatchesNothing,
         of(node("UDID##v##m##encA##lun1", "\n      UDID##v##m##encA##snap2\n")),
         {"d:3:19: error: \"encA##snap2\n\" is not among the further targets of \"encA##lun1\"; did you mean "
          "\"encA##snap2\" in config:1? [pair-matches-nothing]"},
         clean},
        {"a configuration that was lost",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snap1&;&encA##lun2;snap3",
          {{"d", "<Node><timeStamp>1</timeStamp>" + device("encA##lun2", "encA##snap3") + "</Node>"}}},
         {"config:1:18: error: configuration rejected: \";\" has no targets; configurations 2 to 3 are not "
          "used, but configuration 1 is [configuration-rejected]",
          "d:1:56: error: no configuration has the first target \"encA##lun2\" [pair-matches-nothing] <- "
          "configuration-rejected of config"},
         clean},
        {"one target, two spellings of its device",
         EHazard::kTargetHeldTwice,
         of(device("encA##lun1", "encA##snap1") + "\n" +
            node("UDID##w##m##encA##lun1", "UDID##v##m##encA##snap1")),
         {"d:3:66: error: another pair of this backup holds \"encA##snap1\" already, so the backup is "
          "invalid [target-held-twice]"},
         of(device("encA##lun1", "encA##snap1") + "\n" +
            node("UDID##w##m##encA##lun1", "UDID##v##m##encA##snap2"))},
    };
}

}  // namespace fi_test
