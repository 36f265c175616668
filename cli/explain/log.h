#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/explain/call_reader.h"

// Calls of the library as logs tell of them.
namespace fi_rotate {

// Takes logs in, line by line, and tells apart who wrote into them and the calls of each. Lines that are not
// the library's are passed over. Most of the library's texts name the operation that they come from; what
// stands before such a name is the host's prefix (time, process, level). The others are known by their form,
// behind the prefix of a writer.
class CLogReader {
public:
    // The lines that follow are those of another log. A call may go on in it.
    void begin(std::string log);
    // `line` is without its line end.
    void read(std::string_view line);

    // The calls that were read, in the order of their first lines.
    std::vector<SLoggedCall> finish();

private:
    // A line that may be the library's.
    struct SLine {
        std::size_t log = 0;
        std::size_t number = 0;
        std::string text;
    };

    std::vector<std::string> logs{std::string()};
    std::size_t lineCount = 0;
    std::vector<SLine> lines;
};

}  // namespace fi_rotate
