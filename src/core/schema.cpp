#include "core/schema.h"

#include <array>
#include <string_view>

#include "core/connection.h"
#include "core/trace.h"

namespace kesta {
namespace {

// Deliberate: everything below is the file format, to the character. The foreign key is spelled [PhoneID] and
// [phoneID], tBFile's [Path] is narrower than the others, and tBackup is not the table tBackups that the backup exports
// use.
// clang-format off
constexpr const char kSchema[] =
    "CREATE TABLE [tBFile]([PhoneID] INTEGER  NOT NULL,[Title] NVARCHAR(1100)  NULL,"
    "[Path] NVARCHAR(1000)  NOT NULL,[PhoneMID] VARCHAR(500)  NULL,[Id] INTEGER DEFAULT 0 NULL,"
    "[Flag] INTEGER DEFAULT 0 NULL,[Type] INTEGER DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path],[Type]));"
    "CREATE TABLE [tBackup]([ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,[PhoneID] INTEGER  NOT NULL,"
    "[Path] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NULL,[ModifiedTime] DATETIME  NULL,"
    "[Size] NUMERIC  NULL);"
    "CREATE TABLE [tDFile]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[BasePath] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NOT NULL,"
    "[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tDFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[Count] INTEGER DEFAULT 0 NULL,[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,"
    "[Selected] BOOLEAN DEFAULT 1 NOT NULL,[Deleted] BOOLEAN DEFAULT 0 NOT NULL,[Flag] INTEGER DEFAULT 0 NULL,"
    "[AddTime] DATETIME  NOT NULL,[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tIFile]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[BasePath] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NOT NULL,"
    "[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tIFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[Count] INTEGER DEFAULT 0 NULL,[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,"
    "[Selected] BOOLEAN DEFAULT 1 NOT NULL,[Deleted] BOOLEAN DEFAULT 0 NOT NULL,[Flag] INTEGER DEFAULT 0 NULL,"
    "[AddTime] DATETIME  NOT NULL,[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tVFile]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[BasePath] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NOT NULL,"
    "[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tVFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[Count] INTEGER DEFAULT 0 NULL,[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,"
    "[Selected] BOOLEAN DEFAULT 1 NOT NULL,[Deleted] BOOLEAN DEFAULT 0 NOT NULL,[Flag] INTEGER DEFAULT 0 NULL,"
    "[AddTime] DATETIME  NOT NULL,[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tLibMainFolder]([ID] INTEGER NOT NULL PRIMARY KEY,[Name] NVARCHAR(500)  NOT NULL,"
    "[Number] INTEGER  NULL,[Size] NUMERIC  NULL,[Setting] NVARCHAR(4096)  NULL);"
    "CREATE TABLE [tSyncContents]([phoneID] INTEGER  NOT NULL,[lfID] INTEGER  NOT NULL,"
    "[Selected] BOOLEAN DEFAULT 0 NOT NULL,[OldSelected] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([phoneID],"
    "[lfID]));"
    "CREATE TABLE [tMFile]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[BasePath] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NOT NULL,"
    "[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tMFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[Count] INTEGER DEFAULT 0 NULL,[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,"
    "[Selected] BOOLEAN DEFAULT 1 NOT NULL,[Deleted] BOOLEAN DEFAULT 0 NOT NULL,[Flag] INTEGER DEFAULT 0 NULL,"
    "[AddTime] DATETIME  NOT NULL,[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tPFile]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[BasePath] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NOT NULL,"
    "[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tPFilename]([IMEI] VARCHAR(500)  NOT NULL,[Listname] NVARCHAR(1100)  NOT NULL,"
    "[Filename] NVARCHAR(1100)  NOT NULL, PRIMARY KEY ([IMEI],[Listname],[Filename]));"
    "CREATE TABLE [tPFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
    "[Digest] VARCHAR(100)  NULL,[IdInPhone] NVARCHAR(1100)  NULL,[Type] INTEGER  NULL,[Flag] INTEGER  NULL,"
    "[Count] INTEGER DEFAULT 0 NULL,[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,"
    "[Selected] BOOLEAN DEFAULT 1 NOT NULL,[AddTime] DATETIME  NOT NULL,"
    "[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]));"
    "CREATE TABLE [tPhone]([ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,[IMEI] VARCHAR(500)  NOT NULL,"
    "[IMEI2] VARCHAR(500)  NULL,[Name] NVARCHAR(500)  NULL,[LastTime] DATETIME  NULL,"
    "[PhotoPath] NVARCHAR(1100)  NULL,[DocPath] NVARCHAR(1100)  NULL,[WifiMAC] VARCHAR(500)  NULL,"
    "[AutoSync] BOOLEAN DEFAULT 0 NOT NULL,[AutoBackup] BOOLEAN DEFAULT 0 NOT NULL,"
    "[AllowWifi] BOOLEAN DEFAULT 1 NOT NULL,[ContactPreferSide] INTEGER DEFAULT 2 NULL,"
    "[CalendarPreferSide] INTEGER DEFAULT 2 NULL,[ContactPim] INTEGER  NULL,[CalPim] INTEGER  NULL,"
    "[CalPeriod] INTEGER  NULL,[CalStart] DATETIME  NULL,[CalEnd] DATETIME  NULL,"
    "[CalPeriodStr] VARCHAR(1100)  NULL,[BookMarkType] INTEGER DEFAULT 1 NULL,"
    "[SyncDocFromFolder] BOOLEAN DEFAULT 0 NOT NULL,[SyncDocFromPhone] BOOLEAN DEFAULT 1 NOT NULL,"
    "[SyncPhotoFromFolder] BOOLEAN DEFAULT 0 NOT NULL,[SyncPhotoFromPhone] BOOLEAN DEFAULT 1 NOT NULL,"
    "[SyncMusicFromFolder] BOOLEAN DEFAULT 0 NOT NULL,[SyncMusicFromPlayer] BOOLEAN DEFAULT 0 NOT NULL,"
    "[SyncMusicAll] BOOLEAN DEFAULT 1 NOT NULL,[ErrCode] INTEGER DEFAULT 0 NOT NULL,"
    "[NeedMount] BOOLEAN DEFAULT 1 NOT NULL,[SDType] INTEGER DEFAULT 0 NULL,[SDOldType] INTEGER DEFAULT 0 NULL,"
    "[ContactFolderId] VARCHAR(4000)  NULL,[CalendarFolderId] VARCHAR(4000)  NULL,"
    "[ContactProfile] NVARCHAR(1100)  NULL,[CalendarProfile] NVARCHAR(1100)  NULL,"
    "[ContactName] NVARCHAR(1100)  NULL,[CalendarName] NVARCHAR(1100)  NULL);"
    "CREATE TABLE [tPhotoDocLog]([pdID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[phoneID] INTEGER  NOT NULL,"
    "[Path] NVARCHAR(1100)  NULL,[MD5] VARCHAR(50)  NOT NULL);"
    "CREATE TABLE [tPimFolder]([pfID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[parentID] INTEGER  NULL,"
    "[PimID] VARCHAR(1100) UNIQUE NOT NULL,[Path] NVARCHAR(1100)  NULL,[Type] INTEGER  NOT NULL);"
    "CREATE TABLE [tPimFolderLink]([pfID] INTEGER  NOT NULL,[childID] INTEGER  NOT NULL, PRIMARY KEY ([pfID],"
    "[childID]));"
    "CREATE TABLE [tPimInfo]([Profile] TEXT  NULL);"
    "CREATE TABLE [tPimItem]([piID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[pfID] INTEGER  NOT NULL,"
    "[PimID] VARCHAR(1100) UNIQUE NOT NULL,[Data] BLOB  NULL,[Type] INTEGER  NULL);"
    "CREATE TABLE [tPimLog]([plID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[phoneID] INTEGER  NOT NULL,"
    "[Type] INTEGER  NOT NULL,[PimProfile] TEXT  NULL);"
    "CREATE TABLE [tPimLogItem]([ptID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[plID] INTEGER  NOT NULL,"
    "[Guid] VARCHAR(200)  NOT NULL,[Luid] VARCHAR(50)  NOT NULL,[PCTime] DATETIME  NULL,"
    "[PhoneTime] DATETIME  NULL);"
    "CREATE TABLE [tVersion]([Version] INTEGER DEFAULT 1000 NOT NULL);"
    "CREATE INDEX [IDX_TBFILE_PID] ON [tBFile]([PhoneID]  ASC);"
    "CREATE INDEX [IDX_TBACKUPS_PATH] ON [tBackup]([Path]  ASC);"
    "CREATE INDEX [IDX_TPLAYLISTS_TYPE] ON [tPFolder]([Type]  ASC);"
    "CREATE INDEX [IDX_TPHONE_IMEI] ON [tPhone]([IMEI]  ASC);"
    "CREATE INDEX [IDX_TPIMFOLDER_PIMID] ON [tPimFolder]([PimID]  ASC,[parentID]  ASC);"
    "CREATE INDEX [IDX_TPIMITEM_PIMID] ON [tPimItem]([pfID]  ASC,[PimID]  ASC);"
    "CREATE INDEX [IDX_TPIMLOG_PHONEID] ON [tPimLog]([phoneID]  ASC);"
    "CREATE INDEX [IDX_TPIMLOGITEM_PLID] ON [tPimLogItem]([plID]  ASC);"
    "CREATE VIEW [vBFile] AS SELECT IMEI, tBFile.* FROM tPhone, tBFile WHERE tPhone.ID = tBFile.PhoneID;"
    "CREATE VIEW [vDFile] AS SELECT IMEI, tDFile.* FROM tPhone, tDFile WHERE tPhone.ID = tDFile.PhoneID;"
    "CREATE VIEW [vDFolder] AS SELECT IMEI, tDFolder.* FROM tPhone, tDFolder WHERE tPhone.ID = tDFolder.PhoneID;"
    "CREATE VIEW [vIFile] AS SELECT IMEI, tIFile.* FROM tPhone, tIFile WHERE tPhone.ID = tIFile.PhoneID;"
    "CREATE VIEW [vIFolder] AS SELECT IMEI, tIFolder.* FROM tPhone, tIFolder WHERE tPhone.ID = tIFolder.PhoneID;"
    "CREATE VIEW [vVFile] AS SELECT IMEI, tVFile.* FROM tPhone, tVFile WHERE tPhone.ID = tVFile.PhoneID;"
    "CREATE VIEW [vVFolder] AS SELECT IMEI, tVFolder.* FROM tPhone, tVFolder WHERE tPhone.ID = tVFolder.PhoneID;"
    "CREATE VIEW [vMFile] AS SELECT IMEI, tMFile.* FROM tPhone, tMFile WHERE tPhone.ID = tMFile.PhoneID;"
    "CREATE VIEW [vMFolder] AS SELECT IMEI, tMFolder.* FROM tPhone, tMFolder WHERE tPhone.ID = tMFolder.PhoneID;"
    "CREATE VIEW [vPFile] AS SELECT IMEI, tPFile.* FROM tPhone, tPFile WHERE tPhone.ID = tPFile.PhoneID;"
    "CREATE VIEW [vPFolder] AS SELECT IMEI, tPFolder.* FROM tPhone, tPFolder WHERE tPhone.ID = tPFolder.PhoneID;";
// clang-format on
static_assert(sizeof(kSchema) - 1 == 8212);

static_assert(kDatabaseVersion == 5005 && kMainFolderMusic == 1000 && kMainFolderGallery == 1100 &&
              kMainFolderDocument == 1400 && kMainFolderPeople == 1500 && kMainFolderCalendar == 1600 &&
              kMainFolderWebBookmark == 1900 && kMainFolderMap == 2200);

/// The version and the main folders. Deliberate: the capital M of 'Map'.
constexpr std::array<const char*, 8> kFirstRows = {
    "INSERT INTO tVersion VALUES (5005)",
    "INSERT INTO tLibMainFolder VALUES (1000, 'music', 0, 0, '')",
    "INSERT INTO tLibMainFolder VALUES (1100, 'gallery', 0, 0, '')",
    "INSERT INTO tLibMainFolder VALUES (1400, 'document', 0, 0, '')",
    "INSERT INTO tLibMainFolder VALUES (1500, 'people', 0, 0, '')",
    "INSERT INTO tLibMainFolder VALUES (1600, 'calendar', 0, 0, '')",
    "INSERT INTO tLibMainFolder VALUES (1900, 'web bookmark', 0, 0, '')",
    "INSERT INTO tLibMainFolder VALUES (2200, 'Map', 0, 0, '')",
};

/// Writes the first rows. Only the last statement counts for the result.
SqliteCode Seed(Connection& db, bool& complete)
{
    SqliteCode last = SqliteCode::kOk;
    complete = true;
    for (const char* row : kFirstRows) {
        last = db.exec(row);
        complete = complete && last == SqliteCode::kOk;
    }
    return last;
}

}  // namespace

ResultCode DB_INTERNAL_Create(const char* utf8Path, bool& complete)
{
    const Trail trail("DB_INTERNAL_Create");
    complete = false;
    Connection db;
    if (db.open(utf8Path) != SqliteCode::kOk) {
        trail.error(1);
        return ResultCode::kFailure;
    }
    // No transaction: what a failing statement leaves behind has no valid version and is thrown away at the next start.
    if (db.exec(kSchema) != SqliteCode::kOk) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    return PassThrough(Seed(db, complete));
}

bool IsOwnSchema(std::string_view sql) noexcept
{
    constexpr std::string_view kAll = kSchema;
    const size_t place = kAll.find(sql);
    return !sql.empty() && place != std::string_view::npos && kAll.substr(place + sql.size()).starts_with(';');
}

}  // namespace kesta
