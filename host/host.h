#ifndef FI_ROTATION_HOST_H
#define FI_ROTATION_HOST_H

/*
 * Rotation of snapshot targets, made safe for its host: which targets may a new snapshot backup use?
 *
 *     fi_rotation_call *call = fi_rotation_call_new("encA##lun1;encA##snap1;snap2");
 *     fi_rotation_call_add(call, "monday.xml", 0);
 *     fi_rotation_call_add(call, "tuesday.xml", 1);
 *     if (fi_rotation_call_run(call) == FI_ROTATION_SELECTED) {
 *         puts(fi_rotation_call_selection(call));
 *     } else {
 *         fputs(fi_rotation_call_message(call), stderr);
 *     }
 *     fi_rotation_call_free(call);
 *
 * It decides what fi_process_backups decides, and only from inputs that are whole: when a document cannot be
 * read, is damaged or changes meanwhile, or a configuration is malformed, nothing is decided and every
 * offending input is named. Nothing is written anywhere; a call may be run again at any time.
 *
 * Errors: no function throws, ends the process or prints. errno and the cancellation state of the thread are
 * afterwards what they were before. Every function but fi_rotation_version takes a null pointer for a call
 * that could not be allocated: running it gives FI_ROTATION_OUT_OF_MEMORY, all else does nothing.
 *
 * Threads: any number of threads may run calls at once, each on its own fi_rotation_call; inside, they wait
 * for one another. One fi_rotation_call is used by one thread at a time. While it runs, that is from its
 * trace function, the functions that would change it do nothing.
 *
 * Ownership: texts that are passed in are copied. Texts that are returned belong to the call and stay as they
 * are until it is run again or freed. They are NUL-terminated; names of files and texts of documents are
 * handed on as they are, byte for byte.
 *
 * Indexes begin with 0. For an index that is out of range the functions return what they return for
 * "nothing": null, 0 for a count or a set, -1 for another number.
 */

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C reads this header too. */

#ifdef __cplusplus
extern "C" {
#endif

/* NOLINTBEGIN(modernize-use-using,cppcoreguidelines-macro-usage,performance-enum-size): C reads this too. */
#define FI_ROTATION_API __attribute__((visibility("default")))

/* The inputs of one rotation and, once it was run, what came of it. */
typedef struct fi_rotation_call fi_rotation_call;

/* What came of a run. */
typedef enum fi_rotation_outcome {
    /* Every configuration has a free target: there is a selection, and each backup has its state. */
    FI_ROTATION_SELECTED = 0,
    /* The inputs are whole, but some configuration has no free target even when all that may be released is.
     */
    FI_ROTATION_NO_FREE_TARGET = 1,
    /* A configuration would keep fewer backups than fi_rotation_call_keep_at_least asks for. */
    FI_ROTATION_TOO_FEW_BACKUPS = 2,
    /* An input is not whole; fi_rotation_call_problem_... name each. */
    FI_ROTATION_REFUSED = 3,
    /* Memory ran out. */
    FI_ROTATION_OUT_OF_MEMORY = 4,
    /* The trace function threw an exception. */
    FI_ROTATION_TRACE_FAILED = 5,
    /* The call was run from its own or another call's trace function, or by two threads at once. */
    FI_ROTATION_MISUSED = 6,
    /* The XML library could not be set up, mostly because memory ran out, or this process was forked while
       another thread ran a call. */
    FI_ROTATION_FAILED = 7
} fi_rotation_outcome;

/*
 * What can be wrong with an input; each is a bit, so that several can stand in one number. Where a problem is
 * permitted (fi_rotation_call_permit), that happens what fi_process_backups does.
 */
typedef enum fi_rotation_problem {
    /* Some configuration is malformed, or there is none. Permitted: those before the malformed one are used.
     */
    FI_ROTATION_CONFIGURATION_REJECTED = 1,
    /* The document cannot be opened. Permitted: neither it nor any document after it takes part. */
    FI_ROTATION_CANNOT_OPEN = 2,
    /* It is a folder, a pipe or a device. Permitted: a folder counts as empty, a pipe is waited for. */
    FI_ROTATION_NOT_A_FILE = 4,
    /* It cannot be read to its end. Permitted: what was read counts. */
    FI_ROTATION_READ_ERROR = 8,
    /* It has more bytes than fi_rotation_call_limit_document allows. Permitted: it is read. */
    FI_ROTATION_TOO_LARGE = 16,
    /* It holds a NUL byte, as text in UTF-16 does. Permitted: the rest of that line is ignored. */
    FI_ROTATION_NUL_BYTE = 32,
    /* It is listed a second time, under this name or another. Permitted: the last exclusion counts for both.
     */
    FI_ROTATION_LISTED_TWICE = 64,
    /* It is not well-formed XML, or asks too much of a reader (SECURITY.md). Permitted: what stands before
     * that place counts. */
    FI_ROTATION_NOT_WELL_FORMED = 128,
    /* It has no Node. Permitted: it does not take part. */
    FI_ROTATION_NO_NODE = 256,
    /* It has several Nodes that stand in no other. Permitted: only the last one counts. */
    FI_ROTATION_SEVERAL_ROOTS = 512,
    /* It changed, or was replaced, while the call ran. Permitted: what was read counts. */
    FI_ROTATION_CHANGED = 1024,
    /* A device or target in it has a malformed identifier. It cannot be permitted. */
    FI_ROTATION_MALFORMED_IDENTIFIER = 2048
} fi_rotation_problem;

/* What became of an earlier backup. */
typedef enum fi_rotation_state {
    /* It has none, because there is no selection or its document did not take part. */
    FI_ROTATION_NO_STATE = -1,
    /* It agrees with the configuration and keeps its targets. */
    FI_ROTATION_KEPT = 0,
    /* It does not agree with the configuration, or one of its targets is held already: by a newer backup, by
     * one of the same time stamp, or by another pair of its own. */
    FI_ROTATION_INVALID = 1,
    /* Its targets were released for the new backup. */
    FI_ROTATION_ROTATED = 2
} fi_rotation_state;

/*
 * Receives a line of the trace: level 3 for failures, 4 for progress, and the text without a line end,
 * borrowed for the call. It is called on the thread that runs the call, while other threads that want to run
 * one wait. If it throws, it is not called again, and the run ends with FI_ROTATION_TRACE_FAILED. It must not
 * end its thread (pthread_exit) or jump out of the run (longjmp).
 */
typedef void (*fi_rotation_trace_fn)(void* user, int32_t level, const char* text);

/* The version of the library that is loaded: "1.0.0". Never freed. */
FI_ROTATION_API const char* fi_rotation_version(void);

/* ---- inputs ---- */

/*
 * A new call for this resource configuration, to be freed with fi_rotation_call_free. Configurations are
 * separated by '&', line feed or carriage return, the targets of one by ';'; a target is ENCLOSURE##DEVICE
 * or, with the enclosure of the target before it, DEVICE. The first target names the device that is backed
 * up, the further ones are the candidates for its snapshots. Null when memory ran out; a null configuration
 * counts as an empty one.
 */
FI_ROTATION_API fi_rotation_call* fi_rotation_call_new(const char* configuration);

/* Frees the call and every text that it returned; when called from its own trace function, at the end of the
 * run. */
FI_ROTATION_API void fi_rotation_call_free(fi_rotation_call* call);

/*
 * Adds an earlier backup by the file name of its document. When `excluded` is not 0, its targets are never
 * released. Returns its index, or -1 when memory ran out or `file` is null; every run then ends without a
 * decision, since a backup that is not known would lose its targets.
 */
FI_ROTATION_API int32_t fi_rotation_call_add(fi_rotation_call* call, const char* file, int32_t excluded);

/* Permits problems, a sum of FI_ROTATION_... values of fi_rotation_problem; at first none is. */
FI_ROTATION_API void fi_rotation_call_permit(fi_rotation_call* call, uint32_t problems);

/* Documents of more bytes are refused; at first, and at most, 128 MiB. */
FI_ROTATION_API void fi_rotation_call_limit_document(fi_rotation_call* call, uint64_t bytes);

/*
 * Asks that of each configuration at least so many kept backups hold one of its targets after the run. A
 * configuration that has fewer to begin with may not lose any. At first 0: all may be released.
 */
FI_ROTATION_API void fi_rotation_call_keep_at_least(fi_rotation_call* call, int32_t backups);

/* Asks for the reasons, the holders of targets and the numbers of kept backups, which take time: not 0 for
 * yes; at first no. */
FI_ROTATION_API void fi_rotation_call_ask_reasons(fi_rotation_call* call, int32_t wanted);

/* Hands every line of the trace up to `level` (3 or 4) to `function`, with `user`; null for none, as at
 * first. */
FI_ROTATION_API void fi_rotation_call_set_trace(fi_rotation_call* call, int32_t level,
                                                fi_rotation_trace_fn function, void* user);

/* ---- the run ---- */

/*
 * Decides. What a former run left in the call is gone when it begins. With FI_ROTATION_MISUSED and a call
 * that is running, the call is left as it is.
 */
FI_ROTATION_API fi_rotation_outcome fi_rotation_call_run(fi_rotation_call* call);

/* What came of the last run in words, with the file and the place: a sentence, or several a line each. Never
 * null. */
FI_ROTATION_API const char* fi_rotation_call_message(const fi_rotation_call* call);

/* ---- the problems found, permitted ones included ---- */

FI_ROTATION_API int32_t fi_rotation_call_problem_count(const fi_rotation_call* call);
/* A value of fi_rotation_problem. */
FI_ROTATION_API uint32_t fi_rotation_call_problem_kind(const fi_rotation_call* call, int32_t problem);
/* The index of the backup; -1 for the configuration. */
FI_ROTATION_API int32_t fi_rotation_call_problem_backup(const fi_rotation_call* call, int32_t problem);
/* In words, with the file and the place. */
FI_ROTATION_API const char* fi_rotation_call_problem_text(const fi_rotation_call* call, int32_t problem);

/* ---- the decision ---- */

/* "[FIRST;CHOSEN]" for each configuration in order, with nothing in between; null unless the outcome is
 * FI_ROTATION_SELECTED. */
FI_ROTATION_API const char* fi_rotation_call_selection(const fi_rotation_call* call);

/* Configurations, known with FI_ROTATION_SELECTED, FI_ROTATION_NO_FREE_TARGET and
 * FI_ROTATION_TOO_FEW_BACKUPS. Targets are named ENCLOSURE##DEVICE. */
FI_ROTATION_API int32_t fi_rotation_call_configuration_count(const fi_rotation_call* call);
FI_ROTATION_API const char* fi_rotation_call_configuration_first(const fi_rotation_call* call,
                                                                 int32_t configuration);
/* The target to use; null without a selection. */
FI_ROTATION_API const char* fi_rotation_call_configuration_chosen(const fi_rotation_call* call,
                                                                  int32_t configuration);

/*
 * These are known when reasons were asked for, and always with FI_ROTATION_NO_FREE_TARGET and
 * FI_ROTATION_TOO_FEW_BACKUPS: how many kept backups hold one of the configuration's targets after the run
 * (-1 when not known), and each of its further targets with the index of the backup that holds it (-1 when it
 * is free). When no target is free, the backups that may be released have been.
 */
FI_ROTATION_API int32_t fi_rotation_call_configuration_kept(const fi_rotation_call* call,
                                                            int32_t configuration);
FI_ROTATION_API int32_t fi_rotation_call_target_count(const fi_rotation_call* call, int32_t configuration);
FI_ROTATION_API const char* fi_rotation_call_target(const fi_rotation_call* call, int32_t configuration,
                                                    int32_t target);
FI_ROTATION_API int32_t fi_rotation_call_target_holder(const fi_rotation_call* call, int32_t configuration,
                                                       int32_t target);

/* ---- the backups, in the order of adding ---- */

FI_ROTATION_API int32_t fi_rotation_call_backup_count(const fi_rotation_call* call);
FI_ROTATION_API const char* fi_rotation_call_backup_file(const fi_rotation_call* call, int32_t backup);
/* The problems of its document, a sum of values of fi_rotation_problem; 0 when it was read whole. */
FI_ROTATION_API uint32_t fi_rotation_call_backup_problems(const fi_rotation_call* call, int32_t backup);
FI_ROTATION_API fi_rotation_state fi_rotation_call_backup_state(const fi_rotation_call* call, int32_t backup);
/* The text of its document's timeStamp; null when not known, as for a backup that does not agree with the
 * configuration. Known when reasons were asked for, and with FI_ROTATION_NO_FREE_TARGET. */
FI_ROTATION_API const char* fi_rotation_call_backup_time_stamp(const fi_rotation_call* call, int32_t backup);
/* The targets that it held before any was released, ENCLOSURE##DEVICE; none of a backup that is invalid.
 * Known when reasons were asked for, and with FI_ROTATION_NO_FREE_TARGET. */
FI_ROTATION_API int32_t fi_rotation_call_backup_target_count(const fi_rotation_call* call, int32_t backup);
FI_ROTATION_API const char* fi_rotation_call_backup_target(const fi_rotation_call* call, int32_t backup,
                                                           int32_t target);
/* Why it came to its state, null when not known: a word for programs ("newest_holder", "holds_nothing",
 * "excluded", "rotation_stopped", "needed", "in_vain", "unknown_target", "unknown_configuration",
 * "held_already") and a sentence without a full stop for people. Known when reasons were asked for, and with
 * FI_ROTATION_NO_FREE_TARGET. */
FI_ROTATION_API const char* fi_rotation_call_backup_reason(const fi_rotation_call* call, int32_t backup);
FI_ROTATION_API const char* fi_rotation_call_backup_reason_text(const fi_rotation_call* call, int32_t backup);

#undef FI_ROTATION_API
/* NOLINTEND(modernize-use-using,cppcoreguidelines-macro-usage,performance-enum-size) */

#ifdef __cplusplus
}
#endif

#endif
