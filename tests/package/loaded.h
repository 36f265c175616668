#ifndef LOADED_H
#define LOADED_H

/*
 * Loads the host library, makes a call with `count` documents and prints what examples/safe-host.c prints.
 * Returns its exit status, and 2 too when the library cannot be loaded.
 */
int rotate_with_loaded_library(const char* configuration, char* const* documents, int count);

#endif
