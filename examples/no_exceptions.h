#ifndef NO_EXCEPTIONS_H
#define NO_EXCEPTIONS_H

/*
 * fi_process_backups for hosts in C, which cannot catch the exceptions that may leave it.
 *
 * An exception looks for a handler through all calling functions. It crosses functions in C only if they
 * were compiled with unwind tables (-fexceptions), and then without any of their clean-up: locks stay
 * locked, memory stays allocated. When it reaches a function without tables, or finds no handler up to
 * main, std::terminate ends the process. So it must be caught by a function in C++ directly above the
 * library, before it meets any C: no_exceptions.cpp is that function. Compile it with a C++ compiler and
 * link the program with one.
 */

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): C reads this header too. */

#include <fi_rotation/fi_process_backups.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The type of fi_process_backups: the linked function, or what dlsym found. */
typedef int32_t (*process_backups_function)(const char* const* fiidList, const char* resource_config_string,
                                            int32_t* fiidFlags, int32_t fiidListSize, char** resultString);

/* A status that the library itself never returns. */
enum { CALL_ENDED_BY_EXCEPTION = -1 };

/*
 * Calls `function` with the five arguments after it and returns its status. When an exception leaves it,
 * returns CALL_ENDED_BY_EXCEPTION and writes what happened to `problem`, at most `problemSize` bytes with
 * the NUL; the outputs of the call are as they were.
 */
int32_t call_without_exceptions(process_backups_function function, const char* const* fiidList,
                                const char* resource_config_string, int32_t* fiidFlags, int32_t fiidListSize,
                                char** resultString, char* problem, size_t problemSize);

#ifdef __cplusplus
}
#endif

#endif
