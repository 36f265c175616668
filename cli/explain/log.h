#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/explain/call_reader.h"

// Finds the calls of the library in logs.
namespace fi_rotate {

// Reads logs line by line, and separates the writers of their lines and the calls of each writer. Lines that
// the library did not write are ignored. Most texts of the library begin with the name of an operation; what
// comes before such a name is the prefix of the host (time, process, level). The other texts are recognised
// by their form after such a prefix.
class CLogReader {
public:
    // Begins the next log. A call may continue in it.
    void beginLog(std::string log);
    // `line` is without its line end.
    void readLine(std::string_view line);

    // The calls that were read, in the order of their first lines.
    std::vector<SLoggedCall> finish();

private:
    // A line that may be the library's.
    struct SLine {
        std::size_t log = 0;
        std::size_t number = 0;
        std::string text;
        // It says that an operation is entered or left, and only what stands in front of that is kept.
        bool isProgress = false;
        // It says so of the operation that is entered when a document is damaged.
        bool tellsDamage = false;
    };

    void keepProgress(std::string_view whole, std::size_t text);

    std::vector<std::string> logs{std::string()};
    std::size_t lineCount = 0;
    std::vector<SLine> lines;
};

}  // namespace fi_rotate
