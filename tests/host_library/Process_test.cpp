// The host library in threads and forked processes, and at the end of threads and processes.

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>

#include "tests/host_library/Fixture.h"

namespace {

bool isTraced = false;

}  // namespace

// The process has a trace function for another library. The rotation in the host library must not call it.
extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int /*level*/, const char* /*format*/,
                                                                     ...) {
    isTraced = true;
}

namespace fi_test {
namespace {

class CHostLibraryProcess : public CHostLibraryTest {
protected:
    HostCall goodCall() const { return newCall(kConfiguration, {holder("a.xml", "snap1")}); }

    // Runs `body` in a child, which is killed after some seconds, and returns the child's exit status.
    static int statusOfChild(const std::function<int()>& body) {
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            alarm(30);
            _exit(body());
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // The same in a child that is forked while another thread runs a call.
    [[nodiscard]] int statusOfChildDuringARun(const std::function<int()>& body) const;
};

// A trace function that waits at its first line until the gate is opened.
class CGate {
public:
    static void pass(void* gate, std::int32_t /*level*/, const char* /*text*/) {
        static_cast<CGate*>(gate)->wait();
    }
    void awaitArrival() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return hasArrived; });
    }
    void open() {
        const std::lock_guard<std::mutex> lock(mutex);
        isOpen = true;
        changed.notify_all();
    }

private:
    void wait() {
        std::unique_lock<std::mutex> lock(mutex);
        hasArrived = true;
        changed.notify_all();
        changed.wait(lock, [this] { return isOpen; });
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool hasArrived = false;
    bool isOpen = false;
};

int CHostLibraryProcess::statusOfChildDuringARun(const std::function<int()>& body) const {
    const HostCall running = goodCall();
    CGate gate;
    fi_rotation_call_set_trace(running.get(), 4, CGate::pass, &gate);
    std::thread runner([&] { fi_rotation_call_run(running.get()); });
    gate.awaitArrival();
    const int status = statusOfChild(body);
    gate.open();
    runner.join();
    return status;
}

// The first test, so that it makes the first run of the process even when all are run in one.
TEST_F(CHostLibraryProcess, SetsTheXmlLibraryUpInARunWithoutDocuments) {
    // The XML library has its memory manager as long as it is set up.
    const auto* const manager = static_cast<void* const*>(
        dlsym(RTLD_DEFAULT, "_ZN11xercesc_3_216XMLPlatformUtils15fgMemoryManagerE"));
    ASSERT_NE(manager, nullptr);
    ASSERT_EQ(*manager, nullptr);
    EXPECT_EQ(fi_rotation_call_run(newCall(kConfiguration).get()), FI_ROTATION_SELECTED);
    EXPECT_NE(*manager, nullptr);
}

#ifndef __SANITIZE_ADDRESS__  // which needs more
TEST_F(CHostLibraryProcess, DecidesInAThreadWithAStackOf64KiB) {
    std::string deep;
    for (int i = 0; i < 250; ++i) {
        deep = "<Node>" + deep + "</Node>";
    }
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), write("deep.xml", deep)});
    fi_rotation_call_ask_reasons(call.get(), 1);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{64} << 10), 0);
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
        fi_rotation_call_run(static_cast<fi_rotation_call*>(argument));
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, call.get()), 0);
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap2]");
}
#endif

TEST_F(CHostLibraryProcess, LeavesTheTraceFunctionOfTheProcessAlone) {
    EXPECT_EQ(fi_rotation_call_run(goodCall().get()), FI_ROTATION_SELECTED);
    EXPECT_FALSE(isTraced);
}

TEST_F(CHostLibraryProcess, PrintsNothing) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    fi_rotation_call_run(goodCall().get());
    const HostCall refused = newCall("", {path("missing.xml"), write("b.xml", "<Node>"), folder.path("")});
    fi_rotation_call_run(refused.get());
    fi_rotation_call_permit(refused.get(), kEveryProblem);
    fi_rotation_call_run(refused.get());
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CHostLibraryProcess, DecidesWithoutAStandardOutput) {
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), path("missing.xml")});
    const auto body = [&call] {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
        const bool isRefused = fi_rotation_call_run(call.get()) == FI_ROTATION_REFUSED;
        fi_rotation_call_permit(call.get(), FI_ROTATION_CANNOT_OPEN);
        return isRefused && fi_rotation_call_run(call.get()) == FI_ROTATION_SELECTED ? 0 : 1;
    };
    EXPECT_EQ(statusOfChild(body), 0);
}

// When standard input is closed, a document is opened under its number, 0.
TEST_F(CHostLibraryProcess, LeavesNoDocumentOpenInPlaceOfAStandardInput) {
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), holder("b.xml", "snap2")});
    const auto body = [&call] {
        close(STDIN_FILENO);
        const bool isSelected = fi_rotation_call_run(call.get()) == FI_ROTATION_SELECTED;
        return isSelected && fcntl(STDIN_FILENO, F_GETFD) == -1 ? 0 : 1;
    };
    EXPECT_EQ(statusOfChild(body), 0);
}

TEST_F(CHostLibraryProcess, KeepsErrnoInEveryFunction) {
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), path("missing.xml")});
    const auto expectKept = [](const std::function<void()>& function) {
        errno = E2BIG;
        function();
        EXPECT_EQ(errno, E2BIG);
    };
    expectKept([&] { fi_rotation_call_run(call.get()); });
    expectKept([&] { fi_rotation_call_add(call.get(), "x", 0); });
    expectKept([&] { fi_rotation_call_free(fi_rotation_call_new("x")); });
    expectKept([&] { answerOf(call.get()); });
}

TEST_F(CHostLibraryProcess, KeepsTheCancellationState) {
    const HostCall call = goodCall();
    for (const int state : {PTHREAD_CANCEL_DISABLE, PTHREAD_CANCEL_ENABLE}) {
        int former = -1;
        pthread_setcancelstate(state, nullptr);
        fi_rotation_call_run(call.get());
        pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &former);
        EXPECT_EQ(former, state);
    }
}

// A thread that is cancelled while it runs a call ends after the run.
TEST_F(CHostLibraryProcess, EndsARunBeforeItsThreadIsCancelled) {
    struct SState {
        HostCall call;
        fi_rotation_outcome outcome = FI_ROTATION_FAILED;
        bool isPassed = false;
    } state;
    state.call = goodCall();
    const auto cancel = [](void* /*user*/, std::int32_t /*level*/, const char* /*text*/) {
        pthread_cancel(pthread_self());
        pthread_testcancel();
    };
    fi_rotation_call_set_trace(state.call.get(), 4, cancel, nullptr);
    const auto body = [](void* argument) -> void* {
        SState& own = *static_cast<SState*>(argument);
        own.outcome = fi_rotation_call_run(own.call.get());
        pthread_testcancel();
        own.isPassed = true;
        return nullptr;
    };
    pthread_t thread{};
    void* result = nullptr;
    ASSERT_EQ(pthread_create(&thread, nullptr, body, &state), 0);
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(state.outcome, FI_ROTATION_SELECTED);
    EXPECT_FALSE(state.isPassed);
}

TEST_F(CHostLibraryProcess, RefusesACallThatAnotherThreadRuns) {
    const HostCall call = goodCall();
    CGate gate;
    fi_rotation_call_set_trace(call.get(), 4, CGate::pass, &gate);
    fi_rotation_outcome outcome = FI_ROTATION_FAILED;
    std::thread runner([&] { outcome = fi_rotation_call_run(call.get()); });
    gate.awaitArrival();
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_MISUSED);
    gate.open();
    runner.join();
    EXPECT_EQ(outcome, FI_ROTATION_SELECTED);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap2]");
}

TEST_F(CHostLibraryProcess, RunsInAChildOfAProcessThatRunsNone) {
    const HostCall call = goodCall();
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(statusOfChild([&] { return static_cast<int>(fi_rotation_call_run(call.get())); }),
              FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryProcess, FailsInAChildThatWasForkedDuringTheRunOfAnotherThread) {
    const HostCall other = goodCall();
    const auto body = [&] {
        const bool isFailure = fi_rotation_call_run(other.get()) == FI_ROTATION_FAILED &&
                               fi_rotation_call_run(other.get()) == FI_ROTATION_FAILED &&
                               fi_rotation_call_selection(other.get()) == nullptr;
        // Runs fail in a child of the child, too.
        const pid_t grandchild = fork();
        if (grandchild == 0) {
            _exit(static_cast<int>(fi_rotation_call_run(other.get())));
        }
        int status = 0;
        waitpid(grandchild, &status, 0);
        return isFailure && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    EXPECT_EQ(statusOfChildDuringARun(body), FI_ROTATION_FAILED);
    EXPECT_EQ(fi_rotation_call_run(other.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryProcess, SaysWhatToDoInAChildThatWasForkedDuringTheRunOfAnotherThread) {
    const HostCall other = goodCall();
    const auto body = [&other] {
        fi_rotation_call_run(other.get());
        const std::string message = fi_rotation_call_message(other.get());
        return message ==
                       "this process was forked while another thread ran a call, and cannot run any; "
                       "fork while no call runs, or call exec in the child"
                   ? 0
                   : 1;
    };
    EXPECT_EQ(statusOfChildDuringARun(body), 0);
}

// The child finishes the run during which it was forked, and can run further calls.
TEST_F(CHostLibraryProcess, GoesOnInAChildThatItsTraceFunctionForks) {
    struct SFork {
        bool isDone = false;
        pid_t child = -1;
    } forked;
    const auto forkOnce = [](void* user, std::int32_t /*level*/, const char* /*text*/) {
        SFork& own = *static_cast<SFork*>(user);
        if (!own.isDone) {
            own.isDone = true;
            own.child = fork();
        }
    };
    const HostCall other = goodCall();
    const HostCall call = goodCall();
    fi_rotation_call_set_trace(call.get(), 4, forkOnce, &forked);
    const fi_rotation_outcome outcome = fi_rotation_call_run(call.get());
    if (forked.child == 0) {
        alarm(30);
        const bool isRight =
            outcome == FI_ROTATION_SELECTED && fi_rotation_call_run(other.get()) == FI_ROTATION_SELECTED;
        _exit(isRight ? 0 : 1);
    }
    EXPECT_EQ(outcome, FI_ROTATION_SELECTED);
    int status = -1;
    ASSERT_EQ(waitpid(forked.child, &status, 0), forked.child);
    EXPECT_EQ(status, 0);
}

// Threads run calls all the time while the process forks. Each child gets an outcome and does not wait for
// ever.
TEST_F(CHostLibraryProcess, AnswersInEveryChildWhileThreadsRunCalls) {
    std::atomic<bool> isOver = false;
    const HostCall other = goodCall();
    const auto run = [&](const HostCall& call) {
        while (!isOver) {
            fi_rotation_call_run(call.get());
        }
    };
    const HostCall one = newCall(kConfiguration, {holder("b.xml", "snap1")});
    const HostCall two = newCall(kConfiguration, {holder("c.xml", "snap1")});
    std::thread first(run, std::cref(one));
    std::thread second(run, std::cref(two));
    for (int i = 0; i < 200; ++i) {
        const int status = statusOfChild([&] { return static_cast<int>(fi_rotation_call_run(other.get())); });
        EXPECT_TRUE(status == FI_ROTATION_SELECTED || status == FI_ROTATION_FAILED) << status;
    }
    isOver = true;
    first.join();
    second.join();
}

TEST_F(CHostLibraryProcess, WorksAfterItWasLoadedAndUnloadedAgain) {
    for (int i = 0; i < 3; ++i) {
        void* const library = dlopen(FI_ROTATION_HOST_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        EXPECT_EQ(fi_rotation_call_run(goodCall().get()), FI_ROTATION_SELECTED);
        EXPECT_EQ(dlclose(library), 0);
    }
    EXPECT_EQ(fi_rotation_call_run(goodCall().get()), FI_ROTATION_SELECTED);
}

// The program prints a line for each answer, the last one from a function that it registered with atexit
// before the library was used.
TEST_F(CHostLibraryProcess, DecidesAtTheEndOfAProcess) {
    const std::string command =
        std::string("'") + FI_HOST_LIBRARY_AT_EXIT + "' '" + holder("a.xml", "snap1") + "' 2>&1";
    std::FILE* const program = popen(command.c_str(), "re");
    ASSERT_NE(program, nullptr);
    std::string output;
    char piece[256];
    while (std::fgets(piece, sizeof piece, program) != nullptr) {
        output += piece;
    }
    EXPECT_EQ(pclose(program), 0);
    EXPECT_EQ(output, "[encA##lun1;encA##snap2]\n[encA##lun1;encA##snap2]\n");
}

}  // namespace
}  // namespace fi_test
