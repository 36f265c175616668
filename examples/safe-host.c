/*
 * A first host in C. It decides from whole inputs or not at all, and needs no trace function.
 *
 *   cc -std=c11 safe-host.c $(pkg-config --cflags --libs fi_rotation_host) -o safe-host
 *   ./safe-host "$(cat resource.conf)" backup-*.xml
 *
 * It only prints. A product takes no backup while one is invalid: a person must look at that one first.
 *
 * Exit status: 0 a selection was made, 1 no target may be used, 2 it could not be decided.
 */
#include <stdio.h>

#include <fi_rotation/host.h>

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

int main(int argc, char** argv) {
    /* A call without documents is that of a first backup: all targets are free. */
    if (argc < 3) {
        fprintf(stderr, "usage: safe-host CONFIGURATION DOCUMENT...\n");
        return 2;
    }
    fi_rotation_call* call = fi_rotation_call_new(argv[1]);
    for (int i = 2; i < argc; i++) {
        /* 1 instead of 0 excludes a backup from rotation. */
        fi_rotation_call_add(call, argv[i], 0);
    }
    /* What went wrong up to here, this says. */
    const fi_rotation_outcome outcome = fi_rotation_call_run(call);
    if (outcome == FI_ROTATION_SELECTED) {
        printf("selection: %s\n", fi_rotation_call_selection(call));
        for (int32_t i = 0; i < fi_rotation_call_backup_count(call); i++) {
            printf("%s: %s\n", fi_rotation_call_backup_file(call, i),
                   state_name(fi_rotation_call_backup_state(call, i)));
        }
    } else {
        fprintf(stderr, "%s\n", fi_rotation_call_message(call));
    }
    fi_rotation_call_free(call);
    if (outcome == FI_ROTATION_SELECTED) {
        return 0;
    }
    return outcome == FI_ROTATION_NO_FREE_TARGET ? 1 : 2;
}
