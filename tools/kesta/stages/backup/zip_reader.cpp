#include "stages/backup/zip_reader.h"

#include <string_view>

#include "stages/backup/zip_input.h"

namespace kesta {
namespace {

constexpr size_t kBlock = 1 << 18;

}  // namespace

class ZipReader::State {
public:
    ZipInput input;
    ZipHandle zip;
};

ZipReader::ZipReader() : state_(std::make_unique<State>())
{
}

ZipReader::~ZipReader() = default;

os::Status ZipReader::open(const std::string& path)
{
    os::Status notAnArchive(os::Failure::kOther, "it is not a ZIP archive, or damaged");
    if (os::Status status = state_->input.open(path); !status.ok()) {
        return status;
    }
    void* zip = state_->zip.get();
    if (mz_zip_open(zip, state_->input.stream(), MZ_OPEN_MODE_READ) != MZ_OK) {
        return notAnArchive;
    }
    int32_t next = mz_zip_goto_first_entry(zip);
    for (; next == MZ_OK; next = mz_zip_goto_next_entry(zip)) {
        mz_zip_file* info = nullptr;
        if (mz_zip_entry_get_info(zip, &info) != MZ_OK || info->filename == nullptr || info->uncompressed_size < 0) {
            return notAnArchive;
        }
        const std::string_view name = info->filename;
        if (!name.ends_with('/')) {
            items_.push_back({std::string(name),
                              static_cast<uint64_t>(info->uncompressed_size),
                              {static_cast<int64_t>(info->modified_date), 0},
                              mz_zip_get_entry(zip)});
        }
    }
    return next == MZ_END_OF_LIST ? os::Status() : notAnArchive;
}

os::Status ZipReader::extract(const ZipItem& item, const Sink& sink)
{
    void* zip = state_->zip.get();
    os::Status damaged(os::Failure::kOther, "the archive is damaged there");
    if (mz_zip_goto_entry(zip, item.position) != MZ_OK || mz_zip_entry_read_open(zip, 0, nullptr) != MZ_OK) {
        return damaged;
    }
    std::vector<std::byte> buffer(kBlock);
    uint64_t total = 0;
    for (;;) {
        const int32_t count = mz_zip_entry_read(zip, buffer.data(), static_cast<int32_t>(buffer.size()));
        if (count < 0) {
            (void)mz_zip_entry_close(zip);
            return state_->input.status().ok() ? damaged : state_->input.status();
        }
        if (count == 0) {
            break;
        }
        total += static_cast<uint64_t>(count);
        if (os::Status status = sink(std::span(buffer).first(static_cast<size_t>(count))); !status.ok()) {
            (void)mz_zip_entry_close(zip);
            return status;
        }
    }
    // Compares the CRC of what was unpacked with the archive's.
    const bool isIntact = mz_zip_entry_close(zip) == MZ_OK && total == item.size;
    return isIntact ? os::Status() : damaged;
}

}  // namespace kesta
