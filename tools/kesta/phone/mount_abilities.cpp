#include "phone/mount_abilities.h"

#include <cstdlib>

#include "os/files.h"
#include "phone/put_text.h"

namespace kesta {
namespace {

// A moment that no clock shows any more, with even seconds for FAT.
constexpr os::FileTime kProbeTime{1'000'000'000, 0};
constexpr int64_t kTimeTolerance = 2;
constexpr const char* kProbeText = "kesta tries out what this phone lets be done; this file can be removed\n";

bool KeepsTime(const std::string& path)
{
    os::FileInfo info;
    return os::SetModified(path, kProbeTime).ok() && os::ReadInfo(path, info).ok() &&
           std::abs(info.modified.seconds - kProbeTime.seconds) <= kTimeTolerance;
}

}  // namespace

os::Status ProbeMount(const std::string& folder, MountAbilities& abilities)
{
    const std::string first = os::Join(folder, ".kesta-probe-1"), second = os::Join(folder, ".kesta-probe-2");
    for (const std::string& path : {first, second}) {
        if (os::Status status = os::RemoveFileIfThere(path); !status.ok()) {
            return status;
        }
    }
    if (os::Status status = CreateText(first, kProbeText); !status.ok()) {
        (void)os::RemoveFile(first);
        return status;
    }
    std::string text;
    abilities.readsBack = os::ReadText(first, text).ok() && text == kProbeText;
    abilities.keepsTimes = KeepsTime(first);
    abilities.renames = os::Rename(first, second).ok();
    abilities.replaces = abilities.renames && CreateText(first, kProbeText).ok() && os::Rename(first, second).ok();
    for (const std::string& path : {first, second}) {
        if (os::Status status = os::RemoveFileIfThere(path); !status.ok()) {
            return status;
        }
    }
    return {};
}

bool CanMeanNoRename(const os::Status& status)
{
    switch (status.failure()) {
        case os::Failure::kNone:
        case os::Failure::kFull:
        case os::Failure::kReadOnly:
        case os::Failure::kGone:
        case os::Failure::kTooLong:
            return false;
        default:
            return true;
    }
}

}  // namespace kesta
