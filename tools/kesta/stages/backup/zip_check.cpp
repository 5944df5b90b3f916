#include "stages/backup/zip_check.h"

#include <fmt/format.h>
#include <mz.h>
#include <mz_strm.h>
#include <mz_zip.h>

namespace kesta {
namespace {

// The stream that the library reads from.
class Input {
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
        Input* input;
    };

    static Input& of(void* stream) { return *static_cast<Bridge*>(stream)->input; }
    static int32_t isOpen(void*) { return MZ_OK; }
    static int64_t tell(void* stream) { return of(stream).position_; }

    static int32_t read(void* stream, void* data, int32_t size)
    {
        Input& input = of(stream);
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
        Input& input = of(stream);
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

    static inline mz_stream_vtbl table_{nullptr, isOpen,  read,    nullptr, tell,    seek,
                                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    Bridge bridge_{{&table_, nullptr}, this};
    os::InputFile file_;
    os::Status status_;
    int64_t position_ = 0, size_ = 0;
};

class Archive {
public:
    Archive() { mz_zip_create(&zip_); }
    ~Archive()
    {
        mz_zip_close(zip_);
        mz_zip_delete(&zip_);
    }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    [[nodiscard]] void* get() const { return zip_; }

private:
    void* zip_ = nullptr;
};

class Checker {
public:
    Checker(void* zip, Input& input, const std::function<bool(size_t)>& keepGoing)
        : zip_(zip), input_(input), keepGoing_(keepGoing), buffer_(1 << 18)
    {
    }

    // Sets stopped when keepGoing ended the check.
    os::Status check(const ZipEntry& expected, bool& stopped)
    {
        mz_zip_file* info = nullptr;
        if (mz_zip_entry_get_info(zip_, &info) != MZ_OK) {
            return damaged(expected.name);
        }
        if (info->filename != expected.name || static_cast<uint64_t>(info->uncompressed_size) != expected.size ||
            info->crc != expected.crc) {
            return damaged(expected.name);
        }
        if (expected.name.ends_with('/')) {
            return {};
        }
        if (mz_zip_entry_read_open(zip_, 0, nullptr) != MZ_OK) {
            return damaged(expected.name);
        }
        uint64_t total = 0;
        for (;;) {
            const int32_t count = mz_zip_entry_read(zip_, buffer_.data(), static_cast<int32_t>(buffer_.size()));
            if (count < 0) {
                return damaged(expected.name);
            }
            if (count == 0) {
                break;
            }
            total += static_cast<uint64_t>(count);
            stopped = !keepGoing_(static_cast<size_t>(count));
            if (stopped) {
                return {};
            }
        }
        // Compares the CRC of what was unpacked with the archive's.
        const bool isIntact = mz_zip_entry_close(zip_) == MZ_OK && total == expected.size;
        return isIntact ? os::Status() : damaged(expected.name);
    }

    [[nodiscard]] os::Status damaged(const std::string& what) const
    {
        if (!input_.status().ok()) {
            return input_.status();
        }
        return {os::Failure::kOther, fmt::format("it does not hold what was written to it: {}", what)};
    }

private:
    void* zip_;
    Input& input_;
    const std::function<bool(size_t)>& keepGoing_;
    std::vector<std::byte> buffer_;
};

}  // namespace

os::Status CheckZip(const std::string& path, const std::vector<ZipEntry>& expected,
                    const std::function<bool(size_t)>& keepGoing)
{
    Input input;
    if (os::Status status = input.open(path); !status.ok()) {
        return status;
    }
    const Archive archive;
    Checker checker(archive.get(), input, keepGoing);
    if (mz_zip_open(archive.get(), input.stream(), MZ_OPEN_MODE_READ) != MZ_OK) {
        return checker.damaged("its directory");
    }
    int32_t next = mz_zip_goto_first_entry(archive.get());
    for (const ZipEntry& entry : expected) {
        if (next != MZ_OK) {
            return checker.damaged(entry.name);
        }
        bool stopped = false;
        if (os::Status status = checker.check(entry, stopped); !status.ok() || stopped) {
            return status;
        }
        next = mz_zip_goto_next_entry(archive.get());
    }
    return next == MZ_END_OF_LIST ? os::Status() : checker.damaged("its directory");
}

}  // namespace kesta
