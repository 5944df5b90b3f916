"""The folder and file engine and the four categories DB_MUSIC_, DB_IMAGE_, DB_VIDEO_ and DB_DOCUMENT_."""

import engine as sql
from core import FAILURE, need
from library_calls import Library
from records import CATEGORIES
from values import escaped, format_date, plain

FOLDER_COLUMNS = "ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted]"
FILE_COLUMNS = "[Path], [BasePath], [PhonePath], DATETIME([ModifiedTime])"
FOLDER_NUMBERS = (("RowId", sql.int64), ("Count", sql.int32), ("Size", sql.int64), ("TotalSize", sql.int64),
                  ("Sized", sql.int32), ("Selected", sql.int32), ("Deleted", sql.int32))


class Media(Library):
    # ---- engine: folders

    def known_phone(self, imei):
        """The phone's id, or None if the connection is closed or the phone is unknown."""
        phone = self.phone_id(imei)
        return None if not self.db or phone == -1 else phone

    def _read_folder(self, record, row):
        self.read_text(record, "Path", row[1])
        for (field, convert), value in zip(FOLDER_NUMBERS, row[:1] + row[2:]):
            record[field] = convert(value)

    def is_folder_selected(self, imei, view, path):
        return self._folder_truth("DB_INTERNAL_IsFolderSelected", imei, view, path, "[Selected]", "[Path]")

    def is_folder_deleted(self, imei, view, path):
        # The views have no [Name]: this fails for every folder.
        return self._folder_truth("DB_INTERNAL_IsFolderDeleted", imei, view, path, "[Deleted]", "[Name]")

    def _folder_truth(self, routine, imei, view, path, column, key):
        if not self.db:
            return 1
        rows = self.query("SELECT %s FROM %s WHERE [IMEI] = '%s' AND %s = '%s';", column, view, plain(imei), key,
                          escaped(path))
        if rows is None:
            self.error(routine, 1)
            return 1
        return sql.int32(rows.first()[0]) if rows.first() else 1

    def set_folder_selected(self, imei, table, path, selected):
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        return self.run("DB_INTERNAL_SetFolderSelected", 2, "UPDATE %s SET [Selected] = %d WHERE [PhoneID] = %d "
                        "AND [Path] = '%s';", table, selected, phone, escaped(path))

    def add_folder(self, imei, table, record):
        need(record)
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        self.changed[1000] = 1
        path = escaped(record["Path"])
        numbers = (record["Count"], record["Size"], record["TotalSize"], record["Sized"])
        self.exec("UPDATE %s SET [Count] = %d, [Size] = %I64d, [TotalSize] = %I64d, [Sized] = %d, [Deleted] = 0 "
                  "WHERE [PhoneID] = %d AND [Path] = '%s';", table, *numbers, phone, path)
        self.exec("INSERT INTO %s ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], "
                  "[Flag], [AddTime]) VALUES (%d, '%s', %d, %I64d, %I64d, %d, 1, 0, %d, '%s');", table, phone, path,
                  *numbers, 1, self.now())
        return 0

    def get_folders(self, imei, table, target, ordered):
        need(target)
        routine = "DB_INTERNAL_GetFolders"
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        rows = self.query("SELECT COUNT(*) FROM %s WHERE [PhoneID] = %d;", table, phone)
        if rows is None:
            return FAILURE
        count = sql.int32(rows.first()[0]) if rows.first() else -1
        if count <= 0:
            return FAILURE if count < 0 else 0
        self.empty(target)
        self.allocate(target, count)
        rows = self.query("SELECT " + FOLDER_COLUMNS + ", DATETIME([AddTime]) FROM %s WHERE [PhoneID] = %d%s;", table,
                          phone, " ORDER BY [AddTime]" if ordered else "")
        if rows is None:
            self.error(routine, 1)
            return FAILURE

        def read(item, row):
            self._read_folder(item, row[:8])
            self.read_date(item, "AddTime", row[8])
        return self.fill(target, rows, read)

    def get_folder(self, imei, table, path, record):
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        rows = self.query("SELECT " + FOLDER_COLUMNS + " FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';", table,
                          phone, escaped(path))
        if rows is None:
            self.error("DB_INTERNAL_GetFolder", 1)
            return FAILURE
        if rows.first() is None:
            return FAILURE
        self._read_folder(record, rows.first())
        return 0

    def set_folders_state(self, imei, table, column, value):
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        return self.run("DB_INTERNAL_SetFoldersState", 2, "UPDATE %s SET %s = %d WHERE [PhoneID] = %d AND %s <> %d;",
                        table, column, value, phone, column, 4)

    def set_folder_state(self, imei, table, path, column, value):
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        return self.run("DB_INTNOLOCK_SetFolderState", 2, "UPDATE %s SET %s = %d WHERE [PhoneID] = %d "
                        "AND [Path] = '%s';", table, column, value, phone, escaped(path))

    def _folder_flag(self, imei, table, path):
        """The folder's flag, or None if it cannot be told."""
        if not self.db:
            return None
        rows = self.query("SELECT [Flag] FROM %s WHERE [IMEI] = '%s' AND [Path] = '%s';", "v" + table[1:],
                          plain(imei), escaped(path))
        if rows is None:
            self.error("DB_INTNOLOCK_GetFlag", 1)
            return None
        return sql.int32(rows.first()[0]) if rows.first() else None

    def set_deleted_folder(self, imei, table, path, mode):
        routine = "DB_INTERNAL_SetDeletedFolder"
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        flag = self.path_flag(phone, table, path)
        if mode == 0 or flag == 3:
            self.run(routine, 1, "DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';", table, phone,
                     escaped(path))
            return self.run(routine, 1, "DELETE FROM %s WHERE [PhoneID] = %d AND [BasePath] = '%s';",
                            table[:2] + "File", phone, escaped(path))
        return FAILURE if flag else self.set_folder_state(imei, table, path, "[Flag]", 4)

    def set_folder_deleted(self, imei, table, path, deleted):
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        if deleted and self._folder_flag(imei, table, path) == 1:
            return self.set_deleted_folder(imei, table, path, 0)
        return self.run("DB_INTERNAL_SetFolderDeleted", 2, "UPDATE %s SET [Deleted] = %d WHERE [PhoneID] = %d "
                        "AND [PATH] = '%s';", table, deleted, phone, escaped(path))

    # ---- engine: files

    def _read_file(self, record, row):
        for field, value in zip(("Path", "BasePath", "PhonePath"), row):
            self.read_text(record, field, value)
        self.read_date(record, "ModifiedTime", row[3])

    def is_synced_file(self, imei, view, path, record):
        need(record)
        if not self.db:
            return 0
        rows = self.query("SELECT " + FILE_COLUMNS + " FROM %s WHERE [IMEI] = '%s' AND [Path] = '%s';", view,
                          plain(imei), escaped(path))
        if rows is None:
            self.error("DB_INTERNAL_IsSyncedFile", 1)
            return 0
        if rows.first() is None:
            return 0
        record.owned = {}  # The earlier texts are lost, not freed.
        self._read_file(record, rows.first())
        return 1

    def get_synced_files(self, imei, view, folder, target):
        need(target)
        tail = ("%s WHERE [IMEI] = '%s'AND [BasePath] = '%s';", view, plain(imei), escaped(folder)) if folder else (
            "%s WHERE [IMEI] = '%s';", view, plain(imei))
        # The engine empties the list only after counting; all its callers have emptied it before.
        return self.fill_list("DB_INTERNAL_GetSyncedFiles", target, ("SELECT COUNT(*) FROM " + tail[0], *tail[1:]),
                              ("SELECT " + FILE_COLUMNS + " FROM " + tail[0], *tail[1:]), self._read_file)

    def set_added_file(self, imei, table, record):
        routine = "DB_INTERNAL_SetAddedFile"
        need(record)
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        code = self.exec("INSERT INTO %s ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) "
                         "VALUES (%d, '%s', '%s', '%s', '%s');", table, phone, escaped(record["Path"]),
                         escaped(record["BasePath"]), escaped(record["PhonePath"]),
                         format_date(record["ModifiedTime"]))
        if code != sql.OK:
            self.error(routine, 3)
            return code
        self.run(routine, 2, "UPDATE %s SET [Flag] = %d WHERE [PhoneID] = %d AND [PATH] = '%s';",
                 table[:2] + "Folder", 0, phone, escaped(record["BasePath"]))
        return 0

    def set_deleted_file(self, imei, table, record):
        need(record)
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        return self.run("DB_INTERNAL_SetDeletedFile", 1, "DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';",
                        table, phone, escaped(record["Path"]))

    def set_updated_file(self, imei, table, record):
        need(record)
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE
        return self.run("DB_INTERNAL_SetUpdatedFile", 1, "UPDATE %s SET [PhonePath] = '%s', [ModifiedTime] = '%s' "
                        "WHERE [PhoneID] = %d AND [Path] = '%s';", table, escaped(record["PhonePath"]),
                        format_date(record["ModifiedTime"]), phone, escaped(record["Path"]))

    # ---- the four categories

    def enter(self, name, imei, path=None, label="Path", more=""):
        shown = f", {label}: {plain(path)}" if label else ""
        self.trace.line(f"Enter {name}(IMEI: {plain(imei)}{shown}{more}).")

    def enter_with_record(self, name, imei, record):
        need(record)
        self.enter(name, imei, record["Path"])

    def category(self, name, family, suffix, args):
        return self.thin(name, lambda: self._category(name, family, suffix, *args))

    def _category(self, name, family, suffix, imei, *args):
        letter = CATEGORIES[family]
        table, view, files, file_view = f"t{letter}Folder", f"v{letter}Folder", f"t{letter}File", f"v{letter}File"
        if suffix in ("AddFolder", "SetAddedFile", "SetDeletedFile", "SetUpdatedFile"):
            self.enter_with_record(name, imei, *args)
            work = {"AddFolder": self.add_folder, "SetAddedFile": self.set_added_file,
                    "SetDeletedFile": self.set_deleted_file, "SetUpdatedFile": self.set_updated_file}[suffix]
            return work(imei, table if suffix == "AddFolder" else files, *args)
        if suffix == "ClearAll":
            self.enter(name, imei, label=None)
            return self.set_folders_state(imei, table, "[Deleted]", 1)
        if suffix == "GetFolders":
            self.empty(*args)
            self.enter(name, imei, label=None)
            return self.get_folders(imei, table, *args, ordered=True)
        if suffix == "GetSyncedFiles":
            folder, target = args
            self.empty(target)
            self.enter(name, imei, folder, "Folder")
            return self.get_synced_files(imei, file_view, folder, target)
        if suffix == "GetFolder":
            path, record = args
            need(record)
            self.reset_texts(record, ("Path",))
            record.update(Count=0, Size=0, TotalSize=0, Sized=0)
            self.enter(name, imei, path)
            return self.get_folder(imei, table, path, record)
        if suffix in ("SetFolderSelected", "SetFolderDeleted"):
            path, value = args
            label = "Selected" if suffix == "SetFolderSelected" else "bDeleted" if family == "MUSIC" else "Deleted"
            self.enter(name, imei, path, more=f", {label}: {value}")
            work = self.set_folder_selected if suffix == "SetFolderSelected" else self.set_folder_deleted
            return work(imei, table, path, value)
        path = args[0]
        self.enter(name, imei, path)
        if suffix == "IsSyncedFile":
            return self.is_synced_file(imei, file_view, *args)
        if suffix == "SetDeletedFolder":
            return self.set_deleted_folder(imei, table, path, 0)
        work = {"IsFolderSelected": self.is_folder_selected, "IsFolderDeleted": self.is_folder_deleted}[suffix]
        return work(imei, view, path)
