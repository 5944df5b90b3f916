#include "library/main_folders.h"

#include "core/list.h"
#include "core/routine.h"
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

namespace library {

ResultCode UpdateMainFolderInfo(Connection& db, const MainFolderRecord& folder)
{
    const Trail trail("DB_INTERNAL_LIB_UpdateMainFolderInfo");
    SqlText sql(db.textBuffer());
    sql.append(WideSql("UPDATE tLibMainFolder SET"));
    const char* separator = " ";
    const auto add = [&]<class... Args>(const FormatFor<Name, Args...>& piece, const Args&... args) {
        sql.append(SqlOf<Name, Args...>(piece, Name{separator}, args...));
        separator = ", ";
    };
    if (folder.Number >= 0) {
        add("%s[Number] = %d", folder.Number);
    }
    if (folder.Size >= 0) {
        add("%s[Size] = %I64d", folder.Size);
    }
    if (!IsEmpty(folder.Setting)) {
        add("%s[Setting] = '%s'", Escaped{folder.Setting});
    }
    const bool anything = *separator == ',';
    sql.append(WideSql(" WHERE [ID] = %d;", folder.ID));
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

ResultCode RefreshStatistic(Connection& db, int32_t folderId)
{
    Routine self(db, Trail("DB_INTERNAL_LIB_RefreshStatistic"));
    const char* sql = StatisticSql(folderId);
    if (sql == nullptr) {
        return ResultCode::kFailure;
    }
    MainFolderRecord folder = {folderId, 0, 0, nullptr, 0};
    bool counted = false;
    // The counted tables are another program's: without them the folder keeps its figures.
    const ResultCode result = self.first(1, NarrowSql("%s", Name{sql}), EndOfRows, [&](const Statement& row) {
        folder.Number = row.int32(0);
        folder.Size = folderId == kMainFolderWebBookmark ? 0 : row.int64(1);
        counted = true;
    });
    return counted ? UpdateMainFolderInfo(db, folder) : result;
}

namespace {

void ReadMainFolder(const Statement& row, MainFolderRecord& folder)
{
    folder.ID = row.int32(0);
    folder.Number = row.int32(1);
    folder.Size = row.int64(2);
    folder.Setting = row.newText(3);
    if (const auto* flag = MainFolderChangeFlags.of(folder.ID)) {
        folder.Changed = flag->load(std::memory_order_relaxed);
    }
}

}  // namespace

ResultCode GetAllMainFolders(Connection& db, MainFolderList& list)
{
    Routine self(db, Trail("DB_INTERNAL_LIB_GetAllMainFolders"));
    const std::optional<int32_t> count = self.count(1, NarrowSql("SELECT COUNT(*) FROM tLibMainFolder;"));
    if (!count.has_value()) {
        return ResultCode::kFailure;
    }
    if (*count <= 0) {
        return ResultCode::kSuccess;
    }
    EmptyList(list);
    AllocateList(list, *count);
    return self.query(2, NarrowSql("SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;"),
                      [&](Statement& rows) { return FillList(list, *count, rows, ReadMainFolder); });
}

}  // namespace library
}  // namespace kesta
