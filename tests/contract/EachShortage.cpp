#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include <gtest/gtest.h>

#include "tests/contract/Shortage.h"

namespace fi_test {
namespace {

struct SUnmap {
    void operator()(SShortageProgress* progress) const { munmap(progress, sizeof *progress); }
};
using SharedProgress = std::unique_ptr<SShortageProgress, SUnmap>;

SharedProgress newSharedProgress() {
    void* const memory =
        mmap(nullptr, sizeof(SShortageProgress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return SharedProgress(new (memory) SShortageProgress());
}

void runEach(SShortageProgress& progress, const std::function<void(SShortageProgress&)>& step) {
    for (; !progress.isFinished; ++progress.number) {
        // Otherwise the child would write at its end what is still in this process's buffer.
        std::fflush(stdout);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            step(progress);
            std::exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
            << "the process ended with status " << status << " at allocation " << progress.number;
        ASSERT_STREQ(progress.fault, "") << "at allocation " << progress.number;
    }
}

}  // namespace

SShortageProgress expectEachSurvives(std::size_t first, const std::function<void(SShortageProgress&)>& step) {
    const SharedProgress progress = newSharedProgress();
    progress->number = first;
    runEach(*progress, step);
    EXPECT_GT(progress->survived, 0U);
    return *progress;
}

}  // namespace fi_test
