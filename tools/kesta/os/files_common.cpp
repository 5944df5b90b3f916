#include <array>
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

Status WriteText(const std::string& path, const std::string& temporary, std::string_view text)
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
