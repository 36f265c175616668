#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

// The one exception type that leaves the library, caught by its type in this program, which has no code of
// the library but that type's header.
namespace {

using fi_test::call;
using fi_test::SObserved;
using fi_test::Trace;
using fi_test::udid;
using Flags = std::vector<std::int32_t>;

class Exception : public fi_test::CContractTest {
protected:
    std::string device(const std::string& name, const std::string& objid,
                       const std::string& altobjid) const {
        return write(
            name, "<Node><objid>" + objid + "</objid><altobjid>" + altobjid + "</altobjid></Node>");
    }
};

TEST_F(Exception, IsCaughtByItsTypeWithIdentifierAndCode) {
    const struct {
        std::string objid, altobjid, identifier;
        std::int32_t code;
    } rows[] = {
        {"UDID##v##m##", udid("encA##snap1"), "UDID##v##m##",
         CFiUdidException::kNothingAfterSecondPart},
        {udid("encA##lun1"), "snap1", "snap1", CFiUdidException::kNoPrefix},
        {"UDID##v", udid("encA##snap1"), "UDID##v", CFiUdidException::kNoSeparatorAfterFirstPart},
        {"UDID##v##m", udid("encA##snap1"), "UDID##v##m",
         CFiUdidException::kNoSeparatorAfterSecondPart},
        {udid("encZ##unknown"), "snap1", "snap1", CFiUdidException::kNoPrefix},
    };
    for (const auto& row : rows) {
        const SObserved observed =
            call("encA##lun1;snap1", {{device("a.xml", row.objid, row.altobjid), 7}});
        EXPECT_EQ(observed.status, std::nullopt) << row.identifier;
        ASSERT_TRUE(observed.exception.has_value()) << row.identifier;
        EXPECT_EQ(observed.exception->identifier, row.identifier);
        EXPECT_EQ(observed.exception->code, row.code) << row.identifier;
        EXPECT_EQ(observed.selection, std::nullopt) << row.identifier;
        EXPECT_EQ(observed.flags, Flags{7}) << row.identifier;
    }
}

TEST_F(Exception, LongIdentifierArrivesWhole) {
    const std::string identifier = "UDID##" + std::string(5000, 'x');
    const SObserved observed =
        call("encA##lun1;snap1", {{device("a.xml", udid("encA##lun1"), identifier), 0}});
    ASSERT_TRUE(observed.exception.has_value());
    EXPECT_EQ(observed.exception->identifier, identifier);
}

TEST_F(Exception, LeavesFromTheCheckOfTheFirstMalformedBackupInLoadOrder) {
    const std::string good = device("a.xml", udid("encA##lun1"), udid("encA##snap1"));
    const std::string bad = device("b.xml", udid("encA##lun1"), "first");
    const std::string alsoBad = device("c.xml", udid("encA##lun1"), "second");
    const SObserved observed = call("encA##lun1;snap1", {{good, 1}, {bad, 2}, {alsoBad, 3}});
    ASSERT_TRUE(observed.exception.has_value());
    EXPECT_EQ(observed.exception->identifier, "first");
    EXPECT_EQ(observed.flags, (Flags{1, 2, 3}));
    const Trace& trace = observed.trace;
    ASSERT_GE(trace.size(), 2U);
    EXPECT_EQ(trace[trace.size() - 2],
              (fi_test::TraceLine{4, "fi_process_backups : [RESOURCES MATCH] [" + good + "]"}));
    EXPECT_EQ(trace.back(), (fi_test::TraceLine{3, "ERROR: first"}));
}

TEST_F(Exception, UnmatchedPairBeforeTheMalformedOneHidesIt) {
    const std::string a = write(
        "a.xml", "<Node><Node><objid>" + udid("encB##x") +
                     "</objid><altobjid>bad</altobjid></Node>" + "<Node><objid>" + udid("encA##x") +
                     "</objid><altobjid>" + udid("encA##snap1") + "</altobjid></Node></Node>");
    const SObserved observed = call("encA##lun1;snap1", {{a, 0}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags, Flags{1});
}

TEST_F(Exception, NextCallWorks) {
    const std::string bad = device("bad.xml", udid("encA##lun1"), "bad");
    const std::string good = device("good.xml", udid("encA##lun1"), udid("encA##snap1"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(call("encA##lun1;snap1", {{bad, 0}}).exception.has_value());
        EXPECT_EQ(call("encA##lun1;snap1", {{good, 0}}).flags, Flags{2});
    }
}

}  // namespace
