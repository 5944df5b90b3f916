// From planned files to the changes of a plan: media and the music of playlists go the same way.
#pragma once

#include <string>

#include "database/database.h"
#include "stages/media/plan.h"
#include "sync/plan.h"

namespace kesta {

/// Where files are recorded. Must live until the plan has been executed.
class FileRecords {
public:
    virtual ~FileRecords() = default;
    /// False when it is recorded already.
    virtual bool add(const FileChange& change) = 0;
    virtual void update(const FileChange& change) = 0;
    virtual void remove(const FileChange& change) = 0;
    /// Whether exactly this is recorded. For doubtful cases only.
    [[nodiscard]] virtual bool holds(const FileChange& change) = 0;
};

/// The files of the media folders.
class MediaRecords : public FileRecords {
public:
    MediaRecords(const Database& database, std::string imei) : database_(database), imei_(std::move(imei)) {}
    bool add(const FileChange& change) override;
    void update(const FileChange& change) override;
    void remove(const FileChange& change) override;
    [[nodiscard]] bool holds(const FileChange& change) override;

private:
    const Database& database_;
    std::string imei_;
};

[[nodiscard]] Change ToChange(const FileChange& file, FileRecords& records);
/// Whether the row is among the recorded ones, as it stands.
[[nodiscard]] bool IsAmong(const RecordedFile& row, const std::vector<RecordedFile>& recorded);

}  // namespace kesta
