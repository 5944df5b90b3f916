// The library's exports with owners for what they hand out and UTF-8 for their texts: the opening of the database,
// phones and media. The other families stand in database/; nothing else calls exports.
#pragma once

#include <kesta_db/kesta_db.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "database/category.h"
#include "database/result.h"

namespace kesta {

/// A call without which the command cannot go on has failed; the text says which and why.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// For calls without which nothing can go on: throws unless the result is success.
void Require(std::string_view call, Result result);

struct PhoneSettings {
    std::string imei, name, photoPath, docPath, wifiMac, calendarPeriodText;
    std::string contactFolder, calendarFolder, contactProfile, calendarProfile;
    bool autoSync = false, autoBackup = false, allowWifi = false;
    int32_t contactPreferSide = 0, calendarPreferSide = 0;
    int32_t contactProgram = 0, calendarProgram = 0, calendarPeriod = 0;
    std::optional<LocalTime> calendarStart, calendarEnd;
    int32_t bookmarkType = 0;
    bool syncDocFromFolder = false, syncDocFromPhone = false, syncPhotoFromFolder = false, syncPhotoFromPhone = false;
    bool syncMusicFromFolder = false, syncMusicFromPlayer = false, syncMusicAll = false;
    bool needMount = false;
};

struct RecordedFolder {
    int64_t rowId = 0;
    std::string path;
    int32_t count = 0;
    int64_t size = 0, totalSize = 0;
    bool selected = true, deleted = false, sized = false;
    std::optional<LocalTime> added;
};

struct RecordedFile {
    std::string path, basePath, phonePath;
    std::optional<LocalTime> modified;
};

/// Texts handed in must be valid UTF-8: a DatabaseError says so otherwise. Methods that return a code leave it to the
/// caller what follows from it: 0 is success.
class Database {
public:
    /// Throws when the database is not open.
    Database();

    [[nodiscard]] std::vector<PhoneSettings> phones();
    [[nodiscard]] std::optional<PhoneSettings> phone(const std::string& imei);
    void announce(const std::string& imei, const std::string& name);
    /// The phone must have been announced. Everything else of its settings stays.
    void rename(const std::string& imei, const std::string& name);
    /// std::nullopt if the phone has not been synced yet.
    [[nodiscard]] std::optional<LocalTime> lastSync(const std::string& imei);
    Result setLastSync(const std::string& imei, LocalTime time, int32_t errorCode);

    [[nodiscard]] std::vector<RecordedFolder> folders(const std::string& imei, Category category);
    [[nodiscard]] std::vector<RecordedFile> files(const std::string& imei, Category category);
    Result addFolder(const std::string& imei, Category category, const RecordedFolder& folder);
    Result addFile(const std::string& imei, Category category, const RecordedFile& file);
    Result updateFile(const std::string& imei, Category category, const RecordedFile& file);
    Result removeFile(const std::string& imei, Category category, const std::string& path);
};

}  // namespace kesta
