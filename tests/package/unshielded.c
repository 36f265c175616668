/* A host in C that calls the library without a function in C++ between: what an exception does to it. */
#include <stdlib.h>

#include <fi_rotation/fi_process_backups.h>

void mofi_tracelog(int level, const char* format, ...) {
    (void)level;
    (void)format;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const char* const documents[] = {argv[2]};
    int32_t flags[] = {0};
    char* selection = NULL;
    const int32_t status = fi_process_backups(documents, argv[1], flags, 1, &selection);
    free(selection);
    return status == FI_STATUS_SUCCESS ? 0 : 1;
}
