#include "cli/simulate/report.h"

#include <gtest/gtest.h>

namespace {

using fi_rotate::SHeldByRound;
using fi_rotate::shortageInWords;

SHeldByRound excluded() {
    SHeldByRound held;
    held.isExcluded = true;
    return held;
}

SHeldByRound invalid() {
    return {};
}

TEST(FiRotateSimulationReport, AShortageNamesThoseWhoHoldTargetsAndNoOthers) {
    EXPECT_EQ(shortageInWords({}), "it has no further targets");
    EXPECT_EQ(shortageInWords({excluded()}), "its only target is held by an excluded backup");
    EXPECT_EQ(shortageInWords({invalid()}), "its only target is held by an invalid backup");
    EXPECT_EQ(shortageInWords({excluded(), excluded()}), "all 2 targets are held by excluded backups");
    EXPECT_EQ(shortageInWords({invalid(), invalid()}), "all 2 targets are held by invalid backups");
    EXPECT_EQ(shortageInWords({excluded(), invalid(), invalid()}),
              "all 3 targets are held, 1 by excluded backups, the others by invalid ones");
}

}  // namespace
