#include "stages/backup/zip_check.h"

#include <fmt/format.h>

#include "stages/backup/zip_input.h"

namespace kesta {
namespace {

class Checker {
public:
    Checker(void* zip, ZipInput& input, const std::function<bool(size_t)>& keepGoing)
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
    ZipInput& input_;
    const std::function<bool(size_t)>& keepGoing_;
    std::vector<std::byte> buffer_;
};

}  // namespace

os::Status CheckZip(const std::string& path, const std::vector<ZipEntry>& expected,
                    const std::function<bool(size_t)>& keepGoing)
{
    ZipInput input;
    if (os::Status status = input.open(path); !status.ok()) {
        return status;
    }
    const ZipHandle archive;
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
