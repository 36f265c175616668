#include "tests/support/Golden.h"

#include <cstddef>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fi_test {
namespace {

const std::string kEntering = "Entering ";

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

// Whether `line` is the entry of an operation and `next` the exit of the same one.
bool areEntryAndExit(const STraceLine& line, const STraceLine& next) {
    return line.text.compare(0, kEntering.size(), kEntering) == 0 && next.level == line.level &&
           next.text == "Exiting " + line.text.substr(kEntering.size());
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
    for (std::size_t i = 0; i < trace.size(); ++i) {
        std::string line = trace[i].text;
        if (i + 1 < trace.size() && areEntryAndExit(trace[i], trace[i + 1])) {
            line = "Entering and exiting " + line.substr(kEntering.size());
            ++i;
        }
        text += std::to_string(trace[i].level) + ' ' + withoutFolder(escaped(line), folder) + '\n';
    }
    return text;
}

}  // namespace fi_test
