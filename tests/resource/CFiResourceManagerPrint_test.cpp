#include "resource/CFiResourceManager.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

Trace printed(const std::vector<SFiResourceList>& set) {
    CFiResourceManager manager;
    manager.resourceSet = set;
    CTraceRecorder recorder;
    manager.print();
    return recorder.take();
}

TEST(CFiResourceManagerPrint, EmptySetPrintsTheHeadingOnly) {
    EXPECT_EQ(printed({}), progress({"CFiResourceManager::print : printing resource set"}));
}

TEST(CFiResourceManagerPrint, ConfigurationWithoutFurtherTargetsPrintsItsOwnLineOnly) {
    EXPECT_EQ(printed({{"dev1", "encA", 0, {}}}),
              progress({"CFiResourceManager::print : printing resource set", "[encA:dev1](Available)"}));
}

TEST(CFiResourceManagerPrint, PrintsListsAndTheirTargetsInOrderWithStateNames) {
    EXPECT_EQ(printed({{"dev1", "encA", 1, {{"dev2", "encA", 1}, {"dev3", "encB", 0}}},
                       {"dev4", "encC", 0, {{"dev5", "", 2}}}}),
              progress({"CFiResourceManager::print : printing resource set", "[encA:dev1](Used)",
                        "{dev2,Used}", "{dev3,Available}", "[encC:dev4](Available)", "{dev5,Invalid}"}));
}

TEST(CFiResourceManagerPrint, StatesOutsideTheEnumerationAreUnknown) {
    EXPECT_EQ(
        printed({{"dev1", "encA", 3, {{"dev2", "encA", -1}, {"dev3", "encA", 2}}}, {"dev4", "encA", 2, {}}}),
        progress({"CFiResourceManager::print : printing resource set", "[encA:dev1](Unknown)",
                  "{dev2,Unknown}", "{dev3,Invalid}", "[encA:dev4](Invalid)"}));
}

TEST(CFiResourceManagerPrint, TargetsOfDifferentEnclosuresPrintAlike) {
    EXPECT_EQ(printed({{"dev1", "encA", 0, {{"dev2", "encA", 0}, {"dev2", "encB", 0}}}}),
              progress({"CFiResourceManager::print : printing resource set", "[encA:dev1](Available)",
                        "{dev2,Available}", "{dev2,Available}"}));
}

TEST(CFiResourceManagerPrint, PercentSignsInNamesArePrintedAsTheyStand) {
    EXPECT_EQ(printed({{"%s", "%n", 0, {{"100%d", "e", 0}}}}),
              progress({"CFiResourceManager::print : printing resource set", "[%n:%s](Available)",
                        "{100%d,Available}"}));
}

}  // namespace
}  // namespace fi_test
