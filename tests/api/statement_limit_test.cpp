// A statement of 40,960 bytes runs; one byte more is refused as a statement too long, and nothing is changed.
#include <functional>

#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr size_t kLimit = 40960;

/// The error lines among those since the last take.
std::vector<std::string> Errors(TraceLog& trace)
{
    std::vector<std::string> errors;
    for (std::string& line : trace.take()) {
        if (line.starts_with("Error") || line.starts_with("An exception")) {
            errors.push_back(std::move(line));
        }
    }
    return errors;
}

class StatementLimit : public OpenDatabase {
protected:
    StatementLimit() { givenPhone(); }

    /// A text that makes `statement`, written here with nothing in its place, `more` bytes longer than the limit.
    static std::string filling(std::string_view statement, size_t more = 0)
    {
        return std::string(kLimit + more - statement.size(), 'x');
    }

    std::vector<std::string> errors() { return Errors(trace); }
};

TEST_F(StatementLimit, UpdateMainFolderInfo_LongSetting_FailsAtPositionTwo)
{
    const std::string_view statement = "UPDATE tLibMainFolder SET [Number] = 5, [Setting] = '' WHERE [ID] = 1000;";
    Text fits(filling(statement));
    Text tooLong(filling(statement, 1));
    const MainFolderRecord good = {1000, 5, -1, fits.get(), 0};
    const MainFolderRecord bad = {1000, 6, -1, tooLong.get(), 0};
    EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&good), 0);
    EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&bad), 1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_INTERNAL_LIB_UpdateMainFolderInfo(), position 2."));
    EXPECT_EQ(sql.text("SELECT [Number], length([Setting]) FROM tLibMainFolder WHERE [ID] = 1000"),
              "5|" + std::to_string(fits.length()));
}

TEST_F(StatementLimit, PhoneDetected_LongName_IsRefusedAtPositionOne)
{
    const std::string_view statement =
        "INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('352222', '352222', '');";
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("352222"), W(filling(statement, 1))), -1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_LIB_PhoneDetected(), position 1."));
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("352222"), W(filling(statement))), 2);
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "2");
}

TEST_F(StatementLimit, PhoneDetected_LongImei_IsNeitherFoundNorInserted)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(std::string(50000, '1')), W("")), -1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_LIB_PhoneDetected(), position 1."));
}

TEST_F(StatementLimit, PhoneLookUp_LongImei_FindsThePhoneUpToTheLimit)
{
    const std::string imei = filling("SELECT [ID] FROM tPhone WHERE  [IMEI] = '';");
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES (" + Quoted(imei) + "), (" + Quoted(imei + "x") + ")");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(imei), W("")), 2);
    EXPECT_EQ(lib.DB_MUSIC_ClearAll(W(imei)), 0);
    EXPECT_EQ(lib.DB_MUSIC_ClearAll(W(imei + "x")), 1);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(StatementLimit, SetPhoneSetting_LongText_FailsAtPositionOne)
{
    Text imei(kImei);
    PhoneSettingRecord record = {};
    record.IMEI = imei.get();
    record.CalStart = record.CalEnd = NullDate();
    const std::string_view statement =
        "UPDATE tPhone SET [AutoSync] = 1, [AutoBackup] = 0, [AllowWifi] = 0, \t\t\t\t[ContactPreferSide] = 0, "
        "[CalendarPreferSide] = 0, [ContactPim] = 0, [CalPim] = 0, \t\t\t\t[CalPeriod] = 0, [CalStart] = '', [CalEnd] "
        "= '', [BookMarkType] = 0, \t\t\t\t[SyncDocFromFolder] = 0, [SyncDocFromPhone] = 0, [SyncPhotoFromFolder] = 0, "
        "\t\t\t\t[SyncPhotoFromPhone] = 0, [SyncMusicFromFolder] = 0, [SyncMusicFromPlayer] = 0, [SyncMusicAll] = 0, "
        "[DocPath] = '' WHERE [IMEI] = '351111';";
    Text fits(filling(statement));
    Text tooLong(filling(statement, 1));
    record.AutoSync = 1;
    record.DocPath = fits.get();
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&record), 0);
    record.AutoSync = 2;
    record.DocPath = tooLong.get();
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&record), 1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_LIB_SetPhoneSetting(), position 1."));
    EXPECT_EQ(sql.text("SELECT [AutoSync] FROM tPhone"), "1");
}

/// The exports whose only text is an IMEI, each with its statement.
TEST_F(StatementLimit, ImeiExports_LongImei_FailAtPositionOne)
{
    int32_t type = 0;
    int32_t oldType = 0;
    DateValue found = {};
    const DateValue time = Date(2024, 1, 1);
    const DateValue none = {};
    struct Case {
        std::string_view statement;
        const char* name;
        std::function<int32_t(const Text&)> call;
    };
    const Case cases[] = {
        {"UPDATE tPhone SET [SDType] = 1, [SDOldType] = 2 WHERE [IMEI] = '';", "DB_LIB_SetSDType",
         [&](const Text& imei) { return lib.DB_LIB_SetSDType(imei, 1, 2); }},
        {"SELECT [SDType], [SDOldType] FROM tPhone WHERE [IMEI] = '';", "DB_LIB_GetSDType",
         [&](const Text& imei) { return lib.DB_LIB_GetSDType(imei, &type, &oldType); }},
        {"UPDATE tPhone SET [LastTime] = '2024-01-01 00:00:00', [ErrCode] = 1, [NeedMount] = 2 WHERE [IMEI] = '';",
         "DB_LIB_SetLastSyncTime", [&](const Text& imei) { return lib.DB_LIB_SetLastSyncTime(imei, &time, 1, 2); }},
        {"UPDATE tPhone SET [ErrCode] = 1, [NeedMount] = 2 WHERE [IMEI] = '';", "DB_LIB_SetLastSyncTime",
         [&](const Text& imei) { return lib.DB_LIB_SetLastSyncTime(imei, &none, 1, 2); }},
        {"SELECT DATETIME([LastTime]) FROM tPhone WHERE [IMEI] = '';", "DB_LIB_GetLastSyncTime",
         [&](const Text& imei) { return lib.DB_LIB_GetLastSyncTime(imei, &found); }}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.statement);
        const std::string imei = filling(each.statement);
        sql.exec("INSERT INTO tPhone ([IMEI]) VALUES (" + Quoted(imei) + "), (" + Quoted(imei + "x") + ")");
        EXPECT_EQ(each.call(W(imei)), 0);
        EXPECT_THAT(errors(), IsEmpty());
        const std::string before = sql.text("SELECT * FROM tPhone");
        EXPECT_EQ(each.call(W(imei + "x")), 1);
        EXPECT_THAT(errors(), ElementsAre(std::string("Error in ") + each.name + "(), position 1."));
        EXPECT_EQ(sql.text("SELECT * FROM tPhone"), before);
        sql.exec("DELETE FROM tPhone");
    }
}

TEST_F(StatementLimit, GetPhoneSetting_LongImei_FailsAtPositionOne)
{
    PhoneSettingRecord record = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W(std::string(kLimit, 'x')), &record), 1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_LIB_GetPhoneSetting(), position 1."));
}

/// The exports that take a path, each with its statement, its results and its error line one byte beyond.
TEST_F(StatementLimit, PathExports_LongPath_FailAtTheirPositions)
{
    FolderRecord folder = {};
    SyncedFileRecord found = {};
    struct Case {
        std::string_view statement;
        int32_t good;
        int32_t bad;
        std::vector<std::string> lines;
        std::function<int32_t(const Text&, DbChar*)> call;
    };
    const auto record = [](DbChar* path) { return SyncedFileRecord{NullDate(), path, nullptr, nullptr}; };
    const Case cases[] = {
        {"SELECT [Selected] FROM vMFolder WHERE [IMEI] = '351111' AND [Path] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_IsFolderSelected(), position 1."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_IsFolderSelected(imei, path); }},
        {"UPDATE tMFolder SET [Selected] = 7 WHERE [PhoneID] = 1 AND [Path] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_SetFolderSelected(), position 2."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_SetFolderSelected(imei, path, 7); }},
        {"SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted] FROM tMFolder WHERE "
         "[PhoneID] = 1 AND [Path] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_GetFolder(), position 1."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_GetFolder(imei, path, &folder); }},
        {"UPDATE tMFolder SET [Deleted] = 0 WHERE [PhoneID] = 1 AND [PATH] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_SetFolderDeleted(), position 2."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_SetFolderDeleted(imei, path, 0); }},
        {"UPDATE tMFolder SET [Deleted] = 1 WHERE [PhoneID] = 1 AND [PATH] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_SetFolderDeleted(), position 2."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_SetFolderDeleted(imei, path, 1); }},
        {"SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '351111' AND "
         "[Path] = '';",
         1,
         0,
         {"Error in DB_INTERNAL_IsSyncedFile(), position 1."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_IsSyncedFile(imei, path, &found); }},
        {"UPDATE tMFile SET [PhonePath] = '', [ModifiedTime] = '' WHERE [PhoneID] = 1 AND [Path] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_SetUpdatedFile(), position 1."},
         [&](const Text& imei, DbChar* path) {
             const SyncedFileRecord file = record(path);
             return lib.DB_MUSIC_SetUpdatedFile(imei, &file);
         }},
        {"DELETE FROM tMFile WHERE [PhoneID] = 1 AND [Path] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_SetDeletedFile(), position 1."},
         [&](const Text& imei, DbChar* path) {
             const SyncedFileRecord file = record(path);
             return lib.DB_MUSIC_SetDeletedFile(imei, &file);
         }},
        {"INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (1, '', '', '', '');",
         19,
         18,
         {"Error in DB_INTERNAL_SetAddedFile(), position 3."},
         [&](const Text& imei, DbChar* path) {
             const SyncedFileRecord file = record(path);
             return lib.DB_MUSIC_SetAddedFile(imei, &file);
         }},
        // Removing the folder itself takes a statement two bytes shorter, which still runs.
        {"DELETE FROM tMFile WHERE [PhoneID] = 1 AND [BasePath] = '';",
         0,
         1,
         {"Error in DB_INTERNAL_SetDeletedFolder(), position 1."},
         [&](const Text& imei, DbChar* path) { return lib.DB_MUSIC_SetDeletedFolder(imei, path); }}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.statement);
        Text fits(filling(each.statement));
        Text tooLong(filling(each.statement, 1));
        for (const Text* path : {&fits, &tooLong}) {
            const std::string quoted = "'" + Utf8(*path) + "'";
            sql.exec("INSERT INTO tMFolder ([PhoneID], [Path], [Selected], [Flag], [AddTime]) VALUES (1, " + quoted +
                     ", 0, 0, ''); INSERT INTO tMFile VALUES (1, " + quoted + ", '', '', '')");
        }
        trace.take();
        EXPECT_EQ(each.call(W(kImei), fits.get()), each.good);
        EXPECT_EQ(errors().size(), each.good == 19 ? 1u : 0u);
        const std::string before = sql.text("SELECT * FROM tMFile") + sql.text("SELECT * FROM tMFolder");
        EXPECT_EQ(each.call(W(kImei), tooLong.get()), each.bad);
        EXPECT_EQ(errors(), each.lines);
        const std::string after = sql.text("SELECT * FROM tMFile") + sql.text("SELECT * FROM tMFolder");
        // Removing a folder goes on with its files: only what could not be said stays.
        if (each.statement.find("[BasePath] = ''") == std::string_view::npos) {
            EXPECT_EQ(after, before);
        }
        sql.exec("DELETE FROM tMFolder; DELETE FROM tMFile");
    }
}

TEST_F(StatementLimit, SetFolderDeleted_FlagStatementTooLongToo_TracesBothSteps)
{
    EXPECT_EQ(lib.DB_MUSIC_SetFolderDeleted(W(kImei), W(std::string(kLimit, 'x')), 1), 1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_INTNOLOCK_GetFlag(), position 1.",
                                      "Error in DB_INTERNAL_SetFolderDeleted(), position 2."));
}

TEST_F(StatementLimit, SetDeletedFolder_BothStatementsTooLong_TracesPositionOneTwice)
{
    EXPECT_EQ(lib.DB_MUSIC_SetDeletedFolder(W(kImei), W(std::string(kLimit, 'x'))), 1);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_INTERNAL_SetDeletedFolder(), position 1.",
                                      "Error in DB_INTERNAL_SetDeletedFolder(), position 1."));
}

TEST_F(StatementLimit, SetAddedFile_ExactlyTheLimit_IsRecorded)
{
    Text path(
        filling("INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (1, '', "
                "'', '', '');"));
    const SyncedFileRecord file = {NullDate(), path.get(), nullptr, nullptr};
    EXPECT_EQ(lib.DB_MUSIC_SetAddedFile(W(kImei), &file), 0);
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(sql.text("SELECT length([Path]) FROM tMFile"), std::to_string(path.length()));
}

TEST_F(StatementLimit, AddFolder_LongPath_RunsWhatFitsAndSucceeds)
{
    const std::string_view update =
        "UPDATE tMFolder SET [Count] = 9, [Size] = 0, [TotalSize] = 0, [Sized] = 0, [Deleted] = 0 WHERE [PhoneID] = 1 "
        "AND [Path] = '';";
    const std::string_view insert =
        "INSERT INTO tMFolder ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], [Flag]"
        ", [AddTime]) VALUES (1, '', 9, 0, 0, 0, 1, 0, 1, '2024-01-01 00:00:00');";
    const Folder inserted(filling(insert), 9);
    const Folder notInserted(filling(insert, 1), 9);
    const Folder updated(filling(update), 9);
    const Folder notUpdated(filling(update, 1), 9);
    for (const Folder* known : {&updated, &notUpdated}) {
        sql.exec("INSERT INTO tMFolder ([PhoneID], [Path], [AddTime]) VALUES (1, '" + Utf8(known->Path) + "', '')");
    }
    for (const Folder* folder : {&inserted, &notInserted, &updated, &notUpdated}) {
        EXPECT_EQ(lib.DB_MUSIC_AddFolder(W(kImei), folder), 0);
    }
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(sql.text("SELECT length([Path]), [Count] FROM tMFolder ORDER BY 1"),
              std::to_string(kLimit - insert.size()) + "|9\n" + std::to_string(kLimit - update.size()) + "|9\n" +
                  std::to_string(kLimit - update.size() + 1) + "|0");
}

TEST_F(StatementLimit, GetSyncedFiles_LongFolder_FailsAtTheStatementThatIsTooLong)
{
    const std::string_view count = "SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '351111'AND [BasePath] = '';";
    const std::string_view rows =
        "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '351111'AND "
        "[BasePath] = '';";
    int file = 0;
    for (const std::string& folder : {filling(rows), filling(rows, 1), filling(count), filling(count, 1)}) {
        sql.exec("INSERT INTO tMFile VALUES (1, " + std::to_string(++file) + ", '" + folder + "', '', '')");
    }
    SyncedFileList list = {};
    EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), W(filling(rows)), &list), 0);
    EXPECT_EQ(list.Count, 1);
    EXPECT_THAT(errors(), IsEmpty());
    for (const std::string& folder : {filling(rows, 1), filling(count)}) {
        EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), W(folder), &list), 1);
        EXPECT_EQ(list.Count, 0);
        EXPECT_NE(list.Items, nullptr);
        EXPECT_THAT(errors(), ElementsAre("Error in DB_INTERNAL_GetSyncedFiles(), position 3."));
    }
    EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), W(filling(count, 1)), &list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(errors(), ElementsAre("Error in DB_INTERNAL_GetSyncedFiles(), position 1."));
}

/// The limit counts bytes of the finished statement: a doubled apostrophe is two, an emoji four.
TEST_F(StatementLimit, SetFolderSelected_LongerCharacters_CountAsTheirBytes)
{
    const std::string_view statement = "UPDATE tMFolder SET [Selected] = 7 WHERE [PhoneID] = 1 AND [Path] = '';";
    const size_t room = kLimit - statement.size();
    for (const std::string character : {"\xF0\x9F\x8E\xB5", "\xE6\x97\xA5", "\xC3\xA9", "'"}) {
        const size_t bytes = character == "'" ? 2 : character.size();
        std::string path(room % bytes, 'x');
        while (path.size() < room - (character == "'" ? room / 2 : 0)) {
            path += character;
        }
        SCOPED_TRACE(character);
        sql.exec("INSERT INTO tMFolder ([PhoneID], [Path], [AddTime]) VALUES (1, " + Quoted(path) + ", ''), (1, " +
                 Quoted(path + "x") + ", '')");
        EXPECT_EQ(lib.DB_MUSIC_SetFolderSelected(W(kImei), W(path), 7), 0);
        EXPECT_THAT(errors(), IsEmpty());
        EXPECT_EQ(lib.DB_MUSIC_SetFolderSelected(W(kImei), W(path + "x"), 7), 1);
        EXPECT_EQ(lib.DB_MUSIC_SetFolderSelected(W(kImei), W("x" + path), 7), 1);
        EXPECT_EQ(lib.DB_MUSIC_SetFolderSelected(W(kImei), W(path + character), 7), 1);
        EXPECT_EQ(errors().size(), 3u);
        EXPECT_EQ(sql.text("SELECT [Selected] FROM tMFolder ORDER BY length([Path])"), "7\n1");
        sql.exec("DELETE FROM tMFolder");
    }
}

}  // namespace
}  // namespace kesta::test
