#include "pim/items.h"

#include <cstring>
#include <stdexcept>

#include "core/list.h"
#include "pim/folders.h"

namespace kesta::pim {

ResultCode GetItemIDs(Connection& db, IdArea& ids, int32_t folderId)
{
    Routine self(db, Trail("DB_INTERNAL_PIM_GetItemIDs"));
    return self.query(1, NarrowSql("SELECT [piID] FROM tPimItem WHERE [pfID] = %d;", folderId),
                      [&](Statement& rows) { return ids.appendFirstColumn(rows); });
}

int32_t GetItemID(Connection& db, const DbChar* pimId)
{
    Routine self(db, Trail("DB_INTERNAL_PIM_GetItemID"));
    return self.firstNumber(1, NarrowSql("SELECT [piID] FROM tPimItem WHERE [PimID] = '%s';", Ansi{pimId}), kNoItem);
}

ResultCode GetItem(Connection& db, PimItemRecord& item, int32_t itemId)
{
    Routine self(db, Trail("DB_INTERNAL_PIM_GetItem"));
    return self.first(1, NarrowSql("SELECT [PimID], [Data], [Type] FROM tPimItem WHERE [piID] = %d;", itemId),
                      NoRowIsSuccess, [&](const Statement& row) {
                          item.PimID = row.newText(0);
                          const std::span<const uint8_t> data = row.blob(1);
                          item.DataLength = static_cast<int32_t>(data.size());
                          if (!data.empty()) {
                              FreeBytes(item.Data);
                              item.Data = NewBytes(data.size());
                              std::memcpy(item.Data, data.data(), data.size());
                          }
                          item.Type = row.int32(2);
                      });
}

namespace {

/// Steps a statement that writes; any of the codes of an undisturbed step is success.
ResultCode StepOnce(Statement& statement)
{
    (void)statement.step();
    const SqliteCode code = statement.last();
    const bool done = code == SqliteCode::kOk || code == SqliteCode::kRow || code == SqliteCode::kDone;
    return done ? ResultCode::kSuccess : ResultCode::kFailure;
}

/// Runs the statement with the item's data for its parameter.
ResultCode RunWithData(Routine self, const Sql& sql, const PimItemRecord& item)
{
    return self.query(1, sql, [&](Statement& statement) {
        if (item.DataLength < 0) {
            throw std::invalid_argument("negative length");
        }
        statement.bindBlob(1, item.Data, item.DataLength);
        return StepOnce(statement);
    });
}

}  // namespace

ResultCode GetItems(Routine self, PimItemList& list, const DbChar* folderPimId, int32_t type, bool recursive)
{
    const int32_t folderId = GetFolderID(self.db, folderPimId);
    if (folderId == kNoFolder) {
        return ResultCode::kFailure;
    }
    // The type chooses among the folders below; neither the first folder nor the items are asked for theirs.
    FolderIds folders;
    folders.append(folderId);
    if (recursive) {
        AppendDescendants(self.db, folders, type);
    }
    const ItemSlots slots;
    IdArea items(slots.slots());
    for (size_t i = 0; i < folders.count(); ++i) {
        (void)GetItemIDs(self.db, items, folders[i]);
    }
    AllocateList(list, static_cast<int32_t>(items.count()));
    for (; static_cast<size_t>(list.Count) < items.count(); ++list.Count) {
        (void)GetItem(self.db, list.Items[list.Count], items[static_cast<size_t>(list.Count)]);
    }
    return ResultCode::kSuccess;
}

ResultCode AddItem(Routine self, const PimItemRecord& item, const DbChar* folderPath)
{
    // Deliberate: the folder is named by its path here, by its PimID everywhere else.
    const int32_t folderId = GetFolderIDByPath(self.db, folderPath);
    if (folderId == kNoFolder) {
        return ResultCode::kFailure;
    }
    return RunWithData(self,
                       NarrowSql("INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (%d, '%s', ?, %d);",
                                 folderId, Ansi{item.PimID}, item.Type),
                       item);
}

ResultCode UpdateItem(Routine self, const PimItemRecord& item)
{
    const int32_t itemId = GetItemID(self.db, item.PimID);
    if (itemId == kNoItem) {
        return ResultCode::kFailure;
    }
    return RunWithData(self, NarrowSql("UPDATE tPimItem SET [Data] = ? WHERE [piID] = %d;", itemId), item);
}

ResultCode DeleteItem(Routine self, const DbChar* pimId)
{
    const int32_t itemId = GetItemID(self.db, pimId);
    if (itemId == kNoItem) {
        return ResultCode::kFailure;
    }
    return self.run(1, NarrowSql("DELETE FROM tPimItem WHERE [piID] = %d;", itemId));
}

ResultCode GetProfile(Routine self, DbChar*& profile)
{
    return self.first(1, NarrowSql("SELECT [Profile] FROM tPimInfo;"), EndOfRows,
                      [&](const Statement& row) { profile = row.newText(0); });
}

ResultCode SetProfile(Routine self, const DbChar* profile)
{
    (void)self.run(1, NarrowSql("DELETE FROM tPimInfo;"));
    return self.query(2, NarrowSql("INSERT INTO tPimInfo ([Profile]) VALUES (?);"), [&](Statement& insert) {
        insert.bindText(1, profile);
        return StepOnce(insert);
    });
}

ResultCode ClearAll(Routine self, int32_t type, bool keepFolders)
{
    const ResultCode items = self.run(1, NarrowSql("DELETE FROM tPimItem WHERE [Type] = %d;", type));
    if (items != ResultCode::kSuccess || keepFolders) {
        return items;
    }
    return self.run(2, NarrowSql("DELETE FROM tPimFolder WHERE [Type] = %d;", type));
}

}  // namespace kesta::pim
