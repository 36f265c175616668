#include "host/account.h"

#include <optional>

#include <fi_rotation/fi_process_backups.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::keptHolders;
using fi_rotate::keptHoldersBeforeRotation;
using fi_rotate::SAccount;

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

TEST(HostAccount, RotatedBackupsCountUntilTheyAreRotated) {
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

TEST(HostAccount, WithoutHoldersNoneAreCounted) {
    SAccount other = account();
    other.heldBefore.clear();
    other.heldAfter.clear();
    EXPECT_EQ(keptHolders(other, 0), 0);
    EXPECT_EQ(keptHoldersBeforeRotation(other, 0), 0);
}

}  // namespace
