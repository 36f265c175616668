// Runs a fuzzer's program over the files that are named, or over the empty input when none is.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** names) {
    LLVMFuzzerTestOneInput(nullptr, 0);
    for (int i = 1; i < count; ++i) {
        std::ifstream file(names[i], std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "%s cannot be opened\n", names[i]);
            return 1;
        }
        const std::vector<char> input{std::istreambuf_iterator<char>(file), {}};
        std::fprintf(stderr, "%s\n", names[i]);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    }
    return 0;
}
