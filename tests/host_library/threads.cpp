// Runs random calls in many threads at once. Each must have the same outcome as when it was run alone before.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <fi_rotation/host.h>

#include "tests/host_library/HostCall.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr std::size_t kThreads = 16;

struct SOptions {
    std::size_t calls = 2000;
    std::uint64_t seed = 1;
};

// Makes calls of few names, so that they meet often, over the same documents.
class CCalls {
public:
    CCalls(const fi_test::CTemporaryFolder& folder, std::uint64_t seed) : random(seed) {
        for (int i = 0; i < 40; ++i) {
            std::vector<std::pair<std::string, std::string>> pairs;
            for (std::size_t count = below(4); count > 0; --count) {
                pairs.emplace_back("encA##lun" + std::to_string(below(3)),
                                   "encA##s" + std::to_string(below(6)));
            }
            std::string text = fi_test::documentOf(std::to_string(below(1000)), pairs);
            if (below(20) == 0) {
                text.resize(below(text.size()));
            }
            files.push_back(folder.write(std::to_string(i), text));
        }
        files.push_back(folder.path("missing"));
        files.push_back(folder.path(""));
    }

    // Makes the same call for the same number.
    fi_test::HostCall make(std::uint64_t number) {
        random.seed(number);
        std::string configuration;
        for (std::size_t i = 0; i < 1 + below(3); ++i) {
            configuration += "encA##lun" + std::to_string(i);
            for (std::size_t targets = 1 + below(5); targets > 0; --targets) {
                configuration += ";s" + std::to_string(below(6));
            }
            configuration += '&';
        }
        fi_test::HostCall call = fi_test::newCall(configuration);
        for (std::size_t backups = below(6); backups > 0; --backups) {
            fi_rotation_call_add(call.get(), files[below(files.size())].c_str(), below(5) == 0 ? 1 : 0);
        }
        fi_rotation_call_permit(call.get(), below(3) == 0 ? fi_test::kEveryProblem : 0);
        fi_rotation_call_ask_reasons(call.get(), below(3) == 0 ? 1 : 0);
        fi_rotation_call_keep_at_least(call.get(), static_cast<std::int32_t>(below(3)));
        return call;
    }

private:
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random() % limit); }

    std::mt19937_64 random;
    std::vector<std::string> files;
};

void countLine(void* user, std::int32_t /*level*/, const char* /*text*/) {
    ++*static_cast<int*>(user);
}

bool runAll(const SOptions& options) {
    const fi_test::CTemporaryFolder folder;
    const CCalls calls(folder, options.seed);
    std::vector<fi_test::SHostAnswer> alone;
    CCalls first = calls;
    for (std::size_t i = 0; i < options.calls; ++i) {
        alone.push_back(fi_test::answerOf(first.make(options.seed + i).get()));
    }

    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> different = 0;
    const auto work = [&] {
        CCalls own = calls;
        for (std::size_t i = next++; i < options.calls; i = next++) {
            int lines = 0;
            const fi_test::HostCall call = own.make(options.seed + i);
            fi_rotation_call_set_trace(call.get(), 4, i % 2 == 0 ? countLine : nullptr, &lines);
            if (!(fi_test::answerOf(call.get()) == alone[i])) {
                ++different;
                std::printf("call %zu: %s instead of %s\n", i, fi_rotation_call_message(call.get()),
                            alone[i].message.c_str());
            }
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back(work);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::size_t selected = 0;
    for (const fi_test::SHostAnswer& answer : alone) {
        selected += answer.outcome == FI_ROTATION_SELECTED ? 1 : 0;
    }
    std::printf("%zu calls in %zu threads, %zu with a selection, %zu different\n", options.calls, kThreads,
                selected, different.load());
    return different == 0 && selected > 0;
}

}  // namespace

int main(int count, char** arguments) {
    SOptions options;
    try {
        options.calls = count > 1 ? std::stoul(arguments[1]) : options.calls;
        options.seed = count > 2 ? std::stoull(arguments[2]) : options.seed;
    } catch (const std::exception&) {
        std::fputs("usage: fi_host_library_threads [CALLS [SEED]]\n", stderr);
        return EXIT_FAILURE;
    }
    try {
        return runAll(options) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "fi_host_library_threads: %s\n", problem.what());
        return EXIT_FAILURE;
    }
}
