#pragma once

#include <csignal>
#include <string_view>

namespace fi_rotate {

// How fi-rotate ends, whichever subcommand it ran.
enum EExit : int {
    kExitDone = 0,
    kExitNotWritten = 1,
    kExitUsage = 2,
    kExitNegative = 3,
    kExitException = 4,
    kExitWarnings = 5,
    kExitNotWhole = 6,
    kExitTooFewKept = 7,
    // Plus the number of the signal, as shells report a program that was ended by a signal.
    kExitSignal = 128,
};

struct SExitStatus {
    int status;
    // The subcommand that exits with it, or "all".
    std::string_view subcommand;
    std::string_view meaning;
};

// In the order of the statuses. The manual page fi-rotate(1) has the same rows; a test compares them.
constexpr SExitStatus kExitStatuses[] = {
    {kExitDone, "select", "there is a selection"},
    {kExitDone, "check", "no errors and no warnings"},
    {kExitDone, "explain", "the calls are shown"},
    {kExitDone, "simulate", "the rounds were run, with or without a target for each"},
    {kExitNotWritten, "all", "the output could not be written, or the work could not be finished"},
    {kExitUsage, "all", "wrong usage, or a file (not a document) cannot be used; nothing was done"},
    {kExitNegative, "select", "there is no selection"},
    {kExitNegative, "check", "errors were found"},
    {kExitNegative, "explain", "the log does not contain the call"},
    {kExitException, "select", "an exception left the library"},
    {kExitException, "simulate", "an exception left the library"},
    {kExitWarnings, "check", "warnings were found, but no errors"},
    {kExitNotWhole, "select",
     "documents were ignored or read only in part; with --strict, a document is missing or an input damaged, "
     "and nothing is decided"},
    {kExitTooFewKept, "select", "too few backups would be kept for --keep-at-least, and nothing is decided"},
    {kExitSignal + SIGINT, "simulate", "interrupted with Ctrl-C; the finished rounds are shown"},
};

}  // namespace fi_rotate
