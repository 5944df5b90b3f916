#include "library/main_folders.h"

#include "core/list.h"
#include "core/text.h"

namespace kesta {

ChangeFlags MainFolderChangeFlags;

std::atomic<int32_t>* ChangeFlags::of(int32_t folderId) noexcept
{
    switch (folderId) {
        case kMainFolderMusic:
            return &music;
        case kMainFolderGallery:
            return &gallery;
        case kMainFolderDocument:
            return &document;
        case kMainFolderWebBookmark:
            return &webBookmark;
        default:
            return nullptr;
    }
}

ResultCode DB_INTERNAL_LIB_UpdateMainFolderInfo(Connection& db, const MainFolderRecord& folder)
{
    constexpr Trail trail("DB_INTERNAL_LIB_UpdateMainFolderInfo");
    Sql sql = WideSql("UPDATE tLibMainFolder SET");
    const char* separator = " ";
    const auto add = [&]<class... Args>(const FormatFor<Name, Args...>& piece, const Args&... args) {
        sql.append(piece, Name{separator}, args...);
        separator = ", ";
    };
    if (folder.Number >= 0) add("%s[Number] = %d", folder.Number);
    if (folder.Size >= 0) add("%s[Size] = %I64d", folder.Size);
    if (!IsEmpty(folder.Setting)) add("%s[Setting] = '%s'", Escaped{folder.Setting});
    const bool anything = *separator == ',';
    sql.append(" WHERE [ID] = %d;", folder.ID);
    if (!anything) {
        trail.error(1);
        return ResultCode::kFailure;
    }
    if (db.exec(sql) != SqliteCode::kOk) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    return ResultCode::kSuccess;
}

namespace {

/// The statistics of a main folder; null for one that has none.
const char* StatisticSql(int32_t folderId)
{
    switch (folderId) {
        case kMainFolderMusic:
            return "SELECT COUNT(*), SUM([Size]) FROM tMusicFiles";
        case kMainFolderGallery:
            return "SELECT COUNT(*), SUM([Size]) FROM tMediaFiles";
        case kMainFolderDocument:
            return "SELECT COUNT(*), SUM([Size]) FROM tDocuments";
        case kMainFolderWebBookmark:
            return "SELECT COUNT(*) FROM tWebBookmarks";
        default:
            return nullptr;
    }
}

}  // namespace

ResultCode DB_INTERNAL_LIB_RefreshStatistic(Connection& db, int32_t folderId)
{
    constexpr Trail trail("DB_INTERNAL_LIB_RefreshStatistic");
    const char* sql = StatisticSql(folderId);
    if (sql == nullptr) return ResultCode::kFailure;
    MainFolderRecord folder = {folderId, 0, 0, nullptr, 0};
    {
        // The counted tables are another program's: without them the folder keeps its figures.
        Statement rows = db.prepare(NarrowSql("%s", Name{sql}));
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (!rows.step()) return EndOfRows(rows.last());
        folder.Number = rows.int32(0);
        folder.Size = folderId == kMainFolderWebBookmark ? 0 : rows.int64(1);
    }
    return DB_INTERNAL_LIB_UpdateMainFolderInfo(db, folder);
}

namespace {

void ReadMainFolder(const Statement& row, MainFolderRecord& folder)
{
    folder.ID = row.int32(0);
    folder.Number = row.int32(1);
    folder.Size = row.int64(2);
    folder.Setting = row.newText(3);
    if (const auto* flag = MainFolderChangeFlags.of(folder.ID)) folder.Changed = flag->load(std::memory_order_relaxed);
}

}  // namespace

ResultCode DB_INTERNAL_LIB_GetAllMainFolders(Connection& db, MainFolderList& list)
{
    constexpr Trail trail("DB_INTERNAL_LIB_GetAllMainFolders");
    int32_t count = 0;
    {
        Statement counting = db.prepare(NarrowSql("SELECT COUNT(*) FROM tLibMainFolder;"));
        if (!counting.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (counting.step()) count = counting.int32(0);
    }
    if (count <= 0) return ResultCode::kSuccess;
    EmptyList(list);
    AllocateList(list, count);
    Statement rows = db.prepare(NarrowSql("SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;"));
    if (!rows.prepared()) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    return FillList(list, count, rows, ReadMainFolder);
}

}  // namespace kesta
