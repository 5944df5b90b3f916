// Reads an archive that a backup has written.
//
//     ZipReader zip;
//     if (zip.open(path).ok()) zip.extract(zip.items().front(), [&](auto data) { return file.write(data); });
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "os/files.h"

namespace kesta {

struct ZipItem {
    std::string name;  // as it stands there, whoever wrote it; without folders
    uint64_t size = 0;
    os::FileTime modified;
    int64_t position = 0;
};

class ZipReader {
public:
    ZipReader();
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    /// Fails when it is not an archive that can be read.
    os::Status open(const std::string& path);
    [[nodiscard]] const std::vector<ZipItem>& items() const { return items_; }

    using Sink = std::function<os::Status(std::span<const std::byte>)>;
    /// Hands the contents to the sink. Fails when they are not those that were packed, by size and CRC.
    os::Status extract(const ZipItem& item, const Sink& sink);

private:
    class State;
    std::unique_ptr<State> state_;
    std::vector<ZipItem> items_;
};

}  // namespace kesta
