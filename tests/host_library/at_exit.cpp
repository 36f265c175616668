// Usage: fi_host_library_at_exit DOCUMENT
//
// Runs a call in main, calls in other threads until the process ends, and one in a function that was
// registered with atexit.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "tests/host_library/HostCall.h"

namespace {

const char* document = nullptr;

void decide() {
    const fi_test::HostCall call = fi_test::newCall("encA##lun1;snap1;snap2", {document});
    fi_rotation_call_run(call.get());
    const char* const selection = fi_rotation_call_selection(call.get());
    std::puts(selection != nullptr ? selection : fi_rotation_call_message(call.get()));
}

void decideForEver(const std::string& file) {
    while (true) {
        fi_rotation_call_run(fi_test::newCall("encA##lun1;snap1;snap2", {file}).get());
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2 || std::atexit(decide) != 0) {
        return EXIT_FAILURE;
    }
    document = arguments[1];
    decide();
    for (int i = 0; i < 2; ++i) {
        std::thread(decideForEver, std::string(document)).detach();
    }
    return EXIT_SUCCESS;
}
