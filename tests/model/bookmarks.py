"""DB_BOOKMARK_* and DB_BACKUP_*."""

import engine as sql
from core import FAILURE, need
from playlists import Playlists
from values import escaped, format_date, plain

BACKUP_COLUMNS = "SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups"
EXISTS = 183


class Bookmarks(Playlists):
    def DB_BOOKMARK_ClearAll(self, imei):
        name = "DB_BOOKMARK_ClearAll"

        def body():
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            return self.run(name, 1, "DELETE FROM tBFile WHERE [PhoneID] = %d;", phone)
        return self.frame(name, f"IMEI: {plain(imei)}", FAILURE, body)

    def DB_BOOKMARK_IsSyncedMark(self, imei, url):
        name = "DB_BOOKMARK_IsSyncedMark"

        def body():
            kind = self.bookmark_type(imei)
            if not self.db:
                return 0
            rows = self.query("SELECT * FROM vBFile WHERE [IMEI] = '%s' AND [Path] = '%s' AND [Type] = %d;",
                              plain(imei), escaped(url), kind)
            if rows is None:
                self.error(name, 1)
                return 0
            return 1 if rows.first() else 0
        return self.frame(name, f"IMEI: {plain(imei)}, URL: {plain(url)}", 0, body)

    def DB_BOOKMARK_GetSyncedMarks(self, imei, target):
        name = "DB_BOOKMARK_GetSyncedMarks"

        def read(item, row):
            for field, value in zip(("Title", "Path", "PhoneMID"), row):
                self.read_text(item, field, value)
            item["Flag"] = sql.int32(row[3])

        def body():
            self.empty(target)
            tail = ("FROM vBFile WHERE [IMEI] = '%s' AND [Type] = %d;", plain(imei), self.bookmark_type(imei))
            return self.fill_list(name, target, ("SELECT COUNT(*) " + tail[0], *tail[1:]),
                                  ("SELECT [Title], [Path], [PhoneMID], [Flag] " + tail[0], *tail[1:]), read)
        return self.frame(name, f"IMEI: {plain(imei)}", FAILURE, body)

    def DB_BOOKMARK_GetSyncedMark(self, imei, url, record):
        name = "DB_BOOKMARK_GetSyncedMark"

        def body():
            need(record)
            self.reset_texts(record, ("Title", "Path", "PhoneMID"))
            kind = self.bookmark_type(imei)
            if not self.db:
                return FAILURE
            rows = self.query("SELECT [Title], [PhoneMID], [Flag], [Id] FROM vBFile WHERE [IMEI] = '%s' "
                              "AND [Path] = '%s' AND [Type] = %d;", plain(imei), escaped(url), kind)
            if rows is None:
                self.error(name, 3)
                return FAILURE
            row = rows.first()
            if row is None:
                return FAILURE
            self.read_text(record, "Title", row[0])
            self.read_text(record, "PhoneMID", row[1])
            record["Flag"], record["Id"] = sql.int32(row[2]), sql.int32(row[3])
            self.duplicate(record, "Path", url)
            record["Type"] = kind
            return 0
        return self.frame(name, f"IMEI: {plain(imei)}, Url: {plain(url)}", FAILURE, body)

    def _bookmark(self, name, imei, label, record, work):
        """A writer that needs the phone; work gets the phone and its bookmark type."""
        def enter():
            need(record)
            return f"IMEI: {plain(imei)}, {label}: {plain(record['Path'])}"

        def body():
            kind, phone = self.bookmark_type(imei), self.known_phone(imei)
            return FAILURE if phone is None else work(phone, kind)
        return self.frame(name, enter, FAILURE, body)

    def DB_BOOKMARK_SetAddedMark(self, imei, record):
        name = "DB_BOOKMARK_SetAddedMark"

        def work(phone, kind):
            code = self.exec("INSERT INTO tBFile ([PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type]) "
                             "VALUES (%d, '%s', '%s', '%s', %d, %d, %d);", phone, escaped(record["Title"]),
                             escaped(record["Path"]), escaped(record["PhoneMID"]), record["Id"], record["Flag"], kind)
            if code != sql.OK:
                self.error(name, 3)
            return code
        return self._bookmark(name, imei, "URL", record, work)

    def DB_BOOKMARK_SetDeletedMark(self, imei, url):
        name = "DB_BOOKMARK_SetDeletedMark"
        return self._bookmark(name, imei, "Url", {"Path": url}, lambda phone, kind: self.run(
            name, 1, "DELETE FROM tBFile WHERE [PhoneID] = %d AND [Path] = '%s' AND [Type] = %d;", phone, escaped(url),
            kind))

    def DB_BOOKMARK_SetUpdatedMark(self, imei, record):
        name = "DB_BOOKMARK_SetUpdatedMark"
        return self._bookmark(name, imei, "Url", record, lambda phone, kind: self.run(
            name, 1, "UPDATE tBFile SET [Title] = '%s', [PhoneMID] = '%s', [Flag] = %d WHERE [PhoneID] = %d "
            "AND [Path] = '%s' AND [Type] = %d;", escaped(record["Title"]), escaped(record["PhoneMID"]),
            record["Flag"], phone, escaped(record["Path"]), kind))


class Backups(Bookmarks):
    def DB_BACKUP_AddBackup(self, imei, record):
        name = "DB_BACKUP_AddBackup"

        def enter():
            need(record)
            return f"szIMEI: {plain(imei)}, Path: {plain(record['Path'])}"

        def body():
            result, record["bcID"] = self._add_backup(name, imei, record)
            return result
        return self.frame(name, enter, FAILURE, body)

    def _add_backup(self, name, imei, record):
        """(result, id)"""
        phone = self.known_phone(imei)
        if phone is None:
            return FAILURE, -1
        result = FAILURE
        rows = self.query("SELECT [bcID] FROM tBackups WHERE [Path] = '%s';", escaped(record["Path"]))
        if rows is None:
            self.error(name, 1)
            return FAILURE, -1
        phone_path, time = escaped(record["PhonePath"]), format_date(record["ModifiedTime"])
        if rows.first():
            result, found = EXISTS, sql.int32(rows.first()[0])
            if self.run(name, 2, "UPDATE tBackups SET [PhonePath] = '%s', [Size] = %I64d, [ModifiedTime] = '%s' "
                        "WHERE [bcID] = %d;", phone_path, record["Size"], time, found):
                return result, -1
            if found != -1:
                return result, found
        if self.run(name, 3, "INSERT INTO tBackups ([phoneID], [Path], [PhonePath], [Size], [ModifiedTime]) " + "\t" * 8
                    + "VALUES (%d, '%s', '%s', %I64d, '%s');", phone, escaped(record["Path"]), phone_path,
                    record["Size"], time):
            return result, -1
        return 0, sql.int32(self.db.last_row_id())

    def DB_BACKUP_ClearAll(self):
        def body():
            if not self.db:
                return FAILURE
            code = self.exec("DELETE FROM %s;", "tBackups")
            if code != sql.OK:
                self.error("DB_INTERNAL_ClearTable", 1)
            return code
        return self.frame("DB_BACKUP_ClearAll", "", FAILURE, body)

    def _delete_backups(self, name, column, number):
        code = self.exec(f"DELETE FROM tBackups WHERE [{column}] = %d;", number)
        if code != sql.OK:
            self.error(name, 1)
        return code

    def DB_BACKUP_DeleteBackups(self, imei):
        name = "DB_BACKUP_DeleteBackups"

        def body():
            phone = self.known_phone(imei)
            return FAILURE if phone is None else self._delete_backups(name, "phoneID", phone)
        return self.frame(name, f"szIMEI: {plain(imei)}", FAILURE, body)

    def DB_BACKUP_DeleteBackup(self, number):
        name = "DB_BACKUP_DeleteBackup"
        return self.frame(name, f"BackupID: {number}", FAILURE,
                          lambda: self._delete_backups(name, "bcID", number) if self.db else FAILURE)

    def DB_BACKUP_FileExist(self, path):
        name = "DB_BACKUP_FileExist"

        def body():
            if not self.db:
                return 0
            rows = self.query("SELECT COUNT(*) FROM tBackups WHERE [Path] = '%s';", escaped(path))
            if rows is None:
                self.error(name, 1)
                return 0
            return 1 if rows.first() and sql.int32(rows.first()[0]) > 0 else 0
        return self.frame(name, f"szPath: {plain(path)}", 0, body, "bExit = ")

    def _read_backup(self, item, row):
        item["bcID"] = sql.int32(row[0])
        self.read_text(item, "Path", row[1])
        self.read_text(item, "PhonePath", row[2])
        item["Size"] = sql.int64(row[3])
        self.read_date(item, "ModifiedTime", row[4])

    def DB_BACKUP_GetAllBackups(self, target):
        name = "DB_BACKUP_GetAllBackups"

        def body():
            self.empty(target)
            return self.fill_list(name, target, ("SELECT COUNT(*) FROM tBackups;",), (BACKUP_COLUMNS + ";",),
                                  self._read_backup)
        return self.frame(name, "", FAILURE, body)

    def DB_BACKUP_GetPhoneBackups(self, imei, target):
        name = "DB_BACKUP_GetPhoneBackups"

        def body():
            self.empty(target)
            phone = self.known_phone(imei)
            if phone is None:
                return FAILURE
            return self.fill_list(name, target, ("SELECT COUNT(*) FROM tBackups WHERE [phoneID] = %d;", phone),
                                  (BACKUP_COLUMNS + " WHERE [phoneID] = %d;", phone), self._read_backup)
        return self.frame(name, f"szIMEI: {plain(imei)}", FAILURE, body)
