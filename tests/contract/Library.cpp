#include "tests/contract/Library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace fi_test {

EntryPoint entryPoint() {
    static const EntryPoint function = [] {
        void* const library = dlopen(FI_ROTATION_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            throw std::runtime_error(dlerror());
        }
        void* const symbol = dlsym(library, "fi_process_backups");
        if (symbol == nullptr) {
            throw std::runtime_error(dlerror());
        }
        return reinterpret_cast<EntryPoint>(symbol);
    }();
    return function;
}

}  // namespace fi_test
