#include "cli/columns.h"

#include <gtest/gtest.h>

namespace {

using fi_rotate::cutTo;
using fi_rotate::displayWidth;

TEST(FiRotateColumns, CutsInTheMiddleSinceNamesDifferAtTheEnd) {
    EXPECT_EQ(cutTo("abcdefgh", 8), "abcdefgh");
    EXPECT_EQ(cutTo("abcdefgh", 7), "abc…fgh");
    EXPECT_EQ(cutTo("abcdefgh", 6), "ab…fgh");
    EXPECT_EQ(cutTo("abcdefgh", 2), "…h");
    EXPECT_EQ(cutTo("abcdefgh", 1), "…");
    EXPECT_EQ(cutTo("", 1), "");
}

TEST(FiRotateColumns, CutsBetweenCharactersNotWithinThem) {
    EXPECT_EQ(cutTo("äöüäöü", 4), "ä…öü");
    // Each is two columns wide.
    EXPECT_EQ(cutTo("漢字漢字", 5), "漢…字");
    EXPECT_EQ(cutTo("漢字漢字", 4), "…字");
    EXPECT_EQ(displayWidth("漢…字"), 5);
}

}  // namespace
