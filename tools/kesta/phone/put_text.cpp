#include "phone/put_text.h"

#include <fmt/format.h>

#include "os/files.h"
#include "phone/names.h"

namespace kesta {
namespace {

os::Status WriteInPlace(const TextRequest& request)
{
    if (os::Status status = request.makeWay(); !status.ok()) {
        return status;
    }
    if (os::Status status = request.beforeInPlace(); !status.ok()) {
        return status;
    }
    if (os::Status status = os::RemoveFileIfThere(request.target); !status.ok()) {
        return status;
    }
    os::Status status = CreateText(request.target, request.text);
    std::string back;
    if (status.ok() && request.abilities.readsBack && os::ReadText(request.target, back).ok() && back != request.text) {
        status = {os::Failure::kOther, "it does not read back as it was written"};
    }
    if (status.ok()) {
        status = os::FlushDirectory(os::ParentOf(request.target));
    }
    if (!status.ok()) {
        (void)os::RemoveFile(request.target);
    }
    return status;
}

os::Status PutInPlace(const TextRequest& request, const std::string& temporary)
{
    if (os::Status status = os::RemoveFileIfThere(temporary); !status.ok()) {
        return status;
    }
    os::Status status = CreateText(temporary, request.text);
    if (status.ok()) {
        status = WriteInPlace(request);
    }
    os::FileInfo there;
    if (status.ok() || os::ReadInfoOfLink(request.target, there).ok()) {
        (void)os::RemoveFile(temporary);  // The first failure is the one to tell.
    }
    return status;
}

}  // namespace

os::Status PutText(const TextRequest& request)
{
    const std::string temporary = os::Join(os::ParentOf(request.target), kTemporaryName);
    if (!request.abilities.renames) {
        return PutInPlace(request, temporary);
    }
    bool isReady = false;
    os::Status status = os::WriteText(request.target, temporary, request.text, [&] {
        os::Status made = CheckSize(temporary, request.text.size());
        if (made.ok()) {
            made = request.makeWay();
        }
        if (made.ok() && !request.abilities.replaces) {
            made = os::RemoveFileIfThere(request.target);
        }
        isReady = made.ok();
        return made;
    });
    if (status.ok() || !isReady || !CanMeanNoRename(status)) {
        return status;
    }
    return PutInPlace(request, temporary);
}

os::Status CreateText(const std::string& path, std::string_view text, os::Flush flush)
{
    os::OutputFile file;
    if (os::Status status = file.create(path); !status.ok()) {
        return status;
    }
    if (os::Status status = file.write(std::as_bytes(std::span(text))); !status.ok()) {
        return status;
    }
    if (os::Status status = flush == os::Flush::kNow ? file.flush() : os::Status(); !status.ok()) {
        return status;
    }
    if (os::Status status = file.close(); !status.ok()) {
        return status;
    }
    return CheckSize(path, text.size());
}

os::Status CheckSize(const std::string& path, uint64_t size)
{
    os::FileInfo info;
    if (!os::ReadInfo(path, info).ok() || info.size == size) {
        return {};  // A phone may not show at once what it has taken.
    }
    return {os::Failure::kOther, fmt::format("the phone has kept {} of {} bytes", info.size, size)};
}

}  // namespace kesta
