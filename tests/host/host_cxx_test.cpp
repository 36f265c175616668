// The interface of the host library in C++, as hosts use it: with the public headers and the library only.

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <future>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fi_rotation/host.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotation::EOutcome;
using fi_rotation::EProblem;
using fi_rotation::EState;
using fi_rotation::rotate;
using fi_rotation::SBackup;
using fi_rotation::SOptions;
using fi_rotation::SOutcome;
using fi_rotation::SProblem;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;

// The document of a backup that holds one further target of the configuration of A##x.
std::string document(const std::string& timeStamp, const std::string& further) {
    return "<Node><timeStamp>" + timeStamp +
           "</timeStamp><objid>UDID##v##m##A##x</objid><altobjid>UDID##v##m##" + further +
           "</altobjid></Node>\n";
}

auto isProblem(EProblem kind, std::optional<std::size_t> backup, const std::string& text) {
    return AllOf(Field(&SProblem::kind, kind), Field(&SProblem::backup, backup),
                 Field(&SProblem::text, HasSubstr(text)));
}

class HostInCxx : public testing::Test {
protected:
    // Two targets, and a backup in each.
    const std::string configuration = "A##x;1;2";
    const fi_test::CTemporaryFolder folder;
    const std::string older = folder.write("older", document("1", "A##1"));
    const std::string newer = folder.write("newer", document("2", "A##2"));
};

TEST_F(HostInCxx, FirstBackupTakesTheFirstTarget) {
    const SOutcome outcome = rotate(configuration, {});
    EXPECT_EQ(outcome.kind, EOutcome::kSelected);
    EXPECT_EQ(outcome.selection, "[A##x;A##1]");
    EXPECT_THAT(outcome.backups, IsEmpty());
    EXPECT_THAT(outcome.problems, IsEmpty());
}

TEST_F(HostInCxx, BackupsHaveTheirStatesInTheOrderGiven) {
    const std::string foreign = folder.write("foreign", document("3", "B##9"));
    const SOutcome outcome = rotate(configuration, {{newer}, {foreign}, {older}});
    EXPECT_EQ(outcome.kind, EOutcome::kSelected);
    EXPECT_EQ(outcome.selection, "[A##x;A##1]");
    EXPECT_EQ(outcome.message, "every configuration has a free target");
    ASSERT_THAT(outcome.backups, SizeIs(3));
    EXPECT_EQ(outcome.backups[0].file, newer);
    EXPECT_EQ(outcome.backups[0].state, EState::kKept);
    EXPECT_EQ(outcome.backups[1].file, foreign);
    EXPECT_EQ(outcome.backups[1].state, EState::kInvalid);
    EXPECT_EQ(outcome.backups[2].file, older);
    EXPECT_EQ(outcome.backups[2].state, EState::kRotated);
}

TEST_F(HostInCxx, ConfigurationsHaveTheirChosenTargets) {
    const SOutcome outcome = rotate("A##x;1;2&B##y;C##3", {});
    ASSERT_THAT(outcome.configurations, SizeIs(2));
    EXPECT_EQ(outcome.configurations[0].first, "A##x");
    EXPECT_EQ(outcome.configurations[0].chosen, "A##1");
    EXPECT_EQ(outcome.configurations[1].first, "B##y");
    EXPECT_EQ(outcome.configurations[1].chosen, "C##3");
}

TEST_F(HostInCxx, ExcludedBackupIsNotReleased) {
    const SOutcome outcome = rotate(configuration, {{older, true}, {newer}});
    EXPECT_EQ(outcome.selection, "[A##x;A##2]");
    EXPECT_EQ(outcome.backups.at(0).state, EState::kKept);
    EXPECT_EQ(outcome.backups.at(1).state, EState::kRotated);
}

TEST_F(HostInCxx, WithoutAFreeTargetTheHoldersAreNamed) {
    const SOutcome outcome = rotate(configuration, {{older, true}, {newer, true}});
    EXPECT_EQ(outcome.kind, EOutcome::kNoFreeTarget);
    EXPECT_THAT(outcome.message, AllOf(HasSubstr(older), HasSubstr(newer)));
    EXPECT_EQ(outcome.selection, std::nullopt);
    EXPECT_EQ(outcome.backups.at(0).state, std::nullopt);
    ASSERT_THAT(outcome.configurations, SizeIs(1));
    EXPECT_EQ(outcome.configurations[0].chosen, std::nullopt);
    EXPECT_THAT(outcome.configurations[0].kept, Optional(2U));
    ASSERT_THAT(outcome.configurations[0].targets, SizeIs(2));
    EXPECT_EQ(outcome.configurations[0].targets[0].name, "A##1");
    EXPECT_THAT(outcome.configurations[0].targets[0].holder, Optional(0U));
    EXPECT_THAT(outcome.configurations[0].targets[1].holder, Optional(1U));
}

TEST_F(HostInCxx, BackupsThatAreToBeKeptAreNotGivenUp) {
    SOptions options;
    options.keepAtLeast = 2;
    const SOutcome outcome = rotate(configuration, {{older}, {newer}}, options);
    EXPECT_EQ(outcome.kind, EOutcome::kTooFewBackups);
    EXPECT_EQ(outcome.selection, std::nullopt);
    EXPECT_THAT(outcome.message, HasSubstr("A##x"));
    ASSERT_THAT(outcome.configurations, SizeIs(1));
    EXPECT_THAT(outcome.configurations[0].kept, Optional(1U));
}

TEST_F(HostInCxx, RefusalNamesEveryProblemAndItsBackup) {
    const std::string missing = folder.path("missing");
    const std::string torn = folder.write("torn", "<Node><timeStamp>1</timeStamp>");
    const SOutcome outcome = rotate(configuration + "&B##y;3&lonely", {{missing}, {newer}, {torn}});
    EXPECT_EQ(outcome.kind, EOutcome::kRefused);
    EXPECT_EQ(outcome.selection, std::nullopt);
    EXPECT_THAT(outcome.problems,
                ElementsAre(isProblem(EProblem::kConfigurationRejected, std::nullopt, "lonely"),
                            isProblem(EProblem::kCannotOpen, 0, missing),
                            isProblem(EProblem::kNotWellFormed, 2, torn)));
    EXPECT_THAT(outcome.message, AllOf(HasSubstr("lonely"), HasSubstr(missing), HasSubstr(torn)));
    EXPECT_THAT(outcome.configurations, IsEmpty());
    ASSERT_THAT(outcome.backups, SizeIs(3));
    EXPECT_THAT(outcome.backups[0].problems, ElementsAre(EProblem::kCannotOpen));
    EXPECT_THAT(outcome.backups[1].problems, IsEmpty());
    EXPECT_EQ(outcome.backups[1].state, std::nullopt);
    EXPECT_THAT(outcome.backups[2].problems, ElementsAre(EProblem::kNotWellFormed));
}

TEST_F(HostInCxx, EveryProblemOfADocumentIsToldOfItsBackup) {
    const std::string twoRoots =
        folder.write("two roots", "<all>" + document("1", "A##1") + document("2", "A##2") + "</all>");
    const SOutcome outcome = rotate(configuration, {{twoRoots}, {twoRoots}});
    ASSERT_THAT(outcome.backups, SizeIs(2));
    EXPECT_THAT(outcome.backups[0].problems, ElementsAre(EProblem::kSeveralRoots));
    EXPECT_THAT(outcome.backups[1].problems, testing::Contains(EProblem::kListedTwice));
}

TEST_F(HostInCxx, PermittedProblemsAreToldAndDoNotRefuse) {
    const std::string noNode = folder.write("no node", "<nothing/>");
    const std::string twoRoots =
        folder.write("two roots", "<all>" + document("1", "A##1") + document("2", "A##2") + "</all>");
    SOptions options;
    options.permitted = {EProblem::kNoNode, EProblem::kSeveralRoots};
    const SOutcome outcome = rotate(configuration, {{noNode}, {twoRoots}}, options);
    EXPECT_EQ(outcome.kind, EOutcome::kSelected);
    EXPECT_EQ(outcome.selection, "[A##x;A##1]");
    EXPECT_THAT(outcome.problems, ElementsAre(isProblem(EProblem::kNoNode, 0, noNode),
                                              isProblem(EProblem::kSeveralRoots, 1, twoRoots)));
    EXPECT_EQ(outcome.backups.at(0).state, std::nullopt);
    EXPECT_EQ(outcome.backups.at(1).state, EState::kKept);
}

TEST_F(HostInCxx, MalformedIdentifierCannotBePermitted) {
    const std::string malformed = folder.write("malformed", "<Node><objid>UDID##v</objid></Node>");
    SOptions options;
    options.permitted = {EProblem::kMalformedIdentifier};
    const SOutcome outcome = rotate(configuration, {{malformed}}, options);
    EXPECT_EQ(outcome.kind, EOutcome::kRefused);
    EXPECT_THAT(outcome.problems, ElementsAre(isProblem(EProblem::kMalformedIdentifier, 0, "UDID##v")));
}

TEST_F(HostInCxx, DocumentAboveTheLimitIsRefused) {
    SOptions options;
    options.documentLimit = document("1", "A##1").size();
    EXPECT_EQ(rotate(configuration, {{older}}, options).kind, EOutcome::kSelected);
    --*options.documentLimit;
    EXPECT_THAT(rotate(configuration, {{older}}, options).problems,
                ElementsAre(isProblem(EProblem::kTooLarge, 0, older)));
}

TEST_F(HostInCxx, WithReasonsEachBackupSaysWhy) {
    SOptions options;
    options.reasons = true;
    const SOutcome outcome = rotate(configuration, {{older}, {newer}}, options);
    ASSERT_THAT(outcome.backups, SizeIs(2));
    EXPECT_EQ(outcome.backups[0].timeStamp, "1");
    ASSERT_TRUE(outcome.backups[0].reason.has_value());
    EXPECT_EQ(outcome.backups[0].reason->word, "needed");
    EXPECT_THAT(outcome.backups[0].targets, ElementsAre("A##1"));
    EXPECT_EQ(outcome.backups[1].timeStamp, "2");
    ASSERT_TRUE(outcome.backups[1].reason.has_value());
    EXPECT_EQ(outcome.backups[1].reason->word, "rotation_stopped");
    EXPECT_EQ(outcome.backups[1].reason->text, "rotation stopped before it; holds A##2");
    EXPECT_THAT(outcome.backups[1].targets, ElementsAre("A##2"));
}

TEST_F(HostInCxx, WithReasonsEachTargetNamesItsHolder) {
    SOptions options;
    options.reasons = true;
    const SOutcome outcome = rotate(configuration, {{older}, {newer}}, options);
    ASSERT_THAT(outcome.configurations, SizeIs(1));
    EXPECT_THAT(outcome.configurations[0].kept, Optional(1U));
    ASSERT_THAT(outcome.configurations[0].targets, SizeIs(2));
    EXPECT_EQ(outcome.configurations[0].targets[0].name, "A##1");
    EXPECT_EQ(outcome.configurations[0].targets[0].holder, std::nullopt);
    EXPECT_EQ(outcome.configurations[0].targets[1].name, "A##2");
    EXPECT_THAT(outcome.configurations[0].targets[1].holder, Optional(1U));
}

TEST_F(HostInCxx, ReasonsAreNotKnownUnlessAskedFor) {
    const SOutcome outcome = rotate(configuration, {{older}});
    EXPECT_EQ(outcome.backups.at(0).timeStamp, std::nullopt);
    EXPECT_FALSE(outcome.backups.at(0).reason.has_value());
    EXPECT_THAT(outcome.backups.at(0).targets, IsEmpty());
    EXPECT_EQ(outcome.configurations.at(0).kept, std::nullopt);
    EXPECT_THAT(outcome.configurations.at(0).targets, IsEmpty());
}

TEST_F(HostInCxx, TraceReceivesTheLinesUpToItsLevel) {
    std::vector<std::string> lines;
    SOptions options;
    options.trace = [&lines](std::int32_t level, std::string_view text) {
        lines.push_back(std::to_string(level) + " " + std::string(text));
    };
    const std::string flagLine = "3 fi_process_backups :  Fiid [" + older + "] exclude rotation flag [0] ";
    options.traceLevel = fi_rotation::kTraceFailures;
    EXPECT_EQ(rotate(configuration, {{older}}, options).kind, EOutcome::kSelected);
    EXPECT_THAT(lines, ElementsAre(flagLine));

    lines.clear();
    options.traceLevel = fi_rotation::kTraceProgress;
    EXPECT_EQ(rotate(configuration, {{older}}, options).kind, EOutcome::kSelected);
    EXPECT_THAT(lines, testing::IsSupersetOf({flagLine, std::string("4 Entering CFiFiidParser::parse")}));
}

struct SOfTheHost {
    int number;
};

TEST_F(HostInCxx, WhatTheTraceThrowsIsThrownToTheCaller) {
    int lines = 0;
    SOptions options;
    options.trace = [&lines](std::int32_t, std::string_view) {
        ++lines;
        throw SOfTheHost{17};
    };
    try {
        (void)rotate(configuration, {{older}}, options);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const SOfTheHost& thrown) {
        EXPECT_EQ(thrown.number, 17);
    }
    EXPECT_EQ(lines, 1);
    EXPECT_EQ(rotate(configuration, {{older}}).selection, "[A##x;A##2]");
}

TEST_F(HostInCxx, RotationFromTheTraceIsALogicError) {
    bool isRefused = false;
    SOptions options;
    options.trace = [&](std::int32_t, std::string_view) {
        try {
            (void)rotate(configuration, {});
        } catch (const std::logic_error&) {
            isRefused = true;
        }
    };
    EXPECT_EQ(rotate(configuration, {{older}}, options).selection, "[A##x;A##2]");
    EXPECT_TRUE(isRefused);
}

TEST_F(HostInCxx, NulByteInTheConfigurationIsAnInvalidArgument) {
    EXPECT_THROW((void)rotate(std::string("A##x;1\0;2", 9), {}), std::invalid_argument);
}

TEST_F(HostInCxx, NulByteInAFileNameIsAnInvalidArgument) {
    EXPECT_THROW((void)rotate(configuration, {{older + std::string("\0.xml", 5)}}), std::invalid_argument);
}

TEST_F(HostInCxx, ThreadsMayCallAtOnce) {
    const auto rotateOften = [this] {
        for (int i = 0; i < 20; ++i) {
            if (rotate(configuration, {{older}, {newer}}).selection != "[A##x;A##1]") {
                return false;
            }
        }
        return true;
    };
    std::future<bool> one = std::async(std::launch::async, rotateOften);
    std::future<bool> other = std::async(std::launch::async, rotateOften);
    EXPECT_TRUE(one.get());
    EXPECT_TRUE(other.get());
}

#ifndef __SANITIZE_ADDRESS__
// Without the undefined-behaviour sanitizer: the end of a thread is caught as an exception without an object,
// which it takes for a null reference.
TEST_F(HostInCxx, ThreadThatEndsInTheTraceLeavesOthersAlone) {
    std::function<void()> run = [this] {
        SOptions options;
        options.trace = [](std::int32_t, std::string_view) { pthread_exit(nullptr); };
        (void)rotate(configuration, {{older}}, options);
    };
    pthread_t thread{};
    ASSERT_EQ(pthread_create(
                  &thread, nullptr,
                  [](void* function) -> void* {
                      (*static_cast<std::function<void()>*>(function))();
                      return function;
                  },
                  &run),
              0);
    void* result = &run;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, nullptr) << "the thread did not end in the trace";
    EXPECT_EQ(rotate(configuration, {{older}}).selection, "[A##x;A##2]");
}
#endif

TEST_F(HostInCxx, ForkWhileAnotherThreadRotatesIsARuntimeErrorInTheChild) {
    std::promise<void> isInTrace;
    std::promise<void> mayEnd;
    std::thread thread([&] {
        bool isFirstLine = true;
        SOptions options;
        options.trace = [&](std::int32_t, std::string_view) {
            if (isFirstLine) {
                isFirstLine = false;
                isInTrace.set_value();
                mayEnd.get_future().wait();
            }
        };
        EXPECT_EQ(rotate(configuration, {{older}}, options).kind, EOutcome::kSelected);
    });
    isInTrace.get_future().wait();
    const pid_t child = fork();
    if (child == 0) {
        try {
            (void)rotate(configuration, {});
        } catch (const std::runtime_error&) {
            _exit(17);
        }
        _exit(1);
    }
    mayEnd.set_value();
    thread.join();
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 17);
}

}  // namespace
