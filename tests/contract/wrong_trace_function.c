#include <fi_rotation/fi_process_backups.h>

void mofi_tracelog(const char* format, ...) {
    (void)format;
}
