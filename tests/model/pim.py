"""DB_PIMLOG_* and DB_PIM_*: the sync log, the folders, the items and the profile."""

import sqlite3

import engine as sql
from bookmarks import Backups
from core import FAILURE, need
from engine import error_code
from values import escaped, format_date, joined, plain, units

ROOT, UNKNOWN = -2, -1
WORK_AREA = 1023


class Pim(Backups):
    # ---- sync log

    def _pim_log(self, name, phone, kind):
        """(log id or None, error): the log of a phone and type."""
        rows = self.query("SELECT [plID] FROM tPimLog WHERE [phoneID] = %d AND [Type] = %d;", phone, kind)
        if rows is None:
            self.error(name, 1)
            return None, FAILURE
        return (sql.int32(rows.first()[0]) if rows.first() else None), 0

    def _log_frame(self, name, imei, work, *pointers):
        def body():
            need(*pointers)
            phone = self.known_phone(imei)
            return FAILURE if phone is None else work(phone)
        return self.frame(name, "", FAILURE, body)

    def DB_PIMLOG_GetPimProfile(self, imei, buffer, kind):
        name = "DB_PIMLOG_GetPimProfile"

        def work(phone):
            rows = self.query("SELECT [PimProfile] FROM tPimLog WHERE [phoneID] = %d AND [Type] = %d;", phone, kind)
            if rows is None:
                self.error(name, 1)
                return FAILURE
            if rows.first() is None:
                return 0 if rows.code == sql.DONE else rows.code
            buffer["value"] = units(self.db.text(rows.first()[0])) or ""
            return 0
        return self._log_frame(name, imei, work, buffer)

    def DB_PIMLOG_SetPimProfile(self, imei, profile, kind):
        name = "DB_PIMLOG_SetPimProfile"

        def work(phone):
            log, error = self._pim_log(name, phone, kind)
            if error:
                return error
            if log is None:
                return self.run(name, 2, "INSERT INTO tPimLog ([phoneID], [Type], [PimProfile]) VALUES (%d, %d, '%s');",
                                phone, kind, escaped(profile))
            return self.run(name, 3, "UPDATE tPimLog SET [PimProfile] = '%s' WHERE [phoneID] = %d AND [Type] = %d;",
                            escaped(profile), phone, kind)
        return self._log_frame(name, imei, work)

    def DB_PIMLOG_ClearAll(self, imei, kind):
        name = "DB_PIMLOG_ClearAll"

        def work(phone):
            log, error = self._pim_log(name, phone, kind)
            if error or log is None:
                return error
            return self.run(name, 2, "DELETE FROM tPimLogItem WHERE [plID] = %d;DELETE FROM tPimLog WHERE [plID] = %d;",
                            log, log)
        return self._log_frame(name, imei, work)

    def DB_PIMLOG_ReadLog(self, imei, log):
        name = "DB_PIMLOG_ReadLog"

        def read(item, row):
            self.read_text(item, "Guid", row[0])
            self.read_text(item, "Luid", row[1])
            self.read_date(item, "PCTime", row[2])
            self.read_date(item, "PhoneTime", row[3])

        def work(phone):
            rows = self.query("SELECT COUNT(*), [ptID], tPimLog.[plID] FROM tPimLogItem, tPimLog WHERE "
                              "tPimLogItem.[plID] = tPimLog.[plID] AND [phoneID] = %d AND [Type] = %d;", phone,
                              log.type)
            if rows is None:
                self.error(name, 1)
                return FAILURE
            row = rows.first()
            if row is None or sql.int32(row[0]) < 1:
                return 0
            self.empty(log)
            self.allocate(log, sql.int32(row[0]))
            rows = self.query("SELECT [Guid], [Luid], [PCTime], [PhoneTime] FROM tPimLogItem WHERE [plID] = %d;",
                              sql.int32(row[2]))
            if rows is None:
                self.error(name, 2)
                return FAILURE
            return self.fill(log, rows, read)
        return self._log_frame(name, imei, work, log)

    def DB_PIMLOG_SaveLog(self, imei, log):
        name = "DB_PIMLOG_SaveLog"

        def body():
            need(log)
            if not self.db:
                return FAILURE
            phone, kind = self.phone_id(imei), log["Type"]
            found, error = self._pim_log(name, phone, kind)
            if error:
                return error
            if found is None:
                if self.run(name, 2, "INSERT INTO tPimLog ([phoneID], [Type]) VALUES (%d, %d);", phone, kind):
                    return FAILURE
                found = sql.int32(self.db.last_row_id())
            for item in log["Items"]:
                self.run(name, 3, "INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) "
                         "VALUES (%d, '%s', '%s', '%s', '%s');", found, plain(item["Guid"]), plain(item["Luid"]),
                         format_date(item["PCTime"]), format_date(item["PhoneTime"]))
            return 0
        return self.frame(name, "", FAILURE, body)

    # ---- look-ups of folders and items

    def _pim_id(self, routine, missing, pattern, *args):
        if not self.db:
            return UNKNOWN
        rows = self.query(pattern, *args)
        if rows is None:
            self.error(routine, 1)
            return UNKNOWN
        return sql.int32(rows.first()[0]) if rows.first() else missing

    def _folder_id(self, pim_id):
        if not pim_id:
            return ROOT
        return self._pim_id("DB_INTERNAL_PIM_GetFolderID", UNKNOWN,
                            "SELECT [pfID] FROM tPimFolder WHERE [PimID] = '%s';", plain(pim_id))

    def _folder_id_by_path(self, path):
        if not path:
            return ROOT
        return self._pim_id("DB_INTERNAL_PIM_GetFolderIDByPath", UNKNOWN,
                            "SELECT [pfID] FROM tPimFolder WHERE [Path] = '%s';", escaped(path))

    def _item_id(self, pim_id):
        return self._pim_id("DB_INTERNAL_PIM_GetItemID", UNKNOWN, "SELECT [piID] FROM tPimItem WHERE [PimID] = '%s';",
                            plain(pim_id))

    def _append_ids(self, routine, area, pattern, *args):
        rows = self.query(pattern, *args)
        if rows is None:
            self.error(routine, 1)
            return
        area.extend(sql.int32(row[0]) for row in rows.rows)

    def _append_children(self, area, parent, kind):
        routine = "DB_INTERNAL_PIM_GetFolderIDs"
        if parent == ROOT:
            self._append_ids(routine, area, "SELECT [pfID] FROM tPimFolder WHERE ([parentID] IS NULL OR "
                             "[parentID] < 0) AND [Type] = %d;", kind)
        else:
            self._append_ids(routine, area, "SELECT [pfID] FROM tPimFolder WHERE [parentID] = %d AND [Type] = %d;",
                             parent, kind)
        del area[WORK_AREA:]

    def _walk(self, area, kind):
        """Appends the children of each folder in the area, those just appended included."""
        i = 0
        while i < len(area):
            if len(area) < WORK_AREA:
                self._append_children(area, area[i], kind)
            i += 1

    # ---- folders

    def _fill_pim_folder(self, record, folder):
        routine = "DB_INTERNAL_PIM_GetFolder"
        if folder < 0 or not self.db:
            return FAILURE
        rows = self.query("SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = %d;", folder)
        if rows is None:
            self.error(routine, 1)
            return FAILURE
        row = rows.first()
        if row is None:
            return rows.code
        self.read_text(record, "PimID", row[0])
        self.read_text(record, "Path", row[2])
        record["Type"] = sql.int32(row[3])
        # Without a parent it is a root folder.
        parent = UNKNOWN if row[1] is None else sql.int32(row[1])
        if parent < 0:
            return 0
        rows = self.query("SELECT [PimID] FROM tPimFolder WHERE [pfID] = %d;", parent)
        if rows is None:
            self.error(routine, 2)
            return FAILURE
        if rows.first() is None:
            return rows.code
        self.read_text(record, "ParentPimID", rows.first()[0])
        return 0

    def DB_PIM_GetFolders(self, target, parent, kind, recursive):
        def body():
            self.empty(target)
            folder = self._folder_id(parent)
            if not self.db or folder == UNKNOWN:
                return FAILURE
            area = []
            self._append_children(area, folder, kind)
            if recursive:
                self._walk(area, kind)
            self.allocate(target, len(area))
            target.count = len(area)
            for item, number in zip(target.items, area):
                self._fill_pim_folder(item, number)
            return 0
        return self.frame("DB_PIM_GetFolders", "", FAILURE, body)

    def DB_PIM_AddFolder(self, record, parent):
        name = "DB_PIM_AddFolder"

        def body():
            need(record)
            folder = self._folder_id(parent)
            if not self.db or folder == UNKNOWN:
                return FAILURE
            return self.run(name, 1, "INSERT INTO tPimFolder ([parentID], [PimID], [Path], [Type]) "
                            "VALUES (%d, '%s', '%s', %d);", folder, plain(record["PimID"]), escaped(record["Path"]),
                            record["Type"])
        return self.frame(name, "", FAILURE, body)

    def DB_PIM_GetFolder(self, record, pim_id):
        def body():
            need(record)
            self.reset_texts(record, ("PimID", "ParentPimID", "Path"))
            return self._fill_pim_folder(record, self._folder_id(pim_id))
        return self.frame("DB_PIM_GetFolder", "", FAILURE, body)

    def _change_folder(self, name, pim_id, pattern, *args):
        folder = self._folder_id(pim_id)
        if not self.db or folder == UNKNOWN:
            return FAILURE
        return self.run(name, 1, pattern, *args, folder)

    def DB_PIM_UpdateFolder(self, record):
        name = "DB_PIM_UpdateFolder"

        def body():
            need(record)
            return self._change_folder(name, record["PimID"], "UPDATE tPimFolder SET [Path] = '%s', [Type] = %d "
                                       "WHERE [pfID] = %d;", escaped(record["Path"]), record["Type"])
        return self.frame(name, "", FAILURE, body)

    def DB_PIM_DeleteFolder(self, pim_id):
        name = "DB_PIM_DeleteFolder"
        return self.frame(name, "", FAILURE, lambda: self._change_folder(
            name, pim_id, "DELETE FROM tPimFolder WHERE [pfID] = %d;"))

    # ---- items

    def _fill_item(self, record, number):
        rows = self.query("SELECT [PimID], [Data], [Type] FROM tPimItem WHERE [piID] = %d;", number)
        if rows is None:
            self.error("DB_INTERNAL_PIM_GetItem", 1)
            return
        if rows.first() is None:
            return
        pim_id, data, kind = rows.first()
        self.read_text(record, "PimID", pim_id)
        data = data if isinstance(data, bytes) else (self.db.text(data) or "").encode()
        record["DataLength"] = len(data)
        if data:
            record["Data"] = data
            record.owned["Data"] = self.trace.new()
        record["Type"] = sql.int32(kind)

    def DB_PIM_GetItems(self, target, folder_id, kind, recursive):
        def body():
            self.empty(target)
            folder = self._folder_id(folder_id)
            if not self.db or folder == UNKNOWN:
                return FAILURE
            folders = [folder]
            if recursive:
                self._walk(folders, kind)
            area = self.trace.new()
            items = []
            for number in folders:
                self._append_ids("DB_INTERNAL_PIM_GetItemIDs", items, "SELECT [piID] FROM tPimItem WHERE [pfID] = %d;",
                                 number)
            self.allocate(target, len(items))
            target.count = len(items)
            for item, number in zip(target.items, items):
                self._fill_item(item, number)
            self.trace.delete(area)
            return 0
        return self.frame("DB_PIM_GetItems", "", FAILURE, body)

    def _run_bound(self, name, position, pattern, value, *args):
        """A statement with one bound value: a refusal to prepare has a line, a failing step has none."""
        text = self.statement(pattern, *args)
        try:
            if len(text.encode()) > sql.STATEMENT_BYTES:
                raise ValueError
            self.db.connection.execute("EXPLAIN " + text, (value,)).fetchall()
        except (sqlite3.Error, ValueError):
            self.error(name, position)
            return FAILURE
        try:
            self.db.connection.execute(text, (value,))
        except sqlite3.Error as error:
            return FAILURE if error_code(error) else 0
        return 0

    def DB_PIM_AddItem(self, record, path):
        name = "DB_PIM_AddItem"

        def body():
            need(record)
            folder = self._folder_id_by_path(path)
            if not self.db or folder == UNKNOWN:
                return FAILURE
            return self._run_bound(name, 1, "INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) "
                                   "VALUES (%d, '%s', ?, %d);", record["Data"], folder, plain(record["PimID"]),
                                   record["Type"])
        return self.frame(name, "", FAILURE, body)

    def DB_PIM_UpdateItem(self, record):
        name = "DB_PIM_UpdateItem"

        def body():
            need(record)
            item = self._item_id(record["PimID"])
            if item == UNKNOWN:
                return FAILURE
            return self._run_bound(name, 1, "UPDATE tPimItem SET [Data] = ? WHERE [piID] = %d;", record["Data"], item)
        return self.frame(name, "", FAILURE, body)

    def DB_PIM_DeleteItem(self, pim_id):
        name = "DB_PIM_DeleteItem"

        def body():
            item = self._item_id(pim_id)
            return FAILURE if item == UNKNOWN else self.run(name, 1, "DELETE FROM tPimItem WHERE [piID] = %d;", item)
        return self.frame(name, "", FAILURE, body)

    # ---- profile

    def DB_PIM_GetProfile(self, slot):
        name = "DB_PIM_GetProfile"

        def body():
            need(slot)
            if slot["value"] is not None:
                self.trace.delete(slot["owned"])
                slot["value"] = None
            rows = self.query("SELECT [Profile] FROM tPimInfo;") if self.db else None
            if rows is None:
                if self.db:
                    self.error(name, 1)
                return FAILURE
            if rows.first() is None:
                return 0 if rows.code == sql.DONE else rows.code
            slot["value"] = units(self.db.text(rows.first()[0])) or None
            if slot["value"]:
                slot["owned"] = self.trace.new()
            return 0
        return self.frame(name, "", FAILURE, body)

    def DB_PIM_SetProfile(self, slot):
        name = "DB_PIM_SetProfile"

        def body():
            need(slot)
            if not self.db:
                return FAILURE
            self.run(name, 1, "DELETE FROM tPimInfo;")
            text = None if slot[0] is None else joined(slot[0])
            return self._run_bound(name, 2, "INSERT INTO tPimInfo ([Profile]) VALUES (?);", text)
        return self.frame(name, "", FAILURE, body)

    def DB_PIM_ClearAll(self, kind, keep_folders):
        name = "DB_PIM_ClearAll"

        def body():
            if not self.db:
                return FAILURE
            if self.run(name, 1, "DELETE FROM tPimItem WHERE [Type] = %d;", kind):
                return FAILURE
            return 0 if keep_folders else self.run(name, 2, "DELETE FROM tPimFolder WHERE [Type] = %d;", kind)
        return self.frame(name, "", FAILURE, body)
