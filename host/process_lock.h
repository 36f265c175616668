#pragma once

#include <stdexcept>

namespace fi_rotate {

// The library and the XML library below it know no threads: within a process their work is done by one thread
// at a time. Held for that work only, and while a trace function runs.
class CProcessLock {
public:
    // Throws CMisuse when this thread holds it already, and std::runtime_error when it cannot be had any
    // more.
    CProcessLock();
    ~CProcessLock();
    CProcessLock(const CProcessLock&) = delete;
    CProcessLock& operator=(const CProcessLock&) = delete;

    class CMisuse : public std::logic_error {
        using std::logic_error::logic_error;
    };
};

}  // namespace fi_rotate
