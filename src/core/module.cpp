#include "core/module.h"

#include "core/database_file.h"
#include "core/open_database.h"
#include "core/trace.h"
#include "platform/forks.h"
#include "platform/services.h"

namespace kesta {
namespace {

/// Never destroyed: its end is the unloading of the library, when ModuleEnd decides what may still go.
union Eternal {
    constexpr Eternal() : module() {}
    ~Eternal() {}
    Module module;
};

constinit Eternal eternal;

/// Where a lock file may lie: in the user's own folder, beside the database.
platform::Path DatabaseFolder()
{
    return DatabasePath().file().parent_path();
}

}  // namespace

Module& TheModule() noexcept
{
    return eternal.module;
}

void Module::start() noexcept
{
    platform::OpenTrace();
    DbAccessLock.open("NORVIK_KESTA_DB_ACCESS_MUTEX", &DatabaseFolder);
    watchForks();
    EscapeBuffer_.allocate();
    DbConnection.makeStatementsIn(EscapeBuffer_);
    (void)DB_Open();  // a caller who wants to know asks again
}

void Module::end() noexcept
{
    // A process may end while one of its threads is in the middle of a call. What that call uses is then left to it and
    // to the system; the journal keeps the file valid.
    if (callsInside_.load(std::memory_order_acquire) != 0) {
        return;
    }
    DbConnection.close();
    noteOpen();
    EscapeBuffer_.release();
    DbAccessLock.close();
    platform::CloseTrace();
}

Connection* Module::openConnection()
{
    if (forked_) {
        (void)OpenDatabase(*this, Trail("DB_Open"));
        forked_ = !DbConnection.isOpen();
    }
    return DbConnection.isOpen() ? &DbConnection : nullptr;
}

/// A fork waits until no call is in the middle of anything: the child would inherit half a transaction and undo it.
void Module::watchForks() noexcept
{
    platform::WatchForks([] { TheModule().DbAccessLock.lock(); }, [] { TheModule().DbAccessLock.unlock(); },
                         [] { TheModule().startAnewInChild(); });
}

/// The handle stays the parent's: closing it would let go of locks and touch files in the parent's name.
void Module::startAnewInChild() noexcept
{
    DbAccessLock.startAnewInChild();
    callsInside_.store(0, std::memory_order_relaxed);  // their threads are in the parent
    forked_ = forked_ || DbConnection.isOpen();
    DbConnection.abandon();
}

}  // namespace kesta
