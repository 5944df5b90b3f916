#include "phone/copy_file.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "phone/names.h"
#include "phone/phone_view.h"

namespace kesta {
namespace {

constexpr size_t kBlock = size_t{1} << 20;

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

bool IsSame(const os::FileInfo& a, const os::FileInfo& b)
{
    return a.size == b.size && a.modified == b.modified;
}

// Copies what the source holds now into a new file at the temporary path.
CopyResult CopyContents(const CopyRequest& request, const std::string& temporary)
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
        return {CopyOutcome::kSourceFailed, "it is no longer a file", {}, true};
    }

    os::OutputFile target;
    if (os::Status status = target.create(temporary); !status.ok()) {
        return PhoneFailure(status);
    }
    static std::vector<std::byte> buffer(kBlock);
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
            return {CopyOutcome::kInterrupted, "interrupted", {}, true};
        }
    }
    os::FileInfo after;
    if (os::Status status = source.readInfo(after); !status.ok()) {
        return SourceFailure(status);
    }
    if (!IsSame(result.source, after) || total != after.size) {
        return {CopyOutcome::kSourceChanging, "it changed while it was copied, twice", {}, true};
    }
    result.timeKept = target.setModified(result.source.modified).ok();
    if (os::Status status = target.flush(); !status.ok()) {
        return PhoneFailure(status);
    }
    if (os::Status status = target.close(); !status.ok()) {
        return PhoneFailure(status);
    }
    return result;
}

CopyResult CopyOnce(const CopyRequest& request, const std::string& temporary)
{
    CopyResult result = CopyContents(request, temporary);
    if (result.outcome != CopyOutcome::kDone) {
        return result;
    }
    // The last look: planning found the place free, but it may not have seen names that the phone takes for equal.
    os::FileInfo there;
    if (!request.mayReplace && os::ReadInfoOfLink(request.target, there).ok()) {
        return {CopyOutcome::kPlaceTaken, "another file has taken its place on the phone", {}, true};
    }
    if (os::Status status = request.makeWay(); !status.ok()) {
        return {CopyOutcome::kPhoneFailed, "what it replaces cannot be kept: " + status.text(), {}, true};
    }
    if (os::Status status = os::Rename(temporary, request.target); !status.ok()) {
        return PhoneFailure(status);
    }
    if (os::Status status = os::FlushDirectory(os::ParentOf(request.target)); !status.ok()) {
        // A new file that may be gone after a power failure must not be there unrecorded either.
        if (!request.mayReplace) {
            (void)os::RemoveFile(request.target);
        }
        return PhoneFailure(status);
    }
    result.copy = result.source;
    (void)os::ReadInfo(request.target, result.copy);
    // Some phones take a time without a word, and keep another one.
    const int64_t difference = result.copy.modified.seconds - result.source.modified.seconds;
    result.timeKept = result.timeKept && std::abs(difference) <= kPhoneTimeTolerance;
    return result;
}

}  // namespace

CopyResult CopySafely(const CopyRequest& request)
{
    const std::string temporary = os::Join(os::ParentOf(request.target), kTemporaryName);
    if (os::Status status = os::RemoveFile(temporary); !status.ok() && status.failure() != os::Failure::kMissing) {
        return PhoneFailure(status);
    }
    CopyResult result = CopyOnce(request, temporary);
    if (result.outcome == CopyOutcome::kSourceChanging) {
        (void)os::RemoveFile(temporary);  // A file that stays shows when the next attempt creates it.
        request.onRestart();
        result = CopyOnce(request, temporary);
    }
    if (result.outcome != CopyOutcome::kDone) {
        const os::Status status = os::RemoveFile(temporary);
        if (!status.ok() && status.failure() != os::Failure::kMissing) {
            result.reason += "; its temporary file could not be removed: " + status.text();
        }
    }
    return result;
}

}  // namespace kesta
