// Texts that go into a statement through the ANSI code page: rows that hold such bytes are found by the text, and what
// is written holds them. Which exports these are is the library's contract; the others make UTF-8 of every text.
#include "api/records.h"

namespace kesta::test {
namespace {

constexpr char kSign[] = "\xC2\xA7";  // § is a byte or two in every code page that these tests run in

std::string Hex(std::string_view bytes)
{
    std::string digits;
    for (const char byte : bytes) {
        digits += "0123456789ABCDEF"[static_cast<unsigned char>(byte) >> 4];
        digits += "0123456789ABCDEF"[static_cast<unsigned char>(byte) & 15];
    }
    return digits;
}

class CodePageTexts : public OpenDatabase {
protected:
    CodePageTexts()
    {
        sql.exec("INSERT INTO tPhone ([ID], [IMEI], [BookMarkType], [LastTime], [SDType]) VALUES (7, " + stored +
                 ", 2, '2024-02-29 12:34:56', 3)");
    }

    const Text sign = W(kSign);
    const std::string bytes = Hex(Ansi(sign));
    const std::string stored = "CAST(x'" + bytes + "' AS TEXT)";  // SQL
};

TEST_F(CodePageTexts, Phone_IsFoundByItsImei)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(sign, W("x")), 7);
    EXPECT_EQ(lib.DB_MUSIC_ClearAll(sign), 0);
    EXPECT_EQ(lib.DB_MUSIC_ClearAll(W("nobody")), 1);
    PhoneSettingRecord setting = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(sign, &setting), 0);
    EXPECT_EQ(Utf8(setting.IMEI), kSign);
}

TEST_F(CodePageTexts, SyncTime_IsThatOfTheImei)
{
    DateValue time = {};
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(sign, &time), 0);
    EXPECT_EQ(DateText(time), "2024-02-29 12:34:56");
    time = Date(2025, 1, 2);
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(sign, &time, 5, 1), 0);
    EXPECT_EQ(sql.text("SELECT [LastTime], [ErrCode], [NeedMount] FROM tPhone"), "2025-01-02 00:00:00|5|1");
    time.Days = 0;
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(sign, &time, 6, 0), 0);
    EXPECT_EQ(sql.text("SELECT [LastTime], [ErrCode], [NeedMount] FROM tPhone"), "2025-01-02 00:00:00|6|0");
}

TEST_F(CodePageTexts, SDType_IsThatOfTheImei)
{
    int32_t type = 0;
    int32_t oldType = -1;
    EXPECT_EQ(lib.DB_LIB_GetSDType(sign, &type, &oldType), 0);
    EXPECT_EQ(type, 3);
    EXPECT_EQ(lib.DB_LIB_SetSDType(sign, 8, 9), 0);
    EXPECT_EQ(sql.text("SELECT [SDType], [SDOldType] FROM tPhone"), "8|9");
}

TEST_F(CodePageTexts, Bookmarks_AreThoseOfImeiUrlAndType)
{
    sql.exec("INSERT INTO tBFile VALUES (7, 't', " + stored + ", 'm', 1, 4, 2), (7, 'other', 'u', 'm', 1, 5, 1)");
    BookmarkList list = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMarks(sign, &list), 0);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(Utf8(list.Items[0].Title), "t");
    BookmarkRecord bookmark = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMark(sign, sign, &bookmark), 0);
    EXPECT_EQ(ToString(bookmark), "t|" + std::string(kSign) + "|m|1|4|2");
}

/// A playlist that is yet to be added to the phone goes at once, with its files; one that is not known is only marked.
TEST_F(CodePageTexts, FlagOfAPlaylist_IsThatOfItsName)
{
    sql.exec("INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (7, " + stored +
             ", 1, ''); INSERT INTO tPFile VALUES (7, 'file', '" + kSign + "', 'p', '')");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_DeleteList(sign, sign), 0);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPFile"), "0");
}

TEST_F(CodePageTexts, PimFolder_IsFoundByItsPimId)
{
    sql.exec("INSERT INTO tPimFolder VALUES (3, -2, " + stored + ", 'path', 1)");
    PimFolderRecord folder = {};
    EXPECT_EQ(lib.DB_PIM_GetFolder(&folder, sign), 0);
    EXPECT_EQ(Utf8(folder.Path), "path");
}

TEST_F(CodePageTexts, PimItem_IsStoredAndFoundByItsPimId)
{
    const PimItem item(kSign);
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("")), 0);
    EXPECT_EQ(sql.text("SELECT hex([PimID]) FROM tPimItem"), bytes);
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 0);
    EXPECT_EQ(lib.DB_PIM_DeleteItem(sign), 0);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPimItem"), "0");
}

TEST_F(CodePageTexts, ItemsOfALog_AreStored)
{
    Text guid(kSign);
    Text luid("L" + std::string(kSign));
    PimLogItem item = {guid.get(), luid.get(), Date(2024, 1, 1), Date(2024, 1, 1)};
    PimLog log = {};
    log.Type = 1;
    log.Count = 1;
    log.Items = &item;
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(sign, &log), 0);
    EXPECT_EQ(sql.text("SELECT hex([Guid]), hex([Luid]), [phoneID] FROM tPimLogItem, tPimLog"),
              bytes + "|4C" + bytes + "|7");
}

/// Wide statements know no code page.
TEST_F(CodePageTexts, PathsOfFilesAndFolders_AreUtf8)
{
    const Folder folder(kSign);
    EXPECT_EQ(lib.DB_MUSIC_AddFolder(sign, &folder), 0);
    EXPECT_EQ(sql.text("SELECT hex([Path]) FROM tMFolder"), "C2A7");
}

}  // namespace
}  // namespace kesta::test
