#include "host/process_lock.h"

#include <pthread.h>

#include <atomic>
#include <mutex>
#include <new>

namespace fi_rotate {
namespace {

std::mutex mutex;
// Who has the mutex, while somebody has it.
std::atomic<pthread_t> owner;
std::atomic<bool> isOwned = false;
// This process was forked while another thread, which it does not have, was in the midst of a call.
bool isLost = false;

bool isOwnedByThisThread() {
    return isOwned && pthread_equal(owner, pthread_self()) != 0;
}

// A fork does not wait for the end of a call: what that call waits for may be the thread that forks.
void afterForkInChild() {
    if (mutex.try_lock()) {
        mutex.unlock();
    } else if (!isOwnedByThisThread()) {
        isLost = true;
        // A new thread may get the id of the one that had it.
        isOwned = false;
    }
}

// Once in a process.
void watchForks() {
    static const int failure = pthread_atfork(nullptr, nullptr, afterForkInChild);
    if (failure != 0) {
        throw std::bad_alloc();
    }
}

}  // namespace

CProcessLock::CProcessLock() {
    watchForks();
    if (isOwnedByThisThread()) {
        throw CMisuse("a call cannot be run from the trace function of a call");
    }
    if (isLost) {
        throw std::runtime_error(
            "this process was forked while another thread ran a call, and cannot run any; "
            "fork while none runs, or start a program");
    }
    mutex.lock();
    owner = pthread_self();
    isOwned = true;
}

CProcessLock::~CProcessLock() {
    isOwned = false;
    mutex.unlock();
}

}  // namespace fi_rotate
