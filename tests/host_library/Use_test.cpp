// How the functions work when they are used rightly and wrongly, and what they say of a decision.

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/host_library/Fixture.h"

namespace fi_test {
namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

class CHostLibraryUse : public CHostLibraryTest {
protected:
    // Both targets are held, so the older backup is released.
    HostCall rotation() const {
        return newCall(kConfiguration, {holder("new.xml", "snap2", "2"), holder("old.xml", "snap1", "1")});
    }
};

void expectNothing(const fi_rotation_call* call, std::int32_t index) {
    EXPECT_EQ(fi_rotation_call_problem_kind(call, index), 0U);
    EXPECT_EQ(fi_rotation_call_problem_backup(call, index), -1);
    EXPECT_EQ(fi_rotation_call_problem_text(call, index), nullptr);
    EXPECT_EQ(fi_rotation_call_configuration_first(call, index), nullptr);
    EXPECT_EQ(fi_rotation_call_configuration_chosen(call, index), nullptr);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call, index), -1);
    EXPECT_EQ(fi_rotation_call_target_count(call, index), 0);
    EXPECT_EQ(fi_rotation_call_target(call, index, 0), nullptr);
    EXPECT_EQ(fi_rotation_call_target(call, 0, index), nullptr);
    EXPECT_EQ(fi_rotation_call_target_holder(call, index, 0), -1);
    EXPECT_EQ(fi_rotation_call_target_holder(call, 0, index), -1);
    EXPECT_EQ(fi_rotation_call_backup_file(call, index), nullptr);
    EXPECT_EQ(fi_rotation_call_backup_problems(call, index), 0U);
    EXPECT_EQ(fi_rotation_call_backup_state(call, index), FI_ROTATION_NO_STATE);
    EXPECT_EQ(fi_rotation_call_backup_time_stamp(call, index), nullptr);
    EXPECT_EQ(fi_rotation_call_backup_target_count(call, index), 0);
    EXPECT_EQ(fi_rotation_call_backup_target(call, index, 0), nullptr);
    EXPECT_EQ(fi_rotation_call_backup_target(call, 0, index), nullptr);
    EXPECT_EQ(fi_rotation_call_backup_reason(call, index), nullptr);
    EXPECT_EQ(fi_rotation_call_backup_reason_text(call, index), nullptr);
}

void expectNothingAtAll(const fi_rotation_call* call) {
    for (const std::int32_t index : {-1, 0, 1, kLargest, kSmallest}) {
        expectNothing(call, index);
    }
    EXPECT_EQ(fi_rotation_call_selection(call), nullptr);
    EXPECT_EQ(fi_rotation_call_problem_count(call), 0);
    EXPECT_EQ(fi_rotation_call_configuration_count(call), 0);
    EXPECT_EQ(fi_rotation_call_backup_count(call), 0);
    EXPECT_STRNE(fi_rotation_call_message(call), nullptr);
}

TEST_F(CHostLibraryUse, VersionHasTheThreeNumbersOfTheHeader) {
    EXPECT_EQ(fi_rotation_version(), std::to_string(FI_ROTATION_VERSION_MAJOR) + "." +
                                         std::to_string(FI_ROTATION_VERSION_MINOR) + "." +
                                         std::to_string(FI_ROTATION_VERSION_PATCH));
}

TEST_F(CHostLibraryUse, TakesANullPointerForACallWithoutMemory) {
    EXPECT_EQ(fi_rotation_call_run(nullptr), FI_ROTATION_OUT_OF_MEMORY);
    EXPECT_EQ(fi_rotation_call_add(nullptr, "a.xml", 0), -1);
    fi_rotation_call_permit(nullptr, kEveryProblem);
    fi_rotation_call_limit_document(nullptr, 1);
    fi_rotation_call_keep_at_least(nullptr, 1);
    fi_rotation_call_ask_reasons(nullptr, 1);
    fi_rotation_call_set_trace(nullptr, 4, nullptr, nullptr);
    fi_rotation_call_free(nullptr);
    expectNothingAtAll(nullptr);
}

TEST_F(CHostLibraryUse, KnowsNothingBeforeTheFirstRun) {
    expectNothingAtAll(newCall(kConfiguration).get());
}

TEST_F(CHostLibraryUse, GivesNothingForAnIndexOutOfRange) {
    const HostCall decided = rotation();
    fi_rotation_call_ask_reasons(decided.get(), 1);
    ASSERT_EQ(fi_rotation_call_run(decided.get()), FI_ROTATION_SELECTED);
    const HostCall refused = newCall("", {path("missing.xml")});
    ASSERT_EQ(fi_rotation_call_run(refused.get()), FI_ROTATION_REFUSED);
    for (const std::int32_t index : {-1, 2, kLargest, kSmallest}) {
        expectNothing(decided.get(), index);
        expectNothing(refused.get(), index);
    }
    EXPECT_EQ(fi_rotation_call_configuration_first(decided.get(), 1), nullptr);
}

TEST_F(CHostLibraryUse, CopiesWhatItIsGiven) {
    std::string configuration = kConfiguration;
    std::string file = holder("a.xml", "snap1");
    const std::string original = file;
    const HostCall call = newCall(configuration, {file});
    configuration.assign(configuration.size(), 'x');
    file.assign(file.size(), 'x');
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_backup_file(call.get(), 0), original);
}

TEST_F(CHostLibraryUse, RunsAgainAndAgain) {
    const HostCall call = rotation();
    const SHostAnswer first = answerOf(call.get());
    EXPECT_EQ(first.selection, "[encA##lun1;encA##snap1]");
    EXPECT_THAT(first.states, testing::ElementsAre(FI_ROTATION_KEPT, FI_ROTATION_ROTATED));
    EXPECT_TRUE(answerOf(call.get()) == first);
}

TEST_F(CHostLibraryUse, TakesFurtherBackupsAfterARun) {
    const HostCall call = newCall(kConfiguration);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap1]");
    EXPECT_EQ(fi_rotation_call_add(call.get(), holder("a.xml", "snap1").c_str(), 0), 0);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_NO_STATE);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap1]");
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap2]");
}

TEST_F(CHostLibraryUse, DecidesNothingOnceABackupCouldNotBeAdded) {
    const HostCall call = newCall(kConfiguration);
    EXPECT_EQ(fi_rotation_call_add(call.get(), nullptr, 0), -1);
    EXPECT_EQ(fi_rotation_call_add(call.get(), holder("a.xml", "snap1").c_str(), 0), 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_OUT_OF_MEMORY);
        expectNothingDecided(call.get());
    }
}

TEST_F(CHostLibraryUse, ReplacesADecisionByARefusal) {
    const std::string file = holder("a.xml", "snap1");
    const HostCall call = newCall(kConfiguration, {file});
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    write("a.xml", "<Node>");
    expectRefused(call.get(), {{FI_ROTATION_NOT_WELL_FORMED, 0}});
}

TEST_F(CHostLibraryUse, HandsNamesOnByteForByte) {
    const std::string name = "100%s\n\xFF [b].xml";
    const HostCall call = newCall("enc\xFF%n##l[u]n;a][b;sn<ap", {holder(name, "x")});
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_backup_file(call.get(), 0), path(name));
    EXPECT_STREQ(fi_rotation_call_configuration_first(call.get(), 0), "enc\xFF%n##l[u]n");
    EXPECT_STREQ(fi_rotation_call_configuration_chosen(call.get(), 0), "enc\xFF%n##a][b");
}

TEST_F(CHostLibraryUse, ExcludesForEveryNumberButZero) {
    for (const std::int32_t excluded : {0, 1, 4, -1, kSmallest}) {
        const HostCall call = newCall("encA##lun1;snap1");
        fi_rotation_call_add(call.get(), holder("a.xml", "snap1").c_str(), excluded);
        EXPECT_EQ(fi_rotation_call_run(call.get()),
                  excluded == 0 ? FI_ROTATION_SELECTED : FI_ROTATION_NO_FREE_TARGET)
            << excluded;
    }
}

TEST_F(CHostLibraryUse, NamesTheHoldersOfTargetsWhenNoTargetIsFree) {
    const HostCall call = newCall("encA##lun1;snap1&encB##lun2;snap2&encC##lun3");
    fi_rotation_call_add(call.get(), holder("kept.xml", "snap1", "2").c_str(), 1);
    const std::string other = write("other.xml", documentOf("1", {{"encB##lun2", "encB##snap2"}}));
    fi_rotation_call_add(call.get(), other.c_str(), 0);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_NO_FREE_TARGET);
    EXPECT_EQ(fi_rotation_call_selection(call.get()), nullptr);
    EXPECT_THAT(
        fi_rotation_call_message(call.get()),
        testing::AllOf(testing::HasSubstr("encA##lun1"), testing::HasSubstr(path("kept.xml")),
                       testing::HasSubstr("encC##lun3"), testing::Not(testing::HasSubstr("encB##lun2"))));
    ASSERT_EQ(fi_rotation_call_configuration_count(call.get()), 3);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 0), 1);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 0), 0);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 1), 0);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 1, 0), -1);
    EXPECT_STREQ(fi_rotation_call_target(call.get(), 1, 0), "encB##snap2");
    EXPECT_EQ(fi_rotation_call_target_count(call.get(), 2), 0);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_NO_STATE);
    EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), 0), "excluded");
    EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), 1), "needed");
    EXPECT_STREQ(fi_rotation_call_backup_target(call.get(), 1, 0), "encB##snap2");
}

TEST_F(CHostLibraryUse, GivesReasonsOnlyWhenAskedForThem) {
    const HostCall call = rotation();
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 0), -1);
    EXPECT_EQ(fi_rotation_call_target_count(call.get(), 0), 0);
    EXPECT_EQ(fi_rotation_call_backup_reason(call.get(), 0), nullptr);
    EXPECT_EQ(fi_rotation_call_backup_time_stamp(call.get(), 0), nullptr);
    EXPECT_STREQ(fi_rotation_call_configuration_chosen(call.get(), 0), "encA##snap1");
    fi_rotation_call_ask_reasons(call.get(), kSmallest);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 0), 1);
    EXPECT_EQ(fi_rotation_call_target_count(call.get(), 0), 2);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 0), -1);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 1), 0);
    EXPECT_STREQ(fi_rotation_call_backup_time_stamp(call.get(), 0), "2");
    EXPECT_STREQ(fi_rotation_call_backup_target(call.get(), 1, 0), "encA##snap1");
    fi_rotation_call_ask_reasons(call.get(), 0);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_backup_reason(call.get(), 0), nullptr);
}

TEST_F(CHostLibraryUse, GivesEachStateItsReason) {
    const HostCall call = newCall("encA##lun1;snap1;snap2&encB##lun2;snap3;snap4");
    fi_rotation_call_ask_reasons(call.get(), 1);
    const struct {
        std::string file, text;
        std::int32_t excluded;
        fi_rotation_state state;
        const char* reason;
    } kBackups[] = {
        {"newest", documentOf("9", {{"encA##lun1", "encA##snap1"}}), 0, FI_ROTATION_KEPT, "rotation_stopped"},
        {"loser", documentOf("8", {{"encA##lun1", "encA##snap1"}}), 0, FI_ROTATION_INVALID, "held_already"},
        {"target", documentOf("7", {{"encA##lun1", "encA##none"}}), 0, FI_ROTATION_INVALID, "unknown_target"},
        {"foreign", documentOf("6", {{"encZ##z", "encZ##s"}}), 0, FI_ROTATION_INVALID,
         "unknown_configuration"},
        {"oldest", documentOf("1", {{"encA##lun1", "encA##snap2"}}), 0, FI_ROTATION_ROTATED, "needed"},
        {"excluded", documentOf("0", {{"encB##lun2", "encB##snap3"}}), 1, FI_ROTATION_KEPT, "excluded"},
    };
    for (const auto& backup : kBackups) {
        fi_rotation_call_add(call.get(), write(backup.file, backup.text).c_str(), backup.excluded);
    }
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    for (std::int32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(fi_rotation_call_backup_state(call.get(), i), kBackups[i].state) << kBackups[i].file;
        EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), i), kBackups[i].reason) << kBackups[i].file;
        EXPECT_THAT(fi_rotation_call_backup_reason_text(call.get(), i), testing::MatchesRegex(".*[^.]"))
            << kBackups[i].file;
    }
    EXPECT_EQ(fi_rotation_call_backup_time_stamp(call.get(), 3), nullptr);
}

TEST_F(CHostLibraryUse, TellsTheNewestHolderFromABackupThatHoldsNothing) {
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), write("b.xml", "<Node/>")});
    fi_rotation_call_ask_reasons(call.get(), 1);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), 0), "newest_holder");
    EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), 1), "holds_nothing");
    EXPECT_EQ(fi_rotation_call_backup_time_stamp(call.get(), 1), nullptr);
}

TEST_F(CHostLibraryUse, KeepsAsManyBackupsAsItIsAsked) {
    // One of two is left.
    const struct {
        std::int32_t least;
        fi_rotation_outcome outcome;
    } kCases[] = {{kSmallest, FI_ROTATION_SELECTED}, {0, FI_ROTATION_SELECTED},
                  {1, FI_ROTATION_SELECTED},         {2, FI_ROTATION_TOO_FEW_BACKUPS},
                  {3, FI_ROTATION_TOO_FEW_BACKUPS},  {kLargest, FI_ROTATION_TOO_FEW_BACKUPS}};
    for (const auto& one : kCases) {
        const HostCall call = rotation();
        fi_rotation_call_keep_at_least(call.get(), one.least);
        EXPECT_EQ(fi_rotation_call_run(call.get()), one.outcome) << one.least;
    }
}

TEST_F(CHostLibraryUse, SaysHowManyBackupsWouldBeLeftAndWhyWhenTheyAreTooFew) {
    const HostCall call = rotation();
    fi_rotation_call_keep_at_least(call.get(), 2);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_TOO_FEW_BACKUPS);
    EXPECT_EQ(fi_rotation_call_selection(call.get()), nullptr);
    EXPECT_EQ(fi_rotation_call_problem_count(call.get()), 0);
    ASSERT_EQ(fi_rotation_call_configuration_count(call.get()), 1);
    EXPECT_STREQ(fi_rotation_call_configuration_first(call.get(), 0), "encA##lun1");
    EXPECT_EQ(fi_rotation_call_configuration_chosen(call.get(), 0), nullptr);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 0), 1);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 0), -1);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 1), 0);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_NO_STATE);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 1), FI_ROTATION_NO_STATE);
    EXPECT_STREQ(fi_rotation_call_backup_time_stamp(call.get(), 0), "2");
    EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), 1), "needed");
    EXPECT_THAT(fi_rotation_call_backup_reason_text(call.get(), 1),
                testing::StartsWith("would be released "));
    EXPECT_EQ(fi_rotation_call_backup_target_count(call.get(), 1), 1);
    EXPECT_THAT(fi_rotation_call_message(call.get()), testing::HasSubstr("encA##lun1"));
    fi_rotation_call_keep_at_least(call.get(), 0);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryUse, GivesReasonsUnaskedWhenTooFewBackupsWouldBeLeft) {
    const HostCall call = rotation();
    fi_rotation_call_keep_at_least(call.get(), 2);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_TOO_FEW_BACKUPS);
    EXPECT_STREQ(fi_rotation_call_backup_reason(call.get(), 1), "needed");
    EXPECT_STREQ(fi_rotation_call_backup_time_stamp(call.get(), 1), "1");
    ASSERT_EQ(fi_rotation_call_backup_target_count(call.get(), 1), 1);
    EXPECT_STREQ(fi_rotation_call_backup_target(call.get(), 1, 0), "encA##snap1");
}

TEST_F(CHostLibraryUse, LetsAConfigurationWithFewerBackupsLoseNone) {
    const HostCall loses = newCall("encA##lun1;snap1", {holder("a.xml", "snap1")});
    fi_rotation_call_keep_at_least(loses.get(), 1);
    EXPECT_EQ(fi_rotation_call_run(loses.get()), FI_ROTATION_TOO_FEW_BACKUPS);
    const HostCall hasRoom = newCall("encA##lun1;snap1;snap2", {holder("a.xml", "snap1")});
    fi_rotation_call_keep_at_least(hasRoom.get(), kLargest);
    EXPECT_EQ(fi_rotation_call_run(hasRoom.get()), FI_ROTATION_SELECTED);
    const HostCall hasNone = newCall("encA##lun1;snap1");
    fi_rotation_call_keep_at_least(hasNone.get(), kLargest);
    EXPECT_EQ(fi_rotation_call_run(hasNone.get()), FI_ROTATION_SELECTED);
}

// encA##lun1 has no free target. The release that frees one takes a backup from both configurations, and
// leaves none to encA##lun1.
TEST_F(CHostLibraryUse, KeepsBackupsOfEveryConfiguration) {
    const std::string both =
        write("both.xml", documentOf("1", {{"encA##lun1", "encA##snap1"}, {"encB##lun2", "encB##s1"}}));
    const std::string newer = write("newer.xml", documentOf("2", {{"encB##lun2", "encB##s2"}}));
    const HostCall call = newCall("encA##lun1;snap1&encB##lun2;s1;s2;s3", {both, newer});
    fi_rotation_call_keep_at_least(call.get(), 1);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_TOO_FEW_BACKUPS);
    EXPECT_THAT(fi_rotation_call_message(call.get()),
                testing::AllOf(testing::HasSubstr("encA##lun1"), testing::Not(testing::HasSubstr("encB"))));
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 0), 0);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 1), 1);
}

// A backup that lost a target to a newer one is invalid, so it is not counted, although it holds other
// targets.
TEST_F(CHostLibraryUse, CountsInvalidBackupsForNoConfiguration) {
    const std::string part =
        write("part.xml", documentOf("1", {{"encA##lun1", "encA##snap1"}, {"encB##lun2", "encB##s1"}}));
    const std::string newer = write("newer.xml", documentOf("2", {{"encB##lun2", "encB##s1"}}));
    const HostCall call = newCall("encA##lun1;snap1;snap2&encB##lun2;s1;s2", {part, newer});
    fi_rotation_call_ask_reasons(call.get(), 1);
    fi_rotation_call_keep_at_least(call.get(), 1);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_backup_state(call.get(), 0), FI_ROTATION_INVALID);
    EXPECT_EQ(fi_rotation_call_target_holder(call.get(), 0, 0), 0);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 0), 0);
    EXPECT_EQ(fi_rotation_call_configuration_kept(call.get(), 1), 1);
}

}  // namespace
}  // namespace fi_test
