// Usage: fi_rotation_memory FOLDER CALLS
//
// Runs CALLS calls over the corpus in FOLDER and prints, in bytes: the size of the documents, and the peak
// resident memory after the first call and after the last.

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "bench/Corpus.h"

namespace {

long peakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fi_rotation_memory FOLDER CALLS\n");
        return 2;
    }
    try {
        const fi_bench::SCorpus corpus = fi_bench::readCorpus(argv[1]);
        fi_bench::runCallOrExit(corpus);
        const long first = peakBytes();
        for (int i = std::atoi(argv[2]); i > 1; --i) {
            fi_bench::runCallOrExit(corpus);
        }
        std::printf("%zu %ld %ld\n", corpus.bytes, first, peakBytes());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fi_rotation_memory: %s\n", error.what());
        return 1;
    }
    return 0;
}
