#include "pim/items.h"

#include <cstring>
#include <stdexcept>

#include "core/list.h"
#include "pim/folders.h"

namespace kesta {

ResultCode DB_INTERNAL_PIM_GetItemIDs(Connection& db, IdArea& ids, int32_t folderId)
{
    Statement rows = db.prepare(NarrowSql("SELECT [piID] FROM tPimItem WHERE [pfID] = %d;", folderId));
    if (!rows.prepared()) {
        Trail("DB_INTERNAL_PIM_GetItemIDs").error(1);
        return ResultCode::kFailure;
    }
    while (rows.step()) {
        if (!ids.append(rows.int32(0))) return ResultCode::kSuccess;
    }
    return rows.last() == SqliteCode::kDone ? ResultCode::kSuccess : ResultCode::kFailure;
}

int32_t DB_INTERNAL_PIM_GetItemID(Connection& db, const DbChar* pimId)
{
    Statement rows = db.prepare(NarrowSql("SELECT [piID] FROM tPimItem WHERE [PimID] = '%s';", Ansi{pimId}));
    if (!rows.prepared()) Trail("DB_INTERNAL_PIM_GetItemID").error(1);
    return rows.prepared() && rows.step() ? rows.int32(0) : kNoItem;
}

ResultCode DB_INTERNAL_PIM_GetItem(Connection& db, PimItemRecord& item, int32_t itemId)
{
    Statement rows = db.prepare(NarrowSql("SELECT [PimID], [Data], [Type] FROM tPimItem WHERE [piID] = %d;", itemId));
    if (!rows.prepared()) {
        Trail("DB_INTERNAL_PIM_GetItem").error(1);
        return ResultCode::kFailure;
    }
    if (!rows.step()) return ResultCode::kSuccess;
    item.PimID = rows.newText(0);
    const std::span<const uint8_t> data = rows.blob(1);
    item.DataLength = static_cast<int32_t>(data.size());
    if (!data.empty()) {
        FreeBytes(item.Data);
        item.Data = NewBytes(data.size());
        std::memcpy(item.Data, data.data(), data.size());
    }
    item.Type = rows.int32(2);
    return ResultCode::kSuccess;
}

namespace pim {
namespace {

/// Steps a statement that writes; any of the codes of an undisturbed step is success.
ResultCode StepOnce(Statement& statement)
{
    (void)statement.step();
    const SqliteCode code = statement.last();
    const bool done = code == SqliteCode::kOk || code == SqliteCode::kRow || code == SqliteCode::kDone;
    return done ? ResultCode::kSuccess : ResultCode::kFailure;
}

ResultCode StepWithData(Statement statement, Trail trail, const PimItemRecord& item)
{
    if (!statement.prepared()) {
        trail.error(1);
        return ResultCode::kFailure;
    }
    if (item.DataLength < 0) throw std::invalid_argument("negative length");
    statement.bindBlob(1, item.Data, item.DataLength);
    return StepOnce(statement);
}

}  // namespace

ResultCode GetItems(Connection& db, PimItemList& list, const DbChar* folderPimId, int32_t type, bool recursive)
{
    const int32_t folderId = DB_INTERNAL_PIM_GetFolderID(db, folderPimId);
    if (folderId == kNoFolder) return ResultCode::kFailure;
    // The type chooses among the folders below; neither the first folder nor the items are asked for theirs.
    FolderIds folders;
    folders.append(folderId);
    if (recursive) AppendDescendants(db, folders, type);
    const ItemSlots slots;
    IdArea items(slots.slots());
    for (size_t i = 0; i < folders.count(); ++i) (void)DB_INTERNAL_PIM_GetItemIDs(db, items, folders[i]);
    AllocateList(list, static_cast<int32_t>(items.count()));
    for (; static_cast<size_t>(list.Count) < items.count(); ++list.Count) {
        (void)DB_INTERNAL_PIM_GetItem(db, list.Items[list.Count], items[static_cast<size_t>(list.Count)]);
    }
    return ResultCode::kSuccess;
}

ResultCode AddItem(Connection& db, Trail trail, const PimItemRecord& item, const DbChar* folderPath)
{
    // Deliberate: the folder is named by its path here, by its PimID everywhere else.
    const int32_t folderId = DB_INTERNAL_PIM_GetFolderIDByPath(db, folderPath);
    if (folderId == kNoFolder) return ResultCode::kFailure;
    return StepWithData(
        db.prepare(NarrowSql("INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (%d, '%s', ?, %d);",
                             folderId, Ansi{item.PimID}, item.Type)),
        trail, item);
}

ResultCode UpdateItem(Connection& db, Trail trail, const PimItemRecord& item)
{
    const int32_t itemId = DB_INTERNAL_PIM_GetItemID(db, item.PimID);
    if (itemId == kNoItem) return ResultCode::kFailure;
    return StepWithData(db.prepare(NarrowSql("UPDATE tPimItem SET [Data] = ? WHERE [piID] = %d;", itemId)), trail,
                        item);
}

ResultCode DeleteItem(Connection& db, Trail trail, const DbChar* pimId)
{
    const int32_t itemId = DB_INTERNAL_PIM_GetItemID(db, pimId);
    if (itemId == kNoItem) return ResultCode::kFailure;
    return trail.check(db.exec(NarrowSql("DELETE FROM tPimItem WHERE [piID] = %d;", itemId)), 1);
}

ResultCode GetProfile(Connection& db, Trail trail, DbChar*& profile)
{
    Statement rows = db.prepare(NarrowSql("SELECT [Profile] FROM tPimInfo;"));
    if (!rows.prepared()) {
        trail.error(1);
        return ResultCode::kFailure;
    }
    if (!rows.step()) return EndOfRows(rows.last());
    profile = rows.newText(0);
    return ResultCode::kSuccess;
}

ResultCode SetProfile(Connection& db, Trail trail, const DbChar* profile)
{
    (void)trail.check(db.exec(NarrowSql("DELETE FROM tPimInfo;")), 1);
    Statement insert = db.prepare(NarrowSql("INSERT INTO tPimInfo ([Profile]) VALUES (?);"));
    if (!insert.prepared()) {
        trail.error(2);
        return ResultCode::kFailure;
    }
    insert.bindText(1, profile);
    return StepOnce(insert);
}

ResultCode ClearAll(Connection& db, Trail trail, int32_t type, bool keepFolders)
{
    const ResultCode items = trail.check(db.exec(NarrowSql("DELETE FROM tPimItem WHERE [Type] = %d;", type)), 1);
    if (items != ResultCode::kSuccess || keepFolders) return items;
    return trail.check(db.exec(NarrowSql("DELETE FROM tPimFolder WHERE [Type] = %d;", type)), 2);
}

}  // namespace pim
}  // namespace kesta
