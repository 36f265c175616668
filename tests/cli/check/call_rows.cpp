#include "tests/cli/check/Rows.h"

namespace fi_test {
namespace {

using fi_rotate::EHazard;

std::string backup(const std::string& timeStamp, const std::string& target) {
    return "<Node>\n<timeStamp>" + timeStamp +
           "</timeStamp>\n<objid>UDID##v##m##encA##lun1</objid>\n"
           "<altobjid>UDID##v##m##encA##" +
           target + "</altobjid>\n</Node>\n";
}

// Of devices and targets with these numbers, a line each from the second on.
std::string holding(const std::string& timeStamp, const std::vector<std::string>& numbers) {
    std::string text = "<Node><timeStamp>" + timeStamp + "</timeStamp>\n";
    for (const std::string& number : numbers) {
        text += "<Node><objid>UDID##v##m##encA##lun";
        text += number + "</objid><altobjid>UDID##v##m##encA##snap";
        text += number + "</altobjid></Node>\n";
    }
    return text + "</Node>";
}

SCheckedCall with(std::vector<SCheckedDocument> documents) {
    return {"encA##lun1;snap1;snap2;snap3", std::move(documents)};
}

SCheckedCall stamps(const std::string& first, const std::string& second, const std::string& third) {
    return with({{"a.xml", backup(first, "snap1")},
                 {"b.xml", backup(second, "snap2")},
                 {"c.xml", backup(third, "snap3")}});
}

}  // namespace

std::vector<SCheckRow> callRows() {
    const SCheckedDocument first{"a.xml", backup("20260101", "snap1")};
    const SCheckedDocument second{"b.xml", backup("20260102", "snap2")};
    const SCheckedDocument missing{"no.xml", std::nullopt};
    const SCheckedCall clean = with({first, second});
    const std::string unopened = "cannot be opened: No such file or directory; ";
    return {
        {"a missing one before another",
         EHazard::kCannotOpen,
         with({first, missing, second}),
         {"no.xml:1:1: error: " + unopened + "it and the document after it are ignored [cannot-open]"},
         clean},
        {"a missing one at the end, and one that is not reached",
         EHazard::kCannotOpen,
         with({missing, first, {"no2.xml", std::nullopt}}),
         {"no.xml:1:1: error: " + unopened + "it and the 2 documents after it are ignored [cannot-open]",
          "no2.xml:1:1: error: " + unopened +
              "the library does not come this far, because an earlier document cannot be opened "
              "[cannot-open] <- cannot-open of no.xml"},
         clean},
        {"the last one is missing",
         EHazard::kCannotOpen,
         with({first, missing}),
         {"no.xml:1:1: error: " + unopened + "it is ignored [cannot-open]"},
         clean},
        {"a folder",
         EHazard::kNotAFile,
         with({{"/", std::nullopt}}),
         {"/:1:1: error: this is a folder, which the library reads as an empty document [not-a-file]"},
         clean},
        {"a device",
         EHazard::kNotAFile,
         with({{"/dev/zero", std::nullopt}}),
         {"/dev/zero:1:1: error: this is a device or a pipe, not a file; the check does not read it "
          "[not-a-file]"},
         clean},
        {"a file that cannot be read from its beginning",
         EHazard::kReadError,
         with({{"/proc/self/mem", std::nullopt}}),
         {"/proc/self/mem:1:1: error: cannot be read to its end: Input/output error [read-error]"},
         clean},
        {"the same name twice",
         EHazard::kListedTwice,
         with({first, second, {"a.xml", std::nullopt}}),
         {"a.xml:1:1: error: the document is listed already [listed-twice]"},
         clean},
        {"the first and the third",
         EHazard::kEqualTimeStamps,
         stamps("20260101", "20260102", "20260101"),
         {"c.xml:2:12: warning: a.xml has the time stamp \"20260101\" too; it is undefined which of them "
          "counts as newer [equal-time-stamps]"},
         stamps("20260101", "20260102", "20260103")},
        {"two hold a target, and the newer one is listed first",
         EHazard::kTargetHeldBySeveral,
         with({{"a.xml", backup("20260102", "snap1")}, {"b.xml", backup("20260101", "snap1")}}),
         {"b.xml:4:23: error: \"encA##snap1\" is also held by a newer backup, a.xml:4, which claims it; this "
          "backup becomes invalid [target-held-by-several]"},
         clean},
        {"two hold a target, and the newer one is listed last",
         EHazard::kTargetHeldBySeveral,
         with({{"a.xml", "\n" + backup("20260101", "snap1")}, {"b.xml", backup("20260102", "snap1")}}),
         {"a.xml:5:23: error: \"encA##snap1\" is also held by a newer backup, b.xml:4, which claims it; this "
          "backup becomes invalid [target-held-by-several]"},
         clean},
        {"three hold a target, the newest of which is listed last",
         EHazard::kTargetHeldBySeveral,
         with({{"a.xml", backup("20260101", "snap1")},
               {"b.xml", backup("20260102", "snap1")},
               {"c.xml", backup("20260103", "snap1")}}),
         {"a.xml:4:23: error: \"encA##snap1\" is also held by a newer backup, c.xml:4, which claims it; this "
          "backup becomes invalid [target-held-by-several]",
          "b.xml:4:23: error: \"encA##snap1\" is also held by a newer backup, c.xml:4, which claims it; this "
          "backup becomes invalid [target-held-by-several] <- target-held-by-several of a.xml"},
         stamps("20260101", "20260102", "20260103")},
        {"a renamed copy",
         EHazard::kTargetHeldBySeveral,
         with({first, {"b.xml", backup("20260101", "snap1")}}),
         {"b.xml:2:12: warning: a.xml has the time stamp \"20260101\" too; it is undefined which of them "
          "counts as newer [equal-time-stamps] <- target-held-by-several of b.xml",
          "b.xml:4:23: error: \"encA##snap1\" is also held by a.xml:4, which claims it, though the order of "
          "equal time stamps is undefined; this backup becomes invalid [target-held-by-several]"},
         clean},
        {"two copies of a backup that a newer one makes invalid",
         EHazard::kTargetHeldBySeveral,
         with({first, {"b.xml", backup("20260101", "snap1")}, {"c.xml", backup("20260102", "snap1")}}),
         {"a.xml:4:23: error: \"encA##snap1\" is also held by a newer backup, c.xml:4, which claims it; this "
          "backup becomes invalid [target-held-by-several]",
          "b.xml:2:12: warning: a.xml has the time stamp \"20260101\" too; it is undefined which of them "
          "counts as newer [equal-time-stamps] <- target-held-by-several of a.xml",
          "b.xml:4:23: error: \"encA##snap1\" is also held by a newer backup, c.xml:4, which claims it; this "
          "backup becomes invalid [target-held-by-several] <- target-held-by-several of a.xml"},
         clean},
        {"two targets of the same backups are told once, one of others apart",
         EHazard::kTargetHeldBySeveral,
         {"encA##lun1;snap1\nencA##lun2;snap2\nencA##lun3;snap3",
          {{"a.xml", holding("1", {"2", "1"})},
           {"b.xml", holding("2", {"1", "2", "3"})},
           {"c.xml", holding("3", {"3"})}}},
         {"a.xml:2:66: error: \"encA##snap2\" and 1 more target are also held by a newer backup, b.xml:3, "
          "which claims them, but becomes invalid because of another target; this backup becomes invalid, "
          "too "
          "[target-held-by-several]",
          "b.xml:4:66: error: \"encA##snap3\" is also held by a newer backup, c.xml:2, which claims it; this "
          "backup becomes invalid [target-held-by-several]"},
         {"encA##lun1;snap1\nencA##lun2;snap2\nencA##lun3;snap3",
          {{"a.xml", holding("1", {"1", "2"})}, {"b.xml", holding("2", {"3"})}}}},
        {"other targets of other backups, in the same line of one document",
         EHazard::kTargetHeldBySeveral,
         {"encA##lun1;snap1\nencA##lun2;snap2",
          {{"a.xml", holding("1", {"1"})},
           {"b.xml", holding("2", {"2"})},
           {"c.xml",
            "<Node><timeStamp>3</timeStamp><Node><objid>UDID##v##m##encA##lun1</"
            "objid><altobjid>UDID##v##m##encA##"
            "snap1</altobjid></Node><Node><objid>UDID##v##m##encA##lun2</"
            "objid><altobjid>UDID##v##m##encA##snap2"
            "</altobjid></Node></Node>"}}},
         {"a.xml:2:66: error: \"encA##snap1\" is also held by a newer backup, c.xml:1, which claims it; this "
          "backup becomes invalid [target-held-by-several]",
          "b.xml:2:66: error: \"encA##snap2\" is also held by a newer backup, c.xml:1, which claims it; this "
          "backup becomes invalid [target-held-by-several]"},
         clean},
        {"one that is invalid for another pair claims nothing",
         EHazard::kPairMatchesNothing,
         {"encA##lun1;snap1\nencA##lun2;snap2",
          {{"a.xml", holding("1", {"1"})}, {"b.xml", holding("2", {"1", "9"})}}},
         {"b.xml:3:26: error: no configuration has the first target \"encA##lun9\" [pair-matches-nothing]"},
         {"encA##lun1;snap1\nencA##lun2;snap2",
          {{"a.xml", holding("1", {"1"})}, {"b.xml", holding("2", {"2"})}}}},
        {"each of two configurations has a target of that name",
         EHazard::kTargetInTwoConfigurations,
         {"encA##lun1;snap1\nencA##lun2;snap1",
          {{"a.xml", backup("1", "snap1")},
           {"b.xml",
            "<Node><timeStamp>2</timeStamp><objid>UDID##v##m##encA##lun2</objid>"
            "<altobjid>UDID##v##m##encA##snap1</altobjid></Node>"}}},
         {"config:2:12: error: \"encA##snap1\" is already in configuration 1 [target-in-two-configurations]"},
         clean},
        {"a month that does not exist",
         EHazard::kImpossibleDate,
         stamps("20261301013000", "20261201013000", "20261202013000"),
         {"a.xml:2:12: error: the time stamp \"20261301013000\" is no date in the form YYYYMMDDhhmmss, so "
          "its "
          "backup can count as older or newer than it is [impossible-date]"},
         stamps("20261130013000", "20261201013000", "20261202013000")},
        {"the day stands first in all of them",
         EHazard::kImpossibleDate,
         stamps("05112026013000", "06102026013000", "07102026013000"),
         {"a.xml:2:12: error: the time stamp \"05112026013000\" is no date in the form YYYYMMDDhhmmss, so "
          "its "
          "backup can count as older or newer than it is [impossible-date]",
          "b.xml:2:12: error: the time stamp \"06102026013000\" is no date in the form YYYYMMDDhhmmss, so "
          "its "
          "backup can count as older or newer than it is [impossible-date] <- impossible-date of a.xml",
          "c.xml:2:12: error: the time stamp \"07102026013000\" is no date in the form YYYYMMDDhhmmss, so "
          "its "
          "backup can count as older or newer than it is [impossible-date] <- impossible-date of a.xml"},
         // Other numbers of digits need not be dates.
         stamps("0511202601300", "0610202601300", "0710202601300")},
        {"the day of a leap year in another year",
         EHazard::kImpossibleDate,
         stamps("20270229000000", "20270228000000", "20270301000000"),
         {"a.xml:2:12: error: the time stamp \"20270229000000\" is no date in the form YYYYMMDDhhmmss, so "
          "its "
          "backup can count as older or newer than it is [impossible-date]"},
         stamps("20280229000000", "20280228235960", "20280301000000")},
        {"another width",
         EHazard::kMixedTimeStamps,
         stamps("999", "1000", "1001"),
         {"a.xml:2:12: error: the time stamp \"999\" differs in width from \"1000\" in b.xml "
          "[mixed-time-stamps]"},
         stamps("0999", "1000", "1001")},
        {"another form",
         EHazard::kMixedTimeStamps,
         stamps("2026-10-01", "2026-10-02", "03.10.2026"),
         {"c.xml:2:12: error: the time stamp \"03.10.2026\" differs in form from \"2026-10-01\" in a.xml "
          "[mixed-time-stamps]"},
         stamps("2026-10-01", "2026-10-02", "2026-10-03")},
        {"white space is part of it",
         EHazard::kMixedTimeStamps,
         stamps("1", " 2", "3"),
         {"b.xml:2:12: error: the time stamp \" 2\" differs in width from \"1\" in a.xml "
          "[mixed-time-stamps]"},
         stamps("1", "2", "3")},
    };
}

}  // namespace fi_test
