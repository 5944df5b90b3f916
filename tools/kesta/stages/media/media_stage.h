// The folders of media: music, images, videos and documents.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "stages/media/file_changes.h"
#include "stages/media/scan.h"
#include "sync/session.h"

namespace kesta {

/// Folders of the PC by category, as canonical as they can be.
using ChosenFolders = std::array<std::vector<std::string>, kCategories.size()>;

/// Leaves out what is given twice. Throws for a folder that lies on the phone.
[[nodiscard]] ChosenFolders ChooseFolders(const SyncOptions& options, const PhoneFolder& phone);

/// What the stages of media know of one run.
struct MediaState {
    struct OfCategory {
        std::vector<FolderScan> scans;  // of the folders that could be read and recorded
        std::vector<RecordedFolder> known;
        std::vector<RecordedFile> recorded;
    };
    ChosenFolders chosen;
    std::array<OfCategory, kCategories.size()> categories;
    MediaPhonePaths phonePaths;  // of all files, once the plan has been executed
};

/// Reads the chosen folders, and records them with their counts and sizes.
class MediaFolderStage : public Stage {
public:
    explicit MediaFolderStage(MediaState& state) : state_(state) {}
    [[nodiscard]] Plan plan(Session& session) override;

private:
    MediaState& state_;
};

/// Brings the files of the chosen folders to the phone.
class MediaStage : public Stage {
public:
    MediaStage(MediaState& state, const Database& database, const std::string& imei)
        : state_(state), records_(database, imei)
    {
    }
    [[nodiscard]] Plan plan(Session& session) override;

private:
    MediaState& state_;
    MediaRecords records_;
};

}  // namespace kesta
