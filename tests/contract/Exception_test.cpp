#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "tests/contract/Decision.h"

// The exception of the library's own, caught by its type in this program, which contains no code of the
// library but the header of that type.
namespace fi_test {
namespace {

class CException : public CRotationTest {
protected:
    SBackup device(const std::string& name, const std::string& objid, const std::string& altobjid,
                   std::int32_t flagWord = 0) const {
        return given(name, SNode{{{"objid", objid}, {"altobjid", altobjid}}, {}}, flagWord);
    }
};

TEST_F(CException, IsCaughtByItsTypeWithIdentifierAndCode) {
    const std::string objid = udid("encA##lun1");
    const std::string altobjid = udid("encA##snap1");
    const struct {
        std::string objid, altobjid, identifier;
        std::int32_t code;
    } rows[] = {
        {"UDID##v##m##", altobjid, "UDID##v##m##", 1},
        {"UDID##v", altobjid, "UDID##v", 3},
        {"UDID##v##m", altobjid, "UDID##v##m", 4},
        {"before UDID##v##m", altobjid, "before UDID##v##m", 4},
        {objid, "UDID##v##m##", "UDID##v##m##", 1},
        {objid, "UEID##v##m##", "UEID##v##m##", 1},
        {objid, "snap1", "snap1", 2},
        {objid, "udid##v##m##encA##snap1", "udid##v##m##encA##snap1", 2},
        {objid, "UDID##", "UDID##", 3},
        {objid, "UEID##v", "UEID##v", 3},
        {objid, "UDID##v##m", "UDID##v##m", 4},
        {objid, "UEID####", "UEID####", 4},
        {objid, "%s%n%d", "%s%n%d", 2},
        // The objid names no configured device, but its pair is read before it is looked for.
        {udid("encZ##unknown"), "snap1", "snap1", 2},
        // Of two malformed identifiers the objid is read first.
        {"UDID##v", "snap1", "UDID##v", 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.objid + " " + row.altobjid);
        const SBackup a = device("a.xml", row.objid, row.altobjid, 7);
        EXPECT_EQ(decided("encA##lun1;snap1", {a}), thrown({row.identifier, row.code}, {7}, {}));
    }
}

TEST_F(CException, CodesHaveTheirNames) {
    EXPECT_EQ(CFiUdidException::kNothingAfterSecondPart, 1);
    EXPECT_EQ(CFiUdidException::kNoPrefix, 2);
    EXPECT_EQ(CFiUdidException::kNoSeparatorAfterFirstPart, 3);
    EXPECT_EQ(CFiUdidException::kNoSeparatorAfterSecondPart, 4);
}

TEST_F(CException, DeviceWithoutAnAltobjidHasAnEmptyIdentifier) {
    const SBackup a = given("a.xml", SNode{{{"objid", udid("encA##lun1")}}, {}}, 7);
    EXPECT_EQ(decided("encA##lun1;snap1", {a}), thrown({"", CFiUdidException::kNoPrefix}, {7}, {}));
}

TEST_F(CException, LongIdentifierArrivesWhole) {
    const std::string identifier = "UDID##" + std::string(5000, 'x');
    const SBackup a = device("a.xml", udid("encA##lun1"), identifier);
    EXPECT_EQ(decided("encA##lun1;snap1", {a}), thrown({identifier, 3}, {0}, {}));
}

TEST_F(CException, LeavesFromTheCheckOfTheFirstMalformedBackupInLoadOrder) {
    const SBackup good = device("a.xml", udid("encA##lun1"), udid("encA##snap1"), 1);
    const SBackup unmatched = device("b.xml", udid("encB##lun1"), udid("encA##snap1"), 2);
    const SBackup bad = device("c.xml", udid("encA##lun1"), "first", 3);
    const SBackup alsoBad = device("d.xml", udid("encA##lun1"), "second", 4);
    EXPECT_EQ(decided("encA##lun1;snap1", {good, unmatched, bad, alsoBad}),
              thrown({"first", 2}, {1, 2, 3, 4}, matched({good}) + invalid({unmatched})));
}

TEST_F(CException, MalformedPairBehindAMatchedOneLeavesTheCall) {
    const SNode matching{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##snap1")}}, {}};
    const SNode malformed{{{"objid", udid("encB##x")}, {"altobjid", "bad"}}, {}};
    const SBackup a = given("a.xml", SNode{{}, {malformed, matching}}, 7);
    EXPECT_EQ(decided("encA##lun1;snap1", {a}), thrown({"bad", 2}, {7}, {}));
}

// The pairs are checked in the order of their objids, not in that of the document.
TEST_F(CException, UnmatchedPairBeforeTheMalformedOneHidesIt) {
    const SNode unmatched{{{"objid", udid("encA##x")}, {"altobjid", udid("encA##snap1")}}, {}};
    const SNode malformed{{{"objid", udid("encB##x")}, {"altobjid", "bad"}}, {}};
    const SBackup a = given("a.xml", SNode{{}, {malformed, unmatched}}, 7);
    EXPECT_EQ(decided("encA##lun1;snap1", {a}),
              selected("[encA##lun1;encA##snap1]", {1}, invalid({a}),
                       {"[encA:lun1](Available)", "{snap1,Available}"}, {{a, 1}}));
}

TEST_F(CException, NextCallWorks) {
    const SBackup bad = device("bad.xml", udid("encA##lun1"), "bad");
    const SBackup good = device("good.xml", udid("encA##lun1"), udid("encA##snap1"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(call("encA##lun1;snap1", {bad}).exception.has_value());
        EXPECT_EQ(decided("encA##lun1;snap1", {good}),
                  selected("[encA##lun1;encA##snap1]", {2}, matched({good}) + claimed({good}),
                           {"[encA:lun1](Used)", "{snap1,Available}"}, {{good, 2}}));
    }
}

}  // namespace
}  // namespace fi_test
