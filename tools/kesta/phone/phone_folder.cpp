#include "phone/phone_folder.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "formats/digest.h"
#include "phone/move_file.h"

namespace kesta {
namespace {

// Calls the visitor with each folder above the file, from the outermost inwards, until it returns false.
template <class Visitor>
void VisitFolders(const std::string& phonePath, const Visitor& visit)
{
    for (auto slash = phonePath.find('/'); slash != std::string::npos; slash = phonePath.find('/', slash + 1)) {
        if (!visit(phonePath.substr(0, slash))) {
            return;
        }
    }
}

os::Status NoFolder(const std::string& phonePath)
{
    return {os::Failure::kOther, fmt::format("'{}' on the phone is no folder", Printable(phonePath))};
}

}  // namespace

ExitCode ExitCodeOf(const os::Status& status)
{
    switch (status.failure()) {
        case os::Failure::kBusy:
            return ExitCode::kAnotherSync;
        case os::Failure::kReadOnly:
        case os::Failure::kDenied:
            return ExitCode::kPhoneReadOnly;
        case os::Failure::kFull:
            return ExitCode::kPhoneFull;
        case os::Failure::kGone:
            return ExitCode::kPhoneGone;
        default:
            return ExitCode::kFailure;
    }
}

os::Status PhoneFolder::open()
{
    os::FileInfo info;
    if (os::Status status = os::ReadInfo(root_, info); !status.ok()) {
        return status;
    }
    if (info.kind != os::FileKind::kDirectory) {
        return {os::Failure::kOther, "it is not a folder"};
    }
    id_ = info.id;
    return {};
}

bool PhoneFolder::isStillThere() const
{
    os::FileInfo info;
    return os::ReadInfo(root_, info).ok() && info.id == id_;
}

bool PhoneFolder::isAnswering() const
{
    std::vector<os::DirectoryEntry> entries;
    return isStillThere() && os::ListDirectory(root_, entries).ok();
}

std::string PhoneFolder::native(const std::string& phonePath) const
{
    std::string path = phonePath;
    std::replace(path.begin(), path.end(), '/', os::kSeparator);
    return os::Join(root_, path);
}

PhoneFile PhoneFolder::find(const std::string& phonePath) const
{
    os::FileInfo info;
    if (os::Status status = os::ReadInfoOfLink(native(phonePath), info); !status.ok()) {
        // What the phone cannot name is not there; copying it will give the reason.
        if (status.failure() == os::Failure::kMissing || status.failure() == os::Failure::kTooLong) {
            return {};
        }
        throw StopRun(ExitCode::kPhoneGone,
                      fmt::format("the phone cannot be read: {}: {}", Printable(phonePath), status.text()));
    }
    return {info.kind == os::FileKind::kFile ? PhoneEntry::kFile : PhoneEntry::kOther, info.size,
            info.modified.seconds};
}

std::vector<std::string> PhoneFolder::names(const std::string& folder) const
{
    // A file of that name shows when something is to be written there.
    if (find(folder).entry != PhoneEntry::kOther) {
        return {};
    }
    std::vector<os::DirectoryEntry> entries;
    if (os::Status status = os::ListDirectory(native(folder), entries); !status.ok()) {
        throw StopRun(ExitCode::kPhoneGone, fmt::format("the phone cannot be read: {}: {}", folder, status.text()));
    }
    std::vector<std::string> names;
    for (os::DirectoryEntry& entry : entries) {
        if (entry.valid) {
            names.push_back(std::move(entry.name));
        }
    }
    return names;
}

bool PhoneFolder::holds(const std::string& phonePath, const std::string& text) const
{
    std::string contents;
    return os::ReadText(native(phonePath), contents).ok() && contents == text;
}

bool PhoneFolder::holdsFile(const std::string& phonePath, const std::string& pcPath) const
{
    return os::HoldSameBytes(native(phonePath), pcPath);
}

std::string PhoneFolder::digest(const std::string& phonePath) const
{
    std::string contents;
    return os::ReadText(native(phonePath), contents).ok() ? formats::Digest(contents) : std::string();
}

std::optional<StopRun> PhoneFolder::whyNothingCanBeWritten(const os::Status& status) const
{
    if (status.failure() == os::Failure::kGone || !isAnswering()) {
        return StopRun(ExitCode::kPhoneGone, "the phone went away");
    }
    if (status.failure() == os::Failure::kFull) {
        return StopRun(ExitCode::kPhoneFull, "the phone is full");
    }
    if (status.failure() == os::Failure::kReadOnly) {
        return StopRun(ExitCode::kPhoneReadOnly, "the phone is read-only");
    }
    return std::nullopt;
}

os::Status PhoneFolder::checkWay(const std::string& phonePath, Way& way) const
{
    way = Way::kPlain;
    os::Status result;
    VisitFolders(phonePath, [&](const std::string& folder) {
        os::FileInfo info;
        result = os::ReadInfoOfLink(native(folder), info);
        if (result.failure() == os::Failure::kMissing) {
            way = Way::kMissing;
            result = {};
            return false;
        }
        // A link could lead back to the PC, and what is removed there is nobody's copy.
        if (result.ok() && info.kind != os::FileKind::kDirectory) {
            result = NoFolder(folder);
        }
        return result.ok();
    });
    return result;
}

os::Status PhoneFolder::flushFolders(const std::vector<std::string>& folders) const
{
    os::Volume volume;
    if (folders.size() > 1 && volume.open(root_)) {
        return volume.flush();
    }
    for (const std::string& folder : folders) {
        if (os::Status status = os::FlushDirectory(folder); !status.ok()) {
            return status;
        }
    }
    return {};
}

os::Status PhoneFolder::makeFolders(const std::string& phonePath, os::Flush flush)
{
    os::Status result;
    std::vector<std::string> changed;
    VisitFolders(phonePath, [&](const std::string& folder) {
        if (checkedFolders_.contains(folder)) {
            return true;
        }
        const std::string path = native(folder);
        result = os::MakeDirectory(path);
        if (result.ok()) {
            changed.push_back(os::ParentOf(path));
        } else if (result.failure() == os::Failure::kExists) {
            os::FileInfo info;
            result = os::ReadInfoOfLink(path, info);
            if (result.ok() && info.kind != os::FileKind::kDirectory) {
                result = NoFolder(folder);
            }
        }
        if (result.ok()) {
            checkedFolders_.insert(folder);
        }
        return result.ok();
    });
    if (result.ok() && flush == os::Flush::kNow) {
        result = flushFolders(changed);
    }
    return result;
}

os::Status PhoneFolder::removeFile(const std::string& phonePath)
{
    Way way = Way::kPlain;
    if (os::Status status = checkWay(phonePath, way); !status.ok()) {
        return status;
    }
    if (way == Way::kMissing) {
        return {};
    }
    const std::string path = native(phonePath);
    if (os::Status status = os::RemoveFile(path); !status.ok()) {
        return status.failure() == os::Failure::kMissing ? os::Status() : status;
    }
    return os::FlushDirectory(os::ParentOf(path));
}

os::Status PhoneFolder::move(const std::string& phonePath, const std::string& newPath, os::Flush flush)
{
    Way way = Way::kPlain;
    if (os::Status status = checkWay(phonePath, way); !status.ok()) {
        return status;
    }
    if (way == Way::kMissing || find(phonePath).entry == PhoneEntry::kNothing) {
        return {};
    }
    if (os::Status status = makeFolders(newPath, flush); !status.ok()) {
        return status;
    }
    if (find(newPath).entry != PhoneEntry::kNothing) {
        return {os::Failure::kExists, fmt::format("{} is there already", Printable(newPath))};
    }
    const std::string from = native(phonePath), to = native(newPath);
    os::Status moved(os::Failure::kOther, {});
    if (abilities_.renames) {
        moved = os::Rename(from, to);
    }
    if (CanMeanNoRename(moved)) {
        moved = MoveByCopying(*this, phonePath, newPath);
    }
    if (!moved.ok()) {
        return moved;
    }
    if (os::Status status = os::FlushDirectory(os::ParentOf(to)); !status.ok()) {
        return status;
    }
    return flush == os::Flush::kNow ? os::FlushDirectory(os::ParentOf(from)) : os::Status();
}

os::Status PhoneFolder::tidyAbove(const std::string& phonePath)
{
    for (auto slash = phonePath.rfind('/'); slash != std::string::npos;) {
        const std::string folder = phonePath.substr(0, slash);
        slash = folder.rfind('/');
        if (slash == std::string::npos) {
            return {};  // The category's folder may be the phone's own.
        }
        checkedFolders_.erase(folder);
        const std::string path = native(folder);
        os::FileInfo info;
        if (os::ReadInfoOfLink(path, info).failure() == os::Failure::kMissing) {
            continue;
        }
        // Some drivers remove a folder with all that is in it, others give a reason of their own when they refuse.
        if (!os::IsEmptyDirectory(path)) {
            return {};
        }
        const os::Status status = os::RemoveEmptyDirectory(path);
        if (status.ok() || status.failure() == os::Failure::kMissing) {
            continue;
        }
        const bool isInUse = status.failure() == os::Failure::kNotEmpty || status.failure() == os::Failure::kExists;
        return isInUse ? os::Status() : status;
    }
    return {};
}

}  // namespace kesta
