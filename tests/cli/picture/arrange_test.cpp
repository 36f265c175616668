#include "cli/picture/arrange.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/picture/layout.h"
#include "cli/picture/svg.h"

namespace {

using fi_rotate::ETarget;
using fi_rotate::SPicture;
using fi_rotate::SPictureGroup;
using fi_rotate::SPictureRow;
using testing::Contains;
using testing::ElementsAre;

// A letter for each target: held, free, chosen, blocked. Who is not free has a bar.
SPictureGroup group(const std::string& name, const std::string& letters) {
    SPictureGroup result;
    result.name = name;
    for (const char letter : letters) {
        SPictureRow& row = result.rows.emplace_back();
        row.name = name + std::to_string(result.rows.size());
        row.state = letter == 'f'   ? ETarget::kFree
                    : letter == 'c' ? ETarget::kChosen
                    : letter == 'b' ? ETarget::kBlocked
                                    : ETarget::kHeld;
        if (letter == 'h' || letter == 'b') {
            row.bars.emplace_back().to = 1;
        }
    }
    result.isShort = letters.find('b') != std::string::npos;
    return result;
}

SPicture arranged(const std::vector<SPictureGroup>& groups) {
    SPicture picture;
    picture.to = 1;
    picture.groups = groups;
    sortAndShorten(picture);
    return picture;
}

std::vector<std::string> rowsOf(const SPictureGroup& shown) {
    std::vector<std::string> names;
    for (const SPictureRow& row : shown.rows) {
        names.push_back(row.name);
    }
    return names;
}

std::vector<std::string> groupsOf(const SPicture& picture) {
    std::vector<std::string> names;
    for (const SPictureGroup& shown : picture.groups) {
        names.push_back(shown.name);
    }
    return names;
}

TEST(FiRotateArrange, FoldsThreeOrMoreFreeTargetsIntoOneRow) {
    const SPicture picture = arranged({group("a", "hfffhffcffff")});
    EXPECT_THAT(rowsOf(picture.groups[0]), ElementsAre("a1", "3 free", "a5", "a6", "a7", "a8", "4 free"));
    EXPECT_EQ(picture.groups[0].rows[1].title, "a2 to a4");
    EXPECT_EQ(picture.groups[0].remark, "12 targets, 10 free");
    EXPECT_THAT(picture.remarks, Contains("1 configuration, 12 targets, 10 free"));
}

TEST(FiRotateArrange, DoesNotCallAConfigurationThatARotationHelpsOneWithoutAFreeTarget) {
    const SPicture picture = arranged({group("a", "hh"), group("b", "b")});
    EXPECT_THAT(groupsOf(picture), ElementsAre("b", "a"));
    EXPECT_EQ(picture.groups[0].remark, "1 target");
    EXPECT_EQ(picture.groups[1].remark, "2 targets, none free before a rotation");
}

// An invalid backup may name it all the same.
TEST(FiRotateArrange, FoldsNoFreeTargetThatHasABar) {
    SPictureGroup shown = group("a", "ffff");
    shown.rows[1].bars.emplace_back();
    EXPECT_THAT(rowsOf(arranged({shown}).groups[0]), ElementsAre("a1", "a2", "a3", "a4"));
}

TEST(FiRotateArrange, PutsShortConfigurationsFirstThenReleasedOnesThenThoseWithFewFreeTargets) {
    SPictureGroup released = group("released", "hcf");
    released.isFreedByRotation = true;
    const SPicture picture = arranged(
        {group("three", "ffc"), group("two", "hcf"), released, group("short", "bb"), group("one", "hc")});
    EXPECT_THAT(groupsOf(picture), ElementsAre("short", "released", "one", "two", "three"));
    EXPECT_THAT(
        picture.remarks,
        Contains("Order of the configurations: those without a free target, then those for which a backup "
                 "was rotated, then by the number of free targets"));
}

TEST(FiRotateArrange, ShortensTooManyConfigurationsAndCountsTheOthers) {
    const std::vector<SPictureGroup> groups(100, group("a", std::string(49, 'h') + "c"));
    const SPicture picture = arranged(groups);
    // 51 lines each within 250.
    ASSERT_EQ(picture.groups.size(), 24U);
    EXPECT_EQ(picture.groups[3].rows.size(), 50U);
    EXPECT_THAT(rowsOf(picture.groups[4]), ElementsAre("a50"));
    EXPECT_THAT(rowsOf(picture.groups[23]), ElementsAre("a50"));
    EXPECT_EQ(picture.leftOut, "and 76 configurations more, each with a free target");
    EXPECT_THAT(
        picture.remarks,
        Contains("The first 4 configurations are drawn whole, the next 20 with the chosen target only"));
}

TEST(FiRotateArrange, DoesNotClaimAFreeTargetForShortConfigurationsThatItDoesNotDraw) {
    std::vector<SPictureGroup> groups(10, group("short", std::string(60, 'b')));
    groups.push_back(group("a", std::string(60, 'f')));
    const SPicture picture = arranged(groups);
    EXPECT_EQ(picture.groups.size(), 4U);
    EXPECT_EQ(picture.leftOut, "and 7 configurations more, 6 of them without a free target");
}

TEST(FiRotateArrange, DrawsTheChosenTargetOfAHugeConfigurationAtAnyPosition) {
    const SPicture picture = arranged({group("a", std::string(10000, 'h') + "c" + std::string(10, 'h'))});
    const SPictureGroup& shown = picture.groups[0];
    ASSERT_EQ(shown.rows.size(), 253U);
    EXPECT_EQ(shown.rows[250].name, "9750 not drawn, none free");
    EXPECT_EQ(shown.rows[251].name, "a10001");
    EXPECT_EQ(shown.rows[252].name, "10 not drawn, none free");
}

// What programs that draw such documents accept.
TEST(FiRotateArrange, KeepsThePictureOfTenThousandBackupsSmall) {
    std::vector<SPictureGroup> groups(100, group("a", std::string(100, 'h') + "c"));
    for (SPictureGroup& each : groups) {
        for (SPictureRow& row : each.rows) {
            row.bars.resize(4);
        }
    }
    const SPicture picture = arranged(groups);
    const std::string svg = toSvg(picture);
    EXPECT_LT(static_cast<std::size_t>(std::count(svg.begin(), svg.end(), '<')), 20000U);
    EXPECT_LT(fi_rotate::SLayout(picture).height, 32767);
}

// Of a first backup only the chosen targets are known, of a call that an exception ended no states.
TEST(FiRotateArrange, SaysNothingOfFreeTargetsThatAreNotKnown) {
    SPicture picture;
    picture.areTargetsKnown = false;
    picture.groups.assign(3, group("a", std::string(300, 'h')));
    sortAndShorten(picture);
    ASSERT_EQ(picture.groups.size(), 1U);
    EXPECT_EQ(picture.groups[0].rows.back().name, "50 not drawn");
    EXPECT_EQ(picture.groups[0].remark, "");
    EXPECT_EQ(picture.leftOut, "and 2 configurations more");
    EXPECT_THAT(picture.remarks, ElementsAre("The first configuration is drawn whole"));
}

TEST(FiRotateArrange, NamesSomeAndCountsTheOthers) {
    EXPECT_EQ(fi_rotate::someOf({"a"}), "a");
    EXPECT_EQ(fi_rotate::someOf({"a", "b"}), "a and b");
    EXPECT_EQ(fi_rotate::someOf({"a", "b", "c"}), "a, b and c");
    EXPECT_EQ(fi_rotate::someOf({"a", "b", "c", "d", "e"}), "a, b, c and 2 more");
}

}  // namespace
