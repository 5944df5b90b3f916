// The chosen folders of one run: from the command line to scans that are known to the database.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "commands/options.h"
#include "database/database.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"
#include "stages/media/scan.h"

namespace kesta {

struct ChosenFolder {
    std::string path;  // canonical, where there is something at it
};

using ChosenFolders = std::array<std::vector<ChosenFolder>, kCategories.size()>;

/// Leaves out what is given twice. Throws std::runtime_error for a folder that lies on the phone.
[[nodiscard]] ChosenFolders ChooseFolders(const SyncOptions& options, const PhoneFolder& phone);

/// One category's side of the PC and of the database.
struct CategoryState {
    std::vector<FolderScan> scans;  // of the folders that could be read
    std::vector<RecordedFolder> known;
    std::vector<RecordedFile> recorded;
};

/// Reads the category's chosen folders, skipping those that are not selected in the database. What cannot be read
/// goes to the summary.
void ScanChosen(Category category, const std::vector<ChosenFolder>& folders, const PhoneFolder& phone,
                CategoryState& state, Progress& progress, Summary& summary);

/// Enters the scanned folders with their counts and sizes, and makes sure that they are there afterwards.
void EnterFolders(Database& database, const std::string& imei, Category category, CategoryState& state,
                  Summary& summary);

}  // namespace kesta
