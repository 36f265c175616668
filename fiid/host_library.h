#pragma once

// Whether this code is part of the host library, which is compiled of the same sources once more. There the
// XML library is set up once for the process and then shared with whatever else runs in it, nothing is
// printed, files are not passed on to programs that other threads start, what was read of which file is
// traced, a damaged document is reported with its place, and the roots that later ones replace are freed with
// the others.
#ifdef FI_ROTATION_HOST_LIBRARY
constexpr bool kInHostLibrary = true;
#else
constexpr bool kInHostLibrary = false;
#endif
