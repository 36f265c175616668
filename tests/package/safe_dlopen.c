/* A host in C that loads the host library when it runs, and exports nothing to it. */
#include <stdio.h>

#include "loaded.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: host CONFIGURATION [DOCUMENT]...\n");
        return 2;
    }
    return rotate_with_loaded_library(argv[1], argv + 2, argc - 2);
}
