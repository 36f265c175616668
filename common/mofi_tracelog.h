#pragma once

// The host's trace facility. The library only declares it: the host that loads the library supplies
// it, and every diagnostic of the library goes through it.
//
// `format` and the arguments follow printf. Formats carry a line end only where the text does;
// texts taken from documents or configurations are always arguments, never part of a format. The
// call is made on the thread that called the library and must not throw, because destructors trace
// too. (That of host/library_call.cpp throws when memory runs out, but never for their lines.)
//
// The public header declares it for hosts; where both are included, the compiler compares them.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" void mofi_tracelog(int level, const char* format, ...)
    __attribute__((format(printf, 2, 3), visibility("default")));

// Failures. One line that reports no failure stands at this level too: the flag word of each
// backup.
constexpr int kTraceFailure = 3;
// Progress, entry and exit lines, data dumps.
constexpr int kTraceProgress = 4;
