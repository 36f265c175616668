#pragma once

#include <stdexcept>

namespace fi_rotate {

// The library and the XML library below it know no threads: within a process their work is done by one thread
// at a time. Held for that work only, and while a trace function runs.
class CProcessLock {
public:
    // Throws CMisuse when this thread holds it already, because a trace function runs a call;
    // std::runtime_error in a process that was forked while another thread held it, and in children of that
    // process; std::bad_alloc when the handler of forks cannot be registered.
    CProcessLock();
    ~CProcessLock();
    CProcessLock(const CProcessLock&) = delete;
    CProcessLock& operator=(const CProcessLock&) = delete;

    class CMisuse : public std::logic_error {
        using std::logic_error::logic_error;
    };
};

}  // namespace fi_rotate
