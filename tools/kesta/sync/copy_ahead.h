// Copies files to the phone under temporary names while the database is still taking in the ones before. A batch is
// flushed as a whole, with the note by which the run after a killed one finds its files; its files get to their paths,
// and are recorded, in their order by whoever takes it.
//
//     ahead.submit(files);                    // at most kMostBatches
//     for (StagedBatch batch = ahead.take(); ...) place, record
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "os/volume.h"
#include "phone/copy_file.h"
#include "phone/phone_folder.h"

namespace kesta {

struct StagedFile {
    size_t change = 0;  // its index in the plan
    std::string phonePath;
    std::string source;     // empty: it is not to be copied ahead
    std::string temporary;  // native
    bool isReady = false;   // complete and flushed under the temporary name
    CopyResult copied;
};

struct StagedBatch {
    size_t number = 0;  // of its note
    std::vector<StagedFile> files;
};

class CopyAhead {
public:
    static constexpr size_t kMostBatches = 2, kMostFiles = 64;
    static constexpr uint64_t kMostBytes = uint64_t{16} << 20;

    explicit CopyAhead(const PhoneFolder& phone);
    CopyAhead(const CopyAhead&) = delete;
    CopyAhead& operator=(const CopyAhead&) = delete;
    /// Ends at the next block of the file that is being copied. What was not taken stays under its temporary names.
    ~CopyAhead() { stop(); }

    /// The folders of the files exist, and there is room for them.
    void submit(std::vector<StagedFile> files);
    /// Batches that were submitted and not taken.
    [[nodiscard]] size_t pending() const { return pending_; }
    /// The oldest of them, once it has been copied.
    [[nodiscard]] StagedBatch take();
    /// Ends early; the batches that are left can be taken as they are.
    void stop();
    /// When new folders for the files are to be flushed.
    [[nodiscard]] os::Flush folderFlush() const { return isVolumeFlushed_ ? os::Flush::kLater : os::Flush::kNow; }
    /// Flushes what has been renamed in these folders.
    os::Status flushFolders(const std::vector<std::string>& folders);

private:
    void work();
    void copy(StagedBatch& batch);
    [[nodiscard]] os::Status seal(const StagedBatch& batch);

    const PhoneFolder& phone_;
    os::Volume volume_;
    const bool isVolumeFlushed_;  // as a whole, rather than each file
    size_t pending_ = 0, submitted_ = 0;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<StagedBatch> waiting_, done_;
    bool isStopping_ = false;
    std::thread thread_;  // last: it uses all the others
};

}  // namespace kesta
