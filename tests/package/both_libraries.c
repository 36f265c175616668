/*
 * A host in C that is linked with the first library and loads the host library: each rotates before and after
 * the other does, and what one does with the XML library must not be the other's end. The trace function of
 * the program is the first library's only.
 */
#include <stdio.h>
#include <stdlib.h>

#include <fi_rotation/fi_process_backups.h>

#include "loaded.h"

static long lines = 0;

void mofi_tracelog(int level, const char* format, ...) {
    (void)level;
    (void)format;
    lines++;
}

/* Prints the selection. */
static int rotate_with_linked_library(const char* configuration, char* const* documents, int count) {
    int32_t* const flags = calloc((size_t)count + 1, sizeof *flags);
    if (flags == NULL) {
        return 2;
    }
    char* selection = NULL;
    const int32_t status =
        fi_process_backups((const char* const*)documents, configuration, flags, count, &selection);
    if (status == FI_STATUS_SUCCESS) {
        printf("linked: %s\n", selection);
    }
    free(selection);
    free(flags);
    return status == FI_STATUS_SUCCESS ? 0 : 1;
}

/* As rotate_with_loaded_library, and not 0 too when the library traces to this program. */
static int rotate_untraced(const char* configuration, char* const* documents, int count) {
    const long before = lines;
    const int result = rotate_with_loaded_library(configuration, documents, count);
    if (lines != before) {
        fprintf(stderr, "the host library traced to the program\n");
        return 2;
    }
    return result;
}

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: host CONFIGURATION [DOCUMENT]...\n");
        return 2;
    }
    const char* const configuration = argv[1];
    char* const* const documents = argv + 2;
    const int count = argc - 2;
    /* What the host library refuses the first one, which could throw, is not given. */
    int result = rotate_untraced(configuration, documents, count);
    for (int i = 0; i < 2 && result == 0; i++) {
        result = rotate_with_linked_library(configuration, documents, count);
        if (result == 0) {
            result = rotate_untraced(configuration, documents, count);
        }
    }
    return result;
}
