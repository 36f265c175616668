#include "tests/contract/Golden.h"

#include <cstddef>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fi_test {
namespace {

std::string escaped(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c == '\n') {
            line += "\\n";
        } else if (c == '\\') {
            line += "\\\\";
        } else {
            line += c;
        }
    }
    return line;
}

std::string withoutFolder(std::string text, const std::string& folder) {
    for (std::size_t i = 0; (i = text.find(folder, i)) != std::string::npos;) {
        text.replace(i, folder.size(), "{dir}/");
    }
    return text;
}

}  // namespace

std::string goldenText(const std::string& name) {
    const std::string path = FI_CONTRACT_GOLDEN "/" + name + ".trace";
    std::ifstream file(path);
    if (!file.is_open()) {
        throw std::runtime_error(path);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string asGoldenText(const Trace& trace, const std::string& folder) {
    std::string text;
    for (const TraceLine& line : trace) {
        text += std::to_string(line.level) + ' ';
        text += withoutFolder(escaped(line.text), folder) + '\n';
    }
    return text;
}

}  // namespace fi_test
