#include "faults/disk_fault.h"

#include <sqlite3.h>

#include <cstring>

namespace kesta::test {
namespace {

struct Fault {
    bool armed = false;
    DiskOperation operation = DiskOperation::kWrite;
    int remaining = 0;
    int code = SQLITE_OK;
    bool struck = false;
};

Fault fault;
sqlite3_vfs* systemFiles = nullptr;

/// SQLite's code when the operation is to fail now, else SQLITE_OK.
int Strike(DiskOperation operation)
{
    if (!fault.armed || fault.operation != operation || fault.remaining-- > 0) {
        return SQLITE_OK;
    }
    fault.remaining = 0;  // and so does every later one
    fault.struck = true;
    return fault.code;
}

/// Our file, with the system's own right behind it.
struct File {
    sqlite3_file base;

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    static File* of(sqlite3_file* file) { return reinterpret_cast<File*>(file); }
};

sqlite3_file* Real(sqlite3_file* file)
{
    return File::of(file)->real();
}

int Close(sqlite3_file* file)
{
    return Real(file)->pMethods->xClose(Real(file));
}
int Read(sqlite3_file* file, void* data, int bytes, sqlite3_int64 offset)
{
    if (const int code = Strike(DiskOperation::kRead); code != SQLITE_OK) {
        std::memset(data, 0, static_cast<size_t>(bytes));
        return code;
    }
    return Real(file)->pMethods->xRead(Real(file), data, bytes, offset);
}
int Write(sqlite3_file* file, const void* data, int bytes, sqlite3_int64 offset)
{
    const int code = Strike(DiskOperation::kWrite);
    return code != SQLITE_OK ? code : Real(file)->pMethods->xWrite(Real(file), data, bytes, offset);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    const int code = Strike(DiskOperation::kTruncate);
    return code != SQLITE_OK ? code : Real(file)->pMethods->xTruncate(Real(file), size);
}
int Sync(sqlite3_file* file, int flags)
{
    const int code = Strike(DiskOperation::kSync);
    return code != SQLITE_OK ? code : Real(file)->pMethods->xSync(Real(file), flags);
}
int FileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return Real(file)->pMethods->xFileSize(Real(file), size);
}
int Lock(sqlite3_file* file, int level)
{
    return Real(file)->pMethods->xLock(Real(file), level);
}
int Unlock(sqlite3_file* file, int level)
{
    return Real(file)->pMethods->xUnlock(Real(file), level);
}
int CheckReservedLock(sqlite3_file* file, int* reserved)
{
    return Real(file)->pMethods->xCheckReservedLock(Real(file), reserved);
}
int FileControl(sqlite3_file* file, int operation, void* argument)
{
    return Real(file)->pMethods->xFileControl(Real(file), operation, argument);
}
int SectorSize(sqlite3_file* file)
{
    return Real(file)->pMethods->xSectorSize(Real(file));
}
int DeviceCharacteristics(sqlite3_file* file)
{
    return Real(file)->pMethods->xDeviceCharacteristics(Real(file));
}

const sqlite3_io_methods kMethods = {1,
                                     &Close,
                                     &Read,
                                     &Write,
                                     &Truncate,
                                     &Sync,
                                     &FileSize,
                                     &Lock,
                                     &Unlock,
                                     &CheckReservedLock,
                                     &FileControl,
                                     &SectorSize,
                                     &DeviceCharacteristics,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    file->pMethods = nullptr;
    if (const int code = Strike(DiskOperation::kOpen); code != SQLITE_OK) {
        return code;
    }
    const int code = systemFiles->xOpen(systemFiles, name, Real(file), flags, outFlags);
    if (code == SQLITE_OK) {
        file->pMethods = &kMethods;
    }
    return code;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder)
{
    const int code = Strike(DiskOperation::kDelete);
    return code != SQLITE_OK ? code : systemFiles->xDelete(systemFiles, name, syncFolder);
}

sqlite3_vfs shim = {};

}  // namespace

void DiskFault::install()
{
    if (systemFiles != nullptr) {
        return;
    }
    systemFiles = sqlite3_vfs_find(nullptr);
    shim = *systemFiles;  // what is not replaced here gets the system's own entry, which does not look at its first
                          // argument
    shim.zName = "failing";
    shim.szOsFile = static_cast<int>(sizeof(File)) + systemFiles->szOsFile;
    shim.xOpen = &Open;
    shim.xDelete = &Delete;
    sqlite3_vfs_register(&shim, 1);
}

void DiskFault::arm(DiskOperation operation, int nth, int code)
{
    fault = {true, operation, nth, code, false};
}

void DiskFault::disarm()
{
    fault.armed = false;
}

bool DiskFault::hasStruck()
{
    return fault.struck;
}

}  // namespace kesta::test
