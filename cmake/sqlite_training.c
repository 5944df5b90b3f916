/*
 * Trains SQLite: runs the kinds of statements that make up the library's work, in their usual proportions, on a
 * database that is thrown away. The compiler then lays SQLite out for the paths that were taken.
 *
 *   sqlite_training DATABASE
 */
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>

enum { kPhones = 3, kFolders = 60, kFilesPerFolder = 20 };

static sqlite3* database;
static char sql[4096];

static void Check(int good, const char* what)
{
    if (good) return;
    fprintf(stderr, "%s: %s\n", what, database != NULL ? sqlite3_errmsg(database) : "no database");
    exit(1);
}

static void Exec(const char* text)
{
    Check(sqlite3_exec(database, text, NULL, NULL, NULL) == SQLITE_OK, text);
}

/* Reads every column in the way of its type; returns the number of rows. */
static int Query(const char* text, int bytes)
{
    sqlite3_stmt* statement = NULL;
    int rows = 0;
    int code;
    Check(sqlite3_prepare_v2(database, text, bytes, &statement, NULL) == SQLITE_OK, text);
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        const int columns = sqlite3_column_count(statement);
        for (int i = 0; i < columns; ++i) {
            if (sqlite3_column_type(statement, i) == SQLITE_INTEGER) {
                (void)sqlite3_column_int(statement, i);
                (void)sqlite3_column_int64(statement, i);
            } else {
                (void)sqlite3_column_text(statement, i);
                (void)sqlite3_column_bytes(statement, i);
                if (rows % 4 == 0) (void)sqlite3_column_text16(statement, i);
            }
        }
        ++rows;
    }
    Check(code == SQLITE_DONE, text);
    Check(sqlite3_finalize(statement) == SQLITE_OK, text);
    return rows;
}

#define EXEC(...) (snprintf(sql, sizeof sql, __VA_ARGS__), Exec(sql))
#define QUERY(...) Query(sql, snprintf(sql, sizeof sql, __VA_ARGS__) + 1)

static void CreateSchema(void)
{
    Exec(
        "CREATE TABLE [tPhone]([ID] INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,[IMEI] VARCHAR(500)  NOT NULL,"
        "[IMEI2] VARCHAR(500)  NULL,[Name] NVARCHAR(500)  NULL,[LastTime] DATETIME  NULL,"
        "[AutoSync] BOOLEAN DEFAULT 0 NOT NULL);"
        "CREATE TABLE [tLibMainFolder]([ID] INTEGER NOT NULL PRIMARY KEY,[Name] NVARCHAR(500)  NOT NULL,"
        "[Number] INTEGER  NULL,[Size] NUMERIC  NULL,[Setting] NVARCHAR(4096)  NULL);"
        "CREATE TABLE [tSyncContents]([phoneID] INTEGER  NOT NULL,[lfID] INTEGER  NOT NULL,"
        "[Selected] BOOLEAN DEFAULT 0 NOT NULL,[OldSelected] BOOLEAN DEFAULT 0 NOT NULL, "
        "PRIMARY KEY ([phoneID],[lfID]));"
        "CREATE TABLE [tMFolder]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
        "[Count] INTEGER DEFAULT 0 NULL,[Size] INTEGER DEFAULT 0 NULL,[TotalSize] INTEGER DEFAULT 0 NULL,"
        "[Selected] BOOLEAN DEFAULT 1 NOT NULL,[Deleted] BOOLEAN DEFAULT 0 NOT NULL,[Flag] INTEGER DEFAULT 0 NULL,"
        "[AddTime] DATETIME  NOT NULL,[Sized] BOOLEAN DEFAULT 0 NOT NULL, PRIMARY KEY ([PhoneID],[Path]));"
        "CREATE TABLE [tMFile]([PhoneID] INTEGER  NOT NULL,[Path] NVARCHAR(1100)  NOT NULL,"
        "[BasePath] NVARCHAR(1100)  NOT NULL,[PhonePath] NVARCHAR(1100)  NOT NULL,"
        "[ModifiedTime] DATETIME  NULL, PRIMARY KEY ([PhoneID],[Path]));"
        "CREATE INDEX [IDX_TPHONE_IMEI] ON [tPhone]([IMEI]  ASC);"
        "CREATE VIEW [vMFile] AS SELECT IMEI, tMFile.* FROM tPhone, tMFile WHERE tPhone.ID = tMFile.PhoneID;"
        "CREATE VIEW [vMFolder] AS SELECT IMEI, tMFolder.* FROM tPhone, tMFolder WHERE tPhone.ID = tMFolder.PhoneID;");
    for (int id = 1; id <= 7; ++id) EXEC("INSERT INTO tLibMainFolder VALUES (%d, 'folder', 0, 0, '')", id);
}

static void AnnouncePhone(int phone)
{
    QUERY("SELECT [ID] FROM tPhone WHERE  [IMEI] = '35209900%d';", phone);
    EXEC("INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('35209900%d', '35209900%d', 'Phone');", phone,
         phone);
    Check(sqlite3_last_insert_rowid(database) == phone, "the phone's number");
    QUERY("SELECT COUNT(*) FROM tLibMainFolder;");
    QUERY("SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;");
    for (int id = 1; id <= 7; ++id) {
        EXEC("INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) VALUES (%d, %d, %d);", phone, id, 0);
    }
}

static void AddFolder(int phone, int folder)
{
    EXEC(
        "UPDATE tMFolder SET [Count] = %d, [Size] = 0, [TotalSize] = 0, [Sized] = 0, [Deleted] = 0 "
        "WHERE [PhoneID] = %d AND [Path] = '/home/user/Music/Artist %d/An Album (1990)';",
        kFilesPerFolder, phone, folder);
    EXEC(
        "INSERT INTO tMFolder ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], "
        "[Flag], [AddTime]) VALUES (%d, '/home/user/Music/Artist %d/An Album (1990)', %d, 0, 0, 0, 1, 0, 1, "
        "'2026-03-01 10:%02d:00');",
        phone, folder, kFilesPerFolder, folder % 60);
    QUERY(
        "SELECT [Flag] FROM tMFolder WHERE  [PhoneID] = %d AND [Path] = '/home/user/Music/Artist %d/An Album (1990)';",
        phone, folder);
}

#define FILE_PATH "/home/user/Music/Artist %d/An Album (1990)/%02d Don''t Look Down.mp3"

static void RecordFile(int phone, int folder, int file)
{
    EXEC("INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (%d, '" FILE_PATH
         "', '/home/user/Music/Artist %d/An Album (1990)', '/storage/Music/Artist %d/%02d Don''t Look Down.mp3', "
         "'2026-03-01 10:%02d:%02d');",
         phone, folder, file, folder, folder, file, folder % 60, file);
    EXEC(
        "UPDATE tMFolder SET [Flag] = %d WHERE [PhoneID] = %d AND [PATH] = '/home/user/Music/Artist %d/An Album "
        "(1990)';",
        0, phone, folder);
}

static void LookUpFile(int phone, int folder, int file)
{
    QUERY("SELECT [ID] FROM tPhone WHERE  [IMEI] = '35209900%d';", phone);
    QUERY(
        "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '35209900%d' AND "
        "[Path] = '" FILE_PATH "';",
        phone, folder, file);
}

static void ListAndChange(int phone)
{
    QUERY("SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '35209900%d';", phone);
    Check(QUERY("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile "
                "WHERE [IMEI] = '35209900%d';",
                phone) == kFolders * kFilesPerFolder,
          "all files in the list");
    for (int folder = 0; folder < kFolders; folder += 10) {
        QUERY(
            "SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '35209900%d'AND [BasePath] = '/home/user/Music/Artist %d/An "
            "Album (1990)';",
            phone, folder);
        QUERY(
            "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = "
            "'35209900%d'AND [BasePath] = '/home/user/Music/Artist %d/An Album (1990)';",
            phone, folder);
        EXEC(
            "UPDATE tMFile SET [PhonePath] = '/storage/x.mp3', [ModifiedTime] = '2026-04-01 10:00:00' "
            "WHERE [PhoneID] = %d AND [Path] = '" FILE_PATH "';",
            phone, folder, 1);
        EXEC("DELETE FROM tMFile WHERE [PhoneID] = %d AND [Path] = '" FILE_PATH "';", phone, folder, 2);
        QUERY(
            "SELECT [Selected] FROM vMFolder WHERE [IMEI] = '35209900%d' AND [Path] = '/home/user/Music/Artist %d/An "
            "Album (1990)';",
            phone, folder);
    }
    QUERY("SELECT COUNT(*) FROM tMFolder WHERE [PhoneID] = %d;", phone);
    QUERY(
        "SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], DATETIME([AddTime]) FROM "
        "tMFolder WHERE [PhoneID] = %d ORDER BY [AddTime];",
        phone);
    EXEC("UPDATE tPhone SET [LastTime] = '2026-03-01 10:00:00' WHERE [IMEI] = '35209900%d';", phone);
}

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    remove(argv[1]);
    Check(sqlite3_open(argv[1], &database) == SQLITE_OK, "opening the database");
    /* What the disk does tells nothing of SQLite's code. */
    Exec("PRAGMA synchronous = OFF;");
    CreateSchema();
    for (int phone = 1; phone <= kPhones; ++phone) {
        AnnouncePhone(phone);
        for (int folder = 0; folder < kFolders; ++folder) {
            AddFolder(phone, folder);
            for (int file = 0; file < kFilesPerFolder; ++file) RecordFile(phone, folder, file);
        }
        for (int folder = 0; folder < kFolders; ++folder) {
            for (int file = 0; file < kFilesPerFolder; ++file) LookUpFile(phone, folder, file);
        }
        ListAndChange(phone);
    }
    Check(sqlite3_close(database) == SQLITE_OK, "closing the database");
    remove(argv[1]);
    return 0;
}
