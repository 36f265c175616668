/*
 * A host in C that is linked with the library.
 *
 *   c++ $(pkg-config --cflags fi_rotation) -c no_exceptions.cpp
 *   cc  $(pkg-config --cflags fi_rotation) -c host-linked.c
 *   c++ host-linked.o no_exceptions.o $(pkg-config --libs fi_rotation) -o host-linked
 *   ./host-linked "$(cat resource.conf)" backup-*.xml
 *
 * Exit status: 0 a selection was made, 1 none was, 2 the call could not be made.
 */
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

#include "no_exceptions.h"

enum { SELECTED = 0, NOT_SELECTED = 1, NOT_CALLED = 2 };

enum { TRACE_FAILURE = 3 };

/*
 * Any bit but FI_EXCLUDE_ROTATION is the host's own. The library overwrites the words of the backups that
 * it loaded; in the others this bit remains, and so the two can be told apart.
 */
enum { NOT_LOADED = 256 };

/*
 * The library takes this function, which its header declares, from the program. The linker sees that and
 * exports it without being told. A host in production keeps these lines; this one shows only failures.
 */
void mofi_tracelog(int level, const char* format, ...) {
    if (level != TRACE_FAILURE) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    vfprintf(stderr, format, arguments);
    va_end(arguments);
    fputc('\n', stderr);
}

static const char* state_name(int32_t state) {
    switch (state) {
        case FI_BACKUP_KEPT:
            return "kept";
        case FI_BACKUP_INVALID:
            return "invalid";
        case FI_BACKUP_ROTATED:
            return "rotated";
        default:
            return "not loaded";
    }
}

static void show(const char* selection, const char* const* documents, const int32_t* flags, int32_t count) {
    printf("selection: %s\n", selection);
    for (int32_t i = 0; i < count; i++) {
        printf("%s: %s\n", documents[i], state_name(flags[i]));
    }
}

/* One call; `flags` holds a word for each document and receives the documents' states. */
static int rotate(const char* configuration, const char* const* documents, int32_t* flags, int32_t count) {
    char* selection = NULL;
    char problem[256] = "";
    const int32_t status = call_without_exceptions(fi_process_backups, documents, configuration, flags, count,
                                                   &selection, problem, sizeof problem);
    if (status == CALL_ENDED_BY_EXCEPTION) {
        fprintf(stderr, "host-linked: %s\n", problem);
        return NOT_CALLED;
    }
    if (status != FI_STATUS_SUCCESS) {
        fprintf(stderr, "host-linked: no selection (status %d)\n", (int)status);
        return NOT_SELECTED;
    }
    show(selection, documents, flags, count);
    /* The selection is the caller's and came from malloc. */
    free(selection);
    return SELECTED;
}

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: host-linked CONFIGURATION [DOCUMENT]...\n");
        return NOT_CALLED;
    }
    const int32_t count = argc - 2;
    /* One more than needed, since malloc(0) may give NULL. */
    int32_t* flags = malloc(((size_t)count + 1) * sizeof *flags);
    if (flags == NULL) {
        fprintf(stderr, "host-linked: out of memory\n");
        return NOT_CALLED;
    }
    /* Set before every call: after one, the words are states. `| FI_EXCLUDE_ROTATION` protects a backup. */
    for (int32_t i = 0; i < count; i++) {
        flags[i] = NOT_LOADED;
    }
    const int result = rotate(argv[1], (const char* const*)(argv + 2), flags, count);
    free(flags);
    return result;
}
