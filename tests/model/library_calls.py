"""DB_Open, DB_Close and DB_LIB_*: main folders, phones and their sync state."""

import engine as sql
from core import FAILURE, Core, ListSlot, need
from records import PHONE_TEXTS, zero_record
from values import escaped, format_date, format_for_user, plain

READ_ONLY = 19
REPORTED = (1000, 1100, 1400, 1900)
BREAK = " \t\t\t\t"
LIST_BREAK = " \t\t\t\t\t\t\t   "
SYNC_FLAGS = ("SyncDocFromFolder", "SyncDocFromPhone", "SyncPhotoFromFolder", "SyncPhotoFromPhone",
              "SyncMusicFromFolder", "SyncMusicFromPlayer", "SyncMusicAll")
NUMBERS = ("AutoSync", "AutoBackup", "AllowWifi", "ContactPreferSide", "CalendarPreferSide", "ContactPim", "CalPim",
           "CalPeriod")


def _setting_columns(line):
    return ("[Name], [PhotoPath], [DocPath], [WifiMAC], [AutoSync], [AutoBackup]," + line +
            "[AllowWifi], [ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim]," + line +
            "[CalPeriod], DATETIME([CalStart]), DATETIME([CalEnd]), [CalPeriodStr], [BookMarkType]," + line +
            "[SyncDocFromFolder], [SyncDocFromPhone], [SyncPhotoFromFolder], [SyncPhotoFromPhone]," + line +
            "[SyncMusicFromFolder], [SyncMusicFromPlayer], [SyncMusicAll]")


class Library(Core):
    def DB_Open(self):
        # A closed database is one whose file is read-only; the start-up scenarios look at the other reasons.
        def refuse():
            self.error("DB_Open", 1)
            return READ_ONLY
        return self.frame("DB_Open", "", 0, lambda: 0 if self.db else refuse())

    def DB_Close(self):
        return 0

    # ---- main folders

    def _update_main_folder(self, number, count, size, setting):
        name = "DB_INTERNAL_LIB_UpdateMainFolderInfo"
        if not self.db:
            return FAILURE
        pieces = []
        if count >= 0:
            pieces.append(f"[Number] = {count}")
        if size >= 0:
            pieces.append(f"[Size] = {size}")
        if setting:
            pieces.append(f"[Setting] = '{escaped(setting)}'")
        if not pieces:
            self.error(name, 1)
            return FAILURE
        return self.run(name, 2, "UPDATE tLibMainFolder SET %s WHERE [ID] = %d;", ", ".join(pieces), number)

    def DB_LIB_UpdateMainFolderInfo(self, record):
        def body():
            need(record)
            return self._update_main_folder(record["ID"], record["Number"], record["Size"], record["Setting"])
        return self.frame("DB_LIB_UpdateMainFolderInfo", "", FAILURE, body)

    def _refresh(self, number):
        if not self.db:
            return FAILURE
        table = {1000: "tMusicFiles", 1100: "tMediaFiles", 1400: "tDocuments", 1900: "tWebBookmarks"}[number]
        rows = self.query("SELECT COUNT(*)%s FROM %s", "" if number == 1900 else ", SUM([Size])", table)
        if rows is None:
            self.error("DB_INTERNAL_LIB_RefreshStatistic", 1)
            return FAILURE
        row = rows.first()
        if row is None:
            return 0 if rows.code == sql.DONE else rows.code
        size = 0 if number == 1900 else sql.int64(row[1])
        return self._update_main_folder(number, sql.int32(row[0]), size, None)

    def DB_LIB_RefreshStatistics(self):
        return self.frame("DB_LIB_RefreshStatistics", "", FAILURE,
                          lambda: 1 if any([self._refresh(number) for number in REPORTED]) else 0)

    def _read_main_folders(self, target):
        name = "DB_INTERNAL_LIB_GetAllMainFolders"
        if not self.db:
            return FAILURE
        rows = self.query("SELECT COUNT(*) FROM tLibMainFolder;")
        if rows is None:
            self.error(name, 1)
            return FAILURE
        count = sql.int32(rows.first()[0]) if rows.first() else 0
        if count <= 0:
            return 0
        self.empty(target)
        self.allocate(target, count)
        rows = self.query("SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;")
        if rows is None:
            self.error(name, 2)
            return FAILURE

        def read(item, row):
            item["ID"], item["Number"], item["Size"] = sql.int32(row[0]), sql.int32(row[1]), sql.int64(row[2])
            self.read_text(item, "Setting", row[3])
            item["Changed"] = self.changed.get(item["ID"], 1)
        return self.fill(target, rows, read)

    def DB_LIB_GetAllMainFolders(self, target):
        def body():
            self.empty(target)
            return self._read_main_folders(target)
        return self.frame("DB_LIB_GetAllMainFolders", "", FAILURE, body)

    def DB_LIB_MainFoldersChanged(self, target):
        def body():
            need(target)
            if not self.db:
                return FAILURE
            self.empty(target)
            self.allocate(target, len(REPORTED))
            target.count = len(REPORTED)
            for item, number in zip(target.items, REPORTED):
                item["ID"], item["Changed"] = number, self.changed[number]
                self.changed[number] = 0
            return 0
        return self.thin("DB_LIB_MainFoldersChanged", body)

    # ---- phones

    def DB_LIB_PhoneDetected(self, imei, name):
        export = "DB_LIB_PhoneDetected"

        def body():
            phone = self.phone_id(imei)
            if not self.db or phone != -1:
                return phone
            first = None if imei is None else imei.split(":")[0]
            if self.run(export, 1, "INSERT INTO tPhone ([IMEI], [IMEI2], [Name])" + BREAK +
                        "VALUES ('%s', '%s', '%s');", escaped(imei), escaped(first), escaped(name)):
                return -1
            phone = sql.int32(self.db.last_row_id())
            folders = ListSlot("MainFolderRecord")
            if self._read_main_folders(folders) == 0:
                for item in (folders.items or [])[:folders.count]:
                    self.run(export, 2, "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) "
                             "VALUES (%d, %d, %d);", phone, item["ID"], 0)
            self.empty(folders)
            return phone
        return self.frame(export, f"IMEI: {plain(imei)}, Name: {plain(name)}", -1, body, "PhoneID = ")

    def DB_LIB_SetPhoneSetting(self, record):
        export = "DB_LIB_SetPhoneSetting"

        def body():
            need(record)
            if not self.db:
                return FAILURE
            start, end = format_date(record["CalStart"]), format_date(record["CalEnd"])
            number = {field: record[field] for field in NUMBERS + ("BookMarkType",) + SYNC_FLAGS}
            text = ("UPDATE tPhone SET [AutoSync] = {AutoSync}, [AutoBackup] = {AutoBackup}, "
                    "[AllowWifi] = {AllowWifi}," + BREAK +
                    "[ContactPreferSide] = {ContactPreferSide}, [CalendarPreferSide] = {CalendarPreferSide}, "
                    "[ContactPim] = {ContactPim}, [CalPim] = {CalPim}," + BREAK +
                    "[CalPeriod] = {CalPeriod}, [CalStart] = '{start}', [CalEnd] = '{end}', "
                    "[BookMarkType] = {BookMarkType}," + BREAK +
                    "[SyncDocFromFolder] = {SyncDocFromFolder}, [SyncDocFromPhone] = {SyncDocFromPhone}, "
                    "[SyncPhotoFromFolder] = {SyncPhotoFromFolder}," + BREAK +
                    "[SyncPhotoFromPhone] = {SyncPhotoFromPhone}, [SyncMusicFromFolder] = {SyncMusicFromFolder}, "
                    "[SyncMusicFromPlayer] = {SyncMusicFromPlayer}, [SyncMusicAll] = {SyncMusicAll}"
                    ).format(start=start, end=end, **number)
            for field in ("WifiMAC", "Name", "PhotoPath", "DocPath", "CalPeriodStr", "ContactFolderId",
                          "CalendarFolderId", "ContactProfile", "CalendarProfile"):
                if record[field] is not None:
                    text += f", [{field}] = '{escaped(record[field])}'"
            text += f" WHERE [IMEI] = '{escaped(record['IMEI'])}';"
            return self.run(export, 1, "%s", text)
        return self.frame(export, "", FAILURE, body)

    def _read_setting(self, record, row):
        """The columns that both queries share, from [Name] to [SyncMusicAll]."""
        for field, value in zip(PHONE_TEXTS[1:5], row):
            self.read_text(record, field, value)
        for field, value in zip(NUMBERS, row[4:]):
            record[field] = sql.int32(value)
        self.read_date(record, "CalStart", row[12])
        self.read_date(record, "CalEnd", row[13])
        self.read_text(record, "CalPeriodStr", row[14])
        for field, value in zip(("BookMarkType",) + SYNC_FLAGS, row[15:]):
            record[field] = sql.int32(value)

    def DB_LIB_GetPhoneSetting(self, imei, record):
        export = "DB_LIB_GetPhoneSetting"

        def body():
            need(record)
            self.free_texts(record)
            record.update(zero_record("PhoneSettingRecord"))
            if not self.db:
                return FAILURE
            rows = self.query("SELECT " + _setting_columns(BREAK) + ", [NeedMount]," + BREAK +
                              "[ContactFolderId], [CalendarFolderId], [ContactProfile], [CalendarProfile] "
                              "FROM tPhone WHERE [IMEI] = '%s';", plain(imei))
            if rows is None:
                self.error(export, 1)
                return FAILURE
            row = rows.first()
            if row is None:
                return FAILURE
            self.duplicate(record, "IMEI", imei)
            self._read_setting(record, row)
            record["NeedMount"] = sql.int32(row[23])
            for field, value in zip(PHONE_TEXTS[6:], row[24:]):
                self.read_text(record, field, value)
            return 0
        return self.frame(export, "", FAILURE, body)

    def DB_LIB_GetAllPhones(self, target):
        export = "DB_LIB_GetAllPhones"

        def read(item, row):
            self.read_text(item, "IMEI", row[0])
            self._read_setting(item, row[1:])

        def body():
            self.empty(target)
            return self.fill_list(export, target, ("SELECT COUNT(*) FROM tPhone;",),
                                  ("SELECT [IMEI], " + _setting_columns(LIST_BREAK) + " FROM tPhone;",), read)
        return self.frame(export, "", FAILURE, body)

    # ---- sync state

    def DB_LIB_IsFolderSelected(self, imei, folder):
        export = "DB_LIB_IsFolderSelected"

        def body():
            phone = self.phone_id(imei)
            if not self.db:
                return 1
            rows = self.query("SELECT [Selected] FROM tSyncContents WHERE [phoneID] = %d AND [lfID] = %d;", phone,
                              folder)
            if rows is None:
                self.error(export, 1)
                return 1
            return sql.int32(rows.first()[0]) if rows.first() else 1
        return self.frame(export, f"IMEI: {plain(imei)}, FolderID: {folder}", 1, body, "bSelected = ")

    def DB_LIB_SetFolderSelected(self, imei, folder, selected):
        export = "DB_LIB_SetFolderSelected"

        def body():
            phone = self.phone_id(imei)
            if not self.db or phone == -1:
                return FAILURE
            rows = self.query("SELECT COUNT(*) FROM tSyncContents WHERE [phoneID] = %d AND [lfID] = %d;", phone,
                              folder)
            if rows is None:
                self.error(export, 1)
                return FAILURE
            if (sql.int32(rows.first()[0]) if rows.first() else 0) < 1:
                return self.run(export, 3, "INSERT INTO tSyncContents ([phoneID], [lfID], [Selected]) "
                                "VALUES (%d, %d, %d);", phone, folder, selected)
            return self.run(export, 2, "UPDATE tSyncContents SET [Selected] = %d WHERE [phoneID] = %d "
                            "AND [lfID] = %d;", selected, phone, folder)
        return self.frame(export, f"IMEI: {plain(imei)}, FolderID: {folder}, bSelected: {selected}", FAILURE, body)

    def DB_LIB_SetLastSyncTime(self, imei, time, code, mount):
        export = "DB_LIB_SetLastSyncTime"

        def enter():
            need(time)
            return f"IMEI: {plain(imei)}, LastTime: {format_for_user(time)}, iErrCode: {code}"

        def body():
            if not self.db:
                return FAILURE
            if time[0] == 0.0:
                return self.run(export, 1, "UPDATE tPhone SET [ErrCode] = %d, [NeedMount] = %d "
                                "WHERE [IMEI] = '%s';", code, mount, plain(imei))
            return self.run(export, 1, "UPDATE tPhone SET [LastTime] = '%s', [ErrCode] = %d, [NeedMount] = %d "
                            "WHERE [IMEI] = '%s';", format_date(time), code, mount, plain(imei))
        return self.frame(export, enter, FAILURE, body)

    def DB_LIB_GetLastSyncTime(self, imei, out):
        export = "DB_LIB_GetLastSyncTime"

        def body():
            need(out)
            rows = self.query("SELECT DATETIME([LastTime]) FROM tPhone WHERE [IMEI] = '%s';",
                              plain(imei)) if self.db else None
            if rows is None:
                if self.db:
                    self.error(export, 1)
                return FAILURE
            if rows.first() is None:
                return FAILURE
            self.read_date(out, "value", rows.first()[0])
            return 0
        return self.frame(export, f"IMEI: {plain(imei)}", FAILURE, body)

    def DB_LIB_SetSDType(self, imei, kind, old):
        export = "DB_LIB_SetSDType"
        return self.frame(export, f"IMEI: {plain(imei)}, Type: {kind}, OldType: {old}", FAILURE, lambda: self.run(
            export, 1, "UPDATE tPhone SET [SDType] = %d, [SDOldType] = %d WHERE [IMEI] = '%s';", kind, old,
            plain(imei)) if self.db else FAILURE)

    def DB_LIB_GetSDType(self, imei, kind, old):
        export = "DB_LIB_GetSDType"

        def body():
            need(kind, old)
            rows = self.query("SELECT [SDType], [SDOldType] FROM tPhone WHERE [IMEI] = '%s';",
                              plain(imei)) if self.db else None
            if rows is None:
                if self.db:
                    self.error(export, 1)
                return FAILURE
            if rows.first() is None:
                return FAILURE
            kind["value"], old["value"] = map(sql.int32, rows.first())
            return 0
        return self.frame(export, f"IMEI: {plain(imei)}", FAILURE, body)

    def clear_table_for_phone(self, phone, table):
        if not self.db:
            return FAILURE
        return self.run("DB_INTERNAL_ClearTable4Phone", 1, "DELETE FROM %s WHERE [PhoneID] = %d;", table, phone)

    def DB_LIB_ClearSyncHistory(self, imei):
        def body():
            phone = self.phone_id(imei)
            if self.db and phone != -1:
                for table in ("tDFile", "tIFile", "tVFile", "tMFile", "tPFile"):
                    self.clear_table_for_phone(phone, table)
            return 0
        return self.frame("DB_LIB_ClearSyncHistory", f"IMEI: {plain(imei)}", 0, body, with_exit=False)
