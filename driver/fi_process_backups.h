#ifndef FI_PROCESS_BACKUPS_H
#define FI_PROCESS_BACKUPS_H

/*
 * Rotation of snapshot targets: which targets may a new snapshot backup use?
 *
 * The host calls fi_process_backups before it takes a new snapshot backup. The call reads the
 * documents of the earlier backups, lets the newest ones keep their targets, releases those of the
 * oldest releasable ones, one backup at a time, until every configuration has a free target, and
 * says which target of each configuration to use.
 *
 * The host supplies the trace facility, mofi_tracelog.
 */

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C reads this header too. */

/* The version of the library that this header came with, for the preprocessor. */
/* NOLINTBEGIN(cppcoreguidelines-macro-to-enum,cppcoreguidelines-macro-usage,modernize-macro-to-enum) */
#define FI_ROTATION_VERSION_MAJOR 1
#define FI_ROTATION_VERSION_MINOR 0
#define FI_ROTATION_VERSION_PATCH 0
/* NOLINTEND(cppcoreguidelines-macro-to-enum,cppcoreguidelines-macro-usage,modernize-macro-to-enum) */

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The trace facility, which the host defines: the library calls it for every diagnostic, on the thread
 * that called the library. The format and the arguments are printf's and borrowed for the call; few texts
 * end with a line end. Level 3 carries failures, level 4 progress. It must not throw, end its thread or
 * call the library.
 *
 * This declaration makes it visible outside the program even when that is compiled with hidden visibility.
 * A program that loads the library at run time must also export it: link with
 * -Wl,--export-dynamic-symbol=mofi_tracelog.
 */
/* NOLINTNEXTLINE(readability-redundant-declaration): our own sources have one without this header. */
__attribute__((visibility("default"), format(printf, 2, 3))) void mofi_tracelog(int level, const char* format,
                                                                                ...);

/* Bit of a flag word: this backup is not rotated. That does not protect it if it is invalid. Other bits are
 * ignored. */
enum { FI_EXCLUDE_ROTATION = 4 };

/* Status of a call; no other value is returned. */
enum {
    FI_STATUS_SUCCESS = 0,
    /* An argument was rejected, no complete selection could be made, or the selection could not
     * be allocated. */
    FI_STATUS_FAILURE = 3
};

/* The state of an earlier backup after a call. */
enum {
    /* Its targets agree with the configuration and it keeps them. */
    FI_BACKUP_KEPT = 0,
    /* Its targets do not agree with the configuration, and it claims none, so that they may be chosen,
     * even if it is excluded. Or one of them was held already: by a newer backup, by one of the same time
     * stamp, or by another pair of its own. Its others then stay used, in each call, as long as its
     * document is listed. */
    FI_BACKUP_INVALID = 1,
    /* Its targets were released for the new backup. */
    FI_BACKUP_ROTATED = 2
};

/*
 * Chooses a free target for every configuration.
 *
 * fiidList
 *     fiidListSize NUL-terminated file names, each the document of one earlier backup, in any
 *     order. Borrowed for the call. May be null only when fiidListSize is not positive; no entry
 *     may be null. The files are read in this order up to the first that cannot be opened: that
 *     one and all after it are ignored, which is no failure. One line on standard
 *     output names it.
 *
 * resource_config_string
 *     NUL-terminated, borrowed for the call, never null. Configurations are separated by '&', line
 *     feed or carriage return, the targets of a configuration by ';'. A target is
 *     ENCLOSURE##DEVICE or, with the enclosure of the target before it, DEVICE. The first target
 *     names the device that is backed up, the further ones are the candidates for its snapshots.
 *     The references &amp; &lt; &gt; &quot; and &#39; are decoded before anything else. A malformed
 *     configuration is traced and does not end the call: the configurations before it are used.
 *
 * fiidFlags
 *     fiidListSize flag words, fiidFlags[i] belonging to fiidList[i]; the caller's. May be null
 *     only when fiidListSize is 0.
 *     In: with FI_EXCLUDE_ROTATION or without. A name listed twice has the bit of its last entry.
 *     Out, on success: the final state (FI_BACKUP_...) of each backup whose document was loaded and
 *     holds a Node; the other entries keep their flag words. The exclude bit is overwritten with
 *     the rest of the word and must be set again before the next call.
 *
 * fiidListSize
 *     Number of entries. 0 for a first backup; fiidFlags is then not touched. A negative number
 *     stands for a list without entries.
 *
 * resultString
 *     Never null. On success *resultString receives the selection: "[FIRST;CHOSEN]" for each
 *     configuration in order with nothing in between, both targets as ENCLOSURE##DEVICE; an empty
 *     text when there is no configuration. It belongs to the caller, who releases it with free.
 *
 * Returns FI_STATUS_SUCCESS or FI_STATUS_FAILURE. On FI_STATUS_FAILURE, and when an exception
 * leaves the call, *resultString and all of fiidFlags are as they were. On every path all that the
 * call allocated for itself is released, with one exception: of a document with several top-level
 * Nodes only the last counts, and the others stay allocated for the life of the process.
 *
 * Exceptions: CFiUdidException (CFiUdidException.h) leaves the call when the document of an earlier
 * backup holds a malformed device identifier. A host in C++ catches it. A host in C cannot; it uses the host
 * library (host.h), which decides the same and throws nothing. When memory runs out, std::bad_alloc or an
 * exception of the XML library (which need not be a std::exception) leaves the call. When the XML library
 * cannot be set up, std::runtime_error or std::bad_alloc does; the next call tries again. If it fails too,
 * start the program anew.
 *
 * Threads: calls in one process must not overlap. The library takes no lock, and the set-up of the
 * XML library, which every call with earlier backups runs, is not thread-safe. The host serialises
 * its calls, on whichever threads it makes them, and with them any use of its own that sets up or
 * terminates the same XML library. It is not enough that the host keeps the XML library set up all the
 * time: each call still changes that library's count of its users, without a lock.
 */
__attribute__((visibility("default"))) int32_t fi_process_backups(const char* const* fiidList,
                                                                  const char* resource_config_string,
                                                                  int32_t* fiidFlags, int32_t fiidListSize,
                                                                  char** resultString);

#ifdef __cplusplus
}
#endif

#endif
