#include "driver/selection.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Set = std::vector<SFiResourceList>;

TEST(Selection, JoinsTheConfigurationsWithNothingBetween) {
    EXPECT_EQ(buildSelection(Set{{"D1", "E1", 0, {{"D2", "E2", 0}}}, {"D3", "E3", 0, {{"D4", "E4", 0}}}}),
              "[E1##D1;E2##D2][E3##D3;E4##D4]");
}

TEST(Selection, ChoosesTheFirstAvailableTarget) {
    EXPECT_EQ(buildSelection(
                  Set{{"D1", "E1", 0, {{"D2", "E2", 1}, {"D3", "E3", 2}, {"D4", "", 0}, {"D5", "E5", 0}}}}),
              "[E1##D1;##D4]");
}

TEST(Selection, DoesNotLookAtTheStateOfTheConfigurationItself) {
    EXPECT_EQ(buildSelection(Set{{"D1", "E1", 1, {{"D2", "E2", 0}}}}), "[E1##D1;E2##D2]");
    EXPECT_EQ(buildSelection(Set{{"D1", "E1", 2, {{"D2", "E2", 0}}}}), "[E1##D1;E2##D2]");
}

TEST(Selection, ThereIsNoneWhenOneConfigurationHasNoAvailableTarget) {
    EXPECT_EQ(buildSelection(Set{{"D1", "E1", 0, {{"D2", "E2", 0}}}, {"D3", "E3", 0, {}}}), std::nullopt);
    EXPECT_EQ(buildSelection(Set{{"D1", "E1", 0, {{"D2", "E2", 1}, {"D3", "E3", 2}, {"D4", "E4", 3}}}}),
              std::nullopt);
}

TEST(Selection, EmptySetGivesTheEmptyText) {
    EXPECT_EQ(buildSelection({}), "");
}

TEST(Selection, CopyForTheCallerHoldsTheSameText) {
    for (const std::string& text : {std::string(), std::string("[a##b;c##d]"), std::string(100000, 'x')}) {
        const CMallocedText copy = duplicateForCaller(text);
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(std::string(copy.get()), text);
    }
}

}  // namespace
