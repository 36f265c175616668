#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace fi_model {

// Makes choices. With a seed they are random, and the same with every standard library, which those of the
// standard distributions are not. With a source, they are those of the source.
class CRandom {
public:
    explicit CRandom(std::uint64_t seed)
        : CRandom([engine = std::mt19937_64(seed)](std::size_t limit) mutable {
              return static_cast<std::size_t>(engine() % limit);
          }) {}
    // `source` gives a number below the limit that it is called with.
    explicit CRandom(std::function<std::size_t(std::size_t)> source) : draw(std::move(source)) {}

    // A number from 0 to limit - 1.
    std::size_t below(std::size_t limit) { return draw(limit); }
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
    std::function<std::size_t(std::size_t)> draw;
};

}  // namespace fi_model
