// Files that have another name or place on the PC than when they were synced: they are moved on the phone, too.
#pragma once

#include <vector>

#include "stages/media/plan.h"

namespace kesta {

struct WantedFile {
    const ScannedFile* file;
    const FolderScan* folder;
};

/// A recorded file whose old name is gone from the PC, and the one there that holds the same.
struct MovedFile {
    const RecordedFile* record = nullptr;
    WantedFile now{};
};

using MovedRecords = std::unordered_set<const RecordedFile*>;

/// Those of the wanted files that are moved ones. placed: the records with a phone path of their own.
[[nodiscard]] std::vector<MovedFile> FindMoves(const PlanInput& input, const std::vector<WantedFile>& wanted,
                                               const PlacedFiles& placed, const PhoneView& phone);

/// Known folders that are gone from the PC, with all that was recorded under them moved elsewhere.
[[nodiscard]] std::vector<std::string> FoldersMoved(const PlanInput& input, const std::vector<MovedFile>& moves);

}  // namespace kesta
