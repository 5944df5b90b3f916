#include <windows.h>

#include <algorithm>

#include "os/files.h"
#include "os/windows/error_status.h"
#include "os/windows/file_info.h"

namespace kesta::os {
namespace {

constexpr intptr_t kNone = -1;  // the value of INVALID_HANDLE_VALUE

HANDLE ToHandle(intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

intptr_t Open(const std::string& path, DWORD access, DWORD share, DWORD disposition, DWORD flags)
{
    const HANDLE handle = CreateFileW(ToNative(path).c_str(), access, share, nullptr, disposition, flags, nullptr);
    return reinterpret_cast<intptr_t>(handle);
}

void Close(intptr_t handle)
{
    if (handle != kNone) {
        (void)CloseHandle(ToHandle(handle));
    }
}

}  // namespace

InputFile::~InputFile()
{
    Close(handle_);
}

Status InputFile::open(const std::string& path)
{
    handle_ = Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
                   FILE_FLAG_SEQUENTIAL_SCAN);
    return handle_ == kNone ? LastError() : Status();
}

Status InputFile::readInfo(FileInfo& info) const
{
    return InfoOfHandle(ToHandle(handle_), info);
}

Status InputFile::read(std::span<std::byte> buffer, size_t& count)
{
    DWORD got = 0;
    const auto size = static_cast<DWORD>(std::min<size_t>(buffer.size(), 1u << 30));
    if (!ReadFile(ToHandle(handle_), buffer.data(), size, &got, nullptr)) {
        return LastError();
    }
    count = got;
    return {};
}

Status InputFile::seek(uint64_t position)
{
    LARGE_INTEGER offset;
    offset.QuadPart = static_cast<LONGLONG>(position);
    return SetFilePointerEx(ToHandle(handle_), offset, nullptr, FILE_BEGIN) ? Status() : LastError();
}

OutputFile::~OutputFile()
{
    Close(handle_);
}

Status OutputFile::create(const std::string& path)
{
    handle_ = Open(path, GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
    return handle_ == kNone ? LastError() : Status();
}

Status OutputFile::write(std::span<const std::byte> data)
{
    while (!data.empty()) {
        DWORD put = 0;
        const auto size = static_cast<DWORD>(std::min<size_t>(data.size(), 1u << 30));
        if (!WriteFile(ToHandle(handle_), data.data(), size, &put, nullptr)) {
            return LastError();
        }
        if (put == 0) {
            return FromErrorCode(ERROR_WRITE_FAULT);  // It would take nothing for ever.
        }
        data = data.subspan(put);
    }
    return {};
}

Status OutputFile::setModified(FileTime time)
{
    const FILETIME fileTime = ToFileTime(time);
    return SetFileTime(ToHandle(handle_), nullptr, &fileTime, &fileTime) ? Status() : LastError();
}

Status OutputFile::flush()
{
    return FlushFileBuffers(ToHandle(handle_)) ? Status() : LastError();
}

Status OutputFile::close()
{
    const HANDLE handle = ToHandle(handle_);
    handle_ = kNone;
    return CloseHandle(handle) ? Status() : LastError();
}

DirectoryLock::~DirectoryLock()
{
    Close(handle_);
}

Status DirectoryLock::acquire(const std::string& directory)
{
    // Nobody else can open the file while it is held, and it goes with its holder, however that ends.
    handle_ = Open(Join(directory, ".kesta-lock"), GENERIC_WRITE | DELETE, 0, OPEN_ALWAYS,
                   FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE);
    return handle_ == kNone ? LastError() : Status();
}

}  // namespace kesta::os
