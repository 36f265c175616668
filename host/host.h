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
 * It decides what fi_process_backups decides, but only from inputs that are whole: when a document cannot be
 * read, is damaged or changes during the call, or a configuration is malformed, it decides nothing and names
 * every such input. It writes no files; a call may be run again at any time.
 *
 * A product takes the new backup only after FI_ROTATION_SELECTED, and only while no backup is
 * FI_ROTATION_INVALID.
 *
 * Errors: no function throws, ends the process or prints (SECURITY.md has two exceptions, when memory runs
 * out on Debian 13, and while the library is loaded). Every function leaves errno and the cancellation state
 * of the thread as they were. Every function but fi_rotation_version accepts a null pointer, which stands for
 * a call that could not be allocated: running it returns FI_ROTATION_OUT_OF_MEMORY, all else does nothing.
 *
 * Threads: any number of threads may run calls at once, each its own fi_rotation_call; inside, they wait for
 * one another. One fi_rotation_call is used by one thread at a time. While it runs, the functions that would
 * change it do nothing, so its trace function cannot change it. The first run of the process sets up the XML
 * library (Xerces-C++), which nothing else in the process may set up or terminate meanwhile: make one run,
 * for which no documents are needed, before you start threads.
 *
 * Ownership: texts that are passed in are copied. Texts that are returned belong to the call and stay valid
 * until it is run again or freed. They end with a NUL byte; file names and texts of documents are returned as
 * they are, byte for byte.
 *
 * Indexes begin with 0. For an index that is out of range the functions return what they return for
 * "nothing": null, 0 for a count or a set, -1 for another number.
 */

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C reads this header too. */

/* The version of the library that this header came with, for the preprocessor; fi_process_backups.h has it
 * too. */
/* NOLINTBEGIN(cppcoreguidelines-macro-to-enum,cppcoreguidelines-macro-usage,modernize-macro-to-enum) */
#define FI_ROTATION_VERSION_MAJOR 1
#define FI_ROTATION_VERSION_MINOR 0
#define FI_ROTATION_VERSION_PATCH 0
/* NOLINTEND(cppcoreguidelines-macro-to-enum,cppcoreguidelines-macro-usage,modernize-macro-to-enum) */

#ifdef __cplusplus
extern "C" {
#endif

/* NOLINTBEGIN(modernize-use-using,cppcoreguidelines-macro-usage,performance-enum-size): C reads this too. */
#define FI_ROTATION_API __attribute__((visibility("default")))

/* The inputs of one rotation and, once it was run, its results. */
typedef struct fi_rotation_call fi_rotation_call;

/* The outcome of a run. */
typedef enum fi_rotation_outcome {
    /* Every configuration has a free target: there is a selection, and each backup whose document was not
     * ignored has its state. */
    FI_ROTATION_SELECTED = 0,
    /* The inputs are whole, but a configuration has no free target, even when every backup that may be
     * released is. */
    FI_ROTATION_NO_FREE_TARGET = 1,
    /* A configuration would keep fewer backups than fi_rotation_call_keep_at_least asks for. */
    FI_ROTATION_TOO_FEW_BACKUPS = 2,
    /* An input is not whole. The functions fi_rotation_call_problem_... tell which ones, and why. */
    FI_ROTATION_REFUSED = 3,
    /* Memory ran out, or a backup could not be added. Make a new call, and run that later. */
    FI_ROTATION_OUT_OF_MEMORY = 4,
    /* The trace function threw an exception. Correct it, or run without it. */
    FI_ROTATION_TRACE_FAILED = 5,
    /* The call was run from its own or another call's trace function, or by two threads at once: an error in
     * the program. */
    FI_ROTATION_MISUSED = 6,
    /* The XML library could not be set up, usually because memory ran out: run again later, and if it fails
     * again, start the program anew. Or this process was forked while another thread ran a call: no run of it
     * can succeed, only a program that it starts (exec). */
    FI_ROTATION_FAILED = 7
} fi_rotation_outcome;

/*
 * What can be wrong with an input. Each is a bit, so that a number can hold several. The call goes on in
 * spite of a problem that is permitted (fi_rotation_call_permit). With most of them, targets of a backup that
 * exists can then be given away. With FI_ROTATION_NOT_WELL_FORMED these can be targets that
 * fi_process_backups does not give away, because it has no limits of reading unless it was built hardened.
 */
typedef enum fi_rotation_problem {
    /* A configuration is malformed, or there is none, or an enclosure in it has more than 256 bytes.
     * Permitted: the configurations before the malformed one are used, and an enclosure of any length. If
     * there is none, the selection is an empty text. */
    FI_ROTATION_CONFIGURATION_REJECTED = 1,
    /* The document cannot be opened. Permitted: it and all documents after it are ignored, and each of these
     * has this problem, too. */
    FI_ROTATION_CANNOT_OPEN = 2,
    /* It is a folder, a pipe or a device. Permitted: a folder is read as an empty text, which is not
     * well-formed and has no Node; a pipe is waited for, and its NUL bytes are not noticed. */
    FI_ROTATION_NOT_A_FILE = 4,
    /* It cannot be read to its end. Permitted: what could be read is used. */
    FI_ROTATION_READ_ERROR = 8,
    /* It has more bytes than fi_rotation_call_limit_document allows. Permitted: it is read. Beyond 128 MiB it
     * is FI_ROTATION_NOT_WELL_FORMED, too, and has no Node. */
    FI_ROTATION_TOO_LARGE = 16,
    /* It holds a NUL byte, as text in UTF-16 does. Permitted: the rest of that line is ignored. */
    FI_ROTATION_NUL_BYTE = 32,
    /* It was listed before, under this name or another. Permitted: entries with the same name are one backup,
     * with one state, excluded if the last of them is; under another name, each counts for itself, and one of
     * the two becomes invalid if it holds a target. */
    FI_ROTATION_LISTED_TWICE = 64,
    /* It is not well-formed XML, or is beyond a limit of reading (SECURITY.md). Permitted: what was read
     * before that place is used. If that is nothing, as before some of the limits, it has no Node either. */
    FI_ROTATION_NOT_WELL_FORMED = 128,
    /* It has no Node. Permitted: it is ignored, and its targets look free. */
    FI_ROTATION_NO_NODE = 256,
    /* It has several top-level Nodes, which are in no other Node. Permitted: only the last one is used. */
    FI_ROTATION_SEVERAL_ROOTS = 512,
    /* It changed, or was replaced, while the call ran. Permitted: what was read is used. */
    FI_ROTATION_CHANGED = 1024,
    /* It holds a malformed identifier. This cannot be permitted. Pairs after the first that matches nothing
     * are not looked at: such a backup is invalid. */
    FI_ROTATION_MALFORMED_IDENTIFIER = 2048
} fi_rotation_problem;

/* The state of an earlier backup after a run. */
typedef enum fi_rotation_state {
    /* It has none, because there is no selection or its document was ignored. */
    FI_ROTATION_NO_STATE = -1,
    /* It agrees with the configuration and keeps its targets. */
    FI_ROTATION_KEPT = 0,
    /* It does not agree with the configuration, and claims nothing: all its targets may be chosen, even if it
     * is excluded. Or one of its targets is held already: by a newer backup, by one of the same time stamp,
     * or by another pair of its own. Then its other targets stay used until its document is removed. It is
     * never released: a person must correct the configuration, or delete the backup and its document. */
    FI_ROTATION_INVALID = 1,
    /* Its targets were released for the new backup. */
    FI_ROTATION_ROTATED = 2
} fi_rotation_state;

/* Receives a message of the trace, without a line end at its end; file names in it may hold line ends. `text`
 * is valid only until the function returns. Level 3 is for failures, and for the flag word of each backup,
 * which is none ("... exclude rotation flag [0] "); level 4 is for progress. Why a run is refused is not in
 * the trace but in fi_rotation_call_message. The function is called on the thread that runs the call; other
 * threads that want to run one wait meanwhile. If it throws, it is not called again, and the run ends with
 * FI_ROTATION_TRACE_FAILED. It must not end its thread (pthread_exit) or jump out of the run (longjmp).
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
 * Adds an earlier backup by the file name of its document. A call without any is that of a first backup, for
 * which all targets are free; it is not refused, so check that no list is empty by mistake. When `excluded`
 * is not 0, the targets of the backup are never released, which does not protect it while it is invalid.
 * Returns its index, or -1 when memory ran out or `file` is null. Then every run of this call returns
 * FI_ROTATION_OUT_OF_MEMORY, because the targets of the missing backup would be taken for free; make a new
 * call. (From the call's own trace function it returns -1 and does nothing.)
 */
FI_ROTATION_API int32_t fi_rotation_call_add(fi_rotation_call* call, const char* file, int32_t excluded);

/* Permits problems: a sum of values of fi_rotation_problem. By default none is permitted. */
FI_ROTATION_API void fi_rotation_call_permit(fi_rotation_call* call, uint32_t problems);

/* Sets how many bytes a document may have; larger ones are refused. 128 MiB is the default and the most. Set
 * ten times the size of your largest document: one that was made to be slow costs time and memory in
 * proportion to its bytes. */
FI_ROTATION_API void fi_rotation_call_limit_document(fi_rotation_call* call, uint64_t bytes);

/* Asks that, after the run, at least so many kept backups hold a target of each configuration; the new backup
 * is not counted. A configuration that has fewer before the run may not lose any. This does not change which
 * backups a run releases: where these are too many, the run decides nothing and returns
 * FI_ROTATION_TOO_FEW_BACKUPS. By default 0: all may be released.
 */
FI_ROTATION_API void fi_rotation_call_keep_at_least(fi_rotation_call* call, int32_t backups);

/* Asks for the reasons, the holders of targets and the numbers of kept backups, which take time, when
 * `wanted` is not 0. By default they are not asked for. */
FI_ROTATION_API void fi_rotation_call_ask_reasons(fi_rotation_call* call, int32_t wanted);

/* Passes every message of the trace up to `level` (3 or 4) to `function`, with `user`. By default, and with
 * null, to none. */
FI_ROTATION_API void fi_rotation_call_set_trace(fi_rotation_call* call, int32_t level,
                                                fi_rotation_trace_fn function, void* user);

/* ---- the run ---- */

/*
 * Decides. The results of a former run are gone when it begins; only when this call is running already, they
 * are left as they are and FI_ROTATION_MISUSED is returned.
 */
FI_ROTATION_API fi_rotation_outcome fi_rotation_call_run(fi_rotation_call* call);

/* The outcome of the last run in words, with file names and places: one line, or several. Never null. To log
 * a refusal, take the texts of its problems one by one and replace the control characters in each, because
 * file names may hold line ends. */
FI_ROTATION_API const char* fi_rotation_call_message(const fi_rotation_call* call);

/* ---- the problems found, permitted ones included ---- */

FI_ROTATION_API int32_t fi_rotation_call_problem_count(const fi_rotation_call* call);
/* A value of fi_rotation_problem. */
FI_ROTATION_API uint32_t fi_rotation_call_problem_kind(const fi_rotation_call* call, int32_t problem);
/* The index of the backup; -1 for the configuration. */
FI_ROTATION_API int32_t fi_rotation_call_problem_backup(const fi_rotation_call* call, int32_t problem);
/* The problem in words, with the file name and the place. */
FI_ROTATION_API const char* fi_rotation_call_problem_text(const fi_rotation_call* call, int32_t problem);

/* ---- the decision ---- */

/* The selection: "[FIRST;CHOSEN]" for each configuration in order, with nothing in between; null unless the
 * outcome is FI_ROTATION_SELECTED. */
FI_ROTATION_API const char* fi_rotation_call_selection(const fi_rotation_call* call);

/* The configurations, known with FI_ROTATION_SELECTED, FI_ROTATION_NO_FREE_TARGET and
 * FI_ROTATION_TOO_FEW_BACKUPS. Targets are named ENCLOSURE##DEVICE. */
FI_ROTATION_API int32_t fi_rotation_call_configuration_count(const fi_rotation_call* call);
FI_ROTATION_API const char* fi_rotation_call_configuration_first(const fi_rotation_call* call,
                                                                 int32_t configuration);
/* The target to use; null without a selection. */
FI_ROTATION_API const char* fi_rotation_call_configuration_chosen(const fi_rotation_call* call,
                                                                  int32_t configuration);

/*
 * How many kept backups, excluded ones included, hold a target of the configuration after the run (-1 when
 * not known), and its further targets, each with the index of the backup that holds it, which may be an
 * invalid one (-1 when it is free).
 * Known when reasons were asked for, and always with FI_ROTATION_NO_FREE_TARGET and
 * FI_ROTATION_TOO_FEW_BACKUPS. With these two, where in fact no backup is released, it is what the releases
 * would have led to.
 */
FI_ROTATION_API int32_t fi_rotation_call_configuration_kept(const fi_rotation_call* call,
                                                            int32_t configuration);
FI_ROTATION_API int32_t fi_rotation_call_target_count(const fi_rotation_call* call, int32_t configuration);
FI_ROTATION_API const char* fi_rotation_call_target(const fi_rotation_call* call, int32_t configuration,
                                                    int32_t target);
FI_ROTATION_API int32_t fi_rotation_call_target_holder(const fi_rotation_call* call, int32_t configuration,
                                                       int32_t target);

/*
 * ---- the backups, in the order of adding ----
 *
 * Time stamp, targets and reason are known when reasons were asked for, and always with
 * FI_ROTATION_NO_FREE_TARGET and FI_ROTATION_TOO_FEW_BACKUPS; never with FI_ROTATION_REFUSED.
 */

FI_ROTATION_API int32_t fi_rotation_call_backup_count(const fi_rotation_call* call);
FI_ROTATION_API const char* fi_rotation_call_backup_file(const fi_rotation_call* call, int32_t backup);
/* The problems of its document, a sum of values of fi_rotation_problem; 0 when it was read whole. */
FI_ROTATION_API uint32_t fi_rotation_call_backup_problems(const fi_rotation_call* call, int32_t backup);
FI_ROTATION_API fi_rotation_state fi_rotation_call_backup_state(const fi_rotation_call* call, int32_t backup);
/* The time stamp of its document; null when that has none, or when it is not known, as for a backup that does
 * not agree with the configuration or whose document was not read. */
FI_ROTATION_API const char* fi_rotation_call_backup_time_stamp(const fi_rotation_call* call, int32_t backup);
/* The targets that it held before any was released, ENCLOSURE##DEVICE. Of an invalid backup none are named,
 * not even those that stay used. */
FI_ROTATION_API int32_t fi_rotation_call_backup_target_count(const fi_rotation_call* call, int32_t backup);
FI_ROTATION_API const char* fi_rotation_call_backup_target(const fi_rotation_call* call, int32_t backup,
                                                           int32_t target);
/* The reason of its state, null when it is not known: a word for programs ("newest_holder", "holds_nothing",
 * "excluded", "rotation_stopped", "needed", "in_vain", "unknown_target", "unknown_configuration",
 * "held_already"; fi-rotate(1) says what each means), and a text for people. */
FI_ROTATION_API const char* fi_rotation_call_backup_reason(const fi_rotation_call* call, int32_t backup);
FI_ROTATION_API const char* fi_rotation_call_backup_reason_text(const fi_rotation_call* call, int32_t backup);

#undef FI_ROTATION_API
/* NOLINTEND(modernize-use-using,cppcoreguidelines-macro-usage,performance-enum-size) */

#ifdef __cplusplus
}
#endif

#endif
