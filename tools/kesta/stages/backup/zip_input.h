// How archives are read: the client's own files beneath the library for ZIP. For zip_check.cpp and zip_reader.cpp.
#pragma once

#include <mz.h>
#include <mz_strm.h>
#include <mz_zip.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "os/files.h"

namespace kesta {

// The stream that the library reads from.
class ZipInput {
public:
    os::Status open(const std::string& path)
    {
        os::FileInfo info;
        status_ = file_.open(path);
        if (status_.ok()) {
            status_ = file_.readInfo(info);
        }
        size_ = static_cast<int64_t>(info.size);
        return status_;
    }
    void* stream() { return &bridge_; }
    [[nodiscard]] const os::Status& status() const { return status_; }

private:
    struct Bridge {
        mz_stream stream;
        ZipInput* input;
    };

    static ZipInput& of(void* stream) { return *static_cast<Bridge*>(stream)->input; }
    static int32_t isOpen(void*) { return MZ_OK; }
    static int64_t tell(void* stream) { return of(stream).position_; }

    static int32_t read(void* stream, void* data, int32_t size)
    {
        ZipInput& input = of(stream);
        size_t count = 0;
        input.status_ = input.file_.read({static_cast<std::byte*>(data), static_cast<size_t>(size)}, count);
        if (!input.status_.ok()) {
            return MZ_READ_ERROR;
        }
        input.position_ += static_cast<int64_t>(count);
        return static_cast<int32_t>(count);
    }

    static int32_t seek(void* stream, int64_t offset, int32_t origin)
    {
        ZipInput& input = of(stream);
        if (origin == MZ_SEEK_CUR) {
            offset += input.position_;
        }
        if (origin == MZ_SEEK_END) {
            offset += input.size_;
        }
        if (offset < 0 || offset > input.size_) {
            return MZ_SEEK_ERROR;
        }
        input.status_ = input.file_.seek(static_cast<uint64_t>(offset));
        if (!input.status_.ok()) {
            return MZ_SEEK_ERROR;
        }
        input.position_ = offset;
        return MZ_OK;
    }

    static inline mz_stream_vtbl kTable{nullptr, isOpen,  read,    nullptr, tell,    seek,
                                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    Bridge bridge_{{&kTable, nullptr}, this};
    os::InputFile file_;
    os::Status status_;
    int64_t position_ = 0, size_ = 0;
};

class ZipHandle {
public:
    ZipHandle() { mz_zip_create(&zip_); }
    ~ZipHandle()
    {
        mz_zip_close(zip_);
        mz_zip_delete(&zip_);
    }
    ZipHandle(const ZipHandle&) = delete;
    ZipHandle& operator=(const ZipHandle&) = delete;
    [[nodiscard]] void* get() const { return zip_; }

private:
    void* zip_ = nullptr;
};

}  // namespace kesta
