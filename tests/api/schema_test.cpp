// The tables, indexes, views and first rows of a fresh database, to the character.
#include <vector>

#include "api/given.h"

namespace kesta::test {
namespace {

class Schema : public OpenDatabase {};

std::string FileTable(const std::string& name)
{
    return "CREATE TABLE [" + name +
           "]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,[BasePath] NVARCHAR(1100)  NOT NULL,"
           "[PhonePath] NVARCHAR(1100)  NOT NULL,[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]))";
}

std::string FolderTable(const std::string& name)
{
    return "CREATE TABLE [" + name +
           "]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,[Count] INTEGER DEFAULT 0 NULL,"
           "[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,[Selected] BOOLEAN DEFAULT 1 NOT NULL,"
           "[Deleted] BOOLEAN DEFAULT 0 NOT NULL,[Flag] INTEGER DEFAULT 0 NULL,[AddTime] DATETIME  NOT NULL,"
           "[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]))";
}

std::string View(const std::string& table)
{
    return "CREATE VIEW [v" + table + "] AS SELECT IMEI, t" + table + ".* FROM tPhone, t" + table +
           " WHERE tPhone.ID = t" + table + ".PhoneID";
}

const std::vector<std::string>& Statements()
{
    static const std::vector<std::string> statements = {
        "CREATE TABLE [tBFile]([PhoneID] INTEGER  NOT NULL,[Title] NVARCHAR(1100)  NULL,[Path] NVARCHAR(1000)  NOT NULL"
        ",[PhoneMID] VARCHAR(500)  NULL,[Id] INTEGER DEFAULT 0 NULL,[Flag] INTEGER DEFAULT 0 NULL,[Type] INTEGER "
        "DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path],[Type]))",
        "CREATE TABLE [tBackup]([ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,[PhoneID] INTEGER  NOT NULL,[Path] "
        "NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NULL,[ModifiedTime] DATETIME  NULL,[Size] NUMERIC  NULL)",
        FileTable("tDFile"),
        FolderTable("tDFolder"),
        FileTable("tIFile"),
        FolderTable("tIFolder"),
        FileTable("tVFile"),
        FolderTable("tVFolder"),
        "CREATE TABLE [tLibMainFolder]([ID] INTEGER NOT NULL PRIMARY KEY,[Name] NVARCHAR(500)  NOT NULL,[Number] "
        "INTEGER  NULL,[Size] NUMERIC  NULL,[Setting] NVARCHAR(4096)  NULL)",
        "CREATE TABLE [tSyncContents]([phoneID] INTEGER  NOT NULL,[lfID] INTEGER  NOT NULL,[Selected] BOOLEAN DEFAULT 0"
        " NOT NULL,[OldSelected] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([phoneID],[lfID]))",
        FileTable("tMFile"),
        FolderTable("tMFolder"),
        FileTable("tPFile"),
        "CREATE TABLE [tPFilename]([IMEI] VARCHAR(500)  NOT NULL,[Listname] NVARCHAR(1100)  NOT NULL,[Filename] "
        "NVARCHAR(1100)  NOT NULL, PRIMARY KEY ([IMEI],[Listname],[Filename]))",
        "CREATE TABLE [tPFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,[Digest] VARCHAR(100)  "
        "NULL,[IdInPhone] NVARCHAR(1100)  NULL,[Type] INTEGER  NULL,[Flag] INTEGER  NULL,[Count] INTEGER DEFAULT 0 NULL"
        ",[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,[Selected] BOOLEAN DEFAULT 1 NOT NULL,"
        "[AddTime] DATETIME  NOT NULL,[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]))",
        "CREATE TABLE [tPhone]([ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,[IMEI] VARCHAR(500)  NOT NULL,[IMEI2] "
        "VARCHAR(500)  NULL,[Name] NVARCHAR(500)  NULL,[LastTime] DATETIME  NULL,[PhotoPath] NVARCHAR(1100)  NULL,"
        "[DocPath] NVARCHAR(1100)  NULL,[WifiMAC] VARCHAR(500)  NULL,[AutoSync] BOOLEAN DEFAULT 0 NOT NULL,[AutoBackup]"
        " BOOLEAN DEFAULT 0 NOT NULL,[AllowWifi] BOOLEAN DEFAULT 1 NOT NULL,[ContactPreferSide] INTEGER DEFAULT 2 NULL,"
        "[CalendarPreferSide] INTEGER DEFAULT 2 NULL,[ContactPim] INTEGER  NULL,[CalPim] INTEGER  NULL,[CalPeriod] "
        "INTEGER  NULL,[CalStart] DATETIME  NULL,[CalEnd] DATETIME  NULL,[CalPeriodStr] VARCHAR(1100)  NULL,"
        "[BookMarkType] INTEGER DEFAULT 1 NULL,[SyncDocFromFolder] BOOLEAN DEFAULT 0 NOT NULL,[SyncDocFromPhone] "
        "BOOLEAN DEFAULT 1 NOT NULL,[SyncPhotoFromFolder] BOOLEAN DEFAULT 0 NOT NULL,[SyncPhotoFromPhone] BOOLEAN "
        "DEFAULT 1 NOT NULL,[SyncMusicFromFolder] BOOLEAN DEFAULT 0 NOT NULL,[SyncMusicFromPlayer] BOOLEAN DEFAULT 0 "
        "NOT NULL,[SyncMusicAll] BOOLEAN DEFAULT 1 NOT NULL,[ErrCode] INTEGER DEFAULT 0 NOT NULL,[NeedMount] BOOLEAN "
        "DEFAULT 1 NOT NULL,[SDType] INTEGER DEFAULT 0 NULL,[SDOldType] INTEGER DEFAULT 0 NULL,[ContactFolderId] "
        "VARCHAR(4000)  NULL,[CalendarFolderId] VARCHAR(4000)  NULL,[ContactProfile] NVARCHAR(1100)  NULL,"
        "[CalendarProfile] NVARCHAR(1100)  NULL,[ContactName] NVARCHAR(1100)  NULL,[CalendarName] NVARCHAR(1100)  "
        "NULL)",
        "CREATE TABLE [tPhotoDocLog]([pdID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[phoneID] INTEGER  NOT NULL,"
        "[Path] NVARCHAR(1100)  NULL,[MD5] VARCHAR(50)  NOT NULL)",
        "CREATE TABLE [tPimFolder]([pfID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[parentID] INTEGER  NULL,[PimID] "
        "VARCHAR(1100) UNIQUE NOT NULL,[Path] NVARCHAR(1100)  NULL,[Type] INTEGER  NOT NULL)",
        "CREATE TABLE [tPimFolderLink]([pfID] INTEGER  NOT NULL,[childID] INTEGER  NOT NULL, PRIMARY KEY ([pfID],"
        "[childID]))",
        "CREATE TABLE [tPimInfo]([Profile] TEXT  NULL)",
        "CREATE TABLE [tPimItem]([piID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[pfID] INTEGER  NOT NULL,[PimID] "
        "VARCHAR(1100) UNIQUE NOT NULL,[Data] BLOB  NULL,[Type] INTEGER  NULL)",
        "CREATE TABLE [tPimLog]([plID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[phoneID] INTEGER  NOT NULL,[Type] "
        "INTEGER  NOT NULL,[PimProfile] TEXT  NULL)",
        "CREATE TABLE [tPimLogItem]([ptID] INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,[plID] INTEGER  NOT NULL,[Guid] "
        "VARCHAR(200)  NOT NULL,[Luid] VARCHAR(50)  NOT NULL,[PCTime] DATETIME  NULL,[PhoneTime] DATETIME  NULL)",
        "CREATE TABLE [tVersion]([Version] INTEGER DEFAULT 1000 NOT NULL)",
        "CREATE INDEX [IDX_TBFILE_PID] ON [tBFile]([PhoneID]  ASC)",
        "CREATE INDEX [IDX_TBACKUPS_PATH] ON [tBackup]([Path]  ASC)",
        "CREATE INDEX [IDX_TPLAYLISTS_TYPE] ON [tPFolder]([Type]  ASC)",
        "CREATE INDEX [IDX_TPHONE_IMEI] ON [tPhone]([IMEI]  ASC)",
        "CREATE INDEX [IDX_TPIMFOLDER_PIMID] ON [tPimFolder]([PimID]  ASC,[parentID]  ASC)",
        "CREATE INDEX [IDX_TPIMITEM_PIMID] ON [tPimItem]([pfID]  ASC,[PimID]  ASC)",
        "CREATE INDEX [IDX_TPIMLOG_PHONEID] ON [tPimLog]([phoneID]  ASC)",
        "CREATE INDEX [IDX_TPIMLOGITEM_PLID] ON [tPimLogItem]([plID]  ASC)",
        "CREATE VIEW [vBFile] AS SELECT IMEI, tBFile.* FROM tPhone, tBFile WHERE tPhone.ID = tBFile.PhoneID",
        View("DFile"),
        View("DFolder"),
        View("IFile"),
        View("IFolder"),
        View("VFile"),
        View("VFolder"),
        View("MFile"),
        View("MFolder"),
        View("PFile"),
        View("PFolder")};
    return statements;
}

TEST_F(Schema, FreshDatabase_EveryStatement_StandsAsWrittenInItsOrder)
{
    std::string expected;
    for (const std::string& statement : Statements()) {
        expected += (expected.empty() ? "" : "\n") + statement;
    }
    EXPECT_EQ(sql.text("SELECT sql FROM sqlite_master WHERE sql IS NOT NULL AND name NOT LIKE 'sqlite!_%' ESCAPE '!' "
                       "ORDER BY rowid"),
              expected);
}

TEST_F(Schema, FreshDatabase_WholeText_Has8212Characters)
{
    // Every statement ends with a semicolon, which the file does not keep.
    EXPECT_EQ(sql.text("SELECT SUM(length(sql) + 1) FROM sqlite_master WHERE sql IS NOT NULL AND name NOT LIKE "
                       "'sqlite!_%' ESCAPE '!'"),
              "8212");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FILTER (WHERE type = 'table'), COUNT(*) FILTER (WHERE type = 'index'), "
                       "COUNT(*) FILTER (WHERE type = 'view') FROM sqlite_master WHERE name NOT LIKE 'sqlite!_%' "
                       "ESCAPE '!'"),
              "24|8|11");
}

TEST_F(Schema, FreshDatabase_Rows_AreTheVersionAndTheSevenMainFolders)
{
    EXPECT_EQ(sql.text("SELECT [Version], typeof([Version]) FROM tVersion"), "5005|integer");
    EXPECT_EQ(sql.text("SELECT * FROM tLibMainFolder"),
              "1000|music|0|0|\n1100|gallery|0|0|\n1400|document|0|0|\n1500|people|0|0|\n1600|calendar|0|0|\n"
              "1900|web bookmark|0|0|\n2200|Map|0|0|");
    EXPECT_EQ(sql.text("SELECT DISTINCT typeof([Number]), typeof([Size]), typeof([Setting]) FROM tLibMainFolder"),
              "integer|integer|text");
    for (const char* table : {"tBFile",     "tBackup",  "tDFile",        "tDFolder",     "tIFile",     "tIFolder",
                              "tVFile",     "tVFolder", "tSyncContents", "tMFile",       "tMFolder",   "tPFile",
                              "tPFilename", "tPFolder", "tPhone",        "tPhotoDocLog", "tPimFolder", "tPimFolderLink",
                              "tPimInfo",   "tPimItem", "tPimLog",       "tPimLogItem"}) {
        EXPECT_EQ(sql.text(std::string("SELECT COUNT(*) FROM ") + table), "0") << table;
    }
}

TEST_F(Schema, FreshDatabase_File_IsAnOrdinaryUtf8DatabaseWithRollbackJournal)
{
    EXPECT_EQ(sql.text("PRAGMA encoding"), "UTF-8");
    EXPECT_EQ(sql.text("PRAGMA journal_mode"), "delete");
    EXPECT_EQ(sql.text("PRAGMA auto_vacuum"), "0");
    EXPECT_EQ(sql.text("PRAGMA user_version"), "0");
    EXPECT_EQ(sql.text("PRAGMA application_id"), "0");
    EXPECT_EQ(sql.text("PRAGMA integrity_check"), "ok");
}

TEST_F(Schema, FreshDatabase_TableTBackups_IsNotThere)
{
    EXPECT_THROW((void)sql.text("SELECT * FROM tBackups"), std::runtime_error);
}

}  // namespace
}  // namespace kesta::test
