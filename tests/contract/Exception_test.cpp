#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/RotationLines.h"

// The one exception type that leaves the library, caught by its type in this program, which has no code of
// the library but that type's header.
namespace {

using fi_test::call;
using fi_test::closingLines;
using fi_test::configurationLines;
using fi_test::failure;
using fi_test::invalidLine;
using fi_test::listed;
using fi_test::matchLine;
using fi_test::openingLines;
using fi_test::reservedLine;
using fi_test::SBackup;
using fi_test::SNode;
using fi_test::SObserved;
using fi_test::Trace;
using fi_test::udid;
using Flags = std::vector<std::int32_t>;

class Exception : public fi_test::CRotationTest {
protected:
    SBackup device(const std::string& name, const std::string& objid, const std::string& altobjid,
                   std::int32_t flagWord = 0) const {
        return given(name, SNode{{{"objid", objid}, {"altobjid", altobjid}}, {}}, flagWord);
    }
};

const Trace kConfiguration = configurationLines("encA##lun1;snap1", {{"encA", "lun1"}, {"encA", "snap1"}});
const std::vector<std::string> kFree{"[encA:lun1](Available)", "{snap1,Available}"};

TEST_F(Exception, IsCaughtByItsTypeWithIdentifierAndCode) {
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
        const SObserved observed = call("encA##lun1;snap1", listed({a}));
        EXPECT_EQ(observed.status, std::nullopt);
        ASSERT_TRUE(observed.exception.has_value());
        EXPECT_EQ(observed.exception->identifier, row.identifier);
        EXPECT_EQ(observed.exception->code, row.code);
        EXPECT_EQ(observed.selection, std::nullopt);
        EXPECT_EQ(observed.flags, Flags{7});
        EXPECT_EQ(observed.standardOutput, "");
        EXPECT_EQ(observed.trace,
                  kConfiguration + openingLines({a}, kFree) + failure("ERROR: " + row.identifier));
    }
}

TEST_F(Exception, CodesHaveTheirNames) {
    EXPECT_EQ(CFiUdidException::kNothingAfterSecondPart, 1);
    EXPECT_EQ(CFiUdidException::kNoPrefix, 2);
    EXPECT_EQ(CFiUdidException::kNoSeparatorAfterFirstPart, 3);
    EXPECT_EQ(CFiUdidException::kNoSeparatorAfterSecondPart, 4);
}

TEST_F(Exception, DeviceWithoutAnAltobjidHasAnEmptyIdentifier) {
    const SBackup a = given("a.xml", SNode{{{"objid", udid("encA##lun1")}}, {}}, 7);
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    ASSERT_TRUE(observed.exception.has_value());
    EXPECT_EQ(observed.exception->identifier, "");
    EXPECT_EQ(observed.exception->code, CFiUdidException::kNoPrefix);
    EXPECT_EQ(observed.flags, Flags{7});
    EXPECT_EQ(observed.trace, kConfiguration + openingLines({a}, kFree) + failure("ERROR: "));
}

TEST_F(Exception, LongIdentifierArrivesWhole) {
    const std::string identifier = "UDID##" + std::string(5000, 'x');
    const SBackup a = device("a.xml", udid("encA##lun1"), identifier);
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    ASSERT_TRUE(observed.exception.has_value());
    EXPECT_EQ(observed.exception->identifier, identifier);
    EXPECT_EQ(observed.trace, kConfiguration + openingLines({a}, kFree) + failure("ERROR: " + identifier));
}

TEST_F(Exception, LeavesFromTheCheckOfTheFirstMalformedBackupInLoadOrder) {
    const SBackup good = device("a.xml", udid("encA##lun1"), udid("encA##snap1"), 1);
    const SBackup invalid = device("b.xml", udid("encB##lun1"), udid("encA##snap1"), 2);
    const SBackup bad = device("c.xml", udid("encA##lun1"), "first", 3);
    const SBackup alsoBad = device("d.xml", udid("encA##lun1"), "second", 4);
    const SObserved observed = call("encA##lun1;snap1", listed({good, invalid, bad, alsoBad}));
    ASSERT_TRUE(observed.exception.has_value());
    EXPECT_EQ(observed.exception->identifier, "first");
    EXPECT_EQ(observed.selection, std::nullopt);
    EXPECT_EQ(observed.flags, (Flags{1, 2, 3, 4}));
    EXPECT_EQ(observed.trace, kConfiguration + openingLines({good, invalid, bad, alsoBad}, kFree) +
                                  matchLine(good) + invalidLine(invalid) + failure("ERROR: first"));
}

TEST_F(Exception, MalformedPairBehindAMatchedOneLeavesTheCall) {
    const SNode matched{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##snap1")}}, {}};
    const SNode malformed{{{"objid", udid("encB##x")}, {"altobjid", "bad"}}, {}};
    const SBackup a = given("a.xml", SNode{{}, {malformed, matched}}, 7);
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    ASSERT_TRUE(observed.exception.has_value());
    EXPECT_EQ(observed.exception->identifier, "bad");
    EXPECT_EQ(observed.flags, Flags{7});
    EXPECT_EQ(observed.trace, kConfiguration + openingLines({a}, kFree) + failure("ERROR: bad"));
}

// The pairs are checked in the order of their objids, not in that of the document.
TEST_F(Exception, UnmatchedPairBeforeTheMalformedOneHidesIt) {
    const SNode unmatched{{{"objid", udid("encA##x")}, {"altobjid", udid("encA##snap1")}}, {}};
    const SNode malformed{{{"objid", udid("encB##x")}, {"altobjid", "bad"}}, {}};
    const SBackup a = given("a.xml", SNode{{}, {malformed, unmatched}}, 7);
    const SObserved observed = call("encA##lun1;snap1", listed({a}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, Flags{1});
    EXPECT_EQ(observed.trace, kConfiguration + openingLines({a}, kFree) + invalidLine(a) +
                                  closingLines("[encA##lun1;encA##snap1]", kFree, {{a, 1}}));
}

TEST_F(Exception, NextCallWorks) {
    const SBackup bad = device("bad.xml", udid("encA##lun1"), "bad");
    const SBackup good = device("good.xml", udid("encA##lun1"), udid("encA##snap1"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(call("encA##lun1;snap1", listed({bad})).exception.has_value());
        const SObserved observed = call("encA##lun1;snap1", listed({good}));
        EXPECT_EQ(observed.status, 0);
        EXPECT_EQ(observed.flags, Flags{2});
        EXPECT_EQ(observed.trace, kConfiguration + openingLines({good}, kFree) + matchLine(good) +
                                      reservedLine(good) +
                                      closingLines("[encA##lun1;encA##snap1]",
                                                   {"[encA:lun1](Used)", "{snap1,Available}"}, {{good, 2}}));
    }
}

}  // namespace
