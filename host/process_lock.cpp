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
// Whether this process was forked while another thread held the mutex. That thread does not exist here, so
// the mutex stays locked.
bool isOwnerMissing = false;

bool isOwnedByThisThread() {
    return isOwned && pthread_equal(owner, pthread_self()) != 0;
}

// Nothing waits for the mutex before a fork: the call that holds it may be waiting for the thread that forks.
// So the child looks: when the mutex is free, or held by the thread that forked (in a trace function), calls
// can be run as before; otherwise they never can.
void afterForkInChild() {
    if (mutex.try_lock()) {
        mutex.unlock();
    } else if (!isOwnedByThisThread()) {
        isOwnerMissing = true;
        // A new thread may get the id of the one that had it.
        isOwned = false;
    }
}

void registerForkHandlerOnce() {
    static const int failure = pthread_atfork(nullptr, nullptr, afterForkInChild);
    if (failure != 0) {
        throw std::bad_alloc();
    }
}

}  // namespace

CProcessLock::CProcessLock() {
    registerForkHandlerOnce();
    if (isOwnedByThisThread()) {
        throw CMisuse("a call cannot be run from the trace function of a call");
    }
    if (isOwnerMissing) {
        throw std::runtime_error(
            "this process was forked while another thread ran a call, and cannot run any; "
            "fork while no call runs, or call exec in the child");
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
