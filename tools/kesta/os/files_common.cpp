#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "os/files.h"

namespace kesta::os {

std::string Join(std::string_view directory, std::string_view name)
{
    std::string path(directory);
    if (!path.empty() && path.back() != kSeparator) {
        path += kSeparator;
    }
    path += name;
    return path;
}

std::string ParentOf(const std::string& path)
{
    const auto last = path.find_last_of(kSeparator);
    if (last == std::string::npos) {
        return path;
    }
    const bool isRoot = last == 0 || (last == 2 && path[1] == ':');
    return path.substr(0, isRoot ? last + 1 : last);
}

std::string NameOf(const std::string& path)
{
    const auto last = path.find_last_of(kSeparator);
    return last == std::string::npos ? path : path.substr(last + 1);
}

bool LiesIn(std::string_view path, std::string_view folder)
{
    return path == folder || path.starts_with(Join(folder, ""));
}

Status ReadText(const std::string& path, std::string& text)
{
    text.clear();
    InputFile file;
    if (Status status = file.open(path); !status.ok()) {
        return status;
    }
    std::array<std::byte, 16384> buffer;
    for (;;) {
        size_t count = 0;
        if (Status status = file.read(buffer, count); !status.ok()) {
            return status;
        }
        if (count == 0) {
            return {};
        }
        text.append(reinterpret_cast<const char*>(buffer.data()), count);
    }
}

Status ReadTextOf(std::string_view what, uint64_t largest, const std::string& path, std::string& text)
{
    FileInfo info;
    if (Status status = ReadInfo(path, info); !status.ok()) {
        return status;
    }
    if (info.kind != FileKind::kFile) {
        return {Failure::kOther, "it is not a file"};
    }
    if (info.size > largest) {
        return {Failure::kOther, "it is too large for " + std::string(what)};
    }
    return ReadText(path, text);
}

bool HoldSameBytes(const std::string& path, const std::string& otherPath)
{
    InputFile file, other;
    if (!file.open(path).ok() || !other.open(otherPath).ok()) {
        return false;
    }
    // A read may give less than was asked for, and not the same of both.
    const auto fill = [](InputFile& input, std::span<std::byte> buffer, size_t& size) {
        for (size = 0; size < buffer.size();) {
            size_t count = 0;
            if (!input.read(buffer.subspan(size), count).ok()) {
                return false;
            }
            if (count == 0) {
                break;
            }
            size += count;
        }
        return true;
    };
    constexpr size_t kBlock = size_t{1} << 17;
    std::vector<std::byte> bytes(kBlock), otherBytes(kBlock);
    for (;;) {
        size_t size = 0, otherSize = 0;
        if (!fill(file, bytes, size) || !fill(other, otherBytes, otherSize) || size != otherSize) {
            return false;
        }
        if (size == 0) {
            return true;
        }
        if (!std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size), otherBytes.begin())) {
            return false;
        }
    }
}

Status WriteText(const std::string& path, const std::string& temporary, std::string_view text,
                 const std::function<Status()>& makeWay)
{
    const auto write = [&]() -> Status {
        OutputFile file;
        if (Status status = file.create(temporary); !status.ok()) {
            return status;
        }
        if (Status status = file.write(std::as_bytes(std::span(text))); !status.ok()) {
            return status;
        }
        if (Status status = file.flush(); !status.ok()) {
            return status;
        }
        if (Status status = file.close(); !status.ok()) {
            return status;
        }
        if (Status status = makeWay ? makeWay() : Status(); !status.ok()) {
            return status;
        }
        return Rename(temporary, path);
    };
    // What a killed run left under the temporary name is of no use to anybody.
    if (Status status = RemoveFile(temporary); !status.ok() && status.failure() != Failure::kMissing) {
        return status;
    }
    if (Status status = write(); !status.ok()) {
        (void)RemoveFile(temporary);  // The first failure is the one to tell.
        return status;
    }
    return FlushDirectory(ParentOf(path));
}

}  // namespace kesta::os
