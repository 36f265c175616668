#include "resource/CFiResourceManager.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TraceRecorder.h"

namespace {

using fi_test::Trace;

Trace printed(const std::vector<SFiResourceList>& set) {
    CFiResourceManager manager;
    manager.resourceSet = set;
    fi_test::TraceRecorder recorder;
    manager.print();
    return recorder.take();
}

TEST(CFiResourceManagerPrint, EmptySetPrintsTheHeadingOnly) {
    EXPECT_EQ(printed({}), (Trace{{4, "CFiResourceManager::print : printing resource set"}}));
}

TEST(CFiResourceManagerPrint, ConfigurationWithoutFurtherTargetsPrintsItsOwnLineOnly) {
    EXPECT_EQ(
        printed({{"dev1", "encA", 0, {}}}),
        (Trace{{4, "CFiResourceManager::print : printing resource set"}, {4, "[encA:dev1](Available)"}}));
}

TEST(CFiResourceManagerPrint, PrintsListsAndTheirTargetsInOrderWithStateNames) {
    EXPECT_EQ(printed({{"dev1", "encA", 1, {{"dev2", "encA", 1}, {"dev3", "encB", 0}}},
                       {"dev4", "encC", 0, {{"dev5", "", 2}}}}),
              (Trace{{4, "CFiResourceManager::print : printing resource set"},
                     {4, "[encA:dev1](Used)"},
                     {4, "{dev2,Used}"},
                     {4, "{dev3,Available}"},
                     {4, "[encC:dev4](Available)"},
                     {4, "{dev5,Invalid}"}}));
}

TEST(CFiResourceManagerPrint, StatesOutsideTheEnumerationAreUnknown) {
    EXPECT_EQ(
        printed({{"dev1", "encA", 3, {{"dev2", "encA", -1}, {"dev3", "encA", 2}}}, {"dev4", "encA", 2, {}}}),
        (Trace{{4, "CFiResourceManager::print : printing resource set"},
               {4, "[encA:dev1](Unknown)"},
               {4, "{dev2,Unknown}"},
               {4, "{dev3,Invalid}"},
               {4, "[encA:dev4](Invalid)"}}));
}

TEST(CFiResourceManagerPrint, TargetsOfDifferentEnclosuresPrintAlike) {
    EXPECT_EQ(printed({{"dev1", "encA", 0, {{"dev2", "encA", 0}, {"dev2", "encB", 0}}}}),
              (Trace{{4, "CFiResourceManager::print : printing resource set"},
                     {4, "[encA:dev1](Available)"},
                     {4, "{dev2,Available}"},
                     {4, "{dev2,Available}"}}));
}

TEST(CFiResourceManagerPrint, PercentSignsInNamesArePrintedAsTheyStand) {
    EXPECT_EQ(printed({{"%s", "%n", 0, {{"100%d", "e", 0}}}}),
              (Trace{{4, "CFiResourceManager::print : printing resource set"},
                     {4, "[%n:%s](Available)"},
                     {4, "{100%d,Available}"}}));
}

}  // namespace
