// Searches the input that takes a fuzzer's program the most time for each byte. Among inputs of at most 4,
// 16, 32 and 128 kB by turns, those that cost most are changed again and again. A cost that grows faster than
// the input shows in that the larger inputs cost more for each byte.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/Mutator.h"
#include "host/configuration_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr double kNanoseconds = 1e9;

// Of this process, in seconds, so that other processes hardly disturb.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / kNanoseconds;
}

double secondsFor(const std::string& text) {
    const double begin = processorTime();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    return processorTime() - begin;
}

class CCost {
public:
    CCost() {
        constexpr int kRuns = 20;
        secondsFor("");
        ofEmpty = secondsFor("");
        for (int i = 0; i < kRuns; ++i) {
            ofEmpty = std::min(ofEmpty, secondsFor(""));
        }
    }

    // Nanoseconds for each byte, the least of several runs, or less than `least` once a run takes less. An
    // input with fewer than `shortest` bytes counts as if it had so many.
    double perByte(const std::string& text, std::size_t shortest, double least) {
        constexpr int kRuns = 4;
        const auto bytes = static_cast<double>(std::max(text.size(), shortest));
        double cost = (secondsFor(text) - ofEmpty) * kNanoseconds / bytes;
        for (int i = 1; i < kRuns && cost >= least; ++i) {
            cost = std::min(cost, (secondsFor(text) - ofEmpty) * kNanoseconds / bytes);
        }
        ++inputs;
        return cost;
    }

    std::size_t inputs = 0;

private:
    double ofEmpty = 0;
};

// The inputs that cost most, each with its cost.
class CCostliest {
public:
    void add(std::string text, double cost) {
        constexpr std::size_t kMost = 32;
        if (cost <= least() || std::find(texts.begin(), texts.end(), text) != texts.end()) {
            return;
        }
        const auto place = std::upper_bound(costs.begin(), costs.end(), cost, std::greater<>());
        texts.insert(texts.begin() + (place - costs.begin()), std::move(text));
        costs.insert(place, cost);
        isFull = texts.size() >= kMost;
        if (texts.size() > kMost) {
            texts.pop_back();
            costs.pop_back();
        }
    }

    // An input must cost more to be added.
    double least() const { return isFull ? costs.back() : -kNanoseconds; }
    const std::vector<std::string>& all() const { return texts; }
    double most() const { return costs.front(); }

private:
    // The costliest first.
    std::vector<std::string> texts;
    std::vector<double> costs;
    bool isFull = false;
};

std::string contentOf(const char* name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The words in quotes in a dictionary of libFuzzer.
std::vector<std::string> wordsIn(const char* dictionary) {
    std::vector<std::string> words;
    std::ifstream file(dictionary);
    for (std::string line; std::getline(file, line);) {
        std::string word;
        const std::size_t end = line.rfind('"');
        for (std::size_t i = line.find('"') + 1; i < end && end != std::string::npos; ++i) {
            constexpr int kHexadecimal = 16;
            const bool isEscaped = line[i] == '\\';
            if (isEscaped && line[i + 1] == 'x') {
                word += static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, kHexadecimal));
                i += 3;
            } else {
                word += line[isEscaped ? ++i : i];
            }
        }
        if (!word.empty()) {
            words.push_back(word);
        }
    }
    return words;
}

struct SLength {
    std::size_t longest = 0;
    // Of all rounds with this length.
    double most = 0;
    std::size_t bytes = 0;
};

class CSearch {
public:
    CSearch(CMutator changes, std::vector<std::string> first, std::string kept, bool areEnclosuresLimited)
        : mutator(std::move(changes)),
          seeds(std::move(first)),
          folder(std::move(kept)),
          last(folder + "/last", std::ios::binary),
          isLimited(areEnclosuresLimited) {}

    // One round: starts from the seeds again and, but for every third round, from the costliest input so far.
    // It ends at `end`, a processor time.
    void run(SLength& length, double end) {
        CCostliest costliest;
        const auto addBeginningOf = [&](const std::string& seed) {
            const std::string text = seed.substr(0, length.longest);
            costliest.add(text, costOf(text, length, 0));
        };
        std::for_each(seeds.begin(), seeds.end(), addBeginningOf);
        if (rounds++ % 3 != 0) {
            addBeginningOf(best);
        }
        while (processorTime() < end) {
            const std::vector<std::string>& all = costliest.all();
            const std::size_t index = std::min(mutator.below(all.size()), mutator.below(all.size()));
            std::string text = mutator.change(all[index], all, length.longest);
            const double most = costOf(text, length, costliest.least());
            costliest.add(std::move(text), most);
        }
        if (costliest.most() > length.most) {
            length.most = costliest.most();
            length.bytes = costliest.all().front().size();
            keep(std::to_string(length.longest), costliest.all().front());
        }
        if (costliest.most() > mostOfAll) {
            mostOfAll = costliest.most();
            best = costliest.all().front();
        }
    }

    std::size_t inputs() const { return cost.inputs; }

private:
    // Inputs much shorter than the others of their round count as longer: the least inputs cost the most for
    // each byte, and would hide what only large ones cost.
    double costOf(const std::string& text, const SLength& length, double least) {
        if (isLimited && fi_rotate::findLongEnclosure(text).has_value()) {
            return 0;
        }
        keepLast(text);
        return cost.perByte(text, length.longest / 4, least);
    }

    // If an input breaks a rule of the fuzzer's program, that ends there. The file stays open, because
    // closing it each time would wait for the disk.
    void keepLast(const std::string& text) {
        last.seekp(0);
        last << text << std::flush;
        std::filesystem::resize_file(folder + "/last", text.size());
    }

    void keep(const std::string& name, const std::string& text) const {
        std::ofstream(folder + "/" + name, std::ios::binary) << text;
    }

    CMutator mutator;
    std::vector<std::string> seeds;
    // The costliest input of each length and the last one are written there.
    std::string folder;
    std::ofstream last;
    // Whether inputs are passed over that the host library and fi-rotate refuse before they read them.
    bool isLimited = false;
    CCost cost;
    std::size_t rounds = 0;
    double mostOfAll = 0;
    std::string best;
};

}  // namespace

// SECONDS SEED FOLDER DICTIONARY unlimited|limited INPUT...: `limited` when a configuration with too long an
// enclosure is to be passed over.
int main(int count, char** arguments) {
    constexpr int kFirstInput = 6;
    constexpr double kRound = 75;
    if (count <= kFirstInput) {
        std::fprintf(stderr, "usage: %s SECONDS SEED FOLDER DICTIONARY unlimited|limited INPUT...\n",
                     arguments[0]);
        return 2;
    }
    // The library prints a line there.
    std::freopen("/dev/null", "w", stdout);
    const double seconds = std::stod(arguments[1]);
    std::vector<std::string> seeds;
    std::transform(arguments + kFirstInput, arguments + count, std::back_inserter(seeds), contentOf);
    CSearch search({wordsIn(arguments[4]), std::stoull(arguments[2])}, std::move(seeds), arguments[3],
                   std::string(arguments[5]) == "limited");

    std::array<SLength, 4> lengths{{{4096}, {16384}, {32768}, {131072}}};
    for (std::size_t round = 0; processorTime() < seconds; ++round) {
        search.run(lengths.at(round % lengths.size()), std::min(seconds, processorTime() + kRound));
    }
    std::fprintf(stderr, "%.0f s, %zu inputs\n", processorTime(), search.inputs());
    for (const SLength& length : lengths) {
        std::fprintf(stderr, "up to %6zu bytes: at most %8.1f ns a byte, at %zu bytes\n", length.longest,
                     length.most, length.bytes);
    }
    return 0;
}
