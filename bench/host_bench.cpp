// What a call through the host library costs, compared with the same call of the first library. Each
// measurement is made in a process of its own: the host library sets up the XML library for the whole
// process, which would make calls of the first library faster.
//
// Usage: fi_rotation_host_bench FOLDER ROUNDS

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fi_rotation/host.h>
#include <xercesc/util/PlatformUtils.hpp>

#include "bench/Corpus.h"
#include "bench/Readers.h"

namespace {

using fi_bench::SCorpus;
using fi_bench::SShape;

void runThroughHostLibrary(const SCorpus& corpus, bool wantsReasons) {
    fi_rotation_call* const call = fi_rotation_call_new(corpus.configuration.c_str());
    for (const std::string& file : corpus.files) {
        fi_rotation_call_add(call, file.c_str(), 0);
    }
    fi_rotation_call_ask_reasons(call, wantsReasons ? 1 : 0);
    const fi_rotation_outcome outcome = fi_rotation_call_run(call);
    fi_rotation_call_free(call);
    if (outcome != FI_ROTATION_SELECTED) {
        throw std::runtime_error("a corpus does not give the selection that it was made for");
    }
}

// The seconds of one run of the work: the average of `count` runs in a process that does nothing else.
double secondsAlone(const std::function<void()>& work, std::size_t count) {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < count; ++i) {
            work();
        }
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const bool isTold = write(ends[1], &seconds, sizeof seconds) == sizeof seconds;
        _exit(isTold ? 0 : 1);
    }
    close(ends[1]);
    double seconds = 0;
    const bool isTold = read(ends[0], &seconds, sizeof seconds) == sizeof seconds;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    if (!isTold) {
        throw std::runtime_error("a measurement failed");
    }
    return seconds / static_cast<double>(count);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct SRow {
    SShape shape;
    std::size_t count;
};

const SRow kRows[] = {
    {{"one", 1, 10, 9, 2}, 1000},
    {fi_bench::shapeOf("small"), 100},
    {fi_bench::shapeOf("large"), 1},
    {fi_bench::shapeOf("wide"), 1},
};

void measure(const SRow& row, const std::string& folder, int rounds) {
    const SCorpus corpus = fi_bench::writeCorpus(row.shape, folder + "/host-" + row.shape.name);
    std::vector<double> bare;
    std::vector<double> safe;
    std::vector<double> reasons;
    std::vector<double> parse;
    // All are measured in turn, so that other work of the machine slows all of them alike.
    for (int i = 0; i < rounds; ++i) {
        bare.push_back(secondsAlone([&] { fi_bench::runCallOrExit(corpus); }, row.count));
        safe.push_back(secondsAlone([&] { runThroughHostLibrary(corpus, false); }, row.count));
        reasons.push_back(secondsAlone([&] { runThroughHostLibrary(corpus, true); }, row.count));
        parse.push_back(secondsAlone(
            [&, isHeld = false]() mutable {
                if (!isHeld) {
                    xercesc::XMLPlatformUtils::Initialize();
                    isHeld = true;
                }
                fi_bench::parseWithBareReader(corpus.files);
            },
            row.count));
    }
    std::printf("%-8s%10.3f%10.3f%10.3f%10.3f%12.2f%14.2f\n", row.shape.name, median(parse) * 1e3,
                median(bare) * 1e3, median(safe) * 1e3, median(reasons) * 1e3, median(safe) / median(bare),
                median(reasons) / median(bare));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fi_rotation_host_bench FOLDER ROUNDS\n");
        return 2;
    }
    try {
        std::printf("%-8s%10s%10s%10s%10s%12s%14s\n", "host", "parse ms", "call ms", "host ms", "reasons ms",
                    "host/call", "reasons/call");
        std::fflush(stdout);
        for (const SRow& row : kRows) {
            measure(row, argv[1], std::atoi(argv[2]));
            std::fflush(stdout);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fi_rotation_host_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
