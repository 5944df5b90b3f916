#include "stages/backup/zip_writer.h"

#include <fmt/format.h>
#include <mz.h>
#include <mz_strm.h>
#include <mz_zip.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "formats/ascii.h"

namespace kesta {
namespace {

constexpr size_t kBlock = 1 << 18;
constexpr int16_t kLevel = 6;
constexpr uint16_t kMadeByUnix = 3 << 8 | 45;
constexpr uint32_t kFileMode = 0100644u << 16;
constexpr uint32_t kFolderMode = 0040755u << 16 | 0x10;
// From here on the fields of 32 bits may not do, also when compressing makes the file a little larger.
constexpr uint64_t kNeeds64Bits = 0xF000'0000;

// Compressed already: another time would cost time and gain nothing.
bool IsCompressed(std::string_view name)
{
    constexpr std::array<std::string_view, 26> kEndings{
        "3gp", "7z",  "aac", "apk", "avi", "docx", "flac", "gif", "gz",   "heic", "jpeg", "jpg",  "m4a",
        "m4v", "mkv", "mov", "mp3", "mp4", "ogg",  "opus", "png", "webm", "webp", "wma",  "xlsx", "zip"};
    const auto dot = name.rfind('.');
    return dot != std::string_view::npos && std::any_of(kEndings.begin(), kEndings.end(), [&](std::string_view ending) {
               return formats::EqualsIgnoringCase(name.substr(dot + 1), ending);
           });
}

}  // namespace

// The stream that the library writes to. Its writes are many and small, so they are gathered here; a failure is kept,
// because the library passes on only that there was one, and not even that everywhere.
class ZipWriter::Output {
public:
    Output() { buffer_.reserve(kBlock); }

    os::Status create(const std::string& path) { return status_ = file_.create(path); }
    void* stream() { return &bridge_; }
    [[nodiscard]] const os::Status& status() const { return status_; }

    /// What is still written goes nowhere.
    void abandon() { status_ = {os::Failure::kOther, "the archive is abandoned"}; }

    os::Status finish()
    {
        drain();
        if (status_.ok()) {
            status_ = file_.flush();
        }
        if (status_.ok()) {
            status_ = file_.close();
        }
        return status_;
    }

private:
    struct Bridge {
        mz_stream stream;
        Output* output;
    };

    static Output& of(void* stream) { return *static_cast<Bridge*>(stream)->output; }
    static int32_t isOpen(void*) { return MZ_OK; }
    static int32_t write(void* stream, const void* data, int32_t size)
    {
        of(stream).append({static_cast<const std::byte*>(data), static_cast<size_t>(size)});
        return of(stream).status_.ok() ? size : MZ_WRITE_ERROR;
    }
    static int64_t tell(void* stream) { return static_cast<int64_t>(of(stream).position_); }

    void append(std::span<const std::byte> data)
    {
        position_ += data.size();
        while (!data.empty() && status_.ok()) {
            const auto part = data.first(std::min(data.size(), kBlock - buffer_.size()));
            buffer_.insert(buffer_.end(), part.begin(), part.end());
            data = data.subspan(part.size());
            if (buffer_.size() == kBlock) {
                drain();
            }
        }
    }

    void drain()
    {
        if (status_.ok()) {
            status_ = file_.write(buffer_);
        }
        buffer_.clear();
    }

    static inline mz_stream_vtbl kTable{nullptr, isOpen,  nullptr, write,   tell,    nullptr,
                                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    Bridge bridge_{{&kTable, nullptr}, this};
    os::OutputFile file_;
    os::Status status_;
    std::vector<std::byte> buffer_;
    uint64_t position_ = 0;
};

ZipWriter::ZipWriter() : output_(std::make_unique<Output>())
{
}

ZipWriter::~ZipWriter()
{
    output_->abandon();
    (void)close();
}

/// Closing frees what the library holds, and writes the directory of the archive.
int32_t ZipWriter::close()
{
    if (zip_ == nullptr) {
        return MZ_OK;
    }
    const int32_t code = mz_zip_close(zip_);
    mz_zip_delete(&zip_);
    return code;
}

os::Status ZipWriter::result(int32_t code) const
{
    if (!output_->status().ok()) {
        return output_->status();
    }
    if (code == MZ_OK) {
        return {};
    }
    return {os::Failure::kOther, fmt::format("the archive cannot be written (code {})", code)};
}

os::Status ZipWriter::create(const std::string& path)
{
    if (os::Status status = output_->create(path); !status.ok()) {
        return status;
    }
    mz_zip_create(&zip_);
    return result(mz_zip_open(zip_, output_->stream(), MZ_OPEN_MODE_WRITE | MZ_OPEN_MODE_CREATE));
}

os::Status ZipWriter::begin(const std::string& name, os::FileTime modified, uint64_t size, bool isFolder)
{
    const bool isStored = isFolder || size == 0 || IsCompressed(name);
    mz_zip_file entry{};
    entry.version_madeby = kMadeByUnix;
    entry.flag = MZ_ZIP_FLAG_UTF8;
    entry.compression_method = isStored ? MZ_COMPRESS_METHOD_STORE : MZ_COMPRESS_METHOD_DEFLATE;
    // The format's own time is a local one to two seconds; with all three given, exact ones in UTC go along.
    entry.modified_date = entry.accessed_date = entry.creation_date = static_cast<time_t>(modified.seconds);
    entry.external_fa = isFolder ? kFolderMode : kFileMode;
    entry.uncompressed_size = static_cast<int64_t>(size);
    entry.zip64 = size >= kNeeds64Bits ? MZ_ZIP64_FORCE : MZ_ZIP64_AUTO;
    entry.filename = name.c_str();
    os::Status status = result(mz_zip_entry_write_open(zip_, &entry, isStored ? int16_t{0} : kLevel, 0, nullptr));
    if (status.ok()) {
        entries_.push_back({name, 0, 0});
    }
    return status;
}

os::Status ZipWriter::addFolder(const std::string& name, os::FileTime modified)
{
    if (os::Status status = begin(name + '/', modified, 0, true); !status.ok()) {
        return status;
    }
    return endFile();
}

os::Status ZipWriter::beginFile(const std::string& name, os::FileTime modified, uint64_t size)
{
    return begin(name, modified, size, false);
}

os::Status ZipWriter::write(std::span<const std::byte> data)
{
    const int32_t size = static_cast<int32_t>(data.size());
    const int32_t written = mz_zip_entry_write(zip_, data.data(), size);
    entries_.back().size += data.size();
    return result(written == size ? MZ_OK : written);
}

os::Status ZipWriter::endFile()
{
    const int32_t code = mz_zip_entry_write_close(zip_, 0, -1, static_cast<int64_t>(entries_.back().size));
    mz_zip_file* info = nullptr;
    if (mz_zip_entry_get_info(zip_, &info) == MZ_OK) {
        entries_.back().crc = info->crc;
    }
    return result(code);
}

os::Status ZipWriter::finish()
{
    if (os::Status status = result(close()); !status.ok()) {
        return status;
    }
    return output_->finish();
}

}  // namespace kesta
