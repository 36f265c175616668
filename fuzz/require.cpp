#include "fuzz/require.h"

#include <cstdio>
#include <cstdlib>

void require(bool holds, const char* rule) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", rule);
        std::abort();
    }
}
