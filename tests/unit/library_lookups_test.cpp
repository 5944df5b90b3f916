// The look-ups and those paths of the folder engine that no export of the media families takes.
#include "library/phone_lookup.h"

#include "core/list.h"
#include "library/main_folders.h"
#include "library/tables.h"
#include "media/folder_records.h"
#include "media/folder_state.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::W;
using ::testing::ElementsAre;

constexpr MediaTables kTables = {{"tMFolder"}, {"vMFolder"}, {"tMFile"}, {"vMFile"}};
constexpr MediaTables kNoTables = {{"tXFolder"}, {"vXFolder"}, {"tXFile"}, {"vXFile"}};

class LookUps : public ModuleUnderTest {
protected:
    LookUps()
    {
        sql.exec(
            "INSERT INTO tPhone ([IMEI], [BookMarkType]) VALUES ('351111', 5), ('it''s', 6);"
            "INSERT INTO tMFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'zero', 0, '3'), (1, 'one', 1, "
            "'2'),"
            " (1, 'three', 3, '1'), (1, 'it''s', 4, '0'), (2, 'zero', 7, '0');"
            "INSERT INTO tMFile SELECT [PhoneID], [Path] || '\\1', [Path], '', '' FROM tMFolder");
    }

    [[nodiscard]] std::string folders() const
    {
        return sql.text("SELECT [Path], [Flag] FROM tMFolder WHERE [PhoneID] = 1 ORDER BY [Path]");
    }

    ResultCode setDeleted(const char* path)
    {
        return media::SetDeletedFolder(W("351111"), kTables, W(path), media::Deletion::kByFlag);
    }
};

TEST_F(LookUps, GetPhoneIdByImei_EveryOutcome_IsItsNumber)
{
    EXPECT_EQ(GetPhoneIdByImei(db(), W("351111")), 1);
    EXPECT_EQ(GetPhoneIdByImei(db(), W("999")), -1);
    EXPECT_EQ(GetPhoneIdByImei(db(), W("it's")), -1);
    EXPECT_EQ(GetPhoneIdByImei(db(), nullptr), -1);
    sql.exec("ALTER TABLE tPhone RENAME TO elsewhere");
    EXPECT_EQ(GetPhoneIdByImei(db(), W("351111")), -1);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(LookUps, GetBookMarkTypeByImei_EveryOutcome_IsItsNumber)
{
    EXPECT_EQ(GetBookMarkTypeByImei(db(), W("351111")), 5);
    EXPECT_EQ(GetBookMarkTypeByImei(db(), W("999")), 0);
    sql.exec("ALTER TABLE tPhone RENAME TO elsewhere");
    EXPECT_EQ(GetBookMarkTypeByImei(db(), W("351111")), 0);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(LookUps, GetPathFlag_EveryOutcome_IsItsNumber)
{
    EXPECT_EQ(GetPathFlag(db(), 1, Name{"tMFolder"}, W("three")), 3);
    EXPECT_EQ(GetPathFlag(db(), 1, Name{"tMFolder"}, W("it's")), 4);
    EXPECT_EQ(GetPathFlag(db(), 2, Name{"tMFolder"}, W("zero")), 7);
    EXPECT_EQ(GetPathFlag(db(), 3, Name{"tMFolder"}, W("zero")), 0);
    EXPECT_EQ(GetPathFlag(db(), 1, Name{"tMFolder"}, nullptr), 0);
    EXPECT_EQ(GetPathFlag(db(), 1, Name{"tNowhere"}, W("three")), 0);
    EXPECT_EQ(GetPathFlag(db(), 1, Name{"tMFolder"}, W(std::string(50000, 'x'))), 0);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(LookUps, SetDeletedFolderByFlag_SyncedFolder_IsMarkedFour)
{
    EXPECT_EQ(setDeleted("zero"), ResultCode::kSuccess);
    EXPECT_EQ(folders(), "it's|4\none|1\nthree|3\nzero|4");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tMFile"), "5");
}

TEST_F(LookUps, SetDeletedFolderByFlag_FlagThree_IsRemovedWithItsFiles)
{
    EXPECT_EQ(setDeleted("three"), ResultCode::kSuccess);
    EXPECT_EQ(folders(), "it's|4\none|1\nzero|0");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tMFile WHERE [BasePath] = 'three'"), "0");
}

TEST_F(LookUps, SetDeletedFolderByFlag_AnyOtherFlag_FailsWithoutChange)
{
    EXPECT_EQ(setDeleted("one"), ResultCode::kFailure);
    EXPECT_EQ(setDeleted("it's"), ResultCode::kFailure);
    EXPECT_EQ(folders(), "it's|4\none|1\nthree|3\nzero|0");
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(LookUps, SetDeletedFolderByFlag_UnknownFolder_HasFlagZeroAndSucceeds)
{
    EXPECT_EQ(setDeleted("unknown"), ResultCode::kSuccess);
    EXPECT_EQ(folders(), "it's|4\none|1\nthree|3\nzero|0");
}

TEST_F(LookUps, SetDeletedFolderByFlag_MarkingFails_TellsUnderTheMarkingsName)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tMFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(setDeleted("zero"), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(),
                ElementsAre("DB TRACE >> Error in DB_INTNOLOCK_SetFolderState(), position 2.\n"));
}

TEST_F(LookUps, GetFlag_EveryOutcome_HasItsResult)
{
    int32_t flag = 77;
    const auto get = [&](const char* imei, const MediaTables& tables, const char* path) {
        return static_cast<int32_t>(media::GetFlag(db(), W(imei), tables, W(path), flag));
    };
    EXPECT_EQ(get("351111", kTables, "unknown"), 101);
    EXPECT_EQ(get("999", kTables, "zero"), 101);
    EXPECT_EQ(flag, 77);
    EXPECT_EQ(get("351111", kTables, "it's"), 0);
    EXPECT_EQ(flag, 4);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
    EXPECT_EQ(get("351111", kNoTables, "zero"), 1);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in DB_INTNOLOCK_GetFlag(), position 1.\n"));
}

TEST_F(LookUps, SetFolderState_KnownAndUnknownPhone_WritesOrFails)
{
    EXPECT_EQ(media::SetFolderState(W("351111"), kTables, W("it's"), Name{"[Flag]"}, 9), ResultCode::kSuccess);
    EXPECT_EQ(folders(), "it's|9\none|1\nthree|3\nzero|0");
    EXPECT_EQ(media::SetFolderState(W("999"), kTables, W("zero"), Name{"[Flag]"}, 9), ResultCode::kFailure);
    db().close();
    EXPECT_EQ(media::SetFolderState(W("351111"), kTables, W("zero"), Name{"[Flag]"}, 9), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(LookUps, SetFoldersState_AnyColumn_LeavesRowsAtFour)
{
    EXPECT_EQ(media::SetFoldersState(W("351111"), kTables, Name{"[Flag]"}, 8), ResultCode::kSuccess);
    EXPECT_EQ(folders(), "it's|4\none|8\nthree|8\nzero|8");
    EXPECT_EQ(sql.text("SELECT [Flag] FROM tMFolder WHERE [PhoneID] = 2"), "7");
}

TEST_F(LookUps, GetFolders_OrderOfTheTable_IsTheOrderOfItsKey)
{
    FolderList list = {};
    EXPECT_EQ(media::GetFolders(W("351111"), kTables, list, media::FolderOrder::kTable), ResultCode::kSuccess);
    std::string paths;
    for (int32_t i = 0; i < list.Count; ++i) {
        paths += test::Utf8(list.Items[i].Path) + " ";
    }
    EXPECT_EQ(paths, "it's one three zero ");
    EXPECT_EQ(media::GetFolders(W("351111"), kTables, list, media::FolderOrder::kAddTime), ResultCode::kSuccess);
    paths.clear();
    for (int32_t i = 0; i < list.Count; ++i) {
        paths += test::Utf8(list.Items[i].Path) + " ";
    }
    EXPECT_EQ(paths, "it's three one zero ");
    EmptyList(list);
}

TEST_F(LookUps, GetFolders_NoFolders_LeavesTheListAsItWas)
{
    FolderList list = {};
    ASSERT_EQ(media::GetFolders(W("351111"), kTables, list, media::FolderOrder::kTable), ResultCode::kSuccess);
    sql.exec("DELETE FROM tMFolder");
    EXPECT_EQ(media::GetFolders(W("351111"), kTables, list, media::FolderOrder::kTable), ResultCode::kSuccess);
    EXPECT_EQ(list.Count, 4);
    EmptyList(list);
}

TEST_F(LookUps, GetAllMainFolders_NoFolders_LeavesTheListAsItWas)
{
    MainFolderList list = {};
    ASSERT_EQ(library::GetAllMainFolders(db(), list), ResultCode::kSuccess);
    sql.exec("DELETE FROM tLibMainFolder");
    EXPECT_EQ(library::GetAllMainFolders(db(), list), ResultCode::kSuccess);
    EXPECT_EQ(list.Count, 7);
    EmptyList(list);
}

TEST_F(LookUps, GetAllMainFolders_ListThatHoldsFolders_GivesThemBack)
{
    MainFolderList list = {};
    ASSERT_EQ(library::GetAllMainFolders(db(), list), ResultCode::kSuccess);
    ASSERT_EQ(library::GetAllMainFolders(db(), list), ResultCode::kSuccess);
    EmptyList(list);
    int alive = 0;
    for (const std::string& line : ReplacedServices::take()) {
        alive += line.ends_with(" NEW.\n") ? 1 : line.ends_with(" DELETE.\n") ? -1 : 0;
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(LookUps, RefreshStatistic_AnyOtherFolder_FailsWithoutLine)
{
    for (const int32_t id : {0, 1500, 1600, 2200, -1}) {
        EXPECT_EQ(library::RefreshStatistic(db(), id), ResultCode::kFailure);
    }
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(LookUps, ClearTable4Phone_OnePhone_KeepsTheOthers)
{
    EXPECT_EQ(library::ClearTable4Phone(db(), 1, Name{"tMFile"}), ResultCode::kSuccess);
    EXPECT_EQ(sql.text("SELECT [PhoneID] FROM tMFile"), "2");
    EXPECT_EQ(library::ClearTable4Phone(db(), 1, Name{"tNowhere"}), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(),
                ElementsAre("DB TRACE >> Error in DB_INTERNAL_ClearTable4Phone(), position 1.\n"));
}

}  // namespace
}  // namespace kesta
