// Writes a ZIP archive: UTF-8 names, files and archives of any size, all contents with their CRC.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "os/files.h"

namespace kesta {

/// What the archive holds under a name; the name of a folder ends in '/'.
struct ZipEntry {
    std::string name;
    uint64_t size = 0;
    uint32_t crc = 0;
};

class ZipWriter {
public:
    ZipWriter();
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    /// Fails with kExists when something is at the path.
    os::Status create(const std::string& path);
    os::Status addFolder(const std::string& name, os::FileTime modified);
    /// The size is that to be expected; what is written counts. Files that do not shrink are stored as they are.
    os::Status beginFile(const std::string& name, os::FileTime modified, uint64_t size);
    os::Status write(std::span<const std::byte> data);
    os::Status endFile();
    /// Writes the directory of the archive and makes all of it survive a power failure.
    os::Status finish();

    /// What has been written so far.
    [[nodiscard]] const std::vector<ZipEntry>& entries() const { return entries_; }

private:
    class Output;
    os::Status begin(const std::string& name, os::FileTime modified, uint64_t size, bool isFolder);
    os::Status result(int32_t code) const;
    int32_t close();

    std::unique_ptr<Output> output_;
    void* zip_ = nullptr;
    std::vector<ZipEntry> entries_;
};

}  // namespace kesta
