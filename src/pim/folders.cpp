#include "pim/folders.h"

#include "core/list.h"
#include "core/text.h"

namespace kesta::pim {

int32_t GetFolderID(Connection& db, const DbChar* pimId)
{
    if (IsEmpty(pimId)) {
        return kRootLevel;
    }
    Routine self(db, Trail("DB_INTERNAL_PIM_GetFolderID"));
    // Deliberate: not escaped, so that a PimID with an apostrophe is never found.
    return self.firstNumber(1, NarrowSql("SELECT [pfID] FROM tPimFolder WHERE [PimID] = '%s';", Ansi{pimId}),
                            kNoFolder);
}

int32_t GetFolderIDByPath(Connection& db, const DbChar* path)
{
    if (IsEmpty(path)) {
        return kRootLevel;
    }
    Routine self(db, Trail("DB_INTERNAL_PIM_GetFolderIDByPath"));
    return self.firstNumber(1, WideSql("SELECT [pfID] FROM tPimFolder WHERE [Path] = '%s';", Escaped{path}), kNoFolder);
}

ResultCode GetFolderIDs(Connection& db, IdArea& ids, int32_t parentId, int32_t type)
{
    Routine self(db, Trail("DB_INTERNAL_PIM_GetFolderIDs"));
    const auto append = [&](Statement& rows) { return ids.appendFirstColumn(rows); };
    if (parentId == kRootLevel) {
        return self.query(
            1,
            NarrowSql("SELECT [pfID] FROM tPimFolder WHERE ([parentID] IS NULL OR [parentID] < 0) AND [Type] = %d;",
                      type),
            append);
    }
    return self.query(
        1, NarrowSql("SELECT [pfID] FROM tPimFolder WHERE [parentID] = %d AND [Type] = %d;", parentId, type), append);
}

void AppendDescendants(Connection& db, IdArea& ids, int32_t type)
{
    for (size_t i = 0; i < ids.count(); ++i) {
        (void)GetFolderIDs(db, ids, ids[i], type);
    }
}

ResultCode GetFolder(Connection& db, PimFolderRecord& folder, int32_t folderId)
{
    Routine self(db, Trail("DB_INTERNAL_PIM_GetFolder"));
    if (folderId < 0) {
        return ResultCode::kFailure;
    }
    int32_t parentId = kRootLevel;
    const ResultCode read = self.first(
        1, NarrowSql("SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = %d;", folderId),
        PassThrough, [&](const Statement& row) {
            folder.PimID = row.newText(0);
            if (!row.isNull(1)) {
                parentId = row.int32(1);
            }
            folder.Path = row.newText(2);
            folder.Type = row.int32(3);
        });
    if (read != ResultCode::kSuccess || parentId < 0) {
        return read;
    }
    // No row: the parent was deleted.
    return self.first(2, NarrowSql("SELECT [PimID] FROM tPimFolder WHERE [pfID] = %d;", parentId), PassThrough,
                      [&](const Statement& row) { folder.ParentPimID = row.newText(0); });
}

ResultCode GetFolders(Routine self, PimFolderList& list, const DbChar* parentPimId, int32_t type, bool recursive)
{
    const int32_t parentId = GetFolderID(self.db, parentPimId);
    if (parentId == kNoFolder) {
        return ResultCode::kFailure;
    }
    FolderIds ids;
    (void)GetFolderIDs(self.db, ids, parentId, type);
    if (recursive) {
        AppendDescendants(self.db, ids, type);
    }
    AllocateList(list, static_cast<int32_t>(ids.count()));
    for (; static_cast<size_t>(list.Count) < ids.count(); ++list.Count) {
        (void)GetFolder(self.db, list.Items[list.Count], ids[static_cast<size_t>(list.Count)]);
    }
    return ResultCode::kSuccess;
}

ResultCode AddFolder(Routine self, const PimFolderRecord& folder, const DbChar* parentPimId)
{
    const int32_t parentId = GetFolderID(self.db, parentPimId);
    if (parentId == kNoFolder) {
        return ResultCode::kFailure;
    }
    return self.run(1,
                    WideSql("INSERT INTO tPimFolder ([parentID], [PimID], [Path], [Type]) VALUES (%d, '%s', '%s', %d);",
                            parentId, Plain{folder.PimID}, Escaped{folder.Path}, folder.Type));
}

ResultCode GetFolder(Routine self, PimFolderRecord& folder, const DbChar* pimId)
{
    return GetFolder(self.db, folder, GetFolderID(self.db, pimId));
}

ResultCode UpdateFolder(Routine self, const PimFolderRecord& folder)
{
    const int32_t folderId = GetFolderID(self.db, folder.PimID);
    if (folderId == kNoFolder) {
        return ResultCode::kFailure;
    }
    return self.run(1, WideSql("UPDATE tPimFolder SET [Path] = '%s', [Type] = %d WHERE [pfID] = %d;",
                               Escaped{folder.Path}, folder.Type, folderId));
}

ResultCode DeleteFolder(Routine self, const DbChar* pimId)
{
    const int32_t folderId = GetFolderID(self.db, pimId);
    if (folderId == kNoFolder) {
        return ResultCode::kFailure;
    }
    // What lies below it stays, and hangs in the air.
    return self.run(1, NarrowSql("DELETE FROM tPimFolder WHERE [pfID] = %d;", folderId));
}

}  // namespace kesta::pim
