#include "pim/folders.h"

#include "core/list.h"
#include "core/text.h"

namespace kesta {
namespace {

int32_t FolderId(Statement rows, Trail trail)
{
    if (!rows.prepared()) trail.error(1);
    return rows.prepared() && rows.step() ? rows.int32(0) : kNoFolder;
}

Sql ChildrenSql(int32_t parentId, int32_t type)
{
    if (parentId == kRootLevel) {
        return NarrowSql("SELECT [pfID] FROM tPimFolder WHERE ([parentID] IS NULL OR [parentID] < 0) AND [Type] = %d;",
                         type);
    }
    return NarrowSql("SELECT [pfID] FROM tPimFolder WHERE [parentID] = %d AND [Type] = %d;", parentId, type);
}

}  // namespace

int32_t DB_INTERNAL_PIM_GetFolderID(Connection& db, const DbChar* pimId)
{
    if (IsEmpty(pimId)) return kRootLevel;
    // Deliberate: not escaped, so that a PimID with an apostrophe is never found.
    return FolderId(db.prepare(NarrowSql("SELECT [pfID] FROM tPimFolder WHERE [PimID] = '%s';", Ansi{pimId})),
                    Trail("DB_INTERNAL_PIM_GetFolderID"));
}

int32_t DB_INTERNAL_PIM_GetFolderIDByPath(Connection& db, const DbChar* path)
{
    if (IsEmpty(path)) return kRootLevel;
    return FolderId(db.prepare(WideSql("SELECT [pfID] FROM tPimFolder WHERE [Path] = '%s';", Escaped{path})),
                    Trail("DB_INTERNAL_PIM_GetFolderIDByPath"));
}

ResultCode DB_INTERNAL_PIM_GetFolderIDs(Connection& db, IdArea& ids, int32_t parentId, int32_t type)
{
    Statement rows = db.prepare(ChildrenSql(parentId, type));
    if (!rows.prepared()) {
        Trail("DB_INTERNAL_PIM_GetFolderIDs").error(1);
        return ResultCode::kFailure;
    }
    while (rows.step()) {
        if (!ids.append(rows.int32(0))) return ResultCode::kSuccess;
    }
    return rows.last() == SqliteCode::kDone ? ResultCode::kSuccess : ResultCode::kFailure;
}

void AppendDescendants(Connection& db, IdArea& ids, int32_t type)
{
    for (size_t i = 0; i < ids.count(); ++i) (void)DB_INTERNAL_PIM_GetFolderIDs(db, ids, ids[i], type);
}

ResultCode DB_INTERNAL_PIM_GetFolder(Connection& db, PimFolderRecord& folder, int32_t folderId)
{
    constexpr Trail trail("DB_INTERNAL_PIM_GetFolder");
    if (folderId < 0) return ResultCode::kFailure;
    int32_t parentId = kRootLevel;
    {
        Statement rows = db.prepare(
            NarrowSql("SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = %d;", folderId));
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (!rows.step()) return PassThrough(rows.last());
        folder.PimID = rows.newText(0);
        if (!rows.isNull(1)) parentId = rows.int32(1);
        folder.Path = rows.newText(2);
        folder.Type = rows.int32(3);
    }
    if (parentId < 0) return ResultCode::kSuccess;
    Statement parents = db.prepare(NarrowSql("SELECT [PimID] FROM tPimFolder WHERE [pfID] = %d;", parentId));
    if (!parents.prepared()) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    if (!parents.step()) return PassThrough(parents.last());  // the parent was deleted
    folder.ParentPimID = parents.newText(0);
    return ResultCode::kSuccess;
}

namespace pim {

ResultCode GetFolders(Connection& db, PimFolderList& list, const DbChar* parentPimId, int32_t type, bool recursive)
{
    const int32_t parentId = DB_INTERNAL_PIM_GetFolderID(db, parentPimId);
    if (parentId == kNoFolder) return ResultCode::kFailure;
    FolderIds ids;
    (void)DB_INTERNAL_PIM_GetFolderIDs(db, ids, parentId, type);
    if (recursive) AppendDescendants(db, ids, type);
    AllocateList(list, static_cast<int32_t>(ids.count()));
    for (; static_cast<size_t>(list.Count) < ids.count(); ++list.Count) {
        (void)DB_INTERNAL_PIM_GetFolder(db, list.Items[list.Count], ids[static_cast<size_t>(list.Count)]);
    }
    return ResultCode::kSuccess;
}

ResultCode AddFolder(Connection& db, Trail trail, const PimFolderRecord& folder, const DbChar* parentPimId)
{
    const int32_t parentId = DB_INTERNAL_PIM_GetFolderID(db, parentPimId);
    if (parentId == kNoFolder) return ResultCode::kFailure;
    return trail.check(
        db.exec(WideSql("INSERT INTO tPimFolder ([parentID], [PimID], [Path], [Type]) VALUES (%d, '%s', '%s', %d);",
                        parentId, Plain{folder.PimID}, Escaped{folder.Path}, folder.Type)),
        1);
}

ResultCode GetFolder(Connection& db, PimFolderRecord& folder, const DbChar* pimId)
{
    return DB_INTERNAL_PIM_GetFolder(db, folder, DB_INTERNAL_PIM_GetFolderID(db, pimId));
}

ResultCode UpdateFolder(Connection& db, Trail trail, const PimFolderRecord& folder)
{
    const int32_t folderId = DB_INTERNAL_PIM_GetFolderID(db, folder.PimID);
    if (folderId == kNoFolder) return ResultCode::kFailure;
    return trail.check(db.exec(WideSql("UPDATE tPimFolder SET [Path] = '%s', [Type] = %d WHERE [pfID] = %d;",
                                       Escaped{folder.Path}, folder.Type, folderId)),
                       1);
}

ResultCode DeleteFolder(Connection& db, Trail trail, const DbChar* pimId)
{
    const int32_t folderId = DB_INTERNAL_PIM_GetFolderID(db, pimId);
    if (folderId == kNoFolder) return ResultCode::kFailure;
    // What lies below it stays, and hangs in the air.
    return trail.check(db.exec(NarrowSql("DELETE FROM tPimFolder WHERE [pfID] = %d;", folderId)), 1);
}

}  // namespace pim
}  // namespace kesta
