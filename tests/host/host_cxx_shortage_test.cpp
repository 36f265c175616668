// Each allocation of a rotation fails in turn, those of the host library included.

#include <cstddef>
#include <new>
#include <string>
#include <vector>

#include <fi_rotation/host.hpp>

#include <gtest/gtest.h>

#include "tests/contract/Shortage.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotation::EOutcome;
using fi_rotation::SBackup;
using fi_rotation::SOutcome;
using fi_test::EShortage;

constexpr const char* kConfiguration = "A##x;1";

SOutcome rotate(const std::vector<SBackup>& backups) {
    fi_rotation::SOptions options;
    options.reasons = true;
    return fi_rotation::rotate(kConfiguration, backups, options);
}

class HostInCxxShortage : public testing::TestWithParam<EShortage> {
protected:
    // Sets up what the library keeps for the whole process.
    void SetUp() override { ASSERT_EQ(rotate(backups).kind, EOutcome::kSelected); }

    const fi_test::CTemporaryFolder folder;
    const std::vector<SBackup> backups{{folder.write("a", "<Node><timeStamp>1</timeStamp></Node>")}};
};

TEST_P(HostInCxxShortage, IsABadAllocAndTheNextRotationWorks) {
    std::size_t shortages = 0;
    for (std::size_t failing = 1; failing == 1 || fi_test::hasBeenShort(); ++failing) {
        fi_test::startShortage(GetParam(), failing);
        try {
            const SOutcome outcome = rotate(backups);
            fi_test::endShortage();
            EXPECT_EQ(outcome.selection, "[A##x;A##1]") << "allocation " << failing;
        } catch (const std::bad_alloc&) {
            fi_test::endShortage();
            ++shortages;
            ASSERT_EQ(fi_rotation::rotate(kConfiguration, backups).selection, "[A##x;A##1]")
                << "after allocation " << failing;
        }
    }
    EXPECT_GT(shortages, 0U);
}

// No document is read, because the XML library forgets to free blocks when memory runs out.
TEST_P(HostInCxxShortage, LosesNothing) {
    const std::vector<SBackup> missing{{folder.path("missing")}};
    std::size_t shortages = 0;
    for (std::size_t failing = 1; failing == 1 || fi_test::hasBeenShort(); ++failing) {
        fi_test::startShortage(GetParam(), failing);
        try {
            const SOutcome outcome = rotate(missing);
            fi_test::endShortage();
            EXPECT_EQ(outcome.kind, EOutcome::kRefused) << "allocation " << failing;
        } catch (const std::bad_alloc&) {
            fi_test::endShortage();
            ++shortages;
        }
        ASSERT_EQ(fi_test::blocksLeftByShortage(), 0U) << "allocation " << failing;
    }
    EXPECT_GT(shortages, 0U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, HostInCxxShortage,
                         testing::Values(EShortage::kOfOneBlock, EShortage::kLasting), [](const auto& kind) {
                             return kind.param == EShortage::kOfOneBlock ? "OfOneBlock" : "Lasting";
                         });

}  // namespace
