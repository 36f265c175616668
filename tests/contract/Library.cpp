#include "tests/contract/Library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace fi_test {

namespace {

void* library() {
    static void* const handle = [] {
        void* const opened = dlopen(FI_ROTATION_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        if (opened == nullptr) {
            throw std::runtime_error(dlerror());
        }
        return opened;
    }();
    return handle;
}

}  // namespace

EntryPoint entryPoint() {
    static const EntryPoint function = [] {
        void* const symbol = librarySymbol("fi_process_backups");
        if (symbol == nullptr) {
            throw std::runtime_error(dlerror());
        }
        return reinterpret_cast<EntryPoint>(symbol);
    }();
    return function;
}

void* librarySymbol(const char* name) {
    return dlsym(library(), name);
}

}  // namespace fi_test
