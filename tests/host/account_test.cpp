#include "host/account.h"

#include <optional>

#include <fi_rotation/fi_process_backups.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::keptHolders;
using fi_rotate::keptHoldersBeforeRotation;
using fi_rotate::lossesInWords;
using fi_rotate::SAccount;
using testing::ElementsAre;

constexpr std::optional<std::size_t> kFree;

// Two configurations. Backup 0 is kept and holds two targets of the first; 1 was rotated, 2 is invalid.
SAccount account() {
    SAccount account;
    account.configurations = {{"A##x", {"A##1", "A##2", "A##3", "A##4"}}, {"A##y", {"A##5", "A##6"}}};
    for (const int state : {FI_BACKUP_KEPT, FI_BACKUP_ROTATED, FI_BACKUP_INVALID}) {
        account.backups.emplace_back().state = state;
    }
    account.heldBefore = {{0, 0, 1, 2}, {1, kFree}};
    account.heldAfter = {{0, 0, kFree, 2}, {kFree, kFree}};
    return account;
}

TEST(HostAccount, ABackupThatHoldsTwoTargetsCountsOnce) {
    EXPECT_EQ(keptHolders(account(), 0), 1);
}

TEST(HostAccount, RotatedBackupsCountOnlyBeforeTheRotation) {
    EXPECT_EQ(keptHoldersBeforeRotation(account(), 0), 2);
    EXPECT_EQ(keptHoldersBeforeRotation(account(), 1), 1);
    EXPECT_EQ(keptHolders(account(), 1), 0);
}

TEST(HostAccount, InvalidHoldersNeverCount) {
    SAccount other = account();
    other.backups[0].state = FI_BACKUP_INVALID;
    EXPECT_EQ(keptHolders(other, 0), 0);
    EXPECT_EQ(keptHoldersBeforeRotation(other, 0), 1);
}

TEST(HostAccount, NothingIsCountedWhenHoldersAreNotKnown) {
    SAccount other = account();
    other.heldBefore.clear();
    other.heldAfter.clear();
    EXPECT_EQ(keptHolders(other, 0), 0);
    EXPECT_EQ(keptHoldersBeforeRotation(other, 0), 0);
}

// A##x keeps one of two backups, A##y none of one.
TEST(HostAccount, LossesSayHowManyBackupsMayNotBeLostAndWhatToDo) {
    EXPECT_THAT(lossesInWords(account(), 0), ElementsAre());
    EXPECT_THAT(
        lossesInWords(account(), 1),
        ElementsAre("A##y would keep 0 of its 1 backups; at least 1 must remain: add further targets, "
                    "or keep fewer"));
    EXPECT_THAT(
        lossesInWords(account(), 2),
        ElementsAre("A##x would keep 1 of its 2 backups; at least 2 must remain: add further targets, "
                    "or keep fewer",
                    "A##y would keep 0 of its 1 backups; it has fewer than 2 and may lose none: add "
                    "further targets, or keep fewer"));
}

}  // namespace
