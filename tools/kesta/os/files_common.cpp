#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "os/files.h"

namespace kesta::os {

bool IsMissing(const std::string& path)
{
    FileInfo info;
    return ReadInfoOfLink(path, info).failure() == Failure::kMissing;
}

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

Status RemoveFileIfThere(const std::string& path)
{
    Status status = RemoveFile(path);
    return status.failure() == Failure::kMissing ? Status() : status;
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

Status CompareFiles(const std::string& path, const std::string& otherPath, FileComparison& comparison)
{
    comparison = {};
    InputFile file, other;
    if (Status status = file.open(path); !status.ok()) {
        return status;
    }
    if (Status status = other.open(otherPath); !status.ok()) {
        return status;
    }
    // A read may give less than was asked for, and not the same of both.
    const auto fill = [](InputFile& input, std::span<std::byte> buffer, size_t& size) -> Status {
        for (size = 0; size < buffer.size();) {
            size_t count = 0;
            if (Status status = input.read(buffer.subspan(size), count); !status.ok()) {
                return status;
            }
            if (count == 0) {
                break;
            }
            size += count;
        }
        return {};
    };
    constexpr size_t kBlock = size_t{1} << 17;
    std::vector<std::byte> bytes(kBlock), otherBytes(kBlock);
    for (;;) {
        size_t size = 0, otherSize = 0;
        if (Status status = fill(file, bytes, size); !status.ok()) {
            return status;
        }
        if (Status status = fill(other, otherBytes, otherSize); !status.ok()) {
            return status;
        }
        const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(size, otherSize));
        const auto common = std::mismatch(bytes.begin(), end, otherBytes.begin()).first - bytes.begin();
        comparison.common += static_cast<uint64_t>(common);
        if (size != otherSize || static_cast<size_t>(common) < size) {
            return {};
        }
        if (size == 0) {
            comparison.areSame = true;
            return {};
        }
    }
}

bool HoldSameBytes(const std::string& path, const std::string& otherPath)
{
    FileComparison comparison;
    return CompareFiles(path, otherPath, comparison).ok() && comparison.areSame;
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
