#include "sync/copy_ahead.h"

#include <utility>

#include "os/system.h"
#include "phone/put_text.h"
#include "sync/placed_note.h"

namespace kesta {

CopyAhead::CopyAhead(const PhoneFolder& phone)
    : phone_(phone), isVolumeFlushed_(volume_.open(phone.root())), thread_([this] { work(); })
{
}

void CopyAhead::submit(std::vector<StagedFile> files)
{
    ++pending_;
    {
        const std::scoped_lock lock(mutex_);
        waiting_.push_back({++submitted_, std::move(files)});
    }
    changed_.notify_all();
}

StagedBatch CopyAhead::take()
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !done_.empty(); });
    StagedBatch batch = std::move(done_.front());
    done_.pop_front();
    --pending_;
    return batch;
}

void CopyAhead::stop()
{
    {
        const std::scoped_lock lock(mutex_);
        isStopping_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

os::Status CopyAhead::flushFolders(const std::vector<std::string>& folders)
{
    if (isVolumeFlushed_ && folders.size() > 2) {
        return volume_.flush();
    }
    for (const std::string& folder : folders) {
        if (os::Status status = os::FlushDirectory(folder); !status.ok()) {
            return status;
        }
    }
    return {};
}

void CopyAhead::work()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [&] { return isStopping_ || !waiting_.empty(); });
        if (waiting_.empty()) {
            return;
        }
        StagedBatch batch = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        copy(batch);
        lock.lock();
        done_.push_back(std::move(batch));
        changed_.notify_all();
    }
}

// What fails here is tried again, and reported, when its turn has come.
void CopyAhead::copy(StagedBatch& batch)
{
    const auto isEnding = [&] {
        const std::scoped_lock lock(mutex_);
        return isStopping_ || os::Interrupted();
    };
    for (StagedFile& file : batch.files) {
        if (file.source.empty() || isEnding() || !os::RemoveFileIfThere(file.temporary).ok()) {
            continue;
        }
        CopyRequest request;
        request.source = file.source;
        request.onBytes = [&](size_t) { return !isEnding(); };
        file.copied = StageCopy(request, file.temporary, isVolumeFlushed_ ? os::Flush::kLater : os::Flush::kNow);
        file.isReady = file.copied.outcome == CopyOutcome::kDone;
    }
    if (isEnding() || !seal(batch).ok()) {
        for (StagedFile& file : batch.files) {
            file.isReady = false;
        }
    }
}

os::Status CopyAhead::seal(const StagedBatch& batch)
{
    std::vector<PlacedFile> placed;
    for (const StagedFile& file : batch.files) {
        if (file.isReady) {
            placed.push_back({file.phonePath, file.copied.source.size});
        }
    }
    if (placed.empty()) {
        return {};
    }
    os::Status status =
        WritePlacedNote(phone_, batch.number, placed, isVolumeFlushed_ ? os::Flush::kLater : os::Flush::kNow);
    return status.ok() && isVolumeFlushed_ ? volume_.flush() : status;
}

}  // namespace kesta
