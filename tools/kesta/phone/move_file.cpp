#include "phone/move_file.h"

#include "phone/copy_file.h"
#include "phone/put_text.h"

namespace kesta {
namespace {

std::string NotePath(const PhoneFolder& phone)
{
    return phone.native(std::string(kMoveNote));
}

os::Status Copy(const std::string& from, const std::string& to, MountAbilities abilities)
{
    CopyRequest request;
    request.source = from;
    request.target = to;
    request.abilities = abilities;
    request.abilities.renames = false;
    const CopyResult result = CopySafely(request);
    switch (result.outcome) {
        case CopyOutcome::kDone:
            return {};
        case CopyOutcome::kPhoneFull:
            return {os::Failure::kFull, result.reason};
        case CopyOutcome::kPhoneReadOnly:
            return {os::Failure::kReadOnly, result.reason};
        default:
            return {os::Failure::kOther, result.reason};
    }
}

}  // namespace

os::Status MoveByCopying(const PhoneFolder& phone, const std::string& phonePath, const std::string& newPath)
{
    const std::string note = NotePath(phone), from = phone.native(phonePath), to = phone.native(newPath);
    if (os::Status status = os::RemoveFileIfThere(note); !status.ok()) {
        return status;
    }
    os::Status status = CreateText(note, phonePath + '\n' + newPath + '\n');
    if (status.ok()) {
        status = Copy(from, to, phone.abilities());
    }
    if (status.ok()) {
        status = os::RemoveFile(from);
        if (!status.ok()) {
            (void)os::RemoveFile(to);  // The first failure is the one to tell.
        }
    }
    (void)os::RemoveFile(note);
    return status;
}

bool IsMoveUnfinished(const PhoneFolder& phone)
{
    os::FileInfo info;
    return os::ReadInfoOfLink(NotePath(phone), info).ok();
}

os::Status UndoUnfinishedMove(const PhoneFolder& phone)
{
    const std::string note = NotePath(phone);
    std::string text;
    if (os::Status status = os::ReadText(note, text); !status.ok()) {
        return status.failure() == os::Failure::kMissing ? os::Status() : status;
    }
    // A note that was cut short is of a move that had not begun.
    const auto middle = text.find('\n');
    if (middle != std::string::npos && middle + 1 < text.size() && text.ends_with('\n')) {
        const std::string from = phone.native(text.substr(0, middle));
        const std::string to = phone.native(text.substr(middle + 1, text.size() - middle - 2));
        // Only what the file itself still holds: somebody may have put another one there since.
        os::FileComparison comparison;
        os::FileInfo copy;
        if (os::ReadInfoOfLink(to, copy).ok() && copy.kind == os::FileKind::kFile &&
            os::CompareFiles(from, to, comparison).ok() && comparison.common == copy.size) {
            if (os::Status status = os::RemoveFile(to); !status.ok()) {
                return status;
            }
        }
    }
    return os::RemoveFileIfThere(note);
}

}  // namespace kesta
