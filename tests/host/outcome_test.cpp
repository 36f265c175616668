#include "host/outcome.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fi_rotation/fi_process_backups.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::SBackupOutcome;
using Pairs = std::vector<std::pair<std::string, std::string>>;

std::optional<Pairs> pairsOf(const std::string& selection) {
    const auto choices = fi_rotate::choices(selection);
    if (!choices.has_value()) {
        return std::nullopt;
    }
    Pairs pairs;
    for (const fi_rotate::SChoice& choice : *choices) {
        pairs.emplace_back(choice.first, choice.chosen);
    }
    return pairs;
}

TEST(HostOutcome, TakesSelectionsApart) {
    const struct {
        std::string selection;
        std::optional<Pairs> expected;
    } rows[] = {
        {"", Pairs{}},
        {"[A##1;B##2]", Pairs{{"A##1", "B##2"}}},
        {"[A##1;B##2][C##3;##4]", Pairs{{"A##1", "B##2"}, {"C##3", "##4"}}},
        {"[A[##1];B##]2]", Pairs{{"A[##1]", "B##]2"}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(pairsOf(row.selection), row.expected) << row.selection;
    }
}

TEST(HostOutcome, RefusesToGuessWhereAConfigurationEnds) {
    EXPECT_EQ(pairsOf("[A##1;B##2][x]"), std::nullopt);
    EXPECT_EQ(pairsOf("[A##x][1;B##2]"), std::nullopt);
}

TEST(HostOutcome, NamesStatesInWords) {
    SBackupOutcome backup;
    EXPECT_EQ(fi_rotate::stateWord(backup), "not loaded");
    backup.isLoaded = true;
    EXPECT_EQ(fi_rotate::stateWord(backup), std::nullopt);
    backup.state = FI_BACKUP_KEPT;
    EXPECT_EQ(fi_rotate::stateWord(backup), "kept");
    backup.state = FI_BACKUP_INVALID;
    EXPECT_EQ(fi_rotate::stateWord(backup), "invalid");
    backup.state = FI_BACKUP_ROTATED;
    EXPECT_EQ(fi_rotate::stateWord(backup), "rotated");
}

}  // namespace
