// Measures calls of the library and the bare reading of their documents over the six corpora, and how the
// time of a call grows with each dimension of its input. The corpora are kept in the folder FI_BENCH_FOLDER,
// if it is set; otherwise they are in a temporary one.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include <benchmark/benchmark.h>
#include <xercesc/util/PlatformUtils.hpp>

#include "bench/Corpus.h"
#include "bench/Readers.h"

namespace {

using fi_bench::SCorpus;
using fi_bench::SShape;

double secondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double floorSeconds(const SCorpus& corpus) {
    xercesc::XMLPlatformUtils::Initialize();
    const double seconds = secondsOf([&] { fi_bench::parseWithBareReader(corpus.files); });
    xercesc::XMLPlatformUtils::Terminate();
    return seconds;
}

// Every round makes one call and one reading with each other reader, so that other work of the machine slows
// all of them alike.
void runCorpus(benchmark::State& state, const SShape& shape, const std::string& folder) {
    const SCorpus corpus = fi_bench::writeCorpus(shape, folder + "/" + shape.name);
    std::vector<double> calls;
    std::vector<double> floors;
    std::vector<double> pugixml;
    std::vector<double> expat;
    std::size_t rotated = 0;
    for ([[maybe_unused]] auto round : state) {
        calls.push_back(secondsOf([&] { rotated = fi_bench::runCallOrExit(corpus); }));
        state.SetIterationTime(calls.back());
        floors.push_back(floorSeconds(corpus));
        if (!shape.isNested) {
            pugixml.push_back(secondsOf([&] { fi_bench::gatherWithPugixml(corpus.files); }));
            expat.push_back(secondsOf([&] { fi_bench::gatherWithExpat(corpus.files); }));
        }
    }
    state.counters["call_ms"] = median(calls) * 1e3;
    state.counters["floor_ms"] = median(floors) * 1e3;
    state.counters["ratio"] = median(calls) / median(floors);
    state.counters["rotated"] = static_cast<double>(rotated);
    if (!shape.isNested) {
        state.counters["pugixml_ms"] = median(pugixml) * 1e3;
        state.counters["expat_ms"] = median(expat) * 1e3;
    }
}

// The exponent with which the times grow with the sizes: 1 when they grow linearly. It is the slope of their
// logarithms.
double exponent(const std::vector<double>& sizes, const std::vector<double>& times) {
    double sumX = 0;
    double sumY = 0;
    double sumXX = 0;
    double sumXY = 0;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const double x = std::log(sizes[i]);
        const double y = std::log(times[i]);
        sumX += x;
        sumY += y;
        sumXX += x * x;
        sumXY += x * y;
    }
    const auto count = static_cast<double>(sizes.size());
    return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

using Member = std::size_t SShape::*;

struct SGrowth {
    const char* dimension;
    SShape start;
    Member member;
};

// The first size is so large that a call spends most of its time on the dimension that grows.
const SGrowth kGrowths[] = {
    {"backups", {"backups", 250, 10, 100, 410}, &SShape::backups},
    {"nodes", {"nodes", 2, 10000, 100, 3300}, &SShape::nodes},
    {"configurations", {"configurations", 10, 100, 5000, 12}, &SShape::configurations},
    {"targets", {"targets", 10, 100, 10, 5000}, &SShape::targets},
    {"depth", {"depth", 1, 50000, 1, 1, true}, &SShape::nodes},
};
constexpr int kDoublings = 4;
constexpr int kCallsPerSize = 5;

// Sizes doubled four times.
void runGrowth(benchmark::State& state, const SGrowth& growth, const std::string& folder) {
    for ([[maybe_unused]] auto round : state) {
        std::vector<double> sizes;
        std::vector<double> times;
        SShape shape = growth.start;
        for (int i = 0; i <= kDoublings; ++i) {
            const std::string own = folder + "/growth";
            const SCorpus corpus = fi_bench::writeCorpus(shape, own);
            std::vector<double> calls;
            for (int call = 0; call < kCallsPerSize; ++call) {
                calls.push_back(secondsOf([&] { fi_bench::runCallOrExit(corpus); }));
            }
            sizes.push_back(static_cast<double>(shape.*growth.member));
            times.push_back(median(calls));
            shape.*growth.member *= 2;
            std::filesystem::remove_all(own);
        }
        state.SetIterationTime(times.back());
        state.counters["first_ms"] = times.front() * 1e3;
        state.counters["last_ms"] = times.back() * 1e3;
        state.counters["exponent"] = exponent(sizes, times);
    }
}

void registerAll(const std::string& folder, int rounds) {
    for (const SShape& shape : fi_bench::shapes()) {
        benchmark::RegisterBenchmark((std::string("corpus/") + shape.name).c_str(), runCorpus, shape, folder)
            ->Iterations(rounds)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    for (const SGrowth& growth : kGrowths) {
        benchmark::RegisterBenchmark((std::string("growth/") + growth.dimension).c_str(), runGrowth, growth,
                                     folder)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

class CWorkFolder {
public:
    CWorkFolder() {
        if (const char* const named = std::getenv("FI_BENCH_FOLDER")) {
            path = named;
            isKept = true;
        } else {
            path = (std::filesystem::temp_directory_path() / "fi-bench-XXXXXX").string();
            if (mkdtemp(path.data()) == nullptr) {
                throw std::filesystem::filesystem_error("cannot make a folder for the corpora", path,
                                                        std::error_code(errno, std::generic_category()));
            }
        }
    }
    ~CWorkFolder() {
        if (!isKept) {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    }
    CWorkFolder(const CWorkFolder&) = delete;
    CWorkFolder& operator=(const CWorkFolder&) = delete;

    std::string path;

private:
    bool isKept = false;
};

}  // namespace

int main(int argc, char** argv) {
    try {
        const CWorkFolder folder;
        const char* const rounds = std::getenv("FI_BENCH_ROUNDS");
        registerAll(folder.path, rounds == nullptr ? 7 : std::atoi(rounds));
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
            return 2;
        }
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fi_rotation_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
