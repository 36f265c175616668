// Compares the library with the model on random calls. Ends at the first difference, whose call it makes as
// small as possible.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "tests/model/Comparison.h"
#include "tests/model/Generator.h"
#include "tests/model/LibraryHost.h"
#include "tests/model/Outcome.h"
#include "tests/model/Shrink.h"

namespace {

struct SOptions {
    std::uint64_t calls = 20000;
    // The seed of the first call; each further call has the next one.
    std::uint64_t seed = 1;
    // How many calls must have taken each branch of the decision.
    std::uint64_t least = 0;
};

// If the library crashes, the last of these lines says between which seeds it did.
void reportProgress(std::uint64_t done, const SOptions& options) {
    if (done % 10000 == 0) {
        std::fprintf(stderr, "seeds from %ju: %ju of %ju calls\n", std::uintmax_t{options.seed},
                     std::uintmax_t{done}, std::uintmax_t{options.calls});
    }
}

bool enoughOfEach(const fi_model::CTally& tally, const SOptions& options) {
    const std::vector<std::string> names = fi_model::outcomeNames();
    bool enough = true;
    for (std::size_t index = 0; index < fi_model::kOutcomeCount; ++index) {
        const auto outcome = static_cast<fi_model::EOutcome>(index);
        const bool tooFew = tally[outcome] < options.least;
        std::printf("%12ju  %s%s\n", std::uintmax_t{tally[outcome]}, names[index].c_str(),
                    tooFew ? "  TOO FEW" : "");
        enough = enough && !tooFew;
    }
    return enough;
}

bool soak(const SOptions& options) {
    fi_model::CLibraryHost host;
    const fi_model::Subject library = [&](const fi_model::SCall& call) { return host.run(call); };
    fi_model::CTally tally;
    for (std::uint64_t done = 0; done < options.calls; ++done) {
        const fi_model::SCall call = fi_model::makeCall(options.seed + done);
        const fi_model::SComparison comparison = fi_model::compare(call, library);
        if (!comparison.difference.empty()) {
            std::printf("DIFFERENCE\n%s\n", fi_model::explainDifference(call, library).c_str());
            return false;
        }
        tally.add(comparison.tally);
        reportProgress(done + 1, options);
    }
    std::printf("%ju calls from seed %ju, no difference; how many had\n", std::uintmax_t{options.calls},
                std::uintmax_t{options.seed});
    return enoughOfEach(tally, options);
}

}  // namespace

int main(int count, char** arguments) {
    SOptions options;
    try {
        options.calls = count > 1 ? std::stoull(arguments[1]) : options.calls;
        options.seed = count > 2 ? std::stoull(arguments[2]) : options.seed;
        options.least = count > 3 ? std::stoull(arguments[3]) : options.least;
    } catch (const std::exception&) {
        std::fputs("usage: fi_model_soak [CALLS [SEED [LEAST]]]\n", stderr);
        return EXIT_FAILURE;
    }
    try {
        return soak(options) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "fi_model_soak: %s\n", problem.what());
        return EXIT_FAILURE;
    }
}
