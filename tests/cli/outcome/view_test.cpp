#include "cli/outcome/view.h"

#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fi_rotation/fi_process_backups.h>

#include "tests/host/GivenCall.h"

namespace {

using fi_rotate::EOrder;
using fi_rotate::SBackupOutcome;
using fi_rotate::SOutcome;
using fi_test::accountedOutcome;
using testing::ElementsAre;

class FiRotateView : public fi_test::CGivenCall {
protected:
    std::vector<std::string> filesIn(EOrder order) {
        SOutcome outcome = accountedOutcome(call);
        const std::vector<std::string> stamps{"30", "20", "10", "40", "", "25"};
        for (std::size_t i = 0; i < outcome.backups.size(); ++i) {
            outcome.backups[i].timeStamp = stamps.at(i);
        }
        std::vector<std::string> names;
        for (const SBackupOutcome* const backup : fi_rotate::SView{{}, false, order}.shownBackups(outcome)) {
            names.push_back(backup->given.file.substr(backup->given.file.rfind('/') + 1));
        }
        return names;
    }
};

TEST_F(FiRotateView, OrdersBackupsAsAskedFor) {
    call.configuration = "A##x;1;2;3;4;5";
    give("invalid", "30", {{"A##z", "A##1"}});
    give("next", "20", {{"A##x", "A##2"}});
    give("released", "10", {{"A##x", "A##1"}});
    give("last", "40", {{"A##x", "A##3"}});
    give("excluded", "", {{"A##x", "A##4"}}, FI_EXCLUDE_ROTATION);
    give("excluded later", "25", {{"A##x", "A##5"}}, FI_EXCLUDE_ROTATION);
    EXPECT_THAT(filesIn(EOrder::kArgument),
                ElementsAre("invalid", "next", "released", "last", "excluded", "excluded later"));
    EXPECT_THAT(filesIn(EOrder::kTime),
                ElementsAre("excluded", "released", "next", "excluded later", "invalid", "last"));
    EXPECT_THAT(filesIn(EOrder::kRelease),
                ElementsAre("released", "next", "last", "excluded", "excluded later", "invalid"));
}

}  // namespace
