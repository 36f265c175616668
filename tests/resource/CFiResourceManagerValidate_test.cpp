#include "resource/CFiResourceManager.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "fiid/CFiFiidNode.h"
#include "resource/CFiUdidException.h"
#include "tests/resource/Backup.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

using fi_test::CBackup;
using fi_test::managerOf;
using fi_test::states;
using fi_test::udid;

constexpr int kCheck = 0;
constexpr int kClaim = 1;
constexpr int kRelease = 2;
constexpr int kAnotherMode = 7;

// The result and the states afterwards: "true 1:0,1 0:0".
std::string validated(CFiResourceManager& manager, const CBackup& backup, int mode) {
    const bool isValid = manager.validateResources(backup.get(), mode);
    return (isValid ? "true " : "false ") + states(manager);
}

std::optional<CFiUdidException> thrownBy(CFiResourceManager& manager, const CBackup& backup, int mode) {
    try {
        manager.validateResources(backup.get(), mode);
    } catch (const CFiUdidException& malformed) {
        return malformed;
    }
    return std::nullopt;
}

TEST(CFiResourceManagerValidate, BackupWithoutPairsIsValidInEveryModeAndChangesNothing) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{"no identifier", "at all"}, {"UEID##v##m##encA##lun1", "x"}};
    for (const int mode : {kCheck, kClaim, kRelease, kAnotherMode}) {
        EXPECT_EQ(validated(manager, backup, mode), "true 0:0") << mode;
    }
}

TEST(CFiResourceManagerValidate, CheckOfMatchingPairsIsTrueAndChangesNothing) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2&encB##lun2;snap3");
    EXPECT_EQ(
        validated(manager,
                  {{udid("encA##lun1"), udid("encA##snap2")}, {udid("encB##lun2"), udid("encB##snap3")}},
                  kCheck),
        "true 0:0,0 0:0");
}

TEST(CFiResourceManagerValidate, ClaimMarksTheTargetAndItsListUsed) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2&encB##lun2;snap3");
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), udid("encA##snap2")}}, kClaim), "true 1:0,1 0:0");
}

TEST(CFiResourceManagerValidate, ReleaseMarksTheTargetAvailableAndLeavesItsListUsed) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap2")}};
    EXPECT_EQ(validated(manager, backup, kClaim), "true 1:0,1");
    EXPECT_EQ(validated(manager, backup, kRelease), "true 1:0,0");
}

TEST(CFiResourceManagerValidate, CheckPassesWhateverTheStatesAre) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap1")}};
    EXPECT_EQ(validated(manager, backup, kClaim), "true 1:1");
    EXPECT_EQ(validated(manager, backup, kCheck), "true 1:1");
}

TEST(CFiResourceManagerValidate, CheckEndsAtTheFirstUnmatchedPair) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{udid("encA##lun9"), udid("encA##snap1")},
                   {udid("encB##lun1"), "malformed"},
                   {udid("encC##lun1"), udid("encA##snap1")}};
    EXPECT_EQ(validated(manager, backup, kCheck), "false 0:0");
}

TEST(CFiResourceManagerValidate, OtherModesGoOnBehindAnUnmatchedPair) {
    for (const int mode : {kClaim, kRelease, kAnotherMode}) {
        CFiResourceManager manager = managerOf("encB##lun1;snap1");
        manager.resourceSet[0].resources[0].state = mode == kRelease ? 1 : 0;
        CBackup backup{{udid("encA##unknown"), udid("encA##snap1")},
                       {udid("encB##lun1"), udid("encB##snap1")}};
        EXPECT_EQ(validated(manager, backup, mode), "false " + std::string(mode == kClaim ? "1:1" : "0:0"))
            << mode;
    }
    CFiResourceManager manager = managerOf("encB##lun1;snap1");
    CBackup backup{{udid("encA##unknown"), udid("encA##snap1")}, {udid("encB##lun1"), "malformed"}};
    EXPECT_TRUE(thrownBy(manager, backup, kAnotherMode).has_value());
}

TEST(CFiResourceManagerValidate, AnotherModeChangesNothing) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap1")}};
    EXPECT_EQ(validated(manager, backup, kAnotherMode), "true 0:0");
    EXPECT_EQ(validated(manager, backup, -1), "true 0:0");
}

TEST(CFiResourceManagerValidate, ClaimOfOneTargetByTwoPairsFailsAndKeepsItUsed) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{"a" + udid("encA##lun1"), udid("encA##snap1")},
                   {"b" + udid("encA##lun1"), udid("encA##snap1")}};
    EXPECT_EQ(validated(manager, backup, kCheck), "true 0:0");
    EXPECT_EQ(validated(manager, backup, kClaim), "false 1:1");
}

TEST(CFiResourceManagerValidate, ClaimThatFailsPartWayKeepsWhatItClaimed) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encA##lun2;snap2&encA##lun3;snap3");
    CBackup older{{udid("encA##lun1"), udid("encA##snap1")},
                  {udid("encA##lun2"), udid("encA##snap2")},
                  {udid("encA##lun3"), udid("encA##snap3")}};
    EXPECT_EQ(validated(manager, {{udid("encA##lun2"), udid("encA##snap2")}}, kClaim), "true 0:0 1:1 0:0");
    EXPECT_EQ(validated(manager, older, kClaim), "false 1:1 1:1 1:1");
}

TEST(CFiResourceManagerValidate, ClaimTakesATargetThatIsInvalidRatherThanUsed) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    manager.resourceSet[0].resources[0].state = 2;
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), udid("encA##snap1")}}, kClaim), "true 1:1");
}

TEST(CFiResourceManagerValidate, ReleaseThatFailsPartWayStillReleasesWhatMatched) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encA##lun2;snap2");
    manager.resourceSet[0].resources[0].state = 1;
    manager.resourceSet[1].resources[0].state = 1;
    EXPECT_EQ(
        validated(manager,
                  {{udid("encA##lun1"), udid("encA##snap9")}, {udid("encA##lun2"), udid("encA##snap2")}},
                  kRelease),
        "false 0:1 0:0");
}

TEST(CFiResourceManagerValidate, PairThatNamesTheFirstTargetTwiceIsUnmatched) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), udid("encA##lun1")}}, kCheck), "false 0:0");
}

TEST(CFiResourceManagerValidate, PairOutsideTheConfigurationIsUnmatched) {
    const std::pair<std::string, std::string> rows[] = {
        {udid("encA##lun9"), udid("encA##snap1")},  // no such configuration
        {udid("encB##lun1"), udid("encA##snap1")},  // the device in another enclosure
        {udid("encA##lun1"), udid("encB##snap1")},  // the target in another enclosure
        {udid("encA##lun1"), udid("encA##snap3")},  // a target of another configuration
        {udid("encA##LUN1"), udid("encA##snap1")},  // case counts
        {udid("encA##lun1"), udid("encA##Snap1")},
        {udid("encA##lun1"), udid("encA##snap1 ")},  // whole strings
        {udid("encA##snap1"), udid("encA##lun1")},   // the wrong way round
    };
    for (const auto& row : rows) {
        CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2&encA##lun2;snap3");
        EXPECT_EQ(validated(manager, {row}, kCheck), "false 0:0,0 0:0") << row.first << ' ' << row.second;
    }
}

TEST(CFiResourceManagerValidate, PassesOverAListThatLacksTheTarget) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encB##lun1;snap2&encA##lun1;snap2");
    manager.resourceSet[1].resources[0].enclosure = "encA";
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), udid("encA##snap2")}}, kClaim), "true 0:0 0:0 1:1");
}

TEST(CFiResourceManagerValidate, TakesTheFirstOfSeveralMatchingTargets) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2;snap2&encA##lun1;snap2");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap2")}};
    EXPECT_EQ(validated(manager, backup, kClaim), "true 1:0,1,0 0:0");
    EXPECT_EQ(validated(manager, backup, kClaim), "false 1:0,1,0 0:0");
}

TEST(CFiResourceManagerValidate, EnclosureIdentifierAsValueNamesNoTarget) {
    CFiResourceManager manager = managerOf("encA##lun1;c##snap1;##c");
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), "UEID##a##b##c"}}, kCheck), "false 0:0,0");
}

TEST(CFiResourceManagerValidate, FourPartEnclosureIdentifierAsValueMatchesLikeADevice) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), "UEID##v##m##encA##snap1"}}, kCheck), "true 0:0");
}

TEST(CFiResourceManagerValidate, KeyWithoutAnEnclosureMatchesNoConfiguration) {
    CFiResourceManager manager = managerOf("encA##c;snap1");
    EXPECT_EQ(validated(manager, {{"UDID##a##b##c", udid("encA##snap1")}}, kCheck), "false 0:0");
}

TEST(CFiResourceManagerValidate, ValueWithoutAnEnclosureMatchesATargetWithoutOne) {
    CFiResourceManager manager = managerOf("encA##lun1;##c");
    EXPECT_EQ(validated(manager, {{udid("encA##lun1"), "UDID##a##b##c"}}, kClaim), "true 1:1");
}

TEST(CFiResourceManagerValidate, OfNodesWithTheSameObjidTheLastCounts) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2");
    CBackup backup{{udid("encA##lun1"), "malformed"},
                   {udid("encA##lun1"), udid("encA##snap1")},
                   {udid("encA##lun1"), udid("encA##snap2")}};
    EXPECT_EQ(validated(manager, backup, kClaim), "true 1:0,1");
}

TEST(CFiResourceManagerValidate, MalformedIdentifiersAreTracedAndThrownOn) {
    const struct {
        std::string objid, altobjid, identifier;
        std::int32_t code;
    } rows[] = {
        {"UDID##a", udid("encA##snap1"), "UDID##a", 3},
        {"UDID##a##b", udid("encA##snap1"), "UDID##a##b", 4},
        {"UDID##a##b##", udid("encA##snap1"), "UDID##a##b##", 1},
        {udid("encA##lun1"), "snap1", "snap1", 2},
        {udid("encA##lun1"), "", "", 2},
        {"UDID##a", "snap1", "UDID##a", 3},
    };
    for (const auto& row : rows) {
        for (const int mode : {kCheck, kClaim, kRelease, kAnotherMode}) {
            CFiResourceManager manager = managerOf("encA##lun1;snap1");
            CTraceRecorder recorder;
            const auto thrown = thrownBy(manager, {{row.objid, row.altobjid}}, mode);
            ASSERT_TRUE(thrown.has_value()) << row.objid << ' ' << row.altobjid;
            EXPECT_EQ(thrown->identifier, row.identifier);
            EXPECT_EQ(thrown->code, row.code) << row.identifier;
            EXPECT_EQ(recorder.take(), (failure("ERROR: " + row.identifier)));
        }
    }
}

TEST(CFiResourceManagerValidate, MalformedValueThrowsThoughItsKeyMatchesNoConfiguration) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    const auto thrown = thrownBy(manager, {{udid("encZ##unknown"), "malformed"}}, kCheck);
    ASSERT_TRUE(thrown.has_value());
    EXPECT_EQ(thrown->identifier, "malformed");
}

TEST(CFiResourceManagerValidate, PairsAreVisitedInTheOrderOfTheirKeysNotOfTheDocument) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    EXPECT_EQ(
        validated(manager, {{udid("encB##x"), "malformed"}, {udid("encA##x"), udid("encA##snap1")}}, kCheck),
        "false 0:0");
    EXPECT_TRUE(
        thrownBy(manager, {{udid("encB##x"), udid("encA##snap1")}, {udid("encA##x"), "malformed"}}, kCheck)
            .has_value());
}

TEST(CFiResourceManagerValidate, StatesChangedBeforeTheExceptionStayChanged) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encB##lun2;snap2");
    EXPECT_TRUE(thrownBy(manager,
                         {{udid("encA##lun1"), udid("encA##snap1")}, {udid("encB##lun2"), "malformed"}},
                         kClaim)
                    .has_value());
    EXPECT_EQ(states(manager), "1:1 0:0");
}

TEST(CFiResourceManagerValidate, FindsPairsAtEveryDepthAndInTheNodeItself) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encA##lun2;snap2&encA##lun3;snap3");
    CFiFiidNode root;
    CFiFiidNode child;
    CFiFiidNode grandchild;
    root.children = {&child};
    child.children = {&grandchild};
    root.objid = udid("encA##lun1");
    root.altobjid = udid("encA##snap1");
    child.objid = "x" + udid("encA##lun2");
    child.altobjid = udid("encA##snap2");
    grandchild.objid = udid("encA##lun3");
    grandchild.altobjid = udid("encA##snap3");
    EXPECT_TRUE(manager.validateResources(&root, kClaim));
    EXPECT_EQ(states(manager), "1:1 1:1 1:1");
}

TEST(CFiResourceManagerValidate, RecordsRenamedBetweenCheckAndClaimAreMatchedByTheirNewNames) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap1")}};
    EXPECT_TRUE(manager.validateResources(backup.get(), kCheck));
    std::swap(manager.resourceSet[0].resources[0].device, manager.resourceSet[0].resources[1].device);
    EXPECT_TRUE(manager.validateResources(backup.get(), kClaim));
    EXPECT_EQ(states(manager), "1:0,1");
    manager.resourceSet[0].device = "lun2";
    EXPECT_FALSE(manager.validateResources(backup.get(), kRelease));
    EXPECT_EQ(states(manager), "1:0,1");
}

TEST(CFiResourceManagerValidate, RecordsReplacedBetweenCheckAndClaimAreNotLookedAtAgain) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap1")}};
    EXPECT_TRUE(manager.validateResources(backup.get(), kCheck));
    const std::vector<SFiResourceList> former = std::move(manager.resourceSet);
    manager.resourceSet = managerOf("encB##lun2;snap2&encA##lun1;snap2;snap1").resourceSet;
    EXPECT_TRUE(manager.validateResources(backup.get(), kClaim));
    EXPECT_EQ(states(manager), "0:0 1:0,1");
    EXPECT_EQ(former[0].resources[0].state, 0);
}

TEST(CFiResourceManagerValidate, CopyOfAManagerChangesItsOwnRecordsOnly) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup backup{{udid("encA##lun1"), udid("encA##snap1")}};
    EXPECT_TRUE(manager.validateResources(backup.get(), kCheck));
    CFiResourceManager copy = manager;
    EXPECT_TRUE(copy.validateResources(backup.get(), kClaim));
    EXPECT_EQ(states(copy), "1:1");
    EXPECT_EQ(states(manager), "0:0");
}

TEST(CFiResourceManagerValidate, TreeChangedBetweenTwoCallsIsMatchedAsItStands) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2&encB##lun2;snap3");
    CFiFiidNode root;
    root.objid = udid("encA##lun1");
    root.altobjid = udid("encA##snap1");
    EXPECT_TRUE(manager.validateResources(&root, kCheck));
    CFiFiidNode child;
    child.objid = udid("encB##lun2");
    child.altobjid = udid("encB##snap3");
    root.altobjid = udid("encA##snap2");
    root.children = {&child};
    EXPECT_TRUE(manager.validateResources(&root, kClaim));
    EXPECT_EQ(states(manager), "1:0,1 1:1");
    child.altobjid = udid("encB##snap9");
    EXPECT_FALSE(manager.validateResources(&root, kCheck));
}

TEST(CFiResourceManagerValidate, NodeInThePlaceOfAFreedOneIsMatchedForItself) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2");
    std::optional<CFiFiidNode> node(std::in_place);
    const CFiFiidNode* const place = &*node;
    node->objid = udid("encA##lun1");
    node->altobjid = udid("encA##snap1");
    EXPECT_TRUE(manager.validateResources(&*node, kClaim));
    node.emplace();
    ASSERT_EQ(&*node, place);
    node->objid = udid("encA##lun1");
    node->altobjid = udid("encA##snap2");
    EXPECT_TRUE(manager.validateResources(&*node, kClaim));
    EXPECT_EQ(states(manager), "1:1,1");
}

TEST(CFiResourceManagerValidate, WritesNoTraceLinesOtherwise) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    CBackup matching{{udid("encA##lun1"), udid("encA##snap1")}};
    CBackup unmatched{{udid("encA##lun9"), udid("encA##snap1")}};
    CTraceRecorder recorder;
    for (const int mode : {kCheck, kClaim, kRelease, kAnotherMode}) {
        validated(manager, matching, mode);
        validated(manager, unmatched, mode);
    }
    EXPECT_EQ(recorder.take(), Trace());
}

}  // namespace
}  // namespace fi_test
