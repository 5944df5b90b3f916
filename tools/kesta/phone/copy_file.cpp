#include "phone/copy_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "phone/names.h"
#include "phone/phone_view.h"
#include "phone/put_text.h"

namespace kesta {
namespace {

// Larger ones no longer fit into the processor's cache, and take several times as long.
constexpr size_t kBlock = size_t{1} << 18;

CopyResult SourceFailure(const os::Status& status)
{
    const bool gone = status.failure() == os::Failure::kMissing;
    return {gone ? CopyOutcome::kSourceGone : CopyOutcome::kSourceFailed,
            gone ? "it went away before it could be copied" : "it cannot be read: " + status.text(),
            {},
            true};
}

CopyResult PhoneFailure(const os::Status& status)
{
    switch (status.failure()) {
        case os::Failure::kFull:
            return {CopyOutcome::kPhoneFull, "the phone is full", {}, true};
        case os::Failure::kReadOnly:
            return {CopyOutcome::kPhoneReadOnly, "the phone is read-only", {}, true};
        default:
            return {CopyOutcome::kPhoneFailed, "it cannot be written to the phone: " + status.text(), {}, true};
    }
}

CopyResult Refused(CopyOutcome outcome, std::string reason)
{
    return {outcome, std::move(reason), {}, true};
}

bool IsSame(const os::FileInfo& a, const os::FileInfo& b)
{
    return a.size == b.size && a.modified == b.modified;
}

// Copies what the source holds now into a new file at the path.
CopyResult CopyContents(const CopyRequest& request, const std::string& path, os::Flush flush)
{
    os::InputFile source;
    if (os::Status status = source.open(request.source); !status.ok()) {
        return SourceFailure(status);
    }
    CopyResult result;
    if (os::Status status = source.readInfo(result.source); !status.ok()) {
        return SourceFailure(status);
    }
    if (result.source.kind != os::FileKind::kFile) {
        return Refused(CopyOutcome::kSourceFailed, "it is no longer a file");
    }

    os::OutputFile target;
    if (os::Status status = target.create(path); !status.ok()) {
        return PhoneFailure(status);
    }
    std::vector<std::byte> buffer(static_cast<size_t>(std::min<uint64_t>(kBlock, result.source.size + 1)));
    uint64_t total = 0;
    for (;;) {
        size_t count = 0;
        if (os::Status status = source.read(buffer, count); !status.ok()) {
            return SourceFailure(status);
        }
        if (count == 0) {
            break;
        }
        if (os::Status status = target.write(std::span(buffer).first(count)); !status.ok()) {
            return PhoneFailure(status);
        }
        total += count;
        if (total > result.source.size) {
            break;  // It grows; following it could take for ever.
        }
        if (!request.onBytes(count)) {
            return Refused(CopyOutcome::kInterrupted, "interrupted");
        }
    }
    os::FileInfo after;
    if (os::Status status = source.readInfo(after); !status.ok()) {
        return SourceFailure(status);
    }
    if (!IsSame(result.source, after) || total != after.size) {
        return Refused(CopyOutcome::kSourceChanging, "it changed while it was copied, twice");
    }
    result.timeKept = target.setModified(result.source.modified).ok();
    if (os::Status status = flush == os::Flush::kNow ? target.flush() : os::Status(); !status.ok()) {
        return PhoneFailure(status);
    }
    if (os::Status status = target.close(); !status.ok()) {
        return PhoneFailure(status);
    }
    if (os::Status status = CheckSize(path, total); !status.ok()) {
        return PhoneFailure(status);
    }
    return result;
}

// The source may change once while it is copied.
CopyResult CopyContentsTwice(const CopyRequest& request, const std::string& path, os::Flush flush = os::Flush::kNow)
{
    CopyResult result = CopyContents(request, path, flush);
    if (result.outcome == CopyOutcome::kSourceChanging) {
        (void)os::RemoveFile(path);  // A file that stays shows when the next attempt creates it.
        request.onRestart();
        result = CopyContents(request, path, flush);
    }
    return result;
}

// The last look: planning found the path free, but it may not have seen names that the phone takes for equal.
bool IsTaken(const CopyRequest& request)
{
    os::FileInfo there;
    return !request.mayReplace && os::ReadInfoOfLink(request.target, there).ok();
}

CopyResult Taken()
{
    return Refused(CopyOutcome::kPlaceTaken, "another file has taken its place on the phone");
}

CopyResult NotKept(const os::Status& status)
{
    return Refused(CopyOutcome::kPhoneFailed, "what it replaces cannot be kept: " + status.text());
}

bool IsTimeOf(const CopyResult& result)
{
    return std::abs(result.copy.modified.seconds - result.source.modified.seconds) <= kPhoneTimeTolerance;
}

// Some phones take a time without a word and keep another one, or forget it when the file is closed.
void LookAtCopy(const CopyRequest& request, CopyResult& result)
{
    result.copy = result.source;
    (void)os::ReadInfo(request.target, result.copy);
    if (!IsTimeOf(result) && request.abilities.keepsTimes &&
        os::SetModified(request.target, result.source.modified).ok()) {
        result.timeKept = true;
        (void)os::ReadInfo(request.target, result.copy);
    }
    result.timeKept = result.timeKept && IsTimeOf(result);
}

os::Status CheckContents(const CopyRequest& request)
{
    os::FileComparison comparison;
    if (!request.abilities.readsBack || !os::CompareFiles(request.target, request.source, comparison).ok() ||
        comparison.areSame) {
        return {};
    }
    return {os::Failure::kOther, "it does not read back as it was written"};
}

CopyResult WriteInPlace(const CopyRequest& request)
{
    CopyResult result = CopyContentsTwice(request, request.target);
    if (result.outcome != CopyOutcome::kDone) {
        return result;
    }
    if (os::Status status = CheckContents(request); !status.ok()) {
        return PhoneFailure(status);
    }
    if (os::Status status = os::FlushDirectory(os::ParentOf(request.target)); !status.ok()) {
        return PhoneFailure(status);
    }
    result.isInPlace = true;
    LookAtCopy(request, result);
    return result;
}

CopyResult CopyInPlace(const CopyRequest& request)
{
    // Before what it replaces goes.
    if (os::Status status = os::InputFile().open(request.source); !status.ok()) {
        return SourceFailure(status);
    }
    if (IsTaken(request)) {
        return Taken();
    }
    if (os::Status status = request.makeWay(); !status.ok()) {
        return NotKept(status);
    }
    if (os::Status status = request.beforeInPlace(); !status.ok()) {
        return PhoneFailure(status);
    }
    if (os::Status status = os::RemoveFileIfThere(request.target); !status.ok()) {
        return PhoneFailure(status);
    }
    CopyResult result = WriteInPlace(request);
    if (result.outcome != CopyOutcome::kDone) {
        if (os::Status status = os::RemoveFileIfThere(request.target); !status.ok()) {
            result.reason += "; the part of it on the phone could not be removed: " + status.text();
        }
    }
    return result;
}

CopyResult Rename(const CopyRequest& request, const std::string& temporary, CopyResult result, os::Status& renamed)
{
    if (IsTaken(request)) {
        return Taken();
    }
    if (os::Status status = request.makeWay(); !status.ok()) {
        return NotKept(status);
    }
    if (os::Status status = request.abilities.replaces ? os::Status() : os::RemoveFileIfThere(request.target);
        !status.ok()) {
        return PhoneFailure(status);
    }
    renamed = os::Rename(temporary, request.target);
    if (!renamed.ok()) {
        return PhoneFailure(renamed);
    }
    LookAtCopy(request, result);
    return result;
}

CopyResult CopyAndRename(const CopyRequest& request, const std::string& temporary, os::Status& renamed)
{
    CopyResult result = CopyContentsTwice(request, temporary);
    if (result.outcome == CopyOutcome::kDone) {
        result = Rename(request, temporary, result, renamed);
    }
    if (result.outcome != CopyOutcome::kDone) {
        return result;
    }
    if (os::Status status = os::FlushDirectory(os::ParentOf(request.target)); !status.ok()) {
        // A new file that may be gone after a power failure must not be there unrecorded either.
        if (!request.mayReplace) {
            (void)os::RemoveFile(request.target);
        }
        return PhoneFailure(status);
    }
    return result;
}

}  // namespace

CopyResult CopySafely(const CopyRequest& request)
{
    const std::string temporary = os::Join(os::ParentOf(request.target), kTemporaryName);
    if (os::Status status = os::RemoveFileIfThere(temporary); !status.ok()) {
        return PhoneFailure(status);
    }
    if (!request.abilities.renames) {
        return CopyInPlace(request);
    }
    os::Status renamed;
    CopyResult result = CopyAndRename(request, temporary, renamed);
    if (result.outcome == CopyOutcome::kDone) {
        return result;
    }
    if (os::Status status = os::RemoveFileIfThere(temporary); !status.ok()) {
        result.reason += "; its temporary file could not be removed: " + status.text();
        return result;
    }
    if (!renamed.ok() && CanMeanNoRename(renamed)) {
        request.onRestart();
        return CopyInPlace(request);
    }
    return result;
}

CopyResult StageCopy(const CopyRequest& request, const std::string& temporary, os::Flush flush)
{
    return CopyContentsTwice(request, temporary, flush);
}

CopyResult PlaceCopy(const CopyRequest& request, const std::string& temporary, CopyResult staged)
{
    os::Status renamed;
    return Rename(request, temporary, std::move(staged), renamed);
}

}  // namespace kesta
