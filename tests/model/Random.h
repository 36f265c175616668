#ifndef FI_MODEL_RANDOM_H
#define FI_MODEL_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace fi_model {

// Random choices that are the same with every implementation of the standard library, which its
// distributions are not.
class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    // A number from 0 to limit - 1.
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(engine_() % limit); }
    std::size_t between(std::size_t least, std::size_t most) { return least + below(most - least + 1); }
    bool percent(std::size_t chance) { return below(100) < chance; }
    bool perMille(std::size_t chance) { return below(1000) < chance; }

    template <typename T>
    const T& pick(const std::vector<T>& choices) {
        return choices[below(choices.size())];
    }

    template <typename T>
    void shuffle(std::vector<T>& values) {
        for (std::size_t index = values.size(); index > 1; --index) {
            std::swap(values[index - 1], values[below(index)]);
        }
    }

private:
    std::mt19937_64 engine_;
};

}  // namespace fi_model

#endif
