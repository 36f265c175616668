#include "loaded.h"

#include <dlfcn.h>
#include <stdio.h>

#include <fi_rotation/host.h>

#define LIBRARY "libfi_rotation_host.so.1"

/* What of the library is used here. */
struct functions {
    fi_rotation_call* (*call_new)(const char*);
    int32_t (*call_add)(fi_rotation_call*, const char*, int32_t);
    fi_rotation_outcome (*call_run)(fi_rotation_call*);
    const char* (*call_message)(const fi_rotation_call*);
    const char* (*call_selection)(const fi_rotation_call*);
    fi_rotation_state (*call_backup_state)(const fi_rotation_call*, int32_t);
    void (*call_free)(fi_rotation_call*);
};

/* Not 0 when the function was found. C has no cast from an object pointer to a function pointer. */
static int find(void* library, const char* name, void* function) {
    *(void**)function = dlsym(library, name);
    return *(void**)function != NULL;
}

static int load(struct functions* functions) {
    void* const library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return library != NULL && find(library, "fi_rotation_call_new", &functions->call_new) &&
           find(library, "fi_rotation_call_add", &functions->call_add) &&
           find(library, "fi_rotation_call_run", &functions->call_run) &&
           find(library, "fi_rotation_call_message", &functions->call_message) &&
           find(library, "fi_rotation_call_selection", &functions->call_selection) &&
           find(library, "fi_rotation_call_backup_state", &functions->call_backup_state) &&
           find(library, "fi_rotation_call_free", &functions->call_free);
}

static const char* state_name(fi_rotation_state state) {
    switch (state) {
        case FI_ROTATION_KEPT:
            return "kept";
        case FI_ROTATION_INVALID:
            return "invalid";
        case FI_ROTATION_ROTATED:
            return "rotated";
        default:
            return "not loaded";
    }
}

int rotate_with_loaded_library(const char* configuration, char* const* documents, int count) {
    struct functions library;
    if (!load(&library)) {
        fprintf(stderr, "cannot load %s: %s\n", LIBRARY, dlerror());
        return 2;
    }
    fi_rotation_call* const call = library.call_new(configuration);
    for (int i = 0; i < count; i++) {
        library.call_add(call, documents[i], 0);
    }
    const fi_rotation_outcome outcome = library.call_run(call);
    if (outcome == FI_ROTATION_SELECTED) {
        printf("selection: %s\n", library.call_selection(call));
        for (int i = 0; i < count; i++) {
            printf("%s: %s\n", documents[i], state_name(library.call_backup_state(call, i)));
        }
    } else {
        fprintf(stderr, "%s\n", library.call_message(call));
    }
    library.call_free(call);
    if (outcome == FI_ROTATION_SELECTED) {
        return 0;
    }
    return outcome == FI_ROTATION_NO_FREE_TARGET ? 1 : 2;
}
