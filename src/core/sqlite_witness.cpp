#include "core/sqlite_witness.h"

#include <sqlite3.h>

#include <filesystem>
#include <system_error>

#include "platform/files.h"

namespace kesta {
namespace {

constexpr const char* kVfsName = "kesta-witness";

/// Our file; the system's own lies right behind it.
struct WatchedFile {
    sqlite3_file base;

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

struct State {
    sqlite3_vfs vfs = {};
    sqlite3_vfs* system = nullptr;
    bool failed = false;
};

State state;

/// Notes every code that tells of a failure. A file that ends before the wanted bytes, a lock that another program
/// holds and a request that the system does not know are none.
int Noted(int code) noexcept
{
    if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ && code != SQLITE_BUSY && code != SQLITE_NOTFOUND) {
        state.failed = true;
    }
    return code;
}

/// Hands a method of a file on to the system's.
template <auto Method, class... Args>
int Forward(sqlite3_file* file, Args... args) noexcept
{
    sqlite3_file* const real = reinterpret_cast<WatchedFile*>(file)->real();
    return Noted((real->pMethods->*Method)(real, args...));
}

void ForwardBarrier(sqlite3_file* file) noexcept
{
    sqlite3_file* const real = reinterpret_cast<WatchedFile*>(file)->real();
    real->pMethods->xShmBarrier(real);
}

/// Answers with a property instead of a code.
template <auto Method>
int Property(sqlite3_file* file) noexcept
{
    sqlite3_file* const real = reinterpret_cast<WatchedFile*>(file)->real();
    return (real->pMethods->*Method)(real);
}

using Methods = sqlite3_io_methods;

// Version 2: with the shared memory of write-ahead logs, without mapping the file itself.
constexpr Methods kMethods = {
    2,
    &Forward<&Methods::xClose>,
    &Forward<&Methods::xRead, void*, int, sqlite3_int64>,
    &Forward<&Methods::xWrite, const void*, int, sqlite3_int64>,
    &Forward<&Methods::xTruncate, sqlite3_int64>,
    &Forward<&Methods::xSync, int>,
    &Forward<&Methods::xFileSize, sqlite3_int64*>,
    &Forward<&Methods::xLock, int>,
    &Forward<&Methods::xUnlock, int>,
    &Forward<&Methods::xCheckReservedLock, int*>,
    &Forward<&Methods::xFileControl, int, void*>,
    &Property<&Methods::xSectorSize>,
    &Property<&Methods::xDeviceCharacteristics>,
    &Forward<&Methods::xShmMap, int, int, int, void volatile**>,
    &Forward<&Methods::xShmLock, int, int, int>,
    &ForwardBarrier,
    &Forward<&Methods::xShmUnmap, int>,
    nullptr,
    nullptr,
};

int Open(sqlite3_vfs* /*vfs*/, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) noexcept
{
    auto* const watched = reinterpret_cast<WatchedFile*>(file);
    watched->base.pMethods = nullptr;
    const int code = Noted(state.system->xOpen(state.system, name, watched->real(), flags, outFlags));
    if (watched->real()->pMethods != nullptr) {
        watched->base.pMethods = &kMethods;
    }
    return code;
}

int Delete(sqlite3_vfs* /*vfs*/, const char* name, int syncFolder) noexcept
{
    const int code = state.system->xDelete(state.system, name, syncFolder);
    return code == SQLITE_IOERR_DELETE_NOENT ? code : Noted(code);
}

/// Whether SQLite would see content under this name. The system's own answer takes every failure for an absence.
int HasContent(const char* name, int& answer)
{
    const platform::Path path(reinterpret_cast<const char8_t*>(name));
    answer = 0;
    switch (platform::Find(path)) {
        case platform::Presence::kAbsent:
            return SQLITE_OK;
        case platform::Presence::kPresent: {
            std::error_code failure;
            answer = std::filesystem::file_size(path, failure) > 0 ? 1 : 0;
            return failure ? SQLITE_IOERR_ACCESS : SQLITE_OK;
        }
        default:
            return SQLITE_IOERR_ACCESS;
    }
}

int Access(sqlite3_vfs* /*vfs*/, const char* name, int flags, int* answer) noexcept
{
    if (flags != SQLITE_ACCESS_EXISTS) {
        return Noted(state.system->xAccess(state.system, name, flags, answer));
    }
    try {
        return Noted(HasContent(name, *answer));
    } catch (...) {
        return Noted(SQLITE_IOERR_NOMEM);
    }
}

}  // namespace

Witness::Witness() noexcept
{
    state.system = sqlite3_vfs_find(nullptr);
    state.failed = state.system == nullptr;
    if (state.failed) {
        return;
    }
    // Whatever else SQLite asks goes to the system's functions directly.
    state.vfs = *state.system;
    state.vfs.pNext = nullptr;
    state.vfs.zName = kVfsName;
    state.vfs.szOsFile = static_cast<int>(sizeof(WatchedFile)) + state.system->szOsFile;
    state.vfs.xOpen = &Open;
    state.vfs.xDelete = &Delete;
    state.vfs.xAccess = &Access;
    sqlite3_vfs_register(&state.vfs, 0);
}

Witness::~Witness()
{
    sqlite3_vfs_unregister(&state.vfs);
}

bool Witness::sawFailure() const
{
    return state.failed;
}

const char* Witness::vfsName() const
{
    return kVfsName;
}

}  // namespace kesta
