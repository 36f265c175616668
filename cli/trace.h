#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace fi_rotate {

class CAccountReader;

// Receives the library's trace from its construction to its destruction; at most one exists at a time.
// Lines are formatted only where somebody reads them: the trace of a large document is many times its
// size.
class CTraceReceiver {
public:
    // Each call is written to every stream of `streams`, which are borrowed, as one line: the level, a
    // space and the text without its line end; line breaks and backslashes within it become \n, \r, \\.
    // `reader`, which is borrowed and may be null, gets each text without its line end.
    CTraceReceiver(std::vector<std::FILE*> streams, CAccountReader* reader);
    ~CTraceReceiver();
    CTraceReceiver(const CTraceReceiver&) = delete;
    CTraceReceiver& operator=(const CTraceReceiver&) = delete;

    void receive(int level, const char* format, std::va_list arguments);

    // Names of the documents that were loaded, in order.
    std::vector<std::string> loaded;
    // The failures that the library told of.
    std::vector<std::string> failures;

private:
    std::vector<std::FILE*> outputs;
    CAccountReader* account;
};

}  // namespace fi_rotate
