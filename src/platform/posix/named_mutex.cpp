// The mutex lies in shared memory. A process that cannot use it says so there, and from then on everybody takes a lock
// file as well; a process that cannot even reach the memory takes the lock file alone.
#include "platform/named_mutex.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <new>

#include "platform/posix/lock_file.h"
#include "platform/posix/shared_mutex.h"

namespace kesta::platform {
namespace {

/// This process's side of a named mutex.
class Mutex {
public:
    void open(const char* name, Path (*lockFolder)()) noexcept;
    void close() noexcept;
    void lock() noexcept;
    void unlock() noexcept;
    void startAnewInChild() noexcept;

private:
    pthread_mutex_t& mutex() { return usesShared_ ? shared_->mutex : threads_; }
    bool takeMutex() noexcept;
    void takeFile() noexcept;
    void waitForTheOthers() noexcept;

    SharedMutex* shared_ = nullptr;
    std::atomic<bool> usesShared_ = false;  // whether the mutex in there is for this process
    bool firstTime_ = false;                // those who use it may still be in a call that began without the lock file
    pthread_mutex_t threads_ = {};          // excludes this process's threads where the other one is not used
    LockFile file_;
    char name_[64] = {};
    Path (*lockFolder_)() = nullptr;

    // Under the mutex.
    int depth_ = 0;
    bool fileTaken_ = false;
};

void Mutex::open(const char* name, Path (*lockFolder)()) noexcept
{
    std::snprintf(name_, sizeof name_, "%s", name);
    lockFolder_ = lockFolder;
    (void)InitialiseMutex(threads_, PTHREAD_PROCESS_PRIVATE);
    shared_ = AttachSegment(SegmentKey(name));
    if (shared_ == nullptr) {
        return;
    }
    usesShared_ = JoinMutex(*shared_);
    if (!usesShared_) {
        shared_->needsLockFile.store(1);
        firstTime_ = true;
    }
}

void Mutex::close() noexcept
{
    file_.close();
    if (shared_ != nullptr) {
        DetachSegment(shared_);
    }
    shared_ = nullptr;
    pthread_mutex_destroy(&threads_);
}

void Mutex::takeFile() noexcept
{
    fileTaken_ = file_.open(name_, lockFolder_);
    if (fileTaken_) {
        file_.lock();
    }
}

void Mutex::waitForTheOthers() noexcept
{
    constexpr int kPatienceMs = 15'000;  // longer than a statement waits for the database
    const auto isHeld = [this] {
        return shared_->stage.load() == SegmentStage::kReady && shared_->heldAlone.load() == 1;
    };
    for (int waited = 0; isHeld() && waited < kPatienceMs; ++waited) {
        SleepMs(1);
    }
}

/// False when the mutex answers what no mutex of ours does: somebody has written over it.
bool Mutex::takeMutex() noexcept
{
    const int answer = pthread_mutex_lock(&mutex());
    if (answer == EOWNERDEAD) {
        // The holder died in the middle of a call. The database heals itself by its journal: nothing is left to repair.
        pthread_mutex_consistent(&mutex());
        depth_ = 0;
    }
    return answer == 0 || answer == EOWNERDEAD || !usesShared_;
}

void Mutex::lock() noexcept
{
    if (!takeMutex()) {
        shared_->needsLockFile.store(1);
        usesShared_ = false;
        (void)takeMutex();
    }
    if (depth_++ > 0 || fileTaken_) {
        return;
    }
    if (!usesShared_) {
        takeFile();
        if (firstTime_) {
            waitForTheOthers();
            firstTime_ = false;
        }
        return;
    }
    // First said, then asked: of two who do so by turns at least one sees the other.
    shared_->heldAlone.store(1);
    if (shared_->needsLockFile.load() != 0) {
        shared_->heldAlone.store(0);
        takeFile();
    }
}

void Mutex::unlock() noexcept
{
    if (--depth_ == 0) {
        if (fileTaken_) {
            file_.unlock();
            fileTaken_ = false;
        } else if (usesShared_) {
            shared_->heldAlone.store(0);
        }
    }
    pthread_mutex_unlock(&mutex());
}

void Mutex::startAnewInChild() noexcept
{
    (void)InitialiseMutex(threads_, PTHREAD_PROCESS_PRIVATE);
    file_.openAnew();
    depth_ = 0;
    fileTaken_ = false;
}

/// Where there is no memory for one, and then shared by all.
constinit Mutex standIn;

Mutex* Of(void* handle)
{
    return static_cast<Mutex*>(handle);
}

}  // namespace

void NamedMutex::open(const char* name, Path (*lockFolder)()) noexcept
{
    close();
    auto* mutex = new (std::nothrow) Mutex;
    if (mutex == nullptr) {
        mutex = &standIn;
    }
    mutex->open(name, lockFolder);
    handle_ = mutex;
}

void NamedMutex::close() noexcept
{
    if (handle_ != nullptr) {
        Of(handle_)->close();
        if (handle_ != &standIn) {
            delete Of(handle_);
        }
    }
    handle_ = nullptr;
}

void NamedMutex::lock() noexcept
{
    if (handle_ != nullptr) {
        Of(handle_)->lock();
    }
}

void NamedMutex::unlock() noexcept
{
    if (handle_ != nullptr) {
        Of(handle_)->unlock();
    }
}

void NamedMutex::startAnewInChild() noexcept
{
    if (handle_ != nullptr) {
        Of(handle_)->startAnewInChild();
    }
}

}  // namespace kesta::platform
