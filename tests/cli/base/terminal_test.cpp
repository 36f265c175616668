#include "cli/base/terminal.h"

#include <chrono>

#include <gtest/gtest.h>

namespace {

using fi_rotate::timeLeft;
using std::chrono::seconds;

TEST(FiRotateTerminal, TheTimeLeftIsThatOfTheRestAtTheSameSpeed) {
    EXPECT_EQ(timeLeft(seconds(10), 20, 100), "40 s left");
    EXPECT_EQ(timeLeft(std::chrono::milliseconds(1500), 3, 4), "1 s left");
    EXPECT_EQ(timeLeft(seconds(10), 100, 100), "0 s left");
}

TEST(FiRotateTerminal, TheTimeLeftIsShownInItsLargestUnits) {
    EXPECT_EQ(timeLeft(seconds(59), 1, 2), "59 s left");
    EXPECT_EQ(timeLeft(seconds(60), 1, 2), "1 min left");
    EXPECT_EQ(timeLeft(seconds(3599), 1, 2), "59 min left");
    EXPECT_EQ(timeLeft(seconds(3600), 1, 2), "1 h 0 min left");
    EXPECT_EQ(timeLeft(seconds(10), 1, 1111), "3 h 5 min left");
}

TEST(FiRotateTerminal, TheTimeLeftIsNotKnownBeforeAStepIsDone) {
    EXPECT_EQ(timeLeft(seconds(10), 0, 100), "");
}

}  // namespace
