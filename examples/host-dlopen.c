/*
 * A host in C11 that loads the library when it runs. It needs the library's header to be built, and the
 * library itself only to be started.
 *
 *   c++ -c no_exceptions.cpp
 *   cc -std=c11 -c host-dlopen.c
 *   c++ -Wl,--export-dynamic-symbol=mofi_tracelog host-dlopen.o no_exceptions.o -ldl -o host-dlopen
 *   ./host-dlopen "$(cat resource.conf)" backup-*.xml
 *
 * Exit status: 0 a selection was made, 1 none was, 2 the call could not be made.
 */
#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

#include "no_exceptions.h"

/* The library's soname: the number changes only when programs built before would break. */
#define LIBRARY "libfi_rotation.so.1"

enum { SELECTED = 0, NOT_SELECTED = 1, NOT_CALLED = 2 };

enum { TRACE_FAILURE = 3 };

/*
 * Any bit but FI_EXCLUDE_ROTATION is the host's own. The library overwrites the words of the backups that
 * it loaded; in the others this bit remains, and so the two can be told apart.
 */
enum { NOT_LOADED = 256 };

/*
 * The library finds this function in the program by its name. The linker exports it only when told to,
 * since nothing that it sees refers to it: that is the -Wl option above (-rdynamic exports everything).
 * A host in production keeps these lines; this one shows only failures.
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

/*
 * RTLD_NOW: a missing mofi_tracelog is found here and has a message, not in the middle of a call.
 * The library stays loaded to the end of the process: an exception of its own could still be alive.
 */
static process_backups_function load_rotation(void) {
    void* library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        fprintf(stderr, "host-dlopen: cannot load %s: %s\n", LIBRARY, dlerror());
        return NULL;
    }
    process_backups_function function = NULL;
    /* C has no cast from an object pointer to a function pointer; POSIX promises that this works. */
    *(void**)&function = dlsym(library, "fi_process_backups");
    if (function == NULL) {
        fprintf(stderr, "host-dlopen: %s has no rotation: %s\n", LIBRARY, dlerror());
    }
    return function;
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

/* One call; `flags` holds a word for each document and receives the documents' states. */
static int rotate(process_backups_function function, const char* configuration, const char* const* documents,
                  int32_t* flags, int32_t count) {
    char* selection = NULL;
    char problem[256] = "";
    const int32_t status = call_without_exceptions(function, documents, configuration, flags, count,
                                                   &selection, problem, sizeof problem);
    if (status == CALL_ENDED_BY_EXCEPTION) {
        fprintf(stderr, "host-dlopen: %s\n", problem);
        return NOT_CALLED;
    }
    if (status != FI_STATUS_SUCCESS) {
        fprintf(stderr, "host-dlopen: no selection (status %d)\n", (int)status);
        return NOT_SELECTED;
    }
    printf("selection: %s\n", selection);
    for (int32_t i = 0; i < count; i++) {
        printf("%s: %s\n", documents[i], state_name(flags[i]));
    }
    free(selection);
    return SELECTED;
}

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: host-dlopen CONFIGURATION [DOCUMENT]...\n");
        return NOT_CALLED;
    }
    const int32_t count = argc - 2;
    const process_backups_function function = load_rotation();
    if (function == NULL) {
        return NOT_CALLED;
    }
    /* One more than needed, since malloc(0) may give NULL. */
    int32_t* flags = malloc(((size_t)count + 1) * sizeof *flags);
    if (flags == NULL) {
        fprintf(stderr, "host-dlopen: out of memory\n");
        return NOT_CALLED;
    }
    /* Set before every call: after one, the words are states. `| FI_EXCLUDE_ROTATION` protects a backup. */
    for (int32_t i = 0; i < count; i++) {
        flags[i] = NOT_LOADED;
    }
    const int result = rotate(function, argv[1], (const char* const*)(argv + 2), flags, count);
    free(flags);
    return result;
}
