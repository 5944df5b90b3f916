// Contacts and calendar in the database: the store of folders and entries, which all phones share, and each phone's log
// of what has been put on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/database.h"
#include "database/pim_kind.h"

namespace kesta {

/// A listing of the store ends at so many folders or items without a word.
inline constexpr size_t kMostListedPimFolders = 1023;
inline constexpr size_t kMostListedPimItems = 1'048'575;

struct PimFolder {
    std::string id, parentId;  // a root has no parent
    std::string path;          // what it is called; items are added by it
};

struct PimItem {
    std::string id;
    std::string data;  // the entry as its file has it
};

struct PimLogRow {
    std::string guid;                            // the item's id in the store
    std::string luid;                            // what the phone has of it
    std::optional<LocalTime> pcTime, phoneTime;  // last changes on either side
    friend bool operator==(const PimLogRow&, const PimLogRow&) = default;
};

/// Identifiers go into statements in the system's code page and without quotes: ASCII without apostrophes only. Methods
/// that return a code leave it to the caller what follows from it: 0 is success.
class PimRecords {
public:
    explicit PimRecords(Database& /*opened*/) {}

    /// The folders right below the parent, or at the root; all of them, level by level, when recursive.
    [[nodiscard]] std::vector<PimFolder> folders(PimKind kind, const std::string& parentId, bool recursive);
    /// The items of the one folder, which must be known.
    [[nodiscard]] std::vector<PimItem> items(PimKind kind, const std::string& folderId);
    Result addFolder(PimKind kind, const PimFolder& folder);
    Result removeFolder(const std::string& id);
    Result addItem(PimKind kind, const std::string& folderPath, const PimItem& item);
    Result updateItem(PimKind kind, const PimItem& item);
    Result removeItem(const std::string& id);

    /// The phone must have been announced.
    [[nodiscard]] std::vector<PimLogRow> log(const std::string& imei, PimKind kind);
    /// Who wrote the log, and in which form; empty when there is none.
    [[nodiscard]] std::string logProfile(const std::string& imei, PimKind kind);
    Result clearLog(const std::string& imei, PimKind kind);
    Result setLogProfile(const std::string& imei, PimKind kind, const std::string& profile);
    /// Success does not say that each row was stored: read the log again.
    Result appendToLog(const std::string& imei, PimKind kind, const std::vector<PimLogRow>& rows);
};

}  // namespace kesta
