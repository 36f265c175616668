#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host_library/HostCall.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_test {

// Two targets, so that a call with one whole backup has a selection.
inline constexpr const char* kConfiguration = "encA##lun1;snap1;snap2";

class CHostLibraryTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder.path(name); }
    std::string write(const std::string& name, const std::string& content) const {
        return folder.write(name, content);
    }
    // The document of a backup that holds a further target of encA##lun1.
    std::string holder(const std::string& name, const std::string& further,
                       const std::string& timeStamp = "1") const {
        return write(name, documentOf(timeStamp, {{"encA##lun1", "encA##" + further}}));
    }

    static void expectNothingDecided(const fi_rotation_call* call) {
        EXPECT_EQ(fi_rotation_call_selection(call), nullptr);
        EXPECT_EQ(fi_rotation_call_configuration_count(call), 0);
        for (std::int32_t i = 0; i < fi_rotation_call_backup_count(call); ++i) {
            EXPECT_EQ(fi_rotation_call_backup_state(call, i), FI_ROTATION_NO_STATE);
            EXPECT_EQ(fi_rotation_call_backup_reason(call, i), nullptr);
            EXPECT_EQ(fi_rotation_call_backup_target_count(call, i), 0);
        }
    }

    // Runs the call, and expects that it is refused with exactly these problems (kind and backup).
    static void expectRefused(fi_rotation_call* call,
                              const std::vector<std::pair<std::uint32_t, std::int32_t>>& expected) {
        EXPECT_EQ(fi_rotation_call_run(call), FI_ROTATION_REFUSED) << fi_rotation_call_message(call);
        expectNothingDecided(call);
        std::vector<std::pair<std::uint32_t, std::int32_t>> found;
        for (const SHostProblem& problem : problemsOf(call)) {
            found.emplace_back(problem.kind, problem.backup);
            EXPECT_THAT(fi_rotation_call_message(call), testing::HasSubstr(problem.text));
            if (problem.backup >= 0) {
                EXPECT_THAT(problem.text,
                            testing::HasSubstr(fi_rotation_call_backup_file(call, problem.backup)));
                EXPECT_NE(fi_rotation_call_backup_problems(call, problem.backup) & problem.kind, 0U);
            }
        }
        EXPECT_EQ(found, expected) << fi_rotation_call_message(call);
    }

    // Runs a call with this file alone, expects that it is refused for this kind of problem, and returns its
    // text.
    static std::string textOfRefusal(const std::string& file, std::uint32_t kind) {
        const HostCall call = newCall(kConfiguration, {file});
        expectRefused(call.get(), {{kind, 0}});
        return fi_rotation_call_problem_count(call.get()) > 0 ? fi_rotation_call_problem_text(call.get(), 0)
                                                              : "";
    }

    CTemporaryFolder folder;
};

}  // namespace fi_test
