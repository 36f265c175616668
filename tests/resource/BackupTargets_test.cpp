// findTargets, claim and release, which together do what validateResources does.

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "resource/CFiResourceManager.h"
#include "resource/CFiUdidException.h"
#include "tests/resource/Backup.h"
#include "tests/support/TraceRecorder.h"

namespace {

using fi_test::CBackup;
using fi_test::managerOf;
using fi_test::states;
using fi_test::udid;

std::optional<BackupTargets> found(CFiResourceManager& manager,
                                   std::initializer_list<std::pair<std::string, std::string>> pairs) {
    CBackup backup(pairs);
    return findTargets(*backup.get(), CFiTargetIndex(manager.resourceSet));
}

TEST(BackupTargets, AreThoseOfAllPairs) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2&encB##lun2;snap3");
    const auto targets = found(
        manager, {{udid("encA##lun1"), udid("encA##snap2")}, {udid("encB##lun2"), udid("encB##snap3")}});
    ASSERT_TRUE(targets.has_value());
    EXPECT_EQ(targets->size(), 2U);
    EXPECT_EQ(states(manager), "0:0,0 0:0");
    EXPECT_TRUE(claim(*targets));
    EXPECT_EQ(states(manager), "1:0,1 1:1");
}

TEST(BackupTargets, AreNoneOfABackupWithoutPairs) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    const auto targets = found(manager, {{"no identifier", "at all"}});
    ASSERT_TRUE(targets.has_value());
    EXPECT_TRUE(targets->empty());
    EXPECT_TRUE(claim(*targets));
}

TEST(BackupTargets, AreNotFoundWhenAPairMatchesNoTarget) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encB##lun2;snap2");
    EXPECT_FALSE(
        found(manager, {{udid("encA##lun1"), udid("encA##snap1")}, {udid("encB##lun2"), udid("encB##snap9")}})
            .has_value());
}

TEST(BackupTargets, MalformedPairIsTracedAndThrownUnlessOneBeforeItMatchesNoTarget) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1");
    fi_test::CTraceRecorder recorder;
    EXPECT_FALSE(
        found(manager, {{udid("encB##x"), "malformed"}, {udid("encA##x"), udid("encA##snap1")}}).has_value());
    EXPECT_EQ(recorder.take(), fi_test::Trace());
    try {
        found(manager, {{udid("encB##x"), udid("encA##snap1")}, {udid("encA##x"), "malformed"}});
        FAIL() << "nothing is thrown";
    } catch (const CFiUdidException& malformed) {
        EXPECT_EQ(malformed.identifier, "malformed");
        EXPECT_EQ(malformed.code, 2);
    }
    EXPECT_EQ(recorder.take(), (fi_test::Trace{{3, "ERROR: malformed"}}));
}

TEST(BackupTargets, ClaimOfAUsedTargetFailsAndClaimsTheOthers) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1&encA##lun2;snap2&encA##lun3;snap3");
    manager.resourceSet[1].resources[0].state = 1;
    const auto targets = found(manager, {{udid("encA##lun1"), udid("encA##snap1")},
                                         {udid("encA##lun2"), udid("encA##snap2")},
                                         {udid("encA##lun3"), udid("encA##snap3")}});
    ASSERT_TRUE(targets.has_value());
    EXPECT_FALSE(claim(*targets));
    EXPECT_EQ(states(manager), "1:1 0:1 1:1");
}

TEST(BackupTargets, ReleaseMakesThemAvailableAndLeavesTheirListsUsed) {
    CFiResourceManager manager = managerOf("encA##lun1;snap1;snap2");
    const auto targets = found(manager, {{udid("encA##lun1"), udid("encA##snap2")}});
    ASSERT_TRUE(targets.has_value());
    claim(*targets);
    release(*targets);
    EXPECT_EQ(states(manager), "1:0,0");
}

// The outcome of `work`: its result or what it threw, the trace, and the states afterwards.
template <typename Work>
std::string outcome(const CFiResourceManager& manager, Work work) {
    fi_test::CTraceRecorder recorder;
    std::string text;
    try {
        text = work() ? "true" : "false";
    } catch (const CFiUdidException& malformed) {
        text = "thrown: " + malformed.identifier + ' ' + std::to_string(malformed.code);
    }
    for (const fi_test::STraceLine& line : recorder.take()) {
        text += '\n' + std::to_string(line.level) + ' ' + line.text;
    }
    return text + '\n' + states(manager);
}

// There are few names, so that every outcome is common.
TEST(BackupTargets, AreCheckedClaimedAndReleasedAsByTheWholeOperation) {
    std::mt19937 random(20261121);
    int matches = 0;
    int failedClaims = 0;
    int exceptions = 0;
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        CFiResourceManager manager = managerOf("enc##l0;s0;s1;s2&enc##l1;s0;s1&enc##l0;s3;s0");
        manager.resourceSet[random() % 3].resources[random() % 2].state = 1;
        CFiResourceManager other = manager;
        CBackup backup;
        for (auto pairs = random() % 5; pairs > 0; --pairs) {
            // The digit before the prefix makes another objid of the same target, so that pairs may repeat
            // targets.
            const std::string objid = std::to_string(random() % 3) + udid("enc##l");
            const std::string altobjid = random() % 20 == 0 ? "malformed" : udid("enc##s");
            backup.add(objid + "0001112"[random() % 7], altobjid + "0000111124"[random() % 10]);
        }
        const auto whole = [&](int mode) {
            return outcome(other, [&] { return other.validateResources(backup.get(), mode); });
        };

        std::optional<BackupTargets> targets;
        const std::string checked = outcome(manager, [&] {
            targets = findTargets(*backup.get(), CFiTargetIndex(manager.resourceSet));
            return targets.has_value();
        });
        ASSERT_EQ(checked, whole(CFiResourceManager::kCheck));
        exceptions += checked.find("thrown") == 0 ? 1 : 0;
        if (!targets.has_value()) {
            continue;
        }
        const std::string claimed = outcome(manager, [&] { return claim(*targets); });
        ASSERT_EQ(claimed, whole(CFiResourceManager::kClaim));
        ++matches;
        failedClaims += claimed.find("false") == 0 ? 1 : 0;
        const std::string released = outcome(manager, [&] {
            release(*targets);
            return true;
        });
        ASSERT_EQ(released, whole(CFiResourceManager::kRelease));
    }
    EXPECT_GT(matches, 200);
    EXPECT_GT(failedClaims, 50);
    EXPECT_GT(exceptions, 50);
}

}  // namespace
