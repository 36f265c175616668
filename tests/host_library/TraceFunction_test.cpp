// What a trace function may do during a run without harm to the run.

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/host_library/Fixture.h"

namespace fi_test {
namespace {

// Called with the number of the line, from 1.
using LineFunction = std::function<void(int line, int level, const std::string& text)>;

struct SLines {
    LineFunction function;
    int count = 0;
};

void handOn(void* user, std::int32_t level, const char* text) {
    SLines& lines = *static_cast<SLines*>(user);
    ++lines.count;
    if (lines.function) {
        lines.function(lines.count, level, text);
    }
}

class CHostLibraryTraceFunction : public CHostLibraryTest {
protected:
    // A call with two backups, one of which is damaged and permitted, and a rotation.
    HostCall newTracedCall(SLines& lines, std::int32_t level = 4) const {
        HostCall call =
            newCall("encA##lun1;snap1", {holder("a.xml", "snap1", "1"), holder("b.xml", "snap1", "2")});
        fi_rotation_call_set_trace(call.get(), level, handOn, &lines);
        return call;
    }

    int linesOfARun() const {
        SLines lines;
        EXPECT_EQ(fi_rotation_call_run(newTracedCall(lines).get()), FI_ROTATION_SELECTED);
        return lines.count;
    }

    // Runs another call on this thread.
    void expectCallsWork() const {
        const HostCall call = newCall(kConfiguration, {holder("works.xml", "snap1")});
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
        EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap2]");
    }
};

TEST_F(CHostLibraryTraceFunction, ReceivesTheLinesUpToItsLevel) {
    const int all = linesOfARun();
    std::vector<int> levels;
    SLines lines{[&](int /*line*/, int level, const std::string& text) {
        levels.push_back(level);
        EXPECT_THAT(text, testing::Not(testing::HasSubstr("\n")));
    }};
    fi_rotation_call_run(newTracedCall(lines, 3).get());
    EXPECT_THAT(levels, testing::AllOf(testing::Each(3), testing::SizeIs(testing::Lt(all))));
    EXPECT_THAT(levels, testing::Not(testing::IsEmpty()));
    SLines none;
    fi_rotation_call_run(newTracedCall(none, 2).get());
    EXPECT_EQ(none.count, 0);
    SLines more;
    fi_rotation_call_run(newTracedCall(more, 5).get());
    EXPECT_EQ(more.count, all);
}

TEST_F(CHostLibraryTraceFunction, IsNotCalledOnceItIsTakenBack) {
    SLines lines;
    const HostCall call = newTracedCall(lines);
    fi_rotation_call_set_trace(call.get(), 4, nullptr, nullptr);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(lines.count, 0);
}

TEST_F(CHostLibraryTraceFunction, ReceivesEachLineOnceAlthoughTheRotationRunsTwice) {
    std::vector<std::string> texts;
    SLines lines{[&](int /*line*/, int /*level*/, const std::string& text) { texts.push_back(text); }};
    const HostCall call = newCall("encA##lun1;snap1");
    fi_rotation_call_add(call.get(), holder("a.xml", "snap1").c_str(), 1);
    fi_rotation_call_set_trace(call.get(), 4, handOn, &lines);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_NO_FREE_TARGET);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Entering CFiFiidParser::parse"), 1);
}

TEST_F(CHostLibraryTraceFunction, ThatThrowsAtAnyLineEndsTheRunAndIsNotCalledAgain) {
    const int all = linesOfARun();
    for (int failing = 1; failing <= all; ++failing) {
        SLines lines{[&](int line, int /*level*/, const std::string& /*text*/) {
            if (line == failing) {
                throw std::runtime_error("of the trace function");
            }
        }};
        const HostCall call = newTracedCall(lines);
        ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_TRACE_FAILED) << failing;
        ASSERT_EQ(lines.count, failing);
        expectNothingDecided(call.get());
    }
    expectCallsWork();
}

TEST_F(CHostLibraryTraceFunction, ThatThrowsLeavesNoProblemOfTheRunBefore) {
    const HostCall call = newCall("encA##lun1;snap1", {write("a.xml", "<Node>")});
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_REFUSED);
    ASSERT_NE(fi_rotation_call_backup_problems(call.get(), 0), 0U);
    SLines lines{[](int /*line*/, int /*level*/, const std::string& /*text*/) { throw 1; }};
    fi_rotation_call_set_trace(call.get(), 4, handOn, &lines);
    ASSERT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_TRACE_FAILED);
    EXPECT_EQ(fi_rotation_call_backup_problems(call.get(), 0), 0U);
}

TEST_F(CHostLibraryTraceFunction, ThatThrowsAnythingEndsTheRun) {
    const std::vector<std::function<void()>> kThrowing = {[] { throw 1; }, [] { throw std::bad_alloc(); },
                                                          [] { throw std::string("text"); }};
    for (const auto& throwing : kThrowing) {
        SLines lines{[&](int /*line*/, int /*level*/, const std::string& /*text*/) { throwing(); }};
        EXPECT_EQ(fi_rotation_call_run(newTracedCall(lines).get()), FI_ROTATION_TRACE_FAILED);
    }
}

TEST_F(CHostLibraryTraceFunction, CannotRunItsOwnCall) {
    HostCall call;
    SLines lines{[&](int /*line*/, int /*level*/, const std::string& /*text*/) {
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_MISUSED);
    }};
    call = newTracedCall(lines);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap1]");
}

TEST_F(CHostLibraryTraceFunction, CannotRunAnotherCall) {
    const HostCall other = newCall(kConfiguration);
    SLines lines{[&](int /*line*/, int /*level*/, const std::string& /*text*/) {
        EXPECT_EQ(fi_rotation_call_run(other.get()), FI_ROTATION_MISUSED);
        expectNothingDecided(other.get());
    }};
    EXPECT_EQ(fi_rotation_call_run(newTracedCall(lines).get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_run(other.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryTraceFunction, CannotChangeItsOwnCall) {
    HostCall call;
    const std::string third = holder("c.xml", "snap1", "3");
    SLines lines{[&](int /*line*/, int /*level*/, const std::string& /*text*/) {
        EXPECT_EQ(fi_rotation_call_add(call.get(), third.c_str(), 0), -1);
        fi_rotation_call_permit(call.get(), kEveryProblem);
        fi_rotation_call_limit_document(call.get(), 0);
        fi_rotation_call_keep_at_least(call.get(), 9);
        fi_rotation_call_set_trace(call.get(), 4, nullptr, nullptr);
    }};
    const int all = linesOfARun();
    call = newTracedCall(lines);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(lines.count, all);
    EXPECT_EQ(fi_rotation_call_backup_count(call.get()), 2);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(lines.count, 2 * all);
}

TEST_F(CHostLibraryTraceFunction, MayFreeItsOwnCallAtAnyLine) {
    const int all = linesOfARun();
    for (int at = 1; at <= all; ++at) {
        fi_rotation_call* call = nullptr;
        SLines lines{[&](int line, int /*level*/, const std::string& /*text*/) {
            if (line == at) {
                fi_rotation_call_free(call);
            }
        }};
        call = newTracedCall(lines).release();
        ASSERT_EQ(fi_rotation_call_run(call), FI_ROTATION_SELECTED);
        ASSERT_EQ(lines.count, all);
    }
}

TEST_F(CHostLibraryTraceFunction, SeesNothingOfTheFormerRun) {
    HostCall call;
    SLines lines{[&](int /*line*/, int /*level*/, const std::string& /*text*/) {
        EXPECT_EQ(fi_rotation_call_selection(call.get()), nullptr);
    }};
    call = newTracedCall(lines);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryTraceFunction, SeesNoDescriptorThatAProgramWouldInherit) {
    const auto inherited = [] {
        std::vector<int> descriptors;
        for (int descriptor = 0; descriptor < 256; ++descriptor) {
            const int flags = fcntl(descriptor, F_GETFD);
            if (flags >= 0 && (flags & FD_CLOEXEC) == 0) {
                descriptors.push_back(descriptor);
            }
        }
        return descriptors;
    };
    const std::vector<int> before = inherited();
    SLines lines{
        [&](int /*line*/, int /*level*/, const std::string& /*text*/) { EXPECT_EQ(inherited(), before); }};
    fi_rotation_call_run(newTracedCall(lines).get());
    EXPECT_EQ(inherited(), before);
}

#ifndef __SANITIZE_ADDRESS__
// A trace function must not end its thread, but when it does, other threads go on. Not under the
// undefined-behaviour sanitizer: the end of a thread is caught as an exception without an object, which it
// takes for a null reference.

// Ends a thread at this line of a run.
void endThreadAtLine(const std::function<HostCall(SLines&)>& makeCall, int at) {
    struct SThread {
        const std::function<HostCall(SLines&)>& makeCall;
        int at;
    } thread{makeCall, at};
    pthread_t id{};
    const auto body = [](void* argument) -> void* {
        const SThread& own = *static_cast<SThread*>(argument);
        SLines lines{[&own](int line, int /*level*/, const std::string& /*text*/) {
            if (line == own.at) {
                pthread_exit(nullptr);
            }
        }};
        const HostCall call = own.makeCall(lines);
        fi_rotation_call_run(call.get());
        ADD_FAILURE() << "the thread went on behind line " << own.at;
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&id, nullptr, body, &thread), 0);
    ASSERT_EQ(pthread_join(id, nullptr), 0);
}

TEST_F(CHostLibraryTraceFunction, ThatEndsItsThreadLeavesOtherThreadsTheirCalls) {
    endThreadAtLine([this](SLines& lines) { return newTracedCall(lines); }, 1);
    expectCallsWork();
}

// Lines of destructors are left out: a thread that ends there ends the process.
TEST_F(CHostLibraryTraceFunction, ThatEndsItsThreadLeavesOtherThreadsTheirCallsAtEveryLine) {
    std::vector<std::string> texts;
    SLines all{[&](int /*line*/, int /*level*/, const std::string& text) { texts.push_back(text); }};
    fi_rotation_call_run(newTracedCall(all).get());
    ASSERT_THAT(texts, testing::Not(testing::IsEmpty()));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].find("::~") != std::string::npos) {
            continue;
        }
        SCOPED_TRACE(texts[i]);
        endThreadAtLine([this](SLines& lines) { return newTracedCall(lines); }, static_cast<int>(i) + 1);
        expectCallsWork();
    }
}
#endif

}  // namespace
}  // namespace fi_test
